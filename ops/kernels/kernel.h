// The forms of the kernels: what computes one element, what computes an array, what works along a
// dimension.
#ifndef ARRLIB_OPS_KERNELS_KERNEL_H
#define ARRLIB_OPS_KERNELS_KERNEL_H

#include "ops/kernels.h"
#include "ops/op_code.h"

#include <cstddef>

namespace arrlib {

// One element.
using RealUnary = double (*)(double);
using RealBinary = double (*)(double, double);
using ComplexUnary = nx_complex (*)(nx_complex);
using ComplexBinary = nx_complex (*)(nx_complex, nx_complex);
// A real result of complex operands: abs, angle, comparisons.
using RealOfComplex = double (*)(nx_complex);
using RealOfComplexes = double (*)(nx_complex, nx_complex);

// An operand of a loop: element k is at[k * step]; step is 1, or 0 for a scalar.
struct RealOperand {
    double const* at;
    int step;
};
// Without an imaginary part when `im` is null.
struct ComplexOperand {
    double const* re;
    double const* im;
    int step;
};

// z[0..n) from n elements of the operands. z may be the very array of an operand with step 1, and
// overlaps in no other way. Unary loops do not look at y.
using RealLoop = void (*)(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n);
// `im` is null for operations whose result is always real.
using ComplexLoop = void (*)(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n);

// Where the vectors of a dimension lie: element k of vector (i, o) is at (o * length + k) * stride + i,
// for i < stride and o < outer.
struct Axis {
    std::ptrdiff_t stride, length, outer;
};

} // namespace arrlib

#endif
