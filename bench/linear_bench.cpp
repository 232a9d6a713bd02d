// Linear algebra, beside Armadillo and Eigen.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

#if __has_include(<Eigen/SparseLU>)
#include <Eigen/Dense>
#include <Eigen/SparseCholesky>
#include <Eigen/SparseCore>
#define BENCH_EIGEN
#endif

namespace {

constexpr int side = 10000, entries = 1000000, grid = 200;

arma::mat armadillo(M<double> const& x)
{
    return arma::mat(x.addr(), static_cast<arma::uword>(x.rows()), static_cast<arma::uword>(x.cols()));
}

// Lists of rows, columns and values, counted from 1.
struct Triplets {
    std::vector<double> i, j, s;

    void add(int row, int col, double value)
    {
        i.push_back(row);
        j.push_back(col);
        s.push_back(value);
    }
    static M<double> column(std::vector<double> const& list)
    {
        M<double> made(0, static_cast<int>(list.size()), 1);
        std::copy(list.begin(), list.end(), made.addr());
        return made;
    }
    M<double> built(int n) const { return sparse(column(i), column(j), column(s), M<double>(n), M<double>(n)); }
    arma::sp_mat armadillo(int n) const
    {
        arma::umat where(2, i.size());
        for (arma::uword k = 0; k < i.size(); ++k) {
            where(0, k) = static_cast<arma::uword>(i[k] - 1);
            where(1, k) = static_cast<arma::uword>(j[k] - 1);
        }
        return arma::sp_mat(true, where, arma::vec(s), static_cast<arma::uword>(n), static_cast<arma::uword>(n));
    }
#if defined(BENCH_EIGEN)
    Eigen::SparseMatrix<double> eigen(int n) const
    {
        std::vector<Eigen::Triplet<double>> list;
        for (std::size_t k = 0; k < i.size(); ++k)
            list.emplace_back(static_cast<int>(i[k]) - 1, static_cast<int>(j[k]) - 1, s[k]);
        Eigen::SparseMatrix<double> made(n, n);
        made.setFromTriplets(list.begin(), list.end());
        return made;
    }
#endif
};

Triplets scattered()
{
    rows::Random random;
    Triplets made;
    for (int k = 0; k < entries; ++k) {
        int const i = static_cast<int>(random.below(side)) + 1, j = static_cast<int>(random.below(side)) + 1;
        made.add(i, j, random.uniform() + 0.1);
    }
    return made;
}

// With `tilt` not symmetric.
Triplets laplacian(double tilt = 0)
{
    Triplets made;
    for (int j = 1; j <= grid; ++j)
        for (int i = 1; i <= grid; ++i) {
            int const k = (j - 1) * grid + i;
            made.add(k, k, 4);
            if (i > 1)
                made.add(k, k - 1, -1 - tilt);
            if (i < grid)
                made.add(k, k + 1, -1 + tilt);
            if (j > 1)
                made.add(k, k - grid, -1);
            if (j < grid)
                made.add(k, k + grid, -1);
        }
    return made;
}

void keep(M<double> const& x)
{
    benchmark::DoNotOptimize(x.addr());
}

} // namespace

// --- full matrices --------------------------------------------------------------------------------

static void solve(benchmark::State& state)
{
    M<double> const a = rows::uniform(1000, 1000), b = rows::uniform(1000, 1);
    for (auto _ : state)
        keep(mldivide(a, b));
}
BENCHMARK(solve)->Name("A\\b, 1000x1000/arrlib")->Unit(benchmark::kMillisecond);

