// Several doubles at once, and one: the types that the kernels are templates over. Lane is one
// double, Wide as many as a register of this kind of processor holds; both have the same operations,
// which give the same bits lane by lane.
//
// The files that include this are compiled once per kind, with the instructions of that kind. All of
// it is in an anonymous namespace and uses no inline function of the standard library: a function
// shared between the objects of several kinds might be linked with instructions that the processor
// lacks.
#ifndef ARRLIB_OPS_KERNELS_VECTOR_H
#define ARRLIB_OPS_KERNELS_VECTOR_H

#include "ops/kernels/fused.h"

#include <cstddef>
#include <cstdint>

namespace arrlib {
namespace {

// 1.5 2^52: a sum with it is rounded to an integer, which stands in its low bits.
constexpr double to_integer = 0x1.8p52;

// 64 bits of each lane.
struct LaneBits {
    std::uint64_t v;

    LaneBits(std::uint64_t all) : v(all) {}
    LaneBits operator+(LaneBits o) const { return v + o.v; }
    LaneBits operator-(LaneBits o) const { return v - o.v; }
    LaneBits operator&(LaneBits o) const { return v & o.v; }
    LaneBits operator|(LaneBits o) const { return v | o.v; }
    LaneBits operator^(LaneBits o) const { return v ^ o.v; }
    template <int Count> LaneBits up() const { return v << Count; }
    template <int Count> LaneBits down() const { return v >> Count; }
};

struct LaneMask {
    bool v;

    LaneMask operator&(LaneMask o) const { return {v && o.v}; }
    LaneMask operator|(LaneMask o) const { return {v || o.v}; }
    LaneMask operator^(LaneMask o) const { return {v != o.v}; }
    LaneMask operator!() const { return {!v}; }
    // Whether any lane is set, or all; the lanes as bits.
    bool any() const { return v; }
    bool all() const { return v; }
    static bool any_of(LaneMask x, LaneMask y) { return x.v || y.v; }
    unsigned lanes() const { return v; }
    // Lanes in which one of the bits `among` is set.
    static LaneMask of(LaneBits bits, LaneBits among) { return {(bits.v & among.v) != 0}; }
};

struct Lane {
    static constexpr int count = 1;
    using Bits = LaneBits;
    using Mask = LaneMask;
    double v;

    // The same in all lanes.
    Lane(double all) : v(all) {}
    static Lane load(double const* from) { return *from; }
    void store(double* to) const { *to = v; }
    // The first n < count lanes; the others are 1.
    static Lane load(double const*, int) { return 1.0; }
    void store(double*, int) const {}
    static Lane of(Bits bits) { return __builtin_bit_cast(double, bits.v); }
    Bits bits() const { return __builtin_bit_cast(std::uint64_t, v); }

    Lane operator+(Lane o) const { return v + o.v; }
    Lane operator-(Lane o) const { return v - o.v; }
    Lane operator*(Lane o) const { return v * o.v; }
    Lane operator/(Lane o) const { return v / o.v; }
    Lane operator-() const { return -v; }
    Mask operator<(Lane o) const { return {v < o.v}; }
    Mask operator<=(Lane o) const { return {v <= o.v}; }
    Mask operator>(Lane o) const { return {v > o.v}; }
    Mask operator>=(Lane o) const { return {v >= o.v}; }
    Mask operator==(Lane o) const { return {v == o.v}; }
    Mask operator!=(Lane o) const { return {!(v == o.v)}; }
};

// a b + c, rounded once.
inline Lane fma(Lane a, Lane b, Lane c) { return fused(a.v, b.v, c.v); }
inline Lane select(LaneMask which, Lane yes, Lane no) { return which.v ? yes : no; }
inline Lane negative_where(LaneMask which, Lane x) { return which.v ? -x : x; }
// Whether a lane of x, or of x and y, is at least as large as the limit in magnitude. NaN may count or not.
inline bool any_beyond(Lane x, double limit) { return !(__builtin_fabs(x.v) < limit); }
inline bool any_beyond(Lane x, Lane y, double limit) { return any_beyond(x, limit) || any_beyond(y, limit); }
// low <= x < high.
inline LaneMask within(Lane x, Lane low, Lane high) { return (x >= low) & (x < high); }
// NaN, too.
inline LaneMask not_below(Lane x, Lane limit) { return !(x < limit); }
inline LaneMask not_positive_normal(Lane x) { return !within(x, __DBL_MIN__, __builtin_huge_val()); }
inline Lane abs(Lane x) { return __builtin_fabs(x.v); }
inline Lane sqrt(Lane x) { return __builtin_sqrt(x.v); }
inline Lane floor(Lane x) { return __builtin_floor(x.v); }
inline Lane ceil(Lane x) { return __builtin_ceil(x.v); }
inline Lane trunc(Lane x) { return __builtin_trunc(x.v); }
// The second one if either is NaN, or if they are equal.
inline Lane larger(Lane x, Lane y) { return x.v > y.v ? x : y; }
inline Lane smaller(Lane x, Lane y) { return x.v < y.v ? x : y; }
// table[bits % Size].
template <std::size_t Size> Lane pick(double const (&table)[Size], LaneBits at) { return table[at.v % Size]; }
// The one or the other by the last bit.
inline Lane pick(double even, double odd, LaneBits at)
{
    double const table[] = {even, odd};
    return table[at.v % 2];
}
// x 2^floor(n) for n of at most 2000 in magnitude, rounded once when x is in [0.5, 4]. NaN for NaN x, whatever n.
inline Lane scale(Lane x, Lane n)
{
    auto const power = [](double e) { return __builtin_bit_cast(double, __builtin_bit_cast(std::uint64_t, e + (to_integer + 1023)) << 52); };
    double const nearest = (n.v + to_integer) - to_integer, all = nearest > n.v ? nearest - 1 : nearest;
    double const half = (all * 0.5 + to_integer) - to_integer;
    return x.v * power(half) * power(all - half);
}

// x = 2^e m with m in [3/4, 3/2), for positive normal x: m, and e - 1. The bits of 3/4 and those of numbers half
// way between two powers of two end in 51 zeros: the difference to them moves the border there to where exponents change.
constexpr std::uint64_t half_step = std::uint64_t{1} << 51;
template <class V> V mantissa_by_bits(V x)
{
    using Bits = typename V::Bits;
    return V::of(((x.bits() - Bits(half_step)) & Bits(2 * half_step - 1)) + V(0.75).bits());
}
template <class V> V exponent_below_by_bits(V x)
{
    // The exponent's bits below those of 2^52 make a number of them.
    return V::of((x.bits() - typename V::Bits(half_step)).template down<52>() | V(0x1p52).bits()) - V(0x1p52 + 1023);
}
inline Lane mantissa(Lane x) { return mantissa_by_bits(x); }
inline Lane exponent_below(Lane x) { return exponent_below_by_bits(x); }

} // namespace
} // namespace arrlib

#if defined(__AVX512F__)
#include "ops/kernels/vector_avx512.h"
#elif defined(__AVX2__)
#include "ops/kernels/vector_avx2.h"
#else
namespace arrlib {
namespace {
using Wide = Lane;
} // namespace
} // namespace arrlib
#endif

#endif
