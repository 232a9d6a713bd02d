// Inverse trigonometric functions.
//
// The angle of the point (b, a), 0 <= a <= b, is the arctangent of a/b, or pi/4 more than that of
// (a - b)/(a + b); the one that is below tan(pi/8) is divided once, with what the quotient lacks, and
// goes into the polynomial. Then the octants are put together as pairs.
#ifndef ARRLIB_OPS_KERNELS_LOOP_ATAN_H
#define ARRLIB_OPS_KERNELS_LOOP_ATAN_H

#include "ops/kernels/loop_arithmetic.h"
#include "ops/kernels/loop_constants.h"
#include "ops/kernels/loop_pair.h"

namespace arrlib {
namespace {

// The angle in [0, pi] of the point (x, y) or (-x, y), for x, y >= 0 whose larger one is within
// 2^+-1000; the other may be 0.
template <class V> V angle_of(Pair<V> y, Pair<V> x, typename V::Mask left)
{
    typename V::Mask const steep = y.hi > x.hi;
    Pair<V> const a = select(steep, x, y), b = select(steep, y, x);
    typename V::Mask const far = a.hi > b.hi * V(tan_eighth_pi);
    Pair<V> const difference = sum_of_ordered(-b.hi, a.hi), sum = sum_of_ordered(b.hi, a.hi);
    V const over = select(far, difference.hi, a.hi), over_low = a.lo + select(far, difference.lo - b.lo, V(0.0));
    V const under = select(far, sum.hi, b.hi), under_low = b.lo + select(far, sum.lo + a.lo, V(0.0));

    V const inverse = V(1.0) / under, tangent = over * inverse;
    V const rest = (fma(-tangent, under, over) + fma(-tangent, under_low, over_low)) * inverse;
    V const square = tangent * tangent;
    V const low = fma(square * tangent, polynomial(square, atan_terms), fma(-rest, square, rest));

    // So many eighths of a turn, and the angle forth or back from there.
    V eighths = select(far, V(1.0), V(0.0));
    eighths = select(steep, V(2.0) - eighths, eighths);
    eighths = select(left, V(4.0) - eighths, eighths);
    V const forth = select(steep, V(-1.0), V(1.0)), sign = select(left, -forth, forth);
    Pair<V> const base = product_of(eighths, V(quarter_pi[0]));
    V const base_low = fma(eighths, V(quarter_pi[1]), base.lo);
    Pair<V> const result = sum_of_ordered(base.hi, sign * tangent);
    return result.hi + (result.lo + fma(sign, low, base_low));
}

struct Atan2 {
    template <class V> static V of(V y, V x)
    {
        V const a = abs(y), b = abs(x);
        // What a quotient lacks is lost when it is below the least normal number.
        typename V::Mask const plain = (smaller(a, b) > V(0x1p-950)) & (larger(a, b) < V(0x1p900)), other = !plain;
        // The sign of a zero tells the side, too.
        typename V::Mask const left = copy_sign(V(1.0), x) < V(0.0);
        return other.any() ? of_any(y, x, left) : copy_sign(angle_of(Pair<V>{a, V(0.0)}, Pair<V>{b, V(0.0)}, left), y);
    }

private:
    template <class V> ARRLIB_COLD static V of_any(V y, V x, typename V::Mask left)
    {
        V a = abs(y), b = abs(x);
        V const least = smaller(a, b), most = larger(a, b);
        V const factor = select(most >= V(0x1p900), V(0x1p-200), select(most >= V(1.0), V(0x1p100), V(0x1p800)));
        typename V::Mask const plain = (least > V(0x1p-950)) & (most < V(0x1p900));
        a = select(plain, a, a * factor);
        b = select(plain, b, b * factor);
        // Both infinite: the diagonal. One infinite, or both zero: an axis.
        typename V::Mask const infinity = most == V(infinite);
        a = select(infinity, as_number(V(1.0), abs(y) == V(infinite)), a);
        b = select(infinity, as_number(V(1.0), abs(x) == V(infinite)), b);
        b = select((a == V(0.0)) & (b == V(0.0)), V(1.0), b);
        V const result = angle_of(Pair<V>{a, V(0.0)}, Pair<V>{b, V(0.0)}, left);
        return select(is_nan(y) | is_nan(x), x + y, copy_sign(result, y));
    }
};

struct Atan {
    template <class V> static V of(V x)
    {
        Pair<V> const size{smaller(V(0x1p800), abs(x)), V(0.0)}, one{V(1.0), V(0.0)};
        return copy_sign(angle_of(size, one, x != x), x);
    }
};
struct Acot {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        Pair<V> const below{smaller(V(0x1p800), size), V(0.0)}, one{V(1.0), V(0.0)};
        return copy_sign(select(size > V(0x1p800), V(1.0) / size, angle_of(one, below, x != x)), x);
    }
};

// The arc sine of |x| <= 1 from 0 to pi/2, and what it is made of: up to 1/2 a polynomial, above by
// asin(x) = pi/2 - 2 asin(sqrt((1 - x)/2)).
template <class V> struct ArcParts {
    // asin(x), or asin(sqrt(...)).
    Pair<V> arc;
    typename V::Mask big;
};
template <class V> ArcParts<V> arc_parts(Pair<V> x)
{
    typename V::Mask const big = x.hi > V(0.5);
    // 1 - x is exact.
    Pair<V> const rest = sum_of_ordered((V(1.0) - x.hi) * V(0.5), x.lo * V(-0.5)), root = sqrt(rest);
    V const square = select(big, rest.hi, x.hi * x.hi);
    Pair<V> const base = select(big, root, x);
    // What is lost in the square counts in the correction of the base.
    V const low = fma(square * base.hi, polynomial(square, asin_terms), fma(base.lo * square, V(0.5), base.lo));
    return {sum_of_ordered(base.hi, low), big};
}
template <class V> V arc_sine(Pair<V> x)
{
    ArcParts<V> const parts = arc_parts(x);
    Pair<V> const arc = parts.arc;
    Pair<V> const from_right = sum_of_ordered(V(half_pi[0]), arc.hi * V(-2.0));
    V const far = from_right.hi + (from_right.lo + fma(arc.lo, V(-2.0), V(half_pi[1])));
    return select(parts.big, far, arc.value());
}
// Of x, or of -x where `left` is set.
template <class V> V arc_cosine(Pair<V> x, typename V::Mask left)
{
    ArcParts<V> const parts = arc_parts(x);
    V const sign = select(left, V(1.0), V(-1.0)), hi = parts.arc.hi * sign, lo = parts.arc.lo * sign;
    Pair<V> const near_sum = sum_of_ordered(V(half_pi[0]), hi);
    V const near = near_sum.hi + (near_sum.lo + (lo + V(half_pi[1])));
    // 2 asin(sqrt(...)), or pi less that.
    Pair<V> const far_sum = sum_of_ordered(select(left, V(pi_parts[0]), V(0.0)), hi * V(-2.0));
    V const far = far_sum.hi + (far_sum.lo + fma(lo, V(-2.0), select(left, V(pi_parts[1]), V(0.0))));
    return select(parts.big, far, near);
}

struct Asin {
    template <class V> static V of(V x) { return copy_sign(arc_sine(Pair<V>{abs(x), V(0.0)}), x); }
};
struct Acos {
    template <class V> static V of(V x) { return arc_cosine(Pair<V>{abs(x), V(0.0)}, x < V(0.0)); }
};
// Of the reciprocal. Large numbers: the reciprocal of their lowest terms would be denormal.
template <class V> Pair<V> reciprocal_of_size(V x) { return reciprocal(Pair<V>{select(abs(x) < V(0x1p900), abs(x), V(0x1p900)), V(0.0)}); }
struct Acsc {
    template <class V> static V of(V x)
    {
        V const result = select(abs(x) < V(0x1p30), arc_sine(reciprocal_of_size(x)), V(1.0) / abs(x));
        return copy_sign(select(abs(x) < V(1.0), V(not_a_number), result), x);
    }
};
struct Asec {
    template <class V> static V of(V x)
    {
        V const result = arc_cosine(reciprocal_of_size(x), x < V(0.0));
        return select(abs(x) >= V(1.0), result, V(not_a_number));
    }
};

} // namespace
} // namespace arrlib

#endif
