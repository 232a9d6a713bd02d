// Plane rotations, and factorisations that they bring up to date. Operands may be complex; sparse ones are
// made full. "%s: sizes of %s and %s do not agree" wherever the sizes of operands do not fit. After a
// report every output is empty.
#ifndef ARRLIB_BUILTINS_ROTATIONS_H
#define ARRLIB_BUILTINS_ROTATIONS_H

#include "core/matrix.h"

// Unitary 2x2 matrix G with y = G x = [norm(x); 0]; the identity for x = 0. "planerot: argument must have
// two elements".
ARRLIB_API M<double> planerot(M<double> const& x);
ARRLIB_API M<double> planerot(M<double> const& x, i_o_t, Mr<double> G);
ARRLIB_API M<double> planerot(M<double> const& x, i_o_t, Mr<double> G, Mr<double> y);

// Rotation G = [c s; -s' c], with real c, that turns [x; y] into [r; 0]; with two outputs c and s alone.
// "givens: argument must be scalar".
ARRLIB_API M<double> givens(M<double> const& x, M<double> const& y);
ARRLIB_API M<double> givens(M<double> const& x, M<double> const& y, i_o_t, Mr<double> G);
ARRLIB_API M<double> givens(M<double> const& x, M<double> const& y, i_o_t, Mr<double> c, Mr<double> s);

// Cholesky factor of R'R + x x', or of R'R - x x' with the option "-". "cholupdate: downdated matrix is
// not positive definite", "cholupdate: matrix must be square", "cholupdate: unknown option %s".
ARRLIB_API M<double> cholupdate(M<double> const& R, M<double> const& x);
ARRLIB_API M<double> cholupdate(M<double> const& R, M<double> const& x, M<double> const& option);

// QR factors, Q m x m and R m x n, after the column x has been put before column j of the product Q R.
// "qrinsert: index out of range".
ARRLIB_API M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x);
ARRLIB_API M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x, i_o_t, Mr<double> Q1);
ARRLIB_API M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x, i_o_t, Mr<double> Q1, Mr<double> R1);

// QR factors after column j of the product Q R has been taken out. "qrdelete: index out of range".
ARRLIB_API M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j);
ARRLIB_API M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j, i_o_t, Mr<double> Q1);
ARRLIB_API M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j, i_o_t, Mr<double> Q1, Mr<double> R1);

// QR factors of Q R + u v', for columns u and v.
ARRLIB_API M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v);
ARRLIB_API M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v, i_o_t, Mr<double> Q1);
ARRLIB_API M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v, i_o_t, Mr<double> Q1, Mr<double> R1);

#endif
