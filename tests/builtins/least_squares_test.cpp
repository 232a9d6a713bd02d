// Least squares by the conditions that their solutions meet.
#include "builtins/least_squares.h"

#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

TEST(Lscov, ResidualIsOrthogonalInTheWeights)
{
    for (bool complex : {false, true}) {
        M<double> const A = random(9, 4, complex), b = random(9, 2, complex, 2), half = random(9, 9, complex, 3);
        M<double> const V = half * ctranspose(half) + identity(9);
        M<double> x, dx;
        lscov(A, b, V, i_o, x, dx);
        // A' inv(V) (b - A x) = 0: the weighted residuals by another least squares problem with V.
        M<double> const y = lscov(V, b - A * x, identity(9));
        EXPECT_LT(size(ctranspose(A) * y), 1e-12);
        EXPECT_EQ(dx.isc(), 0);
        ASSERT_EQ(dx.size(), 8);
    }
    // Weights by hand: the mean of 1 and 4 with variances 1 and 2, and its error.
    M<double> x, dx;
    lscov(column({1, 1}), column({1, 4}), rows_of({{1, 0}, {0, 2}}), i_o, x, dx);
    EXPECT_NEAR(x[1], 2, 1e-14);
    EXPECT_NEAR(dx[1], std::sqrt(2.0 / 3 * 3), 1e-14);
    // Without errors in one row that row holds exactly.
    lscov(column({1, 1}), column({1, 4}), rows_of({{0, 0}, {0, 2}}), i_o, x, dx);
    EXPECT_NEAR(x[1], 1, 1e-14);
    EXPECT_NEAR(dx[1], 0, 1e-14);
    // Two unknowns of different accuracy: the errors come back in the order of the columns.
    lscov(rows_of({{1, 0}, {1, 0}, {0, 100}, {0, 100}}), column({1, 3, 200, 400}), identity(4), i_o, x, dx);
    EXPECT_LT(distance(x, column({2, 3})), 100);
    EXPECT_NEAR(dx[1] / dx[2], 100, 1e-11);
}

TEST(Lscov, LimitsAndReports)
{
    M<double> const A = random(3, 3), b = random(3, 1);
    M<double> x, dx;
    lscov(A, b, identity(3), i_o, x, dx);
    EXPECT_LT(distance(A * x, b), 100);
    EXPECT_EQ(shown(dx), "3x1: NaN NaN NaN");
    EXPECT_EQ(warned_by([] { EXPECT_EQ(shown(lscov(rows_of({{1, 1}, {1, 1}}), column({2, 2}), identity(2))), "2x1: 2 0"); }),
              "lscov: rank deficient, rank = 1, tol = 6.28037e-16");
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(lscov(column({0, 0}), column({1, 2}), identity(2), i_o, x, dx)), "1x1: 0"); }),
              "lscov: rank deficient, rank = 0, tol = 0");
    EXPECT_EQ(shown(dx), "1x1: 0");
    expect_all({{shown(lscov(M<double>(), M<double>(), M<double>())), "0x0:"},
                {reported_by([] { lscov(row({1, 2}), row({1}), row({1})); }), "lscov: problem must be over-determined"},
                {reported_by([&] { lscov(A, random(2, 1), identity(3)); }), "lscov: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { lscov(A, b, identity(2)); }), "lscov: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { lscov(column({1, 1}), column({1, 4}), rows_of({{-1, 0}, {0, -1}})); }), "lscov: covariance must be positive definite"},
                {reported_by([&] { lscov(A, b * NaN, identity(3)); }), "lscov: matrix contains NaN or Inf"}});
}

TEST(Nnls, MeetsTheConditionsOfAMinimum)
{
    for (unsigned seed = 1; seed < 40; ++seed) {
        int const m = 3 + static_cast<int>(seed % 9), n = 2 + static_cast<int>(seed % 7);
        M<double> const A = seed % 5 == 0 ? low_rank(m, n, 2) : random(m, n, false, seed), b = random(m, 1, false, seed + 100);
        M<double> x, w;
        nnls(A, b, i_o, x, w);
        ASSERT_EQ(x.rows(), n);
        EXPECT_LT(distance(w, ctranspose(A) * (b - A * x), 1), 10);
        for (int j = 1; j <= n; ++j) {
            EXPECT_GE(x[j], 0);
            EXPECT_LT(w[j], 1e-13);
            EXPECT_LT(std::abs(w[j] * x[j]), 1e-12);
        }
    }
}

TEST(Nnls, LimitsAndReports)
{
    M<double> x, w;
    expect_all({{shown(nnls(identity(2), column({3, -1}), i_o, x, w)), "2x1: 3 0"},
                {shown(w), "2x1: 0 -1"},
                {shown(nnls(identity(2), row({3, 4}))), "2x1: 3 4"},
                {shown(nnls(identity(2), column({3, 0.5}), row({1}))), "2x1: 3 0"},
                {shown(nnls(M<double>(), M<double>())), "0x0:"},
                {reported_by([] { nnls(identity(2), column({1, 2}, {1, 1})); }), "nnls: argument must be real"},
                {reported_by([] { nnls(identity(2), identity(2)); }), "nnls: argument must be a vector"},
                {reported_by([] { nnls(identity(2), column({1, 2, 3})); }), "nnls: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([] { nnls(NaN, row({1})); }), "nnls: matrix contains NaN or Inf"}});
}

TEST(LeastSquares, EveryAllocationRefused)
{
    M<double> const A = random(5, 2), b = random(5, 1), V = identity(5);
    capture::with_every_allocation_refused([&] { lscov(A, b, V); });
    capture::with_every_allocation_refused([&] { nnls(A, b); });
}

} // namespace
