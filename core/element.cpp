// The bounds-checking element accessors r() and i().
#include "core/matrix.h"

#include "core/sparse_build.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>

using namespace arrlib;

namespace {

constexpr char no_elements[1] = "";

// Between make_writable and refuse().
thread_local std::exception_ptr thrown_report;

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
    unsigned const i = M<T>::position(row), j = M<T>::position(col), rows = static_cast<unsigned>(matrix.form_.dims[0]);
    if (i >= rows || j >= static_cast<unsigned>(matrix.form_.dims[1]))
        out_of_matrix("%s.%s(row,col): row or col out of matrix", matrix, which);
    return j * rows + i;
}

template <class T> unsigned Elements<T>::checked(M<T> const& matrix, ElementPart which, double row, double col, double depth)
{
    unsigned const i = M<T>::position(row), j = M<T>::position(col), k = M<T>::position(depth);
    unsigned const rows = static_cast<unsigned>(matrix.form_.dims[0]), cols = static_cast<unsigned>(matrix.form_.dims[1]);
    if (i >= rows || j >= cols || k >= static_cast<unsigned>(matrix.form_.dims[2]))
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
    T const* const parts = which == ElementPart::real ? matrix.addr() : matrix.place_.im;
    if constexpr (std::is_same_v<T, double>) {
        static constexpr double zero = 0;
        if (matrix.issparse())
            return parts ? *entry_or_zero(matrix.place_.index, matrix.place_.nnz, static_cast<int>(at), parts, &zero) : zero;
        if (!parts)
            return zero;
    } else if (!parts) {
        out_of_matrix("%s.%s(%s): idx out of matrix", matrix, which, IntegerText(static_cast<int>(at) + 1));
    }
    return parts[at];
}

template <class T> bool Elements<T>::make_writable(M<T>& matrix) noexcept
{
    try {
        if (matrix.issparse())
            matrix.getfull();
        matrix.unshare();
    } catch (...) {
        thrown_report = std::current_exception();
        return false;
    }
    return !matrix.dirty() && !matrix.issparse();
}

template <class T> void Elements<T>::refuse()
{
    if (thrown_report)
        std::rethrow_exception(std::exchange(thrown_report, nullptr));
    end_process();
}

template <class T> void Elements<T>::outside(M<T> const& matrix, double k)
{
    checked(matrix, ElementPart::real, k);
    end_process();
}

template <class T> void Elements<T>::outside(M<T> const& matrix, double row, double col)
{
    checked(matrix, ElementPart::real, row, col);
    end_process();
}

template <class T> T& Elements<T>::writable(M<T>& matrix, ElementPart which, unsigned at)
{
    if constexpr (std::is_same_v<T, double>) {
        if (which == ElementPart::imaginary)
            matrix.getcomplex();
    } else if (which == ElementPart::imaginary) {
        out_of_matrix("%s.%s(%s): idx out of matrix", matrix, which, IntegerText(static_cast<int>(at) + 1));
    }
    if (!make_writable(matrix))
        refuse();
    if (which == ElementPart::imaginary && !matrix.place_.im)
        end_process();
    return (which == ElementPart::real ? matrix.place_.re : matrix.place_.im)[at];
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
