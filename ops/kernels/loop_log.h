// Logarithms, what is made of them, and powers.
//
// x is 2^e m with m in [3/4, 3/2), and m is (1 + r)/c with c from a table, by the fifteenth that is nearest
// to m: log(x) is (e - 1) log(2) + log(2/c) + log(1 + r), |r| at most 1/24. c is 1 in the step around 1,
// so that nothing cancels there. (e - 1) log(2) + log(2/c) is exact but for a small second part; the polynomial
// gives only what log(1 + r) has beyond r, or for the pairs, beyond r - r^2/2.
#ifndef ARRLIB_OPS_KERNELS_LOOP_LOG_H
#define ARRLIB_OPS_KERNELS_LOOP_LOG_H

#include "ops/kernels/loop_exp.h"

namespace arrlib {
namespace {

constexpr double least_normal = 0x1p-1022;

// Of a positive, finite and normal x: m, e - 1, and c with its place in the table.
template <class V> struct LogStep {
    V m, e_below, inverse;
    typename V::Bits step;
};
template <class V> LogStep<V> log_step(V x)
{
    V const m = mantissa(x);
    typename V::Bits const step = fma(m, V(15.0), V(to_integer)).bits();
    return {m, exponent_below(x), pick(log_inverse, step), step};
}

// The logarithm as a pair, good to about 2^-66 of it; 1 + r + r_low is m c.
template <class V> Pair<V> log_pair_of_step(LogStep<V> x, V r, V r_low)
{
    V const base = fma(x.e_below, V(natural_log.of_two[0]), pick(natural_log.step, x.step));
    V const base_low = fma(x.e_below, V(natural_log.of_two[1]), V(natural_log.of_two[1]));
    Pair<V> const square = product_of(r, r), first = sum_of_ordered(base, r);
    // first - r^2/2 + r^3/3.
    V const second = fma(square.hi, V(-0.5), first.hi), second_lost = fma(square.hi, V(-0.5), first.hi - second);
    V const cube = square.hi * r, third = fma(cube, V(1.0 / 3), second), third_lost = fma(cube, V(1.0 / 3), second - third);
    // d log(1 + r) = (1 - r + r^2 - ...) dr.
    V const low = fma(square.lo, V(-0.5), fma(square.hi - r, r_low, r_low) + base_low) + (first.lo + second_lost) + third_lost;
    return sum_of_ordered(third, fma(cube * r, polynomial_by_squares(r, log_fourth_terms), low));
}
template <class V> Pair<V> log_pair(V x)
{
    LogStep<V> const parts = log_step(x);
    Pair<V> const product = product_of(parts.m, parts.inverse);
    return log_pair_of_step(parts, product.hi - V(1.0), product.lo);
}
// log((x + low) 2^exponent).
template <class V> Pair<V> log_pair(V x, V low, V exponent)
{
    LogStep<V> parts = log_step(x);
    Pair<V> const product = product_of(parts.m, parts.inverse);
    // By 2^(1 - e) and a half, since 2^-e need not be a normal number.
    V const twice_inverse_power = V::of(V(2.0).bits() + (parts.m.bits() - x.bits()));
    Pair<V> const r = sum_of_ordered(product.hi - V(1.0), fma(low * V(0.5) * twice_inverse_power, parts.inverse, product.lo));
    parts.e_below = parts.e_below + exponent;
    return log_pair_of_step(parts, r.hi, r.lo);
}

template <LogTable const& Table> struct LogToBase {
    template <class V> static V of(V x)
    {
        return not_positive_normal(x).any() ? of_any(x) : of_step(log_step(x));
    }

private:
    template <class V> static V of_step(LogStep<V> x)
    {
        V const base = fma(x.e_below, V(Table.of_two[0]), pick(Table.step, x.step));
        if constexpr (Table.factor[0] == 1) {
            // Rounded, which counts for a quarter of an ulp beside the step of 1, and not at all within it.
            V const r = fma(x.m, x.inverse, V(-1.0));
            Pair<V> const sum = sum_of_ordered(base, r);
            V const low = fma(x.e_below, V(Table.of_two[1]), V(Table.of_two[1])) + sum.lo;
            return sum.hi + fma(r * r, polynomial_by_squares(r, log_terms), low);
        } else {
            Pair<V> const of_r = product_of(x.m, x.inverse);
            V const r = of_r.hi - V(1.0), low = fma(r * r, polynomial(r, log_terms), fma(-r, of_r.lo, of_r.lo));
            V const base_low = fma(x.e_below, V(Table.of_two[1]), pick(Table.step_low, x.step));
            Pair<V> const product = product_of(r, V(Table.factor[0])), sum = sum_of_ordered(base, product.hi);
            V const product_low = fma(low, V(Table.factor[0]), fma(r, V(Table.factor[1]), product.lo));
            return sum.hi + (sum.lo + (base_low + product_low));
        }
    }
    template <class V> ARRLIB_COLD static V of_any(V x)
    {
        typename V::Mask const tiny = x < V(least_normal);
        LogStep<V> parts = log_step(select(tiny, x * V(0x1p54), x));
        parts.e_below = select(tiny, parts.e_below - V(54.0), parts.e_below);
        V const result = of_step(parts);
        V const special = select(x == V(0.0), V(-infinite), select(x > V(0.0), x, V(not_a_number)));
        return select((x > V(0.0)) & (x < V(infinite)), result, special);
    }
};
using Log = LogToBase<natural_log>;
using Log2 = LogToBase<binary_log>;
using Log10 = LogToBase<decimal_log>;

// log(1 + u) for u >= 0; or log(x 2^exponent), not as good, where x is said to be far.
template <class V> Pair<V> log1p_pair(Pair<V> u, typename V::Mask far, V x, V exponent)
{
    Pair<V> const sum = Pair<V>{V(1.0), V(0.0)} + u;
    Pair<V> const log = log_pair(select(far, x, sum.hi), select(far, V(0.0), sum.lo), select(far, exponent, V(0.0)));
    // 1 + u has no room for all of a small u.
    Pair<V> const small = sum_of_ordered(u.hi, fma(u.hi * u.hi, V(-0.5), u.lo));
    return select((u.hi < V(0x1p-30)) & !far, small, log);
}
template <class V> Pair<V> log1p_pair(Pair<V> u) { return log1p_pair(u, u.hi != u.hi, V(1.0), V(0.0)); }

// asinh(x) = log(1 + u) for x >= 0: u is x + x^2/(1 + sqrt(1 + x^2)).
template <class V> Pair<V> asinh_argument(Pair<V> x)
{
    Pair<V> const square = x * x, root = sqrt(square + V(1.0));
    return x + square / (root + V(1.0));
}
// From here on asinh(x) and acosh(x) are log(2x), and so with the reciprocals.
constexpr double far_from_one = 0x1p28;

struct Asinh {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        typename V::Mask const far = size > V(far_from_one), inside = (size > V(0x1p-30)) & (size < V(infinite));
        Pair<V> const u = asinh_argument(Pair<V>{select(inside & !far, size, V(1.0)), V(0.0)});
        V const result = log1p_pair(u, far, size, V(1.0)).value();
        return copy_sign(select(inside, result, size), x);
    }
};
struct Acsch {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        typename V::Mask const far = size < V(1 / far_from_one), tiny = size < V(least_normal);
        typename V::Mask const inside = (size > V(0.0)) & (size < V(0x1p500));
        Pair<V> const inverse = reciprocal(Pair<V>{select(inside & !far, size, V(1.0)), V(0.0)});
        // log(2/x) is -log(x/2).
        V const log = log1p_pair(asinh_argument(inverse), far, select(tiny, size * V(0x1p54), size), select(tiny, V(-55.0), V(-1.0))).value();
        V const special = select(size == V(0.0), V(infinite), V(1.0) / size);
        return copy_sign(select(inside, abs(log), special), x);
    }
};

