// Reduced forms by what defines them.
#include "builtins/schur.h"

#include "builtins/eigen.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

// The largest element below diagonal -below.
double size_below(M<double> const& x, int below)
{
    return size(made(x.rows(), x.cols(), [&](int i, int j) {
        return i - j > below ? std::complex<double>(*x.addr(i, j), x.isc() ? *x.addi(i, j) : 0) : 0;
    }, true));
}

TEST(Hess, FormIsSimilarAndZeroBelow)
{
    for (auto const& [name, A] : square_matrices()) {
        M<double> P, H;
        hess(A, i_o, P, H);
        EXPECT_LT(distance(P * H * ctranspose(P), A), 20) << name;
        EXPECT_LT(lack_of_orthonormality(P), 10) << name;
        EXPECT_EQ(size_below(H, 1), 0) << name;
        EXPECT_LT(distance(hess(A), H), 1) << name;
        if (size(A - ctranspose(A)) == 0) {
            EXPECT_EQ(size(H - ctranspose(H)), 0) << name;
            EXPECT_EQ(size_below(ctranspose(H), 1), 0) << name;
        }
    }
}

TEST(Schur, FormsAreSimilarAndTriangular)
{
    for (auto const& [name, A] : square_matrices())
        for (char const* option : {"real", "complex"}) {
            bool const triangular = A.isc() || std::string(option) == "complex";
            M<double> U, T;
            schur(A, text(option), i_o, U, T);
            EXPECT_LT(distance(U * T * ctranspose(U), A), 20) << name;
            EXPECT_LT(lack_of_orthonormality(U), 10) << name;
            EXPECT_EQ(size_below(T, triangular ? 0 : 1), 0) << name;
            EXPECT_EQ(T.isc() != 0, triangular) << name;
            for (int k = 1; !triangular && k < T.rows(); ++k)
                if (double const below = *T.addr(k + 1, k); below != 0) {
                    EXPECT_EQ(*T.addr(k, k), *T.addr(k + 1, k + 1)) << name;
                    EXPECT_LT(below * *T.addr(k, k + 1), 0) << name;
                }
            EXPECT_EQ(schur(A, text(option)).size(), T.size());
            // The same product in complex form.
            M<double> complex_U, complex_T;
            rsf2csf(U, T, i_o, complex_U, complex_T);
            EXPECT_EQ(size_below(complex_T, 0), 0) << name;
            EXPECT_LT(distance(complex_U * complex_T * ctranspose(complex_U), A), 40) << name;
            EXPECT_LT(lack_of_orthonormality(complex_U), 20) << name;
        }
}

TEST(Cdf2rdf, TurnsPairsIntoBlocks)
{
    M<double> V, D, real_V, real_D;
    M<double> const A = random(9, 9);
    eig(A, i_o, V, D);
    cdf2rdf(V, D, i_o, real_V, real_D);
    EXPECT_FALSE(real_V.isc() || real_D.isc());
    EXPECT_LT(distance(A * real_V, real_V * real_D), 20);
    EXPECT_EQ(size_below(real_D, 1), 0);
    expect_all({{shown(cdf2rdf(identity(2), identity(2), i_o, real_V, real_D)), "2x2: 1 0 0 1"},
                {reported_by([] { cdf2rdf(identity(2), matrix(2, 2, {1, 0, 0, 1}, {1, 0, 0, 1})); }), "cdf2rdf: eigenvalues are not in conjugate pairs"},
                {reported_by([] { cdf2rdf(identity(1), row({1}, {1})); }), "cdf2rdf: eigenvalues are not in conjugate pairs"},
                {reported_by([] { cdf2rdf(identity(2), identity(3)); }), "cdf2rdf: sizes of (temporary) and (temporary) do not agree"}});
}

TEST(Balance, ScalesByPowersOfTwo)
{
    M<double> const A = rows_of({{1, 1e4, 0}, {1e-4, 2, 1e3}, {1e-6, 1e-5, 3}});
    M<double> T, B;
    balance(A, i_o, T, B);
    EXPECT_EQ(size(T * B - A * T), 0);
    EXPECT_EQ(shown(balance(A)), shown(B));
    EXPECT_LT(size(B), 100);
    // A permutation alone, of a complex matrix.
    M<double> const triangular = made(3, 3, [](int i, int j) { return i >= j ? std::complex<double>(i, j) : 0; }, true);
    balance(triangular, i_o, T, B);
    EXPECT_EQ(size(T * B - triangular * T), 0);
    EXPECT_EQ(size_below(B, 0), 0);
}

TEST(Qz, FormsAreEquivalentAndTriangular)
{
    for (bool complex : {false, true}) {
        M<double> const A = random(8, 8, complex), B = random(8, 8, complex, 2);
        M<double> AA, BB, Q, Z, V;
        qz(A, B, i_o, AA, BB, Q, Z, V);
        EXPECT_LT(distance(Q * A * Z, AA), 20);
        EXPECT_LT(distance(Q * B * Z, BB), 20);
        EXPECT_LT(lack_of_orthonormality(Q) + lack_of_orthonormality(Z), 20);
        EXPECT_EQ(size_below(AA, 0) + size_below(BB, 0), 0);
        auto const diagonal = [](M<double> const& x) {
            return made(x.rows(), x.cols(), [&](int i, int j) { return i == j ? std::complex<double>(*x.addr(i, i), *x.addi(i, i)) : 0; }, true);
        };
        EXPECT_LT(distance(A * V * diagonal(BB), B * V * diagonal(AA)), 100);
    }
}

TEST(Schur, EmptyOperandsAndReports)
{
    M<double> const none, wide = rows_of({{1, 2}}), two = identity(2);
    expect_all({{shown(hess(none)), "0x0:"},
                {shown(schur(none)), "0x0:"},
                {shown(balance(none)), "0x0:"},
                {shown(qz(none, none)), "0x0:"},
                {shown(rsf2csf(none, none)), "0x0:"},
                {shown(schur(text("a"))), "1x1: 97"},
                {reported_by([&] { hess(wide); }), "hess: matrix must be square"},
                {reported_by([&] { schur(NaN); }), "schur: matrix contains NaN or Inf"},
                {reported_by([&] { schur(two, text("unreal")); }), "schur: unknown option unreal"},
                {reported_by([&] { rsf2csf(two, identity(3)); }), "rsf2csf: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { balance(wide); }), "balance: matrix must be square"},
                {reported_by([&] { qz(two, identity(3)); }), "qz: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { qz(two, Inf); }), "qz: matrix contains NaN or Inf"}});
}

TEST(Schur, EveryAllocationRefused)
{
    M<double> const A = random(3, 3);
    capture::with_every_allocation_refused([&] {
        M<double> P, H;
        hess(A, i_o, P, H);
    });
    capture::with_every_allocation_refused([&] {
        M<double> U, T;
        schur(A, i_o, U, T);
        rsf2csf(U, T);
    });
    capture::with_every_allocation_refused([&] { qz(A, A); });
}

} // namespace
