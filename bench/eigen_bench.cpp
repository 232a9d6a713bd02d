// Eigenvalues, singular values and polynomials, beside Armadillo on the same library.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

namespace {

constexpr int order = 300;

M<double> general()
{
    return rows::uniform(order, order);
}

M<double> symmetric()
{
    M<double> const x = general();
    return x + transpose(x);
}

arma::mat as_arma(M<double> const& x)
{
    return arma::mat(x.addr(), static_cast<arma::uword>(x.rows()), static_cast<arma::uword>(x.cols()));
}

template <class Work> void repeat(benchmark::State& state, Work work)
{
    for (auto _ : state)
        work();
}

void svd_values(benchmark::State& state)
{
    M<double> const x = general();
    repeat(state, [&] { benchmark::DoNotOptimize(svd(x)); });
}
BENCHMARK(svd_values)->Name("svd of 300, values/arrlib")->Unit(benchmark::kMillisecond);

void svd_values_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(general());
    repeat(state, [&] {
        arma::vec const made = arma::svd(x);
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(svd_values_arma)->Name("svd of 300, values/Armadillo")->Unit(benchmark::kMillisecond);

void svd_factors(benchmark::State& state)
{
    M<double> const x = general();
    repeat(state, [&] {
        M<double> U, S, V;
        svd(x, i_o, U, S, V);
        benchmark::DoNotOptimize(V);
    });
}
BENCHMARK(svd_factors)->Name("svd of 300, factors/arrlib")->Unit(benchmark::kMillisecond);

void svd_factors_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(general());
    repeat(state, [&] {
        arma::mat U, V;
        arma::vec s;
        arma::svd(U, s, V, x);
        benchmark::DoNotOptimize(V.memptr());
    });
}
BENCHMARK(svd_factors_arma)->Name("svd of 300, factors/Armadillo")->Unit(benchmark::kMillisecond);

void eig_values(benchmark::State& state)
{
    M<double> const x = general();
    repeat(state, [&] { benchmark::DoNotOptimize(eig(x)); });
}
BENCHMARK(eig_values)->Name("eig of 300, values/arrlib")->Unit(benchmark::kMillisecond);

void eig_values_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(general());
    repeat(state, [&] {
        arma::cx_vec const made = arma::eig_gen(x, "balance");
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(eig_values_arma)->Name("eig of 300, values/Armadillo")->Unit(benchmark::kMillisecond);

void eig_vectors(benchmark::State& state)
{
    M<double> const x = general();
    repeat(state, [&] {
        M<double> V, D;
        eig(x, i_o, V, D);
        benchmark::DoNotOptimize(V);
    });
}
BENCHMARK(eig_vectors)->Name("eig of 300, vectors/arrlib")->Unit(benchmark::kMillisecond);

void eig_vectors_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(general());
    repeat(state, [&] {
        arma::cx_mat V;
        arma::cx_vec d;
        arma::eig_gen(d, V, x, "balance");
        benchmark::DoNotOptimize(V.memptr());
    });
}
BENCHMARK(eig_vectors_arma)->Name("eig of 300, vectors/Armadillo")->Unit(benchmark::kMillisecond);

void symmetric_values(benchmark::State& state)
{
    M<double> const x = symmetric();
    repeat(state, [&] { benchmark::DoNotOptimize(eig(x)); });
}
BENCHMARK(symmetric_values)->Name("eig of symmetric 300, values/arrlib")->Unit(benchmark::kMillisecond);

void symmetric_values_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(symmetric());
    repeat(state, [&] {
        arma::vec const made = arma::eig_sym(x);
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(symmetric_values_arma)->Name("eig of symmetric 300, values/Armadillo")->Unit(benchmark::kMillisecond);

void symmetric_vectors(benchmark::State& state)
{
    M<double> const x = symmetric();
    repeat(state, [&] {
        M<double> V, D;
        eig(x, i_o, V, D);
        benchmark::DoNotOptimize(V);
    });
}
BENCHMARK(symmetric_vectors)->Name("eig of symmetric 300, vectors/arrlib")->Unit(benchmark::kMillisecond);

void symmetric_vectors_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(symmetric());
    repeat(state, [&] {
        arma::mat V;
        arma::vec d;
        arma::eig_sym(d, V, x);
        benchmark::DoNotOptimize(V.memptr());
    });
}
BENCHMARK(symmetric_vectors_arma)->Name("eig of symmetric 300, vectors/Armadillo")->Unit(benchmark::kMillisecond);

void exponential(benchmark::State& state)
{
    M<double> const x = general();
    repeat(state, [&] { benchmark::DoNotOptimize(expm(x)); });
}
BENCHMARK(exponential)->Name("expm of 300/arrlib")->Unit(benchmark::kMillisecond);

void exponential_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(general());
    repeat(state, [&] {
        arma::mat const made = arma::expmat(x);
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(exponential_arma)->Name("expm of 300/Armadillo")->Unit(benchmark::kMillisecond);

void products(benchmark::State& state)
{
    M<double> const x = rows::uniform(1, 10000);
    repeat(state, [&] { benchmark::DoNotOptimize(conv(x, x)); });
}
BENCHMARK(products)->Name("conv of 1e4 and 1e4/arrlib")->Unit(benchmark::kMillisecond);

void products_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(rows::uniform(10000, 1));
    arma::vec const v = x.col(0);
    repeat(state, [&] {
        arma::vec const made = arma::conv(v, v);
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(products_arma)->Name("conv of 1e4 and 1e4/Armadillo")->Unit(benchmark::kMillisecond);

void polynomial_values(benchmark::State& state)
{
    M<double> const x = rows::uniform(1000, 1000), p = rows::uniform(1, 11);
    repeat(state, [&] { benchmark::DoNotOptimize(polyval(p, x)); });
}
BENCHMARK(polynomial_values)->Name("polyval of degree 10, 1e6/arrlib")->Unit(benchmark::kMillisecond);

void polynomial_values_arma(benchmark::State& state)
{
    arma::mat const x = as_arma(rows::uniform(1000, 1000));
    arma::vec const v = arma::vectorise(x), p = as_arma(rows::uniform(11, 1)).col(0);
    repeat(state, [&] {
        arma::vec const made = arma::polyval(p, v);
        benchmark::DoNotOptimize(made.memptr());
    });
}
BENCHMARK(polynomial_values_arma)->Name("polyval of degree 10, 1e6/Armadillo")->Unit(benchmark::kMillisecond);

} // namespace
