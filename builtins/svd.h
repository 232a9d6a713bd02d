// Singular values of full matrices; sparse ones are made full. "%s: matrix must be two-dimensional",
// "%s: matrix contains NaN or Inf", "%s: algorithm did not converge". After a report every output is
// empty.
#ifndef ARRLIB_BUILTINS_SVD_H
#define ARRLIB_BUILTINS_SVD_H

#include "core/matrix.h"

// Singular values as a column of min(m, n), falling, or unitary U and V and the diagonal S, m x n, with
// A = U S V'. With a second argument 0 and m > n only the first n columns of U, and S n x n. Empty for an
// empty A. By the divide and conquer driver, or QR iterations where that one fails.
ARRLIB_API M<double> svd(M<double> const& A);
ARRLIB_API M<double> svd(M<double> const& A, i_o_t, Mr<double> s);
ARRLIB_API M<double> svd(M<double> const& A, i_o_t, Mr<double> U, Mr<double> S);
ARRLIB_API M<double> svd(M<double> const& A, i_o_t, Mr<double> U, Mr<double> S, Mr<double> V);
ARRLIB_API M<double> svd(M<double> const& A, M<double> const& economy);
ARRLIB_API M<double> svd(M<double> const& A, M<double> const& economy, i_o_t, Mr<double> s);
ARRLIB_API M<double> svd(M<double> const& A, M<double> const& economy, i_o_t, Mr<double> U, Mr<double> S);
ARRLIB_API M<double> svd(M<double> const& A, M<double> const& economy, i_o_t, Mr<double> U, Mr<double> S, Mr<double> V);

// Generalised singular values of two matrices of as many columns, rising: A = U C X', B = V S X' with
// unitary U and V and diagonal C and S, C'C + S'S = I. C and S have as many columns as [A;B] has rank, and
// the values are those of C ./ S. "gsvd: sizes of %s and %s do not agree".
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> s);
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V);
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X);
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X, Mr<double> C);
ARRLIB_API M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X, Mr<double> C, Mr<double> S);

#endif
