// Associated Legendre functions of all orders at once.
#include "builtins/element_map.h"
#include "builtins/specfun.h"
#include "builtins/wide_complex.h"
#include "core/heap_array.h"
#include "ops/kernels/special_numbers.h"

#include <algorithm>
#include <climits>
#include <limits>

using namespace arrlib;

namespace {

enum class Normalization { none, schmidt, full };

// Some multiple of Q_m = sqrt((n-m)!/(n+m)!) P_m, of the right sign, for orders 0 to n: the recurrence in
// the order is stable downward, where Q grows up to the turning point, from any start.
void recur_downward(int n, Wide cotangent, Wide* q)
{
    constexpr Wide small = std::numeric_limits<Wide>::min() / std::numeric_limits<Wide>::epsilon(), large = 1 / std::numeric_limits<Wide>::epsilon();
    Wide const degree = n;
    Wide above = 0;
    q[n] = n % 2 ? -small : small;
    for (int m = n - 1; m >= 0; --m) {
        Wide const order = m, here = q[m + 1];
        q[m] = -(2 * (order + 1) * cotangent * here + std::sqrt((degree + order + 2) * (degree - order - 1)) * above) / std::sqrt((degree - order) * (degree + order + 1));
        above = here;
        if (std::fabs(q[m]) > large) {
            // Down again, with all that came before, which may vanish.
            std::transform(q + m, q + n + 1, q + m, [](Wide value) { return value * small; });
            above *= small;
        }
    }
}

// Writes the functions of degree n at x, orders 0 to n, to `to`. The sum over all orders -n...n of Q_m^2,
// which is 1, gives the scale (J. C. P. Miller's method).
void all_orders(int n, double x, Normalization normalization, Wide* q, double* to)
{
    if (std::isnan(x)) {
        std::fill_n(to, n + 1, not_a_number);
        return;
    }
    Wide const sine = std::sqrt((1 - static_cast<Wide>(x)) * (1 + static_cast<Wide>(x)));
    if (sine == 0) {
        std::fill_n(q, n + 1, Wide(0));
        q[0] = x < 0 && n % 2 ? -1 : 1;
    } else {
        recur_downward(n, x / sine, q);
    }
    Wide const largest = std::fabs(*std::max_element(q, q + n + 1, [](Wide a, Wide b) { return std::fabs(a) < std::fabs(b); }));
    Wide sum = 0;
    for (int m = n; m >= 0; --m) {
        q[m] /= largest;
        sum += (m > 0 ? 2 : 1) * q[m] * q[m];
    }
    Wide factor = 1 / std::sqrt(sum), growth = 1;
    if (normalization == Normalization::full)
        factor *= std::sqrt(n + Wide(0.5));
    for (int m = 0; m <= n; ++m) {
        if (normalization == Normalization::none && m > 0)
            growth *= std::sqrt(static_cast<Wide>(n - m + 1) * (n + m));
        else if (normalization != Normalization::none && m > 0)
            growth = (m % 2 ? -1 : 1) * (normalization == Normalization::schmidt ? std::sqrt(Wide(2)) : 1);
        Wide const value = q[m] * factor;
        to[m] = value == 0 ? 0 : static_cast<double>(value * growth);
    }
}

// False after the report.
bool normalization_of(Arguments const& args, M<double> const& option, Normalization& normalization)
{
    normalization = Normalization::none;
    if (!given(option))
        return true;
    std::string const word = text_of(option);
    if (same_word(word.c_str(), "sch"))
        normalization = Normalization::schmidt;
    else if (same_word(word.c_str(), "norm"))
        normalization = Normalization::full;
    else
        return args.unknown_option(word.c_str());
    return true;
}

bool degree_is_good(Arguments const& args, M<double> const& n)
{
    return args.scalar(n) && args.integer(n) && (n[1] >= 0 || args.report("argument must be an integer"));
}

// (n + 1) x numel(x) for a vector, (n + 1) x size(x) otherwise. False after the report.
bool result_shape(Arguments const& args, int rows, M<double> const& x, Dims& shape)
{
    Dims const of_x = shape_of(x);
    bool const vector = of_x.ndims == 2 && (of_x.size[0] == 1 || of_x.size[1] == 1);
    if (vector) {
        shape = Dims(rows, of_x.count);
        return true;
    }
    if (of_x.ndims == max_dims)
        return args.report("too many dimensions");
    int const sizes[] = {rows, of_x.size[0], of_x.size[1], of_x.size[2]};
    shape = Dims(of_x.ndims + 1, sizes);
    return true;
}

} // namespace

M<double> legendre(M<double> const& n, M<double> const& x)
{
    return legendre(n, x, nop_M);
}

M<double> legendre(M<double> const& n, M<double> const& x, M<double> const& normalization)
{
    Arguments const args("legendre");
    Normalization kind;
    if (!degree_is_good(args, n) || !args.real(x) || !normalization_of(args, normalization, kind))
        return no_results();
    M<double> const full = full_form(x);
    if (!has_storage(full) || full.size() == 0)
        return no_results();
    if (std::any_of(full.addr(), full.addr() + full.getnnz(), [](double v) { return v < -1 || v > 1; })) {
        args.report("X must be in [-1,1]");
        return no_results();
    }
    int const degree = static_cast<int>(std::min(n[1], INT_MAX - 1.0));
    Dims shape;
    if (!result_shape(args, degree + 1, full, shape))
        return no_results();
    M<double> made = full_result(shape);
    if (!has_storage(made))
        return no_results();
    // One column of work for each thread and the values it writes: a slice of its own.
    std::ptrdiff_t const rows = degree + 1, columns = full.size(), width = std::min<std::ptrdiff_t>(columns, parallel_width());
    HeapArray<Wide> const work(static_cast<std::size_t>(rows * width));
    if (!work)
        return no_results();
    std::ptrdiff_t const slice = (columns + width - 1) / width;
    parallel_for(width, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t part = from; part < to; ++part)
            for (std::ptrdiff_t column = part * slice; column < std::min(columns, (part + 1) * slice); ++column)
                all_orders(degree, full.addr()[column], kind, work.data() + part * rows, made.addr() + column * rows);
    });
    return made;
}
