// Grids: coordinates of all the points that lists of coordinates span.
#ifndef ARRLIB_BUILTINS_GRIDS_H
#define ARRLIB_BUILTINS_GRIDS_H

#include "core/matrix.h"

// The coordinates of a grid of numel(y) rows, numel(x) columns and, with z, numel(z) pages: X has x in
// every row, Y has y in every column, Z has one number of z in every page. Coordinates left out are
// those of x. Empty when one of them is.
ARRLIB_API M<double> meshgrid(M<double> const& x);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z);
ARRLIB_API M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, i_o_t, Mr<double> X);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X);
ARRLIB_API M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X, Mr<double> Y);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, i_o_t, Mr<double> X, Mr<double> Y);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X, Mr<double> Y);
ARRLIB_API M<double> meshgrid(M<double> const& x, i_o_t, Mr<double> X, Mr<double> Y, Mr<double> Z);
ARRLIB_API M<double> meshgrid(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> X, Mr<double> Y, Mr<double> Z);

// The coordinates of a grid with a dimension for each list: X1 varies along dimension 1, X2 along
// dimension 2 and so on. One list serves for all outputs, and for two dimensions at least. Empty when
// one of the lists is.
ARRLIB_API M<double> ndgrid(M<double> const& x1);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4);
ARRLIB_API M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1);
ARRLIB_API M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2);
ARRLIB_API M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3);
ARRLIB_API M<double> ndgrid(M<double> const& x1, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3, Mr<double> X4);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, i_o_t, Mr<double> X1);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, i_o_t, Mr<double> X1, Mr<double> X2);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1, Mr<double> X2);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3);
ARRLIB_API M<double> ndgrid(M<double> const& x1, M<double> const& x2, M<double> const& x3, M<double> const& x4, i_o_t, Mr<double> X1, Mr<double> X2, Mr<double> X3,
                            Mr<double> X4);

#endif
