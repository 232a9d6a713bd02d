// The generators against the laws that they are to follow. Seeds are fixed: a test that passes once
// passes always. A statistic is brought to a normal one of variance 1, which must not be far out.
#include "ops/random_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

using namespace arrlib;

namespace {

constexpr int count = 1 << 20;
constexpr double far_out = 4;
using Draws = std::vector<double>;

Draws uniforms_of_state(double seed)
{
    RandState state;
    state.seed(seed);
    Draws draws(count);
    state.draw(draws.data(), count);
    return draws;
}

Draws uniforms_of_seed(double seed)
{
    RandSeed generator;
    generator.set(seed);
    Draws draws(count);
    generator.draw(draws.data(), count);
    return draws;
}

Draws normals_of_seed(double seed)
{
    RandSeed generator;
    generator.set(seed);
    Draws draws(count);
    generator.draw_normal(draws.data(), count);
    return draws;
}

// How far out a number of events is, of so many trials of a probability.
double deviation(double events, double trials, double probability)
{
    return (events - trials * probability) / std::sqrt(trials * probability * (1 - probability));
}

// Pearson's statistic of cells and their probabilities, made normal by its cube root.
double chi_square(std::vector<double> const& cells, std::function<double(std::size_t)> const& probability)
{
    double total = 0, sum = 0;
    for (double const cell : cells)
        total += cell;
    for (std::size_t k = 0; k < cells.size(); ++k) {
        double const expected = total * probability(k);
        sum += (cells[k] - expected) * (cells[k] - expected) / expected;
    }
    double const freedom = static_cast<double>(cells.size()) - 1, width = 2 / (9 * freedom);
    return (std::cbrt(sum / freedom) - (1 - width)) / std::sqrt(width);
}

double chi_square_of_equals(std::vector<double> const& cells)
{
    return chi_square(cells, [&cells](std::size_t) { return 1.0 / static_cast<double>(cells.size()); });
}

std::size_t slice(double draw, int slices)
{
    return static_cast<std::size_t>(draw * slices);
}

// Correlation of x[k] and y[k + lag], times the root of their number.
double correlation(Draws const& x, Draws const& y, int lag = 0)
{
    double sx = 0, sy = 0, xx = 0, yy = 0, xy = 0;
    int const n = count - lag;
    for (std::size_t k = 0; k < static_cast<std::size_t>(n); ++k) {
        double const a = x[k], b = y[k + static_cast<std::size_t>(lag)];
        sx += a, sy += b, xx += a * a, yy += b * b, xy += a * b;
    }
    return (n * xy - sx * sy) / std::sqrt((n * xx - sx * sx) * (n * yy - sy * sy)) * std::sqrt(n);
}

// --- uniform draws ----------------------------------------------------------------------------------

// Draws in equal slices, taken one by one, by twos and by threes.
template <int dimensions> double equal_slices(Draws const& draws, int slices)
{
    std::vector<double> cells(static_cast<std::size_t>(std::pow(slices, dimensions) + 0.5));
    for (std::size_t k = 0; k + dimensions <= draws.size(); k += dimensions) {
        std::size_t cell = 0;
        for (std::size_t d = 0; d < dimensions; ++d)
            cell = cell * static_cast<std::size_t>(slices) + slice(draws[k + d], slices);
        ++cells[cell];
    }
    return chi_square_of_equals(cells);
}

// Lengths of rising runs, each begun behind the draw that ended the one before.
double rising_runs(Draws const& draws)
{
    std::vector<double> cells(6);
    for (std::size_t k = 0; k + 1 < draws.size();) {
        std::size_t const start = k;
        while (k + 1 < draws.size() && draws[k + 1] > draws[k])
            ++k;
        if (k + 1 < draws.size())
            ++cells[std::min<std::size_t>(k - start, 5)];
        k += 2;
    }
    return chi_square(cells, [](std::size_t k) {
        double const length = static_cast<double>(k) + 1, factorial = std::tgamma(length + 1);
        return k == 5 ? 1 / factorial : 1 / factorial - 1 / (factorial * (length + 1));
    });
}

// Draws between two visits to [0, 0.2).
double gaps(Draws const& draws)
{
    constexpr double visited = 0.2;
    std::vector<double> cells(20);
    std::size_t gap = 0;
    for (double const draw : draws) {
        if (draw >= visited) {
            ++gap;
            continue;
        }
        ++cells[std::min<std::size_t>(gap, 19)];
        gap = 0;
    }
    return chi_square(cells, [](std::size_t k) { return std::pow(1 - visited, static_cast<double>(k)) * (k == 19 ? 1 : visited); });
}

// Spacings that occur twice among 512 birthdays in a year of 2^24 days: two on the average.
double birthdays(Draws const& draws)
{
    constexpr std::size_t birthdays = 512;
    std::vector<std::size_t> days(birthdays);
    double repeated = 0, expected = 0;
    for (std::size_t k = 0; k + birthdays <= draws.size(); k += birthdays) {
        for (std::size_t b = 0; b < birthdays; ++b)
            days[b] = slice(draws[k + b], 1 << 24);
        std::sort(days.begin(), days.end());
        for (std::size_t b = birthdays - 1; b > 0; --b)
            days[b] -= days[b - 1];
        std::sort(days.begin(), days.end());
        for (std::size_t b = 1; b < birthdays; ++b)
            repeated += days[b] == days[b - 1];
        expected += 2;
    }
    return (repeated - expected) / std::sqrt(expected);
}

// The worst of correlations at the lags that the generators are made of, and others.
double worst_lag(Draws const& draws)
{
    double worst = 0;
    for (int const lag : {1, 2, 3, 5, 12, 15, 20, 27, 32, 64, 71, 1024})
        worst = std::max(worst, std::abs(correlation(draws, draws, lag)));
    return worst;
}

TEST(RandomStatistics, UniformDraws)
{
    struct {
        std::string name;
        Draws draws;
    } const generators[] = {{"state 0", uniforms_of_state(0)}, {"state 4711", uniforms_of_state(4711)}, {"seed 0", uniforms_of_seed(0)}, {"seed 4711", uniforms_of_seed(4711)}};
    for (auto const& [name, draws] : generators) {
        SCOPED_TRACE(name);
        EXPECT_LT(std::abs(equal_slices<1>(draws, 1000)), far_out);
        EXPECT_LT(std::abs(equal_slices<2>(draws, 64)), far_out);
        EXPECT_LT(std::abs(equal_slices<3>(draws, 16)), far_out);
        EXPECT_LT(std::abs(rising_runs(draws)), far_out);
        EXPECT_LT(std::abs(gaps(draws)), far_out);
        EXPECT_LT(std::abs(birthdays(draws)), far_out);
        EXPECT_LT(worst_lag(draws), far_out);
    }
}

// Each bit by itself, beside its successor, and beside the next bit of the same draw: all 52 of one
// generator, the 31 that the other one has.
TEST(RandomStatistics, BitsOfUniformDraws)
{
    struct {
        Draws draws;
        double scale;
        int bits;
    } const generators[] = {{uniforms_of_state(1), 0x1p52, 52}, {uniforms_of_seed(1), 2147483647, 31}};
    for (auto const& g : generators) {
        std::vector<double> ones(static_cast<std::size_t>(g.bits)), changes(ones), neighbours(ones);
        std::uint64_t before = 0;
        for (double const draw : g.draws) {
            auto const word = static_cast<std::uint64_t>(draw * g.scale + 0.25);
            for (int bit = 0; bit < g.bits; ++bit) {
                auto const b = static_cast<std::size_t>(bit);
                ones[b] += static_cast<double>(word >> bit & 1);
                changes[b] += static_cast<double>((word ^ before) >> bit & 1);
                neighbours[b] += static_cast<double>((word ^ word >> 1) >> bit & 1);
            }
            before = word;
        }
        for (auto const* const events : {&ones, &changes, &neighbours})
            for (std::size_t bit = 0; bit < events->size(); ++bit)
                EXPECT_LT(std::abs(deviation((*events)[bit], count, 0.5)), far_out) << "bit " << bit << " of " << g.bits;
    }
}

// Seeds of the first generator move the mantissas only: the exponents are those of one sequence.
TEST(RandomStatistics, StreamsOfNeighbouringSeeds)
{
    auto const mantissas = [](Draws draws) {
        for (double& draw : draws) {
            int exponent;
            draw = std::frexp(draw, &exponent);
        }
        return draws;
    };
    for (double const seed : {0.0, 1.0, 1000.0})
        EXPECT_LT(std::abs(correlation(mantissas(uniforms_of_state(seed)), mantissas(uniforms_of_state(seed + 1)))), far_out) << seed;
    // Small seeds are multiples of each other, and so are their streams, modulo 1.
    for (double const seed : {10000.0, 123456789.0}) {
        EXPECT_LT(std::abs(correlation(uniforms_of_seed(seed), uniforms_of_seed(seed + 1))), far_out) << seed;
        EXPECT_LT(std::abs(correlation(normals_of_seed(seed), normals_of_seed(seed + 1))), far_out) << seed;
    }
}

// --- normal draws -----------------------------------------------------------------------------------

double below(double x)
{
    return std::erfc(-x / std::sqrt(2.0)) / 2;
}

TEST(RandomStatistics, NormalDraws)
{
    for (double const seed : {0.0, 1.0, 4711.0}) {
        SCOPED_TRACE(seed);
        Draws const draws = normals_of_seed(seed);
        double sums[5] = {};
        std::vector<double> cells(200);
        for (double const draw : draws) {
            double power = 1;
            for (int moment = 1; moment <= 4; ++moment)
                sums[moment] += power *= draw;
            ++cells[std::min(slice(below(draw), 200), std::size_t{199})];
        }
        // Moment by moment: what is expected, and the variance of one draw's power.
        double const laws[][2] = {{0, 0}, {0, 1}, {1, 2}, {0, 15}, {3, 96}};
        for (int moment = 1; moment <= 4; ++moment)
            EXPECT_LT(std::abs(sums[moment] - count * laws[moment][0]) / std::sqrt(count * laws[moment][1]), far_out) << moment;
        EXPECT_LT(std::abs(chi_square_of_equals(cells)), far_out);
        for (double const edge : {2.0, 3.0, 4.0}) {
            auto const above = static_cast<double>(std::count_if(draws.begin(), draws.end(), [edge](double draw) { return draw > edge; }));
            auto const beneath = static_cast<double>(std::count_if(draws.begin(), draws.end(), [edge](double draw) { return draw < -edge; }));
            EXPECT_LT(std::abs(deviation(above, count, below(-edge))), far_out) << edge;
            EXPECT_LT(std::abs(deviation(beneath, count, below(-edge))), far_out) << edge;
        }
        EXPECT_LT(worst_lag(draws), far_out);
    }
}

} // namespace
