"""Reference values of the laws with huge parameters and of Student's law next to its median, with mpmath.

Writes large_laws_cdf.txt and large_laws_quantile.txt in the form of laws_cdf.txt and laws_quantile.txt (see laws.py).
The series of laws.py would take millions of terms here. Gamma and beta functions with two large parameters are instead
the integral of their density over the tail, by Gauss and Legendre's rule in panels; beta functions with one small
parameter are its series at 430 digits, enough to take the other tail as the difference from 1.
Run: python3 large_laws.py   (ten minutes)
"""
import mpmath as mp
from mpmath import mpf

mp.mp.dps = 30


def tail_integral(g, s0, direction):
    """Integral of exp(g(s0) - g(s)) from s0 outwards, g convex with its least value between s0 and the other end."""
    g0 = g(s0)
    rise = lambda t: g(s0 + direction * t) - g0
    end = mpf(1)
    while rise(end) > 80:
        end /= 2
    while rise(end) < 75:
        end *= mpf("1.2")
    return mp.quad(lambda t: mp.exp(-rise(t)), mp.linspace(0, end, 9), method="gauss-legendre", maxdegree=5)


def stirling(a):
    """log Gamma(a) - ((a - 1/2) log a - a + log(2 pi)/2)."""
    total, power = mpf(0), mpf(a)
    for k in range(1, 30):
        term = mp.bernoulli(2 * k) / (2 * k * (2 * k - 1) * power)
        total += term
        power *= a * a
        if abs(term) < mpf(10) ** -45:
            break
    return total


def both(tail, direction):
    return (tail, 1 - tail) if direction < 0 else (1 - tail, tail)


def gamma_tails(a, x):
    """P(a, x) and Q(a, x), over s = log(x / a)."""
    with mp.workdps(32 + int(mp.log10(a))):
        if x <= 0:
            return mpf(0), mpf(1)
        s0 = mp.log1p((x - a) / a)
        g = lambda s: a * (mp.expm1(s) - s)
        direction = -1 if s0 < 0 else 1
        front = mp.exp(-g(s0) - stirling(a)) * mp.sqrt(a / (2 * mp.pi))
        return both(front * tail_integral(g, s0, direction), direction)


def beta_series(a, b, x, y):
    term = total = mpf(1)
    n = 0
    while term > total * mpf(10) ** -420:
        term *= x * (a + b + n) / (a + 1 + n)
        total += term
        n += 1
    front = a * mp.log(x) + b * mp.log(y) - mp.log(a) + mp.loggamma(a + b) - mp.loggamma(a) - mp.loggamma(b)
    lower = mp.exp(front) * total
    return lower, 1 - lower


def beta_tails(a, b, odds):
    """I_x(a, b) and its complement at odds = x / (1 - x), over s = log(odds b / a)."""
    if min(a, b) < 200:
        with mp.workdps(430):
            x, y = odds / (1 + odds), 1 / (1 + odds)
            if a <= b:
                return (mpf(1), mpf(0)) if b * x > 20 * a + 1500 else beta_series(a, b, x, y)
            return (mpf(0), mpf(1)) if a * y > 20 * b + 1500 else beta_series(b, a, y, x)[::-1]
    with mp.workdps(42 + int(mp.log10(a + b))):
        s0 = mp.log1p(odds * b / a - 1)
        g = lambda s: (a + b) * mp.log1p(a / (a + b) * mp.expm1(s)) - a * s
        direction = -1 if s0 < 0 else 1
        front = mp.exp(-g(s0) + stirling(a + b) - stirling(a) - stirling(b)) * mp.sqrt(a * b / (a + b) / (2 * mp.pi))
        return both(front * tail_integral(g, s0, direction), direction)


def odds_of(x):
    with mp.workdps(430):
        return mpf(x) / (1 - mpf(x))


def odds_of_ratio(x, a, b):
    with mp.workdps(430):
        return mpf(x) * a / b


# (law, parameters, tails(x), x at a number of deviations from the middle)
CONTINUOUS = []


