// What translated programs state about their variables, and how they name and unwrap values.
#ifndef ARRLIB_CORE_DECLARE_H
#define ARRLIB_CORE_DECLARE_H

#include "core/matrix.h"

// Check that a value is an integer, real, a scalar or a vector, in the order of the name, and
// report what it is not: "mbint: %s not integer", "mbintreal: %s not real", "mbintrealscalar: %s
// not scalar", "mbintrealvector: %s not vector" and their like. All return the empty result.
ARRLIB_API M<double> mbint(M<double> const& value);
ARRLIB_API M<double> mbintreal(M<double> const& value);
ARRLIB_API M<double> mbintrealscalar(M<double> const& value);
ARRLIB_API M<double> mbintrealvector(M<double> const& value);
ARRLIB_API M<double> mbintscalar(M<double> const& value);
ARRLIB_API M<double> mbintvector(M<double> const& value);
ARRLIB_API M<double> mbscalar(M<double> const& value);
// Reports under the name of mbintvector: "mbintvector: %s not vector".
ARRLIB_API M<double> mbvector(M<double> const& value);

// The number in a 1x1 real full value that is not text; others are reported, "scalar: matrix %s is
// %s" with "not scalar", "complex", "string" or "sparse", and give their first element, or 0.
ARRLIB_API double scalar(M<double> const& value);
// Reports "scalar: cell matrix is not accepted" and gives 0.
ARRLIB_API double scalar(M<M<double>> const& value);

// The variable in *slot, made 0x0 on first use with a copy of the name; null when "Out of memory!"
// was reported. Neither is ever freed.
ARRLIB_API M<double>* void_to_M(char const* name, void** slot);
ARRLIB_API M<M<double>>* void_to_MM(char const* name, void** slot);

#endif
