// The scalar kernels of the element-wise operations, for code that works element by element. A NaN
// argument gives NaN unless said otherwise. An array operation gives the same bits for every element
// as its kernel, on every processor and for any number of threads.
#ifndef ARRLIB_OPS_KERNELS_H
#define ARRLIB_OPS_KERNELS_H

#include "core/api.h"

struct nx_complex {
    double re, im;
};

// --- elementary functions: at most 1 ulp -----------------------------------------------------------
// Outside the real range of a function the real kernel gives NaN, the complex one goes on. Branch
// cuts of the complex kernels lie where C99 Annex G has them; the sign of a zero tells the sides.
ARRLIB_API double nx_acos(double x);
ARRLIB_API double nx_acosh(double x);
ARRLIB_API double nx_acot(double x);
ARRLIB_API double nx_acoth(double x);
ARRLIB_API double nx_acsc(double x);
ARRLIB_API double nx_acsch(double x);
ARRLIB_API double nx_asec(double x);
ARRLIB_API double nx_asech(double x);
ARRLIB_API double nx_asin(double x);
ARRLIB_API double nx_asinh(double x);
ARRLIB_API double nx_atan(double x);
ARRLIB_API double nx_atanh(double x);
ARRLIB_API double nx_cos(double x);
ARRLIB_API double nx_cosh(double x);
ARRLIB_API double nx_cot(double x);
ARRLIB_API double nx_coth(double x);
ARRLIB_API double nx_csc(double x);
ARRLIB_API double nx_csch(double x);
ARRLIB_API double nx_exp(double x);
ARRLIB_API double nx_log(double x);
ARRLIB_API double nx_log10(double x);
ARRLIB_API double nx_log2(double x);
// 2^x.
ARRLIB_API double nx_pow2(double x);
ARRLIB_API double nx_sec(double x);
ARRLIB_API double nx_sech(double x);
ARRLIB_API double nx_sin(double x);
// sin(pi x)/(pi x); 1 at 0.
ARRLIB_API double nx_sinc(double x);
ARRLIB_API double nx_sinh(double x);
ARRLIB_API double nx_sqrt(double x);
ARRLIB_API double nx_tan(double x);
ARRLIB_API double nx_tanh(double x);
// The angle of the point (x, y) in (-pi, pi].
ARRLIB_API double nx_atan2(double y, double x);
// x^y as the C function pow: x^0 and 1^y are 1, even of NaN.
ARRLIB_API double nx_power(double x, double y);

ARRLIB_API nx_complex nx_acos(nx_complex x);
ARRLIB_API nx_complex nx_acosh(nx_complex x);
ARRLIB_API nx_complex nx_acot(nx_complex x);
ARRLIB_API nx_complex nx_acoth(nx_complex x);
ARRLIB_API nx_complex nx_acsc(nx_complex x);
ARRLIB_API nx_complex nx_acsch(nx_complex x);
ARRLIB_API nx_complex nx_asec(nx_complex x);
ARRLIB_API nx_complex nx_asech(nx_complex x);
ARRLIB_API nx_complex nx_asin(nx_complex x);
ARRLIB_API nx_complex nx_asinh(nx_complex x);
ARRLIB_API nx_complex nx_atan(nx_complex x);
ARRLIB_API nx_complex nx_atanh(nx_complex x);
ARRLIB_API nx_complex nx_cos(nx_complex x);
ARRLIB_API nx_complex nx_cosh(nx_complex x);
ARRLIB_API nx_complex nx_cot(nx_complex x);
ARRLIB_API nx_complex nx_coth(nx_complex x);
ARRLIB_API nx_complex nx_csc(nx_complex x);
ARRLIB_API nx_complex nx_csch(nx_complex x);
ARRLIB_API nx_complex nx_exp(nx_complex x);
ARRLIB_API nx_complex nx_log(nx_complex x);
ARRLIB_API nx_complex nx_log10(nx_complex x);
ARRLIB_API nx_complex nx_log2(nx_complex x);
ARRLIB_API nx_complex nx_pow2(nx_complex x);
ARRLIB_API nx_complex nx_sec(nx_complex x);
ARRLIB_API nx_complex nx_sech(nx_complex x);
ARRLIB_API nx_complex nx_sin(nx_complex x);
ARRLIB_API nx_complex nx_sinc(nx_complex x);
ARRLIB_API nx_complex nx_sinh(nx_complex x);
ARRLIB_API nx_complex nx_sqrt(nx_complex x);
ARRLIB_API nx_complex nx_tan(nx_complex x);
ARRLIB_API nx_complex nx_tanh(nx_complex x);
ARRLIB_API nx_complex nx_power(nx_complex x, nx_complex y);

// --- special functions: at most 4 ulp, or 1e-14 relative ------------------------------------------
// The beta function of positive arguments: gamma(x) gamma(y) / gamma(x + y).
ARRLIB_API double nx_beta(double x, double y);
ARRLIB_API double nx_erf(double x);
// erf(y) - erf(x), without cancellation: "erf: wrong values" when y < x.
ARRLIB_API double nx_erf(double x, double y);
ARRLIB_API double nx_erfc(double x);
// exp(x^2) erfc(x).
ARRLIB_API double nx_erfcx(double x);
// The x in (-Inf, Inf) whose erf is the argument; NaN outside [-1, 1].
ARRLIB_API double nx_erfinv(double x);
// Inf at 0 and at negative integers.
ARRLIB_API double nx_gamma(double x);
// The regularised lower incomplete gamma function P(a, x), of x >= 0 and a >= 0.
ARRLIB_API double nx_gammainc(double x, double a);
// log(|gamma(x)|).
ARRLIB_API double nx_gammaln(double x);

