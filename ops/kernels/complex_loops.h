// Loops over complex arrays that are faster than the loop over the kernel of one element.
#ifndef ARRLIB_OPS_KERNELS_COMPLEX_LOOPS_H
#define ARRLIB_OPS_KERNELS_COMPLEX_LOOPS_H

#include "ops/kernels/kernel.h"

namespace arrlib {

// The loop of an operation, null where there is none. An operand without imaginary part is a real
// number in products and quotients: 2*(Inf+i) is Inf+2i. In all else, and for complex operands, every
// element gets the bits that the kernel gives.
ComplexLoop complex_loop(OpCode op);

} // namespace arrlib

#endif
