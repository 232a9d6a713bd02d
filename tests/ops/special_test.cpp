// The special functions against values computed with many digits, and where they end.
#include "ops/kernels.h"

#include "ops/special_reference.h"
#include "support/capture.h"

#include <cmath>

namespace {

using capture::Reports;
using capture::Texts;
using reference::infinity;
using reference::Point;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Of a result that is rounded to a multiple of the smallest number.
constexpr double underflow = 5e-324;

template <std::size_t n>
void expect_near(char const* name, double (*f)(double, double), Point const (&points)[n], double relative, double absolute = underflow)
{
    for (Point const& point : points) {
        double const found = f(point.x, point.y);
        if (std::isinf(point.want))
            EXPECT_EQ(found, point.want) << name << "(" << point.x << ", " << point.y << ")";
        else
            EXPECT_NEAR(found, point.want, std::max(absolute, relative * std::fabs(point.want))) << name << "(" << point.x << ", " << point.y << ")";
    }
}

template <double (*f)(double)> double of_one(double x, double)
{
    return f(x);
}

TEST(Special, AgreesWithTheReference)
{
    constexpr double units = 8.9e-16; // 4 units in the last place
    expect_near("erf", of_one<nx_erf>, reference::erf, units);
    expect_near("erfc", of_one<nx_erfc>, reference::erfc, units);
    expect_near("erfcx", of_one<nx_erfcx>, reference::erfcx, units);
    expect_near("erfcx", of_one<nx_erfcx>, reference::erfcx_far, units);
    expect_near("erfinv", of_one<nx_erfinv>, reference::erfinv, units);
    expect_near("erf", nx_erf, reference::erf_2, units);
    expect_near("gamma", of_one<nx_gamma>, reference::gamma, units);
    expect_near("gammaln", of_one<nx_gammaln>, reference::gammaln, units);
    // At the zeros, the last place of the argument moves the result by more than the result.
    expect_near("gammaln", of_one<nx_gammaln>, reference::gammaln_left, units, 4e-15);
    expect_near("beta", nx_beta, reference::beta, units);
    expect_near("gammainc", nx_gammainc, reference::gammainc, 2 * units);
}

// Every piece of the approximations, to what the other side is worth.
TEST(Special, AgreesWithOtherFormulasEverywhere)
{
    auto const expect_close = [](char const* name, double x, double found, double want, double tolerance) {
        EXPECT_NEAR(found, want, tolerance * std::max(1e-300, std::fabs(want))) << name << "(" << x << ")";
    };
    for (int k = 1; k < 9000; ++k) {
        double const x = k * 0.003217;
        expect_close("erf", x, nx_erf(x), std::erf(x), 2e-15);
        expect_close("erfc", x, nx_erfc(x), std::erfc(x), 4e-15);
        expect_close("gamma", x, nx_gamma(x), std::tgamma(x), 4e-15);
        expect_close("gamma", 0.25 - x, nx_gamma(0.25 - x), std::tgamma(0.25 - x), 4e-15);
        EXPECT_NEAR(nx_gammaln(x), std::lgamma(x), 4e-15 * std::max(1.0, std::fabs(std::lgamma(x)))) << x;
        double const tail = std::ldexp(x, -k % 50), p = tail / (tail + 1);
        expect_close("erfinv", 1 - p, std::erfc(nx_erfinv(1 - p)), p, 1e-13 + 1e-16 / p);
        // P(a, x) - P(a + 1, x) is a term of the series, and steps over the borders of all methods.
        double const a = (k % 97) * 1.731 + 0.3, u = x * 6;
        double const term = std::exp(a * std::log(u) - u - std::lgamma(a + 1));
        EXPECT_NEAR(nx_gammainc(u, a) - nx_gammainc(u, a + 1), term, 1e-15 + 1e-12 * term) << u << ", " << a;
        expect_close("beta", x, nx_beta(x, a) * (x + a), nx_beta(x + 1, a) * (x + a) * (x + a) / x, 2e-14);
    }
}

TEST(Special, GivesIntegersTheirFactorials)
{
    double factorial = 1;
    for (int n = 1; n <= 23; factorial *= n++)
        EXPECT_EQ(nx_gamma(n), factorial);
    EXPECT_EQ(nx_gamma(171), 7.257415615307998967e306);
    EXPECT_EQ(nx_gammaln(1), 0);
    EXPECT_EQ(nx_gammaln(2), 0);
}

TEST(Special, IsOddOrReflectedBitByBit)
{
    for (double x = 0; x < 7; x += 0.0371) {
        EXPECT_EQ(nx_erf(-x), -nx_erf(x));
        EXPECT_EQ(nx_erfinv(-x / 7), -nx_erfinv(x / 7));
        EXPECT_EQ(nx_erf(-x - 1, -x), nx_erf(x, x + 1));
        EXPECT_EQ(nx_beta(x, 3), nx_beta(3, x));
    }
    EXPECT_TRUE(std::signbit(nx_erf(-0.0)) && std::signbit(nx_erfinv(-0.0)));
}

TEST(Special, EndsWhereItShould)
{
    constexpr double nan = not_a_number, inf = infinity;
    struct Case {
        double found, want;
    } const cases[] = {
        {nx_erf(inf), 1}, {nx_erf(-inf), -1}, {nx_erf(nan), nan},
        {nx_erfc(inf), 0}, {nx_erfc(-inf), 2}, {nx_erfc(nan), nan}, {nx_erfc(28), 0},
        {nx_erfcx(inf), 0}, {nx_erfcx(-inf), inf}, {nx_erfcx(nan), nan}, {nx_erfcx(-27), inf},
        {nx_erfinv(1), inf}, {nx_erfinv(-1), -inf}, {nx_erfinv(1.1), nan}, {nx_erfinv(-inf), nan}, {nx_erfinv(nan), nan},
        {nx_erf(2, 2), 0}, {nx_erf(-inf, inf), 2}, {nx_erf(inf, inf), 0}, {nx_erf(nan, 1), nan}, {nx_erf(0, nan), nan}, {nx_erf(0, inf), 1},
        {nx_gamma(0.0), inf}, {nx_gamma(-0.0), -inf}, {nx_gamma(-3), inf}, {nx_gamma(-1e300), inf}, {nx_gamma(172), inf},
        {nx_gamma(inf), inf}, {nx_gamma(nan), nan}, {nx_gamma(-190.5), 0}, {nx_gamma(1e-310), inf}, {nx_gamma(-1e-310), -inf},
        {nx_gammaln(0), inf}, {nx_gammaln(-4), inf}, {nx_gammaln(inf), inf}, {nx_gammaln(-inf), inf}, {nx_gammaln(nan), nan},
        {nx_gammaln(1e307), inf},
        {nx_beta(0, 2), inf}, {nx_beta(2, inf), 0}, {nx_beta(0, inf), nan}, {nx_beta(-1, 2), nan}, {nx_beta(nan, 2), nan}, {nx_beta(1e300, 1e300), 0},
        {nx_gammainc(0, 2), 0}, {nx_gammainc(0, 0), 1}, {nx_gammainc(5, 0), 1}, {nx_gammainc(inf, 2), 1}, {nx_gammainc(2, inf), 0},
        {nx_gammainc(inf, inf), nan}, {nx_gammainc(-1, 2), nan}, {nx_gammainc(1, -2), nan}, {nx_gammainc(nan, 2), nan}, {nx_gammainc(2, nan), nan},
        {nx_gammainc(1e300, 1e300), 0.5}, {nx_gammainc(1e300, 2e300), 0}, {nx_gammainc(1e300, 5), 1}, {nx_gammainc(1e-300, 50), 0},
    };
    for (Case const& check : cases)
        EXPECT_TRUE(std::isnan(check.want) ? std::isnan(check.found) : check.found == check.want)
            << "case " << &check - cases << ": " << check.found << " for " << check.want;
}

TEST(Special, ReportsAWrongRange)
{
    Reports const reports;
    EXPECT_TRUE(std::isnan(nx_erf(1, 0)));
    EXPECT_EQ(reports.all(), Texts{"erf: wrong values"});
}

} // namespace
