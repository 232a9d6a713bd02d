// Bits of integers, and what is none.
#include "ops/kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

TEST(Bits, AgreeWithTheIntegers)
{
    std::uint64_t state = 1;
    auto const next = [&state] { return (state = state * 6364136223846793005u + 1442695040888963407u) >> 11; };
    for (int round = 0; round < 2000; ++round) {
        std::uint64_t const a = next() >> (next() % 53), b = next() >> (next() % 53), bit = 1 + next() % 53, mask = std::uint64_t{1} << (bit - 1);
        auto const x = static_cast<double>(a), y = static_cast<double>(b), n = static_cast<double>(bit);
        EXPECT_EQ(nx_bitand(x, y), static_cast<double>(a & b));
        EXPECT_EQ(nx_bitor(x, y), static_cast<double>(a | b));
        EXPECT_EQ(nx_bitxor(x, y), static_cast<double>(a ^ b));
        EXPECT_EQ(nx_bitcmp(x, n), static_cast<double>(~a % (mask * 2)));
        EXPECT_EQ(nx_bitget(x, n), (a & mask) != 0);
        EXPECT_EQ(nx_bitset(x, n), static_cast<double>(a | mask));
        EXPECT_EQ(nx_bitreset(x, n), static_cast<double>(a & ~mask));
        EXPECT_EQ(nx_bitshift(x, n), static_cast<double>((a << bit) % (std::uint64_t{1} << 53)));
        EXPECT_EQ(nx_bitshift(x, -n), static_cast<double>(a >> bit));
    }
}

TEST(Bits, TruncateAndRefuse)
{
    constexpr double largest = 0x1p53, nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(nx_bitand(7.9, 5.2), 5);
    EXPECT_EQ(nx_bitor(-0.5, 2), 2);
    EXPECT_EQ(nx_bitshift(5, -1.9), 2);
    EXPECT_EQ(nx_bitand(largest, largest), largest);
    EXPECT_EQ(nx_bitshift(largest, -1), largest / 2);
    EXPECT_EQ(nx_bitshift(3, 1e6), 0);
    EXPECT_EQ(nx_bitshift(3, -1e6), 0);
    EXPECT_EQ(nx_bitcmp(5, 0), 0);
    for (double wrong : {nan, inf, -inf, -1.0, largest * 2}) {
        EXPECT_TRUE(std::isnan(nx_bitand(wrong, 1)) && std::isnan(nx_bitor(1, wrong)) && std::isnan(nx_bitxor(wrong, 1))) << wrong;
        EXPECT_TRUE(std::isnan(nx_bitget(wrong, 1)) && std::isnan(nx_bitset(1, wrong)) && std::isnan(nx_bitshift(wrong, 1))) << wrong;
        EXPECT_TRUE(std::isnan(nx_bitcmp(wrong, 1)) && std::isnan(nx_bitcmp(1, wrong)) && std::isnan(nx_bitreset(1, wrong))) << wrong;
    }
    for (double no_bit : {0.0, 54.0})
        EXPECT_TRUE(std::isnan(nx_bitget(1, no_bit)) && std::isnan(nx_bitset(1, no_bit)) && std::isnan(nx_bitreset(1, no_bit))) << no_bit;
    EXPECT_TRUE(std::isnan(nx_bitcmp(1, 54)) && std::isnan(nx_bitshift(1, nan)) && std::isnan(nx_bitshift(1, inf)));
}

TEST(Bits, TakeTheirPartsOnTheirOwn)
{
    nx_complex const x = {12, 3}, y = {10, 5};
    nx_complex const both = nx_bitand(x, y), shifted = nx_bitshift(x, {1, -1}), none = nx_bitget(x, {3, 0});
    EXPECT_EQ(both.re, 8);
    EXPECT_EQ(both.im, 1);
    EXPECT_EQ(shifted.re, 24);
    EXPECT_EQ(shifted.im, 1);
    EXPECT_EQ(none.re, 1);
    EXPECT_TRUE(std::isnan(none.im));
}

} // namespace
