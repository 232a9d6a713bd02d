// The elements that a list of subscripts selects, and their enumeration, first subscript fastest.
#ifndef ARRLIB_CORE_ODOMETER_H
#define ARRLIB_CORE_ODOMETER_H

#include "core/dims.h"
#include "core/heap_array.h"
#include "core/matrix.h"

#include <climits>

namespace arrlib {

// One subscript, resolved: a run of consecutive positions, or a list of them. Positions are
// zero-based; a subscript that no matrix can have stands as INT_MAX, or as a negative number.
class Subscript {
public:
    Subscript() = default;
    // `colon_extent` is how far a colon reaches. False when memory for the list could not be had.
    bool resolve(M<double> const& index, int colon_extent);
    void resolve_single(int position);

    int count() const { return count_; }
    bool is_colon() const { return colon_; }
    bool is_logical() const { return logical_; }
    // Consecutive positions starting at first().
    bool is_run() const { return !list_; }
    int first() const { return first_; }
    int const* list() const { return list_.data(); }
    int operator[](int k) const { return list_ ? list_[static_cast<std::size_t>(k)] : first_ + k; }
    // Smallest and largest position; 0 and -1 without any.
    int smallest() const { return smallest_; }
    int largest() const { return largest_; }
    // A numeric subscript held a value below 1 (0.5 still selects position 0).
    bool has_value_below_one() const { return below_one_; }
    // Rising strictly.
    bool is_rising() const { return rising_; }

private:
    bool list_nonzeros(M<double> const& index);
    bool list_values(M<double> const& index);
    void note(int position);

    HeapArray<int> list_;
    int count_ = 0;
    int first_ = 0;
    int smallest_ = 0;
    int largest_ = -1;
    bool colon_ = false;
    bool logical_ = false;
    bool below_one_ = false;
    bool rising_ = true;
};

// True for the whole-dimension marker.
bool is_colon(M<double> const& index);
// The number in front of position 0 that a subscript value stands for: truncated, NaN as INT_MIN,
// and what is too large as INT_MAX.
inline int zero_based(double value)
{
    double const from_zero = value - 1;
    if (from_zero > INT_MIN && from_zero < INT_MAX)
        return static_cast<int>(from_zero);
    return from_zero >= INT_MAX ? INT_MAX : INT_MIN;
}

// Walks a selection of up to four subscripts over a matrix of the given sizes.
class Odometer {
public:
    // Resolves every index against the target. False after a report: memory, or a sparse numeric
    // index with missing elements ("Sparse index %s out of matrix %s. Index value was 0.").
    template <class T> bool resolve(Mr<T> const& selection);

    int positions() const { return positions_; }
    Subscript const& subscript(int k) const { return subscript_[k]; }
    Subscript& subscript(int k) { return subscript_[k]; }
    // Number of selected elements; -1 when it does not fit an int.
    int count() const { return count_; }
    void recount();
    // Sizes of the selection.
    Dims selected() const;

    // Calls `visit(step, position)` for each selected element, in order. The positions must fit the
    // sizes.
    template <class Visit> void walk(int const* sizes, Visit&& visit) const;

    // Reading: true when every subscript lies within the target.
    template <class T> bool inside(M<T> const& target) const;
    // Calls `visit(step, position)` like walk, reporting every subscript outside the target where it
    // is met, last subscript first, and going on with 0 in its place. `growing`: only what no
    // growth can mend is reported. False when one was.
    template <class T, class Visit> bool walk_reporting(Mr<T> const& selection, int const* sizes, bool growing, Visit&& visit) const;
    // Reports every value of one subscript that lies outside the target; true when there is none.
    template <class T> bool check_all(Mr<T> const& selection, int k) const;

private:
    template <class T> bool check(Mr<T> const& selection, int k, int position, bool growing) const;

    int positions_ = 0;
    int count_ = 0;
    Subscript subscript_[max_dims];
};

template <class Visit> void Odometer::walk(int const* sizes, Visit&& visit) const
{
    if (count_ < 1)
        return;
    int at[max_dims] = {};
    int const inner = subscript_[0].count();
    int step = 0;
    for (;;) {
        // Horner's rule over the outer subscripts gives the start of a run along the first.
        int base = 0;
        for (int k = positions_ - 1; k > 0; --k)
            base = (base + subscript_[k][at[k]]) * sizes[k - 1];
        if (subscript_[0].is_run())
            for (int n = 0; n < inner; ++n)
                visit(step++, base + subscript_[0].first() + n);
        else
            for (int n = 0; n < inner; ++n)
                visit(step++, base + subscript_[0].list()[n]);
        int k = 1;
        while (k < positions_ && ++at[k] == subscript_[k].count())
            at[k++] = 0;
        if (k >= positions_)
            return;
    }
}

template <class T, class Visit> bool Odometer::walk_reporting(Mr<T> const& selection, int const* sizes, bool growing, Visit&& visit) const
{
    bool good = true;
    int at[max_dims] = {};
    for (int step = 0; step < count_; ++step) {
        int position = 0;
        for (int k = positions_ - 1; k >= 0; --k) {
            int subscript = subscript_[k][at[k]];
            if (!check(selection, k, subscript, growing)) {
                good = false;
                subscript = 0;
            }
            // Where an element will lie when the target has grown is not known yet.
            position = growing ? 0 : position * sizes[k] + subscript;
        }
        visit(step, position);
        for (int k = 0; k < positions_ && ++at[k] == subscript_[k].count(); ++k)
            at[k] = 0;
    }
    return good;
}

} // namespace arrlib

#endif
