#include "builtins/special_matrices.h"

#include "builtins/args.h"
#include "builtins/formula.h"
#include "core/arguments.h"

#include <algorithm>
#include <cmath>
#include <complex>

using namespace arrlib;

namespace {

// False after a report; an empty argument asks for an empty matrix.
bool read_order(char const* builtin, M<double> const& n, int& order)
{
    order = 0;
    if (!given(n))
        return true;
    if (!Arguments(builtin).scalar(n))
        return false;
    order = std::max(integer_argument(n), 0);
    return true;
}

// --- invhilb -------------------------------------------------------------------------------------

// A product of integers, kept in two numbers so that it is rounded once.
class ExactProduct {
public:
    void times(double factor)
    {
        double const product = high_ * factor, error = std::fma(high_, factor, -product);
        low_ = low_ * factor + error;
        high_ = product;
    }
    double rounded() const { return high_ + low_; }

private:
    double high_ = 1, low_ = 0;
};

// Exact while it is below 2^53.
double binomial(int n, int k)
{
    double value = 1;
    for (int m = 1; m <= std::min(k, n - k); ++m)
        value = std::round(value * (n - std::min(k, n - k) + m) / m);
    return value;
}

double inverse_hilbert(int n, int i, int j)
{
    double const middle = binomial(i + j - 2, i - 1);
    ExactProduct element;
    for (double const factor : {(i + j) % 2 ? -1.0 : 1.0, i + j - 1.0, binomial(n + i - 1, n - j), binomial(n + j - 1, n - i), middle, middle})
        element.times(factor);
    return element.rounded();
}

// --- magic ---------------------------------------------------------------------------------------

// Remainder of a division that rounds down.
int modulo(int a, int n)
{
    int const rest = a % n;
    return rest < 0 ? rest + n : rest;
}

// The diagonal method, for odd orders.
double odd_magic(int n, int i, int j)
{
    return 1.0 * n * modulo(i + j - (n + 3) / 2, n) + modulo(i + 2 * j - 2, n) + 1;
}

// The numbers in order, or counted down, in a pattern of 4x4 squares.
double double_even_magic(int n, int i, int j)
{
    double const square = 1.0 * n * n, number = (i - 1.0) * n + j;
    bool const counted_down = (i % 4 / 2) == (j % 4 / 2);
    return counted_down ? square + 1 - number : number;
}

// Four odd squares, parts of the lower two exchanged with the upper two.
double single_even_magic(int n, int i, int j)
{
    int const half = n / 2, k = (n - 2) / 4, row = (i - 1) % half + 1, col = (j - 1) % half + 1;
    bool exchanged = j <= k || j > n - k + 1;
    if (row == k + 1)
        exchanged ^= j == 1 || j == k + 1;
    bool const lower = (i > half) != exchanged, right = j > half;
    double const part = 1.0 * half * half, number = odd_magic(half, row, col);
    return number + (right ? (lower ? part : 2 * part) : (lower ? 3 * part : 0));
}

double magic_element(int n, int i, int j)
{
    return n == 2 ? (j == 1 ? 1.0 + 3 * (i - 1) : 3.0 - (i - 1)) : n % 2 ? odd_magic(n, i, j) : n % 4 ? single_even_magic(n, i, j) : double_even_magic(n, i, j);
}

// --- hadamard ------------------------------------------------------------------------------------

// Paley's matrix of order prime+1, prime = 3 modulo 4, scaled to ones in the first row and column.
double paley(int prime, int i, int j)
{
    if (i == 1 || j == 1)
        return 1;
    if (i == j)
        return -1;
    int const difference = modulo(i - j, prime);
    for (int root = 1; root < prime; ++root)
        if (root * root % prime == difference)
            return -1;
    return 1;
}

// The order of the matrix that doubling begins with; 0 when there is none.
int hadamard_seed(double n)
{
    if (!(n >= 1 && n <= 1 << 30) || n != std::trunc(n))
        return 0;
    int const order = static_cast<int>(n);
    for (int const seed : {1, 12, 20})
        if (order % seed == 0 && (order / seed & (order / seed - 1)) == 0)
            return seed;
    return 0;
}

double hadamard_element(int seed, int i, int j)
{
    int const row = (i - 1) / seed, col = (j - 1) / seed;
    bool negative = false;
    for (int both = row & col; both; both &= both - 1)
        negative = !negative;
    double const part = seed == 1 ? 1 : paley(seed - 1, (i - 1) % seed + 1, (j - 1) % seed + 1);
    return negative ? -part : part;
}

// --- pascal --------------------------------------------------------------------------------------

// Every element is the sum of its neighbours to the left and above.
void add_up_binomials(M<double>& matrix)
{
    int const n = matrix.rows();
    for (int j = 2; j <= n; ++j)
        for (int i = 2; i <= n; ++i)
            *matrix.addr(i, j) = *matrix.addr(i - 1, j) + *matrix.addr(i, j - 1);
}

// The binomial of row and column, in a symmetric matrix of binomials.
double signed_binomial(M<double> const& binomials, int row, int col)
{
    return row < col ? 0 : col % 2 ? *binomials.addr(row - col + 1, col) : -*binomials.addr(row - col + 1, col);
}

} // namespace

M<double> hilb(M<double> const& n)
{
    int order;
    return read_order("hilb", n, order) ? by_formula(order, order, [](int i, int j) { return 1.0 / (static_cast<double>(i) + j - 1); }) : x_M;
}

M<double> invhilb(M<double> const& n)
{
    int order;
    return read_order("invhilb", n, order) ? by_formula(order, order, [order](int i, int j) { return inverse_hilbert(order, i, j); }) : x_M;
}

