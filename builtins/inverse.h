// Inverses, determinants and condition numbers.
#ifndef ARRLIB_BUILTINS_INVERSE_H
#define ARRLIB_BUILTINS_INVERSE_H

#include "core/subscript.h"

// The inverse of a square matrix, sparse for a sparse one; empty for an empty one. A pivot of zero gives a matrix
// of Inf after the warning "inv: matrix is singular to working precision"; a reciprocal condition below eps the
// warning "inv: matrix is close to singular or badly scaled, rcond = %g". A matrix with NaN or Inf has an inverse
// of NaN. "inv: matrix must be square".
ARRLIB_API M<double> inv(M<double> const& A);

// The pseudo-inverse of an m x n matrix, n x m, by singular values; those up to tol count as zero, which is
// max(m,n)*eps times the largest one by default. "pinv: matrix contains NaN or Inf", "pinv: iteration did not converge".
ARRLIB_API M<double> pinv(M<double> const& A);
ARRLIB_API M<double> pinv(M<double> const& A, M<double> const& tol);

// The determinant of a square matrix; 1 for an empty one. "det: matrix must be square".
ARRLIB_API M<double> det(M<double> const& A);

// An estimate of the reciprocal condition of a square matrix in the 1-norm: 0 for a singular one, Inf for an
// empty one, NaN for elements that are NaN or Inf. "rcond: matrix must be square".
ARRLIB_API M<double> rcond(M<double> const& A);

// The condition of a matrix in the p-norm, p being 1, 2, Inf, 'inf' or 'fro': for 2, the default, the ratio of the
// largest and the smallest singular value of a matrix of any shape; otherwise norm(A,p)*norm(inv(A),p). Inf for
// a singular matrix, 0 for an empty one. "cond: use condest for a sparse matrix" for the 2-norm of one; "cond: matrix must be
// square", "cond: matrix contains NaN or Inf", "cond: only 1, 2, Inf and 'fro' for matrices".
ARRLIB_API M<double> cond(M<double> const& A);
ARRLIB_API M<double> cond(M<double> const& A, M<double> const& p);

// An estimate c of the condition of a square matrix, full or sparse, in the 1-norm, and a vector v that A nearly
// takes to zero: norm(A*v,1) = norm(A,1)*norm(v,1)/c. Inf for a singular matrix, NaN for elements that are NaN or Inf, 0 for an
// empty one. "condest: matrix must be square". Source: the estimator of Hager and Higham (ACM TOMS 14, 1988).
ARRLIB_API M<double> condest(M<double> const& A);
ARRLIB_API M<double> condest(M<double> const& A, i_o_t, Mr<double> c);
ARRLIB_API M<double> condest(M<double> const& A, i_o_t, Mr<double> c, Mr<double> v);

#endif
