#include "builtins/solve.h"

#include "builtins/dense.h"
#include "builtins/linear_systems.h"
#include "builtins/norm_estimate.h"
#include "builtins/sparse_columns.h"
#include "builtins/sparse_factor.h"
#include "core/reshape.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
// Pivots of a sparse matrix that differ by less than this leave no doubt about its condition.
constexpr double clear_pivot_ratio = 1e-7;

// The built-in that asks for solutions.
struct Caller {
    Arguments const& args;
    bool warns;

    void warn_badly_scaled(double rcond) const
    {
        if (warns)
            args.warn_badly_scaled(rcond);
    }
    void warn_rank(int rank, double tolerance) const
    {
        if (warns)
            args.warn_rank(rank, tolerance);
    }
};

// --- full matrices --------------------------------------------------------------------------------

// Basic solutions in place of the right hand sides, which have max(rows, cols) rows. False after a report.
template <Scalar T> bool least_squares(Caller const& caller, Packed<T>& a, Packed<T> const& b, Packed<T> const& x)
{
    int const m = a.rows(), n = a.cols(), least = std::min(m, n), sides = b.cols();
    if (!all_finite(a)) {
        fill(x, NaN.addr()[0]);
        return true;
    }
    HeapArray<int> const columns(static_cast<std::size_t>(n));
    HeapArray<T> const tau(static_cast<std::size_t>(least));
    if (!columns || !tau)
        return false;
    std::fill(columns.begin(), columns.end(), 0);
    if (!lapack::succeeded(caller.args, lapack::geqp3(m, n, a.data(), a.stride(), columns.data(), tau.data())))
        return false;
    double const tolerance = std::max(m, n) * machine_eps * std::abs(a(0, 0));
    int rank = 0;
    while (rank < least && std::abs(a(rank, rank)) > tolerance)
        ++rank;
    if (rank < least)
        caller.warn_rank(rank, tolerance);
    fill(x, 0);
    if (rank == 0)
        return true;
    if (!lapack::succeeded(caller.args, lapack::ormqr('L', 'C', m, sides, least, a.data(), a.stride(), tau.data(), b.data(), b.stride())) ||
        !lapack::succeeded(caller.args, lapack::trtrs('U', 'N', 'N', rank, sides, a.data(), a.stride(), b.data(), b.stride())))
        return false;
    for (int j = 0; j < sides; ++j)
        for (int i = 0; i < rank; ++i)
            x(columns[static_cast<std::size_t>(i)] - 1, j) = b(i, j);
    return true;
}

// Warns of what the factors show. True when there are solutions to compute; otherwise `instead` is what all elements
// are, unless the state is `failed`.
template <class Factor> bool can_solve(Caller const& caller, Factor const& factor, double& instead)
{
    using State = typename Factor::State;
    if (factor.state() == State::singular) {
        if (caller.warns)
            caller.args.warn_singular();
        instead = infinity;
    } else if (factor.state() == State::not_finite) {
        instead = NaN.addr()[0];
        caller.warn_badly_scaled(instead);
    }
    return factor.state() == State::factored;
}

template <Scalar T> M<double> solve_full(Caller const& caller, M<double> const& A, M<double> const& B)
{
    Packed<T> a(A), b = right_sides<T>(B);
    if (!a || !b)
        return x_M;
    if (A.rows() != A.cols()) {
        Packed<T> x(A.cols(), b.cols());
        return x && least_squares(caller, a, b, x) ? solution<T>(x, B.cols(), B.isc()) : x_M;
    }
    DenseFactor<T> const factor(caller.args, std::move(a));
    double rcond, instead = 0;
    if (can_solve(caller, factor, instead)) {
        if (!factor.estimate(rcond) || !factor.solve(b.data(), b.cols()))
            return x_M;
        if (rcond < machine_eps)
            caller.warn_badly_scaled(rcond);
    } else if (factor.state() == DenseFactor<T>::State::failed)
        return x_M;
    else
        fill(b, instead);
    return solution<T>(b, B.cols(), B.isc());
}

// --- sparse matrices ------------------------------------------------------------------------------

// Reads the columns of b one by one, as full lists, and collects what solve(column, result) makes of each.
template <Scalar T, class Solve> M<double> solve_columns(M<double> const& B, int unknowns, Solve solve)
{
    SparseColumns<T> const b(B);
    HeapArray<T> const column(static_cast<std::size_t>(B.rows())), result(static_cast<std::size_t>(unknowns));
    if (!b || !column || !result)
        return x_M;
    SparseCollector<T> collected(unknowns, B.cols());
    for (int j = 0; j < B.cols(); ++j) {
        if (b.begin(j) == b.end(j))
            continue;
        std::fill(column.begin(), column.end(), T());
        for (int k = b.begin(j); k < b.end(j); ++k)
            column[static_cast<std::size_t>(b.row(k))] = b.value(k);
        if (!solve(column.data(), result.data()))
            return x_M;
        for (int i = 0; i < unknowns; ++i)
            if (!collected.add(i, j, result[static_cast<std::size_t>(i)]))
                return x_M;
    }
    M<double> made = collected.value();
    return has_storage(made) ? made : x_M;
}

