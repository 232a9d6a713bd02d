#include "core/reshape.h"

#include "core/access.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "core/read.h"
#include "core/sparse_build.h"
#include "core/sparse_rearrange.h"
#include "core/transpose_kernel.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <type_traits>

using namespace arrlib;

namespace {

// A result of its own with the kind of its operand; empty when it could not be had.
template <class T> M<T> finished(M<T> made, M<T> const& operand)
{
    if (!made.addr())
        return x_M_of<T>();
    Access<T>::copy_kind(made, operand);
    return made;
}

// Builds a full value part by part: `rearrange` fills one part from the same part of the operand.
template <class T, class Rearrange> M<T> rearranged(M<T> const& A, Dims const& shape, Rearrange rearrange)
{
    M<T> made = Access<T>::full(A.isc(), shape);
    if (made.addr() && shape.count > 0) {
        rearrange(A.addr(), made.addr());
        if (A.isc())
            rearrange(A.addi(), made.addi());
    }
    return finished(std::move(made), A);
}

template <class T> Dims shape_of(M<T> const& A)
{
    return Dims(A.getndims(), A.getdims());
}

// --- reshape -------------------------------------------------------------------------------------

template <class T> M<T> reshaped(M<T> const& A, SizeList const& sizes)
{
    Dims const shape(max_dims, sizes.size);
    if (!sizes.fits() || (A.issparse() && shape.ndims > 2)) {
        error("reshape: too many dimensions");
        return x_M_of<T>();
    }
    M<T> result = share(A);
    result.reshape(max_dims, sizes.size);
    return shape.count == A.size() ? result : x_M_of<T>();
}

template <class... Size> SizeList size_list(Size const&... size)
{
    SizeList list;
    ((list.size[list.count++] = integer_argument(size)), ...);
    return list;
}

// --- transposes ----------------------------------------------------------------------------------

void negate_imaginary(M<double>& matrix)
{
    double* const im = matrix.addi();
    for (int k = 0, n = im ? matrix.getnnz() : 0; k < n; ++k)
        im[k] = -im[k];
}

// A vector keeps the order of its elements.
template <class T> M<T> transposed_vector(M<T> const& A)
{
    M<T> result = share(A);
    result.reshape(A.cols(), A.rows());
    return result;
}

template <class T> M<T> transposed(M<T> const& A)
{
    if (A.rows() <= 1 || A.cols() <= 1)
        return transposed_vector(A);
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse())
            return finished(sparse_transposed(A), A);
    int const rows = A.rows(), cols = A.cols();
    return rearranged(A, Dims(cols, rows), [=](T const* from, T* to) {
        transpose_copy(Columns<T const>{from, rows}, Columns<T>{to, cols}, rows, cols);
    });
}

template <class T> M<T> transposed_if_flat(M<T> const& A, bool conjugate)
{
    if (A.getndims() > 2) {
        error("transpose: matrix %s has more than two dimensions", OperandName(A));
        return x_M_of<T>();
    }
    M<T> result = transposed(A);
    if constexpr (std::is_same_v<T, double>)
        if (conjugate && result.isc()) {
            result.unshare();
            if (result.dirty())
                return x_M;
            negate_imaginary(result);
        }
    return result;
}

// --- flips and turns -----------------------------------------------------------------------------

// Reverses the order of `count` blocks of `block` elements.
template <class T> void reverse_blocks(T const* from, T* to, int block, int count)
{
    if (block == 1)
        std::reverse_copy(from, from + count, to);
    else
        for (std::ptrdiff_t k = 0; k < count; ++k)
            Storage<T>::copy(to + k * block, from + (count - 1 - k) * block, block);
}

template <class T> M<T> flipped(M<T> const& A, int dim)
{
    int const* const size = A.getdims();
    if (size[dim] <= 1)
        return share(A);
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse())
            return finished(sparse_flipped(A, dim), A);
    int block = 1;
    for (int d = 0; d < dim; ++d)
        block *= size[d];
    std::ptrdiff_t const group = static_cast<std::ptrdiff_t>(block) * size[dim], count = A.size();
    return rearranged(A, shape_of(A), [=](T const* from, T* to) {
        for (std::ptrdiff_t at = 0; at < count; at += group)
            reverse_blocks(from + at, to + at, block, size[dim]);
    });
}

