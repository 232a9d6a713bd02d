// Least squares with a covariance, and with bounds. Sparse operands are made full. "%s: matrix must be
// two-dimensional", "%s: matrix contains NaN or Inf", "%s: sizes of %s and %s do not agree". After a report
// every output is empty.
#ifndef ARRLIB_BUILTINS_LEAST_SQUARES_H
#define ARRLIB_BUILTINS_LEAST_SQUARES_H

#include "core/matrix.h"

// x that minimises (b - A x)' inv(V) (b - A x) for each column of b, and its standard errors dx, NaN when
// A is square. A covariance V that is singular is right as long as it is positive definite where A
// leaves a residual. "lscov: problem must be over-determined", "lscov: covariance must be positive
// definite"; the warning "lscov: rank deficient, rank = %d, tol = %g" when A has not full rank: x has zeros
// then.
ARRLIB_API M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V);
ARRLIB_API M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V, i_o_t, Mr<double> x);
ARRLIB_API M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V, i_o_t, Mr<double> x, Mr<double> dx);

// x without negative elements that minimises norm(b - A x), by active sets (Lawson and Hanson, Solving
// Least Squares Problems, 1974), and w = A'(b - A x), no more than tol (10 eps norm(A, 1) max(m, n)) where x
// is 0. "nnls: argument must be real", "nnls: argument must be a vector", "nnls: iteration did not
// converge".
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b);
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol);
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b, i_o_t, Mr<double> x);
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol, i_o_t, Mr<double> x);
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b, i_o_t, Mr<double> x, Mr<double> w);
ARRLIB_API M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol, i_o_t, Mr<double> x, Mr<double> w);

#endif
