#include "builtins/residue.h"

#include "builtins/poly.h"
#include "builtins/polynomial.h"
#include "builtins/results.h"
#include "builtins/spectrum.h"
#include "core/arguments.h"

#include <cmath>
#include <numeric>

using namespace arrlib;
using namespace arrlib::polynomial;

namespace {

constexpr double joined_within = 0.001;

// --- groups of equal poles -----------------------------------------------------------------------

struct Multiplicities {
    // Positions of the poles, those of a group side by side, and the number of each within its group.
    HeapArray<int> position, number;

    explicit operator bool() const { return position && number; }
};

Multiplicities multiplicities(Packed<Complex> const& poles, double tolerance, bool by_modulus)
{
    int const n = length(poles);
    Multiplicities made{HeapArray<int>(static_cast<std::size_t>(n)), HeapArray<int>(static_cast<std::size_t>(n))};
    if (!made || !poles)
        return {};
    Complex const* const p = poles.data();
    int *const order = made.position.data(), *const number = made.number.data();
    std::iota(order, order + n, 0);
    auto const modulus = [p](int k) {
        double const size = std::abs(p[k]);
        return size >= 0 ? size : -1;
    };
    if (by_modulus)
        std::sort(order, order + n, [&](int x, int y) { return modulus(x) != modulus(y) ? modulus(x) > modulus(y) : x < y; });
    for (int first = 0; first < n;) {
        Complex const leader = p[order[first]];
        double const limit = leader == Complex() ? tolerance : tolerance * std::abs(leader);
        int count = 0;
        for (int k = first; k < n; ++k)
            if (k == first || std::abs(p[order[k]] - leader) <= limit) {
                std::rotate(order + first + count, order + k, order + k + 1);
                number[first + count] = count + 1;
                ++count;
            }
        first += count;
    }
    return made;
}

Results<2> pole_multiplicities(M<double> const& p, M<double> const& tol, M<double> const& reorder)
{
    Arguments const args("mpoles");
    if (!is_list(args, p))
        return nothing<2>();
    if (!given(p))
        return {};
    Packed<Complex> const poles(p);
    if (!poles)
        return nothing<2>();
    Multiplicities const found = multiplicities(poles, number_or(tol, joined_within), number_or(reorder, 1) != 0);
    Results<2> made{full_result(Dims(length(poles), 1)), full_result(Dims(length(poles), 1))};
    if (!found || !all_have_storage(made))
        return nothing<2>();
    for (int k = 0; k < length(poles); ++k) {
        made[0].addr()[k] = found.number[static_cast<std::size_t>(k)];
        made[1].addr()[k] = found.position[static_cast<std::size_t>(k)] + 1;
    }
    return made;
}

// --- power series --------------------------------------------------------------------------------

// The first `count` coefficients of p as a polynomial in s - at, ascending; overwrites p.
void expand(Coefficients<Complex>& p, Complex at, Complex* series, int count)
{
    Complex* const c = p.data();
    for (int term = 0, n = length(p); term < count; ++term, --n) {
        for (int k = 1; k < n; ++k)
            c[k] += at * c[k - 1];
        series[term] = n > 0 ? c[n - 1] : Complex();
    }
}

// quotient = above / below, all of `count` coefficients; takes the place of `above`.
void divide_series(Complex* above, Complex const* below, int count)
{
    for (int k = 0; k < count; ++k) {
        for (int j = 0; j < k; ++j)
            above[k] -= above[j] * below[k - j];
        above[k] /= below[0];
    }
}

// --- poles and residues of a quotient ------------------------------------------------------------

// The roots of `a` in groups, each moved to the mean of its group; `number` counts within the groups.
bool joined_roots(Arguments const& args, M<double> const& a, Packed<Complex>& poles, HeapArray<int>& number)
{
    M<double> const roots = roots_of(args, a);
    int const degree = a.size() - 1;
    if (roots.size() != degree)
        return roots.issamename(x_Mp) ? false : args.report("coefficients must be finite"); // their ratios are not
    Packed<Complex> const found(roots);
    Multiplicities groups = multiplicities(found, joined_within, true);
    poles = Packed<Complex>(degree, degree > 0);
    if (!found || !groups || !poles)
        return false;
    for (int first = 0, end = 0; first < degree; first = end) {
        Complex sum;
        for (end = first; end < degree && groups.number[static_cast<std::size_t>(end)] == end - first + 1; ++end)
            sum += found.data()[groups.position[static_cast<std::size_t>(end)]];
        std::fill(poles.data() + first, poles.data() + end, sum / static_cast<double>(end - first));
    }
    number = std::move(groups.number);
    return true;
}

// The series of lead times the product of (s - pole) over all poles but those of a group, in powers of
// s - at.
void other_factors(Packed<Complex> const& poles, int group, int group_end, Complex lead, Complex* series, int count)
{
    Complex const at = poles.data()[group];
    std::fill_n(series, count, Complex());
    series[0] = lead;
    for (int k = 0; k < length(poles); ++k) {
        if (k >= group && k < group_end)
            continue;
        Complex const distance = at - poles.data()[k];
        for (int j = count; j-- > 1;)
            series[j] = series[j] * distance + series[j - 1];
        series[0] *= distance;
    }
}

// The residues at the poles of a group, for powers from 1 to its size.
bool residues_of_group(Coefficients<Complex> const& above, Complex lead, Packed<Complex> const& poles, int group, int group_end, Complex* residues)
{
    int const count = group_end - group;
    Coefficients<Complex> expanded = tail(above, 0);
    HeapArray<Complex> series(2 * static_cast<std::size_t>(count));
    if (!expanded || !series)
        return false;
    Complex *const numerator = series.data(), *const denominator = numerator + count;
    expand(expanded, poles.data()[group], numerator, count);
    other_factors(poles, group, group_end, lead, denominator, count);
    divide_series(numerator, denominator, count);
    std::reverse_copy(numerator, numerator + count, residues);
    return true;
}

// Residues of a real quotient: real at real poles, conjugate at conjugate ones, bit for bit.
void make_conjugate(Packed<Complex> const& poles, HeapArray<int> const& number, Packed<Complex>& residues)
{
    for (int k = 0; k < length(poles); ++k) {
        Complex const pole = poles.data()[k];
        if (pole.imag() == 0)
            residues.data()[k] = residues.data()[k].real();
        else if (pole.imag() < 0)
            for (int other = 0; other < length(poles); ++other)
                if (poles.data()[other] == std::conj(pole) && number[static_cast<std::size_t>(other)] == number[static_cast<std::size_t>(k)])
                    residues.data()[k] = std::conj(residues.data()[other]);
    }
}

M<double> row_without_leading_zeros(M<double> const& p)
{
    return with_scalar(p.isc(), [&](auto kind) {
        Coefficients<decltype(kind)> const coefficients(p);
        if (!coefficients)
            return x_M;
        auto rest = tail(coefficients, leading_zeros(coefficients));
        return rest ? rest.value() : x_M;
    });
}

Results<3> partial_fractions(M<double> const& b, M<double> const& a)
{
    Arguments const args("residue");
    if (!is_finite_list(args, b) || !is_finite_list(args, a))
        return nothing<3>();
    M<double> const below = given(a) ? row_without_leading_zeros(a) : zero_M;
    if (below.size() != a.size() || (below.size() == 1 && below[1] == 0 && !(below.isc() && below.addi()[0] != 0))) {
        if (given(below))
            args.report("leading denominator coefficient must be non-zero");
        return nothing<3>();
    }
    M<double> const above = given(b) ? row_without_leading_zeros(b) : zero_M;
    if (!given(above))
        return nothing<3>();
    M<double> quotient, rest;
    deconv(above, below, i_o, quotient, rest);
    if (rest.size() != above.size())
        return nothing<3>();

    Packed<Complex> poles;
    HeapArray<int> number;
    Coefficients<Complex> const numerator(rest), denominator(below);
    if (!numerator || !denominator || !joined_roots(args, below, poles, number))
        return nothing<3>();
    int const count = length(poles);
    Packed<Complex> residues(count, count > 0);
    if (!residues)
        return nothing<3>();
    for (int group = 0, end = 0; group < count; group = end) {
        for (end = group + 1; end < count && number[static_cast<std::size_t>(end)] > 1;)
            ++end;
        if (!residues_of_group(numerator, denominator.data()[0], poles, group, end, residues.data() + group))
            return nothing<3>();
    }
    if (!a.isc() && !b.isc())
        make_conjugate(poles, number, residues);
    bool const proper = above.size() < below.size() || (above.size() == 1 && above[1] == 0);
    Results<3> made{realified(residues), realified(poles), proper ? M<double>() : quotient};
    return all_have_storage(made) ? made : nothing<3>();
}

// --- the way back --------------------------------------------------------------------------------

// Whether every term has its conjugate among the others, or is real.
bool terms_come_in_pairs(Packed<Complex> const& residues, Packed<Complex> const& poles)
{
    int const count = length(poles);
    auto const conjugate_of = [&](int k, int other) {
        return poles.data()[other] == std::conj(poles.data()[k]) && residues.data()[other] == std::conj(residues.data()[k]);
    };
    for (int k = 0; k < count; ++k) {
        int other = 0;
        while (other < count && !conjugate_of(k, other))
            ++other;
        if (other == count)
            return false;
    }
    return true;
}

// b and a for the terms given; multiplicities count as the poles lie.
bool add_up(Packed<Complex> const& residues, Packed<Complex> const& poles, Coefficients<Complex> const& quotient, Coefficients<Complex>& b,
            Coefficients<Complex>& a)
{
    int const count = length(poles);
    Multiplicities const groups = multiplicities(poles, joined_within, false);
    a = from_roots(poles.data(), count);
    HeapArray<Complex> others(static_cast<std::size_t>(count));
    if (!groups || !a || !others)
        return false;
    if (quotient.size() > 0)
        b = product(quotient, a);
    else {
        b = Coefficients<Complex>(1, std::max(count, 1));
        if (b)
            std::fill_n(b.data(), b.size(), Complex());
    }
    if (!b)
        return false;
    for (int k = 0; k < count; ++k) {
        // Every pole but the first ones of its group, as many as the power of the term.
        int const power = groups.number[static_cast<std::size_t>(k)], group = k - power + 1;
        int left = 0;
        for (int other = 0; other < count; ++other)
            if (other < group || other > k)
                others[static_cast<std::size_t>(left++)] = poles.data()[groups.position[static_cast<std::size_t>(other)]];
        Coefficients<Complex> const term = from_roots(others.data(), left);
        if (!term)
            return false;
        Complex const residue = residues.data()[groups.position[static_cast<std::size_t>(k)]];
        Complex* const to = b.data() + (length(b) - length(term));
        for (int c = 0; c < length(term); ++c)
            to[c] += residue * term.data()[c];
    }
    return true;
}

Results<2> joined_fractions(M<double> const& r, M<double> const& p, M<double> const& k)
{
    Arguments const args("residue");
    if (!is_finite_list(args, r) || !is_finite_list(args, p) || !is_finite_list(args, k))
        return nothing<2>();
    if (r.size() != p.size()) {
        args.sizes_differ(r, p);
        return nothing<2>();
    }
    Packed<Complex> const residues(r), quotient_given(k);
    Packed<Complex> poles(p);
    Coefficients<Complex> b, a;
    if (!residues || !poles || !quotient_given || !add_up(residues, poles, quotient_given, b, a))
        return nothing<2>();
    bool const real = !any_imaginary(quotient_given) && terms_come_in_pairs(residues, poles);
    bool const real_below = come_in_pairs(poles.data(), length(poles));
    Results<2> made{b.value(), a.value()};
    if (!all_have_storage(made))
        return nothing<2>();
    if (real)
        Access<double>::drop_imaginary(made[0]);
    if (real_below)
        Access<double>::drop_imaginary(made[1]);
    return made;
}

} // namespace

