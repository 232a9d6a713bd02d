#include "builtins/permute.h"

#include "builtins/args.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "core/read.h"
#include "core/sparse_rearrange.h"
#include "core/transpose_kernel.h"
#include "ops/engine.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

using namespace arrlib;

namespace {

// Which dimension of the operand, counted from 0, each dimension of the result is.
struct Order {
    int from[max_dims] = {0, 1, 2, 3};

    bool is_identity() const
    {
        return std::is_sorted(from, from + max_dims);
    }
    Order inverse() const
    {
        Order made;
        for (int d = 0; d < max_dims; ++d)
            made.from[from[d]] = d;
        return made;
    }
};

// False when the numbers are no permutation of enough dimensions.
bool read_order(M<double> const& p, int ndims, Order& order)
{
    int const n = p.size();
    if (n < ndims || n > max_dims)
        return false;
    int seen = 0;
    for (int d = 0; d < n; ++d) {
        double const dim = p[d + 1];
        if (!(dim >= 1 && dim <= n) || dim != static_cast<int>(dim))
            return false;
        order.from[d] = static_cast<int>(dim) - 1;
        seen |= 1 << order.from[d];
    }
    return seen == (1 << n) - 1;
}

// --- moving elements -----------------------------------------------------------------------------

// One dimension of the result: its size, and the distance of its neighbours in the operand and in the
// result.
struct Axis {
    std::ptrdiff_t size, from_step, to_step;
};

// The dimensions of a result in its order, those of size 1 left out and those that lie one behind the
// other in both values taken together.
struct Axes {
    int count = 0;
    Axis axis[max_dims];

