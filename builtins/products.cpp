#include "builtins/products.h"

#include "builtins/dense.h"
#include "builtins/linear_systems.h"
#include "core/reshape.h"
#include "runtime/errors.h"

#include <cmath>

using namespace arrlib;

namespace {

bool is_integer_number(M<double> const& p)
{
    double const value = p[1];
    return (!p.isc() || p.addi()[0] == 0) && std::isfinite(value) && value == std::trunc(value);
}

// The identity in the form of a.
M<double> identity_like(M<double> const& a)
{
    if (a.issparse())
        return sparse_identity(a.rows());
    Packed<double> made(a.rows(), a.rows());
    if (!made)
        return x_M;
    set_identity(made);
    return made.value();
}

M<double> integer_power(Arguments const& args, M<double> const& a, double power)
{
    if (power == 0)
        return identity_like(a);
    M<double> square = power > 0 ? a : inverse(args, a);
    square.setstr(0);
    square.setlogical(0);
    M<double> made;
    for (double left = std::abs(power); left > 0 && square.size() > 0; left = std::trunc(left / 2)) {
        if (std::fmod(left, 2) == 1)
            made = made.size() > 0 ? made * square : square;
        if (left > 1)
            square = square * square;
    }
    return square.size() > 0 ? made : x_M;
}

// Eigenvalues and vectors of a square matrix; those of a Hermitian one are orthonormal.
struct Eigenpairs {
    HeapArray<Complex> values;
    Packed<Complex> vectors;
    bool orthonormal = false;
};

// Real eigenvalues of a real matrix are real exactly, others come in exact conjugate pairs.
int eigenpairs_of(Packed<double>& a, Packed<Complex>& vectors, Complex* values)
{
    int const n = a.rows();
    Packed<double> v(n, n);
    HeapArray<double> const re(static_cast<std::size_t>(n)), im(static_cast<std::size_t>(n));
    if (!v || !re || !im)
        return lapack::no_memory;
    double unused;
    int const info = lapack::geev('N', 'V', n, a.data(), n, re.data(), im.data(), &unused, 1, v.data(), n);
    if (info != 0)
        return info;
    for (int j = 0; j < n; ++j) {
        double const part = im[static_cast<std::size_t>(j)];
        values[j] = Complex(re[static_cast<std::size_t>(j)], part);
        // A pair has the real and the imaginary parts of its first vector in its two columns.
        for (int i = 0; i < n; ++i)
            vectors(i, j) = part == 0 ? Complex(v(i, j)) : part > 0 ? Complex(v(i, j), v(i, j + 1)) : Complex(v(i, j - 1), -v(i, j));
    }
    return 0;
}

int eigenpairs_of(Packed<Complex>& a, Packed<Complex>& vectors, Complex* values)
{
    Complex unused;
    return lapack::geev('N', 'V', a.rows(), a.data(), a.rows(), values, &unused, 1, vectors.data(), a.rows());
}

// False after a report.
bool find_eigenpairs(Arguments const& args, M<double> const& x, Eigenpairs& found)
{
    int const n = x.rows();
    if (!args.finite(x))
        return false;
    found.values = HeapArray<Complex>(static_cast<std::size_t>(n));
    found.vectors = Packed<Complex>(n, n);
    if (!found.values || !found.vectors)
        return false;
    return with_scalar(x.isc(), [&](auto zero) {
        using T = decltype(zero);
        Packed<T> a(x);
        HeapArray<double> const real_values(static_cast<std::size_t>(n));
        if (!a || !real_values)
            return false;
        int info;
        found.orthonormal = is_hermitian(a);
        if (found.orthonormal) {
            info = lapack::syevd('V', 'L', n, a.data(), n, real_values.data());
            std::copy(real_values.begin(), real_values.end(), found.values.begin());
            std::copy_n(a.data(), a.size(), found.vectors.data());
        } else
            info = eigenpairs_of(a, found.vectors, found.values.data());
        return lapack::succeeded(args, info) && (info == 0 || args.not_converged());
    });
}

// V*diag(f)/V. False after a report.
bool recombine(Arguments const& args, Eigenpairs& pairs, HeapArray<Complex> const& f, Packed<Complex>& made)
{
    int const n = pairs.vectors.rows();
    Packed<Complex> scaled(n, n);
    made = Packed<Complex>(n, n);
    if (!scaled || !made)
        return false;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            scaled(i, j) = pairs.vectors(i, j) * f[static_cast<std::size_t>(j)];
    if (pairs.orthonormal)
        return lapack::succeeded(args, lapack::gemm('N', 'C', n, n, n, Complex(1), scaled.data(), n, pairs.vectors.data(), n, Complex(0), made.data(), n));
    // X*V = scaled, turned round.
    M<double> const vectors = pairs.vectors.value(), product = scaled.value();
    if (!has_storage(vectors) || !has_storage(product))
        return false;
    M<double> const turned = ctranspose(vectors), sides = ctranspose(product);
    if (turned.size() == 0 || sides.size() == 0)
        return false;
    M<double> const quotient = solved(args, turned, sides);
    M<double> const result = quotient.size() > 0 ? ctranspose(quotient) : x_M;
    if (result.size() == 0)
        return false;
    made = Packed<Complex>(result);
    return static_cast<bool>(made);
}

// f(eigenvalue) for every one, put together again. `symmetric`: conjugate numbers have conjugate functions, so
// that the imaginary parts for a real matrix are rounding errors unless a real eigenvalue leaves the real numbers.
template <class Function> M<double> function_of_matrix(Arguments const& args, M<double> const& x, bool symmetric, Function f)
{
    Eigenpairs pairs;
    if (!find_eigenpairs(args, x, pairs))
        return x_M;
    auto const n = static_cast<std::size_t>(x.rows());
    HeapArray<Complex> const values(n);
    if (!values)
        return x_M;
    bool real = symmetric && !x.isc();
    for (std::size_t k = 0; k < n; ++k) {
        values[k] = f(pairs.values[k]);
        real = real && (pairs.values[k].imag() != 0 || values[k].imag() == 0);
    }
    Packed<Complex> made;
    if (!recombine(args, pairs, values, made))
        return x_M;
    M<double> result = made.value();
    if (!has_storage(result))
        return x_M;
    if (real)
        Access<double>::drop_imaginary(result);
    else
        result.getreal();
    return result;
}

Complex number_of(M<double> const& x)
{
    return {x.addr()[0], x.isc() ? x.addi()[0] : 0};
}

// std::pow gives real bases below zero an imaginary part only as complex numbers.
Complex power_of(Complex base, Complex exponent)
{
    if (base == 0.0)
        return exponent == 0.0 ? 1.0 : exponent.real() > 0 ? 0.0 : Complex(HUGE_VAL, 0);
    if (base.imag() == 0 && exponent.imag() == 0 && (base.real() > 0 || exponent.real() == std::trunc(exponent.real())))
        return std::pow(base.real(), exponent.real());
    return std::pow(base, exponent);
}

} // namespace

M<double> mpower(M<double> const& A, M<double> const& p)
{
    if (A.size() == 1 && p.size() == 1)
        return apply(op_power, A, p);
    Arguments const args("^");
    if (A.size() == 0 || p.size() == 0)
        return M<double>();
    if (A.size() > 1 && p.size() > 1) {
        args.report("at least one operand must be scalar");
        return x_M;
    }
    if (!args.square(A.size() > 1 ? A : p))
        return x_M;
    if (p.size() == 1) {
        if (is_integer_number(p))
            return integer_power(args, A, p[1]);
        Complex const exponent = number_of(p);
        return function_of_matrix(args, A, exponent.imag() == 0, [=](Complex value) { return power_of(value, exponent); });
    }
    Complex const base = number_of(A);
    return function_of_matrix(args, p, base.imag() == 0 && base.real() >= 0, [=](Complex value) { return power_of(base, value); });
}
