#include "builtins/bessel_modified.h"

#include <algorithm>
#include <iterator>
#include <limits>

using namespace arrlib;

namespace {

constexpr Wide precision = 1e-20L;

// Coefficients of 1/gamma(1 + x), lowest power first.
constexpr Wide reciprocal_gamma[] = {1.0L, 0.577215664901532860606512L, -0.65587807152025388107702L, -0.0420026350340952355290039L,
    0.166538611382291489501701L, -0.0421977345555443367482083L, -0.00962197152787697356211492L, 0.00721894324666309954239501L,
    -0.00116516759185906511211397L, -0.00021524167411497095281573L, 0.000128050282388116186153199L, -0.0000201348547807882386556894L,
    -0.00000125049348214267065734536L, 0.00000113302723198169588237413L, -0.000000205633841697760710345015L, 6.1160951044814158178625e-9L,
    5.00200764446922293005567e-9L, -1.18127457048702014458813e-9L, 1.04342671169110051049154e-10L, 7.78226343990507125404994e-12L,
    -3.69680561864220570818782e-12L, 5.10037028745447597901548e-13L, -2.05832605356650678322243e-14L, -5.34812253942301798237002e-15L,
    1.22677862823826079015889e-15L, -1.18125930169745876951376e-16L};

// For |x| <= 1/2: the even part of 1/gamma(1 + x), and its odd part divided by x.
struct ReciprocalGamma {
    Wide even = 0, odd = 0;

