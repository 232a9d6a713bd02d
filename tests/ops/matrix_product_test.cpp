// Products of matrices against three plain loops.
#include "ops/matrix_product.h"

#include "core/sparse.h"
#include "ops/blas.h"
#include "runtime/workers.h"
#include "support/capture.h"
#include "support/shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using arrlib::matrix_product;
using shapes::Kind;
using shapes::Model;
using shapes::Sizes;

Model product(Model const& x, Model const& y)
{
    Model z({x.size[0], y.size[1], 1, 1});
    z.each([&](Sizes const& s) {
        for (int k = 0; k < x.size[1]; ++k)
            z.at(s) += x.at({s[0], k, 0, 0}) * y.at({k, s[1], 0, 0});
    });
    return z;
}

M<double> value(bool complex, bool sparse, int rows, int cols)
{
    static shapes::Source source;
    return source.value({complex, sparse, false, false}, {rows, cols, 1, 1});
}

TEST(MatrixProduct, AgreesWithPlainLoopsForEveryKindAndShape)
{
    struct {
        int m, k, n;
    } const sizes[] = {{1, 2, 1}, {2, 2, 2}, {3, 3, 3}, {3, 3, 2}, {4, 4, 4}, {1, 7, 1}, {1, 9, 5}, {5, 9, 1}, {9, 1, 9}, {3, 4, 5}, {8, 8, 8}, {1, 300, 1}, {1, 70, 40},
                       {40, 70, 1}, {40, 2, 30}, {2, 90, 3}, {65, 33, 17}, {70, 1, 50}, {130, 70, 90}};
    for (auto const& size : sizes)
        for (int kind = 0; kind < 16; ++kind) {
            SCOPED_TRACE(testing::Message() << size.m << "x" << size.k << "x" << size.n << " kind " << kind);
            M<double> const x = value(kind & 1, kind & 2, size.m, size.k), y = value(kind & 4, kind & 8, size.k, size.n);
            Kind const expected{x.isc() || y.isc(), x.issparse() && y.issparse(), false, false};
            shapes::expect_equal(matrix_product(x, y), product(shapes::model_of(x), shapes::model_of(y)), expected);
        }
}

TEST(MatrixProduct, SparseSumsThatComeToZeroAreNotStored)
{
    for (bool const complex : {false, true}) {
        M<double> x = value(complex, false, 30, 2), y = value(false, false, 2, 30);
        for (int k = 0; k < 30; ++k) {
            x.r(k + 1, 2) = x.r(k + 1, 1);
            if (complex)
                x.i(k + 1, 2) = x.i(k + 1, 1);
            if (k % 3 == 0)
                y.r(2, k + 1) = -y.r(1, k + 1);
        }
        // Zeros that were stored on purpose.
        y.r(1, 2) = y.r(2, 2) = 0;
        M<double> sparse_x = x, sparse_y = y;
        sparse_x.getsparse(1);
        sparse_y.getsparse(1);
        M<double> const got = matrix_product(sparse_x, sparse_y);
        EXPECT_EQ(got.getnnz(), 30 * 19);
        EXPECT_EQ(shapes::model_of(got).element, shapes::model_of(matrix_product(x, y)).element);
    }
}

// A few entries in matrices whose rows and columns no list could hold.
TEST(MatrixProduct, SparseMatricesWithFarMoreRowsAndColumnsThanEntries)
{
    std::mt19937 random(7);
    auto const below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    int const sizes[][3] = {{2000000, 1000, 900}, {1000, 2000000, 700}, {1, 2000000000, 1}, {40000, 40000, 40000}};
    for (auto const& [m, k, n] : sizes) {
        constexpr int entries = 60;
        M<double> i(0, entries, 1), p(0, entries, 1), j(0, entries, 1), v(0, entries, 1), w(0, entries, 1), q(0, entries, 1);
        for (int e = 0; e < entries; ++e) {
            i.r(e + 1) = 1 + below(m);
            j.r(e + 1) = 1 + below(n);
            p.r(e + 1) = k - below(9);
            q.r(e + 1) = k - below(9);
            v.r(e + 1) = 1 + below(9);
            w.r(e + 1) = 1 + below(9);
        }
        std::map<int, double> expected;
        for (int e = 1; e <= entries; ++e)
            for (int f = 1; f <= entries; ++f)
                if (p.r(e) == q.r(f))
                    expected[static_cast<int>(i.r(e) - 1) + static_cast<int>(j.r(f) - 1) * m] += v.r(e) * w.r(f);
        M<double> const got = matrix_product(sparse(i, p, v, m, k), sparse(q, j, w, k, n));
        ASSERT_EQ(got.getnnz(), static_cast<int>(expected.size()));
        int at = 0;
        for (auto const& [position, sum] : expected) {
            EXPECT_EQ(got.getindex()[at], position);
            EXPECT_EQ(got.spaddr()[at++], sum);
        }
    }
}

