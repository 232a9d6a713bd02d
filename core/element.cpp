// The bounds-checking element accessors r() and i().
#include "core/matrix.h"

#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>
#include <type_traits>

using namespace arrlib;

namespace {

constexpr char no_elements[1] = "";

template <class T> [[noreturn]] void out_of_matrix(char const* format, M<T> const& matrix, ElementPart which, char const* index = no_elements)
{
    char const part[] = {static_cast<char>(which), '\0'};
    error(format, OperandName(matrix), part, index);
    end_process();
}

} // namespace

// --- which element -------------------------------------------------------------------------------

template <class T> unsigned Elements<T>::checked(M<T> const& matrix, ElementPart which, double k)
{
    unsigned const at = M<T>::position(k);
    if (at >= static_cast<unsigned>(matrix.size()))
        out_of_matrix("%s.%s(%s): idx out of matrix", matrix, which, IntegerText(k));
    return at;
}

template <class T> unsigned Elements<T>::checked(M<T> const& matrix, ElementPart which, double row, double col)
{
    unsigned const i = M<T>::position(row), j = M<T>::position(col), rows = static_cast<unsigned>(matrix.dims_[0]);
    if (i >= rows || j >= static_cast<unsigned>(matrix.dims_[1]))
        out_of_matrix("%s.%s(row,col): row or col out of matrix", matrix, which);
    return j * rows + i;
}

template <class T> unsigned Elements<T>::checked(M<T> const& matrix, ElementPart which, double row, double col, double depth)
{
    unsigned const i = M<T>::position(row), j = M<T>::position(col), k = M<T>::position(depth);
    unsigned const rows = static_cast<unsigned>(matrix.dims_[0]), cols = static_cast<unsigned>(matrix.dims_[1]);
    if (i >= rows || j >= cols || k >= static_cast<unsigned>(matrix.dims_[2]))
        out_of_matrix("%s.%s(row,col,depth): row or col out of matrix", matrix, which);
    return (k * cols + j) * rows + i;
}

template <class T> unsigned Elements<T>::checked(M<T> const& matrix, ElementPart which)
{
    if (matrix.size() < 1)
        out_of_matrix("%s.%s(): matrix is empty", matrix, which);
    return 0;
}

// --- its storage ---------------------------------------------------------------------------------

// Reading through a constant value changes nothing: what is not stored reads as zero.
template <class T> T const& Elements<T>::readable(M<T> const& matrix, ElementPart which, unsigned at)
{
    T const* const parts = which == ElementPart::real ? matrix.re_ : matrix.im_;
    if constexpr (std::is_same_v<T, double>) {
        static constexpr double zero = 0;
        if (matrix.issparse()) {
            int const* const found = std::lower_bound(matrix.index_, matrix.index_ + matrix.nnz_, static_cast<int>(at));
            bool const stored = parts && found != matrix.index_ + matrix.nnz_ && *found == static_cast<int>(at);
            return stored ? parts[found - matrix.index_] : zero;
        }
        if (!parts)
            return zero;
    } else if (!parts) {
        out_of_matrix("%s.%s(%s): idx out of matrix", matrix, which, IntegerText(static_cast<int>(at) + 1));
    }
    return parts[at];
}

template <class T> T& Elements<T>::writable(M<T>& matrix, ElementPart which, unsigned at)
{
    if constexpr (std::is_same_v<T, double>) {
        if (which == ElementPart::imaginary)
            matrix.getcomplex();
    } else if (which == ElementPart::imaginary) {
        out_of_matrix("%s.%s(%s): idx out of matrix", matrix, which, IntegerText(static_cast<int>(at) + 1));
    }
    matrix.unshare();
    // The reports of a copy that failed have returned: there is nothing to refer to.
    if (matrix.dirty() || (which == ElementPart::imaginary && !matrix.im_))
        end_process();
    if (matrix.issparse())
        at = static_cast<unsigned>(entry_for(matrix, static_cast<int>(at)));
    return (which == ElementPart::real ? matrix.re_ : matrix.im_)[at];
}

// Number of the entry at a position of a sparse value that shares its storage with nobody; entered
// as 0 when it is not stored.
template <class T> int Elements<T>::entry_for(M<T>& matrix, int where)
{
    if constexpr (std::is_same_v<T, double>) {
        int const entry = static_cast<int>(std::lower_bound(matrix.index_, matrix.index_ + matrix.nnz_, where) - matrix.index_);
        if (entry < matrix.nnz_ && matrix.index_[entry] == where)
            return entry;
        int const stored = matrix.nnz_;
        matrix.extend_nnz(stored + 1);
        if (matrix.nnz_ == stored)
            end_process();
        std::copy_backward(matrix.index_ + entry, matrix.index_ + stored, matrix.index_ + stored + 1);
        std::copy_backward(matrix.re_ + entry, matrix.re_ + stored, matrix.re_ + stored + 1);
        if (matrix.im_) {
            std::copy_backward(matrix.im_ + entry, matrix.im_ + stored, matrix.im_ + stored + 1);
            matrix.im_[entry] = 0;
        }
        matrix.re_[entry] = 0;
        matrix.index_[entry] = where;
        return entry;
    }
    return where;
}

template <class T> T& Elements<T>::write(M<T>& matrix, ElementPart which, double k)
{
    return writable(matrix, which, checked(matrix, which, k));
}

template <class T> T& Elements<T>::write(M<T>& matrix, ElementPart which, double row, double col)
{
    return writable(matrix, which, checked(matrix, which, row, col));
}

template <class T> T& Elements<T>::write(M<T>& matrix, ElementPart which, double row, double col, double depth)
{
    return writable(matrix, which, checked(matrix, which, row, col, depth));
}

template <class T> T& Elements<T>::write(M<T>& matrix, ElementPart which)
{
    return writable(matrix, which, checked(matrix, which));
}

template <class T> T const& Elements<T>::read(M<T> const& matrix, ElementPart which, double k)
{
    return readable(matrix, which, checked(matrix, which, k));
}

template <class T> T const& Elements<T>::read(M<T> const& matrix, ElementPart which, double row, double col)
{
    return readable(matrix, which, checked(matrix, which, row, col));
}

template <class T> T const& Elements<T>::read(M<T> const& matrix, ElementPart which, double row, double col, double depth)
{
    return readable(matrix, which, checked(matrix, which, row, col, depth));
}

template <class T> T const& Elements<T>::read(M<T> const& matrix, ElementPart which)
{
    return readable(matrix, which, checked(matrix, which));
}

template struct arrlib::Elements<double>;
template struct arrlib::Elements<M<double>>;
