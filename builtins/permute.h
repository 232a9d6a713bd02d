// Dimensions in another order, and elements moved along them. Every function keeps the kind of its
// operand: text stays text, logical stays logical, a sparse value stays sparse while the result is
// two-dimensional.
#ifndef ARRLIB_BUILTINS_PERMUTE_H
#define ARRLIB_BUILTINS_PERMUTE_H

#include "core/matrix.h"

// The dimensions in the order p: dimension k of the result is dimension p(k) of A. p holds the numbers
// 1 to n once each, n being at least the number of dimensions in use and at most 4: "permute: order
// must be a permutation of the dimensions".
ARRLIB_API M<double> permute(M<double> const& A, M<double> const& p);
ARRLIB_API M<M<double>> permute(M<M<double>> const& A, M<double> const& p);
// What permute with the same order undoes: dimension p(k) of the result is dimension k of A. "ipermute:
// order must be a permutation of the dimensions".
ARRLIB_API M<double> ipermute(M<double> const& A, M<double> const& p);
ARRLIB_API M<M<double>> ipermute(M<M<double>> const& A, M<double> const& p);

// The dimensions shifted: n of them from the front to the end, or, for negative n, -n dimensions of
// size 1 put in front, "shiftdim: too many dimensions" beyond four. Without n the dimensions of size 1
// in front go away. The second output is n, or how many went.
ARRLIB_API M<double> shiftdim(M<double> const& A);
ARRLIB_API M<double> shiftdim(M<double> const& A, M<double> const& n);
ARRLIB_API M<double> shiftdim(M<double> const& A, i_o_t, Mr<double> B);
ARRLIB_API M<double> shiftdim(M<double> const& A, M<double> const& n, i_o_t, Mr<double> B);
ARRLIB_API M<double> shiftdim(M<double> const& A, i_o_t, Mr<double> B, Mr<double> shifts);
ARRLIB_API M<double> shiftdim(M<double> const& A, M<double> const& n, i_o_t, Mr<double> B, Mr<double> shifts);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A, i_o_t, Mr<M<double>> B);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n, i_o_t, Mr<M<double>> B);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A, i_o_t, Mr<M<double>> B, Mr<double> shifts);
ARRLIB_API M<M<double>> shiftdim(M<M<double>> const& A, M<double> const& n, i_o_t, Mr<M<double>> B, Mr<double> shifts);

// Without the dimensions of size 1; a two-dimensional value as it is.
ARRLIB_API M<double> squeeze(M<double> const& A);
ARRLIB_API M<M<double>> squeeze(M<M<double>> const& A);

// The elements moved n places along a dimension, those pushed out at the end put in at the start; a
// negative n moves towards the start. Along dimension 1, along dim, or n(d) places along dimension d
// for several n: "circshift: too many dimensions" for more than four, "circshift: dim argument must be
// positive", "circshift: dim argument may not be more then the number of dimensions".
ARRLIB_API M<double> circshift(M<double> const& A, M<double> const& n);
ARRLIB_API M<double> circshift(M<double> const& A, M<double> const& n, M<double> const& dim);
ARRLIB_API M<M<double>> circshift(M<M<double>> const& A, M<double> const& n);

#endif
