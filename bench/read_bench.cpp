// Reading parts of matrices, beside Armadillo.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

static arma::uvec arma_indices(std::vector<unsigned> const& list)
{
    arma::uvec made(list.size());
    for (std::size_t k = 0; k < list.size(); ++k)
        made[k] = list[k] - 1;
    return made;
}

static void gather(benchmark::State& state)
{
    M<double> x = rows::uniform(1000, 1000), index = rows::index_matrix(rows::indices(1000000, 1000000));
    for (auto _ : state) {
        M<double> y = x(index);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(gather)->Name("A(I), 1e6 of 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void gather_arma(benchmark::State& state)
{
    arma::mat x(1000, 1000, arma::fill::randu);
    arma::uvec const index = arma_indices(rows::indices(1000000, 1000000));
    for (auto _ : state) {
        arma::vec y = x.elem(index);
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(gather_arma)->Name("A(I), 1e6 of 1e6/Armadillo")->Unit(benchmark::kMicrosecond);

static void block(benchmark::State& state)
{
    M<double> x = rows::uniform(2000, 2000), i = rows::index_matrix(rows::indices(1000, 2000)), j = i;
    for (auto _ : state) {
        M<double> y = x(i, j);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(block)->Name("A(I,J), 1000x1000 of 2000x2000/arrlib")->Unit(benchmark::kMicrosecond);

static void block_arma(benchmark::State& state)
{
    arma::mat x(2000, 2000, arma::fill::randu);
    arma::uvec const i = arma_indices(rows::indices(1000, 2000));
    for (auto _ : state) {
        arma::mat y = x.submat(i, i);
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(block_arma)->Name("A(I,J), 1000x1000 of 2000x2000/Armadillo")->Unit(benchmark::kMicrosecond);

static M<double> range(int from, int to)
{
    M<double> x(0, 1, to - from + 1);
    for (int k = from; k <= to; ++k)
        x.addr()[k - from] = k;
    return x;
}

static void run_block(benchmark::State& state)
{
    M<double> x = rows::uniform(2000, 2000), i = range(501, 1500);
    for (auto _ : state) {
        M<double> y = x(i, i);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(run_block)->Name("A(a:b,c:d), 1000x1000 of 2000x2000/arrlib")->Unit(benchmark::kMicrosecond);

static void run_block_arma(benchmark::State& state)
{
    arma::mat x(2000, 2000, arma::fill::randu);
    for (auto _ : state) {
        arma::mat y = x.submat(500, 500, 1499, 1499);
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(run_block_arma)->Name("A(a:b,c:d), 1000x1000 of 2000x2000/Armadillo")->Unit(benchmark::kMicrosecond);

static M<double> mask_of(M<double> const& x)
{
    M<double> mask(0, x.rows(), x.cols());
    for (int k = 0; k < x.size(); ++k)
        mask.addr()[k] = x.addr()[k] > 0.5;
    mask.setlogical(1);
    return mask;
}

static void mask(benchmark::State& state)
{
    M<double> x = rows::uniform(1000, 1000);
    for (auto _ : state) {
        M<double> chosen = mask_of(x), y = x(chosen);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(mask)->Name("A(A>0.5), 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void mask_arma(benchmark::State& state)
{
    M<double> same = rows::uniform(1000, 1000);
    arma::mat x(same.addr(), 1000, 1000);
    for (auto _ : state) {
        arma::vec y = x.elem(arma::find(x > 0.5));
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(mask_arma)->Name("A(A>0.5), 1e6/Armadillo")->Unit(benchmark::kMicrosecond);

static void scalar_read(benchmark::State& state)
{
    M<double> x = rows::uniform(1000, 1);
    for (auto _ : state)
        for (int k = 1; k <= 1000; ++k) {
            M<double> y = x(k);
            benchmark::DoNotOptimize(y.addr());
        }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(scalar_read)->Name("1000 times A(k)/arrlib");
