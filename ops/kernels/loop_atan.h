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
template <class V> V angle_of(V y, V x, typename V::Mask left)
{
    V const a = smaller(y, x), b = larger(x, y);
    typename V::Mask const steep = y > x, far = a > b * V(tan_eighth_pi), back = steep ^ left;
    Pair<V> const difference = sum_of_ordered(-b, a), sum = sum_of_ordered(b, a);
    V const over = negative_where(back, select(far, difference.hi, a)), over_low = negative_where(back, as_number(difference.lo, far));
    V const under = select(far, sum.hi, b), under_low = as_number(sum.lo, far);

    V const inverse = V(1.0) / under, tangent = over * inverse;
    V const rest = (fma(-tangent, under, over) + fma(-tangent, under_low, over_low)) * inverse;
    V const square = tangent * tangent;
    V const low = fma(square * tangent, polynomial_by_squares(square, atan_terms), fma(-rest, square, rest));

    // So many eighths of a turn; the angle is forth or back from there. Products with the first part are exact.
    V const near = as_number(V(1.0), far), in_half = select(steep, V(2.0) - near, near), eighths = select(left, V(4.0) - in_half, in_half);
    Pair<V> const result = sum_of_ordered(eighths * V(eighth_turn[0]), tangent);
    return result.hi + fma(eighths, V(eighth_turn[1]), result.lo + low);
}

struct Atan2 {
    template <class V> static V of(V y, V x)
    {
        V const a = abs(y), b = abs(x);
        // What a quotient lacks is lost when it is below the least normal number. NaN gets into the one or the other.
        V const least = smaller(a, b), most = larger(b, a);
        // The sign of a zero tells the side, too.
        typename V::Mask const left = V::Mask::of(x.bits(), V(-0.0).bits());
        return V::Mask::any_of(not_below(most, V(0x1p900)), not_below(V(0x1p-950), least)) ? of_any(y, x, left) : copy_sign(angle_of(a, b, left), y);
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
        V const result = angle_of(a, b, left);
        return select(is_nan(y) | is_nan(x), x + y, copy_sign(result, y));
    }
};

struct Atan {
    template <class V> static V of(V x)
    {
        return copy_sign(angle_of(smaller(V(0x1p800), abs(x)), V(1.0), x != x), x);
    }
};
struct Acot {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        V const result = angle_of(V(1.0), smaller(V(0x1p800), size), x != x);
        return copy_sign(select(size > V(0x1p800), V(1.0) / size, result), x);
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
