// The exponential and what is made of it: hyperbolic and trigonometric functions, their reciprocals,
// sinc. Factors that overflow alone are kept as mantissa and power of two. The trigonometric
// functions are the hyperbolic ones turned by a quarter.
#include "ops/kernels/complex_parts.h"

using namespace arrlib;

namespace {

// mantissa 2^exponent.
struct Scaled {
    double mantissa;
    int exponent;
};

// exp(x).
Scaled scaled_exp(double x)
{
    // Beyond this, not even the smallest sine brings the product back.
    if (x > 2500)
        return {infinity, 0};
    // Short enough for exact differences.
    constexpr Twofold log_of_step = {0x1.62e42fefa38p+9, 0x1.ef35793c76730p-35};
    int steps = 0;
    for (; x > exp_end; ++steps)
        x -= log_of_step.hi;
    double const exp = nx_exp(x);
    return {exp - exp * (steps * log_of_step.lo), steps * 1024};
}

// sinh and cosh of a real number, both times 2^exponent.
struct Hyperbolic {
    double sinh, cosh;
    int exponent;
};
Hyperbolic hyperbolic(double x)
{
    if (std::fabs(x) <= exp_end)
        return {nx_sinh(x), nx_cosh(x), 0};
    Scaled const exp = scaled_exp(std::fabs(x));
    return {std::copysign(exp.mantissa / 2, x), exp.mantissa / 2, exp.exponent};
}

// Sine and cosine of a sum of which the second number is small.
struct Circular {
    double sin, cos;
};
Circular circular(Twofold x)
{
    double const sin = nx_sin(x.hi), cos = nx_cos(x.hi);
    return {sin + x.lo * cos, cos - x.lo * sin};
}

// The product, without a correction where that would not be a small one.
Twofold times_constant(Twofold constant, double x)
{
    if (!(std::fabs(x) < 1e8))
        return {constant.hi * x, 0};
    Twofold const product = exact_product(constant.hi, x);
    return {product.hi, product.lo + constant.lo * x};
}

// exp(x) where the plain formula does not hold.
nx_complex careful_exp(nx_complex x)
{
    if (!std::isfinite(x.im)) {
        if (std::isinf(x.re))
            return x.re < 0 ? nx_complex{0, 0} : nx_complex{infinity, not_a_number};
        return {not_a_number, not_a_number};
    }
    Scaled const exp = scaled_exp(x.re);
    return scaled({exp.mantissa * nx_cos(x.im), exp.mantissa * nx_sin(x.im)}, exp.exponent);
}

} // namespace

nx_complex nx_exp(nx_complex x)
{
    if (x.im == 0)
        return {nx_exp(x.re), x.im};
    if (x.re <= exp_end && std::isfinite(x.im)) {
        double const exp = nx_exp(x.re);
        return {exp * nx_cos(x.im), exp * nx_sin(x.im)};
    }
    return careful_exp(x);
}

nx_complex nx_pow2(nx_complex x)
{
    if (x.im == 0)
        return {nx_pow2(x.re), x.im};
    if (!std::isfinite(x.im) || !std::isfinite(x.re))
        return nx_exp(x);
    Circular const angle = circular(times_constant(exact_log_2, x.im));
    // One power of two may overflow where the product does not.
    double const outside = std::clamp(std::trunc(x.re), -3000.0, 3000.0), inside = nx_pow2(x.re - std::trunc(x.re));
    return scaled({inside * angle.cos, inside * angle.sin}, static_cast<int>(outside));
}

nx_complex nx_sinh(nx_complex x)
{
    if (x.im == 0)
        return {nx_sinh(x.re), x.im};
    if (!std::isfinite(x.im))
        return {x.re == 0 || std::isinf(x.re) ? x.re : not_a_number, not_a_number};
    Hyperbolic const h = hyperbolic(x.re);
    return scaled({h.sinh * nx_cos(x.im), h.cosh * nx_sin(x.im)}, h.exponent);
}

nx_complex nx_cosh(nx_complex x)
{
    if (x.im == 0)
        return {nx_cosh(x.re), std::signbit(x.re) ? -x.im : x.im};
    if (!std::isfinite(x.im))
        return {std::isinf(x.re) ? infinity : not_a_number, x.re == 0 ? 0 : not_a_number};
    Hyperbolic const h = hyperbolic(x.re);
    return scaled({h.cosh * nx_cos(x.im), h.sinh * nx_sin(x.im)}, h.exponent);
}

nx_complex nx_tanh(nx_complex x)
{
    if (x.im == 0)
        return {nx_tanh(x.re), x.im};
    if (!std::isfinite(x.im)) {
        if (std::isinf(x.re))
            return {std::copysign(1, x.re), std::copysign(0, x.im)};
        return {x.re == 0 ? x.re : not_a_number, not_a_number};
    }
    if (std::fabs(x.re) > 22)
        return {std::copysign(1, x.re), 4 * nx_sin(x.im) * nx_cos(x.im) * nx_exp(-2 * std::fabs(x.re))};
    // Divided by cos^2, which leaves sums of squares.
    double const tan = nx_tan(x.im), sinh = nx_sinh(x.re);
    double const secant = 1 + tan * tan, below = 1 + secant * sinh * sinh;
    return {secant * nx_cosh(x.re) * sinh / below, tan / below};
}

nx_complex nx_sech(nx_complex x)
{
    if (std::fabs(x.re) > 700) {
        nx_complex const z = nx_exp(x.re > 0 ? nx_uminus(x) : x);
        return {2 * z.re, 2 * z.im};
    }
    return reciprocal(nx_cosh(x));
}

nx_complex nx_csch(nx_complex x)
{
    if (std::fabs(x.re) > 700) {
        nx_complex const z = nx_exp(x.re > 0 ? nx_uminus(x) : x);
        double const side = std::copysign(2, x.re);
        return {side * z.re, side * z.im};
    }
    return reciprocal(nx_sinh(x));
}

nx_complex nx_coth(nx_complex x)
{
    return reciprocal(nx_tanh(x));
}

nx_complex nx_sin(nx_complex x)
{
    return turned_back(nx_sinh(turned(x)));
}

nx_complex nx_cos(nx_complex x)
{
    return nx_cosh(turned(x));
}

nx_complex nx_tan(nx_complex x)
{
    return turned_back(nx_tanh(turned(x)));
}

nx_complex nx_sec(nx_complex x)
{
    return nx_sech(turned(x));
}

nx_complex nx_csc(nx_complex x)
{
    return std::fabs(x.im) > 700 ? turned(nx_csch(turned(x))) : reciprocal(nx_sin(x));
}

nx_complex nx_cot(nx_complex x)
{
    return reciprocal(nx_tan(x));
}

nx_complex nx_sinc(nx_complex x)
{
    if (x.im == 0)
        return {nx_sinc(x.re), 0};
    // Parts of pi x: the real one from the nearest integer on.
    double const nearest = std::round(x.re), half = nearest / 2, sign = half == std::floor(half) ? 1 : -1;
    double const angle = pi * (x.re - nearest);
    Twofold const height = times_constant(exact_pi, x.im);
    Hyperbolic const h = hyperbolic(height.hi);
    double const sinh = h.sinh + height.lo * h.cosh, cosh = h.cosh + height.lo * h.sinh;
    nx_complex const sine = {sign * nx_sin(angle) * cosh, sign * nx_cos(angle) * sinh};
    return scaled(nx_rdivide(sine, {pi * x.re, height.hi}), h.exponent);
}
