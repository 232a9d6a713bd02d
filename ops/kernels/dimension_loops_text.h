// All loops of dimension_loops.h, for the file of each kind.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_TEXT_H
#define ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_TEXT_H

#include "ops/kernels/dimension_loops_rows.h"
#include "ops/kernels/dimension_loops_scan.h"

namespace arrlib {
namespace {

constexpr DimensionLoops loops_of_kind(char const* kind)
{
    return {kind,         sum,         product,      complex_product,      best<true>,     best<false>,        merge_best<true>, merge_best<false>,
            renumber,     truth<false>, truth<true>, safe_product, safe_complex_product, cumulative_sum, cumulative_product,
            cumulative_complex_product};
}

} // namespace
} // namespace arrlib

#endif
