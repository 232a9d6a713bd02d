// Cell arrays, and what kind of value a value is.
#ifndef ARRLIB_CORE_CELL_H
#define ARRLIB_CORE_CELL_H

#include "core/matrix.h"

// A cell array of empty cells: n x n, or of the sizes in the list n; of two to four sizes. Sizes are
// read as those of zeros are. "cell: too many dimensions" for more than four sizes, "cell: expecting
// scalar argument".
ARRLIB_API M<M<double>> cell(M<double> const& n);
ARRLIB_API M<M<double>> cell(M<double> const& m, M<double> const& n);
ARRLIB_API M<M<double>> cell(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<M<double>> cell(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);

// A column of cells, one per row of the text, without trailing blanks; a cell array as it is.
ARRLIB_API M<M<double>> cellstr(M<double> const& S);
ARRLIB_API M<M<double>> cellstr(M<M<double>> const& cells);
// Whether the value is a cell array that holds nothing but text.
ARRLIB_API M<double> iscellstr(M<double> const& x);
ARRLIB_API M<double> iscellstr(M<M<double>> const& x);
ARRLIB_API M<double> iscell(M<double> const& x);
ARRLIB_API M<double> iscell(M<M<double>> const& x);

// The kind of a value: "cell", "char" for text, "sparse", or "double".
ARRLIB_API M<double> mclass(M<double> const& x);
ARRLIB_API M<double> mclass(M<M<double>> const& x);
// Whether a value is of the kind that mclass names; sparse values are "double" as well.
ARRLIB_API M<double> isa(M<double> const& x, M<double> const& name);
ARRLIB_API M<double> isa(M<M<double>> const& x, M<double> const& name);

// The text without the blanks that end it: of several rows, without the last columns that are blank
// in all of them. Blanks are spaces, tabs, line ends and zero characters. Numbers stay as they are.
// Of a cell array, every element so.
ARRLIB_API M<double> deblank(M<double> const& S);
ARRLIB_API M<M<double>> deblank(M<M<double>> const& cells);

#endif
