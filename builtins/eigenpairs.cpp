#include "builtins/eigenpairs.h"

#include <cmath>
#include <limits>

namespace arrlib {

namespace {

// The workspace of the faster driver passes an int beyond this order.
constexpr int largest_divided = 16000;

bool has_imaginary(double const* im, int n)
{
    return std::any_of(im, im + n, [](double part) { return part != 0; });
}

M<double> column_of(double const* re, double const* im, int n)
{
    M<double> made = full_result(Dims(n, 1), has_imaginary(im, n));
    if (has_storage(made)) {
        std::copy_n(re, n, made.addr());
        if (made.isc())
            std::copy_n(im, n, made.addi());
    }
    return made;
}

// Vectors of a real matrix: those of a conjugate pair lie as real and imaginary parts in two columns.
M<double> vectors_of(Packed<double>& packed, double const* im)
{
    std::ptrdiff_t const m = packed.rows();
    int const n = packed.cols();
    if (m == 0 || !has_imaginary(im, n))
        return packed.value();
    M<double> made = full_result(Dims(packed.rows(), n), true);
    if (!has_storage(made))
        return made;
    std::copy_n(packed.data(), packed.size(), made.addr());
    std::fill_n(made.addi(), made.size(), 0.0);
    for (int j = 0; j + 1 < n; ++j) {
        if (im[j] == 0)
            continue;
        double const *const re_part = packed.column(j), *const im_part = packed.column(j + 1);
        std::copy_n(re_part, m, made.addr() + (j + 1) * m);
        std::copy_n(im_part, m, made.addi() + j * m);
        std::transform(im_part, im_part + m, made.addi() + (j + 1) * m, [](double x) { return -x; });
        ++j;
    }
    return made;
}

M<double> vectors_of(Packed<Complex>& packed, double const*)
{
    return packed.value();
}

bool stored(Eigenpairs const& made)
{
    return has_storage(made.values) && has_storage(made.right) && has_storage(made.left);
}

// What a pencil's driver gives of one eigenvalue.
Complex quotient(Complex alpha, Complex beta)
{
    if (beta != Complex())
        return alpha / beta;
    return alpha == Complex() ? Complex(std::numeric_limits<double>::quiet_NaN()) : Complex(std::numeric_limits<double>::infinity());
}

int general(Packed<double>& a, char balance, Packed<double>& left, Packed<double>& right, Eigenpairs& made)
{
    int const n = a.rows();
    HeapArray<double> parts(2 * static_cast<std::size_t>(n));
    if (!parts)
        return lapack::no_memory;
    double *const re = parts.data(), *const im = re + n;
    char const want_left = left.size() > 0 ? 'V' : 'N', want_right = right.size() > 0 ? 'V' : 'N';
    int const info = balance == 'B' ? lapack::geev(want_left, want_right, n, a.data(), n, re, im, left.data(), left.stride(), right.data(), right.stride())
                                    : lapack::geevx(balance, want_left, want_right, n, a.data(), n, re, im, left.data(), left.stride(), right.data(), right.stride());
    if (info == 0)
        made = {column_of(re, im, n), vectors_of(right, im), vectors_of(left, im)};
    return info;
}

int general(Packed<Complex>& a, char balance, Packed<Complex>& left, Packed<Complex>& right, Eigenpairs& made)
{
    int const n = a.rows();
    Packed<Complex> values(n, 1);
    if (!values)
        return lapack::no_memory;
    char const want_left = left.size() > 0 ? 'V' : 'N', want_right = right.size() > 0 ? 'V' : 'N';
    int const info = balance == 'B' ? lapack::geev(want_left, want_right, n, a.data(), n, values.data(), left.data(), left.stride(), right.data(), right.stride())
                                    : lapack::geevx(balance, want_left, want_right, n, a.data(), n, values.data(), left.data(), left.stride(), right.data(), right.stride());
    if (info == 0)
        made = {values.value(), vectors_of(right, nullptr), vectors_of(left, nullptr)};
    return info;
}

int pencil(Packed<double>& a, Packed<double>& b, Packed<double>& right, Eigenpairs& made)
{
    int const n = a.rows();
    HeapArray<double> parts(3 * static_cast<std::size_t>(n));
    if (!parts)
        return lapack::no_memory;
    double *const re = parts.data(), *const im = re + n, *const beta = im + n;
    int const info = lapack::ggev('N', right.size() > 0 ? 'V' : 'N', n, a.data(), n, b.data(), n, re, im, beta, nullptr, 1, right.data(), right.stride());
    if (info != 0)
        return info;
    made.right = vectors_of(right, im);
    for (int k = 0; k < n; ++k) {
        Complex const value = quotient(Complex(re[k], im[k]), beta[k]);
        re[k] = value.real();
        im[k] = value.imag();
    }
    made.values = column_of(re, im, n);
    return info;
}

int pencil(Packed<Complex>& a, Packed<Complex>& b, Packed<Complex>& right, Eigenpairs& made)
{
    int const n = a.rows();
    Packed<Complex> values(n, 1), beta(n, 1);
    if (!values || !beta)
        return lapack::no_memory;
    int const info = lapack::ggev('N', right.size() > 0 ? 'V' : 'N', n, a.data(), n, b.data(), n, values.data(), beta.data(), nullptr, 1, right.data(), right.stride());
    if (info == 0) {
        std::transform(values.data(), values.data() + n, beta.data(), values.data(), quotient);
        made.values = values.value();
        made.right = vectors_of(right, nullptr);
    }
    return info;
}

// The square matrix for vectors, or one of no elements when none are wanted.
template <Scalar T> Packed<T> room_for_vectors(bool wanted, int n)
{
    return Packed<T>(wanted ? n : 0, wanted ? n : 0);
}

} // namespace

bool hermitian_pairs(Arguments const& args, M<double> const& A, bool vectors, Eigenpairs& made)
{
    return with_scalar(A.isc(), [&](auto kind) {
        Packed<decltype(kind)> a(A);
        int const n = a.rows();
        Packed<double> values(n, 1);
        if (!a || !values)
            return false;
        char const job = vectors ? 'V' : 'N';
        int const info = vectors && n <= largest_divided ? lapack::syevd(job, 'L', n, a.data(), n, values.data()) : lapack::syev(job, 'L', n, a.data(), n, values.data());
        if (!converged(args, info))
            return false;
        made.values = values.value();
        if (vectors)
            made.right = a.value();
        return stored(made);
    });
}

bool general_pairs(Arguments const& args, M<double> const& A, char balance, Eigenvectors vectors, Eigenpairs& made)
{
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        int const n = A.rows();
        Packed<T> a(A);
        Packed<T> left = room_for_vectors<T>(vectors == Eigenvectors::both, n), right = room_for_vectors<T>(vectors != Eigenvectors::none, n);
        return a && left && right && converged(args, general(a, balance, left, right, made)) && stored(made);
    });
}

