#include "ops/apply.h"

#include "core/access.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "ops/elementwise.h"
#include "ops/engine.h"
#include "ops/matrix_product.h"
#include "ops/operators.h"
#include "runtime/constants.h"

#include <cmath>
#include <utility>

namespace arrlib {

namespace {

// A copy that shares, or the operand itself when it ends with the call.
M<double> taken(M<double> const& x, bool temporary)
{
    return temporary ? M<double>(std::move(const_cast<M<double>&>(x))) : x;
}

M<double> through_engine(OpCode op, M<double>&& x, M<double>&& y)
{
    M<double> result = Access<double>::without_storage();
    op_apply(result, std::move(x), std::move(y), nop_M, op, 0, l_M);
    return result;
}

} // namespace

M<double> apply(OpCode op, M<double> const& x, Temporaries temporaries)
{
    return through_engine(op, taken(x, temporaries & temporary_x), M<double>(zero_M));
}

M<double> apply(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return through_engine(op, taken(x, temporaries & temporary_x), taken(y, temporaries & temporary_y));
}

M<double> multiply(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return x.size() < 2 || y.size() < 2 ? apply(op_times, x, y, temporaries) : matrix_product(x, y);
}

} // namespace arrlib

using namespace arrlib;

M<double> log2(M<double> const& x, i_o_t, Mr<double> f, Mr<double> e)
{
    M<double> const values = x.issparse() ? full(x) : x;
    Dims const shape(max_dims, values.getdims());
    M<double> fraction = Access<double>::full(false, shape), exponent = Access<double>::full(false, shape);
    if (!has_storage(fraction) || !has_storage(exponent))
        return x_M;
    for (int k = 0; k < values.size(); ++k) {
        int power = 0;
        fraction.addr()[k] = std::frexp(values.addr()[k], &power);
        exponent.addr()[k] = std::isfinite(values.addr()[k]) ? power : 0;
    }
    f = fraction;
    e = exponent;
    return x_M;
}
