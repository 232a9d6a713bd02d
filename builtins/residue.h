// Partial fractions: b(s)/a(s) = r1/(s-p1) + r2/(s-p2) + ... + k(s), with a power of m for the m-th term
// in a row that has the same pole.
#ifndef ARRLIB_BUILTINS_RESIDUE_H
#define ARRLIB_BUILTINS_RESIDUE_H

#include "core/matrix.h"

// Residues r and poles p as columns and the polynomial part k as a row, empty when b/a is proper. Poles
// are ordered by falling modulus; those closer than 0.001, relative to their modulus, become their mean,
// with their multiplicities ascending. With r, p and k given, b and a come back. "residue: leading
// denominator coefficient must be non-zero", "residue: argument must be a vector", "residue:
// coefficients must be finite", "residue: algorithm did not converge", "residue: sizes of %s and %s do
// not agree" (r, p).
ARRLIB_API M<double> residue(M<double> const& b, M<double> const& a);
ARRLIB_API M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r);
ARRLIB_API M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r, Mr<double> p);
ARRLIB_API M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r, Mr<double> p, Mr<double> k);
ARRLIB_API M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k);
ARRLIB_API M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k, i_o_t, Mr<double> b);
ARRLIB_API M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k, i_o_t, Mr<double> b, Mr<double> a);

// Residue of b/a at a pole of multiplicity n (1): the numerator of 1/(s-pole)^k, where k is n unless it
// is given. "resi2: argument must be a vector", "resi2: argument must be scalar", "resi2: multiplicity
// must be a positive integer", "resi2: term must be between 1 and the multiplicity".
ARRLIB_API M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole);
ARRLIB_API M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole, M<double> const& n);
ARRLIB_API M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole, M<double> const& n, M<double> const& k);

// Multiplicities of poles, as a column: the first of equal ones has 1, the next 2 and so on; idx are
// their positions in p. Poles within tol (0.001) of the first of a group, relative to it, are equal.
// They are ordered by falling modulus unless `reorder` is 0. "mpoles: argument must be a vector".
ARRLIB_API M<double> mpoles(M<double> const& p);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder);
ARRLIB_API M<double> mpoles(M<double> const& p, i_o_t, Mr<double> m);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol, i_o_t, Mr<double> m);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder, i_o_t, Mr<double> m);
ARRLIB_API M<double> mpoles(M<double> const& p, i_o_t, Mr<double> m, Mr<double> idx);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol, i_o_t, Mr<double> m, Mr<double> idx);
ARRLIB_API M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder, i_o_t, Mr<double> m, Mr<double> idx);

#endif
