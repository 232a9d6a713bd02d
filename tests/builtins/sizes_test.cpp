#include "builtins/sizes.h"

#include "core/sparse.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "support/values.h"

namespace {

using namespace values;

TEST(Sizes, OfEveryKindOfValue)
{
    M<double> const cube = nd({2, 3, 4}, Numbers(24, 1)), none, thin = sparse(row({0, 5, 0}));
    M<M<double>> const four = cells(1, 3, {row({1}), text("ab"), M<double>()});
    expect_all({
        {shown(size(cube)), "1x3: 2 3 4"},
        {shown(size(none)), "1x2: 0 0"},
        {shown(size(text("abc"))), "1x2: 1 3"},
        {shown(size(four)), "1x2: 1 3"},
        {shown(size(thin)), "1x2: 1 3"},
        {shown(size(cube, 3)) + shown(size(cube, 4)) + shown(size(cube, 9)), "1x1: 41x1: 11x1: 1"},
        {shown(size(none, 1)) + shown(size(none, 3)), "1x1: 01x1: 0"},
        {shown(size(four, 2)), "1x1: 3"},
        {all_shown(length(cube), length(none), length(four)), "1x1: 4, 1x1: 0, 1x1: 3"},
        {all_shown(ndims(cube), ndims(none), ndims(four)), "1x1: 3, 1x1: 2, 1x1: 2"},
        {all_shown(numel(cube), numel(thin), numel(four)), "1x1: 24, 1x1: 3, 1x1: 3"},
        {all_shown(rows(cube), columns(cube)), "1x1: 2, 1x1: 3"},
        {all_shown(rows(four), columns(four)), "1x1: 1, 1x1: 3"},
        {all_shown(isempty(none), isempty(cube)), "logical 1x1: 1, logical 1x1: 0"},
        {all_shown(isempty(four), isempty(M<M<double>>())), "logical 1x1: 0, logical 1x1: 1"},
    });
    for (double const k : {0.0, -1.0, 1.5, NaN.r()})
        EXPECT_EQ(reported_by([&] { EXPECT_EQ(size(cube, k).size(), 0); }), "size: dimension must be a positive integer");
}

TEST(Sizes, GivesTheLastOutputAllThatIsLeft)
{
    M<double> m, n, p, q, r, s;
    M<double> cube = nd({2, 3, 4, 5}, Numbers(120, 1));
    auto const outputs = [&](int count) {
        std::string all;
        for (M<double> const* x : {&m, &n, &p, &q, &r, &s})
            if (count-- > 0)
                all += std::to_string(static_cast<int>((*x)[1])) + " ";
        return all;
    };
    EXPECT_EQ(all_shown(size(cube, i_o, m), m), "1x4: 2 3 4 5, 1x4: 2 3 4 5");
    size(cube, 2, i_o, m);
    EXPECT_EQ(outputs(1), "3 ");
    EXPECT_EQ(size(cube, i_o, m, n)[1], 2);
    EXPECT_EQ(outputs(2), "2 60 ");
    size(cube, i_o, m, n, p);
    EXPECT_EQ(outputs(3), "2 3 20 ");
    size(cube, i_o, m, n, p, q, r, s);
    EXPECT_EQ(outputs(6), "2 3 4 5 1 1 ");
    size(M<double>(), i_o, m, n, p, q, r);
    EXPECT_EQ(outputs(5), "0 0 0 0 0 ");
    M<M<double>> pair = cells(1, 2, {row({1}), row({2})});
    size(pair, i_o, m, n, p, q);
    EXPECT_EQ(outputs(4), "1 2 1 1 ");
    // An output that is the operand.
    size(cube, i_o, cube, n);
    EXPECT_EQ(cube[1] * 100 + n[1], 260);
}

TEST(Sizes, IsequalComparesValuesNotForms)
{
    M<double> const full = matrix(2, 2, {0, 3, 0, 4}), thin = sparse(full), other = sparse(matrix(2, 2, {0, 3, 4, 0}));
    M<double> const complex = matrix(2, 2, {0, 3, 0, 4}, {0, 0, 0, 0}), turned = matrix(2, 2, {0, 3, 0, 4}, {0, 0, 1, 0}), nothing;
    M<double> with_zero = sparse(matrix(2, 2, {1, 3, 0, 4}));
    with_zero.addr()[0] = 0;
    M<double> const missing = row({1, NaN.r()});
    struct Case {
        M<double> a, b;
        bool equal;
    } const cases[] = {
        {full, full, true},     {full, thin, true},           {thin, other, false},    {full, other, false},         {full, complex, true},  {thin, turned, false},
        {turned, turned, true}, {complex, thin, true},        {with_zero, thin, true}, {with_zero, full, true},      {missing, missing, false}, {sparse(missing), missing, false},
        {nothing, M<double>(), true}, {text("AB"), row({65, 66}), true}, {row({1, 2}), column({1, 2}), false}, {nd({1, 2, 2}, {1, 2, 3, 4}), matrix(2, 2, {1, 2, 3, 4}), false},
        {sparse(turned), turned, true}, {sparse(turned), thin, false},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_EQ(shown(isequal(c.a, c.b)), c.equal ? "logical 1x1: 1" : "logical 1x1: 0");
        EXPECT_EQ(isequal(c.b, c.a)[1], c.equal);
        EXPECT_EQ(isequal(c.a, c.b, c.a)[1], c.equal);
        EXPECT_EQ(isequal(c.b, c.b, c.b, c.a)[1], c.equal);
    }
    M<M<double>> const one = cells(1, 2, {full, text("ab")}), same = cells(1, 2, {thin, row({97, 98})}), different = cells(1, 2, {other, text("ab")}), wrapped = cells(1, 1, {full});
    EXPECT_EQ(isequal(one, same)[1] + isequal(one, one, same)[1], 2);
    EXPECT_EQ(isequal(one, different)[1] + isequal(one, one, different)[1] + isequal(one, wrapped)[1], 0);
    // A cell array never equals the matrix that it holds.
    EXPECT_EQ(isequal(wrapped, full)[1] + isequal(full, wrapped)[1] + isequal(wrapped, wrapped, full)[1] + isequal(full, full, wrapped)[1] + isequal(full, wrapped, full)[1], 0);
    EXPECT_EQ(isequal(wrapped, full, full)[1] + isequal(full, wrapped, wrapped)[1] + isequal(wrapped, full, wrapped)[1], 0);
}

} // namespace
