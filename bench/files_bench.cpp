// Binary files of 1e7 doubles and files of lines, beside plain loops over the C library.
#include "rows.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

static constexpr int count = 10000000;

static std::string temporary(char const* name)
{
    return (std::filesystem::temp_directory_path() / name).string();
}

// The file that the NumPy rows read too, made once.
static std::string const& numbers_file()
{
    static std::string const name = [] {
        std::string const path = temporary("arrlib_bench_doubles.bin");
        if (!std::filesystem::exists(path)) {
            M<double> const fid = fopen(TM(path.c_str()), TM("w"));
            fwrite(fid, rows::uniform(count, 1), TM("double"));
            fclose(fid);
        }
        return path;
    }();
    return name;
}

static M<double> const& numbers()
{
    static M<double> const made = rows::uniform(count, 1);
    return made;
}

static void read_numbers(benchmark::State& state, char const* format)
{
    M<double> const fid = fopen(TM(numbers_file().c_str()), TM("r"));
    M<double> const precision = TM("double"), order = TM(format);
    for (auto _ : state) {
        frewind(fid);
        M<double> const x = fread(fid, Inf, precision, zero_M, order);
        benchmark::DoNotOptimize(x.addr());
    }
    fclose(fid);
}
BENCHMARK_CAPTURE(read_numbers, native, "native")->Name("fread of 1e7 doubles/arrlib")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_numbers, swapped, "ieee-be")->Name("fread of 1e7 big-endian doubles/arrlib")->Unit(benchmark::kMillisecond);

// With memory of its own each time, as a result has.
static void read_numbers_plain(benchmark::State& state)
{
    std::FILE* const file = std::fopen(numbers_file().c_str(), "rb");
    for (auto _ : state) {
        std::rewind(file);
        std::unique_ptr<double[]> const x(new double[count]);
        benchmark::DoNotOptimize(std::fread(x.get(), sizeof(double), count, file));
        benchmark::DoNotOptimize(x.get());
    }
    std::fclose(file);
}
BENCHMARK(read_numbers_plain)->Name("fread of 1e7 doubles/plain fread")->Unit(benchmark::kMillisecond);
BENCHMARK(read_numbers_plain)->Name("fread of 1e7 big-endian doubles/plain fread")->Unit(benchmark::kMillisecond);

// The same memory every time.
static void read_numbers_reused(benchmark::State& state)
{
    std::FILE* const file = std::fopen(numbers_file().c_str(), "rb");
    std::unique_ptr<double[]> const x(new double[count]);
    for (auto _ : state) {
        std::rewind(file);
        benchmark::DoNotOptimize(std::fread(x.get(), sizeof(double), count, file));
    }
    std::fclose(file);
}
BENCHMARK(read_numbers_reused)->Name("fread of 1e7 doubles/plain fread, reused memory")->Unit(benchmark::kMillisecond);

static void write_numbers(benchmark::State& state, char const* format)
{
    std::string const path = temporary("arrlib_bench_written.bin");
    M<double> const fid = fopen(TM(path.c_str()), TM("w"));
    M<double> const precision = TM("double"), order = TM(format);
    M<double> const& x = numbers();
    for (auto _ : state) {
        frewind(fid);
        fwrite(fid, x, precision, zero_M, order);
        fflush(fid);
    }
    fclose(fid);
    std::filesystem::remove(path);
}
BENCHMARK_CAPTURE(write_numbers, native, "native")->Name("fwrite of 1e7 doubles/arrlib")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_numbers, swapped, "ieee-be")->Name("fwrite of 1e7 big-endian doubles/arrlib")->Unit(benchmark::kMillisecond);

static void write_numbers_plain(benchmark::State& state)
{
    std::string const path = temporary("arrlib_bench_written.bin");
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    double const* const x = numbers().addr();
    for (auto _ : state) {
        std::rewind(file);
        benchmark::DoNotOptimize(std::fwrite(x, sizeof(double), count, file));
        std::fflush(file);
    }
    std::fclose(file);
    std::filesystem::remove(path);
}
BENCHMARK(write_numbers_plain)->Name("fwrite of 1e7 doubles/plain fwrite")->Unit(benchmark::kMillisecond);
BENCHMARK(write_numbers_plain)->Name("fwrite of 1e7 big-endian doubles/plain fwrite")->Unit(benchmark::kMillisecond);

static void read_shorts(benchmark::State& state)
{
    M<double> const fid = fopen(TM(numbers_file().c_str()), TM("r"));
    M<double> const precision = TM("int16"), order = TM("ieee-be"), size = count;
    for (auto _ : state) {
        frewind(fid);
        M<double> const x = fread(fid, size, precision, zero_M, order);
        benchmark::DoNotOptimize(x.addr());
    }
    fclose(fid);
}
BENCHMARK(read_shorts)->Name("fread of 1e7 big-endian int16/arrlib")->Unit(benchmark::kMillisecond);

// --- lines ------------------------------------------------------------------------------------------

static std::string const& lines_file()
{
    static std::string const name = [] {
        std::string const path = temporary("arrlib_bench_lines.txt");
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        for (int k = 0; k < 100000; ++k)
            std::fprintf(file, "line %d of a text file, of middling length\n", k);
        std::fclose(file);
        return path;
    }();
    return name;
}

static void read_lines(benchmark::State& state)
{
    M<double> const fid = fopen(TM(lines_file().c_str()), TM("r"));
    for (auto _ : state) {
        frewind(fid);
        for (M<double> line = fgetl(fid); line.isstr(); line = fgetl(fid))
            benchmark::DoNotOptimize(line.addr());
    }
    fclose(fid);
}
BENCHMARK(read_lines)->Name("fgetl of 1e5 lines/arrlib")->Unit(benchmark::kMillisecond);

static void read_lines_plain(benchmark::State& state)
{
    std::FILE* const file = std::fopen(lines_file().c_str(), "rb");
    for (auto _ : state) {
        std::rewind(file);
        char line[1024];
        while (std::fgets(line, sizeof line, file)) {
            std::string const text(line);
            std::unique_ptr<double[]> const codes(new double[text.size()]);
            std::copy(text.begin(), text.end(), codes.get());
            benchmark::DoNotOptimize(codes.get());
        }
    }
    std::fclose(file);
}
BENCHMARK(read_lines_plain)->Name("fgetl of 1e5 lines/plain fgets")->Unit(benchmark::kMillisecond);
