#include "ops/blas_processor.h"

#if defined(ARRLIB_OPENBLAS)

#include "ops/kernels/kernel_set.h"
#include "platform/platform.h"

#include <cstring>

extern "C" {
char* openblas_get_corename();
// Not in its header, and absent where it was built for one processor only.
[[gnu::weak]] void gotoblas_dynamic_init();
[[gnu::weak]] void gotoblas_dynamic_quit();
}

namespace {

constexpr char setting[] = "OPENBLAS_CORETYPE";

// What OpenBLAS calls the oldest processor of a kind.
char const* processor_of(char const* kind)
{
    return std::strcmp(kind, "avx512") == 0 ? "SkylakeX" : std::strcmp(kind, "avx2") == 0 ? "Haswell" : nullptr;
}

} // namespace

void arrlib::choose_blas_loops()
{
    constexpr char unknown_processor[] = "Prescott";
    if (platform::environment(setting) || !gotoblas_dynamic_init || !gotoblas_dynamic_quit || std::strcmp(openblas_get_corename(), unknown_processor) != 0)
        return;
    KernelSet const* sets[3];
    char const* const better = processor_of(sets[kernel_sets(sets) - 1]->kind);
    if (!better)
        return;
    platform::set_environment(setting, better);
    gotoblas_dynamic_quit();
    gotoblas_dynamic_init();
    platform::set_environment(setting, nullptr);
}

#endif
