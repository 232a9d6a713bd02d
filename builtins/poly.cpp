#include "builtins/poly.h"

#include "builtins/polynomial.h"
#include "builtins/results.h"
#include "builtins/spectrum.h"
#include "ops/operators.h"
#include "runtime/workers.h"

#include <cmath>

using namespace arrlib;
using namespace arrlib::polynomial;

namespace {

bool is_vector(M<double> const& x)
{
    return x.getndims() == 2 && (x.rows() == 1 || x.cols() == 1);
}

// A row turned into a column when `like` is one.
M<double> lying_as(M<double> const& like, M<double> row)
{
    if (like.rows() > 1 && has_storage(row))
        row.reshape(row.size(), 1);
    return row;
}

template <Scalar T> M<double> without_leading_zeros(Coefficients<T> const& p)
{
    Coefficients<T> rest = tail(p, leading_zeros(p));
    return rest ? rest.value() : x_M;
}

// --- roots ---------------------------------------------------------------------------------------

// The polynomial with the given roots, real when they pair up; orders them.
M<double> polynomial_of(Packed<Complex>& roots)
{
    int const count = length(roots);
    bool const real = come_in_pairs(roots.data(), count);
    Coefficients<Complex> made = from_roots(roots.data(), count);
    if (!made)
        return x_M;
    M<double> value = made.value();
    if (real && has_storage(value))
        Access<double>::drop_imaginary(value);
    return stored_or_nothing(value);
}

// The columns and rows of the companion matrix.
template <Scalar T> bool companion(T const* p, int degree, Packed<T>& made)
{
    made = Packed<T>(degree, degree);
    if (!made)
        return false;
    std::fill_n(made.data(), made.size(), T());
    for (int k = 0; k < degree; ++k) {
        made(0, k) = -(p[k + 1] / p[0]);
        if (k > 0)
            made(k, k - 1) = 1;
    }
    return true;
}

// Leading coefficients that are so small that another one overflows when it is divided by them belong
// to roots that no number can hold.
template <Scalar T> bool overflows(T const* p, int degree)
{
    auto const too_large = [first = *p](T coefficient) {
        T const ratio = coefficient / first;
        return !std::isfinite(real_part(ratio)) || !std::isfinite(std::abs(ratio));
    };
    return std::any_of(p + 1, p + degree + 1, too_large);
}

template <Scalar T> M<double> nonzero_and_zero_roots(Arguments const& args, Coefficients<T> const& p)
{
    if (!p)
        return x_M;
    T const* first = p.data();
    T const* last = first + length(p) - 1;
    while (first <= last && *first == T())
        ++first;
    int zeros = 0;
    for (; last > first && *last == T(); --last)
        ++zeros;
    while (first < last && overflows(first, static_cast<int>(last - first)))
        ++first;
    int const degree = last > first ? static_cast<int>(last - first) : 0;
    if (degree + zeros == 0)
        return M<double>();
    Packed<Complex> values;
    if (degree > 0) {
        Packed<T> matrix;
        if (!companion(first, degree, matrix) || !eigenvalues(args, std::move(matrix), values))
            return x_M;
    }
    bool const complex = std::any_of(values.data(), values.data() + degree, [](Complex z) { return z.imag() != 0; });
    M<double> made = full_result(Dims(degree + zeros, 1), complex);
    if (!has_storage(made))
        return x_M;
    for (int k = 0; k < degree + zeros; ++k) {
        Complex const root = k < degree ? values.data()[k] : Complex();
        made.addr()[k] = root.real();
        if (complex)
            made.addi()[k] = root.imag();
    }
    return made;
}

// --- values --------------------------------------------------------------------------------------

// Elements are taken in blocks, coefficient by coefficient.
template <Scalar T> void evaluate(Coefficients<T> const& p, T const* x, T* y, std::ptrdiff_t count)
{
    constexpr std::ptrdiff_t block = 512, least = 1 << 16;
    parallel_for(count, least, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        for (std::ptrdiff_t from = begin; from < end; from += block) {
            std::ptrdiff_t const to = std::min(end, from + block);
            std::fill(y + from, y + to, p.size() > 0 ? p.data()[0] : T());
            for (int c = 1; c < length(p); ++c) {
                T const coefficient = p.data()[c];
                for (std::ptrdiff_t k = from; k < to; ++k)
                    y[k] = y[k] * x[k] + coefficient;
            }
        }
    });
}

