// Small work on full square values that functions of matrices share. Values are without storage after
// "Out of memory!".
#ifndef ARRLIB_BUILTINS_SQUARE_VALUES_H
#define ARRLIB_BUILTINS_SQUARE_VALUES_H

#include "builtins/args.h"

namespace arrlib {

M<double> identity_matrix(int n);
// Infinities, as functions of singular matrices have.
M<double> infinite_matrix(int n);
// Largest sum of moduli in a column of a full value of any shape.
double one_norm(M<double> const& x);
// Whether a result for A is an argument's rounding errors away from real: A is real, and the imaginary
// part no larger than 10 n eps of the whole.
bool is_nearly_real(M<double> const& A, M<double> const& X);
// "%s: result may be inaccurate, error = %g" for an estimate of more than 1000 eps.
void warn_inaccurate(Arguments const& args, double error);

} // namespace arrlib

#endif
