#include "builtins/eigenpairs.h"
#include "builtins/matrix_functions.h"
#include "builtins/results.h"
#include "builtins/square_values.h"
#include "core/reshape.h"
#include "ops/blas.h"
#include "ops/elementwise.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// What its elements come to on the way is beyond the largest number.
constexpr char too_large[] = "matrix is too large";

// Diagonal approximants of exp: degree, coefficients of the numerator, the largest norm that they serve,
// and the logarithm to base 2 of the first coefficient of their error.
struct Approximant {
    int degree;
    double largest;
    double error_exponent;
    double coefficients[14];
};
constexpr Approximant approximants[] = {
    {3, 1.495585217958292e-2, -16.621, {120, 60, 12, 1}},
    {5, 2.539398330063230e-1, -33.228, {30240, 15120, 3360, 420, 30, 1}},
    {7, 9.504178996162932e-1, -51.995, {17297280, 8648640, 1995840, 277200, 25200, 1512, 56, 1}},
    {9, 2.097847961257068, -72.325, {17643225600, 8821612800, 2075673600, 302702400, 30270240, 2162160, 110880, 3960, 90, 1}},
    {13,
     4.25,
     -116.447,
     {64764752532480000, 32382376266240000, 7771770303897600, 1187353796428800, 129060195264000, 10559470521600, 670442572800, 33522128640, 1323241920,
      40840800, 960960, 16380, 182, 1}},
};

// The moduli of a matrix, and the norms of their powers.
class Moduli {
public:
    explicit Moduli(M<double> const& A) : n_(A.rows()), room_(static_cast<std::size_t>(n_) * static_cast<std::size_t>(n_ + 2))
    {
        for (std::ptrdiff_t k = 0; room_ && k < A.size(); ++k)
            room_.data()[k] = A.isc() ? std::hypot(A.addr()[k], A.addi()[k]) : std::abs(A.addr()[k]);
    }
    explicit operator bool() const { return static_cast<bool>(room_); }

    // log2 of the norm of |A|^power, which is the largest of the sums of its columns; -Inf for zero.
    double log_norm_of_power(int power) const
    {
        double *const sums = room_.data() + std::ptrdiff_t{n_} * n_, *const next = sums + n_;
        std::fill_n(sums, n_, 1.0);
        double logarithm = 0, largest = 1;
        for (int p = 0; p < power && largest > 0; ++p) {
            std::fill_n(next, n_, 0.0);
            blas.gemv_transposed(n_, n_, 1, {room_.data(), n_}, sums, next);
            largest = *std::max_element(next, next + n_);
            logarithm += std::log2(largest);
            std::transform(next, next + n_, sums, [largest](double sum) { return sum / largest; });
        }
        return logarithm;
    }

private:
    int n_;
    HeapArray<double> room_;
};

// How many more halvings the rounding of the approximant's own error asks for.
int further_halvings(Moduli const& moduli, double norm, int halved, Approximant const& approximant)
{
    int const power = 2 * approximant.degree + 1;
    double const error = approximant.error_exponent + moduli.log_norm_of_power(power) - std::log2(norm) - 2.0 * approximant.degree * halved;
    double const needed = std::ceil((error + 53) / (2 * approximant.degree));
    return needed > 0 ? static_cast<int>(needed) : 0;
}

// A and its even powers.
struct Powers {
    M<double> a, a2, a4, a6;
};

Powers powers_of(M<double> const& A)
{
    M<double> const a2 = A * A, a4 = a2 * a2;
    return {A, a2, a4, a2 * a4};
}

M<double> times(M<double> const& x, double factor)
{
    return factor == 1 ? x : x * factor;
}

// The powers of 2^shift A.
Powers scaled(Powers const& p, int shift)
{
    if (std::abs(shift) > 150)
        return powers_of(times(p.a, std::ldexp(1, shift)));
    return {times(p.a, std::ldexp(1, shift)), times(p.a2, std::ldexp(1, 2 * shift)), times(p.a4, std::ldexp(1, 4 * shift)), times(p.a6, std::ldexp(1, 6 * shift))};
}

struct Choice {
    Approximant const* approximant;
    int halvings;
};

