#include "ops/kernels/dimension_loops.h"

#include "ops/kernels/kernel_set.h"

#include <cstring>
#include <initializer_list>

namespace arrlib {

DimensionLoops const& dimension_loops(char const* kind)
{
    for (DimensionLoops const* kernels : {&dimension_loops_avx512, &dimension_loops_avx2})
        if (std::strcmp(kernels->kind, kind) == 0)
            return *kernels;
    return dimension_loops_baseline;
}

DimensionLoops const& dimension_loops()
{
    static DimensionLoops const& chosen = dimension_loops(kernel_set().kind);
    return chosen;
}

} // namespace arrlib
