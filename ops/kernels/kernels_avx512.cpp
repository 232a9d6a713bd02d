// The kernels for processors with AVX-512: F, DQ, VL and BW.
#include "ops/kernels/kernel_kinds.h"

#if defined(ARRLIB_X86_KERNELS)
#include "ops/kernels/loop_table.h"

constinit arrlib::KernelSet const arrlib::kernels_avx512 = kernels_of_this_kind("avx512");

#endif
