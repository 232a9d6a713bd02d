// Inverses, determinants and condition numbers.
#include "builtins/inverse.h"

#include "builtins/norms.h"
#include "support/linear.h"

using namespace linear;
using namespace values;

namespace {

M<double> const magic3 = matrix(3, 3, {8, 3, 4, 1, 5, 9, 6, 7, 2});

double value(M<double> const& x)
{
    return x.size() == 1 ? x[1] : NAN;
}

TEST(Inverse, ValuesMessagesAndWarnings)
{
    M<double> const none, singular = matrix(2, 2, {1, 2, 2, 4}), wide = random(2, 3), broken = matrix(2, 2, {1, 2, 3, NAN});
    EXPECT_NEAR(value(inv(magic3)(1, 1)), 0.147222222222222, 1e-15);
    expect_all({{shown(inv(none)), "0x0:"},
                {shown(inv(M<double>(4.0))), "1x1: 0.25"},
                {shown(inv(sparse(matrix(2, 2, {2, 0, 0, 4})))), "sparse 2x2: (1,1)=0.5 (2,2)=0.25"},
                {reported_by([&] { EXPECT_EQ(inv(wide).size(), 0); }), "inv: matrix must be square"},
                {warned_by([&] { EXPECT_EQ(shown(inv(singular)), "2x2: Inf Inf Inf Inf"); }), "inv: matrix is singular to working precision"},
                {warned_by([&] { EXPECT_EQ(shown(full(inv(sparse(singular)))), "2x2: Inf Inf Inf Inf"); }), "inv: matrix is singular to working precision"},
                {warned_by([&] { EXPECT_EQ(shown(inv(broken)), "2x2: NaN NaN NaN NaN"); }), "inv: matrix is close to singular or badly scaled, rcond = NaN"},
                {warned_by([&] { inv(hilbert(15)); }).substr(0, 55), "inv: matrix is close to singular or badly scaled, rcond"}});
    for (int n : {2, 6, 50, 150})
        for (bool complex : {false, true}) {
            M<double> const a = random(n, n, complex), s = random_sparse(n, n, 0.1, complex);
            EXPECT_LT(distance(a * inv(a), eye(M<double>(n)), value(cond(a))), 1) << n;
            EXPECT_TRUE(inv(s).issparse());
            EXPECT_LT(distance(s * inv(s), eye(M<double>(n)), value(cond(full(s)))), 1) << n;
        }
}

// The four conditions that make an inverse the pseudo-inverse.
TEST(Inverse, Pseudo)
{
    for (bool complex : {false, true})
        for (auto const& [m, n, rank] : {std::tuple{5, 3, 3}, {3, 5, 3}, {6, 6, 2}, {1, 4, 1}, {4, 1, 1}}) {
            M<double> const a = random(m, rank, complex) * random(rank, n, complex), p = pinv(a);
            EXPECT_LT(largest(a * p * a - a), 1e-13);
            EXPECT_LT(largest(p * a * p - p), 1e-12);
            EXPECT_LT(largest(ctranspose(a * p) - a * p), 1e-13);
            EXPECT_LT(largest(ctranspose(p * a) - p * a), 1e-13);
        }
    expect_all({{shown(pinv(matrix(2, 3, {0, 0, 0, 0, 0, 0}))), "3x2: 0 0 0 0 0 0"},
                {shown(pinv(M<double>())), "0x0:"},
                {shown(pinv(matrix(2, 2, {4, 0, 0, 0.5}), M<double>(1.0)), 12), "2x2: 0.25 0 0 0"},
                {reported_by([&] { pinv(matrix(1, 2, {1, HUGE_VAL})); }), "pinv: matrix contains NaN or Inf"}});
}

TEST(Inverse, Determinants)
{
    M<double> const large = matrix(4, 4, {1e200, 0, 0, 0, 0, 1e200, 0, 0, 0, 0, 1e-200, 0, 1, 0, 0, 1e-200}), swapped = matrix(2, 2, {0, 1, 1, 0});
    expect_all({{shown(det(magic3), 13), "1x1: -360"},
                {shown(det(sparse(magic3)), 13), "1x1: -360"},
                {shown(det(M<double>())), "1x1: 1"},
                {shown(det(large), 13), "1x1: 1"},
                {shown(det(swapped)), "1x1: -1"},
                {shown(det(sparse(swapped))), "1x1: -1"},
                {shown(det(matrix(2, 2, {1, 2, 2, 4}))), "1x1: 0"},
                {shown(det(sparse(matrix(2, 2, {1, 2, 2, 4})))), "1x1: 0"},
                {shown(det(speye(M<double>(2.0)) * M<double>(0.0))), "1x1: 0"},
                {shown(det(matrix(2, 2, {HUGE_VAL, 0, 3, 2}))), "1x1: Inf"},
                {shown(det(matrix(2, 2, {NAN, 1, 3, 2}))), "1x1: NaN"},
                {shown(det(frank(9)), 9), "1x1: 1"},
                {shown(det(matrix(2, 2, {1, 0, 0, 1}, {1, 0, 0, 1}))), "1x1: 0+2i"},
                {shown(det(sparse(matrix(2, 2, {0, 1, 1, 0}, {0, 1, 1, 0})))), "1x1: 0-2i"},
                {reported_by([&] { det(random(2, 3)); }), "det: matrix must be square"},
                {warned_by([&] { det(matrix(2, 2, {1, 2, 2, 4})); }), ""}});
    for (int n : {3, 20})
        for (bool complex : {false, true}) {
            M<double> const a = random_sparse(n, n, 0.3, complex), b = random(n, n, complex);
            EXPECT_LT(largest(det(a) - det(full(a))) / largest(det(a)), 1e-12);
            EXPECT_LT(largest(det(a * b) - det(full(a)) * det(b)) / largest(det(a * b)), 1e-11);
        }
}

TEST(Condition, EstimatesAreCloseToTheTruth)
{
    // The exact inverse of a Hilbert matrix has integers for elements.
    EXPECT_NEAR(value(cond(hilbert(3))), 524.05677758606, 1e-9);
    EXPECT_NEAR(value(cond(hilbert(3), M<double>(1.0))), 748, 1e-9);
    EXPECT_NEAR(1 / value(rcond(hilbert(3))), 748, 1e-9);
    for (int n : {1, 2, 5, 12, 60})
        for (int kind = 0; kind < 8; ++kind) {
            bool const complex = kind & 1;
            M<double> a = random(n, n, complex);
            if (kind & 2)
                a = a * ctranspose(a) + eye(M<double>(n));
            if (kind & 4)
                a = sparse(a);
            double const exact = value(cond(a, M<double>(1.0)));
            for (double estimate : {1 / value(rcond(a)), value(condest(a))}) {
                EXPECT_LE(estimate, exact * (1 + 1e-10)) << n << " kind " << kind;
                EXPECT_GE(estimate, exact / 4) << n << " kind " << kind;
            }
            M<double> c, v;
            condest(a, i_o, c, v);
            EXPECT_NEAR(value(norm(a * v, M<double>(1.0))) * value(c), value(norm(a, M<double>(1.0))), 1e-6 * value(norm(a, M<double>(1.0))));
        }
}

TEST(Condition, SpecialValuesAndMessages)
{
    M<double> const singular = matrix(2, 2, {1, 2, 2, 4}), broken = matrix(2, 2, {1, 2, 3, NAN}), none, wide = random(2, 3);
    expect_all({{shown(rcond(none)), "1x1: Inf"},
                {shown(rcond(singular)), "1x1: 0"},
                {shown(rcond(broken)), "1x1: NaN"},
                {shown(rcond(sparse(singular))), "1x1: 0"},
                {reported_by([&] { rcond(wide); }), "rcond: matrix must be square"},
                {shown(cond(none)), "1x1: 0"},
                {shown(cond(matrix(2, 2, {0, 0, 0, 0}))), "1x1: Inf"},
                {shown(cond(singular, M<double>(1.0))), "1x1: Inf"},
                {warned_by([&] { cond(singular, text("fro")); }), ""},
                {shown(cond(matrix(3, 1, {1, 2, 3})), 14), "1x1: 1"},
                {shown(cond(matrix(2, 2, {4, 0, 0, 0.5}), text("INF"))), "1x1: 8"},
                {reported_by([&] { cond(wide, M<double>(1.0)); }), "cond: matrix must be square"},
                {reported_by([&] { cond(singular, M<double>(3.0)); }), "cond: only 1, 2, Inf and 'fro' for matrices"},
                {reported_by([&] { cond(broken); }), "cond: matrix contains NaN or Inf"},
                {reported_by([&] { cond(sparse(singular)); }), "cond: use condest for a sparse matrix"},
                {shown(condest(none)), "1x1: 0"},
                {shown(condest(broken)), "1x1: NaN"},
                {reported_by([&] { condest(wide); }), "condest: matrix must be square"}});
    for (M<double> const& a : {singular, sparse(singular)}) {
        M<double> c, v;
        condest(a, i_o, c, v);
        EXPECT_EQ(shown(c), "1x1: Inf");
        EXPECT_NEAR(value(norm(v, M<double>(1.0))), 1, 1e-15);
        EXPECT_LT(value(norm(a * v, M<double>(1.0))), 1e-14);
    }
}

TEST(Inverse, MemoryThatRunsOut)
{
    M<double> const a = random(12, 12), s = random_sparse(6, 6, 0.3), singular = matrix(2, 2, {1, 2, 2, 4});
    capture::with_every_allocation_refused([&] { inv(a); });
    capture::with_every_allocation_refused([&] { inv(s); });
    capture::with_every_allocation_refused([&] { pinv(a); });
    capture::with_every_allocation_refused([&] { det(s); });
    capture::with_every_allocation_refused([&] {
        M<double> c, v;
        condest(singular, i_o, c, v);
    });
}

} // namespace
