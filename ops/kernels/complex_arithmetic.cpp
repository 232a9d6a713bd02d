// Arithmetic, rounding and comparison of complex numbers. An infinity stays one in products and
// quotients even where the formulas give NaN in both parts.
#include "ops/kernels/complex_parts.h"

using namespace arrlib;

namespace {

// 1 with the sign of an infinity, 0 with the sign of any other number.
double direction(double x)
{
    return std::copysign(std::isinf(x) ? 1 : 0, x);
}
nx_complex direction(nx_complex x)
{
    return {direction(x.re), direction(x.im)};
}
double zero_for_nan(double x)
{
    return std::isnan(x) ? std::copysign(0, x) : x;
}
nx_complex zeros_for_nan(nx_complex x)
{
    return {zero_for_nan(x.re), zero_for_nan(x.im)};
}

nx_complex plain_product(nx_complex x, nx_complex y)
{
    return {x.re * y.re - x.im * y.im, x.re * y.im + x.im * y.re};
}
// `square` is that of y.
nx_complex plain_quotient(nx_complex x, nx_complex y, double square)
{
    return {(x.re * y.re + x.im * y.im) / square, (x.im * y.re - x.re * y.im) / square};
}

// The product where the plain one is NaN in both parts.
nx_complex product_of_infinities(nx_complex x, nx_complex y)
{
    bool const partial = std::isinf(x.re * y.re) || std::isinf(x.im * y.im) || std::isinf(x.re * y.im) || std::isinf(x.im * y.re);
    if (!partial && !has_infinity(x) && !has_infinity(y))
        return {not_a_number, not_a_number};
    nx_complex const a = has_infinity(x) ? direction(x) : x, b = has_infinity(y) ? direction(y) : y;
    nx_complex const z = plain_product(zeros_for_nan(a), zeros_for_nan(b));
    return {infinity * z.re, infinity * z.im};
}

// x/0: a zero beside a part that goes to infinity stays zero.
nx_complex quotient_by_zero(nx_complex x, double zero)
{
    if (is_zero(x) || (std::isnan(x.re) && std::isnan(x.im)))
        return {not_a_number, not_a_number};
    double const huge = std::copysign(infinity, zero);
    return {x.re == 0 ? std::copysign(x.re, x.re * zero) : x.re * huge, x.im == 0 ? std::copysign(x.im, x.im * zero) : x.im * huge};
}

// The quotient where squares overflow or underflow, or something is not finite.
nx_complex careful_quotient(nx_complex x, nx_complex y)
{
    if (is_zero(y))
        return quotient_by_zero(x, y.re);
    if (has_infinity(x) && !has_infinity(y) && !has_nan(y)) {
        nx_complex const scale = scaled(y, -std::ilogb(larger_part(y)));
        nx_complex const z = plain_quotient(direction(x), scale, 1);
        return {infinity * z.re, infinity * z.im};
    }
    if (has_infinity(y) && !has_infinity(x) && !has_nan(x)) {
        nx_complex const z = plain_quotient(x, direction(y), 1);
        return {0 * z.re, 0 * z.im};
    }
    if (has_nan(x) || has_nan(y) || has_infinity(x))
        return {not_a_number, not_a_number};
    int const of_y = std::ilogb(larger_part(y)), of_x = is_zero(x) ? 0 : std::ilogb(larger_part(x));
    nx_complex const a = scaled(x, -of_x), b = scaled(y, -of_y);
    return scaled(plain_quotient(a, b, square_of_modulus(b)), of_x - of_y);
}

// Whether |x| > |y|, both without NaN.
bool is_larger(nx_complex x, nx_complex y)
{
    double a = square_of_modulus(x), b = square_of_modulus(y);
    double const largest = std::max(larger_part(x), larger_part(y));
    if (largest > 0x1p400 || (largest < 0x1p-400 && largest > 0)) {
        if (std::isinf(largest))
            return has_infinity(x) && !has_infinity(y);
        int const exponent = -std::ilogb(largest);
        a = square_of_modulus(scaled(x, exponent));
        b = square_of_modulus(scaled(y, exponent));
    }
    return a > b;
}

bool is_true(nx_complex x)
{
    return x.re != 0 || x.im != 0;
}

template <double (*f)(double)> nx_complex by_parts(nx_complex x)
{
    return {f(x.re), f(x.im)};
}

} // namespace

