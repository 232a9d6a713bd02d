#include "builtins/factorizations.h"

#include "builtins/dense.h"
#include "builtins/sparse_factor.h"
#include "builtins/sparse_lu.h"
#include "core/sparse_rearrange.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// A value, or the empty result when it has no storage after a report.
M<double> or_nothing(M<double> made)
{
    return has_storage(made) ? made : x_M;
}

// --- triangular factors ---------------------------------------------------------------------------

struct LuFactors {
    M<double> l = x_M, u = x_M, p = x_M, both = x_M;
};
enum class LuWanted { both, unordered, ordered };

// The triangle below the diagonal, with ones on it; row i goes to to_row(i).
template <Scalar T, class ToRow> M<double> unit_lower(Packed<T> const& a, ToRow to_row)
{
    int const m = a.rows(), least = std::min(m, a.cols());
    Packed<T> l(m, least);
    if (!l)
        return x_M;
    fill(l, 0);
    for (int j = 0; j < least; ++j)
        for (int i = j; i < m; ++i)
            l(to_row(i), j) = i == j ? T(1) : a(i, j);
    return or_nothing(l.value());
}

// The triangle on and above the diagonal, of so many rows.
template <Scalar T> M<double> upper_part(Packed<T> const& a, int rows)
{
    Packed<T> u(rows, a.cols());
    if (!u)
        return x_M;
    for (int j = 0; j < a.cols(); ++j) {
        int const above = std::min(j + 1, std::min(rows, a.rows()));
        std::copy_n(a.column(j), above, u.column(j));
        std::fill_n(u.column(j) + above, rows - above, T());
    }
    return or_nothing(u.value());
}

template <Scalar T> bool full_lu(Arguments const& args, M<double> const& A, LuWanted wanted, LuFactors& factors)
{
    int const m = A.rows(), n = A.cols(), least = std::min(m, n);
    Packed<T> a(A);
    HeapArray<int> const pivots(static_cast<std::size_t>(least)), row(static_cast<std::size_t>(m));
    if (!a || !pivots || !row)
        return false;
    for (int i = 0; i < m; ++i)
        row[static_cast<std::size_t>(i)] = i;
    if (!all_finite(a))
        fill(a, NaN.addr()[0]);
    else {
        if (!lapack::succeeded(args, lapack::getrf(m, n, a.data(), m, pivots.data())))
            return false;
        for (int k = 0; k < least; ++k)
            std::swap(row[static_cast<std::size_t>(k)], row[static_cast<std::size_t>(pivots[static_cast<std::size_t>(k)] - 1)]);
    }
    if (wanted == LuWanted::both) {
        factors.both = or_nothing(a.value());
        return factors.both.size() > 0;
    }
    factors.u = upper_part(a, least);
    factors.l = unit_lower(a, [&](int i) { return wanted == LuWanted::unordered ? row[static_cast<std::size_t>(i)] : i; });
    if (wanted == LuWanted::unordered)
        return factors.l.size() > 0 && factors.u.size() > 0;
    Packed<double> p(m, m);
    if (!p)
        return false;
    fill(p, 0);
    for (int i = 0; i < m; ++i)
        p(i, row[static_cast<std::size_t>(i)]) = 1;
    factors.p = p.value();
    return factors.l.size() > 0 && factors.u.size() > 0;
}

template <Scalar T> bool sparse_lu(M<double> const& A, double threshold, LuWanted wanted, LuFactors& factors)
{
    SparseColumns<T> const columns(A);
    if (!columns)
        return false;
    SparseLu<T> const made(columns, threshold);
    if (!made)
        return false;
    if (wanted == LuWanted::both)
        return has_storage(factors.both = made.both());
    return has_storage(factors.l = made.lower(wanted == LuWanted::unordered)) && has_storage(factors.u = made.upper()) &&
           (wanted == LuWanted::unordered || has_storage(factors.p = made.permutation()));
}

// Everything empty after a report.
LuFactors lu_factors(M<double> const& A, M<double> const& thresh, LuWanted wanted)
{
    Arguments const args("lu");
    double const threshold = number_or(thresh, 1);
    LuFactors factors;
    if (!args.two_dimensional(A))
        return factors;
    if (!(threshold >= 0 && threshold <= 1)) {
        args.report("threshold must be between 0 and 1");
        return factors;
    }
    if (A.size() == 0)
        return {M<double>(), M<double>(), M<double>(), M<double>()};
    bool const made = with_scalar(A.isc(), [&](auto zero) {
        using T = decltype(zero);
        return A.issparse() ? sparse_lu<T>(A, threshold, wanted, factors) : full_lu<T>(args, A, wanted, factors);
    });
    return made ? factors : LuFactors();
}

