// Whole numbers, elementary functions beside the engine, and cells of numbers.
#include "rows.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <numeric>
#include <vector>

constexpr int million = 1000000;

// Whole numbers from 1 to a million, in no order.
static M<double> whole(int first)
{
    M<double> numbers = rows::uniform(1, million + first);
    M<double> taken(0, 1, million);
    for (int k = 0; k < million; ++k)
        taken.addr()[k] = std::floor(numbers.addr()[k + first] * million) + 1;
    return taken;
}

static std::vector<long long> whole_list(int first)
{
    M<double> const numbers = whole(first);
    return {numbers.addr(), numbers.addr() + million};
}

static void find_primes(benchmark::State& state)
{
    for (auto _ : state) {
        M<double> list = primes(1e7);
        benchmark::DoNotOptimize(list.addr());
    }
}
BENCHMARK(find_primes)->Name("primes(1e7)/arrlib")->Unit(benchmark::kMillisecond);

static void test_many(benchmark::State& state)
{
    M<double> numbers(0, 1, million);
    std::iota(numbers.addr(), numbers.addr() + million, 0);
    for (auto _ : state) {
        M<double> marks = isprime(numbers);
        benchmark::DoNotOptimize(marks.addr());
    }
}
BENCHMARK(test_many)->Name("isprime of 1e6 numbers in order/arrlib")->Unit(benchmark::kMillisecond);

static void test_large(benchmark::State& state)
{
    M<double> numbers = rows::uniform(1, 100000);
    for (int k = 0; k < numbers.size(); ++k)
        numbers.addr()[k] = std::floor(numbers.addr()[k] * 9007199254740991.0);
    for (auto _ : state) {
        M<double> marks = isprime(numbers);
        benchmark::DoNotOptimize(marks.addr());
    }
}
BENCHMARK(test_large)->Name("isprime of 1e5 numbers up to 2^53/arrlib")->Unit(benchmark::kMillisecond);

static void divisors(benchmark::State& state)
{
    M<double> const a = whole(0), b = whole(7);
    for (auto _ : state) {
        M<double> g = gcd(a, b);
        benchmark::DoNotOptimize(g.addr());
    }
}
BENCHMARK(divisors)->Name("gcd, 1e6/arrlib")->Unit(benchmark::kMillisecond);

static void divisors_loop(benchmark::State& state)
{
    std::vector<long long> const a = whole_list(0), b = whole_list(7);
    for (auto _ : state) {
        std::vector<long long> g(a.size());
        for (std::size_t k = 0; k < a.size(); ++k)
            g[k] = std::gcd(a[k], b[k]);
        benchmark::DoNotOptimize(g.data());
    }
}
BENCHMARK(divisors_loop)->Name("gcd, 1e6/std::gcd loop")->Unit(benchmark::kMillisecond);

static void lengths(benchmark::State& state)
{
    M<double> const a = rows::uniform(1, million), b = rows::uniform(million, 1);
    M<double> const c = transpose(b);
    for (auto _ : state) {
        M<double> h = hypot(a, c);
        benchmark::DoNotOptimize(h.addr());
    }
}
BENCHMARK(lengths)->Name("hypot, 1e6/arrlib")->Unit(benchmark::kMillisecond);

static void lengths_loop(benchmark::State& state)
{
    M<double> const a = rows::uniform(1, million);
    for (auto _ : state) {
        std::vector<double> h(million);
        for (int k = 0; k < million; ++k)
            h[static_cast<std::size_t>(k)] = std::hypot(a.addr()[k], a.addr()[million - 1 - k]);
        benchmark::DoNotOptimize(h.data());
    }
}
BENCHMARK(lengths_loop)->Name("hypot, 1e6/std::hypot loop")->Unit(benchmark::kMillisecond);

static void scalar_product(benchmark::State& state)
{
    M<double> const a = rows::uniform(1, million), b = rows::uniform(1, million);
    for (auto _ : state) {
        M<double> s = dot(a, b);
        benchmark::DoNotOptimize(s.addr());
    }
}
BENCHMARK(scalar_product)->Name("dot, 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void cells_and_back(benchmark::State& state)
{
    M<double> const a = rows::uniform(100, 100);
    for (auto _ : state) {
        M<double> b = cell2mat(num2cell(a));
        benchmark::DoNotOptimize(b.addr());
    }
}
BENCHMARK(cells_and_back)->Name("1e4 numbers into cells and back/arrlib")->Unit(benchmark::kMicrosecond);
