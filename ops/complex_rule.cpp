#include "ops/complex_rule.h"

#include "ops/kernels/kernel_set.h"
#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
#include <cmath>
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

bool any_nonzero(double const* x, std::ptrdiff_t n)
{
    int nonzeros = 0;
    for (std::ptrdiff_t k = 0; k < n; ++k)
        nonzeros |= int{x[k] != 0};
    return nonzeros != 0;
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

bool any_makes_complex(ComplexRule rule, M<double> const& x)
{
    return any_block(x.addr(), x.getnnz(), [rule](double const* at, std::ptrdiff_t n) { return makes_complex(rule, at, n); });
}

bool has_implicit_zeros(M<double> const& x)
{
    return x.issparse() && x.getnnz() < x.size();
}

} // namespace

bool depends_on_elements(ComplexRule rule)
{
    switch (rule) {
    case ComplexRule::below_0:
    case ComplexRule::outside_1:
    case ComplexRule::inside_1:
    case ComplexRule::below_1:
    case ComplexRule::outside_0_1:
        return true;
    default:
        return false;
    }
}

bool makes_complex(ComplexRule rule, double const* x, std::ptrdiff_t n)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    KernelSet const& kernels = kernel_set();
    switch (rule) {
    case ComplexRule::below_0:
        return kernels.any_negative(x, n);
    case ComplexRule::outside_1:
        return kernels.any_outside(x, n, -1, 1);
    case ComplexRule::inside_1:
        return kernels.any_inside(x, n, -1, 1);
    case ComplexRule::below_1:
        return kernels.any_outside(x, n, 1, inf);
    case ComplexRule::outside_0_1:
        return kernels.any_outside(x, n, 0, 1);
    default:
        return false;
    }
}

bool is_complex_result(ComplexRule rule, M<double> const& x, M<double> const& y)
{
    bool const complex = x.isc();
    switch (rule) {
    case ComplexRule::never:
        return false;
    case ComplexRule::with_x:
        return complex;
    case ComplexRule::with_either:
        return complex || y.isc();
    case ComplexRule::with_nonzero_imaginary:
        return complex && any_block(x.addi(), x.getnnz(), any_nonzero);
    case ComplexRule::power:
        if (complex || y.isc())
            return true;
        if (y.size() == 1)
            return !all_integers(y) && any_makes_complex(ComplexRule::below_0, x);
        return any_makes_complex(ComplexRule::below_0, x) && !all_integers(y);
    case ComplexRule::inside_1:
    case ComplexRule::below_1:
        return complex || has_implicit_zeros(x) || any_makes_complex(rule, x);
    default:
        return complex || any_makes_complex(rule, x);
    }
}

} // namespace arrlib