    explicit ReciprocalGamma(Wide x)
    {
        constexpr int count = std::size(reciprocal_gamma);
        static_assert(count % 2 == 0);
        for (int k = count - 2; k >= 0; k -= 2) {
            even = even * x * x + reciprocal_gamma[k];
            odd = odd * x * x + reciprocal_gamma[k + 1];
        }
    }
    Wide at(Wide x) const { return even + x * odd; }
};

// 1/gamma(nu + 1); orders are moderate where it is asked.
Wide reciprocal_factorial(Wide nu)
{
    Wide const whole = std::rint(nu), rest = nu - whole;
    Wide product = 1;
    for (Wide k = 1; k <= whole; k += 1)
        product *= rest + k;
    return ReciprocalGamma(rest).at(rest) / product;
}

// Whether the power series of I loses few digits: its terms add up to exp(|z|^2 / (4 nu + 4)) or
// exp(|z|) times the first one.
bool series_suits(Wide nu, WideComplex z)
{
    Wide const square = (z.re * z.re + z.im * z.im) / 4;
    return square <= 2 * (nu + 1) || square <= 9;
}

// sum of (z^2/4)^k / (k! (nu+1)...(nu+k)), times (z/2)^nu / gamma(nu + 1).
WideComplex series_i(Wide nu, WideComplex z)
{
    WideComplex const square = z * z / 4;
    WideComplex term = 1, sum = 1;
    for (Wide k = 1; rough_size(term) > precision * rough_size(sum); k += 1) {
        term *= square * (1 / (k * (nu + k)));
        sum += term;
    }
    return sum * exp(nu * log(z / 2) - z) * reciprocal_factorial(nu);
}

// K of two neighbouring orders.
struct Neighbours {
    WideComplex k, next;
};

// The series of N. M. Temme, "On the numerical evaluation of the modified Bessel function of the third
// kind", J. Comput. Phys. 19 (1975), for |mu| <= 1/2 and small |z|.
Neighbours series_k(Wide mu, WideComplex z)
{
    ReciprocalGamma const gamma(mu);
    WideComplex const logarithm = -log(z / 2), sigma = mu * logarithm, grown = exp(sigma), shrunk = exp(-sigma), square = z * z / 4;
    WideComplex sine_quotient = 1; // sinh(sigma)/sigma
    if (rough_size(sigma) > 0.5L) {
        sine_quotient = (grown - shrunk) / (2 * sigma);
    } else {
        WideComplex term = 1;
        for (Wide k = 2; rough_size(term) > precision; k += 2) {
            term *= sigma * sigma / (k * (k + 1));
            sine_quotient += term;
        }
    }
    Wide const circle = mu == 0 ? 1 : wide_pi * mu / cis_pi(mu).im;
    // The first coefficient of the differences of 1/gamma(1 - mu) and 1/gamma(1 + mu) is -odd.
    WideComplex f = circle * ((grown + shrunk) * (-gamma.odd / 2) + sine_quotient * logarithm * gamma.even);
    WideComplex p = grown / (2 * gamma.at(mu)), q = shrunk / (2 * gamma.at(-mu)), c = 1;
    WideComplex sum = f, next = p;
    for (Wide k = 1; k < 200; k += 1) {
        f = (k * f + p + q) / (k * k - mu * mu);
        p = p / (k - mu);
        q = q / (k + mu);
        c *= square / k;
        WideComplex const term = c * f, term_next = c * (p - k * f);
        sum += term;
        next += term_next;
        if (rough_size(term) < precision * rough_size(sum) && rough_size(term_next) < precision * rough_size(next))
            break;
    }
    WideComplex const scale = exp(z);
    return {sum * scale, next * scale * 2 / z};
}

// The continued fraction and the sum of the same paper, run backwards: K is sqrt(pi / 2z) e^-z / S with
// S the sum of the minimal solution V_n, V_0 = 1, of q_n V_(n-1) = n (2 (z + n) V_n - (n + 1) V_(n+1)),
// q_n = (n - 1/2)^2 - mu^2. What is cut off falls as exp(-2 Re sqrt(2 n z)).
Neighbours fraction_k(Wide mu, WideComplex z)
{
    Wide const terms = std::ceil(10 + 500 / (abs(z) + z.re));
    WideComplex ratio, sum = 1;
    for (Wide n = terms; n >= 1; n -= 1) {
        Wide const q = (n - 0.5L) * (n - 0.5L) - mu * mu;
        ratio = q / n * reciprocal(2 * (z + n) - (n + 1) * ratio);
        sum = 1 + ratio * sum;
    }
    WideComplex const k = sqrt(wide_pi / 2 * reciprocal(z)) / sum;
    return {k, k * (1 + (mu + 0.5L - ratio) / z)};
}

// Upward in the order, where K grows: from mu to mu + steps.
Neighbours climb(Neighbours k, Wide mu, Wide steps, WideComplex z)
{
    WideComplex const twice = 2 * reciprocal(z);
    for (Wide step = 1; step <= steps; step += 1) {
        WideComplex const above = k.k + (mu + step) * twice * k.next;
        k.k = k.next;
        k.next = above;
    }
    return k;
}

// I from the Wronskian I K_(nu+1) + I_(nu+1) K = 1/z and the ratio of the I, which is what the
// recurrence downward gives from any start (J. C. P. Miller): beyond the turning point I falls so fast
// that this many orders cover all digits.
WideComplex wronskian_i(Wide nu, WideComplex z, Neighbours const& k)
{
    Wide const size = abs(z);
    Wide const steps = std::ceil(std::max(size - nu, 0.0L) + 8.5L * std::cbrt(size) + 10);
    WideComplex const twice = 2 * reciprocal(z);
    WideComplex above = 0, here = 1;
    for (Wide j = steps; j >= 1; j -= 1) {
        WideComplex const below = (nu + j) * twice * here + above;
        above = here;
        here = below;
    }
    return here / (z * (here * k.next + above * k.k));
}

// K of orders nu and nu + 1 near the turning point of a large order: from lower orders, for which the
// expansion holds.
bool climb_to_turning(Wide nu, WideComplex z, Neighbours& k)
{
    constexpr Wide most_steps = 1e6L;
    Wide const whole = std::floor(nu);
    for (Wide down = std::ceil(8.5L * std::cbrt(abs(z))); down < most_steps; down = std::ceil(1.5L * down)) {
        Wide const steps = std::min(down, whole), mu = nu - steps;
        ModifiedPair first, second;
        if (uniform_expansion(mu, z, first) && uniform_expansion(mu + 1, z, second)) {
            k = climb({first.k * exp(-first.offset), second.k * exp(-second.offset)}, mu, steps, z);
            return true;
        }
        if (steps == whole)
            break;
    }
    return false;
}

ModifiedPair in_first_quadrant(Wide nu, WideComplex z, Modified wanted)
{
    constexpr Wide small = 4, moderate = 20, large = 30, large_order = 40;
    ModifiedPair found;
    Wide const size = abs(z);
    if ((nu >= large_order || size >= moderate) && uniform_expansion(nu, z, found))
        return found;

    bool const by_series = wanted != Modified::k_only && series_suits(nu, z);
    if (by_series)
        found.i = series_i(nu, z);
    if (by_series && wanted == Modified::i_only)
        return found;

    Neighbours k;
    if (size < large) {
        Wide const steps = std::rint(nu), mu = nu - steps;
        k = climb(size <= small ? series_k(mu, z) : fraction_k(mu, z), mu, steps, z);
    } else if (!climb_to_turning(nu, z, k)) {
        found.converged = false;
        return found;
    }
    constexpr Wide infinite = std::numeric_limits<Wide>::infinity();
    found.k = rough_size(k.k) < infinite ? k.k : WideComplex(infinite);
    if (wanted != Modified::k_only && !by_series)
        found.i = wronskian_i(nu, z, k);
    return found;
}

} // namespace

ModifiedPair arrlib::modified_bessel(Wide nu, WideComplex z, Modified wanted)
{
    z.re = std::fabs(z.re);
    if (!std::signbit(z.im))
        return in_first_quadrant(nu, z, wanted);
    ModifiedPair const mirrored = in_first_quadrant(nu, conj(z), wanted);
    return {conj(mirrored.i), conj(mirrored.k), conj(mirrored.offset), mirrored.converged};
}