def on_line(law, parameters, tails, mean, deviation):
    CONTINUOUS.append((law, parameters, tails, lambda z: mean + deviation * z))


def on_log(law, parameters, tails, middle, width):
    CONTINUOUS.append((law, parameters, tails, lambda z: middle * mp.exp(width * z)))


def next_to_one(law, parameters, tails, middle, width):
    def at(z):
        with mp.workdps(60):
            return 1 - middle * mp.exp(-width * z)

    CONTINUOUS.append((law, parameters, tails, at))


for k in (2e5, 1e7, 1.5e7, 1e9, 3e9, 1e10, 1e12, 1e15):
    on_line(11, [k], lambda x, k=mpf(k): gamma_tails(k, x), mpf(k), mp.sqrt(k))
on_line(5, [6e9], lambda x: gamma_tails(mpf(3e9), x / 2), mpf(6e9), mp.sqrt(12e9))
on_line(12, [1e12, 1e-3], lambda x: gamma_tails(mpf(1e12), x / mpf(1e-3)), mpf(1e12) * mpf(1e-3), mpf(1e-3) * 10**6)
on_line(13, [1e12, 2, -2e12], lambda x: gamma_tails(mpf(1e12), (x + mpf(2e12)) / 2), mpf(0), mpf(2e6))
on_line(25, [3e9, 1e5], lambda x: gamma_tails(mpf(3e9), x * mpf(1e5)), mpf(3e4), mp.sqrt(3e9) / 10**5)
for a, b in ((3, 3e8), (3e8, 3e8), (1e6, 1e6), (1e6, 1e10), (2e7, 1e18), (5e3, 1e18), (1e10, 2e7), (0.5, 1e18), (1e13, 2),
             (1e15, 1e13), (1e20, 40), (0.5, 1e10), (1e9, 1e6), (300, 1e6)):
    width = mp.sqrt(1 / mpf(a) + 1 / mpf(b))
    if a <= b:
        on_log(1, [a, b], lambda x, a=mpf(a), b=mpf(b): beta_tails(a, b, odds_of(x)), mpf(a) / (mpf(a) + mpf(b)), width)
    else:
        next_to_one(1, [a, b], lambda x, a=mpf(a), b=mpf(b): beta_tails(a, b, odds_of(x)),
                    mpf(b) / (mpf(a) + mpf(b)), width)
    on_log(7, [2 * a, 2 * b], lambda x, a=mpf(a), b=mpf(b): beta_tails(a, b, odds_of_ratio(x, a, b)), mpf(1), width)

LOWER = [1e-300, 1e-290, 1e-15, 1e-3, 0.4999]
UPPER = [0.75, 0.999, 1 - 2.0**-40]

DISCRETE = []
for m in (1e9, 3e9, 1e10, 1e12, 1e15):
    DISCRETE.append((18, [m], lambda k, m=mpf(m): gamma_tails(k + 1, m)[::-1], m, m**0.5))
for n, p in ((1e12, 0.5), (1e15, 2.0**-20), (4e9, 0.01)):
    DISCRETE.append((2, [n, p], lambda k, n=mpf(n), p=mpf(p): beta_tails(n - k, k + 1, (1 - p) / p), n * p,
                     (n * p * (1 - p)) ** 0.5))
DISCRETE.append((3, [1e9, 0.25], lambda k: beta_tails(mpf(1e9), k + 1, mpf(1) / 3), 3e9, 12e9**0.5))
DISCRETE.append((4, [1e10, 1e5], lambda k: beta_tails(mpf(1e10), k + 1, 1 / mpf(10) ** 5), 1e15,
                 1e10))


def distance(tails, u):
    if u <= 0.5:
        return mp.log(tails[0] / u) if tails[0] > 0 else mpf(-10) ** 9
    return mp.log((1 - mpf(u)) / tails[1]) if tails[1] > 0 else mpf(10) ** 9


