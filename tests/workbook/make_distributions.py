#!/usr/bin/env python3
"""Writes distributions.txt: worksheet formulas with values computed by mpmath from the laws' definitions.

Usage: python3 make_distributions.py > distributions.txt
"""
from mpmath import (betainc, binomial, erf, erfc, exp, factorial, findroot, gamma, gammainc, gammaprod, inf, log,
                    loggamma, mp, mpf, nstr, pi, quad, sqrt)

mp.dps = 40


def Phi(z): return erfc(-mpf(z) / sqrt(2)) / 2
def phi(z): return exp(-mpf(z) ** 2 / 2) / sqrt(2 * pi)
def gamma_cdf(x, a): return gammainc(a, 0, mpf(x), regularized=True)
def gamma_sf(x, a): return gammainc(a, mpf(x), inf, regularized=True)
def beta_cdf(x, a, b): return betainc(a, b, 0, mpf(x), regularized=True)
def chi_cdf(x, n): return gamma_cdf(mpf(x) / 2, mpf(n) / 2)
def chi_sf(x, n): return gamma_sf(mpf(x) / 2, mpf(n) / 2)
def chi_pdf(x, n): return exp((mpf(n) / 2 - 1) * log(mpf(x)) - mpf(x) / 2 - loggamma(mpf(n) / 2) - mpf(n) / 2 * log(2))


def t_sf(t, n):
    """P(T > t) for t >= 0."""
    n = mpf(n)
    return beta_cdf(n / (n + mpf(t) ** 2), n / 2, mpf(1) / 2) / 2


def t_pdf(t, n):
    n = mpf(n)
    return gamma((n + 1) / 2) / (sqrt(n * pi) * gamma(n / 2)) * (1 + mpf(t) ** 2 / n) ** (-(n + 1) / 2)


def f_cdf(x, m, n): return beta_cdf(m * mpf(x) / (m * mpf(x) + n), mpf(m) / 2, mpf(n) / 2)
def f_sf(x, m, n): return beta_cdf(mpf(n) / (m * mpf(x) + n), mpf(n) / 2, mpf(m) / 2)
def f_pdf(x, m, n):
    x, m, n = mpf(x), mpf(m), mpf(n)
    return sqrt((m * x) ** m * n ** n / (m * x + n) ** (m + n)) / (x * gamma(m / 2) * gamma(n / 2) / gamma((m + n) / 2))


def binom(k, n, p): return binomial(n, k) * mpf(p) ** k * (1 - mpf(p)) ** (n - k)
def hyper(k, n, m, total): return binomial(m, k) * binomial(total - m, n - k) / binomial(total, n)
def poisson(k, mean): return mpf(mean) ** k * exp(-mpf(mean)) / factorial(k)
def negbinom(k, r, p): return binomial(k + r - 1, r - 1) * mpf(p) ** r * (1 - mpf(p)) ** k


def inverse(cdf, p, low, high):
    """The x with cdf(x) = p by bisection of an increasing function."""
    low, high, p = mpf(low), mpf(high), mpf(p)
    for _ in range(140):
        middle = (low + high) / 2
        if cdf(middle) < p:
            low = middle
        else:
            high = middle
    return (low + high) / 2


def number(text):
    """A decimal constant as the nearest double, which is what a worksheet works with."""
    return mpf(float(text))


