// The regularised incomplete gamma function: P from x = 0 on, Q = 1 - P where x is well above a, and
// the uniform expansion where they are near each other. What they have in common, x^a e^-x /
// gamma(a + 1), is taken of exponents in twice the precision.
#include "ops/kernels/special_gamma.h"
#include "ops/kernels/special_numbers.h"

#include <cmath>
#include <iterator>

using namespace arrlib;

namespace {

constexpr double epsilon = 0x1p-53;
// Where the uniform expansion begins.
constexpr double large = 30;

// P = prefix (1 + x/(a + 1) + x^2/((a + 1) (a + 2)) + ...), in which no terms cancel.
double lower_series(double x, double a)
{
    double term = 1, sum = 1;
    for (double n = a + 1; term > epsilon * sum; n += 1) {
        term *= x / n;
        sum += term;
    }
    return sum;
}

// Q = prefix a / (x + 1 - a - 1 (1 - a)/(x + 3 - a - 2 (2 - a)/(x + 5 - a - ...))), for x > a + 1:
// the fraction from 1/ on, by Steed's method.
double upper_fraction(double x, double a)
{
    double base = x + 1 - a, factor = 1 / base, step = factor, sum = factor;
    for (int n = 1; n < 500; ++n) {
        double const numerator = n * (a - n);
        base += 2;
        factor = 1 / (base + numerator * factor);
        step *= base * factor - 1;
        sum += step;
        if (std::fabs(step) <= epsilon * std::fabs(sum))
            break;
    }
    return sum;
}

// x - a - a log(x/a), which is not negative.
Twofold exponent_of(double x, double a)
{
    Twofold const difference = exact_sum(x, -a);
    Twofold const s = difference / exact_sum(x, a);
    if (std::fabs(s.hi) < 0.17)
        return difference * s + -(log_beyond_first(s) * a);
    return difference + -(log_of(Twofold{x, 0} / Twofold{a, 0}) * a);
}

// The polynomials in eta of the expansion in 1/a.
double temme_sum(double eta, double a)
{
    double total = 0;
    for (std::size_t k = std::size(fits::temme); k-- > 0;) {
        double sum = 0;
        for (int j = fits::temme_length[k]; j-- > 0;)
            sum = sum * eta + fits::temme[k][j];
        total = total / a + sum;
    }
    return total;
}

double gammainc_of_small(double x, double a)
{
    if (x > 200)
        return 1;
    bool const upper = x > a + 1 && x > 4;
    double const gamma = a < 1 ? nx_gamma(a + 1) : a * nx_gamma(a);
    double const prefix = nx_power(x, a) * nx_exp(-x) / gamma;
    return upper ? 1 - prefix * a * upper_fraction(x, a) : prefix * lower_series(x, a);
}

double gammainc_of_large(double x, double a)
{
    // The step at x = a is narrower than the distance of neighbouring numbers.
    if (a > 1e36)
        return x == a ? 0.5 : x < a ? 0 : 1;
    double const ratio = x / a;
    if (ratio < 1e-20)
        return 0;
    if (ratio > 5)
        return 1;
    Twofold const exponent = exponent_of(x, a);
    if (x > a && exponent.hi > 40)
        return 1;
    double const root_two_pi_a = root_two_pi * std::sqrt(a);
    if (ratio > 0.7 && ratio < 1.4) {
        double const distance = std::sqrt(exponent.hi), eta = std::copysign(distance * std::sqrt(2 / a), x - a);
        double const half = nx_erfcx(distance) / 2, correction = temme_sum(eta, a) / root_two_pi_a;
        return x < a ? times_exp(half - correction, -exponent) : 1 - times_exp(half + correction, -exponent);
    }
    double const prefix = 1 / (root_two_pi_a * stirling_factor(a));
    if (x < a)
        return times_exp(prefix * lower_series(x, a), -exponent);
    return 1 - times_exp(prefix * a * upper_fraction(x, a), -exponent);
}

} // namespace

double nx_gammainc(double x, double a)
{
    if (!(x >= 0 && a >= 0) || (x == infinity && a == infinity))
        return not_a_number;
    if (a == 0 || x == infinity)
        return 1;
    if (x == 0 || a == infinity)
        return 0;
    return a < large ? gammainc_of_small(x, a) : gammainc_of_large(x, a);
}
