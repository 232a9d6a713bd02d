// Functions of matrices: inverse pairs, definitions, and cases with known results.
#include "builtins/matrix_functions.h"

#include "builtins/eigen.h"
#include "ops/elementwise.h"
#include "runtime/dispatch.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

// A fit neighbourhood: positive real parts, so that roots and logarithms are principal ones.
std::vector<Named> friendly_matrices()
{
    return {{"random", random(9, 9) + identity(9) * 6.0},
            {"complex", random(7, 7, true) + identity(7) * 6.0},
            {"defective", defective(5)},
            {"hilbert", hilbert(4)},
            {"number", row({3})},
            {"negative number", row({-3})},
            {"rotation", rows_of({{0.1, -1}, {1, 0.1}})},
            {"negative", rows_of({{-2, 1}, {0, -3}})},
            {"triangular", made(6, 6, [](int i, int j) { return j >= i ? 1.0 / i + j : 0; })}};
}

TEST(Expm, KnownValues)
{
    EXPECT_LT(distance(expm(rows_of({{1, 2}, {3, 4}})), rows_of({{51.9689561987050, 74.7365645670032}, {112.104846850505, 164.073803049210}})), 20);
    // A rotation by an angle that halves often, and a nilpotent matrix of large norm.
    for (double angle : {1e-9, 0.01, 0.2, 0.9, 2.0, 30.0, 1000.0})
        EXPECT_LT(distance(expm(rows_of({{0, -angle}, {angle, 0}})), rows_of({{std::cos(angle), -std::sin(angle)}, {std::sin(angle), std::cos(angle)}}), 1),
                  10 * std::max(1.0, angle))
            << angle;
    expect_all({{shown(expm(rows_of({{0, 1e200}, {0, 0}}))), "2x2: 1 0 1e+200 1"},
                {shown(expm(rows_of({{0, 1e-200}, {0, 0}}))), "2x2: 1 0 1e-200 1"},
                {shown(expm(rows_of({{0, 0}, {0, 0}}))), "2x2: 1 0 0 1"},
                {shown(expm(rows_of({{0, 0}, {0, 1}}))), "2x2: 1 0 0 2.71828182845905"},
                {shown(expm(rows_of({{1000, 0}, {0, 0}}))), "2x2: Inf 0 0 1"},
                {shown(expm(M<double>())), "0x0:"},
                {shown(expm(row({0}, {1})), 6), "1x1: 0.540302+0.841471i"}});
    // Halving for the norm alone would lose ten figures here: A and its exponential by hand.
    M<double> const A = rows_of({{1, 1e6}, {0, -1}});
    EXPECT_LT(distance(expm(A), rows_of({{std::exp(1), 1e6 * std::sinh(1)}, {0, std::exp(-1)}})), 10);
    EXPECT_NEAR(*expm(A).addr(1, 1), std::exp(1), 1e-13);
}

TEST(Expm, MethodsAgree)
{
    for (bool complex : {false, true})
        for (double scale : {0.001, 0.05, 0.3, 1.0, 5.0}) {
            M<double> const A = random(8, 8, complex) * scale, right = expm(A);
            EXPECT_LT(distance(expm1(A), right), 1) << scale;
            EXPECT_LT(distance(expm2(A), right), 1000) << scale;
            EXPECT_LT(distance(expm3(A), right), 1000) << scale;
            EXPECT_LT(distance(right * expm(-A), identity(8), size(right) * size(expm(-A))), 20) << scale;
            EXPECT_EQ(right.isc() || expm3(A).isc(), complex);
        }
    M<double> const H = random(6, 6, true), hermitian = H + ctranspose(H);
    EXPECT_LT(distance(expm3(hermitian), expm(hermitian)), 20);
    EXPECT_EQ(warned_by([] { expm3(defective(3)); }).substr(0, 59), "expm3: matrix is close to singular or badly scaled, rcond =");
    EXPECT_EQ(shown(expm2(row({800}))), "1x1: Inf");
}

TEST(Sqrtm, SquaresGiveTheMatrix)
{
    for (auto const& [name, A] : friendly_matrices()) {
        M<double> X, error;
        sqrtm(A, i_o, X, error);
        EXPECT_LT(distance(X * X, A), 20) << name;
        EXPECT_LT(error[1], 1e-13) << name;
        EXPECT_EQ(X.isc() != 0, A.isc() || name.substr(0, 3) == "neg") << name;
        EXPECT_EQ(warned_by([A = A] { sqrtm(A); }), "") << name;
    }
    M<double> const X = sqrtm(rows_of({{1, 2}, {3, 4}}));
    EXPECT_NEAR(X.addr()[0], 0.553688567145912, 1e-14);
    EXPECT_NEAR(X.addi()[0], 0.464394162839071, 1e-14);
    expect_all({{shown(sqrtm(rows_of({{4, 0}, {0, 9}}))), "2x2: 2 0 0 3"},
                {shown(sqrtm(rows_of({{0, 0}, {0, 0}}))), "2x2: 0 0 0 0"},
                {shown(sqrtm(M<double>())), "0x0:"},
                {warned_by([] { sqrtm(rows_of({{0, 1}, {0, 0}})); }), "sqrtm: matrix is singular to working precision"}});
}

