// Bessel functions of real argument: those of Boost.Math for moderate orders and arguments, the
// library's own beyond, where they are more accurate or faster.
#include "builtins/bessel_modified.h"
#include "builtins/bessel_value.h"
#include "builtins/boost_policy.h"
#include "ops/kernels/special_numbers.h"

#include <boost/math/special_functions/bessel.hpp>

using namespace arrlib;

namespace {

// The formula of a kind for order nu >= 0 and finite x > 0, where Boost serves.
double from_boost(BesselKind kind, double nu, double x)
{
    switch (kind) {
    case BesselKind::j:
        return boost::math::cyl_bessel_j(nu, x, BoostPolicy());
    case BesselKind::y:
        return boost::math::cyl_neumann(nu, x, BoostPolicy());
    case BesselKind::i:
        return boost::math::cyl_bessel_i(nu, x, BoostPolicy());
    default:
        return boost::math::cyl_bessel_k(nu, x, BoostDoublePolicy());
    }
}

bool boost_serves(BesselKind kind, double nu, double x)
{
    switch (kind) {
    case BesselKind::j:
    case BesselKind::y:
        return nu <= 100 && x <= 1e4;
    case BesselKind::i:
        return (nu == 0 || nu == 1) && x <= 700;
    default:
        return nu <= 100 && x <= 700;
    }
}

double narrow(Wide part, Wide exponent)
{
    return part == 0 ? 0 : static_cast<double>(part * std::exp(exponent));
}

// Real functions, with the scale of i and k; NaN where nothing converged.
class RealBessel {
public:
    explicit RealBessel(bool scaled) : scaled_(scaled) {}

    // For x >= 0.
    double operator()(BesselKind kind, double nu, double x) const
    {
        double const order = std::fabs(nu);
        if (nu >= 0 || kind == BesselKind::k)
            return of_positive(kind, order, x);
        WideComplex const turn = cis_pi(order);
        switch (kind) {
        case BesselKind::j:
            return part(turn.re, BesselKind::j, order, x) - part(turn.im, BesselKind::y, order, x);
        case BesselKind::y:
            return part(turn.im, BesselKind::j, order, x) + part(turn.re, BesselKind::y, order, x);
        default:
            return turn.im == 0 ? of_positive(BesselKind::i, order, x) : reflected_i(order, 2 / wide_pi * turn.im, x);
        }
    }

private:
    // A product with a factor of 0 is 0, whatever the function.
    double part(Wide factor, BesselKind kind, double order, double x) const
    {
        return factor == 0 ? 0 : static_cast<double>(factor * of_positive(kind, order, x));
    }

    // I + factor K, K with the scale of I.
    double reflected_i(double order, Wide factor, double x) const
    {
        if (x == 0)
            return factor < 0 ? -infinity : infinity;
        if (std::isinf(x))
            return of_positive(BesselKind::i, order, x);
        ModifiedPair const pair = modified_bessel(order, x, Modified::both);
        Wide const shift = scaled_ ? x : 0, exponent = pair.offset.re + x;
        return pair.converged ? narrow(pair.i.re, exponent - shift) + narrow(factor * pair.k.re, -exponent - shift) : not_a_number;
    }

    double of_positive(BesselKind kind, double order, double x) const
    {
        if (x == 0)
            return kind == BesselKind::y ? -infinity : kind == BesselKind::k ? infinity : order == 0 ? 1 : 0;
        if (std::isinf(x))
            return kind == BesselKind::i && !scaled_ ? infinity : 0;
        bool const rescaled = scaled_ && (kind == BesselKind::i || kind == BesselKind::k);
        if (!rescaled && boost_serves(kind, order, x)) {
            try {
                double const value = from_boost(kind, order, x);
                if (!std::isnan(value))
                    return value;
            } catch (...) {
            }
            // The other formulas may do.
        }
        return from_modified(kind, order, x);
    }

