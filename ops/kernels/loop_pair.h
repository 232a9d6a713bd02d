// Numbers of twice the precision, for what is rounded away on the way to a result: a value and a
// correction of at most about an ulp of it. Sums and products of them are good to some 100 bits.
#ifndef ARRLIB_OPS_KERNELS_LOOP_PAIR_H
#define ARRLIB_OPS_KERNELS_LOOP_PAIR_H

#include "ops/kernels/vector.h"

namespace arrlib {
namespace {

template <class V> struct Pair {
    V hi, lo;

    V value() const { return hi + lo; }
    Pair operator-() const { return {-hi, -lo}; }
};

// |x| >= |y|, or x a multiple of y's last place.
template <class V> Pair<V> sum_of_ordered(V x, V y)
{
    V const s = x + y;
    return {s, y - (s - x)};
}
template <class V> Pair<V> sum_of(V x, V y)
{
    V const s = x + y, of_y = s - x;
    return {s, (x - (s - of_y)) + (y - of_y)};
}
template <class V> Pair<V> product_of(V x, V y)
{
    V const p = x * y;
    return {p, fma(x, y, -p)};
}

template <class V> Pair<V> operator+(Pair<V> x, V y)
{
    Pair<V> const s = sum_of(x.hi, y);
    return sum_of_ordered(s.hi, s.lo + x.lo);
}
template <class V> Pair<V> operator+(Pair<V> x, Pair<V> y)
{
    Pair<V> const s = sum_of(x.hi, y.hi);
    return sum_of_ordered(s.hi, s.lo + (x.lo + y.lo));
}
template <class V> Pair<V> operator-(Pair<V> x, Pair<V> y) { return x + -y; }
template <class V> Pair<V> operator*(Pair<V> x, Pair<V> y)
{
    Pair<V> const p = product_of(x.hi, y.hi);
    return sum_of_ordered(p.hi, p.lo + fma(x.hi, y.lo, x.lo * y.hi));
}
// The divisor's reciprocal must be finite.
template <class V> Pair<V> operator/(Pair<V> x, Pair<V> y)
{
    V const inverse = V(1.0) / y.hi, quotient = x.hi * inverse;
    V const rest = fma(-quotient, y.hi, x.hi) + fma(-quotient, y.lo, x.lo);
    return sum_of_ordered(quotient, rest * inverse);
}
template <class V> Pair<V> reciprocal(Pair<V> y)
{
    V const inverse = V(1.0) / y.hi, rest = fma(-inverse, y.lo, fma(-inverse, y.hi, V(1.0)));
    return sum_of_ordered(inverse, rest * inverse);
}
// 0 for 0.
template <class V> Pair<V> sqrt(Pair<V> x)
{
    V const root = sqrt(x.hi), rest = fma(-root, root, x.hi) + x.lo;
    return {root, select(root > V(0.0), rest / (root + root), V(0.0))};
}
template <class V> Pair<V> select(typename V::Mask which, Pair<V> yes, Pair<V> no)
{
    return {select(which, yes.hi, no.hi), select(which, yes.lo, no.lo)};
}

// terms[0] + terms[1] x + ...; the lower and the upper half apart, and so on, which shortens the wait
// for results.
template <std::size_t First, std::size_t Count, class V, std::size_t Size>
V polynomial_part(V const (&powers)[4], double const (&terms)[Size])
{
    if constexpr (Count == 1)
        return V(terms[First]);
    else {
        constexpr std::size_t level = Count > 8 ? 3 : Count > 4 ? 2 : Count > 2 ? 1 : 0, low = std::size_t{1} << level;
        return fma(polynomial_part<First + low, Count - low>(powers, terms), powers[level], polynomial_part<First, low>(powers, terms));
    }
}
template <class V, std::size_t Size> V polynomial(V x, double const (&terms)[Size])
{
    V const square = x * x, fourth = square * square;
    return polynomial_part<0, Size>({x, square, fourth, fourth * fourth}, terms);
}
// The same with fewer operations, where enough other work goes on meanwhile: every Step-th term in turn, and the
// even and the odd powers apart.
template <std::size_t Step = 1, std::size_t First = 0, class V, std::size_t Size> V every_term(V power, double const (&terms)[Size])
{
    if constexpr (First + Step >= Size)
        return V(terms[First]);
    else
        return fma(every_term<Step, First + Step>(power, terms), power, V(terms[First]));
}
template <class V, std::size_t Size> V polynomial_by_squares(V x, double const (&terms)[Size])
{
    V const square = x * x;
    return fma(every_term<2, 1>(square, terms), x, every_term<2, 0>(square, terms));
}

} // namespace
} // namespace arrlib

#endif