// --- arithmetic -----------------------------------------------------------------------------------
// x + y, x - y, x y and x / y.
ARRLIB_API double nx_plus(double x, double y);
ARRLIB_API double nx_minus(double x, double y);
ARRLIB_API double nx_times(double x, double y);
ARRLIB_API double nx_rdivide(double x, double y);
// y / x.
ARRLIB_API double nx_ldivide(double x, double y);
ARRLIB_API double nx_uminus(double x);
ARRLIB_API double nx_uplus(double x);
ARRLIB_API double nx_abs(double x);
// -1, 0 or 1; x/|x| of complex numbers.
ARRLIB_API double nx_sign(double x);
ARRLIB_API double nx_ceil(double x);
// Toward zero.
ARRLIB_API double nx_fix(double x);
ARRLIB_API double nx_floor(double x);
// Halves away from zero.
ARRLIB_API double nx_round(double x);
// x - y fix(x/y), with the sign of x; NaN for y = 0.
ARRLIB_API double nx_rem(double x, double y);
// x - y floor(x/y), with the sign of y; x for y = 0.
ARRLIB_API double nx_mod(double x, double y);
// x 2^fix(y).
ARRLIB_API double nx_pow2(double x, double y);
// The larger and the smaller; the other one of a NaN. Of complex numbers the one of larger and
// smaller modulus; x in a tie.
ARRLIB_API double nx_max(double x, double y);
ARRLIB_API double nx_min(double x, double y);
ARRLIB_API double nx_conj(double x);
ARRLIB_API double nx_imag(double x);
// 0 or pi.
ARRLIB_API double nx_angle(double x);

ARRLIB_API nx_complex nx_plus(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_minus(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_times(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_rdivide(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_ldivide(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_uminus(nx_complex x);
ARRLIB_API nx_complex nx_uplus(nx_complex x);
ARRLIB_API nx_complex nx_sign(nx_complex x);
ARRLIB_API nx_complex nx_ceil(nx_complex x);
ARRLIB_API nx_complex nx_fix(nx_complex x);
ARRLIB_API nx_complex nx_floor(nx_complex x);
ARRLIB_API nx_complex nx_round(nx_complex x);
ARRLIB_API nx_complex nx_max(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_min(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_conj(nx_complex x);
ARRLIB_API double nx_abs(nx_complex x);
ARRLIB_API double nx_imag(nx_complex x);
ARRLIB_API double nx_angle(nx_complex x);

// --- comparisons and logic: 0 or 1 -----------------------------------------------------------------
// Order compares real parts, equality both parts; whatever is not 0 in either part is true, NaN too.
ARRLIB_API double nx_lt(double x, double y);
ARRLIB_API double nx_le(double x, double y);
ARRLIB_API double nx_gt(double x, double y);
ARRLIB_API double nx_ge(double x, double y);
ARRLIB_API double nx_eq(double x, double y);
ARRLIB_API double nx_ne(double x, double y);
ARRLIB_API double nx_and(double x, double y);
ARRLIB_API double nx_or(double x, double y);
ARRLIB_API double nx_xor(double x, double y);
ARRLIB_API double nx_not(double x);
ARRLIB_API double nx_isfinite(double x);
ARRLIB_API double nx_isinf(double x);
ARRLIB_API double nx_isnan(double x);

ARRLIB_API double nx_lt(nx_complex x, nx_complex y);
ARRLIB_API double nx_le(nx_complex x, nx_complex y);
ARRLIB_API double nx_gt(nx_complex x, nx_complex y);
ARRLIB_API double nx_ge(nx_complex x, nx_complex y);
ARRLIB_API double nx_eq(nx_complex x, nx_complex y);
ARRLIB_API double nx_ne(nx_complex x, nx_complex y);
ARRLIB_API double nx_and(nx_complex x, nx_complex y);
ARRLIB_API double nx_or(nx_complex x, nx_complex y);
ARRLIB_API double nx_xor(nx_complex x, nx_complex y);
ARRLIB_API double nx_not(nx_complex x);
ARRLIB_API double nx_isfinite(nx_complex x);
ARRLIB_API double nx_isinf(nx_complex x);
ARRLIB_API double nx_isnan(nx_complex x);

// --- bits of integers up to 2^53 ------------------------------------------------------------------
// Arguments are truncated; bits are counted from 1. NaN, negative, infinite and larger arguments
// give NaN.
ARRLIB_API double nx_bitand(double x, double y);
ARRLIB_API double nx_bitor(double x, double y);
ARRLIB_API double nx_bitxor(double x, double y);
// The complement in n bits.
ARRLIB_API double nx_bitcmp(double x, double n);
ARRLIB_API double nx_bitget(double x, double bit);
ARRLIB_API double nx_bitset(double x, double bit);
ARRLIB_API double nx_bitreset(double x, double bit);
// To the left, or to the right by a negative count; what leaves the 53 bits is lost.
ARRLIB_API double nx_bitshift(double x, double count);
// Each part on its own.
ARRLIB_API nx_complex nx_bitand(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_bitor(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_bitxor(nx_complex x, nx_complex y);
ARRLIB_API nx_complex nx_bitcmp(nx_complex x, nx_complex n);
ARRLIB_API nx_complex nx_bitget(nx_complex x, nx_complex bit);
ARRLIB_API nx_complex nx_bitset(nx_complex x, nx_complex bit);
ARRLIB_API nx_complex nx_bitreset(nx_complex x, nx_complex bit);
ARRLIB_API nx_complex nx_bitshift(nx_complex x, nx_complex count);

#endif
