// Loops over arrays, for any formula; included by the files that are compiled once per kind of
// processor. A formula is a struct with a static template `of` for Lane and Wide.
#ifndef ARRLIB_OPS_KERNELS_LOOPS_H
#define ARRLIB_OPS_KERNELS_LOOPS_H

#include "ops/kernels/kernel.h"
#include "ops/kernels/vector.h"

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

// The formulas are inlined whole: passing vectors in memory costs as much as computing with them.
template <class Formula> [[gnu::flatten]] void unary_loop(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    short_loop<Formula>(z, n, Source<Wide>(x));
}
template <class Formula> [[gnu::flatten]] void binary_loop(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    short_loop<Formula>(z, n, Source<Wide>(x), Source<Wide>(y));
}
template <class Formula> [[gnu::flatten]] void long_unary_loop(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    long_loop<Formula>(z, n, Source<Wide>(x));
}
template <class Formula> [[gnu::flatten]] void long_binary_loop(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    long_loop<Formula>(z, n, Source<Wide>(x), Source<Wide>(y));
}

template <class Formula> [[gnu::flatten]] double unary_one(double x) { return Formula::of(Lane(x)).v; }
template <class Formula> [[gnu::flatten]] double binary_one(double x, double y) { return Formula::of(Lane(x), Lane(y)).v; }

} // namespace
} // namespace arrlib

#endif
