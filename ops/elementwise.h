// The operations that work element by element, as functions. What each computes of one element is in
// ops/kernels.h.
//
// Operands have the same sizes, or one of them has one element: "%s: wrong dimensions of: %s, %s" with
// the operation and the names of both. An empty operand gives an empty result, but for eq and ne,
// which tell whether both are empty. A result is sparse where zeros stay zeros. A temporary that
// nobody else holds gives its storage to the result.
#ifndef ARRLIB_OPS_ELEMENTWISE_H
#define ARRLIB_OPS_ELEMENTWISE_H

#include "ops/apply.h"

// --- arithmetic on one value ----------------------------------------------------------------------

// The absolute value; the modulus of complex elements.
inline M<double> abs(M<double> const& x) { return arrlib::apply(op_abs, x); }
inline M<double> abs(M<double>&& x) { return arrlib::apply(op_abs, x, arrlib::temporary_x); }
// -1, 0 or 1; x/|x| of complex elements.
inline M<double> sign(M<double> const& x) { return arrlib::apply(op_sign, x); }
inline M<double> sign(M<double>&& x) { return arrlib::apply(op_sign, x, arrlib::temporary_x); }
// Rounds toward Inf, each part for itself.
inline M<double> ceil(M<double> const& x) { return arrlib::apply(op_ceil, x); }
inline M<double> ceil(M<double>&& x) { return arrlib::apply(op_ceil, x, arrlib::temporary_x); }
// Rounds toward zero.
inline M<double> fix(M<double> const& x) { return arrlib::apply(op_fix, x); }
inline M<double> fix(M<double>&& x) { return arrlib::apply(op_fix, x, arrlib::temporary_x); }
// Rounds toward -Inf.
inline M<double> floor(M<double> const& x) { return arrlib::apply(op_floor, x); }
inline M<double> floor(M<double>&& x) { return arrlib::apply(op_floor, x, arrlib::temporary_x); }
// Rounds to the nearest integer, halves away from zero.
inline M<double> round(M<double> const& x) { return arrlib::apply(op_round, x); }
inline M<double> round(M<double>&& x) { return arrlib::apply(op_round, x, arrlib::temporary_x); }
// The complex conjugate.
inline M<double> conj(M<double> const& x) { return arrlib::apply(op_conj, x); }
inline M<double> conj(M<double>&& x) { return arrlib::apply(op_conj, x, arrlib::temporary_x); }
// The imaginary part; 0 for real elements.
inline M<double> imag(M<double> const& x) { return arrlib::apply(op_imag, x); }
inline M<double> imag(M<double>&& x) { return arrlib::apply(op_imag, x, arrlib::temporary_x); }
// The angle of complex elements in radians; 0 or pi for real ones.
inline M<double> angle(M<double> const& x) { return arrlib::apply(op_angle, x); }
inline M<double> angle(M<double>&& x) { return arrlib::apply(op_angle, x, arrlib::temporary_x); }
// The same as angle.
inline M<double> arg(M<double> const& x) { return arrlib::apply(op_angle, x); }
inline M<double> arg(M<double>&& x) { return arrlib::apply(op_angle, x, arrlib::temporary_x); }
// -x.
inline M<double> uminus(M<double> const& x) { return arrlib::apply(op_uminus, x); }
inline M<double> uminus(M<double>&& x) { return arrlib::apply(op_uminus, x, arrlib::temporary_x); }
// 1 where an element is 0, else 0; logical.
inline M<double> mnot(M<double> const& x) { return arrlib::apply(op_not, x); }
inline M<double> mnot(M<double>&& x) { return arrlib::apply(op_not, x, arrlib::temporary_x); }

// --- exponentials, logarithms, roots; complex where an element is below 0 -------------------------

