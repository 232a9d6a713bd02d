#include "builtins/svd.h"

#include "builtins/results.h"
#include "builtins/spectrum.h"
#include "core/reshape.h"

#include <cmath>
#include <limits>
#include <numeric>

using namespace arrlib;

namespace {

// A matrix of zeros but for values on its main diagonal.
M<double> diagonal(int rows, int cols, double const* values)
{
    M<double> made = full_result(Dims(rows, cols));
    if (has_storage(made)) {
        std::fill_n(made.addr(), made.size(), 0.0);
        for (std::ptrdiff_t k = 0; k < std::min(rows, cols); ++k)
            made.addr()[k * rows + k] = values[k];
    }
    return made;
}

M<double> singular_values(M<double> const& A)
{
    Arguments const args("svd");
    if (!flat_and_finite(args, A))
        return x_M;
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        SingularValues<T> made;
        return decompose(args, A, SingularVectors::none, made) ? made.s.value() : x_M;
    });
}

// U, S and V.
Results<3> factors(M<double> const& A, bool economy)
{
    Arguments const args("svd");
    if (!flat_and_finite(args, A))
        return nothing<3>();
    if (!given(A))
        return {};
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        SingularValues<T> made;
        bool const thin = economy && A.rows() > A.cols();
        if (!decompose(args, A, thin ? SingularVectors::economy : SingularVectors::all, made))
            return nothing<3>();
        Results<3> results{made.u.value(), diagonal(thin ? A.cols() : A.rows(), A.cols(), made.s.data()), ctranspose(made.vt.value())};
        return all_have_storage(results) && results[2].size() > 0 ? results : nothing<3>();
    });
}

bool is_economy(M<double> const& economy)
{
    return given(economy) && economy[1] == 0;
}

// --- two matrices --------------------------------------------------------------------------------

// What the driver gives: A = U D1 [0 R] Q', B = V D2 [0 R] Q'.
template <Scalar T> struct PairFactors {
    Packed<T> a, b, u, v, q;
    HeapArray<double> cosines, sines;
    // The driver's numbers of the values, those with the largest cosine last.
    HeapArray<int> order;
    int k = 0, l = 0;

    int rank() const { return k + l; }
    double cosine(int j) const { return cosines[static_cast<std::size_t>(number(j))]; }
    // Sines stand in rows of their own only from number k on.
    double sine(int j) const { return number(j) < k ? 0 : sines[static_cast<std::size_t>(number(j))]; }
    int number(int j) const { return order[static_cast<std::size_t>(j)]; }
};

template <Scalar T> bool factor_pair(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, PairFactors<T>& made)
{
    int const m = A.rows(), p = B.rows(), n = A.cols();
    std::size_t const count = static_cast<std::size_t>(n);
    made = {Packed<T>(A), Packed<T>(B), Packed<T>(vectors ? m : 0, vectors ? m : 0), Packed<T>(vectors ? p : 0, vectors ? p : 0),
            Packed<T>(vectors ? n : 0, vectors ? n : 0), HeapArray<double>(count), HeapArray<double>(count), HeapArray<int>(count)};
    if (!made.a || !made.b || !made.u || !made.v || !made.q || !made.cosines || !made.sines || !made.order)
        return false;
    if (!converged(args, lapack::ggsvd3(vectors ? 'U' : 'N', vectors ? 'V' : 'N', vectors ? 'Q' : 'N', m, n, p, made.k, made.l, made.a.data(), made.a.stride(),
                                        made.b.data(), made.b.stride(), made.cosines.data(), made.sines.data(), made.u.data(), made.u.stride(),
                                        made.v.data(), made.v.stride(), made.q.data(), made.q.stride(), made.order.data())))
        return false;
    // The first k cosines are 1, those from m on are 0: only the values between are in no order.
    int* const order = made.order.data();
    std::iota(order, order + made.rank(), 0);
    std::sort(order + std::min(made.k, m), order + std::min(m, made.rank()), [&](int x, int y) {
        return made.cosines[static_cast<std::size_t>(x)] > made.cosines[static_cast<std::size_t>(y)];
    });
    std::reverse(order, order + made.rank());
    return true;
}

// Columns in another order: number(j) goes to column j, those from `count` on stay where they are.
template <Scalar T, class Number> Packed<T> reordered(Packed<T> const& x, int count, Number number)
{
    Packed<T> made(x.rows(), x.cols());
    for (int j = 0; made && j < x.cols(); ++j)
        std::copy_n(x.column(j < count ? number(j) : j), x.rows(), made.column(j));
    return made;
}

// X = Q [0 R]'. R lies in the last columns of A, and its rows from m on in B.
template <Scalar T> Packed<T> common_factor(PairFactors<T> const& made)
{
    int const m = made.a.rows(), n = made.a.cols(), rank = made.rank();
    auto const r = [&](int i, int j) { return i < m ? made.a(i, n - rank + j) : made.b(i - made.k, n - rank + j); };
    Packed<T> x(n, rank);
    if (!x)
        return x;
    std::fill_n(x.data(), x.size(), T());
    for (int to = 0; to < rank; ++to)
        for (int i = made.number(to), j = i; j < rank; ++j) {
            T const factor = conjugate(r(i, j));
            for (int row = 0; row < n; ++row)
                x(row, to) += made.q(row, n - rank + j) * factor;
        }
    return x;
}

