// Partial fractions there and back.
#include "builtins/residue.h"

#include "builtins/poly.h"
#include "support/matrices.h"

using namespace matrices;
using namespace values;

namespace {

using Number = std::complex<double>;

Number at(M<double> const& x, int k)
{
    return {x.addr()[k], x.isc() ? x.addi()[k] : 0};
}

Number value_of(M<double> const& p, Number s)
{
    Number sum = 0;
    for (int k = 0; k < p.size(); ++k)
        sum = sum * s + at(p, k);
    return sum;
}

// The fractions as they stand, at a place where no pole is.
Number sum_of(M<double> const& r, M<double> const& p, M<double> const& k, Number s)
{
    Number sum = value_of(k, s);
    int power = 0;
    for (int j = 0; j < r.size(); ++j) {
        power = j > 0 && at(p, j) == at(p, j - 1) ? power + 1 : 1;
        sum += at(r, j) / std::pow(s - at(p, j), power);
    }
    return sum;
}

TEST(Residue, FractionsAddUpToTheQuotient)
{
    struct {
        M<double> b, roots;
        double tolerance;
    } const cases[] = {{row({1, 2}), row({-1, -2, -3}), 1e-12},
                       {row({1, 0, 0, 1, 5}), row({1, -2}), 1e-12},
                       {row({3, 1}), row({2, 2, 5}), 1e-6},
                       {row({1, 1, 1}), row({1, 1, 1, 1}, {2, -2, 2, -2}), 1e-6},
                       {row({1, 2, 3}, {0, 1, 0}), row({1, -4, 0}, {1, 0, 0}), 1e-12},
                       {row({4}), row({-1, -1, -1}), 1e-3},
                       {row({1, 2, 1}), row({0, 0, 3}), 1e-6},
                       {random(1, 8), random(1, 7, false, 4) * 4.0, 1e-9}};
    for (auto const& [b, roots, tolerance] : cases) {
        M<double> const a = poly(roots) * 2.0;
        M<double> r, p, k, b_back, a_back;
        residue(b, a, i_o, r, p, k);
        ASSERT_EQ(r.size(), roots.size());
        for (Number s : {Number(7.5), Number(0.3, 1.7), Number(-2.5, -9)})
            EXPECT_NEAR(std::abs(sum_of(r, p, k, s) / (value_of(b, s) / value_of(a, s)) - 1.0), 0, tolerance) << shown(r);
        residue(r, p, k, i_o, b_back, a_back);
        EXPECT_EQ(b_back.isc(), b.isc() || a.isc());
        for (Number s : {Number(7.5), Number(0.3, 1.7)})
            EXPECT_NEAR(std::abs(value_of(b_back, s) / value_of(a_back, s) / (value_of(b, s) / value_of(a, s)) - 1.0), 0, tolerance);
    }
}

TEST(Residue, KnownResultsAndReports)
{
    M<double> r, p, k;
    expect_all({{shown(residue(row({1}), row({1, 3, 2}), i_o, r, p, k)), "2x1: -1 1"},
                {shown(p), "2x1: -2 -1"},
                {shown(k), "0x0:"},
                {shown(residue(row({1, 0, 0, 0}), row({1, 3, 2}), i_o, r, p, k)), "2x1: 8 -1"},
                {shown(k), "1x2: 1 -3"},
                {shown(residue(row({0, 0, 4}), row({2}), i_o, r, p, k)), "0x0:"},
                {shown(k), "1x1: 2"},
                // Conjugate residues at conjugate poles, bit for bit.
                {shown(residue(row({1, 0}), row({1, 0, 1}), i_o, r, p, k)), "2x1: 0.5 0.5"},
                {shown(residue(column({-1, 1}), column({-2, -1}), M<double>(), i_o, r, p)), "1x2: 0 1"},
                {shown(p), "1x3: 1 3 2"},
                {shown(residue(column({1, 2}), column({3, 3}), row({1}), i_o, r, p)), "1x3: 1 -5 8"},
                {shown(residue(M<double>(), M<double>(), row({1, 2}), i_o, r, p)), "1x2: 1 2"},
                {shown(p), "1x1: 1"},
                {reported_by([] { residue(row({1}), row({0, 1})); }), "residue: leading denominator coefficient must be non-zero"},
                {reported_by([] { residue(row({1}), M<double>()); }), "residue: leading denominator coefficient must be non-zero"},
                {reported_by([] { residue(identity(2), row({1})); }), "residue: argument must be a vector"},
                {reported_by([] { residue(row({NAN}), row({1, 1})); }), "residue: coefficients must be finite"},
                {reported_by([] { residue(row({1, 2}), row({1, 2, 3}), M<double>()); }), "residue: sizes of (temporary) and (temporary) do not agree"}});
}

TEST(Resi2, OneResidueAtATime)
{
    // (s + 3) / ((s - 1)^2 (s - 4)) has -4/3 / (s-1)^2 - 7/9 / (s-1) + 7/9 / (s-4).
    M<double> const b = row({1, 3}), a = poly(row({1, 1, 4}));
    expect_all({{shown(resi2(b, a, 4.0), 12), "1x1: 0.777777777778"},
                {shown(resi2(b, a, 1.0, 2.0), 12), "1x1: -1.33333333333"},
                {shown(resi2(b, a, 1.0, 2.0, 1.0), 12), "1x1: -0.777777777778"},
                {reported_by([&] { resi2(b, a, 1.0, 0.0); }), "resi2: multiplicity must be a positive integer"},
                {reported_by([&] { resi2(b, a, 1.0, 4.0); }), "resi2: multiplicity must be a positive integer"},
                {reported_by([&] { resi2(b, a, 1.0, 2.0, 3.0); }), "resi2: term must be between 1 and the multiplicity"},
                {reported_by([&] { resi2(b, a, row({1, 2})); }), "resi2: argument must be scalar"}});
}

TEST(Mpoles, CountsWithinGroups)
{
    M<double> m, idx;
    expect_all({{shown(mpoles(row({2, 3, 1, 1, 2}), i_o, m, idx)), "5x1: 1 1 2 1 2"},
                {shown(idx), "5x1: 2 1 5 3 4"},
                {shown(mpoles(row({1, 2, 1}), nop_M, zero_M, i_o, m, idx)), "3x1: 1 2 1"},
                {shown(idx), "3x1: 1 3 2"},
                {shown(mpoles(row({1, 1.0009}), i_o, m, idx)), "2x1: 1 2"},
                {shown(mpoles(row({1, 1.002}))), "2x1: 1 1"},
                {shown(mpoles(row({1, 1.002}), row({0.01}))), "2x1: 1 2"},
                {shown(mpoles(row({0, 5e-4, 0}))), "3x1: 1 1 2"},
                {shown(mpoles(row({1, 1}, {1, -1}))), "2x1: 1 1"},
                {shown(mpoles(row({NAN, NAN, 1}))), "3x1: 1 1 1"},
                {shown(mpoles(M<double>())), "0x0:"},
                {reported_by([] { mpoles(identity(2)); }), "mpoles: argument must be a vector"}});
}

TEST(Residue, EveryAllocationRefused)
{
    M<double> const b = row({1, 2, 3, 4}), a = row({1, 3, 2});
    capture::with_every_allocation_refused([&] {
        M<double> r, p, k;
        residue(b, a, i_o, r, p, k);
    });
    capture::with_every_allocation_refused([&] { residue(a, a, b); });
}

} // namespace
