// Where the non-zeros of a value are, how many there are, and which.
#include "core/blocks.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstdint>

using namespace arrlib;

int arrlib::count_nonzeros(M<double> const& x)
{
    double const *const re = x.addr(), *const im = x.addi();
    int const n = x.getnnz();
    int count = 0;
    if (im)
        for (int k = 0; k < n; ++k)
            count += (re[k] != 0) | (im[k] != 0);
    else
        for (int k = 0; k < n; ++k)
            count += re[k] != 0;
    return count;
}

namespace {

// The stored elements of a value that are not zero, counted in pieces, one for each thread.
class NonZeros {
public:
    explicit NonZeros(M<double> const& x) : x_(x), pieces_(x.getnnz() < least_shared ? 1 : std::min(parallel_width(), most_pieces))
    {
        on_all_pieces([&](int piece) { first_[piece + 1] = count_in(start_of(piece), start_of(piece + 1)); });
        for (int piece = 0; piece < pieces_; ++piece)
            first_[piece + 1] += first_[piece];
    }

    int count() const { return first_[pieces_]; }
    // of(k) for every element k that is not zero, in order.
    template <class T, class Of> void list(T* to, Of of) const
    {
        double const *const re = x_.addr(), *const im = x_.addi();
        on_all_pieces([&](int piece) {
            T *const from = to + first_[piece], *const end = to + first_[piece + 1];
            if (im)
                list_piece(from, end, start_of(piece), of, [=](int k) { return (re[k] != 0) | (im[k] != 0); });
            else
                list_piece(from, end, start_of(piece), of, [=](int k) { return re[k] != 0; });
        });
    }
    // A full list of as many numbers, uninitialised: a row for a row, else a column.
    M<double> numbers(bool complex) const
    {
        bool const row = x_.getndims() == 2 && x_.rows() == 1;
        return Access<double>::full(complex, row ? Dims(1, count()) : Dims(count(), 1));
    }

private:
    static constexpr int least_shared = 131072, most_pieces = 8;

    int start_of(int piece) const { return static_cast<int>(static_cast<std::int64_t>(x_.getnnz()) * piece / pieces_); }
    template <class Work> void on_all_pieces(Work work) const
    {
        parallel_for(pieces_, 1, [&](std::ptrdiff_t piece, std::ptrdiff_t end) {
            for (; piece < end; ++piece)
                work(static_cast<int>(piece));
        });
    }
    int count_in(int from, int end) const
    {
        double const *const re = x_.addr(), *const im = x_.addi();
        int count = 0;
        if (im)
            for (int k = from; k < end; ++k)
                count += (re[k] != 0) | (im[k] != 0);
        else
            for (int k = from; k < end; ++k)
                count += re[k] != 0;
        return count;
    }
    // Every element is written and kept when it counts, so that no branch depends on it. Where eight are
    // still to come, eight may be written.
    template <class T, class Of, class IsSet> static void list_piece(T* to, T* end, int k, Of of, IsSet is_set)
    {
        constexpr int at_once = 8;
        while (end - to >= at_once)
            for (int n = 0; n < at_once; ++n, ++k) {
                *to = of(k);
                to += is_set(k);
            }
        for (; to < end; ++k) {
            *to = of(k);
            to += is_set(k);
        }
    }

    M<double> const& x_;
    int pieces_;
    int first_[most_pieces + 1] = {};
};

// The numbers of the elements that are not zero, from 0.
class Stored {
public:
    explicit Stored(NonZeros const& found) : list_(static_cast<std::size_t>(found.count()))
    {
        if (list_)
            found.list(list_.data(), [](int k) { return k; });
    }
    explicit operator bool() const { return static_cast<bool>(list_); }
    int operator[](std::ptrdiff_t k) const { return list_.data()[k]; }
    void gather(double* to, double const* from) const
    {
        for (int const k : list_)
            *to++ = from[k];
    }

private:
    HeapArray<int> list_;
};

// The values in the given shape; without storage after a report.
M<double> values_of(M<double> const& x, Stored const& stored, M<double> made)
{
    if (!has_storage(made))
        return made;
    Access<double>::copy_kind(made, x);
    stored.gather(made.addr(), x.addr());
    if (made.isc())
        stored.gather(made.addi(), x.addi());
    return made;
}

void split_positions(M<double> const& x, Stored const& stored, int count, double* rows, double* cols)
{
    int const* const index = Access<double>::index(x);
    parallel_for(count, least_share<double>(count, 1), [&, index, rows, cols](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (PositionSplit split(x); k < end; ++k) {
            split.at(index ? index[stored[k]] : stored[k]);
            rows[k] = split.row() + 1.0;
            cols[k] = split.column() + 1.0;
        }
    });
}

// Rows, columns and, where they are wanted, values. False after a report.
bool find_parts(M<double> const& x, M<double>& rows, M<double>& cols, M<double>* values)
{
    NonZeros const found(x);
    Stored const stored(found);
    if (!stored)
        return false;
    rows = found.numbers(false);
    cols = found.numbers(false);
    if (!has_storage(rows) || !has_storage(cols))
        return false;
    split_positions(x, stored, found.count(), rows.addr(), cols.addr());
    if (values)
        *values = values_of(x, stored, found.numbers(x.isc()));
    return !values || has_storage(*values);
}

} // namespace

M<double> find(M<double> const& x)
{
    NonZeros const found(x);
    M<double> made = found.numbers(false);
    if (!has_storage(made))
        return x_M;
    if (int const* const index = Access<double>::index(x))
        found.list(made.addr(), [index](int k) { return index[k] + 1.0; });
    else
        found.list(made.addr(), [](int k) { return k + 1.0; });
    return made;
}

M<double> find(M<double> const& x, i_o_t, Mr<double> positions)
{
    M<double> const list = find(x);
    positions = list;
    return list;
}

M<double> find(M<double> const& x, i_o_t, Mr<double> rows, Mr<double> cols)
{
    M<double> row_list, col_list;
    bool const found = find_parts(x, row_list, col_list, nullptr);
    rows = found ? row_list : x_M;
    cols = found ? col_list : x_M;
    return found ? row_list : x_M;
}

M<double> find(M<double> const& x, i_o_t, Mr<double> rows, Mr<double> cols, Mr<double> values)
{
    M<double> row_list, col_list, value_list;
    bool const found = find_parts(x, row_list, col_list, &value_list);
    rows = found ? row_list : x_M;
    cols = found ? col_list : x_M;
    values = found ? value_list : x_M;
    return found ? row_list : x_M;
}

M<double> nnz(M<double> const& a)
{
    return static_cast<double>(a.issparse() ? a.getnnz() : count_nonzeros(a));
}

M<double> nzmax(M<double> const& a)
{
    int const room = a.issparse() ? std::max(a.getnnz(), a.capacity() - Storage<double>::spare) : a.size();
    return static_cast<double>(room);
}

M<double> nonzeros(M<double> const& a)
{
    NonZeros const found(a);
    Stored const stored(found);
    if (!stored)
        return x_M;
    M<double> made = values_of(a, stored, Access<double>::full(a.isc(), Dims(found.count(), 1)));
    return has_storage(made) ? made : x_M;
}
