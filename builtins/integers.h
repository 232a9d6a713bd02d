// Whole numbers: divisors, primes, counts of arrangements. "%s: argument must be an integer" for
// operands with fractions, imaginary parts, NaN or Inf where integers are asked for.
#ifndef ARRLIB_BUILTINS_INTEGERS_H
#define ARRLIB_BUILTINS_INTEGERS_H

#include "core/subscript.h"

// The greatest common divisors g, not negative; gcd(0, 0) is 0. With further outputs, factors c and d
// with a .* c + b .* d = g, exact for elements up to 2^53. The operands have the same sizes, or one of
// them has one element: "gcd: argument must be an integer", "gcd: wrong dimensions of: %s, %s".
ARRLIB_API M<double> gcd(M<double> const& a, M<double> const& b);
ARRLIB_API M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g);
ARRLIB_API M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g, Mr<double> c);
ARRLIB_API M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g, Mr<double> c, Mr<double> d);

// The least common multiples of positive integers, of the same sizes, or one of them with one element:
// "lcm: elements must be positive integers", "lcm: wrong dimensions of: %s, %s".
ARRLIB_API M<double> lcm(M<double> const& a, M<double> const& b);

// The primes up to n, a row; empty below 2. "primes: argument must be scalar", "primes: argument must
// be real". A sieve in segments that fit the cache.
ARRLIB_API M<double> primes(M<double> const& n);
// Which elements are prime: a logical value of the same shape. "isprime: elements must be non-negative
// integers". Exact for every element: a sieve where the elements are many and small, strong probable
// prime tests to bases that are known to suffice for the others.
ARRLIB_API M<double> isprime(M<double> const& A);
// The prime factors of n, a row in rising order, each as often as it divides; n itself below 4.
// "factor: argument must be scalar", "factor: argument must be an integer". Trial division, then
// Pollard's rho method in Brent's form.
ARRLIB_API M<double> factor(M<double> const& n);

// n!, element by element, correctly rounded; Inf above 170. "factorial: elements must be non-negative
// integers".
ARRLIB_API M<double> factorial(M<double> const& n);
// All orders of the elements of v, one a row, in falling lexicographic order of their positions.
// "perms: too many elements" for more than 10.
ARRLIB_API M<double> perms(M<double> const& v);
// The number of subsets with k elements of a set of n; of a vector, the subsets themselves, one a row,
// in lexicographic order of their positions, empty when there are fewer than k elements. "nchoosek:
// argument must be a vector", "nchoosek: argument must be scalar", "nchoosek: argument must be an
// integer", "nchoosek: arguments must not be negative". Warns "nchoosek: result may be inexact" above
// 2^53.
ARRLIB_API M<double> nchoosek(M<double> const& n, M<double> const& k);

#endif
