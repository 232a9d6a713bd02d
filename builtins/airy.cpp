// Airy functions, from their power series and from Bessel functions of orders 1/3 and 2/3 (NIST
// Handbook of Mathematical Functions, sections 9.4 and 9.6).
#include "builtins/bessel_modified.h"
#include "builtins/bessel_value.h"
#include "builtins/element_map.h"
#include "builtins/specfun.h"
#include "ops/kernels/special_numbers.h"

using namespace arrlib;

namespace {

enum AiryKind { airy_ai = 0, airy_ai_derivative = 1, airy_bi = 2, airy_bi_derivative = 3 };

constexpr Wide root_3 = 1.73205080756887729352744634150587237L;

// Ai = a f - b g and Bi = sqrt(3) (a f + b g), with a = Ai(0), b = -Ai'(0): f and g are the solutions
// with the values 1, 0 and the derivatives 0, 1 at 0.
WideComplex airy_series(AiryKind kind, WideComplex z)
{
    constexpr Wide a = 0.3550280538878172392600632L, b = 0.2588194037928067984051836L;
    bool const derivative = kind == airy_ai_derivative || kind == airy_bi_derivative;
    WideComplex const cube = z * z * z;
    // Terms n of f, of n from 0, and g; or of their derivatives, that of f from 1.
    WideComplex of_f = derivative ? z * z / 2 : WideComplex(1), of_g = derivative ? WideComplex(1) : z, f = of_f, g = of_g;
    for (Wide n = 3; n < 300 && rough_size(of_f) + rough_size(of_g) > 1e-21L * (rough_size(f) + rough_size(g)); n += 3) {
        of_f *= derivative ? cube / (n * (n + 2)) : cube / ((n - 1) * n);
        of_g *= derivative ? cube / (n * (n - 2)) : cube / (n * (n + 1));
        f += of_f;
        g += of_g;
    }
    return kind == airy_ai || kind == airy_ai_derivative ? a * f - b * g : root_3 * (a * f + b * g);
}

// For |z| above some 4, in the upper half-plane. With zeta = (2/3) z^(3/2) and orders nu = 1/3 and 2/3,
//   Ai = sqrt(z/3)/pi K(zeta), Ai' = -z/(pi sqrt(3)) K(zeta),
//   Bi = sqrt(z/3) (2 I + sqrt(3)/pi K)(zeta), Bi' = z/sqrt(3) (2 I + sqrt(3)/pi K)(zeta).
// Where zeta is left of the imaginary axis, K(zeta) = e^(-nu pi i) K(w) - pi i I(w) for w = zeta e^(-pi i),
// and the sum of Bi is (+-I + sqrt(3)/pi e^(-nu pi i) K)(w).
WideComplex airy_from_bessel(AiryKind kind, WideComplex z, bool& converged)
{
    bool const derivative = kind == airy_ai_derivative || kind == airy_bi_derivative, is_ai = kind == airy_ai || kind == airy_ai_derivative;
    WideComplex const root = sqrt(z), zeta = z * root * (2 / Wide(3));
    Wide const nu = derivative ? 2 / Wide(3) : 1 / Wide(3);
    bool const right = zeta.re >= 0 && zeta.im >= 0;
    WideComplex w = right ? zeta : -zeta;
    w.re = std::fabs(w.re);
    ModifiedPair const pair = modified_bessel(nu, w, right && is_ai ? Modified::k_only : Modified::both);
    converged = pair.converged;
    WideComplex const growth = w + pair.offset;
    WideComplex const factor = derivative ? (is_ai ? -z : z) / root_3 : root / root_3;
    WideComplex const k = right ? pair.k : conj(cis_pi(nu)) * pair.k;
    if (is_ai) {
        WideComplex value = grown(factor * k / wide_pi, -growth);
        if (!right)
            value += grown(-turned(factor * pair.i), growth);
        return value;
    }
    return grown(factor * pair.i * Wide(right ? 2 : derivative ? -1 : 1), growth) + grown(factor * k * (root_3 / wide_pi), -growth);
}

BesselValue at_real_infinity(AiryKind kind, double x)
{
    bool const is_ai = kind == airy_ai || kind == airy_ai_derivative;
    if (x > 0)
        return is_ai ? BesselValue() : BesselValue{infinity, 0, bessel_overflow};
    // The derivatives swing wider and wider.
    return kind == airy_ai || kind == airy_bi ? BesselValue() : BesselValue{not_a_number, 0, bessel_inaccurate};
}

BesselValue airy_value(AiryKind kind, double re, double im)
{
    if (std::isnan(re) || std::isnan(im))
        return {not_a_number, 0, bessel_bad_argument};
    if (std::isinf(re) && im == 0)
        return at_real_infinity(kind, re);
    if (std::isinf(re) || std::isinf(im))
        return {not_a_number, 0, bessel_inaccurate};
    WideComplex const z(re, std::fabs(im));
    bool converged = true;
    WideComplex const value = abs(z) <= 4 ? airy_series(kind, z) : airy_from_bessel(kind, z, converged);
    if (!converged)
        return {not_a_number, 0, bessel_not_converged};
    BesselValue made{static_cast<double>(value.re), im == 0 ? 0 : static_cast<double>(im < 0 ? -value.im : value.im), bessel_fine};
    if (std::isinf(made.re) || std::isinf(made.im))
        made.status = bessel_overflow;
    else
        made.status = bessel_accuracy(2 / 3.0 * std::pow(std::hypot(re, im), 1.5));
    return made;
}

// False after the report.
bool airy_kind(M<double> const& k, AiryKind& kind)
{
    Arguments const args("airy");
    if (given(k) && !args.scalar(k))
        return false;
    double const number = number_or(k, 0);
    if (number != 0 && number != 1 && number != 2 && number != 3)
        return args.report("K must be 0, 1, 2 or 3");
    kind = static_cast<AiryKind>(number);
    return true;
}

// w, and the status of its elements where `ierr` is given.
M<double> compute(M<double> const& k, M<double> const& z, M<double>* ierr = nullptr)
{
    AiryKind kind = airy_ai;
    M<double> const full = full_form(z);
    if (!airy_kind(k, kind) || !has_storage(full) || full.size() == 0)
        return x_M;
    M<double> w = full_result(shape_of(full), full.isc()), status = full_result(shape_of(full));
    if (!has_storage(w) || !has_storage(status))
        return x_M;
    for_each_element(full.size(), [kind, from = full.addr(), from_im = full.addi(), to = w.addr(), to_im = w.addi(), to_status = status.addr()](int at) {
        BesselValue const value = airy_value(kind, from[at], from_im ? from_im[at] : 0);
        to[at] = value.re;
        if (to_im)
            to_im[at] = value.im;
        to_status[at] = value.status;
    });
    if (ierr)
        *ierr = status;
    return w;
}

} // namespace

M<double> airy(M<double> const& z)
{
    return compute(nop_M, z);
}

M<double> airy(M<double> const& k, M<double> const& z)
{
    return compute(k, z);
}

M<double> airy(M<double> const& z, i_o_t, Mr<double> w)
{
    return airy(nop_M, z, i_o, w);
}

M<double> airy(M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return airy(nop_M, z, i_o, w, ierr);
}

M<double> airy(M<double> const& k, M<double> const& z, i_o_t, Mr<double> w)
{
    M<double> const found = compute(k, z);
    w = found;
    return found;
}

M<double> airy(M<double> const& k, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    M<double> status = x_M;
    M<double> const found = compute(k, z, &status);
    w = found;
    ierr = status;
    return found;
}
