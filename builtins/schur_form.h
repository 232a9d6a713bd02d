// The Schur form for built-ins that need it on the way.
#ifndef ARRLIB_BUILTINS_SCHUR_FORM_H
#define ARRLIB_BUILTINS_SCHUR_FORM_H

#include "builtins/spectrum.h"

namespace arrlib {

// A = u t u'; u is empty when it was not asked for.
template <Scalar T> struct SchurForm {
    Packed<T> u, t;
    Packed<Complex> values;
};

// Of a square value of finite elements, not empty. False after "%s: algorithm did not converge" or "Out
// of memory!".
template <Scalar T> bool schur_form(Arguments const& args, M<double> const& A, bool with_factor, SchurForm<T>& made);

// The same with a triangular t, without `values`. The real eigenvalues of a real matrix are real on the
// diagonal of t.
bool triangular_form(Arguments const& args, M<double> const& A, SchurForm<Complex>& made);

} // namespace arrlib

#endif
