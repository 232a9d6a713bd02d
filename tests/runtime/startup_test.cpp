// Start-up and shutdown: the constants, the floating-point unit, the settings, crash reports.
#include "arrlib.h"
#include "runtime/crash.h"
#include "runtime/graphics_link.h"
#include "runtime/settings.h"
#include "support/capture.h"

#include <bit>
#include <cfenv>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <limits>

#if !defined(_WIN32)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace capture;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool address_sanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool address_sanitized = true;
#else
constexpr bool address_sanitized = false;
#endif
#else
constexpr bool address_sanitized = false;
#endif

std::uint64_t bits(double number)
{
    return std::bit_cast<std::uint64_t>(number);
}

// --- constants ------------------------------------------------------------------------------------

// What static initialisers of a program see of the constants. One of these is made before any other.
struct Seen {
    M<double> copies[3] = {pi, i, nop_M};
    double radius = 2 * pi[1];
    std::uint64_t nan_bits = bits(*NaN.addr());
    bool marker = c_p.issamename(c_pp) && semi.issamename(semip);
    M<M<double>> cell = nop_MM;
    std::string sent;

    Seen()
    {
        nx_set_print_handler([](char const* text) { printed() = text; });
        nx_print("early");
        sent = printed();
        nx_set_print_handler(nullptr);
    }
    static std::string& printed()
    {
        static std::string text;
        return text;
    }
};
__attribute__((init_priority(101))) Seen const first_of_all;
Seen const at_leisure;

TEST(StartUp, ConstantsAreValidInStaticInitialisers)
{
    for (Seen const* seen : {&first_of_all, &at_leisure}) {
        EXPECT_EQ(seen->copies[0][1], 3.141592653589793);
        EXPECT_EQ(*seen->copies[1].addi(), 1);
        EXPECT_EQ(seen->copies[2].size(), 0);
        EXPECT_EQ(seen->radius, 6.283185307179586);
        EXPECT_EQ(seen->nan_bits, 0x7FFFFFFFFFFFFFFFu);
        EXPECT_TRUE(seen->marker);
        EXPECT_EQ(seen->cell.size(), 0);
        EXPECT_EQ(seen->sent, "early");
    }
}

TEST(StartUp, ConstantsHaveTheirValuesAndNames)
{
    struct {
        M<double> const& constant;
        char const* name;
        int elements;
        std::uint64_t real;
    } const table[] = {
        {ans, "ans", 0, 0},
        {pi, "pi", 1, 0x400921FB54442D18},
        {eps, "eps", 1, 0x3CB0000000000000},
        {Inf, "Inf", 1, 0x7FF0000000000000},
        {NaN, "NaN", 1, 0x7FFFFFFFFFFFFFFF},
        {i, "i", 1, 0},
        {j, "j", 1, 0},
        {TICTOC, "TICTOC", 1, 0},
        {zero_M, "0", 1, 0},
        {one_M, "1", 1, 0x3FF0000000000000},
        {x_M, "x_M", 0, 0},
        {l_M, "l_M", 0, 0},
        {nop_M, "[]", 0, 0},
        {semi, ";", 0, 0},
        {c_p, ":", 0, 0},
        {page_screen_output, "page_screen_output", 0, 0},
        {implicit_str_to_num_ok, "implicit_str_to_num_ok", 0, 0},
        {empty_list_elements_ok, "empty_list_elements_ok", 0, 0},
    };
    for (auto const& row : table) {
        EXPECT_STREQ(row.constant.getname(), row.name);
        EXPECT_EQ(row.constant.size(), row.elements) << row.name;
        EXPECT_EQ(row.constant.getndims(), 2) << row.name;
        EXPECT_EQ(row.constant.getnnz(), row.elements) << row.name;
        EXPECT_TRUE(row.constant.dirty()) << row.name;
        EXPECT_FALSE(row.constant.isstr() || row.constant.issparse() || row.constant.islogical()) << row.name;
        bool const unit = &row.constant == &i || &row.constant == &j;
        EXPECT_EQ(row.constant.isc(), unit) << row.name;
        EXPECT_EQ(row.elements ? bits(*row.constant.addr()) : 0, row.real) << row.name;
        EXPECT_EQ(unit ? *row.constant.addi() : 1, 1) << row.name;
    }
    EXPECT_STREQ(nop_MM.getname(), "{}");
    EXPECT_STREQ(switchvar.getname(), "switchvar");
    EXPECT_EQ(nop_MM.size() + switchvar.size(), 0);
    EXPECT_EQ(semip, semi.getname());
    EXPECT_EQ(x_Mp, x_M.getname());
    EXPECT_EQ(l_Mp, l_M.getname());
    EXPECT_EQ(c_pp, c_p.getname());
    EXPECT_NE(NaN[1], NaN[1]);
}

