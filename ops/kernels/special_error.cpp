// The error functions. All rest on erfcx for arguments from 1/2 on, which neither underflows nor
// cancels, and on erf(x)/x below.
#include "ops/kernels/special_error_fits.h"
#include "ops/kernels/special_numbers.h"
#include "ops/kernels/special_twofold.h"
#include "runtime/errors.h"

#include <bit>
#include <cmath>
#include <cstdint>

using namespace arrlib;

namespace {

// erfc is zero from here on.
constexpr double erfc_end = 27.3;

// erf(x), |x| <= 1/2.
double erf_near_zero(double x)
{
    return x * polynomial(fits::erf_centre, x * x);
}

// erfcx(x), x >= 1/2.
double erfcx_beyond_half(double x)
{
    if (x >= 16) {
        constexpr double reciprocal_root_pi = 0.56418958354775628695;
        double const reciprocal = 1 / x;
        return reciprocal_root_pi / x * polynomial(fits::erfcx_tail, reciprocal * reciprocal);
    }
    // The exponent and three bits of the mantissa number the piece; a bit more is its middle.
    std::uint64_t const piece = std::bit_cast<std::uint64_t>(x) >> 49, first = std::bit_cast<std::uint64_t>(0.5) >> 49;
    double const middle = std::bit_cast<double>(piece << 49 | std::uint64_t{1} << 48);
    return polynomial(fits::erfcx_pieces[piece - first], x - middle);
}

// erfc(x), x >= 1/2.
double erfc_beyond_half(double x)
{
    // An error of the square would be magnified.
    return x > erfc_end ? 0 : times_exp(erfcx_beyond_half(x), -exact_product(x, x));
}

// erf(y) - erf(x) for 0 <= x <= y close to each other: the Taylor series of the integral about the
// middle, where every second term drops out. Its terms hold Hermite polynomials of the middle.
double erf_of_short_range(double x, double y)
{
    constexpr double two_by_root_pi = 1.12837916709551257390;
    Twofold const sum = exact_sum(x, y), width = exact_sum(y, -x);
    double const middle = sum.hi / 2, half = width.hi / 2, square = half * half;
    if (middle > erfc_end)
        return 0;
    double even = 1, odd = 2 * middle, power = 1, total = 1;
    for (int n = 2; n <= 40; n += 2) {
        even = 2 * middle * odd - 2 * (n - 1) * even;
        odd = 2 * middle * even - 2 * n * odd;
        power *= square / (n * (n + 1));
        total += even * power;
        // One of two neighbours may be small by chance.
        if (power * (std::fabs(even) + std::fabs(odd) * half) < 1e-18)
            break;
    }
    Twofold const exact_middle = {middle, sum.lo / 2};
    return times_exp(two_by_root_pi * (width.hi + width.lo) * total, -(exact_middle * exact_middle));
}

// erf(y) - erf(x), 0 <= x <= y.
double erf_of_range(double x, double y)
{
    if ((y - x) * (y + x) <= 1)
        return erf_of_short_range(x, y);
    return x < 0.5 ? nx_erf(y) - nx_erf(x) : erfc_beyond_half(x) - erfc_beyond_half(y);
}

} // namespace

double nx_erf(double x)
{
    double const size = std::fabs(x);
    if (!(size > 0.5))
        return erf_near_zero(x);
    return std::copysign(size > 6 ? 1 : 1 - erfc_beyond_half(size), x);
}

double nx_erf(double x, double y)
{
    if (std::isnan(x) || std::isnan(y))
        return not_a_number;
    if (y < x) {
        error("erf: wrong values");
        return not_a_number;
    }
    if (x >= 0)
        return erf_of_range(x, y);
    if (y <= 0)
        return erf_of_range(-y, -x);
    return nx_erf(y) + nx_erf(-x);
}

double nx_erfc(double x)
{
    if (x >= 0.5)
        return erfc_beyond_half(x);
    if (x < -0.5)
        return x < -6 ? 2 : 2 - erfc_beyond_half(-x);
    return 1 - erf_near_zero(x);
}

double nx_erfcx(double x)
{
    if (x >= 0.5)
        return erfcx_beyond_half(x);
    if (x < -erfc_end)
        return infinity;
    if (x < -0.5)
        return times_exp(2, exact_product(x, x)) - erfcx_beyond_half(-x);
    return nx_exp(x * x) * (1 - erf_near_zero(x));
}

double nx_erfinv(double x)
{
    double const size = std::fabs(x);
    if (!(size > 0.5))
        return x * polynomial(fits::erfinv_centre, x * x);
    if (size >= 1)
        return size == 1 ? std::copysign(infinity, x) : not_a_number;
    // Where 1 - x^2 is not small, its rounding would be magnified.
    Twofold const square = exact_product(size, size), rest = exact_sum(1, -square.hi);
    double const s = std::sqrt((square.lo - rest.lo) / rest.hi - nx_log(rest.hi));
    int const quarter = static_cast<int>(4 * s);
    return std::copysign(polynomial(fits::erfinv_pieces[quarter - 2], s - (quarter + 0.5) / 4), x);
}
