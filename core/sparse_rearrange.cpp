#include "core/sparse_rearrange.h"

#include "core/access.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <algorithm>
#include <climits>
#include <utility>

using namespace arrlib;

namespace {

// The stored entries of a sparse value.
struct Entries {
    explicit Entries(M<double> const& matrix)
        : count(matrix.getnnz()), at(Access<double>::index(matrix)), re(matrix.addr()), im(matrix.addi()), rows(matrix.rows())
    {
    }
    void put(EntryWriter& writer, int k, int position) const { writer.add(position, re[k], im ? im[k] : 0); }
    // The first entry behind those of the column that entry k is in.
    int column_end(int k) const
    {
        std::int64_t const limit = (static_cast<std::int64_t>(at[k] / rows) + 1) * rows;
        while (k < count && at[k] < limit)
            ++k;
        return k;
    }
    int column_begin(int k) const
    {
        int const limit = at[k] / rows * rows;
        while (k > 0 && at[k - 1] >= limit)
            --k;
        return k;
    }

    int count;
    int const* at;
    double const* re;
    double const* im;
    int rows;
};

// A result with room for `room` entries; without storage after a report.
M<double> result_like(bool complex, Dims const& shape, std::int64_t room)
{
    if (room > INT_MAX) {
        error(messages::matrix_too_large);
        return Access<double>::without_storage();
    }
    return sparse_with_room(complex, shape, static_cast<int>(room));
}

void append_columns(EntryWriter& writer, Entries const& left, Entries const& right, int offset)
{
    writer.add_run(left.at, left.re, left.im, left.count, 0);
    writer.add_run(right.at, right.re, right.im, right.count, offset);
}

// Where the entries of one of two stacked values go.
class StackedPosition {
public:
    StackedPosition(Entries const& entries, int first_row, int all_rows)
        : entries_(entries), split_(entries.rows), first_row_(first_row), all_rows_(all_rows)
    {
    }
    // INT_MAX, which is no position, behind the last entry.
    int of(int k)
    {
        if (k >= entries_.count)
            return INT_MAX;
        split_.at(entries_.at[k]);
        return split_.column() * all_rows_ + split_.row() + first_row_;
    }

private:
    Entries const& entries_;
    PositionSplit split_;
    int first_row_, all_rows_;
};

void merge_columns(EntryWriter& writer, Entries const& upper, Entries const& lower)
{
    int const rows = upper.rows + lower.rows;
    StackedPosition upper_position(upper, 0, rows), lower_position(lower, upper.rows, rows);
    int next_upper = upper_position.of(0), next_lower = lower_position.of(0);
    for (int u = 0, l = 0; u < upper.count || l < lower.count;) {
        if (next_upper < next_lower) {
            upper.put(writer, u, next_upper);
            next_upper = upper_position.of(++u);
        } else {
            lower.put(writer, l, next_lower);
            next_lower = lower_position.of(++l);
        }
    }
}

M<double> joined_entries(int dim, M<double> const& a, M<double> const& b)
{
    std::int64_t const joined = static_cast<std::int64_t>(a.getdims()[dim]) + b.getdims()[dim];
    int const size = static_cast<int>(std::min<std::int64_t>(joined, INT_MAX));
    Dims const shape = dim == 0 ? Dims(size, a.cols()) : Dims(a.rows(), size);
    M<double> made = result_like(a.isc() || b.isc(), shape, static_cast<std::int64_t>(a.getnnz()) + b.getnnz());
    if (!has_storage(made))
        return made;
    EntryWriter writer(made);
    if (dim == 0)
        merge_columns(writer, Entries(a), Entries(b));
    else
        append_columns(writer, Entries(a), Entries(b), a.size());
    made.getnnz() = writer.count();
    return made;
}

} // namespace

M<double> arrlib::sparse_joined(int dim, M<double> const& a, M<double> const& b)
{
    if (a.issparse() && b.issparse())
        return joined_entries(dim, a, b);
    M<double> const converted = sparse_copy(a.issparse() ? b : a);
    if (!has_storage(converted))
        return Access<double>::without_storage();
    return a.issparse() ? joined_entries(dim, a, converted) : joined_entries(dim, converted, b);
}