q = number
half = mpf(1) / 2
VALUES = [
    ("# Normal and lognormal", None),
    ("NORM.DIST(42,40,1.5,TRUE)", Phi(mpf(4) / 3)),
    ("NORM.DIST(42,40,1.5,FALSE)", phi(mpf(4) / 3) / q("1.5")),
    ("NORMDIST(42,40,1.5,TRUE)", Phi(mpf(4) / 3)),
    ("NORM.DIST(-30,0,1,TRUE)", Phi(-30)),
    ("NORM.S.DIST(1.333333,TRUE)", Phi(q("1.333333"))),
    ("NORM.S.DIST(1.333333,FALSE)", phi(q("1.333333"))),
    ("NORMSDIST(-10)", Phi(-10)),
    ("NORM.INV(0.908789,40,1.5)", 40 + q("1.5") * inverse(Phi, q("0.908789"), -40, 40)),
    ("NORMINV(0.001,0,1)", inverse(Phi, q("0.001"), -40, 40)),
    ("NORM.S.INV(0.908789)", inverse(Phi, q("0.908789"), -40, 40)),
    ("NORM.S.INV(0.6)", inverse(Phi, q("0.6"), -40, 40)),
    ("NORM.S.INV(0.999)", inverse(Phi, q("0.999"), -40, 40)),
    ("NORMSINV(1E-300)", inverse(Phi, q("1e-300"), -40, 40)),
    ("NORMSINV(1E-10)", inverse(Phi, q("1e-10"), -40, 40)),
    ("PHI(0.75)", phi(q("0.75"))),
    ("GAUSS(2)", erf(sqrt(2)) / 2),
    ("GAUSS(0.0001)", erf(q("0.0001") / sqrt(2)) / 2),
    ("LOGNORM.DIST(4,3.5,1.2,TRUE)", Phi((log(4) - q("3.5")) / q("1.2"))),
    ("LOGNORM.DIST(4,3.5,1.2,FALSE)", phi((log(4) - q("3.5")) / q("1.2")) / (4 * q("1.2"))),
    ("LOGNORMDIST(4,3.5,1.2)", Phi((log(4) - q("3.5")) / q("1.2"))),
    ("LOGNORM.INV(0.039084,3.5,1.2)", exp(q("3.5") + q("1.2") * inverse(Phi, q("0.039084"), -40, 40))),
    ("LOGINV(0.5,1,2)", exp(mpf(1))),
    ("# Gamma, exponential, Weibull, beta", None),
    ("GAMMA(2.5)", gamma(q("2.5"))),
    ("GAMMA(-3.75)", gamma(q("-3.75"))),
    ("GAMMALN(4)", loggamma(4)),
    ("GAMMALN.PRECISE(4.5)", loggamma(q("4.5"))),
    ("GAMMA.DIST(10.00001131,9,2,TRUE)", gamma_cdf(q("10.00001131") / 2, 9)),
    ("GAMMA.DIST(10.00001131,9,2,FALSE)",
     exp(8 * log(q("10.00001131")) - q("10.00001131") / 2 - loggamma(9) - 9 * log(2))),
    ("GAMMADIST(1E-5,0.5,3,TRUE)", gamma_cdf(q("1e-5") / 3, half)),
    ("GAMMA.INV(0.068094,9,2)", 2 * inverse(lambda x: gamma_cdf(x, 9), q("0.068094"), 0, 100)),
    ("GAMMAINV(0.99,2,1)", inverse(lambda x: gamma_cdf(x, 2), q("0.99"), 0, 100)),
    ("EXPON.DIST(0.2,10,TRUE)", 1 - exp(-q("0.2") * 10)),
    ("EXPON.DIST(0.2,10,FALSE)", 10 * exp(-q("0.2") * 10)),
    ("EXPONDIST(1E-12,1,TRUE)", 1 - exp(-q("1e-12"))),
    ("WEIBULL.DIST(105,20,100,TRUE)", 1 - exp(-(mpf(105) / 100) ** 20)),
    ("WEIBULL.DIST(105,20,100,FALSE)", mpf(20) / 100 * (mpf(105) / 100) ** 19 * exp(-(mpf(105) / 100) ** 20)),
    ("WEIBULL(1E-6,2,1,TRUE)", 1 - exp(-q("1e-6") ** 2)),
    ("BETA.DIST(2,8,10,TRUE,1,3)", beta_cdf(half, 8, 10)),
    ("BETA.DIST(2,8,10,FALSE,1,3)", half ** 7 * half ** 9 / (gamma(8) * gamma(10) / gamma(18)) / 2),
    ("BETADIST(2,8,10,1,3)", beta_cdf(half, 8, 10)),
    ("BETADIST(0.3,2,3)", beta_cdf(q("0.3"), 2, 3)),
    ("BETA.INV(0.685470581,8,10,1,3)", 1 + 2 * inverse(lambda x: beta_cdf(x, 8, 10), q("0.685470581"), 0, 1)),
    ("BETAINV(0.1,0.5,2)", inverse(lambda x: beta_cdf(x, half, 2), q("0.1"), 0, 1)),
    ("# Student's t, F, chi-square", None),
    ("T.DIST(60,1,TRUE)", 1 - t_sf(60, 1)),
    ("T.DIST(8,3,FALSE)", t_pdf(8, 3)),
    ("T.DIST(-2,5,TRUE)", t_sf(2, 5)),
    ("T.DIST.RT(1.959999998,60)", t_sf(q("1.959999998"), 60)),
    ("T.DIST.2T(1.959999998,60)", 2 * t_sf(q("1.959999998"), 60)),
    ("TDIST(1.959999998,60,2)", 2 * t_sf(q("1.959999998"), 60)),
    ("TDIST(1.959999998,60.9,1.5)", t_sf(q("1.959999998"), 60)),
    ("T.INV(0.75,2)", inverse(lambda t: 1 - t_sf(t, 2), q("0.75"), 0, 100)),
    ("T.INV(0.025,7)", -inverse(lambda t: 1 - t_sf(t, 7), 1 - q("0.025"), 0, 100)),
    ("T.INV.2T(0.546449,60)", inverse(lambda t: 1 - 2 * t_sf(t, 60), 1 - q("0.546449"), 0, 100)),
    ("TINV(0.05,10)", inverse(lambda t: 1 - 2 * t_sf(t, 10), 1 - q("0.05"), 0, 100)),
    ("F.DIST(15.2069,6,4,TRUE)", f_cdf(q("15.2069"), 6, 4)),
    ("F.DIST(15.2069,6,4,FALSE)", f_pdf(q("15.2069"), 6, 4)),
    ("F.DIST.RT(15.20686486,6,4)", f_sf(q("15.20686486"), 6, 4)),
    ("FDIST(15.20686486,6,4)", f_sf(q("15.20686486"), 6, 4)),
    ("F.INV(0.01,6,4)", inverse(lambda x: f_cdf(x, 6, 4), q("0.01"), 0, 10)),
    ("F.INV.RT(0.01,6,4)", inverse(lambda x: 1 - f_sf(x, 6, 4), 1 - q("0.01"), 0, 1000)),
    ("FINV(0.5,3.9,8.1)", inverse(lambda x: f_cdf(x, 3, 8), half, 0, 10)),
    ("CHISQ.DIST(0.5,1,TRUE)", chi_cdf(half, 1)),
    ("CHISQ.DIST(2,3,FALSE)", chi_pdf(2, 3)),
    ("CHISQ.DIST.RT(18.307,10)", chi_sf(q("18.307"), 10)),
    ("CHIDIST(200,10)", chi_sf(200, 10)),
    ("CHISQ.INV(0.93,1)", inverse(lambda x: chi_cdf(x, 1), q("0.93"), 0, 100)),
    ("CHISQ.INV(0.6,2.9)", inverse(lambda x: chi_cdf(x, 2), q("0.6"), 0, 100)),
    ("CHISQ.INV.RT(0.050001,10)", inverse(lambda x: 1 - chi_sf(x, 10), 1 - q("0.050001"), 0, 100)),
    ("CHIINV(0.05,10)", inverse(lambda x: 1 - chi_sf(x, 10), 1 - q("0.05"), 0, 100)),
    ("# Discrete", None),
    ("BINOM.DIST(6,10,0.5,FALSE)", binom(6, 10, half)),
    ("BINOM.DIST(6.9,10.9,0.5,TRUE)", sum(binom(k, 10, half) for k in range(7))),
    ("BINOMDIST(0,10,0,TRUE)", mpf(1)),
    ("BINOM.DIST.RANGE(60,0.75,48)", binom(48, 60, q("0.75"))),
    ("BINOM.DIST.RANGE(60,0.75,45,50)", sum(binom(k, 60, q("0.75")) for k in range(45, 51))),
    ("BINOM.INV(6,0.5,0.75)", mpf(4)),
    ("CRITBINOM(100,0.5,0.1)", mpf(next(
        k for k in range(101) if sum(binom(i, 100, half) for i in range(k + 1)) >= q("0.1")))),
    ("NEGBINOM.DIST(10,5,0.25,TRUE)", sum(negbinom(k, 5, q("0.25")) for k in range(11))),
    ("NEGBINOM.DIST(10,5,0.25,FALSE)", negbinom(10, 5, q("0.25"))),
    ("NEGBINOMDIST(10.9,5.9,0.25)", negbinom(10, 5, q("0.25"))),
    ("POISSON.DIST(2,5,TRUE)", sum(poisson(k, 5) for k in range(3))),
    ("POISSON.DIST(2.7,5,FALSE)", poisson(2, 5)),
    ("POISSON(0,0,FALSE)", mpf(1)),
    ("HYPGEOM.DIST(1,4,8,20,TRUE)", sum(hyper(k, 4, 8, 20) for k in range(2))),
    ("HYPGEOM.DIST(1,4,8,20,FALSE)", hyper(1, 4, 8, 20)),
    ("HYPGEOM.DIST(30,100,600,2000,TRUE)", sum(hyper(k, 100, 600, 2000) for k in range(31))),
    ("HYPGEOM.DIST(36,100,600,2000,TRUE)", sum(hyper(k, 100, 600, 2000) for k in range(37))),
    ("HYPGEOM.DIST(8,100,600,2000,TRUE)", sum(hyper(k, 100, 600, 2000) for k in range(9))),
    ("HYPGEOM.DIST(4,4,8,20,TRUE)", mpf(1)),
    ("HYPGEOMDIST(1,4,8,20)", hyper(1, 4, 8, 20)),
    ("# Confidence intervals", None),
    ("CONFIDENCE.NORM(0.05,2.5,50)", -inverse(Phi, q("0.05") / 2, -40, 0) * q("2.5") / sqrt(50)),
    ("CONFIDENCE(0.05,2.5,50.9)", -inverse(Phi, q("0.05") / 2, -40, 0) * q("2.5") / sqrt(50)),
    ("CONFIDENCE.T(0.05,1,50)", inverse(lambda t: 1 - t_sf(t, 49), 1 - q("0.05") / 2, 0, 100) / sqrt(50)),
]

