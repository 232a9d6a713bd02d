// The sparse members of the value: entries by their linear positions, and the column-compressed
// arrays derived from them.
#include "core/sparse.h"

#include "core/sparse_build.h"
#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>

using namespace arrlib;

namespace {

int* take_index(int count)
{
    void* const block = platform::heap_allocate(static_cast<std::size_t>(count) * sizeof(int));
    if (!block)
        error(messages::out_of_memory);
    return static_cast<int*>(block);
}

void widen(col_list_limits_t& limits, int row, int col)
{
    limits.row_min = std::min(limits.row_min, row);
    limits.row_max = std::max(limits.row_max, row);
    limits.col_min = std::min(limits.col_min, col);
    limits.col_max = std::max(limits.col_max, col);
}

void scatter(double* to, double const* from, int const* index, int entries, int n)
{
    Storage<double>::clear(to, n);
    if (!from)
        return;
    for (int k = 0; k < entries; ++k)
        if (static_cast<unsigned>(index[k]) < static_cast<unsigned>(n))
            to[index[k]] = from[k];
}

// Strictly rising positions and no zeros.
bool is_normal(M<double> const& matrix)
{
    int const* const index = Access<double>::index(matrix);
    double const *const re = matrix.addr(), *const im = matrix.addi();
    for (int k = 0; k < matrix.getnnz(); ++k)
        if ((k > 0 && index[k] <= index[k - 1]) || (re[k] == 0 && (!im || im[k] == 0)))
            return false;
    return true;
}

// Gives the number of entries left.
int merge_entries(M<double>& to, M<double> const& from)
{
    int const* const index = Access<double>::index(from);
    double const *const re = from.addr(), *const im = from.addi();
    EntryWriter writer(to);
    for (int k = 0; k < from.getnnz(); ++k)
        writer.add(index[k], re[k], im ? im[k] : 0);
    return writer.count();
}

// Entries that are looked at together, which costs little more than looking at one.
constexpr int window = 32;

int count_below(int const* index, int position)
{
    int below = 0;
    for (int k = 0; k < window; ++k)
        below += index[k] < position;
    return below;
}

// Where a position between the first and the last should stand if the entries spread evenly, corrected
// twice by what stands there.
int guessed_entry(int const* index, int count, int position)
{
    double const sought = position, last = count - 1, first_position = index[0];
    double const entries_per_position = last / (index[count - 1] - first_position);
    int guess = static_cast<int>((sought - first_position) * entries_per_position);
    for (int step = 0; step < 2; ++step) {
        double const next = guess + (sought - index[guess]) * entries_per_position;
        guess = static_cast<int>(std::min(std::max(next, 0.0), last));
    }
    return guess;
}

} // namespace

int arrlib::first_entry_from(int const* index, int count, int position)
{
    int first = 0, last = count;
    if (count > 2 * window && position > index[0] && position <= index[count - 1]) {
        int const begin = std::clamp(guessed_entry(index, count, position) - window / 2, 0, count - window);
        int const below = count_below(index + begin, position);
        if (below > 0 && below < window)
            return begin + below;
        (below ? first : last) = below ? begin + window : begin;
    }
    return static_cast<int>(std::lower_bound(index + first, index + last, position) - index);
}

namespace {

// Copies values; false when one of them is zero.
bool copy_nonzeros(double* __restrict__ to, double const* __restrict__ values, int count)
{
    // Two at a time, without stopping at the first zero: nearly always there is none.
    using Pair = double __attribute__((vector_size(16)));
    using PairTest = std::int64_t __attribute__((vector_size(16)));
    PairTest zeros = {};
    int k = 0;
    for (; k + 2 <= count; k += 2) {
        Pair pair;
        std::memcpy(&pair, values + k, sizeof pair);
        std::memcpy(to + k, &pair, sizeof pair);
        zeros |= pair == 0.0;
    }
    bool zero = zeros[0] | zeros[1];
    for (; k < count; ++k) {
        zero |= values[k] == 0;
        to[k] = values[k];
    }
    return !zero;
}

// Copies positions, moved by an offset; false when they do not rise from `before` on.
bool copy_rising(int* __restrict__ to, int const* __restrict__ positions, int count, int offset, std::int64_t before)
{
    int falling = positions[0] <= before;
    to[0] = positions[0] + offset;
    for (int k = 1; k < count; ++k) {
        falling |= positions[k] <= positions[k - 1];
        to[k] = positions[k] + offset;
    }
    return !falling;
}

} // namespace

