#!/usr/bin/env python3
"""Compares what SciPy reads with what was saved: check_data_files.py EXPECTATIONS FOLDER.

FOLDER holds NAME.level4.mat and NAME.level5.mat for every NAME.exp (tests/data/matfiles/README.md).
"""
import pathlib
import sys
import warnings

import numpy as np
import scipy.io
import scipy.sparse


class Variable:
    def __init__(self, words):
        self.name, self.kind = words.after("var"), words.after("class")
        words.after("store")
        self.dims = [int(size) for size in words.list_after("dims")]
        self.flags = words.list_after("flags")
        self.demand = words.list_after("demand")
        form = words.next()
        self.sparse = form == "sparse"
        self.entries = [words.entry(self.sparse, "complex" in self.flags) for _ in range(int(words.next()))]

    def loads(self):
        return "load" in self.demand and self.name != "(none)"

    def is_beyond_scipy(self, level):
        """Surrogate pairs, and in level 4 all characters of more than one byte."""
        return self.kind == "char" and any(0xD800 <= re < 0xE000 or (level == 4 and re > 255) for _, re, _ in self.entries)

    def shape(self):
        dims = list(self.dims)
        while len(dims) > 2 and dims[-1] == 1:
            dims.pop()
        return (0, 0) if 0 in dims else tuple(dims)


class Words:
    def __init__(self, path):
        self.words = iter(path.read_text().split())

    def next(self):
        return next(self.words)

    def after(self, key):
        assert self.next() == key, key
        return self.next()

    def list_after(self, key):
        return [self.next() for _ in range(int(self.after(key)))]

    def number(self):
        return float.fromhex(self.next())

    def entry(self, sparse, is_complex):
        place = (int(self.next()), int(self.next())) if sparse else None
        return place, self.number(), self.number() if is_complex else 0.0


def expectations(path):
    words = Words(path)
    while words.next() != "vars":
        pass
    return [Variable(words) for _ in range(int(words.next()))]


def same_bits(found, wanted):
    found, wanted = np.asarray(found, dtype=np.float64).ravel(), np.asarray(wanted, dtype=np.float64)
    nan = np.isnan(found) & np.isnan(wanted)
    return found.size == wanted.size and bool(np.all(nan | (found.view(np.uint64) == wanted.view(np.uint64))))


def load(file, wanted, level):
    options = {"uint16_codec": "utf-16-le"} if level == 5 else {}
    # Only with mat_dtype are logical values told from others, and complex ones lose a part.
    return scipy.io.loadmat(file, variable_names=[wanted.name], chars_as_strings=False, mat_dtype="complex" not in wanted.flags, **options)


def problem_with(value, wanted, level):
    """What is different, or nothing."""
    is_complex = "complex" in wanted.flags
    if scipy.sparse.issparse(value) != wanted.sparse:
        return "storage"
    if wanted.sparse:
        # SciPy adds the parts of complex entries up, which loses those beside infinities and signs of zeros.
        value = value.tocoo()
        entries = {place: (re, im) for place, re, im in wanted.entries if re or im}
        found = {(int(r), int(c)): complex(v) for r, c, v in zip(value.row, value.col, value.data) if v}
        if value.shape != (wanted.shape() if entries or level == 5 else value.shape) or found.keys() != entries.keys():
            return "places"
        finite = [place for place, parts in entries.items() if not is_complex or np.all(np.isfinite(parts))]
        if is_complex:
            equal = all(found[p] == complex(*entries[p]) for p in finite)
        else:
            equal = same_bits([found[p].real for p in finite], [entries[p][0] for p in finite])
        return "" if equal and np.iscomplexobj(value.data) == is_complex else "entries"
    shape = wanted.shape()
    if value.size == 0 and 0 in shape:
        return ""
    if wanted.kind == "char":
        if value.dtype.kind != "U":
            return "kind"
        codes = [int(re) for _, re, _ in wanted.entries]
        text = "".join(str(one) if one else " " for one in value.reshape(-1, order="F"))
        return "" if text.encode("utf-16-le", "surrogatepass") == np.array(codes, dtype="<u2").tobytes() else "characters"
    if level == 5 and (value.dtype.kind == "b") != ("logical" in wanted.flags):
        return "logical"
    if value.shape != shape or np.iscomplexobj(value) != is_complex:
        return "shape"
    if is_complex and level == 4:  # added up as above
        value = np.where(np.isfinite(value.real) & np.isfinite(value.imag), value, complex(np.nan, np.nan))
        wanted_parts = [(re, im) if np.isfinite(re) and np.isfinite(im) else (np.nan, np.nan) for _, re, im in wanted.entries]
        equal = np.array_equal(value.ravel(order="F"), [complex(*parts) for parts in wanted_parts], equal_nan=True)
        return "" if equal else "numbers"
    equal = same_bits(value.real.ravel(order="F"), [re for _, re, _ in wanted.entries])
    equal = equal and (not is_complex or same_bits(value.imag.ravel(order="F"), [im for _, _, im in wanted.entries]))
    return "" if equal else "numbers"


def main():
    warnings.simplefilter("ignore")
    folder, count, failures = pathlib.Path(sys.argv[2]), 0, []
    for path in sorted(pathlib.Path(sys.argv[1]).glob("*.exp")):
        for level in (4, 5):
            file = folder / f"{path.stem}.level{level}.mat"
            wanted = [one for one in expectations(path) if one.loads() and (level == 5 or len(one.dims) == 2)]
            if not file.exists():
                continue
            names = [name for name, _, _ in scipy.io.whosmat(file)]
            if names != [one.name for one in wanted]:
                failures.append(f"{file.name}: names {names}")
            for one in wanted:
                if one.is_beyond_scipy(level):
                    continue
                count += 1
                values = load(file, one, level)
                problem = problem_with(values[one.name], one, level) if one.name in values else "absent"
                if problem:
                    failures.append(f"{file.name}: {one.name}: {problem} differ")
    print("\n".join(failures + [f"{count} variables read by SciPy, {len(failures)} failed"]))
    return 1 if failures or not count else 0


if __name__ == "__main__":
    sys.exit(main())
