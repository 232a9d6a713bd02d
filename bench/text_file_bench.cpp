// Reading a text file of 1e6 numbers, beside a plain loop over the C library.
#include "rows.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// The file that the NumPy row reads too, made once.
static std::string data_file()
{
    std::string const name = (std::filesystem::temp_directory_path() / "arrlib_bench_numbers.txt").string();
    if (!std::filesystem::exists(name))
        saveascii(TM(name.c_str()), rows::uniform(100000, 10));
    return name;
}

static void load(benchmark::State& state)
{
    std::string const name = data_file();
    for (auto _ : state) {
        M<double> x;
        loadascii(TM(name.c_str()), x);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(load)->Name("load a text file of 1e6 numbers/arrlib")->Unit(benchmark::kMillisecond);

static void load_strtod(benchmark::State& state)
{
    std::string const name = data_file();
    for (auto _ : state) {
        std::ifstream file(name, std::ios::binary);
        std::string const text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::vector<double> numbers;
        numbers.reserve(1000000);
        char const* at = text.c_str();
        for (char* end; ; at = end) {
            double const number = std::strtod(at, &end);
            if (end == at)
                break;
            numbers.push_back(number);
        }
        benchmark::DoNotOptimize(numbers.data());
    }
}
BENCHMARK(load_strtod)->Name("load a text file of 1e6 numbers/strtod loop")->Unit(benchmark::kMillisecond);

static void save(benchmark::State& state)
{
    std::string const name = data_file() + ".copy";
    M<double> const x = rows::uniform(100000, 10);
    for (auto _ : state)
        saveascii(TM(name.c_str()), x);
    std::filesystem::remove(name);
}
BENCHMARK(save)->Name("save a text file of 1e6 numbers/arrlib")->Unit(benchmark::kMillisecond);
