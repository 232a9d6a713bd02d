#include "builtins/ranges.h"

#include "builtins/args.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "core/heap_array.h"
#include "ops/creator.h"
#include "ops/elementwise.h"
#include "ops/random_generator.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>

using namespace arrlib;

namespace {

// first + k*step; the first one as it is, whatever the step.
void fill_evenly(double* to, int count, double first, double step)
{
    parallel_for(count, least_share<double>(count, 1), [=](std::ptrdiff_t from, std::ptrdiff_t end) {
        for (int k = static_cast<int>(from); k < static_cast<int>(end); ++k)
            to[k] = first + k * step;
    });
    to[0] = first;
}

// A count that may be far too large, as one that construction refuses.
M<double> row_of(double count, bool complex = false)
{
    return full_result(Dims(1, count >= INT_MAX ? INT_MAX : static_cast<int>(count)), complex);
}

M<double> range(double a, double d, double b)
{
    bool const ahead = d > 0 ? a <= b : d < 0 && a >= b;
    if (!ahead)
        return M<double>();
    if (std::isinf(a) || std::isinf(b)) {
        Arguments("colon").report("range is infinite");
        return x_M;
    }
    // What rounding of the ends can make a step fall short by. Where it is a step and more, the steps
    // are lost in the rounding anyway.
    double const slack = std::min(4 * DBL_EPSILON * std::max(std::fabs(a), std::fabs(b)) / std::fabs(d), 0.25);
    double const steps = std::isfinite(b - a) ? (b - a) / d : (b / 2 - a / 2) / (d / 2);
    M<double> made = row_of(std::floor(steps + slack) + 1);
    if (!has_storage(made))
        return x_M;
    int const count = made.size();
    double* const to = made.addr();
    fill_evenly(to, count, a, d);
    to[count - 1] = d > 0 ? std::min(to[count - 1], b) : std::max(to[count - 1], b);
    return made;
}

void fill_between(double* to, int count, double a, double b)
{
    double const parts = count - 1;
    double const step = std::isfinite(b - a) ? (b - a) / parts : b / parts - a / parts;
    fill_evenly(to, count, a, step);
    to[count - 1] = b;
}

double imaginary(M<double> const& x)
{
    return x.isc() ? x.addi()[0] : 0;
}

M<double> spaced(M<double> const& a, M<double> const& b, int n)
{
    M<double> const first = full_form(a), last = full_form(b);
    if (!has_storage(first) || !has_storage(last))
        return x_M;
    if (first.size() == 0 || last.size() == 0)
        return M<double>();
    M<double> made = row_of(std::max(n, 1), first.isc() || last.isc());
    if (!has_storage(made))
        return x_M;
    int const count = made.size();
    fill_between(made.addr(), count, first[1], last[1]);
    if (made.isc())
        fill_between(made.addi(), count, imaginary(first), imaginary(last));
    return made;
}

M<double> spaced_by_ratio(M<double> const& a, M<double> const& b, int n)
{
    bool const to_pi = b.size() > 0 && b[1] == pi[1] && !b.isc();
    M<double> made = power(M<double>(10.0), to_pi ? spaced(a, std::log10(pi[1]), n) : spaced(a, b, n));
    if (to_pi && made.size() > 0)
        made.addr()[made.size() - 1] = pi[1];
    return made;
}

struct Draw {
    double value;
    int position;
};

} // namespace

M<double> colon(M<double> const& a, M<double> const& b)
{
    return colon(a, one_M, b);
}

M<double> colon(M<double> const& a, M<double> const& d, M<double> const& b)
{
    return given(a) && given(d) && given(b) ? range(a[1], d[1], b[1]) : M<double>();
}

M<double> linspace(M<double> const& a, M<double> const& b)
{
    return linspace(a, b, nop_M);
}

M<double> linspace(M<double> const& a, M<double> const& b, M<double> const& n)
{
    return spaced(a, b, integer_argument(number_or(n, 100)));
}

M<double> logspace(M<double> const& a, M<double> const& b)
{
    return logspace(a, b, nop_M);
}

M<double> logspace(M<double> const& a, M<double> const& b, M<double> const& n)
{
    return spaced_by_ratio(a, b, integer_argument(number_or(n, 50)));
}

M<double> randperm(M<double> const& n)
{
    Arguments const args("randperm");
    if (!given(n))
        return M<double>();
    if (!args.scalar(n))
        return no_results();
    M<double> made = row_of(std::max(integer_argument(n), 0));
    if (!has_storage(made))
        return x_M;
    int const count = made.size();
    HeapArray<Draw> const draws(static_cast<std::size_t>(count));
    if (!draws)
        return x_M;
    // The row holds the draws until they are sorted.
    double* const to = made.addr();
    draw_uniform(to, count);
    for (int k = 0; k < count; ++k)
        draws.data()[k] = {to[k], k};
    std::sort(draws.begin(), draws.end(), [](Draw const& a, Draw const& b) { return a.value < b.value || (a.value == b.value && a.position < b.position); });
    for (int k = 0; k < count; ++k)
        to[k] = draws.data()[k].position + 1.0;
    return made;
}

M<double> inf()
{
    return filled(Inf.addr()[0], {});
}
M<double> inf(M<double> const& n)
{
    return filled(Inf.addr()[0], {&n});
}
M<double> inf(M<double> const& m, M<double> const& n)
{
    return filled(Inf.addr()[0], {&m, &n});
}
M<double> inf(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return filled(Inf.addr()[0], {&m, &n, &p});
}
M<double> inf(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return filled(Inf.addr()[0], {&m, &n, &p, &q});
}
M<double> nan()
{
    return filled(NaN.addr()[0], {});
}
M<double> nan(M<double> const& n)
{
    return filled(NaN.addr()[0], {&n});
}
M<double> nan(M<double> const& m, M<double> const& n)
{
    return filled(NaN.addr()[0], {&m, &n});
}
M<double> nan(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return filled(NaN.addr()[0], {&m, &n, &p});
}
M<double> nan(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return filled(NaN.addr()[0], {&m, &n, &p, &q});
}

M<double> realmax()
{
    return DBL_MAX;
}

M<double> realmin()
{
    return DBL_MIN;
}

M<double> bitmax()
{
    return 9007199254740991.0;
}

M<double> nextpow2(M<double> const& n)
{
    Arguments const args("nextpow2");
    if (!given(n))
        return M<double>();
    if (!args.vector(n))
        return no_results();
    M<double> const number = full_form(n);
    if (!has_storage(number))
        return x_M;
    double const size = n.size() > 1 ? n.size() : std::hypot(number[1], imaginary(number));
    if (size == 0 || !std::isfinite(size))
        return size;
    int exponent;
    double const mantissa = std::frexp(size, &exponent);
    return mantissa == 0.5 ? exponent - 1.0 : exponent;
}