template <class T> M<T> flipped_along(M<T> const& A, M<double> const& dim_argument)
{
    int const dim = integer_argument(dim_argument) - 1;
    if (dim >= 0 && dim < max_dims)
        return flipped(A, dim);
    error("flipdim: no such dimension");
    return x_M_of<T>();
}

// Pages transposed with the columns taken from the last one, or put from the last one.
template <class T> M<T> quarter_turned(M<T> const& A, bool clockwise)
{
    int const rows = A.rows(), cols = A.cols(), count = A.size();
    int const sizes[] = {cols, rows, A.getdims()[2], A.getdims()[3]};
    std::ptrdiff_t const page = static_cast<std::ptrdiff_t>(rows) * cols;
    return rearranged(A, Dims(max_dims, sizes), [=](T const* from, T* to) {
        for (std::ptrdiff_t at = 0; at < count; at += page)
            if (clockwise)
                transpose_copy(Columns<T const>{from + at, rows}, Columns<T>{to + at + page - cols, -cols}, rows, cols);
            else
                transpose_copy(Columns<T const>{from + at + page - rows, -rows}, Columns<T>{to + at, cols}, rows, cols);
    });
}

template <class T> M<T> turned(M<T> const& A, int quarters)
{
    quarters &= 3;
    if (A.size() < 1 || quarters == 0)
        return share(A);
    if (quarters == 2)
        return flipped(flipped(A, 0), 1);
    if (A.issparse())
        return flipped(transposed(A), quarters == 1 ? 0 : 1);
    return quarter_turned(A, quarters == 3);
}

// --- repmat --------------------------------------------------------------------------------------

// Repeats the first `block` elements until there are `total`: doubles what there is as long as that is
// read from the cache.
template <class T> void repeat(T* elements, std::ptrdiff_t block, std::ptrdiff_t total)
{
    constexpr std::ptrdiff_t pattern_enough = 1 << 14;
    std::ptrdiff_t pattern = block;
    for (; pattern < total && pattern < pattern_enough; pattern *= 2)
        copy_elements(elements + pattern, elements, static_cast<int>(std::min(pattern, total - pattern)));
    if (pattern >= total)
        return;
    std::ptrdiff_t const rest = total - pattern;
    parallel_for(rest, least_share<T>(rest, 1), [=](std::ptrdiff_t from, std::ptrdiff_t end) {
        while (from < end) {
            std::ptrdiff_t const within = from % pattern, count = std::min(end - from, pattern - within);
            copy_elements(elements + pattern + from, elements + within, static_cast<int>(count));
            from += count;
        }
    });
}

struct Tiling {
    int const* size; // of the operand
    int const* times;
};

// Fills the dimensions up to `dim` of the result.
template <class T> void tile(Tiling const& tiling, int dim, T const* from, T* to)
{
    std::ptrdiff_t from_step = 1, to_step = 1;
    for (int d = 0; d < dim; ++d) {
        from_step *= tiling.size[d];
        to_step *= static_cast<std::ptrdiff_t>(tiling.size[d]) * tiling.times[d];
    }
    int const count = tiling.size[dim];
    if (dim == 0)
        copy_elements(to, from, count);
    else
        parallel_for(count, least_share<T>(count, to_step), [&](std::ptrdiff_t k, std::ptrdiff_t end) {
            for (; k < end; ++k)
                tile(tiling, dim - 1, from + k * from_step, to + k * to_step);
        });
    repeat(to, count * to_step, count * to_step * tiling.times[dim]);
}

