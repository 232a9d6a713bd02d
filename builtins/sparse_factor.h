// Factors of sparse matrices that linear systems are solved with. This is the one place that knows the
// library behind them.
#ifndef ARRLIB_BUILTINS_SPARSE_FACTOR_H
#define ARRLIB_BUILTINS_SPARSE_FACTOR_H

#include "builtins/zpack.h"

#include <memory>

namespace arrlib {

// A square matrix, factored: nothing to do for a triangle; Cholesky factors of a symmetric positive
// definite matrix, with the approximate minimum degree order; otherwise triangular factors with the
// columns ordered by COLAMD and rows exchanged.
template <Scalar T> class SparseFactor {
public:
    enum class State { factored, singular, not_finite, failed };
    enum class Use { any_structure, triangular_factors };

    // `failed` after "Out of memory!".
    explicit SparseFactor(M<double> const& a, Use use = Use::any_structure);
    ~SparseFactor();
    SparseFactor(SparseFactor const&) = delete;
    SparseFactor& operator=(SparseFactor const&) = delete;

    State state() const { return state_; }
    double norm() const { return norm_; }
    // The ratio of the smallest and the largest pivot: a rough idea of the reciprocal condition.
    double pivot_ratio() const;
    // Overwrite columns with the solutions for the matrix and for its conjugate transpose; false after "Out of memory!".
    bool solve(T* columns, int count, char trans = 'N') const;
    // After Use::triangular_factors.
    T determinant() const;

private:
    struct Work;
    std::unique_ptr<Work> work_;
    State state_ = State::failed;
    double norm_ = 0;
};

// The basic least squares solutions of a matrix of any shape, by orthogonal factors.
template <Scalar T> class SparseLeastSquares {
public:
    explicit SparseLeastSquares(M<double> const& a);
    ~SparseLeastSquares();
    SparseLeastSquares(SparseLeastSquares const&) = delete;
    SparseLeastSquares& operator=(SparseLeastSquares const&) = delete;

    // False after "Out of memory!".
    explicit operator bool() const { return made_; }
    int rank() const { return rank_; }
    // Columns up to this size, after elimination, count as dependent.
    double tolerance() const { return tolerance_; }
    // Reads as many elements as there are rows and writes as many as there are columns.
    bool solve(T const* b, T* x) const;

private:
    struct Work;
    std::unique_ptr<Work> work_;
    bool made_ = false;
    int rank_ = 0;
    double tolerance_ = 0;
};

// The Cholesky factor R of the upper triangle of a, in the given order of columns: an upper triangle whose
// product R'*R is a. `order` is -1 after a report, 0 when all is well, otherwise the order at which
// the matrix is not positive definite. R is of that order less one; without `partial` it is not made then.
template <Scalar T> M<double> sparse_cholesky(M<double> const& a, bool partial, int& order);

// The triangle R of orthogonal factors of a, its columns in order, and C = Q'*b for a given b, which may be sparse and
// makes a full C. `economy`: only as many rows as the matrix has rows or columns, whichever is less; C has always that many. False
// after a report.
template <Scalar T> bool sparse_qr(M<double> const& a, M<double> const* b, bool economy, M<double>& r, M<double>& c);

} // namespace arrlib

#endif
