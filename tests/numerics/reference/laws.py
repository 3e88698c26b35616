"""Reference values of the laws' distribution and quantile functions, with mpmath at 40 digits.

Writes laws_cdf.txt      id p1 p2 p3 p4 x F(x)
       laws_quantile.txt id p1 p2 p3 p4 u Q(u) s   with s = |Q| f(Q) / min(u, 1 - u), the relative change of the nearer
                                                   tail per relative change of Q; 0 for a discrete law.
Inputs are doubles written exactly enough to be read back; results have 20 digits. The incomplete beta and gamma
functions are summed here as series of positive terms and a continued fraction (Abramowitz and Stegun 26.5.4, 6.5.29,
6.5.31), each on the side where it converges, so that no tail comes from a difference.
Run: python3 laws.py [id ...]   (half an hour)
"""
import sys

import mpmath as mp
from mpmath import mpf

mp.mp.dps = 40
INF = mp.inf


class Tails:
    """A probability with its complement, each to full relative precision."""

    def __init__(self, lower=None, upper=None):
        self.lower = 1 - upper if lower is None else lower
        self.upper = 1 - lower if upper is None else upper

    def swapped(self):
        return Tails(self.upper, self.lower)


def beta_series(a, b, x, y):
    """I_x(a, b), y = 1 - x, for x below the mean."""
    term = total = mpf(1)
    n = 0
    while term > total * mpf(10) ** -38:
        term *= x * (a + b + n) / (a + 1 + n)
        total += term
        n += 1
    log_front = a * mp.log(x) + b * mp.log(y) - mp.log(a) + mp.loggamma(a + b) - mp.loggamma(a) - mp.loggamma(b)
    return mp.exp(log_front) * total


def beta_tails(a, b, x, y=None):
    a, b, x = mpf(a), mpf(b), mpf(x)
    y = 1 - x if y is None else y
    if x <= 0 or y <= 0:
        return Tails(lower=mpf(0)) if x <= 0 else Tails(upper=mpf(0))
    if x * (a + b + 2) <= a + 1:
        return Tails(lower=beta_series(a, b, x, y))
    return Tails(upper=beta_series(b, a, y, x))


def gamma_tails(a, x):
    a, x = mpf(a), mpf(x)
    if x <= 0:
        return Tails(lower=mpf(0))
    if x > 100 * (a + 10**5):
        return Tails(upper=mpf(0))
    front = mp.exp(a * mp.log(x) - x - mp.loggamma(a))
    if x < a + 1:
        term = total = 1 / a
        n = 0
        while term > total * mpf(10) ** -38:
            n += 1
            term *= x / (a + n)
            total += term
        return Tails(lower=front * total)
    tiny = mpf(10) ** -1000
    b = x + 1 - a
    c = 1 / tiny
    d = 1 / b
    h = d
    i = 0
    while True:
        i += 1
        an = -i * (i - a)
        b += 2
        d = 1 / (an * d + b)
        c = b + an / c
        h *= d * c
        if abs(d * c - 1) < mpf(10) ** -38:
            return Tails(upper=front * h)


def normal_tails(z):
    return Tails(mp.erfc(-z / mp.sqrt(2)) / 2, mp.erfc(z / mp.sqrt(2)) / 2)


def from_exponent(e):
    """Tails of F = exp(-e)."""
    if e > 10**6:
        return Tails(lower=mpf(0))
    return Tails(mp.exp(-e), -mp.expm1(-e))


def from_hazard(h):
    """Tails of F = 1 - exp(-h)."""
    if h > 10**6:
        return Tails(upper=mpf(0))
    return Tails(-mp.expm1(-h), mp.exp(-h))


def student_tails(x, df):
    y = x * x / (df + x * x)
    t = beta_tails(mpf(1) / 2, mpf(df) / 2, y, df / (df + x * x))
    return Tails(upper=t.upper / 2) if x > 0 else Tails(lower=t.upper / 2)


