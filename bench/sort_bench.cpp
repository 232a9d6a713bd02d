// Sorting and sets, beside Armadillo.
#include "rows.h"

#include <armadillo>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

namespace {

constexpr int million = 1000000;

template <class Work> void row(std::string const& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) mutable {
        for (auto _ : state) {
            auto z = work();
            benchmark::DoNotOptimize(&z);
            benchmark::ClobberMemory();
        }
    })->Unit(benchmark::kMillisecond);
}

M<double> whole_numbers(unsigned bound)
{
    std::vector<unsigned> const list = rows::indices(million, bound);
    M<double> x(0, million, 1);
    for (int k = 0; k < million; ++k)
        x.addr()[k] = list[static_cast<std::size_t>(k)];
    return x;
}

M<double> first(M<double> const& x, int count)
{
    M<double> made(0, count, 1);
    std::copy_n(x.addr(), count, made.addr());
    return made;
}

arma::mat shared(M<double> const& x)
{
    return arma::mat(x.addr(), static_cast<arma::uword>(x.rows()), static_cast<arma::uword>(x.cols()));
}

void sorting()
{
    static M<double> const x = rows::uniform(million, 1), square = rows::uniform(1000, 1000), flat = rows::uniform(5, 200000), tall = rows::uniform(200000, 5);
    static M<double> const whole = whole_numbers(1000), sorted = sort(x);
    static arma::vec const ax = shared(x), awhole = shared(whole), asorted = shared(sorted);
    static arma::mat const asquare = shared(square), aflat = shared(flat), atall = shared(tall);
    row("sort, 1e6/arrlib", [] { return sort(x); });
    row("sort, 1e6/Armadillo", [] { return arma::vec(arma::sort(ax)); });
    row("sort with positions, 1e6/arrlib", [] {
        M<double> y, i;
        sort(x, i_o, y, i);
        return i;
    });
    row("sort with positions, 1e6/Armadillo", [] {
        arma::uvec const i = arma::stable_sort_index(ax);
        return arma::vec(ax.elem(i));
    });
    row("sort of whole numbers, 1e6/arrlib", [] { return sort(whole); });
    row("sort of whole numbers, 1e6/Armadillo", [] { return arma::vec(arma::sort(awhole)); });
    row("sort of sorted numbers, 1e6/arrlib", [] { return sort(sorted); });
    row("sort of sorted numbers, 1e6/Armadillo", [] { return arma::vec(arma::sort(asorted)); });
    row("sort columns, 1000x1000/arrlib", [] { return sort(square); });
    row("sort columns, 1000x1000/Armadillo", [] { return arma::mat(arma::sort(asquare)); });
    row("sort columns, 5x200000/arrlib", [] { return sort(flat); });
    row("sort columns, 5x200000/Armadillo", [] { return arma::mat(arma::sort(aflat)); });
    row("sort rows, 200000x5/arrlib", [] { return sort(tall, 2); });
    row("sort rows, 200000x5/Armadillo", [] { return arma::mat(arma::sort(atall, "ascend", 1)); });
    row("sortrows, 200000x5/arrlib", [] { return sortrows(tall); });
}

void sets()
{
    static M<double> const x = rows::uniform(million, 1), whole = whole_numbers(1000), few = whole_numbers(million), many = whole_numbers(2 * million);
    static M<double> const ten = first(few, 10), thousand = first(few, 1000);
    *ten.addr(10) = -1; // one that is nowhere
    static arma::vec const ax = shared(x), awhole = shared(whole);
    row("unique, 1e6 all different/arrlib", [] { return unique(x); });
    row("unique, 1e6 all different/Armadillo", [] { return arma::vec(arma::unique(ax)); });
    row("unique, 1e6 of 1000/arrlib", [] { return unique(whole); });
    row("unique, 1e6 of 1000/Armadillo", [] { return arma::vec(arma::unique(awhole)); });
    row("unique with positions, 1e6/arrlib", [] {
        M<double> b, i, j;
        unique(x, i_o, b, i, j);
        return j;
    });
    row("ismember, 1e6 in 1e6/arrlib", [] { return ismember(few, many); });
    row("ismember, 1e6 in 1000/arrlib", [] { return ismember(few, thousand); });
    row("ismember, 1e6 in 10/arrlib", [] { return ismember(few, ten); });
    row("ismember, 10 in 1e6/arrlib", [] { return ismember(ten, few); });
    row("intersect, 1e6 and 1e6/arrlib", [] { return intersect(few, many); });
}

struct Registered {
    Registered()
    {
        sorting();
        sets();
    }
} const registered;

} // namespace
