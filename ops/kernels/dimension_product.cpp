// prod. Factors are taken in their order, so that a product that stays in the range of numbers is
// found whatever its parts would do. Pieces of a long vector are multiplied on their own only where
// that makes no difference but rounding.
#include "core/heap_array.h"
#include "ops/kernels/dimension.h"
#include "ops/kernels/dimension_reduce.h"

#include <cmath>

namespace arrlib {

namespace {

nx_complex times(nx_complex a, nx_complex b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

template <bool complex> struct ProductFold {
    static constexpr std::size_t parts = complex ? 2 : 1;
    static constexpr bool in_order = true, in_any_order = false;
    DimensionLoops const& loops = dimension_loops();
    DimensionWork const& work;

    explicit ProductFold(DimensionWork const& of) : work(of) {}

    static double start(std::size_t part) { return part == 0; }
    void rows(double* const* total, std::ptrdiff_t at, Rows const& rows, std::ptrdiff_t) const
    {
        if constexpr (complex)
            loops.complex_product(total[0], total[1], work.x + at, work.xi + at, rows);
        else
            loops.product(total[0], work.x + at, rows);
    }
    // Nothing is merged in order.
    static void merge(double* const*, std::ptrdiff_t, double* const*, std::ptrdiff_t) {}
    static void merge_next(double* const*, std::ptrdiff_t) {}
    static void renumber(double* const*, std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t, int) {}
    static bool done(double* const*, std::ptrdiff_t, std::ptrdiff_t) { return false; }
    void one(std::ptrdiff_t column, std::ptrdiff_t at, std::ptrdiff_t stride, std::ptrdiff_t n) const
    {
        nx_complex total{1, 0};
        for (std::ptrdiff_t k = 0; k < n; ++k, at += stride)
            if constexpr (complex)
                total = times(total, {work.x[at], work.xi[at]});
            else
                total.re *= work.x[at];
        write(column, total);
    }
    void finish(std::ptrdiff_t column, std::ptrdiff_t, double* const* total, std::ptrdiff_t i) const
    {
        write(column, {total[0][i], total[parts - 1][i]});
    }
    void write(std::ptrdiff_t column, nx_complex total) const
    {
        work.re[column] = total.re;
        if (complex)
            work.im[column] = total.im;
    }
};

// Vectors without gaps, longer than the folds take at once.
template <bool complex> class LongProducts {
public:
    explicit LongProducts(DimensionWork const& work) : work_(work) {}

    // False after a report.
    bool run() const
    {
        Axis const& axis = work_.axis;
        if (axis.length < 2 * elements_per_thread) {
            parallel_for(axis.outer, units_per_thread(axis.length), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
                for (std::ptrdiff_t o = from; o < to; ++o)
                    write(o, product(o, [&](std::ptrdiff_t at, std::ptrdiff_t n) { return piece_product(at, n); }));
            });
            return true;
        }
        std::ptrdiff_t const pieces = (axis.length - 1) / piece + 1;
        HeapArray<Piece> made(static_cast<std::size_t>(pieces));
        if (!made)
            return false;
        for (std::ptrdiff_t o = 0; o < axis.outer; ++o) {
            std::ptrdiff_t const first = o * axis.length;
            parallel_for(pieces, units_per_thread(piece), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
                for (std::ptrdiff_t p = from; p < to; ++p)
                    made.data()[p] = piece_product(first + p * piece, std::min(piece, axis.length - p * piece));
            });
            write(o, product(o, [&](std::ptrdiff_t at, std::ptrdiff_t) { return made.data()[(at - first) / piece]; }));
        }
        return true;
    }

private:
    static constexpr std::ptrdiff_t piece = 512;

    struct Piece {
        nx_complex value;
        bool safe;
    };

    Piece piece_product(std::ptrdiff_t at, std::ptrdiff_t n) const
    {
        Piece made{{1, 0}, false};
        if constexpr (complex)
            made.safe = loops_.safe_complex_product(work_.x + at, work_.xi + at, n, made.value.re, made.value.im);
        else
            made.safe = loops_.safe_product(work_.x + at, n, made.value.re);
        return made;
    }

    template <class PieceAt> nx_complex product(std::ptrdiff_t o, PieceAt piece_at) const
    {
        nx_complex total{1, 0};
        std::ptrdiff_t const end = (o + 1) * work_.axis.length;
        for (std::ptrdiff_t at = o * work_.axis.length; at < end; at += piece) {
            if (!complex && (total.re == 0 || std::isinf(total.re))) {
                total.re *= stuck(at, end - at, std::fabs(total.re));
                break;
            }
            std::ptrdiff_t const n = std::min(piece, end - at);
            if (Piece const next = piece_at(at, n); next.safe)
                total = multiply(total, next.value);
            else
                for (std::ptrdiff_t k = at; k < at + n; ++k)
                    total = multiply(total, {work_.x[k], complex ? work_.xi[k] : 0});
        }
        return total;
    }

    static nx_complex multiply(nx_complex a, nx_complex b)
    {
        if constexpr (complex)
            return times(a, b);
        return {a.re * b.re, 0};
    }

    // From 0 or infinity on only the sign changes, or all becomes NaN: the order is free.
    double stuck(std::ptrdiff_t at, std::ptrdiff_t n, double size) const
    {
        constexpr std::ptrdiff_t lanes = 64;
        double lane[lanes];
        std::fill_n(lane, lanes, size);
        loops_.product(lane, work_.x + at, {lanes, n / lanes, lanes});
        for (std::ptrdiff_t k = n / lanes * lanes; k < n; ++k)
            size *= work_.x[at + k];
        for (double const other : lane)
            size *= other;
        return size;
    }

    void write(std::ptrdiff_t o, nx_complex total) const
    {
        work_.re[o] = total.re;
        if (complex)
            work_.im[o] = total.im;
    }

    DimensionWork const& work_;
    DimensionLoops const& loops_ = dimension_loops();
};

template <bool complex> bool products(DimensionWork const& work)
{
    if (work.axis.stride == 1 && work.axis.length > 128)
        return LongProducts<complex>(work).run();
    return reduce(ProductFold<complex>(work), work.axis);
}

} // namespace

bool along_prod(DimensionWork const& work)
{
    if (work.im && work.xi)
        return products<true>(work);
    if (work.im)
        std::fill_n(work.im, work.axis.stride * work.axis.outer, 0.0);
    return products<false>(work);
}

} // namespace arrlib
