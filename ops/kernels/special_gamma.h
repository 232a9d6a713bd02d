// What the gamma functions share.
#ifndef ARRLIB_OPS_KERNELS_SPECIAL_GAMMA_H
#define ARRLIB_OPS_KERNELS_SPECIAL_GAMMA_H

#include "ops/kernels/special_gamma_fits.h"
#include "ops/kernels/special_twofold.h"

namespace arrlib {

inline constexpr double root_two_pi = 2.50662827463100050242;
// Here the expansions for large arguments begin.
inline constexpr double stirling_begin = 8;

// gamma(x) / (sqrt(2 pi) x^(x - 1/2) e^-x), x >= stirling_begin.
inline double stirling_factor(double x)
{
    return polynomial(fits::stirling, 1 / x);
}
// Its logarithm.
inline double stirling_log(double x)
{
    double const reciprocal = 1 / x;
    return reciprocal * polynomial(fits::log_stirling, reciprocal * reciprocal);
}

} // namespace arrlib

#endif
