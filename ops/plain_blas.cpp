// Plain loops, for systems without a library. Four columns are worked on at a time: what is read of
// one operand serves four of the other.
#include "ops/blas.h"

#include <algorithm>
#include <cstddef>

namespace arrlib {

namespace {

// A block of the left operand stays in the cache while all columns of the right one pass by.
constexpr int block_rows = 128, block_depth = 64;

template <class P> auto* column(P const& panel, int j, int row = 0)
{
    return panel.at + static_cast<std::ptrdiff_t>(panel.stride) * j + row;
}

// y += alpha a x.
void add_columns(int m, int n, double alpha, ConstantPanel a, double const* x, double* __restrict__ y)
{
    int j = 0;
    for (; j + 4 <= n; j += 4) {
        double const *const a0 = column(a, j), *const a1 = column(a, j + 1), *const a2 = column(a, j + 2), *const a3 = column(a, j + 3);
        double const x0 = alpha * x[j], x1 = alpha * x[j + 1], x2 = alpha * x[j + 2], x3 = alpha * x[j + 3];
        for (int i = 0; i < m; ++i)
            y[i] += (a0[i] * x0 + a1[i] * x1) + (a2[i] * x2 + a3[i] * x3);
    }
    for (; j < n; ++j) {
        double const* const a0 = column(a, j);
        double const x0 = alpha * x[j];
        for (int i = 0; i < m; ++i)
            y[i] += a0[i] * x0;
    }
}

void gemm(int, int m, int n, int k, double alpha, ConstantPanel a, ConstantPanel b, bool onto, Panel c)
{
    if (!onto)
        for (int j = 0; j < n; ++j)
            std::fill_n(column(c, j), m, 0.0);
    for (int p = 0; p < k; p += block_depth)
        for (int i = 0; i < m; i += block_rows) {
            int const rows = std::min(block_rows, m - i), depth = std::min(block_depth, k - p);
            for (int j = 0; j < n; ++j)
                add_columns(rows, depth, alpha, {column(a, p, i), a.stride}, column(b, j, p), column(c, j, i));
        }
}

void gemv(int m, int n, double alpha, ConstantPanel a, double const* x, double* y)
{
    gemm(1, m, 1, n, alpha, a, {x, n}, true, {y, m});
}

double dot(int n, double const* x, double const* y)
{
    double sum[4] = {0, 0, 0, 0};
    int k = 0;
    for (; k + 4 <= n; k += 4)
        for (int s = 0; s < 4; ++s)
            sum[s] += x[k + s] * y[k + s];
    for (; k < n; ++k)
        sum[0] += x[k] * y[k];
    return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

void gemv_transposed(int m, int n, double alpha, ConstantPanel a, double const* x, double* y)
{
    for (int j = 0; j < n; ++j)
        y[j] += alpha * dot(m, column(a, j), x);
}

} // namespace

constinit Blas const plain_blas{gemm, gemv, gemv_transposed, dot};

} // namespace arrlib
