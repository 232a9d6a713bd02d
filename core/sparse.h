// Sparse values: building them, taking them apart, and what they store.
#ifndef ARRLIB_CORE_SPARSE_H
#define ARRLIB_CORE_SPARSE_H

#include "core/api.h"

// --- building -------------------------------------------------------------------------------------
// Sizes and indices are truncated toward zero; negative sizes and NaN count as 0. A size whose
// elements cannot be numbered by an int is refused: "sparse: matrix is too large". After a report
// the built-ins give the empty result.

// The non-zeros of a value, of the same size; a logical value stays logical.
ARRLIB_API M<double> sparse(M<double> const& a);
// No entries, m x n.
ARRLIB_API M<double> sparse(M<double> const& m, M<double> const& n);
// Entry k is s(k) in row i(k) and column j(k). Zeros are left out; entries of one place add up, in
// order, and a sum that comes to zero stays stored. A scalar among i, j and s is spread over the
// others. Without m and n the largest indices give the size; nzmax asks for room beyond the
// entries. "sparse: i,j and v must be same size", "sparse: non-positive row index encountered",
// "sparse: non-positive column index encountered", "sparse: row index out of range",
// "sparse: column index out of range".
ARRLIB_API M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s);
ARRLIB_API M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s, M<double> const& m, M<double> const& n);
ARRLIB_API M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s, M<double> const& m, M<double> const& n, M<double> const& nzmax);
// Rows of d are row, column, real part and, with four columns, imaginary part; a zero at the last
// row and column fixes the size. "spconvert: matrix '%s' must have 3 or 4 columns"; indices as above.
ARRLIB_API M<double> spconvert(M<double> const& d);
// The identity, n x n or m x n; one argument may hold both sizes: "%s: size must be one or two
// numbers", with the name of the built-in.
ARRLIB_API M<double> speye(M<double> const& n);
ARRLIB_API M<double> speye(M<double> const& m, M<double> const& n);
// No entries, n x n or m x n.
ARRLIB_API M<double> spzeros(M<double> const& n);
ARRLIB_API M<double> spzeros(M<double> const& m, M<double> const& n);
// No entries, m x n, and room for nzmax.
ARRLIB_API M<double> spalloc(M<double> const& m, M<double> const& n, M<double> const& nzmax);
// Ones in the places of the non-zeros.
ARRLIB_API M<double> spones(M<double> const& a);

// --- taking apart ---------------------------------------------------------------------------------

// The same elements in full form.
ARRLIB_API M<double> full(M<double> const& a);
// Number of non-zero elements; of stored ones for a sparse value.
ARRLIB_API M<double> nnz(M<double> const& a);
// Number of elements that there is room for; all elements of a full value.
ARRLIB_API M<double> nzmax(M<double> const& a);
// The non-zeros as a column.
ARRLIB_API M<double> nonzeros(M<double> const& a);
// Positions of the non-zeros (NaN is one): a row for a row vector, else a column; 0x0 for none.
ARRLIB_API M<double> find(M<double> const& x);
ARRLIB_API M<double> find(M<double> const& x, i_o_t, Mr<double> positions);
// Their rows and columns, counted through all further dimensions, and their values.
ARRLIB_API M<double> find(M<double> const& x, i_o_t, Mr<double> rows, Mr<double> cols);
ARRLIB_API M<double> find(M<double> const& x, i_o_t, Mr<double> rows, Mr<double> cols, Mr<double> values);
// A row per stored entry: row, column, value; a complex value has its parts in columns 3 and 4.
ARRLIB_API M<double> sp2coo(M<double> const& a);

// Reports "sparsfun called" and gives the empty result.
ARRLIB_API M<double> sparsfun();
ARRLIB_API M<double> sparsfun(M<double> const& a);
ARRLIB_API M<double> sparsfun(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> sparsfun(M<double> const& a, M<double> const& b, M<double> const& c);
ARRLIB_API M<double> sparsfun(M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d);

// Frees what Jc() and Ir() of a value gave; null is nothing.
ARRLIB_API void nx_release_index(int* array);

#endif
