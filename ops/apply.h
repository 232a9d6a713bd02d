// How the public functions and operators reach the engine: in one call, and past it for two real
// scalars.
#ifndef ARRLIB_OPS_APPLY_H
#define ARRLIB_OPS_APPLY_H

#include "core/matrix.h"
#include "ops/op_code.h"

#include <type_traits>

namespace arrlib {

// Which operands end with the call, and may give their storage to the result.
enum Temporaries : int { no_temporary = 0, temporary_x = 1, temporary_y = 2, temporary_both = 3 };

// The engine, element by element (ops/engine.h).
ARRLIB_API M<double> apply(OpCode op, M<double> const& x, Temporaries temporaries = no_temporary);
ARRLIB_API M<double> apply(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries = no_temporary);
// x*y: the matrix product, or element by element when x or y has fewer than two elements.
ARRLIB_API M<double> multiply(M<double> const& x, M<double> const& y, Temporaries temporaries);

inline bool is_real_scalar(M<double> const& x)
{
    return x.getnnz() == 1 && !x.isc() && !x.issparse();
}

// The kernels of the engine for two real numbers.
template <OpCode op> inline auto of_numbers(double x, double y)
{
    if constexpr (op == op_plus)
        return x + y;
    else if constexpr (op == op_minus)
        return x - y;
    else if constexpr (op == op_times)
        return x * y;
    else if constexpr (op == op_rdivide)
        return x / y;
    else if constexpr (op == op_lt)
        return x < y;
    else if constexpr (op == op_gt)
        return x > y;
    else if constexpr (op == op_le)
        return x <= y;
    else if constexpr (op == op_ge)
        return x >= y;
    else if constexpr (op == op_eq)
        return x == y;
    else if constexpr (op == op_ne)
        return x != y;
    else if constexpr (op == op_and)
        return x != 0 && y != 0;
    else if constexpr (op == op_or)
        return x != 0 || y != 0;
}

template <OpCode op> inline M<double> number_result(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    auto const value = of_numbers<op>(x.addr()[0], y.addr()[0]);
    if constexpr (std::is_same_v<decltype(value), bool const>) {
        M<double> made(value ? 1.0 : 0.0);
        made.setlogical(1);
        return made;
    } else {
        if ((temporaries & temporary_x) && !x.dirty())
            return M<double>(const_cast<M<double>&>(x), value, in_its_storage());
        if ((temporaries & temporary_y) && !y.dirty())
            return M<double>(const_cast<M<double>&>(y), value, in_its_storage());
        return M<double>(value);
    }
}

template <OpCode op> inline M<double> fast(M<double> const& x, M<double> const& y, Temporaries temporaries = no_temporary)
{
    if (ARRLIB_LIKELY(is_real_scalar(x) && is_real_scalar(y)))
        return number_result<op>(x, y, temporaries);
    return apply(op, x, y, temporaries);
}

inline M<double> product(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    if (ARRLIB_LIKELY(is_real_scalar(x) && is_real_scalar(y)))
        return number_result<op_times>(x, y, temporaries);
    return multiply(x, y, temporaries);
}

// With a number of C++ on one side, which needs no storage.
template <OpCode op> inline M<double> fast(M<double> const& x, double y, Temporaries temporaries = no_temporary)
{
    if (ARRLIB_LIKELY(is_real_scalar(x)))
        return M<double>(of_numbers<op>(x.addr()[0], y));
    return apply(op, x, M<double>(y), temporaries);
}
template <OpCode op> inline M<double> fast(double x, M<double> const& y, Temporaries temporaries = no_temporary)
{
    if (ARRLIB_LIKELY(is_real_scalar(y)))
        return M<double>(of_numbers<op>(x, y.addr()[0]));
    return apply(op, M<double>(x), y, temporaries);
}

} // namespace arrlib

#endif
