// The modified Bessel functions I and K in the right half-plane, from which all others are made.
#ifndef ARRLIB_BUILTINS_BESSEL_MODIFIED_H
#define ARRLIB_BUILTINS_BESSEL_MODIFIED_H

#include "builtins/wide_complex.h"

namespace arrlib {

// I(z) = i exp(z + offset) and K(z) = k exp(-z - offset).
struct ModifiedPair {
    WideComplex i, k, offset;
    bool converged = true;
};

enum class Modified { i_only, k_only, both };

// Of order nu >= 0 at z != 0, both finite, with a real part that is not below 0; what is not wanted
// may be left out. Relative errors are those of the arguments' last places in `long double`, times
// max(nu, |z|) at worst. A k beyond its range is infinite and real.
ModifiedPair modified_bessel(Wide nu, WideComplex z, Modified wanted);

// The expansion for large nu^2 + z^2 away from the turning points +-i nu, where it gives false. z lies
// in the first quadrant.
bool uniform_expansion(Wide nu, WideComplex z, ModifiedPair& values);

} // namespace arrlib

#endif
