// New shapes for values, and their elements in another order. Every function keeps the kind of its
// operand: text stays text, logical stays logical, sparse stays sparse as long as the result is
// two-dimensional. After a report the result is empty.
#ifndef ARRLIB_CORE_RESHAPE_H
#define ARRLIB_CORE_RESHAPE_H

#include "core/matrix.h"

// The same elements, in storage order, in a shape of as many: the sizes in a list, missing ones
// being 1, or as two to four scalars. "reshape: size is wrong"; "reshape: too many dimensions" for
// more than four sizes, or more than two for a sparse value.
ARRLIB_API M<double> reshape(M<double> const& A, M<double> const& sizes);
ARRLIB_API M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n);
ARRLIB_API M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> reshape(M<double> const& A, M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
ARRLIB_API M<M<double>> reshape(M<M<double>> const& A, M<double> const& sizes);
ARRLIB_API M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n);
ARRLIB_API M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<M<double>> reshape(M<M<double>> const& A, M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);

// Rows and columns exchanged; ctranspose, and transpose with `plain` 0, conjugate as well. Real
// vectors share their storage. "transpose: matrix %s has more than two dimensions".
ARRLIB_API M<double> transpose(M<double> const& A);
ARRLIB_API M<double> transpose(M<double> const& A, int plain);
ARRLIB_API M<double> dot_transpose(M<double> const& A);
ARRLIB_API M<double> ctranspose(M<double> const& A);
ARRLIB_API M<M<double>> transpose(M<M<double>> const& A);
ARRLIB_API M<M<double>> transpose(M<M<double>> const& A, int plain);
ARRLIB_API M<M<double>> dot_transpose(M<M<double>> const& A);
ARRLIB_API M<M<double>> ctranspose(M<M<double>> const& A);

// The order of columns, of rows, or along dimension dim (1 to 4) reversed, on every page. "flipdim:
// no such dimension".
ARRLIB_API M<double> fliplr(M<double> const& A);
ARRLIB_API M<double> flipud(M<double> const& A);
ARRLIB_API M<double> flipdim(M<double> const& A, M<double> const& dim);
ARRLIB_API M<M<double>> fliplr(M<M<double>> const& A);
ARRLIB_API M<M<double>> flipud(M<M<double>> const& A);
ARRLIB_API M<M<double>> flipdim(M<M<double>> const& A, M<double> const& dim);

// Every page turned counter-clockwise by a right angle, k times; a negative k turns clockwise.
ARRLIB_API M<double> rot90(M<double> const& A);
ARRLIB_API M<double> rot90(M<double> const& A, M<double> const& k);
ARRLIB_API M<M<double>> rot90(M<M<double>> const& A);
ARRLIB_API M<M<double>> rot90(M<M<double>> const& A, M<double> const& k);

// Copies side by side: m x n of them; m x m for a scalar m alone; m(d) along dimension d for a list,
// at most four: "repmat: too many dimensions". A count below 1 gives an empty value.
ARRLIB_API M<double> repmat(M<double> const& A, M<double> const& m);
ARRLIB_API M<double> repmat(M<double> const& A, M<double> const& m, M<double> const& n);
ARRLIB_API M<M<double>> repmat(M<M<double>> const& A, M<double> const& m);
ARRLIB_API M<M<double>> repmat(M<M<double>> const& A, M<double> const& m, M<double> const& n);

#endif