def gev_tails(x, b, k, mu):
    z = (x - mu) / b
    if k == 0:
        return from_exponent(mp.exp(-z))
    base = 1 - k * z
    if base <= 0:
        return Tails(upper=mpf(0)) if k > 0 else Tails(lower=mpf(0))
    return from_exponent(base ** (1 / mpf(k)))


@mp.workdps(400)
def trapezoid_tails(x, a, b, c, d):
    w = d + c - a - b
    if x < b:
        return Tails(lower=(x - a) ** 2 / ((b - a) * w))
    if x <= c:
        return Tails(lower=((b - a) + 2 * (x - b)) / w)
    return Tails(upper=(d - x) ** 2 / ((d - c) * w))


def lognormal2_tails(x, m, s):
    v = mp.log1p((mpf(s) / m) ** 2)
    return normal_tails((mp.log(mpf(x) / m) + v / 2) / mp.sqrt(v))


def pert_tails(x, a, m, b):
    return beta_tails((4 * m + b - 5 * a) / (b - a), (5 * b - a - 4 * m) / (b - a), (x - a) / (b - a))


def fisher_tails(x, d1, d2):
    return beta_tails(d1 / 2, d2 / 2, d1 * x / (d1 * x + d2), d2 / (d1 * x + d2))


REAL = lambda *p: (-INF, INF)
POSITIVE = lambda *p: (mpf(0), INF)
UNIT = lambda *p: (mpf(0), mpf(1))
BETAS = [(1, 1), (2, 3), (0.5, 0.5), (0.01, 2), (30, 70), (1e-3, 1e-3), (500, 300), (3, 1e4), (1.5, 0.25), (99, 0.75)]
SHAPES = [0.01, 0.5, 1, 2.5, 10, 60, 100, 1000, 1e5]
SCALES = [1, 0.001, 1e5]

