#include "builtins/special_matrices.h"

#include "builtins/gallery.h"
#include "builtins/ranges.h"
#include "builtins/sizes.h"
#include "core/reshape.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "ops/elementwise.h"
#include "ops/operators.h"
#include "ops/reduction.h"
#include "runtime/constants.h"
#include "support/values.h"

namespace {

using namespace values;

M<double> product(M<double> const& a, M<double> const& b)
{
    return a * b;
}

double largest_difference(M<double> const& a, M<double> const& b)
{
    return max(max(abs(minus(a, b))))[1];
}

TEST(SpecialMatrices, SmallOnesAsTheyAreWritten)
{
    expect_all({
        {shown(hilb(2)), shown(rows_of({{1, 0.5}, {0.5, 1.0 / 3}}))},
        {shown(invhilb(3)), shown(rows_of({{9, -36, 30}, {-36, 192, -180}, {30, -180, 180}}))},
        {shown(magic(3)), shown(rows_of({{8, 1, 6}, {3, 5, 7}, {4, 9, 2}}))},
        {shown(magic(4)), shown(rows_of({{16, 2, 3, 13}, {5, 11, 10, 8}, {9, 7, 6, 12}, {4, 14, 15, 1}}))},
        {all_shown(magic(1), magic(2), magic(0)), "1x1: 1, 2x2: 1 4 3 2, 0x0:"},
        {shown(hadamard(4)), shown(rows_of({{1, 1, 1, 1}, {1, -1, 1, -1}, {1, 1, -1, -1}, {1, -1, -1, 1}}))},
        {shown(hankel(row({1, 2, 3}))), shown(rows_of({{1, 2, 3}, {2, 3, 0}, {3, 0, 0}}))},
        {shown(hankel(row({1, 2}), column({2, 5, 6}))), shown(rows_of({{1, 2, 5}, {2, 5, 6}}))},
        {shown(toeplitz(row({1, 2, 3}))), shown(rows_of({{1, 2, 3}, {2, 1, 2}, {3, 2, 1}}))},
        {shown(toeplitz(row({1, 2}), row({1, 5, 6}))), shown(rows_of({{1, 5, 6}, {2, 1, 5}}))},
        {shown(toeplitz(row({1, 2}, {0, 3}))), "2x2: 1+0i 2-3i 2+3i 1+0i"},
        {shown(vander(row({2, 3, 5}))), shown(rows_of({{4, 2, 1}, {9, 3, 1}, {25, 5, 1}}))},
        {shown(vander(row({2, 0}, {0, 1}))), "2x2: 2+0i 0+1i 1+0i 1+0i"},
        {shown(pascal(3)), shown(rows_of({{1, 1, 1}, {1, 2, 3}, {1, 3, 6}}))},
        {shown(pascal(4, 1)), shown(rows_of({{1, 0, 0, 0}, {1, -1, 0, 0}, {1, -2, 1, 0}, {1, -3, 3, -1}}))},
        {shown(wilkinson(3)), shown(rows_of({{1, 1, 0}, {1, 0, 1}, {0, 1, 1}}))},
        {shown(wilkinson(2)), shown(rows_of({{0.5, 1}, {1, 0.5}}))},
        {shown(compan(row({2, 4, 6}))), shown(rows_of({{-2, -3}, {1, 0}}))},
        {shown(compan(column({1, 0, 0}, {1, 1, 2}))), "2x2: -0.5-0.5i 1+0i -1-1i 0+0i"},
        {all_shown(compan(5), compan(M<double>()), hankel(M<double>()), toeplitz(1, M<double>()), vander(M<double>()), hilb(-2), invhilb(nop_M)), "0x0:, 0x0:, 0x0:, 0x0:, 0x0:, 0x0:, 0x0:"},
    });
    M<double> const six = magic(6);
    EXPECT_EQ(shown(transpose(six)).substr(5, 16), "35 1 6 26 19 24 ");
    for (int j = 1; j <= 6; ++j)
        EXPECT_EQ(*six.addr(4, j), Numbers({8, 28, 33, 17, 10, 15})[static_cast<std::size_t>(j - 1)]);
}

TEST(SpecialMatrices, HaveTheirDefiningProperties)
{
    for (int n = 3; n <= 24; ++n) {
        M<double> const square = magic(n);
        double const total = n * (n * n + 1.0) / 2;
        double diagonal = 0, other = 0;
        std::vector<bool> seen(static_cast<std::size_t>(n * n));
        for (int i = 1; i <= n; ++i) {
            diagonal += *square.addr(i, i);
            other += *square.addr(i, n + 1 - i);
        }
        for (double const number : numbers(square))
            seen.at(static_cast<std::size_t>(number) - 1) = true;
        EXPECT_EQ(std::count(seen.begin(), seen.end(), true), n * n) << n;
        EXPECT_EQ(numbers(sum(square)), Numbers(static_cast<std::size_t>(n), total)) << n;
        EXPECT_EQ(numbers(sum(square, 2)), Numbers(static_cast<std::size_t>(n), total)) << n;
        EXPECT_TRUE(diagonal == total && other == total) << n;
    }
    for (int const n : {1, 2, 8, 12, 20, 24, 40, 64}) {
        M<double> const h = hadamard(n);
        EXPECT_EQ(isequal(product(h, transpose(h)), times(n, eye(n)))[1], 1) << n;
        EXPECT_EQ(sum(h)[1] + sum(h, 2)[1], 2 * n) << n;
    }
    for (int n = 1; n <= 9; ++n) {
        M<double> const factor = pascal(n, 1), root = pascal(n, 2);
        EXPECT_EQ(isequal(product(factor, factor), eye(n))[1], 1) << n;
        EXPECT_EQ(isequal(product(factor, transpose(factor)), pascal(n))[1], 1) << n;
        EXPECT_EQ(isequal(product(root, product(root, root)), eye(n))[1], 1) << n;
        EXPECT_LT(largest_difference(product(invhilb(std::min(n, 6)), hilb(std::min(n, 6))), eye(std::min(n, 6))), 1e-9) << n;
    }
    // Elements of order 15, worked out with integers of any length.
    EXPECT_EQ(invhilb(15)[1], 225);
    EXPECT_EQ(*invhilb(15).addr(11, 11), 1.1470898792429076e20);
    EXPECT_EQ(*invhilb(12).addr(9, 8), -3110531785218000.0);
    // Eigenvectors of 0 and 1000.
    M<double> const zero = column({1, 2, -2, -1, 14, 14, 7, 7}), both = column({1, -2, -2, 1, -2, 2, -1, 1});
    M<double> const r = rosser();
    EXPECT_EQ(isequal(r, transpose(r))[1], 1);
    EXPECT_EQ(max(abs(product(r, zero)))[1], 0);
    EXPECT_EQ(isequal(product(r, both), times(1000, both))[1], 1);
}

TEST(SpecialMatrices, Report)
{
    for (double const n : {0.0, 3.0, 28.0, 2.5, -4.0})
        EXPECT_EQ(reported_by([&] { hadamard(n); }), "hadamard: order must be 2^k, 12*2^k or 20*2^k") << n;
    M<double> const pair = row({1, 2}), table = matrix(2, 2, {1, 2, 3, 4});
    EXPECT_EQ(reported_by([&] { hilb(pair); }), "hilb: argument must be scalar");
    EXPECT_EQ(reported_by([&] { magic(pair); }) + reported_by([&] { wilkinson(pair); }), "magic: argument must be scalarwilkinson: argument must be scalar");
    EXPECT_EQ(reported_by([&] { pascal(3, 5); }), "pascal: k must be 0, 1 or 2");
    EXPECT_EQ(reported_by([&] { compan(table); }), "compan: argument must be a vector");
    EXPECT_EQ(reported_by([&] { magic(1e5); }), "Out of memory!");
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(hankel(pair, row({3, 4}))), "2x2: 1 2 2 4"); }), "hankel: last element of column wins");
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(shown(toeplitz(pair, row({3, 4}))), "2x2: 1 2 4 1"); }), "toeplitz: first element of column wins");
    EXPECT_EQ(warned_by([&] { toeplitz(pair, row({1, 4})), hankel(pair, row({2, 4})); }), "");
    capture::with_every_allocation_refused([&] { pascal(9, 2); });
    capture::with_every_allocation_refused([&] { toeplitz(hilb(4), pair); });
}

