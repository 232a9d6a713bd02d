// Divisors, primes and counts, against naive models.
#include "builtins/integers.h"

#include "builtins/args.h"
#include "builtins/primes.h"
#include "builtins/types.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "runtime/constants.h"
#include "support/values.h"

#include <numeric>
#include <random>

namespace {

using namespace values;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double two_to_53 = 9007199254740992.0;

TEST(Gcd, FollowsItsDefinition)
{
    std::mt19937_64 random(1);
    int const count = 5000;
    M<double> a(0, 1, count), b(0, 1, count), g, c, d;
    for (int k = 0; k < count; ++k) {
        double const range = k % 3 == 0 ? 20 : k % 3 == 1 ? 1e6 : two_to_53;
        std::uniform_real_distribution<double> draw(-range, range);
        a.addr()[k] = std::trunc(draw(random));
        b.addr()[k] = std::trunc(draw(random));
    }
    gcd(a, b, i_o, g, c, d);
    for (int k = 0; k < count; ++k) {
        auto const x = static_cast<std::int64_t>(a.addr()[k]), y = static_cast<std::int64_t>(b.addr()[k]);
        ASSERT_EQ(g.addr()[k], static_cast<double>(std::gcd(x, y))) << x << ' ' << y;
        // Sums that wrap come out right all the same.
        auto const term = [](std::int64_t p, double q) { return static_cast<std::uint64_t>(p) * static_cast<std::uint64_t>(static_cast<std::int64_t>(q)); };
        ASSERT_EQ(term(x, c.addr()[k]) + term(y, d.addr()[k]), static_cast<std::uint64_t>(std::gcd(x, y))) << x << ' ' << y;
    }
}

// The arguments are references: outputs are looked at after the call that made the first one.
std::string joined(M<double> const& first, M<double> const& second, M<double> const& third)
{
    return shown(first) + "|" + shown(second) + "|" + shown(third);
}

TEST(Gcd, TakesManyShapes)
{
    M<double> g, c, d;
    M<double> const two = row({1, 2}), three = row({1, 2, 3});
    expect_all({
        {joined(gcd(12.0, 18.0, i_o, g, c), g, c), "1x1: 6|1x1: 6|1x1: -1"},
        {shown(gcd(rows_of({{12, -18}, {0, 7}}), 6.0)), "2x2: 6 6 6 1"},
        {joined(gcd(0.0, 0.0, i_o, g, c, d), c, d), "1x1: 0|1x1: 0|1x1: 0"},
        {shown(gcd(sparse(row({4, 0})), 6.0)), "1x2: 2 6"},
        {shown(gcd(text("ab"), 1.0)), "1x2: 1 1"},
        {shown(gcd(M<double>(), three)), "0x0:"},
        {shown(gcd(std::ldexp(6, 100), std::ldexp(15, 99), i_o, g)), shown(M<double>(std::ldexp(3, 99)))},
        {shown(lcm(row({4, 6, 7}), 6.0)), "1x3: 12 6 42"},
        {shown(lcm(94906267.0, 94906266.0)), shown(M<double>(94906267.0 * 94906266.0))},
        {reported_by([&] { gcd(1.5, 2.0); }), "gcd: argument must be an integer"},
        {reported_by([&] { EXPECT_EQ(joined(gcd(2.0, inf, i_o, g, c), g, c), "0x0:|0x0:|0x0:"); }), "gcd: argument must be an integer"},
        {reported_by([&] { gcd(two, three); }), "gcd: wrong dimensions of: (temporary), (temporary)"},
        {reported_by([&] { lcm(two, three); }), "lcm: wrong dimensions of: (temporary), (temporary)"},
        {reported_by([&] { lcm(0.0, 1.0); }), "lcm: elements must be positive integers"},
        {reported_by([&] { lcm(1.0, sparse(row({4, 0}))); }), "lcm: elements must be positive integers"},
        {reported_by([&] { lcm(i, 1.0); }), "lcm: elements must be positive integers"},
    });
}

TEST(Primes, AgreeWithTrialDivision)
{
    // Ends in the first segment, at its border, and some segments on.
    constexpr int bound = 200000;
    std::vector<char> prime(bound + 1, 1);
    for (int p = 2; p <= bound; ++p)
        for (int k = 2 * p; prime[static_cast<std::size_t>(p)] && k <= bound; k += p)
            prime[static_cast<std::size_t>(k)] = 0;
    for (int limit : {2, 3, 16, 17, 18, 289, 65536, 65537, 65539, 65541, bound}) {
        Numbers expected;
        for (int p = 2; p <= limit; ++p)
            if (prime[static_cast<std::size_t>(p)])
                expected.push_back(p);
        ASSERT_EQ(numbers(primes(limit + 0.5)), expected) << limit;
    }
    M<double> all(0, 1, bound + 1);
    std::iota(all.addr(), all.addr() + all.size(), 0);
    M<double> const sieved = isprime(all);
    all.addr()[0] = two_to_53 - 111; // too large for a sieve
    M<double> const tested = isprime(all);
    for (int k = 0; k <= bound; ++k) {
        ASSERT_EQ(sieved.addr()[k], k >= 2 && prime[static_cast<std::size_t>(k)]) << k;
        ASSERT_EQ(tested.addr()[k], k == 0 || (k >= 2 && prime[static_cast<std::size_t>(k)])) << k;
    }
    expect_all({
        {shown(primes(20.0)), "1x8: 2 3 5 7 11 13 17 19"},
        {std::to_string(primes(1e7).size()), "664579"},
        {shown(primes(1.9)) + shown(primes(-inf)) + shown(primes(NaN)) + shown(primes(M<double>())), "0x0:0x0:0x0:0x0:"},
        {reported_by([] { primes(row({1, 2})); }), "primes: argument must be scalar"},
        {reported_by([] { primes(i); }), "primes: argument must be real"},
        {reported_by([] { primes(inf); }) + reported_by([] { primes(two_to_53); }), "Out of memory!Out of memory!"},
    });
}

TEST(Primes, AreTestedUpToTheLargestIntegers)
{
    // Strong pseudoprimes to the first bases, squares, and neighbours of 2^53.
    expect_all({
        {shown(isprime(row({2047, 1373653, 25326001, 3215031751, 2152302898747, 3474749660383, 341550071728321, 9007199136250225, 9007199254740992, 1e300}))), "logical 1x10: 0 0 0 0 0 0 0 0 0 0"},
        {shown(isprime(rows_of({{9007199254740881, 4294967291}, {94906249, 4489}}))), "logical 2x2: 1 1 1 0"},
        {shown(isprime(sparse(row({0, 5})))) + shown(isprime(M<double>())), "logical 1x2: 0 1logical 0x0:"},
        {reported_by([] { isprime(-1.0); }), "isprime: elements must be non-negative integers"},
        {reported_by([] { isprime(row({2, 2.5})); }), "isprime: elements must be non-negative integers"},
        {reported_by([] { isprime(row({2}, {1})); }), "isprime: elements must be non-negative integers"},
    });
}

TEST(Primes, MakeUpNumbers)
{
    std::mt19937_64 random(2);
    auto const product = [](M<double> const& list) { return std::accumulate(list.addr(), list.addr() + list.size(), std::uint64_t{1}, [](std::uint64_t p, double f) { return p * static_cast<std::uint64_t>(f); }); };
    for (int k = 0; k < 300; ++k) {
        std::uint64_t const n = (random() >> 11 >> random() % 48) + 4;
        M<double> const list = factor(static_cast<double>(n));
        ASSERT_EQ(product(list), n);
        ASSERT_TRUE(std::is_sorted(list.addr(), list.addr() + list.size()));
        for (double const p : numbers(list))
            ASSERT_TRUE(arrlib::is_prime(static_cast<std::uint64_t>(p))) << n;
    }
    expect_all({
        {shown(factor(360.0)), "1x6: 2 2 2 3 3 5"},
        {shown(factor(3.0)) + shown(factor(0.0)) + shown(factor(-5.0)), "1x1: 31x1: 01x1: -5"},
        {shown(factor(94906249.0 * 94906249)) + shown(factor(67.0 * 67 * 71)), "1x2: 94906249 949062491x3: 67 67 71"},
        {shown(factor(9007198986305536)), shown(row({2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 31, 601, 1801}))},
        {std::to_string(factor(std::numeric_limits<double>::max()).size()), std::to_string(971 + factor(two_to_53 - 1).size())},
        {shown(factor(M<double>())), "0x0:"},
        {reported_by([] { factor(row({4, 6})); }), "factor: argument must be scalar"},
        {reported_by([] { factor(4.5); }) + reported_by([] { factor(inf); }), "factor: argument must be an integerfactor: argument must be an integer"},
    });
}

TEST(Counts, Factorials)
{
    Numbers exact{1};
    for (int k = 1; k <= 22; ++k)
        exact.push_back(exact.back() * k);
    M<double> n(0, 1, 23);
    std::iota(n.addr(), n.addr() + n.size(), 0);
    EXPECT_EQ(numbers(factorial(n)), exact);
    expect_all({
        {shown(factorial(row({25, 30, 100, 170})), 17), "1x4: 1.5511210043330986e+25 2.6525285981219107e+32 9.3326215443944151e+157 7.257415615307999e+306"},
        {shown(factorial(rows_of({{171, inf}, {0, 1}}))), "2x2: Inf 1 Inf 1"},
        {shown(factorial(M<double>())), "0x0:"},
        {reported_by([] { factorial(-1.0); }) + "|" + reported_by([] { factorial(NaN); }), "factorial: elements must be non-negative integers|factorial: elements must be non-negative integers"},
    });
}

TEST(Counts, Arrangements)
{
    M<double> const seven = row({0, 1, 2, 3, 4, 5, 6});
    M<double> const all = perms(seven), chosen = nchoosek(seven, 3.0);
    for (M<double> const* const list : {&all, &chosen})
        for (int k = 1; k < list->rows(); ++k) {
            Numbers before, after;
            for (int j = 1; j <= list->cols(); ++j) {
                before.push_back(*list->addr(k, j));
                after.push_back(*list->addr(k + 1, j));
            }
            ASSERT_TRUE(list == &all ? after < before : before < after) << k;
        }
    EXPECT_EQ(all.rows(), 5040);
    EXPECT_EQ(chosen.rows(), 35);
    for (int k = 1; k <= chosen.rows(); ++k)
        EXPECT_TRUE(*chosen.addr(k, 1) < *chosen.addr(k, 2) && *chosen.addr(k, 2) < *chosen.addr(k, 3));
    double const central = 3824345300380220; // C(55, 27)
    expect_all({
        {shown(perms(row({1, 2, 3}))), shown(rows_of({{3, 2, 1}, {3, 1, 2}, {2, 3, 1}, {2, 1, 3}, {1, 3, 2}, {1, 2, 3}}))},
        {shown(perms(text("ab"))), "'ba'/'ab'"},
        {shown(perms(column({1, 2}, {3, 4}))), "2x2: 2+4i 1+3i 1+3i 2+4i"},
        {shown(perms(5.0)) + shown(perms(M<double>())), "1x1: 50x0:"},
        {shown(nchoosek(text("abc"), 2.0)), "'ab'/'ac'/'bc'"},
        {shown(nchoosek(column({7, 8}), 2.0)) + shown(nchoosek(row({7, 8}), 3.0)) + shown(nchoosek(row({7, 8}), 0.0)), "1x2: 7 80x0:0x0:"},
        {shown(nchoosek(0.0, 0.0)) + shown(nchoosek(5.0, 2.0)) + shown(nchoosek(3.0, 5.0)), "1x1: 11x1: 101x1: 0"},
        {shown(nchoosek(55.0, 27.0), 17), shown(M<double>(central), 17)},
        {warned_by([] { EXPECT_EQ(shown(nchoosek(1e15, 3.0), 6), "1x1: 1.66667e+44"); }), "nchoosek: result may be inexact"},
        {warned_by([] { EXPECT_NEAR(nchoosek(60.0, 30.0)[1] / 118264581564861424.0, 1, 1e-15); }), "nchoosek: result may be inexact"},
        {warned_by([] { EXPECT_EQ(shown(nchoosek(1e9, 5e8)), "1x1: Inf"); }), "nchoosek: result may be inexact"},
        {reported_by([] { perms(zeros(11.0, 1.0)); }), "perms: too many elements"},
        {reported_by([] { nchoosek(zeros(2.0), 1.0); }), "nchoosek: argument must be a vector"},
        {reported_by([] { nchoosek(4.0, row({1, 2})); }), "nchoosek: argument must be scalar"},
        {reported_by([] { nchoosek(4.5, 1.0); }) + reported_by([] { nchoosek(row({1, 2}), 0.5); }), "nchoosek: argument must be an integernchoosek: argument must be an integer"},
        {reported_by([] { nchoosek(-4.0, 1.0); }) + reported_by([] { nchoosek(4.0, -1.0); }), "nchoosek: arguments must not be negativenchoosek: arguments must not be negative"},
        {reported_by([] { nchoosek(zeros(1.0, 100.0), 50.0); }), "Out of memory!"},
    });
}

TEST(Integers, SurviveRefusedMemory)
{
    M<double> const many = zeros(1.0, 2000.0), few = row({4, 6, 8, 9});
    capture::with_every_allocation_refused([&] { primes(1e5); });
    capture::with_every_allocation_refused([&] { isprime(many); });
    capture::with_every_allocation_refused([&] {
        M<double> g, c, d;
        gcd(few, 6.0, i_o, g, c, d);
    });
    capture::with_every_allocation_refused([&] { nchoosek(few, 2.0); });
}

} // namespace
