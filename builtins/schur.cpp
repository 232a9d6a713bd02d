#include "builtins/schur.h"

#include "builtins/eigenpairs.h"
#include "builtins/results.h"
#include "builtins/schur_form.h"
#include "core/reshape.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

template <Scalar T> Packed<T> identity(int n)
{
    Packed<T> made(n, n);
    if (made) {
        std::fill_n(made.data(), made.size(), T());
        for (int k = 0; k < n; ++k)
            made(k, k) = 1;
    }
    return made;
}

bool same_order(Arguments const& args, M<double> const& A, M<double> const& B)
{
    return square_and_finite(args, A) && square_and_finite(args, B) && (A.rows() == B.rows() || args.sizes_differ(A, B));
}

// --- Hessenberg form -----------------------------------------------------------------------------

// Zeros below the subdiagonal; for a Hermitian matrix above the superdiagonal too, which then mirrors
// the subdiagonal, next to a real diagonal.
template <Scalar T> void clear_outside(Packed<T>& h, bool tridiagonal)
{
    int const n = h.rows();
    for (int j = 0; j < n; ++j) {
        std::fill(h.column(j) + std::min(j + 2, n), h.column(j) + n, T());
        if (!tridiagonal)
            continue;
        std::fill(h.column(j), h.column(j) + std::max(j - 1, 0), T());
        h(j, j) = real_part(h(j, j));
        if (j > 0)
            h(j - 1, j) = conjugate(h(j, j - 1));
    }
}

// P and H.
Results<2> hessenberg(M<double> const& A, bool with_factor)
{
    Arguments const args("hess");
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> const full = full_form(A);
    if (!has_storage(full))
        return nothing<2>();
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        int const n = A.rows();
        Packed<T> h(full), p(with_factor ? n : 0, with_factor ? n : 0), tau(n, 1);
        if (!h || !p || !tau || !converged(args, lapack::gehrd(n, 1, n, h.data(), n, tau.data())))
            return nothing<2>();
        if (with_factor) {
            std::copy_n(h.data(), h.size(), p.data());
            if (!converged(args, lapack::orghr(n, 1, n, p.data(), n, tau.data())))
                return nothing<2>();
        }
        clear_outside(h, is_hermitian(full));
        Results<2> results{p.value(), h.value()};
        return all_have_storage(results) ? results : nothing<2>();
    });
}

// --- Schur forms ---------------------------------------------------------------------------------

// U and T.
Results<2> schur_factors(M<double> const& A, M<double> const& option, bool with_factor)
{
    Arguments const args("schur");
    bool complex = A.isc();
    if (given(option)) {
        std::string const text = text_of(option);
        bool const asked = same_word(text.c_str(), "complex");
        if (!asked && !same_word(text.c_str(), "real")) {
            args.unknown_option(text.c_str());
            return nothing<2>();
        }
        complex |= asked;
    }
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    return with_scalar(complex, [&](auto kind) {
        SchurForm<decltype(kind)> form;
        if (!schur_form(args, A, with_factor, form))
            return nothing<2>();
        Results<2> results{form.u.value(), form.t.value()};
        return all_have_storage(results) ? results : nothing<2>();
    });
}

// The rotation [c' s'; -s c] of two rows, and its conjugate transpose of two columns.
struct Rotation {
    Complex c, s;

    void turn_rows(Complex* upper, Complex* lower, std::ptrdiff_t step, int count) const
    {
        for (int k = 0; k < count; ++k, upper += step, lower += step) {
            Complex const above = *upper, below = *lower;
            *upper = std::conj(c) * above + std::conj(s) * below;
            *lower = -s * above + c * below;
        }
    }
    void turn_columns(Complex* left, Complex* right, int count) const
    {
        for (int k = 0; k < count; ++k) {
            Complex const first = left[k], second = right[k];
            left[k] = c * first + s * second;
            right[k] = -std::conj(s) * first + std::conj(c) * second;
        }
    }
};

// An eigenvalue of the 2x2 block at (k, k), less its last element.
Complex shifted_eigenvalue(Packed<Complex> const& t, int k)
{
    Complex const half = (t(k, k) - t(k + 1, k + 1)) / 2.0;
    Complex const root = std::sqrt(half * half + t(k, k + 1) * t(k + 1, k));
    // The sum without cancellation.
    return std::abs(half + root) >= std::abs(half - root) ? half + root : half - root;
}

void make_triangular(Packed<Complex>& u, Packed<Complex>& t)
{
    int const n = t.rows();
    for (int k = n - 2; k >= 0; --k) {
        Complex const below = t(k + 1, k);
        if (below == Complex())
            continue;
        Complex const value = shifted_eigenvalue(t, k);
        double const length = std::hypot(std::abs(value), std::abs(below));
        Rotation const rotation{value / length, below / length};
        rotation.turn_rows(&t(k, k), &t(k + 1, k), n, n - k);
        rotation.turn_columns(t.column(k), t.column(k + 1), k + 2);
        rotation.turn_columns(u.column(k), u.column(k + 1), u.rows());
        t(k + 1, k) = 0;
    }
}

