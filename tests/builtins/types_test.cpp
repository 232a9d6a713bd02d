// What kinds of values there are, and the names that are not available.
#include "builtins/types.h"

#include "builtins/stubs.h"
#include "core/bracket.h"
#include "core/sparse.h"
#include "ops/creator.h"
#include "ops/operators.h"
#include "runtime/constants.h"
#include "runtime/scope.h"
#include "support/values.h"

namespace {

using namespace values;

TEST(Types, Converts)
{
    M<double> const masked = sparse(rows_of({{0, 7}}));
    expect_all({
        {shown(doubleM(text("ab"))), "1x2: 97 98"},
        {shown(doubleM(logical(row({2, 0})))), "1x2: 2 0"},
        {shown(doubleM(masked)), "sparse 1x2: (1,2)=7"},
        {shown(logical(masked)), "sparse logical 1x2: (1,2)=7"},
        {shown(logical(text("a"))), "logical 1x1: 97"},
        {shown(logical(M<double>())), "logical 0x0:"},
        {reported_by([] { EXPECT_EQ(doubleM(nop_MM).size(), 0); }), "double: cell matrix is not accepted"},
        {reported_by([] { EXPECT_EQ(logical(row({1, NaN[1]})).size(), 0); }), "logical: NaN can not be converted"},
        {reported_by([] { logical(i); }), "logical: argument must be real"},
    });
}

TEST(Types, TellsThemApart)
{
    struct Case {
        char const* what;
        M<double> value;
        char const* answers;
    } const cases[] = {
        // real complex numeric char str logical sparse struct object scalar vector matrix square
        {"scalar", 3.0, "1010000001111"},
        {"complex row", row({1, 2}, {0, 0}), "0110000000110"},
        {"text", text("ab"), "1001100000110"},
        {"logical", logical(zeros(2.0)), "1010010000011"},
        {"sparse", sparse(column({1, 0})), "1010001000110"},
        {"empty", M<double>(), "1010000000011"},
        {"pages", nd({1, 1, 2}, {1, 2}), "1010000000010"},
    };
    auto const answers = [](auto const& x) {
        std::string all;
        for (M<double> const& answer : {isreal(x), iscomplex(x), isnumeric(x), ischar(x), isstr(x), islogical(x), issparse(x), isstruct(x), isobject(x), isscalar(x), isvector(x), ismatrix(x), issquare(x)}) {
            EXPECT_TRUE(answer.islogical());
            all += answer[1] == 1 ? '1' : '0';
        }
        return all;
    };
    for (Case const& check : cases)
        EXPECT_EQ(answers(check.value), check.answers) << check.what;
    EXPECT_EQ(answers(cells(1, 1, {text("a")})), "0000000001101");
    EXPECT_EQ(answers(cells(2, 3, {})), "0000000000000");
    EXPECT_EQ((isfield(1.0, text("a")) + isfield(nop_MM, nop_MM) + isfield(1.0, nop_MM) + isfield(nop_MM, text("a")))[1], 0);
}

TEST(Types, KnowsGlobals)
{
    int const watched = std::exchange(arrlib::variables_watched, 1);
    {
        M<double> global("types_test_global", 0, 0);
        M<M<double>> cells("types_test_cells", 0, 0);
        EXPECT_EQ(isglobal(global)[1], 1);
        EXPECT_EQ(isglobal(cells)[1], 1);
        M<double> const copy = global;
        EXPECT_EQ(isglobal(copy)[1], 0);
    }
    arrlib::variables_watched = watched;
    variables_scope.reset();
    EXPECT_EQ(isglobal(M<double>(1.0))[1], 0);
}

TEST(Types, KnowsTheSystem)
{
    EXPECT_EQ(ispc()[1] + isunix()[1], 1);
    EXPECT_EQ((isieee()[1] - isvms()[1] - isstudent()[1]), 1);
}

TEST(Types, KnowsNamesOfVariables)
{
    std::string const longest(31, 'x');
    for (std::string const& name : {std::string("a"), std::string("Z9_"), std::string("ends"), longest})
        EXPECT_EQ(isvarname(text(name))[1], 1) << name;
    for (std::string const& name : {std::string(), std::string("_a"), std::string("9a"), std::string("a b"), std::string("end"), std::string("persistent"), longest + "x"})
        EXPECT_EQ(isvarname(text(name))[1], 0) << name;
    EXPECT_EQ((isvarname(lines({"ab", "cd"})) + isvarname(97.0) + isvarname(cells(1, 1, {text("a")})))[1], 0);
}

// With inputs and outputs of every kind, the outputs being lost.
TEST(Stubs, Report)
{
    using arrlib::Any;
    using Stub = M<double>(Any, Any, Any, Any, Any, Any);
    Stub* const stubs[] = {assignin, doc,      find_system, get_param,  getfield, getline, getpts, getrect,          helpfun,   helpwin,   hthelp, htpp,
                           light,    lightangle, lighting,    loadhtml,   material, setfield, simset, system_dependent, uirestore, uisuspend, web};
    for (Stub* const stub : stubs) {
        M<double> a(1.0), b = row({1, 2, 3});
        M<M<double>> c = cells(1, 2, {1.0, 2.0}), d = c;
        M<double> const second(2.0);
        EXPECT_EQ(reported_by([&] { EXPECT_EQ(stub(2.0, c, i_o, a, b(second), d).size(), 0); }), "Stub called.");
        EXPECT_EQ(reported_by([&] { stub(i_o, c.br(second), {}, {}, {}, {}); }), "Stub called.");
        expect_all({{shown(a), "0x0:"}, {shown(b), "1x2: 1 3"}, {shown(c), "1x2 cell: 1x1: 1 | 0x0:"}, {shown(d), "0x0 cell:"}});
    }
    M<double> x(1.0);
    expect_all({
        {reported_by([] { doc(); }), "Stub called."},
        {reported_by([] { getline(text("prompt")); }), "Stub called."},
        {reported_by([&] { structM(text("a"), x); }), "struct: structures are not supported"},
        {reported_by([&] { fieldnames(x); }), "fieldnames: structures are not supported"},
        {reported_by([&] { rmfield(x, text("a")); }), "rmfield: structures are not supported"},
        {reported_by([&] { cell2struct(nop_MM, nop_MM, 1.0); }), "cell2struct: structures are not supported"},
        {reported_by([&] { struct2cell(2.0, i_o, x); }), "struct2cell: structures are not supported"},
        {shown(x), "0x0:"},
    });
}

} // namespace