// A program may write to ans, to TICTOC and even to pi: copies taken before keep their value, and the
// constant's own storage is never given back.
TEST(StartUp, ConstantsAreCopiedBeforeTheyAreWritten)
{
    M<double> const before = pi;
    M<double> const kept = TICTOC;
    FailingHeap const heap;
    pi.r(1) = 3;
    TICTOC.r(1) = 5;
    EXPECT_EQ(before[1], 3.141592653589793);
    EXPECT_EQ(kept[1], 0);
    EXPECT_EQ(pi[1], 3);
    pi = before;
    TICTOC = kept;
    M<double> unit = i;
    unit.i(1) = 9;
    EXPECT_EQ(*i.addi(), 1);
    ans = M<double>(4);
    ans = x_M;
    EXPECT_STREQ(ans.getname(), "ans");
    unit = zero_M;
    EXPECT_TRUE(heap.balanced());
}

TEST(StartUp, CountsOfArguments)
{
    nargin_val = 3;
    nargout_val = 2;
    EXPECT_EQ(nargin(), 3);
    EXPECT_EQ(nargout(), 2);
    M<double> outputs("outputs", 0, 0), inputs("inputs", 0, 0);
    EXPECT_EQ(argn(i_o, outputs, inputs).size(), 0);
    EXPECT_EQ(outputs[1], 2);
    EXPECT_EQ(inputs[1], 3);
    nargin_val = nargout_val = 0;
}

// --- initM and exitM --------------------------------------------------------------------------------

TEST(StartUp, VersionOfTheHeaderIsChecked)
{
    Reports const reports;
    nx_error_stack.count = 5;
    initM(4010);
    EXPECT_EQ(nx_error_stack.count, 0);
    EXPECT_TRUE(reports.all().empty());
    initM(4000);
    initM(5123);
    initM(0);
    EXPECT_EQ(reports.all(), (Texts{"Version mismatch - runtime version is 4.01 but arrlib.h version is 4.",
                                    "Version mismatch - runtime version is 4.01 but arrlib.h version is 5.123.",
                                    "Version mismatch - runtime version is 4.01 but arrlib.h version is 0."}));
}

TEST(StartUpDeathTest, OtherVersionEndsTheProgram)
{
    EXPECT_EXIT((nx_set_print_handler([](char const* text) { std::fputs(text, stderr); }), initM(4000)), testing::ExitedWithCode(1),
                "^Error: Version mismatch - runtime version is 4\\.01 but arrlib\\.h version\nis 4\\.\n\n$");
}

// What the front end is asked for, in order.
std::string& asked()
{
    static std::string text;
    return text;
}
int figure = -1;

TEST(StartUp, ExitAsksForOpenFigures)
{
    constexpr arrlib::GraphicsLink link{[] { asked() += "show "; }, [] { return asked() += "current ", figure; }, [] { return false; }, [] { asked() += "down"; }};
    Printed printed;
    exitM();
    EXPECT_EQ(printed.text(), "");
    arrlib::install_graphics(&link);
    for (int const handle : {-1, 0, 1}) {
        asked().clear();
        figure = handle;
        exitM();
        EXPECT_EQ(asked(), "show current down");
        EXPECT_EQ(printed.take(), handle > 0 ? "Please close all figures...\n" : "");
    }
    arrlib::install_graphics(nullptr);
}

TEST(StartUpDeathTest, ExitAndQuitEndWithSuccess)
{
    EXPECT_EXIT(exit(), testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(quit(), testing::ExitedWithCode(0), "^$");
}

double divided(double a, double b)
{
    double volatile x = a, y = b;
    return x / y;
}

TEST(StartUp, FloatingPointNeverTraps)
{
    auto const check = [] {
        EXPECT_EQ(divided(1, 0), std::numeric_limits<double>::infinity());
        EXPECT_NE(divided(0, 0), divided(0, 0));
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    };
    check();
#if defined(__GLIBC__)
    EXPECT_EQ(fegetexcept(), 0);
#endif
    for (bool const ends : {false, true}) {
#if defined(__GLIBC__)
        feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW);
#endif
        std::fesetround(FE_UPWARD);
        if (ends)
            exitM();
        else
            initM(4010);
        check();
    }
}

#if !defined(_WIN32)

// --- settings -----------------------------------------------------------------------------------------

TEST(StartUp, ExternalProgramsComeFromTheEnvironment)
{
    using namespace arrlib;
    auto const viewer = [](char const* upper, char const* lower) {
        upper ? setenv("KORVEXVIEWER", upper, 1) : unsetenv("KORVEXVIEWER");
        lower ? setenv("korvexviewer", lower, 1) : unsetenv("korvexviewer");
        read_external_programs();
        return std::string(external_program[image_viewer].name);
    };
    EXPECT_EQ(viewer("big", "small"), "big");
    EXPECT_EQ(viewer(nullptr, "small"), "small");
    EXPECT_EQ(viewer("", "small"), "");
    EXPECT_EQ(viewer(std::string(300, 'p').c_str(), nullptr), std::string(255, 'p'));
    EXPECT_EQ(viewer(nullptr, nullptr), "pbrush");
    EXPECT_STREQ(external_program[plotting_program].name, "wgnuplot");
    setenv("korvexplayer", "play", 1);
    setenv("KORVEXGNUPLOT", "plot", 1);
    read_external_programs();
    EXPECT_STREQ(external_program[sound_player].name, "play");
    EXPECT_STREQ(external_program[plotting_program].name, "plot");
    unsetenv("korvexplayer");
    unsetenv("KORVEXGNUPLOT");
    read_external_programs();
}

