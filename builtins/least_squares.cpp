#include "builtins/least_squares.h"

#include "builtins/pivoted_qr.h"
#include "builtins/results.h"
#include "builtins/spectrum.h"
#include "builtins/square_values.h"
#include "core/reshape.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// --- with a covariance ---------------------------------------------------------------------------

// What the columns of Q beyond the rank make of the problem: the Cholesky factor of their covariance.
template <Scalar T> struct Residuals {
    M<double> basis;     // m x (m - rank)
    M<double> weighted;  // V times the basis
    Packed<T> factor;    // lower Cholesky factor of basis' V basis
    int count = 0;

    // inv(basis' V basis) y; false after a report.
    bool solve(Arguments const& args, Packed<T>& y) const
    {
        return lapack::succeeded(args, lapack::potrs('L', count, y.cols(), factor.data(), factor.stride(), y.data(), y.stride()));
    }
};

template <Scalar T> M<double> columns(Packed<T> const& q, int first, int count)
{
    Packed<T> made(q.rows(), count);
    if (!made)
        return x_M;
    std::copy_n(q.column(first), made.size(), made.data());
    return made.value();
}

template <Scalar T> bool prepare(Arguments const& args, Packed<T> const& q, int rank, M<double> const& V, Residuals<T>& made)
{
    made.count = q.rows() - rank;
    made.basis = columns(q, rank, made.count);
    made.weighted = V * made.basis;
    M<double> const covariance = ctranspose(made.basis) * made.weighted;
    if (!given(covariance))
        return false;
    made.factor = Packed<T>(covariance);
    if (!made.factor)
        return false;
    int const info = lapack::potrf('L', made.count, made.factor.data(), made.factor.stride());
    return lapack::succeeded(args, info) && (info == 0 || args.report("covariance must be positive definite"));
}

// Square roots of the diagonal of inv(R) K inv(R)', in the order of the columns of A.
template <Scalar T> bool spreads(PivotedQr<T> const& qr, M<double> const& K, int n, HeapArray<double>& made)
{
    int const rank = qr.rank;
    Packed<T> half(K);
    made = HeapArray<double>(static_cast<std::size_t>(n));
    if (!half || !made)
        return false;
    std::fill(made.begin(), made.end(), 0.0);
    // inv(R) from the left, then from the right.
    auto const divide = [&](auto element) {
        for (int c = 0; c < rank; ++c)
            for (int i = rank; i-- > 0;) {
                for (int j = i + 1; j < rank; ++j)
                    element(i, c) -= qr.packed(i, j) * element(j, c);
                element(i, c) /= qr.packed(i, i);
            }
    };
    divide([&](int i, int c) -> T& { return half(i, c); });
    for (int j = 0; j < rank; ++j) // the conjugate transpose
        for (int i = 0; i <= j; ++i) {
            T const upper = conjugate(half(i, j));
            half(i, j) = conjugate(half(j, i));
            half(j, i) = upper;
        }
    divide([&](int i, int c) -> T& { return half(i, c); });
    for (int k = 0; k < rank; ++k)
        made[static_cast<std::size_t>(qr.column[static_cast<std::size_t>(k)])] = std::sqrt(std::max(real_part(half(k, k)), 0.0));
    return true;
}

// x and dx.
template <Scalar T> Results<2> weighted_solution(Arguments const& args, M<double> const& A, M<double> const& b, M<double> const& V)
{
    int const m = A.rows(), n = A.cols(), sides = b.cols();
    PivotedQr<T> qr;
    Packed<T> q, x(n, sides);
    if (!x || !qr.factor(args, Packed<T>(A)) || !qr.unitary(args, q))
        return nothing<2>();
    if (qr.rank < n)
        args.warn_rank(qr.rank, qr.tolerance);
    std::fill_n(x.data(), x.size(), T());
    if (qr.rank == 0) {
        Packed<double> none(n, sides);
        std::fill_n(none.data(), none ? none.size() : 0, 0.0);
        Results<2> made{x.value(), none.value()};
        return all_have_storage(made) ? made : nothing<2>();
    }
    M<double> const range = columns(q, 0, qr.rank);
    M<double> adjusted = b, K = ctranspose(range) * V * range;
    HeapArray<double> variance(static_cast<std::size_t>(sides)), spread;
    if (!variance || !given(K))
        return nothing<2>();
    std::fill(variance.begin(), variance.end(), std::numeric_limits<double>::quiet_NaN());
    if (qr.rank < m) {
        Residuals<T> residuals;
        if (!prepare(args, q, qr.rank, V, residuals))
            return nothing<2>();
        M<double> const turned = ctranspose(residuals.basis) * b, across = ctranspose(residuals.weighted) * range;
        if (!given(turned) || !given(across))
            return nothing<2>();
        Packed<T> weights(turned), mixed(across);
        Packed<T> const plain(turned);
        if (!weights || !mixed || !plain || !residuals.solve(args, weights) || !residuals.solve(args, mixed))
            return nothing<2>();
        for (int c = 0; c < sides; ++c) {
            double sum = 0;
            for (int k = 0; k < residuals.count; ++k)
                sum += real_part(conjugate(plain(k, c)) * weights(k, c));
            variance[static_cast<std::size_t>(c)] = sum / residuals.count;
        }
        adjusted = b - residuals.weighted * weights.value();
        K = K - ctranspose(across) * mixed.value();
    }
    M<double> const right = ctranspose(range) * adjusted;
    if (!given(right) || !given(K))
        return nothing<2>();
    Packed<T> const turned(right);
    if (!turned || !spreads(qr, K, n, spread))
        return nothing<2>();
    qr.solve(turned, x);
    Results<2> made{x.value(), full_result(Dims(n, sides))};
    if (!all_have_storage(made))
        return nothing<2>();
    for (int c = 0; c < sides; ++c)
        for (int k = 0; k < n; ++k)
            *made[1].addr(k + 1, c + 1) = spread[static_cast<std::size_t>(k)] * std::sqrt(variance[static_cast<std::size_t>(c)]);
    return made;
}