// The cheapest approximant that serves A, or the largest one and how often A has to be halved before;
// `p` are the powers of A / 2^shift, which bound its spectrum more closely than its norm.
Choice chosen(Moduli const& moduli, double norm, Powers const& p, int shift)
{
    double const d4 = std::ldexp(std::pow(one_norm(p.a4), 1.0 / 4), shift), d6 = std::ldexp(std::pow(one_norm(p.a6), 1.0 / 6), shift);
    for (Approximant const& one : approximants)
        if (one.degree < 13 && std::max(d4, d6) <= one.largest && further_halvings(moduli, norm, 0, one) == 0)
            return {&one, 0};
    Approximant const& last = approximants[4];
    double const bound = std::max(d4, std::pow(d4, 0.4) * std::pow(d6, 0.6));
    int const halvings = std::max(bound > 0 ? static_cast<int>(std::ceil(std::log2(bound / last.largest))) : 0, 0);
    return {&last, halvings + further_halvings(moduli, norm, halvings, last)};
}

// The solution of A X = B for square B: infinities for a singular A, which `args` warns of, as of one that
// is nearly so when it is checked; empty after a report, "%s: matrix is too large" among them.
M<double> solved(Arguments const& args, M<double> const& A, M<double> const& B, bool checked)
{
    if (!given(A) || !given(B))
        return x_M;
    if (!std::isfinite(one_norm(A)) || !std::isfinite(one_norm(B))) {
        args.report(too_large);
        return x_M;
    }
    return with_scalar(A.isc() || B.isc(), [&](auto kind) {
        using T = decltype(kind);
        int const n = A.rows();
        Packed<T> a(A), b(B);
        HeapArray<int> pivots(static_cast<std::size_t>(n));
        if (!a || !b || !pivots)
            return x_M;
        int const info = lapack::gesv(n, b.cols(), a.data(), n, pivots.data(), b.data(), n);
        double rcond = 0;
        if (!lapack::succeeded(args, info) || (checked && !lapack::succeeded(args, lapack::gecon('1', n, a.data(), n, one_norm(A), rcond))))
            return x_M;
        if (info > 0) {
            args.warn_singular();
            return stored_or_nothing(infinite_matrix(n));
        }
        if (checked && !(rcond >= std::numeric_limits<double>::epsilon()))
            args.warn_badly_scaled(rcond);
        return stored_or_nothing(b.value());
    });
}

M<double> approximated(Arguments const& args, Approximant const& approximant, Powers const& p)
{
    double const* const c = approximant.coefficients;
    M<double> const one = identity_matrix(p.a.rows());
    M<double> odd, even;
    if (!has_storage(one))
        return x_M;
    if (approximant.degree == 13) {
        odd = p.a6 * (p.a6 * c[13] + p.a4 * c[11] + p.a2 * c[9]) + (p.a6 * c[7] + p.a4 * c[5] + p.a2 * c[3] + one * c[1]);
        even = p.a6 * (p.a6 * c[12] + p.a4 * c[10] + p.a2 * c[8]) + (p.a6 * c[6] + p.a4 * c[4] + p.a2 * c[2] + one * c[0]);
    } else {
        odd = one * c[1] + p.a2 * c[3];
        even = one * c[0] + p.a2 * c[2];
        if (approximant.degree >= 5) {
            odd = odd + p.a4 * c[5];
            even = even + p.a4 * c[4];
        }
        if (approximant.degree >= 7) {
            odd = odd + p.a6 * c[7];
            even = even + p.a6 * c[6];
        }
        if (approximant.degree >= 9) {
            M<double> const a8 = p.a4 * p.a4;
            odd = odd + a8 * c[9];
            even = even + a8 * c[8];
        }
    }
    odd = p.a * odd;
    // Never nearly singular but for its scale.
    return solved(args, even - odd, even + odd, false);
}

