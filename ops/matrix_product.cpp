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
// Threads share matrices out in pieces of so many rows or columns, which the library's kernels divide
// as they divide the whole: the bits do not depend on the number of threads.
constexpr std::int64_t piece_unit = 64;

// Sizes of a product: x is m x k, y is k x n.
struct Sizes {
    int m, n, k;
};

// Rows or columns that come to at least `least`, when each of them counts for `each`.
std::ptrdiff_t piece(std::int64_t least, std::int64_t each)
{
    std::int64_t const wanted = least / std::max<std::int64_t>(each, 1);
    return static_cast<std::ptrdiff_t>((wanted / piece_unit + 1) * piece_unit);
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

void multiply_by_vector(Sizes s, double sign, double const* x, double const* y, double* z)
{
    parallel_for(s.m, piece(least_elements, s.k), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
        blas.gemv(static_cast<int>(to - from), s.k, sign, {x + from, s.m}, y, z + from);
    });
}

void multiply_vector_by(Sizes s, double sign, double const* x, double const* y, double* z)
{
    parallel_for(s.n, piece(least_elements, s.k), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
        blas.gemv_transposed(s.k, static_cast<int>(to - from), sign, {y + from * s.k, s.k}, x, z + from);
    });
}

void multiply_matrices(Sizes s, double sign, double const* x, double const* y, bool onto, double* z)
{
    // The longer side of the result is divided.
    if (s.n >= s.m)
        parallel_for(s.n, piece(least_multiplications, std::int64_t{s.m} * s.k), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
            blas.gemm(s.m, static_cast<int>(to - from), s.k, sign, {x, s.m}, {y + from * s.k, s.k}, onto, {z + from * s.m, s.m});
        });
    else
        parallel_for(s.m, piece(least_multiplications, std::int64_t{s.n} * s.k), [=](std::ptrdiff_t from, std::ptrdiff_t to) {
            blas.gemm(static_cast<int>(to - from), s.n, s.k, sign, {x + from, s.m}, {y, s.k}, onto, {z + from, s.m});
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

} // namespace

M<double> matrix_product(M<double> const& x, M<double> const& y)
{
    if (!can_be_multiplied(x, y))
        return x_M;
    M<double> made = x.issparse() && y.issparse() ? sparse_times_sparse(x, y)
                     : x.issparse()               ? sparse_times_full(x, y)
                     : y.issparse()               ? full_times_sparse(x, y)
                                                  : full_product(x, y);
    return has_storage(made) ? made : x_M;
}

} // namespace arrlib