// --- Cholesky factors -----------------------------------------------------------------------------

// The number of leading columns whose upper triangle is finite and real on the diagonal.
template <Scalar T> int leading_columns(Packed<T> const& a)
{
    for (int j = 0; j < a.cols(); ++j) {
        for (int i = 0; i <= j; ++i)
            if (!std::isfinite(std::real(a(i, j))) || !std::isfinite(std::imag(a(i, j))))
                return j;
        if (std::imag(a(j, j)) != 0)
            return j;
    }
    return a.cols();
}

template <Scalar T> M<double> full_cholesky(Arguments const& args, M<double> const& A, bool partial, int& order)
{
    order = -1;
    Packed<T> const whole(A);
    if (!whole)
        return x_M;
    int const n = A.rows();
    // Each failure shortens what is tried; the second try succeeds.
    for (int size = leading_columns(whole);;) {
        if (size < n && !partial) {
            order = size + 1;
            return x_M;
        }
        Packed<T> r(size, size);
        if (!r)
            return x_M;
        for (int j = 0; j < size; ++j) {
            std::copy_n(whole.column(j), j + 1, r.column(j));
            std::fill_n(r.column(j) + j + 1, size - j - 1, T());
        }
        int const info = lapack::potrf('U', size, r.data(), r.stride());
        if (!lapack::succeeded(args, info))
            return x_M;
        if (info == 0) {
            M<double> made = r.value();
            if (!has_storage(made))
                return x_M;
            order = size < n ? size + 1 : 0;
            return made;
        }
        size = info - 1;
    }
}

// `order` is -1 after a report.
M<double> cholesky(Arguments const& args, M<double> const& A, bool partial, int& order)
{
    order = -1;
    if (!args.square(A))
        return x_M;
    order = 0;
    if (A.size() == 0)
        return M<double>();
    return with_scalar(A.isc(), [&](auto zero) {
        using T = decltype(zero);
        return A.issparse() ? sparse_cholesky<T>(A, partial, order) : full_cholesky<T>(args, A, partial, order);
    });
}

// --- orthogonal factors ---------------------------------------------------------------------------

struct QrFactors {
    M<double> q = x_M, r = x_M, e = x_M;
};
enum class QrWanted { r, q_and_r, pivoted };

M<double> order_of_columns(HeapArray<int> const& columns, int n, bool economy)
{
    Packed<double> e(economy ? 1 : n, n);
    if (!e)
        return x_M;
    fill(e, 0);
    for (int j = 0; j < n; ++j)
        if (economy)
            e(0, j) = columns[static_cast<std::size_t>(j)];
        else
            e(columns[static_cast<std::size_t>(j)] - 1, j) = 1;
    return e.value();
}

template <Scalar T> bool full_qr(Arguments const& args, M<double> const& A, bool economy, QrWanted wanted, QrFactors& factors)
{
    int const m = A.rows(), n = A.cols(), least = std::min(m, n), columns_of_q = economy ? least : m;
    Packed<T> a(A);
    HeapArray<T> const tau(static_cast<std::size_t>(least));
    HeapArray<int> const columns(static_cast<std::size_t>(n));
    if (!a || !tau || !columns)
        return false;
    std::fill(columns.begin(), columns.end(), 0);
    bool const finite = all_finite(a);
    if (!finite) {
        fill(a, NaN.addr()[0]);
        for (int j = 0; j < n; ++j)
            columns[static_cast<std::size_t>(j)] = j + 1;
    } else if (!lapack::succeeded(args, wanted == QrWanted::pivoted ? lapack::geqp3(m, n, a.data(), m, columns.data(), tau.data())
                                                                    : lapack::geqrf(m, n, a.data(), m, tau.data())))
        return false;
    factors.r = upper_part(a, economy ? least : m);
    if (factors.r.size() == 0 || wanted == QrWanted::r)
        return factors.r.size() > 0;
    if (wanted == QrWanted::pivoted && (factors.e = order_of_columns(columns, n, economy)).size() == 0)
        return false;
    Packed<T> q(m, columns_of_q);
    if (!q)
        return false;
    if (!finite)
        fill(q, NaN.addr()[0]);
    else {
        std::copy_n(a.data(), static_cast<std::ptrdiff_t>(m) * least, q.data());
        if (!lapack::succeeded(args, lapack::orgqr(m, columns_of_q, least, q.data(), m, tau.data())))
            return false;
    }
    factors.q = or_nothing(q.value());
    return factors.q.size() > 0;
}

// What the second argument says.
struct QrRequest {
    bool economy = false, has_sides = false;
};

