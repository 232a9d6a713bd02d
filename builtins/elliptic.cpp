// Elliptic functions and complete elliptic integrals by the arithmetic-geometric mean (Abramowitz and
// Stegun, Handbook of Mathematical Functions, 16.4 and 17.6).
#include "builtins/element_map.h"
#include "builtins/specfun.h"
#include "builtins/wide_complex.h"
#include "ops/kernels/special_numbers.h"

#include <algorithm>
#include <limits>

using namespace arrlib;

namespace {

// The means of 1 and sqrt(1 - m), m below 1, down to a relative difference.
struct Means {
    static constexpr int most_steps = 16;
    // a[0] = 1, c[0] = sqrt(m); c is half of the difference that went into a.
    Wide a[most_steps + 1], c[most_steps + 1];
    int steps = 0;

    Means(double m, Wide tolerance)
    {
        Wide b = std::sqrt(1 - static_cast<Wide>(m));
        a[0] = 1;
        c[0] = std::sqrt(static_cast<Wide>(m));
        while (steps < most_steps && c[steps] > tolerance * a[steps]) {
            Wide const mean = (a[steps] + b) / 2, difference = (a[steps] - b) / 2;
            b = std::sqrt(a[steps] * b);
            ++steps;
            a[steps] = mean;
            c[steps] = difference;
        }
    }
};

Wide tolerance_of(M<double> const& tol)
{
    return number_or(tol, std::numeric_limits<Wide>::epsilon());
}

bool in_unit_interval(Arguments const& args, M<double> const& m)
{
    bool const outside = m.size() > 0 && std::any_of(m.addr(), m.addr() + m.getnnz(), [](double v) { return v < 0 || v > 1; });
    return !outside || args.report("M must be in [0,1]");
}

struct Jacobian {
    double sn, cn, dn;
};

Jacobian jacobian(double u, double m, Wide tolerance)
{
    if (std::isnan(u) || std::isnan(m) || (std::isinf(u) && m < 1))
        return {not_a_number, not_a_number, not_a_number};
    if (m == 1)
        return {std::tanh(u), 1 / std::cosh(u), 1 / std::cosh(u)};
    Means const means(m, tolerance);
    Wide angle = std::ldexp(means.a[means.steps] * u, means.steps);
    for (int n = means.steps; n >= 1; --n)
        angle = (angle + std::asin(means.c[n] * std::sin(angle) / means.a[n])) / 2;
    Wide const cosine = std::cos(angle);
    // dn^2 = 1 - m sn^2, without the cancellation near m = 1.
    Wide const delta = std::sqrt((1 - static_cast<Wide>(m)) + m * cosine * cosine);
    return {static_cast<double>(std::sin(angle)), static_cast<double>(cosine), static_cast<double>(delta)};
}

struct JacobianValues {
    M<double> sn = x_M, cn = x_M, dn = x_M;
};

JacobianValues jacobian_values(M<double> const& u, M<double> const& m, M<double> const& tol)
{
    Arguments const args("ellipj");
    if (!args.real(u) || !args.real(m) || !in_unit_interval(args, m))
        return {};
    OperandPair const pair(args.builtin(), u, m);
    if (!pair || pair.count() == 0)
        return {};
    JacobianValues made{full_result(pair.shape()), full_result(pair.shape()), full_result(pair.shape())};
    if (!has_storage(made.sn) || !has_storage(made.cn) || !has_storage(made.dn))
        return {};
    for_each_element(pair.count(), [&pair, tolerance = tolerance_of(tol), sn = made.sn.addr(), cn = made.cn.addr(), dn = made.dn.addr()](int k) {
        Jacobian const value = jacobian(pair.a(k), pair.b(k), tolerance);
        sn[k] = value.sn;
        cn[k] = value.cn;
        dn[k] = value.dn;
    });
    return made;
}

struct Complete {
    double k, e;
};

// K = pi / 2 a, E = K (1 - sum of 2^(n-1) c_n^2).
Complete complete(double m, Wide tolerance)
{
    if (std::isnan(m))
        return {not_a_number, not_a_number};
    if (m == 1)
        return {infinity, 1};
    Means const means(m, tolerance);
    Wide sum = 0;
    for (int n = means.steps; n >= 0; --n)
        sum += std::ldexp(means.c[n] * means.c[n], n - 1);
    Wide const k = wide_pi / (2 * means.a[means.steps]);
    return {static_cast<double>(k), static_cast<double>(k * (1 - sum))};
}

struct CompleteValues {
    M<double> k = x_M, e = x_M;
};

CompleteValues complete_values(M<double> const& m, M<double> const& tol)
{
    Arguments const args("ellipke");
    M<double> const full = full_form(m);
    if (!args.real(m) || !has_storage(full) || full.size() == 0 || !in_unit_interval(args, full))
        return {};
    CompleteValues made{full_result(shape_of(full)), full_result(shape_of(full))};
    if (!has_storage(made.k) || !has_storage(made.e))
        return {};
    for_each_element(full.size(), [from = full.addr(), tolerance = tolerance_of(tol), k = made.k.addr(), e = made.e.addr()](int at) {
        Complete const value = complete(from[at], tolerance);
        k[at] = value.k;
        e[at] = value.e;
    });
    return made;
}

} // namespace

M<double> ellipj(M<double> const& u, M<double> const& m)
{
    return jacobian_values(u, m, nop_M).sn;
}

M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol)
{
    return jacobian_values(u, m, tol).sn;
}

M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn)
{
    return ellipj(u, m, nop_M, i_o, sn);
}

M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn, Mr<double> cn)
{
    return ellipj(u, m, nop_M, i_o, sn, cn);
}

M<double> ellipj(M<double> const& u, M<double> const& m, i_o_t, Mr<double> sn, Mr<double> cn, Mr<double> dn)
{
    return ellipj(u, m, nop_M, i_o, sn, cn, dn);
}

M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn)
{
    JacobianValues const found = jacobian_values(u, m, tol);
    sn = found.sn;
    return found.sn;
}

M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn, Mr<double> cn)
{
    JacobianValues const found = jacobian_values(u, m, tol);
    sn = found.sn;
    cn = found.cn;
    return found.sn;
}

M<double> ellipj(M<double> const& u, M<double> const& m, M<double> const& tol, i_o_t, Mr<double> sn, Mr<double> cn, Mr<double> dn)
{
    JacobianValues const found = jacobian_values(u, m, tol);
    sn = found.sn;
    cn = found.cn;
    dn = found.dn;
    return found.sn;
}

M<double> ellipke(M<double> const& m)
{
    return complete_values(m, nop_M).k;
}

M<double> ellipke(M<double> const& m, M<double> const& tol)
{
    return complete_values(m, tol).k;
}

M<double> ellipke(M<double> const& m, i_o_t, Mr<double> k)
{
    return ellipke(m, nop_M, i_o, k);
}

M<double> ellipke(M<double> const& m, i_o_t, Mr<double> k, Mr<double> e)
{
    return ellipke(m, nop_M, i_o, k, e);
}

M<double> ellipke(M<double> const& m, M<double> const& tol, i_o_t, Mr<double> k)
{
    CompleteValues const found = complete_values(m, tol);
    k = found.k;
    return found.k;
}

M<double> ellipke(M<double> const& m, M<double> const& tol, i_o_t, Mr<double> k, Mr<double> e)
{
    CompleteValues const found = complete_values(m, tol);
    k = found.k;
    e = found.e;
    return found.k;
}
