// The expansion of Debye and Olver for modified Bessel functions of large order or argument.
#include "builtins/bessel_modified.h"

using namespace arrlib;

namespace {

constexpr int most_terms = 20;

// The polynomials U_k of F. W. J. Olver, "The asymptotic expansion of Bessel functions of large order",
// Phil. Trans. R. Soc. A 247 (1954): U_k(p) = sum of u[k][j] p^(k + 2j).
struct OlverCoefficients {
    Wide u[most_terms + 1][most_terms + 1] = {};

    // U_(k+1) = p^2 (1 - p^2) U_k' / 2 + the integral from 0 to p of (1 - 5 t^2) U_k / 8.
    constexpr OlverCoefficients()
    {
        u[0][0] = 1;
        for (int k = 0; k < most_terms; ++k)
            for (int j = 0; j <= k; ++j) {
                Wide const power = k + 2 * j;
                u[k + 1][j] += u[k][j] * (power / 2 + 1 / (8 * (power + 1)));
                u[k + 1][j + 1] -= u[k][j] * (power / 2 + 5 / (8 * (power + 3)));
            }
    }
};

constexpr OlverCoefficients olver;

// The terms fall until about the number |2 X| of them, where X is the distance of the exponent from the
// turning point's; from here on they fall far enough.
constexpr Wide least_exponent = 22.5L;
constexpr Wide negligible = 1e-20L, acceptable = 1e-17L;

} // namespace

// With w = sqrt(nu^2 + z^2) in place of nu sqrt(1 + (z/nu)^2), the terms are U_k(p)/nu^k =
// w^-k times a polynomial of p^2 = (nu/w)^2, and order 0 gives Hankel's expansion.
bool arrlib::uniform_expansion(Wide nu, WideComplex z, ModifiedPair& values)
{
    WideComplex const w = sqrt(WideComplex(nu - z.im, z.re) * WideComplex(nu + z.im, -z.re));
    WideComplex const logarithm = nu > 0 ? nu * log(z / (w + nu)) : WideComplex();
    WideComplex const from_turning = w + logarithm - WideComplex(0, nu * wide_pi / 2);
    if (!(abs(from_turning) >= least_exponent))
        return false;

    WideComplex const step = reciprocal(w), p = nu * step, p_squared = p * p;
    WideComplex power = 1, sum_i = 1, sum_k = 1;
    Wide size = 1;
    for (int k = 1; k <= most_terms && size > negligible; ++k) {
        power *= step;
        WideComplex polynomial = olver.u[k][k];
        for (int j = k; j-- > 0;)
            polynomial = polynomial * p_squared + olver.u[k][j];
        WideComplex const term = power * polynomial;
        size = rough_size(term);
        sum_i += term;
        sum_k += k % 2 ? -term : term;
    }
    if (!(size < acceptable))
        return false;

    // The exponent less z: w - z = nu^2 / (w + z) loses nothing where z is large.
    values.offset = nu * (nu / (w + z)) + logarithm;
    WideComplex const root = sqrt(step);
    // Beyond the line on which I dominates most, K enters: I(z) = (K(z e^(-pi i)) - e^(nu pi i) K(z)) / (pi i).
    if (from_turning.im > 0)
        sum_i += turned(cis_pi(nu) * sum_k * exp(-2 * (w + logarithm)));
    values.i = root * sum_i * (1 / std::sqrt(2 * wide_pi));
    values.k = root * sum_k * std::sqrt(wide_pi / 2);
    return true;
}
