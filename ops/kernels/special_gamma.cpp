// The gamma function, its logarithm and the beta function.
#include "ops/kernels/special_gamma.h"
#include "ops/kernels/special_numbers.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace arrlib;

namespace {

// gamma overflows beyond 171.6, and underflows below -184.
constexpr double gamma_end = 172, gamma_begin = -185;

// gamma(n + 1), rounded once: the product is carried in two parts.
constexpr std::array<double, 171> factorials = [] {
    std::array<double, 171> table{};
    double hi = 1, lo = 0;
    for (int n = 0; n < 171; ++n) {
        if (n > 0) {
            // Both parts in pieces of 26 bits, whose products with n are exact; a scale keeps them finite.
            double const scale = hi > 0x1p900 ? 0x1p-100 : 1;
            hi *= scale;
            lo *= scale;
            double const shifted = hi * (0x1p27 + 1), high = shifted - (shifted - hi);
            double const a = high * n, b = (hi - high) * n, sum = a + b;
            double const rest = (b - (sum - a)) + lo * n;
            hi = sum + rest;
            lo = (rest - (hi - sum)) / scale;
            hi /= scale;
        }
        table[static_cast<std::size_t>(n)] = hi;
    }
    return table;
}();

// sin(pi x), with the zeros at integers.
double sin_of_pi_times(double x)
{
    double const nearest = std::round(x);
    double const sine = nx_sin(pi * (x - nearest)), half = nearest / 2;
    return half == std::floor(half) ? sine : -sine;
}

double gamma_from_1_to_2(double x)
{
    int const eighth = static_cast<int>(8 * x);
    return polynomial(fits::gamma_pieces[eighth - 8], x - (eighth + 0.5) / 8);
}

// |x| < stirling_begin, not an integer <= 0.
double gamma_near_zero(double x)
{
    double up = 1, down = 1;
    // 1 + x is rounded in (-1, 1), where that moves gamma by less than a rounding.
    for (; x >= 2; up *= x)
        x -= 1;
    for (; x < 1; x += 1)
        down *= x;
    return gamma_from_1_to_2(std::min(x, 0x1.fffffffffffffp+0)) * up / down;
}

// gamma(x) = first * second, x >= stirling_begin: the product may overflow where x is not far away.
struct Factors {
    double first, second;
};
Factors gamma_far_away(double x)
{
    double const rest = root_two_pi * stirling_factor(x) * nx_exp(-x);
    if (x < 140)
        return {nx_power(x, x - 0.5), rest};
    double const root = nx_power(x, x / 2 - 0.25);
    return {root, root * rest};
}

// log(|gamma(x)|), x > -1/2.
double gammaln_right(double x)
{
    if (x < 0.5)
        return gammaln_right(x + 1) - nx_log(std::fabs(x));
    if (x >= stirling_begin) {
        constexpr double half_log_two_pi_less_half = 0.41893853320467274178;
        double const far = (x - 0.5) * (nx_log(x) - 1);
        return x > 1e17 ? far : far + (half_log_two_pi_less_half + stirling_log(x));
    }
    double product = 1;
    for (; x >= 2.5; product *= x)
        x -= 1;
    int const eighth = static_cast<int>(8 * x);
    double const reduced = (x - 1) * (x - 2) * polynomial(fits::gammaln_pieces[eighth - 4], x - (eighth + 0.5) / 8);
    return product == 1 ? reduced : nx_log(product) + reduced;
}

// beta(a, b) for a <= b, where b is large.
double beta_far_away(double a, double b)
{
    // From here on two terms in 1/b are enough.
    if (b > 1e12)
        return a > 40 ? 0 : times_exp(nx_gamma(a), log_of({b, 0}) * -a + -a * (a - 1) / (2 * b));
    Twofold const c = exact_sum(b, a);
    Twofold const of_b = log_of(c / Twofold{b, 0}) * (0.5 - b);
    double const factors = stirling_factor(b) / stirling_factor(c.hi);
    if (a < stirling_begin)
        return times_exp(nx_gamma(a) * factors, of_b + log_of(c) * -a + a);
    return times_exp(root_two_pi / std::sqrt(a) * stirling_factor(a) * factors, of_b + log_of(c / Twofold{a, 0}) * -a);
}

} // namespace

double nx_gamma(double x)
{
    if (std::isnan(x))
        return x;
    if (x == std::floor(x)) {
        if (x > 0)
            return x < gamma_end ? factorials[static_cast<std::size_t>(x) - 1] : infinity;
        return x == 0 && std::signbit(x) ? -infinity : infinity;
    }
    if (x > gamma_end)
        return infinity;
    if (std::fabs(x) < stirling_begin)
        return gamma_near_zero(x);
    if (x > 0) {
        Factors const gamma = gamma_far_away(x);
        return gamma.first * gamma.second;
    }
    Factors const mirrored = gamma_far_away(std::min(-x, -gamma_begin));
    return -pi / (x * sin_of_pi_times(x)) / mirrored.first / mirrored.second;
}

double nx_gammaln(double x)
{
    if (std::isnan(x))
        return x;
    if (std::isinf(x) || (x <= 0 && x == std::floor(x)))
        return infinity;
    if (x > -0.5)
        return gammaln_right(x);
    if (x > -stirling_begin)
        return nx_log(std::fabs(gamma_near_zero(x)));
    return nx_log(pi / std::fabs(x * sin_of_pi_times(x))) - gammaln_right(-x);
}

double nx_beta(double x, double y)
{
    if (!(x >= 0 && y >= 0))
        return not_a_number;
    double const a = std::min(x, y), b = std::max(x, y);
    if (b == infinity)
        return a > 0 ? 0 : not_a_number;
    if (a == 0)
        return infinity;
    if (b >= stirling_begin)
        return beta_far_away(a, b);
    // What the rounding of the sum does to its gamma, with a near value of digamma.
    Twofold const c = exact_sum(b, a);
    double const rounded = c.hi < 1 ? 0 : (nx_log(c.hi) - 0.5 / c.hi) * c.lo;
    return nx_gamma(a) / nx_gamma(c.hi) * nx_gamma(b) * (1 - rounded);
}