// e^x.
inline M<double> exp(M<double> const& x) { return arrlib::apply(op_exp, x); }
inline M<double> exp(M<double>&& x) { return arrlib::apply(op_exp, x, arrlib::temporary_x); }
// 2^x.
inline M<double> pow2(M<double> const& x) { return arrlib::apply(op_pow2_1, x); }
inline M<double> pow2(M<double>&& x) { return arrlib::apply(op_pow2_1, x, arrlib::temporary_x); }
// The natural logarithm.
inline M<double> log(M<double> const& x) { return arrlib::apply(op_log, x); }
inline M<double> log(M<double>&& x) { return arrlib::apply(op_log, x, arrlib::temporary_x); }
// The same as log.
inline M<double> reallog(M<double> const& x) { return arrlib::apply(op_log, x); }
inline M<double> reallog(M<double>&& x) { return arrlib::apply(op_log, x, arrlib::temporary_x); }
// The logarithm to the base 10.
inline M<double> log10(M<double> const& x) { return arrlib::apply(op_log10, x); }
inline M<double> log10(M<double>&& x) { return arrlib::apply(op_log10, x, arrlib::temporary_x); }
// The logarithm to the base 2.
inline M<double> log2(M<double> const& x) { return arrlib::apply(op_log2, x); }
inline M<double> log2(M<double>&& x) { return arrlib::apply(op_log2, x, arrlib::temporary_x); }
// The square root.
inline M<double> msqrt(M<double> const& x) { return arrlib::apply(op_sqrt, x); }
inline M<double> msqrt(M<double>&& x) { return arrlib::apply(op_sqrt, x, arrlib::temporary_x); }
// The same as msqrt.
inline M<double> realsqrt(M<double> const& x) { return arrlib::apply(op_sqrt, x); }
inline M<double> realsqrt(M<double>&& x) { return arrlib::apply(op_sqrt, x, arrlib::temporary_x); }

// --- trigonometric and hyperbolic functions -------------------------------------------------------
// In radians; complex where an element lies outside the real range of an inverse.