template <Scalar T> bool warn_of_condition(Caller const& caller, SparseFactor<T> const& factor, int n)
{
    if (factor.pivot_ratio() >= clear_pivot_ratio)
        return true;
    double of_inverse;
    HeapArray<T> unused;
    if (!estimate_inverse_norm(n, of_inverse, unused, [&](T* x, bool conjugated) { return factor.solve(x, 1, conjugated ? 'C' : 'N'); }))
        return false;
    double const rcond = 1 / of_inverse / factor.norm();
    if (!(rcond >= machine_eps))
        caller.warn_badly_scaled(rcond);
    return true;
}

template <Scalar T> M<double> solve_square_sparse(Caller const& caller, M<double> const& A, M<double> const& B)
{
    int const n = A.rows();
    SparseFactor<T> const factor(A);
    double instead = 0;
    if (!can_solve(caller, factor, instead)) {
        M<double> const all = factor.state() == SparseFactor<T>::State::failed ? x_M : full_of(n, B.cols(), instead);
        return B.issparse() && all.size() > 0 ? sparse_copy(all) : all;
    }
    if (!warn_of_condition(caller, factor, n))
        return x_M;
    if (B.issparse())
        return solve_columns<T>(B, n, [&](T const* from, T* to) {
            std::copy_n(from, n, to);
            return factor.solve(to, 1);
        });
    Packed<T> b = right_sides<T>(B);
    return b && factor.solve(b.data(), b.cols()) ? solution<T>(b, B.cols(), B.isc()) : x_M;
}

template <Scalar T> M<double> solve_sparse(Caller const& caller, M<double> const& A, M<double> const& B)
{
    if (A.rows() == A.cols())
        return solve_square_sparse<T>(caller, A, B);
    int const m = A.rows(), n = A.cols();
    SparseLeastSquares<T> const factors(A);
    if (!factors)
        return x_M;
    if (factors.rank() < std::min(m, n))
        caller.warn_rank(factors.rank(), factors.tolerance());
    if (B.issparse())
        return solve_columns<T>(B, n, [&](T const* from, T* to) { return factors.solve(from, to); });
    Packed<T> const b = right_sides<T>(B);
    Packed<T> x(n, b.cols());
    if (!b || !x)
        return x_M;
    for (int j = 0; j < b.cols(); ++j)
        if (!factors.solve(b.column(j), x.column(j)))
            return x_M;
    return solution<T>(x, B.cols(), B.isc());
}

} // namespace

M<double> arrlib::solved(Arguments const& args, M<double> const& A, M<double> const& B, Warnings warnings)
{
    Caller const caller{args, warnings == Warnings::given};
    if (!A.issparse())
        return with_scalar(A.isc(), [&](auto zero) { return solve_full<decltype(zero)>(caller, A, B); });
    // Columns of a sparse right hand side are of one type with the matrix.
    return with_scalar(A.isc() || (B.issparse() && B.isc()), [&](auto zero) { return solve_sparse<decltype(zero)>(caller, A, B); });
}

M<double> mldivide(M<double> const& A, M<double> const& B)
{
    if (A.size() == 1)
        return apply(op_rdivide, B, A);
    Arguments const args("\\");
    if (A.size() == 0 || B.size() == 0)
        return M<double>();
    if (!args.two_dimensional(A) || !args.two_dimensional(B))
        return x_M;
    if (A.rows() != B.rows()) {
        error("\\: row counts of %s and %s do not agree", OperandName(A), OperandName(B));
        return x_M;
    }
    return solved(args, A, B);
}

M<double> mrdivide(M<double> const& A, M<double> const& B)
{
    if (B.size() == 1)
        return apply(op_rdivide, A, B);
    Arguments const args("/");
    if (A.size() == 0 || B.size() == 0)
        return M<double>();
    if (!args.two_dimensional(A) || !args.two_dimensional(B))
        return x_M;
    if (A.cols() != B.cols()) {
        error("/: column counts of %s and %s do not agree", OperandName(A), OperandName(B));
        return x_M;
    }
    M<double> const turned = ctranspose(B), sides = ctranspose(A);
    if (turned.size() == 0 || sides.size() == 0)
        return x_M;
    M<double> const made = solved(args, turned, sides);
    return made.size() > 0 ? ctranspose(made) : x_M;
}

M<double> arrlib::divide(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return y.size() == 1 ? apply(op_rdivide, x, y, temporaries) : mrdivide(x, y);
}
