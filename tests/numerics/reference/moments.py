"""Reference statistics of vectors: exact rational arithmetic, rounded once.

Writes moments.txt, a line per series:
n x1..xn w1..wn mean variance g1 g2 G1 G2 seG1 seG2 ("-" where undefined; n = sum of the weights in the formulas)
Run: python3 moments.py
"""
from fractions import Fraction

import mpmath as mp

mp.mp.dps = 60


def number(q):
    return mp.mpf(q.numerator) / q.denominator if isinstance(q, Fraction) else mp.mpf(q)


def statistics(values, weights):
    x = [Fraction(v) for v in values]
    w = [Fraction(v) for v in weights]
    n = sum(w)
    mean = sum(a * b for a, b in zip(x, w)) / n
    m2, m3, m4 = (sum(b * (a - mean) ** k for a, b in zip(x, w)) / n for k in (2, 3, 4))
    varies = m2 > 0
    g1 = number(m3) / number(m2) ** 1.5 if varies else None
    g2 = number(m4 / m2**2 - 3) if varies else None
    se = mp.sqrt(number(6 * n * (n - 1) / ((n - 2) * (n + 1) * (n + 3)))) if n > 2 else None
    N = number(n)
    return [
        number(mean),
        number(m2 * n / (n - 1)) if n > 1 else None,
        g1,
        g2,
        mp.sqrt(N * (N - 1)) / (N - 2) * g1 if varies and n > 2 else None,
        (N - 1) / ((N - 2) * (N - 3)) * ((N + 1) * g2 + 6) if varies and n > 3 else None,
        se,
        2 * se * mp.sqrt((N * N - 1) / ((N - 3) * (N + 5))) if n > 3 else None,
    ]


SERIES = [
    ([5.0], [1]),
    ([1.0, 2.0], [1, 1]),
    ([3.0, 1.0, 7.5], [1, 1, 1]),
    ([1.0, 2.0, 3.0, 4.0], [1, 1, 1, 1]),
    ([2.0, 2.0, 2.0, 2.0, 2.0], [1] * 5),
    ([1e9 + v for v in (4.0, 7.0, 13.0, 16.0)], [1] * 4),
    ([1e9 + v / 8 for v in range(30)], [1] * 30),
    ([0.1, 0.2, 0.4, 0.8, 1.6, 3.2, 6.4], [1] * 7),
    ([-1e-3, 5e4, 3.25, 1e-12, -7.0, 2.0**40], [1] * 6),
    ([3.0, 1.0, 4.0, 1.5, 9.0], [2, 1, 3, 1, 2]),
    ([1.0, 10.0, 100.0], [0.5, 2.25, 4.0]),
]

with open("moments.txt", "w") as out:
    for values, weights in SERIES:
        results = ["-" if v is None else mp.nstr(v, 20, min_fixed=0, max_fixed=0) for v in statistics(values, weights)]
        print(len(values), *[repr(float(v)) for v in values], *[repr(float(v)) for v in weights], *results, file=out)
