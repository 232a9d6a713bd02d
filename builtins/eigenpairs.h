// Eigenvalues and vectors as values: what the drivers give, in the form that built-ins return.
#ifndef ARRLIB_BUILTINS_EIGENPAIRS_H
#define ARRLIB_BUILTINS_EIGENPAIRS_H

#include "builtins/spectrum.h"

namespace arrlib {

// Values as a column, and vectors of length 1 as columns, where they were asked for.
struct Eigenpairs {
    M<double> values, right, left;
};
enum class Eigenvectors { none, right, both };

// Of full square matrices of finite elements, not empty. False after a report: "%s: algorithm did not
// converge", "Out of memory!".

// Ascending real values and orthonormal vectors of a Hermitian matrix.
bool hermitian_pairs(Arguments const& args, M<double> const& A, bool vectors, Eigenpairs& made);
// Of any matrix; `balance` as for the driver geevx.
bool general_pairs(Arguments const& args, M<double> const& A, char balance, Eigenvectors vectors, Eigenpairs& made);
// A x = value B x for Hermitian A and B; `definite` false, without a report, when B is not positive
// definite. Vectors have x' B x = 1.
bool definite_pairs(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, Eigenpairs& made, bool& definite);
// A x = value B x by the QZ method; Inf where the value has no bound, NaN where it is undetermined.
bool pencil_pairs(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, Eigenpairs& made);

// A square value with the elements of a column on its diagonal.
M<double> diagonal_matrix(M<double> const& column);
// Columns scaled to length 1; those of zeros stay.
void normalise_columns(M<double>& vectors);

} // namespace arrlib

#endif
