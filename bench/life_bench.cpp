// The game of life of examples/life, without what it prints.
#include <arrlib.h>

#include <benchmark/benchmark.h>

static double life(double generations)
{
    M<double> const n(200.0);
    M<double> col, row, thirds, near;
    meshgrid(colon(1.0, n), i_o, col, row);
    M<double> alive = mod(times(power(row, 2.0), col) + 7.0 * power(col, 3.0), 1009.0) < 350.0;
    M<double> const before = (BR(n), colon(1.0, n - 1.0)), after = (BR(colon(2.0, n)), one_M);
    for (double generation = 1; generation <= generations; ++generation) {
        thirds = M<double>(alive(before, c_p)) + alive + M<double>(alive(after, c_p));
        near = M<double>(thirds(c_p, before)) + thirds + M<double>(thirds(c_p, after));
        alive = near == 3.0 || (alive & (near == 4.0));
    }
    return sum(sum(alive))[1];
}

static void generations(benchmark::State& state)
{
    for (auto _ : state) {
        double population = life(500);
        benchmark::DoNotOptimize(population);
        if (population != 1828)
            state.SkipWithError("wrong population");
    }
}
BENCHMARK(generations)->Name("life, 200x200, 500 generations/arrlib")->Unit(benchmark::kMillisecond);
