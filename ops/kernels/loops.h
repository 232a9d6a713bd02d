// Loops over arrays, for any formula; included by the files that are compiled once per kind of
// processor. A formula is a struct with a static template `of` for Lane and Wide.
#ifndef ARRLIB_OPS_KERNELS_LOOPS_H
#define ARRLIB_OPS_KERNELS_LOOPS_H

#include "ops/kernels/kernel.h"
#include "ops/kernels/vector_two.h"

namespace arrlib {
namespace {

// An operand as the loops read it. A scalar is spread over a vector's length once, so that one loop
// serves all forms: it reads the same place again and again.
template <class V> class Source {
public:
    explicit Source(RealOperand x) : at_(x.at), step_(x.step)
    {
        if (!step_) {
            V(*x.at).store(same_);
            at_ = same_;
        }
    }
    Source(Source const&) = delete;
    Source& operator=(Source const&) = delete;

    V operator()(std::ptrdiff_t k) const { return V::load(at_ + k * step_); }
    V operator()(std::ptrdiff_t k, std::ptrdiff_t n) const { return V::load(at_ + k * step_, static_cast<int>(n)); }

private:
    double const* at_;
    std::ptrdiff_t step_;
    double same_[V::count];
};

// Operands whose form the loop knows: an array, and a scalar.
template <class V> struct ArrayOf {
    double const* at;

    V operator()(std::ptrdiff_t k) const { return V::load(at + k); }
    V operator()(std::ptrdiff_t k, std::ptrdiff_t n) const { return V::load(at + k, static_cast<int>(n)); }
};
template <class V> struct ScalarOf {
    V all;

    V operator()(std::ptrdiff_t, std::ptrdiff_t = 0) const { return all; }
};

// Loops of few instructions: full vectors, then the rest.
template <class Formula, class... Sources> void short_loop(double* z, std::ptrdiff_t n, Sources const&... x)
{
    std::ptrdiff_t k = 0;
    for (; k + Wide::count <= n; k += Wide::count)
        Formula::of(x(k)...).store(z + k);
    if (Wide::count > 1 && k < n)
        Formula::of(x(k, n - k)...).store(z + k, static_cast<int>(n - k));
}
// Loops of many: the formula stands there once.
template <class Formula, class... Sources> void long_loop(double* z, std::ptrdiff_t n, Sources const&... x)
{
    for (std::ptrdiff_t k = 0; k < n; k += Wide::count) {
        bool const full = n - k >= Wide::count;
        Wide const result = Formula::of((full ? x(k) : x(k, n - k))...);
        if (full)
            result.store(z + k);
        else
            result.store(z + k, static_cast<int>(n - k));
    }
}

// The same, two vectors at a time while there are two.
template <class Formula> void paired_loop(double* z, std::ptrdiff_t n, RealOperand x)
{
    using Two = Two<Wide>;
    std::ptrdiff_t k = 0;
    if (x.step == 1)
        for (; k + Two::count <= n; k += Two::count)
            Formula::of(Two::load(x.at + k)).store(z + k);
    if (k < n)
        long_loop<Formula>(z + k, n - k, Source<Wide>({x.at + k * x.step, x.step}));
}

// The formulas are inlined whole: passing vectors in memory costs as much as computing with them.
template <class Formula> [[gnu::flatten]] void unary_loop(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    if (x.step)
        short_loop<Formula>(z, n, ArrayOf<Wide>{x.at});
    else
        short_loop<Formula>(z, n, ScalarOf<Wide>{*x.at});
}
template <class Formula> [[gnu::flatten]] void binary_loop(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    if (x.step && y.step)
        short_loop<Formula>(z, n, ArrayOf<Wide>{x.at}, ArrayOf<Wide>{y.at});
    else if (x.step)
        short_loop<Formula>(z, n, ArrayOf<Wide>{x.at}, ScalarOf<Wide>{*y.at});
    else if (y.step)
        short_loop<Formula>(z, n, ScalarOf<Wide>{*x.at}, ArrayOf<Wide>{y.at});
    else
        short_loop<Formula>(z, n, ScalarOf<Wide>{*x.at}, ScalarOf<Wide>{*y.at});
}
template <class Formula> [[gnu::flatten]] void long_unary_loop(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    long_loop<Formula>(z, n, Source<Wide>(x));
}
template <class Formula> [[gnu::flatten]] void paired_unary_loop(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    paired_loop<Formula>(z, n, x);
}
template <class Formula> [[gnu::flatten]] void paired_binary_loop(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    // Two vectors of such formulas need more registers than the kinds with less than eight lanes have.
    using Vector = std::conditional_t<Wide::count == 8, Two<Wide>, Wide>;
    Source<Vector> const from_x(x), from_y(y);
    std::ptrdiff_t k = 0;
    for (; k + Vector::count <= n; k += Vector::count)
        Formula::of(from_x(k), from_y(k)).store(z + k);
    if (k < n)
        long_loop<Formula>(z + k, n - k, Source<Wide>({x.at + k * x.step, x.step}), Source<Wide>({y.at + k * y.step, y.step}));
}
template <class Formula> [[gnu::flatten]] void long_binary_loop(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    long_loop<Formula>(z, n, Source<Wide>(x), Source<Wide>(y));
}

// Whether a test holds for any element, once all have been looked at. It must not hold for 1, which stands
// for what a last vector lacks.
template <class Test> [[gnu::flatten]] bool any_element(double const* x, std::ptrdiff_t n, double low, double high)
{
    typename Wide::Mask found = Wide(1.0) != Wide(1.0);
    std::ptrdiff_t k = 0;
    for (; k + Wide::count <= n; k += Wide::count)
        found = found | Test::of(Wide::load(x + k), Wide(low), Wide(high));
    if (Wide::count > 1 && k < n)
        found = found | Test::of(Wide::load(x + k, static_cast<int>(n - k)), Wide(low), Wide(high));
    return found.any();
}
struct Outside {
    template <class V> static typename V::Mask of(V x, V low, V high) { return (x < low) | (x > high); }
};
struct Inside {
    template <class V> static typename V::Mask of(V x, V low, V high) { return (x > low) & (x < high); }
};

// Signs are quick to look for, and only zeros and NaN have them but are not below 0.
[[gnu::flatten]] inline bool any_below_zero(double const* x, std::ptrdiff_t n)
{
    typename Wide::Bits all(0);
    std::ptrdiff_t k = 0;
    for (; k + Wide::count <= n; k += Wide::count)
        all = all | Wide::load(x + k).bits();
    if (Wide::count > 1 && k < n)
        all = all | Wide::load(x + k, static_cast<int>(n - k)).bits();
    return Wide::Mask::of(all, Wide(-0.0).bits()).any() && any_element<Outside>(x, n, 0, __builtin_huge_val());
}

template <class Formula> [[gnu::flatten]] double unary_one(double x) { return Formula::of(Lane(x)).v; }
template <class Formula> [[gnu::flatten]] double binary_one(double x, double y) { return Formula::of(Lane(x), Lane(y)).v; }

} // namespace
} // namespace arrlib

#endif
