// How the work along a dimension is shared out among threads.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_SPLIT_H
#define ARRLIB_OPS_KERNELS_DIMENSION_SPLIT_H

#include "ops/kernels/kernel.h"
#include "runtime/workers.h"

#include <algorithm>

namespace arrlib {

// Less work than this many elements is not worth a thread.
inline constexpr std::ptrdiff_t elements_per_thread = 1 << 16;

// How many units of so many elements each make it worth a thread.
inline std::ptrdiff_t units_per_thread(std::ptrdiff_t elements)
{
    return (elements_per_thread - 1) / std::max<std::ptrdiff_t>(elements, 1) + 1;
}

// Neighbouring columns: vectors `first` to first + width of those with the same o.
struct Columns {
    std::ptrdiff_t outer, first, width;
};

// Calls body(Columns) for all columns, at most `most` at a time.
template <class Body> void for_columns(Axis const& axis, std::ptrdiff_t most, Body body)
{
    // Rows in pieces of some cache lines, as far as the stride allows it.
    constexpr std::ptrdiff_t line = 8;
    std::ptrdiff_t const least = std::max((units_per_thread(axis.length) + line - 1) / line * line, 16 * line);
    parallel_for(axis.outer * axis.stride, least, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        while (from < to) {
            std::ptrdiff_t const outer = from / axis.stride, first = from % axis.stride;
            std::ptrdiff_t const width = std::min({most, axis.stride - first, to - from});
            body(Columns{outer, first, width});
            from += width;
        }
    });
}

// Calls body(o, from, to) for runs that make up [0, count) for every o < outer.
template <class Body> void for_runs(std::ptrdiff_t outer, std::ptrdiff_t count, Body body)
{
    parallel_for(outer * count, elements_per_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        while (from < to) {
            std::ptrdiff_t const o = from / count, at = from % count;
            std::ptrdiff_t const end = std::min(count, at + (to - from));
            body(o, at, end);
            from += end - at;
        }
    });
}

} // namespace arrlib

#endif
