// Operations element by element on sparse values, in the time of the stored entries.
#ifndef ARRLIB_OPS_SPARSE_ELEMENTWISE_H
#define ARRLIB_OPS_SPARSE_ELEMENTWISE_H

#include "core/matrix.h"
#include "ops/kernels/kernel.h"
#include "ops/op_code.h"

namespace arrlib {

// Results are sparse and store no zeros; without storage after a report. `complex` computes when it is
// not null and an operand or the result is complex, otherwise `real` does, from real parts.

// Of two sparse operands of the same shape; the operation of two zeros is zero.
M<double> sparse_union(M<double> const& x, M<double> const& y, RealLoop real, ComplexLoop complex, bool complex_result);
// Of two operands of the same shape, one or both of them sparse; the operation is zero where either of
// them is, unless the other one is NaN or infinite there.
M<double> sparse_masked(M<double> const& x, M<double> const& y, RealLoop real, ComplexLoop complex, bool complex_result);

} // namespace arrlib

#endif