void clear_below_diagonal(Packed<Complex>& t)
{
    for (int j = 0; j < t.cols(); ++j)
        std::fill(t.column(j) + j + 1, t.column(j) + t.rows(), Complex());
}

Results<2> complex_form(M<double> const& U, M<double> const& T)
{
    Arguments const args("rsf2csf");
    if (!same_order(args, U, T))
        return nothing<2>();
    if (!given(T))
        return {};
    Packed<Complex> u(U), t(T);
    if (!u || !t)
        return nothing<2>();
    make_triangular(u, t);
    clear_below_diagonal(t);
    Results<2> results{u.value(), t.value()};
    return all_have_storage(results) ? results : nothing<2>();
}

// --- real form of complex eigenvalues ------------------------------------------------------------

Results<2> real_form(M<double> const& V, M<double> const& D)
{
    Arguments const args("cdf2rdf");
    if (!same_order(args, V, D))
        return nothing<2>();
    if (!given(D))
        return {};
    Packed<Complex> const v(V), d(D);
    int const n = D.rows();
    Packed<double> real_v(n, n), real_d(n, n);
    if (!v || !d || !real_v || !real_d)
        return nothing<2>();
    std::fill_n(real_d.data(), real_d.size(), 0.0);
    auto const part = [&](int to, int from, auto of) { std::transform(v.column(from), v.column(from) + n, real_v.column(to), of); };
    auto const re = [](Complex z) { return z.real(); };
    auto const im = [](Complex z) { return z.imag(); };
    for (int j = 0; j < n; ++j) {
        Complex const value = d(j, j);
        real_d(j, j) = value.real();
        part(j, j, re);
        if (value.imag() == 0)
            continue;
        double const rounding = 100 * std::numeric_limits<double>::epsilon() * std::abs(value);
        if (j + 1 == n || std::abs(d(j + 1, j + 1) - std::conj(value)) > rounding) {
            args.report("eigenvalues are not in conjugate pairs");
            return nothing<2>();
        }
        part(j + 1, j, im);
        real_d(j + 1, j + 1) = value.real();
        real_d(j, j + 1) = value.imag();
        real_d(j + 1, j) = -value.imag();
        ++j;
    }
    return {real_v.value(), real_d.value()};
}

// --- balancing -----------------------------------------------------------------------------------

// T and B.
Results<2> balanced(M<double> const& A)
{
    Arguments const args("balance");
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    return with_scalar(A.isc(), [&](auto kind) {
        using T = decltype(kind);
        int const n = A.rows();
        Packed<T> b(A);
        Packed<double> t = identity<double>(n);
        HeapArray<double> scale(static_cast<std::size_t>(n));
        int low = 0, high = 0;
        if (!b || !t || !scale || !converged(args, lapack::gebal('B', n, b.data(), n, low, high, scale.data())) ||
            !converged(args, lapack::gebak('B', 'R', n, low, high, scale.data(), n, t.data(), n)))
            return nothing<2>();
        Results<2> results{t.value(), b.value()};
        return all_have_storage(results) ? results : nothing<2>();
    });
}

// --- pencils -------------------------------------------------------------------------------------

// AA, BB, Q, Z and V.
Results<5> pencil_form(M<double> const& A, M<double> const& B)
{
    Arguments const args("qz");
    if (!same_order(args, A, B))
        return nothing<5>();
    if (!given(A))
        return {};
    int const n = A.rows();
    Packed<Complex> a(A), b(B), left(n, n), right(n, n), alpha(n, 1), beta(n, 1), vectors(n, n);
    if (!a || !b || !left || !right || !alpha || !beta || !vectors ||
        !converged(args, lapack::gges('V', 'V', n, a.data(), n, b.data(), n, alpha.data(), beta.data(), left.data(), n, right.data(), n)))
        return nothing<5>();
    std::copy_n(right.data(), right.size(), vectors.data());
    if (!converged(args, lapack::tgevc('R', 'B', n, a.data(), n, b.data(), n, static_cast<Complex*>(nullptr), 1, vectors.data(), n)))
        return nothing<5>();
    M<double> V = vectors.value();
    if (!has_storage(V))
        return nothing<5>();
    normalise_columns(V);
    Results<5> results{a.value(), b.value(), ctranspose(left.value()), right.value(), V};
    return all_have_storage(results) && results[2].size() == A.size() ? results : nothing<5>();
}

} // namespace

