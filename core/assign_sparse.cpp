// Assignment to parts of sparse values: new entries are sorted and merged into the stored ones.
#include "core/assign.h"

#include "runtime/errors.h"

#include <algorithm>
#include <numeric>

using namespace arrlib;

namespace {

struct Parts {
    double* re;
    double* im;
    int* position;

    explicit Parts(M<double> const& value) : re(value.addr()), im(value.addi()), position(Access<double>::index(value)) {}
    void move(int from, int to) const
    {
        re[to] = re[from];
        position[to] = position[from];
        if (im)
            im[to] = im[from];
    }
};

// Room for one more entry in a value of its own; grows geometrically, so that entering elements one
// by one takes no reallocation each.
bool make_room(M<double>& target, int stored)
{
    if (!target.dirty() && target.capacity() > stored)
        return true;
    int const room = static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(stored) * 2 + 7, INT_MAX));
    M<double> roomy = Access<double>::sparse_with_room(target.isc(), Dims(target.getndims(), target.getdims()), stored, room);
    if (roomy.dirty())
        return false;
    Access<double>::copy_kind(roomy, target);
    Parts const from(target), to(roomy);
    std::copy_n(from.re, stored, to.re);
    std::copy_n(from.position, stored, to.position);
    if (to.im)
        std::copy_n(from.im, stored, to.im);
    target = std::move(roomy);
    return true;
}

bool assign_one(M<double>& target, int position, double re, double im)
{
    int& stored = target.getnnz();
    int const* const index = Access<double>::index(target);
    int const entry = static_cast<int>(std::lower_bound(index, index + stored, position) - index);
    bool const present = entry < stored && index[entry] == position;
    bool const zero = re == 0 && im == 0;
    if (zero && !present)
        return true;
    int const before = stored;
    if (!make_room(target, before))
        return false;
    Parts const parts(target);
    if (zero) {
        for (int k = entry + 1; k < before; ++k)
            parts.move(k, k - 1);
        target.getnnz() = before - 1;
        return true;
    }
    if (!present) {
        for (int k = before; k > entry; --k)
            parts.move(k - 1, k);
        target.getnnz() = before + 1;
    }
    parts.re[entry] = re;
    parts.position[entry] = position;
    if (parts.im)
        parts.im[entry] = im;
    return true;
}

// Source values by element, whatever their form.
class Values {
public:
    explicit Values(M<double> const& source) : source_(source), step_(source.size() == 1 ? 0 : 1) { source_.getfull(); }
    double re(int k) const { return source_.addr()[k * step_]; }
    double im(int k) const { return source_.isc() ? source_.addi()[k * step_] : 0; }
    bool usable() const { return !source_.issparse(); }

private:
    M<double> source_;
    int step_;
};

// A sparse value of the target's sizes and kind with room for its entries and `more`; without
// storage after "Out of memory!".
M<double> room_to_merge(M<double> const& target, int more)
{
    std::int64_t const room = static_cast<std::int64_t>(target.getnnz()) + more + 6;
    if (room > INT_MAX) {
        error(messages::out_of_memory);
        return Access<double>::without_storage();
    }
    M<double> merged = Access<double>::sparse_with_room(target.isc(), Dims(target.getndims(), target.getdims()), 0, static_cast<int>(room));
    Access<double>::copy_kind(merged, target);
    return merged;
}

// The order in which the given positions rise; of equal ones the last given comes last.
HeapArray<int> rising_order(int const* positions, int count)
{
    HeapArray<int> order(static_cast<std::size_t>(count));
    if (!order)
        return order;
    std::iota(order.begin(), order.end(), 0);
    if (!std::is_sorted(positions, positions + count))
        std::sort(order.begin(), order.end(), [positions](int a, int b) { return positions[a] != positions[b] ? positions[a] < positions[b] : a < b; });
    return order;
}

} // namespace

