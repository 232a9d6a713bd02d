// Inputs that our rows and the peers' share: the same numbers for everybody, from one generator.
#ifndef ARRLIB_BENCH_ROWS_H
#define ARRLIB_BENCH_ROWS_H

#include <arrlib.h>

#include <cstdint>
#include <vector>

// A class, because the library has a function of this name.
struct rows {

// A small multiplicative generator, so that runs repeat.
class Random {
public:
    // Uniform in [0, bound).
    unsigned below(unsigned bound)
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<unsigned>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(state_ >> 32)) * bound) >> 32);
    }
    double uniform() { return below(1u << 30) / static_cast<double>(1u << 30); }

private:
    std::uint64_t state_ = 88172645463325252u;
};

static M<double> uniform(int r, int c)
{
    Random random;
    M<double> x(0, r, c);
    for (int k = 0; k < r * c; ++k)
        x.addr()[k] = random.uniform();
    return x;
}

// n random 1-based indices up to `bound`.
static std::vector<unsigned> indices(int n, unsigned bound)
{
    Random random;
    std::vector<unsigned> list(static_cast<std::size_t>(n));
    for (unsigned& index : list)
        index = random.below(bound) + 1;
    return list;
}

static M<double> index_matrix(std::vector<unsigned> const& list)
{
    M<double> x(0, 1, static_cast<int>(list.size()));
    for (std::size_t k = 0; k < list.size(); ++k)
        x.addr()[k] = list[k];
    return x;
}

};

#endif
