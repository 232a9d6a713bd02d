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

// What lies outside has been reported, and the first stands in for it.
int inside(int position, int extent)
{
    return position >= 0 && position < extent ? position : 0;
}

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
            auto const row = static_cast<std::size_t>(inside(rows[k], source_rows));
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

// Looks every selected element up, for selections that are small beside a column of the source.
template <class PositionOf> M<double> read_each(M<double> const& source, int count, Dims const& shape, PositionOf&& position_of)
{
    Entries const from(source);
    HeapArray<int> entries(static_cast<std::size_t>(count));
    if (!entries)
        return Access<double>::without_storage();
    std::size_t room = 0;
    for (int k = 0; k < count; ++k) {
        int const at = position_of(k), entry = from.from(at);
        bool const stored = entry < from.count && from.position[entry] == at;
        entries[static_cast<std::size_t>(k)] = stored ? entry : -1;
        room += stored;
    }
    Collector out(source, shape, room);
    for (int k = 0; k < count && out.usable(); ++k)
        if (int const entry = entries[static_cast<std::size_t>(k)]; entry >= 0)
            out.add(from, entry, k);
    return out.take();
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
        std::int64_t const first = static_cast<std::int64_t>(inside(cols[c], source.cols())) * source_rows;
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
        return Access<double>::without_storage();
    // Rows that stand in for others break the order.
    bool const in_order = rows.is_rising() && rows.smallest() >= 0 && rows.largest() < source_rows;
    for (int c = 0; c < cols.count(); ++c) {
        int const first = inside(cols[c], source.cols()) * source_rows;
        std::size_t found = 0;
        for (int entry = starts[static_cast<std::size_t>(c) * 2]; entry < starts[static_cast<std::size_t>(c) * 2 + 1]; ++entry)
            for (int k = map.head[static_cast<std::size_t>(from.position[entry] - first)]; k >= 0; k = map.next[static_cast<std::size_t>(k)])
                hits[found++] = {k, entry};
        if (!in_order)
            std::sort(hits.begin(), hits.begin() + found, [](Hit a, Hit b) { return a.row < b.row; });
        for (std::size_t h = 0; h < found; ++h)
            out.add(from, hits[h].entry, c * rows.count() + hits[h].row);
    }
    return out.take();
}

M<double> read_run(M<double> const& source, int first, int last, Dims const& shape)
{
    Entries const from(source);
    int const begin = from.from(first), end = from.from(static_cast<std::int64_t>(last) + 1);
    Collector out(source, shape, static_cast<std::size_t>(end - begin));
    for (int entry = begin; entry < end && out.usable(); ++entry)
        out.add(from, entry, from.position[entry] - first);
    return out.take();
}

} // namespace

M<double> arrlib::read_sparse(M<double> const& source, Odometer const& odometer, Dims const& shape)
{
    // Sparse values have two dimensions: further subscripts can only be 1.
    if (shape.count < 1)
        return M<double>(source.isc(), 0, 0, 0);
    Subscript const& rows = odometer.subscript(0);
    int const elements = source.size();
    if (odometer.positions() == 1) {
        if (rows.is_run() && rows.smallest() >= 0 && rows.largest() < elements)
            return read_run(source, rows.first(), rows.largest(), shape);
        return read_each(source, shape.count, shape, [&rows, elements](int k) { return inside(rows[k], elements); });
    }
    Subscript const& cols = odometer.subscript(1);
    if (shape.count >= source.rows() / 16)
        return read_columns(source, rows, cols, shape);
    return read_each(source, shape.count, shape, [&rows, &cols, &source](int k) {
        return inside(rows[k % rows.count()], source.rows()) + inside(cols[k / rows.count()], source.cols()) * source.rows();
    });
}