// Sine.
inline M<double> sin(M<double> const& x) { return arrlib::apply(op_sin, x); }
inline M<double> sin(M<double>&& x) { return arrlib::apply(op_sin, x, arrlib::temporary_x); }
// Cosine.
inline M<double> cos(M<double> const& x) { return arrlib::apply(op_cos, x); }
inline M<double> cos(M<double>&& x) { return arrlib::apply(op_cos, x, arrlib::temporary_x); }
// Tangent.
inline M<double> tan(M<double> const& x) { return arrlib::apply(op_tan, x); }
inline M<double> tan(M<double>&& x) { return arrlib::apply(op_tan, x, arrlib::temporary_x); }
// Secant: 1/cos(x).
inline M<double> sec(M<double> const& x) { return arrlib::apply(op_sec, x); }
inline M<double> sec(M<double>&& x) { return arrlib::apply(op_sec, x, arrlib::temporary_x); }
// Cosecant: 1/sin(x).
inline M<double> csc(M<double> const& x) { return arrlib::apply(op_csc, x); }
inline M<double> csc(M<double>&& x) { return arrlib::apply(op_csc, x, arrlib::temporary_x); }
// Cotangent: 1/tan(x).
inline M<double> cot(M<double> const& x) { return arrlib::apply(op_cot, x); }
inline M<double> cot(M<double>&& x) { return arrlib::apply(op_cot, x, arrlib::temporary_x); }
// Inverse sine.
inline M<double> asin(M<double> const& x) { return arrlib::apply(op_asin, x); }
inline M<double> asin(M<double>&& x) { return arrlib::apply(op_asin, x, arrlib::temporary_x); }
// Inverse cosine.
inline M<double> acos(M<double> const& x) { return arrlib::apply(op_acos, x); }
inline M<double> acos(M<double>&& x) { return arrlib::apply(op_acos, x, arrlib::temporary_x); }
// Inverse tangent.
inline M<double> atan(M<double> const& x) { return arrlib::apply(op_atan, x); }
inline M<double> atan(M<double>&& x) { return arrlib::apply(op_atan, x, arrlib::temporary_x); }
// Inverse secant.
inline M<double> asec(M<double> const& x) { return arrlib::apply(op_asec, x); }
inline M<double> asec(M<double>&& x) { return arrlib::apply(op_asec, x, arrlib::temporary_x); }
// Inverse cosecant.
inline M<double> acsc(M<double> const& x) { return arrlib::apply(op_acsc, x); }
inline M<double> acsc(M<double>&& x) { return arrlib::apply(op_acsc, x, arrlib::temporary_x); }
// Inverse cotangent.
inline M<double> acot(M<double> const& x) { return arrlib::apply(op_acot, x); }
inline M<double> acot(M<double>&& x) { return arrlib::apply(op_acot, x, arrlib::temporary_x); }
// Hyperbolic sine.
inline M<double> sinh(M<double> const& x) { return arrlib::apply(op_sinh, x); }
inline M<double> sinh(M<double>&& x) { return arrlib::apply(op_sinh, x, arrlib::temporary_x); }
// Hyperbolic cosine.
inline M<double> cosh(M<double> const& x) { return arrlib::apply(op_cosh, x); }
inline M<double> cosh(M<double>&& x) { return arrlib::apply(op_cosh, x, arrlib::temporary_x); }
// Hyperbolic tangent.
inline M<double> tanh(M<double> const& x) { return arrlib::apply(op_tanh, x); }
inline M<double> tanh(M<double>&& x) { return arrlib::apply(op_tanh, x, arrlib::temporary_x); }
// Hyperbolic secant.
inline M<double> sech(M<double> const& x) { return arrlib::apply(op_sech, x); }
inline M<double> sech(M<double>&& x) { return arrlib::apply(op_sech, x, arrlib::temporary_x); }
// Hyperbolic cosecant.
inline M<double> csch(M<double> const& x) { return arrlib::apply(op_csch, x); }
inline M<double> csch(M<double>&& x) { return arrlib::apply(op_csch, x, arrlib::temporary_x); }
// Hyperbolic cotangent.
inline M<double> coth(M<double> const& x) { return arrlib::apply(op_coth, x); }
inline M<double> coth(M<double>&& x) { return arrlib::apply(op_coth, x, arrlib::temporary_x); }
// Inverse hyperbolic sine.
inline M<double> asinh(M<double> const& x) { return arrlib::apply(op_asinh, x); }
inline M<double> asinh(M<double>&& x) { return arrlib::apply(op_asinh, x, arrlib::temporary_x); }
// Inverse hyperbolic cosine.
inline M<double> acosh(M<double> const& x) { return arrlib::apply(op_acosh, x); }
inline M<double> acosh(M<double>&& x) { return arrlib::apply(op_acosh, x, arrlib::temporary_x); }
// Inverse hyperbolic tangent.
inline M<double> atanh(M<double> const& x) { return arrlib::apply(op_atanh, x); }
inline M<double> atanh(M<double>&& x) { return arrlib::apply(op_atanh, x, arrlib::temporary_x); }
// Inverse hyperbolic secant.
inline M<double> asech(M<double> const& x) { return arrlib::apply(op_asech, x); }
inline M<double> asech(M<double>&& x) { return arrlib::apply(op_asech, x, arrlib::temporary_x); }
// Inverse hyperbolic cosecant.
inline M<double> acsch(M<double> const& x) { return arrlib::apply(op_acsch, x); }
inline M<double> acsch(M<double>&& x) { return arrlib::apply(op_acsch, x, arrlib::temporary_x); }
// Inverse hyperbolic cotangent.
inline M<double> acoth(M<double> const& x) { return arrlib::apply(op_acoth, x); }
inline M<double> acoth(M<double>&& x) { return arrlib::apply(op_acoth, x, arrlib::temporary_x); }
// sin(pi x)/(pi x); 1 at 0.
inline M<double> sinc(M<double> const& x) { return arrlib::apply(op_sinc, x); }
inline M<double> sinc(M<double>&& x) { return arrlib::apply(op_sinc, x, arrlib::temporary_x); }

