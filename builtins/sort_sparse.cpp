#include "builtins/sort_sparse.h"

#include "builtins/args.h"
#include "builtins/ordering.h"
#include "core/reshape.h"
#include "core/sparse_rearrange.h"

#include <algorithm>

namespace arrlib {

namespace {

// The entries of one column in the order of their values; zeros stand before the entry `negative`.
struct ColumnOrder {
    int from, to, negative;
};

// The rows that the elements of a sorted column come from: those of the entries below zero, those
// without an entry, those of the other entries.
void write_rows(double* to, int rows, int const* stored, ColumnOrder const& column, int first_position, Ordering const& order)
{
    auto const entry_row = [&](int k) { return stored[column.from + order.position(k)] - first_position + 1.0; };
    for (int k = 0; k < column.negative; ++k)
        *to++ = entry_row(k);
    int next = column.from;
    for (int row = 0; row < rows; ++row) {
        if (next < column.to && stored[next] - first_position == row)
            ++next;
        else
            *to++ = row + 1.0;
    }
    for (int k = column.negative; k < column.to - column.from; ++k)
        *to++ = entry_row(k);
}

// `x` holds no zeros.
M<double> sort_columns(M<double> const& x, M<double>* positions)
{
    int const entries = x.getnnz(), rows = x.rows();
    M<double> made = sparse_with_room(x.isc(), shape_of(x), entries);
    if (!has_storage(made))
        return made;
    M<double> from_rows = Access<double>::without_storage();
    if (positions) {
        from_rows = full_result(shape_of(x));
        if (!has_storage(from_rows))
            return from_rows;
    }
    int const* const stored = Access<double>::index(x);
    EntryWriter writer(made);
    Ordering order;
    PositionSplit split(x);
    int from = 0;
    for (int column = 0; column < x.cols() && (positions || from < entries); ++column) {
        int to = from;
        for (; to < entries; ++to) {
            split.at(stored[to]);
            if (split.column() != column)
                break;
        }
        double const* const re = x.addr() + from;
        if (!order.sort(ElementKeys(re, x.isc() ? x.addi() + from : nullptr, to - from, ElementKeys::Ties::by_angle), to - from))
            return Access<double>::without_storage();
        int const first = column * rows, zeros = rows - (to - from);
        auto const is_negative = [](double v) { return v < 0; };
        ColumnOrder const place{from, to, x.isc() ? 0 : static_cast<int>(std::count_if(re, re + (to - from), is_negative))};
        for (int k = 0; k < to - from; ++k) {
            int const entry = from + order.position(k);
            writer.add(first + k + (k < place.negative ? 0 : zeros), x.addr()[entry], x.isc() ? x.addi()[entry] : 0);
        }
        if (positions)
            write_rows(from_rows.addr() + first, rows, stored, place, first, order);
        from = to;
    }
    made.getnnz() = writer.count();
    made.setstr(x.isstr());
    if (positions)
        *positions = from_rows;
    return made;
}

} // namespace

M<double> sort_sparse(M<double> const& x, int dim, M<double>* positions)
{
    M<double> const entries = dim == 0 ? sparse_copy(x) : sparse_transposed(x);
    if (!has_storage(entries))
        return entries;
    M<double> const normal = dim == 0 ? entries : sparse_copy(entries);
    M<double> made = has_storage(normal) ? sort_columns(normal, positions) : normal;
    if (dim == 0 || !has_storage(made))
        return made;
    if (positions) {
        *positions = transpose(*positions);
        if (!has_storage(*positions))
            return *positions;
    }
    return sparse_transposed(made);
}

} // namespace arrlib