OTHERS = """# Arguments that no law has, errors, texts, blanks
A1: "text"
A2: #N/A
B1: "a"
B2: "b"
=NORM.DIST(1,0,0,TRUE) -> #NUM!
=NORMDIST(A1,A2,1,TRUE) -> #VALUE!
=NORM.S.DIST(A9,TRUE) -> 0.5
=NORMSDIST(A2) -> #N/A
=NORM.INV(0,0,1) -> #NUM!
=NORM.INV(1,0,1) -> #NUM!
=NORMINV(0.5,0,-1) -> #NUM!
=NORM.S.INV(1) -> #NUM!
=NORMSINV(0) -> #NUM!
=PHI(A1) -> #VALUE!
=GAUSS(0) -> 0
=LOGNORM.DIST(0,1,1,TRUE) -> #NUM!
=LOGNORMDIST(1,1,0) -> #NUM!
=LOGNORM.INV(0,1,1) -> #NUM!
=LOGINV(0.5,1,0) -> #NUM!
=GAMMA(0) -> #NUM!
=GAMMA(-2) -> #NUM!
=GAMMALN(0) -> #NUM!
=GAMMALN.PRECISE(A1) -> #VALUE!
=GAMMA.DIST(-1,1,1,TRUE) -> #NUM!
=GAMMA.DIST(0,1,2,FALSE) -> 0.5
=GAMMADIST(1,0,1,TRUE) -> #NUM!
=GAMMA.INV(0,1,1) -> 0
=GAMMA.INV(1,1,1) -> #NUM!
=GAMMAINV(-0.1,1,1) -> #NUM!
=EXPON.DIST(-1,1,TRUE) -> #NUM!
=EXPONDIST(1,0,TRUE) -> #NUM!
=WEIBULL.DIST(-1,1,1,TRUE) -> #NUM!
=WEIBULL(1,0,1,TRUE) -> #NUM!
=BETA.DIST(4,8,10,TRUE,1,3) -> #NUM!
=BETA.DIST(0,1,3,FALSE) -> 3
=BETA.DIST(3,3,1,FALSE,1,3) -> 1.5
=BETA.DIST(0,1,1,FALSE) -> 1
=BETA.DIST(0,2,1,FALSE) -> 0
=BETA.DIST(0,0.5,1,FALSE) -> #NUM!
=BETA.DIST(0.5,0,1,TRUE) -> #NUM!
=BETADIST(2,8,10,3,1) -> #NUM!
=BETA.INV(0,1,1) -> #NUM!
=BETA.INV(1,2,2) -> #NUM!
=BETAINV(0.5,0,1) -> #NUM!
=T.DIST(1,0.5,TRUE) -> #DIV/0!
=T.DIST(1,0,FALSE) -> #DIV/0!
=T.DIST(1,-1,TRUE) -> #NUM!
=NEGBINOM.DIST(10,5,0,TRUE) -> #NUM!
=T.DIST.RT(1,0) -> #NUM!
=T.DIST.2T(-1,5) -> #NUM!
=TDIST(-1,5,1) -> #NUM!
=TDIST(1,5,3) -> #NUM!
=T.INV(0,5) -> #NUM!
=T.INV(0.5,5) -> 0 +- 1E-15
=T.INV.2T(1,5) -> 0 +- 1E-15
=T.INV.2T(0,5) -> #NUM!
=TINV(1.1,5) -> #NUM!
=F.DIST(-1,1,1,TRUE) -> #NUM!
=F.DIST.RT(1,0,1) -> #NUM!
=FDIST(-1,1,1) -> #NUM!
=F.INV(1,2,2) -> #NUM!
=F.INV(0,2,2) -> 0
=F.INV.RT(0,2,2) -> #NUM!
=F.INV.RT(1,2,2) -> 0
=FINV(-0.1,2,2) -> #NUM!
=CHISQ.DIST(-1,1,TRUE) -> #NUM!
=CHISQ.DIST.RT(1,0) -> #NUM!
=CHIDIST(-1,1) -> #NUM!
=CHISQ.INV(1,1) -> #NUM!
=CHISQ.INV(0,1) -> 0
=CHISQ.INV.RT(0,1) -> #NUM!
=CHIINV(1.1,1) -> #NUM!
=BINOM.DIST(11,10,0.5,TRUE) -> #NUM!
=BINOM.DIST(-1,10,0.5,TRUE) -> #NUM!
=BINOMDIST(1,10,1.1,TRUE) -> #NUM!
=BINOM.DIST.RANGE(10,0.5,6,5) -> #NUM!
=BINOM.DIST.RANGE(10,0.5,2,11) -> #NUM!
=BINOM.INV(-1,0.5,0.5) -> #NUM!
=BINOM.INV(6,0.5,1.1) -> #NUM!
=BINOM.INV(6,0.5,0) -> #NUM!
=BINOM.INV(6,0.5,1) -> #NUM!
=CRITBINOM(6,0.5,1) -> #NUM!
=CRITBINOM(6,-0.1,0.5) -> #NUM!
=NEGBINOM.DIST(-1,5,0.25,TRUE) -> #NUM!
=NEGBINOM.DIST(1,0,0.25,TRUE) -> #NUM!
=NEGBINOMDIST(1,5,1.1) -> #NUM!
=POISSON.DIST(-1,5,TRUE) -> #NUM!
=POISSON(1,-1,TRUE) -> #NUM!
=HYPGEOM.DIST(5,4,8,20,TRUE) -> #NUM!
=HYPGEOM.DIST(1,21,8,20,TRUE) -> #NUM!
=HYPGEOMDIST(-1,4,8,20) -> #NUM!
=CONFIDENCE(0,1,10) -> #NUM!
=CONFIDENCE.NORM(0.05,0,10) -> #NUM!
=CONFIDENCE.T(0.05,1,1) -> #DIV/0!
=CONFIDENCE.T(0.05,1,0) -> #NUM!
=SUM(NORM.S.DIST({-1,1},TRUE)) -> 1
# Tests of hypotheses; a range of texts has no numbers
C1: 3
C2: 4
C3: 5
C4: 8
C5: 9
C6: 1
C7: 2
C8: 4
C9: 5
D1: 6
D2: 19
D3: 3
D4: 2
D5: 14
D6: 4
D7: 5
D8: 17
D9: 1
"""


