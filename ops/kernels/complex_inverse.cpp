// The inverse trigonometric and hyperbolic functions. asin and acos are put together from square
// roots of 1 - x and 1 + x, in which nothing cancels and the sign of a zero picks the side of a cut.
// Those of reciprocals take 1 - 1/x and 1 + 1/x without a rounding of 1/x, which would be magnified
// near the branch points. The others are turned from asin, acos and atanh.
#include "ops/kernels/complex_parts.h"

using namespace arrlib;

namespace {

// From here on asin(x) is i log(2 x) turned to the right, to full precision.
constexpr double far_away = 0x1p30;
// Squares overflow from here on.
constexpr double too_far_away = 0x1p400;

// log(1 + x), x >= 0.
double log_of_1_plus(double x)
{
    double const sum = 1 + x;
    return std::isinf(sum) ? sum : nx_log(sum) + (x - (sum - 1)) / sum;
}

// The square roots of 1 - x and of 1 + x.
struct Roots {
    nx_complex of_1_minus, of_1_plus;
};
Roots roots_of(nx_complex x)
{
    return {nx_sqrt(nx_complex{1 - x.re, -x.im}), nx_sqrt(nx_complex{1 + x.re, x.im})};
}
Roots roots_of_reciprocal(nx_complex x)
{
    double const square = square_of_modulus(x), im = x.im / square, im_square = x.im * x.im;
    double const minus = ((x.re - 1) * x.re + im_square) / square, plus = ((x.re + 1) * x.re + im_square) / square;
    return {nx_sqrt(nx_complex{minus, im}), nx_sqrt(nx_complex{plus, -im})};
}
bool has_roots_of_reciprocal(nx_complex x)
{
    double const size = larger_part(x);
    return size > 1 / far_away && size < 0x1p300 && !has_nan(x);
}

// asin(x) and acos(x) of the roots.
nx_complex asin_of(nx_complex x, Roots const& r)
{
    nx_complex const a = r.of_1_minus, b = r.of_1_plus;
    return {nx_atan2(x.re, a.re * b.re - a.im * b.im), nx_asinh(a.re * b.im - a.im * b.re)};
}
nx_complex acos_of(Roots const& r)
{
    nx_complex const a = r.of_1_minus, b = r.of_1_plus;
    return {2 * nx_atan2(a.re, b.re), nx_asinh(b.re * a.im - b.im * a.re)};
}

// The real part of atanh of x and of 1/x.
double length_of_atanh(nx_complex x)
{
    double const re = std::fabs(x.re), short_of_1 = 1 - re;
    if (re == 0)
        return x.re;
    // Beside 1, the square of the imaginary part is too small.
    double const length = re == 1 && std::fabs(x.im) < 0x1p-30 ? (exact_log_2.hi - nx_log(std::fabs(x.im))) / 2
                                                               : log_of_1_plus(4 * re / (short_of_1 * short_of_1 + x.im * x.im)) / 4;
    return std::copysign(length, x.re);
}
// 1 - |x|^2.
double rest_of_square(nx_complex x)
{
    return (1 - x.re) * (1 + x.re) - x.im * x.im;
}

// log(2 |x|) with the sign of the imaginary part.
double height_far_away(nx_complex x)
{
    return std::copysign(nx_log(nx_complex{std::fabs(x.re), std::fabs(x.im)}).re + exact_log_2.hi, x.im);
}

bool is_far_away(nx_complex x)
{
    return larger_part(x) > far_away || has_infinity(x);
}

} // namespace

nx_complex nx_asin(nx_complex x)
{
    if (is_far_away(x))
        return {nx_atan2(x.re, std::fabs(x.im)), height_far_away(x)};
    if (x.re == 0)
        return {x.re, nx_asinh(x.im)};
    return asin_of(x, roots_of(x));
}

nx_complex nx_acos(nx_complex x)
{
    if (is_far_away(x))
        return {nx_atan2(std::fabs(x.im), x.re), -height_far_away(x)};
    if (x.re == 0)
        return {pi / 2, -nx_asinh(x.im)};
    return acos_of(roots_of(x));
}

nx_complex nx_atanh(nx_complex x)
{
    if (has_infinity(x) || larger_part(x) > too_far_away)
        return {has_infinity(x) ? std::copysign(0, x.re) : reciprocal(x).re, std::isnan(x.im) ? x.im : std::copysign(pi / 2, x.im)};
    return {length_of_atanh(x), nx_atan2(2 * x.im, rest_of_square(x)) / 2};
}

nx_complex nx_asinh(nx_complex x)
{
    return turned(nx_asin(turned_back(x)));
}

nx_complex nx_acosh(nx_complex x)
{
    nx_complex const a = nx_acos(x);
    return std::signbit(x.im) ? turned_back(a) : turned(a);
}

nx_complex nx_atan(nx_complex x)
{
    return turned_back(nx_atanh(turned(x)));
}

nx_complex nx_acoth(nx_complex x)
{
    if (has_infinity(x) || larger_part(x) > too_far_away)
        return reciprocal(x);
    return {length_of_atanh(x), nx_atan2(-2 * x.im, -rest_of_square(x)) / 2};
}

nx_complex nx_acot(nx_complex x)
{
    return turned_back(nx_acoth(turned_back(x)));
}

nx_complex nx_asec(nx_complex x)
{
    return has_roots_of_reciprocal(x) ? acos_of(roots_of_reciprocal(x)) : nx_acos(reciprocal(x));
}

nx_complex nx_asech(nx_complex x)
{
    nx_complex const a = nx_asec(x);
    return std::signbit(x.im) ? turned(a) : turned_back(a);
}

nx_complex nx_acsc(nx_complex x)
{
    return has_roots_of_reciprocal(x) ? asin_of(reciprocal(x), roots_of_reciprocal(x)) : nx_asin(reciprocal(x));
}

nx_complex nx_acsch(nx_complex x)
{
    return turned(nx_acsc(turned(x)));
}
