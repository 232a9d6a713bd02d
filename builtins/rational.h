// Numbers as fractions of whole numbers, through continued fractions with the nearest integers. "%s:
// argument must be real".
#ifndef ARRLIB_BUILTINS_RATIONAL_H
#define ARRLIB_BUILTINS_RATIONAL_H

#include "core/subscript.h"

// Continued fractions within tol of the elements of x, as text: a row such as "3 + 1/(7 + 1/(16))" for
// each element. With two outputs, the numerators n and the denominators d instead, in the shape of x.
// Inf is 1/0, -Inf is -1/0, NaN is 0/0. tol is 1e-6 times the sum of the moduli of the finite elements
// when left out.
ARRLIB_API M<double> rat(M<double> const& x);
ARRLIB_API M<double> rat(M<double> const& x, M<double> const& tol);
ARRLIB_API M<double> rat(M<double> const& x, i_o_t, Mr<double> text);
ARRLIB_API M<double> rat(M<double> const& x, i_o_t, Mr<double> n, Mr<double> d);
ARRLIB_API M<double> rat(M<double> const& x, M<double> const& tol, i_o_t, Mr<double> text);
ARRLIB_API M<double> rat(M<double> const& x, M<double> const& tol, i_o_t, Mr<double> n, Mr<double> d);

// A text with a row for each row of x, its elements as fractions n/d at the right end of fields of len
// (13) characters, "*" where one does not fit. They are within 10^-((len - 1) / 2) times the sum of the
// moduli of the finite elements: what is negligible beside the others is 0. "rats: matrix must be
// two-dimensional", "rats: length must be a positive integer".
ARRLIB_API M<double> rats(M<double> const& x);
ARRLIB_API M<double> rats(M<double> const& x, M<double> const& len);

#endif
