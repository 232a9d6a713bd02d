#include "ops/engine.h"

#include "core/access.h"
#include "core/arguments.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "ops/complex_rule.h"
#include "ops/elementwise_core.h"
#include "ops/op_table.h"
#include "ops/sparse_reduce.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <optional>
#include <utility>

using namespace arrlib;

namespace {

// None for an empty `dim` argument; 0 stands for the first dimension larger than 1.
using DimArgument = std::optional<int>;
constexpr int dim_not_given = 0;

DimArgument dim_value(M<double> const& dim)
{
    return dim.size() > 0 ? DimArgument(integer_argument(dim)) : DimArgument();
}

// What operations give for operands without elements, before anything else is looked at.
M<double> of_empty(OpCode op, bool x_empty, bool y_empty, DimArgument dim)
{
    double value;
    switch (op) {
    case op_all:
    case op_prod:
    case op_any:
    case op_sum:
        if (dim != dim_not_given)
            return nop_M;
        value = op == op_all || op == op_prod;
        break;
    case op_eq:
    case op_ne:
        value = (x_empty && y_empty) == (op == op_eq);
        break;
    default:
        return nop_M;
    }
    M<double> made(value);
    made.setlogical(op_is_logical(op));
    return made;
}

void unknown_operation()
{
    error("op_dims: unknown op");
    error("op_core: unknown op");
}

// --- along a dimension ----------------------------------------------------------------------------

enum class Extent { one, one_less, same };

Extent extent_after(OpCode op)
{
    switch (op) {
    case op_diff:
        return Extent::one_less;
    case op_all:
    case op_any:
    case op_max_1:
    case op_median:
    case op_min_1:
    case op_prod:
    case op_sum:
        return Extent::one;
    default:
        return Extent::same;
    }
}

// Zero-based; negative after a report.
int working_dimension(OpCode op, M<double> const& x, DimArgument dim)
{
    if (!dim) {
        error("%s: dim argument may not be empty", op_name(op));
        return -1;
    }
    if (*dim == dim_not_given)
        return x.nsingleton() - 1;
    if (*dim < 1 || *dim > max_dims) {
        error("%s: dimension=%s does not exist for matrix %s", op_name(op), IntegerText(*dim), OperandName(x));
        return -1;
    }
    return *dim - 1;
}

M<double> along(OpCode op, M<double> x, M<double> y, DimArgument dim_given, M<double>& index_out)
{
    int const dim = working_dimension(op, x, dim_given);
    if (dim < 0)
        return x_M;
    int extents[max_dims];
    for (int d = 0; d < max_dims; ++d)
        extents[d] = x.getdims()[d];
    Axis axis{1, extents[dim], 1};
    for (int d = 0; d < dim; ++d)
        axis.stride *= extents[d];
    for (int d = dim + 1; d < max_dims; ++d)
        axis.outer *= extents[d];
    switch (extent_after(op)) {
    case Extent::one:
        extents[dim] = 1;
        break;
    case Extent::one_less:
        if (--extents[dim] <= 0)
            return nop_M;
        break;
    case Extent::same:
        break;
    }

    Operation const& row = *find_operation(op);
    bool const wants_index = &index_out != &l_M;
    M<double> made = Access<double>::without_storage();
    if (x.issparse()) {
        if (!wants_index && sparse_reduce(made, x, dim, op)) {
            if (!has_storage(made))
                return x_M;
            made.setlogical(row.logical);
            return made;
        }
        x = full(x);
        if (!has_storage(x))
            return x_M;
    }
    if (y.issparse())
        y = full(y);
    Dims const shape(max_dims, extents);
    bool const complex = is_complex_result(row.complex, x, y);
    made = Access<double>::full(complex, shape);
    M<double> index = wants_index ? Access<double>::full(false, shape) : Access<double>::without_storage();
    if (!has_storage(made) || (wants_index && !has_storage(index)))
        return x_M;
    bool const has_y = y.addr() != zero_M.addr();
    DimensionWork const work{x.addr(), x.addi(), axis, has_y ? y.addr() : nullptr, has_y ? y.size() : 0,
                             made.addr(), made.addi(), wants_index ? index.addr() : nullptr};
    if (!row.kernels.along(work))
        return x_M;
    made.setlogical(row.logical);
    if (wants_index)
        index_out = std::move(index);
    return made;
}

// --- the shapes of element-wise operations --------------------------------------------------------

bool same_dims(M<double> const& x, M<double> const& y)
{
    for (int d = 0; d < max_dims; ++d)
        if (x.getdims()[d] != y.getdims()[d])
            return false;
    return true;
}

M<double> by_elements(OpCode op, M<double>&& x, M<double>&& y)
{
    if (y.size() != 1 && x.size() != 1 && !same_dims(x, y)) {
        error("%s: wrong dimensions of: %s, %s", op_name(op), OperandName(x), OperandName(y));
        return x_M;
    }
    Operation const* const row = find_operation(op);
    if (!row || !row->kernels.real) {
        if (row)
            error("op_core: unknown op");
        else
            unknown_operation();
        M<double> const& like = y.size() == 1 ? x : y;
        M<double> made = Access<double>::full(false, Dims(max_dims, like.getdims()));
        if (!has_storage(made))
            return x_M;
        Storage<double>::clear(made.addr(), made.getnnz());
        return made;
    }
    return elementwise(op, std::move(x), std::move(y));
}

M<double> apply(OpCode op, M<double>&& x, M<double>&& y, DimArgument dim, bool do_dim, M<double>& index_out)
{
    bool const x_empty = x.size() == 0, y_empty = y.size() == 0;
    if (ARRLIB_UNLIKELY(x_empty || y_empty))
        return of_empty(op, x_empty, y_empty, dim);
    if (!do_dim)
        return by_elements(op, std::move(x), std::move(y));
    if (op >= 0 && op <= op_unwrap)
        return along(op, std::move(x), std::move(y), dim, index_out);
    error("op_dims: wrong do_dim");
    return by_elements(op, std::move(x), std::move(y));
}

} // namespace

void op_apply(M<double>& result, M<double> x, M<double> y, M<double> const& dim, OpCode op, int do_dim, M<double>& index_out)
{
    result = apply(op, std::move(x), std::move(y), dim_value(dim), do_dim != 0, index_out);
}

int check_dim_arg(char const* name, M<double> const& x, M<double> const& dim)
{
    if (dim.size() == 0) {
        error("%s: dim argument may not be empty", name);
        return 0;
    }
    int number = integer_argument(dim);
    if (number == 0)
        number = x.nsingleton();
    if (number < 1)
        error("%s: dim argument must be positive", name);
    else if (number > x.getndims())
        error("%s: dim argument may not be more then the number of dimensions", name);
    return number - 1;
}
