// What works along a dimension and gives one number for each vector of it, or the running value.
//
// `dim` is 1 to 4; without it, or with 0, the first dimension larger than 1 is meant. An empty value
// gives an empty one, but sum and any without a dimension give 0, prod and all 1. Messages, with the
// name of the operation: "%s: dim argument may not be empty", "%s: dimension=%s does not exist for
// matrix %s". The results do not depend on the kind of processor or on the number of threads.
#ifndef ARRLIB_OPS_REDUCTION_H
#define ARRLIB_OPS_REDUCTION_H

#include "core/matrix.h"
#include "ops/op_code.h"

// --- sums and products ----------------------------------------------------------------------------
// Sums are added up in pieces: more accurate than one after the other, and exact for integers below
// 2^53. Products are taken in pieces where that makes no difference but rounding.
ARRLIB_API M<double> sum(M<double> const& x);
ARRLIB_API M<double> sum(M<double> const& x, M<double> const& dim);
ARRLIB_API M<double> prod(M<double> const& x);
ARRLIB_API M<double> prod(M<double> const& x, M<double> const& dim);
ARRLIB_API M<double> cumsum(M<double> const& x);
ARRLIB_API M<double> cumsum(M<double> const& x, M<double> const& dim);
ARRLIB_API M<double> cumprod(M<double> const& x);
ARRLIB_API M<double> cumprod(M<double> const& x, M<double> const& dim);

// --- logic ----------------------------------------------------------------------------------------
// Whether all elements, or any, are not zero in either part; NaN is not zero. Logical results.
ARRLIB_API M<double> all(M<double> const& x);
ARRLIB_API M<double> all(M<double> const& x, M<double> const& dim);
ARRLIB_API M<double> any(M<double> const& x);
ARRLIB_API M<double> any(M<double> const& x, M<double> const& dim);

// --- order ----------------------------------------------------------------------------------------
// The middle element, or the mean of the two middle ones; NaN when there is a NaN. Complex elements
// are ordered by modulus, those of equal modulus by angle.
ARRLIB_API M<double> median(M<double> const& x);
ARRLIB_API M<double> median(M<double> const& x, M<double> const& dim);
// The largest and the smallest element, the first one of equal ones. NaN is passed over; of nothing
// but NaN they are -Inf and Inf, at position 1. Complex elements are compared by squared modulus: the
// maximum begins at 0. The form with a dimension does not look at y.
ARRLIB_API M<double> max(M<double> const& x);
ARRLIB_API M<double> max(M<double> const& x, M<double> const& y, M<double> const& dim);
ARRLIB_API M<double> min(M<double> const& x);
ARRLIB_API M<double> min(M<double> const& x, M<double> const& y, M<double> const& dim);
// Give the elements and their positions along the dimension; return the elements.
ARRLIB_API M<double> max(M<double> const& x, i_o_t, Mr<double> values, Mr<double> positions);
ARRLIB_API M<double> max(M<double> const& x, M<double> const& y, M<double> const& dim, i_o_t, Mr<double> values, Mr<double> positions);
ARRLIB_API M<double> min(M<double> const& x, i_o_t, Mr<double> values, Mr<double> positions);
ARRLIB_API M<double> min(M<double> const& x, M<double> const& y, M<double> const& dim, i_o_t, Mr<double> values, Mr<double> positions);

namespace arrlib {

// The operation along `dim` (zero_M for none), with a second operand for those that take one.
M<double> apply_along(OpCode op, M<double> const& x, M<double> const& dim);
M<double> apply_along(OpCode op, M<double> const& x, M<double> const& dim, M<double> const& y);

} // namespace arrlib

#endif
