// Rows of evenly spaced numbers, values filled with one number, and the limits of numbers.
#ifndef ARRLIB_BUILTINS_RANGES_H
#define ARRLIB_BUILTINS_RANGES_H

#include "core/matrix.h"

// --- ranges ---------------------------------------------------------------------------------------
// Of arguments with several elements the first one counts.

// The row a, a+d, a+2d, ... as far as b, which is reached, but never passed, when rounding is all that
// keeps a step from it; d is 1 when it is left out. Empty when b lies against the direction, when d is
// 0 and when an argument is NaN or empty. "colon: range is infinite".
ARRLIB_API M<double> colon(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> colon(M<double> const& a, M<double> const& d, M<double> const& b);
// n numbers from a to b, both of them exactly, as a row; 100 when n is left out, b alone for n below
// 2. The ends may be complex.
ARRLIB_API M<double> linspace(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> linspace(M<double> const& a, M<double> const& b, M<double> const& n);
// n numbers from 10^a to 10^b, evenly spaced by ratio, as a row; 50 when n is left out. A b that is pi
// means up to the number pi itself.
ARRLIB_API M<double> logspace(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> logspace(M<double> const& a, M<double> const& b, M<double> const& n);

// The numbers 1 to n in random order, as a row: the positions that sort n uniform draws. Empty for n
// below 1. "randperm: argument must be scalar".
ARRLIB_API M<double> randperm(M<double> const& n);

// --- one number -----------------------------------------------------------------------------------

// Infinity in the shape that the sizes ask for, as those of zeros do; 1x1 without sizes.
ARRLIB_API M<double> inf();
ARRLIB_API M<double> inf(M<double> const& n);
ARRLIB_API M<double> inf(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> inf(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> inf(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
// Not-a-number in the shape that the sizes ask for, as those of zeros do; 1x1 without sizes.
ARRLIB_API M<double> nan();
ARRLIB_API M<double> nan(M<double> const& n);
ARRLIB_API M<double> nan(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> nan(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> nan(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
// The largest finite number, about 1.8e308.
ARRLIB_API M<double> realmax();
// The smallest positive number of full precision, about 2.2e-308.
ARRLIB_API M<double> realmin();
// The largest integer whose bits can be counted on, 2^53-1.
ARRLIB_API M<double> bitmax();
// The smallest integer p with 2^p >= |n|; a vector of more than one element stands for its length. 0
// gives 0, Inf gives Inf. "nextpow2: argument must be a vector".
ARRLIB_API M<double> nextpow2(M<double> const& n);

#endif
