// Cell arrays of short strings, beside vectors of strings.
#include "rows.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>
#include <unistd.h>

constexpr int count = 100000;

static M<M<double>> table()
{
    M<double> const text = TM("abcde");
    M<M<double>> cells = cell(M<double>(1.0), M<double>(count));
    for (int k = 0; k < count; ++k) {
        M<double> letters(text);
        letters.r(1) = 'a' + k % 26;
        cells.addr()[k] = letters;
    }
    return cells;
}

static std::vector<std::string> strings()
{
    std::vector<std::string> list(count);
    for (int k = 0; k < count; ++k) {
        list[static_cast<std::size_t>(k)] = "abcde";
        list[static_cast<std::size_t>(k)][0] = static_cast<char>('a' + k % 26);
    }
    return list;
}

// Bytes that the process has in memory.
static double resident()
{
    long total = 0, here = 0;
    if (FILE* const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &total, &here) != 2)
            here = 0;
        std::fclose(file);
    }
    return static_cast<double>(here) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// Of the first table, which no memory given back by others can serve. It ends here: the pool has
// room for one table only.
static double measured()
{
    double const before = resident();
    M<M<double>> const first = table();
    return (resident() - before) / count;
}

static void build(benchmark::State& state)
{
    static double const bytes_per_cell = measured();
    state.counters["bytes_per_cell"] = bytes_per_cell;
    for (auto _ : state) {
        M<M<double>> cells = table();
        benchmark::DoNotOptimize(cells.addr());
    }
}
BENCHMARK(build)->Name("build 1e5 cells of 5 characters/arrlib")->Unit(benchmark::kMicrosecond);

static void build_strings(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<std::string> list = strings();
        benchmark::DoNotOptimize(list.data());
    }
}
BENCHMARK(build_strings)->Name("build 1e5 cells of 5 characters/std::string")->Unit(benchmark::kMicrosecond);

// c{k} = t, each beyond the end.
template <int cells_wanted> static void grow(benchmark::State& state)
{
    M<double> const text = TM("abcde");
    for (auto _ : state) {
        M<M<double>> cells;
        M<double> index(1.0);
        for (int k = 1; k <= cells_wanted; ++k) {
            *index.addr() = k;
            cells.br(index) = text;
        }
        benchmark::DoNotOptimize(cells.addr());
    }
}
// Ten times as many are to take ten times as long.
BENCHMARK(grow<100000>)->Name("append 1e5 cells one by one/arrlib")->Unit(benchmark::kMicrosecond);
BENCHMARK(grow<10000>)->Name("append 1e4 cells one by one/arrlib")->Unit(benchmark::kMicrosecond);

static void copy(benchmark::State& state)
{
    M<M<double>> const cells = table();
    for (auto _ : state) {
        M<M<double>> same(cells);
        benchmark::DoNotOptimize(same.addr());
    }
}
BENCHMARK(copy)->Name("copy 1e5 cells/arrlib");

static void change_one(benchmark::State& state)
{
    M<M<double>> const cells = table();
    M<double> const index(77.0), text = TM("other");
    for (auto _ : state) {
        M<M<double>> changed(cells);
        changed.br(index) = text;
        benchmark::DoNotOptimize(changed.addr());
    }
}
BENCHMARK(change_one)->Name("copy 1e5 cells, change one/arrlib")->Unit(benchmark::kMicrosecond);

static void change_one_string(benchmark::State& state)
{
    std::vector<std::string> const list = strings();
    for (auto _ : state) {
        std::vector<std::string> changed(list);
        changed[76] = "other";
        benchmark::DoNotOptimize(changed.data());
    }
}
BENCHMARK(change_one_string)->Name("copy 1e5 cells, change one/std::string")->Unit(benchmark::kMicrosecond);

static void change_one_in_place(benchmark::State& state)
{
    M<M<double>> cells = table();
    M<double> const index(77.0), text = TM("other");
    for (auto _ : state) {
        cells.br(index) = text;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(change_one_in_place)->Name("c{k}=t among 1e5 cells/arrlib");
