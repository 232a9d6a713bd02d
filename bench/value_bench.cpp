// The value itself: construction, copies, the pool, element loops.
#include "rows.h"

#include <benchmark/benchmark.h>

static void construct(benchmark::State& state)
{
    for (auto _ : state) {
        M<double> x(3.0);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(construct)->Name("construct and destroy 1x1/arrlib");

static void copy(benchmark::State& state)
{
    M<double> x(3.0);
    for (auto _ : state) {
        M<double> y(x);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(copy)->Name("copy and destroy/arrlib");

static void pool_pair(benchmark::State& state)
{
    for (auto _ : state) {
        void* block = arrlib::pool.allocate(68);
        benchmark::DoNotOptimize(block);
        arrlib::pool.release(block, 68);
    }
}
BENCHMARK(pool_pair)->Name("allocate and release 68 bytes/arrlib");

static void malloc_pair(benchmark::State& state)
{
    for (auto _ : state) {
        void* block = std::malloc(68);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}
BENCHMARK(malloc_pair)->Name("allocate and release 68 bytes/malloc");

static void element_loop(benchmark::State& state)
{
    int const n = 1000000;
    M<double> x(0, n, 1);
    for (auto _ : state) {
        x.r(1) = 1;
        for (double k = 2; k <= n; ++k)
            x.r(k) = x.r(k - 1) * 0.5 + k;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(element_loop)->Name("x(k)=x(k-1)*0.5+k 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void plain_loop(benchmark::State& state)
{
    int const n = 1000000;
    std::vector<double> memory(static_cast<std::size_t>(n));
    double* x = memory.data();
    for (auto _ : state) {
        x[0] = 1;
        for (double k = 2; k <= n; ++k)
            x[static_cast<int>(k) - 1] = x[static_cast<int>(k - 1) - 1] * 0.5 + k;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(plain_loop)->Name("x(k)=x(k-1)*0.5+k 1e6/plain loop")->Unit(benchmark::kMicrosecond);

// The same with integer counters: the compiler keeps the plain loop's last element in a register,
// which the test for shared storage forbids in ours.
static void element_loop_int(benchmark::State& state)
{
    int const n = 1000000;
    M<double> x(0, n, 1);
    for (auto _ : state) {
        x.r(1) = 1;
        for (int k = 2; k <= n; ++k)
            x.r(k) = x.r(k - 1) * 0.5 + k;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(element_loop_int)->Name("x(k)=x(k-1)*0.5+k 1e6, integer k/arrlib")->Unit(benchmark::kMicrosecond);

static void plain_loop_int(benchmark::State& state)
{
    int const n = 1000000;
    std::vector<double> memory(static_cast<std::size_t>(n));
    double* x = memory.data();
    for (auto _ : state) {
        x[0] = 1;
        for (int k = 1; k < n; ++k)
            x[k] = x[k - 1] * 0.5 + (k + 1);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(plain_loop_int)->Name("x(k)=x(k-1)*0.5+k 1e6, integer k/plain loop")->Unit(benchmark::kMicrosecond);

static void named_scope_off(benchmark::State& state)
{
    for (auto _ : state) {
        M<double> x("x", 1, 1);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(named_scope_off)->Name("construct and destroy named 1x1/arrlib");
