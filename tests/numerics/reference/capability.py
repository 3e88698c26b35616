"""Capability indices from their definitions, with mpmath at 40 digits.

Writes capability.txt, a line per process: n LSL USL target stdev mean, then the indices 1 to 23 in their order, with 20
digits; "-" for a limit or an index that does not exist. Inputs are doubles; those of far tails have exact distances
in standard deviations, of which a tail magnifies the last digit.
Run: python3 capability.py
"""
import mpmath as mp
from mpmath import mpf

mp.mp.dps = 40

PROCESSES = [
    (50, 9.5, 10.75, 10, 0.125, 10.0625),
    (7, -4.1, 14.3, 5.7, 5.3, 4.9),
    (2, 0, 8, 3, 2.5, 4.5),
    (100000, 0, 8, 3, 2.5, 4.5),
    (30, 99, 101, 103, 0.3, 99.7),
    (30, -8, 7.5, 0.25, 0.25, 0),  # 32 and 30 deviations
    (30, -2, 9.25, 0, 0.25, 0),  # 8 and 37 deviations
    (12, 5, 6, 5.5, 1.75, 4.5),  # mean below both limits
    (12, 5, 6, 5.5, 1.75, 7),  # and above
    (20, 1, 3, 2, 0.5, 1),  # on a limit
    (1000, -1e6, 1e6, 0, 1e5, -2e5),
    (25, 9.5, None, 10, 0.125, 10.0625),
    (25, None, 10.75, 10, 0.125, 10.0625),
    (25, None, None, 10, 0.125, 10.0625),
]


def phi(x):
    return mp.erfc(-x / mp.sqrt(2)) / 2


def quantile(p):
    """The standard normal quantile, by bisection and Newton on the logarithm."""
    low, high = mpf(-40), mpf(9)
    for _ in range(60):
        middle = (low + high) / 2
        low, high = (middle, high) if phi(middle) < p else (low, middle)
    x = (low + high) / 2
    for _ in range(6):
        x -= (mp.log(phi(x)) - mp.log(p)) * phi(x) / mp.npdf(x)
    return x


def indices(n, lsl, usl, target, s, m):
    below = None if lsl is None else m - lsl
    above = None if usl is None else usl - m
    both = below is not None and above is not None
    over = lambda distance, spread: None if distance is None else distance / spread
    width = usl - lsl if both else None
    worse = min(below, above) if both else None
    tau = mp.sqrt(s**2 + (m - target) ** 2)
    boyles = mp.sqrt((n - 1) / mpf(n) * s**2 + (m - target) ** 2)
    p_below = mpf(0) if below is None else phi(-below / s)
    p_above = mpf(0) if above is None else phi(-above / s)
    total = p_below + p_above
    potential = [over(width, 6 * s), over(below, 3 * s), over(above, 3 * s), over(worse, 3 * s)]
    tails = [p_below, p_above, total]
    return (
        potential
        + potential
        + [over(width, 6 * tau), over(width, 6 * boyles)]
        + [over(width, mpf("5.15") * s), over(worse, mpf("2.575") * s)]
        + [over(worse, 3 * tau), over(worse, 3 * tau)]
        + [over(below, s), over(above, s), -quantile(total) if total > 0 else mp.inf]
        + tails
        + [1000000 * p for p in tails]
    )


def text(value):
    return "-" if value is None else mp.nstr(value, 20, min_fixed=0, max_fixed=0).replace("+", "")


def main():
    with open("capability.txt", "w") as out:
        for n, *given in PROCESSES:
            exact = [None if v is None else mpf(float(v)) for v in given]
            inputs = ["-" if v is None else repr(float(v)) for v in given]
            print(n, *inputs, *[text(v) for v in indices(n, *exact)], file=out)


main()