// --- crashes --------------------------------------------------------------------------------------------

// The crash itself, out of the sanitizers' sight.
#define UNCHECKED __attribute__((noinline, no_sanitize("undefined"), no_sanitize("address")))

UNCHECKED void read_nowhere()
{
    int volatile* volatile nowhere = nullptr;
    *nowhere = 1;
}

#if defined(__x86_64__) || defined(__i386__)
UNCHECKED void divide_by_zero()
{
    int volatile zero = 0;
    zero = 7 / zero;
}
#endif

UNCHECKED int overflow_stack(int depth)
{
    char volatile room[4096];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : overflow_stack(depth + 1) + room[0];
}

// Reports go to standard output, which the tests below read from standard error.
void crash(void (*how)())
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    rlimit stack = {};
    getrlimit(RLIMIT_STACK, &stack);
    stack.rlim_cur = 1 << 20;
    setrlimit(RLIMIT_STACK, &stack);
    nx_set_print_handler([](char const*) { std::abort(); });
    nx_frame outer("main");
    outer.line(10);
    nx_frame inner("inner");
    inner.line(20);
    how();
}

// The address sanitizer ends the process in its own way, with words of its own, behind the report.
struct DiedOf {
    int signal;
    bool operator()(int status) const { return address_sanitized ? status != 0 : WIFSIGNALED(status) && WTERMSIG(status) == signal; }
};
std::string report_of(std::string const& code)
{
    return "^\nApplication crash!\n\nException code: " + code + "\n\ncalled from inner line 20\ncalled from main line 10\n" + (address_sanitized ? "" : "$");
}

TEST(CrashDeathTest, CrashesAreReported)
{
    EXPECT_EXIT(crash(read_nowhere), DiedOf{SIGSEGV}, report_of("C0000005 ACCESS_VIOLATION"));
    EXPECT_EXIT(crash([] { raise(SIGSEGV); }), DiedOf{SIGSEGV}, report_of("C0000005 ACCESS_VIOLATION"));
    EXPECT_EXIT(crash([] { overflow_stack(0); }), DiedOf{SIGSEGV}, report_of("C00000FD STACK_OVERFLOW"));
    EXPECT_EXIT(crash([] { __builtin_trap(); }), DiedOf{SIGILL}, report_of("C000001D ILLEGAL_INSTRUCTION"));
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_EXIT(crash(divide_by_zero), DiedOf{SIGFPE}, report_of("C0000094 INT_DIVIDE_BY_ZERO"));
#endif
}

TEST(CrashDeathTest, OverflowOfAWorkersStackIsReported)
{
    EXPECT_EXIT(crash([] {
                    par_run([] { return M<double>(overflow_stack(0)); });
                    par_sync();
                }),
                DiedOf{SIGSEGV}, report_of("C00000FD STACK_OVERFLOW"));
}

// A program that lives on a floating-point signal sent by somebody else.
TEST(CrashDeathTest, SentFloatingPointSignalIsIgnored)
{
    EXPECT_EXIT((raise(SIGFPE), std::fputs("alive", stderr), std::_Exit(7)), testing::ExitedWithCode(7), "^alive$");
}

// Nothing catches what leaves these.
void let_out_error() noexcept
{
    error("nobody caught it");
}

void let_out_other() noexcept
{
    std::vector<int>().at(0) = 1;
}

void let_out(int flags)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    nx_default_error_flags = flags;
    nx_frame frame("main");
    let_out_error();
}

TEST(CrashDeathTest, UncaughtErrorsAreReported)
{
    EXPECT_EXIT(let_out(nx_error_throw | nx_error_console), testing::ExitedWithCode(1), "^Error: nobody caught it\n\ncalled from main line 0\n$");
    EXPECT_EXIT(let_out(nx_error_throw | nx_error_message_box | nx_error_exit), testing::ExitedWithCode(1),
                "^Orrery<RT>\n\nError: nobody caught it\n\ncalled from main line 0\n\n$");
    EXPECT_EXIT(let_out_other(), DiedOf{SIGABRT}, "");
}

#endif

TEST(StartUp, ExceptionCodesHaveNames)
{
    EXPECT_STREQ(arrlib::exception_name(0x80000001), "GUARD_PAGE");
    EXPECT_STREQ(arrlib::exception_name(0xC0000095), "INT_OVERFLOW");
    EXPECT_STREQ(arrlib::exception_name(0xC00000FD), "STACK_OVERFLOW");
    EXPECT_STREQ(arrlib::exception_name(0xC0000004), "Unknown exception code");
    EXPECT_STREQ(arrlib::exception_name(0), "Unknown exception code");
}

} // namespace
