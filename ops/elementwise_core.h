// The loops of the engine: one operation over all elements.
#ifndef ARRLIB_OPS_ELEMENTWISE_CORE_H
#define ARRLIB_OPS_ELEMENTWISE_CORE_H

#include "core/matrix.h"
#include "ops/op_code.h"

namespace arrlib {

// The operation, which has element kernels, of operands that have elements and fit each other. An
// operand that nobody else holds lends its storage to the result. x_M after a report.
M<double> elementwise(OpCode op, M<double>&& x, M<double>&& y);

} // namespace arrlib

#endif
