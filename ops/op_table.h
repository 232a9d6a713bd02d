// The table of operations: one row for each, in the order of their codes. Everything that the engine
// does differently for different operations stands here.
#ifndef ARRLIB_OPS_OP_TABLE_H
#define ARRLIB_OPS_OP_TABLE_H

#include "ops/kernels/dimension.h"
#include "ops/kernels/kernel.h"

namespace arrlib {

// When the result is complex. Ranges do not see NaN; implicit zeros of a sparse x count.
enum class ComplexRule : unsigned char {
    never,
    with_x,
    // x or y
    with_either,
    // some imaginary part of x is not zero
    with_nonzero_imaginary,
    // x or y, or some element of x below 0, unless every exponent is an integer: the imaginary parts
    // would all be zero, and are dropped
    power,
    // x, or some element of it below 0; outside [-1,1]; inside (-1,1); below 1; outside [0,1]
    below_0,
    outside_1,
    inside_1,
    below_1,
    outside_0_1,
};

// What a sparse operand makes of the result. With a scalar as the other operand the operation is
// tried on zero: the result is sparse when that gives zero.
enum class SparseRule : unsigned char {
    // full
    full,
    // zero where x, or both x and y, are: sparse when every operand is
    zero_of_zero,
    // zero where either is, unless the other one is NaN or infinite: sparse when one operand is
    product,
};

// The arrays of an operation, in the plain form that every processor has.
struct Kernels {
    RealLoop real = nullptr;
    // Complex result of complex operands, null when the operation has none.
    ComplexLoop complex = nullptr;
    // Real result of complex operands; null when the operation looks at real parts only.
    ComplexLoop real_of_complex = nullptr;
    DimensionKernel along = nullptr;
};

struct Operation {
    // Also what messages begin with.
    char const* name;
    bool logical;
    ComplexRule complex;
    SparseRule sparse;
    Kernels kernels;
};

// The row of an operation; null for codes that do not exist.
Operation const* find_operation(int code);
// The best loops there are on this machine.
RealLoop real_loop(OpCode op);
ComplexLoop complex_loop_of(OpCode op);
ComplexLoop real_of_complex_loop(OpCode op);

} // namespace arrlib

#endif
