// Copying blocks of elements, sharing work on them, and joining values, for the library's own code.
#ifndef ARRLIB_CORE_BLOCKS_H
#define ARRLIB_CORE_BLOCKS_H

#include "core/matrix.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace arrlib {

inline constexpr char sizes_not_compatible[] = "cat: arguments do not have compatible dimensions";

template <class T> void copy_elements(T* to, T const* from, int count)
{
    if (count == 1)
        *to = *from;
    else
        Storage<T>::copy(to, from, count);
}

// Copies the first `taken` of every `rows` elements to places `stride` apart.
template <class T> void copy_columns(T* to, std::ptrdiff_t stride, T const* from, int rows, int taken, int cols)
{
    if (taken == rows && (rows == stride || cols == 1))
        copy_elements(to, from, rows * cols);
    else if (taken == 1)
        for (std::ptrdiff_t j = 0; j < cols; ++j)
            to[j * stride] = from[j * rows];
    else
        for (std::ptrdiff_t j = 0; j < cols; ++j)
            Storage<T>::copy(to + j * stride, from + j * rows, taken);
}

// How many of `count` pieces of work, each on so many elements, a thread must get: with less to do,
// sharing costs more than it saves. Cells count their references, which one thread does.
template <class T> std::ptrdiff_t least_share(std::ptrdiff_t count, std::ptrdiff_t elements_each)
{
    constexpr std::ptrdiff_t elements_worth_a_thread = 1 << 15;
    return std::is_same_v<T, double> ? std::max<std::ptrdiff_t>(elements_worth_a_thread / std::max<std::ptrdiff_t>(elements_each, 1), 1) : count;
}

// Joins along rows (dimension 0) or columns (1) as vertcat and horzcat do. False after a report.
template <class T> bool join(int dim, M<T> const& a, M<T> const& b, M<T>& joined);

} // namespace arrlib

#endif
