// Subscripts and the numbers of elements in storage order, for values of given sizes. Both count from 1.
#ifndef ARRLIB_BUILTINS_POSITIONS_H
#define ARRLIB_BUILTINS_POSITIONS_H

#include "core/matrix.h"

// The numbers of the elements with the subscripts i1, i2 ... in a value of sizes siz, in the shape that
// the subscripts have in common. The last subscript counts through the dimensions that are left.
// Subscripts are truncated. "sub2ind: subscript out of range", "sub2ind: sizes of %s and %s do not
// agree".
ARRLIB_API M<double> sub2ind(M<double> const& siz, M<double> const& i1);
ARRLIB_API M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2);
ARRLIB_API M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2, M<double> const& i3);
ARRLIB_API M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2, M<double> const& i3, M<double> const& i4);

// The subscripts of the elements with the numbers k in a value of sizes siz, each output in the shape of
// k. The last output counts through the dimensions that are left, those beyond the sizes are 1.
// Numbers are truncated. "ind2sub: index out of range".
ARRLIB_API M<double> ind2sub(M<double> const& siz, M<double> const& k);
ARRLIB_API M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1);
ARRLIB_API M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2);
ARRLIB_API M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2, Mr<double> i3);
ARRLIB_API M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2, Mr<double> i3, Mr<double> i4);

#endif
