// The transposing copy.
#ifndef ARRLIB_CORE_TRANSPOSE_KERNEL_H
#define ARRLIB_CORE_TRANSPOSE_KERNEL_H

#include "runtime/workers.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace arrlib {

// Columns `stride` elements apart; a negative stride runs through the columns from the last one.
template <class T> struct Columns {
    T* first;
    std::ptrdiff_t stride;

    T* at(std::ptrdiff_t row, std::ptrdiff_t col) const { return first + col * stride + row; }
};

template <class T> void transpose_plainly(Columns<T const> from, Columns<T> to, int row_begin, int row_end, int col_begin, int col_end)
{
    for (int row = row_begin; row < row_end; ++row)
        for (int col = col_begin; col < col_end; ++col)
            *to.at(col, row) = *from.at(row, col);
}

// One tile of doubles; every cache line of it is read and written whole. The lines of the tile below
// are asked for ahead: the hardware sees no pattern in the jumps from column to column.
template <int tile_rows, int tile_cols>
inline void transpose_tile(double const* from, std::ptrdiff_t from_stride, double* to, std::ptrdiff_t to_stride)
{
    using Pair = double __attribute__((vector_size(16)));
    for (std::ptrdiff_t col = 0; col < tile_cols; ++col)
        __builtin_prefetch(from + col * from_stride + tile_rows);
    for (std::ptrdiff_t row = 0; row < tile_rows; row += 2)
        for (std::ptrdiff_t col = 0; col < tile_cols; col += 2) {
            Pair left, right;
            std::memcpy(&left, from + col * from_stride + row, sizeof left);
            std::memcpy(&right, from + (col + 1) * from_stride + row, sizeof right);
            Pair const upper = __builtin_shufflevector(left, right, 0, 2), lower = __builtin_shufflevector(left, right, 1, 3);
            std::memcpy(to + row * to_stride + col, &upper, sizeof upper);
            std::memcpy(to + (row + 1) * to_stride + col, &lower, sizeof lower);
        }
}

// Element (row, col) of one becomes element (col, row) of the other.
template <class T> void transpose_copy(Columns<T const> from, Columns<T> to, int rows, int cols)
{
    int whole_rows = 0, whole_cols = 0;
    if constexpr (std::is_same_v<T, double>) {
        constexpr int tile_rows = 8, tile_cols = 16, least_elements = 1 << 16;
        whole_rows = rows - rows % tile_rows;
        whole_cols = cols - cols % tile_cols;
        // A thread runs down whole columns: those are what the hardware fetches ahead.
        parallel_for(whole_cols / tile_cols, least_elements / (tile_cols * (whole_rows + 1)) + 1, [=](std::ptrdiff_t tile, std::ptrdiff_t end) {
            for (std::ptrdiff_t col = tile * tile_cols; col < end * tile_cols; col += tile_cols)
                for (int row = 0; row < whole_rows; row += tile_rows)
                    transpose_tile<tile_rows, tile_cols>(from.at(row, col), from.stride, to.at(col, row), to.stride);
        });
    }
    transpose_plainly(from, to, whole_rows, rows, 0, whole_cols);
    transpose_plainly(from, to, 0, rows, whole_cols, cols);
}

} // namespace arrlib

#endif