M<double> magic(M<double> const& n)
{
    int order;
    return read_order("magic", n, order) ? by_formula(order, order, [order](int i, int j) { return magic_element(order, i, j); }) : x_M;
}

M<double> hadamard(M<double> const& n)
{
    int order;
    if (!read_order("hadamard", n, order))
        return x_M;
    if (!given(n))
        return M<double>();
    int const seed = hadamard_seed(n[1]);
    if (seed == 0) {
        Arguments("hadamard").report("order must be 2^k, 12*2^k or 20*2^k");
        return x_M;
    }
    return by_formula(order, order, [seed](int i, int j) { return hadamard_element(seed, i, j); });
}

M<double> pascal(M<double> const& n)
{
    return pascal(n, zero_M);
}

M<double> pascal(M<double> const& n, M<double> const& k)
{
    int order;
    if (!read_order("pascal", n, order))
        return x_M;
    double const form = number_or(k, 0);
    if (form != 0 && form != 1 && form != 2) {
        Arguments("pascal").report("k must be 0, 1 or 2");
        return x_M;
    }
    M<double> made = by_formula(order, order, [](int, int) { return 1.0; });
    if (made.size() == 0)
        return made;
    add_up_binomials(made);
    if (form == 0)
        return made;
    if (form == 1)
        return by_formula(order, order, [&](int i, int j) { return signed_binomial(made, i, j); });
    // The factor turned clockwise, negative for even orders.
    double const sign = order % 2 ? 1 : -1;
    return by_formula(order, order, [&](int i, int j) { return sign * signed_binomial(made, order + 1 - j, i); });
}

M<double> rosser()
{
    static constexpr int half[4][8] = {{611, 196, -192, 407, -8, -52, -49, 29}, {196, 899, 113, -192, -71, -43, -8, -44}, {-192, 113, 899, 196, 61, 49, 8, 52}, {407, -192, 196, 611, 8, 44, 59, -23}};
    static constexpr int last[4][4] = {{411, -599, 208, 208}, {-599, 411, 208, 208}, {208, 208, 99, -911}, {208, 208, -911, 99}};
    return by_formula(8, 8, [](int i, int j) -> double {
        int const low = std::min(i, j) - 1, high = std::max(i, j) - 1;
        return low < 4 ? half[low][high] : last[low - 4][high - 4];
    });
}

M<double> wilkinson(M<double> const& n)
{
    int order;
    if (!read_order("wilkinson", n, order))
        return x_M;
    return by_formula(order, order, [order](int i, int j) { return i == j ? std::fabs((order - 1) / 2.0 - (i - 1)) : i - j == 1 || j - i == 1 ? 1.0 : 0.0; });
}

M<double> hankel(M<double> const& c)
{
    NumberList const column(c);
    if (!column)
        return x_M;
    int const n = column.count();
    return by_complex_formula(column.complex(), n, n, [&](int i, int j) { return i + j - 1 <= n ? column[i + j - 2] : Number{}; });
}

M<double> hankel(M<double> const& c, M<double> const& r)
{
    NumberList const column(c), row(r);
    if (!column || !row)
        return x_M;
    int const rows = column.count(), cols = row.count();
    if (rows == 0 || cols == 0)
        return M<double>();
    if (column[rows - 1].re != row[0].re || column[rows - 1].im != row[0].im)
        Arguments("hankel").warn("last element of column wins");
    return by_complex_formula(column.complex() || row.complex(), rows, cols, [&](int i, int j) { return i + j - 1 <= rows ? column[i + j - 2] : row[i + j - 1 - rows]; });
}

M<double> toeplitz(M<double> const& r)
{
    NumberList const row(r);
    if (!row)
        return x_M;
    return by_complex_formula(row.complex(), row.count(), row.count(), [&](int i, int j) { return i <= j ? row[j - i] : Number{row[i - j].re, -row[i - j].im}; });
}

M<double> toeplitz(M<double> const& c, M<double> const& r)
{
    NumberList const column(c), row(r);
    if (!column || !row)
        return x_M;
    if (column.count() == 0 || row.count() == 0)
        return M<double>();
    if (column[0].re != row[0].re || column[0].im != row[0].im)
        Arguments("toeplitz").warn("first element of column wins");
    return by_complex_formula(column.complex() || row.complex(), column.count(), row.count(), [&](int i, int j) { return i >= j ? column[i - j] : row[j - i]; });
}

M<double> vander(M<double> const& v)
{
    NumberList const list(v);
    if (!list)
        return x_M;
    int const n = list.count();
    M<double> made = by_complex_formula(list.complex(), n, n, [](int, int) { return Number{1, 0}; });
    for (int j = made.cols() - 1; j >= 1; --j)
        for (int i = 1; i <= n; ++i) {
            std::complex<double> power(*made.addr(i, j + 1), list.complex() ? *made.addi(i, j + 1) : 0);
            power *= std::complex<double>(list[i - 1].re, list[i - 1].im);
            *made.addr(i, j) = power.real();
            if (list.complex())
                *made.addi(i, j) = power.imag();
        }
    return made;
}

M<double> compan(M<double> const& p)
{
    if (!given(p))
        return M<double>();
    if (!Arguments("compan").vector(p))
        return x_M;
    NumberList const list(p);
    if (!list)
        return x_M;
    int const order = list.count() - 1;
    std::complex<double> const leading(list[0].re, list[0].im);
    return by_complex_formula(list.complex(), order, order, [&](int i, int j) {
        if (i > 1)
            return Number{i == j + 1 ? 1.0 : 0.0, 0};
        if (!list.complex())
            return Number{-list[j].re / list[0].re, 0};
        std::complex<double> const quotient = -std::complex<double>(list[j].re, list[j].im) / leading;
        return Number{quotient.real(), quotient.imag()};
    });
}