# id: (parameter sets, tails(x, parameters), support ends)
CONTINUOUS = {
    1: (BETAS, lambda x, a, b: beta_tails(a, b, x), UNIT),
    5: ([(s,) for s in SHAPES], lambda x, k: gamma_tails(k / 2, x / 2), POSITIVE),
    6: ([(s,) for s in (1e-6, 0.01, 0.5, 1, 2, 3.7, 1000, 1e9)], lambda x, r: from_hazard(r * x), POSITIVE),
    7: ([(1, 1), (2, 3), (5, 10), (0.5, 40), (100, 7), (30, 60), (1, 1e4), (1000, 2000), (0.1, 0.2)], fisher_tails,
        POSITIVE),
    8: ([()], lambda x: from_exponent(mp.exp(-x)), REAL),
    9: ([(s,) for s in (1e-6, 0.01, 0.5, 1, 2, 3.7, 1000, 1e9)], lambda x, b: from_exponent(mp.exp(-x / b)), REAL),
    10: ([(1, 0), (2, 10), (0.5, -3), (1e-3, 1), (1e3, 1e-3), (7, 1e6), (1.25, 0.1), (100, -100)],
         lambda x, b, m: from_exponent(mp.exp(-(x - m) / b)), REAL),
    11: ([(s,) for s in SHAPES], lambda x, k: gamma_tails(k, x), POSITIVE),
    12: ([(s, b) for s, b in zip(SHAPES, SCALES * 3)], lambda x, k, b: gamma_tails(k, x / b), POSITIVE),
    13: ([(s, b, m) for s, b, m in zip(SHAPES[1:], SCALES * 3, (0, 1, -5, 100, 0.125, -1e-3, 3, -1e5))],
         lambda x, k, b, m: gamma_tails(k, (x - m) / b), lambda k, b, m: (m, INF)),
    14: ([(0, 1), (2, 0.5), (-3, 2), (600, 3), (-600, 0.25), (1, 0.001), (0.1, 10), (5, 1.5)],
         lambda x, m, s: normal_tails((mp.log(x) - m) / s), POSITIVE),
    15: ([(0, 1), (5, 2), (-3, 0.5), (1e6, 1), (100, 1e-3), (0.1, 0.7), (-1e-3, 1e5), (3, 1e-8)],
         lambda x, m, s: normal_tails((x - m) / s), REAL),
    16: ([()], normal_tails, REAL),
    17: ([(1, 1), (3, 2), (0.5, 1), (0.01, 5), (10, 0.1), (1000, 3), (2.5, 1e6), (1.16, 100)],
         lambda x, a, b: from_hazard(a * mp.log(x / b)), lambda a, b: (b, INF)),
    19: ([(s,) for s in (0.1, 0.5, 1, 2, 3, 4.5, 10, 30, 100, 1000)], student_tails, REAL),
    20: ([(0, 1), (-1, 1), (5, 6), (100, 1e6), (-1e-3, 1e-3), (0.1, 0.3), (-7, -2), (1e9, 1e9 + 1)],
         lambda x, a, b: Tails((x - a) / (b - a), (b - x) / (b - a)), lambda a, b: (a, b)),
    21: ([(s,) for s in (0.05, 0.5, 1, 1.5, 2, 3.6, 10, 200)], lambda x, b: from_hazard(x ** b), POSITIVE),
    22: ([(0.5, 2), (1, 1e-3), (2, 100), (3.6, 7), (10, 1e6), (0.2, 1), (1.5, 0.3), (50, 10)],
         lambda x, b, g: from_hazard((x / g) ** b), POSITIVE),
    23: ([(0.5, 2, 1), (1, 1e-3, 5), (2, 100, -50), (3.6, 7, 0.1), (10, 1e6, -1e6), (0.2, 1, 0), (1.5, 0.3, 1e3),
          (50, 10, -10)], lambda x, b, g, m: from_hazard((max(x - m, 0) / g) ** b), lambda b, g, m: (m, INF)),
    24: ([(1, 0, 0), (1, 0.5, 0), (2, -0.25, 1), (0.5, 1, -3), (10, -1, 100), (1, 1e-9, 0), (3, 2, 0.5), (1, -3, 2),
          (5, 1e-3, 10)], gev_tails,
         lambda b, k, m: REAL() if k == 0 else (-INF, m + b / k) if k > 0 else (m + b / k, INF)),
    25: ([(s, b) for s, b in zip((1, 2, 3, 10, 50, 100, 1000, 0.5), SCALES * 3)],
         lambda x, k, r: gamma_tails(k, x * r), POSITIVE),
    26: ([(0, 0.5, 1), (0, 0, 1), (0, 1, 1), (-5, 3, 4), (10, 11, 100), (1e6, 1e6 + 1, 1e6 + 3), (-0.3, 0.1, 0.2),
          (0, 1e-6, 1)], lambda x, a, m, b: trapezoid_tails(x, a, m, m, b), lambda a, m, b: (a, b)),
    27: ([(0, 0.5, 1), (0, 0, 1), (0, 1, 1), (-5, 3, 4), (10, 11, 100), (1e6, 1e6 + 1, 1e6 + 3), (-0.3, 0.1, 0.2),
          (0, 1e-6, 1)], pert_tails, lambda a, m, b: (a, b)),
    28: ([(0, 1), (5, 2), (-3, 0.5), (1e6, 1), (100, 1e-3), (0.1, 0.7), (-1e-3, 1e5), (3, 1e-8)],
         lambda x, m, s: Tails(1 / (1 + mp.exp(-(x - m) / s)), 1 / (1 + mp.exp((x - m) / s))), REAL),
    30: ([(1, 1, 0, 1), (2, 3, -1, 1), (0.5, 0.5, 5, 6), (30, 70, 0, 100), (3, 8, -0.3, 0.1), (1.5, 0.25, 1e3, 1e6),
          (200, 100, -5, 5), (5, 2, 1e-3, 2e-3)], lambda x, a, b, c, d: beta_tails(a, b, (x - c) / (d - c)),
         lambda a, b, c, d: (c, d)),
    31: ([(0, 0.25, 0.75, 1), (0, 0, 1, 1), (0, 0, 0.5, 1), (0, 0.5, 1, 1), (-5, -1, 3, 4), (10, 11, 11, 100),
          (1e6, 1e6 + 1, 1e6 + 2, 1e6 + 5), (-0.3, 0.1, 0.1, 0.2)], trapezoid_tails, lambda a, b, c, d: (a, d)),
    33: ([(1, 1), (10, 2), (0.5, 5), (100, 0.01), (1e6, 1e3), (1e-3, 1), (3, 0.5), (42, 42)], lognormal2_tails,
         POSITIVE),
    35: ([(s,) for s in (0.5, 0.25, 0.75, 0.01, 0.99, 0.1, 0.875, 1e-3)], lambda x, t: beta_tails(t, 1 - t, x), UNIT),
}


