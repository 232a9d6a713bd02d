// Eigenvalues by what defines them, on matrices that are known to be hard.
#include "builtins/eigen.h"

#include "builtins/poly.h"
#include "core/sparse.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

bool is_hermitian(M<double> const& A)
{
    return size(A - ctranspose(A)) == 0;
}

M<double> diagonal_of(M<double> const& D)
{
    return made(D.rows(), 1, [&](int i, int) { return std::complex<double>(*D.addr(i, i), D.isc() ? *D.addi(i, i) : 0); }, D.isc());
}

std::vector<double> sorted_real_parts(M<double> const& x)
{
    std::vector<double> parts = numbers(x);
    std::sort(parts.begin(), parts.end());
    return parts;
}

double largest_column_error(M<double> const& V)
{
    double largest = 0;
    for (int j = 1; j <= V.cols(); ++j) {
        double sum = 0;
        for (int i = 1; i <= V.rows(); ++i)
            sum += std::norm(std::complex<double>(*V.addr(i, j), V.isc() ? *V.addi(i, j) : 0));
        largest = std::max(largest, std::abs(sum - 1));
    }
    return largest;
}

TEST(Eig, VectorsSatisfyTheirEquation)
{
    for (auto const& [name, A] : square_matrices())
        for (char const* option : {"", "nobalance"}) {
            M<double> V, D;
            M<double> const first = *option ? eig(A, text(option), i_o, V, D) : eig(A, i_o, V, D);
            double const scale = std::max(size(A), 1e-300);
            // Rounding errors of balanced matrices are those of the balanced form.
            if (name != "graded" || *option) {
                EXPECT_LT(distance(A * V, V * D, scale), 10) << name << option;
            }
            EXPECT_LT(largest_column_error(V), 1e-13) << name;
            EXPECT_EQ(size(first - V), 0) << name;
            M<double> const d = *option ? eig(A, text(option)) : eig(A);
            if (is_hermitian(A)) {
                EXPECT_LT(lack_of_orthonormality(V), 10) << name;
                EXPECT_FALSE(d.isc()) << name;
                EXPECT_TRUE(std::is_sorted(d.addr(), d.addr() + d.size())) << name;
            }
            // Of a defective matrix or one of zeros rounding decides; others agree without vectors.
            if (name != "frank" && name != "defective" && name != "rank" && name != "graded") {
                EXPECT_LT(distance(diagonal_of(D), d, scale), 1e4) << name;
            }
        }
}

TEST(Eig, KnownValues)
{
    EXPECT_LT(distance(column(sorted_real_parts(eig(rows_of({{8, 1, 6}, {3, 5, 7}, {4, 9, 2}})))), column({-4.89897948556636, 4.89897948556636, 15}), 1), 10);
    // Roots of unity, in conjugate pairs side by side.
    M<double> const d = eig(made(4, 4, [](int i, int j) { return i % 4 + 1 == j; }));
    ASSERT_TRUE(d.isc());
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(std::abs(std::pow(std::complex<double>(d.addr()[k], d.addi()[k]), 4) - 1.0), 0, 1e-14);
        if (d.addi()[k] > 0.5) {
            EXPECT_EQ(d.addi()[k + 1], -d.addi()[k]);
        }
    }
    // Wilkinson's largest pair agrees in nearly all figures.
    M<double> const w = eig(wilkinson(21));
    EXPECT_NEAR(w.addr()[20], 10.746194182903393, 1e-13);
    EXPECT_NEAR(w.addr()[19], 10.746194182903322, 1e-13);
    expect_all({{shown(eig(M<double>())), "0x0:"},
                {shown(eig(row({3}))), "1x1: 3"},
                {shown(eig(text("a"))), "1x1: 97"},
                {shown(eig(sparse(rows_of({{2, 0}, {0, 1}})))), "2x1: 1 2"},
                {shown(eig(rows_of({{2, 0}, {0, 1}}), rows_of({{1, 0}, {0, 4}}))), "2x1: 0.25 2"},
                {shown(eig(rows_of({{1, 2}, {0, 3}}), rows_of({{1, 0}, {0, 0}}))), "2x1: 1 Inf"}});
}

TEST(Eig, PencilsSatisfyTheirEquation)
{
    for (bool complex : {false, true})
        for (bool definite : {false, true}) {
            M<double> A = random(12, 12, complex), B = random(12, 12, complex, 2), V, D;
            if (definite) {
                A = A + ctranspose(A);
                B = ctranspose(B) * B;
            }
            eig(A, B, i_o, V, D);
            EXPECT_LT(distance(A * V, B * V * D, std::max(size(A), size(B) * size(D)) * size(V)), 10);
            if (definite) {
                EXPECT_LT(distance(ctranspose(V) * B * V, identity(12), 1), 1e4);
                EXPECT_FALSE(D.isc());
            } else {
                EXPECT_LT(largest_column_error(V), 1e-13);
            }
            EXPECT_LT(distance(eig(A, B), diagonal_of(D)), 1e4);
        }
    // Symmetric, with a B that is not definite.
    M<double> V, D;
    M<double> const A = rows_of({{2, 1}, {1, 3}}), B = rows_of({{1, 0}, {0, -1}});
    eig(A, B, i_o, V, D);
    EXPECT_LT(distance(A * V, B * V * D), 10);
}

