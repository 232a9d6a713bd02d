// The functions along a dimension as programs call them.
#include "ops/reduction.h"

#include "core/declare.h"
#include "core/reshape.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "ops/difference.h"
#include "runtime/constants.h"
#include "support/capture.h"

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace {

using capture::Reports;
using capture::Texts;
using Numbers = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();

M<double> matrix(int rows, int cols, Numbers const& numbers, Numbers const& imaginary = {})
{
    M<double> made(!imaginary.empty(), rows, cols);
    std::copy(numbers.begin(), numbers.end(), made.addr());
    std::copy(imaginary.begin(), imaginary.end(), made.addi());
    return made;
}

M<double> row(Numbers const& numbers)
{
    return matrix(1, static_cast<int>(numbers.size()), numbers);
}

M<double> pages(int rows, int cols, int depth, std::function<double(int, int, int)> const& value)
{
    int const dims[] = {rows, cols, depth};
    M<double> made(0, 0, 0, 3, dims);
    double* to = made.addr();
    for (int k = 0; k < depth; ++k)
        for (int j = 0; j < cols; ++j)
            for (int i = 0; i < rows; ++i)
                *to++ = value(i, j, k);
    return made;
}

Numbers numbers(M<double> const& x)
{
    return Numbers(x.addr(), x.addr() + x.getnnz());
}

void expect(M<double> const& got, int rows, int cols, Numbers const& expected)
{
    EXPECT_EQ(got.rows(), rows);
    EXPECT_EQ(got.cols(), cols);
    EXPECT_EQ(numbers(got), expected);
}

TEST(Reduction, WorksAlongTheDimensionAskedFor)
{
    // 1 3 5
    // 2 4 0
    M<double> const x = matrix(2, 3, {1, 2, 3, 4, 5, 0});
    expect(sum(x), 1, 3, {3, 7, 5});
    expect(sum(x, 0.0), 1, 3, {3, 7, 5});
    expect(sum(x, 2.0), 2, 1, {9, 6});
    expect(sum(x, 3.0), 2, 3, numbers(x));
    expect(sum(row({1, 2, 3})), 1, 1, {6});
    expect(prod(x, 2.0), 2, 1, {15, 0});
    expect(cumsum(x), 2, 3, {1, 3, 3, 7, 5, 5});
    expect(cumprod(x, 2.0), 2, 3, {1, 2, 3, 8, 15, 0});
    expect(all(x), 1, 3, {1, 1, 0});
    expect(any(x, 2.0), 2, 1, {1, 1});
    expect(median(x, 2.0), 2, 1, {3, 2});
    expect(median(x), 1, 3, {1.5, 3.5, 2.5});
    EXPECT_TRUE(all(x).islogical() && any(x).islogical() && !sum(x).islogical());
    M<double> const deep = pages(2, 2, 3, [](int i, int j, int k) { return i + 10 * j + 100 * k; });
    expect(sum(deep, 3.0), 2, 2, {300, 303, 330, 333});
    EXPECT_EQ(cumsum(deep, 3.0).getndims(), 3);
}

TEST(Reduction, KnowsWhatEmptyValuesGive)
{
    M<double> const none(0, 0, 3);
    expect(sum(none), 1, 1, {0});
    expect(prod(none), 1, 1, {1});
    expect(all(none), 1, 1, {1});
    expect(any(none), 1, 1, {0});
    for (M<double> const& result : {sum(none, 1.0), max(none), cumsum(none), median(none), diff(5.0), diff(none), gradient(none), del2(none), unwrap(none)})
        EXPECT_EQ(result.size(), 0);
}

TEST(Reduction, FindsTheBestAndItsPlace)
{
    struct Case {
        Numbers x;
        double max, max_at, min, min_at;
    } const cases[] = {
        {{nan, 3, nan, 3}, 3, 2, 3, 2},
        {{2, 1, 1}, 2, 1, 1, 2},
        {{nan, nan}, -infinity, 1, infinity, 1},
        {{-infinity, -infinity}, -infinity, 1, -infinity, 1},
        {{nan, infinity}, infinity, 2, infinity, 1},
    };
    for (Case const& c : cases) {
        M<double> values, places;
        M<double> const largest = max(row(c.x), i_o, values, places);
        EXPECT_EQ(numbers(largest), Numbers{c.max});
        EXPECT_EQ(numbers(values), Numbers{c.max});
        EXPECT_EQ(numbers(places), Numbers{c.max_at});
        min(row(c.x), i_o, values, places);
        EXPECT_EQ(numbers(values), Numbers{c.min});
        EXPECT_EQ(numbers(places), Numbers{c.min_at});
    }
    M<double> const x = matrix(2, 2, {1, 4, 3, 2});
    M<double> values, places;
    max(x, row({7, 7, 7}), 2.0, i_o, values, places);
    expect(values, 2, 1, {3, 4});
    expect(places, 2, 1, {2, 1});
    min(x, x_M, 1.0, i_o, values, places);
    expect(places, 1, 2, {1, 2});
    expect(max(x, x_M, 2.0), 2, 1, {3, 4});
    expect(min(x, x_M, 2.0), 2, 1, {1, 2});
    // A value may take its own maximum.
    M<double> self = x;
    max(self, i_o, self, places);
    expect(self, 1, 2, {4, 3});
}

TEST(Reduction, TakesComplexValues)
{
    M<double> const x = matrix(1, 3, {3, 0, -1}, {0, -4, 0.5});
    M<double> const total = sum(x), product = prod(x), best = max(x), middle = median(x);
    EXPECT_EQ(*total.addr(), 2);
    EXPECT_EQ(*total.addi(), -3.5);
    EXPECT_EQ(*product.addr(), 6);
    EXPECT_EQ(*product.addi(), 12);
    EXPECT_EQ(*best.addr(), 0);
    EXPECT_EQ(*best.addi(), -4);
    EXPECT_EQ(*middle.addr(), 3);
    expect(all(matrix(1, 2, {0, 1}, {1, 0})), 1, 1, {1});
    // Only real parts count where all imaginary ones are zero.
    M<double> const real = max(matrix(1, 2, {-5, 2}, {0, 0}));
    EXPECT_FALSE(real.isc());
    EXPECT_EQ(*real.addr(), 2);
}

TEST(Reduction, SparseValuesGiveWhatFullOnesGive)
{
    M<double> const x = matrix(3, 2, {0, -2, 0, 5, 0, 0}), s = sparse(x);
    for (double const dim : {0.0, 1.0, 2.0, 3.0}) {
        EXPECT_EQ(numbers(full(sum(s, dim))), numbers(sum(x, dim)));
        EXPECT_EQ(numbers(full(prod(s, dim))), numbers(prod(x, dim)));
        EXPECT_EQ(numbers(full(max(s, x_M, dim))), numbers(max(x, x_M, dim)));
        EXPECT_EQ(numbers(full(cumsum(s, dim))), numbers(cumsum(x, dim)));
        EXPECT_EQ(numbers(full(any(s, dim))), numbers(any(x, dim)));
    }
    M<double> values, places;
    min(s, i_o, values, places);
    EXPECT_EQ(numbers(places), (Numbers{2, 2}));
}

TEST(Difference, RepeatsAndGoesOnToTheNextDimension)
{
    M<double> const x = matrix(2, 3, {1, 2, 4, 8, 16, 32});
    expect(diff(x), 1, 3, {1, 4, 16});
    expect(diff(x, 1.0, 2.0), 2, 2, {3, 6, 12, 24});
    expect(diff(x, 2.0, 2.0), 2, 1, {9, 18});
    expect(diff(x, x_M, 2.0), 2, 2, {3, 6, 12, 24});
    expect(diff(x, 0.0), 2, 3, numbers(x));
    EXPECT_EQ(diff(x, 3.0, 2.0).size(), 0);
    expect(diff(x, 2.0), 1, 2, {3, 12});
    EXPECT_EQ(diff(x, 1e9).size(), 0);
}

TEST(Difference, UnwrapsByTheToleranceGiven)
{
    M<double> const x = row({0, 4, 8});
    double const turn = 2 * std::acos(-1.0);
    for (M<double> const& result : {unwrap(x), unwrap(x, 2.0), unwrap(x, x_M, 2.0), unwrap(x, 1.0, 2.0)})
        expect(result, 1, 3, {0, 4 - turn, 8 - 2 * turn});
    expect(unwrap(x, 1.0), 1, 3, numbers(x));
    expect(unwrap(x, 4.0, 2.0), 1, 3, numbers(x));
}

TEST(Difference, GradientsBelongToDimensions)
{
    // 10 i + j^2
    M<double> const x = matrix(2, 3, {0, 10, 1, 11, 4, 14});
    M<double> down;
    expect(gradient(x, i_o, down), 2, 3, {1, 1, 2, 2, 3, 3});
    expect(down, 2, 3, Numbers(6, 10));
    expect(gradient(x, 2.0, i_o, down), 2, 3, {0.5, 0.5, 1, 1, 1.5, 1.5});
    expect(down, 2, 3, Numbers(6, 5));
    expect(gradient(x, row({0, 1, 4}), 10.0, i_o, down), 2, 3, Numbers(6, 1));
    expect(down, 2, 3, Numbers(6, 1));
    M<double> const column = matrix(3, 1, {1, 2, 4});
    expect(gradient(column), 3, 1, {1, 1.5, 2});
    expect(gradient(column, i_o, down), 3, 1, {1, 1.5, 2});
    expect(down, 3, 1, {0, 0, 0});
    expect(gradient(3.0), 1, 1, {0});
    M<double> const deep = pages(2, 2, 2, [](int i, int j, int k) { return i + 10 * j + 100 * k; });
    M<double> through;
    EXPECT_EQ(numbers(gradient(deep, 1.0, 2.0, 4.0, i_o, down, through)), Numbers(8, 10));
    EXPECT_EQ(numbers(down), Numbers(8, 0.5));
    EXPECT_EQ(numbers(through), Numbers(8, 25));
}

TEST(Difference, LaplaciansAddUpDimensions)
{
    M<double> const x = pages(5, 4, 1, [](int i, int j, int) { return i * i + 3 * j * j; });
    expect(del2(x), 5, 4, Numbers(20, 2));
    expect(del2(x, 2.0), 5, 4, Numbers(20, 0.5));
    expect(del2(x, 1.0, 2.0), 5, 4, Numbers(20, 1.625));
    M<double> const deep = pages(3, 4, 5, [](int i, int j, int k) { return i * i + 3 * j * j + 5 * k * k; });
    EXPECT_EQ(numbers(del2(deep)), Numbers(60, 3));
    expect(del2(row({0, 1, 4, 9})), 1, 4, Numbers(4, 0.5));
    expect(del2(matrix(4, 1, {0, 1, 9, 16}), row({0, 1, 3, 4})), 4, 1, Numbers(4, 0.5));
    expect(del2(row({1, 5})), 1, 2, {0, 0});
    expect(del2(7.0), 1, 1, {0});
}

TEST(Reduction, ReportsWhatItCannotDo)
{
    M<double> x("x", 0, 0);
    x = matrix(2, 2, {1, 2, 3, 4});
    M<double> kept = 7.0;
    char const* const spacing = "increment vector must be scalar or same length as the corresponding dimension";
    struct Case {
        std::function<M<double>()> call;
        std::string message;
    } const cases[] = {
        {[&] { return sum(x, 5.0); }, "sum: dimension=5 does not exist for matrix x"},
        {[&] { return median(x, -2.0); }, "median: dimension=-2 does not exist for matrix x"},
        {[&] { return cumprod(x, x_M); }, "cumprod: dim argument may not be empty"},
        {[&] { return max(x, x_M, 9.0, i_o, kept, kept); }, "max_1: dimension=9 does not exist for matrix x"},
        {[&] { return diff(x, 3.0, 5.0); }, "diff: dimension=5 does not exist for matrix x"},
        {[&] { return gradient(x, row({1, 2, 3}), i_o, kept); }, std::string("gradient: ") + spacing},
        {[&] { return del2(x, 1.0, row({1, 2, 3})); }, std::string("del2: ") + spacing},
    };
    for (Case const& c : cases) {
        Reports reports;
        EXPECT_EQ(c.call().size(), 0);
        EXPECT_EQ(reports.all(), Texts{c.message});
        EXPECT_EQ(numbers(kept), Numbers{7});
    }
}

TEST(Reduction, SurvivesWithoutMemory)
{
    M<double> const x = pages(200, 300, 3, [](int i, int j, int k) { return i * j + k; });
    M<double> const dim = 2.0;
    capture::with_every_allocation_refused([&] { static_cast<void>(sum(x, dim)); });
    capture::with_every_allocation_refused([&] { static_cast<void>(median(x, dim)); });
    capture::with_every_allocation_refused([&] { static_cast<void>(del2(x)); });
    capture::with_every_allocation_refused([&] {
        M<double> y, at;
        static_cast<void>(max(x, i_o, y, at));
    });
}

} // namespace
