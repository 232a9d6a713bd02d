// Reductions of sparse values along a dimension, in the time of the stored entries.
#ifndef ARRLIB_OPS_SPARSE_REDUCE_H
#define ARRLIB_OPS_SPARSE_REDUCE_H

#include "core/matrix.h"
#include "ops/op_code.h"

namespace arrlib {

// Sum, prod, all, any, max_1 or min_1 along dimension `dim`, counted from 0; the result is sparse, and
// without storage after a report. Zeros that are not stored count. False for other operations, which
// need the full form; the result is as it was then.
bool sparse_reduce(M<double>& result, M<double> const& x, int dim, OpCode op);

} // namespace arrlib

#endif
