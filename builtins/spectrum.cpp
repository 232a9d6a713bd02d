#include "builtins/spectrum.h"

#include <cmath>
#include <limits>

namespace arrlib {

namespace {

// The workspace of the faster driver passes an int beyond this order.
constexpr int largest_divided = 16000;

// The eigenvalues of a general matrix.
int general_eigenvalues(Packed<double>& matrix, Complex* values)
{
    int const n = matrix.rows();
    HeapArray<double> parts(2 * static_cast<std::size_t>(n));
    if (!parts)
        return lapack::no_memory;
    int const info = lapack::geev('N', 'N', n, matrix.data(), matrix.stride(), parts.data(), parts.data() + n, nullptr, 1, nullptr, 1);
    for (int k = 0; info == 0 && k < n; ++k)
        values[k] = Complex(parts[static_cast<std::size_t>(k)], parts[static_cast<std::size_t>(n + k)]);
    return info;
}

int general_eigenvalues(Packed<Complex>& matrix, Complex* values)
{
    return lapack::geev('N', 'N', matrix.rows(), matrix.data(), matrix.stride(), values, nullptr, 1, nullptr, 1);
}

template <Scalar T> bool hermitian_eigenvalues(Arguments const& args, Packed<T> matrix, Packed<Complex>& values)
{
    HeapArray<double> real(static_cast<std::size_t>(matrix.rows()));
    if (!matrix || !values || !real)
        return false;
    if (!converged(args, lapack::syev('N', 'L', matrix.rows(), matrix.data(), matrix.stride(), real.data())))
        return false;
    std::copy(real.begin(), real.end(), values.data());
    return true;
}

template <Scalar T> int singular_values(char job, Packed<T>& a, SingularValues<T>& made, bool divide)
{
    int const m = a.rows(), n = a.cols();
    if (divide)
        return lapack::gesdd(job, m, n, a.data(), a.stride(), made.s.data(), made.u.data(), made.u.stride(), made.vt.data(), made.vt.stride());
    return lapack::gesvd(job, job, m, n, a.data(), a.stride(), made.s.data(), made.u.data(), made.u.stride(), made.vt.data(), made.vt.stride());
}

} // namespace

bool converged(Arguments const& args, int info)
{
    return lapack::succeeded(args, info) && (info <= 0 || args.report("algorithm did not converge"));
}

bool flat_and_finite(Arguments const& args, M<double> const& A)
{
    return args.two_dimensional(A) && args.finite(A);
}

bool square_and_finite(Arguments const& args, M<double> const& A)
{
    return args.square(A) && args.finite(A);
}

bool is_hermitian(M<double> const& A)
{
    std::ptrdiff_t const n = A.rows();
    double const *const re = A.addr(), *const im = A.addi();
    // In squares of elements that stay near the processor.
    constexpr std::ptrdiff_t block = 32;
    for (std::ptrdiff_t from_j = 0; from_j < n; from_j += block)
        for (std::ptrdiff_t from_i = from_j; from_i < n; from_i += block)
            for (std::ptrdiff_t j = from_j; j < std::min(n, from_j + block); ++j)
                for (std::ptrdiff_t i = std::max(j, from_i); i < std::min(n, from_i + block); ++i)
                    if (re[i + j * n] != re[j + i * n] || (im && im[i + j * n] != -im[j + i * n]))
                        return false;
    return true;
}

template <Scalar T> bool eigenvalues(Arguments const& args, Packed<T> matrix, Packed<Complex>& values)
{
    values = Packed<Complex>(matrix.rows(), 1);
    return matrix && values && converged(args, general_eigenvalues(matrix, values.data()));
}
template bool eigenvalues(Arguments const&, Packed<double>, Packed<Complex>&);
template bool eigenvalues(Arguments const&, Packed<Complex>, Packed<Complex>&);

bool eigenvalues(Arguments const& args, M<double> const& A, Packed<Complex>& values)
{
    if (!square_and_finite(args, A))
        return false;
    if (!given(A)) {
        values = Packed<Complex>(0, 1);
        return static_cast<bool>(values);
    }
    M<double> const full = full_form(A);
    if (!has_storage(full))
        return false;
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        if (!is_hermitian(full))
            return eigenvalues(args, Packed<T>(full), values);
        values = Packed<Complex>(full.rows(), 1);
        return hermitian_eigenvalues(args, Packed<T>(full), values);
    });
}

bool any_imaginary(Packed<Complex> const& values)
{
    return std::any_of(values.data(), values.data() + values.size(), [](Complex z) { return z.imag() != 0; });
}

M<double> realified(Packed<Complex>& values)
{
    if (any_imaginary(values))
        return values.value();
    Packed<double> real(values.rows(), values.cols());
    for (std::ptrdiff_t k = 0; real && k < values.size(); ++k)
        real.data()[k] = values.data()[k].real();
    return real.value();
}

template <Scalar T> double SingularValues<T>::default_tolerance(int rows, int cols) const
{
    return count > 0 ? std::max(rows, cols) * s.data()[0] * std::numeric_limits<double>::epsilon() : 0;
}

template <Scalar T> int SingularValues<T>::rank(double tolerance) const
{
    return static_cast<int>(std::count_if(s.data(), s.data() + count, [tolerance](double value) { return value > tolerance; }));
}

template struct SingularValues<double>;
template struct SingularValues<Complex>;

template <Scalar T> bool decompose(Arguments const& args, M<double> const& A, SingularVectors which, SingularValues<T>& made)
{
    int const m = A.rows(), n = A.cols(), least = std::min(m, n);
    bool const all = which == SingularVectors::all, none = which == SingularVectors::none;
    Packed<T> a(A);
    made.s = Packed<double>(least, 1);
    made.u = none ? Packed<T>() : Packed<T>(m, all ? m : least);
    made.vt = none ? Packed<T>() : Packed<T>(all ? n : least, n);
    made.count = least;
    if (!a || !made.s || (!none && (!made.u || !made.vt)))
        return false;
    if (least == 0)
        return true;
    char const job = none ? 'N' : all ? 'A' : 'S';
    // The divide and conquer driver is the faster one; where it fails, the other one begins anew.
    if (std::max(m, n) <= largest_divided) {
        int const info = singular_values(job, a, made, true);
        if (info <= 0)
            return converged(args, info);
        a = Packed<T>(A);
    }
    return a && converged(args, singular_values(job, a, made, false));
}
template bool decompose(Arguments const&, M<double> const&, SingularVectors, SingularValues<double>&);
template bool decompose(Arguments const&, M<double> const&, SingularVectors, SingularValues<Complex>&);

} // namespace arrlib
