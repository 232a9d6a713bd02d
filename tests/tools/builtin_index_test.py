#!/usr/bin/python3
"""What tools/builtin-index, given as the argument, makes of a small tree, and what it finds wrong with it."""
import pathlib
import shutil
import subprocess
import sys
import tempfile

HEADER = """// Things to call. More about them.
#ifndef H
#define H

#include "core/other.h"

namespace arrlib { void inner(); struct Inside { int x = {1}; }; }
namespace arrlib {
// Not for programs.
ARRLIB_API M<double> hidden(M<double> const& x);
} // namespace arrlib

ARRLIB_API extern M<double> constant;
class ARRLIB_API Shape {
public:
    Shape() : size_{0} {}
    M<double> area() const;
};
enum kind : int { one = 1 };
template <> inline M<double>::M(int n) : size_{n}, text_("};") {}
template <> ARRLIB_API M<double> M<double>::area();

// --- first part ------------
// Sorts, e.g. texts; see "a.b". The rest.
ARRLIB_API M<double> arrange(M<double> const& A);
ARRLIB_API M<double> arrange(M<double> const& A,
                             M<double> const& dim);
ARRLIB_API M<double> arrange(M<double> const& A, i_o_t, Mr<double> y = {});
ARRLIB_API M<M<double>> arrange(M<M<double>> const& A, i_o_t, Mr<double> y, Mr<double> i);
inline M<double> same_comment(double (*function)(double), int, char const* name = "a,b") { if (one) { return {}; } return 1; }

// Adds.
template <class... T> M<double> add(M<double> const& first, T const&... others) { return first; }
inline M<double> operator|(M<double> const& x, M<double> const& y) { return x; }

#endif
"""
TEST = "int t() { arrange(x); same_comment(f); std::add(1); add(1, 2); }\n"
ROWS = """| `arrange` | `arrange(A)`, `arrange(A, dim)`, `arrange(A, i_o, y, i)` | Sorts, e.g. texts; see "a.b". |
| `same_comment` | `same_comment(function, int, name)` | Sorts, e.g. texts; see "a.b". |
| `add` | `add(first, others)` | Adds. |
| `operator\\|` | `operator\\|(x, y)` | Adds. |
"""


def run(tool, *arguments):
    result = subprocess.run([str(tool), *arguments], capture_output=True, text=True, check=False)
    return result.returncode, result.stdout + result.stderr


def main():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name in ("tools", "docs", "tests", "builtins"):
            (root / name).mkdir()
        tool = root / "tools" / "builtin-index"
        shutil.copy(sys.argv[1], tool)
        (root / "arrlib.h").write_text('#include "builtins/things.h"\n')
        header, test = root / "builtins" / "things.h", root / "tests" / "things_test.cpp"
        header.write_text(HEADER)
        test.write_text(TEST)

        assert run(tool) == (0, ""), "it is made"
        made = (root / "docs" / "builtins.md").read_text()
        assert made.endswith("## builtins/things.h\n\nThings to call.\n\n| name | forms | |\n| --- | --- | --- |\n" + ROWS), made
        assert run(tool, "--check") == (0, ""), "it is fresh"

        test.write_text(TEST.replace(" add(1, 2);", ""))
        assert run(tool, "--check") == (1, "builtins/things.h: no test mentions add\n")
        test.write_text(TEST)
        header.write_text(HEADER.replace("// Adds.", ""))
        code, report = run(tool, "--check")
        assert code == 1 and "add has no comment\n" in report and "builtins.md is stale" in report, report
        assert run(tool, "--wrong")[0] == 1


main()
