// Cell arrays of text, and the kinds of values.
#include "core/cell.h"

#include "core/bracket.h"
#include "core/sparse.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "support/capture.h"

namespace {

using capture::Reports;
using capture::Texts;

std::string text_of(M<double> const& value)
{
    char text[100];
    Mstr(value, text, 99);
    return (value.isstr() ? "'" : "") + std::string(text);
}

TEST(Cell, SplitsTextIntoRows)
{
    M<double> const rows = (BR(TM("ab  ")), semi, TM("cd e"));
    M<M<double>> const cells = cellstr(rows);
    ASSERT_EQ(cells.rows(), 2);
    EXPECT_EQ(cells.cols(), 1);
    EXPECT_EQ(text_of(cells.addr()[0]), "'ab");
    EXPECT_EQ(text_of(cells.addr()[1]), "'cd e");
    EXPECT_EQ(cellstr(cells).addr(), cells.addr());
    EXPECT_EQ(cellstr(TM("   ")).addr()[0].size(), 0);
    EXPECT_EQ(cellstr(TM("")).size(), 0);
    EXPECT_EQ(iscellstr(cells)[1], 1);
}

TEST(Cell, DropsTrailingBlanks)
{
    struct Case {
        char const *text, *expected;
    } const cases[] = {{"ab \t\n", "'ab"}, {" a b", "' a b"}, {"  ", "'"}, {"", "'"}};
    for (Case const& check : cases)
        EXPECT_EQ(text_of(deblank(TM(check.text))), check.expected);
    M<double> const block = deblank((BR(TM("a   ")), semi, TM("b c ")));
    EXPECT_EQ(block.cols(), 3);
    EXPECT_EQ(deblank(M<double>(32.0)).size(), 1);
    M<M<double>> const cells = (CL(TM("x  ")), 0.0);
    EXPECT_EQ(text_of(deblank(cells).addr()[0]), "'x");
    EXPECT_EQ(deblank(cells).addr()[1].size(), 1);
    EXPECT_EQ(cells.addr()[0].size(), 3);
}

TEST(Cell, KnowsTheKindOfAValue)
{
    struct Case {
        M<double> value;
        char const* name;
        bool is_double;
    } const cases[] = {
        {1.0, "'double", true},
        {TM("a"), "'char", false},
        {sparse(M<double>(1.0)), "'sparse", true},
        {iscell(M<double>()), "'double", true},
    };
    for (Case const& check : cases) {
        EXPECT_EQ(text_of(mclass(check.value)), check.name);
        EXPECT_EQ(isa(check.value, mclass(check.value))[1], 1);
        EXPECT_EQ(isa(check.value, TM("double"))[1], check.is_double) << check.name;
        EXPECT_EQ(isa(check.value, TM("cell"))[1] + iscell(check.value)[1] + iscellstr(check.value)[1], 0);
    }
    M<M<double>> const mixed = (CL(TM("a")), 1.0);
    EXPECT_EQ(text_of(mclass(mixed)), "'cell");
    EXPECT_EQ(isa(mixed, TM("cell"))[1] + iscell(mixed)[1], 2);
    EXPECT_EQ(isa(mixed, TM("double"))[1] + iscellstr(mixed)[1], 0);
    EXPECT_EQ(iscellstr(nop_MM)[1], 1);
    EXPECT_TRUE(iscellstr(nop_MM).islogical());
}

TEST(Cell, MakesEmptyCells)
{
    M<double> const sizes = (BR(2), 1, 3);
    EXPECT_EQ(cell(2).size(), 4);
    EXPECT_EQ(cell(2, 3).cols(), 3);
    EXPECT_EQ(cell(sizes).getdims()[2], 3);
    EXPECT_EQ(cell(-1).size() + cell(2).addr()[3].size(), 0);
    Reports const reports;
    EXPECT_EQ(cell((BR(1), 1, 1, 1, 1)).size(), 0);
    EXPECT_EQ(reports.all(), Texts{"cell: too many dimensions"});
}

TEST(Cell, CopiesOnWrite)
{
    M<M<double>> const first = (CL(TM("a")), TM("b"));
    M<M<double>> second = first;
    second.r(1) = 5.0;
    EXPECT_EQ(text_of(first.addr()[0]), "'a");
    EXPECT_EQ(second.addr()[1].addr(), first.addr()[1].addr());
}

} // namespace
