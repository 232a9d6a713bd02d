// What the tests of linear algebra share: matrices to try and the size of what is left over.
#ifndef ARRLIB_TESTS_SUPPORT_LINEAR_H
#define ARRLIB_TESTS_SUPPORT_LINEAR_H

#include "core/reshape.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "ops/operators.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/values.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace linear {

inline constexpr double unit = 2.220446049250313e-16;

// Normal elements; the same in every run.
inline M<double> random(int rows, int cols, bool complex = false)
{
    static std::mt19937 generator(7);
    std::normal_distribution<double> normal;
    M<double> made(complex, rows, cols);
    for (int k = 0; k < rows * cols; ++k) {
        made.addr()[k] = normal(generator);
        if (complex)
            made.addi()[k] = normal(generator);
    }
    return made;
}
// About `share` of the elements, and for square ones the diagonal.
inline M<double> random_sparse(int rows, int cols, double share, bool complex = false)
{
    static std::mt19937 generator(8);
    std::bernoulli_distribution kept(share);
    M<double> made = random(rows, cols, complex);
    for (int k = 0; k < rows * cols; ++k)
        if (!kept(generator) && !(rows == cols && k % (rows + 1) == 0)) {
            made.addr()[k] = 0;
            if (complex)
                made.addi()[k] = 0;
        }
    return sparse(made);
}
// i and j count from 1.
template <class Element> M<double> made_of(int rows, int cols, Element element)
{
    M<double> made(0, rows, cols);
    for (int j = 1; j <= cols; ++j)
        for (int i = 1; i <= rows; ++i)
            *made.addr(i, j) = element(i, j);
    return made;
}

inline M<double> cube(int rows, int cols, int pages)
{
    return ones(M<double>(rows), M<double>(cols), M<double>(pages));
}
inline M<double> hilbert(int n)
{
    return made_of(n, n, [](int i, int j) { return 1.0 / (i + j - 1); });
}
inline M<double> frank(int n)
{
    return made_of(n, n, [=](int i, int j) { return j < i - 1 ? 0.0 : j == i - 1 ? n - j : n + 1 - std::max(i, j); });
}
// Grows by 2^(n-1) in the elimination.
inline M<double> wilkinson_growth(int n)
{
    return made_of(n, n, [=](int i, int j) { return j == n || i == j ? 1.0 : i > j ? -1.0 : 0.0; });
}
inline M<double> vandermonde(int n)
{
    return made_of(n, n, [=](int i, int j) { return std::pow(i / static_cast<double>(n), n - j); });
}
// Rows and columns of sizes from 1e-150 to 1e150.
inline M<double> graded(int n)
{
    M<double> made = random(n, n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            made.addr()[i + j * n] *= std::pow(10.0, -150 + 300.0 * i / (n - 1));
    return made;
}
// Of a grid of side x side points with five-point differences.
inline M<double> laplacian(int side)
{
    int const n = side * side;
    values::Numbers row, col, value;
    auto const add = [&](int i, int j, double x) {
        row.push_back(i + 1);
        col.push_back(j + 1);
        value.push_back(x);
    };
    for (int k = 0; k < n; ++k) {
        add(k, k, 4);
        if (k % side > 0) {
            add(k, k - 1, -1);
            add(k - 1, k, -1);
        }
        if (k >= side) {
            add(k, k - side, -1);
            add(k - side, k, -1);
        }
    }
    return sparse(values::column(row), values::column(col), values::column(value), M<double>(n), M<double>(n));
}

// The largest modulus; NaN counts as infinite.
inline double largest(M<double> const& x)
{
    double found = 0;
    for (int k = 0; k < x.getnnz(); ++k) {
        double const modulus = std::hypot(x.addr()[k], x.isc() ? x.addi()[k] : 0);
        found = std::isnan(modulus) ? HUGE_VAL : std::max(found, modulus);
    }
    return found;
}
// The largest element of the difference, in units of n*eps times `scale`.
inline double distance(M<double> const& x, M<double> const& y, double scale = 1)
{
    if (x.rows() != y.rows() || x.cols() != y.cols())
        return HUGE_VAL;
    return largest(full(x) - full(y)) / (std::max(x.rows(), x.cols()) * unit * scale);
}
// Of A*X - B, in units of n*eps*|A|*|X|.
inline double residual(M<double> const& A, M<double> const& X, M<double> const& B)
{
    M<double> const product = full(A * X);
    double const size = largest(A) * largest(X) * A.cols(), left = product.rows() != B.rows() || product.cols() != B.cols() ? HUGE_VAL : largest(product - full(B));
    return left == 0 ? 0 : left / (A.cols() * unit * size);
}
// Of Q'*Q - I, in units of n*eps.
inline double off_orthogonal(M<double> const& Q)
{
    return distance(ctranspose(Q) * Q, eye(M<double>(Q.cols())));
}

} // namespace linear

#endif