    Axes(int const* from_size, Order const& order)
    {
        std::ptrdiff_t from_step[max_dims], step = 1;
        for (int d = 0; d < max_dims; step *= from_size[d++])
            from_step[d] = step;
        step = 1;
        for (int d = 0; d < max_dims; ++d) {
            Axis const next{from_size[order.from[d]], from_step[order.from[d]], step};
            step *= next.size;
            if (next.size == 1)
                continue;
            if (count > 0 && next.from_step == axis[count - 1].from_step * axis[count - 1].size)
                axis[count - 1].size *= next.size;
            else
                axis[count++] = next;
        }
    }
    // Where the given number of a combination along the axes other than `a` and `b` begins.
    void start(std::ptrdiff_t number, int a, int b, std::ptrdiff_t& from, std::ptrdiff_t& to) const
    {
        from = to = 0;
        for (int d = 0; d < count; ++d) {
            if (d == a || d == b)
                continue;
            std::ptrdiff_t const at = number % axis[d].size;
            number /= axis[d].size;
            from += at * axis[d].from_step;
            to += at * axis[d].to_step;
        }
    }
    std::ptrdiff_t combinations(int a, int b) const
    {
        std::ptrdiff_t product = 1;
        for (int d = 0; d < count; ++d)
            product *= d == a || d == b ? 1 : axis[d].size;
        return product;
    }
    // The axis whose neighbours lie side by side in the operand.
    int contiguous() const
    {
        int d = 0;
        while (axis[d].from_step != 1)
            ++d;
        return d;
    }
};

// Runs that lie side by side in both values.
template <class T> void move_runs(Axes const& axes, T const* from, T* to)
{
    std::ptrdiff_t const run = axes.axis[0].size, count = axes.combinations(0, 0);
    parallel_for(count, least_share<T>(count, run), [=, &axes](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (; k < end; ++k) {
            std::ptrdiff_t from_start, to_start;
            axes.start(k, 0, 0, from_start, to_start);
            copy_elements(to + to_start, from + from_start, static_cast<int>(run));
        }
    });
}

// Pages whose rows lie side by side in the operand and whose columns do in the result. A few rows of
// one page after the other, so that what a piece of work writes lies together.
template <class T> void move_pages(Axes const& axes, T const* from, T* to)
{
    int const row_axis = axes.contiguous();
    Axis const &rows = axes.axis[row_axis], &cols = axes.axis[0];
    std::ptrdiff_t const strip = 64, strips = (rows.size + strip - 1) / strip, count = axes.combinations(0, row_axis) * strips;
    parallel_for(count, least_share<T>(count, cols.size * std::min(strip, rows.size)), [=, &axes](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (; k < end; ++k) {
            std::ptrdiff_t const first = k % strips * strip;
            std::ptrdiff_t from_start, to_start;
            axes.start(k / strips, 0, row_axis, from_start, to_start);
            transpose_copy(Columns<T const>{from + from_start + first, cols.from_step}, Columns<T>{to + to_start + first * rows.to_step, rows.to_step},
                           static_cast<int>(std::min(strip, rows.size - first)), static_cast<int>(cols.size));
        }
    });
}

template <class T> void move_elements(Axes const& axes, T const* from, T* to)
{
    if (axes.count == 0)
        *to = *from;
    else if (axes.axis[0].from_step == 1)
        move_runs(axes, from, to);
    else
        move_pages(axes, from, to);
}

// --- permute -------------------------------------------------------------------------------------

// The same elements in the same places of storage.
template <class T> M<T> with_dims(M<T> const& A, Dims const& shape)
{
    M<T> result = share(A);
    Access<T>::set_dims(result, shape);
    return result;
}

template <class T> M<T> finished(M<T> made, M<T> const& operand)
{
    if (!made.addr())
        return x_M_of<T>();
    Access<T>::copy_kind(made, operand);
    return made;
}

template <class T> M<T> permuted(M<T> const& A, Order const& order)
{
    if (order.is_identity() || A.size() == 0)
        return share(A);
    int sizes[max_dims];
    for (int d = 0; d < max_dims; ++d)
        sizes[d] = A.getdims()[order.from[d]];
    Dims const shape(max_dims, sizes);
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse()) {
            if (shape.ndims == 2 && order.from[0] == 1 && order.from[1] == 0)
                return finished(sparse_transposed(A), A);
            M<double> const full = full_copy(A);
            return has_storage(full) ? permuted(full, order) : x_M;
        }
    Axes const axes(A.getdims(), order);
    if (axes.count <= 1)
        return with_dims(A, shape);
    M<T> made = Access<T>::full(A.isc(), shape);
    if (made.addr()) {
        move_elements(axes, static_cast<T const*>(A.addr()), made.addr());
        if (made.isc())
            move_elements(axes, static_cast<T const*>(A.addi()), made.addi());
    }
    return finished(std::move(made), A);
}

enum class Direction { forward, back };

template <class T> M<T> permuted(char const* builtin, M<T> const& A, M<double> const& p, Direction direction)
{
    Order order;
    if (!read_order(p, A.getndims(), order)) {
        Arguments(builtin).report("order must be a permutation of the dimensions");
        return x_M_of<T>();
    }
    return permuted(A, direction == Direction::forward ? order : order.inverse());
}

// --- shiftdim, squeeze ---------------------------------------------------------------------------

template <class T> M<T> turned_left(M<T> const& A, int n)
{
    int const ndims = A.getndims();
    Order order;
    for (int d = 0; d < ndims; ++d)
        order.from[d] = static_cast<int>((d + static_cast<std::int64_t>(n)) % ndims);
    return permuted(A, order);
}

// A sparse value becomes full where its result has more than two dimensions.
template <class T> M<T> with_leading_ones(M<T> const& A, int n)
{
    int sizes[max_dims] = {1, 1, 1, 1};
    if (A.size() == 0)
        return share(A);
    // What ends in dimensions of size 1 has fewer to shift.
    int used = A.getndims();
    while (used > 0 && A.getdims()[used - 1] == 1)
        --used;
    if (n > max_dims - used) {
        Arguments("shiftdim").report("too many dimensions");
        return x_M_of<T>();
    }
    std::copy_n(A.getdims(), used, sizes + n);
    Dims const shape(max_dims, sizes);
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse() && shape.ndims > 2) {
            M<double> const full = full_copy(A);
            return has_storage(full) ? with_dims(full, shape) : x_M;
        }
    return with_dims(A, shape);
}

