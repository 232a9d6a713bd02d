// Norms, rank and trace.
#ifndef ARRLIB_BUILTINS_NORMS_H
#define ARRLIB_BUILTINS_NORMS_H

#include "core/subscript.h"

// The p-norm. Of a vector: sum(abs(x).^p)^(1/p) for any number p, the largest modulus for Inf and the smallest for
// -Inf, 'fro' being 2. Of a matrix: 1 (largest column sum), 2 (largest singular value), Inf or 'inf' (largest row
// sum), 'fro' (root of the sum of squares). p is 2 by default. 0 for an empty value; NaN where an element is.
// "norm: only 1, 2, Inf and 'fro' for matrices", "norm: use normest for a sparse matrix" for its 2-norm, "norm:
// unknown option %s", "norm: matrix must be two-dimensional", "norm: iteration did not converge".
ARRLIB_API M<double> norm(M<double> const& A);
ARRLIB_API M<double> norm(M<double> const& A, M<double> const& p);

// An estimate of the 2-norm by power iteration on A'*A, to the relative tolerance tol (1e-6 by default), and the number
// of iterations; a sparse matrix stays sparse. After 1000 iterations it warns "normest: iteration did not converge". "normest: matrix
// must be two-dimensional".
ARRLIB_API M<double> normest(M<double> const& A);
ARRLIB_API M<double> normest(M<double> const& A, M<double> const& tol);
ARRLIB_API M<double> normest(M<double> const& A, i_o_t, Mr<double> e);
ARRLIB_API M<double> normest(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> e);
ARRLIB_API M<double> normest(M<double> const& A, i_o_t, Mr<double> e, Mr<double> count);
ARRLIB_API M<double> normest(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> e, Mr<double> count);

// The number of singular values above tol, which is max(size(A))*eps times the largest one by default; 0 for an empty
// matrix. "rank: matrix contains NaN or Inf", "rank: iteration did not converge", "rank: matrix must be two-dimensional".
ARRLIB_API M<double> rank(M<double> const& A);
ARRLIB_API M<double> rank(M<double> const& A, M<double> const& tol);

// The sum of the diagonal of a square matrix, 0 for an empty one. "trace: matrix must be square".
ARRLIB_API M<double> trace(M<double> const& A);

#endif
