// Functions that built-ins call by name.
#include "builtins/function_argument.h"
#include "arrlib.h"
#include "support/values.h"

using namespace values;

namespace {

M<double> dispatch(M<double> const& name, M<M<double>> const& inputs, i_o_t, Mr<double> y1, Mr<double> y2, Mr<double>, Mr<double>, Mr<double>, Mr<double>)
{
    if (shown(name) == "'sums'") {
        y1 = *inputs.addr(1) + *inputs.addr(2);
        y2 = *inputs.addr(1) - *inputs.addr(2);
    } else if (shown(name) == "'returns'") {
        return static_cast<double>(inputs.size());
    } else {
        error("undefined");
    }
    return x_M;
}

TEST(FunctionArgument, CallsByName)
{
    feval_func = dispatch;
    arrlib::FunctionArgument const sums("fzero", text("sums")), returns("fzero", text("returns")), unknown("fzero", text("un_known2"));
    EXPECT_TRUE(sums && returns && unknown);
    M<double> out[2];
    sums.call({row({5, 7}), 2.0}, out, 2);
    expect_all({
        {shown(sums.call({5.0, 3.0})), "1x1: 8"},
        {shown(out[0]), "1x2: 7 9"},
        {shown(out[1]), "1x2: 3 5"},
        {shown(returns.call({1.0, 2.0, 3.0})), "1x1: 3"},
        {shown(returns.call({})), "1x1: 0"},
        {reported_by([&] { out[0] = unknown.call({1.0}); }), "undefined"},
        {shown(out[0]), "0x0:"},
    });
    feval_func = nullptr;
    EXPECT_EQ(reported_by([&] { sums.call({1.0, 2.0}); }), "feval was not linked with the program.");
}

TEST(FunctionArgument, NeedsAName)
{
    for (M<double> const& name : {text(""), M<double>(3.0), text("2x"), text("a b"), text("_a"), text("x+1"), lines({"ab", "cd"}), x_M})
        EXPECT_EQ(reported_by([&] { EXPECT_FALSE(arrlib::FunctionArgument("fzero", name)); }), "fzero: function must be given by name") << shown(name);
}

} // namespace
