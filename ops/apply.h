// How the public functions and operators reach the engine: in one call, and past it for two real
// scalars.
#ifndef ARRLIB_OPS_APPLY_H
#define ARRLIB_OPS_APPLY_H

#include "core/matrix.h"
#include "ops/op_code.h"

#include <type_traits>

namespace arrlib {

// Which operands end with the call, and may give their storage to the result; in_statement with one of them:
// whether the elements of the result may wait for the end of the statement.
enum Temporaries : int { no_temporary = 0, temporary_x = 1, temporary_y = 2, temporary_both = 3, in_statement = 4, temporary_x_in_statement = 5, temporary_y_in_statement = 6 };

// Made for a call, and ended by C++ with the statement: that is when elements that are due are computed. Until
// then a result shares the storage of its operands.
class EndOfStatement {
public:
    constexpr EndOfStatement() = default;
    ~EndOfStatement() { compute_due(); }
    EndOfStatement(EndOfStatement const&) = delete;
    EndOfStatement& operator=(EndOfStatement const&) = delete;
};

// An operand of an operator, which has no place for more: a value that was there before the statement.
class Operand {
public:
    Operand(M<double> const& x) : value(x) {}
    // What refers to a value, as std::reference_wrapper does.
    template <class Holder, class = std::enable_if_t<!std::is_base_of_v<M<double>, std::decay_t<Holder>> && std::is_convertible_v<Holder, M<double> const&> && !std::is_convertible_v<Holder, M<double>&&>>>
    Operand(Holder&& holder) : value(holder)
    {
    }

    M<double> const& value;

private:
    EndOfStatement end_;
};

// The engine, element by element (ops/engine.h).
ARRLIB_API M<double> apply(OpCode op, M<double> const& x, Temporaries temporaries = no_temporary);
ARRLIB_API M<double> apply(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries = no_temporary);
// The same, where operands were expected to be numbers.
ARRLIB_API ARRLIB_COLD M<double> beside(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries);
ARRLIB_API ARRLIB_COLD M<double> beside(OpCode op, M<double> const& x, double y, Temporaries temporaries);
ARRLIB_API ARRLIB_COLD M<double> beside(OpCode op, double x, M<double> const& y, Temporaries temporaries);
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

template <OpCode op> inline M<double> number_result(double x, double y)
{
    auto const value = of_numbers<op>(x, y);
    if constexpr (std::is_same_v<decltype(value), bool const>) {
        M<double> made(value ? 1.0 : 0.0, in_header());
        made.setlogical(1);
        return made;
    } else {
        return M<double>(value, in_header());
    }
}

// The number that an operand is, if it is one. One that ends with the call was most likely given by an
// operator; a look at its header tells, and compilers see there what the operator has just written.
inline bool number_of(M<double> const& x, bool temporary, double& number)
{
    if (ARRLIB_UNLIKELY(!(temporary ? x.is_in_header() : is_real_scalar(x))))
        return false;
    number = temporary ? x.front() : *x.addr();
    return true;
}
// Both, the one first that was made last.
inline bool numbers_of(M<double> const& x, M<double> const& y, Temporaries temporaries, double& a, double& b)
{
    if (temporaries & temporary_x)
        return number_of(x, true, a) && number_of(y, temporaries & temporary_y, b);
    return number_of(y, temporaries & temporary_y, b) && number_of(x, false, a);
}

template <OpCode op> inline M<double> fast(M<double> const& x, M<double> const& y, Temporaries temporaries = no_temporary)
{
    double a, b;
    if (ARRLIB_LIKELY(numbers_of(x, y, temporaries, a, b)))
        return number_result<op>(a, b);
    return beside(op, x, y, temporaries);
}

inline M<double> product(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    double a, b;
    if (ARRLIB_LIKELY(numbers_of(x, y, temporaries, a, b)))
        return number_result<op_times>(a, b);
    return multiply(x, y, temporaries);
}

// With a number of C++ on one side, which needs no storage.
template <OpCode op> inline M<double> fast(M<double> const& x, double y, Temporaries temporaries = no_temporary)
{
    double a;
    if (ARRLIB_LIKELY(number_of(x, temporaries & temporary_x, a)))
        return number_result<op>(a, y);
    return beside(op, x, y, temporaries);
}
template <OpCode op> inline M<double> fast(double x, M<double> const& y, Temporaries temporaries = no_temporary)
{
    double b;
    if (ARRLIB_LIKELY(number_of(y, temporaries & temporary_y, b)))
        return number_result<op>(x, b);
    return beside(op, x, y, temporaries);
}

} // namespace arrlib

#endif