TEST(MatrixProduct, ZerosBesideNaNAndInfinitiesCount)
{
    for (int const size : {2, 3, 60}) {
        M<double> x(0, size, size), y(0, size, 1);
        std::fill_n(x.addr(), x.size(), 0.0);
        std::fill_n(y.addr(), y.size(), 0.0);
        x.r(1, 1) = HUGE_VAL;
        x.r(2, 2) = 1;
        y.r(2) = 5;
        M<double> two = y;
        two.reshape(1, size);
        M<double> const products[] = {matrix_product(x, y), matrix_product(two, x), matrix_product(x, x)};
        EXPECT_TRUE(std::isnan(products[0].r(1)));
        EXPECT_EQ(products[0].r(2), 5);
        EXPECT_TRUE(std::isnan(products[1].r(1)));
        EXPECT_EQ(products[1].r(2), 5);
        EXPECT_EQ(products[2].r(1, 1), HUGE_VAL);
        EXPECT_TRUE(std::isnan(products[2].r(1, 2)));
        EXPECT_EQ(products[2].r(2, 2), 1);
        // A real operand has no imaginary parts, not zeros.
        M<double> imaginary(1, 1, 1);
        imaginary.r(1) = 2;
        imaginary.i(1) = 1;
        M<double> const inf(HUGE_VAL);
        M<double> const mixed = matrix_product(inf, imaginary);
        EXPECT_EQ(mixed.r(1), HUGE_VAL);
        EXPECT_EQ(mixed.i(1), HUGE_VAL);
    }
}

TEST(MatrixProduct, RefusesWhatDoesNotFit)
{
    int const cube[] = {2, 2, 2};
    M<double> a = value(false, false, 2, 3), b = value(false, true, 2, 3), c(0, 0, 0, 3, cube);
    M<double> tall = value(false, false, 70000, 1), wide = value(false, false, 1, 70000);
    a.setname("a");
    b.setname("b");
    c.setname("c");
    M<double> const sparse_tall = sparse(tall), sparse_wide = sparse(wide);
    struct {
        M<double> const *x, *y;
        char const* message;
    } const cases[] = {
        {&a, &b, "*: inner dimensions of a and b do not agree"},
        {&b, &b, "*: inner dimensions of b and b do not agree"},
        {&a, &wide, "*: inner dimensions of a and (temporary) do not agree"},
        {&c, &a, "*: c has more than two dimensions"},
        {&a, &c, "*: c has more than two dimensions"},
        {&tall, &wide, "Out of memory!"},
        {&sparse_tall, &wide, "Out of memory!"},
        {&tall, &sparse_wide, "Out of memory!"},
        {&sparse_tall, &sparse_wide, "sparse: matrix is too large"},
    };
    for (auto const& [x, y, message] : cases) {
        SCOPED_TRACE(message);
        capture::Reports const reports;
        EXPECT_EQ(matrix_product(*x, *y).size(), 0);
        EXPECT_EQ(reports.all(), capture::Texts{message});
        EXPECT_EQ(capture::thrown_by([&, &left = x, &right = y] { matrix_product(*left, *right); }), std::string("Error: ") + message + "\n\n");
    }
    EXPECT_EQ(a.size(), 6);
}

TEST(MatrixProduct, LeavesNothingBehindWithoutMemory)
{
    M<double> const full_x = value(true, false, 20, 30), full_y = value(false, false, 30, 20);
    M<double> const sparse_x = value(false, true, 20, 30), sparse_y = value(true, true, 30, 20);
    M<double> const far_x = sparse(9, 9, 1, 50000, 40000), far_y = sparse(9, 9, 1, 40000, 40000);
    for (auto const& [x, y] : {std::pair{&full_x, &full_y}, {&full_x, &sparse_y}, {&sparse_x, &full_y}, {&sparse_x, &sparse_y}, {&far_x, &far_y}})
        capture::with_every_allocation_refused([&, &left = x, &right = y] { matrix_product(*left, *right); });
}