// acosh(1 + t) = log(1 + t + sqrt(t (t + 2))).
struct Acosh {
    template <class V> static V of(V x)
    {
        typename V::Mask const far = x > V(far_from_one);
        Pair<V> const t = sum_of(select(far, V(2.0), x), V(-1.0)), root = sqrt(t * (t + V(2.0)));
        V const result = log1p_pair(t + root, far, x, V(1.0)).value();
        return select(x >= V(1.0), select(x < V(infinite), result, x), V(not_a_number));
    }
};
// log(1 + (1 - x + sqrt((1 - x) (1 + x)))/x).
struct Asech {
    template <class V> static V of(V x)
    {
        typename V::Mask const far = x < V(1 / far_from_one), tiny = x < V(least_normal);
        V const y = select(far, V(1.0), x);
        Pair<V> const rest = sum_of_ordered(V(1.0), -y), root = sqrt(rest * sum_of_ordered(V(1.0), y));
        Pair<V> const u = (rest + root) / Pair<V>{y, V(0.0)};
        V const log = log1p_pair(u, far, select(tiny, x * V(0x1p54), x), select(tiny, V(-55.0), V(-1.0))).value();
        return select(x == V(0.0), V(infinite), select((x > V(0.0)) & (x <= V(1.0)), abs(log), V(not_a_number)));
    }
};

// log(1 + 2x/(1 - x)) / 2.
struct Atanh {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        typename V::Mask const inside = (size < V(1.0)) & (size > V(0x1p-30));
        V const y = select(inside, size, V(0.5));
        Pair<V> const log = log1p_pair(Pair<V>{y + y, V(0.0)} / sum_of_ordered(V(1.0), -y));
        V const special = select(size < V(1.0), size, select(size == V(1.0), V(infinite), V(not_a_number)));
        return copy_sign(select(inside, log.value() * V(0.5), special), x);
    }
};
// log(1 + 2/(x - 1)) / 2.
struct Acoth {
    template <class V> static V of(V x)
    {
        V const size = abs(x);
        typename V::Mask const inside = (size > V(1.0)) & (size < V(0x1p30));
        V const y = select(inside, size, V(2.0));
        Pair<V> const log = log1p_pair(Pair<V>{V(2.0), V(0.0)} / sum_of(y, V(-1.0)));
        V const special = select(size > V(1.0), V(1.0) / size, select(size == V(1.0), V(infinite), V(not_a_number)));
        return copy_sign(select(inside, log.value() * V(0.5), special), x);
    }
};

} // namespace
} // namespace arrlib

#endif
