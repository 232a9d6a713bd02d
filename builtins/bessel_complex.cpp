// Bessel functions of complex argument, by their connection with I and K in the right half-plane
// (NIST Handbook of Mathematical Functions, sections 10.11, 10.27 and 10.34).
#include "builtins/bessel_modified.h"
#include "builtins/bessel_value.h"

#include <limits>

using namespace arrlib;

namespace {

constexpr Wide infinite = std::numeric_limits<Wide>::infinity();

struct WideValue {
    WideComplex value;
    bool converged = true;
};

// --- J, Y and H of z in the upper half-plane ------------------------------------------------------
// From w = -iz: J(z) = e^(nu pi i/2) I(w), H1(z) = 2/(pi i) e^(-nu pi i/2) K(w), H2 = 2J - H1,
// Y = i (J - H1). For orders below 0: J_-nu = cos(nu pi) J - sin(nu pi) Y, Y_-nu = sin(nu pi) J +
// cos(nu pi) Y, H1_-nu = e^(nu pi i) H1, H2_-nu = e^(-nu pi i) H2.
WideValue ordinary(BesselKind kind, Wide nu, WideComplex z, bool scaled)
{
    Wide const order = std::fabs(nu);
    bool const below = nu < 0;
    WideComplex const w(z.im, -z.re), half_turn = cis_pi(order / 2), turn = cis_pi(order);
    bool const only_i = kind == BesselKind::j && (!below || turn.im == 0), only_k = kind == BesselKind::h1;
    ModifiedPair const pair = modified_bessel(order, w, only_i ? Modified::i_only : only_k ? Modified::k_only : Modified::both);
    bool const k_overflows = !only_i && pair.k.re == infinite;

    // What to multiply by: e^(-Re w) for J and Y, e^w for H1, e^-w for H2.
    WideComplex scale;
    if (scaled)
        scale = kind == BesselKind::h1 ? w : kind == BesselKind::h2 ? -w : WideComplex(-w.re);
    WideComplex const growth = w + pair.offset;
    WideComplex j, h;
    if (!only_k)
        j = grown(half_turn * pair.i, growth + scale);
    if (!only_i)
        h = k_overflows ? WideComplex(0, -infinite) : grown(-turned(conj(half_turn) * pair.k) * (2 / wide_pi), scale - growth);

    WideComplex value;
    switch (kind) {
    case BesselKind::j:
        if (!below || turn.im == 0)
            value = below ? turn.re * j : j;
        else
            value = k_overflows ? WideComplex(turn.im * infinite) : turn.re * j - turn.im * turned(j - h);
        break;
    case BesselKind::y:
        if (k_overflows)
            value = below && turn.re == 0 ? turn.im * j : WideComplex((below ? turn.re : 1) * -infinite);
        else
            value = below ? turn.im * j + turn.re * turned(j - h) : turned(j - h);
        break;
    case BesselKind::h1:
        value = k_overflows ? h : below ? turn * h : h;
        break;
    default: // h2
        value = k_overflows ? -h : below ? conj(turn) * (2 * j - h) : 2 * j - h;
    }
    return {value, pair.converged};
}

// --- I and K --------------------------------------------------------------------------------------
// For orders below 0, I_-nu = I + 2/pi sin(nu pi) K. In the left half-plane, z = w e^(+-pi i):
// I_nu(z) = e^(+-nu pi i) I(w), K(z) = e^(-+nu pi i) K(w) -+ pi i I(w).
WideValue modified_kind(BesselKind kind, Wide nu, WideComplex z, bool scaled)
{
    Wide const order = std::fabs(nu);
    bool const left = z.re < 0, above = z.im > 0;
    WideComplex const w = left ? -z : z, turn = above ? cis_pi(order) : conj(cis_pi(order));
    Wide const sine = nu < 0 ? cis_pi(order).im : 0;
    bool const is_i = kind == BesselKind::i;
    Modified const wanted = is_i ? (sine == 0 ? Modified::i_only : Modified::both) : left ? Modified::both : Modified::k_only;
    ModifiedPair const pair = modified_bessel(order, w, wanted);
    bool const k_overflows = wanted != Modified::i_only && pair.k.re == infinite;
    WideComplex const growth = w + pair.offset;

    if (is_i) {
        WideComplex const scale = scaled ? WideComplex(-w.re) : WideComplex();
        WideComplex value = grown(pair.i, growth + scale);
        if (k_overflows)
            return {WideComplex(sine * infinite), pair.converged};
        if (sine != 0)
            value += 2 / wide_pi * sine * grown(pair.k, scale - growth);
        if (left)
            value *= nu < 0 ? conj(turn) : turn;
        return {value, pair.converged};
    }
    if (k_overflows)
        return {pair.k, pair.converged};
    WideComplex const scale = scaled ? z : WideComplex();
    WideComplex value = grown(pair.k, scale - growth);
    if (left) {
        WideComplex const i = grown(turned(pair.i) * wide_pi, growth + scale);
        value = conj(turn) * value + (above ? -i : i);
    }
    return {value, pair.converged};
}

} // namespace

BesselValue arrlib::bessel_of_complex(BesselKind kind, double nu, double re, double im, bool scaled)
{
    bool const modified = kind == BesselKind::i || kind == BesselKind::k, lower = im < 0;
    WideValue found;
    if (modified) {
        found = modified_kind(kind, nu, {re, im}, scaled);
    } else if (!lower) {
        found = ordinary(kind, nu, {re, im}, scaled);
    } else {
        // J and Y of a conjugate are conjugates; so are H1 of one and H2 of the other.
        BesselKind const mirrored = kind == BesselKind::h1 ? BesselKind::h2 : kind == BesselKind::h2 ? BesselKind::h1 : kind;
        found = ordinary(mirrored, nu, {re, -im}, scaled);
        found.value = conj(found.value);
    }
    WideComplex const value = after_overflow(found.value);
    return {static_cast<double>(value.re), static_cast<double>(value.im), found.converged ? bessel_fine : bessel_not_converged};
}
