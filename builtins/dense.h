// What the families of linear algebra ask of full matrices.
#ifndef ARRLIB_BUILTINS_DENSE_H
#define ARRLIB_BUILTINS_DENSE_H

#include "builtins/zpack.h"

namespace arrlib {

inline constexpr double machine_eps = 2.220446049250313e-16;

// What a square matrix is, in the order of tests.
enum class Structure { upper, lower, positive_diagonal, general };

// Triangular, or Hermitian with a positive diagonal, or neither. Stops at the first element that tells.
template <Scalar T> Structure structure_of(Packed<T> const& a);

template <Scalar T> bool is_hermitian(Packed<T> const& a);

// Largest column sum of moduli; NaN when an element is.
template <Scalar T> double norm_1(Packed<T> const& a);
// Neither NaN nor Inf.
template <Scalar T> bool all_finite(Packed<T> const& a);
template <Scalar T> void fill(Packed<T> const& a, double value);
template <Scalar T> void set_identity(Packed<T> const& a);

// A full value with every element the same; empty after "Out of memory!".
M<double> full_of(int rows, int cols, double value);

// Right hand sides for a matrix of type T: the parts of complex ones side by side when T is real.
template <Scalar T> Packed<T> right_sides(M<double> const& b);
// The solutions as a value: of `cols` columns, which are complex when the right hand sides were.
template <Scalar T> M<double> solution(Packed<T>& x, int cols, bool complex);

// Triangular factors of a square matrix, or what is known without them.
template <Scalar T> class DenseFactor {
public:
    enum class State { factored, singular, not_finite, failed };

    // Takes the matrix over. `general`: with exchanges of rows whatever its structure. `failed` after a report.
    DenseFactor(Arguments const& args, Packed<T> a, bool general = false);

    State state() const { return state_; }
    Structure structure() const { return structure_; }
    // The estimate of the reciprocal condition in the 1-norm; false after a report.
    bool estimate(double& rcond) const;
    double norm() const { return norm_; }
    // Overwrite `cols` columns of the right length with the solutions for the matrix and for its
    // conjugate transpose; false after a report.
    bool solve(T* b, int cols, char trans = 'N') const;
    Packed<T>& factors() { return a_; }
    int const* pivots() const { return pivots_.data(); }

private:
    bool estimate_scaled(double& rcond) const;

    Arguments const& args_;
    Packed<T> a_;
    HeapArray<int> pivots_;
    Structure structure_ = Structure::general;
    State state_ = State::failed;
    double norm_ = 0;
};

// All singular values, falling, of a matrix that is overwritten. False after a report: "%s: matrix contains NaN or
// Inf", "%s: iteration did not converge".
bool singular_values(Arguments const& args, M<double> const& x, HeapArray<double>& s);

} // namespace arrlib

#endif
