// Products and powers of matrices as functions; operator* is in ops/operators.h.
#ifndef ARRLIB_BUILTINS_PRODUCTS_H
#define ARRLIB_BUILTINS_PRODUCTS_H

#include "ops/operators.h"

// The product A*B, as the operator gives it: element by element when an operand has one element, empty
// when one is empty; sparse for two sparse operands. "*: inner dimensions of %s and %s do not agree",
// "*: %s has more than two dimensions".
inline M<double> mtimes(M<double> const& A, M<double> const& B) { return A * B; }
inline M<double> mtimes(M<double>&& A, M<double> const& B) { return static_cast<M<double>&&>(A) * B; }
inline M<double> mtimes(M<double> const& A, M<double>&& B) { return A * static_cast<M<double>&&>(B); }
inline M<double> mtimes(M<double>&& A, M<double>&& B) { return static_cast<M<double>&&>(A) * static_cast<M<double>&&>(B); }

// The matrix power A^p: element by element for two scalars; by repeated squaring for an integer p, of
// the inverse when p is negative (its warnings, with "^"); by eigenvalues for another p, and for a
// scalar to the power of a matrix. Sparse for an integer power of a sparse matrix; real where the
// power of a real matrix is. "^: matrix must be square", "^: at least one operand must be scalar",
// "^: matrix contains NaN or Inf" and "^: iteration did not converge" where eigenvalues are needed.
ARRLIB_API M<double> mpower(M<double> const& A, M<double> const& p);

#endif