TEST(Logm, ExponentialsGiveTheMatrix)
{
    for (auto const& [name, A] : friendly_matrices()) {
        M<double> X, error;
        logm(A, i_o, X, error);
        EXPECT_LT(distance(expm(X), A), 100) << name;
        EXPECT_LT(error[1], 1e-13) << name;
        EXPECT_EQ(X.isc() != 0, A.isc() || name.substr(0, 3) == "neg") << name;
    }
    // The other way round, where the eigenvalues stay in the principal strip.
    M<double> const A = random(10, 10);
    EXPECT_LT(distance(logm(expm(A)), A), 1000);
    // Far from the identity in size, and with large elements off the diagonal.
    M<double> const T = rows_of({{1e-150, 1e-150}, {0, 2e-150}}), L = logm(T);
    EXPECT_NEAR(*L.addr(1, 2), std::log(2), 1e-10);
    expect_all({{shown(logm(row({-1})), 6), "1x1: 0+3.14159i"},
                {shown(logm(identity(2))), "2x2: 0 0 0 0"},
                {shown(logm(M<double>())), "0x0:"},
                {warned_by([] { EXPECT_EQ(shown(logm(rows_of({{1, 1}, {0, 0}}))), "2x2: Inf Inf Inf Inf"); }), "logm: matrix is singular to working precision"}});
}

// What a program's dispatcher gives for the names below.
M<double> dispatch(M<double> const& function, M<M<double>> const& inputs, i_o_t, Mr<double> first, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>)
{
    M<double> const x = inputs.addr()[0];
    std::string const name = shown(function);
    first = name == "'exp'" ? exp(x) : name == "'square'" ? times(x, x) : M<double>(1.0);
    return first.target();
}

class Funm : public testing::Test {
protected:
    Funm() { feval_func = dispatch; }
    ~Funm() override { feval_func = nullptr; }
};

TEST_F(Funm, AgreesWithOtherWays)
{
    for (bool complex : {false, true}) {
        M<double> const A = random(6, 6, complex);
        M<double> F, error;
        EXPECT_LT(distance(funm(A, text("exp"), i_o, F, error), expm(A)), 1e3);
        EXPECT_EQ(F.isc() != 0, complex);
        EXPECT_LT(error[1], 1e-12);
        EXPECT_LT(distance(funm(A, text("square")), A * A), 1e3);
    }
    M<double> const symmetric = hilbert(5);
    EXPECT_LT(distance(funm(symmetric, text("exp")), expm(symmetric)), 20);
    EXPECT_EQ(warned_by([&] { funm(defective(2), text("exp")); }), "funm: result may be inaccurate, error = 1");
    expect_all({{shown(funm(M<double>(), text("exp"))), "0x0:"},
                {reported_by([&] { funm(symmetric, text("first")); }), "funm: function must give one value for each eigenvalue"},
                {reported_by([&] { funm(symmetric, row({1})); }), "funm: function must be given by name"}});
    feval_func = nullptr;
    EXPECT_NE(reported_by([&] { funm(symmetric, text("exp")); }), "");
}

TEST(Lyap, SolvesTheEquation)
{
    for (bool complex : {false, true}) {
        M<double> const A = random(7, 7, complex) - identity(7) * 5.0, B = random(4, 4) - identity(4) * 3.0, C = random(7, 7), D = random(7, 4, complex);
        M<double> const X = lyap(A, C), Y = lyap(A, B, D);
        EXPECT_LT(distance(A * X + X * ctranspose(A), -C, size(A) * size(X)), 50);
        EXPECT_LT(distance(A * Y + Y * B, -D, size(A) * size(Y)), 50);
        EXPECT_EQ(X.isc() != 0, complex);
    }
    expect_all({{shown(lyap(row({-1}), row({4}))), "1x1: 2"},
                {warned_by([] { lyap(row({1}), row({-1}), row({4})); }), "lyap: matrix is singular to working precision"},
                {reported_by([] { lyap(identity(2), identity(3)); }), "lyap: sizes of (temporary) and (temporary) do not agree"},
                {reported_by([] { lyap(identity(2), identity(3), identity(2)); }), "lyap: sizes of (temporary) and (temporary) do not agree"}});
}

TEST(MatrixFunctions, Reports)
{
    M<double> const wide = rows_of({{1, 2}});
    expect_all({{reported_by([&] { expm(wide); }), "expm: matrix must be square"},
                {reported_by([&] { expm(rows_of({{0, 1e308}, {0, 0}})); }), "expm: matrix is too large"},
                {reported_by([&] { expm(rows_of({{1e308, 1e308}, {1e308, 0}})); }), "expm: matrix is too large"},
                {reported_by([&] { expm3(rows_of({{0, 1000}, {-1, 800}})); }), "expm3: matrix is too large"},
                {reported_by([&] { expm1(NaN); }), "expm1: matrix contains NaN or Inf"},
                {reported_by([&] { expm2(Inf); }), "expm2: matrix contains NaN or Inf"},
                {reported_by([&] { expm3(wide); }), "expm3: matrix must be square"},
                {reported_by([&] { logm(wide); }), "logm: matrix must be square"},
                {reported_by([&] { sqrtm(NaN); }), "sqrtm: matrix contains NaN or Inf"},
                {reported_by([&] { lyap(wide, wide); }), "lyap: matrix must be square"}});
}

TEST(MatrixFunctions, EveryAllocationRefused)
{
    M<double> const A = random(3, 3), C = random(2, 2, true), D = random(3, 2);
    capture::with_every_allocation_refused([&] { expm(A); });
    capture::with_every_allocation_refused([&] { expm3(A); });
    capture::with_every_allocation_refused([&] { logm(C); });
    capture::with_every_allocation_refused([&] { lyap(A, C, D); });
}

} // namespace
