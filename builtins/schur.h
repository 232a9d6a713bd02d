// Reduced forms of square matrices under unitary transformations, and scaling. Sparse matrices are made
// full. Every function: "%s: matrix must be two-dimensional", "%s: matrix must be square", "%s: matrix
// contains NaN or Inf", "%s: algorithm did not converge". After a report every output is empty.
#ifndef ARRLIB_BUILTINS_SCHUR_H
#define ARRLIB_BUILTINS_SCHUR_H

#include "core/matrix.h"

// Hessenberg form H, zero below the first subdiagonal, with A = P H P' and unitary P. That of a symmetric
// or Hermitian A is tridiagonal.
ARRLIB_API M<double> hess(M<double> const& A);
ARRLIB_API M<double> hess(M<double> const& A, i_o_t, Mr<double> H);
ARRLIB_API M<double> hess(M<double> const& A, i_o_t, Mr<double> P, Mr<double> H);

// Schur form T with A = U T U' and unitary U: upper triangular for a complex A or with the option
// "complex"; for a real one with a 2x2 block [a b; c a], b c < 0, on the diagonal for each conjugate pair
// of eigenvalues. "schur: unknown option %s" for options other than "complex" and "real".
ARRLIB_API M<double> schur(M<double> const& A);
ARRLIB_API M<double> schur(M<double> const& A, M<double> const& option);
ARRLIB_API M<double> schur(M<double> const& A, i_o_t, Mr<double> T);
ARRLIB_API M<double> schur(M<double> const& A, M<double> const& option, i_o_t, Mr<double> T);
ARRLIB_API M<double> schur(M<double> const& A, i_o_t, Mr<double> U, Mr<double> T);
ARRLIB_API M<double> schur(M<double> const& A, M<double> const& option, i_o_t, Mr<double> U, Mr<double> T);

// The complex, triangular Schur form of a real one, by rotations: U and T with the same product U T U'.
// "rsf2csf: sizes of %s and %s do not agree".
ARRLIB_API M<double> rsf2csf(M<double> const& U, M<double> const& T);
ARRLIB_API M<double> rsf2csf(M<double> const& U, M<double> const& T, i_o_t, Mr<double> complex_U);
ARRLIB_API M<double> rsf2csf(M<double> const& U, M<double> const& T, i_o_t, Mr<double> complex_U, Mr<double> complex_T);

// Real V and D with blocks [a b; -b a] on its diagonal, of eigenvectors V and a diagonal matrix D of
// eigenvalues a +- bi of a real matrix: V D / V stays. "cdf2rdf: eigenvalues are not in conjugate pairs",
// "cdf2rdf: sizes of %s and %s do not agree".
ARRLIB_API M<double> cdf2rdf(M<double> const& V, M<double> const& D);
ARRLIB_API M<double> cdf2rdf(M<double> const& V, M<double> const& D, i_o_t, Mr<double> real_V);
ARRLIB_API M<double> cdf2rdf(M<double> const& V, M<double> const& D, i_o_t, Mr<double> real_V, Mr<double> real_D);

// Balanced form B = T \ A T, whose rows and columns have nearly the same norms; T is a permutation times
// powers of two.
ARRLIB_API M<double> balance(M<double> const& A);
ARRLIB_API M<double> balance(M<double> const& A, i_o_t, Mr<double> B);
ARRLIB_API M<double> balance(M<double> const& A, i_o_t, Mr<double> T, Mr<double> B);

// Generalised Schur form: upper triangular complex AA and BB with Q A Z = AA, Q B Z = BB and unitary Q and
// Z; V holds generalised eigenvectors of length 1, A V diag(BB) = B V diag(AA). "qz: sizes of %s and %s do
// not agree".
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA);
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB);
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q);
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q, Mr<double> Z);
ARRLIB_API M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q, Mr<double> Z, Mr<double> V);

#endif
