// The choice between the kinds of kernels.
#include "ops/kernels/kernel_set.h"

#include "ops/kernels/kernel_kinds.h"

#include <cstdlib>
#include <cstring>

using namespace arrlib;

int arrlib::kernel_sets(KernelSet const* (&sets)[3])
{
    int count = 0;
    sets[count++] = &kernels_baseline;
#if defined(ARRLIB_X86_KERNELS)
    bool const fma = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    if (fma)
        sets[count++] = &kernels_avx2;
    if (fma && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512bw"))
        sets[count++] = &kernels_avx512;
#endif
    return count;
}

KernelSet const& arrlib::kernel_set()
{
    static KernelSet const& chosen = []() -> KernelSet const& {
        KernelSet const* sets[3];
        int const count = kernel_sets(sets);
        char const* const wanted = std::getenv("ARRLIB_KERNELS");
        for (int k = 0; wanted && k < count; ++k)
            if (std::strcmp(wanted, sets[k]->kind) == 0)
                return *sets[k];
        return *sets[count - 1];
    }();
    return chosen;
}
