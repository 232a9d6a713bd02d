#include "builtins/ranges.h"

#include "builtins/grids.h"
#include "builtins/sizes.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "ops/elementwise.h"
#include "ops/random.h"
#include "runtime/constants.h"
#include "support/values.h"

#include <cfloat>

namespace {

using namespace values;

double const infinite = std::numeric_limits<double>::infinity(), missing = std::numeric_limits<double>::quiet_NaN();

TEST(Ranges, Colon)
{
    expect_all({
        {shown(colon(1, 4)), "1x4: 1 2 3 4"},
        {shown(colon(1.5, 4)), "1x3: 1.5 2.5 3.5"},
        {shown(colon(5, -2, 0)), "1x3: 5 3 1"},
        {shown(colon(3, 3)), "1x1: 3"},
        {shown(colon(3, 1)), "0x0:"},
        {shown(colon(1, 0, 3)), "0x0:"},
        {shown(colon(1, missing, 3)) + shown(colon(missing, 3)) + shown(colon(1, missing)), "0x0:0x0:0x0:"},
        {shown(colon(M<double>(), 3)) + shown(colon(1, nop_M, 3)), "0x0:0x0:"},
        {shown(colon(infinite, 3)) + shown(colon(1, -infinite)), "0x0:0x0:"},
        {shown(colon(2, infinite, 9)), "1x1: 2"},
        {shown(colon(text("a"), text("c"))), "1x3: 97 98 99"},
        {shown(colon(row({2, 9}), row({3, 9}, {5, 5}))), "1x2: 2 3"},
        {shown(colon(sparse(row({0, 9})), 1)), "1x2: 0 1"},
        // Numbers so far apart that a step of 1 is lost between them.
        {shown(colon(1e17, 1e17)), "1x1: 1e+17"},
        {shown(colon(-DBL_MAX, DBL_MAX, DBL_MAX), 3), "1x3: -1.8e+308 0 1.8e+308"},
    });
    // The end is reached where rounding alone is in the way, and never passed.
    for (double const d : {0.1, 0.01, 0.3, 1.0 / 3, 1e-3}) {
        M<double> const up = colon(0, d, d * 30), down = colon(d * 30, -d, 0);
        ASSERT_EQ(up.size(), 31) << d;
        ASSERT_EQ(down.size(), 31) << d;
        EXPECT_EQ(up[31], d * 30);
        EXPECT_GE(down[31], 0);
        for (int k = 0; k < 30; ++k)
            EXPECT_EQ(up[k + 1], k * d);
    }
    EXPECT_EQ(numel(colon(0, 0.1, 1))[1], 11);
    M<double> const large = colon(1, 300000);
    for (int k = 1; k <= 300000; ++k)
        ASSERT_EQ(large[k], k);
    EXPECT_EQ(reported_by([] { colon(1, infinite); }), "colon: range is infinite");
    EXPECT_EQ(reported_by([] { colon(0, 1e-9, 10); }), "Out of memory!");
}

TEST(Ranges, LinspaceAndLogspace)
{
    expect_all({
        {shown(linspace(0, 1, 5)), "1x5: 0 0.25 0.5 0.75 1"},
        {shown(linspace(0, 1, 5.9)), "1x5: 0 0.25 0.5 0.75 1"},
        {all_shown(linspace(2, 7, 1), linspace(2, 7, -3)), "1x1: 7, 1x1: 7"},
        {shown(linspace(3, 1, 3)), "1x3: 3 2 1"},
        {shown(linspace(matrix(1, 1, {0}, {1}), 4, 3)), "1x3: 0+1i 2+0.5i 4+0i"},
        {shown(linspace(M<double>(), 4, 3)), "0x0:"},
        {shown(linspace(-DBL_MAX, DBL_MAX, 3), 3), "1x3: -1.8e+308 0 1.8e+308"},
        {all_shown(linspace(0, 99).size() + 0.0, linspace(0, 99, nop_M)[100]), "1x1: 100, 1x1: 99"},
        {shown(logspace(0, 2, 3)), "1x3: 1 10 100"},
        {shown(logspace(0, pi, 2)), "1x2: 1 3.14159265358979"},
        {shown(logspace(0, 1).size() + 0.0), "1x1: 50"},
        {shown(logspace(0, nop_M)), "0x0:"},
    });
    EXPECT_EQ(logspace(0, pi, 9)[9], pi[1]);
    // The last number is exactly the one asked for.
    for (int n = 2; n < 60; ++n)
        EXPECT_EQ(linspace(0.1, 0.7, n)[n], 0.7);
    EXPECT_EQ(reported_by([] { linspace(0, 1, 1e10); }), "Out of memory!");
}

TEST(Ranges, NumbersAndFilledValues)
{
    expect_all({
        {all_shown(inf(), nan()), "1x1: Inf, 1x1: NaN"},
        {all_shown(inf(2), nan(1, 2)), "2x2: Inf Inf Inf Inf, 1x2: NaN NaN"},
        {shown(size(inf(1, 2, 3))) + shown(size(nan(row({2, 1, 1, 2})))) + shown(size(nan(2, 1, 3, 2))), "1x3: 1 2 31x4: 2 1 1 21x4: 2 1 3 2"},
        {shown(inf(0)) + shown(nan(-1, 3)), "0x0:0x0:"},
        {shown(realmax(), 17) + shown(realmin(), 17), "1x1: 1.7976931348623157e+3081x1: 2.2250738585072014e-308"},
        {shown(bitmax(), 17), "1x1: 9007199254740991"},
        {all_shown(nextpow2(1), nextpow2(2), nextpow2(5), nextpow2(-1024)), "1x1: 0, 1x1: 1, 1x1: 3, 1x1: 10"},
        {all_shown(nextpow2(0.3), nextpow2(0), nextpow2(-infinite), nextpow2(missing)), "1x1: -1, 1x1: 0, 1x1: Inf, 1x1: NaN"},
        {all_shown(nextpow2(colon(1, 9)), nextpow2(matrix(1, 1, {3}, {4})), nextpow2(M<double>())), "1x1: 4, 1x1: 3, 0x0:"},
    });
    EXPECT_EQ(reported_by([] { inf(row({1, 2}), 3); }), "eye01: expecting scalar argument");
    EXPECT_EQ(reported_by([] { nextpow2(matrix(2, 2, {1, 2, 3, 4})); }), "nextpow2: argument must be a vector");
}

TEST(Ranges, RandpermSortsAsManyDraws)
{
    randM(text("state"), 7);
    M<double> const order = randperm(1000), after = randM();
    randM(text("state"), 7);
    M<double> const draws = randM(1, 1000), next = randM();
    EXPECT_EQ(after[1], next[1]);
    for (int k = 2; k <= 1000; ++k)
        EXPECT_LT(draws[static_cast<int>(order[k - 1])], draws[static_cast<int>(order[k])]);
    EXPECT_EQ(shown(randperm(0)) + shown(randperm(-2)) + shown(randperm(1)), "0x0:0x0:1x1: 1");
    EXPECT_EQ(reported_by([] { randperm(row({1, 2})); }), "randperm: argument must be scalar");
}

// --- grids ---------------------------------------------------------------------------------------

std::string sizes_of(M<double> const& x)
{
    std::string all;
    for (int d = 1; d <= 4; ++d)
        all += std::to_string(x.size(d)) + " ";
    return all;
}

TEST(Grids, MeshgridAndNdgrid)
{
    M<double> const x = row({1, 2, 3}), y = column({10, 20}), z = row({5, 6}, {7, 8});
    M<double> X, Y, Z, W;
    expect_all({
        {shown(meshgrid(x, y)), "2x3: 1 1 2 2 3 3"},
        {shown(meshgrid(x)), "3x3: 1 1 1 2 2 2 3 3 3"},
        {all_shown(meshgrid(x, y, i_o, X, Y), Y), "2x3: 1 1 2 2 3 3, 2x3: 10 20 10 20 10 20"},
        {all_shown(meshgrid(y, i_o, X, Y), Y), "2x2: 10 10 20 20, 2x2: 10 20 10 20"},
        {all_shown(meshgrid(sparse(x), text("A"), i_o, X, Y), Y), "1x3: 1 2 3, 1x3: 65 65 65"},
        {all_shown(meshgrid(y, x, z, i_o, X, Y, Z), Y), "3x2x2: 10 10 10 20 20 20 10 10 10 20 20 20, 3x2x2: 1 2 3 1 2 3 1 2 3 1 2 3"},
        {shown(Z), "3x2x2: 5+7i 5+7i 5+7i 5+7i 5+7i 5+7i 6+8i 6+8i 6+8i 6+8i 6+8i 6+8i"},
        {all_shown(meshgrid(y, i_o, X, Y, Z), Z), "2x2x2: 10 10 20 20 10 10 20 20, 2x2x2: 10 10 10 10 20 20 20 20"},
        {shown(ndgrid(x, y)), "3x2: 1 2 3 1 2 3"},
        {shown(ndgrid(y)), "2x2: 10 20 10 20"},
        {all_shown(ndgrid(x, y, i_o, X, Y), Y), "3x2: 1 2 3 1 2 3, 3x2: 10 10 10 20 20 20"},
        {all_shown(ndgrid(y, i_o, X, Y, Z), Y), "2x2x2: 10 20 10 20 10 20 10 20, 2x2x2: 10 10 20 20 10 10 20 20"},
        {sizes_of(ndgrid(x, y, z, x, i_o, X, Y, Z, W)), "3 2 2 3 "},
    });
    for (int k = 0; k < 36; ++k)
        EXPECT_EQ(W[k + 1], k / 12 + 1);
    EXPECT_EQ(sizes_of(ndgrid(y, i_o, X, Y, Z, W)), "2 2 2 2 ");
    EXPECT_EQ(meshgrid(x, M<double>(), i_o, X, Y).size() + X.size() + Y.size(), 0);
    M<double> const wide = colon(1, 300), tall = colon(1, 200);
    ndgrid(tall, wide, i_o, X, Y);
    for (int k = 0; k < 60000; ++k)
        ASSERT_TRUE(X.addr()[k] == k % 200 + 1 && Y.addr()[k] == k / 200 + 1) << k;
    M<double> const endless = colon(1, 60000);
    EXPECT_EQ(reported_by([&] { meshgrid(endless, i_o, X, Y); }), "Out of memory!");
    EXPECT_EQ(X.size() + Y.size(), 0);
}

TEST(Ranges, SurviveAHeapThatFails)
{
    M<double> const x = colon(1, 30);
    capture::with_every_allocation_refused([&] {
        M<double> X, Y;
        meshgrid(x, x, i_o, X, Y);
    });
    capture::with_every_allocation_refused([] { randperm(40); });
    capture::with_every_allocation_refused([] { logspace(0, pi, 40); });
}

} // namespace
