// Joining, turning and tiling sparse values; the time is that of the stored entries.
#ifndef ARRLIB_CORE_SPARSE_REARRANGE_H
#define ARRLIB_CORE_SPARSE_REARRANGE_H

#include "core/matrix.h"

namespace arrlib {

// Every operand is sparse unless it is said otherwise. The results carry no string or logical flag;
// after a report, such as "sparse: matrix is too large" for a shape that does not fit, they have no
// storage.

// b to the right of a (dimension 1, counted from 0) or below it (dimension 0); one of them may be
// full. The sizes agree.
M<double> sparse_joined(int dim, M<double> const& a, M<double> const& b);
M<double> sparse_transposed(M<double> const& a);
// The order of rows (dimension 0) or columns (1) reversed.
M<double> sparse_flipped(M<double> const& a, int dim);
// down x across copies.
M<double> sparse_tiled(M<double> const& a, int down, int across);

} // namespace arrlib

#endif
