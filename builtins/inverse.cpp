#include "builtins/inverse.h"

#include "builtins/dense.h"
#include "builtins/linear_systems.h"
#include "builtins/norm_estimate.h"
#include "builtins/norm_kind.h"
#include "builtins/scaled_product.h"
#include "builtins/sparse_columns.h"
#include "builtins/sparse_factor.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

template <Scalar T> M<double> full_inverse(Arguments const& args, M<double> const& A, Warnings warnings)
{
    using State = typename DenseFactor<T>::State;
    int const n = A.rows();
    DenseFactor<T> factor(args, Packed<T>(A), true);
    bool const warns = warnings == Warnings::given;
    double rcond;
    switch (factor.state()) {
    case State::failed:
        break;
    case State::singular:
        if (warns)
            args.warn_singular();
        return full_of(n, n, infinity);
    case State::not_finite:
        if (warns)
            args.warn_badly_scaled(NaN.addr()[0]);
        return full_of(n, n, NaN.addr()[0]);
    case State::factored:
        if (warns && !factor.estimate(rcond))
            break;
        if (!lapack::succeeded(args, lapack::getri(n, factor.factors().data(), n, factor.pivots())))
            break;
        if (warns && rcond < machine_eps)
            args.warn_badly_scaled(rcond);
        M<double> made = factor.factors().value();
        return has_storage(made) ? made : x_M;
    }
    return x_M;
}

template <Scalar T> M<double> number(T value)
{
    M<double> made(std::real(value));
    if constexpr (std::same_as<T, Complex>) {
        made.getcomplex();
        made.addi()[0] = value.imag();
    }
    return made;
}

// Of a matrix that no factors can be had of.
template <Scalar T> T determinant_without_factors(Packed<T> const& a)
{
    Structure const structure = structure_of(a);
    T product = 1;
    for (int k = 0; k < a.rows(); ++k)
        product *= a(k, k);
    return structure == Structure::upper || structure == Structure::lower ? product : T(NaN.addr()[0]);
}

template <Scalar T> M<double> full_determinant(Arguments const& args, M<double> const& A)
{
    using State = typename DenseFactor<T>::State;
    DenseFactor<T> factor(args, Packed<T>(A), true);
    if (factor.state() == State::failed)
        return x_M;
    Packed<T> const& a = factor.factors();
    if (factor.state() == State::not_finite)
        return number(determinant_without_factors(a));
    ScaledProduct<T> product;
    for (int k = 0; k < a.rows(); ++k)
        product.multiply(factor.pivots()[k] == k + 1 ? a(k, k) : -a(k, k));
    // No sign on zero.
    return number(product.value() + T(0.0));
}

template <Scalar T> M<double> sparse_determinant(M<double> const& A)
{
    using Factor = SparseFactor<T>;
    Factor const factor(A, Factor::Use::triangular_factors);
    switch (factor.state()) {
    case Factor::State::failed:
        return x_M;
    case Factor::State::singular:
        return number(T());
    case Factor::State::not_finite:
        return number(T(NaN.addr()[0]));
    case Factor::State::factored:
        break;
    }
    return number(factor.determinant());
}

// --- condition numbers ----------------------------------------------------------------------------

// The condition in the 1-norm by an estimate, and the vector that shows it. False after a report.
template <Scalar T, class Factor> bool estimate_condition(Factor const& factor, int n, double& condition, HeapArray<T>& v)
{
    double of_inverse;
    if (!estimate_inverse_norm(n, of_inverse, v, [&](T* x, bool conjugated) { return factor.solve(x, 1, conjugated ? 'C' : 'N'); }))
        return false;
    condition = of_inverse * factor.norm();
    return true;
}

template <Scalar T> M<double> column_of(HeapArray<T> const& v, int n)
{
    Packed<T> made(n, 1);
    if (!made)
        return x_M;
    double length = 0;
    for (int k = 0; k < n; ++k)
        length += std::abs(v[static_cast<std::size_t>(k)]);
    for (int k = 0; k < n; ++k)
        made(k, 0) = v[static_cast<std::size_t>(k)] / length;
    M<double> result = made.value();
    return has_storage(result) ? result : x_M;
}