M<double> residue(M<double> const& b, M<double> const& a)
{
    return partial_fractions(b, a)[0];
}

M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r)
{
    return hand_out(partial_fractions(b, a), r);
}

M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r, Mr<double> p)
{
    return hand_out(partial_fractions(b, a), r, p);
}

M<double> residue(M<double> const& b, M<double> const& a, i_o_t, Mr<double> r, Mr<double> p, Mr<double> k)
{
    return hand_out(partial_fractions(b, a), r, p, k);
}

M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k)
{
    return joined_fractions(r, p, k)[0];
}

M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k, i_o_t, Mr<double> b)
{
    return hand_out(joined_fractions(r, p, k), b);
}

M<double> residue(M<double> const& r, M<double> const& p, M<double> const& k, i_o_t, Mr<double> b, Mr<double> a)
{
    return hand_out(joined_fractions(r, p, k), b, a);
}

M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole)
{
    return resi2(b, a, pole, nop_M, nop_M);
}

M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole, M<double> const& n)
{
    return resi2(b, a, pole, n, nop_M);
}

M<double> resi2(M<double> const& b, M<double> const& a, M<double> const& pole, M<double> const& n, M<double> const& k)
{
    Arguments const args("resi2");
    if (!is_finite_list(args, b) || !is_finite_list(args, a) || !args.scalar(pole) || (given(n) && !args.scalar(n)) || (given(k) && !args.scalar(k)))
        return x_M;
    double const multiplicity = number_or(n, 1), term = number_or(k, multiplicity);
    if (!(multiplicity >= 1 && multiplicity == std::trunc(multiplicity) && multiplicity < a.size())) {
        args.report("multiplicity must be a positive integer");
        return x_M;
    }
    if (!(term >= 1 && term <= multiplicity && term == std::trunc(term))) {
        args.report("term must be between 1 and the multiplicity");
        return x_M;
    }
    int const count = static_cast<int>(multiplicity);
    Coefficients<Complex> above(b), below(a);
    Packed<Complex> const place(pole);
    Packed<Complex> made(1, 1);
    HeapArray<Complex> series(3 * static_cast<std::size_t>(count));
    if (!above || !below || !place || !made || !series)
        return x_M;
    // Without (s - pole)^n the denominator's series begins with its term n.
    expand(above, *place.data(), series.data(), count);
    expand(below, *place.data(), series.data() + count, 2 * count);
    divide_series(series.data(), series.data() + 2 * count, count);
    *made.data() = series[static_cast<std::size_t>(count - static_cast<int>(term))];
    return realified(made);
}

