// Joining two or three values along a dimension.
#ifndef ARRLIB_CORE_JOIN_H
#define ARRLIB_CORE_JOIN_H

#include "core/matrix.h"

// A and B side by side, one above the other. An empty value gives way to the other. The result is
// complex, sparse or text when A or B is, logical when both are. "horzcat: # of rows different",
// "vertcat: # of cols different"; values with pages must agree in them: "cat: arguments do not have
// compatible dimensions".
ARRLIB_API M<double> horzcat(M<double> const& A, M<double> const& B);
ARRLIB_API M<M<double>> horzcat(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<double> vertcat(M<double> const& A, M<double> const& B);
ARRLIB_API M<M<double>> vertcat(M<M<double>> const& A, M<M<double>> const& B);
// The values joined along dimension dim, 1 to 4, with the kinds as above; along 3 and 4 the result
// is full. Empty values are left out. A page may be joined to values that have pages. "cat: no such
// dimension", "cat: arguments do not have the same number of dimensions", "cat: arguments do not
// have compatible dimensions" when sizes other than dim differ.
ARRLIB_API M<double> cat(M<double> const& dim, M<double> const& A, M<double> const& B);
ARRLIB_API M<double> cat(M<double> const& dim, M<double> const& A, M<double> const& B, M<double> const& C);
ARRLIB_API M<M<double>> cat(M<double> const& dim, M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<M<double>> cat(M<double> const& dim, M<M<double>> const& A, M<M<double>> const& B, M<M<double>> const& C);

#endif
