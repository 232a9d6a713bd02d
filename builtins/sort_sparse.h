// Sorting sparse values without their zeros.
#ifndef ARRLIB_BUILTINS_SORT_SPARSE_H
#define ARRLIB_BUILTINS_SORT_SPARSE_H

#include "core/matrix.h"

namespace arrlib {

// Along dimension `dim`, counted from 0; sparse, without storage after a report. `positions`, when not
// null, takes the full matrix of the places that the elements had.
M<double> sort_sparse(M<double> const& x, int dim, M<double>* positions);

} // namespace arrlib

#endif
