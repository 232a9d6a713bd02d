#include "builtins/eigenpairs.h"
#include "builtins/poly.h"
#include "builtins/results.h"

#include <cmath>
#include <initializer_list>

using namespace arrlib;

namespace {

// The matrices A0, A1, ... of one call.
using Matrices = std::initializer_list<M<double> const*>;

bool can_be_solved(Arguments const& args, Matrices matrices)
{
    M<double> const& first = **matrices.begin();
    for (M<double> const* one : matrices) {
        if (!square_and_finite(args, *one))
            return false;
        if (one->rows() != first.rows())
            return args.sizes_differ(first, *one);
    }
    return true;
}

// a x = z b x for x = [v; z v; z^2 v; ...]: a is A0 and identities on the diagonal, b is -A1, -A2, ... in
// its first block of rows and identities below its diagonal.
template <Scalar T> bool linearise(Matrices matrices, M<double>& a, M<double>& b)
{
    int const n = (*matrices.begin())->rows(), powers = static_cast<int>(matrices.size()) - 1;
    Packed<T> left(n * powers, n * powers), right(n * powers, n * powers);
    if (!left || !right)
        return false;
    std::fill_n(left.data(), left.size(), T());
    std::fill_n(right.data(), right.size(), T());
    for (int k = n; k < n * powers; ++k)
        left(k, k) = right(k, k - n) = 1;
    int power = 0;
    for (M<double> const* one : matrices) {
        Packed<T> const block(*one);
        if (!block)
            return false;
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i)
                if (power == 0)
                    left(i, j) = block(i, j);
                else
                    right(i, (power - 1) * n + j) = -block(i, j);
        ++power;
    }
    a = left.value();
    b = right.value();
    return has_storage(a) && has_storage(b);
}

// The block of n rows that is largest in each column: v in the scale that lost least.
M<double> largest_blocks(M<double> const& vectors, int n)
{
    std::ptrdiff_t const rows = vectors.rows(), count = vectors.cols();
    M<double> made = full_result(Dims(n, vectors.cols()), vectors.isc());
    if (!has_storage(made))
        return made;
    for (std::ptrdiff_t j = 0; j < count; ++j) {
        double const *const re = vectors.addr() + j * rows, *const im = vectors.isc() ? vectors.addi() + j * rows : nullptr;
        std::ptrdiff_t best = 0;
        double largest = -1;
        for (std::ptrdiff_t from = 0; from < rows; from += n) {
            double size = 0;
            for (std::ptrdiff_t i = from; i < from + n; ++i)
                size += re[i] * re[i] + (im ? im[i] * im[i] : 0);
            if (size > largest) {
                largest = size;
                best = from;
            }
        }
        std::copy_n(re + best, n, made.addr() + j * n);
        if (im)
            std::copy_n(im + best, n, made.addi() + j * n);
    }
    normalise_columns(made);
    return made;
}

// X and E.
Results<2> solved(Matrices matrices, bool vectors)
{
    Arguments const args("polyeig");
    if (!can_be_solved(args, matrices))
        return nothing<2>();
    M<double> const& first = **matrices.begin();
    if (!given(first))
        return {};
    Eigenpairs made;
    bool done = false;
    if (matrices.size() == 1) {
        M<double> const full = full_form(first);
        done = has_storage(full) && general_pairs(args, full, 'B', vectors ? Eigenvectors::right : Eigenvectors::none, made);
    } else {
        bool const complex = std::any_of(matrices.begin(), matrices.end(), [](M<double> const* one) { return one->isc(); });
        M<double> a, b;
        done = (complex ? linearise<Complex>(matrices, a, b) : linearise<double>(matrices, a, b)) && pencil_pairs(args, a, b, vectors, made);
    }
    if (!done)
        return nothing<2>();
    Results<2> results{vectors ? largest_blocks(made.right, first.rows()) : M<double>(), made.values};
    return all_have_storage(results) ? results : nothing<2>();
}

M<double> values(Matrices matrices)
{
    return solved(matrices, false)[1];
}

M<double> values(Matrices matrices, Mr<double> E)
{
    return hand_out(Results<1>{values(matrices)}, E);
}

M<double> pairs(Matrices matrices, Mr<double> X, Mr<double> E)
{
    return hand_out(solved(matrices, true), X, E);
}

} // namespace

M<double> polyeig(M<double> const& A0)
{
    return values({&A0});
}

M<double> polyeig(M<double> const& A0, M<double> const& A1)
{
    return values({&A0, &A1});
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2)
{
    return values({&A0, &A1, &A2});
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3)
{
    return values({&A0, &A1, &A2, &A3});
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4)
{
    return values({&A0, &A1, &A2, &A3, &A4});
}

M<double> polyeig(M<double> const& A0, i_o_t, Mr<double> E)
{
    return values({&A0}, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, i_o_t, Mr<double> E)
{
    return values({&A0, &A1}, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, i_o_t, Mr<double> E)
{
    return values({&A0, &A1, &A2}, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, i_o_t, Mr<double> E)
{
    return values({&A0, &A1, &A2, &A3}, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4, i_o_t, Mr<double> E)
{
    return values({&A0, &A1, &A2, &A3, &A4}, E);
}

M<double> polyeig(M<double> const& A0, i_o_t, Mr<double> X, Mr<double> E)
{
    return pairs({&A0}, X, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, i_o_t, Mr<double> X, Mr<double> E)
{
    return pairs({&A0, &A1}, X, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, i_o_t, Mr<double> X, Mr<double> E)
{
    return pairs({&A0, &A1, &A2}, X, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, i_o_t, Mr<double> X, Mr<double> E)
{
    return pairs({&A0, &A1, &A2, &A3}, X, E);
}

M<double> polyeig(M<double> const& A0, M<double> const& A1, M<double> const& A2, M<double> const& A3, M<double> const& A4, i_o_t, Mr<double> X, Mr<double> E)
{
    return pairs({&A0, &A1, &A2, &A3, &A4}, X, E);
}
