// Relatives of the gamma and error functions.
#include "builtins/specfun.h"

#include "builtins/boost_policy.h"
#include "builtins/element_map.h"
#include "ops/kernels.h"
#include "ops/kernels/special_numbers.h"

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/digamma.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/polygamma.hpp>

#include <algorithm>
#include <climits>
#include <cmath>

using namespace arrlib;

namespace {

bool has_element(M<double> const& x, bool (*test)(double))
{
    return x.size() > 0 && std::any_of(x.addr(), x.addr() + x.getnnz(), test);
}

// NaN where Boost's series do not end.
template <class F> double settled(F f)
{
    try {
        return f();
    } catch (...) {
        return not_a_number;
    }
}

// --- incomplete beta function ---------------------------------------------------------------------

double incomplete_beta(double x, double a, double b)
{
    if (std::isnan(x) || std::isnan(a) || std::isnan(b) || (std::isinf(a) && std::isinf(b)))
        return not_a_number;
    if (x == 0 || x == 1)
        return x;
    if (std::isinf(a) || std::isinf(b))
        return std::isinf(a) ? 0 : 1;
    constexpr double moderate = 50;
    bool const plain = a <= moderate && b <= moderate;
    return settled([=] { return plain ? boost::math::ibeta(a, b, x, BoostDoublePolicy()) : boost::math::ibeta(a, b, x, BoostPolicy()); });
}

Spread spread(M<double> const& x)
{
    return {x.addr(), x.size() == 1 ? 0 : 1};
}

// --- logarithm of the beta function ---------------------------------------------------------------

// log(gamma(x)) less (x - 1/2) log(x) - x + log(2 pi)/2, by Stirling's series, for x >= 10.
double stirling_rest(double x)
{
    constexpr double coefficients[] = {1 / 12.0, -1 / 360.0, 1 / 1260.0, -1 / 1680.0, 1 / 1188.0, -691 / 360360.0, 1 / 156.0, -3617 / 122400.0};
    double const square = 1 / (x * x);
    double sum = 0;
    for (int k = 7; k >= 0; --k)
        sum = sum * square + coefficients[k];
    return sum / x;
}

double log_beta(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return not_a_number;
    if (a < b)
        std::swap(a, b);
    if (std::isinf(a))
        return b > 0 ? -infinity : not_a_number;
    constexpr double large = 10, smallest = 1e-300;
    if (b > 0) {
        double const beta = nx_beta(a, b);
        if (beta > smallest && beta < infinity)
            return std::log(beta);
    }
    if (!(b > 0) || a < large)
        return nx_gammaln(a) + nx_gammaln(b) - nx_gammaln(a + b);
    // The large parts of Stirling's formula, taken together.
    constexpr double half_log_two_pi = 0.918938533204672741780;
    double const common = stirling_rest(a) - stirling_rest(a + b) - (a - 0.5) * std::log1p(b / a);
    if (b < large)
        return nx_gammaln(b) + common - b * std::log(a + b) + b;
    return common + stirling_rest(b) + b * std::log(b / (a + b)) - std::log(b) / 2 + half_log_two_pi;
}

// --- digamma and its derivatives ------------------------------------------------------------------

double polygamma(double k, double x)
{
    bool const odd = std::fmod(k, 2) == 1;
    if (std::isnan(x) || x == -infinity)
        return not_a_number;
    if (x == infinity)
        return k == 0 ? infinity : 0;
    if ((x <= 0 && x == std::floor(x)) || k > INT_MAX)
        return odd ? infinity : -infinity;
    return settled([=] { return k == 0 ? boost::math::digamma(x, BoostPolicy()) : boost::math::polygamma(static_cast<int>(k), x, BoostPolicy()); });
}

double inverse_erfc(double y)
{
    if (!(y >= 0 && y <= 2))
        return not_a_number;
    if (y == 0 || y == 2)
        return y == 0 ? infinity : -infinity;
    return settled([=] { return boost::math::erfc_inv(y, BoostPolicy()); });
}

} // namespace

M<double> betainc(M<double> const& x, M<double> const& a, M<double> const& b)
{
    Arguments const args("betainc");
    if (!args.real(x) || !args.real(a) || !args.real(b))
        return no_results();
    OperandPair const xa(args.builtin(), x, a);
    if (!xa)
        return no_results();
    OperandPair const xb(args.builtin(), x, b);
    if (!xb)
        return no_results();
    OperandPair const ab(args.builtin(), a, b);
    if (!ab)
        return no_results();
    M<double> const full_x = full_form(x), full_a = full_form(a), full_b = full_form(b);
    if (!has_storage(full_x) || !has_storage(full_a) || !has_storage(full_b))
        return no_results();
    if (has_element(full_x, [](double v) { return v < 0 || v > 1; })) {
        args.report("X must be in [0,1]");
        return no_results();
    }
    bool (*const not_positive)(double) = [](double v) { return v <= 0; };
    if (has_element(full_a, not_positive) || has_element(full_b, not_positive)) {
        args.report("parameters must be positive");
        return no_results();
    }
    // The shape of what is not scalar.
    Dims const& shape = xa.count() == 1 ? xb.shape() : xa.shape();
    return map_elements(shape, [x = spread(full_x), a = spread(full_a), b = spread(full_b)](int k) { return incomplete_beta(x[k], a[k], b[k]); });
}

M<double> betaln(M<double> const& a, M<double> const& b)
{
    Arguments const args("betaln");
    if (!args.real(a) || !args.real(b))
        return no_results();
    OperandPair const pair(args.builtin(), a, b);
    return pair ? map_elements(pair.shape(), [&pair](int k) { return log_beta(pair.a(k), pair.b(k)); }) : no_results();
}

M<double> erfcinv(M<double> const& y)
{
    if (!Arguments("erfcinv").real(y))
        return no_results();
    M<double> const full = full_form(y);
    return has_storage(full) ? map_elements(shape_of(full), [from = full.addr()](int k) { return inverse_erfc(from[k]); }) : no_results();
}

M<double> psi(M<double> const& x)
{
    return psi(zero_M, x);
}

M<double> psi(M<double> const& k, M<double> const& x)
{
    Arguments const args("psi");
    if (!args.real(x) || !args.integer(k))
        return no_results();
    M<double> const full_k = full_form(k);
    if (has_element(full_k, [](double v) { return v < 0; })) {
        args.report("K must not be negative");
        return no_results();
    }
    OperandPair const pair(args.builtin(), k, x);
    return pair ? map_elements(pair.shape(), [&pair](int at) { return polygamma(pair.a(at), pair.b(at)); }) : no_results();
}