def students_t_test():
    """The documentation's samples, all types."""
    a = [mpf(x) for x in (3, 4, 5, 8, 9, 1, 2, 4, 5)]
    b = [mpf(x) for x in (6, 19, 3, 2, 14, 4, 5, 17, 1)]
    n = len(a)
    mean = lambda v: sum(v) / n
    var = lambda v: sum((x - mean(v)) ** 2 for x in v) / (n - 1)
    d = [x - y for x, y in zip(a, b)]
    t1 = abs(mean(d)) / sqrt(var(d) / n)
    t2 = abs(mean(a) - mean(b)) / sqrt((var(a) + var(b)) / n)
    welch = ((var(a) + var(b)) / n) ** 2 / (((var(a) / n) ** 2 + (var(b) / n) ** 2) / (n - 1))
    f = var(a) / var(b)
    z = (mean(a) - 4) / sqrt(var(a) / n)
    return [
        ("T.TEST(C1:C9,D1:D9,2,1)", 2 * t_sf(t1, n - 1)),
        ("TTEST(C1:C9,D1:D9,1,1)", t_sf(t1, n - 1)),
        ("T.TEST(C1:C9,D1:D9,2,2)", 2 * t_sf(t2, 2 * n - 2)),
        ("T.TEST(C1:C9,D1:D9,2,3)", 2 * t_sf(t2, welch)),
        ("F.TEST(C1:C9,D1:D9)", 2 * min(f_cdf(f, n - 1, n - 1), f_sf(f, n - 1, n - 1))),
        ("FTEST(D1:D9,C1:C9)", 2 * min(f_cdf(f, n - 1, n - 1), f_sf(f, n - 1, n - 1))),
        ("Z.TEST(C1:C9,4)", Phi(-z)),
        ("ZTEST(C1:C9,4,2)", Phi(-(mean(a) - 4) / 2 * 3)),
        ("CHISQ.TEST({58,35;11,25;10,23},{45.35,47.65;17.56,18.44;16.09,16.91})", chi_sf(sum(
            (o - q(e)) ** 2 / q(e) for o, e in zip((58, 35, 11, 25, 10, 23),
                                                   ("45.35", "47.65", "17.56", "18.44", "16.09", "16.91"))), 2)),
        ("CHITEST({10,20,30},{20,20,20})", chi_sf(10, 2)),
    ]


