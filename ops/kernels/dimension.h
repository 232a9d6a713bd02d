// The kernels that work along one dimension.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_H
#define ARRLIB_OPS_KERNELS_DIMENSION_H

#include "ops/kernels/kernel.h"

namespace arrlib {

// Reads the vectors of `x` along `axis` and writes the result, whose vectors lie in the same order.
// The results do not depend on the kind of processor or on the number of threads.
struct DimensionWork {
    // Parts of the operand; im is null for a real one.
    double const* x;
    double const* xi;
    Axis axis;
    // The second operand: spacing of gradient and del2, tolerance of unwrap; null when there is none.
    double const* y;
    int y_count;
    // Parts of the result; im is null for a real one. 1-based positions, when not null (max, min).
    double* re;
    double* im;
    double* index;
};

// Extents of the result: length 1, length - 1 (diff), or the same. False after a report.
using DimensionKernel = bool (*)(DimensionWork const& work);

bool along_diff(DimensionWork const& work);
bool along_del2(DimensionWork const& work);
bool along_gradient(DimensionWork const& work);
bool along_all(DimensionWork const& work);
bool along_any(DimensionWork const& work);
bool along_cumprod(DimensionWork const& work);
bool along_cumsum(DimensionWork const& work);
bool along_max(DimensionWork const& work);
bool along_median(DimensionWork const& work);
bool along_min(DimensionWork const& work);
bool along_prod(DimensionWork const& work);
bool along_sum(DimensionWork const& work);
bool along_unwrap(DimensionWork const& work);

} // namespace arrlib

#endif
