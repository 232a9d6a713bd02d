"""The peers' rows in NumPy and SciPy: prints ROW/IMPLEMENTATION and the best time in seconds."""
import os
import sys
import tempfile
import time

import numpy as np
import scipy.sparse as sp


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


rows = {
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
    "append 1e5 elements one by one": lambda: best(append_loop, 1),
    "transpose 4000x4000": lambda: best(lambda: np.asfortranarray(big.T), 3),
    "sparse from 1e6 triplets, 10000x10000": lambda: best(
        lambda: sp.coo_matrix((triplet_s, (triplet_i, triplet_j)), shape=(10000, 10000)).tocsc(), 3),
    "1e5 reads S(i,j), 1e6 entries": lambda: best(thousand_element_reads, 3) * 100,
    "sparse transpose, 1e6 entries": lambda: best(lambda: sparse.transpose().tocsc(), 3),
    "sparse [A B], 1e6 entries each": lambda: best(lambda: sp.hstack([sparse, other], format="csc"), 3),
    "sparse [A;B], 1e6 entries each": lambda: best(lambda: sp.vstack([sparse, other], format="csc"), 3),
}
implementations = {"sparse": "SciPy", "1e5": "SciPy"}
for row, run in rows.items():
    if len(sys.argv) > 1 and sys.argv[1] not in row:
        continue
    seconds = run()
    if seconds is not None:
        print(f"{row}/{implementations.get(row.split()[0], 'NumPy')}\t{seconds:.9g}", flush=True)