// Numbers on the diagonal that begins at column `shift`: value(j) in column j.
template <class Value> M<double> shifted_diagonal(int rows, int rank, int shift, Value value)
{
    M<double> made = full_result(Dims(rows, rank));
    if (has_storage(made)) {
        std::fill_n(made.addr(), made.size(), 0.0);
        for (std::ptrdiff_t i = 0; i < rows && i + shift < rank; ++i)
            made.addr()[(i + shift) * rows + i] = value(static_cast<int>(i) + shift);
    }
    return made;
}

bool agree(Arguments const& args, M<double> const& A, M<double> const& B)
{
    return flat_and_finite(args, A) && flat_and_finite(args, B) && (A.cols() == B.cols() || args.sizes_differ(A, B));
}

// U, V, X, C and S.
Results<5> pair_factors(M<double> const& A, M<double> const& B)
{
    Arguments const args("gsvd");
    if (!agree(args, A, B))
        return nothing<5>();
    if (!given(A))
        return {};
    return with_scalar(A.isc() || B.isc(), [&](auto kind) {
        using T = decltype(kind);
        PairFactors<T> made;
        if (!factor_pair(args, A, B, true, made))
            return nothing<5>();
        int const m = A.rows(), p = B.rows(), rank = made.rank();
        int const shift = std::max(0, rank - m);
        Packed<T> x = common_factor(made);
        Packed<T> u = reordered(made.u, std::min(m, rank), [&](int j) { return made.number(j + shift); });
        Packed<T> v = reordered(made.v, made.l, [&](int j) { return made.number(j) - made.k; });
        if (!x || !u || !v)
            return nothing<5>();
        Results<5> results{u.value(), v.value(), x.value(), shifted_diagonal(m, rank, shift, [&](int j) { return made.cosine(j); }),
                           shifted_diagonal(p, rank, 0, [&](int j) { return made.sine(j); })};
        return all_have_storage(results) ? results : nothing<5>();
    });
}

M<double> pair_values(M<double> const& A, M<double> const& B)
{
    Arguments const args("gsvd");
    if (!agree(args, A, B))
        return x_M;
    if (!given(A))
        return M<double>();
    return with_scalar(A.isc() || B.isc(), [&](auto kind) {
        PairFactors<decltype(kind)> made;
        if (!factor_pair(args, A, B, false, made))
            return x_M;
        M<double> values = full_result(Dims(made.rank(), 1));
        if (!has_storage(values))
            return x_M;
        for (int j = 0; j < made.rank(); ++j)
            values.addr()[j] = made.sine(j) == 0 ? std::numeric_limits<double>::infinity() : made.cosine(j) / made.sine(j);
        return values;
    });
}

} // namespace

M<double> svd(M<double> const& A)
{
    return singular_values(A);
}

M<double> svd(M<double> const& A, i_o_t, Mr<double> s)
{
    return hand_out(Results<1>{singular_values(A)}, s);
}

M<double> svd(M<double> const& A, i_o_t, Mr<double> U, Mr<double> S)
{
    return hand_out(factors(A, false), U, S);
}

M<double> svd(M<double> const& A, i_o_t, Mr<double> U, Mr<double> S, Mr<double> V)
{
    return hand_out(factors(A, false), U, S, V);
}

M<double> svd(M<double> const& A, M<double> const&)
{
    return singular_values(A);
}

M<double> svd(M<double> const& A, M<double> const&, i_o_t, Mr<double> s)
{
    return hand_out(Results<1>{singular_values(A)}, s);
}

M<double> svd(M<double> const& A, M<double> const& economy, i_o_t, Mr<double> U, Mr<double> S)
{
    return hand_out(factors(A, is_economy(economy)), U, S);
}

M<double> svd(M<double> const& A, M<double> const& economy, i_o_t, Mr<double> U, Mr<double> S, Mr<double> V)
{
    return hand_out(factors(A, is_economy(economy)), U, S, V);
}

M<double> gsvd(M<double> const& A, M<double> const& B)
{
    return pair_values(A, B);
}

M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> s)
{
    return hand_out(Results<1>{pair_values(A, B)}, s);
}

M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V)
{
    return hand_out(pair_factors(A, B), U, V);
}

M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X)
{
    return hand_out(pair_factors(A, B), U, V, X);
}

M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X, Mr<double> C)
{
    return hand_out(pair_factors(A, B), U, V, X, C);
}

M<double> gsvd(M<double> const& A, M<double> const& B, i_o_t, Mr<double> U, Mr<double> V, Mr<double> X, Mr<double> C, Mr<double> S)
{
    return hand_out(pair_factors(A, B), U, V, X, C, S);
}
