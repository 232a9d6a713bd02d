// Elementary functions of numbers that are no operations of the engine. Sparse operands are made full
// unless said otherwise.
#ifndef ARRLIB_BUILTINS_ELFUN_H
#define ARRLIB_BUILTINS_ELFUN_H

#include "core/subscript.h"

// The real parts, as plain numbers. Sparse values stay sparse.
ARRLIB_API M<double> real(M<double> const& A);

// a + b i of real operands, complex even when every imaginary part is 0; b is 0 when left out. They
// have the same sizes, or one of them has one element. "complex: argument must be real", "complex:
// wrong dimensions of: %s, %s".
ARRLIB_API M<double> complexM(M<double> const& a);
ARRLIB_API M<double> complexM(M<double> const& a, M<double> const& b);

// Complex numbers in conjugate pairs, by increasing real part and each with its negative imaginary
// part first, then the real ones in increasing order; along dimension dim, the first one larger than 1
// when left out. Numbers pair, and count as real, within tol (100 eps) times their modulus; the second
// number of a pair is given as the exact conjugate of the first. "cplxpair: values can not be paired".
ARRLIB_API M<double> cplxpair(M<double> const& z);
ARRLIB_API M<double> cplxpair(M<double> const& z, M<double> const& tol);
ARRLIB_API M<double> cplxpair(M<double> const& z, M<double> const& tol, M<double> const& dim);

// sqrt(|a|^2 + |b|^2) without overflow on the way. The operands have the same sizes, or one of them has
// one element: "hypot: wrong dimensions of: %s, %s".
ARRLIB_API M<double> hypot(M<double> const& a, M<double> const& b);

// The scalar products sum(conj(a) .* b) along dimension dim, the first one larger than 1 when left out;
// of two vectors of the same length, in any orientation, one number. "dot: sizes of %s and %s do not
// agree".
ARRLIB_API M<double> dot(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> dot(M<double> const& a, M<double> const& b, M<double> const& dim);

// The vector products along dimension dim, the first one of length 3 when left out, in the shape of a;
// two vectors may differ in orientation. "cross: vectors must have 3 elements", "cross: sizes of %s and
// %s do not agree".
ARRLIB_API M<double> cross(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> cross(M<double> const& a, M<double> const& b, M<double> const& dim);

#endif
