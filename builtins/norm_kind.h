// The norms of matrices, for those who name one and those who need one.
#ifndef ARRLIB_BUILTINS_NORM_KIND_H
#define ARRLIB_BUILTINS_NORM_KIND_H

#include "builtins/args.h"

namespace arrlib {

enum class NormKind { one, two, infinite, frobenius };

// What a user gives for p, 2 when nothing. False after "%s: only 1, 2, Inf and 'fro' for matrices".
bool matrix_norm_kind(Arguments const& args, M<double> const& p, NormKind& kind);
// Of a two-dimensional value, sparse or full, with elements; NaN when one is. False after a report: "%s: use normest
// for a sparse matrix", "%s: iteration did not converge".
bool matrix_norm(Arguments const& args, M<double> const& A, NormKind kind, double& norm);

} // namespace arrlib

#endif
