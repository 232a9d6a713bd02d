// sum, all, any, max, min.
#include "ops/kernels/dimension_reduce.h"

#include "ops/kernels/dimension.h"

#include <limits>

namespace arrlib {

namespace {

// What most folds have in common.
struct PlainFold {
    static constexpr std::size_t parts = 1;
    static constexpr bool in_order = false, in_any_order = false;
    DimensionLoops const& loops = dimension_loops();

    static void renumber(double* const*, std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t, int) {}
    static bool done(double* const*, std::ptrdiff_t, std::ptrdiff_t) { return false; }
};

std::ptrdiff_t result_count(Axis const& axis)
{
    return axis.stride * axis.outer;
}

// --- sum ------------------------------------------------------------------------------------------

struct SumFold : PlainFold {
    double const* x;
    double* result;

    SumFold(double const* from, double* to) : x(from), result(to) {}

    static double start(std::size_t) { return 0; }
    void rows(double* const* total, std::ptrdiff_t at, Rows const& rows, std::ptrdiff_t) const { loops.sum(total[0], x + at, rows); }
    static void merge(double* const* total, std::ptrdiff_t i, double* const* from, std::ptrdiff_t j) { total[0][i] += from[0][j]; }
    static void merge_next(double* const* total, std::ptrdiff_t n)
    {
        // For the compiler: they do not overlap.
        double* __restrict const to = total[0];
        double const* __restrict const from = total[0] + n;
        for (std::ptrdiff_t i = 0; i < n; ++i)
            to[i] += from[i];
    }
    void one(std::ptrdiff_t column, std::ptrdiff_t at, std::ptrdiff_t stride, std::ptrdiff_t n) const
    {
        double total = 0;
        for (std::ptrdiff_t k = 0; k < n; ++k)
            total += x[at + k * stride];
        result[column] = total;
    }
    void finish(std::ptrdiff_t column, std::ptrdiff_t, double* const* total, std::ptrdiff_t i) const { result[column] = total[0][i]; }
};

// --- all and any ----------------------------------------------------------------------------------

template <bool every> struct TruthFold : PlainFold {
    static constexpr bool in_any_order = true;
    double const *x, *xi;
    double* result;

    explicit TruthFold(DimensionWork const& work) : x(work.x), xi(work.xi), result(work.re) {}

    static double start(std::size_t) { return every; }
    void rows(double* const* flag, std::ptrdiff_t at, Rows const& rows, std::ptrdiff_t) const
    {
        (every ? loops.all : loops.any)(flag[0], x + at, xi ? xi + at : nullptr, rows);
    }
    static void merge(double* const* flag, std::ptrdiff_t i, double* const* from, std::ptrdiff_t j)
    {
        if (from[0][j] != every)
            flag[0][i] = !every;
    }
    static void merge_next(double* const* flag, std::ptrdiff_t n)
    {
        for (std::ptrdiff_t i = 0; i < n; ++i)
            merge(flag, i, flag, i + n);
    }
    static bool done(double* const* flag, std::ptrdiff_t width, std::ptrdiff_t columns)
    {
        for (std::ptrdiff_t i = 0; i < columns; ++i) {
            std::ptrdiff_t j = i;
            while (j < width && flag[0][j] == every)
                j += columns;
            if (j >= width)
                return false;
        }
        return true;
    }
    void one(std::ptrdiff_t column, std::ptrdiff_t at, std::ptrdiff_t stride, std::ptrdiff_t n) const
    {
        bool flag = every;
        for (std::ptrdiff_t k = 0; k < n && flag == every; ++k, at += stride)
            flag = x[at] != 0 || (xi && xi[at] != 0);
        result[column] = flag;
    }
    void finish(std::ptrdiff_t column, std::ptrdiff_t, double* const* flag, std::ptrdiff_t i) const { result[column] = flag[0][i]; }
};

// --- max and min ----------------------------------------------------------------------------------

// The state is the best value, or squared modulus, and the row where it was found; -1 for none.
template <bool larger> struct BestFold : PlainFold {
    static constexpr std::size_t parts = 2;
    static constexpr bool in_any_order = true;
    double const *x, *xi;
    std::ptrdiff_t stride;
    double *re, *im, *index;

    explicit BestFold(DimensionWork const& work)
        : x(work.x), xi(work.im ? work.xi : nullptr), stride(work.axis.stride), re(work.re), im(work.im), index(work.index)
    {
    }

    // Moduli are not negative: a complex maximum begins at 0.
    double worst() const
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return !larger ? infinity : xi ? 0 : -infinity;
    }
    double start(std::size_t part) const { return part == 0 ? worst() : -1; }
    void rows(double* const* state, std::ptrdiff_t at, Rows const& rows, std::ptrdiff_t first) const
    {
        (larger ? loops.largest : loops.smallest)(state[0], state[1], x + at, xi ? xi + at : nullptr, rows, static_cast<double>(first));
    }
    void renumber(double* const* state, std::ptrdiff_t first, std::ptrdiff_t n, std::ptrdiff_t by, std::ptrdiff_t add, int step) const
    {
        loops.renumber(state[1] + first, static_cast<int>(n), static_cast<double>(by), static_cast<double>(add), step);
    }
    void merge(double* const* state, std::ptrdiff_t i, double* const* from, std::ptrdiff_t j) const
    {
        merge_run(state[0] + i, state[1] + i, from[0] + j, from[1] + j, 1);
    }
    void merge_next(double* const* state, std::ptrdiff_t n) const { merge_run(state[0], state[1], state[0] + n, state[1] + n, n); }
    void merge_run(double* best, double* row, double const* value, double const* number, std::ptrdiff_t n) const
    {
        (larger ? loops.merge_largest : loops.merge_smallest)(best, row, value, number, n);
    }
    void one(std::ptrdiff_t column, std::ptrdiff_t at, std::ptrdiff_t step, std::ptrdiff_t n) const
    {
        double best = worst();
        std::ptrdiff_t row = -1;
        for (std::ptrdiff_t k = 0; k < n; ++k) {
            std::ptrdiff_t const element = at + k * step;
            double const value = xi ? x[element] * x[element] + xi[element] * xi[element] : x[element];
            bool const better = larger ? value > best : value < best;
            best = better ? value : best;
            // No branch, which would be guessed wrong.
            row += (k - row) & -static_cast<std::ptrdiff_t>(better);
        }
        write(column, at, step, row);
    }
    void finish(std::ptrdiff_t column, std::ptrdiff_t at, double* const* state, std::ptrdiff_t i) const
    {
        write(column, at, stride, static_cast<std::ptrdiff_t>(state[1][i]));
    }
    // Takes the element itself: a zero keeps its sign.
    void write(std::ptrdiff_t column, std::ptrdiff_t at, std::ptrdiff_t step, std::ptrdiff_t row) const
    {
        bool const found = row >= 0;
        re[column] = found ? x[at + row * step] : worst();
        if (im)
            im[column] = found && xi ? xi[at + row * step] : 0;
        if (index)
            index[column] = found ? static_cast<double>(row) + 1 : 1;
    }
};

} // namespace

bool along_sum(DimensionWork const& work)
{
    if (work.im && !work.xi)
        std::fill_n(work.im, result_count(work.axis), 0.0);
    return reduce(SumFold(work.x, work.re), work.axis) && (!work.im || !work.xi || reduce(SumFold(work.xi, work.im), work.axis));
}

bool along_all(DimensionWork const& work)
{
    return reduce(TruthFold<true>(work), work.axis);
}

bool along_any(DimensionWork const& work)
{
    return reduce(TruthFold<false>(work), work.axis);
}

bool along_max(DimensionWork const& work)
{
    return reduce(BestFold<true>(work), work.axis);
}

bool along_min(DimensionWork const& work)
{
    return reduce(BestFold<false>(work), work.axis);
}

} // namespace arrlib