def binomial_tails(k, n, p):
    return beta_tails(n - k, k + 1, 1 - p, p) if k < n else Tails(upper=mpf(0))


DISCRETE = {
    2: ([(1, 0.5), (10, 0.5), (10, 0.1), (50, 0.9), (100, 0.01), (1000, 0.3), (20, 1e-6), (20000, 0.75)],
        binomial_tails),
    3: ([(1, 0.5), (0.5, 0.1), (10, 0.25), (3, 0.99), (100, 0.5), (2.5, 1e-3), (1000, 0.9), (40, 0.02)],
        lambda k, n, p: beta_tails(n, k + 1, p, 1 - p)),
    4: ([(1, 1), (0.5, 9), (10, 3), (3, 0.01), (100, 1), (2.5, 1e3), (1000, 0.125), (40, 49)],
        lambda k, s, p: beta_tails(s, k + 1, 1 / (1 + p), p / (1 + p))),
    18: ([(s,) for s in (0.01, 0.5, 1, 3.5, 10, 50, 100, 1000, 1e4)], lambda k, m: gamma_tails(k + 1, m).swapped()),
    29: ([(1, 6), (0, 1), (-5, 5), (1, 10), (1, 1000), (3, 3.0 + 2**20), (-1e6, 1e6), (1, 7)],
         lambda k, a, b: Tails((k - a + 1) / (b - a + 1), (b - k) / (b - a + 1))),
    32: ([(s,) for s in (0.5, 0.1, 0.25, 0.9, 0.75, 1e-3, 0.3, 1 - 2.0**-20)],
         lambda k, p: Tails(1 - p, p) if k < 1 else Tails(upper=mpf(0))),
}

TAIL_POINTS = [1e-300, 1e-200, 1e-100, 1e-40, 1e-15, 1e-6, 1e-3, 0.0625, 0.25, 0.4999, 0.5, 0.5001, 0.75, 0.9375,
               0.999, 1 - 2.0**-20, 1 - 2.0**-40, 1 - 2.0**-53]


def distance(tails, u):
    """Signed distance of F from u on the logarithmic scale of the nearer tail."""
    if u <= 0.5:
        return mp.log(tails.lower / u) if tails.lower > 0 else mpf("-1e9")
    return mp.log((1 - mpf(u)) / tails.upper) if tails.upper > 0 else mpf("1e9")


def continuous_quantile(tails, ends, u, reach):
    """Bisection, then false position, on a scale that spreads the support over the line."""
    low, high = ends
    if low > -INF and high < INF:
        at = lambda t: low + (high - low) * (mp.exp(t) if t < 0 else 1) / (1 + mp.exp(-abs(t)))
        start, stop = mpf(-3000), mpf(3000)
    elif low > -INF:
        at, start, stop = (lambda t: low + mp.exp(t)), mpf(-100000), mpf(100000)
    elif high < INF:
        at, start, stop = (lambda t: high - mp.exp(-t)), mpf(-100000), mpf(100000)
    else:
        at, start, stop = mp.sinh, mpf(-reach), mpf(reach)

    def f(t):
        try:
            return distance(tails(at(t)), u)
        except (OverflowError, MemoryError, ValueError):  # an exponential of an exponential, far outside
            return mpf(-10) ** 9 if t < 0 else mpf(10) ** 9

    for _ in range(70 if low == -INF and high < INF else 36):  # a far end needs a fine start
        middle = (start + stop) / 2
        if f(middle) < 0:
            start = middle
        else:
            stop = middle
    return at(illinois(f, start, stop))


