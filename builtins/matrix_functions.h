// Functions of square matrices, in the sense of matrix products, and equations with products of matrices.
// Sparse matrices are made full; empty ones give empty results. Every function: "%s: matrix must be
// two-dimensional", "%s: matrix must be square", "%s: matrix contains NaN or Inf". After a report every
// output is empty.
#ifndef ARRLIB_BUILTINS_MATRIX_FUNCTIONS_H
#define ARRLIB_BUILTINS_MATRIX_FUNCTIONS_H

#include "core/matrix.h"

// --- exponentials ---------------------------------------------------------------------------------
// "%s: matrix is too large" where even scaled elements pass the largest number.

// Matrix exponential, by scaling, a diagonal Padé approximant and repeated squares (Al-Mohy and Higham, A
// new scaling and squaring algorithm for the matrix exponential, 2009). For a diagonal A the exponentials
// of its diagonal.
ARRLIB_API M<double> expm(M<double> const& A);

// Matrix exponential by the Padé approximants of expm, whatever the shape of A.
ARRLIB_API M<double> expm1(M<double> const& A);

// Matrix exponential by its Taylor series, as an example of a poor method: terms are added until they
// make no difference.
ARRLIB_API M<double> expm2(M<double> const& A);

// Matrix exponential by eigenvalues and eigenvectors, inaccurate for a nearly defective A, with the warning
// "expm3: matrix is close to singular or badly scaled, rcond = %g"; infinities and "expm3: matrix is
// singular to working precision" when there is no full set of vectors. "expm3: algorithm did not
// converge".
ARRLIB_API M<double> expm3(M<double> const& A);

// --- other functions ------------------------------------------------------------------------------
// By the complex Schur form: "%s: algorithm did not converge". The second output is an estimate of the
// relative error. Without it a large one gives the warning "%s: result may be inaccurate, error = %g".
// For a real A an imaginary part of nothing but rounding errors is dropped.

// Principal logarithm, by square roots and a Padé approximant of the triangular form (Higham, Functions
// of Matrices, 2008); the estimate is the relative residual of expm(X) - A. A singular A gives infinities
// and the warning "logm: matrix is singular to working precision".
ARRLIB_API M<double> logm(M<double> const& A);
ARRLIB_API M<double> logm(M<double> const& A, i_o_t, Mr<double> X);
ARRLIB_API M<double> logm(M<double> const& A, i_o_t, Mr<double> X, Mr<double> esterr);

// Principal square root, by the recurrence of Björck and Hammarling on the triangular form; the estimate
// is the relative residual of X X - A. An A without a root gives infinities or NaN and the warning
// "sqrtm: matrix is singular to working precision".
ARRLIB_API M<double> sqrtm(M<double> const& A);
ARRLIB_API M<double> sqrtm(M<double> const& A, i_o_t, Mr<double> X);
ARRLIB_API M<double> sqrtm(M<double> const& A, i_o_t, Mr<double> X, Mr<double> esterr);

// The function named f of a matrix, by Parlett's recurrence on the triangular form: f is called once, with
// the eigenvalues in a column. Eigenvalues that lie close together make the result inaccurate. "funm:
// function must be given by name", "funm: function must give one value for each eigenvalue".
ARRLIB_API M<double> funm(M<double> const& A, M<double> const& f);
ARRLIB_API M<double> funm(M<double> const& A, M<double> const& f, i_o_t, Mr<double> F);
ARRLIB_API M<double> funm(M<double> const& A, M<double> const& f, i_o_t, Mr<double> F, Mr<double> esterr);

// --- equations ------------------------------------------------------------------------------------

// Solution X of the Lyapunov equation A X + X A' = -C, or of the Sylvester equation A X + X B = -C, by
// Schur forms. The warning "lyap: matrix is singular to working precision" says that the solution is not
// unique or nearly so. "lyap: sizes of %s and %s do not agree", "lyap: algorithm did not converge".
ARRLIB_API M<double> lyap(M<double> const& A, M<double> const& C);
ARRLIB_API M<double> lyap(M<double> const& A, M<double> const& B, M<double> const& C);

#endif
