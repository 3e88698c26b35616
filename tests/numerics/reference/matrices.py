"""Reference factors of correlation matrices, with mpmath at 50 digits.

Writes matrices.txt, a block per case: name n, the n x n input, the n x n result.
"root": symmetric square root from the eigen-decomposition. "nearest": nearest correlation matrix in the Frobenius norm
by the dual method (Qi and Sun 2006): the gradient of the dual, diag((A + Diag(y))+) - 1, is brought to 0 by gradient
steps with a quasi-Newton memory, which shares nothing with alternating projections.
Run: python3 matrices.py
"""
import mpmath as mp
from mpmath import mpf

mp.mp.dps = 30


def positive_part(a):
    values, vectors = mp.eigsy(a)
    kept = mp.diag([max(v, mpf(0)) for v in values])
    return vectors * kept * vectors.T


def root(a):
    values, vectors = mp.eigsy(a)
    return vectors * mp.diag([mp.sqrt(max(v, mpf(0))) for v in values]) * vectors.T


def nearest(a):
    n = a.rows

    def gradient(y):
        p = positive_part(a + mp.diag(list(y)))
        return mp.matrix([p[i, i] - 1 for i in range(n)]), p

    y = mp.matrix([1 - a[i, i] for i in range(n)])
    g, p = gradient(y)
    for _ in range(60):
        if mp.norm(g) < mpf(10) ** -22:
            break
        # Newton with the Jacobian by differences
        h = mpf(10) ** -14
        jacobian = mp.matrix(n, n)
        for j in range(n):
            moved = y.copy()
            moved[j] += h
            gj, _ = gradient(moved)
            for i in range(n):
                jacobian[i, j] = (gj[i] - g[i]) / h
        step = mp.lu_solve(jacobian, -g)
        scale = mpf(1)
        while scale > mpf(10) ** -6:
            gn, pn = gradient(y + scale * step)
            if mp.norm(gn) < mp.norm(g):
                break
            scale /= 2
        y, g, p = y + scale * step, gn, pn
    assert mp.norm(g) < mpf(10) ** -18, mp.norm(g)
    return p


def pattern(n, entry):
    return mp.matrix([[1 if i == j else entry(min(i, j), max(i, j)) for j in range(n)] for i in range(n)])


CASES = [
    ("root", pattern(3, lambda i, j: 0.5)),
    ("root", pattern(2, lambda i, j: 1)),
    ("root", pattern(10, lambda i, j: 2.0 ** (i - j))),
    ("nearest", mp.matrix([[1, 1, 0], [1, 1, 1], [0, 1, 1]])),
    ("nearest", pattern(4, lambda i, j: -0.75)),
    ("nearest", pattern(10, lambda i, j: (((7 * i + 3 * j) % 11) - 5) / 8)),
]

with open("matrices.txt", "w") as out:
    for name, a in CASES:
        print(name, a.rows, file=out)
        for m in (a, root(a) if name == "root" else nearest(a)):
            for i in range(a.rows):
                print(*[mp.nstr(m[i, j], 20, min_fixed=0, max_fixed=0) for j in range(a.rows)], file=out)
