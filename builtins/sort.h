// Sorting, and looking up in what is sorted. All of it is stable: equal elements stay in their order.
//
// NaN comes after every number; -0 and 0 are equal. Complex numbers are ordered by modulus, those of
// equal modulus by angle. Text sorts by its characters' codes and stays text; the results are plain
// numbers otherwise. Texts in cells are ordered as in a dictionary, by codes, a text before its own
// continuations: "%s: argument must be a cell array of strings".
#ifndef ARRLIB_BUILTINS_SORT_H
#define ARRLIB_BUILTINS_SORT_H

#include "core/matrix.h"
#include "core/subscript.h"

// The elements in rising order along dimension `dim`, the first one longer than 1 by default: each
// column for itself, or a row. `i` takes the positions that they had along the dimension. Sparse
// values stay sparse; their positions are full. The texts of a cell array are sorted as one list, in
// storage order. "sort: dim argument must be positive", "sort: dim argument may not be more then the
// number of dimensions".
ARRLIB_API M<double> sort(M<double> const& A);
ARRLIB_API M<double> sort(M<double> const& A, M<double> const& dim);
ARRLIB_API M<double> sort(M<double> const& A, i_o_t, Mr<double> y);
ARRLIB_API M<double> sort(M<double> const& A, i_o_t, Mr<double> y, Mr<double> i);
ARRLIB_API M<double> sort(M<double> const& A, M<double> const& dim, i_o_t, Mr<double> y);
ARRLIB_API M<double> sort(M<double> const& A, M<double> const& dim, i_o_t, Mr<double> y, Mr<double> i);
ARRLIB_API M<M<double>> sort(M<M<double>> const& A);
ARRLIB_API M<M<double>> sort(M<M<double>> const& A, i_o_t, Mr<M<double>> y);
ARRLIB_API M<M<double>> sort(M<M<double>> const& A, i_o_t, Mr<M<double>> y, Mr<double> i);

// The rows in lexicographic order of the columns listed in `cols`, all of them by default; a negative
// number sorts by that column downward, NaN first. `i` takes the numbers of the rows, as a column. A
// cell array must be one column of texts. "sortrows: matrix must be two-dimensional", "sortrows:
// column out of range".
ARRLIB_API M<double> sortrows(M<double> const& A);
ARRLIB_API M<double> sortrows(M<double> const& A, M<double> const& cols);
ARRLIB_API M<double> sortrows(M<double> const& A, i_o_t, Mr<double> B);
ARRLIB_API M<double> sortrows(M<double> const& A, i_o_t, Mr<double> B, Mr<double> i);
ARRLIB_API M<double> sortrows(M<double> const& A, M<double> const& cols, i_o_t, Mr<double> B);
ARRLIB_API M<double> sortrows(M<double> const& A, M<double> const& cols, i_o_t, Mr<double> B, Mr<double> i);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A, i_o_t, Mr<M<double>> B);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A, i_o_t, Mr<M<double>> B, Mr<double> i);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols, i_o_t, Mr<M<double>> B);
ARRLIB_API M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols, i_o_t, Mr<M<double>> B, Mr<double> i);

// For each element of y, the number of the last entry of a rising table that is not larger: 0 before
// the first one, and for NaN. The shape is that of y. "lookup: argument must be a vector", "lookup:
// argument must be real".
ARRLIB_API M<double> lookup(M<double> const& table, M<double> const& y);
ARRLIB_API M<double> lookup(M<double> const& table, M<double> const& y, i_o_t, Mr<double> k);

#endif