TEST(Condeig, GrowsWithDependentVectors)
{
    M<double> V, D, s;
    M<double> const A = rows_of({{1, 1000}, {0, 2}});
    condeig(A, i_o, V, D, s);
    EXPECT_LT(distance(A * V, V * D), 10);
    EXPECT_NEAR(s.addr()[0], std::sqrt(1 + 1e6), 1e-6);
    EXPECT_EQ(shown(condeig(A)), shown(s));
    EXPECT_EQ(shown(condeig(rows_of({{2, 1}, {1, 2}}))), "2x1: 1 1");
    EXPECT_GT(size(condeig(defective(4))), 1e10);
    M<double> const turn = condeig(rows_of({{0, 1}, {-1, 0}}), i_o, s);
    EXPECT_LT(distance(turn, column({1, 1})), 10);
}

TEST(Polyeig, SolvesTheMatrixPolynomial)
{
    for (bool complex : {false, true}) {
        M<double> const A[] = {random(5, 5, complex), random(5, 5, complex, 2), random(5, 5, complex, 3), random(5, 5, complex, 4)};
        M<double> X, E;
        polyeig(A[0], A[1], A[2], A[3], i_o, X, E);
        ASSERT_EQ(E.size(), 15);
        ASSERT_EQ(X.rows(), 5);
        EXPECT_LT(largest_column_error(X), 1e-13);
        for (int k = 1; k <= 15; ++k) {
            M<double> const z = E(k), v = X(c_p, M<double>(k));
            M<double> const rest = A[0] * v + A[1] * v * z + A[2] * v * (z * z) + A[3] * v * (z * z * z);
            EXPECT_LT(size(rest), 1e-12 * (1 + std::pow(size(z), 3))) << k;
        }
        EXPECT_EQ(polyeig(A[0], A[1], A[2], A[3]).size(), 15);
    }
    // Numbers: the roots of 6 - 5 z + z^2.
    EXPECT_LT(distance(column(sorted_real_parts(polyeig(row({6}), row({-5}), row({1})))), column({2, 3})), 10);
    M<double> X, E;
    EXPECT_LT(distance(polyeig(rows_of({{2, 1}, {1, 2}}), i_o, E), column({3, 1})), 10);
    // A singular last matrix has infinite eigenvalues.
    polyeig(identity(2), identity(2), rows_of({{1, 0}, {0, 0}}), i_o, X, E);
    EXPECT_EQ(std::count_if(E.addr(), E.addr() + 4, [](double e) { return std::isinf(e); }), 1);
}

TEST(Eigen, Reports)
{
    M<double> const nan = row({NAN}), wide = rows_of({{1, 2}}), cube = nd({2, 2, 2}, Numbers(8, 1)), two = identity(2);
    expect_all({{reported_by([&] { eig(nan); }), "eig: matrix contains NaN or Inf"},
                {reported_by([&] { eig(row({INFINITY})); }), "eig: matrix contains NaN or Inf"},
                {reported_by([&] { eig(wide); }), "eig: matrix must be square"},
                {reported_by([&] { eig(cube); }), "eig: matrix must be two-dimensional"},
                {reported_by([&] { eig(two, identity(3)); }), "eig: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { eig(two, nan); }), "eig: matrix contains NaN or Inf"},
                {reported_by([&] { eig(two, text("balance")); }), "eig: unknown option balance"},
                {reported_by([&] { condeig(wide); }), "condeig: matrix must be square"},
                {reported_by([&] { polyeig(two, wide); }), "polyeig: matrix must be square"},
                {reported_by([&] { polyeig(two, identity(3)); }), "polyeig: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] {
                     M<double> V(3.0), D(3.0);
                     eig(nan, i_o, V, D);
                     EXPECT_EQ(V.size() + D.size(), 0);
                 }),
                 "eig: matrix contains NaN or Inf"}});
}

TEST(Eigen, EveryAllocationRefused)
{
    M<double> const A = random(3, 3), B = identity(3);
    capture::with_every_allocation_refused([&] {
        M<double> V, D, s;
        condeig(A, i_o, V, D, s);
    });
    capture::with_every_allocation_refused([&] { polyeig(A, B, B); });
}

} // namespace