M<double> exponential(Arguments const& args, M<double> const& A)
{
    double const norm = one_norm(A);
    if (norm == 0)
        return stored_or_nothing(identity_matrix(A.rows()));
    if (!std::isfinite(norm)) {
        args.report(too_large);
        return x_M;
    }
    int const shift = norm > 1 ? std::ilogb(norm) + 1 : 0;
    Powers const powers = powers_of(times(A, std::ldexp(1, -shift)));
    Moduli const moduli(A);
    if (!given(powers.a6) || !moduli)
        return x_M;
    Choice const choice = chosen(moduli, norm, powers, shift);
    M<double> made = approximated(args, *choice.approximant, scaled(powers, shift - choice.halvings));
    for (int k = 0; k < choice.halvings; ++k)
        made = made * made;
    return made.size() == A.size() ? made : x_M;
}

bool is_diagonal(M<double> const& A)
{
    std::ptrdiff_t const n = A.rows();
    for (std::ptrdiff_t j = 0; j < n; ++j)
        for (std::ptrdiff_t i = 0; i < n; ++i)
            if (i != j && (A.addr()[j * n + i] != 0 || (A.isc() && A.addi()[j * n + i] != 0)))
                return false;
    return true;
}

M<double> diagonal_of(M<double> const& A)
{
    M<double> made = full_result(Dims(A.rows(), 1), A.isc());
    for (std::ptrdiff_t k = 0, n = A.rows(); has_storage(made) && k < n; ++k) {
        made.addr()[k] = A.addr()[k * (n + 1)];
        if (A.isc())
            made.addi()[k] = A.addi()[k * (n + 1)];
    }
    return made;
}

// The full form of an operand; empty for an empty one and after a report, which `checked` tells apart.
M<double> operand(Arguments const& args, M<double> const& A, bool& checked)
{
    checked = square_and_finite(args, A);
    if (!checked)
        return x_M;
    M<double> const full = full_form(A);
    checked = has_storage(full);
    return full;
}

M<double> by_eigenvectors(Arguments const& args, M<double> const& A)
{
    Eigenpairs found;
    bool const hermitian = is_hermitian(A);
    if (!(hermitian ? hermitian_pairs(args, A, true, found) : general_pairs(args, A, 'B', Eigenvectors::right, found)))
        return x_M;
    M<double> const scaled_vectors = found.right * diagonal_matrix(exp(found.values));
    if (!given(scaled_vectors))
        return x_M;
    if (hermitian)
        return scaled_vectors * ctranspose(found.right);
    // X V = V exp(D), transposed.
    M<double> made = transpose(solved(args, transpose(found.right), transpose(scaled_vectors), true));
    if (given(made) && made.isc() && !A.isc() && !made.dirty())
        Access<double>::drop_imaginary(made);
    return made;
}

} // namespace

M<double> expm(M<double> const& A)
{
    Arguments const args("expm");
    bool checked = false;
    M<double> const full = operand(args, A, checked);
    if (!checked)
        return x_M;
    if (!given(full))
        return M<double>();
    if (!is_diagonal(full))
        return exponential(args, full);
    M<double> const values = exp(diagonal_of(full));
    return given(values) ? stored_or_nothing(diagonal_matrix(values)) : x_M;
}

M<double> expm1(M<double> const& A)
{
    Arguments const args("expm1");
    bool checked = false;
    M<double> const full = operand(args, A, checked);
    if (!checked)
        return x_M;
    return given(full) ? exponential(args, full) : M<double>();
}

M<double> expm2(M<double> const& A)
{
    Arguments const args("expm2");
    bool checked = false;
    M<double> const full = operand(args, A, checked);
    if (!checked)
        return x_M;
    if (!given(full))
        return M<double>();
    M<double> sum = identity_matrix(full.rows()), term = full;
    for (double k = 2; given(sum) && given(term); ++k) {
        M<double> larger = sum + term;
        if (!given(larger))
            return x_M;
        // The terms of a sum that has overflowed make no difference either.
        if (!(one_norm(larger - sum) > 0) || !std::isfinite(one_norm(larger)))
            return larger;
        sum = std::move(larger);
        term = full * term * (1 / k);
    }
    return x_M;
}

M<double> expm3(M<double> const& A)
{
    Arguments const args("expm3");
    bool checked = false;
    M<double> const full = operand(args, A, checked);
    if (!checked)
        return x_M;
    return given(full) ? by_eigenvectors(args, full) : M<double>();
}
