// Arithmetic on sizes that never wraps.
#ifndef ARRLIB_CORE_DIMS_H
#define ARRLIB_CORE_DIMS_H

#include <climits>
#include <cstdint>

namespace arrlib {

inline constexpr int max_dims = 4;

// Counts stay a little below the largest int, so that a count and its spare elements fit one too,
// and a subscript clamped to the largest int is a size that nothing has.
inline constexpr int most_elements = INT_MAX - 6;

// Product of the sizes; 0 when one of them is below 1, -1 when there are too many elements.
inline int element_count(int ndims, int const* dims)
{
    std::int64_t count = 1;
    for (int d = 0; d < ndims; ++d)
        if (dims[d] < 1)
            return 0;
    for (int d = 0; d < ndims; ++d) {
        count *= dims[d];
        if (count > most_elements)
            return -1;
    }
    return static_cast<int>(count);
}

// Four sizes in normal form: trailing ones dropped while more than two dims are in use, everything
// 0 when there are no elements.
struct Dims {
    int ndims = 2;
    int size[max_dims] = {0, 0, 0, 0};
    int count = 0; // -1: does not fit

    Dims() = default;
    Dims(int rows, int cols) : Dims(2, rows, cols) {}
    Dims(int n, int const* sizes)
    {
        while (n > 2 && sizes[n - 1] == 1)
            --n;
        count = n > max_dims ? -1 : element_count(n, sizes);
        if (count == 0)
            return;
        ndims = n < 2 ? 2 : n;
        for (int d = 0; d < max_dims; ++d)
            size[d] = d < n ? sizes[d] : 1;
    }

private:
    Dims(int n, int rows, int cols)
    {
        // As long as the longest list: g++ cannot see that the last two are not read.
        int const sizes[max_dims] = {rows, cols, 1, 1};
        *this = Dims(n, sizes);
    }
};

} // namespace arrlib

#endif
