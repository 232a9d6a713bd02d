#include "builtins/function_argument.h"
#include "builtins/matrix_functions.h"
#include "builtins/results.h"
#include "builtins/schur_form.h"
#include "builtins/square_values.h"
#include "core/reshape.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// The triangular form of an operand, and its full form; false after a report.
bool prepare(Arguments const& args, M<double> const& A, M<double>& full, SchurForm<Complex>& form)
{
    full = full_form(A);
    return has_storage(full) && triangular_form(args, full, form);
}

// U f U' for a triangular f, real where only rounding errors stand against it; empty after a report.
M<double> transformed_back(M<double> const& A, Packed<Complex>& u, Packed<Complex>& f)
{
    M<double> const factor = u.value(), middle = f.value();
    if (!has_storage(factor) || !has_storage(middle))
        return x_M;
    M<double> made = factor * middle * ctranspose(factor);
    if (given(made) && is_nearly_real(A, made))
        Access<double>::drop_imaginary(made);
    return given(made) ? made : x_M;
}

// The results X and esterr; warns of a large error where the caller will not see it.
Results<2> with_error(Arguments const& args, M<double> const& X, double error, bool seen)
{
    if (!given(X))
        return nothing<2>();
    if (!seen)
        warn_inaccurate(args, error);
    return {X, M<double>(error)};
}

// ||difference|| / ||A||.
double relative(M<double> const& difference, M<double> const& A)
{
    double const size = one_norm(A), error = one_norm(difference);
    return error == 0 ? 0 : error / size;
}

// --- square root ---------------------------------------------------------------------------------

// The upper triangular root of t, column by column. Zeros in pairs on the diagonal may leave none.
bool take_root(Packed<Complex> const& t, Packed<Complex>& root)
{
    int const n = t.rows();
    bool exists = true;
    std::fill_n(root.data(), root.size(), Complex());
    for (int j = 0; j < n; ++j) {
        Complex* const column = root.column(j);
        column[j] = std::sqrt(t(j, j));
        std::copy_n(t.column(j), j, column);
        for (int i = j; i-- > 0;) {
            Complex const below = root(i, i) + column[j];
            if (column[i] != Complex()) {
                exists &= below != Complex();
                column[i] /= below;
            }
            // What element i adds to the sums of those above.
            Complex const* const from = root.column(i);
            for (int k = 0; k < i; ++k)
                column[k] -= from[k] * column[i];
        }
    }
    return exists;
}

Results<2> root_of(M<double> const& A, bool error_seen)
{
    Arguments const args("sqrtm");
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> full;
    SchurForm<Complex> form;
    Packed<Complex> root(A.rows(), A.rows());
    if (!root || !prepare(args, A, full, form))
        return nothing<2>();
    if (!take_root(form.t, root)) {
        args.warn_singular();
        error_seen = true;
    }
    M<double> const X = transformed_back(full, form.u, root);
    if (!given(X))
        return nothing<2>();
    M<double> const difference = X * X - full;
    return given(difference) ? with_error(args, X, relative(difference, full), error_seen) : nothing<2>();
}

// --- logarithm -----------------------------------------------------------------------------------

// The approximant of log(1+x) in partial fractions, w x / (1 + a x): nodes and weights of the Gauss-Legendre
// rule on [0, 1]. It serves triangular matrices of norm up to 0.34.
constexpr double largest_norm = 0.34;
constexpr struct Fraction {
    double node, weight;
} fractions[] = {
    {(1 - 0.9602898564975363) / 2, 0.1012285362903763 / 2}, {(1 - 0.7966664774136267) / 2, 0.2223810344533745 / 2},
    {(1 - 0.5255324099163290) / 2, 0.3137066458778873 / 2}, {(1 - 0.1834346424956498) / 2, 0.3626837833783620 / 2},
    {(1 + 0.1834346424956498) / 2, 0.3626837833783620 / 2}, {(1 + 0.5255324099163290) / 2, 0.3137066458778873 / 2},
    {(1 + 0.7966664774136267) / 2, 0.2223810344533745 / 2}, {(1 + 0.9602898564975363) / 2, 0.1012285362903763 / 2},
};

double distance_from_identity(Packed<Complex> const& t)
{
    double largest = 0;
    for (int j = 0; j < t.cols(); ++j) {
        double sum = std::abs(t(j, j) - 1.0);
        for (int i = 0; i < j; ++i)
            sum += std::abs(t(i, j));
        largest = std::max(largest, sum);
    }
    return largest;
}

// log t: roots until the matrix is near the identity, and the approximant times as many twos. False after
// a report.
bool take_logarithm(Arguments const& args, Packed<Complex>& t, Packed<Complex>& logarithm)
{
    constexpr int most_roots = 1100; // of the largest number there is: none is needed beyond
    int const n = t.rows();
    Packed<Complex> spare(n, n), shifted(n, n), diagonal(n, 1);
    if (!spare || !shifted || !diagonal)
        return false;
    for (int j = 0; j < n; ++j)
        diagonal.data()[j] = t(j, j);
    int roots = 0;
    while (roots < most_roots && distance_from_identity(t) > largest_norm) {
        take_root(t, spare);
        std::swap(t, spare);
        ++roots;
    }
    for (int j = 0; j < n; ++j)
        t(j, j) -= 1.0;
    std::fill_n(logarithm.data(), logarithm.size(), Complex());
    for (Fraction const& one : fractions) {
        std::copy_n(t.data(), t.size(), spare.data());
        std::transform(t.data(), t.data() + t.size(), shifted.data(), [&](Complex x) { return x * one.node; });
        for (int j = 0; j < n; ++j)
            shifted(j, j) += 1.0;
        if (!lapack::succeeded(args, lapack::trtrs('U', 'N', 'N', n, n, shifted.data(), n, spare.data(), n)))
            return false;
        for (std::ptrdiff_t k = 0; k < t.size(); ++k)
            logarithm.data()[k] += one.weight * spare.data()[k];
    }
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i)
            logarithm(i, j) *= std::ldexp(1, roots);
        logarithm(j, j) = std::log(diagonal.data()[j]);
    }
    return true;
}

