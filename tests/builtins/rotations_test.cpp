// Rotations, and factorisations that follow a change against the change itself.
#include "builtins/rotations.h"

#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

// Columns of two matrices side by side.
M<double> beside(M<double> const& a, M<double> const& b)
{
    return made(a.rows(), a.cols() + b.cols(), [&](int i, int j) {
        M<double> const& from = j <= a.cols() ? a : b;
        int const column = j <= a.cols() ? j : j - a.cols();
        return std::complex<double>(*from.addr(i, column), from.isc() ? *from.addi(i, column) : 0);
    }, a.isc() || b.isc());
}

M<double> columns(M<double> const& a, int first, int count)
{
    return count > 0 ? made(a.rows(), count, [&](int i, int j) {
        return std::complex<double>(*a.addr(i, j + first - 1), a.isc() ? *a.addi(i, j + first - 1) : 0);
    }, a.isc()) : M<double>(0, a.rows(), 0);
}

M<double> upper(M<double> const& a)
{
    return made(a.rows(), a.cols(), [&](int i, int j) { return i <= j ? std::complex<double>(*a.addr(i, j), a.isc() ? *a.addi(i, j) : 0) : 0; }, a.isc());
}

TEST(Rotations, TurnIntoTheFirstElement)
{
    std::vector<std::complex<double>> const values = {0, 1, -2, 1e-200, -1e200, {3, 4}, {0, -1}};
    for (auto const x : values)
        for (auto const y : values) {
            bool const complex = x.imag() != 0 || y.imag() != 0;
            M<double> const pair = made(2, 1, [&](int i, int) { return i == 1 ? x : y; }, complex);
            M<double> G, image, c, s;
            planerot(pair, i_o, G, image);
            double const length = std::hypot(std::abs(x), std::abs(y));
            EXPECT_LT(distance(G * pair, image, length), 4);
            EXPECT_DOUBLE_EQ(image.addr()[0], length);
            EXPECT_LT(lack_of_orthonormality(G), 4);
            M<double> const first = columns(ctranspose(pair), 1, 1), second = columns(ctranspose(pair), 2, 1), turn = givens(ctranspose(first), ctranspose(second));
            givens(ctranspose(first), ctranspose(second), i_o, c, s);
            EXPECT_LT(lack_of_orthonormality(turn), 4);
            EXPECT_LT(size(columns(transpose(turn * pair), 2, 1)), 4 * epsilon * length + 1e-300);
            EXPECT_EQ(turn.addr()[0], c[1]);
            EXPECT_EQ(turn.addr()[2], s[1]);
        }
    expect_all({{shown(planerot(row({3, 4}))), "2x2: 0.6 -0.8 0.8 0.6"},
                {shown(givens(one_M, zero_M)), "2x2: 1 0 0 1"},
                {reported_by([] { planerot(row({1, 2, 3})); }), "planerot: argument must have two elements"},
                {reported_by([] { givens(row({1, 2}), one_M); }), "givens: argument must be scalar"}});
}

TEST(Cholupdate, FollowsARankOneChange)
{
    for (bool complex : {false, true})
        for (int n : {1, 2, 7}) {
            M<double> const R = upper(random(n, n, complex)) + identity(n) * 3.0, x = random(n, 1, complex, 2);
            M<double> const wide = cholupdate(R, x), A = ctranspose(R) * R + x * ctranspose(x);
            EXPECT_LT(distance(ctranspose(wide) * wide, A), 20);
            EXPECT_LT(size(wide - upper(wide)), 1e-300);
            EXPECT_LT(distance(ctranspose(wide) * wide - x * ctranspose(x), ctranspose(R) * R), 40);
            M<double> const back = cholupdate(wide, x, text("-"));
            EXPECT_LT(distance(ctranspose(back) * back, ctranspose(R) * R), 100);
        }
    expect_all({{shown(cholupdate(row({3}), row({4}), text("+"))), "1x1: 5"},
                {shown(cholupdate(row({5}), row({4}), text("-"))), "1x1: 3"},
                {reported_by([] { cholupdate(identity(2), column({1, 0}), text("-")); }), "cholupdate: downdated matrix is not positive definite"},
                {reported_by([] { cholupdate(identity(2), column({1, 0}), text("*")); }), "cholupdate: unknown option *"},
                {reported_by([] { cholupdate(identity(2), one_M); }), "cholupdate: sizes of (temporary) and 1 do not agree"},
                {reported_by([] { cholupdate(row({1, 2}), one_M); }), "cholupdate: matrix must be square"}});
}

// Orthonormal factors of a product that has changed, with a triangular one.
void expect_factors(M<double> const& Q, M<double> const& R, M<double> const& product)
{
    EXPECT_LT(lack_of_orthonormality(Q), 20);
    EXPECT_EQ(size(R - upper(R)), 0);
    EXPECT_LT(distance(Q * R, product), 40);
}

TEST(QrUpdates, FollowTheProduct)
{
    struct {
        int m, n;
        bool complex;
    } const shapes[] = {{5, 3, false}, {5, 5, true}, {3, 6, false}, {1, 2, true}, {4, 1, false}};
    for (auto const& [m, n, complex] : shapes) {
        // Factors of a random product, from insertions into nothing.
        M<double> const A = random(m, n, complex);
        M<double> Q, R, Q1, R1;
        for (int j = 1; j <= n; ++j) {
            qrinsert(Q, R, j, columns(A, j, 1), i_o, Q1, R1);
            Q = Q1, R = R1;
        }
        expect_factors(Q, R, A);
        M<double> const x = random(m, 1, complex, 2), v = random(n, 1, complex, 3);
        for (int j = 1; j <= n + 1; ++j) {
            qrinsert(Q, R, j, x, i_o, Q1, R1);
            expect_factors(Q1, R1, j == 1 ? beside(x, A) : j > n ? beside(A, x) : beside(beside(columns(A, 1, j - 1), x), columns(A, j, n - j + 1)));
        }
        for (int j = 1; j <= n && n > 1; ++j) {
            qrdelete(Q, R, j, i_o, Q1, R1);
            expect_factors(Q1, R1, j == 1 ? columns(A, 2, n - 1) : j == n ? columns(A, 1, n - 1) : beside(columns(A, 1, j - 1), columns(A, j + 1, n - j)));
        }
        qrupdate(Q, R, x, v, i_o, Q1, R1);
        expect_factors(Q1, R1, A + x * ctranspose(v));
    }
    M<double> const Q = identity(3), R = upper(random(3, 2)), x = random(3, 1), y = random(4, 1);
    expect_all({{reported_by([&] { qrinsert(Q, R, 4, x); }), "qrinsert: index out of range"},
                {reported_by([&] { qrinsert(Q, R, 1, y); }), "qrinsert: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { qrdelete(Q, R, 0); }), "qrdelete: index out of range"},
                {reported_by([&] { qrdelete(Q, R, 1.5); }), "qrdelete: index out of range"},
                {reported_by([&] { qrdelete(identity(4), R, 1); }), "qrdelete: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { qrupdate(Q, R, y, x); }), "qrupdate: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([&] { qrupdate(R, R, x, x); }), "qrupdate: matrix must be square"}});
}

TEST(Rotations, EveryAllocationRefused)
{
    M<double> const Q = identity(2), x = column({1, 2}, {0, 1});
    capture::with_every_allocation_refused([&] { qrinsert(Q, Q, one_M, x); });
    capture::with_every_allocation_refused([&] { planerot(x); });
    capture::with_every_allocation_refused([&] { cholupdate(Q, x); });
}

} // namespace
