// Cells out of matrices and back, questions to cells, and dealing.
#include "builtins/cells.h"

#include "builtins/deal.h"
#include "core/cell.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "runtime/constants.h"
#include "support/values.h"

#include <numeric>

namespace {

using namespace values;

TEST(Cells, AreMadeEmpty)
{
    expect_all({
        {shown(cell(2.0)), "2x2 cell: 0x0: | 0x0: | 0x0: | 0x0:"},
        {shown(cell(row({1, 2}))), "1x2 cell: 0x0: | 0x0:"},
        {shown(cell(1.0, nop_M, 2.0)) + shown(cell(1.0, 1.0, 2.0)), "1x2 cell: 0x0: | 0x0:1x1x2 cell: 0x0: | 0x0:"},
        {shown(cell(1.0, 1.0, 1.0, 2.0)), "1x1x1x2 cell: 0x0: | 0x0:"},
        {shown(cell(M<double>())) + shown(cell(-1.0, 2.0)) + shown(cell(NaN)), "0x0 cell:0x0 cell:0x0 cell:"},
        {reported_by([] { cell(1.0, row({1, 2})); }), "cell: expecting scalar argument"},
        {reported_by([] { cell(ones(1.0, 5.0)); }), "cell: too many dimensions"},
    });
}

TEST(Cells, HoldElements)
{
    M<double> pages = nd({2, 3, 2}, Numbers(12));
    std::iota(pages.addr(), pages.addr() + 12, 1);
    M<double> mask = row({1, 0});
    mask.setlogical(1);
    expect_all({
        {shown(num2cell(rows_of({{1, 2}, {3, 4}}))), "2x2 cell: 1x1: 1 | 1x1: 3 | 1x1: 2 | 1x1: 4"},
        {shown(num2cell(text("ab"))) + shown(num2cell(mask)), "1x2 cell: 'a' | 'b'1x2 cell: logical 1x1: 1 | logical 1x1: 0"},
        {shown(num2cell(row({1, 2}, {0, 3}))), "1x2 cell: 1x1: 1+0i | 1x1: 2+3i"},
        {shown(num2cell(sparse(row({0, 2})))), "1x2 cell: 1x1: 0 | 1x1: 2"},
        {shown(num2cell(pages, row({1, 3}))), "1x3 cell: 2x1x2: 1 2 7 8 | 2x1x2: 3 4 9 10 | 2x1x2: 5 6 11 12"},
        {shown(num2cell(pages, row({2, 3}))), "2x1 cell: 1x3x2: 1 3 5 7 9 11 | 1x3x2: 2 4 6 8 10 12"},
        {shown(num2cell(row({1, 2}), row({1, 2}))) + shown(num2cell(M<double>())), "1x1 cell: 1x2: 1 20x0 cell:"},
        {reported_by([&] { num2cell(mask, 3.0); }), "num2cell: dim argument may not be more then the number of dimensions"},
        {reported_by([&] { num2cell(mask, -1.0); }), "num2cell: dim argument must be positive"},
    });
}

TEST(Cells, AnswerQuestions)
{
    M<double> mask(1.0);
    mask.setlogical(1);
    M<M<double>> const C = cells(2, 3, {text("abc"), nd({1, 2, 2}, {1, 2, 3, 4}), M<double>(), mask, i, sparse(column({1, 0}))});
    expect_all({
        {shown(cellfun(text("isempty"), C)), "logical 2x3: 0 0 1 0 0 0"},
        {shown(cellfun(text("islogical"), C)), "logical 2x3: 0 0 0 1 0 0"},
        {shown(cellfun(text("isreal"), C)), "logical 2x3: 1 1 1 1 0 1"},
        {shown(cellfun(text("length"), C)), "2x3: 3 2 0 1 1 2"},
        {shown(cellfun(text("ndims"), C)), "2x3: 2 3 2 2 2 2"},
        {shown(cellfun(text("prodofsize"), C)), "2x3: 3 4 0 1 1 2"},
        {shown(cellfun(text("size"), C, 2.0)), "2x3: 3 2 0 1 1 1"},
        {shown(cellfun(text("size"), C, 4.0)), "2x3: 1 1 0 1 1 1"},
        {shown(cellfun(text("isclass"), C, text("double"))), "logical 2x3: 0 1 1 1 1 1"},
        {shown(cellfun(text("isclass"), C, text("char"))), "logical 2x3: 1 0 0 0 0 0"},
        {shown(cellfun(text("length"), nop_MM)), "0x0:"},
        {reported_by([&] { cellfun(text("sin"), C); }), "cellfun: unknown function sin"},
        {reported_by([&] { cellfun(1.0, C); }), "cellfun: argument must be a string"},
        {reported_by([&] { cellfun(text("size"), C); }), "cellfun does not accept 2 inputs"},
        {reported_by([&] { cellfun(text("length"), C, 1.0); }), "cellfun does not accept 3 inputs"},
        {reported_by([&] { cellfun(text("size"), C, 0.5); }), "cellfun: dimension must be a positive integer"},
    });
}

TEST(Cells, AreCutAndJoined)
{
    M<double> A(0, 5, 7);
    std::iota(A.addr(), A.addr() + A.size(), 1);
    M<M<double>> const pieces = mat2cell(A, row({2, 0, 3}), column({1, 4, 2}));
    M<M<double>> const no_cells = cells(0, 0, {});
    expect_all({
        {shown(pieces.addr()[3]) + shown(pieces.addr()[4]), "2x4: 6 7 11 12 16 17 21 220x0:"},
        {shown(cell2mat(pieces)), shown(A)},
        {shown(mat2cell(text("abcd"), 1.0, row({1, 3}))) + shown(mat2cell(column({1, 2}), row({1, 1}))), "1x2 cell: 'a' | 'bcd'2x1 cell: 1x1: 1 | 1x1: 2"},
        {shown(mat2cell(sparse(row({0, 1}, {2, 0})), 1.0, row({1, 1}))), "1x2 cell: 1x1: 0+2i | 1x1: 1+0i"},
        {shown(cell2mat(cells(2, 2, {row({1, 2}), 4.0, 3.0, row({5, 6})}))), "2x3: 1 4 2 5 3 6"},
        {shown(cell2mat(cells(1, 2, {text("a"), 98.0}))) + shown(cell2mat(no_cells)), "'ab'0x0:"},
        {reported_by([] { cell2mat(cells(1, 3, {1.0, column({1, 2}), row({1, 2})})); }), "horzcat: # of rows different"},
        {reported_by([] { EXPECT_EQ(cell2mat(cells(4, 1, {1.0, row({1, 2}), 1.0, row({1, 2})})).size(), 0); }), "vertcat: # of cols different"},
        {reported_by([] { cell2mat(cell(1.0, 1.0, 2.0)); }), "cell2mat: matrix must be two-dimensional"},
        {reported_by([&] { mat2cell(A, row({2, 2}), 7.0); }), "mat2cell: sizes of (temporary) and (temporary) do not agree"},
        {reported_by([&] { mat2cell(A, 5.0, row({9, -2})); }), "mat2cell: sizes must not be negative"},
        {reported_by([&] { mat2cell(A, row({2.5, 2.5}), 7.0); }), "mat2cell: argument must be an integer"},
        {reported_by([&] { mat2cell(nd({1, 1, 2}, {1, 2}), 1.0, 1.0); }), "mat2cell: matrix must be two-dimensional"},
    });
}

TEST(Deal, HandsOut)
{
    M<double> a, b, x = row({1, 2, 3});
    M<M<double>> c, d = cells(1, 2, {1.0, 2.0});
    M<double> const second(2.0);
    deal(7.0, i_o, a, b);
    EXPECT_EQ(shown(a) + shown(b), "1x1: 71x1: 7");
    deal(text("p"), d, 9.0, i_o, b, c, x(second));
    EXPECT_EQ(shown(b) + shown(c) + shown(x), "'p'1x2 cell: 1x1: 1 | 1x1: 21x3: 1 9 3");
    // An exchange, and parts as inputs.
    deal(a, x(second), d.br(second), i_o, x(second), a, d.br(second));
    EXPECT_EQ(shown(a) + shown(x) + shown(d), "1x1: 91x3: 1 7 31x2 cell: 1x1: 1 | 1x1: 2");
    EXPECT_EQ(shown(deal(d, i_o, c)) + shown(deal(x)) + shown(deal(c)), "1x2 cell: 1x1: 1 | 1x1: 21x3: 1 7 31x2 cell: 1x1: 1 | 1x1: 2");
    deal(4.0, i_o, c, d(second), d.br(1.0));
    EXPECT_EQ(shown(c) + shown(d), "1x1 cell: 1x1: 41x2 cell: 1x1: 4 | 1x1: 4");
    deal(4.0, i_o);
    x.setname("x");
    EXPECT_EQ(deal(x, 1.0, i_o, a, b).getname(), nullptr);
}

TEST(Deal, CountsItsOutputs)
{
    char const* const counts = "deal: number of outputs must match the number of inputs";
    M<double> a(1.0), b(1.0);
    M<M<double>> c = cells(1, 1, {1.0});
    expect_all({
        {reported_by([&] { EXPECT_EQ(deal(1.0, 2.0, i_o, a, b, c).size(), 0); }), counts},
        {shown(a) + shown(b) + shown(c), "0x0:0x0:0x0 cell:"},
        {reported_by([&] { deal(1.0, 2.0); }) + "|" + reported_by([&] { deal(c, 2.0, i_o, a); }), std::string(counts) + "|" + counts},
        {reported_by([&] { EXPECT_EQ(deal(c, 2.0, i_o, a, b).size(), 0); }), "deal: cell matrix is not accepted"},
        {shown(a) + shown(b), "0x0:0x0:"},
    });
}

TEST(Cells, SurviveRefusedMemory)
{
    M<double> const A = rows_of({{1, 2, 3}, {4, 5, 6}});
    M<double> const length = text("length");
    M<M<double>> const parts = num2cell(A);
    capture::with_every_allocation_refused([&] { cell2mat(parts); });
    capture::with_every_allocation_refused([&] { cellfun(length, parts); });
}

} // namespace
