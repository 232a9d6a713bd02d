// Two vectors as one. A formula of many steps on one vector fills the processor's window with what waits
// for one another; of two side by side, one can go on where the other waits.
#ifndef ARRLIB_OPS_KERNELS_VECTOR_TWO_H
#define ARRLIB_OPS_KERNELS_VECTOR_TWO_H

#include "ops/kernels/vector.h"

#include <type_traits>

namespace arrlib {
namespace {

template <class Of> struct TwoBits {
    Of a, b;

    TwoBits(Of first, Of second) : a(first), b(second) {}
    TwoBits(std::uint64_t all) : a(all), b(all) {}
    TwoBits operator+(TwoBits o) const { return {a + o.a, b + o.b}; }
    TwoBits operator-(TwoBits o) const { return {a - o.a, b - o.b}; }
    TwoBits operator&(TwoBits o) const { return {a & o.a, b & o.b}; }
    TwoBits operator|(TwoBits o) const { return {a | o.a, b | o.b}; }
    TwoBits operator^(TwoBits o) const { return {a ^ o.a, b ^ o.b}; }
    template <int Count> TwoBits up() const { return {a.template up<Count>(), b.template up<Count>()}; }
    template <int Count> TwoBits down() const { return {a.template down<Count>(), b.template down<Count>()}; }
};

template <class V> struct TwoMask {
    typename V::Mask a, b;

    TwoMask operator&(TwoMask o) const { return {a & o.a, b & o.b}; }
    TwoMask operator|(TwoMask o) const { return {a | o.a, b | o.b}; }
    TwoMask operator^(TwoMask o) const { return {a ^ o.a, b ^ o.b}; }
    TwoMask operator!() const { return {!a, !b}; }
    bool any() const { return V::Mask::any_of(a, b); }
    static bool any_of(TwoMask x, TwoMask y) { return (x | y).any(); }
    bool all() const { return (a & b).all(); }
    unsigned lanes() const { return a.lanes() | b.lanes() << V::count; }
    static TwoMask of(TwoBits<typename V::Bits> bits, TwoBits<typename V::Bits> among) { return {V::Mask::of(bits.a, among.a), V::Mask::of(bits.b, among.b)}; }
};

template <class V> struct Two {
    static constexpr int count = 2 * V::count;
    using Bits = TwoBits<typename V::Bits>;
    using Mask = TwoMask<V>;
    V a, b;

    Two(V first, V second) : a(first), b(second) {}
    Two(double all) : a(all), b(all) {}
    static Two load(double const* from) { return {V::load(from), V::load(from + V::count)}; }
    void store(double* to) const
    {
        a.store(to);
        b.store(to + V::count);
    }
    static Two of(Bits bits) { return {V::of(bits.a), V::of(bits.b)}; }
    Bits bits() const { return {a.bits(), b.bits()}; }

    Two operator+(Two o) const { return {a + o.a, b + o.b}; }
    Two operator-(Two o) const { return {a - o.a, b - o.b}; }
    Two operator*(Two o) const { return {a * o.a, b * o.b}; }
    Two operator/(Two o) const { return {a / o.a, b / o.b}; }
    Two operator-() const { return {-a, -b}; }
    Mask operator<(Two o) const { return {a < o.a, b < o.b}; }
    Mask operator<=(Two o) const { return {a <= o.a, b <= o.b}; }
    Mask operator>(Two o) const { return {a > o.a, b > o.b}; }
    Mask operator>=(Two o) const { return {a >= o.a, b >= o.b}; }
    Mask operator==(Two o) const { return {a == o.a, b == o.b}; }
    Mask operator!=(Two o) const { return {a != o.a, b != o.b}; }
};

template <class V> Two<V> fma(Two<V> x, Two<V> y, Two<V> z) { return {fma(x.a, y.a, z.a), fma(x.b, y.b, z.b)}; }
template <class V> Two<V> select(TwoMask<V> which, Two<V> yes, Two<V> no) { return {select(which.a, yes.a, no.a), select(which.b, yes.b, no.b)}; }
template <class V> Two<V> negative_where(TwoMask<V> which, Two<V> x) { return {negative_where(which.a, x.a), negative_where(which.b, x.b)}; }
template <class V> TwoMask<V> within(Two<V> x, Two<V> low, Two<V> high) { return {within(x.a, low.a, high.a), within(x.b, low.b, high.b)}; }
template <class V> bool any_beyond(Two<V> x, double limit) { return any_beyond(x.a, x.b, limit); }
template <class V> TwoMask<V> not_below(Two<V> x, Two<V> limit) { return {not_below(x.a, limit.a), not_below(x.b, limit.b)}; }
template <class V> TwoMask<V> not_positive_normal(Two<V> x) { return {not_positive_normal(x.a), not_positive_normal(x.b)}; }
template <class V> Two<V> mantissa(Two<V> x) { return {mantissa(x.a), mantissa(x.b)}; }
template <class V> Two<V> exponent_below(Two<V> x) { return {exponent_below(x.a), exponent_below(x.b)}; }
template <class V> Two<V> abs(Two<V> x) { return {abs(x.a), abs(x.b)}; }
template <class V> Two<V> sqrt(Two<V> x) { return {sqrt(x.a), sqrt(x.b)}; }
template <class V> Two<V> floor(Two<V> x) { return {floor(x.a), floor(x.b)}; }
template <class V> Two<V> ceil(Two<V> x) { return {ceil(x.a), ceil(x.b)}; }
template <class V> Two<V> trunc(Two<V> x) { return {trunc(x.a), trunc(x.b)}; }
template <class V> Two<V> larger(Two<V> x, Two<V> y) { return {larger(x.a, y.a), larger(x.b, y.b)}; }
template <class V> Two<V> smaller(Two<V> x, Two<V> y) { return {smaller(x.a, y.a), smaller(x.b, y.b)}; }
template <class V> Two<V> scale(Two<V> x, Two<V> n) { return {scale(x.a, n.a), scale(x.b, n.b)}; }
template <std::size_t Size, class Of> auto pick(double const (&table)[Size], TwoBits<Of> at)
{
    auto const first = pick(table, at.a);
    return Two<std::remove_const_t<decltype(first)>>(first, pick(table, at.b));
}
template <class Of> auto pick(double even, double odd, TwoBits<Of> at)
{
    auto const first = pick(even, odd, at.a);
    return Two<std::remove_const_t<decltype(first)>>(first, pick(even, odd, at.b));
}

} // namespace
} // namespace arrlib

#endif
