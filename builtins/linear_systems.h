// Linear systems as other families solve them, with their own names in the messages.
#ifndef ARRLIB_BUILTINS_LINEAR_SYSTEMS_H
#define ARRLIB_BUILTINS_LINEAR_SYSTEMS_H

#include "builtins/args.h"

namespace arrlib {

enum class Warnings { given, withheld };

// A\B for matrices of two dimensions, with elements and as many rows; empty after a report. See mldivide.
M<double> solved(Arguments const& args, M<double> const& A, M<double> const& B, Warnings warnings = Warnings::given);
// The inverse of a square matrix with elements; empty after a report. See inv.
M<double> inverse(Arguments const& args, M<double> const& A, Warnings warnings = Warnings::given);
// n x n; empty after a report.
M<double> sparse_identity(int n);

} // namespace arrlib

#endif
