// Test matrices for numerical methods.
#ifndef ARRLIB_BUILTINS_GALLERY_H
#define ARRLIB_BUILTINS_GALLERY_H

#include "core/matrix.h"

// A test matrix by name, with the parameters of its family; those left out, or empty, have the defaults
// given here. gallery(3) is badly conditioned, gallery(5) has no eigenvalue but 0. n is an order, x, y,
// c, d and e are lists; a single number n for x, y or c means 1 to n.
//
// "cauchy",x,y: 1/(x(i)+y(j)), y = x. "chebspec",n,k: differentiation at Chebyshev points, with k = 1
// without the first point, k = 0. "circul",c: each row the one above, shifted right by one.
// "clement",n,k: tridiagonal with a zero diagonal and the eigenvalues n-1, n-3 ... 1-n; symmetric with
// k = 1, k = 0. "fiedler",c: |c(i)-c(j)|. "frank",n,k: upper Hessenberg with determinant 1; reflected
// in its anti-diagonal with k = 1, k = 0. "jordbloc",n,lambda: a Jordan block, lambda = 1.
// "kahan",n,theta,pert: upper trapezoidal, n may be [m n], theta = 1.2, pert = 25. "lehmer",n:
// min(i,j)/max(i,j). "minij",n: min(i,j). "moler",n,alpha: U'*U of the triangle with ones on the
// diagonal and alpha above it, alpha = -1. "parter",n: 1/(i-j+0.5). "pei",n,alpha: ones, alpha more on
// the diagonal, alpha = 1. "ris",n: 0.5/(n-i-j+1.5). "tridiag",n,c,d,e and "tridiag",c,d,e: sparse, c
// below the diagonal d and e above it, -1, 2 and -1.
//
// "gallery: unknown family %s", "gallery: argument must be scalar", "gallery: sizes of %s and %s do not
// agree", "gallery: argument must be real".
ARRLIB_API M<double> gallery(M<double> const& name);
ARRLIB_API M<double> gallery(M<double> const& name, M<double> const& p1);
ARRLIB_API M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2);
ARRLIB_API M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2, M<double> const& p3);
ARRLIB_API M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2, M<double> const& p3, M<double> const& p4);

#endif
