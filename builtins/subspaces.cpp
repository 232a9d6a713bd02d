#include "builtins/subspaces.h"

#include "builtins/results.h"
#include "builtins/spectrum.h"
#include "core/reshape.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// Some of the columns, from number `first` on.
template <Scalar T> M<double> columns(Packed<T> const& x, int first, int count)
{
    Packed<T> made(x.rows(), count);
    if (!made)
        return x_M;
    std::copy_n(x.column(first), made.size(), made.data());
    return stored_or_nothing(made.value());
}

M<double> orthonormal_basis(Arguments const& args, M<double> const& A)
{
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        SingularValues<T> found;
        if (!decompose(args, A, SingularVectors::economy, found))
            return x_M;
        return columns(found.u, 0, found.rank(found.default_tolerance(A.rows(), A.cols())));
    });
}

M<double> null_space(Arguments const& args, M<double> const& A)
{
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        SingularValues<T> found;
        // All of V is there without all of U when there are more rows than columns.
        if (!decompose(args, A, A.rows() >= A.cols() ? SingularVectors::economy : SingularVectors::all, found))
            return x_M;
        int const n = A.cols(), rank = found.rank(found.default_tolerance(A.rows(), n));
        Packed<T> basis(n, n - rank);
        if (!basis)
            return x_M;
        for (int j = rank; j < n; ++j)
            for (int i = 0; i < n; ++i)
                basis(i, j - rank) = conjugate(found.vt(j, i));
        return stored_or_nothing(basis.value());
    });
}

// --- echelon form --------------------------------------------------------------------------------

template <Scalar T> double default_tolerance(Packed<T> const& a)
{
    double largest = 0;
    for (int i = 0; i < a.rows(); ++i) {
        double sum = 0;
        for (int j = 0; j < a.cols(); ++j)
            sum += std::abs(a(i, j));
        largest = std::max(largest, sum);
    }
    return std::max(a.rows(), a.cols()) * std::numeric_limits<double>::epsilon() * largest;
}

// Brings `a` into echelon form; `pivots` takes the pivot columns. Returns the rank.
template <Scalar T> int eliminate(Packed<T>& a, double tolerance, int* pivots)
{
    int const m = a.rows(), n = a.cols();
    int rank = 0;
    for (int j = 0; j < n && rank < m; ++j) {
        auto const smaller = [](T x, T y) { return std::abs(x) < std::abs(y); };
        T* const column = a.column(j);
        int const pivot = static_cast<int>(std::max_element(column + rank, column + m, smaller) - column);
        if (std::abs(column[pivot]) <= tolerance) {
            std::fill(column + rank, column + m, T());
            continue;
        }
        for (int c = j; c < n; ++c)
            std::swap(a(pivot, c), a(rank, c));
        T const divisor = column[rank];
        for (int c = n; c-- > j + 1;) {
            T* const to = a.column(c);
            T const factor = to[rank] /= divisor;
            if (factor == T())
                continue;
            for (int i = 0; i < m; ++i)
                if (i != rank)
                    to[i] -= column[i] * factor;
        }
        std::fill(column, column + m, T());
        column[rank] = 1;
        pivots[rank++] = j;
    }
    return rank;
}

// R and jb.
Results<2> echelon(M<double> const& A, M<double> const& tol)
{
    Arguments const args("rref");
    if (!flat_and_finite(args, A))
        return nothing<2>();
    return with_scalar(A.isc(), [&](auto kind) {
        Packed<decltype(kind)> a(A);
        HeapArray<int> pivots(static_cast<std::size_t>(A.rows()));
        if (!a || !pivots)
            return nothing<2>();
        int const rank = eliminate(a, given(tol) ? tol[1] : default_tolerance(a), pivots.data());
        Results<2> results{a.value(), full_result(Dims(1, rank))};
        if (!all_have_storage(results))
            return nothing<2>();
        std::transform(pivots.data(), pivots.data() + rank, results[1].addr(), [](int j) { return j + 1.0; });
        return results;
    });
}

