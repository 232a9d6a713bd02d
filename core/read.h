// What reading through a proxy yields, for the library's own code.
#ifndef ARRLIB_CORE_READ_H
#define ARRLIB_CORE_READ_H

#include "core/odometer.h"
#include "core/subscript.h"
#include "runtime/constants.h"

#include <type_traits>

namespace arrlib {

// Fewer elements than this, read or written, are not worth another thread.
inline constexpr int least_per_thread = 32768;

template <class T> M<T> read(Mr<T> const& selection);
template <class T> M<T> read(Sr<T> const& selection);

// The neutral result: x_M, or an empty cell array.
template <class T> M<T> x_M_of()
{
    if constexpr (std::is_same_v<T, double>)
        return x_M;
    else
        return {};
}

// True when every index selects at most one element: "%s{%s} : indexed more than one element",
// "%s{%s,%s} : indexed more than one element".
template <class T> bool selects_one(Mr<T> const& selection);

// Zero-based position of the one element that one or two full numeric 1x1 indices select in a full
// target; -1 for every other selection.
template <class T> int single_position(Mr<T> const& selection);

// The shape of A(I) with n elements selected.
template <class T> Dims shape_of_linear_read(M<T> const& target, M<double> const& index, int n);

// Parts of a sparse value, without going through the full one (core/read_sparse.cpp).
M<double> read_sparse(M<double> const& source, Odometer const& odometer, Dims const& shape);

// The shared whole of a value, unnamed.
template <class T> M<T> share(M<T> const& value)
{
    M<T> shared = value;
    shared.setname(nullptr);
    return shared;
}

} // namespace arrlib

#endif
