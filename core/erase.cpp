// Deletion: A(...) = [].
#include "core/access.h"
#include "core/odometer.h"
#include "core/subscript.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>
#include <type_traits>

using namespace arrlib;

namespace {

// The one subscript that is not a colon: its place, none (-1) or several (-2).
template <class T> int deciding_subscript(Mr<T> const& selection)
{
    int found = -1;
    for (int k = 0; k < selection.count(); ++k)
        if (!is_colon(selection.index(k)))
            found = found == -1 ? k : -2;
    return found;
}

// How many slices stay, and where each slice goes; -1 for a slice that goes away.
struct Kept {
    HeapArray<int> place;
    int count = 0;

    bool mark(Subscript const& selected, int slices)
    {
        place = HeapArray<int>(static_cast<std::size_t>(slices));
        if (!place)
            return false;
        std::fill(place.begin(), place.end(), 0);
        for (int k = 0; k < selected.count(); ++k)
            place[static_cast<std::size_t>(selected[k])] = -1;
        for (int& slice : place)
            if (slice == 0)
                slice = count++;
        return true;
    }
};

// The target as a block of columns: `stride` elements make one slice within a run of `slices`.
struct Slices {
    int stride;
    int count;
    int runs;
};

template <class T> void copy_kept(T* to, T const* from, Slices const& slices, Kept const& kept)
{
    if (slices.stride == 1) {
        for (int run = 0; run < slices.runs; ++run)
            for (int slice = 0; slice < slices.count; ++slice, ++from)
                if (kept.place[static_cast<std::size_t>(slice)] >= 0)
                    *to++ = *from;
        return;
    }
    for (int run = 0; run < slices.runs; ++run)
        for (int slice = 0; slice < slices.count; ++slice, from += slices.stride)
            if (kept.place[static_cast<std::size_t>(slice)] >= 0) {
                Storage<T>::copy(to, from, slices.stride);
                to += slices.stride;
            }
}

template <class T> M<T> keep_full(M<T> const& target, Slices const& slices, Kept const& kept, Dims const& shape)
{
    M<T> made = Access<T>::full(target.isc(), shape);
    if (made.size() != shape.count)
        return made;
    copy_kept(made.addr(), target.addr(), slices, kept);
    if (target.isc())
        copy_kept(made.addi(), target.addi(), slices, kept);
    return made;
}

M<double> keep_sparse(M<double> const& target, Slices const& slices, Kept const& kept, Dims const& shape)
{
    int const* const index = Access<double>::index(target);
    int const stored = target.getnnz();
    M<double> made = Access<double>::sparse_with_room(target.isc(), shape, 0, stored + std::min(6, INT_MAX - stored));
    if (made.dirty())
        return made;
    int n = 0;
    for (int k = 0; k < stored; ++k) {
        int const within = index[k] % slices.stride, slice = index[k] / slices.stride % slices.count, run = index[k] / slices.stride / slices.count;
        int const place = kept.place[static_cast<std::size_t>(slice)];
        if (place < 0)
            continue;
        made.addr()[n] = target.addr()[k];
        if (target.isc())
            made.addi()[n] = target.addi()[k];
        Access<double>::index(made)[n++] = within + (place + run * kept.count) * slices.stride;
    }
    made.getnnz() = shape.count == 0 ? 0 : n;
    return made;
}

// A vector keeps its direction, everything else becomes a row.
template <class T> Dims shape_after_linear(M<T> const& target, int kept)
{
    int dims[max_dims] = {1, 1, 1, 1};
    int const along = target.vectordim();
    dims[along ? along - 1 : 1] = kept;
    return Dims(max_dims, dims);
}

// Deletion of single elements of a sparse value, in the time of what is stored and selected.
M<double> without_elements(M<double> const& target, Subscript const& selected)
{
    HeapArray<int> gone(static_cast<std::size_t>(selected.count()));
    if (!gone)
        return Access<double>::without_storage();
    for (int k = 0; k < selected.count(); ++k)
        gone[static_cast<std::size_t>(k)] = selected[k];
    if (!selected.is_rising())
        std::sort(gone.begin(), gone.end());
    int const* const end = std::unique(gone.begin(), gone.end());
    int const left = target.size() - static_cast<int>(end - gone.begin()), stored = target.getnnz();
    Dims const shape = shape_after_linear(target, left);
    M<double> made = Access<double>::sparse_with_room(target.isc(), shape, 0, stored + std::min(6, INT_MAX - stored));
    if (made.dirty())
        return made;
    int const* next = gone.begin();
    int n = 0;
    for (int k = 0; k < stored; ++k) {
        int const at = Access<double>::index(target)[k];
        while (next != end && *next < at)
            ++next;
        if (next != end && *next == at)
            continue;
        made.addr()[n] = target.addr()[k];
        if (target.isc())
            made.addi()[n] = target.addi()[k];
        Access<double>::index(made)[n++] = at - static_cast<int>(next - gone.begin());
    }
    made.getnnz() = n;
    return made;
}

template <class T> M<T> emptied(M<T> const& target)
{
    if constexpr (std::is_same_v<T, double>)
        if (target.issparse())
            return M<T>(0, 0, 0, 0);
    return M<T>();
}

// What is left without the selected slices along dimension `at`, or, `linear`, without the selected
// elements; without storage after a report.
template <class T> M<T> remaining(M<T> const& target, int at, Subscript const& selected, bool linear)
{
    if constexpr (std::is_same_v<T, double>)
        if (target.issparse() && linear)
            return without_elements(target, selected);
    int const* const dims = target.getdims();
    Slices slices{1, linear ? target.size() : dims[at], 1};
    Kept kept;
    if (!kept.mark(selected, slices.count))
        return Access<T>::without_storage();
    if (linear)
        return keep_full(target, slices, kept, shape_after_linear(target, kept.count));
    slices.stride = element_count(at, dims);
    slices.runs = element_count(max_dims - at - 1, dims + at + 1);
    int sizes[max_dims] = {dims[0], dims[1], dims[2], dims[3]};
    sizes[at] = kept.count;
    Dims const shape(max_dims, sizes);
    if constexpr (std::is_same_v<T, double>)
        if (target.issparse())
            return keep_sparse(target, slices, kept, shape);
    return keep_full(target, slices, kept, shape);
}

} // namespace

template <class T> void M<T>::vwcopy0(Mr<T> const& selection)
{
    int const at = deciding_subscript(selection);
    if (at == -2) {
        error("While assigning empty matrix to the matrix '%s', there was more than one non-colon index", OperandName(*this));
        return;
    }
    if (at == -1) {
        *this = emptied(*this);
        return;
    }
    bool const linear = selection.count() == 1;
    Odometer odometer;
    if (!odometer.resolve(selection) || !odometer.check_all(selection, at))
        return;
    Subscript const& selected = odometer.subscript(at);
    if (selected.count() == 0)
        return;
    M made = remaining(*this, at, selected, linear);
    if (made.dirty())
        return;
    Access<T>::copy_kind(made, *this);
    *this = std::move(made);
}

template void M<double>::vwcopy0(Mr<double> const&);
template void M<M<double>>::vwcopy0(Mr<M<double>> const&);
