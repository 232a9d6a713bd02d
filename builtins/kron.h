// Matrices built from blocks: Kronecker products and block diagonals. Results are sparse when any
// operand is.
#ifndef ARRLIB_BUILTINS_KRON_H
#define ARRLIB_BUILTINS_KRON_H

#include "core/matrix.h"

// The Kronecker product: every element of A times the whole of B, in its place; sizes multiply. Of
// three and more from the left. Empty when an operand is. "kron: matrix must be two-dimensional".
ARRLIB_API M<double> kron(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> kron(M<double> const& A, M<double> const& B, M<double> const& C);
ARRLIB_API M<double> kron(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D);
// The operands along the diagonal, zeros elsewhere; empty ones add nothing. "blkdiag: matrix must be
// two-dimensional".
ARRLIB_API M<double> blkdiag(M<double> const& A);
ARRLIB_API M<double> blkdiag(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C);
ARRLIB_API M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D);
ARRLIB_API M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D, M<double> const& E);
ARRLIB_API M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D, M<double> const& E, M<double> const& F);

#endif