M<double> mpoles(M<double> const& p)
{
    return pole_multiplicities(p, nop_M, nop_M)[0];
}

M<double> mpoles(M<double> const& p, M<double> const& tol)
{
    return pole_multiplicities(p, tol, nop_M)[0];
}

M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder)
{
    return pole_multiplicities(p, tol, reorder)[0];
}

M<double> mpoles(M<double> const& p, i_o_t, Mr<double> m)
{
    return hand_out(pole_multiplicities(p, nop_M, nop_M), m);
}

M<double> mpoles(M<double> const& p, M<double> const& tol, i_o_t, Mr<double> m)
{
    return hand_out(pole_multiplicities(p, tol, nop_M), m);
}

M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder, i_o_t, Mr<double> m)
{
    return hand_out(pole_multiplicities(p, tol, reorder), m);
}

M<double> mpoles(M<double> const& p, i_o_t, Mr<double> m, Mr<double> idx)
{
    return hand_out(pole_multiplicities(p, nop_M, nop_M), m, idx);
}

M<double> mpoles(M<double> const& p, M<double> const& tol, i_o_t, Mr<double> m, Mr<double> idx)
{
    return hand_out(pole_multiplicities(p, tol, nop_M), m, idx);
}

M<double> mpoles(M<double> const& p, M<double> const& tol, M<double> const& reorder, i_o_t, Mr<double> m, Mr<double> idx)
{
    return hand_out(pole_multiplicities(p, tol, reorder), m, idx);
}
