// What the files compiled once per kind define.
#ifndef ARRLIB_OPS_KERNELS_KERNEL_KINDS_H
#define ARRLIB_OPS_KERNELS_KERNEL_KINDS_H

#include "ops/kernels/kernel_set.h"

namespace arrlib {

extern KernelSet const kernels_baseline;
#if defined(ARRLIB_X86_KERNELS)
extern KernelSet const kernels_avx2;
extern KernelSet const kernels_avx512;
#endif

} // namespace arrlib

#endif
