// Whether the result of an operation is complex.
#ifndef ARRLIB_OPS_COMPLEX_RULE_H
#define ARRLIB_OPS_COMPLEX_RULE_H

#include "core/matrix.h"
#include "ops/op_table.h"

namespace arrlib {

bool is_complex_result(ComplexRule rule, M<double> const& x, M<double> const& y);

} // namespace arrlib

#endif