Results<2> with_covariance(M<double> const& A, M<double> const& b, M<double> const& V)
{
    Arguments const args("lscov");
    if (!flat_and_finite(args, A) || !flat_and_finite(args, b) || !flat_and_finite(args, V))
        return nothing<2>();
    if (A.rows() < A.cols()) {
        args.report("problem must be over-determined");
        return nothing<2>();
    }
    bool const square = V.rows() == A.rows() && V.cols() == A.rows();
    if (b.rows() != A.rows() || !square) {
        args.sizes_differ(A, square ? b : V);
        return nothing<2>();
    }
    if (!given(A))
        return {};
    M<double> const a = full_form(A), right = full_form(b), covariance = full_form(V);
    if (!has_storage(a) || !has_storage(right) || !has_storage(covariance))
        return nothing<2>();
    return with_scalar(A.isc() || b.isc() || V.isc(), [&](auto kind) { return weighted_solution<decltype(kind)>(args, a, right, covariance); });
}

// --- without negative elements -------------------------------------------------------------------

class ActiveSets {
public:
    ActiveSets(Packed<double> const& A, Packed<double> const& b, double tolerance)
        : a_(A), b_(b), tolerance_(tolerance), m_(A.rows()), n_(A.cols()), x_(n_, 1), w_(n_, 1), z_(n_, 1), residual_(m_, 1), columns_(m_, n_), right_(std::max(m_, n_), 1),
          free_(static_cast<std::size_t>(n_)), closed_(static_cast<std::size_t>(n_))
    {
    }

    explicit operator bool() const { return x_ && w_ && z_ && residual_ && columns_ && right_ && free_ && closed_; }

    // False after a report. Variables are set free one after another; only setting them back could go on
    // and on, for rounding errors.
    bool run(Arguments const& args)
    {
        std::fill_n(x_.data(), n_, 0.0);
        std::fill(free_.begin(), free_.end(), false);
        std::fill(closed_.begin(), closed_.end(), false);
        find_gradient();
        for (int steps = 0, next = steepest(); next >= 0; next = steepest()) {
            free_[at(next)] = true;
            bool independent = false;
            if (!solve_free(args, independent))
                return false;
            // A column that depends on the others, or that does not improve the fit but for rounding.
            if (!independent || z_.data()[next] <= 0) {
                free_[at(next)] = false;
                closed_[at(next)] = true;
                continue;
            }
            while (step_to_boundary()) {
                if (++steps > 3 * n_)
                    return args.not_converged();
                if (!solve_free(args, independent))
                    return false;
            }
            std::copy_n(z_.data(), n_, x_.data());
            std::fill(closed_.begin(), closed_.end(), false);
            find_gradient();
        }
        return true;
    }
    Packed<double>& x() { return x_; }
    Packed<double>& w() { return w_; }

private:
    static std::size_t at(int k) { return static_cast<std::size_t>(k); }

    // w = A'(b - A x).
    void find_gradient()
    {
        std::copy_n(b_.data(), m_, residual_.data());
        for (int j = 0; j < n_; ++j)
            if (double const factor = x_.data()[j]; factor != 0)
                for (int i = 0; i < m_; ++i)
                    residual_.data()[i] -= a_(i, j) * factor;
        for (int j = 0; j < n_; ++j) {
            double sum = 0;
            for (int i = 0; i < m_; ++i)
                sum += a_(i, j) * residual_.data()[i];
            w_.data()[j] = sum;
        }
    }

