// Special functions of 1e5 elements; the peer is SciPy (bench/peers.py).
#include "rows.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int count = 100000;

template <class Work> void row(std::string const& name, Work work)
{
    benchmark::RegisterBenchmark((name + ", 1e5/arrlib").c_str(), [work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(work());
    })->Unit(benchmark::kMillisecond);
}

struct Registered {
    Registered()
    {
        static M<double> const u = rows::uniform(1, count), x = 50 * u, nu = 10 * dot_mul(u, u), z = dot_mul(x, exp(dot_mul(3 * i, rows::uniform(1, count))));
        row("besselj of order 0", [] { return besselj(zero_M, x); });
        row("besselj of real order", [] { return besselj(nu, x); });
        row("besselk of order 2.5", [] { return besselk(2.5, x); });
        row("besselj of complex", [] { return besselj(nu, z); });
        row("besselh of complex", [] { return besselh(nu, z); });
        row("besselj of complex, large order", [] { return besselj(100 * nu, 10 * z); });
        row("airy of real", [] { return airy(x - 25); });
        row("airy of complex", [] { return airy(z); });
        row("expint of real", [] { return expint(x); });
        row("expint of complex", [] { return expint(z); });
        row("ellipj", [] { return ellipj(x, u); });
        row("betainc", [] { return betainc(u, nu + 0.1, dot_div(x, 3) + 0.1); });
        row("betaln", [] { return betaln(x + 0.1, nu + 0.1); });
    }
} const registered;

} // namespace
