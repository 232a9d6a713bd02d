// cumsum and cumprod.
#include "ops/kernels/dimension.h"
#include "ops/kernels/dimension_loops.h"
#include "ops/kernels/dimension_split.h"

namespace arrlib {

namespace {

// --- what is done with the elements: scans --------------------------------------------------------
// Every scan has
//   Number, identity, combine    what is accumulated
//   read, written, write         the element, and the result, at a place
//   scan(at, n)                  the vector without gaps of n elements from `at` on

struct Sums {
    using Number = double;
    double const* x;
    double* z;
    DimensionLoops const& loops = dimension_loops();

    static double identity() { return 0; }
    static double combine(double a, double b) { return a + b; }
    double read(std::ptrdiff_t at) const { return x[at]; }
    double written(std::ptrdiff_t at) const { return z[at]; }
    void write(std::ptrdiff_t at, double value) const { z[at] = value; }

    // The sum of a block is found without what comes before it.
    static constexpr std::ptrdiff_t block = 4096;

    void scan(std::ptrdiff_t at, std::ptrdiff_t n) const
    {
        double before = 0;
        for (std::ptrdiff_t const end = at + n; at < end; at += block)
            before += loops.cumulative_sum(x + at, z + at, std::min(block, end - at), before);
    }
};

// The elements of a block are multiplied with each other first if that makes no difference but
// rounding, else in their order.
constexpr std::ptrdiff_t product_block = 512, whole = 8, few = 64;

template <class Scan> typename Scan::Number scan_in_order(Scan const& scan, std::ptrdiff_t at, std::ptrdiff_t n, typename Scan::Number before)
{
    for (std::ptrdiff_t k = at; k < at + n; ++k)
        scan.write(k, before = Scan::combine(before, scan.read(k)));
    return before;
}

template <class Scan> void scan_products(Scan const& scan, std::ptrdiff_t at, std::ptrdiff_t n)
{
    typename Scan::Number before = Scan::identity();
    std::ptrdiff_t const end = at + n;
    while (n >= few && end - at >= whole) {
        std::ptrdiff_t const count = std::min(product_block, (end - at) / whole * whole);
        if (!scan.scan_block(at, count, before))
            before = scan_in_order(scan, at, count, before);
        at += count;
    }
    scan_in_order(scan, at, end - at, before);
}

struct Products {
    using Number = double;
    double const* x;
    double* z;
    DimensionLoops const& loops = dimension_loops();

    static double identity() { return 1; }
    static double combine(double a, double b) { return a * b; }
    double read(std::ptrdiff_t at) const { return x[at]; }
    double written(std::ptrdiff_t at) const { return z[at]; }
    void write(std::ptrdiff_t at, double value) const { z[at] = value; }
    bool scan_block(std::ptrdiff_t at, std::ptrdiff_t n, double& before) const { return loops.cumulative_product(x + at, z + at, n, before); }
    void scan(std::ptrdiff_t at, std::ptrdiff_t n) const { scan_products(*this, at, n); }
};

struct ComplexProducts {
    using Number = nx_complex;
    double const *x, *xi;
    double *z, *zi;
    DimensionLoops const& loops = dimension_loops();

