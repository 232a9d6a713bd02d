// Multiply and add with one rounding, whatever the processor and the C library offer.
#ifndef ARRLIB_OPS_KERNELS_FUSED_H
#define ARRLIB_OPS_KERNELS_FUSED_H

#include <cstdint>

namespace arrlib {
namespace {

// a b + c, rounded once, by additions and multiplications alone; where |a|, |b| and |a b| are within
// 2^+-900 and the result is not denormal. The product and the sums are split into a value and what
// its rounding lost. The last but one rounding is to odd: a sum that is not exact gets an odd last
// bit, so that the last rounding cannot take it for a tie.
inline double fused_by_parts(double a, double b, double c)
{
    struct Parts {
        double value, lost;
    };
    auto const sum = [](double x, double y) {
        double const s = x + y, of_y = s - x;
        return Parts{s, (x - (s - of_y)) + (y - of_y)};
    };
    auto const halves = [](double x) {
        double const shifted = x * 134217729.0, high = shifted - (shifted - x);
        return Parts{high, x - high};
    };
    auto const [ah, al] = halves(a);
    auto const [bh, bl] = halves(b);
    double const product = a * b, product_lost = al * bl - (((product - ah * bh) - al * bh) - ah * bl);
    double const plain = product + c;
    if (!(plain - plain == 0) || !(product_lost - product_lost == 0))
        return plain;
    auto const [low, lower] = sum(c, product_lost);
    auto const [high, middle] = sum(product, low);
    auto [tail, lost] = sum(middle, lower);
    auto bits = __builtin_bit_cast(std::uint64_t, tail);
    if (lost != 0 && !(bits & 1))
        bits = (tail > 0) == (lost > 0) ? bits + 1 : bits - 1;
    return high + __builtin_bit_cast(double, bits);
}

// a b + c, rounded once.
inline double fused(double a, double b, double c)
{
#if defined(__FMA__) || defined(__GLIBC__)
    return __builtin_fma(a, b, c);
#else
    return fused_by_parts(a, b, c);
#endif
}

} // namespace
} // namespace arrlib

#endif
