// What assigning to a proxy does, for the library's own code.
#ifndef ARRLIB_CORE_ASSIGN_H
#define ARRLIB_CORE_ASSIGN_H

#include "core/access.h"
#include "core/odometer.h"
#include "core/subscript.h"

namespace arrlib {

// Makes a value ready to be written with the given sizes: private, complex if asked, its elements
// where they belong in the new sizes, the new ones 0. Sizes never shrink. A value that grows gets
// room for more, so that growing it element by element is linear. False after "Out of memory!".
template <class T> bool enlarge(M<T>& target, Dims const& shape);

// The sizes that hold a linear position of a target that is a vector, empty or a scalar: a column
// stays one, everything else grows as a row.
template <class T> Dims grown_vector(M<T> const& target, int count);

// Stores source[k * step] (step 0: the one element for all) at each position of a sparse target of
// its present sizes; later elements win, zeros vanish.
bool assign_sparse(M<double>& target, int const* positions, int count, M<double> const& source);
// The same for the elements of a sparse source in a block of rising rows and columns, in the time of
// what is stored, not of what is selected.
bool assign_sparse_block(M<double>& target, Subscript const& rows, Subscript const& cols, M<double> const& source);
// Gives a sparse value larger sizes.
bool enlarge_sparse(M<double>& target, Dims const& shape);

} // namespace arrlib

#endif
