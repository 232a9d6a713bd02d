// Sine, cosine and what is made of them.
//
// For the sine and the cosine alone the angle is reduced to at most pi/32 beyond a multiple of pi/16, of
// which tables have the sine and the cosine; addition theorems with two short polynomials do the rest.
// What is divided later is wanted as pairs: the angle is reduced to at most pi/4 beyond a multiple of pi/2,
// as a pair; there one polynomial gives the sine or the cosine, lane by lane the one that is wanted. Both
// begin with terms that are not rounded (x, and 1 - x^2/2), so that the polynomial's rounding counts for a
// tenth of an ulp.
#ifndef ARRLIB_OPS_KERNELS_LOOP_TRIG_H
#define ARRLIB_OPS_KERNELS_LOOP_TRIG_H

#include "ops/kernels/huge_angle.h"
#include "ops/kernels/loop_exp.h"

namespace arrlib {
namespace {

// From here on the kernels leave the reduction to another function.
constexpr double least_huge_angle = 0x1p28;

template <class V> struct Reduced {
    V hi, lo;
    // Of pi/2, modulo 4, in the low bits.
    typename V::Bits quarters;
};

template <class V> Reduced<V> reduce(V x)
{
    V const shifted = fma(x, V(two_over_pi), V(to_integer)), n = shifted - V(to_integer);
    // Exact, and so is the difference from it: its last place is above that of the second part.
    V const first = fma(n, V(-half_pi[0]), x);
    Pair<V> const second = product_of(n, V(half_pi[1]));
    V const hi = first - second.hi, lo = ((first - hi) - second.hi) - second.lo;
    return {hi, fma(n, V(-half_pi[2]), lo), shifted.bits()};
}
template <class V> Reduced<V> reduce_lane_by_lane(V x)
{
    double from[V::count], hi[V::count], lo[V::count], quarters[V::count];
    Reduced<V> const plain = reduce(x);
    x.store(from);
    plain.hi.store(hi);
    plain.lo.store(lo);
    V::of(plain.quarters).store(quarters);
    unsigned const huge = (!(abs(x) < V(least_huge_angle))).lanes();
    for (int k = 0; k < V::count; ++k)
        if (huge >> k & 1) {
            ReducedAngle const angle = reduce_huge_angle(from[k]);
            hi[k] = angle.hi;
            lo[k] = angle.lo;
            quarters[k] = to_integer + angle.quarters;
        }
    return {V::load(hi), V::load(lo), V::load(quarters).bits()};
}
// Below this the sine is the angle, and the cosine is 1.
constexpr double least_angle = 0x1p-30;

// What the formula makes of angles of which some are huge, or so small that it has another form for them.
// Out of line the formula stands once more: the compiler would keep the reduced angles in memory if they
// came from elsewhere at times.
template <class Formula, class V> ARRLIB_COLD V of_unusual_angle(V x)
{
    V const size = abs(x);
    V const result = Formula::of_reduced((size < V(least_huge_angle)).all() ? reduce(x) : reduce_lane_by_lane(x));
    if constexpr (requires { Formula::of_small(x); })
        return select(size < V(least_angle), Formula::of_small(x), result);
    else
        return result;
}
template <class Formula, class V> V of_angle(V x)
{
    constexpr double least_usual = requires { Formula::of_small(x); } ? least_angle : 0;
    return within(abs(x), V(least_usual), V(least_huge_angle)).all() ? Formula::of_reduced(reduce(x)) : of_unusual_angle<Formula>(x);
}

// sin(x + quarters pi/2) but for the sign: a value and a correction of a fifth of it at most. Odd
// quarters want the cosine.
template <class V> Pair<V> sine_parts(V hi, V lo, typename V::Bits quarters)
{
    typename V::Mask const cosine = V::Mask::of(quarters, typename V::Bits(1));
    V const square = hi * hi, square_low = fma(hi, hi, -square), rest = fma(square, V(-0.5), V(1.0));
    auto const term = [&](std::size_t k) { return pick(sin_terms[k], cos_terms[k], quarters); };
    V const fourth = square * square;
    V const terms = fma(fma(fma(term(5), square, term(4)), fourth, fma(term(3), square, term(2))), fourth, fma(term(1), square, term(0)));
    V const lost = fma(square_low, V(-0.5), fma(square, V(-0.5), V(1.0) - rest));
    V const correction = fma(lo, select(cosine, -hi, rest), select(cosine, lost, V(0.0)));
    return {select(cosine, rest, hi), fma(square * select(cosine, square, hi), terms, correction)};
}
// sin(x + quarters pi/2) as a pair.
template <class V> Pair<V> sine_pair(Reduced<V> angle, unsigned quarters)
{
    typename V::Bits const all = angle.quarters + typename V::Bits(quarters), sign = all.template up<62>() & typename V::Bits(std::uint64_t{1} << 63);
    Pair<V> const parts = sine_parts(angle.hi, angle.lo, all), sum = sum_of_ordered(parts.hi, parts.lo);
    return {V::of(sum.hi.bits() ^ sign), V::of(sum.lo.bits() ^ sign)};
}

// An angle beyond a multiple of pi/16, modulo 32, that stands in the low bits.
template <class V> struct StepAngle {
    V hi, lo;
    typename V::Bits steps;
};
// From here on the third part of so many steps would not be small beside the rounding of the first two.
constexpr double least_angle_of_many_steps = 0x1p25;
// The steps are to be counted from so many on.
template <class V> StepAngle<V> reduce_to_step(V x, double from)
{
    V const shifted = fma(x, V(steps_per_pi), V(to_integer + from)), n = shifted - V(to_integer + from);
    // Exact, and so are the products with the second part.
    V const first = fma(n, V(-pi_step[0]), x), hi = fma(n, V(-pi_step[1]), first);
    return {hi, fma(n, V(-pi_step[2]), fma(n, V(-pi_step[1]), first - hi)), shifted.bits()};
}
template <class V> V sine_of_step(StepAngle<V> angle)
{
    using Bits = typename V::Bits;
    V const step_sine = pick(sine_step, angle.steps), step_cosine = pick(cosine_step, angle.steps), square = angle.hi * angle.hi;
    // sin(hi + lo) - hi, and cos(hi) - 1.
    V const growth = fma(angle.hi * square, every_term(square, short_sin_terms), angle.lo);
    V const fall = square * every_term(square, short_cos_terms);
    V const rest = fma(step_sine, fall, fma(step_cosine, growth, pick(sine_step_low, angle.steps)));
    V const sum = fma(step_cosine, angle.hi, step_sine), excess = fma(-step_cosine, angle.hi, sum - step_sine);
    // Taken from the sum, the correction leaves the sign of zero.
    V const size = sum - (excess - rest);
    return V::of(size.bits() ^ (angle.steps.template up<59>() & Bits(std::uint64_t{1} << 63)));
}
// The sine of x + from pi/16.
template <class V> ARRLIB_COLD V sine_of_many_steps(V x, double from)
{
    double all[V::count];
    x.store(all);
    for (double& one : all)
        if (!(__builtin_fabs(one) >= least_angle_of_many_steps))
            one = sine_of_step(reduce_to_step(Lane(one), from)).v;
        else {
            Reduced<Lane> const angle = reduce_lane_by_lane(Lane(one));
            StepAngle<Lane> const step = reduce_to_step(angle.hi, from);
            one = sine_of_step(StepAngle<Lane>{step.hi, step.lo + angle.lo, step.steps + angle.quarters.template up<3>()}).v;
        }
    return V::load(all);
}
template <class V> V sine_from(V x, double from)
{
    return any_beyond(x, least_angle_of_many_steps) ? sine_of_many_steps(x, from) : sine_of_step(reduce_to_step(x, from));
}

struct Sin {
    template <class V> static V of(V x) { return sine_from(x, 0); }
};
struct Cos {
    template <class V> static V of(V x) { return sine_from(x, 8); }
};
struct Tan {
    template <class V> static V of(V x) { return of_angle<Tan>(x); }
    template <class V> static V of_reduced(Reduced<V> angle) { return (sine_pair(angle, 0) / sine_pair(angle, 1)).value(); }
    template <class V> static V of_small(V x) { return x; }
};
struct Cot {
    template <class V> static V of(V x) { return of_angle<Cot>(x); }
    template <class V> static V of_reduced(Reduced<V> angle) { return (sine_pair(angle, 1) / sine_pair(angle, 0)).value(); }
    template <class V> static V of_small(V x) { return V(1.0) / x; }
};
struct Sec {
    template <class V> static V of(V x) { return of_angle<Sec>(x); }
    template <class V> static V of_reduced(Reduced<V> angle) { return reciprocal(sine_pair(angle, 1)).value(); }
};
struct Csc {
    template <class V> static V of(V x) { return of_angle<Csc>(x); }
    template <class V> static V of_reduced(Reduced<V> angle) { return reciprocal(sine_pair(angle, 0)).value(); }
    template <class V> static V of_small(V x) { return V(1.0) / x; }
};
struct Sinc {
    template <class V> static V of(V x)
    {
        // Exact, modulo 2 and then beyond halves.
        V const turned = fma(trunc(x * V(0.5)), V(-2.0), x), shifted = fma(turned, V(2.0), V(to_integer));
        V const rest = fma(shifted - V(to_integer), V(-0.5), turned);
        Pair<V> const pi_pair{V(pi_parts[0]), V(pi_parts[1])}, angle = pi_pair * Pair<V>{rest, V(0.0)};
        Pair<V> const sine = sine_pair(Reduced<V>{angle.hi, angle.lo, shifted.bits()}, 0);
        // Numbers above 2^53 are whole, and their sines 0.
        V const below = select(abs(x) < V(0x1p60), x, V(0x1p60));
        V const result = (sine / (pi_pair * Pair<V>{below, V(0.0)})).value();
        return select(abs(x) < V(least_angle), V(1.0), result);
    }
};

} // namespace
} // namespace arrlib

#endif