// Calls work(factor) with the factors of a matrix in its own form.
template <Scalar T, class Work> auto with_factor(Arguments const& args, M<double> const& A, Work work)
{
    if (A.issparse())
        return work(SparseFactor<T>(A));
    return work(DenseFactor<T>(args, Packed<T>(A)));
}

struct Condition {
    M<double> number = x_M, vector = x_M;
};

template <Scalar T> Condition condition_of(Arguments const& args, M<double> const& A);

// A matrix with a zero pivot: its neighbour shows the vector as well as rounding lets it.
template <Scalar T> Condition condition_of_singular(Arguments const& args, M<double> const& A, double norm)
{
    double const shift = norm > 0 ? machine_eps * norm : 1;
    M<double> const unit = sparse_identity(A.rows());
    M<double> const distance(shift);
    M<double> const step = unit.size() > 0 && distance.size() > 0 ? unit * distance : x_M;
    M<double> const neighbour = step.size() > 0 ? A + step : x_M;
    if (neighbour.size() == 0)
        return {};
    Condition found = with_factor<T>(args, neighbour, [&](auto const& factor) -> Condition {
        double unused;
        HeapArray<T> v;
        if (factor.state() == std::remove_cvref_t<decltype(factor)>::State::factored && estimate_condition(factor, A.rows(), unused, v))
            return {x_M, column_of(v, A.rows())};
        return {x_M, full_of(A.rows(), 1, NaN.addr()[0])};
    });
    found.number = M<double>(infinity);
    return found;
}

template <Scalar T> Condition condition_of(Arguments const& args, M<double> const& A)
{
    int const n = A.rows();
    return with_factor<T>(args, A, [&](auto const& factor) -> Condition {
        using State = typename std::remove_cvref_t<decltype(factor)>::State;
        double condition;
        HeapArray<T> v;
        switch (factor.state()) {
        case State::failed:
            break;
        case State::singular:
            return condition_of_singular<T>(args, A, factor.norm());
        case State::not_finite:
            return {NaN, full_of(n, 1, NaN.addr()[0])};
        case State::factored:
            if (estimate_condition(factor, n, condition, v))
                return {M<double>(condition), column_of(v, n)};
        }
        return {};
    });
}

Condition condition(M<double> const& A)
{
    Arguments const args("condest");
    if (A.size() == 0)
        return {M<double>(0.0), M<double>()};
    if (!args.square(A))
        return {};
    return with_scalar(A.isc(), [&](auto zero) { return condition_of<decltype(zero)>(args, A); });
}

M<double> reciprocal_condition(Arguments const& args, M<double> const& A)
{
    return with_scalar(A.isc(), [&](auto zero) {
        return with_factor<decltype(zero)>(args, A, [&](auto const& factor) -> M<double> {
            using State = typename std::remove_cvref_t<decltype(factor)>::State;
            double rcond;
            HeapArray<decltype(zero)> unused;
            switch (factor.state()) {
            case State::failed:
                break;
            case State::singular:
                return zero_M;
            case State::not_finite:
                return NaN;
            case State::factored:
                if constexpr (requires { factor.estimate(rcond); }) {
                    if (factor.estimate(rcond))
                        return M<double>(rcond);
                } else if (estimate_condition(factor, A.rows(), rcond, unused))
                    return M<double>(1 / rcond);
            }
            return x_M;
        });
    });
}

} // namespace

M<double> arrlib::sparse_identity(int n)
{
    SparseCollector<double> collected(n, n);
    for (int k = 0; k < n; ++k)
        if (!collected.add(k, k, 1))
            return x_M;
    M<double> made = collected.value();
    return has_storage(made) ? made : x_M;
}

M<double> arrlib::inverse(Arguments const& args, M<double> const& A, Warnings warnings)
{
    if (!A.issparse())
        return with_scalar(A.isc(), [&](auto zero) { return full_inverse<decltype(zero)>(args, A, warnings); });
    M<double> const unit = sparse_identity(A.rows());
    return unit.size() > 0 ? solved(args, A, unit, warnings) : x_M;
}

