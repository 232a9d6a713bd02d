// Exponentials and hyperbolic functions.
//
// x is cut into k log(2)/16 and a rest r of at most log(2)/32; exp(x) is 2^(k/16) exp(r). The power of
// two comes from a table of its 16 fractions, whose rounding is made good by a second table; exp(r) - 1
// is a polynomial, of about 1/50 and less, so that its rounding does not count.
#ifndef ARRLIB_OPS_KERNELS_LOOP_EXP_H
#define ARRLIB_OPS_KERNELS_LOOP_EXP_H

#include "ops/kernels/loop_arithmetic.h"
#include "ops/kernels/loop_constants.h"
#include "ops/kernels/loop_pair.h"

namespace arrlib {
namespace {

// significand 2^floor(exponent); the significand is in [0.97, 2.05].
template <class V> struct Exponential {
    Pair<V> significand;
    V exponent;

    V value() const { return scale(significand.value(), exponent); }
};

// exp(r) 2^(k/16), k standing in the low bits of `shifted` = k + to_integer.
template <class V> Exponential<V> exponential_of_parts(V r, V k, V shifted)
{
    V const step = pick(exp_step, shifted.bits()), low = pick(exp_step_low, shifted.bits());
    V const growth = fma(r * r, polynomial_by_squares(r, exp_terms), r);
    return {{step, fma(step, growth, low)}, k * V(1.0 / 16)};
}

// exp(x); the argument is a sum, of at most 1000 in magnitude.
template <class V> Exponential<V> exponential(V x, V low)
{
    V const shifted = fma(x, V(sixteenths_per_ln2), V(to_integer)), k = shifted - V(to_integer);
    // The first product and difference are exact.
    V const r = fma(-k, V(ln2_sixteenth[1]), fma(-k, V(ln2_sixteenth[0]), x)) + low;
    return exponential_of_parts(r, k, shifted);
}
template <class V> Exponential<V> exponential(V x)
{
    V const shifted = fma(x, V(sixteenths_per_ln2), V(to_integer)), k = shifted - V(to_integer);
    return exponential_of_parts(fma(-k, V(ln2_sixteenth[1]), fma(-k, V(ln2_sixteenth[0]), x)), k, shifted);
}

// Not further from 0 than the limit; NaN stays.
template <class V> V within(V x, double limit) { return smaller(V(limit), larger(V(-limit), x)); }

// The table of powers in a form that is made whole by adding k to the bits, and what their rounding lost of them.
struct ExpPowers {
    double below[16], lost[16];
};
constexpr ExpPowers make_exp_powers()
{
    ExpPowers made{};
    for (std::uint64_t k = 0; k < 16; ++k) {
        made.below[k] = __builtin_bit_cast(double, __builtin_bit_cast(std::uint64_t, exp_step[k]) - (k << 48));
        made.lost[k] = exp_step_low[k] / exp_step[k];
    }
    return made;
}
constexpr ExpPowers exp_powers = make_exp_powers();

// Up to here exponentials are normal numbers.
constexpr double all_normal = 708;

// exp(r) 2^(k/16) where that is a normal number, k standing in the low bits of `shifted`.
template <class V> V normal_exponential_of_parts(V r, typename V::Bits shifted)
{
    // The bits of k beyond the fourth are the exponent.
    V const power = V::of(pick(exp_powers.below, shifted).bits() + shifted.template up<48>());
    return fma(power, fma(r * r, polynomial_by_squares(r, exp_terms), r) + pick(exp_powers.lost, shifted), power);
}
template <class V> V normal_exponential(V x)
{
    V const shifted = fma(x, V(sixteenths_per_ln2), V(to_integer)), k = shifted - V(to_integer);
    return normal_exponential_of_parts(fma(-k, V(ln2_sixteenth[1]), fma(-k, V(ln2_sixteenth[0]), x)), shifted.bits());
}
// The argument is a sum.
template <class V> V normal_exponential(V x, V low)
{
    V const shifted = fma(x, V(sixteenths_per_ln2), V(to_integer)), k = shifted - V(to_integer);
    return normal_exponential_of_parts(fma(-k, V(ln2_sixteenth[1]), fma(-k, V(ln2_sixteenth[0]), x)) + low, shifted.bits());
}

struct Exp {
    template <class V> static V of(V x) { return any_beyond(x, all_normal) ? of_any(x) : normal_exponential(x); }

private:
    template <class V> ARRLIB_COLD static V of_any(V x)
    {
        return select(abs(x) < V(all_normal), normal_exponential(x), exponential(within(x, 800)).value());
    }
};

struct Pow2 {
    template <class V> static V of(V x)
    {
        V const y = within(x, 1200), shifted = fma(y, V(16.0), V(to_integer)), k = shifted - V(to_integer);
        V const rest = fma(k, V(-1.0 / 16), y);
        return exponential_of_parts(rest * V(natural_log.of_two[0] + natural_log.of_two[1]), k, shifted).value();
    }
};

// (exp(x) + sign exp(-x)) / 2, for x >= 0, and its exponent.
template <class V> Exponential<V> half_sum(V x, double sign)
{
    Exponential<V> const e = exponential(within(x, 800));
    Pair<V> const inverse = reciprocal(sum_of_ordered(e.significand.hi, e.significand.lo));
    // Beyond 2^-500 the other term does not count; the exponent must be an integer before it is doubled.
    V const whole = floor(e.exponent), factor = scale(V(sign), smaller(V(500.0), whole) * V(-2.0));
    return {e.significand + Pair<V>{inverse.hi * factor, inverse.lo * factor}, whole - V(1.0)};
}

// sinh(x) for 0 <= x < 1/2.
template <class V> Pair<V> small_sinh(V x)
{
    V const square = x * x;
    return sum_of_ordered(x, x * square * polynomial(square, sinh_terms));
}
template <class V> Exponential<V> sinh_parts(V x)
{
    Exponential<V> const far = half_sum(x, -1);
    typename V::Mask const small = x < V(0.5);
    return {select(small, small_sinh(x), far.significand), select(small, V(0.0), far.exponent)};
}

// tanh(x) for x >= 0: a polynomial to 1/2, then 1 - 2/(exp(2x) + 1).
template <class V> Pair<V> tanh_parts(V x)
{
    V const square = x * x;
    Pair<V> const small = sum_of_ordered(x, x * square * polynomial(square, tanh_terms));
    Exponential<V> const e = exponential(smaller(V(30.0), x) * V(2.0));
    Pair<V> const grown = sum_of_ordered(e.significand.hi, e.significand.lo);
    V const factor = scale(V(1.0), e.exponent);
    Pair<V> const rest = reciprocal(Pair<V>{grown.hi * factor, grown.lo * factor} + V(1.0));
    return select(x < V(0.5), small, Pair<V>{V(1.0), V(0.0)} - Pair<V>{rest.hi * V(2.0), rest.lo * V(2.0)});
}

struct Cosh {
    template <class V> static V of(V x) { return half_sum(abs(x), 1).value(); }
};
struct Sech {
    template <class V> static V of(V x)
    {
        Exponential<V> const c = half_sum(abs(x), 1);
        return scale(reciprocal(c.significand).value(), -c.exponent);
    }
};
struct Sinh {
    template <class V> static V of(V x) { return copy_sign(sinh_parts(abs(x)).value(), x); }
};
struct Csch {
    template <class V> static V of(V x)
    {
        Exponential<V> const s = sinh_parts(abs(x));
        // The reciprocals of the least numbers overflow.
        V const inverse = select(abs(x) < V(0x1p-900), V(1.0) / abs(x), reciprocal(s.significand).value());
        return copy_sign(scale(inverse, -s.exponent), x);
    }
};
struct Tanh {
    template <class V> static V of(V x) { return copy_sign(tanh_parts(abs(x)).value(), x); }
};
struct Coth {
    template <class V> static V of(V x)
    {
        V const inverse = select(abs(x) < V(0x1p-900), V(1.0) / abs(x), reciprocal(tanh_parts(abs(x))).value());
        return copy_sign(inverse, x);
    }
};

} // namespace
} // namespace arrlib

#endif
