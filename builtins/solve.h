// Division of matrices: systems of linear equations and least squares.
#ifndef ARRLIB_BUILTINS_SOLVE_H
#define ARRLIB_BUILTINS_SOLVE_H

#include "ops/apply.h"

// The solution X of A*X = B; B./A for a scalar A; empty when an operand is. A square A is taken as a
// triangle, as symmetric positive definite, or in general, whichever it is; a pivot of zero gives
// elements of Inf after the warning "\: matrix is singular to working precision", a reciprocal condition below eps
// the warning "\: matrix is close to singular or badly scaled, rcond = %g". Another A gives the basic
// least squares solution, with no more non-zeros in a column than the rank of A: "\: rank deficient,
// rank = %d, tol = %g" warns. Sparse for two sparse operands; full otherwise. An A with NaN or Inf gives NaN.
// "\: row counts of %s and %s do not agree", "\: matrix must be two-dimensional".
ARRLIB_API M<double> mldivide(M<double> const& A, M<double> const& B);

// The solution X of X*B = A; A./B for a scalar B; otherwise as mldivide, with "/" in its messages. "/: column
// counts of %s and %s do not agree".
ARRLIB_API M<double> mrdivide(M<double> const& A, M<double> const& B);

namespace arrlib {

// x/y where one of them is more than a real scalar.
ARRLIB_API M<double> divide(M<double> const& x, M<double> const& y, Temporaries temporaries);

inline M<double> quotient(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    if (ARRLIB_LIKELY(is_real_scalar(x) && is_real_scalar(y)))
        return number_result<op_rdivide>(x.addr()[0], y.addr()[0]);
    return divide(x, y, temporaries);
}

} // namespace arrlib

// mrdivide as an operator.
inline M<double> operator/(M<double> const& x, arrlib::Operand const& y) { return arrlib::quotient(x, y.value, arrlib::in_statement); }
inline M<double> operator/(M<double>&& x, arrlib::Operand const& y) { return arrlib::quotient(x, y.value, arrlib::temporary_x_in_statement); }
inline M<double> operator/(M<double> const& x, M<double>&& y) { return arrlib::quotient(x, y, arrlib::temporary_y); }
inline M<double> operator/(M<double>&& x, M<double>&& y) { return arrlib::quotient(x, y, arrlib::temporary_both); }
inline M<double> operator/(M<double> const& x, double y) { return arrlib::fast<op_rdivide>(x, y); }
inline M<double> operator/(M<double>&& x, double y) { return arrlib::fast<op_rdivide>(x, y, arrlib::temporary_x); }
inline M<double> operator/(double x, M<double> const& y)
{
    if (ARRLIB_LIKELY(arrlib::is_real_scalar(y)))
        return arrlib::number_result<op_rdivide>(x, y.addr()[0]);
    return mrdivide(M<double>(x), y);
}
inline M<double> operator/(double x, M<double>&& y) { return x / static_cast<M<double> const&>(y); }

#endif