// The elements of a value of any shape.
template <Scalar T> Packed<T> flat(M<double> const& x)
{
    M<double> list = full_form(x);
    if (!has_storage(list))
        return Packed<T>(0, 0);
    list.reshape(list.size(), list.size() > 0);
    return Packed<T>(list);
}

M<double> in_shape_of(M<double> const& x, M<double> made)
{
    if (has_storage(made))
        made.reshape(x.getndims(), x.getdims());
    return stored_or_nothing(made);
}

M<double> values_at(M<double> const& p, M<double> const& x)
{
    return with_scalar(p.isc() || x.isc(), [&](auto kind) {
        using T = decltype(kind);
        Coefficients<T> const coefficients(p);
        Packed<T> const at = flat<T>(x);
        Packed<T> made(at.rows(), at.cols());
        if (!coefficients || !at || !made)
            return x_M;
        evaluate(coefficients, at.data(), made.data(), at.size());
        return in_shape_of(x, made.value());
    });
}

// normr / sqrt(df) * sqrt(1 + |e|^2) where e R = [x^n ... x 1].
template <Scalar T> M<double> prediction_errors(M<double> const& x, M<double> const& S)
{
    int const n = S.cols();
    Packed<T> const at = flat<T>(x), fit(S);
    Packed<double> made(at.rows(), at.cols());
    HeapArray<T> row(static_cast<std::size_t>(n));
    if (!at || !fit || !made || !row)
        return x_M;
    double const scale = real_part(fit(n + 1, 0)) / std::sqrt(real_part(fit(n, 0)));
    for (std::ptrdiff_t k = 0; k < at.size(); ++k) {
        row[static_cast<std::size_t>(n - 1)] = 1;
        for (int j = n - 1; j-- > 0;)
            row[static_cast<std::size_t>(j)] = row[static_cast<std::size_t>(j) + 1] * at.data()[k];
        double sum = 1;
        for (int j = 0; j < n; ++j) {
            T value = row[static_cast<std::size_t>(j)];
            for (int i = 0; i < j; ++i)
                value -= row[static_cast<std::size_t>(i)] * fit(i, j);
            value /= fit(j, j);
            row[static_cast<std::size_t>(j)] = value;
            sum += std::norm(value);
        }
        made.data()[k] = scale * std::sqrt(sum);
    }
    return in_shape_of(x, made.value());
}

Results<2> values_and_errors(M<double> const& p, M<double> const& x, M<double> const& S, bool with_errors)
{
    Arguments const args("polyval");
    if (!is_list(args, p))
        return nothing<2>();
    if (with_errors && (S.cols() != p.size() || S.rows() != p.size() + 2 || S.getndims() > 2)) {
        args.sizes_differ(p, S);
        return nothing<2>();
    }
    Results<2> made = nothing<2>();
    made[0] = values_at(p, x);
    if (with_errors && x.size() > 0)
        made[1] = with_scalar(S.isc() || x.isc(), [&](auto kind) { return prediction_errors<decltype(kind)>(x, S); });
    return made[0].size() == x.size() && (!with_errors || made[1].size() == x.size()) ? made : nothing<2>();
}

// Adds the coefficient to the diagonal of a value that nobody else holds.
void add_to_diagonal(M<double>& Y, Complex coefficient)
{
    for (std::ptrdiff_t k = 0, n = Y.rows(); k < n; ++k) {
        Y.addr()[k * (n + 1)] += coefficient.real();
        if (Y.isc())
            Y.addi()[k * (n + 1)] += coefficient.imag();
    }
}

// --- products and quotients ----------------------------------------------------------------------

Results<2> divided(M<double> const& b, M<double> const& a)
{
    Arguments const args("deconv");
    if (!is_list(args, b) || !is_list(args, a))
        return nothing<2>();
    return with_scalar(a.isc() || b.isc(), [&](auto kind) {
        using T = decltype(kind);
        Coefficients<T> divisor(a), rest(b);
        if (!divisor || !rest)
            return nothing<2>();
        int const nb = length(rest), na = length(divisor), steps = std::max(nb - na + 1, 0);
        if (na == 0 || divisor.data()[0] == T()) {
            args.report("first coefficient must be non-zero");
            return nothing<2>();
        }
        Coefficients<T> quotient(1, std::max(steps, 1));
        if (!quotient)
            return nothing<2>();
        quotient.data()[0] = T();
        for (int k = 0; k < steps; ++k) {
            T const factor = rest.data()[k] / divisor.data()[0];
            quotient.data()[k] = factor;
            rest.data()[k] = T();
            for (int j = 1; j < na; ++j)
                rest.data()[k + j] -= factor * divisor.data()[j];
        }
        Results<2> made{lying_as(b, quotient.value()), rest.value()};
        return all_have_storage(made) ? made : nothing<2>();
    });
}

