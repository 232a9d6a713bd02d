// Products of a sparse and a full operand. The time is that of the stored entries, once per column or
// row of the full one.
#include "ops/sparse_product.h"

#include "core/access.h"
#include "core/sparse_build.h"
#include "ops/product_parts.h"
#include "ops/sparse_entries.h"
#include "runtime/workers.h"

#include <algorithm>

namespace arrlib {

namespace {

// Fewer multiplications are not worth another thread.
constexpr std::int64_t least_multiplications = std::int64_t{1} << 16;

// A product with one vector is made in halves when there is this much of it, and so much more than sums to add.
constexpr int least_entries_of_halves = 1 << 17, entries_per_row = 8;

// Columns that make enough work, when all of `columns` come to `multiplications`.
std::ptrdiff_t columns_for_thread(std::int64_t multiplications, int columns)
{
    std::int64_t const per_column = multiplications / std::max(columns, 1) + 1;
    return static_cast<std::ptrdiff_t>(least_multiplications / per_column + 1);
}

// The part of a sparse matrix that entries with the given values make up.
struct SparsePart {
    int const* at;
    double const* values;
    int rows;

    // Whether entry k stands in the column that begins at position `start`. Unsigned: the last column
    // may end where no int reaches.
    bool is_in_column(int k, int start) const
    {
        return static_cast<unsigned>(at[k]) - static_cast<unsigned>(start) < static_cast<unsigned>(rows);
    }
};

// z += sign * x y for `width` columns of y and z; x has `count` entries.
template <std::size_t width> void add_sparse_times(SparsePart const& x, int count, double sign, double const* y, std::ptrdiff_t y_stride, double* z)
{
    std::ptrdiff_t const z_stride = x.rows;
    for (int k = 0; k < count;) {
        int const column = x.at[k] / x.rows, start = column * x.rows;
        double factor[width];
        for (std::size_t j = 0; j < width; ++j)
            factor[j] = sign * y[column + static_cast<std::ptrdiff_t>(j) * y_stride];
        do {
            double* const to = z + (x.at[k] - start);
            for (std::size_t j = 0; j < width; ++j)
                to[static_cast<std::ptrdiff_t>(j) * z_stride] += x.values[k] * factor[j];
            ++k;
        } while (k < count && x.is_in_column(k, start));
    }
}

// z += sign * x y for the column of y that begins at position `start` and has the entries [k, end); z
// has as many rows as x.
void add_times_column(double const* x, int rows, SparsePart const& y, int start, int k, int end, double sign, double* __restrict__ z)
{
    auto const from = [&](int entry) { return x + static_cast<std::ptrdiff_t>(y.at[entry] - start) * rows; };
    for (; k + 4 <= end; k += 4) {
        double const *const x0 = from(k), *const x1 = from(k + 1), *const x2 = from(k + 2), *const x3 = from(k + 3);
        double const v0 = sign * y.values[k], v1 = sign * y.values[k + 1], v2 = sign * y.values[k + 2], v3 = sign * y.values[k + 3];
        for (int i = 0; i < rows; ++i)
            z[i] += (x0[i] * v0 + x1[i] * v1) + (x2[i] * v2 + x3[i] * v3);
    }
    for (; k < end; ++k) {
        double const* const x0 = from(k);
        double const v0 = sign * y.values[k];
        for (int i = 0; i < rows; ++i)
            z[i] += x0[i] * v0;
    }
}

// The same for all columns of the entries [k, end); z is the whole result.
void add_times_columns(double const* x, int rows, SparsePart const& y, int k, int end, double sign, double* z)
{
    while (k < end) {
        int const column = y.at[k] / y.rows, start = column * y.rows, first = k;
        while (k < end && y.is_in_column(k, start))
            ++k;
        add_times_column(x, rows, y, start, first, k, sign, z + static_cast<std::ptrdiff_t>(column) * rows);
    }
}

// Zeros everywhere; without storage after a report.
M<double> full_of_zeros(bool complex, Dims const& shape)
{
    M<double> made = Access<double>::full(complex, shape);
    if (!has_storage(made))
        return made;
    Storage<double>::clear(made.addr(), made.getnnz());
    if (complex)
        Storage<double>::clear(made.addi(), made.getnnz());
    return made;
}

} // namespace

// z += sign * x y for one column, in two halves of x that two threads may take at the same time. They are the
// same halves on one thread, so the bits are. `other` is as long as z.
void add_halves_times(SparsePart const& x, int count, double sign, double const* y, double* z, double* other)
{
    // The second half begins with a column.
    int const middle = x.at[count / 2] / x.rows * x.rows, half = first_entry_from(x.at, count, middle);
    SparsePart const second{x.at + half, x.values + half, x.rows};
    std::fill_n(other, x.rows, 0.0);
    parallel_for(2, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (; from < to; ++from)
            if (from == 0)
                add_sparse_times<1>(x, half, sign, y, 0, z);
            else
                add_sparse_times<1>(second, count - half, sign, y, 0, other);
    });
    for (int i = 0; i < x.rows; ++i)
        z[i] += other[i];
}

M<double> sparse_times_full(M<double> const& x, M<double> const& y)
{
    int const rows = x.rows(), inner = x.cols(), columns = y.cols();
    M<double> made = full_of_zeros(x.isc() || y.isc(), Dims(rows, columns));
    if (made.size() == 0)
        return made;
    SparseEntries const entries(x);
    bool const halved = columns == 1 && entries.count >= least_entries_of_halves && entries.count / entries_per_row >= rows;
    HeapArray<double> const other(halved ? static_cast<std::size_t>(rows) : 0);
    if (!other)
        return Access<double>::without_storage();
    add_products_of_parts(x, y, made, [&](double* z, double const* of_x, double const* of_y, double sign, bool) {
        constexpr int width = 4;
        SparsePart const part{entries.at, of_x, rows};
        if (halved)
            return add_halves_times(part, entries.count, sign, of_y, z, other.data());
        auto const work = [&](std::ptrdiff_t j, std::ptrdiff_t to) {
            for (; j + width <= to; j += width)
                add_sparse_times<width>(part, entries.count, sign, of_y + j * inner, inner, z + j * rows);
            for (; j < to; ++j)
                add_sparse_times<1>(part, entries.count, sign, of_y + j * inner, inner, z + j * rows);
        };
        std::ptrdiff_t const least = columns_for_thread(static_cast<std::int64_t>(entries.count) * columns, columns);
        parallel_for(columns, (least + width - 1) / width * width, work);
    });
    return made;
}

M<double> full_times_sparse(M<double> const& x, M<double> const& y)
{
    int const rows = x.rows(), inner = x.cols(), columns = y.cols();
    M<double> made = full_of_zeros(x.isc() || y.isc(), Dims(rows, columns));
    if (made.size() == 0)
        return made;
    SparseEntries const entries(y);
    add_products_of_parts(x, y, made, [&](double* z, double const* of_x, double const* of_y, double sign, bool) {
        auto const work = [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            auto const entry = [&](std::ptrdiff_t j) {
                return j == columns ? entries.count : first_entry_from(entries.at, entries.count, static_cast<int>(j) * inner);
            };
            add_times_columns(of_x, rows, {entries.at, of_y, inner}, entry(from), entry(to), sign, z);
        };
        parallel_for(columns, columns_for_thread(static_cast<std::int64_t>(entries.count) * rows, columns), work);
    });
    return made;
}

} // namespace arrlib
