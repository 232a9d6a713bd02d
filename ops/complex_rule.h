// Whether the result of an operation is complex.
#ifndef ARRLIB_OPS_COMPLEX_RULE_H
#define ARRLIB_OPS_COMPLEX_RULE_H

#include "core/matrix.h"
#include "ops/op_table.h"

#include <cstddef>

namespace arrlib {

bool is_complex_result(ComplexRule rule, M<double> const& x, M<double> const& y);

// Whether the rule looks at every element of a real x and at nothing else, and whether one of these makes
// the result complex.
bool depends_on_elements(ComplexRule rule);
bool makes_complex(ComplexRule rule, double const* x, std::ptrdiff_t n);

} // namespace arrlib

#endif
