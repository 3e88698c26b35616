"""Moments of the laws that the battery draws from, integrated or summed over their densities with mpmath.

Writes law_moments.txt, a line per law: id p1 p2 p3 p4 mean variance m4/m2^2 m6/m2^3
with m2, m4, m6 the central moments; 20 digits.
Run: python3 law_moments.py
"""
import mpmath as mp
from mpmath import mpf

mp.mp.dps = 30
INF = mp.inf

# One law of ordinary shape for every identifier; each has its first twelve moments at least.
LAWS = [
    (1, 2, 3), (2, 20, 0.25), (3, 4, 0.4), (4, 3, 2), (5, 6), (6, 0.5), (7, 6, 60), (8,), (9, 3), (10, 2, 5),
    (11, 2.5), (12, 2.5, 3), (13, 2.5, 3, -1), (14, 0, 0.25), (15, 5, 2), (16,), (17, 24, 2), (18, 3.5), (19, 24),
    (20, -1, 3), (21, 2), (22, 2, 3), (23, 2, 3, 1), (24, 1, 0.5, 0), (25, 3, 2), (26, 0, 1, 4), (27, 0, 1, 4),
    (28, 1, 2), (29, 1, 6), (30, 2, 3, -1, 4), (31, 0, 1, 3, 4), (32, 0.3), (33, 4, 1), (35, 0.3),
]


def beta(a, b, c=0, d=1):
    """Over s: the distance from the nearer end of the unit interval is s^4, and s is negative for the upper one. Ends
    where the density is infinite keep their digits."""
    a, b, front = mpf(a), mpf(b), 4 / mp.beta(a, b)

    def density(s):
        near, far = (a, b) if s > 0 else (b, a)
        return front * abs(s) ** (4 * near - 1) * (1 - s**4) ** (far - 1)

    end = mpf(1) / 2 ** mpf("0.25")
    return density, [-end, 0, end], lambda s: c + (d - c) * (s**4 if s > 0 else 1 - s**4)


def gamma(k, scale=1, shift=0):
    k, scale = mpf(k), mpf(scale)
    density = lambda x: ((x - shift) / scale) ** (k - 1) * mp.exp((shift - x) / scale) / mp.gamma(k) / scale
    return density, [shift] + [shift + scale * k * n for n in (1, 2, 4, 8, 16, 32, 64)]


def gumbel(scale=1, location=0):
    def density(x):
        z = mp.exp((location - x) / scale)
        return z * mp.exp(-z) / scale

    return density, [location + scale * t for t in (-6, -3, 0, 3, 8, 16, 32, 64, 128)]


def normal(mean=0, deviation=1):
    return lambda x: mp.npdf(x, mean, deviation), [mean + deviation * t for t in (-24, -8, -2, 2, 8, 24)]


def log_normal(mean, deviation):
    """Density over the logarithm."""
    return normal(mean, deviation)[0], [mean + deviation * t for t in (-24, -8, -2, 2, 8, 24)], mp.exp


def weibull(shape, scale=1, shift=0):
    def density(x):
        z = (x - shift) / mpf(scale)
        return shape / mpf(scale) * z ** (shape - 1) * mp.exp(-(z**shape))

    return density, [shift + mpf(scale) * t for t in (0, 1, 2, 4, 8, 16)]


def fisher(d1, d2):
    d1, d2 = mpf(d1), mpf(d2)

    def density(x):
        front = (d1 / d2) ** (d1 / 2) / mp.beta(d1 / 2, d2 / 2)
        return front * x ** (d1 / 2 - 1) * (1 + d1 * x / d2) ** (-(d1 + d2) / 2)

    return density, [0, 1, 2, 4, 16, 256, INF]


def student(df):
    df = mpf(df)
    front = 1 / (mp.sqrt(df) * mp.beta(mpf(1) / 2, df / 2))
    return lambda x: front * (1 + x * x / df) ** (-(df + 1) / 2), [-INF, -64, -8, -1, 1, 8, 64, INF]


