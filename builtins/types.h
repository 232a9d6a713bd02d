// Conversions between kinds of values, and tests of what a value is. Every test answers with a logical
// 1x1 value.
#ifndef ARRLIB_BUILTINS_TYPES_H
#define ARRLIB_BUILTINS_TYPES_H

#include "core/matrix.h"

// The value as plain numbers: text becomes its character codes, logicals become 0 and 1. Sparse values
// stay sparse. "double: cell matrix is not accepted".
ARRLIB_API M<double> doubleM(M<double> const& A);
ARRLIB_API M<double> doubleM(M<M<double>> const& A);
// The same numbers with the logical mark, which makes them a mask. Sparse values stay sparse. "logical:
// argument must be real", "logical: NaN can not be converted".
ARRLIB_API M<double> logical(M<double> const& A);

// Whether no imaginary part is stored; an imaginary part of zeros counts as one. 0 for cells.
ARRLIB_API M<double> isreal(M<double> const& A);
ARRLIB_API M<double> isreal(M<M<double>> const& A);
// Whether an imaginary part is stored, if only of zeros. 0 for cells.
ARRLIB_API M<double> iscomplex(M<double> const& A);
ARRLIB_API M<double> iscomplex(M<M<double>> const& A);
// Whether the value holds numbers, logicals among them: neither text nor cells.
ARRLIB_API M<double> isnumeric(M<double> const& A);
ARRLIB_API M<double> isnumeric(M<M<double>> const& A);
// Whether the value is text.
ARRLIB_API M<double> ischar(M<double> const& A);
ARRLIB_API M<double> ischar(M<M<double>> const& A);
// Whether the value is text; an older name of ischar.
ARRLIB_API M<double> isstr(M<double> const& A);
ARRLIB_API M<double> isstr(M<M<double>> const& A);
// Whether the value carries the logical mark.
ARRLIB_API M<double> islogical(M<double> const& A);
ARRLIB_API M<double> islogical(M<M<double>> const& A);
// Whether the value is stored sparse.
ARRLIB_API M<double> issparse(M<double> const& A);
ARRLIB_API M<double> issparse(M<M<double>> const& A);
// Whether the value is a structure: always 0, there are none.
ARRLIB_API M<double> isstruct(M<double> const& A);
ARRLIB_API M<double> isstruct(M<M<double>> const& A);
// Whether the value is an object of a class: always 0, there are none.
ARRLIB_API M<double> isobject(M<double> const& A);
ARRLIB_API M<double> isobject(M<M<double>> const& A);
// Whether S is a structure with a field of that name: always 0, there are none.
ARRLIB_API M<double> isfield(M<double> const& S, M<double> const& name);
ARRLIB_API M<double> isfield(M<double> const& S, M<M<double>> const& names);
ARRLIB_API M<double> isfield(M<M<double>> const& S, M<double> const& name);
ARRLIB_API M<double> isfield(M<M<double>> const& S, M<M<double>> const& names);
// Whether the variable itself is declared global; copies of its value are not.
ARRLIB_API M<double> isglobal(M<double> const& x);
ARRLIB_API M<double> isglobal(M<M<double>> const& x);

// Whether the value has exactly one element.
ARRLIB_API M<double> isscalar(M<double> const& A);
ARRLIB_API M<double> isscalar(M<M<double>> const& A);
// Whether the value is one row or one column of at least one element.
ARRLIB_API M<double> isvector(M<double> const& A);
ARRLIB_API M<double> isvector(M<M<double>> const& A);
// Whether the value is a matrix: 1 for everything but cells.
ARRLIB_API M<double> ismatrix(M<double> const& A);
ARRLIB_API M<double> ismatrix(M<M<double>> const& A);
// Whether the value has two dimensions and as many rows as columns; an empty one has.
ARRLIB_API M<double> issquare(M<double> const& A);
ARRLIB_API M<double> issquare(M<M<double>> const& A);

// Whether arithmetic follows the IEEE standard: always 1.
ARRLIB_API M<double> isieee();
// Whether the program runs on Windows.
ARRLIB_API M<double> ispc();
// Whether the program runs on a system of the Unix family.
ARRLIB_API M<double> isunix();
// Whether the program runs on VMS: always 0.
ARRLIB_API M<double> isvms();
// Whether this is a student's edition: always 0.
ARRLIB_API M<double> isstudent();

// Whether the text may name a variable: a letter, then letters, digits and underscores, at most 31
// characters in one row, and no keyword of the language.
ARRLIB_API M<double> isvarname(M<double> const& s);
ARRLIB_API M<double> isvarname(M<M<double>> const& s);

#endif
