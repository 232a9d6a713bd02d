// The value itself: construction, copies, the pool, element loops.
#include "rows.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <new>
#include <string>

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

// An empty variable, as translated declarations make them.
static void named_empty_scope_off(benchmark::State& state)
{
    for (auto _ : state) {
        M<double> x("x", 0, 0);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(named_empty_scope_off)->Name("construct and destroy named 0x0/arrlib");

// One call's variables, listed as they are made and gone at its end; the figure is for all of them.
static void named_scope_on(benchmark::State& state)
{
    constexpr std::size_t variables = 1000;
    std::vector<std::string> names(variables);
    for (std::size_t k = 0; k < variables; ++k)
        names[k] = "variable_" + std::to_string(k);
    struct Room {
        alignas(M<double>) unsigned char bytes[sizeof(M<double>)];
    };
    std::vector<Room> rooms(variables);
    nx_set_default_error_flags(nx_error_register, 1);
    for (auto _ : state) {
        for (std::size_t k = 0; k < variables; ++k)
            ::new (static_cast<void*>(rooms[k].bytes)) M<double>(names[k].c_str(), 1, 1);
        for (std::size_t k = variables; k-- > 0;)
            reinterpret_cast<M<double>*>(rooms[k].bytes)->~M();
    }
    nx_set_default_error_flags(nx_error_register, 0);
}
BENCHMARK(named_scope_on)->Name("1000 named 1x1 at one level, scope on/arrlib")->Unit(benchmark::kMicrosecond);
