// Brackets and transposes, beside Armadillo, Eigen and the C library.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <string>

#if __has_include(<Eigen/Core>)
#include <Eigen/Core>
#endif

static void four_scalars(benchmark::State& state)
{
    M<double> const a(1.0), b(2.0), c(3.0), d(4.0);
    for (auto _ : state) {
        M<double> x = (BR(a), b, c, d);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(four_scalars)->Name("[a b c d] of scalars/arrlib");

static void four_scalars_arma(benchmark::State& state)
{
    double a = 1, b = 2, c = 3, d = 4;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        arma::rowvec x{a, b, c, d};
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(four_scalars_arma)->Name("[a b c d] of scalars/Armadillo");

template <int count> static void join_texts(benchmark::State& state)
{
    M<double> const t = TM("abcde");
    for (auto _ : state) {
        M<double> s;
        for (int k = 0; k < count; ++k)
            s = (BR(s), t);
        benchmark::DoNotOptimize(s.addr());
    }
}
// Ten times as many are to take ten times as long.
BENCHMARK(join_texts<100000>)->Name("join 1e5 short strings one by one/arrlib")->Unit(benchmark::kMicrosecond);
BENCHMARK(join_texts<10000>)->Name("join 1e4 short strings one by one/arrlib")->Unit(benchmark::kMicrosecond);

static void join_strings(benchmark::State& state)
{
    std::string const t = "abcde";
    for (auto _ : state) {
        std::string s;
        for (int k = 0; k < 100000; ++k)
            s += t;
        benchmark::DoNotOptimize(s.data());
    }
}
BENCHMARK(join_strings)->Name("join 1e5 short strings one by one/std::string")->Unit(benchmark::kMicrosecond);

// --- transpose ------------------------------------------------------------------------------------

constexpr int side = 4000;

static void transposed(benchmark::State& state)
{
    M<double> const x = rows::uniform(side, side);
    // The first result of this size meets memory that the machine has never given out before; the next ones get it.
    static_cast<void>(transpose(x));
    for (auto _ : state) {
        M<double> y = transpose(x);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(transposed)->Name("transpose 4000x4000/arrlib")->Unit(benchmark::kMillisecond);

// Twice over the same memory, into memory of its own each time, as a result is.
static void two_copies(benchmark::State& state)
{
    M<double> const x = rows::uniform(side, side);
    std::size_t const bytes = std::size_t{side} * side * sizeof(double);
    for (auto _ : state) {
        std::unique_ptr<char[]> y(new char[bytes]);
        std::memcpy(y.get(), x.addr(), bytes);
        benchmark::ClobberMemory();
        std::memcpy(y.get(), x.addr(), bytes);
        benchmark::DoNotOptimize(y.get());
    }
}
BENCHMARK(two_copies)->Name("transpose 4000x4000/2 memcpy")->Unit(benchmark::kMillisecond);

static void two_copies_warm(benchmark::State& state)
{
    M<double> const x = rows::uniform(side, side);
    M<double> y = rows::uniform(side, side);
    std::size_t const bytes = std::size_t{side} * side * sizeof(double);
    for (auto _ : state) {
        std::memcpy(y.addr(), x.addr(), bytes);
        benchmark::ClobberMemory();
        std::memcpy(y.addr(), x.addr(), bytes);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(two_copies_warm)->Name("transpose 4000x4000/2 memcpy into used memory")->Unit(benchmark::kMillisecond);

static void transposed_arma(benchmark::State& state)
{
    arma::mat const x(side, side, arma::fill::randu);
    for (auto _ : state) {
        arma::mat y = x.st();
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(transposed_arma)->Name("transpose 4000x4000/Armadillo")->Unit(benchmark::kMillisecond);

#if __has_include(<Eigen/Core>)
static void transposed_eigen(benchmark::State& state)
{
    Eigen::MatrixXd const x = Eigen::MatrixXd::Random(side, side);
    for (auto _ : state) {
        Eigen::MatrixXd y = x.transpose();
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(transposed_eigen)->Name("transpose 4000x4000/Eigen")->Unit(benchmark::kMillisecond);
#endif
