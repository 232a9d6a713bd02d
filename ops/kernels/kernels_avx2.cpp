// The kernels for processors with AVX2 and FMA.
#include "ops/kernels/kernel_kinds.h"

#if defined(ARRLIB_X86_KERNELS)
#include "ops/kernels/loop_table.h"

constinit arrlib::KernelSet const arrlib::kernels_avx2 = kernels_of_this_kind("avx2");

#endif