    static nx_complex identity() { return {1, 0}; }
    static nx_complex combine(nx_complex a, nx_complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
    nx_complex read(std::ptrdiff_t at) const { return {x[at], xi[at]}; }
    nx_complex written(std::ptrdiff_t at) const { return {z[at], zi[at]}; }
    void write(std::ptrdiff_t at, nx_complex value) const
    {
        z[at] = value.re;
        zi[at] = value.im;
    }
    bool scan_block(std::ptrdiff_t at, std::ptrdiff_t n, nx_complex& before) const
    {
        return loops.cumulative_complex_product(x + at, xi + at, z + at, zi + at, n, before.re, before.im);
    }
    void scan(std::ptrdiff_t at, std::ptrdiff_t n) const { scan_products(*this, at, n); }
};

// --- the vectors ----------------------------------------------------------------------------------

constexpr std::ptrdiff_t most_narrow = 8;

// A few columns: their running numbers stay in registers.
template <std::ptrdiff_t width, class Scan> void scan_narrow(Scan const& scan, Axis const& axis)
{
    if constexpr (width < most_narrow)
        if (axis.stride > width)
            return scan_narrow<width + 1>(scan, axis);
    parallel_for(axis.outer, units_per_thread(axis.length * width), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t o = from; o < to; ++o) {
            typename Scan::Number total[static_cast<std::size_t>(width)];
            std::fill_n(total, width, Scan::identity());
            std::ptrdiff_t const end = (o + 1) * axis.length * width;
            for (std::ptrdiff_t at = o * axis.length * width; at < end; at += width)
                for (std::ptrdiff_t i = 0; i < width; ++i)
                    scan.write(at + i, total[i] = Scan::combine(total[i], scan.read(at + i)));
        }
    });
}

// `count` rows of the columns from `at` on, from the numbers that `before` gives for each column.
template <std::ptrdiff_t count, class Scan, class Before>
void scan_rows(Scan const& scan, std::ptrdiff_t at, std::ptrdiff_t stride, std::ptrdiff_t width, Before before)
{
    for (std::ptrdiff_t i = at; i < at + width; ++i) {
        typename Scan::Number total = before(i);
        for (std::ptrdiff_t k = 0; k < count; ++k)
            scan.write(i + k * stride, total = Scan::combine(total, scan.read(i + k * stride)));
    }
}

// Several rows at a time: a row lies in pages of its own, and memory is fetched ahead only inside a
// page.
template <class Scan> void scan_columns(Scan const& scan, Axis const& axis)
{
    constexpr std::ptrdiff_t most_columns = 1 << 12, together = 4;
    std::ptrdiff_t const stride = axis.stride;
    for_columns(axis, most_columns, [&](Columns const& columns) {
        auto const nothing = [](std::ptrdiff_t) { return Scan::identity(); };
        auto const row_before = [&](std::ptrdiff_t i) { return scan.written(i - stride); };
        std::ptrdiff_t at = columns.outer * axis.length * stride + columns.first, k = 0;
        if (axis.length > 0) {
            scan_rows<1>(scan, at, stride, columns.width, nothing);
            at += stride;
            ++k;
        }
        for (; k + together <= axis.length; k += together, at += together * stride)
            scan_rows<together>(scan, at, stride, columns.width, row_before);
        for (; k < axis.length; ++k, at += stride)
            scan_rows<1>(scan, at, stride, columns.width, row_before);
    });
}

template <class Scan> void scan_all(Scan const& scan, Axis const& axis)
{
    if (axis.stride > most_narrow)
        return scan_columns(scan, axis);
    if (axis.stride > 1)
        return scan_narrow<2>(scan, axis);
    // One long vector is left to one thread: memory is the limit, and two would have to read it twice.
    parallel_for(axis.outer, units_per_thread(axis.length), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t o = from; o < to; ++o)
            scan.scan(o * axis.length, axis.length);
    });
}

} // namespace

bool along_cumsum(DimensionWork const& work)
{
    std::ptrdiff_t const count = work.axis.stride * work.axis.length * work.axis.outer;
    scan_all(Sums{work.x, work.re}, work.axis);
    if (work.im && work.xi)
        scan_all(Sums{work.xi, work.im}, work.axis);
    else if (work.im)
        std::fill_n(work.im, count, 0.0);
    return true;
}

bool along_cumprod(DimensionWork const& work)
{
    std::ptrdiff_t const count = work.axis.stride * work.axis.length * work.axis.outer;
    if (work.im && work.xi) {
        scan_all(ComplexProducts{work.x, work.xi, work.re, work.im}, work.axis);
        return true;
    }
    scan_all(Products{work.x, work.re}, work.axis);
    if (work.im)
        std::fill_n(work.im, count, 0.0);
    return true;
}

} // namespace arrlib