// --- derivatives ---------------------------------------------------------------------------------

// What a list of coefficients stands for, an empty one being 0.
template <Scalar T> Coefficients<T> as_row(M<double> const& p)
{
    Coefficients<T> made = flat<T>(p);
    if (!made)
        return made;
    Coefficients<T> row(1, std::max(length(made), 1));
    if (row) {
        row.data()[0] = T();
        std::copy_n(made.data(), made.size(), row.data());
    }
    return row;
}

M<double> product_derivative(M<double> const& a, M<double> const& b)
{
    Arguments const args("polyder");
    if (!is_list(args, a) || !is_list(args, b))
        return x_M;
    return with_scalar(a.isc() || b.isc(), [&](auto kind) {
        using T = decltype(kind);
        Coefficients<T> const x = as_row<T>(a), y = as_row<T>(b);
        if (!x || !y)
            return x_M;
        Coefficients<T> const both = product(x, y);
        if (!both)
            return x_M;
        Coefficients<T> made = derivative(both);
        return made ? stored_or_nothing(without_leading_zeros(made)) : x_M;
    });
}

Results<2> quotient_derivative(M<double> const& b, M<double> const& a)
{
    Arguments const args("polyder");
    if (!is_list(args, a) || !is_list(args, b))
        return nothing<2>();
    return with_scalar(a.isc() || b.isc(), [&](auto kind) {
        using T = decltype(kind);
        Coefficients<T> const x = as_row<T>(b), y = as_row<T>(a);
        if (!x || !y)
            return nothing<2>();
        Coefficients<T> const dx = derivative(x), dy = derivative(y);
        if (!dx || !dy)
            return nothing<2>();
        Coefficients<T> first = product(dx, y), second = product(x, dy), below = product(y, y);
        if (!first || !second || !below)
            return nothing<2>();
        // The derivative of a constant is as long as the constant, and zero.
        Coefficients<T>& longer = length(first) >= length(second) ? first : second;
        if (&longer == &second) {
            for (int k = 0; k < length(second); ++k)
                second.data()[k] = -second.data()[k];
            add(second, 1, first);
        } else
            add(first, -1, second);
        Results<2> made{without_leading_zeros(longer), without_leading_zeros(below)};
        return given(made[0]) && given(made[1]) ? made : nothing<2>();
    });
}

} // namespace

bool arrlib::polynomial::is_list(Arguments const& args, M<double> const& p)
{
    return !given(p) || args.vector(p);
}

bool arrlib::polynomial::is_finite_list(Arguments const& args, M<double> const& p)
{
    auto const finite = [n = p.getnnz()](double const* part) {
        return !part || std::all_of(part, part + n, [](double v) { return std::isfinite(v); });
    };
    return is_list(args, p) && ((finite(p.addr()) && finite(p.addi())) || args.report("coefficients must be finite"));
}

M<double> arrlib::polynomial::roots_of(Arguments const& args, M<double> const& p)
{
    return with_scalar(p.isc(), [&](auto kind) { return nonzero_and_zero_roots(args, Coefficients<decltype(kind)>(p)); });
}

M<double> poly(M<double> const& A)
{
    Arguments const args("poly");
    if (!given(A))
        return 1.0;
    Packed<Complex> roots;
    if (is_vector(A)) {
        if (!A.isc()) {
            Packed<double> const real(A);
            Coefficients<double> made = real ? from_roots(real.data(), length(real)) : Packed<double>();
            return made ? stored_or_nothing(made.value()) : x_M;
        }
        roots = Packed<Complex>(A);
        return roots ? polynomial_of(roots) : x_M;
    }
    if (A.getndims() > 2 || A.rows() != A.cols()) {
        args.report("argument must be a vector or a square matrix");
        return x_M;
    }
    return eigenvalues(args, A, roots) ? polynomial_of(roots) : x_M;
}

