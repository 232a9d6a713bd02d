// Polynomials. Coefficients stand in descending powers: [1 0 -2] is x^2 - 2. Results are rows unless
// something else is said. Arguments that should be vectors: "%s: argument must be a vector". After a
// report every output is empty.
#ifndef ARRLIB_BUILTINS_POLY_H
#define ARRLIB_BUILTINS_POLY_H

#include "core/matrix.h"

// --- roots ----------------------------------------------------------------------------------------

// Characteristic polynomial of a square matrix, or the polynomial with the elements of a vector for
// roots; its first coefficient is 1. Real when the roots are real or come in conjugate pairs. 1 for an
// empty A. "poly: argument must be a vector or a square matrix", "poly: matrix contains NaN or Inf".
ARRLIB_API M<double> poly(M<double> const& A);

// Roots as a column, from the eigenvalues of the companion matrix; zeros at the end of p are roots at
// 0. Empty for a constant. "roots: coefficients must be finite", "roots: algorithm did not converge".
ARRLIB_API M<double> roots(M<double> const& p);

// Eigenvalues of the matrix polynomial A0 + z A1 + z^2 A2 + ... as a column of n p elements, for p + 1
// square matrices of order n; those of A0 alone are its own. X holds their vectors, of length 1, in n
// rows. A singular last matrix gives infinite ones. "polyeig: matrix must be square", "polyeig: sizes of
// %s and %s do not agree", "polyeig: matrix contains NaN or Inf", "polyeig: algorithm did not converge".
ARRLIB_API M<double> polyeig(M<double> const& A0);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4);
ARRLIB_API M<double> polyeig(M<double> const& A0, i_o_t, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, i_o_t, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, i_o_t, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, i_o_t, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4, i_o_t,
                             Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, i_o_t, Mr<double> X, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, i_o_t, Mr<double> X, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, i_o_t, Mr<double> X, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, i_o_t, Mr<double> X, Mr<double> E);
ARRLIB_API M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4, i_o_t,
                             Mr<double> X, Mr<double> E);

// --- values and fits ------------------------------------------------------------------------------

// Values at the elements of x, in the shape of x, by Horner's rule; zeros for an empty p. With the S of
// polyfit, delta holds the standard error of a prediction at each element: "polyval: sizes of %s and %s
// do not agree".
ARRLIB_API M<double> polyval(M<double> const& p, M<double> const& x);
ARRLIB_API M<double> polyval(M<double> const& p, M<double> const& x, M<double> const& S);
ARRLIB_API M<double> polyval(M<double> const& p, M<double> const& x, i_o_t, Mr<double> y);
ARRLIB_API M<double> polyval(M<double> const& p, M<double> const& x, M<double> const& S, i_o_t, Mr<double> y);
ARRLIB_API M<double> polyval(M<double> const& p, M<double> const& x, M<double> const& S, i_o_t, Mr<double> y, Mr<double> delta);

// Value at a square matrix, in the sense of matrix products: "polyvalm: matrix must be square".
ARRLIB_API M<double> polyvalm(M<double> const& p, M<double> const& A);

// The polynomial of degree n through the points (x, y) in the sense of least squares, through a QR
// factorisation of the Vandermonde matrix with its columns scaled. S has n + 3 rows: the factor R, then
// the degrees of freedom, then the norm of the residuals, each filled up with zeros. Fewer points, or
// fewer different ones, than coefficients give a solution with zeros and the warning "polyfit:
// polynomial is badly conditioned". "polyfit: sizes of %s and %s do not agree", "polyfit: argument must
// be scalar", "polyfit: degree must be a non-negative integer", "polyfit: matrix contains NaN or Inf".
ARRLIB_API M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n);
ARRLIB_API M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n, i_o_t, Mr<double> p);
ARRLIB_API M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n, i_o_t, Mr<double> p, Mr<double> S);

// --- products, quotients, derivatives -------------------------------------------------------------

// Product of polynomials: length(a) + length(b) - 1 coefficients, lying as the longer operand does, or
// as b for equal lengths. Empty when an operand is.
ARRLIB_API M<double> conv(M<double> const& a, M<double> const& b);

// Quotient q and remainder r of polynomials, lying as b does: b = conv(a, q) + r, where r has the length
// of b. A shorter b gives 0 and b. "deconv: first coefficient must be non-zero".
ARRLIB_API M<double> deconv(M<double> const& b, M<double> const& a);
ARRLIB_API M<double> deconv(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q);
ARRLIB_API M<double> deconv(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q, Mr<double> r);

// Derivative of a polynomial, of the product of two, or, with two outputs, of the quotient b/a as
// numerator and denominator. Leading zeros are dropped; the derivative of a constant is 0.
ARRLIB_API M<double> polyder(M<double> const& p);
ARRLIB_API M<double> polyder(M<double> const& p, i_o_t, Mr<double> q);
ARRLIB_API M<double> polyder(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> polyder(M<double> const& a, M<double> const& b, i_o_t, Mr<double> q);
ARRLIB_API M<double> polyder(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q, Mr<double> d);

// Integral of a polynomial, with the constant k, or 0: "polyint: argument must be scalar".
ARRLIB_API M<double> polyint(M<double> const& p);
ARRLIB_API M<double> polyint(M<double> const& p, M<double> const& k);

#endif