void EntryWriter::add_run(int const* index, double const* re, double const* im, int count, int offset)
{
    // Copied for a start, and written over one by one where the run turns out not to go as it is.
    constexpr int run = 1024;
    for (int at = 0; at < count; at += run) {
        int const n = std::min(run, count - at);
        bool const as_they_are = !im && !im_ && copy_rising(index_ + count_, index + at, n, offset, static_cast<std::int64_t>(last_) - offset) &&
                                 copy_nonzeros(re_ + count_, re + at, n);
        if (as_they_are) {
            count_ += n;
            last_ = index_[count_ - 1];
        } else {
            for (int k = at; k < at + n; ++k)
                add(index[k] + offset, re[k], im ? im[k] : 0);
        }
    }
}

void nx_release_index(int* array)
{
    platform::heap_release(array);
}

template <class T> int M<T>::search(int position) const
{
    if (!verify_sparse("search") || !place_.index)
        return -1;
    int const found = first_entry_from(place_.index, place_.nnz, position);
    return found < place_.nnz && place_.index[found] == position ? found : -1;
}

template <class T> void M<T>::unsparse(int n, T* re, T* im) const
{
    if (!verify_sparse("unsparse"))
        return;
    if constexpr (std::is_same_v<T, double>) {
        if (re)
            scatter(re, place_.re, place_.index, place_.nnz, n);
        if (im)
            scatter(im, place_.im, place_.index, place_.nnz, n);
    }
}

template <class T> void M<T>::extend_nnz(int n)
{
    if (!verify_sparse("extend_nnz") || n <= place_.nnz)
        return;
    if constexpr (std::is_same_v<T, double>) {
        int const old = place_.nnz;
        if (dirty() || n > form_.capacity) {
            // Half as much again, so that adding entries one by one does not copy them each time.
            int const room = std::max(n, std::min(old + old / 2, size()));
            M made = Access<T>::sparse_with_room(isc(), Dims(form_.ndims, form_.dims), old, std::min(room, Storage<T>::largest_count) + Storage<T>::spare);
            if (!has_storage(made))
                return;
            Access<T>::copy_kind(made, *this);
            std::copy_n(place_.index, old, made.place_.index);
            Storage<T>::copy(made.place_.re, place_.re, old);
            if (place_.im)
                Storage<T>::copy(made.place_.im, place_.im, old);
            *this = std::move(made);
        }
        std::fill(place_.index + old, place_.index + n, 0);
        Storage<T>::clear(place_.re + old, n - old);
        if (place_.im)
            Storage<T>::clear(place_.im + old, n - old);
        place_.nnz = n;
    }
}

template <class T> int* M<T>::Jc() const
{
    col_list_limits_t limits;
    return Jc(limits);
}

template <class T> int* M<T>::Jc(col_list_limits_t& limits) const
{
    limits = {INT_MAX, -1, INT_MAX, -1};
    if (!verify_sparse("Jc") || !std::is_same_v<T, double>)
        return nullptr;
    int const columns = form_.dims[1];
    int* const starts = take_index(columns + 1);
    if (!starts)
        return nullptr;
    std::fill_n(starts, columns + 1, 0);
    PositionSplit split(form_.dims[0]);
    for (int k = 0; k < place_.nnz; ++k) {
        split.at(place_.index[k]);
        widen(limits, split.row(), split.column());
        if (static_cast<unsigned>(split.column()) < static_cast<unsigned>(columns))
            ++starts[split.column() + 1];
    }
    for (int c = 0; c < columns; ++c)
        starts[c + 1] += starts[c];
    return starts;
}

template <class T> int* M<T>::Ir() const
{
    if (!verify_sparse("Ir") || !std::is_same_v<T, double>)
        return nullptr;
    int* const list = take_index(std::max(place_.nnz, 1));
    if (!list)
        return nullptr;
    PositionSplit split(form_.dims[0]);
    for (int k = 0; k < place_.nnz; ++k) {
        split.at(place_.index[k]);
        list[k] = split.row();
    }
    return list;
}

