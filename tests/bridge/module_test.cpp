// Extension modules, built from tests/bridge/modules and called as a program calls them: this test is
// linked with the library itself, whose functions the modules call.
#include "arrlib.h"
#include "support/capture.h"
#include "support/values.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

using namespace capture;
using namespace values;

namespace {

#if defined(_WIN32)
constexpr char ending[] = ".dll";
#else
constexpr char ending[] = ".so";
#endif

// Where the modules are, and this program.
std::filesystem::path const modules = MODULES;

std::string module_file(std::string const& name)
{
    return name + "_korvex" + ending;
}

// The output slots of a call, which hold something else before it.
struct Slots {
    M<double> other;
    M<double>* slot[64];
    Slots() { std::fill_n(slot, 64, &other); }
    ~Slots()
    {
        for (M<double>* output : slot)
            if (output != &other)
                delete output;
    }
    // What the slots up to the last one in use hold.
    std::string text() const
    {
        std::string all, nothing;
        for (M<double>* output : slot)
            if (output)
                all += (all.empty() ? "" : nothing + " | ") + shown(*output), nothing.clear();
            else
                nothing += " | null";
        return all;
    }
};

// What the module gives for a command and further inputs, with the reports behind it.
std::string call(char const* module, double nlhs, std::vector<M<double>> inputs)
{
    Slots outputs;
    std::vector<M<double>*> in;
    for (M<double>& input : inputs)
        in.push_back(&input);
    std::string const reports =
        reported_by([&] { call_mex(module, nlhs, outputs.slot, static_cast<double>(in.size()), in.data()); });
    return outputs.text() + (reports.empty() ? "" : " -> " + reports);
}
std::string command(char const* name, double nlhs, std::vector<M<double>> inputs = {})
{
    inputs.insert(inputs.begin(), text(name));
    return call("commands", nlhs, inputs);
}

class Modules : public testing::Test {
protected:
    Modules() : outstanding_(arrlib::pool.outstanding()) { forget_modules(); }
    ~Modules() override
    {
        std::filesystem::current_path(folder_before_);
        EXPECT_EQ(arrlib::pool.outstanding(), outstanding_);
    }
    static void forget_modules()
    {
        for (int k = 0; k < 100; ++k)
            for (char const* name : {"commands", "guarded", "there"})
                for (char const* end : {"_korvex.so", "_korvex.dll"})
                    clear_mex((name + std::string(end)).c_str());
    }

