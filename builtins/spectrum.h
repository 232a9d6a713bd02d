// Eigenvalues and singular values for built-ins that need them on the way. NaN and infinities never
// reach a driver, and what does not converge is reported.
#ifndef ARRLIB_BUILTINS_SPECTRUM_H
#define ARRLIB_BUILTINS_SPECTRUM_H

#include "builtins/zpack.h"

namespace arrlib {

// Whether a driver came to its end. False after what lapack::succeeded reports, or "%s: algorithm did
// not converge".
bool converged(Arguments const& args, int info);

// Two-dimensional and finite, square and finite: the operands of drivers. False after a report.
bool flat_and_finite(Arguments const& args, M<double> const& A);
bool square_and_finite(Arguments const& args, M<double> const& A);

// Whether the two-dimensional full square value equals its conjugate transpose, element by element.
bool is_hermitian(M<double> const& A);

// The eigenvalues of a square matrix as a column; of a Hermitian value they are real and ascending. The
// value may be sparse or empty. False after a report: "%s: matrix contains NaN or Inf", "%s: algorithm
// did not converge".
bool eigenvalues(Arguments const& args, M<double> const& A, Packed<Complex>& values);
template <Scalar T> bool eigenvalues(Arguments const& args, Packed<T> matrix, Packed<Complex>& values);

// Whether any number has an imaginary part.
bool any_imaginary(Packed<Complex> const& values);
// The numbers as a value, real when none has an imaginary part.
M<double> realified(Packed<Complex>& values);

// The singular value decomposition of a finite matrix in the driver's own terms: min(m, n) values in
// falling order, and as many columns of U and rows of V' as were asked for.
template <Scalar T> struct SingularValues {
    Packed<double> s;
    Packed<T> u, vt;
    int count = 0;

    // max(m, n) eps s(1).
    double default_tolerance(int rows, int cols) const;
    // Number of values above a tolerance.
    int rank(double tolerance) const;
};
enum class SingularVectors { none, economy, all };
// False after "%s: algorithm did not converge" or "Out of memory!".
template <Scalar T> bool decompose(Arguments const& args, M<double> const& A, SingularVectors which, SingularValues<T>& made);

} // namespace arrlib

#endif
