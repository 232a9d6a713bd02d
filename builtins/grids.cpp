#include "builtins/grids.h"

#include "builtins/args.h"
#include "core/blocks.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>

using namespace arrlib;

namespace {

// Every number `block` times in turn, the whole list over and over. Runs of the list's own numbers are
// copied, those of one number are filled.
void spread(double const* values, int count, std::ptrdiff_t block, double* to, std::ptrdiff_t total)
{
    std::ptrdiff_t const run = block == 1 ? count : block;
    parallel_for(total / run, least_share<double>(total / run, run), [=](std::ptrdiff_t from, std::ptrdiff_t end) {
        for (; from < end; ++from)
            if (block == 1)
                std::memcpy(to + from * run, values, static_cast<std::size_t>(run) * sizeof(double));
            else
                std::fill_n(to + from * run, run, values[from % count]);
    });
}

// Coordinates of a grid, in the order of its dimensions. Each list stands along one of them.
class Grid {
public:
    explicit Grid(std::initializer_list<M<double> const*> lists)
    {
        int sizes[max_dims] = {1, 1, 1, 1};
        for (M<double> const* const list : lists)
            sizes[count_++] = list->size();
        shape_ = Dims(max_dims, sizes);
        std::copy(lists.begin(), lists.end(), list_);
    }

    // The coordinate along a dimension counted from 0, at all points; empty after a report.
    M<double> along(int dim) const
    {
        M<double> const list = full_form(*list_[dim]);
        if (!has_storage(list))
            return x_M;
        M<double> made = full_result(shape_, list.isc());
        if (!has_storage(made))
            return x_M;
        if (made.size() == 0)
            return made;
        std::ptrdiff_t block = 1;
        for (int d = 0; d < dim; ++d)
            block *= shape_.size[d];
        spread(list.addr(), list.size(), block, made.addr(), made.size());
        if (made.isc())
            spread(list.addi(), list.size(), block, made.addi(), made.size());
        return made;
    }

private:
    M<double> const* list_[max_dims] = {};
    int count_ = 0;
    Dims shape_;
};

// Gives an output for each of the dimensions listed, all of them or none.
template <class... Outputs> M<double> give(Grid const& grid, std::initializer_list<int> dims, Outputs&... outputs)
{
    M<double> coordinates[sizeof...(outputs)];
    M<double>* next = coordinates;
    for (int const dim : dims) {
        M<double> made = grid.along(dim);
        if (made.size() == 0)
            return no_results(outputs...);
        *next++ = std::move(made);
    }
    next = coordinates;
    ((outputs = *next++), ...);
    return coordinates[0];
}

} // namespace

M<double> meshgrid(M<double> const& x)
{
    return meshgrid(x, x);
}
M<double> meshgrid(M<double> const& x, M<double> const& y)
{
    return Grid({&y, &x}).along(1);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z)
{
    return Grid({&y, &x, &z}).along(1);
}
M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X)
{
    return give(Grid({&x, &x}), {1}, X);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, i_o_t, Mr<double> X)
{
    return give(Grid({&y, &x}), {1}, X);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X)
{
    return give(Grid({&y, &x, &z}), {1}, X);
}
M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X, Mr<double> Y)
{
    return give(Grid({&x, &x}), {1, 0}, X, Y);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, i_o_t, Mr<double> X, Mr<double> Y)
{
    return give(Grid({&y, &x}), {1, 0}, X, Y);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X, Mr<double> Y)
{
    return give(Grid({&y, &x, &z}), {1, 0}, X, Y);
}
M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X, Mr<double> Y, Mr<double> Z)
{
    return give(Grid({&x, &x, &x}), {1, 0, 2}, X, Y, Z);
}
M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X, Mr<double> Y, Mr<double> Z)
{
    return give(Grid({&y, &x, &z}), {1, 0, 2}, X, Y, Z);
}

M<double> ndgrid(M<double> const& x1)
{
    return ndgrid(x1, x1);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2)
{
    return Grid({&x1, &x2}).along(0);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3)
{
    return Grid({&x1, &x2, &x3}).along(0);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4)
{
    return Grid({&x1, &x2, &x3, &x4}).along(0);
}
M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1)
{
    return give(Grid({&x1, &x1}), {0}, X1);
}
M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2)
{
    return give(Grid({&x1, &x1}), {0, 1}, X1, X2);
}
M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3)
{
    return give(Grid({&x1, &x1, &x1}), {0, 1, 2}, X1, X2, X3);
}
M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3, Mr<double> X4)
{
    return give(Grid({&x1, &x1, &x1, &x1}), {0, 1, 2, 3}, X1, X2, X3, X4);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, i_o_t, Mr<double> X1)
{
    return give(Grid({&x1, &x2}), {0}, X1);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, i_o_t, Mr<double> X1, Mr<double> X2)
{
    return give(Grid({&x1, &x2}), {0, 1}, X1, X2);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1)
{
    return give(Grid({&x1, &x2, &x3}), {0}, X1);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1, Mr<double> X2)
{
    return give(Grid({&x1, &x2, &x3}), {0, 1}, X1, X2);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3)
{
    return give(Grid({&x1, &x2, &x3}), {0, 1, 2}, X1, X2, X3);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1)
{
    return give(Grid({&x1, &x2, &x3, &x4}), {0}, X1);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2)
{
    return give(Grid({&x1, &x2, &x3, &x4}), {0, 1}, X1, X2);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3)
{
    return give(Grid({&x1, &x2, &x3, &x4}), {0, 1, 2}, X1, X2, X3);
}
M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3, Mr<double> X4)
{
    return give(Grid({&x1, &x2, &x3, &x4}), {0, 1, 2, 3}, X1, X2, X3, X4);
}