def root(f, u, start, stop):
    """The secant method from the normal quantile; where it leaves the bracket, bisection first."""
    z = mp.sqrt(2) * mp.erfinv(2 * mpf(u) - 1) if u > 1e-12 else -mp.sqrt(-2 * mp.log(mpf(u)))
    before, now = z, z + mpf("0.01")
    f_before, f_now = f(before), f(now)
    for _ in range(100):
        if abs(f_now) < mpf(10) ** -24 or f_now == f_before:
            return now
        step = f_now * (now - before) / (f_now - f_before)
        if abs(step) > 5 or not start < now - step < stop:
            for _ in range(14):
                middle = (start + stop) / 2
                start, stop = (middle, stop) if f(middle) < 0 else (start, middle)
            before, now = start, stop
            f_before, f_now = f(before), f(now)
            start, stop = mpf(-10) ** 9, mpf(10) ** 9
        else:
            before, f_before = now, f_now
            now -= step
            f_now = f(now)
    return now


def inputs(law, p):
    return [law] + [repr(float(v)) for v in (list(p) + [0] * 4)[:4]]


def digits(v):
    return mp.nstr(v, 20, min_fixed=0, max_fixed=0)


def write(stream, values):
    print(*values, file=stream, flush=True)


def reach(parameters):
    """How many deviations the roots may lie away: the logarithm of a law with a small shape has a long lower tail."""
    return 1500 if min(parameters) < 100 else 60


def continuous(cdf, quantile):
    for law, parameters, tails, at in CONTINUOUS:
        far = reach(parameters) if law in (1, 7) else 60
        for u in LOWER + UPPER:
            q = at(root(lambda z: distance(tails(at(z)), u), u, mpf(-far), mpf(60)))
            side = (lambda x: tails(x)[0]) if u <= 0.5 else (lambda x: -tails(x)[1])
            step = abs(at(mpf(10) ** -8) - at(mpf(0)))
            step = step if law == 13 else min(step, q * mpf(10) ** -8)
            slope = (side(q + step) - side(q - step)) / (2 * step)
            write(quantile, inputs(law, parameters) + [repr(u), digits(q), mp.nstr(abs(q) * slope / min(u, 1 - u), 5)])
            x = float(q)
            if (x == 0 and law != 13) or (x == 1 and law == 1):
                continue
            f = tails(mpf(x))[0]
            if f >= mpf("1e-300"):
                write(cdf, inputs(law, parameters) + [repr(x), digits(f)])


def discrete(cdf, quantile):
    for law, parameters, tails, mean, deviation in DISCRETE:
        for u in LOWER + UPPER:
            # The tails are smooth functions between the integers, too.
            z = root(lambda z: distance(tails(mpf(mean) + deviation * z), u), u, mpf(-60), mpf(60))
            k = mp.floor(mpf(mean) + deviation * z) - 2
            while distance(tails(k), u) < 0:
                k += 1
            assert distance(tails(k - 1), u) < 0
            write(quantile, inputs(law, parameters) + [repr(u), int(k), 0])
            f = tails(k)[0]
            if f >= mpf("1e-300"):
                write(cdf, inputs(law, parameters) + [repr(float(k)), digits(f)])


def student_median(quantile):
    for df in (0.5, 3, 4, 5, 6, 30):
        for i in (9, 18, 28, 40, 51):
            for u in (0.5 - 2.0**-i, 0.5 + 2.0**-i):
                # The central probability as a series in t, turned round by Newton's method.
                with mp.workdps(60):
                    v = mpf(df)
                    density = lambda t: (1 + t * t / v) ** (-(v + 1) / 2) / (mp.sqrt(v) * mp.beta(mpf(1) / 2, v / 2))
                    central = lambda t: mp.quad(density, [0, t])
                    t = (mpf(u) - mpf(1) / 2) / density(0)
                    for _ in range(6):
                        t -= (central(t) - (mpf(u) - mpf(1) / 2)) / density(t)
                    write(quantile, inputs(19, [df]) + [repr(u), digits(t), mp.nstr(abs(t) * density(t) / min(u, 1 - u), 5)])


def main():
    with open("large_laws_cdf.txt", "w") as cdf, open("large_laws_quantile.txt", "w") as quantile:
        student_median(quantile)
        discrete(cdf, quantile)
        continuous(cdf, quantile)


main()
