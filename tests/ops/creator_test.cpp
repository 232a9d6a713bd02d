#include "ops/creator.h"

#include "core/sparse.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/shapes.h"

#include <functional>
#include <limits>

namespace {

using capture::Reports;
using capture::Texts;
using shapes::Model;
using shapes::Sizes;

M<double> list(std::initializer_list<double> numbers)
{
    M<double> made(0, 1, static_cast<int>(numbers.size()));
    std::copy(numbers.begin(), numbers.end(), made.addr());
    return made;
}

M<double> complex_number(double re, double im)
{
    M<double> made(1, 1, 1);
    made.addr()[0] = re;
    made.addi()[0] = im;
    return made;
}

TEST(Creator, TakesSizesInEveryForm)
{
    double const nan = std::numeric_limits<double>::quiet_NaN(), infinite = std::numeric_limits<double>::infinity();
    struct Case {
        M<double> made;
        Sizes size;
    } const cases[] = {
        {zeros(), {1, 1, 1, 1}},
        {zeros(3), {3, 3, 1, 1}},
        {zeros(2, 3), {2, 3, 1, 1}},
        {zeros(2, 3, 4), {2, 3, 4, 1}},
        {zeros(2, 3, 4, 5), {2, 3, 4, 5}},
        {zeros(2, 3, 1, 1), {2, 3, 1, 1}},
        {zeros(list({2, 3})), {2, 3, 1, 1}},
        {zeros(list({2, 3, 4})), {2, 3, 4, 1}},
        {zeros(list({2, 3, 4, 5})), {2, 3, 4, 5}},
        {zeros(sparse(list({2, 0, 3}))), {0, 0, 0, 0}},
        {zeros(sparse(list({2, 3}))), {2, 3, 1, 1}},
        {zeros(2.9, 3.1), {2, 3, 1, 1}},
        {zeros(-2, 3), {0, 0, 0, 0}},
        {zeros(nan), {0, 0, 0, 0}},
        {zeros(infinite, 0), {0, 0, 0, 0}},
        {zeros(complex_number(2, 7), 3), {2, 3, 1, 1}},
        {zeros(TM("\2"), TM("\3")), {2, 3, 1, 1}},
        {zeros(2, nop_M), {2, 2, 1, 1}},
        {zeros(list({2, 3}), nop_M, nop_M), {2, 3, 1, 1}},
    };
    int number = 0;
    for (Case const& c : cases) {
        SCOPED_TRACE(number++);
        expect_equal(c.made, Model(c.size), {});
    }
}

TEST(Creator, FillsWhatTheNameSays)
{
    Model identity({2, 3, 1, 1}), tall({3, 2, 1, 1}), all({2, 3, 2, 1}), one({1, 1, 1, 1});
    for (auto& element : all.element)
        element = 1;
    one.element[0] = 1;
    for (std::size_t k = 0; k < 2; ++k)
        identity.at({static_cast<int>(k), static_cast<int>(k), 0, 0}) = tall.at({static_cast<int>(k), static_cast<int>(k), 0, 0}) = 1;
    expect_equal(ones(2, 3, 2), all, {});
    expect_equal(ones(), one, {});
    expect_equal(eye(), one, {});
    expect_equal(eye(2, 3), identity, {});
    expect_equal(eye(list({3, 2, 1})), tall, {});
    EXPECT_EQ(eye(0).size(), 0);
    shapes::Kind complex;
    complex.complex = true;
    expect_equal(czeros(2, 3), Model({2, 3, 1, 1}), complex);
    expect_equal(czeros(), Model({1, 1, 1, 1}), complex);
}

TEST(Creator, FillsLargeValuesToTheEnd)
{
    M<double> const a = ones(1001, 999);
    for (int k = 1; k <= a.size(); ++k)
        ASSERT_EQ(*a.addr(k), 1) << k;
    M<double> const b = eye(1000);
    double sum = 0;
    for (int k = 1; k <= b.size(); ++k)
        sum += *b.addr(k);
    EXPECT_EQ(sum, 1000);
    EXPECT_EQ(*b.addr(1000, 1000), 1);
}

TEST(Creator, ReportsWhatItCannotMake)
{
    double const infinite = std::numeric_limits<double>::infinity();
    M<double> const three(3.0);
    struct Case {
        std::function<M<double>()> call;
        char const* message;
    } const cases[] = {
        {[] { return zeros(list({2, 3}), 2); }, "eye01: expecting scalar argument"},
        {[] { return ones(2, 3, list({2, 3})); }, "eye01: expecting scalar argument"},
        {[] { return zeros(list({1, 1, 1, 1, 1})); }, "eye01: too many dimensions"},
        {[] { return eye(2, 2, 2); }, "eye01: too many dimensions"},
        {[] { return eye(list({2, 2, 1, 2})); }, "eye01: too many dimensions"},
        {[&] { return arrlib::eye01(arrlib::create_ones, {&three, &three, &three, &three, &three}); }, "eye01: too many dimensions"},
        {[&] { return arrlib::eye01(6, {&three}); }, "eye01_op: unknown op"},
        {[&] { return arrlib::eye01(-1, {&three}); }, "eye01_op: unknown op"},
        {[=] { return zeros(infinite); }, "Out of memory!"},
        {[] { return czeros(60000, 60000); }, "Out of memory!"},
        {[] { return ones(1e300, 2); }, "Out of memory!"},
    };
    for (Case const& c : cases) {
        Reports const reports;
        EXPECT_TRUE(c.call().issamename(x_Mp)) << c.message;
        EXPECT_EQ(reports.all(), Texts{c.message});
    }
}

TEST(Creator, GivesTheOmittedValueForAnEmptySize)
{
    Reports const reports;
    for (M<double> const& made : {zeros(M<double>()), ones(3, M<double>()), eye(M<double>(), list({1, 2})), czeros(2, 2, M<double>()), zeros(nop_M)})
        EXPECT_EQ(made.addr(), nop_M.addr());
    EXPECT_EQ(reports.all(), Texts{});
}

TEST(Creator, LosesNothingWithoutMemory)
{
    M<double> const side(30.0);
    capture::with_every_allocation_refused([&] { czeros(side); });
}

} // namespace
