#include "ops/matrix_product.h"

#include "core/access.h"
#include "core/sparse_build.h"
#include "ops/blas.h"
#include "ops/product_parts.h"
#include "ops/sparse_product.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <algorithm>

namespace arrlib {

namespace {

// A call of the library costs more than so many multiplications.
constexpr std::int64_t few_multiplications = 256;
// Less than this is not worth another thread: multiplications of a product of matrices, elements that
// a product with a vector reads.
constexpr std::int64_t least_multiplications = std::int64_t{1} << 22, least_elements = std::int64_t{1} << 16;
// Threads share out vectors in pieces of so many elements and matrices in pieces of so many columns,
// which the library's loops divide as they divide the whole: the bits do not depend on the number of
// threads. Its loops for AVX-512 take 24 columns at a time, others 4 or 8.
constexpr std::int64_t vector_unit = 64, column_unit = 48;
// From here on every thread's copy of the left factor costs more than equal bits are worth: the library's
// own threads share it.
constexpr std::int64_t library_multiplications = std::int64_t{1} << 28;

// Sizes of a product: x is m x k, y is k x n.
struct Sizes {
    int m, n, k;
};

// Rows or columns, in whole units, that come to at least `least` when each of them counts for `each`.
std::ptrdiff_t piece(std::int64_t least, std::int64_t each, std::int64_t unit)
{
    std::int64_t const wanted = least / std::max<std::int64_t>(each, 1);
    return static_cast<std::ptrdiff_t>((wanted / unit + 1) * unit);
}

void multiply_few(Sizes s, double sign, double const* x, double const* y, bool onto, double* __restrict__ z)
{
    for (int j = 0; j < s.n; ++j, z += s.m, y += s.k)
        for (int p = 0; p < s.k; ++p) {
            double const factor = sign * y[p];
            double const* const from = x + static_cast<std::ptrdiff_t>(p) * s.m;
            if (p > 0 || onto)
                for (int i = 0; i < s.m; ++i)
                    z[i] += from[i] * factor;
            else
                for (int i = 0; i < s.m; ++i)
                    z[i] = from[i] * factor;
        }
}

// The same for a square x of a size that the compiler knows.
template <std::size_t rows> void multiply_few_square(Sizes s, double const* x, double const* y, double* __restrict__ z)
{
    for (int j = 0; j < s.n; ++j, z += rows, y += rows)
        for (std::size_t i = 0; i < rows; ++i) {
            double sum = x[i] * y[0];
            for (std::size_t p = 1; p < rows; ++p)
                sum += x[p * rows + i] * y[p];
            z[i] = sum;
        }
}

void multiply_small(Sizes s, double const* x, double const* y, double* z)
{
    if (s.m != s.k)
        return multiply_few(s, 1, x, y, false, z);
    switch (s.m) {
    case 2:
        return multiply_few_square<2>(s, x, y, z);
    case 3:
        return multiply_few_square<3>(s, x, y, z);
    case 4:
        return multiply_few_square<4>(s, x, y, z);
    default:
        return multiply_few(s, 1, x, y, false, z);
    }
}

void multiply_by_vector(Sizes s, double sign, double const* x, double const* y, double* z)
{
    parallel_for(s.m, piece(least_elements, s.k, vector_unit), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
        blas.gemv(static_cast<int>(to - from), s.k, sign, {x + from, s.m}, y, z + from);
    });
}

void multiply_vector_by(Sizes s, double sign, double const* x, double const* y, double* z)
{
    parallel_for(s.n, piece(least_elements, s.k, vector_unit), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
        blas.gemv_transposed(s.k, static_cast<int>(to - from), sign, {y + from * s.k, s.k}, x, z + from);
    });
}