template <Scalar T> bool arrlib::schur_form(Arguments const& args, M<double> const& A, bool with_factor, SchurForm<T>& made)
{
    int const n = A.rows();
    made = {Packed<T>(with_factor ? n : 0, with_factor ? n : 0), Packed<T>(A), Packed<Complex>(n, 1)};
    if (!made.u || !made.t || !made.values)
        return false;
    char const job = with_factor ? 'V' : 'N';
    if constexpr (std::is_same_v<T, Complex>)
        return converged(args, lapack::gees(job, n, made.t.data(), n, made.values.data(), made.u.data(), made.u.stride()));
    else {
        HeapArray<double> parts(2 * static_cast<std::size_t>(n));
        if (!parts || !converged(args, lapack::gees(job, n, made.t.data(), n, parts.data(), parts.data() + n, made.u.data(), made.u.stride())))
            return false;
        for (int k = 0; k < n; ++k)
            made.values.data()[k] = Complex(parts[static_cast<std::size_t>(k)], parts[static_cast<std::size_t>(n + k)]);
        return true;
    }
}
template bool arrlib::schur_form(Arguments const&, M<double> const&, bool, SchurForm<double>&);
template bool arrlib::schur_form(Arguments const&, M<double> const&, bool, SchurForm<Complex>&);

bool arrlib::triangular_form(Arguments const& args, M<double> const& A, SchurForm<Complex>& made)
{
    if (A.isc()) {
        if (!schur_form(args, A, true, made))
            return false;
    } else {
        SchurForm<double> real;
        if (!schur_form(args, A, true, real))
            return false;
        made = {Packed<Complex>(real.u.value()), Packed<Complex>(real.t.value()), Packed<Complex>()};
        if (!made.u || !made.t)
            return false;
        make_triangular(made.u, made.t);
    }
    clear_below_diagonal(made.t);
    return true;
}

M<double> hess(M<double> const& A)
{
    return hessenberg(A, false)[1];
}

M<double> hess(M<double> const& A, i_o_t, Mr<double> H)
{
    return hand_out(Results<1>{hessenberg(A, false)[1]}, H);
}

M<double> hess(M<double> const& A, i_o_t, Mr<double> P, Mr<double> H)
{
    return hand_out(hessenberg(A, true), P, H);
}

M<double> schur(M<double> const& A)
{
    return schur_factors(A, nop_M, false)[1];
}

M<double> schur(M<double> const& A, M<double> const& option)
{
    return schur_factors(A, option, false)[1];
}

M<double> schur(M<double> const& A, i_o_t, Mr<double> T)
{
    return hand_out(Results<1>{schur(A)}, T);
}

M<double> schur(M<double> const& A, M<double> const& option, i_o_t, Mr<double> T)
{
    return hand_out(Results<1>{schur(A, option)}, T);
}

M<double> schur(M<double> const& A, i_o_t, Mr<double> U, Mr<double> T)
{
    return hand_out(schur_factors(A, nop_M, true), U, T);
}

M<double> schur(M<double> const& A, M<double> const& option, i_o_t, Mr<double> U, Mr<double> T)
{
    return hand_out(schur_factors(A, option, true), U, T);
}

M<double> rsf2csf(M<double> const& U, M<double> const& T)
{
    return complex_form(U, T)[0];
}

M<double> rsf2csf(M<double> const& U, M<double> const& T, i_o_t, Mr<double> complex_U)
{
    return hand_out(complex_form(U, T), complex_U);
}

M<double> rsf2csf(M<double> const& U, M<double> const& T, i_o_t, Mr<double> complex_U, Mr<double> complex_T)
{
    return hand_out(complex_form(U, T), complex_U, complex_T);
}

M<double> cdf2rdf(M<double> const& V, M<double> const& D)
{
    return real_form(V, D)[0];
}

M<double> cdf2rdf(M<double> const& V, M<double> const& D, i_o_t, Mr<double> real_V)
{
    return hand_out(real_form(V, D), real_V);
}

M<double> cdf2rdf(M<double> const& V, M<double> const& D, i_o_t, Mr<double> real_V, Mr<double> real_D)
{
    return hand_out(real_form(V, D), real_V, real_D);
}

M<double> balance(M<double> const& A)
{
    return balanced(A)[1];
}

M<double> balance(M<double> const& A, i_o_t, Mr<double> B)
{
    return hand_out(Results<1>{balance(A)}, B);
}

M<double> balance(M<double> const& A, i_o_t, Mr<double> T, Mr<double> B)
{
    return hand_out(balanced(A), T, B);
}

M<double> qz(M<double> const& A, M<double> const& B)
{
    return pencil_form(A, B)[0];
}

M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA)
{
    return hand_out(pencil_form(A, B), AA);
}

M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB)
{
    return hand_out(pencil_form(A, B), AA, BB);
}

M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q)
{
    return hand_out(pencil_form(A, B), AA, BB, Q);
}

M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q, Mr<double> Z)
{
    return hand_out(pencil_form(A, B), AA, BB, Q, Z);
}

M<double> qz(M<double> const& A, M<double> const& B, i_o_t, Mr<double> AA, Mr<double> BB, Mr<double> Q, Mr<double> Z, Mr<double> V)
{
    return hand_out(pencil_form(A, B), AA, BB, Q, Z, V);
}