template <class T> M<T> tiled(M<T> const& A, SizeList const& times)
{
    if (!times.fits()) {
        error("repmat: too many dimensions");
        return x_M_of<T>();
    }
    int const* const count = times.size;
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse()) {
            if (count[2] == 1 && count[3] == 1)
                return finished(sparse_tiled(A, count[0], count[1]), A);
            M<T> const full = full_copy(A);
            return full.addr() ? tiled(full, times) : x_M;
        }
    int sizes[max_dims];
    for (int d = 0; d < max_dims; ++d)
        sizes[d] = static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(A.getdims()[d]) * std::max(count[d], 0), INT_MAX));
    return rearranged(A, Dims(max_dims, sizes), [&](T const* from, T* to) {
        int outermost = max_dims - 1;
        while (outermost > 0 && A.getdims()[outermost] == 1 && count[outermost] == 1)
            --outermost;
        tile(Tiling{A.getdims(), count}, outermost, from, to);
    });
}

SizeList tile_counts(M<double> const& m)
{
    return m.size() == 1 ? size_list(m, m) : SizeList(m);
}

} // namespace

M<double> reshape(M<double> const& A, M<double> const& sizes)
{
    return reshaped(A, SizeList(sizes));
}
M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n)
{
    return reshaped(A, size_list(m, n));
}
M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n, M<double> const& p)
{
    return reshaped(A, size_list(m, n, p));
}
M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return reshaped(A, size_list(m, n, p, q));
}
M<M<double>> reshape(M<M<double>> const& A, M<double> const& sizes)
{
    return reshaped(A, SizeList(sizes));
}
M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n)
{
    return reshaped(A, size_list(m, n));
}
M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n, M<double> const& p)
{
    return reshaped(A, size_list(m, n, p));
}
M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return reshaped(A, size_list(m, n, p, q));
}

M<double> transpose(M<double> const& A, int plain)
{
    return transposed_if_flat(A, plain == 0);
}
M<double> transpose(M<double> const& A)
{
    return transpose(A, 1);
}
M<double> dot_transpose(M<double> const& A)
{
    return transpose(A, 1);
}
M<double> ctranspose(M<double> const& A)
{
    return transpose(A, 0);
}
M<M<double>> transpose(M<M<double>> const& A, int plain)
{
    return transposed_if_flat(A, plain == 0);
}
M<M<double>> transpose(M<M<double>> const& A)
{
    return transpose(A, 1);
}
M<M<double>> dot_transpose(M<M<double>> const& A)
{
    return transpose(A, 1);
}
M<M<double>> ctranspose(M<M<double>> const& A)
{
    return transpose(A, 0);
}

M<double> fliplr(M<double> const& A)
{
    return flipped(A, 1);
}
M<double> flipud(M<double> const& A)
{
    return flipped(A, 0);
}
M<double> flipdim(M<double> const& A, M<double> const& dim)
{
    return flipped_along(A, dim);
}
M<M<double>> fliplr(M<M<double>> const& A)
{
    return flipped(A, 1);
}
M<M<double>> flipud(M<M<double>> const& A)
{
    return flipped(A, 0);
}
M<M<double>> flipdim(M<M<double>> const& A, M<double> const& dim)
{
    return flipped_along(A, dim);
}

M<double> rot90(M<double> const& A)
{
    return turned(A, 1);
}
M<double> rot90(M<double> const& A, M<double> const& k)
{
    return turned(A, integer_argument(k));
}
M<M<double>> rot90(M<M<double>> const& A)
{
    return turned(A, 1);
}
M<M<double>> rot90(M<M<double>> const& A, M<double> const& k)
{
    return turned(A, integer_argument(k));
}

M<double> repmat(M<double> const& A, M<double> const& m)
{
    return tiled(A, tile_counts(m));
}
M<double> repmat(M<double> const& A, M<double> const& m, M<double> const& n)
{
    return tiled(A, size_list(m, n));
}
M<M<double>> repmat(M<M<double>> const& A, M<double> const& m)
{
    return tiled(A, tile_counts(m));
}
M<M<double>> repmat(M<M<double>> const& A, M<double> const& m, M<double> const& n)
{
    return tiled(A, size_list(m, n));
}