bool arrlib::assign_sparse(M<double>& target, int const* positions, int count, M<double> const& source)
{
    Values const values(source);
    if (!values.usable())
        return false;
    if (count == 1)
        return assign_one(target, positions[0], values.re(0), values.im(0));
    HeapArray<int> const order = rising_order(positions, count);
    if (!order)
        return false;
    int const stored = target.getnnz();
    M<double> merged = room_to_merge(target, count);
    if (merged.dirty())
        return false;
    Parts const from(target), to(merged);
    int n = 0, old = 0;
    auto const put = [&](int position, double re, double im) {
        if (re == 0 && im == 0)
            return;
        to.re[n] = re;
        if (to.im)
            to.im[n] = im;
        to.position[n++] = position;
    };
    for (int k = 0; k < count; ++k) {
        int const given = order[static_cast<std::size_t>(k)];
        int const position = positions[given];
        if (k + 1 < count && positions[order[static_cast<std::size_t>(k) + 1]] == position)
            continue;
        for (; old < stored && from.position[old] < position; ++old)
            put(from.position[old], from.re[old], from.im ? from.im[old] : 0);
        if (old < stored && from.position[old] == position)
            ++old;
        put(position, values.re(given), values.im(given));
    }
    for (; old < stored; ++old)
        put(from.position[old], from.re[old], from.im ? from.im[old] : 0);
    merged.getnnz() = n;
    target = std::move(merged);
    return true;
}

namespace {

// True for every row, or column, that a subscript selects.
HeapArray<char> selected_marks(Subscript const& subscript, int extent)
{
    HeapArray<char> marks(static_cast<std::size_t>(extent));
    if (!marks)
        return marks;
    std::fill(marks.begin(), marks.end(), '\0');
    for (int k = 0; k < subscript.count(); ++k)
        marks[static_cast<std::size_t>(subscript[k])] = 1;
    return marks;
}

} // namespace

bool arrlib::assign_sparse_block(M<double>& target, Subscript const& rows, Subscript const& cols, M<double> const& source)
{
    HeapArray<char> const in_rows = selected_marks(rows, target.rows()), in_cols = selected_marks(cols, target.cols());
    if (!in_rows || !in_cols)
        return false;
    M<double> merged = room_to_merge(target, source.getnnz());
    if (merged.dirty())
        return false;
    Parts const old(target), given(source), to(merged);
    int const block_rows = rows.count(), target_rows = target.rows();
    int n = 0, k = 0;
    auto const put = [&](Parts const& from, int entry, int position) {
        to.re[n] = from.re[entry];
        if (to.im)
            to.im[n] = from.im ? from.im[entry] : 0;
        to.position[n++] = position;
    };
    // The given entries rise where they go, so the two lists are merged.
    auto const place = [&](int entry) { return rows[given.position[entry] % block_rows] + cols[given.position[entry] / block_rows] * target_rows; };
    auto const put_given_before = [&](int position) {
        for (; k < source.getnnz() && place(k) < position; ++k)
            if (given.re[k] != 0 || (given.im && given.im[k] != 0))
                put(given, k, place(k));
    };
    for (int entry = 0; entry < target.getnnz(); ++entry) {
        int const at = old.position[entry];
        if (in_rows[static_cast<std::size_t>(at % target_rows)] && in_cols[static_cast<std::size_t>(at / target_rows)])
            continue;
        put_given_before(at);
        put(old, entry, at);
    }
    put_given_before(INT_MAX);
    merged.getnnz() = n;
    target = std::move(merged);
    return true;
}

bool arrlib::enlarge_sparse(M<double>& target, Dims const& shape)
{
    if (shape.count < 0 || shape.ndims > 2) {
        error(messages::matrix_too_large);
        return false;
    }
    int const old_rows = target.rows(), rows = shape.size[0];
    if (old_rows != rows && target.getnnz() > 0) {
        target.unshare();
        if (target.dirty())
            return false;
        int* const index = Access<double>::index(target);
        for (int k = 0; k < target.getnnz(); ++k)
            index[k] = index[k] % old_rows + index[k] / old_rows * rows;
    }
    Access<double>::set_dims(target, shape);
    return true;
}