bool definite_pairs(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, Eigenpairs& made, bool& definite)
{
    definite = true;
    return with_scalar(A.isc() || B.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> a(A), b(B);
        int const n = a.rows();
        Packed<double> values(n, 1);
        if (!a || !b || !values)
            return false;
        int const info = lapack::sygv(1, vectors ? 'V' : 'N', 'L', n, a.data(), n, b.data(), n, values.data());
        definite = info <= n;
        if (!definite || !converged(args, info))
            return false;
        made.values = values.value();
        if (vectors)
            made.right = a.value();
        return stored(made);
    });
}

bool pencil_pairs(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, Eigenpairs& made)
{
    return with_scalar(A.isc() || B.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> a(A), b(B), right = room_for_vectors<T>(vectors, A.rows());
        if (!a || !b || !right || !converged(args, pencil(a, b, right, made)) || !stored(made))
            return false;
        normalise_columns(made.right);
        return true;
    });
}

M<double> diagonal_matrix(M<double> const& column)
{
    int const n = column.size();
    M<double> made = full_result(Dims(n, n), column.isc());
    if (!has_storage(made))
        return made;
    auto const place = [n, count = made.size()](double const* from, double* to) {
        std::fill_n(to, count, 0.0);
        for (std::ptrdiff_t k = 0; k < n; ++k)
            to[k * n + k] = from[k];
    };
    place(column.addr(), made.addr());
    if (made.isc())
        place(column.addi(), made.addi());
    return made;
}

void normalise_columns(M<double>& vectors)
{
    std::ptrdiff_t const m = vectors.rows();
    for (std::ptrdiff_t j = 0; j < vectors.cols(); ++j) {
        double *const re = vectors.addr() + j * m, *const im = vectors.isc() ? vectors.addi() + j * m : nullptr;
        double largest = 0, sum = 0;
        for (std::ptrdiff_t i = 0; i < m; ++i)
            largest = std::max({largest, std::abs(re[i]), im ? std::abs(im[i]) : 0});
        if (!(largest > 0))
            continue;
        auto const square = [largest](double x) { return x / largest * (x / largest); };
        for (std::ptrdiff_t i = 0; i < m; ++i)
            sum += square(re[i]) + (im ? square(im[i]) : 0);
        double const length = std::sqrt(sum);
        for (std::ptrdiff_t i = 0; i < m; ++i) {
            re[i] = re[i] / largest / length;
            if (im)
                im[i] = im[i] / largest / length;
        }
    }
}

} // namespace arrlib
