#include "core/odometer.h"

#include "core/access.h"
#include "core/read.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <algorithm>
#include <climits>
#include <mutex>

namespace arrlib {

bool is_colon(M<double> const& index)
{
    return index.issamename(c_pp);
}

void Subscript::note(int position)
{
    if (count_ == 0)
        smallest_ = largest_ = first_ = position;
    else
        rising_ = rising_ && position > list_[static_cast<std::size_t>(count_) - 1];
    smallest_ = std::min(smallest_, position);
    largest_ = std::max(largest_, position);
    list_[static_cast<std::size_t>(count_++)] = position;
}

bool Subscript::list_nonzeros(M<double> const& index)
{
    double const* const values = index.addr();
    int const stored = index.getnnz();
    // A NaN counts as zero.
    auto const is_set = [](double value) { return value != 0 && value == value; };
    int set = 0;
    for (int k = 0; k < stored; ++k)
        set += is_set(values[k]);
    list_ = HeapArray<int>(static_cast<std::size_t>(set) + 1);
    if (!list_)
        return false;
    if (index.issparse()) {
        for (int k = 0; k < stored; ++k)
            if (is_set(values[k]))
                note(Access<double>::index(index)[k]);
        return true;
    }
    // Every position is written and kept when it counts: no branch depends on the mask.
    int* const list = list_.data();
    for (int k = 0, at = 0; k < stored; ++k) {
        list[at] = k;
        at += is_set(values[k]);
    }
    count_ = set;
    if (set > 0) {
        first_ = smallest_ = list[0];
        largest_ = list[set - 1];
    }
    return true;
}

namespace {

// What is known of positions once they are listed.
struct Extent {
    int smallest = INT_MAX, largest = INT_MIN;
    bool rising = true, below_one = false;

