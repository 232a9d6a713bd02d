// The stored entries of a sparse value, for code that reads them.
#ifndef ARRLIB_OPS_SPARSE_ENTRIES_H
#define ARRLIB_OPS_SPARSE_ENTRIES_H

#include "core/access.h"
#include "core/matrix.h"

namespace arrlib {

// Entry k stands at position at[k], counted from 0 and rising; no imaginary parts if `im` is null.
// Values may be zero.
struct SparseEntries {
    explicit SparseEntries(M<double> const& matrix) : count(matrix.getnnz()), at(Access<double>::index(matrix)), re(matrix.addr()), im(matrix.addi()) {}

    int count;
    int const* at;
    double const* re;
    double const* im;
};

// A sparse value as it is or, when half of its room and more is left, in smaller storage; without
// storage after a report.
M<double> with_little_room(M<double>&& made);

} // namespace arrlib

#endif
