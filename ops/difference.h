// Differences of neighbours, and what is made of them. Dimensions and messages as in
// ops/reduction.h.
#ifndef ARRLIB_OPS_DIFFERENCE_H
#define ARRLIB_OPS_DIFFERENCE_H

#include "core/matrix.h"

// Every element minus the one before it; one element less. With n, that many times over: with `dim` 0
// or none, a dimension that is used up is followed by the next one larger than 1; else nothing is
// left. An empty n counts as 1, and 0 gives x.
ARRLIB_API M<double> diff(M<double> const& x);
ARRLIB_API M<double> diff(M<double> const& x, M<double> const& n);
ARRLIB_API M<double> diff(M<double> const& x, M<double> const& n, M<double> const& dim);

// Angles whose jumps of more than the tolerance (pi) are undone by multiples of 2 pi. NaN and Inf stay
// and are passed over. Of complex values the real parts are angles; the imaginary parts stay.
ARRLIB_API M<double> unwrap(M<double> const& x);
ARRLIB_API M<double> unwrap(M<double> const& x, M<double> const& dim);
ARRLIB_API M<double> unwrap(M<double> const& x, M<double> const& tolerance, M<double> const& dim);

// --- derivatives ----------------------------------------------------------------------------------
// A spacing is the distance of the points or, as a list, their coordinates: "%s: increment vector must
// be scalar or same length as the corresponding dimension". One spacing is for every dimension; of
// several the first is for dimension 2, the second for dimension 1, the third for dimension 3; an
// empty or missing one is 1.

// Differences of the neighbours on both sides, at the edges of one side. Returns the derivative along
// dimension 2; gives those along dimensions 1 and 3. Of a vector the one along it comes first.
ARRLIB_API M<double> gradient(M<double> const& x);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3);
ARRLIB_API M<double> gradient(M<double> const& x, i_o_t, Mr<double> along1);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h, i_o_t, Mr<double> along1);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, i_o_t, Mr<double> along1);
ARRLIB_API M<double> gradient(M<double> const& x, i_o_t, Mr<double> along1, Mr<double> along3);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h, i_o_t, Mr<double> along1, Mr<double> along3);
ARRLIB_API M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3, i_o_t, Mr<double> along1, Mr<double> along3);

// The sum of the second derivatives, divided by twice the number of dimensions (4 for a matrix and
// for a vector). At the edges each lies on the line through the two next to it; dimensions of less
// than three elements add nothing.
ARRLIB_API M<double> del2(M<double> const& x);
ARRLIB_API M<double> del2(M<double> const& x, M<double> const& h);
ARRLIB_API M<double> del2(M<double> const& x, M<double> const& h2, M<double> const& h1);
ARRLIB_API M<double> del2(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3);

#endif
