// Systems of equations and powers by what they leave over.
#include "builtins/solve.h"

#include "builtins/inverse.h"
#include "builtins/products.h"
#include "support/linear.h"

using namespace linear;
using namespace values;

namespace {

constexpr double infinity = HUGE_VAL;

TEST(Divide, ScalarsAndEmptyOperands)
{
    M<double> const a = matrix(1, 2, {2, 4}), none;
    M<double> pages = cube(1, 1, 2);
    pages.r(1) = 6;
    pages.r(2) = 9;
    expect_all({{shown(M<double>(6.0) / M<double>(4.0)), "1x1: 1.5"},
                {shown(a / M<double>(4.0)), "1x2: 0.5 1"},
                {shown(a / 4.0), "1x2: 0.5 1"},
                {shown(3.0 / M<double>(4.0)), "1x1: 0.75"},
                {shown(mldivide(M<double>(2.0), a)), "1x2: 1 2"},
                {shown(mldivide(M<double>(3.0), pages)), "1x1x2: 2 3"},
                {shown(pages / M<double>(3.0)), "1x1x2: 2 3"},
                {shown(mldivide(none, a)), "0x0:"},
                {shown(a / none), "0x0:"},
                {shown(M<double>(1.0) / M<double>(0.0)), "1x1: Inf"},
                {shown(mldivide(text("0"), text("0"))), "1x1: 1"},
                {shown(mldivide(matrix(2, 2, {2, 0, 0, 4}), transpose(text("BD")))), "2x1: 33 17"}});
}

TEST(Divide, Messages)
{
    M<double> a = random(3, 3), b = random(2, 2);
    a.setname("a");
    b.setname("b");
    expect_all({{reported_by([&] { EXPECT_EQ(mldivide(a, b).size(), 0); }), "\\: row counts of a and b do not agree"},
                {reported_by([&] { EXPECT_EQ((a / b).size(), 0); }), "/: column counts of a and b do not agree"},
                {reported_by([&] { EXPECT_EQ(mrdivide(a, b).size(), 0); }), "/: column counts of a and b do not agree"},
                {reported_by([&] { mldivide(cube(2, 2, 2), a); }), "\\: matrix must be two-dimensional"},
                {reported_by([&] { mrdivide(a, cube(2, 2, 2)); }), "/: matrix must be two-dimensional"},
                {reported_by([&] { EXPECT_EQ(mpower(a, b).size(), 0); }), "^: at least one operand must be scalar"},
                {reported_by([&] { mpower(random(2, 3), M<double>(2.0)); }), "^: matrix must be square"},
                {reported_by([&] { mpower(M<double>(2.0), random(2, 3)); }), "^: matrix must be square"},
                {reported_by([&] { mpower(matrix(2, 2, {1, NAN, 3, 4}), M<double>(0.5)); }), "^: matrix contains NaN or Inf"}});
}

// Every structure that is looked for, real and complex, with right hand sides of either kind.
TEST(Divide, SolvesEveryStructure)
{
    for (int n : {2, 3, 7, 40, 130})
        for (int kind = 0; kind < 4; ++kind) {
            bool const complex = kind & 1, complex_sides = kind & 2;
            M<double> const any = random(n, n, complex), sides = random(n, 3, complex_sides);
            M<double> upper = any, lower = any, indefinite = any + ctranspose(any);
            for (int j = 1; j <= n; ++j)
                for (int i = 1; i <= n; ++i) {
                    M<double>& other = i > j ? upper : lower;
                    if (i == j) {
                        upper.r(i, i) += n;
                        lower.r(i, i) += n;
                        indefinite.r(i, i) = 1;
                        continue;
                    }
                    other.r(i, j) = 0;
                    if (complex)
                        other.i(i, j) = 0;
                }
            M<double> const definite = any * ctranspose(any) + M<double>(n * 1.0) * eye(M<double>(n));
            for (M<double> const& a : {any, upper, lower, definite, indefinite}) {
                M<double> const wide = transpose(sides);
                EXPECT_EQ(warned_by([&] {
                              EXPECT_LT(residual(a, mldivide(a, sides), sides), 20) << n << " kind " << kind;
                              EXPECT_LT(residual(ctranspose(a), ctranspose(wide / a), ctranspose(wide)), 20) << n << " kind " << kind;
                          }),
                          "");
            }
        }
}

TEST(Divide, HardMatrices)
{
    struct {
        char const* name;
        M<double> matrix;
        char const* warned;
    } const rows[] = {{"hilbert 8", hilbert(8), ""},
                      {"hilbert 14", hilbert(14), "\\: matrix is close to singular or badly scaled, rcond = "},
                      {"vandermonde", vandermonde(9), ""},
                      {"wilkinson", wilkinson_growth(40), ""},
                      {"frank", frank(12), ""},
                      {"graded", graded(12), "\\: matrix is close to singular or badly scaled, rcond = "}};
    for (auto const& row : rows) {
        M<double> const sides = row.matrix * matrix(row.matrix.cols(), 1, Numbers(static_cast<std::size_t>(row.matrix.cols()), 1));
        M<double> x;
        std::string const warned = warned_by([&] { x = mldivide(row.matrix, sides); });
        EXPECT_EQ(warned.substr(0, std::string(row.warned).size()), row.warned) << row.name;
        EXPECT_EQ(warned.empty(), std::string(row.warned).empty()) << row.name << ": " << warned;
        // Elimination with growth loses as many digits as it grows.
        EXPECT_LT(residual(row.matrix, x, sides), 1e3) << row.name;
    }
}

TEST(Divide, SingularAndNotFinite)
{
    M<double> const singular = matrix(2, 2, {1, 2, 2, 4}), triangle = matrix(2, 2, {1, 0, 5, 0}), close = matrix(2, 2, {1, 1, 1, 1 + 3e-16}),
                    b = matrix(2, 1, {1, 2}), broken = matrix(2, 2, {1, 2, 3, NAN});
    char const* const warning = "\\: matrix is singular to working precision";
    for (M<double> const& a : {singular, triangle, sparse(singular), sparse(triangle), sparse(matrix(2, 2, {0, 0, 1, 3}))})
        EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(mldivide(a, b)), "2x1: Inf Inf"); }), warning);
    EXPECT_EQ(warned_by([&] { mrdivide(transpose(b), singular); }), "/: matrix is singular to working precision");
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(mldivide(broken, b)), "2x1: NaN NaN"); }), "\\: matrix is close to singular or badly scaled, rcond = NaN");
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(mldivide(sparse(broken), b)), "2x1: NaN NaN"); }),
              "\\: matrix is close to singular or badly scaled, rcond = NaN");
    for (M<double> const& a : {close, sparse(close)})
        EXPECT_EQ(warned_by([&] { EXPECT_LT(residual(a, mldivide(a, b), b), 10); }).substr(0, 60), "\\: matrix is close to singular or badly scaled, rcond = 5.55");
    EXPECT_EQ(shown(mldivide(matrix(2, 2, {2, 0, 0, 4}), matrix(2, 1, {infinity, 4}))), "2x1: Inf 1");
    // Sides that overflow the sum of a column are numbers all the same.
    EXPECT_LT(residual(matrix(2, 2, {1.5e308, 1e307, 1e307, 1e308}), mldivide(matrix(2, 2, {1.5e308, 1e307, 1e307, 1e308}), b), b), 1e300);
}