// --- special functions ----------------------------------------------------------------------------
// Of real parts. gammainc of one argument is gamma.

// The error function; of two values erf(y) - erf(x), "erf: wrong values" when y < x.
inline M<double> erf(M<double> const& x) { return arrlib::apply(op_erf_1, x); }
inline M<double> erf(M<double>&& x) { return arrlib::apply(op_erf_1, x, arrlib::temporary_x); }
// 1 - erf(x).
inline M<double> erfc(M<double> const& x) { return arrlib::apply(op_erfc, x); }
inline M<double> erfc(M<double>&& x) { return arrlib::apply(op_erfc, x, arrlib::temporary_x); }
// exp(x^2) erfc(x).
inline M<double> erfcx(M<double> const& x) { return arrlib::apply(op_erfcx, x); }
inline M<double> erfcx(M<double>&& x) { return arrlib::apply(op_erfcx, x, arrlib::temporary_x); }
// The inverse of erf.
inline M<double> erfinv(M<double> const& x) { return arrlib::apply(op_erfinv, x); }
inline M<double> erfinv(M<double>&& x) { return arrlib::apply(op_erfinv, x, arrlib::temporary_x); }
// The gamma function.
inline M<double> gamma(M<double> const& x) { return arrlib::apply(op_gamma, x); }
inline M<double> gamma(M<double>&& x) { return arrlib::apply(op_gamma, x, arrlib::temporary_x); }
// The regularised lower incomplete gamma function of a second value; gamma of one alone.
inline M<double> gammainc(M<double> const& x) { return arrlib::apply(op_gamma, x); }
inline M<double> gammainc(M<double>&& x) { return arrlib::apply(op_gamma, x, arrlib::temporary_x); }
// log(|gamma(x)|).
inline M<double> gammaln(M<double> const& x) { return arrlib::apply(op_gammaln, x); }
inline M<double> gammaln(M<double>&& x) { return arrlib::apply(op_gammaln, x, arrlib::temporary_x); }

// --- tests of elements ----------------------------------------------------------------------------
// Logical.

// Whether an element is neither NaN nor infinite.
inline M<double> isfinite(M<double> const& x) { return arrlib::apply(op_isfinite, x); }
inline M<double> isfinite(M<double>&& x) { return arrlib::apply(op_isfinite, x, arrlib::temporary_x); }
// The same as isfinite.
inline M<double> finite(M<double> const& x) { return arrlib::apply(op_isfinite, x); }
inline M<double> finite(M<double>&& x) { return arrlib::apply(op_isfinite, x, arrlib::temporary_x); }
// Whether an element is infinite.
inline M<double> isinf(M<double> const& x) { return arrlib::apply(op_isinf, x); }
inline M<double> isinf(M<double>&& x) { return arrlib::apply(op_isinf, x, arrlib::temporary_x); }
// Whether an element is NaN.
inline M<double> isnan(M<double> const& x) { return arrlib::apply(op_isnan, x); }
inline M<double> isnan(M<double>&& x) { return arrlib::apply(op_isnan, x, arrlib::temporary_x); }
// The same as isnan.
inline M<double> nx_isnan(M<double> const& x) { return arrlib::apply(op_isnan, x); }
inline M<double> nx_isnan(M<double>&& x) { return arrlib::apply(op_isnan, x, arrlib::temporary_x); }

// [f, e] = log2(x): x = f 2^e with f in [0.5, 1), real parts only; 0, NaN and infinities have e = 0.
ARRLIB_API M<double> log2(M<double> const& x, i_o_t, Mr<double> f, Mr<double> e);
// x itself.
inline M<double> uplus(M<double> const& x) { return x; }