def gev(scale, k, location):
    """k > 0: the law ends above."""

    def density(x):
        z = 1 - k * (x - location) / mpf(scale)
        return z ** (1 / mpf(k) - 1) * mp.exp(-(z ** (1 / mpf(k)))) / scale

    end = location + scale / mpf(k)
    return density, [end - scale * t for t in (40, 20, 10, 5, 2, 0)]


def trapezoid(a, b, c, d):
    height = mpf(2) / (d + c - a - b)

    def density(x):
        if x < b:
            return height * (x - a) / (b - a)
        return height if x <= c else height * (d - x) / (d - c)

    return density, sorted({mpf(a), mpf(b), mpf(c), mpf(d)})


def logistic(mean, scale):
    def density(x):
        e = mp.exp(-abs(x - mean) / mpf(scale))
        return e / (1 + e) ** 2 / scale

    return density, [mean + scale * t for t in (-128, -32, -8, -2, 2, 8, 32, 128)]


def masses(law, p):
    """Values with their probabilities."""
    if law == 2:
        return [(k, mp.binomial(p[0], k) * p[1] ** k * (1 - p[1]) ** (p[0] - k)) for k in range(int(p[0]) + 1)]
    if law in (3, 4):
        success = p[1] if law == 3 else 1 / (1 + p[1])
        return [(k, mp.binomial(k + p[0] - 1, k) * success ** p[0] * (1 - success) ** k) for k in range(1000)]
    if law == 18:
        return [(k, mp.exp(-p[0]) * p[0] ** k / mp.factorial(k)) for k in range(200)]
    if law == 29:
        values = range(int(p[0]), int(p[1]) + 1)
        return [(k, mpf(1) / len(values)) for k in values]
    return [(0, 1 - p[0]), (1, p[0])]


def density(law, p):
    """Density, interval ends, and the function that turns the integration variable into the law's."""
    if law in (14, 33):
        variance = p[1] ** 2 if law == 14 else mp.log(1 + (p[1] / p[0]) ** 2)
        return log_normal(p[0] if law == 14 else mp.log(p[0]) - variance / 2, mp.sqrt(variance))
    pert = lambda a, m, b: beta((4 * m + b - 5 * a) / (b - a), (5 * b - a - 4 * m) / (b - a), a, b)
    pareto = lambda a, b: (lambda x: a * b**a / x ** (a + 1), [b, 2 * b, 8 * b, INF])
    forms = {
        1: beta, 5: lambda df: gamma(df / 2, 2), 6: lambda rate: gamma(1, 1 / rate), 7: fisher, 8: gumbel, 9: gumbel,
        10: gumbel, 11: gamma, 12: gamma, 13: gamma, 15: normal, 16: normal, 17: pareto, 19: student,
        20: lambda a, b: beta(1, 1, a, b), 21: weibull, 22: weibull, 23: weibull, 24: gev,
        25: lambda k, rate: gamma(k, 1 / rate), 26: lambda a, m, b: trapezoid(a, m, m, b), 27: pert, 28: logistic,
        30: beta, 31: trapezoid, 35: lambda theta: beta(theta, 1 - theta),
    }
    form = forms[law](*p)
    return form if len(form) == 3 else form + (lambda x: x,)


def expectation(law, p, function):
    if law in (2, 3, 4, 18, 29, 32):
        return mp.fsum(function(mpf(k)) * mass for k, mass in masses(law, p))
    f, ends, value = density(law, p)
    return mp.quad(lambda x: function(value(x)) * f(x), ends)


def main():
    with open("law_moments.txt", "w") as out:
        for law, *given in LAWS:
            p = [mpf(v) for v in given]
            assert abs(expectation(law, p, lambda x: mpf(1)) - 1) < mpf(10) ** -18, law
            mean = expectation(law, p, lambda x: x)
            m2, m4, m6 = (expectation(law, p, lambda x: (x - mean) ** k) for k in (2, 4, 6))
            numbers = [mp.nstr(mp.chop(v, mpf(10) ** -25), 20) for v in (mean, m2, m4 / m2**2, m6 / m2**3)]
            print(law, *[repr(float(v)) for v in given + [0] * (4 - len(given))], *numbers, file=out)


main()
