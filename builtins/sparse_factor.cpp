#include "builtins/sparse_factor.h"

#include "builtins/dense.h"
#include "builtins/scaled_product.h"
#include "builtins/sparse_columns.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

// Only what its permissive licence covers.
#define EIGEN_MPL2_ONLY
#define EIGEN_DONT_PARALLELIZE
#include <Eigen/SparseCholesky>
#include <Eigen/SparseLU>
#include <Eigen/SparseQR>

#include <cmath>
#include <limits>
#include <new>
#include <optional>

namespace arrlib {

namespace {

template <class T> using Matrix = Eigen::SparseMatrix<T, Eigen::ColMajor, int>;
template <class T> using Dense = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
template <class T> using Vector = Eigen::Matrix<T, Eigen::Dynamic, 1>;

// Runs code of the library behind. False after "Out of memory!".
template <class Code> bool guarded(Code code)
{
    bool enough = false;
    try {
        enough = code();
    } catch (std::bad_alloc const&) {
    } catch (std::length_error const&) {
    }
    // Reported here, where no exception of the library is in flight any more.
    if (!enough)
        error(messages::out_of_memory);
    return enough;
}

template <class T> Eigen::Map<Matrix<T> const> view(SparseColumns<T> const& a)
{
    return {a.rows(), a.cols(), a.count(), a.starts(), a.row_numbers(), a.values()};
}

// Triangular factors with their pivots within reach.
template <class T> class Triangles : public Eigen::SparseLU<Matrix<T>> {
public:
    template <class Visit> void each_pivot(Visit visit) const
    {
        for (Eigen::Index j = 0; j < this->cols(); ++j)
            for (typename decltype(this->m_Lstore)::InnerIterator entry(this->m_Lstore, j); entry; ++entry)
                if (entry.index() == j) {
                    visit(entry.value());
                    break;
                }
    }
    int sign() const { return static_cast<int>(this->m_detPermR * this->m_detPermC); }
    // The one failure that is not the matrix's.
    bool lacks_memory() const { return this->lastErrorMessage().find("ALLOCATE") != std::string::npos; }
};

template <class T> using Cholesky = Eigen::SimplicialLLT<Matrix<T>, Eigen::Lower, Eigen::AMDOrdering<int>>;

enum class Kind { upper, lower, positive_definite, general };

template <class T> bool is_triangle(SparseColumns<T> const& a, bool upper)
{
    for (int j = 0; j < a.cols(); ++j)
        if (a.begin(j) < a.end(j) && (upper ? a.row(a.end(j) - 1) > j : a.row(a.begin(j)) < j))
            return false;
    return true;
}

// Hermitian with a positive diagonal. False, too, after a report.
template <class T> bool may_be_positive_definite(SparseColumns<T> const& a)
{
    // In each column, the first entry whose counterpart has not been met.
    HeapArray<int> const next(static_cast<std::size_t>(a.cols()));
    if (!next)
        return false;
    std::copy_n(a.starts(), a.cols(), next.begin());
    for (int j = 0; j < a.cols(); ++j) {
        bool positive = false;
        for (int k = a.begin(j); k < a.end(j); ++k) {
            int const i = a.row(k), counterpart = next[static_cast<std::size_t>(i)]++;
            if (counterpart >= a.end(i) || a.row(counterpart) != j || a.value(counterpart) != conjugate(a.value(k)))
                return false;
            positive = positive || (i == j && real_part(a.value(k)) > 0);
        }
        if (!positive)
            return false;
    }
    return true;
}

template <class T> double norm_1(SparseColumns<T> const& a)
{
    double largest = 0;
    for (int j = 0; j < a.cols(); ++j) {
        double sum = 0;
        for (int k = a.begin(j); k < a.end(j); ++k)
            sum += std::abs(a.value(k));
        if (std::isnan(sum))
            return sum;
        largest = std::max(largest, sum);
    }
    return largest;
}

template <class T> bool all_finite(SparseColumns<T> const& a)
{
    for (int k = 0; k < a.count(); ++k)
        if (!std::isfinite(std::real(a.value(k))) || !std::isfinite(std::imag(a.value(k))))
            return false;
    return true;
}

// The diagonal element of a column of a triangle; zero when it is not stored.
template <class T> T diagonal_of_triangle(SparseColumns<T> const& a, int j, bool upper)
{
    if (a.begin(j) == a.end(j))
        return {};
    int const k = upper ? a.end(j) - 1 : a.begin(j);
    return a.row(k) == j ? a.value(k) : T{};
}

// x becomes the solution for a triangle with entries on all of its diagonal.
template <class T> void substitute(SparseColumns<T> const& a, bool upper, T* x)
{
    int const n = a.cols();
    for (int step = 0; step < n; ++step) {
        int const j = upper ? n - 1 - step : step;
        x[j] /= diagonal_of_triangle(a, j, upper);
        for (int k = a.begin(j) + !upper; k < a.end(j) - upper; ++k)
            x[a.row(k)] -= a.value(k) * x[j];
    }
}

// The same for its conjugate transpose.
template <class T> void substitute_adjoint(SparseColumns<T> const& a, bool upper, T* x)
{
    int const n = a.cols();
    for (int step = 0; step < n; ++step) {
        int const j = upper ? step : n - 1 - step;
        for (int k = a.begin(j) + !upper; k < a.end(j) - upper; ++k)
            x[j] -= conjugate(a.value(k)) * x[a.row(k)];
        x[j] /= conjugate(diagonal_of_triangle(a, j, upper));
    }
}

} // namespace

// --- square matrices ------------------------------------------------------------------------------

template <Scalar T> struct SparseFactor<T>::Work {
    explicit Work(M<double> const& a) : columns(a) {}

    SparseColumns<T> columns;
    Kind kind = Kind::general;
    std::optional<Cholesky<T>> cholesky;
    std::optional<Triangles<T>> triangles;

    bool is_triangle() const { return kind == Kind::upper || kind == Kind::lower; }
    template <class Visit> void each_pivot(Visit visit) const
    {
        if (is_triangle())
            for (int j = 0; j < columns.cols(); ++j)
                visit(diagonal_of_triangle(columns, j, kind == Kind::upper));
        else if (kind == Kind::general)
            triangles->each_pivot(visit);
        else {
            auto const& lower = cholesky->matrixL().nestedExpression();
            for (Eigen::Index j = 0; j < lower.cols(); ++j) {
                T const root = lower.valuePtr()[lower.outerIndexPtr()[j]];
                visit(root * root);
            }
        }
    }
};

template <Scalar T> SparseFactor<T>::SparseFactor(M<double> const& a, Use use)
{
    guarded([&] {
        work_ = std::make_unique<Work>(a);
        return true;
    });
    if (!work_ || !work_->columns)
        return;
    SparseColumns<T> const& columns = work_->columns;
    norm_ = norm_1(columns);
    if (!all_finite(columns)) {
        state_ = State::not_finite;
        return;
    }
    bool const free = use == Use::any_structure;
    if (free && (is_triangle(columns, true) || is_triangle(columns, false))) {
        work_->kind = is_triangle(columns, true) ? Kind::upper : Kind::lower;
        state_ = State::factored;
        work_->each_pivot([&](T pivot) {
            if (pivot == T{})
                state_ = State::singular;
        });
        return;
    }
    bool const definite = free && may_be_positive_definite(columns);
    guarded([&] {
        Matrix<T> const matrix = view(columns);
        if (definite) {
            work_->cholesky.emplace(matrix);
            if (work_->cholesky->info() == Eigen::Success) {
                work_->kind = Kind::positive_definite;
                state_ = State::factored;
                return true;
            }
            work_->cholesky.reset();
        }
        work_->triangles.emplace();
        work_->triangles->compute(matrix);
        if (work_->triangles->lacks_memory())
            return false;
        state_ = work_->triangles->info() == Eigen::Success ? State::factored : State::singular;
        return true;
    });
    if (state_ == State::factored && work_->kind == Kind::general)
        work_->each_pivot([&](T pivot) {
            if (pivot == T{})
                state_ = State::singular;
        });
}

template <Scalar T> SparseFactor<T>::~SparseFactor() = default;

template <Scalar T> double SparseFactor<T>::pivot_ratio() const
{
    double smallest = std::numeric_limits<double>::infinity(), largest = 0;
    work_->each_pivot([&](T pivot) {
        smallest = std::min(smallest, std::abs(pivot));
        largest = std::max(largest, std::abs(pivot));
    });
    return smallest / largest;
}

template <Scalar T> bool SparseFactor<T>::solve(T* columns, int count, char trans) const
{
    int const n = work_->columns.cols();
    bool const adjoint = trans != 'N', upper = work_->kind == Kind::upper;
    if (work_->is_triangle()) {
        for (int j = 0; j < count; ++j, columns += n)
            adjoint ? substitute_adjoint(work_->columns, upper, columns) : substitute(work_->columns, upper, columns);
        return true;
    }
    return guarded([&] {
        Vector<T> made;
        for (int j = 0; j < count; ++j, columns += n) {
            Eigen::Map<Vector<T>> column(columns, n);
            if (work_->kind == Kind::positive_definite)
                made = work_->cholesky->solve(column);
            else if (adjoint)
                made = work_->triangles->adjoint().solve(column);
            else
                made = work_->triangles->solve(column);
            column = made;
        }
        return true;
    });
}

template <Scalar T> T SparseFactor<T>::determinant() const
{
    ScaledProduct<T> product;
    work_->each_pivot([&](T pivot) { product.multiply(pivot); });
    product.multiply(work_->triangles->sign());
    return product.value();
}

// --- least squares --------------------------------------------------------------------------------

template <Scalar T> struct SparseLeastSquares<T>::Work {
    Eigen::SparseQR<Matrix<T>, Eigen::COLAMDOrdering<int>> factors;
};

template <Scalar T> SparseLeastSquares<T>::SparseLeastSquares(M<double> const& a)
{
    SparseColumns<T> const columns(a);
    if (!columns)
        return;
    double longest = 0;
    for (int j = 0; j < columns.cols(); ++j) {
        double length = 0;
        for (int k = columns.begin(j); k < columns.end(j); ++k)
            length = std::hypot(length, std::abs(columns.value(k)));
        longest = std::max(longest, length);
    }
    tolerance_ = std::max(columns.rows(), columns.cols()) * machine_eps * longest;
    made_ = guarded([&] {
        work_ = std::make_unique<Work>();
        work_->factors.setPivotThreshold(tolerance_);
        Matrix<T> const matrix = view(columns);
        work_->factors.compute(matrix);
        rank_ = static_cast<int>(work_->factors.rank());
        return true;
    });
}

template <Scalar T> SparseLeastSquares<T>::~SparseLeastSquares() = default;

template <Scalar T> bool SparseLeastSquares<T>::solve(T const* b, T* x) const
{
    auto const& factors = work_->factors;
    return guarded([&] {
        Dense<T> const right = Eigen::Map<Vector<T> const>(b, factors.rows());
        Dense<T> const made = factors.solve(right);
        std::copy_n(made.data(), factors.cols(), x);
        return true;
    });
}

// --- Cholesky factors -----------------------------------------------------------------------------

namespace {

template <class T> using OrderedCholesky = Eigen::SimplicialLLT<Matrix<T>, Eigen::Upper, Eigen::NaturalOrdering<int>>;

template <class T> bool is_positive_definite(Matrix<T> const& leading)
{
    for (Eigen::Index j = 0; j < leading.cols(); ++j)
        if (std::imag(leading.coeff(j, j)) != 0)
            return false;
    return OrderedCholesky<T>(leading).info() == Eigen::Success;
}

// The smallest order whose leading matrix is not positive definite, given that the whole is not: halving
// needs no more than the logarithm of it in factorisations.
template <class T> int order_of_failure(Matrix<T> const& a)
{
    int definite = 0, failing = static_cast<int>(a.cols());
    while (failing - definite > 1) {
        int const middle = definite + (failing - definite) / 2;
        (is_positive_definite<T>(a.topLeftCorner(middle, middle)) ? definite : failing) = middle;
    }
    return failing;
}

// Order at which elements of the upper triangle are NaN or Inf; one more than the size when none is.
template <class T> int order_of_not_finite(SparseColumns<T> const& a)
{
    for (int j = 0; j < a.cols(); ++j)
        for (int k = a.begin(j); k < a.end(j) && a.row(k) <= j; ++k)
            if (!std::isfinite(std::real(a.value(k))) || !std::isfinite(std::imag(a.value(k))))
                return j + 1;
    return a.cols() + 1;
}

} // namespace

template <Scalar T> M<double> sparse_cholesky(M<double> const& a, bool partial, int& order)
{
    order = -1;
    SparseColumns<T> const columns(a);
    if (!columns)
        return x_M;
    Matrix<T> factor;
    bool const enough = guarded([&] {
        Matrix<T> const whole = view(columns);
        int failing = order_of_not_finite(columns);
        Matrix<T> definite = whole.topLeftCorner(failing - 1, failing - 1);
        if (definite.cols() > 0 && !is_positive_definite(definite)) {
            failing = order_of_failure(definite);
            definite = Matrix<T>(whole.topLeftCorner(failing - 1, failing - 1));
        }
        order = failing > columns.cols() ? 0 : failing;
        if ((order == 0 || partial) && definite.cols() > 0)
            factor = OrderedCholesky<T>(definite).matrixU();
        return true;
    });
    if (!enough || (order > 0 && !partial) || factor.cols() == 0)
        return x_M;
    int const n = static_cast<int>(factor.cols());
    SparseCollector<T> collected(n, n);
    for (int j = 0; j < n; ++j)
        for (typename Matrix<T>::InnerIterator entry(factor, j); entry; ++entry)
            if (!collected.add(static_cast<int>(entry.row()), j, entry.value())) {
                order = -1;
                return x_M;
            }
    M<double> made = collected.value();
    if (!has_storage(made)) {
        order = -1;
        return x_M;
    }
    return made;
}

// --- orthogonal factors ---------------------------------------------------------------------------

template <Scalar T> bool sparse_qr(M<double> const& a, M<double> const* b, bool economy, M<double>& r, M<double>& c)
{
    SparseColumns<T> const columns(a);
    if (!columns)
        return false;
    int const m = columns.rows(), n = columns.cols(), least = std::min(m, n);
    Packed<T> product;
    if (b && !(product = Packed<T>(least, b->cols())))
        return false;
    Packed<T> const sides = b ? Packed<T>(*b) : Packed<T>();
    if (b && !sides)
        return false;
    SparseCollector<T> collected(economy ? least : m, n);
    bool collecting = true;
    bool const enough = guarded([&] {
        Matrix<T> const whole = view(columns);
        Eigen::SparseQR<Matrix<T>, Eigen::NaturalOrdering<int>> factors;
        // No column counts as dependent: all stay where they are.
        factors.setPivotThreshold(0);
        Matrix<T> const square = whole.leftCols(least);
        factors.compute(square);
        Matrix<T> const triangle = factors.matrixR();
        for (int j = 0; j < least; ++j)
            for (typename Matrix<T>::InnerIterator entry(triangle, j); entry; ++entry)
                collecting = collecting && (entry.row() > j || collected.add(static_cast<int>(entry.row()), j, entry.value()));
        // The columns beyond take part in the products only, one at a time.
        for (int j = least; j < n; ++j) {
            Dense<T> const column = whole.col(j);
            Dense<T> const made = factors.matrixQ().adjoint() * column;
            for (int i = 0; i < least; ++i)
                collecting = collecting && collected.add(i, j, made(i, 0));
        }
        if (b) {
            Dense<T> const right = Eigen::Map<Dense<T> const>(sides.data(), m, b->cols());
            Dense<T> const all = factors.matrixQ().adjoint() * right;
            Eigen::Map<Dense<T>>(product.data(), least, b->cols()) = all.topRows(least);
        }
        return true;
    });
    if (!enough || !collecting)
        return false;
    r = collected.value();
    if (!has_storage(r))
        return false;
    if (b)
        c = product.value();
    return !b || has_storage(c);
}

template class SparseFactor<double>;
template class SparseFactor<Complex>;
template class SparseLeastSquares<double>;
template class SparseLeastSquares<Complex>;
template bool sparse_qr<double>(M<double> const&, M<double> const*, bool, M<double>&, M<double>&);
template bool sparse_qr<Complex>(M<double> const&, M<double> const*, bool, M<double>&, M<double>&);
template M<double> sparse_cholesky<double>(M<double> const&, bool, int&);
template M<double> sparse_cholesky<Complex>(M<double> const&, bool, int&);

} // namespace arrlib