TEST(MatrixProduct, BitsDoNotDependOnTheNumberOfThreads)
{
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> uniform(-1, 1);
    auto const noise = [&](int rows, int cols, bool sparse) {
        M<double> made = value(false, sparse, rows, cols);
        for (int k = 0; k < made.getnnz(); ++k)
            made.addr()[k] = uniform(random);
        return made;
    };
    M<double> const x = noise(611, 403, false), y = noise(403, 502, false), sparse_x = noise(611, 403, true), sparse_y = noise(403, 502, true);
    M<double> const column = noise(403, 1, false), row = noise(1, 403, false), tall = noise(3011, 403, false), narrow = noise(403, 31, false);
    for (auto const& [left, right] : {std::pair{&x, &y}, {&tall, &narrow}, {&x, &column}, {&row, &y}, {&x, &sparse_y}, {&sparse_x, &y}, {&sparse_x, &sparse_y}}) {
        int const limit = arrlib::set_parallel_limit(1);
        M<double> const alone = matrix_product(*left, *right);
        for (int const threads : {2, 5}) {
            arrlib::set_parallel_limit(threads);
            M<double> const together = matrix_product(*left, *right);
            ASSERT_EQ(together.getnnz(), alone.getnnz());
            EXPECT_EQ(std::memcmp(together.addr(), alone.addr(), sizeof(double) * static_cast<std::size_t>(alone.getnnz())), 0);
        }
        arrlib::set_parallel_limit(limit);
    }
}

// The loops that serve where there is no library, on parts of larger matrices.
// Enough entries for the two halves of a product with one vector, the second of which begins with a column.
TEST(MatrixProduct, ManySparseEntriesTimesAVector)
{
    constexpr int rows = 300, cols = 900, every = 2;
    M<double> full_x(true, rows, cols), y(0, cols, 1);
    for (int k = 0; k < rows * cols; ++k) {
        full_x.addr()[k] = k % every ? 0 : k % 17 - 8;
        full_x.addi()[k] = k % every ? 0 : k % 5;
    }
    for (int k = 0; k < cols; ++k)
        y.addr()[k] = k % 7 - 3;
    M<double> const x = sparse(full_x), expected = matrix_product(full_x, y);
    for (int threads : {1, 2}) {
        int const before = arrlib::set_parallel_limit(threads);
        shapes::expect_equal(matrix_product(x, y), shapes::model_of(expected), {true, false, false, false});
        arrlib::set_parallel_limit(before);
    }
}

TEST(MatrixProduct, PlainLoopsAgreeWithPlainerOnes)
{
    M<double> const a = value(false, false, 200, 100), b = value(false, false, 150, 80);
    arrlib::ConstantPanel const x{a.addr() + 3, 200}, y{b.addr() + 2, 150};
    auto const at = [](arrlib::ConstantPanel const& panel, int i, int j) { return panel.at[i + j * panel.stride]; };
    int const sizes[][3] = {{1, 1, 1}, {3, 2, 5}, {130, 7, 70}, {129, 33, 65}, {190, 1, 99}};
    for (auto const& [m, n, k] : sizes) {
        std::vector<double> z(static_cast<std::size_t>(197 * n), 7), by_column(static_cast<std::size_t>(m), 7), by_row(static_cast<std::size_t>(n), 7);
        arrlib::plain_blas.gemm(1, m, n, k, 1, x, y, false, {z.data(), 197});
        arrlib::plain_blas.gemm(1, m, n, k, -3, x, y, true, {z.data(), 197});
        arrlib::plain_blas.gemv(m, k, -1, x, y.at, by_column.data());
        arrlib::plain_blas.gemv_transposed(k, n, -1, y, x.at, by_row.data());
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < m; ++i) {
                double sum = 0, row_sum = 0;
                for (int p = 0; p < k; ++p) {
                    sum += at(x, i, p) * at(y, p, j);
                    row_sum += x.at[p] * at(y, p, j);
                }
                EXPECT_EQ(z[static_cast<std::size_t>(i + j * 197)], -2 * sum);
                if (j == 0) {
                    EXPECT_EQ(by_column[static_cast<std::size_t>(i)], 7 - sum);
                }
                EXPECT_EQ(by_row[static_cast<std::size_t>(j)], 7 - row_sum);
            }
        EXPECT_EQ(z.back(), 7);
        EXPECT_EQ(arrlib::plain_blas.dot(k, x.at, y.at), arrlib::blas.dot(k, x.at, y.at));
    }
}

} // namespace
