// Diagonals and triangles. Diagonal k begins in column k+1 of the first row, or, for negative k, in row
// 1-k of the first column; it is 0, the main one, when it is left out. Sparse values stay sparse,
// logical ones logical; text counts as its codes.
#ifndef ARRLIB_BUILTINS_DIAGONALS_H
#define ARRLIB_BUILTINS_DIAGONALS_H

#include "core/matrix.h"

// Of a vector, a scalar among them, the square matrix that has it on diagonal k; of a matrix its
// diagonal k as a column, empty when there is none. "diag: matrix must be two-dimensional".
ARRLIB_API M<double> diag(M<double> const& A);
ARRLIB_API M<double> diag(M<double> const& A, M<double> const& k);
// The matrix with zeros above diagonal k. "tril: matrix must be two-dimensional".
ARRLIB_API M<double> tril(M<double> const& A);
ARRLIB_API M<double> tril(M<double> const& A, M<double> const& k);
// The matrix with zeros below diagonal k. "triu: matrix must be two-dimensional".
ARRLIB_API M<double> triu(M<double> const& A);
ARRLIB_API M<double> triu(M<double> const& A, M<double> const& k);

#endif
