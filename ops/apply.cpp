#include "ops/apply.h"

#include "core/access.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "ops/chain.h"
#include "ops/elementwise.h"
#include "ops/elementwise_core.h"
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

// The engine takes longer to find its way than to compute so few elements.
constexpr int most_elements_past_engine = 16;

// Real, full and not empty.
bool is_small(M<double> const& x)
{
    return x.getndims() == 2 && static_cast<unsigned>(x.getnnz()) - 1u < most_elements_past_engine && x.getnnz() < least_in_chain && !x.isc() && !x.issparse();
}

// Storage for the result of small operands: a temporary's that nobody else holds, or new.
M<double> room_for(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    for (auto const& [operand, ends] : {std::pair(&x, temporaries & temporary_x), std::pair(&y, temporaries & temporary_y)})
        if (ends && !operand->dirty() && !operand->is_in_header()) {
            M<double> made = std::move(const_cast<M<double>&>(*operand));
            made.setname(nullptr);
            made.setstr(0);
            made.setlogical(0);
            return made;
        }
    return Access<double>::small(x.rows(), x.cols());
}

// What the engine gives for small operands of one shape. Functions of their own keep the way to them short.
template <OpCode op> [[gnu::noinline]] M<double> of_small(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    // A temporary's elements stay where they are when its storage moves.
    double const *const from_x = x.addr(), *const from_y = y.addr();
    int const count = x.getnnz();
    M<double> made = room_for(x, y, temporaries);
    if (double* const to = made.addr())
        for (int k = 0; k < count; ++k)
            to[k] = of_numbers<op>(from_x[k], from_y[k]);
    return made;
}

M<double> through_engine(OpCode op, M<double>&& x, M<double>&& y)
{
    M<double> result = Access<double>::without_storage();
    op_apply(result, std::move(x), std::move(y), nop_M, op, 0, l_M);
    return result;
}

M<double> past_engine(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    if (ARRLIB_UNLIKELY(goes_into_chain(x, y, temporaries)))
        return chained_elementwise(op, x, y, temporaries);
    return straight_elementwise(op, x, y, temporaries);
}

[[gnu::noinline]] M<double> of_operands(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return through_engine(op, taken(x, temporaries & temporary_x), taken(y, temporaries & temporary_y));
}

} // namespace

M<double> apply(OpCode op, M<double> const& x, Temporaries temporaries)
{
    if (goes_straight(op, x, zero_M))
        return past_engine(op, x, zero_M, temporaries);
    return through_engine(op, taken(x, temporaries & temporary_x), M<double>(zero_M));
}

M<double> apply(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    if (is_small(x) && is_small(y) && x.rows() == y.rows() && x.cols() == y.cols())
        switch (op) {
        case op_plus:
            return of_small<op_plus>(x, y, temporaries);
        case op_minus:
            return of_small<op_minus>(x, y, temporaries);
        case op_times:
            return of_small<op_times>(x, y, temporaries);
        case op_rdivide:
            return of_small<op_rdivide>(x, y, temporaries);
        default:
            break;
        }
    return goes_straight(op, x, y) ? past_engine(op, x, y, temporaries) : of_operands(op, x, y, temporaries);
}

M<double> beside(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return apply(op, x, y, temporaries);
}

M<double> beside(OpCode op, M<double> const& x, double y, Temporaries temporaries)
{
    return apply(op, x, M<double>(y, in_header()), temporaries);
}

M<double> beside(OpCode op, double x, M<double> const& y, Temporaries temporaries)
{
    return apply(op, M<double>(x, in_header()), y, temporaries);
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