// The residual of least squares is orthogonal to the columns, and solutions have no more non-zeros than the rank.
TEST(Divide, LeastSquares)
{
    for (int kind = 0; kind < 8; ++kind) {
        bool const complex = kind & 1, as_sparse = kind & 4;
        for (auto const& [m, n] : {std::pair{9, 4}, {4, 9}, {30, 1}, {1, 6}, {50, 20}}) {
            M<double> const a = random(m, n, complex), b = random(m, 2, kind & 2), x = mldivide(as_sparse ? sparse(a) : a, b);
            EXPECT_LT(largest(ctranspose(a) * (a * x - b)), 1e-12) << m << "x" << n << " kind " << kind;
            for (int j = 1; j <= 2; ++j) {
                int nonzeros = 0;
                for (int i = 1; i <= n; ++i)
                    nonzeros += *x.addr(i, j) != 0;
                EXPECT_LE(nonzeros, std::min(m, n));
            }
        }
        M<double> const thin = random(8, 2, complex), deficient = thin * random(2, 5, complex), b = deficient * random(5, 1);
        M<double> x;
        std::string const warned = warned_by([&] { x = mldivide(as_sparse ? sparse(deficient) : deficient, b); });
        EXPECT_EQ(warned.substr(0, 32), "\\: rank deficient, rank = 2, tol") << warned;
        EXPECT_LT(largest(deficient * x - b), 1e-12);
    }
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(mldivide(matrix(2, 3, {0, 0, 0, 0, 0, 0}), matrix(2, 1, {1, 2}))), "3x1: 0 0 0"); }),
              "\\: rank deficient, rank = 0, tol = 0");
    EXPECT_EQ(shown(mldivide(matrix(2, 1, {1, NAN}), matrix(2, 1, {1, 2}))), "1x1: NaN");
}

