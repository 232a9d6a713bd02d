// Sparse values, beside Armadillo and Eigen.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>
#include <utility>

#if __has_include(<Eigen/SparseCore>)
#include <Eigen/SparseCore>
#define BENCH_EIGEN
#endif

namespace {

constexpr int side = 10000, entries = 1000000;

struct Triplets {
    M<double> i, j, s;

    // The second set has rows and columns exchanged.
    explicit Triplets(bool exchanged = false) : i(0, entries, 1), j(0, entries, 1), s(0, entries, 1)
    {
        rows::Random random;
        for (int k = 0; k < entries; ++k) {
            i.addr()[k] = random.below(side) + 1;
            j.addr()[k] = random.below(side) + 1;
            s.addr()[k] = random.uniform() + 0.1;
        }
        if (exchanged)
            std::swap(i, j);
    }
    M<double> built() const { return sparse(i, j, s, side, side); }
    arma::sp_mat armadillo() const
    {
        arma::umat where(2, entries);
        arma::vec values(entries);
        fill(where, values);
        return arma::sp_mat(true, where, values, side, side);
    }
    void fill(arma::umat& where, arma::vec& values) const
    {
        for (int k = 0; k < entries; ++k) {
            auto const at = static_cast<arma::uword>(k);
            where(0, at) = static_cast<arma::uword>(i.addr()[k] - 1);
            where(1, at) = static_cast<arma::uword>(j.addr()[k] - 1);
            values(at) = s.addr()[k];
        }
    }
#if defined(BENCH_EIGEN)
    std::vector<Eigen::Triplet<double>> eigen_list() const
    {
        std::vector<Eigen::Triplet<double>> list;
        for (int k = 0; k < entries; ++k)
            list.emplace_back(static_cast<int>(i.addr()[k]) - 1, static_cast<int>(j.addr()[k]) - 1, s.addr()[k]);
        return list;
    }
    Eigen::SparseMatrix<double> eigen() const
    {
        auto const list = eigen_list();
        Eigen::SparseMatrix<double> x(side, side);
        x.setFromTriplets(list.begin(), list.end());
        return x;
    }
#endif
};

// 1e5 places, half of them where an entry is.
std::vector<std::pair<int, int>> places(Triplets const& triplets)
{
    rows::Random random;
    std::vector<std::pair<int, int>> list;
    for (int k = 0; k < 100000; ++k) {
        unsigned const entry = random.below(entries);
        int const row = k % 2 ? static_cast<int>(triplets.i.addr()[entry]) : static_cast<int>(random.below(side)) + 1;
        list.emplace_back(row, static_cast<int>(triplets.j.addr()[entry]));
    }
    return list;
}

} // namespace

// --- build ----------------------------------------------------------------------------------------