void multiply_matrices(Sizes s, double sign, double const* x, double const* y, bool onto, double* z)
{
    if (std::int64_t{s.m} * s.n * s.k >= library_multiplications)
        return blas.gemm(parallel_width(), s.m, s.n, s.k, sign, {x, s.m}, {y, s.k}, onto, {z, s.m});
    if (s.n >= 2 * column_unit || s.m < 2 * s.n)
        return parallel_for(s.n, piece(least_multiplications, std::int64_t{s.m} * s.k, column_unit), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
            blas.gemm(1, s.m, static_cast<int>(to - from), s.k, sign, {x, s.m}, {y + from * s.k, s.k}, onto, {z + from * s.m, s.m});
        });
    // How the last rows of a call are computed depends on their number: the calls are the same however many
    // threads make them.
    std::ptrdiff_t const rows = piece(least_multiplications, std::int64_t{s.n} * s.k, vector_unit);
    parallel_for((s.m + rows - 1) / rows, 1, [=](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t row = from * rows; row < std::min<std::ptrdiff_t>(to * rows, s.m); row += rows)
            blas.gemm(1, static_cast<int>(std::min<std::ptrdiff_t>(rows, s.m - row)), s.n, s.k, sign, {x + row, s.m}, {y, s.k}, onto, {z + row, s.m});
    });
}

void multiply_real(Sizes s, double sign, double const* x, double const* y, bool onto, double* z)
{
    std::int64_t const result = std::int64_t{s.m} * s.n;
    if (s.k == 1 || result * s.k <= few_multiplications)
        return multiply_few(s, sign, x, y, onto, z);
    if (s.m > 1 && s.n > 1)
        return multiply_matrices(s, sign, x, y, onto, z);
    if (!onto)
        std::fill_n(z, result, 0.0);
    if (result == 1)
        *z += sign * blas.dot(s.k, x, y);
    else if (s.n == 1)
        multiply_by_vector(s, sign, x, y, z);
    else
        multiply_vector_by(s, sign, x, y, z);
}

M<double> full_product(M<double> const& x, M<double> const& y)
{
    Sizes const sizes{x.rows(), y.cols(), x.cols()};
    M<double> made = Access<double>::full(x.isc() || y.isc(), Dims(sizes.m, sizes.n));
    if (made.size() > 0)
        add_products_of_parts(x, y, made, [&](double* z, double const* of_x, double const* of_y, double sign, bool onto) {
            multiply_real(sizes, sign, of_x, of_y, onto, z);
        });
    return made;
}

// Full and real, of two dimensions.
bool is_real_matrix(M<double> const& x)
{
    return x.getndims() == 2 && !x.isc() && !x.issparse();
}

// False after a report.
bool can_be_multiplied(M<double> const& x, M<double> const& y)
{
    for (M<double> const* operand : {&x, &y})
        if (operand->getndims() > 2) {
            error("*: %s has more than two dimensions", OperandName(*operand));
            return false;
        }
    if (x.cols() == y.rows())
        return true;
    error("*: inner dimensions of %s and %s do not agree", OperandName(x), OperandName(y));
    return false;
}

[[gnu::noinline]] M<double> small_product(M<double> const& x, M<double> const& y)
{
    Sizes const sizes{x.rows(), y.cols(), x.cols()};
    M<double> made = Access<double>::small(sizes.m, sizes.n);
    if (has_storage(made))
        multiply_small(sizes, x.addr(), y.addr(), made.addr());
    return made;
}

[[gnu::noinline]] M<double> any_product(M<double> const& x, M<double> const& y)
{
    if (!can_be_multiplied(x, y))
        return x_M;
    M<double> made = x.issparse() && y.issparse() ? sparse_times_sparse(x, y)
                     : x.issparse()               ? sparse_times_full(x, y)
                     : y.issparse()               ? full_times_sparse(x, y)
                                                  : full_product(x, y);
    return has_storage(made) ? made : x_M;
}

} // namespace

M<double> matrix_product(M<double> const& x, M<double> const& y)
{
    if (is_real_matrix(x) && is_real_matrix(y) && x.cols() == y.rows()) {
        std::int64_t const result = std::int64_t{x.rows()} * y.cols();
        if (result > 0 && result * x.cols() <= few_multiplications)
            return small_product(x, y);
    }
    return any_product(x, y);
}

} // namespace arrlib
