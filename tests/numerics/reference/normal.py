"""Reference values of the standard normal functions, with mpmath at 40 digits.

Writes normal.txt: "cdf x F(x)" and "quantile p Q(p)", inputs as doubles, results with 20 digits.
Run: python3 normal.py
"""
import mpmath as mp
from mpmath import mpf

mp.mp.dps = 40


def cdf(x):
    return mp.erfc(-x / mp.sqrt(2)) / 2


def quantile(p):
    x = mpf(0)
    log_p = mp.log(p)
    start, stop = mpf(-39), mpf(9)
    for _ in range(40):
        x = (start + stop) / 2
        start, stop = (x, stop) if cdf(x) < p else (start, x)
    for _ in range(6):  # Newton on the logarithm
        f = cdf(x)
        x -= (mp.log(f) - log_p) * f / mp.npdf(x)
    return x


def digits(v):
    return mp.nstr(v, 20, min_fixed=0, max_fixed=0)


with open("normal.txt", "w") as out:
    for i in range(-300, 67):
        x = i / 8 + i / 4096
        print("cdf", repr(x), digits(cdf(mpf(x))), file=out)
    for i in range(1, 120):
        p = 0.5 ** (i * 9)
        print("quantile", repr(p), digits(quantile(mpf(p))), file=out)
    for i in range(1, 200):
        p = i / 200
        if p != 0.5:
            print("quantile", repr(p), digits(quantile(mpf(p))), file=out)
    for i in range(2, 53):
        for p in (1 - 0.5**i, 0.5 - 0.5**i, 0.5 + 0.5**i):
            if 0 < p < 1 and p != 0.5:
                print("quantile", repr(p), digits(quantile(mpf(p))), file=out)
