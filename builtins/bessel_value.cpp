#include "builtins/bessel_value.h"

#include "ops/kernels/special_numbers.h"

#include <algorithm>
#include <cmath>

using namespace arrlib;

namespace {

// Where the last places of an argument are worth half of the digits of a value, and nearly all of them.
constexpr double less_accurate_from = 32768, inaccurate_from = 1073741824;

// What the functions tend to where z goes off to infinity, but along the real axis.
BesselValue at_infinity(BesselKind kind, double re, double im, bool scaled)
{
    bool grows = false;
    switch (kind) {
    case BesselKind::j:
    case BesselKind::y:
        grows = std::isinf(im);
        break;
    case BesselKind::i:
        grows = std::isinf(re);
        break;
    case BesselKind::k:
        grows = re == -infinity;
        break;
    case BesselKind::h1:
        grows = im == -infinity;
        break;
    case BesselKind::h2:
        grows = im == infinity;
        break;
    }
    return {grows && !scaled ? infinity : 0, 0, bessel_fine};
}

} // namespace

int arrlib::bessel_accuracy(double size)
{
    if (!(size > less_accurate_from) || std::isinf(size))
        return bessel_fine;
    return size > inaccurate_from ? bessel_inaccurate : bessel_less_accurate;
}

BesselValue arrlib::bessel_value(BesselKind kind, double nu, double re, double im, bool scaled)
{
    if (std::isnan(re) || std::isnan(im) || !std::isfinite(nu))
        return {not_a_number, 0, bessel_bad_argument};
    BesselValue value;
    if (im == 0)
        value = bessel_of_real(kind, nu, re, scaled);
    else if (std::isinf(re) || std::isinf(im))
        value = at_infinity(kind, re, im, scaled);
    else
        value = bessel_of_complex(kind, nu, re, im, scaled);

    if (value.status == bessel_not_converged)
        return {not_a_number, 0, bessel_not_converged};
    if (std::isinf(value.re) || std::isinf(value.im))
        value.status = bessel_overflow;
    else
        value.status = bessel_accuracy(std::max(std::fabs(nu), std::hypot(re, im)));
    return value;
}
