// Products with sparse operands. The sizes fit; results are without storage after a report, such as
// "Out of memory!" or, for a sparse result that is too large, "sparse: matrix is too large".
#ifndef ARRLIB_OPS_SPARSE_PRODUCT_H
#define ARRLIB_OPS_SPARSE_PRODUCT_H

#include "core/matrix.h"

namespace arrlib {

// Sparse.
M<double> sparse_times_sparse(M<double> const& x, M<double> const& y);
// Full.
M<double> sparse_times_full(M<double> const& x, M<double> const& y);
M<double> full_times_sparse(M<double> const& x, M<double> const& y);

} // namespace arrlib

#endif
