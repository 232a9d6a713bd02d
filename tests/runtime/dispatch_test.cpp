// Calls into the program: functions by name, with the counts it is told, and graphics callbacks.
#include "arrlib.h"
#include "runtime/graphics_link.h"
#include "support/values.h"

using namespace values;

namespace {

// What the dispatcher was called with.
std::string& seen()
{
    static std::string text;
    return text;
}

// "all" sets every output, "returns" none and returns one, "throws" an error, others neither.
M<double> dispatch(M<double> const& name, M<M<double>> const& inputs, i_o_t, Mr<double> y1, Mr<double> y2, Mr<double> y3, Mr<double> y4, Mr<double> y5, Mr<double> y6)
{
    std::string const function = shown(name);
    seen() = function + " of " + shown(inputs) + ", " + std::to_string(static_cast<int>(nargin())) + " to " + std::to_string(static_cast<int>(nargout()));
    double k = 10;
    if (function == "'all'")
        for (Mr<double> output : {y1, y2, y3, y4, y5, y6})
            output = ++k;
    if (function == "'throws'")
        error("no such function");
    return function == "'returns'" ? 7.0 : x_M;
}

class Dispatch : public testing::Test {
protected:
    Dispatch() { feval_func = dispatch; }
    ~Dispatch() override
    {
        feval_func = nullptr;
        callback_func = nullptr;
    }
    M<double> all = text("all"), returns = text("returns"), nothing = text("nothing");
};

TEST_F(Dispatch, InputsAndOutputsAreHandedOn)
{
    M<double> a = 1.0, y1, y2, y3, y4, y5, y6, list = row({1, 2, 3});
    M<double> const two(2.0);
    nargin_val = 5;
    nargout_val = 4;
    expect_all({
        {shown(feval(all)), "1x1: 11"},
        {seen(), "'all' of 0x0 cell:, 0 to 1"},
        {shown(feval(all, a, text("b"))), "1x1: 11"},
        {seen(), "'all' of 1x2 cell: 1x1: 1 | 'b', 2 to 1"},
        {shown(feval(all, 1, 2, 3, 4, 5, 6, 7, nop_M)), "1x1: 11"},
        {seen(), "'all' of 1x8 cell: 1x1: 1 | 1x1: 2 | 1x1: 3 | 1x1: 4 | 1x1: 5 | 1x1: 6 | 1x1: 7 | 0x0:, 8 to 1"},
        {shown(feval(all, i_o, y1, y2, y3, y4, y5, y6)), "1x1: 11"},
        {seen(), "'all' of 0x0 cell:, 0 to 6"},
        {shown((BR(y1), y2, y3, y4, y5, y6)), "1x6: 11 12 13 14 15 16"},
        // The same variable on both sides, and a place inside one.
        {shown(feval(all, a, i_o, a, list(two))), "1x1: 11"},
        {seen(), "'all' of 1x1 cell: 1x1: 1, 1 to 2"},
        {shown(a), "1x1: 11"},
        {shown(list), "1x3: 1 12 3"},
        {shown(feval(returns, a)), "1x1: 7"},
        {shown(feval(returns, a, a, i_o, y1, y2, list(two))), "1x1: 7"},
        {shown(y1) + shown(y2) + shown(list), "1x1: 70x0:1x3: 1 12 3"},
        {shown(feval(returns, 1, 2, 3, 4, 5, 6, 7, 8, i_o, list(two))), "1x1: 7"},
        {shown(list), "1x3: 1 7 3"},
        {feval(nothing).issamename(x_Mp) ? "nothing" : "something", "nothing"},
    });
    EXPECT_EQ(capture::thrown_by([&] { feval(text("throws"), a); }), "Error: no such function\n\n");
    // The caller's own counts are as they were.
    EXPECT_EQ(nargin(), 5);
    EXPECT_EQ(nargout(), 4);
}

// Cell arrays take an output as their single cell, and become empty cell arrays where there is none.
TEST_F(Dispatch, OutputsGoIntoCells)
{
    M<double> y;
    M<M<double>> whole("whole", 2, 2), parts("parts", 1, 3);
    M<double> const first(1.0), third(3.0);
    feval(all, i_o, y, whole, parts(first), parts.br(3.0));
    expect_all({
        {seen(), "'all' of 0x0 cell:, 0 to 4"},
        {shown(whole), "1x1 cell: 1x1: 12"},
        {shown(parts), "1x3 cell: 1x1: 13 | 0x0: | 1x1: 14"},
    });
    feval(nothing, i_o, y, whole, parts(first), parts.br(3.0));
    expect_all({
        {shown(y), "0x0:"},
        {shown(whole), "0x0 cell:"},
        {shown(parts), "1x3 cell: 1x1: 13 | 0x0: | 0x0:"},
    });
    EXPECT_STREQ(whole.getname(), "whole");
}

TEST_F(Dispatch, ProgramWithoutDispatchers)
{
    feval_func = nullptr;
    M<double> y = 3.0;
    EXPECT_EQ(reported_by([&] { EXPECT_EQ(feval(all, 1.0, i_o, y).size(), 0); }), "feval was not linked with the program.");
    EXPECT_EQ(y.size(), 0);
}

arrlib::GraphicsServices const* services = nullptr;

TEST_F(Dispatch, CallbacksOfTheFrontEnd)
{
    constexpr arrlib::GraphicsLink link{[] {}, [] { return -1; }, [] { return false; }, [] {}, [](arrlib::GraphicsServices const& given) { services = &given; }};
    arrlib::install_graphics(&link);
    ASSERT_NE(services, nullptr);
    EXPECT_EQ(services->runtime_version, 4010);
    static double const letters[] = {'g', 'o'}, numbers[] = {1, 2, 3, 4, 5, 6, 7, 8};
    static int const text_dims[] = {1, 2}, number_dims[] = {2, 2, 2}, too_many[] = {1, 1, 1, 1, 2};
    arrlib::GraphicsValue const word{2, text_dims, true, letters}, pages{3, number_dims, false, numbers}, deep{5, too_many, false, numbers};
    EXPECT_EQ(reported_by([&] { services->run_callback(word); }), "callback was not linked with the program.");
    callback_func = [](M<double> const& callback) {
        seen() = shown(callback);
        return x_M;
    };
    services->run_callback(word);
    EXPECT_EQ(seen(), "'go'");
    services->run_callback(pages);
    EXPECT_EQ(seen(), "2x2x2: 1 2 3 4 5 6 7 8");
    EXPECT_EQ(reported_by([&] { services->run_callback(deep); }), "Out of memory!");
    EXPECT_EQ(reported_by([] { services->report_error("100% drawn"); }), "100% drawn");
    arrlib::install_graphics(nullptr);
}

} // namespace
