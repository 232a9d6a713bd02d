// Special functions outside the engine: Bessel and Airy functions, elliptic and exponential integrals,
// Legendre functions, and relatives of the gamma and error functions.
//
// Two operands have the same sizes, or one of them has one element: "%s: wrong dimensions of: %s, %s"
// with the function and the names of both. An empty operand gives an empty result, NaN gives NaN.
// Sparse operands count as full ones.
#ifndef ARRLIB_BUILTINS_SPECFUN_H
#define ARRLIB_BUILTINS_SPECFUN_H

#include "core/matrix.h"
#include "core/subscript.h"

// --- Bessel functions -----------------------------------------------------------------------------
// Orders are real, of any sign: "%s: argument must be real"; arguments are real or complex. A row of
// orders with a column of arguments gives a table, one column for each order. Results are complex for
// complex arguments, and where an element of a real one is negative and its value is not real. `ierr`
// tells of each element: 0 fine; 1 an argument is no number, value NaN; 2 overflow, infinite; 3 and 4
// an operand above 2^15 and 2^30, so that the last place of it is worth half of the digits and nearly
// all of them; 5 no convergence, NaN. A `scale` that is not 0 multiplies the values as each says.

// Bessel function of the first kind J; scaled by exp(-abs(imag(z))).
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z);
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale);
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr);

// Bessel function of the second kind Y, -Inf at 0; scaled by exp(-abs(imag(z))).
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z);
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale);
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w);
ARRLIB_API M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr);

// Modified Bessel function of the first kind I; scaled by exp(-abs(real(z))).
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z);
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale);
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w);
ARRLIB_API M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr);

// Modified Bessel function of the second kind K, Inf at 0; scaled by exp(z).
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z);
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale);
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr);

// Hankel function, J + iY for k = 1 (default) and J - iY for k = 2, always complex; scaled by exp(-iz)
// and exp(iz). "besselh: K must be 1 or 2"
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& z);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w);
ARRLIB_API M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr);

// Bessel function J of a real or complex argument, and I of the imaginary part of a purely imaginary
// one: the older name.
ARRLIB_API M<double> bessel(M<double> const& nu, M<double> const& z);

// Airy function of real or complex z: Ai for k = 0 (default), its derivative for 1, Bi for 2, its
// derivative for 3: "airy: K must be 0, 1, 2 or 3". `ierr` as for Bessel functions, of (2/3) z^(3/2).
ARRLIB_API M<double> airy(M<double> const& z);
ARRLIB_API M<double> airy(M<double> const& k, M<double> const& z);
ARRLIB_API M<double> airy(M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> airy(M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);
ARRLIB_API M<double> airy(M<double> const& k, M<double> const& z, i_o_t, Mr<double> w);
ARRLIB_API M<double> airy(M<double> const& k, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr);

// --- relatives of the gamma and error functions ---------------------------------------------------

// Regularised incomplete beta function of x in [0,1] and positive a and b; any of the three may have
// one element. "betainc: X must be in [0,1]", "betainc: parameters must be positive", "betainc: argument
// must be real"
ARRLIB_API M<double> betainc(M<double> const& x, M<double> const& a, M<double> const& b);

// Logarithm of the beta function, gammaln(a) + gammaln(b) - gammaln(a+b) without their cancellation.
// "betaln: argument must be real"
ARRLIB_API M<double> betaln(M<double> const& a, M<double> const& b);

// Inverse of erfc: NaN outside [0,2], Inf at 0, -Inf at 2. "erfcinv: argument must be real"
ARRLIB_API M<double> erfcinv(M<double> const& y);

// Digamma function, or polygamma function of order k: derivative k of digamma; at the poles 0, -1, -2
// ... its limit from the right. "psi: argument must be real", and for k "psi: argument must be an
// integer", "psi: K must not be negative".
ARRLIB_API M<double> psi(M<double> const& x);
ARRLIB_API M<double> psi(M<double> const& k, M<double> const& x);

// --- integrals, elliptic and Legendre functions ---------------------------------------------------

// Exponential integral E1, the integral of exp(-t)/t from x to infinity; -Ei(-x) - i*pi where x < 0,
// Inf at 0. Complex x too.
ARRLIB_API M<double> expint(M<double> const& x);

// Jacobian elliptic functions sn, cn and dn of real u with parameter m in [0,1], by the
// arithmetic-geometric mean to the relative tolerance tol (default: all digits). "ellipj: M must be in
// [0,1]", "ellipj: argument must be real"
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn, Mr<double> cn);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn, Mr<double> cn, Mr<double> dn);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn, Mr<double> cn);
ARRLIB_API M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn, Mr<double> cn, Mr<double> dn);

// Complete elliptic integrals of the first kind, k, and second kind, e, of parameter m in [0,1]; Inf and
// 1 at m = 1. `tol` as for ellipj. "ellipke: M must be in [0,1]", "ellipke: argument must be real"
ARRLIB_API M<double> ellipke(M<double> const& m);
ARRLIB_API M<double> ellipke(M<double> const& m, M<double> const& tol);
ARRLIB_API M<double> ellipke(M<double> const& m, i_o_t, Mr<double> k);
ARRLIB_API M<double> ellipke(M<double> const& m, i_o_t, Mr<double> k, Mr<double> e);
ARRLIB_API M<double> ellipke(M<double> const& m, M<double> const& tol, i_o_t, Mr<double> k);
ARRLIB_API M<double> ellipke(M<double> const& m, M<double> const& tol, i_o_t, Mr<double> k, Mr<double> e);

// Associated Legendre functions of degree n and orders m = 0...n, with the factor (-1)^m, at x in
// [-1,1]: (n+1) x numel(x) for a vector, (n+1) x size(x) otherwise. 'sch' gives Schmidt's
// semi-normalised functions, 'norm' those whose squares have the integral 1, both without that factor.
// n: "legendre: argument must be scalar", "legendre: argument must be an integer" (not negative either).
// "legendre: argument must be real", "legendre: X must be in [-1,1]", "legendre: too many dimensions",
// "legendre: unknown option %s"
ARRLIB_API M<double> legendre(M<double> const& n, M<double> const& x);
ARRLIB_API M<double> legendre(M<double> const& n, M<double> const& x, M<double> const& normalization);

#endif
