# Computes what plate shows by other means:
#   python3 golden.py > golden.txt
import numpy as np
import scipy.sparse as sp
import scipy.sparse.linalg as solvers

n, radius, hot = 200, 20, 100.0
at = np.arange(1, n + 1) - (n + 1) / 2
free = at[:, None] ** 2 + at[None, :] ** 2 > radius**2
line = sp.diags([-1.0, 2.0, -1.0], [-1, 0, 1], shape=(n, n))
whole = (sp.kron(sp.identity(n), line) + sp.kron(line, sp.identity(n))).tocsr()
inside = free.ravel(order="F")
A = whole[inside][:, inside].tocsc()
warm = -np.asarray(whole[inside][:, ~inside].sum(axis=1)).ravel()
cold = np.asarray(whole[inside].sum(axis=1)).ravel()
T = solvers.spsolve(A, hot * warm)
grid = np.zeros(n * n)
grid[inside] = T
grid = grid.reshape((n, n), order="F")
given, lost = (warm * (hot - T)).sum(), (cold * T).sum()
modes = np.sort(solvers.eigsh(A, 3, sigma=0)[0])
top = solvers.eigsh(A, 1, sigma=8.0)[0][0]


def row(name, numbers):
    texts = ["%.4g" % x for x in numbers]
    width = max(map(len, texts)) + 2
    print(f"{name} (1x{len(texts)})={len(texts)} elements, dense real  = ")
    print("".join(text.rjust(width) for text in texts))


row("points", [A.shape[0]])
row("given", [given])
row("balanced", [abs(given - lost) < 1e-10 * given])
row("across", [grid[20 * k - 1, n // 2 - 1] for k in range(1, 5)])
row("modes", modes)
row("is_largest", [abs(8 - modes[0] - top) < 1e-9])
