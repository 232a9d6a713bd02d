// Sparse values of random numbers.
#ifndef ARRLIB_OPS_SPARSE_RANDOM_H
#define ARRLIB_OPS_SPARSE_RANDOM_H

#include "core/api.h"

// Uniform or normal draws in the places of the non-zeros.
ARRLIB_API M<double> sprand(M<double> const& a);
ARRLIB_API M<double> sprandn(M<double> const& a);
// density * m * n draws, rounded, in places of an m x n value drawn uniformly; a density outside
// [0,1] counts as the nearest. "sparse: matrix is too large".
ARRLIB_API M<double> sprand(M<double> const& m, M<double> const& n, M<double> const& density);
ARRLIB_API M<double> sprandn(M<double> const& m, M<double> const& n, M<double> const& density);

#endif
