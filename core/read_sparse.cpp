// Reading parts of sparse values in the time of what is stored and selected.
#include "core/access.h"
#include "core/read.h"

#include <algorithm>

using namespace arrlib;

namespace {

// Stored entries of the source, in order.
struct Entries {
    double const* re;
    double const* im;
    int const* position;
    int count;

    explicit Entries(M<double> const& source)
        : re(source.addr()), im(source.isc() ? source.addi() : nullptr), position(Access<double>::index(source)), count(source.getnnz())
    {
    }
    // Number of the first entry at or behind a position.
    int from(std::int64_t at) const
    {
        return static_cast<int>(std::lower_bound(position, position + count, at, [](int stored, std::int64_t wanted) { return stored < wanted; }) - position);
    }
};

// Collects the entries of the result. Room is taken when it is known how much.
class Collector {
public:
    Collector(M<double> const& source, Dims const& shape, std::size_t room)
        : made_(room <= INT_MAX - 6 ? Access<double>::sparse_with_room(source.isc(), shape, 0, static_cast<int>(room) + 6) : Access<double>::without_storage())
    {
        Access<double>::copy_kind(made_, source);
    }
    bool usable() const { return made_.issparse(); }
    void add(Entries const& from, int entry, int position)
    {
        int& n = made_.getnnz();
        made_.addr()[n] = from.re[entry];
        if (from.im)
            made_.addi()[n] = from.im[entry];
        Access<double>::index(made_)[n++] = position;
    }
    M<double> take() { return std::move(made_); }

private:
    M<double> made_;
};

// Where each source row goes: the list of selected places per row.
struct RowMap {
    HeapArray<int> head;
    HeapArray<int> next;

    bool build(Subscript const& rows, int source_rows)
    {
        head = HeapArray<int>(static_cast<std::size_t>(source_rows));
        next = HeapArray<int>(static_cast<std::size_t>(rows.count()));
        if (!head || !next)
            return false;
        std::fill(head.begin(), head.end(), -1);
        // From the last to the first, so that each list rises.
        for (int k = rows.count() - 1; k >= 0; --k) {
            auto const row = static_cast<std::size_t>(rows[k] >= 0 && rows[k] < source_rows ? rows[k] : 0);
            next[static_cast<std::size_t>(k)] = head[row];
            head[row] = k;
        }
        return true;
    }
};

struct Hit {
    int row;
    int entry;
};

int source_column(Subscript const& cols, int c, int source_cols)
{
    int const col = cols[c];
    return col >= 0 && col < source_cols ? col : 0;
}

M<double> read_columns(M<double> const& source, Subscript const& rows, Subscript const& cols, Dims const& shape)
{
    Entries const from(source);
    int const source_rows = source.rows();
    RowMap map;
    HeapArray<int> starts(static_cast<std::size_t>(cols.count()) * 2 + 1);
    if (!starts || !map.build(rows, source_rows))
        return Access<double>::without_storage();
    std::size_t room = 0;
    std::size_t widest = 0;
    for (int c = 0; c < cols.count(); ++c) {
        std::int64_t const first = static_cast<std::int64_t>(source_column(cols, c, source.cols())) * source_rows;
        int const begin = from.from(first), end = from.from(first + source_rows);
        starts[static_cast<std::size_t>(c) * 2] = begin;
        starts[static_cast<std::size_t>(c) * 2 + 1] = end;
        std::size_t hits = 0;
        for (int entry = begin; entry < end; ++entry)
            for (int k = map.head[static_cast<std::size_t>(from.position[entry] - first)]; k >= 0; k = map.next[static_cast<std::size_t>(k)])
                ++hits;
        room += hits;
        widest = std::max(widest, hits);
    }
    HeapArray<Hit> hits(widest);
    Collector out(source, shape, room);
    if (!hits || !out.usable())
        return out.take();
    for (int c = 0; c < cols.count(); ++c) {
        int const first = source_column(cols, c, source.cols()) * source_rows;
        std::size_t found = 0;
        for (int entry = starts[static_cast<std::size_t>(c) * 2]; entry < starts[static_cast<std::size_t>(c) * 2 + 1]; ++entry)
            for (int k = map.head[static_cast<std::size_t>(from.position[entry] - first)]; k >= 0; k = map.next[static_cast<std::size_t>(k)])
                hits[found++] = {k, entry};
        if (!rows.is_rising())
            std::sort(hits.begin(), hits.begin() + found, [](Hit a, Hit b) { return a.row < b.row; });
        for (std::size_t h = 0; h < found; ++h)
            out.add(from, hits[h].entry, c * rows.count() + hits[h].row);
    }
    return out.take();
}

M<double> read_positions(M<double> const& source, Subscript const& selected, Dims const& shape)
{
    Entries const from(source);
    int const elements = source.size();
    auto const room = static_cast<std::size_t>(selected.is_rising() ? std::min(selected.count(), from.count) : selected.count());
    Collector out(source, shape, room);
    if (!out.usable())
        return out.take();
    if (selected.is_run()) {
        for (int entry = from.from(selected.first()); entry < from.count && from.position[entry] <= selected.largest(); ++entry)
            out.add(from, entry, from.position[entry] - selected.first());
        return out.take();
    }
    for (int k = 0; k < selected.count(); ++k) {
        int const at = selected[k] >= 0 && selected[k] < elements ? selected[k] : 0;
        int const entry = from.from(at);
        if (entry < from.count && from.position[entry] == at)
            out.add(from, entry, k);
    }
    return out.take();
}

} // namespace

M<double> arrlib::read_sparse(M<double> const& source, Odometer const& odometer, Dims const& shape)
{
    // Sparse values have two dimensions: further subscripts can only be 1.
    if (shape.count < 1)
        return M<double>(source.isc(), 0, 0, 0);
    if (odometer.positions() == 1)
        return read_positions(source, odometer.subscript(0), shape);
    return read_columns(source, odometer.subscript(0), odometer.subscript(1), shape);
}
