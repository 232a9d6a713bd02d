// Singular values and the spaces that they tell of.
#include "builtins/svd.h"

#include "builtins/subspaces.h"
#include "core/sparse.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

std::vector<Named> matrices_of_every_shape()
{
    std::vector<Named> all = square_matrices();
    all.push_back({"tall", random(30, 8)});
    all.push_back({"wide", random(8, 30, true)});
    all.push_back({"row", random(1, 5)});
    all.push_back({"column", random(5, 1, true)});
    all.push_back({"tall of low rank", low_rank(12, 7, 3, true)});
    return all;
}

TEST(Svd, FactorsMultiplyToTheMatrix)
{
    for (auto const& [name, A] : matrices_of_every_shape())
        for (bool economy : {false, true}) {
            M<double> U, S, V;
            M<double> const first = economy ? svd(A, zero_M, i_o, U, S, V) : svd(A, i_o, U, S, V);
            EXPECT_LT(distance(U * S * ctranspose(V), A), 10) << name;
            EXPECT_LT(lack_of_orthonormality(U), 10) << name;
            EXPECT_LT(lack_of_orthonormality(V), 10) << name;
            bool const thin = economy && A.rows() > A.cols();
            EXPECT_EQ(S.rows(), thin ? A.cols() : A.rows()) << name;
            EXPECT_EQ(U.cols(), S.rows()) << name;
            M<double> const s = svd(A);
            ASSERT_EQ(s.size(), std::min(A.rows(), A.cols()));
            for (int k = 1; k <= s.size(); ++k) {
                EXPECT_NEAR(*S.addr(k, k), s[k], 1e-14 * size(s)) << name;
                EXPECT_GE(s[k], k < s.size() ? s[k + 1] : 0) << name;
            }
        }
}

TEST(Svd, KnownValues)
{
    M<double> const h = svd(hilbert(3));
    EXPECT_NEAR(h[1] / h[3], 524.05677758606, 1e-9);
    expect_all({{shown(svd(M<double>())), "0x0:"},
                {shown(svd(row({3, 4}))), "1x1: 5"},
                {shown(svd(sparse(rows_of({{0, 2}, {-3, 0}})))), "2x1: 3 2"},
                {shown(svd(rows_of({{0, 2}, {-3, 0}}), zero_M)), "2x1: 3 2"},
                {reported_by([] { svd(row({1, NAN})); }), "svd: matrix contains NaN or Inf"},
                {reported_by([] { svd(nd({2, 2, 2}, Numbers(8, 1))); }), "svd: matrix must be two-dimensional"}});
}

TEST(Gsvd, FactorsMultiplyToBothMatrices)
{
    struct {
        int m, p, n;
        bool complex;
    } const rows[] = {{6, 5, 4, false}, {3, 5, 4, false}, {6, 2, 4, true}, {4, 4, 4, true}, {2, 3, 5, false}, {1, 4, 3, false}};
    for (auto const& [m, p, n, complex] : rows) {
        M<double> const A = random(m, n, complex), B = random(p, n, complex, 2);
        M<double> U, V, X, C, S, s;
        gsvd(A, B, i_o, U, V, X, C, S);
        EXPECT_LT(distance(U * C * ctranspose(X), A, size(X)), 20) << m << p << n;
        EXPECT_LT(distance(V * S * ctranspose(X), B, size(X)), 20) << m << p << n;
        EXPECT_LT(lack_of_orthonormality(U), 10);
        EXPECT_LT(lack_of_orthonormality(V), 10);
        EXPECT_LT(distance(ctranspose(C) * C + ctranspose(S) * S, identity(C.cols()), 1), 10);
        gsvd(A, B, i_o, s);
        ASSERT_EQ(s.size(), C.cols());
        EXPECT_TRUE(std::is_sorted(s.addr(), s.addr() + s.size())) << m << p << n;
        for (int j = 1; j <= s.size(); ++j) {
            int const shift = std::max(0, C.cols() - m);
            double const c = j > shift ? *C.addr(j - shift, j) : 0, sine = j <= p ? *S.addr(j, j) : 0;
            EXPECT_NEAR(sine * (std::isinf(s[j]) ? 0 : s[j]), std::isinf(s[j]) ? 0 : c, 1e-12) << j;
        }
    }
    // Where B gives nothing the value has no bound.
    EXPECT_EQ(shown(gsvd(rows_of({{3, 0}, {0, 2}}), row({1, 0}))), "2x1: 3 Inf");
    EXPECT_EQ(reported_by([] { gsvd(row({1, 2}), row({1})); }), "gsvd: sizes of (temporary) and =1 do not agree");
}