M<double> inv(M<double> const& A)
{
    Arguments const args("inv");
    if (!args.square(A))
        return x_M;
    return A.size() == 0 ? M<double>() : inverse(args, A);
}

M<double> pinv(M<double> const& A)
{
    return pinv(A, nop_M);
}

M<double> pinv(M<double> const& A, M<double> const& tol)
{
    Arguments const args("pinv");
    if (!args.two_dimensional(A) || !args.finite(A))
        return x_M;
    if (A.size() == 0)
        return M<double>();
    return with_scalar(A.isc(), [&](auto zero) -> M<double> {
        using T = decltype(zero);
        int const m = A.rows(), n = A.cols(), least = std::min(m, n);
        Packed<T> a(A), u(m, least), vt(least, n), made(n, m);
        HeapArray<double> const s(static_cast<std::size_t>(least));
        if (!a || !u || !vt || !made || !s)
            return x_M;
        int const info = lapack::gesdd('S', m, n, a.data(), m, s.data(), u.data(), m, vt.data(), least);
        if (!lapack::succeeded(args, info) || (info > 0 && !args.not_converged()))
            return x_M;
        double const tolerance = number_or(tol, std::max(m, n) * machine_eps * s[0]);
        int rank = 0;
        while (rank < least && s[static_cast<std::size_t>(rank)] > tolerance)
            ++rank;
        for (int j = 0; j < rank; ++j)
            for (int i = 0; i < m; ++i)
                u(i, j) /= s[static_cast<std::size_t>(j)];
        fill(made, 0);
        if (rank > 0 && !lapack::succeeded(args, lapack::gemm('C', 'C', n, m, rank, T(1), vt.data(), least, u.data(), m, T(0), made.data(), n)))
            return x_M;
        M<double> result = made.value();
        return has_storage(result) ? result : x_M;
    });
}

M<double> det(M<double> const& A)
{
    Arguments const args("det");
    if (!args.square(A))
        return x_M;
    if (A.size() == 0)
        return one_M;
    return with_scalar(A.isc(), [&](auto zero) { return A.issparse() ? sparse_determinant<decltype(zero)>(A) : full_determinant<decltype(zero)>(args, A); });
}

M<double> rcond(M<double> const& A)
{
    Arguments const args("rcond");
    if (!args.square(A))
        return x_M;
    return A.size() == 0 ? Inf : reciprocal_condition(args, A);
}

M<double> cond(M<double> const& A)
{
    return cond(A, nop_M);
}

M<double> cond(M<double> const& A, M<double> const& p)
{
    Arguments const args("cond");
    NormKind kind;
    if (!args.two_dimensional(A) || !matrix_norm_kind(args, p, kind))
        return x_M;
    if (A.size() == 0)
        return zero_M;
    if (kind == NormKind::two) {
        if (A.issparse()) {
            args.report("use condest for a sparse matrix");
            return x_M;
        }
        HeapArray<double> s;
        if (!singular_values(args, A, s))
            return x_M;
        double const least = s[s.size() - 1];
        return M<double>(least > 0 ? s[0] / least : infinity);
    }
    if (!args.square(A))
        return x_M;
    M<double> const inverted = inverse(args, A, Warnings::withheld);
    double of_matrix, of_inverse;
    if (inverted.size() == 0 || !matrix_norm(args, A, kind, of_matrix) || !matrix_norm(args, inverted, kind, of_inverse))
        return x_M;
    return M<double>(std::isinf(of_inverse) && !std::isnan(of_matrix) ? infinity : of_matrix * of_inverse);
}

M<double> condest(M<double> const& A)
{
    return condition(A).number;
}

M<double> condest(M<double> const& A, i_o_t, Mr<double> c)
{
    M<double> const number = condition(A).number;
    c = number;
    return number;
}

M<double> condest(M<double> const& A, i_o_t, Mr<double> c, Mr<double> v)
{
    Condition const found = condition(A);
    c = found.number;
    v = found.vector;
    return found.number;
}
