// Formatting and scanning of 1e6 numbers, beside plain loops over the C library.
#include "rows.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int count = 1000000;

M<double> whole_numbers()
{
    M<double> x = rows::uniform(count, 1);
    for (int k = 0; k < count; ++k)
        x.addr()[k] = k + 1;
    return x;
}

std::string file_name(char const* name)
{
    return (std::filesystem::temp_directory_path() / name).string();
}

M<double> open(std::string const& name, char const* mode)
{
    return fopen(TM(name.c_str()), TM(mode));
}

// The numbers that are scanned, a line each; made once.
std::string const& numbers_file()
{
    static std::string const name = [] {
        std::string const made = file_name("arrlib_bench_scan.txt");
        M<double> const fid = open(made, "w");
        fprintf(fid, TM("%g\n"), rows::uniform(count, 1));
        fclose(fid);
        return made;
    }();
    return name;
}

void sprintf_d(benchmark::State& state)
{
    M<double> const x = whole_numbers();
    for (auto _ : state)
        benchmark::DoNotOptimize(sprintf(TM("%d,"), x).addr());
}
BENCHMARK(sprintf_d)->Name("sprintf('%d,') of 1e6/arrlib")->Unit(benchmark::kMillisecond);

void sprintf_d_c(benchmark::State& state)
{
    M<double> const x = whole_numbers();
    for (auto _ : state) {
        std::vector<char> text(8 * count);
        char* at = text.data();
        for (int k = 0; k < count; ++k)
            at += std::sprintf(at, "%d,", static_cast<int>(x.addr()[k]));
        benchmark::DoNotOptimize(at);
    }
}
BENCHMARK(sprintf_d_c)->Name("sprintf('%d,') of 1e6/sprintf loop")->Unit(benchmark::kMillisecond);

void fprintf_g(benchmark::State& state)
{
    M<double> const x = rows::uniform(count, 1);
    std::string const name = file_name("arrlib_bench_print.txt");
    for (auto _ : state) {
        M<double> const fid = open(name, "w");
        fprintf(fid, TM("%g\n"), x);
        fclose(fid);
    }
    std::filesystem::remove(name);
}
BENCHMARK(fprintf_g)->Name("fprintf('%g\\n') of 1e6/arrlib")->Unit(benchmark::kMillisecond);

void fprintf_g_c(benchmark::State& state)
{
    M<double> const x = rows::uniform(count, 1);
    std::string const name = file_name("arrlib_bench_print_c.txt");
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "wb");
        for (int k = 0; k < count; ++k)
            std::fprintf(file, "%g\n", x.addr()[k]);
        std::fclose(file);
    }
    std::filesystem::remove(name);
}
BENCHMARK(fprintf_g_c)->Name("fprintf('%g\\n') of 1e6/fprintf loop")->Unit(benchmark::kMillisecond);

void fscanf_g(benchmark::State& state)
{
    std::string const& name = numbers_file();
    for (auto _ : state) {
        M<double> const fid = open(name, "r");
        M<double> const x = fscanf(fid, TM("%g"));
        if (x.size() != count)
            state.SkipWithError("numbers are missing");
        fclose(fid);
    }
}
BENCHMARK(fscanf_g)->Name("fscanf('%g') of 1e6/arrlib")->Unit(benchmark::kMillisecond);

void fscanf_g_c(benchmark::State& state)
{
    std::string const& name = numbers_file();
    std::vector<double> numbers(count);
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "rb");
        for (double& number : numbers)
            if (std::fscanf(file, "%lf", &number) != 1)
                state.SkipWithError("numbers are missing");
        std::fclose(file);
    }
}
BENCHMARK(fscanf_g_c)->Name("fscanf('%g') of 1e6/fscanf loop")->Unit(benchmark::kMillisecond);

// The whole file read first, as no scanf does.
void fscanf_g_strtod(benchmark::State& state)
{
    std::string const& name = numbers_file();
    for (auto _ : state) {
        std::vector<double> numbers(count);
        std::vector<char> text(std::filesystem::file_size(name) + 1);
        std::FILE* const file = std::fopen(name.c_str(), "rb");
        if (std::fread(text.data(), 1, text.size() - 1, file) != text.size() - 1)
            state.SkipWithError("numbers are missing");
        std::fclose(file);
        char* at = text.data();
        for (double& number : numbers)
            number = std::strtod(at, &at);
        benchmark::DoNotOptimize(numbers.data());
    }
}
BENCHMARK(fscanf_g_strtod)->Name("fscanf('%g') of 1e6/strtod loop")->Unit(benchmark::kMillisecond);

} // namespace
