// Triangular and orthogonal factors.
#ifndef ARRLIB_BUILTINS_FACTORIZATIONS_H
#define ARRLIB_BUILTINS_FACTORIZATIONS_H

#include "core/subscript.h"

// Triangular factors of a matrix of any shape, by rows exchanged: P*A = L*U with [L,U,P], L of ones on its diagonal; A =
// L*U with [L,U], L having its rows exchanged; U + L - I in one matrix with one output. A singular matrix is no error. The
// factors of a sparse matrix are sparse, its columns staying in order; with a threshold thresh from 0 to 1 (the default)
// the diagonal is taken for pivot where it is at least thresh times the largest element. NaN or Inf in a full matrix give factors of NaN.
// "lu: threshold must be between 0 and 1", "lu: matrix must be two-dimensional".
ARRLIB_API M<double> lu(M<double> const& A);
ARRLIB_API M<double> lu(M<double> const& A, M<double> const& thresh);
ARRLIB_API M<double> lu(M<double> const& A, i_o_t, Mr<double> Y);
ARRLIB_API M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> Y);
ARRLIB_API M<double> lu(M<double> const& A, i_o_t, Mr<double> L, Mr<double> U);
ARRLIB_API M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> L, Mr<double> U);
ARRLIB_API M<double> lu(M<double> const& A, i_o_t, Mr<double> L, Mr<double> U, Mr<double> P);
ARRLIB_API M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> L, Mr<double> U, Mr<double> P);

// The upper triangular R with R'*R = A, from the upper triangle of A; sparse for a sparse A. With [R,p], p is 0, or for a
// matrix that is not positive definite the order at which it fails, R then being the factor of order p-1. "chol: matrix
// must be positive definite" without p, "chol: matrix must be square".
ARRLIB_API M<double> chol(M<double> const& A);
ARRLIB_API M<double> chol(M<double> const& A, i_o_t, Mr<double> R);
ARRLIB_API M<double> chol(M<double> const& A, i_o_t, Mr<double> R, Mr<double> p);

// Orthogonal factors A = Q*R of an m x n matrix, Q m x m and R m x n upper triangular; with one output R. [Q,R,E]
// exchanges columns so that the diagonal of R falls: A*E = Q*R. With a second argument of 0 only min(m,n) columns of Q and rows of
// R are made, and E is a row of column numbers: A(:,E) = Q*R. Of a sparse matrix only R is made, or with a second argument B [C,R], C =
// Q'*B, both with min(m,n) rows. NaN or Inf give factors of NaN. "qr: only R and [C,R] = qr(S,B) are available for a sparse matrix", "qr: second
// argument must be 0 for a full matrix", "qr: sizes of %s and %s do not agree", "qr: matrix must be two-dimensional".
ARRLIB_API M<double> qr(M<double> const& A);
ARRLIB_API M<double> qr(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> qr(M<double> const& A, i_o_t, Mr<double> R);
ARRLIB_API M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> R);
ARRLIB_API M<double> qr(M<double> const& A, i_o_t, Mr<double> Q, Mr<double> R);
ARRLIB_API M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> Q, Mr<double> R);
ARRLIB_API M<double> qr(M<double> const& A, i_o_t, Mr<double> Q, Mr<double> R, Mr<double> E);
ARRLIB_API M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> Q, Mr<double> R, Mr<double> E);

#endif
