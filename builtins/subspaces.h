// Spaces that the columns of a matrix span, and those that it maps to zero. Sparse matrices are made
// full. "%s: matrix must be two-dimensional", "%s: matrix contains NaN or Inf", "%s: algorithm did not
// converge".
#ifndef ARRLIB_BUILTINS_SUBSPACES_H
#define ARRLIB_BUILTINS_SUBSPACES_H

#include "core/matrix.h"

// Orthonormal basis of the null space, from the singular vectors of values up to max(m, n) eps s(1);
// empty when there is none. The option 'r' gives a basis of small rational numbers from rref instead.
// "null: unknown option %s".
ARRLIB_API M<double> null(M<double> const& A);
ARRLIB_API M<double> null(M<double> const& A, M<double> const& option);

// Orthonormal basis of the space that the columns span, from the singular vectors of values above
// max(m, n) eps s(1); empty for a matrix of zeros.
ARRLIB_API M<double> orth(M<double> const& A);

// Reduced row echelon form by Gauss-Jordan elimination with partial pivoting; elements up to tol
// (max(m, n) eps norm(A, Inf)) count as zeros. jb are the pivot columns as a row.
ARRLIB_API M<double> rref(M<double> const& A);
ARRLIB_API M<double> rref(M<double> const& A, M<double> const& tol);
ARRLIB_API M<double> rref(M<double> const& A, i_o_t, Mr<double> R);
ARRLIB_API M<double> rref(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> R);
ARRLIB_API M<double> rref(M<double> const& A, i_o_t, Mr<double> R, Mr<double> jb);
ARRLIB_API M<double> rref(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> R, Mr<double> jb);

// The largest principal angle, in radians, between the spaces that the columns of two matrices span; 0
// when one of them is nothing but 0. "subspace: sizes of %s and %s do not agree" (rows).
ARRLIB_API M<double> subspace(M<double> const& A, M<double> const& B);

#endif
