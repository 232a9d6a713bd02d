// Data files of one matrix of 96 MB, beside plain C, and text files of 1e6 numbers. A save ends when the
// file is on the disk: the row without that, and without the renaming, is for comparison. Files lie in
// the temporary folder; TMPDIR names another one.
#include "rows.h"

#include "io/data_file.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#if !defined(_WIN32)
#include <unistd.h>
#endif

static constexpr int matrix_rows = 4000, matrix_cols = 3000;
static constexpr std::size_t elements = std::size_t{matrix_rows} * matrix_cols;

static std::string temporary(char const* name)
{
    return (std::filesystem::temp_directory_path() / name).string();
}

static M<double> const& matrix()
{
    static M<double> const made = rows::uniform(matrix_rows, matrix_cols);
    return made;
}

// The file that the SciPy row reads too, made once.
static std::string const& data_file()
{
    static std::string const name = [] {
        std::string const path = temporary("arrlib_bench_data.mat");
        if (!std::filesystem::exists(path))
            save(TM(path.c_str()), matrix());
        return path;
    }();
    return name;
}

static void save_level5(benchmark::State& state)
{
    M<double> const name = TM(temporary("arrlib_bench_saved.mat").c_str()), x = matrix();
    for (auto _ : state)
        save(name, x);
}
BENCHMARK(save_level5)->Name("data file: save 96 MB/arrlib")->Unit(benchmark::kMillisecond);

static void save_level4(benchmark::State& state)
{
    M<double> const name = TM(temporary("arrlib_bench_saved.mat").c_str()), x = matrix();
    for (auto _ : state)
        saveV4(name, x);
}
BENCHMARK(save_level4)->Name("data file: save 96 MB in level 4/arrlib")->Unit(benchmark::kMillisecond);

// With a new file each time, as a save has.
static void write_plain(benchmark::State& state, bool flushed)
{
    std::string const name = temporary("arrlib_bench_plain.bin");
    M<double> const x = matrix();
    for (auto _ : state) {
        std::remove(name.c_str());
        std::FILE* const file = std::fopen(name.c_str(), "wb");
        if (std::fwrite(x.addr(), sizeof(double), elements, file) != elements)
            state.SkipWithError("the disk is full");
        std::fflush(file);
#if !defined(_WIN32)
        if (flushed)
            fsync(fileno(file));
#endif
        std::fclose(file);
    }
    std::remove(name.c_str());
}
BENCHMARK_CAPTURE(write_plain, flushed, true)->Name("data file: save 96 MB/C with flush")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_plain, unflushed, false)->Name("data file: write 96 MB without flush/C")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_plain, level4, true)->Name("data file: save 96 MB in level 4/C with flush")->Unit(benchmark::kMillisecond);

static void load_level5(benchmark::State& state)
{
    M<double> const name = TM(data_file().c_str());
    for (auto _ : state) {
        M<double> x;
        load(name, x);
        benchmark::DoNotOptimize(x.addr());
    }
}
BENCHMARK(load_level5)->Name("data file: load 96 MB/arrlib")->Unit(benchmark::kMillisecond);

// With memory of its own each time, as a result has.
static void read_plain(benchmark::State& state)
{
    for (auto _ : state) {
        std::FILE* const file = std::fopen(data_file().c_str(), "rb");
        std::unique_ptr<double[]> const x(new double[elements]);
        std::fseek(file, 192, SEEK_SET);
        benchmark::DoNotOptimize(std::fread(x.get(), sizeof(double), elements, file));
        std::fclose(file);
    }
}
BENCHMARK(read_plain)->Name("data file: load 96 MB/C")->Unit(benchmark::kMillisecond);

static void save_text(benchmark::State& state)
{
    M<double> const name = TM(temporary("arrlib_bench_saved.txt").c_str()), x = rows::uniform(100000, 10);
    for (auto _ : state)
        saveascii(name, x);
}
BENCHMARK(save_text)->Name("save a text file of 1e6 numbers/arrlib")->Unit(benchmark::kMillisecond);

static void save_text_plain(benchmark::State& state)
{
    std::string const name = temporary("arrlib_bench_plain.txt");
    M<double> const x = rows::uniform(100000, 10);
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "wb");
        for (int row = 0; row < 100000; ++row) {
            for (int col = 0; col < 10; ++col)
                std::fprintf(file, "%23.13g", x.addr()[col * 100000 + row]);
            std::fputc('\n', file);
        }
        std::fclose(file);
    }
    std::remove(name.c_str());
}
BENCHMARK(save_text_plain)->Name("save a text file of 1e6 numbers/fprintf loop")->Unit(benchmark::kMillisecond);