    void join(Extent const& other)
    {
        smallest = std::min(smallest, other.smallest);
        largest = std::max(largest, other.largest);
        rising &= other.rising;
        below_one |= other.below_one;
    }
};

// Lists the positions of values[begin..end), a stretch at a time: in loops without a decision for each
// element where all of them are ordinary.
Extent list_positions(int* list, double const* values, std::ptrdiff_t begin, std::ptrdiff_t end)
{
    constexpr std::ptrdiff_t stretch = 512;
    Extent extent;
    extent.rising = begin == 0 || zero_based(values[begin - 1]) < zero_based(values[begin]);
    for (std::ptrdiff_t from = begin; from < end; from += stretch) {
        std::ptrdiff_t const to = std::min(from + stretch, end);
        int outside = 0, below_one = 0, falling = 0;
        for (std::ptrdiff_t k = from; k < to; ++k)
            outside |= !(values[k] >= 1 && values[k] <= INT_MAX);
        if (ARRLIB_LIKELY(!outside))
            for (std::ptrdiff_t k = from; k < to; ++k)
                list[k] = static_cast<int>(values[k] - 1);
        else
            for (std::ptrdiff_t k = from; k < to; ++k) {
                list[k] = zero_based(values[k]);
                below_one |= !(values[k] >= 1);
            }
        for (std::ptrdiff_t k = std::max(from, begin + 1); k < to; ++k)
            falling |= list[k] <= list[k - 1];
        for (std::ptrdiff_t k = from; k < to; ++k) {
            extent.smallest = std::min(extent.smallest, list[k]);
            extent.largest = std::max(extent.largest, list[k]);
        }
        extent.rising &= !falling;
        extent.below_one |= below_one != 0;
    }
    return extent;
}

} // namespace

bool Subscript::list_values(M<double> const& index)
{
    double const* const values = index.addr();
    int const stored = index.getnnz();
    if (stored < 1)
        return true;
    if (stored == 1) {
        resolve_single(zero_based(values[0]));
        below_one_ = !(values[0] >= 1);
        return true;
    }
    list_ = HeapArray<int>(static_cast<std::size_t>(stored));
    if (!list_)
        return false;
    Extent extent;
    std::mutex joining;
    parallel_for(stored, least_per_thread, [&extent, &joining, values, list = list_.data()](std::ptrdiff_t begin, std::ptrdiff_t end) {
        Extent const part = list_positions(list, values, begin, end);
        std::lock_guard const lock(joining);
        extent.join(part);
    });
    count_ = stored;
    first_ = list_[0];
    smallest_ = extent.smallest;
    largest_ = extent.largest;
    rising_ = extent.rising;
    below_one_ = extent.below_one;
    return true;
}

bool Subscript::resolve(M<double> const& index, int colon_extent)
{
    *this = Subscript();
    if (arrlib::is_colon(index)) {
        colon_ = true;
        count_ = colon_extent;
        largest_ = colon_extent - 1;
        return true;
    }
    logical_ = index.islogical();
    if (!(logical_ ? list_nonzeros(index) : list_values(index)))
        return false;
    // What runs without gaps needs no list.
    if (rising_ && smallest_ >= 0 && largest_ < INT_MAX && largest_ - smallest_ == count_ - 1)
        list_ = HeapArray<int>();
    return true;
}

void Subscript::resolve_single(int position)
{
    *this = Subscript();
    count_ = 1;
    first_ = smallest_ = largest_ = position;
    below_one_ = position < 0;
}

void Odometer::recount()
{
    int extents[max_dims];
    for (int k = 0; k < positions_; ++k)
        extents[k] = subscript_[k].count();
    count_ = element_count(positions_, extents);
}

Dims Odometer::selected() const
{
    int extents[max_dims];
    for (int k = 0; k < positions_; ++k)
        extents[k] = subscript_[k].count();
    return Dims(positions_, extents);
}

template <class T> bool Odometer::resolve(Mr<T> const& selection)
{
    M<T> const& target = selection.target();
    positions_ = selection.count();
    for (int k = 0; k < positions_; ++k) {
        M<double> const& index = selection.index(k);
        if (index.issparse() && !index.islogical() && index.getnnz() != index.size()) {
            error("Sparse index %s out of matrix %s. Index value was 0.", OperandName(index), OperandName(target));
            return false;
        }
        int const extent = positions_ == 1 ? target.size() : target.getdims()[k];
        if (!subscript_[k].resolve(index, extent))
            return false;
    }
    recount();
    return true;
}

template <class T> bool Odometer::inside(M<T> const& target) const
{
    for (int k = 0; k < positions_; ++k) {
        int const extent = positions_ == 1 ? target.size() : target.getdims()[k];
        if (subscript_[k].smallest() < 0 || subscript_[k].largest() >= extent)
            return false;
    }
    return true;
}

template <class T> bool Odometer::check(Mr<T> const& selection, int k, int position, bool growing) const
{
    M<T> const& target = selection.target();
    int const extent = positions_ == 1 ? target.size() : target.getdims()[k];
    bool const may_grow = growing && (positions_ > 1 || target.vectordim() != 0);
    // Names are put together only when there is something to say.
    if (position >= 0 && (may_grow || position < extent))
        return true;
    OperandName const name(target), index(selection.index(k));
    IntegerText const value(position == INT_MAX ? position : position + 1.0), size(extent);
    if (position < 0)
        error("index %s out of matrix %s. Index value was %s which is not positive.", index, name, value);
    else if (positions_ > 1)
        error("Index %s out of matrix %s. Index value was %s however the indexed matrix has %s elements in this dimension.", index, name, value, size);
    else if (target.vectordim() == 0)
        error("Index %s out of matrix %s. Index value was %s however the indexed matrix has only %s elements.", index, name, value, size);
    else
        error("Index %s out of vector %s. Index value was %s however the indexed vector has only %s elements.", index, name, value, size);
    return false;
}

template <class T> bool Odometer::check_all(Mr<T> const& selection, int k) const
{
    bool good = true;
    for (int n = 0; n < subscript_[k].count(); ++n)
        good = check(selection, k, subscript_[k][n], false) && good;
    return good;
}

template bool Odometer::check_all(Mr<double> const&, int) const;
template bool Odometer::check_all(Mr<M<double>> const&, int) const;
template bool Odometer::resolve(Mr<double> const&);
template bool Odometer::resolve(Mr<M<double>> const&);
template bool Odometer::inside(M<double> const&) const;
template bool Odometer::inside(M<M<double>> const&) const;
template bool Odometer::check(Mr<double> const&, int, int, bool) const;
template bool Odometer::check(Mr<M<double>> const&, int, int, bool) const;

} // namespace arrlib