    // The bound variable that improves the fit most, or -1.
    int steepest() const
    {
        int best = -1;
        for (int j = 0; j < n_; ++j)
            if (!free_[at(j)] && !closed_[at(j)] && w_.data()[j] > tolerance_ && (best < 0 || w_.data()[j] > w_.data()[best]))
                best = j;
        return best;
    }

    // z: the free variables by least squares, the others zero.
    bool solve_free(Arguments const& args, bool& independent)
    {
        int count = 0;
        for (int j = 0; j < n_; ++j)
            if (free_[at(j)])
                std::copy_n(a_.column(j), m_, columns_.column(count++));
        std::fill_n(z_.data(), n_, 0.0);
        independent = true;
        if (count == 0)
            return true;
        std::copy_n(b_.data(), m_, right_.data());
        int const info = lapack::gels('N', m_, count, 1, columns_.data(), m_, right_.data(), static_cast<int>(right_.size()));
        if (!lapack::succeeded(args, info))
            return false;
        independent = info == 0;
        for (int j = 0, k = 0; j < n_ && independent; ++j)
            if (free_[at(j)])
                z_.data()[j] = right_.data()[k++];
        return true;
    }

    // Goes from x towards z until a free variable is zero, which is bound then; false when z is inside.
    bool step_to_boundary()
    {
        double share = std::numeric_limits<double>::infinity();
        for (int j = 0; j < n_; ++j)
            if (free_[at(j)] && z_.data()[j] <= 0)
                share = std::min(share, x_.data()[j] / (x_.data()[j] - z_.data()[j]));
        if (!(share < std::numeric_limits<double>::infinity()))
            return false;
        for (int j = 0; j < n_; ++j) {
            if (!free_[at(j)])
                continue;
            bool const bound = z_.data()[j] <= 0 && x_.data()[j] / (x_.data()[j] - z_.data()[j]) <= share;
            x_.data()[j] += share * (z_.data()[j] - x_.data()[j]);
            if (bound || x_.data()[j] <= 0) {
                x_.data()[j] = 0;
                free_[at(j)] = false;
            }
        }
        return true;
    }

    Packed<double> const& a_;
    Packed<double> const& b_;
    double tolerance_;
    int m_, n_;
    Packed<double> x_, w_, z_, residual_, columns_, right_;
    // Variables that are not held at zero; those that have been tried since x changed last.
    HeapArray<bool> free_, closed_;
};

// x and w.
Results<2> without_negatives(M<double> const& A, M<double> const& b, M<double> const& tol)
{
    Arguments const args("nnls");
    if (!given(A) && !given(b))
        return {};
    if (!args.real(A) || !args.real(b) || !flat_and_finite(args, A) || !args.vector(b) || !args.finite(b))
        return nothing<2>();
    if (b.size() != A.rows()) {
        args.sizes_differ(A, b);
        return nothing<2>();
    }
    Packed<double> const a(A), right(b);
    M<double> const full = full_form(A);
    if (!a || !right || !has_storage(full))
        return nothing<2>();
    double const tolerance = given(tol) ? tol[1] : 10 * std::numeric_limits<double>::epsilon() * one_norm(full) * std::max(A.rows(), A.cols());
    ActiveSets sets(a, right, tolerance);
    if (!sets || !sets.run(args))
        return nothing<2>();
    return {sets.x().value(), sets.w().value()};
}

} // namespace

M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V)
{
    return with_covariance(A, b, V)[0];
}

M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V, i_o_t, Mr<double> x)
{
    return hand_out(with_covariance(A, b, V), x);
}

M<double> lscov(M<double> const& A, M<double> const& b, M<double> const& V, i_o_t, Mr<double> x, Mr<double> dx)
{
    return hand_out(with_covariance(A, b, V), x, dx);
}

M<double> nnls(M<double> const& A, M<double> const& b)
{
    return without_negatives(A, b, nop_M)[0];
}

M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol)
{
    return without_negatives(A, b, tol)[0];
}

M<double> nnls(M<double> const& A, M<double> const& b, i_o_t, Mr<double> x)
{
    return hand_out(without_negatives(A, b, nop_M), x);
}

M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol, i_o_t, Mr<double> x)
{
    return hand_out(without_negatives(A, b, tol), x);
}

M<double> nnls(M<double> const& A, M<double> const& b, i_o_t, Mr<double> x, Mr<double> w)
{
    return hand_out(without_negatives(A, b, nop_M), x, w);
}

M<double> nnls(M<double> const& A, M<double> const& b, M<double> const& tol, i_o_t, Mr<double> x, Mr<double> w)
{
    return hand_out(without_negatives(A, b, tol), x, w);
}