TAIL = """=T.TEST(C1:C9,D1:D8,2,1) -> #N/A
=T.TEST(C1:C9,D1:D9,3,2) -> #NUM!
=T.TEST(C1:C9,D1:D9,2,4) -> #NUM!
=T.TEST(B1:B2,B1:B2,2,2) -> #DIV/0!
=TTEST(C1:C9,D1:D9,"x",1) -> #VALUE!
=F.TEST(C1:C9,B1:B2) -> #DIV/0!
=FTEST(A2,C1:C9) -> #N/A
=CHISQ.TEST({1,2},{1,2,3}) -> #N/A
=CHISQ.TEST({1,2},{0,2}) -> #DIV/0!
=CHITEST({1,2},{-1,2}) -> #NUM!
=Z.TEST(B1:B2,4) -> #N/A
=Z.TEST(C1:C9,4,0) -> #NUM!
=ZTEST({2,2},4) -> #DIV/0!
"""

print("# Expected values: computed from the laws' definitions with mpmath (40 digits) by make_distributions.py; domains and")
print("# errors as the functions' documentation states them.")


def show(lines):
    for formula, value in lines:
        print(formula if value is None else f"={formula} -> {nstr(value, 17, min_fixed=-5, max_fixed=17)}".replace("e-", "E-"))


show(VALUES)
print(OTHERS, end="")
show(students_t_test())
print(TAIL, end="")
print("edit D1: 10")
b = [mpf(x) for x in (10, 19, 3, 2, 14, 4, 5, 17, 1)]
a = [mpf(x) for x in (3, 4, 5, 8, 9, 1, 2, 4, 5)]
d = [x - y for x, y in zip(a, b)]
m = sum(d) / 9
t = abs(m) / sqrt(sum((x - m) ** 2 for x in d) / 72)
show([("T.TEST(C1:C9,D1:D9,2,1)", 2 * t_sf(t, 8))])
print("edit A1: 1")
show([("PHI(A1)", phi(1)), ("NORM.DIST(A1,0,1,TRUE)", Phi(1)), ("GAMMALN.PRECISE(A1)", mpf(0))])
