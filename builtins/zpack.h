// Matrices as the linear algebra library takes them: complex ones are packed, with interleaved parts.
#ifndef ARRLIB_BUILTINS_ZPACK_H
#define ARRLIB_BUILTINS_ZPACK_H

#include "builtins/lapack.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace arrlib {

// A matrix of its own for a driver to work in, column by column without gaps. What began as a value
// becomes one again with value(): for real matrices without another copy.
template <Scalar T> class Packed;

template <> class Packed<double> {
public:
    Packed() = default;
    // Elements are not initialised. False after "Out of memory!".
    Packed(int rows, int cols) : rows_(rows), cols_(cols), made_(Access<double>::full(false, Dims(rows, cols))) {}
    // A copy of the real parts of any two-dimensional value.
    explicit Packed(M<double> const& x) : Packed(x.rows(), x.cols())
    {
        if (!*this)
            return;
        if (x.issparse()) {
            std::fill_n(data(), size(), 0.0);
            for (int k = 0; k < x.getnnz(); ++k)
                data()[Access<double>::index(x)[k]] += x.addr()[k];
        } else
            std::copy_n(x.addr(), size(), data());
    }

    explicit operator bool() const { return has_storage(made_); }
    double* data() const { return made_.addr(); }
    double& operator()(int i, int j) const { return data()[static_cast<std::ptrdiff_t>(j) * rows_ + i]; }
    double* column(int j) const { return data() + static_cast<std::ptrdiff_t>(j) * rows_; }
    int rows() const { return rows_; }
    int cols() const { return cols_; }
    // The distance between columns: drivers want at least 1.
    int stride() const { return std::max(rows_, 1); }
    std::ptrdiff_t size() const { return std::ptrdiff_t{rows_} * cols_; }
    // The matrix as a value, after which this object is not used again.
    M<double> value() { return std::move(made_); }

private:
    int rows_ = 0, cols_ = 0;
    M<double> made_ = Access<double>::without_storage();
};

template <> class Packed<Complex> {
public:
    Packed() = default;
    Packed(int rows, int cols) : rows_(rows), cols_(cols), made_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols)) {}
    explicit Packed(M<double> const& x) : Packed(x.rows(), x.cols())
    {
        if (!*this)
            return;
        if (x.issparse()) {
            std::fill_n(data(), size(), Complex());
            for (int k = 0; k < x.getnnz(); ++k)
                data()[Access<double>::index(x)[k]] += Complex(x.addr()[k], x.isc() ? x.addi()[k] : 0);
        } else if (x.isc())
            for (std::ptrdiff_t k = 0; k < size(); ++k)
                data()[k] = Complex(x.addr()[k], x.addi()[k]);
        else
            std::copy_n(x.addr(), size(), data());
    }

    explicit operator bool() const { return static_cast<bool>(made_); }
    Complex* data() const { return made_.data(); }
    Complex& operator()(int i, int j) const { return data()[static_cast<std::ptrdiff_t>(j) * rows_ + i]; }
    Complex* column(int j) const { return data() + static_cast<std::ptrdiff_t>(j) * rows_; }
    int rows() const { return rows_; }
    int cols() const { return cols_; }
    int stride() const { return std::max(rows_, 1); }
    std::ptrdiff_t size() const { return std::ptrdiff_t{rows_} * cols_; }
    // Complex, with zeros for imaginary parts too; without storage after "Out of memory!".
    M<double> value()
    {
        M<double> split = Access<double>::full(true, Dims(rows_, cols_));
        if (has_storage(split))
            for (std::ptrdiff_t k = 0; k < size(); ++k) {
                split.addr()[k] = data()[k].real();
                split.addi()[k] = data()[k].imag();
            }
        return split;
    }

private:
    int rows_ = 0, cols_ = 0;
    HeapArray<Complex> made_;
};

// Calls work(T()) with the scalar that a value, or any of several, needs: an algorithm is written once
// as a generic lambda.
template <class Work> auto with_scalar(bool complex, Work work)
{
    return complex ? work(Complex()) : work(double());
}

inline double conjugate(double x)
{
    return x;
}
inline Complex conjugate(Complex x)
{
    return std::conj(x);
}
inline double real_part(double x)
{
    return x;
}
inline double real_part(Complex x)
{
    return x.real();
}

} // namespace arrlib

#endif