template <class T> int leading_ones(M<T> const& A)
{
    return A.size() <= 1 ? 0 : A.nsingleton() - 1;
}

template <class T> M<T> without_leading_ones(M<T> const& A, int count)
{
    int sizes[max_dims] = {1, 1, 1, 1};
    std::copy(A.getdims() + count, A.getdims() + max_dims, sizes);
    return count == 0 ? share(A) : with_dims(A, Dims(max_dims, sizes));
}

template <class T> M<T> shifted(M<T> const& A, M<double> const& n)
{
    if (!given(n))
        return without_leading_ones(A, leading_ones(A));
    int const shifts = integer_argument(n);
    return shifts >= 0 ? turned_left(A, shifts) : with_leading_ones(A, shifts < -max_dims ? max_dims + 1 : -shifts);
}

template <class T> M<T> give_shifted(M<T> const& A, M<double> const& n, Mr<T>& B)
{
    M<T> const made = shifted(A, n);
    B = made;
    return made;
}

template <class T> M<T> give_shifted(M<T> const& A, M<double> const& n, Mr<T>& B, Mr<double>& shifts)
{
    double const count = given(n) ? integer_argument(n) : leading_ones(A);
    M<T> const made = shifted(A, n);
    bool const reported = made.size() == 0 && A.size() > 0;
    B = made;
    shifts = reported ? x_M : M<double>(count);
    return made;
}

template <class T> M<T> squeezed(M<T> const& A)
{
    if (A.getndims() == 2)
        return share(A);
    int sizes[max_dims] = {1, 1, 1, 1};
    std::copy_if(A.getdims(), A.getdims() + max_dims, sizes, [](int size) { return size > 1; });
    return with_dims(A, Dims(max_dims, sizes));
}

// --- circshift -----------------------------------------------------------------------------------

// How far an element at 0 moves within `size`.
int places(int n, int size)
{
    int const rest = n % size;
    return rest < 0 ? rest + size : rest;
}

// Along one dimension, counted from 0: pieces of `block` elements move in groups of `size` pieces.
template <class T> void rotate_blocks(T const* from, T* to, std::ptrdiff_t group, std::ptrdiff_t moved, std::ptrdiff_t groups)
{
    parallel_for(groups, least_share<T>(groups, group), [=](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (; k < end; ++k) {
            T const* const source = from + k * group;
            T* const target = to + k * group;
            copy_elements(target, source + group - moved, static_cast<int>(moved));
            copy_elements(target + moved, source, static_cast<int>(group - moved));
        }
    });
}

M<double> rotated_entries(M<double> const& A, int dim, int n)
{
    int const rows = A.rows(), cols = A.cols(), count = A.getnnz();
    M<double> made = sparse_with_room(A.isc(), shape_of(A), count);
    HeapArray<EntryKey> keys(static_cast<std::size_t>(count));
    if (!has_storage(made) || !keys)
        return Access<double>::without_storage();
    PositionSplit split(A);
    for (int k = 0; k < count; ++k) {
        split.at(Access<double>::index(A)[k]);
        int const row = dim == 0 ? static_cast<int>((static_cast<std::int64_t>(split.row()) + n) % rows) : split.row();
        int const column = dim == 1 ? static_cast<int>((static_cast<std::int64_t>(split.column()) + n) % cols) : split.column();
        keys.data()[k] = entry_key(column * rows + row, k);
    }
    if (!sort_keys(keys))
        return Access<double>::without_storage();
    EntryWriter writer(made);
    for (EntryKey const key : keys)
        writer.add(key_position(key), A.addr()[key_entry(key)], A.isc() ? A.addi()[key_entry(key)] : 0);
    made.getnnz() = writer.count();
    return made;
}

