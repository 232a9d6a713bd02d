#include "ops/complex_rule.h"

#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace arrlib {

namespace {

constexpr std::ptrdiff_t block = 2048;
constexpr std::ptrdiff_t least_per_thread = 65536;

// Whether `found` says yes to some block of the stored elements.
template <class Found> bool any_block(double const* x, std::ptrdiff_t n, Found found)
{
    std::atomic<bool> seen{false};
    parallel_for(n, least_per_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (; from < to && !seen.load(std::memory_order_relaxed); from += block)
            if (found(x + from, std::min(block, to - from)))
                seen.store(true, std::memory_order_relaxed);
    });
    return seen.load();
}

// Two elements at a time, since the compiler makes no vector code of tests that it might leave early.
using Pair = double __attribute__((vector_size(16)));
using PairTest = std::int64_t __attribute__((vector_size(16)));
// Answers are 0 or -1 and are added: where they are or-ed, g++ 12 takes them apart one by one.
using Counts = PairTest;

template <class Test> bool any_element(double const* x, std::ptrdiff_t n, Test test)
{
    return any_block(x, n, [test](double const* at, std::ptrdiff_t count) {
        Counts seen = {}, seen_too = {};
        std::ptrdiff_t k = 0;
        for (; k + 4 <= count; k += 4) {
            Pair first, second;
            std::memcpy(&first, at + k, sizeof first);
            std::memcpy(&second, at + k + 2, sizeof second);
            seen -= test(first);
            seen_too -= test(second);
        }
        for (; k < count; ++k)
            seen -= test(Pair{at[k], at[k]});
        seen += seen_too;
        return (seen[0] | seen[1]) != 0;
    });
}

// Comparisons with NaN are false: NaN lies in no range.
bool any_outside(M<double> const& x, double low, double high)
{
    return any_element(x.addr(), x.getnnz(), [=](Pair at) -> PairTest { return (at < low) + (at > high); });
}

bool any_inside(M<double> const& x, double low, double high)
{
    return any_element(x.addr(), x.getnnz(), [=](Pair at) -> PairTest { return (at > low) & (at < high); });
}

bool any_nonzero(double const* x, std::ptrdiff_t n)
{
    return any_element(x, n, [](Pair at) -> PairTest { return at != 0.0; });
}

bool all_integers(M<double> const& x)
{
    return !any_block(x.addr(), x.getnnz(), [](double const* at, std::ptrdiff_t n) {
        int fractions = 0;
        for (std::ptrdiff_t k = 0; k < n; ++k)
            fractions |= int{std::trunc(at[k]) != at[k]};
        return fractions != 0;
    });
}

bool has_implicit_zeros(M<double> const& x)
{
    return x.issparse() && x.getnnz() < x.size();
}

} // namespace

bool is_complex_result(ComplexRule rule, M<double> const& x, M<double> const& y)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    bool const complex = x.isc();
    switch (rule) {
    case ComplexRule::never:
        return false;
    case ComplexRule::with_x:
        return complex;
    case ComplexRule::with_either:
        return complex || y.isc();
    case ComplexRule::with_nonzero_imaginary:
        return complex && any_nonzero(x.addi(), x.getnnz());
    case ComplexRule::power:
        return complex || y.isc() || (any_outside(x, 0, inf) && !all_integers(y));
    case ComplexRule::below_0:
        return complex || any_outside(x, 0, inf);
    case ComplexRule::outside_1:
        return complex || any_outside(x, -1, 1);
    case ComplexRule::inside_1:
        return complex || has_implicit_zeros(x) || any_inside(x, -1, 1);
    case ComplexRule::below_1:
        return complex || has_implicit_zeros(x) || any_outside(x, 1, inf);
    case ComplexRule::outside_0_1:
        return complex || any_outside(x, 0, 1);
    }
    return complex;
}

} // namespace arrlib