def illinois(f, start, stop):
    """Root of f between two ends of opposite sign, by false position that halves the value of an end that stays."""
    f_start, f_stop = f(start), f(stop)
    kept = 0
    for _ in range(60):
        if f_start == f_stop:
            return start
        x = stop - f_stop * (stop - start) / (f_stop - f_start)
        fx = f(x)
        if abs(fx) < mpf(10) ** -36:
            return x
        if fx < 0:
            start, f_start = x, fx
            f_stop = f_stop / 2 if kept == -1 else f_stop
            kept = -1
        else:
            stop, f_stop = x, fx
            f_start = f_start / 2 if kept == 1 else f_start
            kept = 1
    return x


def write(stream, values):
    print(*values, file=stream, flush=True)


def inputs(law, p):
    return [law] + [repr(float(v)) for v in (list(p) + [0] * 4)[:4]]


def digits(v):
    return mp.nstr(v, 20, min_fixed=0, max_fixed=0)


def continuous(law, cdf, quantile):
    sets, tails, ends = CONTINUOUS[law]
    for p in sets:
        exact = [mpf(v) for v in p]
        support = ends(*exact)
        for u in TAIL_POINTS:
            q = continuous_quantile(lambda x: tails(x, *exact), support, u, 8000 if law == 19 else 60)
            if support == (-INF, INF) and abs(q) < mpf(10) ** -35:
                q = mpf(0)  # the median of a symmetric law
            step = min(abs(q), q - support[0], support[1] - q) * mpf(10) ** -20
            side = (lambda x: tails(x, *exact).lower) if u <= 0.5 else (lambda x: -tails(x, *exact).upper)
            slope = (side(q + step) - side(q - step)) / (2 * step) if step > 0 else mpf(0)
            write(quantile, inputs(law, p) + [repr(u), digits(q), mp.nstr(abs(q) * slope / min(u, 1 - u), 5)])
            x = float(q)
            if support[0] < x < support[1] and abs(x) < 1e300 and abs(x) > 1e-300:
                f = tails(mpf(x), *exact).lower
                if f >= mpf("1e-300"):
                    write(cdf, inputs(law, p) + [repr(x), digits(f)])


def discrete_quantile(tails, u, low, high):
    # F(k) rounded to a double counts as reached (0.9 of ten equal steps), but for the last steps below 1.
    def reached(k):
        at = tails(mpf(k))
        return distance(at, u) >= 0 or (1 - u > 1e-12 and float(at.lower) == u)

    step = 1
    top = low
    while not reached(top):
        low = top + 1
        top = min(top + step, high)
        step *= 2
    while low < top:
        middle = (low + top) // 2
        if reached(middle):
            top = middle
        else:
            low = middle + 1
    return top


def discrete(law, cdf, quantile):
    sets, tails = DISCRETE[law]
    for p in sets:
        exact = [mpf(v) for v in p]
        low = int(p[0]) if law == 29 else 0
        high = int(p[1]) if law == 29 else int(p[0]) if law == 2 else 1 if law == 32 else 10**30
        points = TAIL_POINTS
        for u in points:
            k = discrete_quantile(lambda v: tails(v, *exact), u, low, high)
            write(quantile, inputs(law, p) + [repr(u), k, 0])
            for x in (k, k + 1):
                f = tails(mpf(x), *exact).lower
                if x < high and f >= mpf("1e-300"):
                    write(cdf, inputs(law, p) + [repr(float(x)), digits(f)])


def main():
    wanted = [int(v) for v in sys.argv[1:]] or sorted(list(CONTINUOUS) + list(DISCRETE))
    with open("laws_cdf.txt", "w") as cdf, open("laws_quantile.txt", "w") as quantile:
        for law in wanted:
            (continuous if law in CONTINUOUS else discrete)(law, cdf, quantile)


main()
