// Polynomials against their definitions and against each other.
#include "builtins/poly.h"

#include "core/sparse.h"
#include "runtime/workers.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

using Number = std::complex<double>;

Number at(M<double> const& x, int k)
{
    return {x.addr()[k], x.isc() ? x.addi()[k] : 0};
}

// One of the elements of a row.
M<double> element(M<double> const& x, int k)
{
    return made(1, 1, [&](int, int) { return at(x, k - 1); }, x.isc());
}

TEST(Roots, PolynomialsComeBackFromTheirRoots)
{
    for (bool complex : {false, true})
        for (int degree : {1, 2, 5, 12}) {
            M<double> const p = random(1, degree + 1, complex), r = roots(p);
            ASSERT_EQ(r.rows(), degree);
            EXPECT_LT(distance(poly(r) * element(p, 1), p), 1e3) << degree;
            EXPECT_EQ(poly(r).isc() != 0, complex);
        }
    // Wilkinson's polynomial of degree 10, exact integers in both directions as far as they are to be had.
    M<double> const list = made(1, 10, [](int, int j) { return j; }), p = poly(list);
    EXPECT_EQ(p[11], 3628800);
    M<double> r = roots(p);
    std::sort(r.addr(), r.addr() + 10);
    EXPECT_LT(distance(r, transpose(list), 1), 1e8);
    expect_all({{shown(roots(row({0, 0, 1, -3, 2, 0, 0}))), "4x1: 2 1 0 0"},
                {shown(roots(column({1, 0, 4}))), "2x1: 0+2i 0-2i"},
                {shown(roots(row({5}))), "0x0:"},
                {shown(roots(row({0, 0, 5}))), "0x0:"},
                {shown(roots(row({0, 0}))), "0x0:"},
                {shown(roots(M<double>())), "0x0:"},
                {shown(roots(row({3, 0, 0}))), "2x1: 0 0"},
                {shown(roots(row({1, -1e200, 1}))), "2x1: 1e+200 1e-200"},
                // One root that is too large for a number, and one that is not.
                {shown(roots(row({1e-320, 1, 2}))), "1x1: -2"},
                {shown(roots(row({1, 0}, {0, 1})), 3), "1x1: 0-1i"},
                {reported_by([] { roots(row({1, NAN})); }), "roots: coefficients must be finite"},
                {reported_by([] { roots(row({1, 1}, {0, INFINITY})); }), "roots: coefficients must be finite"},
                {reported_by([] { roots(identity(2)); }), "roots: argument must be a vector"}});
}

TEST(Poly, OfMatricesAndRoots)
{
    expect_all({{shown(poly(row({2, 3}))), "1x3: 1 -5 6"},
                {shown(poly(column({1, 2, 3}))), "1x4: 1 -6 11 -6"},
                {shown(poly(row({1, 1}, {2, -2}))), "1x3: 1 -2 5"},
                {shown(poly(row({1, 1}, {2, 2}))), "1x3: 1+0i -2-4i -3+4i"},
                {shown(poly(row({1, INFINITY}, {0, 0}))), "1x3: 1 -Inf Inf"},
                {shown(poly(M<double>())), "1x1: 1"},
                {shown(poly(rows_of({{8, 1, 6}, {3, 5, 7}, {4, 9, 2}})), 10), "1x4: 1 -15 -24 360"},
                {shown(poly(rows_of({{0, 1}, {-1, 0}}))), "1x3: 1 0 1"},
                {shown(poly(sparse(rows_of({{2, 0}, {0, 3}}))), 12), "1x3: 1 -5 6"},
                {reported_by([] { poly(rows_of({{1, 2, 3}, {4, 5, 6}})); }), "poly: argument must be a vector or a square matrix"},
                {reported_by([] { poly(rows_of({{1, 2}, {NAN, 6}})); }), "poly: matrix contains NaN or Inf"}});
}

