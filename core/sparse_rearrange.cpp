#include "core/sparse_rearrange.h"

#include "core/access.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
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

// Transposing by counting: the entries lie in pieces, one for each thread, and every piece knows where
// its entries of each row go.
class RowPlaces {
public:
    explicit RowPlaces(Entries const& entries) : entries_(entries), pieces_(entries.count < least_shared ? 1 : std::min(parallel_width(), most_pieces)) {}

    // False when the entries do not rise, when there are far more rows than entries, which is left to
    // sorting, and when memory is short.
    bool find()
    {
        if (entries_.rows / 4 > entries_.count)
            return false;
        places_ = HeapArray<int>(static_cast<std::size_t>(entries_.rows) * static_cast<std::size_t>(pieces_));
        if (!places_)
            return false;
        std::atomic<bool> rising{true};
        on_all_pieces([&](int piece) {
            if (!count_rows(piece))
                rising.store(false, std::memory_order_relaxed);
        });
        int place = 0;
        for (int row = 0; row < entries_.rows; ++row)
            for (int piece = 0; piece < pieces_; ++piece)
                place += std::exchange(of_piece(piece)[row], place);
        return rising.load();
    }

    void transpose(M<double>& to)
    {
        std::atomic<bool> zeros{false};
        on_all_pieces([&](int piece) {
            if (!place_entries(to, piece))
                zeros.store(true, std::memory_order_relaxed);
        });
        to.getnnz() = entries_.count;
        if (zeros.load())
            to.resparse();
    }

private:
    static constexpr int least_shared = 65536, most_pieces = 8;

    int* of_piece(int piece) { return places_.data() + static_cast<std::ptrdiff_t>(piece) * entries_.rows; }
    int first_of(int piece) const { return static_cast<int>(static_cast<std::int64_t>(entries_.count) * piece / pieces_); }
    template <class Work> void on_all_pieces(Work work)
    {
        parallel_for(pieces_, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            for (; from < to; ++from)
                work(static_cast<int>(from));
        });
    }

    // False when the entries do not rise.
    bool count_rows(int piece)
    {
        int* const counts = of_piece(piece);
        std::fill_n(counts, entries_.rows, 0);
        PositionSplit split(entries_.rows);
        bool rising = true;
        int const first = first_of(piece), end = first_of(piece + 1);
        for (int k = first, before = first ? entries_.at[first - 1] : -1; k < end; before = entries_.at[k++]) {
            rising &= entries_.at[k] > before;
            split.at(entries_.at[k]);
            ++counts[split.row()];
        }
        return rising;
    }

    // False when a value is zero.
    bool place_entries(M<double>& to, int piece)
    {
        int* const index = Access<double>::index(to);
        int* const next = of_piece(piece);
        double *const re = to.addr(), *const im = to.addi();
        int const columns = to.rows();
        PositionSplit split(entries_.rows);
        bool zeros = false;
        for (int k = first_of(piece), end = first_of(piece + 1); k < end; ++k) {
            split.at(entries_.at[k]);
            int const place = next[split.row()]++;
            index[place] = split.row() * columns + split.column();
            re[place] = entries_.re[k];
            zeros |= entries_.re[k] == 0;
            if (im)
                im[place] = entries_.im[k];
        }
        return !zeros;
    }

    Entries const& entries_;
    int pieces_;
    HeapArray<int> places_;
};

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
    if (RowPlaces places(entries); places.find())
        places.transpose(made);
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
