// What the complex kernels share.
#ifndef ARRLIB_OPS_KERNELS_COMPLEX_PARTS_H
#define ARRLIB_OPS_KERNELS_COMPLEX_PARTS_H

#include "ops/kernels.h"
#include "ops/kernels/special_numbers.h"
#include "ops/kernels/special_twofold.h"

#include <algorithm>
#include <cmath>

namespace arrlib {

inline bool has_nan(nx_complex x)
{
    return std::isnan(x.re) || std::isnan(x.im);
}
inline bool has_infinity(nx_complex x)
{
    return std::isinf(x.re) || std::isinf(x.im);
}
inline bool is_zero(nx_complex x)
{
    return x.re == 0 && x.im == 0;
}
inline double larger_part(nx_complex x)
{
    return std::max(std::fabs(x.re), std::fabs(x.im));
}
// x 2^exponent.
inline nx_complex scaled(nx_complex x, int exponent)
{
    return exponent == 0 ? x : nx_complex{std::ldexp(x.re, exponent), std::ldexp(x.im, exponent)};
}

// i x and -i x.
inline nx_complex turned(nx_complex x)
{
    return {-x.im, x.re};
}
inline nx_complex turned_back(nx_complex x)
{
    return {x.im, -x.re};
}

// re^2 + im^2.
inline double square_of_modulus(nx_complex x)
{
    return x.re * x.re + x.im * x.im;
}
// Squares in this range, and products of parts whose squares are, neither overflow nor lose bits that
// matter.
inline constexpr double least_safe_square = 0x1p-800, largest_safe_square = 0x1p800;
inline bool is_safe_square(double square)
{
    return square >= least_safe_square && square <= largest_safe_square;
}

// log(|x|) is (log(square) + correction)/2, of an x whose square is safe.
struct LogArgument {
    double square, correction;
};
inline LogArgument log_argument(nx_complex x)
{
    Twofold const re = exact_product(x.re, x.re), im = exact_product(x.im, x.im), sum = exact_sum(re.hi, im.hi);
    // Near 1 the rounding of the square is all of the logarithm. Elsewhere it is too small, or not exact.
    int const near_1 = (sum.hi > 0.5) & (sum.hi < 2);
    double const counts = near_1 != 0 ? 1 : 0;
    return {sum.hi, (sum.lo + (re.lo + im.lo)) / sum.hi * counts};
}

// Up to here neither exp nor cosh overflows.
inline constexpr double exp_end = 709;

// 1/x as the reciprocal of the two sides of a branch cut: (re - im i)/(re^2 + im^2).
nx_complex reciprocal(nx_complex x);

} // namespace arrlib

#endif