bool qr_request(Arguments const& args, M<double> const& A, M<double> const& B, QrRequest& request)
{
    request.economy = B.size() == 1 && B[1] == 0;
    request.has_sides = given(B) && !request.economy;
    if (!args.two_dimensional(A))
        return false;
    if (!request.has_sides)
        return true;
    if (!A.issparse())
        return args.report("second argument must be 0 for a full matrix");
    return args.two_dimensional(B) && (A.rows() == B.rows() || args.sizes_differ(A, B));
}

// Everything empty after a report.
QrFactors qr_factors(M<double> const& A, M<double> const& B, QrWanted wanted)
{
    Arguments const args("qr");
    QrRequest request;
    QrFactors factors;
    if (!qr_request(args, A, B, request))
        return factors;
    if (A.size() == 0)
        return {M<double>(), M<double>(), M<double>()};
    if (A.issparse() && (wanted == QrWanted::pivoted || (wanted == QrWanted::q_and_r && !request.has_sides))) {
        args.report("only R and [C,R] = qr(S,B) are available for a sparse matrix");
        return factors;
    }
    // C stands in the place of Q.
    bool const made = with_scalar(A.isc() || (request.has_sides && B.isc()), [&](auto zero) {
        using T = decltype(zero);
        return A.issparse() ? sparse_qr<T>(A, request.has_sides ? &B : nullptr, request.economy || request.has_sides, factors.r, factors.q)
                            : full_qr<T>(args, A, request.economy, wanted, factors);
    });
    return made ? factors : QrFactors();
}

} // namespace

M<double> lu(M<double> const& A)
{
    return lu(A, nop_M);
}

M<double> lu(M<double> const& A, M<double> const& thresh)
{
    return lu_factors(A, thresh, LuWanted::both).both;
}

M<double> lu(M<double> const& A, i_o_t, Mr<double> Y)
{
    return lu(A, nop_M, i_o, Y);
}

M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> Y)
{
    M<double> const made = lu(A, thresh);
    Y = made;
    return made;
}

M<double> lu(M<double> const& A, i_o_t, Mr<double> L, Mr<double> U)
{
    return lu(A, nop_M, i_o, L, U);
}

M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> L, Mr<double> U)
{
    LuFactors const made = lu_factors(A, thresh, LuWanted::unordered);
    L = made.l;
    U = made.u;
    return made.l;
}

M<double> lu(M<double> const& A, i_o_t, Mr<double> L, Mr<double> U, Mr<double> P)
{
    return lu(A, nop_M, i_o, L, U, P);
}

M<double> lu(M<double> const& A, M<double> const& thresh, i_o_t, Mr<double> L, Mr<double> U, Mr<double> P)
{
    LuFactors const made = lu_factors(A, thresh, LuWanted::ordered);
    L = made.l;
    U = made.u;
    P = made.p;
    return made.l;
}

M<double> chol(M<double> const& A)
{
    Arguments const args("chol");
    int order;
    M<double> const made = cholesky(args, A, false, order);
    if (order > 0)
        args.report("matrix must be positive definite");
    return made;
}

M<double> chol(M<double> const& A, i_o_t, Mr<double> R)
{
    M<double> const made = chol(A);
    R = made;
    return made;
}

M<double> chol(M<double> const& A, i_o_t, Mr<double> R, Mr<double> p)
{
    int order;
    M<double> const made = cholesky(Arguments("chol"), A, true, order);
    R = made;
    p = order < 0 ? x_M : M<double>(order);
    return made;
}

M<double> qr(M<double> const& A)
{
    return qr(A, nop_M);
}

M<double> qr(M<double> const& A, M<double> const& B)
{
    return qr_factors(A, B, QrWanted::r).r;
}

M<double> qr(M<double> const& A, i_o_t, Mr<double> R)
{
    return qr(A, nop_M, i_o, R);
}

M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> R)
{
    M<double> const made = qr(A, B);
    R = made;
    return made;
}

M<double> qr(M<double> const& A, i_o_t, Mr<double> Q, Mr<double> R)
{
    return qr(A, nop_M, i_o, Q, R);
}

M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> Q, Mr<double> R)
{
    QrFactors const made = qr_factors(A, B, QrWanted::q_and_r);
    Q = made.q;
    R = made.r;
    return made.q;
}

M<double> qr(M<double> const& A, i_o_t, Mr<double> Q, Mr<double> R, Mr<double> E)
{
    return qr(A, nop_M, i_o, Q, R, E);
}

M<double> qr(M<double> const& A, M<double> const& B, i_o_t, Mr<double> Q, Mr<double> R, Mr<double> E)
{
    QrFactors const made = qr_factors(A, B, QrWanted::pivoted);
    Q = made.q;
    R = made.r;
    E = made.e;
    return made.q;
}
