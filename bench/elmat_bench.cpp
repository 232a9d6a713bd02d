// Ranges, grids and rearrangements, beside Armadillo and plain loops.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>
#include <cstddef>
#include <memory>

constexpr auto ms = benchmark::kMillisecond;

template <class Work> static void repeat(benchmark::State& state, Work work)
{
    for (auto _ : state) {
        auto made = work();
        void* const place = &made;
        benchmark::DoNotOptimize(place);
        benchmark::ClobberMemory();
    }
}

static M<double> half_zeros(int n)
{
    M<double> x = rows::uniform(1, n);
    for (int k = 0; k < n; ++k)
        x.addr()[k] = x.addr()[k] < 0.5 ? 0 : x.addr()[k];
    return x;
}

static arma::vec const& half_zeros_arma()
{
    static arma::vec const x = [] {
        M<double> const numbers = half_zeros(1000000);
        return arma::vec(numbers.addr(), 1000000);
    }();
    return x;
}

static arma::mat matrix_arma(int r, int c)
{
    return arma::mat(rows::uniform(r, c).addr(), static_cast<arma::uword>(r), static_cast<arma::uword>(c));
}

// --- find, kron, permute, repmat, meshgrid --------------------------------------------------------

static void found(benchmark::State& state)
{
    M<double> const x = half_zeros(1000000);
    repeat(state, [&] { return find(x); });
}
BENCHMARK(found)->Name("find, 1e6/arrlib")->Unit(ms);

static void found_arma(benchmark::State& state)
{
    repeat(state, [&]() -> arma::uvec { return arma::find(half_zeros_arma()); });
}
BENCHMARK(found_arma)->Name("find, 1e6/Armadillo")->Unit(ms);

template <int a, int b> static void product(benchmark::State& state)
{
    M<double> const x = rows::uniform(a, a), y = rows::uniform(b, b);
    repeat(state, [&] { return kron(x, y); });
}
BENCHMARK(product<100, 10>)->Name("kron of 100x100 and 10x10/arrlib")->Unit(ms);
BENCHMARK(product<10, 100>)->Name("kron of 10x10 and 100x100/arrlib")->Unit(ms);

template <int a, int b> static void product_arma(benchmark::State& state)
{
    arma::mat const x = matrix_arma(a, a), y = matrix_arma(b, b);
    repeat(state, [&]() -> arma::mat { return arma::kron(x, y); });
}
BENCHMARK(product_arma<100, 10>)->Name("kron of 100x100 and 10x10/Armadillo")->Unit(ms);
BENCHMARK(product_arma<10, 100>)->Name("kron of 10x10 and 100x100/Armadillo")->Unit(ms);

template <int p, int q, int r> static void permuted(benchmark::State& state)
{
    M<double> const x = reshape(rows::uniform(200, 40000), 200, 200, 200);
    M<double> const order = (BR(M<double>(p)), M<double>(q), M<double>(r));
    repeat(state, [&] { return permute(x, order); });
}
BENCHMARK(permuted<2, 1, 3>)->Name("permute 200x200x200 by 2 1 3/arrlib")->Unit(ms);
BENCHMARK(permuted<3, 1, 2>)->Name("permute 200x200x200 by 3 1 2/arrlib")->Unit(ms);
BENCHMARK(permuted<3, 2, 1>)->Name("permute 200x200x200 by 3 2 1/arrlib")->Unit(ms);
BENCHMARK(permuted<1, 3, 2>)->Name("permute 200x200x200 by 1 3 2/arrlib")->Unit(ms);

static void tiled(benchmark::State& state)
{
    M<double> const x = rows::uniform(100, 100);
    repeat(state, [&] { return repmat(x, 10, 20); });
}
BENCHMARK(tiled)->Name("repmat of 100x100, 10x20 times/arrlib")->Unit(ms);

static void tiled_arma(benchmark::State& state)
{
    arma::mat const x = matrix_arma(100, 100);
    repeat(state, [&]() -> arma::mat { return arma::repmat(x, 10, 20); });
}
BENCHMARK(tiled_arma)->Name("repmat of 100x100, 10x20 times/Armadillo")->Unit(ms);

