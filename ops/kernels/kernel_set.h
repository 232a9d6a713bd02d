// The kernels that are compiled once per kind of processor, and the choice between the kinds.
#ifndef ARRLIB_OPS_KERNELS_KERNEL_SET_H
#define ARRLIB_OPS_KERNELS_KERNEL_SET_H

#include "ops/kernels/kernel.h"

namespace arrlib {

// Every kind gives the same bits.
struct KernelSet {
    char const* kind;
    // One element of an elementary function; null where the operation has no kernel per kind.
    RealUnary unary[op_count];
    RealBinary binary[op_count];
    // Arrays; null where the loop over the one-element kernel serves.
    RealLoop real[op_count];
    ComplexLoop complex[op_count];
    // Whether an element is below low or above high; or above low and below high. NaN is neither. 1 may not
    // be what is looked for.
    bool (*any_outside)(double const* x, std::ptrdiff_t n, double low, double high);
    bool (*any_inside)(double const* x, std::ptrdiff_t n, double low, double high);
    // Whether an element is below 0.
    bool (*any_negative)(double const* x, std::ptrdiff_t n);
};

// The best kind that this processor has, or the one named by the environment variable
// ARRLIB_KERNELS ("baseline", "avx2", "avx512"), if the processor has it. Chosen once.
KernelSet const& kernel_set();
// The kinds that this processor has, worst first; returns their number. For tests.
int kernel_sets(KernelSet const* (&sets)[3]);

} // namespace arrlib

#endif
