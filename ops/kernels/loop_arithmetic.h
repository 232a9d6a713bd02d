// The formulas of arithmetic, comparisons and logic.
#ifndef ARRLIB_OPS_KERNELS_LOOP_ARITHMETIC_H
#define ARRLIB_OPS_KERNELS_LOOP_ARITHMETIC_H

#include "core/api.h"
#include "ops/kernels/vector.h"

namespace arrlib {
namespace {

constexpr double infinite = __builtin_huge_val();
constexpr double not_a_number = __builtin_nan("");
constexpr double pi = 0x1.921fb54442d18p1;

template <class V> V as_number(V yes, typename V::Mask which) { return select(which, yes, V(0.0)); }
template <class V> typename V::Mask is_nan(V x) { return x != x; }
// The magnitude of x with the sign of y.
template <class V> V copy_sign(V x, V y)
{
    typename V::Bits const sign = V(-0.0).bits();
    return V::of(abs(x).bits() | (y.bits() & sign));
}
// Replaces the lanes of `to` in `which` by f of those of the arguments.
template <class V, class Function, class... Arguments> ARRLIB_COLD V each_lane(typename V::Mask which, V to, Function f, Arguments... arguments)
{
    constexpr std::size_t count = V::count;
    double result[count], from[sizeof...(Arguments)][count];
    to.store(result);
    std::size_t at = 0;
    (arguments.store(from[at++]), ...);
    unsigned const lanes = which.lanes();
    for (std::size_t k = 0; k < count; ++k)
        if (lanes >> k & 1) {
            if constexpr (sizeof...(Arguments) == 1)
                result[k] = f(from[0][k]);
            else
                result[k] = f(from[0][k], from[1][k]);
        }
    return V::load(result);
}

struct Plus {
    template <class V> static V of(V x, V y) { return x + y; }
};
struct Minus {
    template <class V> static V of(V x, V y) { return x - y; }
};
struct Times {
    template <class V> static V of(V x, V y) { return x * y; }
};
struct RightDivide {
    template <class V> static V of(V x, V y) { return x / y; }
};
struct LeftDivide {
    template <class V> static V of(V x, V y) { return y / x; }
};
struct UnaryMinus {
    template <class V> static V of(V x) { return -x; }
};
struct UnaryPlus {
    template <class V> static V of(V x) { return x; }
};
struct Abs {
    template <class V> static V of(V x) { return abs(x); }
};
struct Sign {
    template <class V> static V of(V x) { return select(x == V(0.0), x, select(is_nan(x), x, copy_sign(V(1.0), x))); }
};
struct Ceil {
    template <class V> static V of(V x) { return ceil(x); }
};
struct Fix {
    template <class V> static V of(V x) { return trunc(x); }
};
struct Floor {
    template <class V> static V of(V x) { return floor(x); }
};
struct Round {
    template <class V> static V of(V x)
    {
        // What trunc cuts off is exact.
        V const whole = trunc(x);
        return select(abs(x - whole) >= V(0.5), whole + copy_sign(V(1.0), x), whole);
    }
};
struct Sqrt {
    template <class V> static V of(V x) { return sqrt(x); }
};

// The remainder of |x| / |y|, exact. A quotient below 2^53 is rounded to its integer part or to the
// next integer; its product with y is then off by one y at most, and what that leaves of x has no
// more bits than x and y have.
template <class V> V positive_remainder(V x, V y)
{
    V const quotient = trunc(x / y);
    V const rest = fma(-quotient, y, x);
    V const exact = select(rest < V(0.0), rest + y, rest);
    // The product of a quotient that was rounded in the denormal range, or that is too large, says nothing.
    typename V::Mask const plain = (quotient < V(0x1p53)) & (y > V(0x1p-900)) & (y < V(0x1p900));
    typename V::Mask const other = !plain;
    if (!other.any())
        return exact;
    return each_lane(other, exact, [](double a, double b) { return __builtin_fmod(a, b); }, x, y);
}

struct Rem {
    template <class V> static V of(V x, V y) { return copy_sign(positive_remainder(abs(x), abs(y)), x); }
};
struct Mod {
    template <class V> static V of(V x, V y)
    {
        V const size = abs(y), rest = positive_remainder(abs(x), size);
        // Opposite signs count down from y. What rounds to y itself is the number before it.
        V const down = size - rest, before = V::of(size.bits() - typename V::Bits(1));
        typename V::Mask const opposite = copy_sign(V(1.0), x) != copy_sign(V(1.0), y);
        V const other = select((down == size) & (size < V(infinite)), before, down);
        V const result = copy_sign(select(opposite & (rest != V(0.0)), other, rest), y);
        return select(is_nan(rest), select(y == V(0.0), x, rest), result);
    }
};

struct Max {
    template <class V> static V of(V x, V y) { return select(is_nan(x), y, larger(y, x)); }
};
struct Min {
    template <class V> static V of(V x, V y) { return select(is_nan(x), y, smaller(y, x)); }
};
struct Imag {
    template <class V> static V of(V) { return V(0.0); }
};
struct Angle {
    template <class V> static V of(V x) { return select(is_nan(x), x, as_number(V(pi), x < V(0.0))); }
};

struct Less {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x < y); }
};
struct LessEqual {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x <= y); }
};
struct Greater {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x > y); }
};
struct GreaterEqual {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x >= y); }
};
struct Equal {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x == y); }
};
struct Unequal {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), x != y); }
};
struct And {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), (x != V(0.0)) & (y != V(0.0))); }
};
struct Or {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), (x != V(0.0)) | (y != V(0.0))); }
};
struct Xor {
    template <class V> static V of(V x, V y) { return as_number(V(1.0), ((x == V(0.0)) & (y != V(0.0))) | ((x != V(0.0)) & (y == V(0.0)))); }
};
struct Not {
    template <class V> static V of(V x) { return as_number(V(1.0), x == V(0.0)); }
};
struct IsFinite {
    template <class V> static V of(V x) { return as_number(V(1.0), abs(x) < V(infinite)); }
};
struct IsInf {
    template <class V> static V of(V x) { return as_number(V(1.0), abs(x) == V(infinite)); }
};
struct IsNan {
    template <class V> static V of(V x) { return as_number(V(1.0), is_nan(x)); }
};

} // namespace
} // namespace arrlib

#endif