nx_complex arrlib::reciprocal(nx_complex x)
{
    double const square = square_of_modulus(x);
    if (is_safe_square(square))
        return {x.re / square, -x.im / square};
    nx_complex const z = nx_rdivide({1, 0}, x);
    return {z.re == 0 ? std::copysign(0, x.re) : z.re, z.im == 0 ? std::copysign(0, -x.im) : z.im};
}

nx_complex nx_plus(nx_complex x, nx_complex y)
{
    return {x.re + y.re, x.im + y.im};
}

nx_complex nx_minus(nx_complex x, nx_complex y)
{
    return {x.re - y.re, x.im - y.im};
}

nx_complex nx_times(nx_complex x, nx_complex y)
{
    nx_complex const z = plain_product(x, y);
    return std::isnan(z.re) && std::isnan(z.im) ? product_of_infinities(x, y) : z;
}

nx_complex nx_rdivide(nx_complex x, nx_complex y)
{
    double const square = square_of_modulus(y);
    return is_safe_square(square) && (is_safe_square(square_of_modulus(x)) || is_zero(x)) ? plain_quotient(x, y, square)
                                                                                          : careful_quotient(x, y);
}

nx_complex nx_ldivide(nx_complex x, nx_complex y)
{
    return nx_rdivide(y, x);
}

nx_complex nx_uminus(nx_complex x)
{
    return {-x.re, -x.im};
}

nx_complex nx_uplus(nx_complex x)
{
    return x;
}

nx_complex nx_conj(nx_complex x)
{
    return {x.re, -x.im};
}

nx_complex nx_sign(nx_complex x)
{
    if (is_zero(x))
        return {0, 0};
    if (has_nan(x))
        return {not_a_number, not_a_number};
    nx_complex const same = has_infinity(x) ? direction(x) : scaled(x, -std::ilogb(larger_part(x)));
    double const modulus = std::sqrt(square_of_modulus(same));
    return {same.re / modulus, same.im / modulus};
}

nx_complex nx_ceil(nx_complex x)
{
    return by_parts<nx_ceil>(x);
}

nx_complex nx_fix(nx_complex x)
{
    return by_parts<nx_fix>(x);
}

nx_complex nx_floor(nx_complex x)
{
    return by_parts<nx_floor>(x);
}

nx_complex nx_round(nx_complex x)
{
    return by_parts<nx_round>(x);
}

nx_complex nx_max(nx_complex x, nx_complex y)
{
    if (has_nan(x) || has_nan(y))
        return has_nan(x) ? y : x;
    return is_larger(y, x) ? y : x;
}

nx_complex nx_min(nx_complex x, nx_complex y)
{
    if (has_nan(x) || has_nan(y))
        return has_nan(x) ? y : x;
    return is_larger(x, y) ? y : x;
}

double nx_abs(nx_complex x)
{
    double const square = square_of_modulus(x);
    if (is_safe_square(square))
        return std::sqrt(square);
    if (has_infinity(x))
        return infinity;
    if (has_nan(x) || is_zero(x))
        return square;
    int const exponent = std::ilogb(larger_part(x));
    return std::ldexp(std::sqrt(square_of_modulus(scaled(x, -exponent))), exponent);
}

double nx_imag(nx_complex x)
{
    return x.im;
}

double nx_angle(nx_complex x)
{
    return nx_atan2(x.im, x.re);
}

double nx_lt(nx_complex x, nx_complex y)
{
    return x.re < y.re;
}

double nx_le(nx_complex x, nx_complex y)
{
    return x.re <= y.re;
}

double nx_gt(nx_complex x, nx_complex y)
{
    return x.re > y.re;
}

double nx_ge(nx_complex x, nx_complex y)
{
    return x.re >= y.re;
}

double nx_eq(nx_complex x, nx_complex y)
{
    return x.re == y.re && x.im == y.im;
}

double nx_ne(nx_complex x, nx_complex y)
{
    return x.re != y.re || x.im != y.im;
}

double nx_and(nx_complex x, nx_complex y)
{
    return is_true(x) && is_true(y);
}

double nx_or(nx_complex x, nx_complex y)
{
    return is_true(x) || is_true(y);
}

double nx_xor(nx_complex x, nx_complex y)
{
    return is_true(x) != is_true(y);
}

double nx_not(nx_complex x)
{
    return !is_true(x);
}

double nx_isfinite(nx_complex x)
{
    return std::isfinite(x.re) && std::isfinite(x.im);
}

double nx_isinf(nx_complex x)
{
    return has_infinity(x);
}

double nx_isnan(nx_complex x)
{
    return has_nan(x);
}