// --- arithmetic on two values ---------------------------------------------------------------------

// x + y.
inline M<double> plus(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::in_statement); }
inline M<double> plus(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> plus(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> plus(M<double>&& x, M<double>&& y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_both); }
// The same as plus.
inline M<double> dot_add(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::in_statement); }
inline M<double> dot_add(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> dot_add(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> dot_add(M<double>&& x, M<double>&& y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_both); }
// x - y.
inline M<double> minus(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::in_statement); }
inline M<double> minus(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> minus(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> minus(M<double>&& x, M<double>&& y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_both); }
// The same as minus.
inline M<double> dot_sub(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::in_statement); }
inline M<double> dot_sub(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> dot_sub(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> dot_sub(M<double>&& x, M<double>&& y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_both); }
// x .* y.
inline M<double> dot_mul(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::in_statement); }
inline M<double> dot_mul(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> dot_mul(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> dot_mul(M<double>&& x, M<double>&& y) { return arrlib::fast<op_times>(x, y, arrlib::temporary_both); }
// The same as dot_mul.
inline M<double> times(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::in_statement); }
inline M<double> times(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> times(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_times>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> times(M<double>&& x, M<double>&& y) { return arrlib::fast<op_times>(x, y, arrlib::temporary_both); }
// x ./ y.
inline M<double> dot_div(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::in_statement); }
inline M<double> dot_div(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> dot_div(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> dot_div(M<double>&& x, M<double>&& y) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_both); }
// The same as dot_div.
inline M<double> rdivide(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::in_statement); }
inline M<double> rdivide(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_x_in_statement); }
inline M<double> rdivide(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_y_in_statement); }
inline M<double> rdivide(M<double>&& x, M<double>&& y) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_both); }
// x .\ y, which is y ./ x.
inline M<double> dot_invdiv(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::in_statement); }
inline M<double> dot_invdiv(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_x_in_statement); }
inline M<double> dot_invdiv(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_y_in_statement); }
inline M<double> dot_invdiv(M<double>&& x, M<double>&& y) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_both); }
// The same as dot_invdiv.
inline M<double> ldivide(M<double> const& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::in_statement); }
inline M<double> ldivide(M<double>&& x, M<double> const& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_x_in_statement); }
inline M<double> ldivide(M<double> const& x, M<double>&& y, arrlib::EndOfStatement const& = {}) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_y_in_statement); }
inline M<double> ldivide(M<double>&& x, M<double>&& y) { return arrlib::apply(op_ldivide, x, y, arrlib::temporary_both); }
// x .^ y; complex where a negative element is raised to a fraction.
inline M<double> dot_pow(M<double> const& x, M<double> const& y) { return arrlib::apply(op_power, x, y); }
inline M<double> dot_pow(M<double>&& x, M<double> const& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_x); }
inline M<double> dot_pow(M<double> const& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_y); }
inline M<double> dot_pow(M<double>&& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_both); }
// The same as dot_pow.
inline M<double> power(M<double> const& x, M<double> const& y) { return arrlib::apply(op_power, x, y); }
inline M<double> power(M<double>&& x, M<double> const& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_x); }
inline M<double> power(M<double> const& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_y); }
inline M<double> power(M<double>&& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_both); }
// The same as dot_pow.
inline M<double> realpow(M<double> const& x, M<double> const& y) { return arrlib::apply(op_power, x, y); }
inline M<double> realpow(M<double>&& x, M<double> const& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_x); }
inline M<double> realpow(M<double> const& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_y); }
inline M<double> realpow(M<double>&& x, M<double>&& y) { return arrlib::apply(op_power, x, y, arrlib::temporary_both); }

// --- comparisons and logic ------------------------------------------------------------------------
// Logical. Order compares real parts, equality both parts.

