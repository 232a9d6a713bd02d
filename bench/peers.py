"""The peers' rows in NumPy and SciPy: prints ROW/IMPLEMENTATION and the best time in seconds."""
import os
import sys
import tempfile
import time

import numpy as np
import scipy.io
import scipy.linalg
import scipy.sparse as sp
import scipy.special as special
import scipy.sparse.linalg as solvers


def best(work, repeats=5):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
    return min(times)


def load_text():
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_numbers.txt")
    return best(lambda: np.loadtxt(name), 2) if os.path.exists(name) else None


def save_text():
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_numpy.txt")
    numbers = np.asfortranarray(np.random.default_rng(3).random((100000, 10)))
    seconds = best(lambda: np.savetxt(name, numbers, "%23.13g"), 2)
    os.remove(name)
    return seconds


def save_data():
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_scipy.mat")
    numbers = np.asfortranarray(np.random.default_rng(3).random((4000, 3000)))
    seconds = best(lambda: scipy.io.savemat(name, {"x": numbers}), 3)
    os.remove(name)
    return seconds


def load_data():
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_data.mat")
    return best(lambda: scipy.io.loadmat(name), 3) if os.path.exists(name) else None


random = np.random.default_rng(1)
square = np.asfortranarray(random.random((1000, 1000)))
flat = square.ravel(order="F")
large = np.asfortranarray(random.random((2000, 2000)))
gather_index = random.integers(0, 1000000, 1000000)
block_index = random.integers(0, 2000, 1000)


def append_loop():
    values = np.empty(0)
    for k in range(100000):
        values = np.append(values, k)


triplet_i = random.integers(0, 10000, 1000000)
triplet_j = random.integers(0, 10000, 1000000)
triplet_s = random.random(1000000)
sparse = sp.coo_matrix((triplet_s, (triplet_i, triplet_j)), shape=(10000, 10000)).tocsc()
other = sp.coo_matrix((triplet_s, (triplet_j, triplet_i)), shape=(10000, 10000)).tocsc()
big = np.asfortranarray(random.random((4000, 4000)))


def write_block():
    large[500:1500, 500:1500] = square


def write_masked():
    changing[changing > 0.5] = 0.75