// Ones and zeros in the rows of the columns without a pivot, what the others need against them elsewhere.
M<double> rational_null_space(M<double> const& A)
{
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> a(A);
        int const n = A.cols();
        HeapArray<int> pivots(static_cast<std::size_t>(A.rows()));
        if (!a || !pivots)
            return x_M;
        int const rank = eliminate(a, default_tolerance(a), pivots.data());
        Packed<T> basis(n, n - rank);
        if (!basis)
            return x_M;
        std::fill_n(basis.data(), basis.size(), T());
        for (int j = 0, next = 0, made = 0; j < n; ++j) {
            if (next < rank && pivots[static_cast<std::size_t>(next)] == j) {
                ++next;
                continue;
            }
            for (int i = 0; i < next; ++i)
                if (a(i, j) != T())
                    basis(pivots[static_cast<std::size_t>(i)], made) = -a(i, j);
            basis(j, made++) = 1;
        }
        return stored_or_nothing(basis.value());
    });
}

// --- angles --------------------------------------------------------------------------------------

// The largest or the smallest singular value; negative after a report.
double extreme_value(Arguments const& args, M<double> const& A, bool largest)
{
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        SingularValues<T> found;
        if (!decompose(args, A, SingularVectors::none, found) || found.count == 0)
            return -1.0;
        return found.s.data()[largest ? 0 : found.count - 1];
    });
}

} // namespace

M<double> null(M<double> const& A)
{
    Arguments const args("null");
    if (!flat_and_finite(args, A))
        return x_M;
    return given(A) ? null_space(args, A) : M<double>();
}

M<double> null(M<double> const& A, M<double> const& option)
{
    Arguments const args("null");
    if (!given(option))
        return null(A);
    std::string const text = text_of(option);
    if (!same_word(text.c_str(), "r")) {
        args.unknown_option(text.c_str());
        return x_M;
    }
    if (!flat_and_finite(args, A))
        return x_M;
    return given(A) ? rational_null_space(A) : M<double>();
}

M<double> orth(M<double> const& A)
{
    Arguments const args("orth");
    if (!flat_and_finite(args, A))
        return x_M;
    return given(A) ? orthonormal_basis(args, A) : M<double>();
}

M<double> rref(M<double> const& A)
{
    return echelon(A, nop_M)[0];
}

M<double> rref(M<double> const& A, M<double> const& tol)
{
    return echelon(A, tol)[0];
}

M<double> rref(M<double> const& A, i_o_t, Mr<double> R)
{
    return hand_out(echelon(A, nop_M), R);
}

M<double> rref(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> R)
{
    return hand_out(echelon(A, tol), R);
}

M<double> rref(M<double> const& A, i_o_t, Mr<double> R, Mr<double> jb)
{
    return hand_out(echelon(A, nop_M), R, jb);
}

M<double> rref(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> R, Mr<double> jb)
{
    return hand_out(echelon(A, tol), R, jb);
}

M<double> subspace(M<double> const& A, M<double> const& B)
{
    Arguments const args("subspace");
    if (!flat_and_finite(args, A) || !flat_and_finite(args, B))
        return x_M;
    if (A.rows() != B.rows()) {
        args.sizes_differ(A, B);
        return x_M;
    }
    if (!given(A))
        return M<double>();
    M<double> larger = orthonormal_basis(args, A), smaller = orthonormal_basis(args, B);
    if (larger.issamename(x_Mp) || smaller.issamename(x_Mp))
        return x_M;
    if (larger.size() < smaller.size())
        std::swap(larger, smaller);
    if (!given(smaller))
        return 0.0;
    // The cosine tells large angles apart, the sine small ones: Björck and Golub, Numerical methods for
    // computing angles between linear subspaces, 1973.
    M<double> const cosines = ctranspose(larger) * smaller;
    if (!given(cosines))
        return x_M;
    double const sine = extreme_value(args, smaller - larger * cosines, true);
    if (sine < 0)
        return x_M;
    if (sine < 0.7)
        return std::asin(sine);
    double const cosine = extreme_value(args, cosines, false);
    return cosine < 0 ? x_M : M<double>(std::acos(std::min(cosine, 1.0)));
}