    double from_modified(BesselKind kind, double order, double x) const
    {
        bool const is_i = kind == BesselKind::i;
        if (is_i || kind == BesselKind::k) {
            ModifiedPair const pair = modified_bessel(order, x, is_i ? Modified::i_only : Modified::k_only);
            Wide const exponent = scaled_ ? pair.offset.re : pair.offset.re + x;
            return !pair.converged ? not_a_number : is_i ? narrow(pair.i.re, exponent) : narrow(pair.k.re, -exponent);
        }
        // J(x) = e^(nu pi i/2) I(-ix), Y(x) = -Re(2/pi e^(-nu pi i/2) K(-ix)).
        bool const is_j = kind == BesselKind::j;
        WideComplex const half_turn = cis_pi(order / Wide(2));
        ModifiedPair const pair = modified_bessel(order, {0, -x}, is_j ? Modified::i_only : Modified::k_only);
        if (!pair.converged)
            return not_a_number;
        if (!is_j && std::isinf(pair.k.re))
            return -infinity;
        WideComplex const angle = exp(WideComplex(0, pair.offset.im - x));
        return is_j ? narrow((half_turn * pair.i * angle).re, pair.offset.re) : -narrow((conj(half_turn * angle) * pair.k).re * 2 / wide_pi, -pair.offset.re);
    }

    bool scaled_;
};

BesselValue finished(double re, double im)
{
    return {re, im, std::isnan(re) || std::isnan(im) ? bessel_not_converged : bessel_fine};
}

// A factor of 0 leaves nothing of an infinite value.
Wide times(Wide factor, double value)
{
    return factor == 0 ? 0 : factor * value;
}

// J + iY and J - iY.
BesselValue hankel_of_real(BesselKind kind, double nu, double x, bool scaled)
{
    if (x < 0) {
        // Left of 0 J and Y are complex themselves; the argument lies above the cut.
        return bessel_of_complex(kind, nu, x, 0, scaled);
    }
    RealBessel const bessel(false);
    double const j = bessel(BesselKind::j, nu, x), y = kind == BesselKind::h1 ? bessel(BesselKind::y, nu, x) : -bessel(BesselKind::y, nu, x);
    if (!scaled || x == 0 || std::isinf(x))
        return finished(j, y);
    // exp(-+ix)
    WideComplex const turned = WideComplex(j, y) * exp(WideComplex(0, kind == BesselKind::h1 ? -x : x));
    return finished(std::isinf(y) ? j : static_cast<double>(turned.re), std::isinf(y) ? y : static_cast<double>(turned.im));
}

} // namespace

BesselValue arrlib::bessel_of_real(BesselKind kind, double nu, double x, bool scaled)
{
    if (kind == BesselKind::h1 || kind == BesselKind::h2)
        return std::isinf(x) ? BesselValue() : hankel_of_real(kind, nu, x, scaled);
    RealBessel const bessel(scaled);
    if (x >= 0)
        return finished(bessel(kind, nu, x), 0);

    // x e^(pi i), with factors that are exact where they are 0 or 1.
    x = -x;
    if (kind == BesselKind::k)
        nu = std::fabs(nu);
    WideComplex const turn = cis_pi(nu);
    double const value = bessel(kind, nu, x);
    double other = 0;
    if (kind == BesselKind::y && turn.re != 0)
        other = bessel(BesselKind::j, nu, x);
    else if (kind == BesselKind::k)
        other = bessel(BesselKind::i, nu, x);
    if (std::isnan(value) || std::isnan(other))
        return finished(not_a_number, 0);

    WideComplex made;
    switch (kind) {
    case BesselKind::y:
        made = {times(turn.re, value), times(2 * turn.re, other) - times(turn.im, value)};
        break;
    case BesselKind::k: {
        double const k = scaled ? value * std::exp(-2 * x) : value;
        made = {times(turn.re, k), -times(turn.im, k) - times(wide_pi, other)};
        break;
    }
    default:
        made = {times(turn.re, value), times(turn.im, value)};
    }
    made = after_overflow(made);
    return finished(static_cast<double>(made.re), static_cast<double>(made.im));
}
