// What the builders of sparse values share.
#ifndef ARRLIB_CORE_SPARSE_BUILD_H
#define ARRLIB_CORE_SPARSE_BUILD_H

#include "core/access.h"
#include "core/heap_array.h"

#include <algorithm>
#include <cstdint>

namespace arrlib {

// Position above, number of the entry below: keys are all different, and their order is that of the
// positions and, within one position, of the entries.
using EntryKey = std::uint64_t;

inline EntryKey entry_key(int position, int entry)
{
    return static_cast<EntryKey>(static_cast<std::uint32_t>(position)) << 32 | static_cast<std::uint32_t>(entry);
}
inline int key_position(EntryKey key)
{
    return static_cast<int>(static_cast<std::uint32_t>(key >> 32));
}
inline int key_entry(EntryKey key)
{
    return static_cast<int>(static_cast<std::uint32_t>(key));
}

// Orders keys, whose entries must rise already. Linear in their number. False after a report.
bool sort_keys(HeapArray<EntryKey>& keys);

// Row and column of linear positions; a division is paid only when the column changes.
class PositionSplit {
public:
    explicit PositionSplit(int rows) : rows_(rows > 0 ? rows : 1) {}
    explicit PositionSplit(M<double> const& matrix) : PositionSplit(matrix.rows()) {}

    void at(int position)
    {
        row_ = static_cast<int>(static_cast<unsigned>(position) - static_cast<unsigned>(start_));
        if (static_cast<unsigned>(row_) >= static_cast<unsigned>(rows_)) {
            column_ = position / rows_;
            row_ = position % rows_;
            start_ = position - row_;
        }
    }
    int row() const { return row_; }
    int column() const { return column_; }

private:
    int rows_;
    int start_ = 0;
    int row_ = 0;
    int column_ = 0;
};

// Number of the first entry whose position is not below the one given; the positions rise. Faster
// than binary search where they spread evenly.
int first_entry_from(int const* index, int count, int position);
// The value of the entry at that position, or the zero given. Whether there is one is not branched on:
// it cannot be foreseen, and a wrong guess would come to light only when all has been fetched.
inline double const* entry_or_zero(int const* index, int count, int position, double const* values, double const* zero)
{
    if (ARRLIB_UNLIKELY(!index || count < 1))
        return zero;
    int const near = std::min(first_entry_from(index, count, position), count - 1);
    double const* const choice[2] = {zero, values + near};
    return choice[index[near] == position];
}

// Writes entries to the front of a value's storage, in the order given: zeros are dropped, an entry
// at the place of the one before is added to it.
class EntryWriter {
public:
    explicit EntryWriter(M<double>& target) : index_(Access<double>::index(target)), re_(target.addr()), im_(target.addi()) {}

    void add(int position, double re, double im)
    {
        if (re == 0 && im == 0)
            return;
        if (position == last_ && count_ > 0) {
            re_[count_ - 1] += re;
            if (im_)
                im_[count_ - 1] += im;
            return;
        }
        index_[count_] = last_ = position;
        re_[count_] = re;
        if (im_)
            im_[count_] = im;
        ++count_;
    }
    // Adds `count` entries, their positions raised by `offset`; no imaginary parts if `im` is null.
    void add_run(int const* index, double const* re, double const* im, int count, int offset);
    int count() const { return count_; }

private:
    int* index_;
    double* re_;
    double* im_;
    int count_ = 0;
    int last_ = -1;
};

// False when the storage could not be had; that has been reported.
inline bool has_storage(M<double> const& matrix)
{
    return Access<double>::elements(matrix) != nullptr;
}

// A sparse value with no entries and room for some; without storage after a report, such as
// "sparse: matrix is too large" for a shape that does not fit.
M<double> sparse_with_room(bool complex, Dims const& shape, int room);

// Number of stored elements that are not zero.
int count_nonzeros(M<double> const& matrix);
// The non-zeros of any value; without storage after a report.
M<double> sparse_copy(M<double> const& matrix);
// A real value with entries where another has non-zeros, their values not initialised; without
// storage after a report.
M<double> pattern_of(M<double> const& matrix);
// All elements of any value; without storage after a report.
M<double> full_copy(M<double> const& matrix);

// A list of numbers, or one number that stands for all of them.
struct Spread {
    double const* values = nullptr;
    int step = 1;

    double operator[](int k) const { return values[static_cast<std::ptrdiff_t>(k) * step]; }
};

// 1-based rows and columns of values; `im` may be absent.
struct Triplets {
    int count = 0;
    Spread row, col, re, im;
};

// Sums the entries up into a value of the given shape; the empty result after a report.
M<double> sparse_from_triplets(Triplets const& triplets, Dims const& shape, int nzmax);
// The same with the largest row and column for a size.
M<double> sparse_from_triplets(Triplets const& triplets);

// Truncates a size. False after "sparse: matrix is too large".
bool sparse_size(double value, int& size);
// The shape that two scalars ask for. False after a report.
bool sparse_shape(M<double> const& rows, M<double> const& cols, Dims& shape);

} // namespace arrlib

#endif