static void tiled_column(benchmark::State& state)
{
    M<double> const x = rows::uniform(1000, 1);
    repeat(state, [&] { return repmat(x, 1, 1000); });
}
BENCHMARK(tiled_column)->Name("repmat of a column of 1000, 1000 times/arrlib")->Unit(ms);

static void tiled_column_arma(benchmark::State& state)
{
    arma::mat const x = matrix_arma(1000, 1);
    repeat(state, [&]() -> arma::mat { return arma::repmat(x, 1, 1000); });
}
BENCHMARK(tiled_column_arma)->Name("repmat of a column of 1000, 1000 times/Armadillo")->Unit(ms);

static void grid(benchmark::State& state)
{
    M<double> const x = rows::uniform(1, 1000), y = rows::uniform(1, 1000);
    for (auto _ : state) {
        M<double> X, Y;
        meshgrid(x, y, i_o, X, Y);
        benchmark::DoNotOptimize(Y.addr());
    }
}
BENCHMARK(grid)->Name("meshgrid of 1000 and 1000/arrlib")->Unit(ms);

// --- ranges, beside the loop that one would write -------------------------------------------------

template <class Element> static void loop(benchmark::State& state, std::size_t count, Element element)
{
    for (auto _ : state) {
        std::unique_ptr<double[]> const x(new double[count]);
        double* to = x.get();
        for (std::size_t k = 0; k < count; ++k)
            to[k] = element(k);
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    }
}

template <int n> static void range(benchmark::State& state)
{
    M<double> const first(0.0), step(0.5), last((n - 1) * 0.5);
    repeat(state, [&] { return colon(first, step, last); });
}
BENCHMARK(range<1000000>)->Name("colon, 1e6/arrlib")->Unit(ms);
BENCHMARK(range<1000>)->Name("colon, 1e3/arrlib");

template <int n> static void range_loop(benchmark::State& state)
{
    double first = 0, step = 0.5;
    benchmark::DoNotOptimize(first);
    benchmark::DoNotOptimize(step);
    loop(state, n, [=](std::size_t k) { return first + static_cast<int>(k) * step; });
}
BENCHMARK(range_loop<1000000>)->Name("colon, 1e6/plain loop")->Unit(ms);
BENCHMARK(range_loop<1000>)->Name("colon, 1e3/plain loop");

template <int n> static void spaced(benchmark::State& state)
{
    M<double> const first(0.0), last(1.0), count(static_cast<double>(n));
    repeat(state, [&] { return linspace(first, last, count); });
}
BENCHMARK(spaced<1000000>)->Name("linspace, 1e6/arrlib")->Unit(ms);

static void spaced_loop(benchmark::State& state)
{
    double first = 0, last = 1;
    benchmark::DoNotOptimize(first);
    benchmark::DoNotOptimize(last);
    double const step = (last - first) / 999999;
    loop(state, 1000000, [=](std::size_t k) { return first + static_cast<int>(k) * step; });
}
BENCHMARK(spaced_loop)->Name("linspace, 1e6/plain loop")->Unit(ms);

static void spaced_arma(benchmark::State& state)
{
    repeat(state, []() -> arma::vec { return arma::linspace(0, 1, 1000000); });
}
BENCHMARK(spaced_arma)->Name("linspace, 1e6/Armadillo")->Unit(ms);

static void cleared(benchmark::State& state)
{
    M<double> const n(1000.0);
    repeat(state, [&] { return zeros(n); });
}
BENCHMARK(cleared)->Name("zeros, 1e6/arrlib")->Unit(ms);

static void cleared_loop(benchmark::State& state)
{
    double zero = 0;
    benchmark::DoNotOptimize(zero);
    loop(state, 1000000, [=](std::size_t) { return zero; });
}
BENCHMARK(cleared_loop)->Name("zeros, 1e6/plain loop")->Unit(ms);

static void cleared_arma(benchmark::State& state)
{
    repeat(state, []() -> arma::mat { return arma::mat(1000, 1000, arma::fill::zeros); });
}
BENCHMARK(cleared_arma)->Name("zeros, 1e6/Armadillo")->Unit(ms);
