#include "ops/reduction.h"

#include "core/subscript.h"
#include "ops/engine.h"
#include "runtime/constants.h"

using namespace arrlib;

M<double> arrlib::apply_along(OpCode op, M<double> const& x, M<double> const& dim)
{
    return apply_along(op, x, dim, zero_M);
}

M<double> arrlib::apply_along(OpCode op, M<double> const& x, M<double> const& dim, M<double> const& y)
{
    M<double> result;
    op_apply(result, x, y, dim, op, 1, l_M);
    return result;
}

namespace {

// The outputs stay as they are after a report.
M<double> with_positions(OpCode op, M<double> const& x, M<double> const& dim, Mr<double>& values, Mr<double>& positions)
{
    M<double> result, index;
    op_apply(result, x, zero_M, dim, op, 1, index);
    if (result.size() == 0 && x.size() > 0)
        return x_M;
    values = result;
    positions = index;
    return result;
}

} // namespace

M<double> sum(M<double> const& x) { return apply_along(op_sum, x, zero_M); }
M<double> sum(M<double> const& x, M<double> const& dim) { return apply_along(op_sum, x, dim); }
M<double> prod(M<double> const& x) { return apply_along(op_prod, x, zero_M); }
M<double> prod(M<double> const& x, M<double> const& dim) { return apply_along(op_prod, x, dim); }
M<double> cumsum(M<double> const& x) { return apply_along(op_cumsum, x, zero_M); }
M<double> cumsum(M<double> const& x, M<double> const& dim) { return apply_along(op_cumsum, x, dim); }
M<double> cumprod(M<double> const& x) { return apply_along(op_cumprod, x, zero_M); }
M<double> cumprod(M<double> const& x, M<double> const& dim) { return apply_along(op_cumprod, x, dim); }
M<double> all(M<double> const& x) { return apply_along(op_all, x, zero_M); }
M<double> all(M<double> const& x, M<double> const& dim) { return apply_along(op_all, x, dim); }
M<double> any(M<double> const& x) { return apply_along(op_any, x, zero_M); }
M<double> any(M<double> const& x, M<double> const& dim) { return apply_along(op_any, x, dim); }
M<double> median(M<double> const& x) { return apply_along(op_median, x, zero_M); }
M<double> median(M<double> const& x, M<double> const& dim) { return apply_along(op_median, x, dim); }
M<double> max(M<double> const& x) { return apply_along(op_max_1, x, zero_M); }
M<double> max(M<double> const& x, M<double> const&, M<double> const& dim) { return apply_along(op_max_1, x, dim); }
M<double> min(M<double> const& x) { return apply_along(op_min_1, x, zero_M); }
M<double> min(M<double> const& x, M<double> const&, M<double> const& dim) { return apply_along(op_min_1, x, dim); }

M<double> max(M<double> const& x, i_o_t, Mr<double> values, Mr<double> positions)
{
    return with_positions(op_max_1, x, zero_M, values, positions);
}

M<double> max(M<double> const& x, M<double> const&, M<double> const& dim, i_o_t, Mr<double> values, Mr<double> positions)
{
    return with_positions(op_max_1, x, dim, values, positions);
}

M<double> min(M<double> const& x, i_o_t, Mr<double> values, Mr<double> positions)
{
    return with_positions(op_min_1, x, zero_M, values, positions);
}

M<double> min(M<double> const& x, M<double> const&, M<double> const& dim, i_o_t, Mr<double> values, Mr<double> positions)
{
    return with_positions(op_min_1, x, dim, values, positions);
}
