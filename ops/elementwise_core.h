// The loops of the engine: one operation over all elements.
#ifndef ARRLIB_OPS_ELEMENTWISE_CORE_H
#define ARRLIB_OPS_ELEMENTWISE_CORE_H

#include "core/matrix.h"
#include "ops/apply.h"

namespace arrlib {

// The operation, which has element kernels, of operands that have elements and fit each other. An
// operand that nobody else holds lends its storage to the result. x_M after a report.
M<double> elementwise(OpCode op, M<double>&& x, M<double>&& y);

// The same by the shortest way, for operands and operations where nothing has to be found out: full and
// real operands, of one shape or one of them a scalar, and operations that are real for such. Says whether
// that is so; a unary operation has a scalar for y.
bool goes_straight(OpCode op, M<double> const& x, M<double> const& y);
M<double> straight_elementwise(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries);
// The same for large results, whose elements are due at the end of the statement; where a temporary is such
// a result itself, or the new one may wait. The question computes what another expression has due.
bool goes_into_chain(M<double> const& x, M<double> const& y, Temporaries temporaries);
M<double> chained_elementwise(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries);

} // namespace arrlib

#endif