TEST(Divide, SparseSystems)
{
    for (int n : {2, 5, 30, 90})
        for (int kind = 0; kind < 4; ++kind) {
            bool const complex = kind & 1, complex_sides = kind & 2;
            M<double> const any = random_sparse(n, n, 3.0 / n, complex) + M<double>(3.0) * speye(M<double>(n));
            M<double> const definite = any * ctranspose(any) + speye(M<double>(n)), sides = random(n, 2, complex_sides);
            M<double> const few = random_sparse(n, 3, 0.3, complex_sides);
            for (M<double> const& a : {any, definite, laplacian(n / 5 + 2)}) {
                M<double> const b = a.rows() == n ? sides : random(a.rows(), 2, complex_sides);
                M<double> const c = a.rows() == n ? few : random_sparse(a.rows(), 3, 0.3, complex_sides);
                M<double> const x = mldivide(a, b), y = mldivide(a, c);
                EXPECT_FALSE(x.issparse());
                EXPECT_TRUE(y.issparse());
                EXPECT_LT(residual(a, x, b), 30) << n << " kind " << kind;
                EXPECT_LT(residual(a, y, c), 30) << n << " kind " << kind;
                EXPECT_LT(residual(ctranspose(a), ctranspose(ctranspose(b) / a), b), 30) << n << " kind " << kind;
                EXPECT_LT(residual(full(a), mldivide(full(a), c), c), 30) << n << " kind " << kind;
            }
        }
    // Triangles of either kind, and a diagonal, need no factors.
    M<double> const lower = sparse(matrix(3, 3, {2, 1, 0, 0, 4, 5, 0, 0, 8})), b = matrix(3, 1, {2, 5, 18});
    expect_all({{shown(mldivide(lower, b)), "3x1: 1 1 1.625"},
                {shown(mldivide(transpose(lower), b)), "3x1: 1.78125 -1.5625 2.25"},
                {shown(mldivide(sparse(matrix(2, 2, {2, 0, 0, 4})), sparse(matrix(2, 2, {0, 4, 2, 0})))), "sparse 2x2: (2,1)=1 (1,2)=1"}});
}

TEST(Divide, SolvesTheLaplacianOfALargeGrid)
{
    M<double> const a = laplacian(120), b = random(14400, 1);
    EXPECT_LT(residual(a, mldivide(a, b), b), 10);
    // Not symmetric any more.
    M<double> const tilted = a + sparse(matrix(1, 1, {1}), matrix(1, 1, {2}), matrix(1, 1, {0.5}), M<double>(14400.0), M<double>(14400.0));
    EXPECT_LT(residual(tilted, mldivide(tilted, b), b), 10);
}

