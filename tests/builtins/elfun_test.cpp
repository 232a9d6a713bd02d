// Elementary functions beside the engine, coordinates and fractions.
#include "builtins/elfun.h"

#include "builtins/coordinates.h"
#include "builtins/rational.h"
#include "core/reshape.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "ops/elementwise.h"
#include "ops/operators.h"
#include "ops/random.h"
#include "ops/reduction.h"
#include "runtime/constants.h"
#include "support/values.h"

namespace {

using namespace values;

constexpr double inf = std::numeric_limits<double>::infinity();

TEST(ElementaryFunctions, PartsOfComplexNumbers)
{
    M<double> const z = row({1, 2}, {3, 0}), S = sparse(row({0, 2, 3}, {1, 0, 4}));
    M<double> changed = real(z);
    changed.r(1) = 9;
    M<double> flagged = text("a");
    flagged.setlogical(1);
    expect_all({
        {shown(real(z)) + shown(changed) + shown(z), "1x2: 1 21x2: 9 21x2: 1+3i 2+0i"},
        {shown(real(S)), "sparse 1x3: (1,2)=2 (1,3)=3"},
        {shown(real(flagged)) + shown(real(M<double>())), "1x1: 970x0:"},
        {shown(complexM(row({1, 2}))), "1x2: 1+0i 2+0i"},
        {shown(complexM(1.0, column({0, 2}))), "2x1: 1+0i 1+2i"},
        {shown(complexM(sparse(row({1, 0})), NaN)), "1x2: 1+nani 0+nani"},
        {shown(complexM(M<double>(), row({1, 2}))), "0x0:"},
        {reported_by([&] { complexM(z); }) + "|" + reported_by([&] { complexM(1.0, z); }), "complex: argument must be real|complex: argument must be real"},
        {reported_by([&] { complexM(row({1, 2}), column({1, 2})); }), "complex: wrong dimensions of: (temporary), (temporary)"},
    });
}

TEST(ElementaryFunctions, ConjugatePairs)
{
    double const e = 1e-15;
    M<double> const z = row({3, 1, 0, 1, 0, -2, 1 + e, 1}, {0, 2, 1, -2, -1, 0, -5, 5});
    M<double> const page = matrix(2, 3, {1, 5, 1, 1, 4, 5}, {1, 2, -1, 0, 0, -2});
    expect_all({
        {shown(cplxpair(z), 6), "1x8: 0-1i 0+1i 1-2i 1+2i 1-5i 1+5i -2+0i 3+0i"},
        {shown(cplxpair(row({3, NaN[1], -1}))), "1x3: -1 3 NaN"},
        {shown(cplxpair(row({2, 2.1}, {1, -1.1}), 0.1)), "1x2: 2.1-1.1i 2.1+1.1i"},
        {shown(cplxpair(page, nop_M, 2.0)), "2x3: 1-1i 5-2i 1+1i 5+2i 4+0i 1+0i"},
        {shown(cplxpair(M<double>())), "0x0:"},
        {reported_by([&] { cplxpair(page); }), "cplxpair: values can not be paired"},
        {reported_by([] { cplxpair(row({1, 1, 1}, {1, 1, -1})); }), "cplxpair: values can not be paired"},
        {reported_by([&] { cplxpair(z, nop_M, 3.0); }), "cplxpair: dim argument may not be more then the number of dimensions"},
    });
    // Many pairs with few different real parts, in any order.
    M<double> many(1, 1, 400);
    for (int k = 0; k < 200; ++k) {
        int const at = k * 77 % 200;
        many.addr()[2 * at] = many.addr()[399 - 2 * at] = k % 3;
        many.addi()[2 * at] = 1 + k;
        many.addi()[399 - 2 * at] = -1 - k;
    }
    M<double> const paired = cplxpair(many);
    for (int k = 0; k < 400; k += 2) {
        ASSERT_EQ(paired.addi()[k], -paired.addi()[k + 1]);
        ASSERT_TRUE(paired.addi()[k] < 0 && paired.addr()[k] == paired.addr()[k + 1] && (k == 0 || paired.addr()[k - 1] <= paired.addr()[k]));
    }
}

TEST(ElementaryFunctions, Hypotenuses)
{
    expect_all({
        {shown(hypot(row({3, 1e300, 1e-300, -inf}), row({4, 1e300, 1e-300, 1}))), "1x4: 5 1.4142135623731e+300 1.4142135623731e-300 Inf"},
        {shown(hypot(M<double>(5.0), row({12, 0}, {0, 12}))), "1x2: 13 13"},
        {shown(hypot(sparse(row({0, 3})), 4.0)) + shown(hypot(M<double>(), 1.0)), "1x2: 4 50x0:"},
        {reported_by([] {
             M<double> z = row({1, 2}, {1, 2});
             z.setname("z");
             hypot(z, column({1, 2}));
         }),
         "hypot: wrong dimensions of: z, (temporary)"},
    });
}

TEST(ElementaryFunctions, ScalarProducts)
{
    M<double> const a = randM(3.0, 4.0), z = complexM(a, randM(3.0, 4.0));
    M<double> const three = row({1, 2, 3}), w = column({1, 0, 0}, {1, 2, 0});
    expect_all({
        {shown(dot(three, transpose(three))) + shown(dot(three, w)), "1x1: 141x1: 1+5i"},
        {shown(dot(w, three)), "1x1: 1-5i"},
        {shown(dot(z, a), 12), shown(sum(times(conj(z), a)), 12)},
        {shown(dot(a, z, 2.0), 12), shown(sum(times(a, z), 2.0), 12)},
        {shown(dot(three, three, 1.0)), "1x3: 1 4 9"},
        {shown(dot(sparse(three), sparse(three))) + shown(dot(2.0, 3.0)), "1x1: 141x1: 6"},
        {shown(dot(M<double>(), M<double>())) + shown(dot(M<double>(), three)), "1x1: 00x0:"},
        {reported_by([&] { dot(three, row({1, 2})); }), "dot: sizes of (temporary) and (temporary) do not agree"},
        {reported_by([&] { dot(three, w, 1.0); }), "dot: sizes of (temporary) and (temporary) do not agree"},
        {reported_by([&] { dot(three, three, 3.0); }), "dot: dim argument may not be more then the number of dimensions"},
    });
}

TEST(ElementaryFunctions, VectorProducts)
{
    M<double> const x = row({1, 0, 0}), y = row({0, 1, 0});
    M<double> const a = randM(3.0, 3.0), b = randM(3.0, 3.0);
    M<double> const c = complexM(a, b);
    expect_all({
        {shown(cross(x, y)) + shown(cross(x, transpose(y))) + shown(cross(transpose(x), y)), "1x3: 0 0 11x3: 0 0 13x1: 0 0 1"},
        // Both are orthogonal to their product, which does not conjugate.
        {std::to_string(sum(sum(abs(dot(conj(c), cross(c, b)))))[1] < 1e-14), "1"},
        {std::to_string(sum(sum(abs(dot(b, cross(c, b)))))[1] < 1e-14), "1"},
        {shown(cross(a, b, 2.0), 12), shown(transpose(cross(transpose(a), transpose(b))), 12)},
        {shown(cross(nd({2, 1, 3}, {1, 0, 0, 1, 0, 0}), nd({2, 1, 3}, {0, 0, 1, 0, 0, 1}))), "2x1x3: 0 1 0 0 1 0"},
        {shown(cross(M<double>(), x)), "0x0:"},
        {reported_by([&] { cross(row({1, 2}), row({1, 2})); }), "cross: vectors must have 3 elements"},
        {reported_by([&] { cross(x, y, 1.0); }), "cross: vectors must have 3 elements"},
        {reported_by([&] { cross(x, a); }), "cross: sizes of (temporary) and (temporary) do not agree"},
    });
}

TEST(Coordinates, GoThereAndBack)
{
    M<double> const x = randM(4.0) - 0.5, y = randM(4.0) - 0.5, z = randM(4.0) - 0.5;
    M<double> a, b, c, d, e, f;
    auto const distance = [](M<double> const& p, M<double> const& q) { return max(max(abs(p - q)))[1]; };
    cart2pol(x, y, z, i_o, a, b, c);
    pol2cart(a, b, c, i_o, d, e, f);
    EXPECT_LT(distance(x, d) + distance(y, e) + distance(z, f), 1e-14);
    cart2sph(x, y, z, i_o, a, b, c);
    sph2cart(a, b, c, i_o, d, e, f);
    EXPECT_LT(distance(x, d) + distance(y, e) + distance(z, f), 1e-14);
    cart2sph(row({0, 1}), 0.0, row({2, 1}), i_o, a, b, c);
    cart2pol(-3.0, sparse(column({4, 0})), i_o, d, e);
    pol2cart(0.0, text("a"), 5.0, i_o, f);
    expect_all({
        {shown(a) + shown(b, 6) + shown(c, 6), "1x2: 0 01x2: 1.5708 0.7853981x2: 2 1.41421"},
        {shown(d, 6) + shown(e), "2x1: 2.2143 3.141592x1: 5 3"},
        {shown(f) + shown(pol2cart(0.0, 2.0)) + shown(cart2pol(1.0, 0.0, i_o, a)) + shown(cart2pol(0.0, 1.0, 5.0), 3), "1x1: 971x1: 21x1: 01x1: 1.57"},
        {shown(cart2sph(1.0, 0.0, 0.0)) + shown(sph2cart(0.0, 0.0, 2.0)) + shown(cart2sph(M<double>(), x, 1.0)), "1x1: 01x1: 20x0:"},
        {reported_by([&] { a = b = 1.0, cart2pol(x, row({1, 2}), i_o, a, b); }), "cart2pol: wrong dimensions of: (temporary), (temporary)"},
        {reported_by([&] { sph2cart(1.0, x, row({1, 2})); }), "sph2cart: wrong dimensions of: (temporary), (temporary)"},
        {reported_by([&] { cart2sph(x, y, i); }) + reported_by([&] { pol2cart(i, y); }), "cart2sph: argument must be realpol2cart: argument must be real"},
    });
}

TEST(Fractions, AreFound)
{
    M<double> n, d;
    M<double> const x = rows_of({{3.14159265358979, -0.75}, {0, 1e10}});
    rat(x, 1e-6, i_o, n, d);
    expect_all({
        {shown(rat(pi)), "'3 + 1/(7 + 1/(16))'"},
        {shown(rat(row({0.75, -2, inf, NaN[1]}))), "'1 + 1/(-4)'/'-2        '/'1/0       '/'0/0       '"},
        {shown(n) + shown(d), "2x2: 355 0 -3 100000000002x2: 113 1 4 1"},
        {shown(rat(M<double>(1.0 / 3), 0.0)) + shown(rat(M<double>())), "'0 + 1/(3)'text 0x0:"},
        {reported_by([&] { n = d = 1.0, rat(i, i_o, n, d); }), "rat: argument must be real"},
        {shown(n) + shown(d), "0x0:0x0:"},
    });
    rat(row({inf, -inf, NaN[1], 5e-324}), i_o, n, d);
    EXPECT_EQ(shown(n) + shown(d), "1x4: 1 -1 0 01x4: 0 0 0 1");
    // As near as a double is, whatever the number.
    Numbers hard{std::nextafter(1.0, 2), 0.5 + 1e-9, std::sqrt(2.0), std::exp(1.0), 1e-17, 123456789.123, 4e15 + 0.5, -1.0 / 3e5};
    rat(row(hard), 0.0, i_o, n, d);
    for (std::size_t k = 0; k < hard.size(); ++k)
        EXPECT_NEAR(n.addr()[k] / d.addr()[k], hard[k], std::abs(hard[k]) * 4.5e-16) << k;
    rat(pi, i_o, n);
    EXPECT_EQ(shown(n), "'3 + 1/(7 + 1/(16))'");
}

TEST(Fractions, AreWritten)
{
    expect_all({
        {shown(rats(pi)), "'      355/113'"},
        {shown(rats(rows_of({{0.5, -1}, {inf, 2}}), 5.0)), "'  1/2   -1'/'  1/0    2'"},
        {shown(rats(M<double>(std::sqrt(2.0)), 6.0)) + shown(rats(pi, 3.0)), "' 17/12''  3'"},
        {shown(rats(row({123456, 100}), 4.0)) + shown(rats(row({1e-9, 1}), 3.0)), "'   * 100''  0  1'"},
        {shown(rats(M<double>())), "text 0x0:"},
        {reported_by([] { rats(nd({1, 1, 2}, {1, 2})); }), "rats: matrix must be two-dimensional"},
        {reported_by([] { rats(1.0, 0.0); }) + reported_by([] { rats(i); }), "rats: length must be a positive integerrats: argument must be real"},
    });
}

TEST(ElementaryFunctions, SurviveRefusedMemory)
{
    M<double> const three = row({1, 2, 3}), z = row({1, 1}, {1, -1});
    M<double> const S = sparse(z);
    capture::with_every_allocation_refused([&] { real(S); });
    capture::with_every_allocation_refused([&] { cplxpair(z); });
    capture::with_every_allocation_refused([&] { cross(three, three); });
    capture::with_every_allocation_refused([&] { rats(three); });
    capture::with_every_allocation_refused([&] {
        M<double> n, d;
        rat(three, i_o, n, d);
    });
}

} // namespace