// x < y.
inline M<double> lt(M<double> const& x, M<double> const& y) { return arrlib::fast<op_lt>(x, y); }
// x > y.
inline M<double> gt(M<double> const& x, M<double> const& y) { return arrlib::fast<op_gt>(x, y); }
// x <= y.
inline M<double> le(M<double> const& x, M<double> const& y) { return arrlib::fast<op_le>(x, y); }
// x >= y.
inline M<double> ge(M<double> const& x, M<double> const& y) { return arrlib::fast<op_ge>(x, y); }
// x == y.
inline M<double> eq(M<double> const& x, M<double> const& y) { return arrlib::fast<op_eq>(x, y); }
// x ~= y.
inline M<double> ne(M<double> const& x, M<double> const& y) { return arrlib::fast<op_ne>(x, y); }
// Whether both are not zero.
inline M<double> mand(M<double> const& x, M<double> const& y) { return arrlib::fast<op_and>(x, y); }
// Whether one is not zero.
inline M<double> mor(M<double> const& x, M<double> const& y) { return arrlib::fast<op_or>(x, y); }
// Whether exactly one is not zero.
inline M<double> mxor(M<double> const& x, M<double> const& y) { return arrlib::apply(op_xor, x, y); }

// --- bits of integers -----------------------------------------------------------------------------

// The bits that both have.
inline M<double> mbitand(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitand, x, y); }
// The bits that one of them has.
inline M<double> mbitor(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitor, x, y); }
// The bits that exactly one of them has.
inline M<double> bitxor(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitxor, x, y); }
// The complement of x in y bits.
inline M<double> bitcmp(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitcmp, x, y); }
// Bit y of x, counted from 1.
inline M<double> bitget(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitget, x, y); }
// x with bit y set.
inline M<double> bitset(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitset, x, y); }
// x with bit y cleared.
inline M<double> bitreset(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitreset, x, y); }
// x shifted by y bits to the left, or by -y to the right.
inline M<double> bitshift(M<double> const& x, M<double> const& y) { return arrlib::apply(op_bitshift, x, y); }

// --- functions of two values ----------------------------------------------------------------------
// Of real parts, but for max and min: of complex operands they give the element of larger or smaller
// modulus. erf(x, y) is erf(y) - erf(x): "erf: wrong values" when y < x.

// The angle of the point with the coordinates y, x in radians: atan2(x, y) has the sign of x.
inline M<double> atan2(M<double> const& x, M<double> const& y) { return arrlib::apply(op_atan2, x, y); }
// x - y fix(x/y), with the sign of x; NaN for y = 0.
inline M<double> rem(M<double> const& x, M<double> const& y) { return arrlib::apply(op_rem, x, y); }
// x - y floor(x/y), with the sign of y; x for y = 0.
inline M<double> mod(M<double> const& x, M<double> const& y) { return arrlib::apply(op_mod, x, y); }
// x 2^fix(y).
inline M<double> pow2(M<double> const& x, M<double> const& y) { return arrlib::apply(op_pow2_2, x, y); }
// The beta function: gamma(x) gamma(y)/gamma(x + y).
inline M<double> beta(M<double> const& x, M<double> const& y) { return arrlib::apply(op_beta, x, y); }
// Of two values: P(y, x) of the regularised incomplete gamma function.
inline M<double> gammainc(M<double> const& x, M<double> const& y) { return arrlib::apply(op_gammainc, x, y); }
// erf(y) - erf(x).
inline M<double> erf(M<double> const& x, M<double> const& y) { return arrlib::apply(op_erf_2, x, y); }
// The larger of two elements; of complex ones that of larger modulus.
inline M<double> max(M<double> const& x, M<double> const& y) { return arrlib::apply(op_max_2, x, y); }
// The smaller of two elements; of complex ones that of smaller modulus.
inline M<double> min(M<double> const& x, M<double> const& y) { return arrlib::apply(op_min_2, x, y); }
// The same as min of two values.
inline M<double> min0(M<double> const& x, M<double> const& y) { return arrlib::apply(op_min_2, x, y); }

#endif