    std::filesystem::path folder_before_ = std::filesystem::current_path();

private:
    std::int64_t outstanding_;
};

TEST_F(Modules, GiveOutputs)
{
    std::string const missing = "call_mex: not all output arguments were assigned when calling commands.";
    expect_all({{call("commands", 1, {}), "1x1: 1"},
                {command("all", 3), "1x1: 1 | 1x1: 2 | 1x1: 3"},
                {command("all", 2.9), "1x1: 1 | 1x1: 2"},
                {command("inputs", 1, {pi, pi, pi}), "1x1: 4"},
                {command("first", 3), "1x1: 1 | 0x0: | 0x0: -> " + missing + "|" + missing},
                {command("nothing", 2), "0x0: | 0x0: -> " + missing + "|" + missing},
                {command("nothing", 0), ""},
                // An output that is not asked for is the caller's all the same.
                {command("first", 0), "1x1: 1"},
                {command("all", -3), ""},
                {command("all", std::nan("")), ""},
                {call("guarded", 1, {pi * 0.0}), shown(text("done in C++"))},
                {command("stub", 1), "1x1: 1 -> mexPrintf is not available|mxGetIr is not available"}});
    EXPECT_NE(command("all", 64).find("1x1: 64"), std::string::npos);
    // No slot beyond the 64 is touched.
    EXPECT_NE(command("all", 65).find("-> call_mex: more than 64 output arguments when calling commands."), std::string::npos);
    EXPECT_NE(command("all", 1e300).find("0x0: | 0x0:"), std::string::npos);
    // No slots and no inputs.
    call_mex("commands", 2, nullptr, 3, nullptr);
}

TEST_F(Modules, TakeEveryKindOfArray)
{
    expect_all({{command("text", 1, {text("array")}), shown(text("yarra"))},
                {command("text", 1, {text("")}), shown(text(""))},
                {command("sparse", 1, {sparse(rows_of({{1, 0, 2}, {0, 0, 3}}))}), shown(sparse(rows_of({{2, 0, 1}, {3, 0, 0}})))},
                {command("complex", 1, {row({1, 2}, {3, 4})}), shown(column({1, 2}, {-3, -4}))}});
    int const dims[] = {1, 2, 3};
    M<double> deep(1, 0, 0, 3, dims);
    for (int k = 0; k < 6; ++k)
        deep.addr()[k] = deep.addi()[k] = k;
    EXPECT_EQ(command("complex", 1, {deep}).substr(0, 6), "1x3x2:");
    EXPECT_EQ(deep.addi()[5], 5);
}

TEST_F(Modules, AreLoadedAndCounted)
{
    std::string const file = module_file("commands");
    EXPECT_EQ(command("calls", 1), "1x1: 1");
    EXPECT_EQ(command("calls", 1), "1x1: 2");
    clear_mex(file.c_str());
    clear_mex("commands");
    clear_mex(nullptr);
    clear_mex("");
    clear_mex("./not/there");
    EXPECT_EQ(command("calls", 1), "1x1: 3");
    clear_mex(file.c_str());
    clear_mex(file.c_str());
    EXPECT_EQ(command("calls", 1), "1x1: 1");
    clear_mex(file.c_str());
    clear_mex(file.c_str());
    EXPECT_EQ(command("calls", 1), "1x1: 1");
}

TEST_F(Modules, AreFoundByFolderAndEnding)
{
    std::string const not_loaded = "0x0: -> Could not load there_korvex.";
    auto const there = [] { return call("there", 1, {text("all")}); };
    std::filesystem::path const folder = modules / "module_test.folder";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    [[maybe_unused]] auto const place = [&](char const* module, char const* file) {
        std::filesystem::copy_file(modules / module_file(module), folder / file);
    };
    auto const place_text = [&](std::string const& file) { std::ofstream(folder / file) << "not a library"; };
    std::filesystem::current_path(folder);
    EXPECT_EQ(there(), not_loaded + "dll");
#if !defined(_WIN32)
    // The second ending counts where the first one's file is missing or no library.
    place_text("there_korvex.so");
    EXPECT_EQ(there(), not_loaded + "so");
    std::filesystem::remove(folder / "there_korvex.so");
    place("commands", "there_korvex.so");
    EXPECT_EQ(there(), "1x1: 1");
    // What is loaded is taken first, from any working folder.
    place("guarded", "there_korvex.dll");
    std::filesystem::current_path("/");
    EXPECT_EQ(there(), "1x1: 1");
    forget_modules();
    EXPECT_EQ(there(), not_loaded + "dll");
    std::filesystem::current_path(folder);
    EXPECT_EQ(there(), shown(text("done in C++")));
    forget_modules();
#endif
    std::filesystem::remove(folder / "there_korvex.dll");
    place_text("there_korvex.dll");
    std::filesystem::remove(folder / "there_korvex.so");
    EXPECT_EQ(there(), not_loaded + "dll");
    // The program's folder comes before the working folder; names may have folders.
    place_text(module_file("commands"));
    EXPECT_EQ(command("all", 1), "1x1: 1");
    EXPECT_EQ(call((modules / "commands").string().c_str(), 1, {}), "1x1: 1");
    expect_all({{call("", 1, {}), "0x0: -> Could not load _korvex.dll"},
                {call(nullptr, 1, {}), "0x0: -> Could not load _korvex.dll"},
                {call("no_entry", 2, {}), "0x0: | 0x0: -> Could not find mexFunction"}});
    std::string const endless(5000, 'a');
    EXPECT_EQ(call(endless.c_str(), 0, {}).substr(0, 24), " -> Could not load aaaaa");
    std::filesystem::current_path(folder_before_);
    std::filesystem::remove_all(folder);
}

// Calls the failing command; the error that it throws.
std::string thrown_by_failure(Slots& outputs)
{
    M<double> input = text("fail");
    M<double>* in[] = {&input};
    std::string thrown;
    try {
        call_mex("commands", 2, outputs.slot, 1, in);
    } catch (char* message) {
        thrown = message;
        ive_cleanup();
    }
    return thrown;
}

TEST_F(Modules, EndInErrors)
{
    Reports const handler;
    Printed const printed;
    // The handler is gone for good, and the error is thrown through C: what was made is ended.
    {
        Flags const flags(nx_error_throw);
        Slots outputs;
        EXPECT_EQ(thrown_by_failure(outputs), "Error: module: 100% wrong\n\n");
        EXPECT_EQ(outputs.text(), "");
        EXPECT_TRUE(handler.all().empty());
        EXPECT_THROW(error("after it"), char*);
        ive_cleanup();
        Reports::reinstall();
    }
    // Neither thrown nor at an end: the call is over.
    {
        Flags const flags(nx_error_console);
        Slots outputs;
        EXPECT_EQ(thrown_by_failure(outputs), "");
        EXPECT_EQ(outputs.text(), "0x0: | 0x0:");
        EXPECT_NE(printed.text().find("Error: module: 100% wrong\n\n"), std::string::npos);
        EXPECT_TRUE(handler.all().empty());
        Reports::reinstall();
    }
    // Assertions leave the module too, with the handler in place.
    EXPECT_EQ(command("assert", 2), "0x0: | 0x0: -> Assertion failed: no inputs");
    EXPECT_EQ(command("calls", 1), "1x1: 4");
}

TEST_F(Modules, EndObjectsOfTheirOwnInErrors)
{
    Flags const flags(0);
    M<double> ended(0, 1, 1), further(1.0);
    ended.r(1) = 0;
    M<double>* in[] = {&ended, &further, &further};
    Slots outputs;
    call_mex("guarded", 1, outputs.slot, 1, in);
    EXPECT_EQ(ended.r(1), 1);
    Slots failed;
    call_mex("guarded", 1, failed.slot, 2, in);
    EXPECT_EQ(ended.r(1), 2);
    EXPECT_EQ(failed.text(), "0x0:");
    Slots thrown;
    EXPECT_THROW(call_mex("guarded", 1, thrown.slot, 3, in), std::runtime_error);
    EXPECT_EQ(ended.r(1), 3);
    EXPECT_EQ(thrown.text(), "");
    Reports::reinstall();
}

TEST(ModulesDeathTest, EndTheProcess)
{
    auto const fail = [](int flags) {
        nx_default_error_flags = flags;
        nx_set_error_handler([](char const*) {});
        nx_set_print_handler([](char const* text) { std::fputs(text, stderr); });
        Slots outputs;
        thrown_by_failure(outputs);
    };
    EXPECT_EXIT(fail(nx_error_console | nx_error_message_box | nx_error_exit), testing::ExitedWithCode(1), "Error: module: 100% wrong");
}

} // namespace
