// Angles that are too large for the kernels.
#ifndef ARRLIB_OPS_KERNELS_HUGE_ANGLE_H
#define ARRLIB_OPS_KERNELS_HUGE_ANGLE_H

namespace arrlib {

// quarters pi/2 + hi + lo, but for whole turns; |hi| is pi/4 at most, and the sum is good to 70 bits.
struct ReducedAngle {
    double hi, lo;
    int quarters;
};

// Of an angle of at least 2^28 in magnitude; NaN of an infinite one and of NaN.
ReducedAngle reduce_huge_angle(double x);

} // namespace arrlib

#endif
