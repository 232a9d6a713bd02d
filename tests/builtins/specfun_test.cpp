// The special functions outside the engine: against values computed with many digits, against the
// identities that tie them together, and where they end.
#include "arrlib.h"
#include "builtins/specfun_reference.h"
#include "support/values.h"

#include <algorithm>
#include <complex>

using namespace values;

namespace {

using Complex = std::complex<double>;

constexpr double inf = reference::infinity;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Complex number(M<double> const& x)
{
    EXPECT_EQ(x.size(), 1);
    return {x.addr()[0], x.isc() ? x.addi()[0] : 0};
}

M<double> argument(double x, double y)
{
    return y == 0 ? M<double>(x) : matrix(1, 1, {x}, {y});
}

void expect_close(Complex found, Complex want, double tolerance, std::string const& what)
{
    EXPECT_LE(std::abs(found - want), tolerance * std::abs(want)) << what << ": " << found << " for " << want;
}

template <class... Numbers> std::string call(char const* name, Numbers... numbers)
{
    std::string text = name;
    ((text += " " + std::to_string(numbers)), ...);
    return text;
}

// Calls by the number of the kind in the tables.
M<double> bessel_kind(int kind, M<double> const& nu, M<double> const& z, M<double> const& scale = nop_M)
{
    switch (kind) {
    case 0:
        return besselj(nu, z, scale);
    case 1:
        return bessely(nu, z, scale);
    case 2:
        return besseli(nu, z, scale);
    case 3:
        return besselk(nu, z, scale);
    default:
        return besselh(nu, kind - 3, z, scale);
    }
}

// Of the size of both solutions where they oscillate, of the value itself elsewhere.
constexpr double tolerance = 2e-15;

TEST(Specfun, BesselAndAiryAgreeWithTheReference)
{
    for (reference::BesselPoint const& p : reference::bessel) {
        M<double> const w = bessel_kind(p.kind, p.nu, argument(p.x, p.y), p.scaled);
        expect_close(number(w), {p.re, p.im}, tolerance, call("kind", p.kind, p.scaled, p.nu, p.x, p.y));
    }
    for (auto const& row : reference::airy)
        for (int k = 0; k < 4; ++k)
            expect_close(number(airy(k, argument(row[0], row[1]))), {row[2 * k + 2], row[2 * k + 3]}, tolerance, call("airy", k, row[0], row[1]));
}

TEST(Specfun, OthersAgreeWithTheReference)
{
    for (auto const& row : reference::expint)
        expect_close(number(expint(argument(row[0], row[1]))), {row[2], row[3]}, tolerance, call("expint", row[0], row[1]));
    for (auto const& row : reference::ellipj) {
        M<double> sn, cn, dn;
        ellipj(row[0], row[1], i_o, sn, cn, dn);
        expect_close(number(sn), row[2], tolerance, call("sn", row[0], row[1]));
        expect_close(number(cn), row[3], tolerance, call("cn", row[0], row[1]));
        expect_close(number(dn), row[4], tolerance, call("dn", row[0], row[1]));
    }
    for (auto const& row : reference::ellipke) {
        M<double> k, e;
        ellipke(row[0], i_o, k, e);
        expect_close(number(k), row[1], tolerance, call("K", row[0]));
        expect_close(number(e), row[2], tolerance, call("E", row[0]));
    }
    for (auto const& row : reference::legendre) {
        M<double> const plain = legendre(row[0], row[2]), norm = legendre(row[0], row[2], text("norm"));
        int const at = static_cast<int>(row[1]);
        if (std::isinf(row[3]))
            EXPECT_EQ(plain.addr()[at], row[3]);
        else
            expect_close(plain.addr()[at], row[3], 1e-14, call("legendre", row[0], row[1], row[2]));
        expect_close(norm.addr()[at], row[4], 1e-14, call("norm", row[0], row[1], row[2]));
    }
    for (auto const& row : reference::betainc)
        expect_close(number(betainc(row[0], row[1], row[2])), row[3], 1e-13, call("betainc", row[0], row[1], row[2]));
    for (auto const& row : reference::betaln)
        expect_close(number(betaln(row[0], row[1])), row[2], 1e-14, call("betaln", row[0], row[1]));
    for (auto const& row : reference::erfcinv)
        expect_close(number(erfcinv(row[0])), row[1], tolerance, call("erfcinv", row[0]));
    for (auto const& row : reference::psi)
        // At its zero the last place of the argument is worth more than the value.
        expect_close(number(psi(row[0], row[1])), row[2], std::fabs(row[2]) < 1e-10 ? 10 : 1e-14, call("psi", row[0], row[1]));
}

// a + b = sum, in units of the larger term; not where one of them left the range.
void expect_sum(Complex a, Complex b, Complex sum, double limit, std::string const& what)
{
    double const size = std::abs(a) + std::abs(b) + std::abs(sum), least = std::min({std::abs(a), std::abs(b), std::abs(sum)});
    if (std::isfinite(size) && least > 1e-280) {
        EXPECT_LE(std::abs(a + b - sum), limit * size) << what;
    }
}

// Neighbouring orders of J and H give 2/(pi i z), of I and K 1/z, and the recurrence of Y ties three
// orders, also across 0, whichever methods serve. Scaled, so that little leaves the range.
TEST(Specfun, BesselFunctionsKeepTheirWronskians)
{
    for (double nu : {0.0, 0.25, 1.0, -0.6, -3.5, 6.0, 17.3, 38.7, 41.0, 64.5, 120.0, 333.3})
        for (int k = 1; k < 60; ++k) {
            Complex const unit(0, 1), z = std::polar(std::exp(0.17 * k - 3), std::remainder(k * 1.37, 2 * 3.14159));
            auto const f = [&](int kind, double order) { return number(bessel_kind(kind, order, argument(z.real(), z.imag()), 1)); };
            double const limit = 1e-14 * std::max(1.0, std::abs(z));
            std::string const what = call("at", nu, z.real(), z.imag());
            Complex const decay = std::exp(-std::fabs(z.imag()) - unit * z), grow = std::exp(z - std::fabs(z.real()));
            expect_sum(f(0, nu + 1) * f(4, nu), -f(0, nu) * f(4, nu + 1), unit * 2.0 / (pi[1] * z) * decay, limit, what);
            expect_sum(f(2, nu) * f(3, nu + 1), f(2, nu + 1) * f(3, nu), grow / z, limit, what);
            expect_sum(f(1, nu - 1), f(1, nu + 1), 2 * nu / z * f(1, nu), 1e-14, what);
        }
}

TEST(Specfun, ValuesThatUsersKnow)
{
    M<double> sn, cn, dn, k, e;
    ellipj(0.5, 0.3, i_o, sn, cn, dn);
    ellipke(0.5, i_o, k, e);
    expect_all({{shown(besselj(0, 1)), "1x1: 0.765197686557967"}, {shown(bessely(0, 1)), "1x1: 0.088256964215677"}, {shown(besselk(1, 2)), "1x1: 0.139865881816522"},
        {shown(airy(0)), "1x1: 0.355028053887817"}, {shown(k), "1x1: 1.85407467730137"}, {shown(e), "1x1: 1.35064388104768"}, {shown(sn), "1x1: 0.474215622711821"},
        {shown(cn, 11), "1x1: 0.88040873643"}, {shown(dn, 12), "1x1: 0.965678964746"}, {shown(betainc(0.5, 2, 3)), "1x1: 0.6875"}, {shown(expint(1)), "1x1: 0.21938393439552"},
        {shown(expint(-1.0)), "1x1: -1.89511781635594-3.14159265358979i"}, {shown(legendre(2, 0.5)), "3x1: -0.125 -1.29903810567666 2.25"},
        {shown(legendre(1, row({-1, 0, 1}), text("sch"))), "2x3: -1 0 0 1 1 0"}, {shown(besselj(-2.0, -3.0), 12), "1x1: 0.486091260586"},
        {shown(bessel(0, argument(0, 1))), "1x1: 1.26606587775201"}, {shown(bessel(0, 1)), "1x1: 0.765197686557967"}, {shown(besselj(0.5, -4.0), 6), "1x1: 0-0.301921i"}});
}

TEST(Specfun, ShapesAndFlags)
{
    M<double> const column_z = column({1, 2, 3}), row_nu = row({0, 1}), sparse_z = sparse(row({0, 2}));
    expect_all({{shown(besselj(row_nu, column_z), 3), "3x2: 0.765 0.224 -0.26 0.44 0.577 0.339"}, {shown(besselj(row_nu, row({1, 2})), 3), "1x2: 0.765 0.577"},
        {shown(besselj(row_nu, 1), 3), "1x2: 0.765 0.44"}, {shown(besselj(0, nd({1, 1, 2}, {0, 1})), 3), "1x1x2: 1 0.765"}, {shown(besselj(x_M, 1)), "0x0:"},
        {shown(besselj(0, sparse_z), 3), "1x2: 1 0.224"}, {shown(besseli(0, text("\1")), 3), "1x1: 1.27"}, {shown(besselj(1, row({-1, 1}), 0), 3), "1x2: -0.44 0.44"},
        {shown(bessely(0, row({-1, 1})), 3), "1x2: 0.0883+1.53i 0.0883+0i"},
        {shown(besselj(0, argument(1, 0))), "1x1: 0.765197686557967"}, {shown(airy(1, column({0, 1})), 3), "2x1: -0.259 -0.159"},
        {shown(airy(x_M)), "0x0:"}, {shown(betainc(0.5, row({1, 2}), 1)), "1x2: 0.5 0.25"}, {shown(betainc(column({0, 1}), 2, 2)), "2x1: 0 1"}, {shown(betainc(0.5, 1, 1)), "1x1: 0.5"},
        {shown(betaln(row({1, 2}), 1), 6), "1x2: 0 -0.693147"}, {shown(expint(sparse_z), 3), "1x2: Inf 0.0489"}, {shown(ellipke(x_M)), "0x0:"},
        {shown(legendre(1, rows_of({{0, 0.5}, {1, -1}})), 3), "2x2x2: 0 -1 1 0 0.5 -0.866 -1 0"}, {shown(legendre(0, 0.5)), "1x1: 1"}, {shown(legendre(1, row({0, 1})), 3), "2x2: 0 -1 1 0"},
        {shown(psi(row({0, 1}), 1), 6), "1x2: -0.577216 1.64493"}, {shown(erfcinv(row({0, 1, 2, 3}))), "1x4: Inf 0 -Inf NaN"}, {shown(ellipj(row({0, 1}), 0), 4), "1x2: 0 0.8415"}});
}

TEST(Specfun, EndsWhereItShould)
{
    expect_all({{shown(bessely(0, 0)), "1x1: -Inf"}, {shown(besselk(2, 0)), "1x1: Inf"}, {shown(besselj(row({0, 1, -1, -0.5}), 0)), "1x4: 1 0 0 Inf"},
        {shown(besselj(0, row({inf, -inf, nan}))), "1x3: 0 0 NaN"}, {shown(bessely(nan, 1)), "1x1: NaN"}, {shown(besseli(0, inf)), "1x1: Inf"}, {shown(besselk(0, inf)), "1x1: 0"},
        {shown(besselk(0, 1e5)), "1x1: 0"}, {shown(bessely(500, 1)), "1x1: -Inf"}, {shown(besselj(500, 1)), "1x1: 0"}, {shown(besseli(0, 1e4, 1), 6), "1x1: 0.00398947"},
        {shown(bessely(-0.5, 0)), "1x1: 0"}, {shown(besselk(300, argument(0, 1e-3))), "1x1: Inf-infi"},
        {shown(besselh(0, 0)), "1x1: 1-infi"}, {shown(besselh(0, 2, argument(3, 800), 0)), "1x1: -Inf-infi"}, {shown(airy(row({inf, -inf}))), "1x2: 0 0"},
        {shown(airy(2, row({200, inf}))), "1x2: Inf Inf"}, {shown(expint(row({0, inf, nan}))), "1x3: Inf 0 NaN"}, {shown(ellipj(2, 1), 6), "1x1: 0.964028"},
        {shown(ellipj(inf, 0.5)), "1x1: NaN"}, {shown(ellipke(row({1, nan}))), "1x2: Inf NaN"}, {shown(psi(row({0, -1, inf}))), "1x3: -Inf -Inf Inf"},
        {shown(psi(1, row({0, -2, inf}))), "1x3: Inf Inf 0"}, {shown(betaln(row({0, inf, nan}), 2)), "1x3: Inf -Inf NaN"}, {shown(betainc(0.5, row({inf, 1}), row({1, inf}))), "1x2: 0 1"},
        {shown(legendre(1, nan)), "2x1: NaN NaN"}, {shown(legendre(200, 0.5)(201)), "1x1: Inf"}});
    M<double> w, ierr;
    besselj(0, row({1, nan, 1e5, 1e10}), i_o, w, ierr);
    EXPECT_EQ(shown(ierr), "1x4: 0 1 3 4");
    besselk(0, row({1, 0}), 1, i_o, w, ierr);
    EXPECT_EQ(shown(w, 6) + " / " + shown(ierr), "1x2: 1.14446 Inf / 1x2: 0 2");
    airy(2, row({1, 200, nan}), i_o, w, ierr);
    EXPECT_EQ(shown(w, 6) + " / " + shown(ierr), "1x3: 1.20742 Inf NaN / 1x3: 0 2 1");
    besselj(1e12, 1e12, i_o, w, ierr);
    EXPECT_EQ(shown(ierr), "1x1: 4");
    besselj(4e18, 4e18, i_o, w, ierr);
    EXPECT_EQ(shown(w) + " / " + shown(ierr), "1x1: NaN / 1x1: 5");
}

// Extreme operands give numbers, zeros or infinities.
TEST(Specfun, OverflowIsNeverNaN)
{
    double const sizes[] = {0, 5e-324, 1e-160, 0.02, 1, 435, 1e5, 1e100, 1.7e308};
    auto const expect_number = [](M<double> const& w, std::string const& what) {
        EXPECT_FALSE(std::isnan(number(w).real()) || std::isnan(number(w).imag())) << what << ": " << number(w);
    };
    for (double x : sizes)
        for (double y : sizes)
            for (int sign = 0; sign < 4; ++sign) {
                M<double> const z = argument(sign % 2 ? -x : x, sign / 2 ? -y : y);
                expect_number(expint(z), call("expint", sign, x, y));
                for (int k = 0; k < 4; ++k)
                    expect_number(airy(k, z), call("airy", k, sign, x, y));
                for (double nu : {0.0, 0.4, -19.0, -924.3, 1e7, -3e9 - 0.25})
                    for (int kind = 0; kind < 12; ++kind)
                        expect_number(bessel_kind(kind % 6, nu, z, kind / 6), call("kind", kind, nu, sign, x, y));
            }
}

TEST(Specfun, SaysWhatIsWrong)
{
    M<double> const two = row({1, 2}), three = column({1, 2, 3}), complex = argument(1, 1);
    M<double> w = 1, v = 1, u = 1;
    expect_all({{reported_by([&] { besselj(complex, 1, i_o, w, v); }), "besselj: argument must be real"}, {shown(w) + shown(v), "0x0:0x0:"},
        {reported_by([&] { besselk(three, two); }), "besselk: wrong dimensions of: (temporary), (temporary)"}, {reported_by([&] { besselj(three, two); }), "besselj: wrong dimensions of: (temporary), (temporary)"}, {reported_by([&] { besselh(0, 3, 1); }), "besselh: K must be 1 or 2"},
        {reported_by([&] { bessel(three, two); }), "bessel: wrong dimensions of: (temporary), (temporary)"}, {reported_by([&] { airy(4, 1); }), "airy: K must be 0, 1, 2 or 3"},
        {reported_by([&] { airy(two, 1); }), "airy: argument must be scalar"}, {reported_by([&] { betainc(1.5, 1, 1); }), "betainc: X must be in [0,1]"},
        {reported_by([&] { betainc(0.5, 0, 1); }), "betainc: parameters must be positive"}, {reported_by([&] { betainc(0.5, two, three); }), "betainc: wrong dimensions of: (temporary), (temporary)"},
        {reported_by([&] { betainc(complex, 1, 1); }), "betainc: argument must be real"}, {reported_by([&] { betaln(1, complex); }), "betaln: argument must be real"},
        {reported_by([&] { erfcinv(complex); }), "erfcinv: argument must be real"}, {reported_by([&] { psi(0.5, 1); }), "psi: argument must be an integer"},
        {reported_by([&] { psi(-1.0, 1); }), "psi: K must not be negative"}, {reported_by([&] { psi(complex); }), "psi: argument must be real"},
        {reported_by([&] { ellipj(1, 2, i_o, w, v, u); }), "ellipj: M must be in [0,1]"}, {reported_by([&] { ellipj(complex, 0); }), "ellipj: argument must be real"},
        {reported_by([&] { ellipke(-0.1); }), "ellipke: M must be in [0,1]"}, {reported_by([&] { ellipke(complex); }), "ellipke: argument must be real"},
        {reported_by([&] { legendre(two, 0); }), "legendre: argument must be scalar"}, {reported_by([&] { legendre(1.5, 0); }), "legendre: argument must be an integer"},
        {reported_by([&] { legendre(-1.0, 0); }), "legendre: argument must be an integer"}, {reported_by([&] { legendre(1, 1.5); }), "legendre: X must be in [-1,1]"},
        {reported_by([&] { legendre(1, complex); }), "legendre: argument must be real"}, {reported_by([&] { legendre(1, 0, text("full")); }), "legendre: unknown option full"},
        {reported_by([&] { legendre(1, nd({2, 1, 1, 2}, {0, 0, 0, 0})); }), "legendre: too many dimensions"}, {reported_by([&] { legendre(2e9, row({0, 0})); }), "Out of memory!"}});
}

// Elements are shared out among threads; each is what it is alone.
TEST(Specfun, LongVectorsAreTheirElements)
{
    int const n = 5000;
    M<double> z(1, 1, n), x(0, 1, n);
    for (int k = 0; k < n; ++k) {
        z.addr()[k] = std::cos(k * 0.77) * (k % 90);
        z.addi()[k] = std::sin(k * 0.77) * (k % 90) + 0.01;
        x.addr()[k] = std::cos(k);
    }
    M<double> const w = besselh(1.5, z), p = legendre(3, x);
    ASSERT_EQ(shown(p).substr(0, 7), "4x5000:");
    for (int k = 0; k < n; k += 37) {
        EXPECT_EQ(number(besselh(1.5, argument(z.addr()[k], z.addi()[k]))), Complex(w.addr()[k], w.addi()[k]));
        EXPECT_EQ(numbers(legendre(3, x.addr()[k])), Numbers(p.addr() + 4 * k, p.addr() + 4 * k + 4));
    }
}

TEST(Specfun, SurvivesRefusedMemory)
{
    M<double> const large = matrix(40, 40, Numbers(1600, 0.5)), w = 1;
    capture::with_every_allocation_refused([&] {
        M<double> first, second, third;
        besselh(0.5, large, i_o, first, second);
        ellipj(large, 0.5, i_o, first, second, third);
        legendre(40, large);
        betainc(large, large, 2);
    });
}

} // namespace
