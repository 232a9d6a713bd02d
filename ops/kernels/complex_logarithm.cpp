// Square root, logarithms and power.
#include "ops/kernels/complex_parts.h"

using namespace arrlib;

namespace {

constexpr double log10_of_e = 0.43429448190325182765, log2_of_e = 1.44269504088896340736;

// re^2 + im^2, for |x| in [2^-300, 2^300].
Twofold exact_square_of_modulus(nx_complex x)
{
    Twofold const re = exact_product(x.re, x.re), im = exact_product(x.im, x.im), sum = exact_sum(re.hi, im.hi);
    return ordered_sum(sum.hi, sum.lo + (re.lo + im.lo));
}

// log(|x|).
double log_of_modulus(nx_complex x)
{
    LogArgument const argument = log_argument(x);
    if (is_safe_square(argument.square))
        return (nx_log(argument.square) + argument.correction) / 2;
    if (is_zero(x) || has_infinity(x) || has_nan(x))
        return nx_log(nx_abs(x));
    int const exponent = std::ilogb(larger_part(x));
    return exponent * exact_log_2.hi + nx_log(square_of_modulus(scaled(x, -exponent))) / 2;
}

// The same to twice the precision, of a finite x other than 0.
Twofold exact_log_of_modulus(nx_complex x)
{
    int const exponent = std::ilogb(larger_part(x));
    return exact_log_2 * exponent + log_of(exact_square_of_modulus(scaled(x, -exponent))) * 0.5;
}

// base^exponent for a finite base below 0: the angle is a multiple of pi.
nx_complex power_of_negative(nx_complex base, double exponent)
{
    double const modulus = nx_power(-base.re, exponent);
    // Quarters of a turn are taken off exactly.
    double const turns = exponent / 2, rest = 2 * (turns - std::round(turns)), quarters = std::round(2 * rest);
    double const angle = pi * (rest - quarters / 2);
    nx_complex direction = {nx_cos(angle), nx_sin(angle)};
    for (int k = static_cast<int>(quarters) & 3; k > 0; --k)
        direction = turned(direction);
    double const im = std::signbit(base.im) ? -direction.im : direction.im;
    return {direction.re == 0 ? 0 : modulus * direction.re, im == 0 ? 0 : modulus * im};
}

nx_complex power_of_integer(nx_complex x, int exponent)
{
    nx_complex result = {1, 0}, square = x;
    for (int rest = std::abs(exponent);;) {
        if (rest % 2 != 0)
            result = nx_times(result, square);
        rest /= 2;
        if (rest == 0)
            return exponent < 0 ? nx_rdivide({1, 0}, result) : result;
        square = nx_times(square, square);
    }
}

nx_complex general_power(nx_complex x, nx_complex y)
{
    if (has_nan(x) || has_infinity(x) || !(larger_part(y) < 1e15))
        return nx_exp(nx_times(y, nx_log(x)));
    Twofold const length = exact_log_of_modulus(x);
    double const angle = nx_atan2(x.im, x.re);
    Twofold const log_of_result = length * y.re + -exact_product(angle, y.im);
    Twofold const turn = exact_product(angle, y.re) + length * y.im;
    double const sin = nx_sin(turn.hi), cos = nx_cos(turn.hi);
    return {times_exp(cos - turn.lo * sin, log_of_result), times_exp(sin + turn.lo * cos, log_of_result)};
}

} // namespace

nx_complex nx_sqrt(nx_complex x)
{
    if (x.im == 0 && !std::isnan(x.re))
        return x.re >= 0 ? nx_complex{std::sqrt(x.re + 0.0), x.im} : nx_complex{0, std::copysign(std::sqrt(-x.re), x.im)};
    if (std::isinf(x.im))
        return {infinity, x.im};
    if (std::isinf(x.re)) {
        double const other = std::isnan(x.im) ? x.im : 0;
        return x.re > 0 ? nx_complex{infinity, std::copysign(other, x.im)} : nx_complex{std::fabs(other), std::copysign(infinity, x.im)};
    }
    if (has_nan(x))
        return {not_a_number, not_a_number};
    // By an even power of two, so that the root is scaled exactly.
    bool const safe = is_safe_square(square_of_modulus(x));
    int const half = safe ? 0 : std::ilogb(larger_part(x)) / 2;
    nx_complex const a = scaled(x, -2 * half);
    double const root = std::sqrt((std::fabs(a.re) + nx_abs(a)) / 2), other = std::fabs(a.im) / (2 * root);
    return scaled({a.re >= 0 ? root : other, std::copysign(a.re >= 0 ? other : root, a.im)}, half);
}

nx_complex nx_log(nx_complex x)
{
    return {log_of_modulus(x), nx_atan2(x.im, x.re)};
}

nx_complex nx_log10(nx_complex x)
{
    double const re = x.im == 0 ? nx_log10(std::fabs(x.re)) : log_of_modulus(x) * log10_of_e;
    return {re, nx_atan2(x.im, x.re) * log10_of_e};
}

nx_complex nx_log2(nx_complex x)
{
    double const re = x.im == 0 ? nx_log2(std::fabs(x.re)) : log_of_modulus(x) * log2_of_e;
    return {re, nx_atan2(x.im, x.re) * log2_of_e};
}

nx_complex nx_power(nx_complex x, nx_complex y)
{
    if (is_zero(y))
        return {1, 0};
    bool const whole = y.im == 0 && y.re == std::trunc(y.re);
    if (x.im == 0 && y.im == 0) {
        if (x.re >= 0 || whole)
            return {nx_power(x.re, y.re), 0};
        if (x.re < 0)
            return power_of_negative(x, y.re);
    }
    if (is_zero(x) && y.re > 0)
        return {0, 0};
    if (is_zero(x))
        return {y.re < 0 ? infinity : not_a_number, not_a_number};
    // The errors of repeated products grow with the exponent, as those of the angle do.
    if (whole && std::fabs(y.re) <= 1024) {
        nx_complex const z = power_of_integer(x, static_cast<int>(y.re));
        if (!has_nan(z) && !has_infinity(z) && !is_zero(z))
            return z;
    }
    return general_power(x, y);
}
