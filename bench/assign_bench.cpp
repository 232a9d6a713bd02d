// Writing elements and parts of matrices, beside Armadillo.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

// --- one element at a time ------------------------------------------------------------------------

template <int count> static void append(benchmark::State& state)
{
    for (auto _ : state) {
        M<double> x;
        for (double k = 1; k <= count; ++k)
            x(k) = k;
        benchmark::DoNotOptimize(x.addr());
    }
}
// Ten times as many are to take ten times as long.
BENCHMARK(append<100000>)->Name("append 1e5 elements one by one/arrlib")->Unit(benchmark::kMicrosecond);
BENCHMARK(append<10000>)->Name("append 1e4 elements one by one/arrlib")->Unit(benchmark::kMicrosecond);

static void append_vector(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<double> x;
        for (int k = 1; k <= 100000; ++k)
            x.push_back(k);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(append_vector)->Name("append 1e5 elements one by one/std::vector")->Unit(benchmark::kMicrosecond);

constexpr int element_count = 1000;

static void read_by_number(benchmark::State& state)
{
    M<double> x = rows::uniform(element_count, 1);
    for (auto _ : state)
        for (double k = 1; k <= element_count; ++k) {
            M<double> y = x(k);
            benchmark::DoNotOptimize(y.addr());
        }
}
BENCHMARK(read_by_number)->Name("1000 times y=A(k)/arrlib")->Unit(benchmark::kMicrosecond);

static void write_by_number(benchmark::State& state)
{
    M<double> x = rows::uniform(element_count, 1);
    M<double> const value(3.0);
    for (auto _ : state)
        for (double k = 1; k <= element_count; ++k) {
            x(k) = value;
            benchmark::ClobberMemory();
        }
}
BENCHMARK(write_by_number)->Name("1000 times A(k)=v/arrlib")->Unit(benchmark::kMicrosecond);

// The subscript is a variable of the program, so its construction is not part of the row.
static void read_by_brace(benchmark::State& state)
{
    M<double> x = rows::uniform(element_count, 1), k(1.0);
    for (auto _ : state)
        for (int at = 1; at <= element_count; ++at) {
            *k.addr() = at;
            double y = x.br(k);
            benchmark::DoNotOptimize(y);
        }
}
BENCHMARK(read_by_brace)->Name("1000 times y=A{k}/arrlib")->Unit(benchmark::kMicrosecond);

static void write_by_brace(benchmark::State& state)
{
    M<double> x = rows::uniform(element_count, 1), k(1.0);
    for (auto _ : state)
        for (int at = 1; at <= element_count; ++at) {
            *k.addr() = at;
            x.br(k) = 3.0;
            benchmark::ClobberMemory();
        }
}
BENCHMARK(write_by_brace)->Name("1000 times A{k}=v/arrlib")->Unit(benchmark::kMicrosecond);

static void write_by_two_braces(benchmark::State& state)
{
    M<double> x = rows::uniform(element_count, 1), k(1.0), one(1.0);
    for (auto _ : state)
        for (int at = 1; at <= element_count; ++at) {
            *k.addr() = at;
            x.br(k, one) = 3.0;
            benchmark::ClobberMemory();
        }
}
BENCHMARK(write_by_two_braces)->Name("1000 times A{k,1}=v/arrlib")->Unit(benchmark::kMicrosecond);

// --- parts ----------------------------------------------------------------------------------------

static void block(benchmark::State& state)
{
    M<double> x = rows::uniform(2000, 2000), index(0, 1, 1000);
    M<double> const source = rows::uniform(1000, 1000);
    for (int k = 0; k < 1000; ++k)
        index.addr()[k] = 501 + k;
    for (auto _ : state) {
        x(index, index) = source;
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(block)->Name("A(a:b,c:d)=B, 1000x1000 of 2000x2000/arrlib")->Unit(benchmark::kMicrosecond);

static void block_arma(benchmark::State& state)
{
    arma::mat x(2000, 2000, arma::fill::randu), source(1000, 1000, arma::fill::randu);
    for (auto _ : state) {
        x.submat(500, 500, 1499, 1499) = source;
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(block_arma)->Name("A(a:b,c:d)=B, 1000x1000 of 2000x2000/Armadillo")->Unit(benchmark::kMicrosecond);

static void scatter(benchmark::State& state)
{
    M<double> x = rows::uniform(1000, 1000), index = rows::index_matrix(rows::indices(1000000, 1000000));
    M<double> const source = rows::uniform(1, 1000000);
    for (auto _ : state) {
        x(index) = source;
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(scatter)->Name("A(I)=B, 1e6 of 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void scatter_arma(benchmark::State& state)
{
    arma::mat x(1000, 1000, arma::fill::randu);
    arma::vec const source(1000000, arma::fill::randu);
    arma::uvec index(1000000);
    auto const list = rows::indices(1000000, 1000000);
    for (std::size_t k = 0; k < list.size(); ++k)
        index[k] = list[k] - 1;
    for (auto _ : state) {
        x.elem(index) = source;
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(scatter_arma)->Name("A(I)=B, 1e6 of 1e6/Armadillo")->Unit(benchmark::kMicrosecond);

// What is written is above the limit, too, so that every round finds the same mask.
static void mask(benchmark::State& state)
{
    M<double> x = rows::uniform(1000, 1000);
    M<double> const value(0.75);
    for (auto _ : state) {
        M<double> chosen(0, 1000, 1000);
        for (int k = 0; k < x.size(); ++k)
            chosen.addr()[k] = x.addr()[k] > 0.5;
        chosen.setlogical(1);
        x(chosen) = value;
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(mask)->Name("A(A>0.5)=v, 1e6/arrlib")->Unit(benchmark::kMicrosecond);

static void mask_arma(benchmark::State& state)
{
    M<double> same = rows::uniform(1000, 1000);
    arma::mat x(same.addr(), 1000, 1000);
    for (auto _ : state) {
        x.elem(arma::find(x > 0.5)).fill(0.75);
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(mask_arma)->Name("A(A>0.5)=v, 1e6/Armadillo")->Unit(benchmark::kMicrosecond);
