#include "ops/random_generator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace arrlib;

namespace {

constexpr int vector_size = RandState::vector_size;

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

std::vector<double> vector_of(RandState const& state)
{
    std::vector<double> vector(vector_size);
    state.store(vector.data());
    return vector;
}

// The generators once more, in floating point, one step after the other.
struct PlainState {
    double u[32];
    int index, borrow;
    std::uint32_t shift;

    explicit PlainState(std::vector<double> const& vector)
        : index(static_cast<int>(vector[33] * 0x1p52)), borrow(vector[32] != 0), shift(static_cast<std::uint32_t>(vector[34] * 0x1p52))
    {
        std::copy_n(vector.begin(), 32, u);
    }
    double draw()
    {
        double z = u[(index + 20) % 32] - u[(index + 5) % 32] - (borrow ? 0x1p-53 : 0);
        borrow = z < 0;
        z += borrow;
        u[index] = z;
        index = (index + 1) % 32;
        std::uint64_t const before = shift;
        shift ^= shift << 13;
        shift ^= shift >> 17;
        shift ^= shift << 5;
        return std::bit_cast<double>(std::bit_cast<std::uint64_t>(z) ^ before ^ std::uint64_t{shift & 0xFFFFF} << 32);
    }
};

struct PlainSeed {
    double seed;

    // The seed that external() tells of, its halves exchanged.
    explicit PlainSeed(RandSeed const& generator)
    {
        auto word = static_cast<std::uint32_t>(generator.external());
        if (word & 0x8000)
            word ^= 0x80008000;
        seed = word << 16 | word >> 16;
    }
    double draw()
    {
        seed = std::fmod(seed * 16807, 2147483647);
        return seed * 4.656612875245797e-10;
    }
};

TEST(RandState, SeedsAreTruncatedAndClamped)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const equal[][2] = {{0, nan}, {0, 2147483648.0}, {5, 5.9}, {-1, 4294967295.0}, {1e300, 4294967295.0}, {-1e300, 4294967295.0}};
    for (auto const& [a, b] : equal)
        EXPECT_EQ(sequence(a), sequence(b)) << a << " " << b;
    EXPECT_NE(sequence(5), sequence(6));
}

// Also where a difference of 0 meets a borrow, which does not come up by chance.
TEST(RandState, DrawsWhatPlainArithmeticGives)
{
    RandState seeded;
    seeded.seed(99);
    for (int k = 0; k < 3; ++k)
        seeded.draw();
    std::vector<double> equal_numbers(vector_size, 0.75);
    equal_numbers[10] = 0.25;
    equal_numbers[32] = 0x1p-53;
    equal_numbers[33] = 17 * 0x1p-52;
    equal_numbers[34] = 4294967295.0 * 0x1p-52;
    for (auto const& vector : {vector_of(seeded), equal_numbers}) {
        RandState one_by_one, at_once;
        one_by_one.load(vector.data());
        at_once.load(vector.data());
        PlainState plain(vector);
        auto const expected = draws(10000, [&plain] { return plain.draw(); });
        EXPECT_EQ(draws(10000, [&one_by_one] { return one_by_one.draw(); }), expected);
        std::vector<double> drawn(10000);
        at_once.draw(drawn.data(), 10000);
        EXPECT_EQ(drawn, expected);
        EXPECT_EQ(vector_of(at_once), vector_of(one_by_one));
    }
}

TEST(RandState, VectorBringsTheSequenceBack)
{
    RandState state;
    state.seed(7);
    draws(1000, [&state] { return state.draw(); });
    auto const vector = vector_of(state);
    RandState other;
    other.load(vector.data());
    auto const drawn = draws(100, [&state] { return state.draw(); });
    EXPECT_EQ(draws(100, [&other] { return other.draw(); }), drawn);
    EXPECT_LT(vector[33], 32 * 0x1p-52);
}

TEST(RandState, MakesAStateOfAnyVector)
{
    double const values[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300, 1e300, 1, -0.5, 0x1.8p-60};
    for (double const value : values) {
        RandState state;
        state.load(std::vector<double>(vector_size, value).data());
        std::vector<double> drawn(5000);
        state.draw(drawn.data(), 5000);
        for (double const draw : drawn)
            ASSERT_TRUE(draw >= 0 && draw < 1) << value;
    }
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

TEST(RandSeed, DrawsWhatPlainArithmeticGives)
{
    RandSeed seed;
    PlainSeed plain(seed);
    EXPECT_EQ(draws(100000, [&seed] { return seed.draw(); }), draws(100000, [&plain] { return plain.draw(); }));
    auto const normal = [&plain] {
        for (;;) {
            double const v1 = 2 * plain.draw() - 1, v2 = 2 * plain.draw() - 1, s = v1 * v1 + v2 * v2;
            if (s > 0 && s <= 1)
                return v1 * std::sqrt(-2 * std::log(s) / s);
        }
    };
    for (int k = 0; k < 10000; ++k)
        ASSERT_DOUBLE_EQ(seed.draw_normal(), normal()) << k; // within the accuracy of the logarithm
    EXPECT_EQ(seed.draw(), plain.draw());
}

// Few numbers, whole and broken blocks, and as many as are shared by threads.
TEST(Generators, DrawInBulkWhatTheyDrawOneByOne)
{
    for (int const count : {0, 1, 31, 32, 33, 511, 513, 2047, 2048, 5000, 400001}) {
        SCOPED_TRACE(count);
        RandState state, state_at_once;
        RandSeed seed, seed_at_once;
        std::vector<double> drawn(static_cast<std::size_t>(count));
        for (int round = 0; round < 2; ++round) {
            state_at_once.draw(drawn.data(), count);
            EXPECT_EQ(drawn, draws(count, [&state] { return state.draw(); }));
            seed_at_once.draw(drawn.data(), count);
            EXPECT_EQ(drawn, draws(count, [&seed] { return seed.draw(); }));
            seed_at_once.draw_normal(drawn.data(), count);
            EXPECT_EQ(drawn, draws(count, [&seed] { return seed.draw_normal(); }));
        }
        EXPECT_EQ(vector_of(state_at_once), vector_of(state));
        EXPECT_EQ(seed_at_once.external(), seed.external());
    }
}

} // namespace