template <class T> void M<T>::IrJc(int const* ir, int const* jc)
{
    if (!verify_sparse("IrJc") || !ir || !jc || !std::is_same_v<T, double>)
        return;
    unshare();
    if (dirty())
        return;
    for (int c = 0; c < form_.dims[1]; ++c)
        for (int k = std::max(jc[c], 0), end = std::min(jc[c + 1], place_.nnz); k < end; ++k)
            place_.index[k] = static_cast<int>(static_cast<unsigned>(ir[k]) + static_cast<unsigned>(c) * static_cast<unsigned>(form_.dims[0]));
}

template <class T> void M<T>::sort()
{
    if constexpr (std::is_same_v<T, double>) {
        if (!verify_sparse("sort") || std::is_sorted(place_.index, place_.index + place_.nnz))
            return;
        HeapArray<EntryKey> keys(static_cast<std::size_t>(place_.nnz));
        if (!keys)
            return;
        for (int k = 0; k < place_.nnz; ++k)
            keys.data()[k] = entry_key(place_.index[k], k);
        if (!sort_keys(keys))
            return;
        M made = Access<T>::sparse_with_room(isc(), Dims(form_.ndims, form_.dims), place_.nnz, form_.capacity);
        if (!has_storage(made))
            return;
        Access<T>::copy_kind(made, *this);
        for (int k = 0; k < place_.nnz; ++k) {
            int const from = key_entry(keys.data()[k]);
            made.place_.index[k] = key_position(keys.data()[k]);
            made.place_.re[k] = place_.re[from];
            if (place_.im)
                made.place_.im[k] = place_.im[from];
        }
        *this = std::move(made);
    } else {
        error("sparse cell arrays not supported");
    }
}

template <class T> void M<T>::resparse()
{
    if constexpr (std::is_same_v<T, double>) {
        if (!verify_sparse("resparse") || is_normal(*this))
            return;
        if (!dirty()) {
            // Entries only move to the front.
            place_.nnz = merge_entries(*this, *this);
            return;
        }
        M made = sparse_with_room(isc(), Dims(form_.ndims, form_.dims), place_.nnz);
        if (!has_storage(made))
            return;
        Access<T>::copy_kind(made, *this);
        made.place_.nnz = merge_entries(made, *this);
        *this = std::move(made);
    } else {
        error("no sparse cells");
    }
}

template <class T> int M<T>::getfull()
{
    if constexpr (std::is_same_v<T, double>)
        if (issparse()) {
            M made = full_copy(*this);
            if (has_storage(made))
                *this = std::move(made);
        }
    return 1;
}

template <class T> int M<T>::getsparse(int with_zeros)
{
    if constexpr (std::is_same_v<T, double>) {
        if (issparse())
            return 1;
        M made = Access<T>::without_storage();
        if (with_zeros)
            made.deepcopy(isc(), 1, *this);
        else
            made = sparse_copy(*this);
        if (has_storage(made))
            *this = std::move(made);
    }
    return 1;
}

template int M<double>::search(int) const;
template void M<double>::unsparse(int, double*, double*) const;
template void M<double>::extend_nnz(int);
template int* M<double>::Jc() const;
template int* M<double>::Jc(col_list_limits_t&) const;
template int* M<double>::Ir() const;
template void M<double>::IrJc(int const*, int const*);
template void M<double>::sort();
template void M<double>::resparse();
template int M<double>::getfull();
template int M<double>::getsparse(int);
template int M<M<double>>::search(int) const;
template void M<M<double>>::unsparse(int, M<double>*, M<double>*) const;
template void M<M<double>>::extend_nnz(int);
template int* M<M<double>>::Jc() const;
template int* M<M<double>>::Jc(col_list_limits_t&) const;
template int* M<M<double>>::Ir() const;
template void M<M<double>>::IrJc(int const*, int const*);
template void M<M<double>>::sort();
template void M<M<double>>::resparse();
template int M<M<double>>::getfull();
template int M<M<double>>::getsparse(int);
