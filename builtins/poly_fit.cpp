#include "builtins/pivoted_qr.h"
#include "builtins/poly.h"
#include "builtins/results.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// The Vandermonde matrix with its columns scaled to length 1.
template <Scalar T> struct ScaledPowers {
    Packed<T> columns;
    Packed<double> scale;

    ScaledPowers(Packed<T> const& x, int count) : columns(static_cast<int>(x.size()), count), scale(1, count)
    {
        if (!columns || !scale)
            return;
        int const m = columns.rows();
        std::fill_n(columns.column(count - 1), m, T(1));
        for (int j = count - 1; j-- > 0;)
            for (int i = 0; i < m; ++i)
                columns(i, j) = columns(i, j + 1) * x.data()[i];
        for (int j = 0; j < count; ++j) {
            T* const column = columns.column(j);
            double largest = 0, sum = 0;
            for (int i = 0; i < m; ++i)
                largest = std::max(largest, std::abs(column[i]));
            for (int i = 0; i < m; ++i)
                sum += largest > 0 ? std::norm(column[i] / largest) : 0;
            double const length = largest * std::sqrt(sum);
            scale.data()[j] = length > 0 ? length : 1;
            for (int i = 0; i < m; ++i)
                column[i] /= scale.data()[j];
        }
    }
    explicit operator bool() const { return columns && scale; }
    bool finite() const
    {
        return std::all_of(columns.data(), columns.data() + columns.size(), [](T v) { return std::isfinite(std::abs(v)); });
    }
};

// R in the form that `polyval` takes: the triangle, the degrees of freedom, the norm of the residuals.
template <Scalar T> M<double> description(Packed<T> const& r, Packed<double> const& scale, double freedom, double residual)
{
    int const n = scale.cols();
    Packed<T> made(n + 2, n);
    if (!made)
        return x_M;
    std::fill_n(made.data(), made.size(), T());
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j && i < r.rows(); ++i)
            made(i, j) = r(i, j) * scale.data()[j];
    made(n, 0) = freedom;
    made(n + 1, 0) = residual;
    return made.value();
}

template <Scalar T> double residual_norm(Packed<T> const& columns, Packed<T> const& p, Packed<T> const& y)
{
    double sum = 0;
    for (int i = 0; i < columns.rows(); ++i) {
        T rest = y.data()[i];
        for (int j = 0; j < columns.cols(); ++j)
            rest -= columns(i, j) * p.data()[j];
        sum = std::hypot(sum, std::abs(rest));
    }
    return sum;
}

// p and S.
template <Scalar T> Results<2> fitted(Arguments const& args, M<double> const& x, M<double> const& y, int count)
{
    Packed<T> const at(x), given_y(y);
    if (!at || !given_y)
        return nothing<2>();
    ScaledPowers<T> powers(at, count);
    if (!powers)
        return nothing<2>();
    if (!powers.finite()) {
        args.report("matrix contains NaN or Inf");
        return nothing<2>();
    }
    int const m = powers.columns.rows(), least = std::min(m, count);
    Packed<T> triangle(m, count), tau(least, 1), p(count, 1), right(m, 1);
    if (!triangle || !tau || !p || !right)
        return nothing<2>();
    std::copy_n(powers.columns.data(), triangle.size(), triangle.data());
    std::copy_n(given_y.data(), m, right.data());
    // The columns have length 1: a pivoted factorisation tells their rank.
    PivotedQr<T> pivoted;
    Packed<T> copy(m, count);
    if (!copy)
        return nothing<2>();
    std::copy_n(powers.columns.data(), copy.size(), copy.data());
    if (!lapack::succeeded(args, lapack::geqrf(m, count, triangle.data(), triangle.stride(), tau.data())) || !pivoted.factor(args, std::move(copy)) ||
        !pivoted.turn(args, right))
        return nothing<2>();
    pivoted.solve(right, p);
    if (pivoted.rank < count)
        args.warn("polynomial is badly conditioned");
    double const residual = residual_norm(powers.columns, p, given_y);
    Packed<T> coefficients(1, count);
    if (!coefficients)
        return nothing<2>();
    for (int j = 0; j < count; ++j)
        coefficients.data()[j] = p.data()[j] / powers.scale.data()[j];
    Results<2> made{coefficients.value(), description(triangle, powers.scale, std::max(m - count, 0), residual)};
    return all_have_storage(made) ? made : nothing<2>();
}

// A value of any shape as a full column.
M<double> as_column(M<double> const& x)
{
    M<double> made = full_form(x);
    if (has_storage(made))
        made.reshape(made.size(), 1);
    return made;
}

Results<2> fit(M<double> const& x, M<double> const& y, M<double> const& n)
{
    Arguments const args("polyfit");
    if (x.size() != y.size()) {
        args.sizes_differ(x, y);
        return nothing<2>();
    }
    if (!args.scalar(n) || !args.finite(x) || !args.finite(y))
        return nothing<2>();
    constexpr double most = 1e6;
    if (!(n[1] >= 0 && n[1] <= most && n[1] == std::trunc(n[1]))) {
        args.report("degree must be a non-negative integer");
        return nothing<2>();
    }
    if (!given(x))
        return {};
    M<double> const at = as_column(x), values = as_column(y);
    if (!has_storage(at) || !has_storage(values))
        return nothing<2>();
    int const count = static_cast<int>(n[1]) + 1;
    return with_scalar(x.isc() || y.isc(), [&](auto kind) { return fitted<decltype(kind)>(args, at, values, count); });
}

} // namespace

M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n)
{
    return fit(x, y, n)[0];
}

M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n, i_o_t, Mr<double> p)
{
    return hand_out(fit(x, y, n), p);
}

M<double> polyfit(M<double> const& x, M<double> const& y, M<double> const& n, i_o_t, Mr<double> p, Mr<double> S)
{
    return hand_out(fit(x, y, n), p, S);
}