Results<2> logarithm_of(M<double> const& A, bool error_seen)
{
    Arguments const args("logm");
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> full;
    SchurForm<Complex> form;
    int const n = A.rows();
    Packed<Complex> logarithm(n, n);
    if (!logarithm || !prepare(args, A, full, form))
        return nothing<2>();
    for (int j = 0; j < n; ++j)
        if (form.t(j, j) == Complex()) {
            args.warn_singular();
            return with_error(args, infinite_matrix(n), std::numeric_limits<double>::infinity(), true);
        }
    if (!take_logarithm(args, form.t, logarithm))
        return nothing<2>();
    M<double> const X = transformed_back(full, form.u, logarithm);
    M<double> const back = given(X) ? expm(X) : x_M;
    M<double> const difference = back - full;
    return given(difference) ? with_error(args, X, relative(difference, full), error_seen) : nothing<2>();
}

// --- any function --------------------------------------------------------------------------------

// f of the diagonal of t, on the diagonal of a matrix; false after a report.
bool apply_to_diagonal(Arguments const& args, FunctionArgument const& f, Packed<Complex> const& t, Packed<Complex>& made)
{
    int const n = t.rows();
    Packed<Complex> values(n, 1);
    if (!values)
        return false;
    for (int j = 0; j < n; ++j)
        values.data()[j] = t(j, j);
    M<double> const inputs = realified(values);
    if (!has_storage(inputs))
        return false;
    M<double> const full = full_form(f.call({inputs}));
    // The call has reported why there is nothing.
    if (!has_storage(full) || !given(full))
        return false;
    if (full.size() != n)
        return args.report("function must give one value for each eigenvalue");
    std::fill_n(made.data(), made.size(), Complex());
    for (int j = 0; j < n; ++j)
        made(j, j) = Complex(full.addr()[j], full.isc() ? full.addi()[j] : 0);
    return true;
}

// The elements above the diagonal from those on it; returns an estimate of the relative error.
double fill_above_diagonal(Packed<Complex> const& t, Packed<Complex>& f)
{
    int const n = t.rows();
    double gap = std::numeric_limits<double>::infinity(), largest = 0, above = 0;
    for (int j = 0; j < n; ++j) {
        double sum = 0;
        for (int i = 0; i < j; ++i)
            sum += std::abs(t(i, j));
        above = std::max(above, sum);
        largest = std::max(largest, std::abs(t(j, j)));
    }
    for (int distance = 1; distance < n; ++distance)
        for (int i = 0, j = distance; j < n; ++i, ++j) {
            Complex sum = t(i, j) * (f(i, i) - f(j, j));
            for (int k = i + 1; k < j; ++k)
                sum += f(i, k) * t(k, j) - t(i, k) * f(k, j);
            Complex difference = t(i, i) - t(j, j);
            gap = std::min(gap, std::abs(difference));
            if (difference == Complex())
                difference = epsilon * (largest > 0 ? largest : 1);
            f(i, j) = sum == Complex() ? sum : sum / difference;
        }
    double const estimate = above <= epsilon * largest ? epsilon : epsilon * std::max(above / gap, 1.0);
    bool const finite = std::all_of(f.data(), f.data() + f.size(), [](Complex z) { return std::isfinite(std::abs(z)); });
    return finite ? std::min(estimate, 1.0) : std::numeric_limits<double>::infinity();
}

Results<2> function_of(M<double> const& A, M<double> const& f, bool error_seen)
{
    Arguments const args("funm");
    FunctionArgument const function("funm", f);
    if (!function || !square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> full;
    SchurForm<Complex> form;
    Packed<Complex> made(A.rows(), A.rows());
    if (!made || !prepare(args, A, full, form) || !apply_to_diagonal(args, function, form.t, made))
        return nothing<2>();
    double const error = fill_above_diagonal(form.t, made);
    return with_error(args, transformed_back(full, form.u, made), error, error_seen);
}

} // namespace

M<double> sqrtm(M<double> const& A)
{
    return root_of(A, false)[0];
}

M<double> sqrtm(M<double> const& A, i_o_t, Mr<double> X)
{
    return hand_out(root_of(A, false), X);
}

M<double> sqrtm(M<double> const& A, i_o_t, Mr<double> X, Mr<double> esterr)
{
    return hand_out(root_of(A, true), X, esterr);
}

M<double> logm(M<double> const& A)
{
    return logarithm_of(A, false)[0];
}

M<double> logm(M<double> const& A, i_o_t, Mr<double> X)
{
    return hand_out(logarithm_of(A, false), X);
}

M<double> logm(M<double> const& A, i_o_t, Mr<double> X, Mr<double> esterr)
{
    return hand_out(logarithm_of(A, true), X, esterr);
}

M<double> funm(M<double> const& A, M<double> const& f)
{
    return function_of(A, f, false)[0];
}

M<double> funm(M<double> const& A, M<double> const& f, i_o_t, Mr<double> F)
{
    return hand_out(function_of(A, f, false), F);
}

M<double> funm(M<double> const& A, M<double> const& f, i_o_t, Mr<double> F, Mr<double> esterr)
{
    return hand_out(function_of(A, f, true), F, esterr);
}