def find_primes():
    prime = np.ones(5000000, dtype=bool)
    for p in range(3, 3163, 2):
        if prime[p // 2]:
            prime[p * p // 2::p] = False
    return np.r_[2, 2 * np.nonzero(prime)[0][1:] + 1]


whole_a = random.integers(1, 1000001, 1000000)
whole_b = random.integers(1, 1000001, 1000000)


def write_gathered():
    changing[gather_index] = flat


def thousand_reads():
    for k in range(1000):
        few[k]


def thousand_writes():
    for k in range(1000):
        few[k] = 3.0


def join_texts():
    text = np.array([], dtype=np.uint8)
    for _ in range(10000):
        text = np.append(text, letters)


def thousand_element_reads():
    for k in range(1000):
        sparse[triplet_i[k], triplet_j[k]]


changing = flat.copy()
few = random.random(1000)
letters = np.frombuffer(b"abcde", dtype=np.uint8)


a, b, c = (np.asfortranarray(random.random((1000, 1000))) for _ in range(3))
a3, b3, c3 = (m[:, 0].copy() for m in (a, b, c))
z = a + 1j * b
tall = np.asfortranarray(random.random((2500, 4000)))
line = tall.ravel(order="F")
generator = np.random.default_rng(2)


def scalar_loop():
    s, two, three = np.float64(0), np.float64(2), np.float64(3)
    for k in range(10000):
        s = s + k * two - s / three


vector = random.random(10000)


def small_products():
    x, y = a[:3, :3].copy(), b[:3, :3].copy()
    s = x
    for _ in range(100000):
        s = s + x @ y


def solve_grid(tilt, n=200):
    line, other_line = (sp.diags([-1 - t, 2, -1 + t], [-1, 0, 1], shape=(n, n)) for t in (tilt, 0))
    matrix = (sp.kron(sp.identity(n), line) + sp.kron(other_line, sp.identity(n))).tocsc()
    sides = random.random(n * n)
    return best(lambda: solvers.spsolve(matrix, sides), 3)


def often(work, times=1000):
    def loop():
        for _ in range(times):
            work()
    return best(loop) / times


def thousand_draws():
    for _ in range(1000):
        random.random()


numbers = random.random(1000000)
integers = random.integers(0, 1000000, 1000000).tolist()


def scan_numbers():
    text = ("%g\n" * numbers.size) % tuple(numbers)
    return best(lambda: list(map(float, text.split())), 3)


def read_doubles(kind):
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_numpy.bin")
    line.astype(kind).tofile(name)
    seconds = best(lambda: np.fromfile(name, kind).astype(float, copy=False), 3)
    os.remove(name)
    return seconds


def write_doubles(kind):
    name = os.path.join(tempfile.gettempdir(), "arrlib_bench_numpy.bin")
    seconds = best(lambda: line.astype(kind, copy=False).tofile(name), 3)
    os.remove(name)
    return seconds


whole = random.integers(1, 1001, 1000000).astype(float)
members, among = random.integers(1, 1000001, 1000000).astype(float), random.integers(1, 2000001, 1000000).astype(float)
sorted_numbers = np.sort(numbers)
ten = np.append(members[:9], -1)
flat5, tall5 = np.asfortranarray(random.random((5, 200000))), np.asfortranarray(random.random((200000, 5)))


def sort_with_positions():
    order = np.argsort(numbers, kind="stable")
    return numbers[order], order


half_zeros = np.where(numbers < 0.5, 0, numbers)
cube = np.asfortranarray(random.random((200, 200, 200)))
small_square, hundred_square = random.random((10, 10)), random.random((100, 100))
points = random.random(1000)


def permuted(*axes):
    return best(lambda: np.asfortranarray(cube.transpose([axis - 1 for axis in axes])), 10)


def life(kind):
    col, row = np.meshgrid(np.arange(1, 201), np.arange(1, 201))
    alive = ((row ** 2 * col + 7 * col ** 3) % 1009 < 350).astype(kind)
    before, after = np.r_[199, 0:199], np.r_[1:200, 0]
    for _ in range(500):
        thirds = alive[before] + alive + alive[after]
        near = thirds[:, before] + thirds + thirds[:, after]
        alive = ((near == 3) | ((alive != 0) & (near == 4))).astype(kind)
    assert alive.sum() == 1828


unit = random.random(100000)
upto50, order = 50 * unit, 10 * unit * unit
plane = upto50 * np.exp(3j * random.random(100000))


of_300 = np.asfortranarray(random.random((300, 300)))
symmetric_300 = of_300 + of_300.T
ten_thousand = random.random(10000)


# A row by another name than the implementation that its first word stands for: (row, implementation).
rows = {
    "life, 200x200, 500 generations": lambda: best(lambda: life(np.float64), 3),
    ("life, 200x200, 500 generations", "NumPy with integers"): lambda: best(lambda: life(int), 3),
    ("life, 200x200, 500 generations", "NumPy with bytes"): lambda: best(lambda: life(np.uint8), 3),
    "find, 1e6": lambda: best(lambda: np.flatnonzero(half_zeros), 50),
    "kron of 100x100 and 10x10": lambda: best(lambda: np.kron(hundred_square, small_square), 50),
    "kron of 10x10 and 100x100": lambda: best(lambda: np.kron(small_square, hundred_square), 50),
    "permute 200x200x200 by 2 1 3": lambda: permuted(2, 1, 3),
    "permute 200x200x200 by 3 1 2": lambda: permuted(3, 1, 2),
    "permute 200x200x200 by 3 2 1": lambda: permuted(3, 2, 1),
    "permute 200x200x200 by 1 3 2": lambda: permuted(1, 3, 2),
    "repmat of 100x100, 10x20 times": lambda: best(lambda: np.tile(hundred_square, (10, 20)), 50),
    "repmat of a column of 1000, 1000 times": lambda: best(lambda: np.tile(points, 1000), 50),
    "meshgrid of 1000 and 1000": lambda: best(lambda: np.meshgrid(points, points), 50),
    "colon, 1e6": lambda: best(lambda: np.arange(0, 500000, 0.5), 50),
    "colon, 1e3": lambda: often(lambda: np.arange(0, 500, 0.5)),
    "linspace, 1e6": lambda: best(lambda: np.linspace(0, 1, 1000000), 50),
    "zeros, 1e6": lambda: best(lambda: np.full((1000, 1000), 0.0), 50),
    "besselj of order 0, 1e5": lambda: best(lambda: special.jv(0, upto50)),
    "besselj of real order, 1e5": lambda: best(lambda: special.jv(order, upto50)),
    "besselk of order 2.5, 1e5": lambda: best(lambda: special.kv(2.5, upto50)),
    "besselj of complex, 1e5": lambda: best(lambda: special.jv(order, plane)),
    "besselh of complex, 1e5": lambda: best(lambda: special.hankel1(order, plane)),
    "besselj of complex, large order, 1e5": lambda: best(lambda: special.jv(100 * order, 10 * plane)),
    "airy of real, 1e5": lambda: best(lambda: special.airy(upto50 - 25)),
    "airy of complex, 1e5": lambda: best(lambda: special.airy(plane)),
    "expint of real, 1e5": lambda: best(lambda: special.exp1(upto50)),
    "expint of complex, 1e5": lambda: best(lambda: special.exp1(plane)),
    "ellipj, 1e5": lambda: best(lambda: special.ellipj(upto50, unit)),
    "betainc, 1e5": lambda: best(lambda: special.betainc(order + 0.1, upto50 / 3 + 0.1, unit)),
    "betaln, 1e5": lambda: best(lambda: special.betaln(upto50 + 0.1, order + 0.1)),
    "svd of 300, values": lambda: best(lambda: np.linalg.svd(of_300, compute_uv=False), 20),
    "svd of 300, factors": lambda: best(lambda: np.linalg.svd(of_300), 20),
    "eig of 300, values": lambda: best(lambda: np.linalg.eigvals(of_300), 20),
    "eig of 300, vectors": lambda: best(lambda: np.linalg.eig(of_300), 20),
    "eig of symmetric 300, values": lambda: best(lambda: np.linalg.eigvalsh(symmetric_300), 20),
    "eig of symmetric 300, vectors": lambda: best(lambda: np.linalg.eigh(symmetric_300), 20),
    "expm of 300": lambda: best(lambda: scipy.linalg.expm(of_300), 20),
    "conv of 1e4 and 1e4": lambda: best(lambda: np.convolve(ten_thousand, ten_thousand), 10),
    "polyval of degree 10, 1e6": lambda: best(lambda: np.polyval(few[:11], a), 20),
    "sprintf('%d,') of 1e6": lambda: best(lambda: ("%d," * len(integers)) % tuple(integers), 3),
    "fprintf('%g\\n') of 1e6": lambda: best(lambda: ("%g\n" * numbers.size) % tuple(numbers), 3),
    "fscanf('%g') of 1e6": scan_numbers,
    "fread of 1e7 doubles": lambda: read_doubles("<f8"),
    "fread of 1e7 big-endian doubles": lambda: read_doubles(">f8"),
    "fwrite of 1e7 doubles": lambda: write_doubles("<f8"),
    "fwrite of 1e7 big-endian doubles": lambda: write_doubles(">f8"),
    "rand 1e7": lambda: best(lambda: random.random(10000000)),
    "randn 1e7": lambda: best(lambda: random.standard_normal(10000000)),
    "ones 1e7": lambda: best(lambda: np.ones(10000000)),
    "1000 times rand": lambda: best(thousand_draws),
    "a+b, 1e6": lambda: best(lambda: a + b, 50),
    "a.*b+c-2, 1e6": lambda: best(lambda: a * b + c - 2, 50),
    "sin, 1e6": lambda: best(lambda: np.sin(a), 50),
    "exp, 1e6": lambda: best(lambda: np.exp(a), 50),
    "log, 1e6": lambda: best(lambda: np.log(a), 50),
    "pow(a,2.5), 1e6": lambda: best(lambda: np.power(a, 2.5), 20),
    "atan2, 1e6": lambda: best(lambda: np.arctan2(a, b), 20),
    "a+b, 1e3": lambda: often(lambda: a3 + b3),
    "a.*b+c-2, 1e3": lambda: often(lambda: a3 * b3 + c3 - 2),
    "sin, 1e3": lambda: often(lambda: np.sin(a3)),
    "exp, 1e3": lambda: often(lambda: np.exp(a3)),
    "log, 1e3": lambda: often(lambda: np.log(a3)),
    "cumsum, 1e6": lambda: best(lambda: np.cumsum(a, axis=0), 20),
    "cumsum of a vector, 1e6": lambda: best(lambda: np.cumsum(a.ravel(order="F")), 20),
    "sort, 1e6": lambda: best(lambda: np.sort(numbers)),
    "sort with positions, 1e6": lambda: best(sort_with_positions),
    "sort of whole numbers, 1e6": lambda: best(lambda: np.sort(whole)),
    "sort of sorted numbers, 1e6": lambda: best(lambda: np.sort(sorted_numbers)),
    "sort columns, 1000x1000": lambda: best(lambda: np.sort(a, axis=0)),
    "sort columns, 5x200000": lambda: best(lambda: np.sort(flat5, axis=0)),
    "sort rows, 200000x5": lambda: best(lambda: np.sort(tall5, axis=1)),
    "sortrows, 200000x5": lambda: best(lambda: tall5[np.lexsort(tall5.T[::-1])]),
    "unique, 1e6 all different": lambda: best(lambda: np.unique(numbers)),
    "unique, 1e6 of 1000": lambda: best(lambda: np.unique(whole)),
    "unique with positions, 1e6": lambda: best(lambda: np.unique(numbers, return_index=True, return_inverse=True)),
    "ismember, 1e6 in 1e6": lambda: best(lambda: np.isin(members, among)),
    "ismember, 1e6 in 1000": lambda: best(lambda: np.isin(members, members[:1000])),
    "ismember, 1e6 in 10": lambda: best(lambda: np.isin(members, ten)),
    "ismember, 10 in 1e6": lambda: best(lambda: np.isin(ten, members)),
    "intersect, 1e6 and 1e6": lambda: best(lambda: np.intersect1d(members, among)),
    "a*b, 1000x1000": lambda: best(lambda: a @ b),
    "A\\b, 1000x1000": lambda: best(lambda: np.linalg.solve(a, a3), 10),
    "inv, 500x500": lambda: best(lambda: np.linalg.inv(b[:500, :500]), 10),
    "s=s+a*b, 3x3, 1e5 times": lambda: best(small_products, 3),
    "sparse times vector, 1e6 entries": lambda: best(lambda: sparse @ vector, 50),
    "sparse A\\b, Laplacian of 200x200": lambda: solve_grid(0),
    "sparse A\\b, not symmetric, of 200x200": lambda: solve_grid(0.1),
    "exp of complex, 1e6": lambda: best(lambda: np.exp(z)),
    "z.*z, complex 1e6": lambda: best(lambda: z * z, 20),
    "sum along columns, 1e7": lambda: best(lambda: tall.sum(axis=0), 10),
    "sum along rows, 1e7": lambda: best(lambda: tall.sum(axis=1), 10),
    "index of the largest, 1e7": lambda: best(lambda: line.argmax(), 10),
    "median of columns, 1e7": lambda: best(lambda: np.median(tall, axis=0), 2),
    "1e6 times s=s+k*two-s/three, 1x1": lambda: best(scalar_loop) * 100,
    "primes(1e7)": lambda: best(find_primes),
    "gcd, 1e6": lambda: best(lambda: np.gcd(whole_a, whole_b)),
    "hypot, 1e6": lambda: best(lambda: np.hypot(flat, flat[::-1]), 20),
    "dot, 1e6": lambda: best(lambda: np.dot(flat, flat[::-1].copy()), 20),
    "A(I), 1e6 of 1e6": lambda: best(lambda: flat[gather_index]),
    "A(I,J), 1000x1000 of 2000x2000": lambda: best(lambda: large[np.ix_(block_index, block_index)]),
    "A(a:b,c:d), 1000x1000 of 2000x2000": lambda: best(lambda: large[500:1500, 500:1500].copy(order="F")),
    "A(a:b,c:d)=B, 1000x1000 of 2000x2000": lambda: best(write_block),
    "A(A>0.5), 1e6": lambda: best(lambda: flat[flat > 0.5]),
    "A(I)=B, 1e6 of 1e6": lambda: best(write_gathered),
    "A(A>0.5)=v, 1e6": lambda: best(write_masked),
    "1000 times y=A(k)": lambda: best(thousand_reads),
    "1000 times A(k)=v": lambda: best(thousand_writes),
    "[a b c d] of scalars": lambda: best(lambda: [np.array([1.0, 2.0, 3.0, 4.0]) for _ in range(1000)]) / 1000,
    "join 1e4 short strings one by one": lambda: best(join_texts, 1),
    "load a text file of 1e6 numbers": load_text,
    "save a text file of 1e6 numbers": save_text,
    "data file: save 96 MB": save_data,
    "data file: load 96 MB": load_data,
    "append 1e5 elements one by one": lambda: best(append_loop, 1),
    "transpose 4000x4000": lambda: best(lambda: np.asfortranarray(big.T), 3),
    "sparse from 1e6 triplets, 10000x10000": lambda: best(
        lambda: sp.coo_matrix((triplet_s, (triplet_i, triplet_j)), shape=(10000, 10000)).tocsc(), 3),
    "1e5 reads S(i,j), 1e6 entries": lambda: best(thousand_element_reads, 3) * 100,
    "sparse transpose, 1e6 entries": lambda: best(lambda: sparse.transpose().tocsc(), 3),
    "sparse A+A', 1e6 entries": lambda: best(lambda: (sparse + sparse.transpose()).tocsc(), 3),
    "sparse [A B], 1e6 entries each": lambda: best(lambda: sp.hstack([sparse, other], format="csc"), 3),
    "sparse [A;B], 1e6 entries each": lambda: best(lambda: sp.vstack([sparse, other], format="csc"), 3),
}
implementations = {"sprintf('%d,')": "Python", "fprintf('%g\\n')": "Python", "fscanf('%g')": "Python", "sparse": "SciPy", "data": "SciPy", "1e5": "SciPy"}
for key, run in rows.items():
    row, implementation = key if isinstance(key, tuple) else (key, implementations.get(key.split()[0], "NumPy"))
    if len(sys.argv) > 1 and sys.argv[1] not in row:
        continue
    seconds = run()
    if seconds is not None:
        print(f"{row}/{implementation}\t{seconds:.9g}", flush=True)