// --- gallery -------------------------------------------------------------------------------------

TEST(Gallery, FamiliesByDefinition)
{
    auto const t = [](char const* name) { return text(name); };
    M<double> const nilpotent = gallery(5), twice = product(nilpotent, nilpotent), root = msqrt(2);
    EXPECT_EQ(max(max(abs(product(twice, product(twice, nilpotent)))))[1], 0);
    expect_all({
        {shown(gallery(3)), shown(rows_of({{-149, -50, -154}, {537, 180, 546}, {-27, -9, -25}}))},
        {shown(gallery(t("cauchy"), 2)), shown(rows_of({{0.5, 1.0 / 3}, {1.0 / 3, 0.25}}))},
        {shown(gallery(t("cauchy"), row({1, 3}), row({0, 1}))), shown(rows_of({{1, 0.5}, {1.0 / 3, 0.25}}))},
        {shown(gallery(t("circul"), row({1, 2, 3}))), shown(rows_of({{1, 2, 3}, {3, 1, 2}, {2, 3, 1}}))},
        {shown(gallery(t("clement"), 3)), shown(rows_of({{0, 1, 0}, {2, 0, 2}, {0, 1, 0}}))},
        {shown(gallery(t("Clement"), 3, 1)), shown(rows_of({{0, root[1], 0}, {root[1], 0, root[1]}, {0, root[1], 0}}))},
        {shown(gallery(t("fiedler"), row({1, 4}))), shown(rows_of({{0, 3}, {3, 0}}))},
        {shown(gallery(t("frank"), 3)), shown(rows_of({{3, 2, 1}, {2, 2, 1}, {0, 1, 1}}))},
        {shown(gallery(t("frank"), 3, 1)), shown(rows_of({{1, 1, 1}, {1, 2, 2}, {0, 2, 3}}))},
        {shown(gallery(t("jordbloc"), 2, 5)), shown(rows_of({{5, 1}, {0, 5}}))},
        {shown(gallery(t("kahan"), 2, 0.5, 0)), shown(rows_of({{1, -std::cos(0.5)}, {0, std::sin(0.5)}}))},
        {shown(size(gallery(t("kahan"), row({3, 2})))), "1x2: 3 2"},
        {shown(gallery(t("lehmer"), 2)), shown(rows_of({{1, 0.5}, {0.5, 1}}))},
        {shown(gallery(t("minij"), 3)), shown(rows_of({{1, 1, 1}, {1, 2, 2}, {1, 2, 3}}))},
        {shown(gallery(t("moler"), 3)), shown(rows_of({{1, -1, -1}, {-1, 2, 0}, {-1, 0, 3}}))},
        {shown(gallery(t("parter"), 2)), shown(rows_of({{2, -2}, {1 / 1.5, 2}}))},
        {shown(gallery(t("pei"), 2, 3)), shown(rows_of({{4, 1}, {1, 4}}))},
        {shown(gallery(t("ris"), 2)), shown(rows_of({{0.5 / 1.5, 1}, {1, -1}}))},
        {shown(gallery(t("tridiag"), 2)), "sparse 2x2: (1,1)=2 (2,1)=-1 (1,2)=-1 (2,2)=2"},
        {shown(full(gallery(t("tridiag"), row({1, 2}), row({3, 4, 5}), 6))), shown(rows_of({{3, 6, 0}, {1, 4, 6}, {0, 2, 5}}))},
        {shown(full(gallery(t("tridiag"), 2, 7, 8, 9))), shown(rows_of({{8, 9}, {7, 8}}))},
        {all_shown(gallery(t("minij"), 0), gallery(t("cauchy"), 0), gallery(t("tridiag"), 0)), "0x0:, 0x0:, sparse 0x0:"},
    });
    // Differentiation at Chebyshev points is exact for polynomials.
    for (int n = 3; n <= 12; ++n)
        for (int const without_first : {0, 1}) {
            M<double> const d = gallery(t("chebspec"), n, without_first);
            int const last = n - 1 + without_first;
            M<double> const x = cos(times(pi[1] / last, transpose(colon(without_first, last))));
            // Of a polynomial that is zero at the first point, which may be missing.
            M<double> const p = minus(times(x, x), 1);
            EXPECT_LT(largest_difference(product(d, p), times(2, x)), 1e-11) << n << " " << without_first;
        }
    EXPECT_EQ(shown(gallery(t("chebspec"), 1)), "1x1: 0");
}

TEST(Gallery, Reports)
{
    M<double> const pair = row({1, 2});
    EXPECT_EQ(reported_by([] { gallery(text("nonsense"), 3); }), "gallery: unknown family nonsense");
    EXPECT_EQ(reported_by([] { gallery(4); }), "gallery: unknown family =4");
    EXPECT_EQ(reported_by([&] { gallery(text("minij"), pair); }), "gallery: argument must be scalar");
    EXPECT_EQ(reported_by([&] { gallery(text("cauchy"), pair, row({1, 2, 3})); }), "gallery: sizes of (temporary) and (temporary) do not agree");
    EXPECT_EQ(reported_by([&] { gallery(text("tridiag"), pair, pair, pair); }), "gallery: sizes of (temporary) and (temporary) do not agree");
    EXPECT_EQ(reported_by([&] { gallery(text("fiedler"), row({1, 2}, {1, 2})); }), "gallery: argument must be real");
    EXPECT_EQ(reported_by([&] { gallery(text("tridiag"), 1e9); }), "sparse: matrix is too large");
}

} // namespace
