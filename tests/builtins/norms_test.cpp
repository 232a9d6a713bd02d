// Norms, rank and trace.
#include "builtins/norms.h"

#include "support/linear.h"

using namespace linear;
using namespace values;

namespace {

double value(M<double> const& x)
{
    return x.size() == 1 ? x[1] : NAN;
}

TEST(Norms, OfVectorsAndMatrices)
{
    double const infinity = HUGE_VAL;
    M<double> const v = matrix(1, 3, {3, -4, 12}), complex = column({3, 0}, {4, -12}), magic3 = matrix(3, 3, {8, 3, 4, 1, 5, 9, 6, 7, 2}),
                    m = matrix(2, 2, {1, -3, 2, 4}), s = sparse(matrix(1, 4, {0, 3, 0, 4})), one(1.0), two(2.0), inf(infinity);
    expect_all({{shown(norm(v)), "1x1: 13"},
                {shown(norm(v, one)), "1x1: 19"},
                {shown(norm(v, inf)), "1x1: 12"},
                {shown(norm(v, M<double>(-infinity))), "1x1: 3"},
                {shown(norm(v, text("inf"))), "1x1: 12"},
                {shown(norm(v, text("fro"))), "1x1: 13"},
                {shown(norm(v, M<double>(3.0)), 12), shown(M<double>(std::cbrt(27 + 64 + 1728.0)), 12)},
                {shown(norm(v, M<double>(-1.0)), 12), shown(M<double>(1 / (1 / 3.0 + 1 / 4.0 + 1 / 12.0)), 12)},
                {shown(norm(complex)), "1x1: 13"},
                {shown(norm(complex, one)), "1x1: 17"},
                {shown(norm(column({3e300, 4e300}))), "1x1: 5e+300"},
                {shown(norm(column({3e-200, 4e-200}), text("fro"))), "1x1: 5e-200"},
                {shown(norm(column({0, 0}))), "1x1: 0"},
                {shown(norm(column({infinity, 1}))), "1x1: Inf"},
                {shown(norm(column({infinity, NAN}))), "1x1: NaN"},
                {shown(norm(column({1, NAN}), inf)), "1x1: NaN"},
                {shown(norm(s)), "1x1: 5"},
                {shown(norm(s, M<double>(-infinity))), "1x1: 0"},
                {shown(norm(s, M<double>(-2.0))), "1x1: 0"},
                {shown(norm(text("ab"), inf)), "1x1: 98"},
                {shown(norm(M<double>())), "1x1: 0"},
                {shown(norm(M<double>(-5.0))), "1x1: 5"},
                {shown(norm(magic3), 13), "1x1: 15"},
                {shown(norm(m, one)), "1x1: 6"},
                {shown(norm(m, inf)), "1x1: 7"},
                {shown(norm(m, text("fro"))), shown(M<double>(std::sqrt(30.0)))},
                {shown(norm(sparse(m), one)), "1x1: 6"},
                {shown(norm(sparse(m), inf)), "1x1: 7"},
                {shown(norm(matrix(2, 2, {1, infinity, 2, 3}))), "1x1: Inf"},
                {shown(norm(matrix(2, 2, {1, infinity, NAN, 3}))), "1x1: NaN"},
                {shown(norm(matrix(2, 2, {1, 1, NAN, 3}), one)), "1x1: NaN"}});
    expect_all({{reported_by([&] { norm(m, M<double>(3.0)); }), "norm: only 1, 2, Inf and 'fro' for matrices"},
                {reported_by([&] { norm(m, text("max")); }), "norm: only 1, 2, Inf and 'fro' for matrices"},
                {reported_by([&] { norm(v, text("max")); }), "norm: unknown option max"},
                {reported_by([&] { norm(sparse(m)); }), "norm: use normest for a sparse matrix"},
                {reported_by([&] { norm(cube(2, 2, 2)); }), "norm: matrix must be two-dimensional"}});
}

TEST(Norms, EstimatedByPowerIteration)
{
    for (int kind = 0; kind < 4; ++kind)
        for (auto const& [m, n] : {std::pair{30, 30}, {5, 40}, {40, 5}, {1, 1}}) {
            M<double> const a = random(m, n, kind & 1), given = kind & 2 ? sparse(a) : a;
            EXPECT_NEAR(value(normest(given, M<double>(1e-10))) / value(norm(a)), 1, 1e-6);
            M<double> e, count;
            normest(given, i_o, e, count);
            EXPECT_NEAR(value(e) / value(norm(a)), 1, 1e-2);
            EXPECT_GE(value(count), 1);
        }
    M<double> const cancelling = matrix(2, 2, {1, 1, -1, -1});
    expect_all({{shown(normest(M<double>())), "1x1: 0"},
                {shown(normest(matrix(2, 2, {0, 0, 0, 0}))), "1x1: 0"},
                {shown(normest(sparse(matrix(2, 2, {0, 0, 0, 0})))), "1x1: 0"},
                {shown(normest(matrix(2, 2, {1, NAN, 0, 0}))), "1x1: NaN"},
                {shown(normest(matrix(2, 2, {1, HUGE_VAL, 0, 0}))), "1x1: Inf"},
                {shown(normest(cancelling), 12), "1x1: 2"},
                {warned_by([&] { normest(random(20, 20), M<double>(-1.0)); }), "normest: iteration did not converge"}});
}

TEST(Norms, RankAndTrace)
{
    M<double> const magic4 = matrix(4, 4, {16, 5, 9, 4, 2, 11, 7, 14, 3, 10, 6, 15, 13, 8, 12, 1});
    expect_all({{shown(rank(magic4)), "1x1: 3"},
                {shown(rank(magic4, M<double>(10.0))), "1x1: 2"},
                {shown(rank(sparse(magic4))), "1x1: 3"},
                {shown(rank(matrix(2, 3, {0, 0, 0, 0, 0, 0}))), "1x1: 0"},
                {shown(rank(M<double>())), "1x1: 0"},
                {shown(rank(random(5, 3, true) * random(3, 8))), "1x1: 3"},
                {shown(rank(hilbert(20))).substr(0, 6), "1x1: 1"},
                {reported_by([&] { rank(matrix(1, 2, {1, NAN})); }), "rank: matrix contains NaN or Inf"},
                {shown(trace(magic4)), "1x1: 34"},
                {shown(trace(sparse(magic4))), "1x1: 34"},
                {shown(trace(matrix(2, 2, {1, 2, 3, 4}, {1, 0, 0, 2}))), "1x1: 5+3i"},
                {shown(trace(M<double>())), "1x1: 0"},
                {reported_by([&] { trace(random(2, 3)); }), "trace: matrix must be square"}});
}

TEST(Norms, MemoryThatRunsOut)
{
    M<double> const a = random(12, 12), s = sparse(a);
    capture::with_every_allocation_refused([&] { norm(a); });
    M<double> const one(1.0), half(0.5);
    capture::with_every_allocation_refused([&] { norm(s, one); });
    capture::with_every_allocation_refused([&] { normest(s, half); });
}

} // namespace