TEST(Null, IsWhatTheMatrixMapsToZero)
{
    struct {
        M<double> A;
        int nullity;
    } const cases[] = {{low_rank(9, 7, 4), 3},          {low_rank(5, 8, 5, true), 3}, {random(6, 6), 0}, {zero_M, 1},
                       {rows_of({{1, 2, 3}, {2, 4, 6}}), 2}, {row({0, 0}), 2},        {row({1, 1e-20}), 1}};
    for (auto const& [A, nullity] : cases) {
        M<double> const Z = null(A), R = null(A, text("r")), Q = orth(A);
        EXPECT_EQ(Z.cols(), nullity);
        EXPECT_EQ(Q.cols(), A.cols() - nullity);
        if (nullity > 0) {
            EXPECT_LT(size(A * Z), 100 * epsilon * std::max(size(A), 1.0));
            EXPECT_LT(lack_of_orthonormality(Z), 10);
            EXPECT_EQ(R.cols(), nullity);
            EXPECT_LT(size(A * R), 1e-12 * size(R));
        }
        if (Q.size() > 0) {
            EXPECT_LT(distance(Q * (ctranspose(Q) * A), A), 10);
            EXPECT_LT(lack_of_orthonormality(Q), 10);
        }
    }
    expect_all({{shown(null(rows_of({{1, 2, 3}, {2, 4, 6}}), text("r"))), "3x2: -2 1 0 -3 0 1"},
                {shown(null(rows_of({{0, 1, 2}, {0, 0, 0}}), text("R"))), "3x2: 1 0 0 0 -2 1"},
                {shown(null(identity(2))), "0x0:"},
                {shown(null(M<double>())), "0x0:"},
                {shown(orth(row({0, 0}))), "0x0:"},
                {reported_by([] { null(zero_M, text("s")); }), "null: unknown option s"},
                {reported_by([] { null(NaN); }), "null: matrix contains NaN or Inf"},
                {reported_by([] { orth(nd({1, 2, 2}, Numbers(4, 1))); }), "orth: matrix must be two-dimensional"}});
}

TEST(Rref, ReducesToEchelonForm)
{
    M<double> R, jb;
    EXPECT_EQ(shown(rref(rows_of({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}), i_o, R, jb), 6), "3x3: 1 0 0 0 1 0 -1 2 0");
    EXPECT_EQ(shown(jb), "1x2: 1 2");
    // Rows of the form span those of the matrix, and its pivot columns are unit vectors.
    for (bool complex : {false, true}) {
        M<double> A = low_rank(6, 9, 4, complex);
        rref(A, i_o, R, jb);
        ASSERT_EQ(jb.size(), 4);
        for (int k = 1; k <= 4; ++k)
            for (int i = 1; i <= 6; ++i)
                EXPECT_EQ(*R.addr(i, static_cast<int>(jb[k])), i == k);
        EXPECT_LT(distance(M<double>(A(c_p, jb)) * M<double>(R(made(1, 4, [](int, int j) { return j; }), c_p)), A), 1e3);
    }
    expect_all({{shown(rref(rows_of({{1, 2}, {1, 2.001}}), row({0.01}))), "2x2: 1 0 2 0"},
                {shown(rref(row({0, 4, 2}), i_o, R, jb)), "1x3: 0 1 0.5"},
                {shown(jb), "1x1: 2"},
                {shown(rref(M<double>())), "0x0:"},
                {shown(rref(rows_of({{0, 0}, {0, 0}}), i_o, R, jb)), "2x2: 0 0 0 0"},
                {shown(jb), "0x0:"},
                {shown(rref(row({0, 2}, {1, 0}))), "1x2: 1+0i 0-2i"},
                {reported_by([] { rref(NaN); }), "rref: matrix contains NaN or Inf"}});
}

TEST(Subspace, GivesAccurateAngles)
{
    // Small, middle and nearly right angles, known by construction.
    for (double angle : {0.0, 1e-9, 0.3, 1.2, 1.5707963, 1.5707963267948966}) {
        M<double> const A = column({1, 0, 0}), B = column({std::cos(angle), 0, std::sin(angle)});
        EXPECT_NEAR(subspace(A, B)[1], angle, 1e-15 + 4 * epsilon * angle);
    }
    M<double> const A = random(8, 3, true), B = random(8, 5, true, 9);
    EXPECT_LT(subspace(A, A * random(3, 3))[1], 1e-13);
    EXPECT_NEAR(subspace(A, B)[1], subspace(B, A)[1], 1e-14);
    expect_all({{shown(subspace(column({0, 0}), column({1, 2}))), "1x1: 0"},
                {reported_by([] { subspace(column({0, 0}), row({1, 2})); }), "subspace: sizes of (temporary) and (temporary) do not agree"}});
}

TEST(Svd, EveryAllocationRefused)
{
    M<double> const A = random(4, 3), B = random(3, 3, true);
    capture::with_every_allocation_refused([&] {
        M<double> U, S, V;
        svd(B, i_o, U, S, V);
    });
    capture::with_every_allocation_refused([&] { gsvd(A, B); });
    capture::with_every_allocation_refused([&] { null(A); });
    capture::with_every_allocation_refused([&] { rref(A); });
    capture::with_every_allocation_refused([&] { subspace(A, A); });
}

} // namespace