static void solve_arma(benchmark::State& state)
{
    arma::mat const a = armadillo(rows::uniform(1000, 1000)), b = armadillo(rows::uniform(1000, 1));
    for (auto _ : state) {
        arma::mat x = arma::solve(a, b);
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(solve_arma)->Name("A\\b, 1000x1000/Armadillo")->Unit(benchmark::kMillisecond);

static void inverse(benchmark::State& state)
{
    M<double> const a = rows::uniform(500, 500);
    for (auto _ : state)
        keep(inv(a));
}
BENCHMARK(inverse)->Name("inv, 500x500/arrlib")->Unit(benchmark::kMillisecond);

static void inverse_arma(benchmark::State& state)
{
    arma::mat const a = armadillo(rows::uniform(500, 500));
    for (auto _ : state) {
        arma::mat x = arma::inv(a);
        benchmark::DoNotOptimize(x.memptr());
    }
}
BENCHMARK(inverse_arma)->Name("inv, 500x500/Armadillo")->Unit(benchmark::kMillisecond);

static void small_products(benchmark::State& state)
{
    M<double> const a = rows::uniform(3, 3), b = rows::uniform(3, 3);
    for (auto _ : state) {
        M<double> s = a;
        for (int k = 0; k < 100000; ++k)
            s = s + a * b;
        keep(s);
    }
}
BENCHMARK(small_products)->Name("s=s+a*b, 3x3, 1e5 times/arrlib")->Unit(benchmark::kMillisecond);

static void small_products_arma(benchmark::State& state)
{
    arma::mat const a = armadillo(rows::uniform(3, 3)), b = armadillo(rows::uniform(3, 3));
    for (auto _ : state) {
        arma::mat s = a;
        for (int k = 0; k < 100000; ++k)
            s = s + a * b;
        benchmark::DoNotOptimize(s.memptr());
    }
}
BENCHMARK(small_products_arma)->Name("s=s+a*b, 3x3, 1e5 times/Armadillo")->Unit(benchmark::kMillisecond);

// --- sparse matrices ------------------------------------------------------------------------------

static void sparse_product(benchmark::State& state)
{
    M<double> const a = scattered().built(side), x = rows::uniform(side, 1);
    for (auto _ : state)
        keep(a * x);
}
BENCHMARK(sparse_product)->Name("sparse times vector, 1e6 entries/arrlib")->Unit(benchmark::kMillisecond);

static void sparse_product_arma(benchmark::State& state)
{
    arma::sp_mat const a = scattered().armadillo(side);
    arma::mat const x = armadillo(rows::uniform(side, 1));
    for (auto _ : state) {
        arma::mat y = a * x;
        benchmark::DoNotOptimize(y.memptr());
    }
}
BENCHMARK(sparse_product_arma)->Name("sparse times vector, 1e6 entries/Armadillo")->Unit(benchmark::kMillisecond);

static void solve_sparse(benchmark::State& state, double tilt)
{
    M<double> const a = laplacian(tilt).built(grid * grid), b = rows::uniform(grid * grid, 1);
    for (auto _ : state)
        keep(mldivide(a, b));
}
BENCHMARK_CAPTURE(solve_sparse, symmetric, 0)->Name("sparse A\\b, Laplacian of 200x200/arrlib")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(solve_sparse, tilted, 0.1)->Name("sparse A\\b, not symmetric, of 200x200/arrlib")->Unit(benchmark::kMillisecond);

#if defined(BENCH_EIGEN)
using Map = Eigen::Map<Eigen::MatrixXd const>;

static void solve_eigen(benchmark::State& state)
{
    M<double> const a = rows::uniform(1000, 1000), b = rows::uniform(1000, 1);
    Map const matrix(a.addr(), 1000, 1000), sides(b.addr(), 1000, 1);
    for (auto _ : state) {
        Eigen::MatrixXd x = matrix.partialPivLu().solve(sides);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(solve_eigen)->Name("A\\b, 1000x1000/Eigen")->Unit(benchmark::kMillisecond);

static void inverse_eigen(benchmark::State& state)
{
    M<double> const a = rows::uniform(500, 500);
    Map const matrix(a.addr(), 500, 500);
    for (auto _ : state) {
        Eigen::MatrixXd x = matrix.inverse();
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(inverse_eigen)->Name("inv, 500x500/Eigen")->Unit(benchmark::kMillisecond);

static void sparse_product_eigen(benchmark::State& state)
{
    Eigen::SparseMatrix<double> const a = scattered().eigen(side);
    M<double> const x = rows::uniform(side, 1);
    Map const vector(x.addr(), side, 1);
    for (auto _ : state) {
        Eigen::MatrixXd y = a * vector;
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(sparse_product_eigen)->Name("sparse times vector, 1e6 entries/Eigen")->Unit(benchmark::kMillisecond);

static void solve_sparse_eigen(benchmark::State& state)
{
    Eigen::SparseMatrix<double> const a = laplacian().eigen(grid * grid);
    M<double> const b = rows::uniform(grid * grid, 1);
    Map const sides(b.addr(), grid * grid, 1);
    for (auto _ : state) {
        Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> const factors(a);
        Eigen::MatrixXd x = factors.solve(sides);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(solve_sparse_eigen)->Name("sparse A\\b, Laplacian of 200x200/Eigen")->Unit(benchmark::kMillisecond);
#endif
