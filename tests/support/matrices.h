// Matrices for tests of linear algebra, and distances in units of rounding errors.
#ifndef ARRLIB_TESTS_SUPPORT_MATRICES_H
#define ARRLIB_TESTS_SUPPORT_MATRICES_H

#include "core/reshape.h"
#include "core/subscript.h"
#include "ops/operators.h"
#include "runtime/constants.h"
#include "support/values.h"

#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace matrices {

inline constexpr double epsilon = std::numeric_limits<double>::epsilon();

// From the function of row and column, counted from 1.
inline M<double> made(int rows, int cols, std::function<std::complex<double>(int, int)> const& element, bool complex = false)
{
    M<double> x(complex, rows, cols);
    x.clear_scalar_variable();
    for (int j = 1; j <= cols; ++j)
        for (int i = 1; i <= rows; ++i) {
            *x.addr(i, j) = element(i, j).real();
            if (complex)
                *x.addi(i, j) = element(i, j).imag();
        }
    return x;
}

// Uniform in (-1, 1), the same in every run.
inline M<double> random(int rows, int cols, bool complex = false, unsigned seed = 1)
{
    std::uint64_t state = 88172645463325252u + seed;
    auto const next = [&state] {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state >> 11) / 4503599627370496.0 - 1;
    };
    M<double> x(complex, rows, cols);
    x.clear_scalar_variable();
    for (int k = 0; k < rows * cols; ++k)
        x.addr()[k] = next();
    for (int k = 0; complex && k < rows * cols; ++k)
        x.addi()[k] = next();
    return x;
}

inline M<double> identity(int n)
{
    return made(n, n, [](int i, int j) { return i == j; });
}
inline M<double> hilbert(int n)
{
    return made(n, n, [](int i, int j) { return 1.0 / (i + j - 1); });
}
inline M<double> wilkinson(int n)
{
    return made(n, n, [n](int i, int j) { return i == j ? std::abs((n - 1) / 2.0 - (i - 1)) : std::abs(i - j) == 1 ? 1.0 : 0.0; });
}
inline M<double> frank(int n)
{
    return made(n, n, [n](int i, int j) { return j < i - 1 ? 0.0 : n + 1.0 - std::max(i, j); });
}
// One eigenvalue with one vector.
inline M<double> defective(int n)
{
    return made(n, n, [](int i, int j) { return i == j ? 2.0 : j == i + 1 ? 1.0 : 0.0; });
}
inline M<double> low_rank(int rows, int cols, int rank, bool complex = false)
{
    return random(rows, rank, complex, 5) * random(rank, cols, complex, 6);
}
// Rows and columns from 1e-150 to 1e150.
inline M<double> graded(int n)
{
    return made(n, n, [n](int i, int j) { return std::pow(10.0, 150.0 * (i + j - n - 1) / (n - 1)) * (i == j ? 2 : 1.0 / (1 + i + 2 * j)); });
}

struct Named {
    std::string name;
    M<double> value;
};
// The square ones, real and complex; `hard` ones are those whose eigenvectors are nearly dependent.
inline std::vector<Named> square_matrices()
{
    std::vector<Named> all = {{"number", random(1, 1)},      {"complex number", random(1, 1, true)}, {"random", random(20, 20)},
                              {"complex", random(17, 17, true)}, {"hilbert", hilbert(10)},            {"wilkinson", wilkinson(21)},
                              {"frank", frank(12)},          {"defective", defective(6)},            {"rank", low_rank(9, 9, 4)},
                              {"graded", graded(7)},         {"zero", 0.0 * identity(4)},            {"triangular", made(6, 6, [](int i, int j) { return j >= i ? i + 2.0 * j : 0; })},
                              {"permutation", made(5, 5, [](int i, int j) { return i % 5 + 1 == j; })}};
    M<double> const x = random(11, 11, true, 3);
    all.push_back({"hermitian", x + ctranspose(x)});
    all.push_back({"symmetric", random(14, 14) + ctranspose(random(14, 14))});
    return all;
}

// The largest modulus.
inline double size(M<double> const& x)
{
    double largest = 0;
    for (int k = 0; k < x.getnnz(); ++k) {
        double const one = x.isc() ? std::hypot(x.addr()[k], x.addi()[k]) : std::abs(x.addr()[k]);
        largest = one <= largest ? largest : one;
    }
    return largest;
}

// The largest difference in units of n eps times `scale`, or times the size of `right`.
inline double distance(M<double> const& got, M<double> const& right, double scale = 0)
{
    for (int d = 1; d <= 4; ++d)
        if (got.size(d) != right.size(d))
            return INFINITY;
    double const unit = std::max(1, right.length()) * epsilon * (scale > 0 ? scale : size(right)), error = size(got - right);
    return error == 0 ? 0 : error / unit;
}

// How far the columns are from orthonormal ones.
inline double lack_of_orthonormality(M<double> const& x)
{
    return distance(ctranspose(x) * x, identity(x.cols()), 1) / std::max(1.0, static_cast<double>(x.rows()) / std::max(x.cols(), 1));
}

} // namespace matrices

#endif
