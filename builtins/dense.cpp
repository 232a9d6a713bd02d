#include "builtins/dense.h"

#include "builtins/norm_estimate.h"
#include "runtime/errors.h"

#include <cmath>

namespace arrlib {

namespace {

template <Scalar T> bool is_upper(Packed<T> const& a)
{
    for (int j = 0; j < a.cols(); ++j)
        for (int i = j + 1; i < a.rows(); ++i)
            if (a(i, j) != T{})
                return false;
    return true;
}

template <Scalar T> bool is_lower(Packed<T> const& a)
{
    for (int j = a.cols() - 1; j > 0; --j)
        for (int i = 0; i < j; ++i)
            if (a(i, j) != T{})
                return false;
    return true;
}

template <Scalar T> bool has_positive_diagonal(Packed<T> const& a)
{
    for (int k = 0; k < a.rows(); ++k)
        if (!(real_part(a(k, k)) > 0) || a(k, k) != T(real_part(a(k, k))))
            return false;
    return true;
}

bool finite_list(double const* list, std::ptrdiff_t count)
{
    for (std::ptrdiff_t k = 0; k < count; ++k)
        if (!std::isfinite(list[k]))
            return false;
    return true;
}

// Eight sums, which the processor adds side by side.
double sum_of_moduli(double const* list, int count)
{
    double sums[8] = {};
    int k = 0;
    for (; k + 8 <= count; k += 8)
        for (int lane = 0; lane < 8; ++lane)
            sums[lane] += std::abs(list[k + lane]);
    for (; k < count; ++k)
        sums[0] += std::abs(list[k]);
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

double sum_of_moduli(Complex const* list, int count)
{
    double sum = 0;
    for (int k = 0; k < count; ++k)
        sum += std::abs(list[k]);
    return sum;
}

} // namespace

template <Scalar T> bool is_hermitian(Packed<T> const& a)
{
    // Square blocks stay in the cache while they are read across.
    constexpr int block = 32;
    int const n = a.rows();
    for (int from = 0; from < n; from += block)
        for (int across = from; across < n; across += block)
            for (int j = from; j < std::min(from + block, n); ++j)
                for (int i = std::max(across, j + 1); i < std::min(across + block, n); ++i)
                    if (a(i, j) != conjugate(a(j, i)))
                        return false;
    return true;
}

template <Scalar T> Structure structure_of(Packed<T> const& a)
{
    if (is_upper(a))
        return Structure::upper;
    if (is_lower(a))
        return Structure::lower;
    return has_positive_diagonal(a) && is_hermitian(a) ? Structure::positive_diagonal : Structure::general;
}

template <Scalar T> double norm_1(Packed<T> const& a)
{
    double largest = 0;
    for (int j = 0; j < a.cols(); ++j) {
        double const sum = sum_of_moduli(a.column(j), a.rows());
        if (!(sum <= largest))
            largest = sum;
        if (std::isnan(sum))
            return sum;
    }
    return largest;
}

template <Scalar T> bool all_finite(Packed<T> const& a)
{
    return finite_list(reinterpret_cast<double const*>(a.data()), a.size() * static_cast<std::ptrdiff_t>(sizeof(T) / sizeof(double)));
}

template <Scalar T> void fill(Packed<T> const& a, double value)
{
    std::fill_n(a.data(), a.size(), T(value));
}

template <Scalar T> void set_identity(Packed<T> const& a)
{
    fill(a, 0);
    for (int k = 0; k < std::min(a.rows(), a.cols()); ++k)
        a(k, k) = 1;
}

M<double> full_of(int rows, int cols, double value)
{
    M<double> made = full_result(Dims(rows, cols));
    if (!has_storage(made))
        return x_M;
    std::fill_n(made.addr(), made.getnnz(), value);
    return made;
}

template <> Packed<Complex> right_sides<Complex>(M<double> const& b)
{
    return Packed<Complex>(b);
}

template <> Packed<double> right_sides<double>(M<double> const& b)
{
    if (!b.isc())
        return Packed<double>(b);
    M<double> const whole = full_form(b);
    if (!has_storage(whole) || b.cols() > INT_MAX / 2)
        return {};
    Packed<double> sides(b.rows(), 2 * b.cols());
    if (sides) {
        std::copy_n(whole.addr(), whole.getnnz(), sides.data());
        std::copy_n(whole.addi(), whole.getnnz(), sides.column(b.cols()));
    }
    return sides;
}

template <> M<double> solution<Complex>(Packed<Complex>& x, int, bool)
{
    return x.value();
}

template <> M<double> solution<double>(Packed<double>& x, int cols, bool complex)
{
    if (!complex)
        return x.value();
    M<double> made = full_result(Dims(x.rows(), cols), true);
    if (has_storage(made)) {
        std::copy_n(x.data(), made.getnnz(), made.addr());
        std::copy_n(x.column(cols), made.getnnz(), made.addi());
    }
    return made;
}

template <Scalar T> DenseFactor<T>::DenseFactor(Arguments const& args, Packed<T> a, bool general) : args_(args), a_(std::move(a))
{
    if (!a_)
        return;
    int const n = a_.rows();
    norm_ = norm_1(a_);
    if (!std::isfinite(norm_) && !all_finite(a_)) {
        state_ = State::not_finite;
        return;
    }
    if (!general)
        structure_ = structure_of(a_);
    if (structure_ == Structure::upper || structure_ == Structure::lower) {
        state_ = State::factored;
        for (int k = 0; k < n; ++k)
            if (a_(k, k) == T{})
                state_ = State::singular;
        return;
    }
    if (structure_ == Structure::positive_diagonal) {
        // The lower triangle is overwritten, so the upper one and the diagonal can bring it back.
        HeapArray<T> diagonal(static_cast<std::size_t>(n));
        if (!diagonal)
            return;
        for (int k = 0; k < n; ++k)
            diagonal[static_cast<std::size_t>(k)] = a_(k, k);
        int const info = lapack::potrf('L', n, a_.data(), a_.stride());
        if (!lapack::succeeded(args, info))
            return;
        if (info == 0) {
            state_ = State::factored;
            return;
        }
        for (int j = 0; j < n; ++j) {
            a_(j, j) = diagonal[static_cast<std::size_t>(j)];
            for (int i = j + 1; i < n; ++i)
                a_(i, j) = conjugate(a_(j, i));
        }
        structure_ = Structure::general;
    }
    pivots_ = HeapArray<int>(static_cast<std::size_t>(n));
    if (!pivots_)
        return;
    int const info = lapack::getrf(n, n, a_.data(), a_.stride(), pivots_.data());
    if (lapack::succeeded(args, info))
        state_ = info > 0 ? State::singular : State::factored;
}

template <Scalar T> bool DenseFactor<T>::estimate(double& rcond) const
{
    int const n = a_.rows();
    double of_inverse;
    HeapArray<T> unused;
    if (!estimate_inverse_norm(n, of_inverse, unused, [&](T* x, bool conjugated) { return solve(x, 1, conjugated ? 'C' : 'N'); }))
        return false;
    rcond = 1 / of_inverse / norm_;
    // The solutions have left the range of numbers: the slower driver, which scales them, tells.
    return rcond > 0 && std::isfinite(rcond) ? true : estimate_scaled(rcond);
}

template <Scalar T> bool DenseFactor<T>::estimate_scaled(double& rcond) const
{
    int const n = a_.rows();
    int info = 0;
    switch (structure_) {
    case Structure::upper:
    case Structure::lower:
        info = lapack::trcon('1', structure_ == Structure::upper ? 'U' : 'L', 'N', n, a_.data(), a_.stride(), rcond);
        break;
    case Structure::positive_diagonal:
        info = lapack::pocon('L', n, a_.data(), a_.stride(), norm_, rcond);
        break;
    case Structure::general:
        info = lapack::gecon('1', n, a_.data(), a_.stride(), norm_, rcond);
    }
    return lapack::succeeded(args_, info);
}

template <Scalar T> bool DenseFactor<T>::solve(T* b, int cols, char trans) const
{
    int const n = a_.rows();
    int info = 0;
    switch (structure_) {
    case Structure::upper:
    case Structure::lower:
        info = lapack::trtrs(structure_ == Structure::upper ? 'U' : 'L', trans, 'N', n, cols, a_.data(), a_.stride(), b, a_.stride());
        break;
    case Structure::positive_diagonal:
        info = lapack::potrs('L', n, cols, a_.data(), a_.stride(), b, a_.stride());
        break;
    case Structure::general:
        info = lapack::getrs(trans, n, cols, a_.data(), a_.stride(), pivots_.data(), b, a_.stride());
    }
    return lapack::succeeded(args_, info);
}

bool singular_values(Arguments const& args, M<double> const& x, HeapArray<double>& s)
{
    if (!args.finite(x))
        return false;
    int const least = std::min(x.rows(), x.cols());
    return with_scalar(x.isc() != 0, [&](auto zero) {
        using T = decltype(zero);
        Packed<T> a(x);
        s = HeapArray<double>(static_cast<std::size_t>(least));
        if (!a || !s)
            return false;
        T unused{};
        int const info = lapack::gesdd('N', a.rows(), a.cols(), a.data(), a.stride(), s.data(), &unused, 1, &unused, 1);
        return lapack::succeeded(args, info) && (info == 0 || args.not_converged());
    });
}

template Structure structure_of(Packed<double> const&);
template Structure structure_of(Packed<Complex> const&);
template bool is_hermitian(Packed<double> const&);
template bool is_hermitian(Packed<Complex> const&);
template double norm_1(Packed<double> const&);
template double norm_1(Packed<Complex> const&);
template bool all_finite(Packed<double> const&);
template bool all_finite(Packed<Complex> const&);
template void fill(Packed<double> const&, double);
template void fill(Packed<Complex> const&, double);
template void set_identity(Packed<double> const&);
template void set_identity(Packed<Complex> const&);
template class DenseFactor<double>;
template class DenseFactor<Complex>;

} // namespace arrlib
