// QR factorisation with column pivoting for built-ins that solve least squares on the way.
#ifndef ARRLIB_BUILTINS_PIVOTED_QR_H
#define ARRLIB_BUILTINS_PIVOTED_QR_H

#include "builtins/zpack.h"

namespace arrlib {

// Q R with the columns of A in another order. A diagonal element of R no larger than the tolerance,
// max(m, n) eps |R(1,1)|, ends the rank.
template <Scalar T> struct PivotedQr {
    Packed<T> packed, tau;
    HeapArray<int> column; // number in A, from 0
    int rank = 0;
    double tolerance = 0;

    // False after a report. The matrix is of finite elements.
    bool factor(Arguments const& args, Packed<T> matrix);
    // b = Q' b; false after a report.
    bool turn(Arguments const& args, Packed<T>& b) const;
    // x, with zeros for the columns beyond the rank, for a right side that has been turned.
    void solve(Packed<T> const& turned, Packed<T>& x) const;
    // All of Q; false after a report.
    bool unitary(Arguments const& args, Packed<T>& q) const;
};

} // namespace arrlib

#endif
