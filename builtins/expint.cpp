// The exponential integral (NIST Handbook of Mathematical Functions, chapter 6).
#include "builtins/boost_policy.h"
#include "builtins/element_map.h"
#include "builtins/specfun.h"
#include "builtins/wide_complex.h"
#include "ops/kernels/special_numbers.h"

#include <boost/math/special_functions/expint.hpp>

#include <algorithm>

using namespace arrlib;

namespace {

// -gamma - log(z) - sum of (-z)^k / (k k!)
WideComplex by_series(WideComplex z)
{
    WideComplex power = 1, sum;
    for (Wide k = 1; k < 400; k += 1) {
        power *= -z / k;
        sum += power / k;
        if (rough_size(power) < 1e-21L * k * rough_size(sum))
            break;
    }
    return -wide_euler - log(z) - sum;
}

// exp(-z) / (z + 1 - 1/(z + 3 - 4/(z + 5 - ...))), backwards; what is cut off falls as exp(-4 Re sqrt(n z)).
WideComplex by_fraction(WideComplex z)
{
    Wide const terms = std::ceil(5 + 250 / (abs(z) + z.re));
    WideComplex tail = z + (2 * terms + 1);
    for (Wide n = terms; n >= 1; n -= 1)
        tail = z + (2 * n - 1) - n * n * reciprocal(tail);
    return grown(reciprocal(tail), -z);
}

// exp(-z)/z times the sum of k! (-z)^-k, as far as its terms fall.
WideComplex by_asymptotics(WideComplex z)
{
    WideComplex const step = -reciprocal(z);
    WideComplex term = 1, sum = 1;
    for (Wide k = 1; k < abs(z) && rough_size(term) > 1e-20L; k += 1) {
        term *= k * step;
        sum += term;
    }
    return grown(-step * sum, -z);
}

WideComplex of_complex(WideComplex z)
{
    if (std::isnan(z.re) || std::isnan(z.im))
        return {not_a_number, not_a_number};
    if (std::isinf(z.re) || std::isinf(z.im))
        return z.re < 0 && std::isinf(z.re) ? WideComplex(-infinity) : WideComplex();
    // The fraction converges slowly beside the negative axis, where the series loses no digits.
    if (abs(z) + z.re >= 4)
        return by_fraction(z);
    return abs(z) <= 40 ? by_series(z) : by_asymptotics(z);
}

double of_positive(double x)
{
    return x == 0 ? infinity : std::isinf(x) ? 0 : boost::math::expint(1, x, BoostPolicy());
}

WideComplex expint_of(double re, double im)
{
    if (im != 0)
        return of_complex({re, im});
    try {
        if (std::isnan(re) || re >= 0)
            return std::isnan(re) ? re : of_positive(re);
        return {std::isinf(re) ? -infinity : -boost::math::expint(-re, BoostPolicy()), -wide_pi};
    } catch (...) {
        return of_complex({re, 0});
    }
}

} // namespace

M<double> expint(M<double> const& x)
{
    M<double> const full = full_form(x);
    if (!has_storage(full) || full.size() == 0)
        return no_results();
    bool const complex = full.isc() || std::any_of(full.addr(), full.addr() + full.getnnz(), [](double v) { return v < 0; });
    M<double> made = full_result(shape_of(full), complex);
    if (!has_storage(made))
        return no_results();
    for_each_element(full.size(), [from = full.addr(), from_im = full.addi(), to = made.addr(), to_im = made.addi()](int k) {
        WideComplex const value = expint_of(from[k], from_im ? from_im[k] : 0);
        to[k] = static_cast<double>(value.re);
        if (to_im)
            to_im[k] = static_cast<double>(value.im);
    });
    return made;
}
