// Calls of extension modules: what loading, counting and finding the entry point cost each time.
#include "rows.h"

#include <benchmark/benchmark.h>

static void call_module(benchmark::State& state)
{
    M<double> x(3.0);
    M<double>* in[] = {&x};
    M<double>* out[64];
    for (auto _ : state) {
        call_mex("half", 1, out, 1, in);
        benchmark::DoNotOptimize(out[0]->addr());
        delete out[0];
    }
}
BENCHMARK(call_module)->Name("call of a module's function, 1x1/arrlib");
