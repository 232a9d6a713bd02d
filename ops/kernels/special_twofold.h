// Numbers of twice the precision, as unevaluated sums of two doubles, where a rounding error would be
// magnified: squares and logarithms in exponents. Exact without fused operations, hence the same on
// every processor.
#ifndef ARRLIB_OPS_KERNELS_SPECIAL_TWOFOLD_H
#define ARRLIB_OPS_KERNELS_SPECIAL_TWOFOLD_H

#include "ops/kernels.h"

#include <cmath>
#include <cstddef>

namespace arrlib {

// |lo| is at most half a unit in the last place of hi.
struct Twofold {
    double hi, lo;
};

inline constexpr Twofold exact_log_2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
inline constexpr Twofold exact_pi = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};

// a + b where |a| >= |b|.
inline Twofold ordered_sum(double a, double b)
{
    double const sum = a + b;
    return {sum, b - (sum - a)};
}
inline Twofold exact_sum(double a, double b)
{
    double const sum = a + b, of_b = sum - a;
    return {sum, (a - (sum - of_b)) + (b - of_b)};
}
// Exact for factors below 2^996 whose product is above 2^-968.
inline Twofold exact_product(double a, double b)
{
    constexpr double splitter = 0x1p27 + 1;
    double const a_shifted = splitter * a, b_shifted = splitter * b;
    double const a_high = a_shifted - (a_shifted - a), b_high = b_shifted - (b_shifted - b);
    double const a_low = a - a_high, b_low = b - b_high;
    double const product = a * b;
    return {product, ((a_high * b_high - product) + a_high * b_low + a_low * b_high) + a_low * b_low};
}

inline Twofold operator-(Twofold a)
{
    return {-a.hi, -a.lo};
}
inline Twofold operator+(Twofold a, Twofold b)
{
    Twofold const high = exact_sum(a.hi, b.hi), low = exact_sum(a.lo, b.lo);
    Twofold const sum = ordered_sum(high.hi, high.lo + low.hi);
    return ordered_sum(sum.hi, sum.lo + low.lo);
}
inline Twofold operator+(Twofold a, double b)
{
    return a + Twofold{b, 0};
}
inline Twofold operator*(Twofold a, Twofold b)
{
    Twofold const product = exact_product(a.hi, b.hi);
    return ordered_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}
inline Twofold operator*(Twofold a, double b)
{
    return a * Twofold{b, 0};
}
inline Twofold operator/(Twofold a, Twofold b)
{
    double const first = a.hi / b.hi;
    Twofold const product = exact_product(first, b.hi);
    double const rest = (a.hi - product.hi) - product.lo + a.lo - first * b.lo;
    return ordered_sum(first, rest / b.hi);
}

// c[0] + c[1] u + ... in two chains, of even and of odd powers.
template <std::size_t n> double polynomial(double const (&c)[n], double u)
{
    constexpr std::size_t last_even = (n - 1) / 2 * 2, last_odd = n / 2 * 2 - 1;
    double const square = u * u;
    double even = c[last_even], odd = c[last_odd];
    for (std::size_t k = last_even; k > 2; k -= 2)
        even = even * square + c[k - 2];
    for (std::size_t k = last_odd; k > 1; k -= 2)
        odd = odd * square + c[k - 2];
    return c[0] + (even * square + odd * u);
}

// log((1 + s) / (1 - s)) - 2 s, for |s| < 0.18.
inline Twofold log_beyond_first(Twofold s)
{
    constexpr Twofold two_thirds = {0x1.5555555555555p-1, 0x1.5555555555555p-55};
    constexpr double tail[] = {2.0 / 5,  2.0 / 7,  2.0 / 9,  2.0 / 11, 2.0 / 13,
                               2.0 / 15, 2.0 / 17, 2.0 / 19, 2.0 / 21, 2.0 / 23};
    double const square = s.hi * s.hi;
    return s * s * (s * two_thirds) + polynomial(tail, square) * square * square * s.hi;
}

// log(x), of a normal x > 0.
inline Twofold log_of(Twofold x)
{
    int exponent;
    double mantissa = std::frexp(x.hi, &exponent);
    if (mantissa < 0.70710678118654752) {
        mantissa *= 2;
        --exponent;
    }
    Twofold const scaled = {mantissa, std::ldexp(x.lo, -exponent)};
    Twofold const s = (scaled + -1.0) / (scaled + 1.0);
    return exact_log_2 * exponent + (s * 2 + log_beyond_first(s));
}

// factor exp(x), where only the whole may overflow or underflow.
inline double times_exp(double factor, Twofold x)
{
    if (x.hi < -1490)
        return 0;
    if (x.hi < -708 || x.hi > 708) {
        double const half = nx_exp(x.hi / 2);
        return factor * (half + half * x.lo) * half;
    }
    double const whole = nx_exp(x.hi);
    return factor * (whole + whole * x.lo);
}

} // namespace arrlib

#endif