template <class T> M<T> rotated(M<T> const& A, int dim, int n)
{
    int const* const size = A.getdims();
    int const moved = A.size() > 0 ? places(n, size[dim]) : 0;
    if (moved == 0)
        return share(A);
    if constexpr (std::is_same_v<T, double>)
        if (A.issparse())
            return finished(rotated_entries(A, dim, moved), A);
    M<T> made = Access<T>::full(A.isc(), shape_of(A));
    if (made.addr()) {
        std::ptrdiff_t block = 1;
        for (int d = 0; d < dim; ++d)
            block *= size[d];
        std::ptrdiff_t const group = block * size[dim], groups = A.size() / group;
        rotate_blocks(static_cast<T const*>(A.addr()), made.addr(), group, block * moved, groups);
        if (made.isc())
            rotate_blocks(static_cast<T const*>(A.addi()), made.addi(), group, block * moved, groups);
    }
    return finished(std::move(made), A);
}

template <class T> M<T> rotated_along_all(M<T> const& A, M<double> const& n)
{
    if (n.size() > max_dims) {
        Arguments("circshift").report("too many dimensions");
        return x_M_of<T>();
    }
    M<T> made = share(A);
    for (int d = 0; d < n.size(); ++d)
        made = rotated(made, d, integer_argument(n[d + 1]));
    return made;
}

M<double> rotated_along(M<double> const& A, M<double> const& n, M<double> const& dim)
{
    if (!given(dim))
        return rotated_along_all(A, n);
    int const along = check_dim_arg("circshift", A, dim);
    return along >= 0 && along < A.getndims() ? rotated(A, along, integer_argument(n)) : x_M;
}

} // namespace

M<double> permute(M<double> const& A, M<double> const& p)
{
    return permuted("permute", A, p, Direction::forward);
}
M<M<double>> permute(M<M<double>> const& A, M<double> const& p)
{
    return permuted("permute", A, p, Direction::forward);
}
M<double> ipermute(M<double> const& A, M<double> const& p)
{
    return permuted("ipermute", A, p, Direction::back);
}
M<M<double>> ipermute(M<M<double>> const& A, M<double> const& p)
{
    return permuted("ipermute", A, p, Direction::back);
}

M<double> shiftdim(M<double> const& A)
{
    return shifted(A, nop_M);
}
M<double> shiftdim(M<double> const& A, M<double> const& n)
{
    return shifted(A, n);
}
M<double> shiftdim(M<double> const& A, i_o_t, Mr<double> B)
{
    return give_shifted(A, nop_M, B);
}
M<double> shiftdim(M<double> const& A, M<double> const& n, i_o_t, Mr<double> B)
{
    return give_shifted(A, n, B);
}
M<double> shiftdim(M<double> const& A, i_o_t, Mr<double> B, Mr<double> shifts)
{
    return give_shifted(A, nop_M, B, shifts);
}
M<double> shiftdim(M<double> const& A, M<double> const& n, i_o_t, Mr<double> B, Mr<double> shifts)
{
    return give_shifted(A, n, B, shifts);
}
M<M<double>> shiftdim(M<M<double>> const& A)
{
    return shifted(A, nop_M);
}
M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n)
{
    return shifted(A, n);
}
M<M<double>> shiftdim(M<M<double>> const& A, i_o_t, Mr<M<double>> B)
{
    return give_shifted(A, nop_M, B);
}
M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n, i_o_t, Mr<M<double>> B)
{
    return give_shifted(A, n, B);
}
M<M<double>> shiftdim(M<M<double>> const& A, i_o_t, Mr<M<double>> B, Mr<double> shifts)
{
    return give_shifted(A, nop_M, B, shifts);
}
M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n, i_o_t, Mr<M<double>> B, Mr<double> shifts)
{
    return give_shifted(A, n, B, shifts);
}

M<double> squeeze(M<double> const& A)
{
    return squeezed(A);
}
M<M<double>> squeeze(M<M<double>> const& A)
{
    return squeezed(A);
}

M<double> circshift(M<double> const& A, M<double> const& n)
{
    return rotated_along_all(A, n);
}
M<double> circshift(M<double> const& A, M<double> const& n, M<double> const& dim)
{
    return rotated_along(A, n, dim);
}
M<M<double>> circshift(M<M<double>> const& A, M<double> const& n)
{
    return rotated_along_all(A, n);
}
