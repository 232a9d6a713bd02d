// Random numbers and constant values, beside Armadillo.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

constexpr double rows_of = 10000, columns_of = 1000;

template <M<double> (*make)(M<double> const&, M<double> const&)> static void made(benchmark::State& state)
{
    // The first result of this size meets memory that the machine has never given out before.
    M<double> const warm = make(rows_of, columns_of);
    benchmark::DoNotOptimize(warm.addr());
    for (auto _ : state) {
        M<double> x = make(rows_of, columns_of);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(made<randM>)->Name("rand 1e7/arrlib")->Unit(benchmark::kMillisecond);
BENCHMARK(made<randn>)->Name("randn 1e7/arrlib")->Unit(benchmark::kMillisecond);
BENCHMARK(made<ones>)->Name("ones 1e7/arrlib")->Unit(benchmark::kMillisecond);

template <class Fill> static void made_arma(benchmark::State& state, Fill fill)
{
    for (auto _ : state) {
        arma::mat x(static_cast<arma::uword>(rows_of), static_cast<arma::uword>(columns_of), fill);
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK_CAPTURE(made_arma, randu, arma::fill::randu)->Name("rand 1e7/Armadillo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(made_arma, randn, arma::fill::randn)->Name("randn 1e7/Armadillo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(made_arma, ones, arma::fill::ones)->Name("ones 1e7/Armadillo")->Unit(benchmark::kMillisecond);

// One number per call, as loops of programs draw them.
static void thousand_draws(benchmark::State& state)
{
    for (auto _ : state) {
        double sum = 0;
        for (int k = 0; k < 1000; ++k)
            sum += *randM().addr();
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(thousand_draws)->Name("1000 times rand/arrlib");

static void thousand_draws_arma(benchmark::State& state)
{
    for (auto _ : state) {
        double sum = 0;
        for (int k = 0; k < 1000; ++k)
            sum += arma::randu();
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(thousand_draws_arma)->Name("1000 times rand/Armadillo");