namespace {

// Where the entries of each row start in the transposed value, found by counting; no array when the
// entries do not rise or when there are far more rows than entries, which is left to sorting.
class RowStarts {
public:
    explicit RowStarts(Entries const& entries)
    {
        if (entries.rows / 4 > entries.count)
            return;
        HeapArray<int> starts(static_cast<std::size_t>(entries.rows));
        if (!starts || !count_entries(entries, starts.data()))
            return;
        int start = 0;
        for (int& row : starts)
            start += std::exchange(row, start);
        starts_ = std::move(starts);
    }
    explicit operator bool() const { return static_cast<bool>(starts_); }
    int next(int row) { return starts_[static_cast<std::size_t>(row)]++; }

private:
    static bool count_entries(Entries const& entries, int* counts)
    {
        std::fill_n(counts, entries.rows, 0);
        PositionSplit split(entries.rows);
        bool rising = true;
        for (int k = 0, before = -1; k < entries.count; before = entries.at[k++]) {
            rising &= entries.at[k] > before;
            split.at(entries.at[k]);
            ++counts[split.row()];
        }
        return rising;
    }

    HeapArray<int> starts_;
};

void transpose_by_rows(M<double>& to, Entries const& entries, RowStarts& starts)
{
    int* const index = Access<double>::index(to);
    double *const re = to.addr(), *const im = to.addi();
    int const columns = to.rows();
    PositionSplit split(entries.rows);
    bool zeros = false;
    for (int k = 0; k < entries.count; ++k) {
        split.at(entries.at[k]);
        int const place = starts.next(split.row());
        index[place] = split.row() * columns + split.column();
        re[place] = entries.re[k];
        zeros |= entries.re[k] == 0;
        if (im)
            im[place] = entries.im[k];
    }
    to.getnnz() = entries.count;
    if (zeros)
        to.resparse();
}

bool transpose_by_sorting(M<double>& to, Entries const& entries)
{
    HeapArray<EntryKey> keys(static_cast<std::size_t>(entries.count));
    if (!keys)
        return false;
    PositionSplit split(entries.rows);
    for (int k = 0; k < entries.count; ++k) {
        split.at(entries.at[k]);
        keys[static_cast<std::size_t>(k)] = entry_key(split.row() * to.rows() + split.column(), k);
    }
    if (!sort_keys(keys))
        return false;
    EntryWriter writer(to);
    for (EntryKey const key : keys)
        entries.put(writer, key_entry(key), key_position(key));
    to.getnnz() = writer.count();
    return true;
}

} // namespace

M<double> arrlib::sparse_transposed(M<double> const& a)
{
    Entries const entries(a);
    M<double> made = result_like(a.isc(), Dims(a.cols(), a.rows()), entries.count);
    if (!has_storage(made))
        return made;
    if (RowStarts starts(entries); starts)
        transpose_by_rows(made, entries, starts);
    else if (!transpose_by_sorting(made, entries))
        return Access<double>::without_storage();
    return made;
}

M<double> arrlib::sparse_flipped(M<double> const& a, int dim)
{
    Entries const entries(a);
    M<double> made = result_like(a.isc(), Dims(a.rows(), a.cols()), entries.count);
    if (!has_storage(made))
        return made;
    EntryWriter writer(made);
    int const rows = a.rows();
    if (dim == 0)
        for (int first = 0; first < entries.count;) {
            int const end = entries.column_end(first), column_start = entries.at[first] / rows * rows;
            for (int k = end; k-- > first;)
                entries.put(writer, k, column_start + (rows - 1) - (entries.at[k] - column_start));
            first = end;
        }
    else
        for (int end = entries.count; end > 0;) {
            int const first = entries.column_begin(end - 1), column = entries.at[first] / rows;
            for (int k = first; k < end; ++k)
                entries.put(writer, k, (a.cols() - 1 - column) * rows + entries.at[k] - column * rows);
            end = first;
        }
    made.getnnz() = writer.count();
    return made;
}

M<double> arrlib::sparse_tiled(M<double> const& a, int down, int across)
{
    Entries const entries(a);
    auto const times = [](int size, int count) {
        return static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(size) * std::max(count, 0), INT_MAX));
    };
    Dims const shape(times(a.rows(), down), times(a.cols(), across));
    // A shape that fits bounds the entries, too.
    std::int64_t const room = shape.count > 0 ? static_cast<std::int64_t>(entries.count) * down * across : 0;
    M<double> made = result_like(a.isc(), shape, room);
    if (!has_storage(made) || shape.count < 1)
        return made;
    EntryWriter writer(made);
    for (int tile = 0; tile < across; ++tile)
        for (int first = 0; first < entries.count;) {
            int const end = entries.column_end(first), column = entries.at[first] / entries.rows;
            int const to_column = (tile * a.cols() + column) * shape.size[0], from_column = column * entries.rows;
            for (int copy = 0; copy < down; ++copy)
                for (int k = first; k < end; ++k)
                    entries.put(writer, k, to_column + copy * entries.rows + entries.at[k] - from_column);
            first = end;
        }
    made.getnnz() = writer.count();
    return made;
}