M<double> roots(M<double> const& p)
{
    Arguments const args("roots");
    return is_finite_list(args, p) ? roots_of(args, p) : x_M;
}

M<double> polyval(M<double> const& p, M<double> const& x)
{
    return values_and_errors(p, x, nop_M, false)[0];
}

M<double> polyval(M<double> const& p, M<double> const& x, M<double> const&)
{
    return polyval(p, x); // the third argument tells of errors only
}

M<double> polyval(M<double> const& p, M<double> const& x, i_o_t, Mr<double> y)
{
    return hand_out(values_and_errors(p, x, nop_M, false), y);
}

M<double> polyval(M<double> const& p, M<double> const& x, M<double> const&, i_o_t, Mr<double> y)
{
    return hand_out(values_and_errors(p, x, nop_M, false), y);
}

M<double> polyval(M<double> const& p, M<double> const& x, M<double> const& S, i_o_t, Mr<double> y, Mr<double> delta)
{
    return hand_out(values_and_errors(p, x, S, true), y, delta);
}

M<double> polyvalm(M<double> const& p, M<double> const& A)
{
    Arguments const args("polyvalm");
    if (!is_list(args, p) || !args.square(A))
        return x_M;
    M<double> const square = full_form(A);
    Packed<Complex> const coefficients(p);
    M<double> Y = full_result(shape_of(A), p.isc() || A.isc());
    if (!has_storage(square) || !coefficients || !has_storage(Y))
        return x_M;
    std::fill_n(Y.addr(), Y.size(), 0.0);
    if (Y.isc())
        std::fill_n(Y.addi(), Y.size(), 0.0);
    for (int k = 0; k < length(coefficients); ++k) {
        if (k > 0)
            Y = square * std::move(Y);
        // A product of numbers may have lost an imaginary part of zero.
        if (Y.size() != A.size() || ((p.isc() || A.isc()) && !Y.getcomplex()))
            return x_M;
        add_to_diagonal(Y, coefficients.data()[k]);
    }
    return Y;
}

M<double> conv(M<double> const& a, M<double> const& b)
{
    Arguments const args("conv");
    if (!is_list(args, a) || !is_list(args, b))
        return x_M;
    if (!given(a) || !given(b))
        return M<double>();
    return with_scalar(a.isc() || b.isc(), [&](auto kind) {
        using T = decltype(kind);
        Coefficients<T> const x(a), y(b);
        if (!x || !y)
            return x_M;
        Coefficients<T> made = product(x, y);
        return made ? stored_or_nothing(lying_as(a.size() > b.size() ? a : b, made.value())) : x_M;
    });
}

M<double> deconv(M<double> const& b, M<double> const& a)
{
    return divided(b, a)[0];
}

M<double> deconv(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q)
{
    return hand_out(divided(b, a), q);
}

M<double> deconv(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q, Mr<double> r)
{
    return hand_out(divided(b, a), q, r);
}

M<double> polyder(M<double> const& p)
{
    return product_derivative(p, one_M);
}

M<double> polyder(M<double> const& p, i_o_t, Mr<double> q)
{
    return hand_out(Results<1>{polyder(p)}, q);
}

M<double> polyder(M<double> const& a, M<double> const& b)
{
    return product_derivative(a, b);
}

M<double> polyder(M<double> const& a, M<double> const& b, i_o_t, Mr<double> q)
{
    return hand_out(Results<1>{product_derivative(a, b)}, q);
}

M<double> polyder(M<double> const& b, M<double> const& a, i_o_t, Mr<double> q, Mr<double> d)
{
    return hand_out(quotient_derivative(b, a), q, d);
}

M<double> polyint(M<double> const& p)
{
    return polyint(p, zero_M);
}

M<double> polyint(M<double> const& p, M<double> const& k)
{
    Arguments const args("polyint");
    if (!is_list(args, p) || (given(k) && !args.scalar(k)))
        return x_M;
    return with_scalar(p.isc() || k.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> const constant(given(k) ? k : zero_M), from = flat<T>(p);
        int const n = length(from);
        Coefficients<T> made(1, n + 1);
        if (!constant || !from || !made)
            return x_M;
        for (int c = 0; c < n; ++c)
            made.data()[c] = from.data()[c] / static_cast<double>(n - c);
        made.data()[n] = constant.data()[0];
        return stored_or_nothing(made.value());
    });
}
