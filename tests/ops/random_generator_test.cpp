#include "ops/random_generator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace arrlib;

namespace {

template <class Draw> std::vector<double> draws(int count, Draw draw)
{
    std::vector<double> made;
    for (int k = 0; k < count; ++k)
        made.push_back(draw());
    return made;
}

std::vector<double> sequence(double seed)
{
    RandState state;
    state.seed(seed);
    return draws(100, [&state] { return state.draw(); });
}

TEST(RandState, SeedsAreTruncatedAndClamped)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const equal[][2] = {{0, nan}, {0, 2147483648.0}, {5, 5.9}, {-1, 4294967295.0}, {1e300, 4294967295.0}, {-1e300, 4294967295.0}};
    for (auto const& [a, b] : equal)
        EXPECT_EQ(sequence(a), sequence(b)) << a << " " << b;
    EXPECT_NE(sequence(5), sequence(6));
}

TEST(RandState, VectorBringsTheSequenceBack)
{
    RandState state;
    state.seed(7);
    draws(1000, [&state] { return state.draw(); });
    double vector[RandState::vector_size];
    state.store(vector);
    RandState other;
    other.load(vector);
    auto const drawn = draws(100, [&state] { return state.draw(); });
    EXPECT_EQ(draws(100, [&other] { return other.draw(); }), drawn);
    EXPECT_LT(vector[33], 32 * 0x1p-52);
}

TEST(RandSeed, ReadsBackWhatWasSet)
{
    struct {
        double set, external;
    } const cases[] = {{0, 931316785}, {1, 1}, {32768, 32768}, {2147483646, 2147483646}, {4294967301.0, 5}, {1e300, 931316785},
                       // The two seeds that the generator would stand still at.
                       {2147516416.0, 931316785}, {4294934527.0, 931316785}};
    for (auto const& c : cases) {
        RandSeed seed;
        seed.set(c.set);
        EXPECT_EQ(seed.external(), c.external) << c.set;
        double const first = seed.draw();
        EXPECT_TRUE(first > 0 && first < 1 && seed.draw() != first) << c.set;
    }
}

TEST(Generators, HaveTheMomentsOfTheirDistributions)
{
    constexpr int count = 200000;
    RandState state;
    RandSeed seed;
    struct {
        std::vector<double> drawn;
        double mean, variance;
    } const cases[] = {{draws(count, [&] { return state.draw(); }), 0.5, 1.0 / 12},
                       {draws(count, [&] { return seed.draw(); }), 0.5, 1.0 / 12},
                       {draws(count, [&] { return seed.draw_normal(); }), 0, 1}};
    for (auto const& c : cases) {
        double sum = 0, squares = 0;
        for (double const value : c.drawn)
            sum += value;
        for (double const value : c.drawn)
            squares += (value - sum / count) * (value - sum / count);
        EXPECT_NEAR(sum / count, c.mean, 0.01);
        EXPECT_NEAR(squares / count, c.variance, 0.02);
    }
}

} // namespace
