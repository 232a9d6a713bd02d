// Products of many numbers that leave the range of a double on their way.
#ifndef ARRLIB_BUILTINS_SCALED_PRODUCT_H
#define ARRLIB_BUILTINS_SCALED_PRODUCT_H

#include "builtins/lapack.h"

#include <algorithm>
#include <cmath>

namespace arrlib {

// Holds a mantissa and a power of two apart: what comes out is what plain multiplications give where
// they stay in range.
template <Scalar T> class ScaledProduct {
public:
    void multiply(T factor)
    {
        mantissa_ *= factor;
        double const size = std::max(std::abs(std::real(mantissa_)), std::abs(std::imag(mantissa_)));
        if (size == 0 || !std::isfinite(size))
            return;
        int power;
        std::frexp(size, &power);
        mantissa_ = times_power_of_two(mantissa_, -power);
        exponent_ += power;
    }
    T value() const { return times_power_of_two(mantissa_, static_cast<int>(std::clamp<long long>(exponent_, -10000, 10000))); }

private:
    static double times_power_of_two(double x, int power) { return std::ldexp(x, power); }
    static Complex times_power_of_two(Complex x, int power) { return {std::ldexp(x.real(), power), std::ldexp(x.imag(), power)}; }

    T mantissa_ = 1;
    long long exponent_ = 0;
};

} // namespace arrlib

#endif