TEST(Power, OfMatrices)
{
    M<double> const a = matrix(2, 2, {1, 3, 2, 4}), i_times = matrix(2, 2, {0, 1, -1, 0}), swap = matrix(2, 2, {0, 1, 1, 0});
    expect_all({{shown(mpower(a, M<double>(3.0))), "2x2: 37 81 54 118"},
                {shown(mpower(a, M<double>(0.0))), "2x2: 1 0 0 1"},
                {shown(mpower(a, M<double>(1.0))), "2x2: 1 3 2 4"},
                {shown(mpower(a, M<double>(-1.0)), 5), "2x2: -2 1.5 1 -0.5"},
                {shown(mpower(M<double>(2.0), M<double>(10.0))), "1x1: 1024"},
                {shown(mpower(sparse(i_times), M<double>(3.0))), "sparse 2x2: (2,1)=-1 (1,2)=1"},
                {shown(mpower(sparse(i_times), M<double>(-3.0))), "sparse 2x2: (2,1)=1 (1,2)=-1"},
                {shown(mpower(M<double>(), M<double>(2.0))), "0x0:"},
                {shown(mpower(text("ab"), M<double>())), "0x0:"}});
    EXPECT_EQ(warned_by([&] { mpower(matrix(2, 2, {1, 1, 1, 1}), M<double>(-2.0)); }), "^: matrix is singular to working precision");
    // Roots: real where they can be, complex where an eigenvalue is negative.
    M<double> const definite = matrix(2, 2, {5, 2, 2, 3}), root = mpower(definite, M<double>(0.5));
    EXPECT_FALSE(root.isc());
    EXPECT_LT(distance(root * root, definite), 30);
    EXPECT_FALSE(mpower(i_times, M<double>(0.5)).isc());
    EXPECT_LT(distance(mpower(mpower(i_times, M<double>(0.5)), M<double>(2.0)), i_times), 10);
    EXPECT_TRUE(mpower(swap, M<double>(0.5)).isc());
    EXPECT_LT(distance(mpower(mpower(swap, M<double>(0.5)), M<double>(2.0)), swap), 10);
    // 2^A through the exponential series of a nilpotent matrix is out of reach of eigenvectors; a
    // diagonal and a symmetric one are not.
    EXPECT_EQ(shown(mpower(M<double>(2.0), matrix(2, 2, {3, 0, 0, -1})), 12), "2x2: 8 0 0 0.5");
    EXPECT_LT(distance(mpower(M<double>(4.0), swap), matrix(2, 2, {2.125, 1.875, 1.875, 2.125}), 4), 10);
    EXPECT_TRUE(mpower(M<double>(-1.0), matrix(2, 2, {0.5, 0, 0, 1})).isc());
    M<double> const general = random(6, 6), third = mpower(general, M<double>(1.0 / 3));
    EXPECT_LT(distance(third * third * third, general), 1e4);
}

TEST(Products, AsAFunction)
{
    M<double> a = matrix(2, 2, {1, 3, 2, 4}), b = matrix(3, 1, {1, 2, 3});
    a.setname("a");
    b.setname("b");
    expect_all({{shown(mtimes(a, a)), "2x2: 7 15 10 22"},
                {shown(mtimes(M<double>(2.0), M<double>(3.0))), "1x1: 6"},
                {reported_by([&] { mtimes(a, b); }), "*: inner dimensions of a and b do not agree"}});
}

TEST(Divide, MemoryThatRunsOut)
{
    M<double> const a = random(12, 12), b = random(12, 2), s = random_sparse(12, 12, 0.3), tall = random(20, 3), sides = random(20, 1), wide = transpose(b), few = sparse(b);
    capture::with_every_allocation_refused([&] { mldivide(a, b); });
    capture::with_every_allocation_refused([&] { mrdivide(wide, s); });
    capture::with_every_allocation_refused([&] { mldivide(s, few); });
    capture::with_every_allocation_refused([&] { mldivide(tall, sides); });
    M<double> const power(2.5);
    capture::with_every_allocation_refused([&] { mpower(a, power); });
}

} // namespace
