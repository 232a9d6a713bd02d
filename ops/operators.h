// The operators of the language: sums, differences and comparisons element by element, products of
// matrices. Two real scalars are computed in place; everything else is the engine's.
#ifndef ARRLIB_OPS_OPERATORS_H
#define ARRLIB_OPS_OPERATORS_H

#include "ops/apply.h"

// Messages and shapes as in ops/elementwise.h.

// The sum and the difference, element by element; of one value x itself and -x.
inline M<double> operator+(M<double> const& x, arrlib::Operand const& y) { return arrlib::fast<op_plus>(x, y.value, arrlib::in_statement); }
inline M<double> operator+(M<double>&& x, arrlib::Operand const& y) { return arrlib::fast<op_plus>(x, y.value, arrlib::temporary_x_in_statement); }
inline M<double> operator+(M<double> const& x, M<double>&& y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_y); }
inline M<double> operator+(M<double>&& x, M<double>&& y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_both); }
inline M<double> operator+(M<double> const& x, double y) { return arrlib::fast<op_plus>(x, y); }
inline M<double> operator+(M<double>&& x, double y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_x); }
inline M<double> operator+(double x, M<double> const& y) { return arrlib::fast<op_plus>(x, y); }
inline M<double> operator+(double x, M<double>&& y) { return arrlib::fast<op_plus>(x, y, arrlib::temporary_y); }
inline M<double> operator-(M<double> const& x, arrlib::Operand const& y) { return arrlib::fast<op_minus>(x, y.value, arrlib::in_statement); }
inline M<double> operator-(M<double>&& x, arrlib::Operand const& y) { return arrlib::fast<op_minus>(x, y.value, arrlib::temporary_x_in_statement); }
inline M<double> operator-(M<double> const& x, M<double>&& y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_y); }
inline M<double> operator-(M<double>&& x, M<double>&& y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_both); }
inline M<double> operator-(M<double> const& x, double y) { return arrlib::fast<op_minus>(x, y); }
inline M<double> operator-(M<double>&& x, double y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_x); }
inline M<double> operator-(double x, M<double> const& y) { return arrlib::fast<op_minus>(x, y); }
inline M<double> operator-(double x, M<double>&& y) { return arrlib::fast<op_minus>(x, y, arrlib::temporary_y); }

// The matrix product of operands with two or more elements each: "*: inner dimensions of %s and %s do
// not agree". Element by element when one operand is a scalar; empty when one is empty.
inline M<double> operator*(M<double> const& x, arrlib::Operand const& y) { return arrlib::product(x, y.value, arrlib::in_statement); }
inline M<double> operator*(M<double>&& x, arrlib::Operand const& y) { return arrlib::product(x, y.value, arrlib::temporary_x_in_statement); }
inline M<double> operator*(M<double> const& x, M<double>&& y) { return arrlib::product(x, y, arrlib::temporary_y); }
inline M<double> operator*(M<double>&& x, M<double>&& y) { return arrlib::product(x, y, arrlib::temporary_both); }
inline M<double> operator*(M<double> const& x, double y) { return arrlib::fast<op_times>(x, y); }
inline M<double> operator*(M<double>&& x, double y) { return arrlib::fast<op_times>(x, y, arrlib::temporary_x); }
inline M<double> operator*(double x, M<double> const& y) { return arrlib::fast<op_times>(x, y); }
inline M<double> operator*(double x, M<double>&& y) { return arrlib::fast<op_times>(x, y, arrlib::temporary_y); }

// -x, x itself, and 1 where an element is 0, else 0.
inline M<double> operator-(M<double> const& x) { return arrlib::apply(op_uminus, x); }
inline M<double> operator-(M<double>&& x) { return arrlib::apply(op_uminus, x, arrlib::temporary_x); }
inline M<double> operator+(M<double> const& x) { return x; }
inline M<double> operator!(M<double> const& x) { return arrlib::apply(op_not, x); }

// Comparisons and logic element by element: logical results.
inline M<double> operator<(M<double> const& x, M<double> const& y) { return arrlib::fast<op_lt>(x, y); }
inline M<double> operator>(M<double> const& x, M<double> const& y) { return arrlib::fast<op_gt>(x, y); }
inline M<double> operator<=(M<double> const& x, M<double> const& y) { return arrlib::fast<op_le>(x, y); }
inline M<double> operator>=(M<double> const& x, M<double> const& y) { return arrlib::fast<op_ge>(x, y); }
inline M<double> operator==(M<double> const& x, M<double> const& y) { return arrlib::fast<op_eq>(x, y); }
inline M<double> operator!=(M<double> const& x, M<double> const& y) { return arrlib::fast<op_ne>(x, y); }
inline M<double> operator&(M<double> const& x, M<double> const& y) { return arrlib::fast<op_and>(x, y); }
inline M<double> operator||(M<double> const& x, M<double> const& y) { return arrlib::fast<op_or>(x, y); }

#endif
