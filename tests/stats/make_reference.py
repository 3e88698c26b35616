#!/usr/bin/python3
"""Writes reference.inc: every statistic of a few series, computed from the definitions with exact fractions and
50-digit arithmetic, independently of the code under test. Run in this folder: ./make_reference.py > reference.inc"""
from fractions import Fraction

from mpmath import mp, mpf, sqrt, log, exp, erfc

mp.dps = 50
MISSING = "MissingValue"
INF, NAN = "kInfinity", "kNaN"

SERIES = {
    "one": [2.5],
    "two": [1.0, 4.0],
    "three": [1.0, 2.0, 7.0],
    "four": [-2.0, -1.0, 1.0, 2.0],
    "ramp": [float(i) for i in range(1, 11)],
    "skewed": [3.5, 0.5, 15.25, 0.75, 7.0, 1.25, 2.0],
    "ties": [3.0, 1.0, 1.0, 8.0, 1.0, 8.0, 5.0, 2.0],
    "constant": [4.0] * 6,
    "offset": [1e9 + x for x in (4.0, 7.0, 13.0, 16.0, 1.0, 9.0)],
    "signs": [-3.5, 0.0, 2.25, -1.0, 6.5],
    "negative": [-6.5, -0.25, -2.0, -9.0, -2.5, -1.25],
}


def q(value):
    """mpf of a Fraction."""
    return mpf(value.numerator) / mpf(value.denominator)


def number(value):
    if isinstance(value, str):
        return value
    return repr(float(value if isinstance(value, mpf) else q(Fraction(value))))


def quantile(xs, p):
    """Hyndman and Fan, type 7."""
    ordered = sorted(xs)
    position = (len(xs) - 1) * Fraction(p)
    below = position.numerator // position.denominator
    above = min(below + 1, len(xs) - 1)
    return ordered[below] + (position - below) * (ordered[above] - ordered[below])


def central(xs):
    n = len(xs)
    mean = sum(xs) / n
    return mean, [sum((x - mean) ** k for x in xs) for k in (2, 3, 4)]


def statistics(xs):
    n = len(xs)
    mean, (m2, m3, m4) = central(xs)
    q1, median, q3 = (quantile(xs, Fraction(k, 4)) for k in (1, 2, 3))
    out = {1: n, 2: 0, 3: n, 4: min(xs), 5: max(xs), 6: xs.count(min(xs)), 7: xs.count(max(xs)),
           8: max(xs) - min(xs), 9: q1, 10: median, 11: q3, 12: sum(xs), 13: mean, 14: m2 / n,
           15: m2 / (n - 1) if n > 1 else 0, 16: sqrt(q(m2 / n)), 17: sqrt(q(m2 / (n - 1))) if n > 1 else 0,
           18: sqrt(q(m2 / n)) / q(mean) if mean != 0 else 0}
    g1 = q(m3 / n) / q(m2 / n) ** mpf("1.5") if m2 else NAN
    out[19] = g1
    # n > 2 is what the condition on n - 2 n / c comes to when n equals c.
    out[20] = MISSING if n <= 2 else NAN if g1 is NAN else sqrt(mpf((n - 1) * n)) * g1 / (n - 2)
    out[21] = (q1 - 2 * median + q3) / (q3 - q1) if q3 > q1 else 0
    out[22] = INF if m4 else NAN
    pairs = (n - 2) * (n - 3)
    out[23] = MISSING if pairs <= 0 else out[22] if n > 1 else NAN
    out[24] = 0
    out[25] = out[26] = mean if n > 1 else 0
    out[27] = MISSING if n <= 2 else sqrt(q(Fraction(6 * n * (n - 1), (n - 2) * (n + 1) * (n + 3))))
    if pairs <= 0:
        out[28] = MISSING
    else:
        s2 = Fraction(6 * n * (n - 1), (n + 1) * (n - 2) * (n + 3))
        out[28] = sqrt(q(4 * (n * n - 1) * s2 / ((n + 5) * (n - 3)))) if s2 else 0
    out[29] = sum(abs(x - mean) for x in xs) / n
    out[30] = quantile([abs(x - median) for x in xs], Fraction(1, 2))
    if min(xs) > 0:
        logs = [log(q(x)) for x in xs]
        center = sum(logs) / n
        out[31] = exp(center)
        out[32] = exp(sqrt(sum((x - center) ** 2 for x in logs) / (n - 1))) if n > 1 else MISSING
        out[33] = n / sum(1 / x for x in xs)
    else:
        out[31] = out[32] = out[33] = MISSING
    return out


def phi(x):
    return erfc(-x / sqrt(mpf(2))) / 2


def normal_quantile(p):
    return mp.findroot(lambda x: phi(x) - p, mpf(0) if abs(p - mpf("0.5")) < mpf("0.4") else -2 if p < mpf("0.5") else 2)


def capability(xs, lsl, usl, target):
    """Indices 1 to 23; an absent limit is None."""
    n = len(xs)
    mean, (m2, _, _) = central(xs)
    m, s = q(mean), sqrt(q(m2 / (n - 1)))
    t = q(target)
    off2 = (m - t) ** 2
    tau, boyles = sqrt(s * s + off2), sqrt(s * s * (n - 1) / n + off2)
    low = None if lsl is None else m - q(lsl)
    up = None if usl is None else q(usl) - m
    both = low is not None and up is not None
    two = lambda spread: (low + up) / spread if both else MISSING
    one = lambda side, spread: MISSING if side is None else side / spread
    worse = lambda spread: min(low, up) / spread if both else MISSING
    below = mpf(0) if low is None else phi(-low / s)
    above = mpf(0) if up is None else phi(-up / s)
    total = below + above
    out = [two(6 * s), one(low, 3 * s), one(up, 3 * s), worse(3 * s)] * 2
    out += [two(6 * tau), two(6 * boyles), two(mpf("5.15") * s), worse(mpf("2.575") * s), worse(3 * tau),
            worse(3 * tau), one(low, s), one(up, s), -normal_quantile(total) if total else INF, below, above, total]
    return out + [1000000 * p for p in (below, above, total)]


LIMITS = {
    "both": (-4.0, 14.0, 5.0),
    "lowerOnly": (-1.5, None, 4.0),
    "upperOnly": (None, 11.0, 3.25),
    "none": (None, None, 4.5),
    "meanOutside": (5.0, 6.0, 5.5),
}


def main():
    print("// Written by make_reference.py; not edited by hand.")
    print("const std::vector<Series> allSeries{")
    for name, raw in SERIES.items():
        xs = [Fraction(x) for x in raw]
        mean, moments = central(xs)
        print('    {"%s",\n     {%s},\n     {%s},\n     {' % (
            name, ", ".join(number(x) for x in xs), ", ".join(number(x) for x in [mean] + moments)))
        for identifier, value in sorted(statistics(xs).items()):
            print("         {%d, %s}," % (identifier, number(value)))
        print("     }},")
    print("};\n")
    print("const std::vector<CapabilityCase> capabilityCases{")
    xs = [Fraction(x) for x in SERIES["skewed"]]
    for name, (lsl, usl, target) in LIMITS.items():
        limits = [None if x is None else Fraction(x) for x in (lsl, usl)]
        shown = ", ".join(MISSING if x is None else number(x) for x in limits + [Fraction(target)])
        print('    {"%s", %s, {' % (name, shown))
        for value in capability(xs, *limits, Fraction(target)):
            print("        %s," % number(value))
        print("    }},")
    print("};")


if __name__ == "__main__":
    main()
