#include "builtins/lapack.h"
#include "builtins/zpack.h"

#include "support/capture.h"
#include "support/values.h"

#include <vector>

using namespace arrlib;
using namespace values;

namespace {

// What every driver relies on: letters by address, their hidden lengths, workspace that is asked for.
TEST(Lapack, DriversOfBothTypesGiveTheSame)
{
    M<double> const a = matrix(3, 3, {4, 1, 2, 1, 5, 3, 2, 3, 6});
    double rcond[2], least[2];
    std::vector<double> singular[2];
    for (int complex = 0; complex < 2; ++complex)
        with_scalar(complex != 0, [&](auto zero) {
            using T = decltype(zero);
            Packed<T> lu(a), of_svd(a), of_eigenvalues(a);
            int pivots[3];
            EXPECT_EQ(lapack::getrf(3, 3, lu.data(), 3, pivots), 0);
            EXPECT_EQ(lapack::gecon('1', 3, lu.data(), 3, 11, rcond[complex]), 0);
            EXPECT_EQ(lapack::getri(3, lu.data(), 3, pivots), 0);
            T product{};
            for (int k = 0; k < 3; ++k)
                product += lu(1, k) * a.addr()[k + 3];
            EXPECT_NEAR(std::abs(product - 1.0), 0, 1e-15);
            double s[3], w[3];
            T none{};
            EXPECT_EQ(lapack::gesdd('N', 3, 3, of_svd.data(), 3, s, &none, 1, &none, 1), 0);
            EXPECT_EQ(lapack::syevd('N', 'U', 3, of_eigenvalues.data(), 3, w), 0);
            least[complex] = w[0];
            EXPECT_NEAR(s[2], w[0], 1e-14);
            singular[complex].assign(s, s + 3);
        });
    EXPECT_NEAR(rcond[0], rcond[1], 1e-15);
    EXPECT_NEAR(least[0], least[1], 1e-14);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(singular[0][static_cast<std::size_t>(k)], singular[1][static_cast<std::size_t>(k)], 1e-14);
}

TEST(Lapack, WhatWentWrongIsReportedOnce)
{
    Arguments const args("inv");
    struct {
        int info;
        bool good;
        char const* reported;
    } const rows[] = {{0, true, ""},
                      {3, true, ""},
                      {-4, false, "inv: internal error in argument 4 of the matrix library"},
                      {lapack::no_memory, false, ""},
                      {lapack::not_available, false, "inv is not available in this build"}};
    for (auto const& row : rows) {
        bool good = false;
        EXPECT_EQ(reported_by([&] { good = lapack::succeeded(args, row.info); }), row.reported);
        EXPECT_EQ(good, row.good);
    }
}

TEST(Lapack, PackedMatricesAreCopiesInEitherDirection)
{
    M<double> sparse_value = matrix(2, 2, {1, 0, 3, 4}, {0, 0, -2, 1});
    M<double> const full_value = sparse_value;
    sparse_value.getsparse(0);
    for (M<double> const* x : {&full_value, const_cast<M<double> const*>(&sparse_value)}) {
        EXPECT_EQ(shown(Packed<Complex>(*x).value()), "2x2: 1+0i 0+0i 3-2i 4+1i");
        EXPECT_EQ(shown(Packed<double>(*x).value()), "2x2: 1 0 3 4");
    }
    Packed<double> copy(full_value);
    copy(0, 1) = 9;
    EXPECT_EQ(*full_value.addr(1, 2), 3);
}

} // namespace
