// How large values are, and whether values are the same.
#ifndef ARRLIB_BUILTINS_SIZES_H
#define ARRLIB_BUILTINS_SIZES_H

#include "core/matrix.h"

// The sizes of a value as a row of as many numbers as it has dimensions. With k the size along
// dimension k alone: 1 beyond the dimensions in use, 0 for an empty value; "size: dimension must be a
// positive integer". Several outputs take a size each, the last one the product of those that are
// left; those beyond the dimensions are 1, or 0 for an empty value.
ARRLIB_API M<double> size(M<double> const& A);
ARRLIB_API M<double> size(M<double> const& A, M<double> const& k);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> sizes);
ARRLIB_API M<double> size(M<double> const& A, M<double> const& k, i_o_t, Mr<double> extent);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r);
ARRLIB_API M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r, Mr<double> s);
ARRLIB_API M<double> size(M<M<double>> const& A);
ARRLIB_API M<double> size(M<M<double>> const& A, M<double> const& k);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> sizes);
ARRLIB_API M<double> size(M<M<double>> const& A, M<double> const& k, i_o_t, Mr<double> extent);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r);
ARRLIB_API M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r, Mr<double> s);

// The largest size; 0 for an empty value.
ARRLIB_API M<double> length(M<double> const& A);
ARRLIB_API M<double> length(M<M<double>> const& A);
// The number of dimensions in use, 2 to 4.
ARRLIB_API M<double> ndims(M<double> const& A);
ARRLIB_API M<double> ndims(M<M<double>> const& A);
// The number of elements, those of a sparse value that are not stored among them.
ARRLIB_API M<double> numel(M<double> const& A);
ARRLIB_API M<double> numel(M<M<double>> const& A);
// The first size.
ARRLIB_API M<double> rows(M<double> const& A);
ARRLIB_API M<double> rows(M<M<double>> const& A);
// The second size.
ARRLIB_API M<double> columns(M<double> const& A);
ARRLIB_API M<double> columns(M<M<double>> const& A);
// Whether there are no elements; logical.
ARRLIB_API M<double> isempty(M<double> const& A);
ARRLIB_API M<double> isempty(M<M<double>> const& A);

// Whether all values have the same sizes and equal elements; logical. NaN differs from NaN; text
// equals its character codes, a sparse value its full form, a complex one without imaginary parts its
// real form. Cell arrays are compared cell by cell and never equal a matrix.
ARRLIB_API M<double> isequal(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<double> isequal(M<double> const& A, M<M<double>> const& B);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<double> const& B);
ARRLIB_API M<double> isequal(M<double> const& A, M<double> const& B, M<double> const& C);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<M<double>> const& B, M<M<double>> const& C);
ARRLIB_API M<double> isequal(M<double> const& A, M<double> const& B, M<M<double>> const& C);
ARRLIB_API M<double> isequal(M<double> const& A, M<M<double>> const& B, M<double> const& C);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<double> const& B, M<double> const& C);
ARRLIB_API M<double> isequal(M<double> const& A, M<M<double>> const& B, M<M<double>> const& C);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<double> const& B, M<M<double>> const& C);
ARRLIB_API M<double> isequal(M<M<double>> const& A, M<M<double>> const& B, M<double> const& C);
ARRLIB_API M<double> isequal(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D);

#endif
