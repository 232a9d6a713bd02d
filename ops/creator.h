// Values made from their sizes alone: zeros, ones, identities and, for ops/random.h and
// builtins/ranges.h, random numbers and any other number.
#ifndef ARRLIB_OPS_CREATOR_H
#define ARRLIB_OPS_CREATOR_H

#include "core/matrix.h"

#include <initializer_list>

// One argument is n, for n x n, or a list of two to four sizes; two to four arguments are a size
// each; none makes a 1x1 value. Sizes are truncated, negative ones and NaN count as 0; of complex
// sizes the real parts count, of text the character codes. An empty argument gives nop_M; nop_M
// itself behind the first argument stands for one left out. After a report, of "eye01: expecting
// scalar argument", "eye01: too many dimensions" or "Out of memory!", the result is x_M.
ARRLIB_API M<double> zeros();
ARRLIB_API M<double> zeros(M<double> const& n);
ARRLIB_API M<double> zeros(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> zeros(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> zeros(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
// Complex zeros.
ARRLIB_API M<double> czeros();
ARRLIB_API M<double> czeros(M<double> const& n);
ARRLIB_API M<double> czeros(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> czeros(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> czeros(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
ARRLIB_API M<double> ones();
ARRLIB_API M<double> ones(M<double> const& n);
ARRLIB_API M<double> ones(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> ones(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> ones(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);
// Ones on the main diagonal. An identity of more than two dimensions is too many.
ARRLIB_API M<double> eye();
ARRLIB_API M<double> eye(M<double> const& n);
ARRLIB_API M<double> eye(M<double> const& m, M<double> const& n);
ARRLIB_API M<double> eye(M<double> const& m, M<double> const& n, M<double> const& p);
ARRLIB_API M<double> eye(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q);

namespace arrlib {

enum CreatorCode : int { create_zeros, create_complex_zeros, create_ones, create_identity, create_uniform, create_normal };

// What all of them call, with the addresses of their size arguments. "eye01_op: unknown op" for other
// codes.
M<double> eye01(int code, std::initializer_list<M<double> const*> sizes);
// One number everywhere.
M<double> filled(double value, std::initializer_list<M<double> const*> sizes);

} // namespace arrlib

#endif
