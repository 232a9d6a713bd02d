// The product of matrices.
#ifndef ARRLIB_OPS_MATRIX_PRODUCT_H
#define ARRLIB_OPS_MATRIX_PRODUCT_H

#include "core/matrix.h"

namespace arrlib {

// x times y for matrices; operator* deals with scalars and empty operands. Two sparse operands give a
// sparse product, others a full one; it is complex when an operand is. Zeros that a sparse operand
// does not store take no part, not even beside NaN and infinities. The last bits of products of full
// matrices from some 650x650 on depend on the number of threads. x_M after a report: "*: %s has more than
// two dimensions", "*: inner dimensions of %s and %s do not agree".
M<double> matrix_product(M<double> const& x, M<double> const& y);

} // namespace arrlib

#endif
