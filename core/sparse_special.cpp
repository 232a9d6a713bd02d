// Sparse values of a given pattern, and coordinate lists.
#include "core/declare.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>

using namespace arrlib;

namespace {

// The shape that one argument asks for: n x n, or both sizes. False after a report.
bool shape_of(char const* name, M<double> const& sizes, Dims& shape)
{
    if (sizes.size() == 1)
        return sparse_shape(sizes, sizes, shape);
    if (sizes.size() != 2 || sizes.issparse()) {
        error("%s: size must be one or two numbers", name);
        return false;
    }
    return sparse_shape(sizes[1], sizes[2], shape);
}

M<double> without_entries(Dims const& shape, int room)
{
    M<double> made = sparse_with_room(false, shape, room);
    return has_storage(made) ? made : x_M;
}

M<double> identity(Dims const& shape)
{
    int const count = std::min(shape.size[0], shape.size[1]);
    M<double> made = sparse_with_room(false, shape, count);
    if (!has_storage(made))
        return x_M;
    for (int k = 0; k < count; ++k)
        Access<double>::index(made)[k] = k * (shape.size[0] + 1);
    std::fill_n(made.addr(), count, 1.0);
    made.getnnz() = count;
    return made;
}

M<double> sparsfun_called()
{
    error("sparsfun called");
    return x_M;
}

} // namespace

M<double> speye(M<double> const& n)
{
    Dims shape;
    return shape_of("speye", n, shape) ? identity(shape) : x_M;
}

M<double> speye(M<double> const& m, M<double> const& n)
{
    Dims shape;
    return sparse_shape(m, n, shape) ? identity(shape) : x_M;
}

M<double> spzeros(M<double> const& n)
{
    Dims shape;
    return shape_of("spzeros", n, shape) ? without_entries(shape, 0) : x_M;
}

M<double> spzeros(M<double> const& m, M<double> const& n)
{
    Dims shape;
    return sparse_shape(m, n, shape) ? without_entries(shape, 0) : x_M;
}

M<double> spalloc(M<double> const& m, M<double> const& n, M<double> const& nzmax)
{
    Dims shape;
    int room;
    if (!sparse_shape(m, n, shape) || !sparse_size(scalar(nzmax), room))
        return x_M;
    return without_entries(shape, std::min(room, shape.count));
}

M<double> spones(M<double> const& a)
{
    M<double> made = pattern_of(a);
    if (!has_storage(made))
        return x_M;
    std::fill_n(made.addr(), made.getnnz(), 1.0);
    return made;
}

M<double> spconvert(M<double> const& d)
{
    if (d.cols() != 3 && d.cols() != 4) {
        error("spconvert: matrix '%s' must have 3 or 4 columns", OperandName(d));
        return x_M;
    }
    M<double> const list = full_copy(d);
    if (!has_storage(list))
        return x_M;
    double const* const imaginary = d.cols() == 4 ? list.addr(1, 4) : list.isc() ? list.addi(1, 3) : nullptr;
    return sparse_from_triplets({d.rows(), {list.addr(1, 1)}, {list.addr(1, 2)}, {list.addr(1, 3)}, {imaginary}});
}

M<double> sp2coo(M<double> const& a)
{
    M<double> const entries = a.issparse() ? a : sparse_copy(a);
    int const count = entries.getnnz();
    M<double> made = Access<double>::full(false, Dims(count, entries.isc() ? 4 : 3));
    if (!has_storage(entries) || !has_storage(made))
        return x_M;
    if (count == 0)
        return made;
    double *const rows = made.addr(1, 1), *const cols = made.addr(1, 2);
    PositionSplit split(entries);
    for (int k = 0; k < count; ++k) {
        split.at(Access<double>::index(entries)[k]);
        rows[k] = split.row() + 1.0;
        cols[k] = split.column() + 1.0;
    }
    Storage<double>::copy(made.addr(1, 3), entries.addr(), count);
    if (entries.isc())
        Storage<double>::copy(made.addr(1, 4), entries.addi(), count);
    return made;
}

M<double> sparsfun()
{
    return sparsfun_called();
}

M<double> sparsfun(M<double> const&)
{
    return sparsfun_called();
}

M<double> sparsfun(M<double> const&, M<double> const&)
{
    return sparsfun_called();
}

M<double> sparsfun(M<double> const&, M<double> const&, M<double> const&)
{
    return sparsfun_called();
}

M<double> sparsfun(M<double> const&, M<double> const&, M<double> const&, M<double> const&)
{
    return sparsfun_called();
}