static void build(benchmark::State& state)
{
    Triplets const triplets;
    for (auto _ : state) {
        M<double> x = triplets.built();
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(build)->Name("sparse from 1e6 triplets, 10000x10000/arrlib")->Unit(benchmark::kMillisecond);

static void build_arma(benchmark::State& state)
{
    Triplets const triplets;
    arma::umat where(2, entries);
    arma::vec values(entries);
    triplets.fill(where, values);
    for (auto _ : state) {
        arma::sp_mat x(true, where, values, side, side);
        benchmark::DoNotOptimize(x.n_nonzero);
    }
}
BENCHMARK(build_arma)->Name("sparse from 1e6 triplets, 10000x10000/Armadillo")->Unit(benchmark::kMillisecond);

// --- single elements ------------------------------------------------------------------------------

static void read_elements(benchmark::State& state)
{
    Triplets const triplets;
    M<double> x = triplets.built();
    auto const list = places(triplets);
    for (auto _ : state)
        for (auto const& [row, col] : list) {
            M<double> y = x(static_cast<double>(row), static_cast<double>(col));
            benchmark::DoNotOptimize(y.addr());
        }
}
BENCHMARK(read_elements)->Name("1e5 reads S(i,j), 1e6 entries/arrlib")->Unit(benchmark::kMillisecond);

// Through references, which is what translated scalar code does.
static void refer_to_elements(benchmark::State& state)
{
    Triplets const triplets;
    M<double> const x = triplets.built();
    auto const list = places(triplets);
    for (auto _ : state)
        for (auto const& [row, col] : list) {
            double y = x.r(row, col);
            benchmark::DoNotOptimize(y);
        }
}
BENCHMARK(refer_to_elements)->Name("1e5 reads S.r(i,j), 1e6 entries/arrlib")->Unit(benchmark::kMillisecond);

static void read_elements_arma(benchmark::State& state)
{
    Triplets const triplets;
    arma::sp_mat const x = triplets.armadillo();
    auto const list = places(triplets);
    for (auto _ : state)
        for (auto const& [row, col] : list) {
            double y = x(static_cast<arma::uword>(row - 1), static_cast<arma::uword>(col - 1));
            benchmark::DoNotOptimize(y);
        }
}
BENCHMARK(read_elements_arma)->Name("1e5 reads S(i,j), 1e6 entries/Armadillo")->Unit(benchmark::kMillisecond);

// --- transpose and merges -------------------------------------------------------------------------

static void transposed(benchmark::State& state)
{
    M<double> const x = Triplets().built();
    for (auto _ : state) {
        M<double> y = transpose(x);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(transposed)->Name("sparse transpose, 1e6 entries/arrlib")->Unit(benchmark::kMillisecond);

static void transposed_arma(benchmark::State& state)
{
    arma::sp_mat const x = Triplets().armadillo();
    for (auto _ : state) {
        arma::sp_mat y = x.st();
        benchmark::DoNotOptimize(y.n_nonzero);
    }
}
BENCHMARK(transposed_arma)->Name("sparse transpose, 1e6 entries/Armadillo")->Unit(benchmark::kMillisecond);

static void merged(benchmark::State& state)
{
    M<double> const x = Triplets().built();
    for (auto _ : state) {
        M<double> y = x + transpose(x);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(merged)->Name("sparse A+A', 1e6 entries/arrlib")->Unit(benchmark::kMillisecond);

static void merged_arma(benchmark::State& state)
{
    arma::sp_mat const x = Triplets().armadillo();
    for (auto _ : state) {
        arma::sp_mat y = x + x.st();
        benchmark::DoNotOptimize(y.n_nonzero);
    }
}
BENCHMARK(merged_arma)->Name("sparse A+A', 1e6 entries/Armadillo")->Unit(benchmark::kMillisecond);

static void beside(benchmark::State& state)
{
    M<double> const a = Triplets().built(), b = Triplets(true).built();
    for (auto _ : state) {
        M<double> y = (BR(a), b);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(beside)->Name("sparse [A B], 1e6 entries each/arrlib")->Unit(benchmark::kMillisecond);

static void beside_arma(benchmark::State& state)
{
    arma::sp_mat const a = Triplets().armadillo(), b = Triplets(true).armadillo();
    for (auto _ : state) {
        arma::sp_mat y = arma::join_rows(a, b);
        benchmark::DoNotOptimize(y.n_nonzero);
    }
}
BENCHMARK(beside_arma)->Name("sparse [A B], 1e6 entries each/Armadillo")->Unit(benchmark::kMillisecond);

static void below(benchmark::State& state)
{
    M<double> const a = Triplets().built(), b = Triplets(true).built();
    for (auto _ : state) {
        M<double> y = (BR(a), semi, b);
        benchmark::DoNotOptimize(y.addr());
    }
}
BENCHMARK(below)->Name("sparse [A;B], 1e6 entries each/arrlib")->Unit(benchmark::kMillisecond);

static void below_arma(benchmark::State& state)
{
    arma::sp_mat const a = Triplets().armadillo(), b = Triplets(true).armadillo();
    for (auto _ : state) {
        arma::sp_mat y = arma::join_cols(a, b);
        benchmark::DoNotOptimize(y.n_nonzero);
    }
}
BENCHMARK(below_arma)->Name("sparse [A;B], 1e6 entries each/Armadillo")->Unit(benchmark::kMillisecond);

#if defined(BENCH_EIGEN)
static void build_eigen(benchmark::State& state)
{
    auto const list = Triplets().eigen_list();
    for (auto _ : state) {
        Eigen::SparseMatrix<double> x(side, side);
        x.setFromTriplets(list.begin(), list.end());
        benchmark::DoNotOptimize(x.valuePtr());
    }
}
BENCHMARK(build_eigen)->Name("sparse from 1e6 triplets, 10000x10000/Eigen")->Unit(benchmark::kMillisecond);

static void read_elements_eigen(benchmark::State& state)
{
    Triplets const triplets;
    Eigen::SparseMatrix<double> const x = triplets.eigen();
    auto const list = places(triplets);
    for (auto _ : state)
        for (auto const& [row, col] : list) {
            double y = x.coeff(row - 1, col - 1);
            benchmark::DoNotOptimize(y);
        }
}
BENCHMARK(read_elements_eigen)->Name("1e5 reads S(i,j), 1e6 entries/Eigen")->Unit(benchmark::kMillisecond);

static void transposed_eigen(benchmark::State& state)
{
    Eigen::SparseMatrix<double> const x = Triplets().eigen();
    for (auto _ : state) {
        Eigen::SparseMatrix<double> y = x.transpose();
        benchmark::DoNotOptimize(y.valuePtr());
    }
}
BENCHMARK(transposed_eigen)->Name("sparse transpose, 1e6 entries/Eigen")->Unit(benchmark::kMillisecond);

static void merged_eigen(benchmark::State& state)
{
    Eigen::SparseMatrix<double> const x = Triplets().eigen();
    for (auto _ : state) {
        Eigen::SparseMatrix<double> y = x + Eigen::SparseMatrix<double>(x.transpose());
        benchmark::DoNotOptimize(y.valuePtr());
    }
}
BENCHMARK(merged_eigen)->Name("sparse A+A', 1e6 entries/Eigen")->Unit(benchmark::kMillisecond);
#endif
