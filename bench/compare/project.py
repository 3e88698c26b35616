"""The model `project` of make_model.py on vectors, an element for each iteration; draws of SciPy's distributions.

usage: project.py normal|mixed ITERATIONS
"""
import sys

import numpy as np
from scipy import stats

kind, n = sys.argv[1], int(sys.argv[2])
generator = np.random.default_rng(1)


def draw(law):
    return law.rvs(size=n, random_state=generator)


normal = stats.norm(100, 15)
if kind == "mixed":
    x = [draw(normal), draw(stats.gamma(2.5, scale=40)), draw(stats.beta(2, 5)) * 350, draw(stats.triang(0.5, 60, 80)),
         draw(stats.beta(3, 3, 60, 80)), draw(stats.poisson(4)) * 25, draw(stats.t(7)) * 12 + 100,
         draw(stats.weibull_min(2, scale=113)), draw(stats.lognorm(0.15, scale=np.exp(4.59))),
         draw(stats.binom(200, 0.5))]
else:
    x = [draw(normal) for _ in range(10)]
volume, price, npv, total, worst = x[0] * 10, x[2] / 10, 0, 0, np.inf
for year in range(1, 11):
    revenue = volume * price
    cost = volume * (x[4] / 20 * (1 + x[5] / 10000) ** year)
    margin = revenue - cost - (x[6] * 5 + x[7] * year / 10)
    cash = margin - np.maximum(0, margin * x[9] / 400) - x[8] * (20 if year <= 2 else 2)
    npv = npv + cash / 1.1**year
    total = total + revenue
    worst = np.minimum(worst, cash)
    volume = volume * (1 + x[1] / 5000)
    price = price * (1 + x[3] / 10000)
for sample in (npv, total, worst):
    print(np.mean(sample), np.median(sample))
