// Values of random numbers, and the state of the generators.
#ifndef ARRLIB_OPS_RANDOM_H
#define ARRLIB_OPS_RANDOM_H

#include "core/matrix.h"

// Uniform draws in the shape that the sizes ask for, as those of ops/creator.h do, column by column.
// There are two generators; a selector tells which one is drawn from.
//
// The text "state" as the only argument gives the state of the first generator, a column of 35
// numbers; "seed" gives the seed of the second one. In front of a value they select that generator
// and set it, the first one from a number or from such a column, the second one from the first
// element, and give x_M. With other values "state" reports "rand('state',y): y must be scalar or
// 35-element state matrix", the generator having been selected already.
ARRLIB_API M<double> randM();
ARRLIB_API M<double> randM(M<double> const& x);
ARRLIB_API M<double> randM(M<double> const& x, M<double> const& y);
ARRLIB_API M<double> randM(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> randM(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
// Normal draws of mean 0 and variance 1. They have a generator of their own, to which "state" and
// "seed" are the same: both give its seed, and set it from the first element of a value.
ARRLIB_API M<double> randn();
ARRLIB_API M<double> randn(M<double> const& x);
ARRLIB_API M<double> randn(M<double> const& x, M<double> const& y);
ARRLIB_API M<double> randn(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> randn(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);

#endif