TEST(Polyval, FollowsTheDefinition)
{
    for (bool complex_p : {false, true})
        for (bool complex_x : {false, true}) {
            M<double> const p = random(1, 6, complex_p), x = random(40, 20, complex_x, 2), y = polyval(p, x);
            ASSERT_EQ(y.rows(), 40);
            double largest = 0;
            for (int k = 0; k < 800; ++k) {
                Number sum = 0;
                for (int c = 0; c < 6; ++c)
                    sum += at(p, c) * std::pow(at(x, k), 5 - c);
                largest = std::max(largest, std::abs(sum - at(y, k)));
            }
            EXPECT_LT(largest, 1e-14);
            M<double> const A = random(5, 5, complex_x, 3), value = polyvalm(p, A);
            M<double> sum = identity(5) * element(p, 6);
            for (int c = 5; c >= 1; --c) {
                M<double> power = A;
                for (int k = 1; k < 6 - c; ++k)
                    power = power * A;
                sum = sum + power * element(p, c);
            }
            EXPECT_LT(distance(value, sum), 20);
        }
    expect_all({{shown(polyval(row({1, 2, 3}), 2.0)), "1x1: 11"},
                {shown(polyval(row({1, 2, 3}), nd({1, 2, 2}, {0, 1, 2, 3}))), "1x2x2: 3 6 11 18"},
                {shown(polyval(M<double>(), row({1, 2}))), "1x2: 0 0"},
                {shown(polyval(row({1, 2}), M<double>())), "0x0:"},
                {shown(polyval(row({1, 0}), row({NAN, INFINITY}))), "1x2: NaN Inf"},
                {shown(polyval(row({1, 0}), sparse(row({0, 3})))), "1x2: 0 3"},
                {shown(polyval(row({1, 0}), text("a"))), "1x1: 97"},
                {shown(polyvalm(row({1, 0, 1}), rows_of({{0, 1}, {-1, 0}}))), "2x2: 0 0 0 0"},
                {shown(polyvalm(row({0, 1}, {1, 0}), row({2}))), "1x1: 1+2i"},
                {shown(polyvalm(M<double>(), identity(2))), "2x2: 0 0 0 0"},
                {shown(polyvalm(row({1, 2}), M<double>())), "0x0:"},
                {reported_by([] { polyval(identity(2), 1.0); }), "polyval: argument must be a vector"},
                {reported_by([] {
                     M<double> y, delta;
                     polyval(row({1, 2}), 1.0, identity(2), i_o, y, delta);
                 }),
                 "polyval: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([] { polyvalm(row({1}), row({1, 2})); }), "polyvalm: matrix must be square"}});
}

TEST(Polyfit, FitsInTheSenseOfLeastSquares)
{
    // A straight line by hand, with the error of its predictions.
    M<double> const x = row({0, 1, 2, 3}), y = row({1, 3, 2, 5});
    M<double> p, S, values, delta;
    polyfit(x, y, 1.0, i_o, p, S);
    EXPECT_LT(distance(p, row({1.1, 1.1})), 20);
    ASSERT_EQ(S.rows(), 4);
    EXPECT_EQ(S.cols(), 2);
    double const normr = std::sqrt(0.01 + 0.64 + 1.44 + 0.36 + 0.25); // residuals of 1, 3, 2, 5
    EXPECT_EQ(*S.addr(3, 1), 2);
    EXPECT_NEAR(*S.addr(4, 1), normr, 1e-14);
    EXPECT_LT(distance(transpose(S(row({1, 2}), c_p)) * M<double>(S(row({1, 2}), c_p)), rows_of({{14, 6}, {6, 4}})), 20);
    polyval(p, row({1.5, 4}), S, i_o, values, delta);
    EXPECT_NEAR(values[1], 2.75, 1e-14);
    EXPECT_NEAR(delta[1], normr / std::sqrt(2) * std::sqrt(1 + 0.25), 1e-14);
    EXPECT_NEAR(delta[2], normr / std::sqrt(2) * std::sqrt(1 + 0.25 + 6.25 / 5), 1e-14);
    // Exact ones, real and complex, also far from the origin where columns differ much in size.
    for (bool complex : {false, true}) {
        M<double> const c = random(1, 5, complex), at_points = random(12, 1, complex, 2);
        EXPECT_LT(distance(polyfit(at_points, polyval(c, at_points), 4.0), c), 1e4);
    }
    M<double> const years = made(1, 101, [](int, int j) { return 1899.0 + j; });
    EXPECT_EQ(warned_by([&] { p = polyfit(years, polyval(row({1, -3800, 3610000}), years), 2.0); }), "");
    EXPECT_LT(distance(p, row({1, -3800, 3610000})), 1e4);
    // Fewer different points than coefficients.
    EXPECT_EQ(warned_by([&] { polyfit(row({1, 1, 2}), row({3, 3, 5}), 2.0, i_o, p, S); }), "polyfit: polynomial is badly conditioned");
    EXPECT_LT(distance(polyval(p, row({1, 2})), row({3, 5})), 10);
    EXPECT_EQ(warned_by([&] { p = polyfit(row({1, 2}), row({3, 5}), 3.0); }), "polyfit: polynomial is badly conditioned");
    EXPECT_LT(distance(polyval(p, row({1, 2})), row({3, 5})), 10);
    expect_all({{shown(polyfit(M<double>(), M<double>(), 2.0)), "0x0:"},
                {reported_by([] { polyfit(row({1, 2}), row({1}), 1.0); }), "polyfit: sizes of (temporary) and =1 do not agree"},
                {reported_by([] { polyfit(row({1, 2}), row({1, 2}), row({1, 2})); }), "polyfit: argument must be scalar"},
                {reported_by([] { polyfit(row({1, 2}), row({1, 2}), -1.0); }), "polyfit: degree must be a non-negative integer"},
                {reported_by([] { polyfit(row({1, 2}), row({1, 2}), 0.5); }), "polyfit: degree must be a non-negative integer"},
                {reported_by([] { polyfit(row({1, NAN}), row({1, 2}), 1.0); }), "polyfit: matrix contains NaN or Inf"},
                {reported_by([] { polyfit(row({1, 1e200}), row({1, 2}), 2.0); }), "polyfit: matrix contains NaN or Inf"}});
}

TEST(Conv, ProductsAndQuotients)
{
    for (bool complex_a : {false, true})
        for (bool complex_b : {false, true}) {
            // Lengths on both sides of the blocks that products are taken in.
            M<double> const a = random(1, 3000, complex_a), b = random(1, 37, complex_b, 2), c = conv(a, b);
            ASSERT_EQ(c.size(), 3036);
            double largest = 0;
            for (int k = 0; k < 3036; ++k) {
                Number sum = 0;
                for (int j = std::max(0, k - 2999); j <= std::min(36, k); ++j)
                    sum += at(b, j) * at(a, k - j);
                largest = std::max(largest, std::abs(sum - at(c, k)));
            }
            EXPECT_LT(largest, 1e-13);
            EXPECT_LT(distance(conv(b, a), c, 1), 1);
            M<double> const small = random(1, 6, complex_b, 3), other = random(1, 4, complex_a, 4) + row({5, 0, 0, 0});
            M<double> q, r;
            deconv(small, other, i_o, q, r);
            EXPECT_LT(distance(conv(other, q) + r, small), 20);
            ASSERT_EQ(r.size(), 6);
            EXPECT_EQ(size(element(r, 1)) + size(element(r, 2)) + size(element(r, 3)), 0);
        }
    // The same bits on one thread and on two.
    M<double> const longest = random(1, 20000), two_threads = conv(longest, longest);
    int const before = arrlib::set_parallel_limit(1);
    EXPECT_EQ(size(conv(longest, longest) - two_threads), 0);
    arrlib::set_parallel_limit(before);
    M<double> q, r;
    expect_all({{shown(conv(row({1, 2}), row({1, 3, 5}))), "1x4: 1 5 11 10"},
                {shown(conv(column({1, 2, 1}), row({1, 3}))), "4x1: 1 5 7 3"},
                {shown(conv(row({1, 2}), column({1, 3}))), "3x1: 1 5 6"},
                {shown(conv(column({1, 2}), row({1, 3}))), "1x3: 1 5 6"},
                {shown(conv(2.0, column({1, 2}))), "2x1: 2 4"},
                {shown(conv(row({1, 2}), M<double>())), "0x0:"},
                {shown(conv(row({1, INFINITY}), row({1, 1}))), "1x3: 1 Inf Inf"},
                {shown(deconv(row({1, 5, 11, 10}), row({1, 2}), i_o, q, r)), "1x3: 1 3 5"},
                {shown(r), "1x4: 0 0 0 0"},
                {shown(deconv(column({2, 4, 7}), row({2, 1}), i_o, q, r)), "2x1: 1 1.5"},
                {shown(r), "3x1: 0 0 5.5"},
                {shown(deconv(row({1, 2}), row({1, 2, 3}), i_o, q, r)), "1x1: 0"},
                {shown(r), "1x2: 1 2"},
                {reported_by([] { conv(identity(2), 1.0); }), "conv: argument must be a vector"},
                {reported_by([] { deconv(row({1, 2}), row({0, 2})); }), "deconv: first coefficient must be non-zero"},
                {reported_by([] { deconv(row({1, 2}), M<double>()); }), "deconv: first coefficient must be non-zero"}});
}

TEST(Polyder, DerivativesAndIntegrals)
{
    M<double> q, d;
    polyder(row({1, 2}), row({1, 0, 1}), i_o, q, d);
    expect_all({{shown(q), "1x3: -1 -4 1"},
                {shown(d), "1x5: 1 0 2 0 1"},
                {shown(polyder(row({1, 2, 3}))), "1x2: 2 2"},
                {shown(polyder(column({1, 2, 3}))), "1x2: 2 2"},
                {shown(polyder(row({0, 0, 4, 1}))), "1x1: 4"},
                {shown(polyder(row({7}))), "1x1: 0"},
                {shown(polyder(M<double>())), "1x1: 0"},
                {shown(polyder(row({1, 1}), row({1, -1}))), "1x2: 2 0"},
                {shown(polyder(row({3}), row({1, 2}), i_o, q, d)), "1x1: -3"},
                {shown(polyder(row({1, 2}), row({3}), i_o, q, d)), "1x1: 3"},
                {shown(d), "1x1: 9"},
                {shown(polyder(row({3}), row({4}), i_o, q, d)), "1x1: 0"},
                {shown(polyder(row({1, 0}, {1, 0}))), "1x1: 1+1i"},
                {shown(polyint(row({3, 2, 1}))), "1x4: 1 1 1 0"},
                {shown(polyint(row({3, 2, 1}), 7.0)), "1x4: 1 1 1 7"},
                {shown(polyint(M<double>())), "1x1: 0"},
                {shown(polyint(row({2}), row({0}, {1}))), "1x2: 2+0i 0+1i"},
                {reported_by([] { polyder(identity(2)); }), "polyder: argument must be a vector"},
                {reported_by([] { polyint(row({1}), row({1, 2})); }), "polyint: argument must be scalar"}});
}

TEST(Poly, EveryAllocationRefused)
{
    M<double> const p = row({1, 2, 3}), x = row({1, 2, 5}, {0, 1, 0}), degree = 1.0;
    capture::with_every_allocation_refused([&] { roots(p); });
    capture::with_every_allocation_refused([&] { poly(x); });
    capture::with_every_allocation_refused([&] { polyfit(x, p, degree); });
    capture::with_every_allocation_refused([&] {
        M<double> q, d;
        polyder(p, x, i_o, q, d);
    });
    capture::with_every_allocation_refused([&] { deconv(x, p); });
}

} // namespace
