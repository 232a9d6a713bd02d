// Eigenvalues and eigenvectors of full matrices; sparse ones are made full. Every function: "%s: matrix
// must be two-dimensional", "%s: matrix must be square", "%s: matrix contains NaN or Inf", "%s:
// algorithm did not converge". After a report every output is empty.
#ifndef ARRLIB_BUILTINS_EIGEN_H
#define ARRLIB_BUILTINS_EIGEN_H

#include "core/matrix.h"

// Eigenvalues as a column, or a matrix V of eigenvectors and a diagonal matrix D of eigenvalues, A V =
// V D. A symmetric or Hermitian A gives ascending real eigenvalues and orthonormal vectors; another one
// gives vectors of length 1, and conjugate pairs side by side. The option "nobalance" leaves the rows and
// columns of A unscaled. With a matrix B the problem is A V = B V D: for symmetric A and positive
// definite B with V' B V = I, else by the QZ method, with infinite eigenvalues for a singular B.
// "eig: sizes of %s and %s do not agree", "eig: unknown option %s".
ARRLIB_API M<double> eig(M<double> const& A);
ARRLIB_API M<double> eig(M<double> const& A, i_o_t, Mr<double> d);
ARRLIB_API M<double> eig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D);
ARRLIB_API M<double> eig(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> eig(M<double> const& A, M<double> const& B, i_o_t, Mr<double> d);
ARRLIB_API M<double> eig(M<double> const& A, M<double> const& B, i_o_t, Mr<double> V, Mr<double> D);

// Condition numbers of the eigenvalues as a column: the reciprocal cosines of the angles between left
// and right eigenvectors; large ones for eigenvalues that are nearly multiple. With two outputs or
// three, V and D of eig come first.
ARRLIB_API M<double> condeig(M<double> const& A);
ARRLIB_API M<double> condeig(M<double> const& A, i_o_t, Mr<double> s);
ARRLIB_API M<double> condeig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D);
ARRLIB_API M<double> condeig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D, Mr<double> s);

#endif
