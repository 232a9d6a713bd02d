// The variables that a debugger lists, and the globals that outlive their objects.
#include "arrlib.h"
#include "support/capture.h"

#include <deque>
#include <memory>
#include <optional>

using namespace capture;

namespace {

// The names at the current level, in order.
std::string listed()
{
    std::string names;
    for (int k = 0; k < ive_count_vars(); ++k)
        names.append(k ? " " : "").append(ive_var_name(k));
    return names;
}

// Every test finds the scope empty, nobody watching, and leaves it so.
class Scope : public testing::Test {
protected:
    Scope() : outstanding_(arrlib::pool.outstanding()) { EXPECT_EQ(listed(), ""); }
    ~Scope() override
    {
        arrlib::variables_watched = 0;
        variables_scope.reset();
        EXPECT_EQ(listed(), "");
        EXPECT_EQ(arrlib::pool.outstanding(), outstanding_);
    }
    static void watch() { ive_set_mode(); }
    // Ends a global that was kept.
    static void drop(char const* name)
    {
        MObject* const kept = variables_scope.take_saved(name);
        ASSERT_NE(kept, nullptr) << name;
        variables_scope.discard(kept);
    }

    // Ends of watched scalars are told to the debugger.
    Debugged debugged;

private:
    std::int64_t outstanding_;
};

TEST_F(Scope, AddsOnceAndDeletesInOrder)
{
    M<double> a, b, c, unnamed, other_a;
    a.setname("a");
    b.setname("b");
    c.setname("c");
    std::string const same = "a";
    other_a.setname(same.c_str());
    for (MObject* variable : {&a, &b, &a, &c, &unnamed, &other_a})
        variables_scope.Add(variable);
    EXPECT_EQ(listed(), "a b c");
    EXPECT_EQ(variables_scope.find("B"), -1);
    EXPECT_EQ(variables_scope.find("c"), 2);
    EXPECT_STREQ(ive_var_name(3), "");
    EXPECT_STREQ(ive_var_name(-1), "");
    variables_scope.Delete(&other_a); // by name
    EXPECT_EQ(listed(), "b c");
    variables_scope.Delete(&a);
    variables_scope.Delete(&unnamed);
    EXPECT_EQ(listed(), "b c");
    variables_scope.Delete(&c);
    variables_scope.Delete(&b);
}

TEST_F(Scope, LevelsGrowAndAreUsedAgain)
{
    auto const scope = std::make_unique<variables_scope_t>();
    scope->begin();
    EXPECT_EQ(scope->capacity[1], 0);
    std::deque<std::string> names;
    std::deque<M<double>> variables;
    for (int k = 0; k < 29; ++k) {
        names.push_back(std::to_string(k));
        variables.emplace_back(static_cast<double>(k)).setname(names.back().c_str());
        scope->Add(&variables.back());
        EXPECT_EQ(scope->capacity[1], k < 4 ? 4 : k < 12 ? 12 : k < 28 ? 28 : 60) << k;
    }
    for (std::size_t k = 0; k < variables.size(); ++k)
        EXPECT_EQ(scope->variables[1][k], &variables[k]);
    scope->begin();
    EXPECT_EQ(scope->count[scope->depth], 0);
    scope->end();
    EXPECT_EQ(scope->count[scope->depth], 29);
    scope->end();
    EXPECT_EQ(scope->depth, 0u);
    scope->end();
    EXPECT_EQ(scope->depth, 0u);
    scope->begin();
    EXPECT_EQ(scope->count[1], 0);
    EXPECT_EQ(scope->capacity[1], 60);
}

TEST_F(Scope, Holds256Levels)
{
    Reports const reports;
    for (int k = 0; k < 256; ++k)
        variables_scope.begin();
    EXPECT_EQ(variables_scope.depth, 256u);
    EXPECT_TRUE(reports.all().empty());
    for (int k = 256; k < 300; ++k)
        variables_scope.begin();
    EXPECT_EQ(reports.all(), Texts(44, "Call stack too deep"));
    EXPECT_EQ(variables_scope.depth, 256u);
    M<double> deepest;
    deepest.setname("deepest");
    variables_scope.Add(&deepest);
    EXPECT_EQ(listed(), "deepest");
    // The calls that have no level of their own leave the others theirs.
    for (int k = 256; k < 300; ++k)
        variables_scope.end();
    EXPECT_EQ(listed(), "deepest");
    variables_scope.end();
    EXPECT_EQ(variables_scope.depth, 255u);
    variables_scope.reset();
    EXPECT_EQ(variables_scope.depth, 0u);
    EXPECT_EQ(listed(), "");
}

// The search by name keeps up with variables that change theirs.
TEST_F(Scope, VariablesAreFoundByTheNameTheyHave)
{
    Flags const flags(nx_error_register);
    std::deque<std::string> names;
    for (int k = 0; k < 100; ++k)
        names.push_back("v" + std::to_string(k));
    {
        std::deque<M<double>> variables;
        for (std::string const& name : names)
            variables.emplace_back(name.c_str(), 1, 1);
        for (int k = 0; k < 100; ++k)
            EXPECT_EQ(variables_scope.find(names[static_cast<std::size_t>(k)].c_str()), k);
        variables[40].setname("renamed");
        variables[10].setname(nullptr);
        variables_scope.begin();
        variables[50].setname("below");
        variables_scope.end();
        M<double> const second("v40", 1, 1), first("v41", 1, 1);
        EXPECT_EQ(ive_count_vars(), 100);
        EXPECT_EQ(variables_scope.find("renamed"), 39);
        EXPECT_EQ(variables_scope.find("below"), 49);
        EXPECT_EQ(variables_scope.find("v10"), -1);
        EXPECT_EQ(variables_scope.find("v99"), 98);
        EXPECT_STREQ(ive_var_name(99), "v40");
    }
    EXPECT_EQ(listed(), "");
}

TEST_F(Scope, VariablesAreListedOnlyWhenAsked)
{
    M<double> const quiet("quiet", 1, 1);
    EXPECT_EQ(listed(), "");
    Flags const flags(nx_error_register);
    {
        M<double> const x("x", 1, 1);
        M<M<double>> const c("c", 1, 1);
        M<double> const again("x", 2, 2), unnamed(nullptr, 1, 1);
        EXPECT_EQ(listed(), "x c");
        variables_scope.begin();
        M<double> const local("local", 1, 1);
        M<double> copy = x, assigned;
        assigned = x;
        EXPECT_EQ(listed(), "local");
        variables_scope.end();
        EXPECT_EQ(listed(), "x c");
    }
    EXPECT_EQ(listed(), "");
}

// A translated function may leave its level before its variables end, or end them in any order.
TEST_F(Scope, VariablesEndAtAnotherDepth)
{
    Flags const flags(nx_error_register);
    std::optional<M<double>> low(std::in_place, "x", 1, 1);
    variables_scope.begin();
    std::optional<M<double>> high(std::in_place, "x", 1, 1);
    low.reset();
    EXPECT_EQ(listed(), "x");
    variables_scope.end();
    EXPECT_EQ(listed(), "");
    M<double> const next("x", 1, 1);
    high.reset();
    EXPECT_EQ(listed(), "x");
}

TEST_F(Scope, VariablesAreShownByName)
{
    Printed printed;
    EXPECT_EQ(ive_print("x"), 0);
    EXPECT_EQ(printed.take(), "Variable 'x' not found.\n");
    Flags const flags(nx_error_register);
    M<double> x("x", 1, 1);
    x.r(1) = 5;
    M<M<double>> const c("c", 0, 0);
    EXPECT_EQ(ive_print("x"), 0);
    EXPECT_EQ(printed.take(), "x (1x1)=1 elements, dense real  = \n  5\n");
    ive_print("c");
    EXPECT_EQ(printed.take(), "c (0x0)=0 elements, dense real cell = \n{}\n");
    ive_print("X");
    EXPECT_EQ(printed.take(), "Variable 'X' not found.\n");
}

// --- a debugger watches --------------------------------------------------------------------------------

TEST_F(Scope, GlobalsOutliveTheirObjects)
{
    watch();
    std::string name = "counter";
    {
        M<double> counter(name.c_str(), 1, 1);
        EXPECT_TRUE(counter.is_global());
        counter.r(1) = 41;
        EXPECT_FALSE(M<double>(counter).is_global());
    }
    // The kept value has a copy of the name.
    name.assign(7, '?');
    EXPECT_EQ(listed(), "counter");
    {
        M<double> counter("counter", 0, 0);
        EXPECT_EQ(listed(), "counter");
        ASSERT_EQ(counter.size(), 1);
        EXPECT_EQ(counter[1], 41);
        counter = M<double>(0, 2, 2);
        EXPECT_TRUE(counter.is_global());
        counter.r(4) = 7;
    }
    {
        M<double> const counter("counter", 0, 0);
        EXPECT_EQ(counter[4], 7);
        EXPECT_FALSE(counter.dirty());
    }
    M<double> local;
    variables_scope.begin();
    {
        M<double> const inner("counter", 0, 0);
        EXPECT_FALSE(inner.is_global());
        EXPECT_EQ(inner.size(), 0);
        EXPECT_EQ(listed(), "counter");
    }
    EXPECT_EQ(listed(), "");
    variables_scope.end();
    EXPECT_EQ(listed(), "counter");
    drop("counter");
}

TEST_F(Scope, SecondObjectOfAGlobalTakesItsValue)
{
    watch();
    M<double> first("g", 1, 1);
    first.r(1) = 3;
    {
        M<double> const second("g", 0, 0);
        EXPECT_EQ(second.size(), 1);
        EXPECT_EQ(second[1], 3);
        EXPECT_EQ(listed(), "g");
    }
    EXPECT_EQ(first[1], 3);
    arrlib::variables_watched = 0;
    first.setname(nullptr);
    drop("g");
}

TEST_F(Scope, GlobalOfTheOtherKindGivesWay)
{
    watch();
    {
        M<double> const number("g", 1, 1);
    }
    {
        M<M<double>> const cell("g", 1, 2);
        EXPECT_EQ(cell.size(), 2);
        EXPECT_EQ(listed(), "g");
    }
    {
        M<double> const number("g", 3, 1);
        EXPECT_EQ(number.size(), 3);
    }
    drop("g");
}

// A global that ends inside a function is still one of level 0.
TEST_F(Scope, GlobalMayEndInsideACall)
{
    watch();
    std::optional<M<double>> global(std::in_place, "g", 1, 1);
    global->r(1) = 8;
    variables_scope.begin();
    global.reset();
    EXPECT_EQ(listed(), "");
    variables_scope.end();
    EXPECT_EQ(listed(), "g");
    {
        M<double> const again("g", 0, 0);
        EXPECT_EQ(again[1], 8);
    }
    drop("g");
}

TEST_F(Scope, ScalarVariablesAreReportedToTheDebugger)
{
    {
        M<double> const unwatched("before", 1, 1);
    }
    watch();
    variables_scope.begin();
    {
        M<double> const scalar("scalar", 1, 1);
        M<double> const pair("pair", 1, 2);
        M<double> const unnamed(1.0);
        M<double> text("text", 1, 1);
        text = TM("ab");
        M<double> assigned("assigned", 1, 1);
        assigned = M<double>(4);
        M<double> late("late", 0, 0);
        late = M<double>(4);
        M<double> complex("complex", 1, 1);
        complex = ::i;
    }
    EXPECT_EQ(debugged.all(), (Texts{"late", "assigned", "scalar"}));
    variables_scope.end();
}

TEST_F(Scope, MemoryThatFailsLosesNothingElse)
{
    watch();
    {
        // Levels keep their arrays: this one has its own from here on.
        M<double> const first("a_global", 1, 1);
    }
    drop("a_global");
    with_every_allocation_refused([] {
        {
            M<double> const global("a_global", 1, 1);
        }
        if (MObject* const kept = variables_scope.take_saved("a_global"))
            variables_scope.discard(kept);
    });
    // Also when the report is thrown: a destructor lets nothing out.
    Printed const printed;
    Flags const flags(nx_error_throw | nx_error_console);
    for (int n = 1; n <= 2; ++n) {
        auto global = std::make_unique<M<double>>("a_global", 1, 1);
        FailingHeap const heap(n);
        global.reset();
        EXPECT_TRUE(heap.refused());
    }
    EXPECT_EQ(printed.text(), "Error: Out of memory!\n\nError: Out of memory!\n\n");
}

TEST_F(Scope, CleanUpReportsAndResets)
{
    Printed const printed;
    Flags const flags(nx_error_console);
    variables_scope.begin();
    variables_scope.begin();
    EXPECT_EQ(ive_cleanup().size(), 0);
    EXPECT_EQ(variables_scope.depth, 0u);
    EXPECT_EQ(printed.text(), "Aborted!\n");
}

} // namespace
