// Matrices with names of their own. Orders are truncated; one below 1 gives an empty matrix. "%s:
// argument must be scalar", with the name of the built-in, for an order that is not one number.
#ifndef ARRLIB_BUILTINS_SPECIAL_MATRICES_H
#define ARRLIB_BUILTINS_SPECIAL_MATRICES_H

#include "core/matrix.h"

// --- of an order ----------------------------------------------------------------------------------

// The Hilbert matrix: 1/(i+j-1).
ARRLIB_API M<double> hilb(M<double> const& n);
// The inverse of the Hilbert matrix, which has integer elements: products of binomials, each rounded
// once.
ARRLIB_API M<double> invhilb(M<double> const& n);
// A magic square: the numbers 1 to n^2 with the same sum in all rows, columns and both diagonals; for n
// = 2, where there is none, [1 3;4 2].
ARRLIB_API M<double> magic(M<double> const& n);
// A Hadamard matrix: 1 and -1 with orthogonal columns, ones in the first row and column (Sylvester's
// doubling, from Paley's matrices of order 12 and 20). "hadamard: order must be 2^k, 12*2^k or 20*2^k".
ARRLIB_API M<double> hadamard(M<double> const& n);
// The symmetric Pascal matrix of binomials; with k = 1 its lower triangular factor with alternating
// signs, which is its own inverse, with k = 2 a cube root of the identity. "pascal: k must be 0, 1 or
// 2".
ARRLIB_API M<double> pascal(M<double> const& n);
ARRLIB_API M<double> pascal(M<double> const& n, M<double> const& k);
// Rosser's symmetric matrix of order 8, hard on eigenvalue solvers: some of its eigenvalues are equal,
// some nearly so.
ARRLIB_API M<double> rosser();
// Wilkinson's symmetric tridiagonal matrix, with pairs of nearly equal eigenvalues: |(n-1)/2-k| for k =
// 0 to n-1, beside ones.
ARRLIB_API M<double> wilkinson(M<double> const& n);

// --- of lists -------------------------------------------------------------------------------------
// Empty when a list is. Lists are taken in storage order.

// The matrix with constant anti-diagonals, c its first column and r its last row; zeros below the
// anti-diagonal without r. Warns "hankel: last element of column wins" when c ends and r begins with
// different numbers.
ARRLIB_API M<double> hankel(M<double> const& c);
ARRLIB_API M<double> hankel(M<double> const& c, M<double> const& r);
// The matrix with constant diagonals, c its first column and r its first row; symmetric without c, or
// Hermitian. Warns "toeplitz: first element of column wins" when they begin with different numbers.
ARRLIB_API M<double> toeplitz(M<double> const& r);
ARRLIB_API M<double> toeplitz(M<double> const& c, M<double> const& r);
// The Vandermonde matrix of a list of n numbers: column k holds their powers n-k.
ARRLIB_API M<double> vander(M<double> const& v);
// The companion matrix of a polynomial, highest power first, whose eigenvalues are its roots: -p(2:n)/p(1)
// over ones below the diagonal. Empty for a list of one number. "compan: argument must be a vector".
ARRLIB_API M<double> compan(M<double> const& p);

#endif
