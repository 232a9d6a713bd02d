// The reporting path: what reaches which hook, to the byte, under each set of flags.
#include "arrlib.h"
#include "support/capture.h"

#include <cstdint>
#include <cstring>
#include <memory>

using namespace capture;

namespace {

// Puts frames on the error stack for the length of a test, whatever it leaves there.
class Errors : public testing::Test {
protected:
    Errors() { nx_error_stack.count = 0; }
    ~Errors() override
    {
        nx_error_stack.count = 0;
        arrlib::forget_message();
    }
};

std::string text_of(M<double> const& value)
{
    std::string text;
    for (int k = 1; k <= value.size(); ++k)
        text += static_cast<char>(value[k]);
    return text;
}

char const* in_slot(std::intptr_t number)
{
    return reinterpret_cast<char const*>(number);
}

// What each "%..." of a format makes of texts, of numbers in argument slots, and of nothing.
TEST_F(Errors, MessagesAreFormattedFromTexts)
{
    Reports reports;
    error("50% of %s, %d");
    error("one %s", "1");
    error("%s-%s", "1", "2");
    error("%s%s%s", "1", "2", "3");
    error("%s%s%s%s", "1", "2", "3", "4");
    error("%s%s%s%s%s", "1", "2", "3", "4", "5");
    error("%d%% of %5s|%-4d|%x", in_slot(-7), "abc", in_slot(42), in_slot(255));
    error("%s, %s and %s", "only one");
    error("%n%f", "a", "b");
    error("ends in %", "a");
    error("%s", "a %s of its own");
    error("no conversion", "a");
    Texts const expected = {"50% of %s, %d", "one 1", "1-2", "123", "1234", "12345", "-7% of   abc|42  |ff", "only one, %s and %s",
                            "%n%f", "ends in %", "a %s of its own", "no conversion"};
    EXPECT_EQ(reports.all(), expected);
}

TEST_F(Errors, HookThatReturnsGivesZeroAndEndsTheFlight)
{
    Reports reports;
    EXPECT_EQ(error("a"), 0);
    EXPECT_FALSE(arrlib::error_in_flight());
    EXPECT_STREQ(arrlib::message_in_buffer(), "");
}

// The buffer itself may be the message, or an argument of the next one.
TEST_F(Errors, MessageMayLieInTheBuffer)
{
    {
        Warnings warnings;
        warning("first");
        warning(arrlib::message_in_buffer());
        warning("again %s and %s", arrlib::message_in_buffer(), arrlib::message_in_buffer());
        EXPECT_EQ(warnings.all(), (Texts{"first", "first", "again first and first"}));
    }
    Reports reports;
    error(arrlib::message_in_buffer());
    EXPECT_EQ(reports.all(), Texts{"again first and first"});
}

TEST_F(Errors, OverlongMessagesAndNamesAreCut)
{
    std::string const name(5000, 'n');
    {
        Reports reports;
        error(name.c_str());
        error("%s", name.c_str());
        error("%s is wrong: %s", name.c_str(), name.c_str());
        for (std::string const& message : reports.all())
            EXPECT_EQ(message, std::string(2047, 'n'));
    }
    Warnings warnings;
    warning("%s", name.c_str());
    EXPECT_EQ(warnings.all(), Texts{std::string(2047, 'n')});
    // The prefix and the blank line survive.
    EXPECT_EQ(thrown_by([&] { error(name.c_str()); }), "Error: " + std::string(2047 - 9, 'n') + "\n\n");
}

struct Reaction {
    int flags;
    std::string printed;
    Texts boxes;
};

TEST_F(Errors, FlagsSayWhereAnErrorGoes)
{
    nx_frame outer("main");
    outer.line(12);
    nx_frame inner("helper");
    inner.line(3);
    std::string const report = "Error: it failed\n\ncalled from helper line 3\ncalled from main line 12\n";
    Reaction const reactions[] = {
        {0, "", {}},
        {nx_error_console, report, {}},
        {nx_error_message_box, "", {"Orrery<RT>|" + report}},
        {nx_error_console | nx_error_message_box | nx_error_register, report, {"Orrery<RT>|" + report}},
    };
    for (Reaction const& reaction : reactions) {
        Flags const flags(reaction.flags);
        Printed const printed;
        Boxes const boxes;
        EXPECT_EQ(error("it %s", "failed"), 0);
        EXPECT_EQ(printed.text(), reaction.printed) << reaction.flags;
        EXPECT_EQ(boxes.all(), reaction.boxes) << reaction.flags;
        EXPECT_STREQ(arrlib::message_in_buffer(), "");
    }
}

TEST_F(Errors, FlagsSayWhereAWarningGoes)
{
    nx_frame frame("main");
    std::string const text = "a long one " + std::string(100, 'w') + " b";
    Reaction const reactions[] = {
        {0, "", {}},
        {nx_error_exit | nx_error_throw, "", {}},
        {nx_error_console | nx_error_exit, "Warning: " + text + "\n", {}},
        {nx_error_message_box, "", {"Orrery<RT> Warning|" + text}},
        {7, "Warning: " + text + "\n", {"Orrery<RT> Warning|" + text}},
    };
    for (Reaction const& reaction : reactions) {
        Flags const flags(reaction.flags);
        Printed const printed;
        Boxes const boxes;
        EXPECT_EQ(warning(text.c_str()), 0);
        EXPECT_EQ(printed.text(), reaction.printed) << reaction.flags;
        EXPECT_EQ(boxes.all(), reaction.boxes) << reaction.flags;
        // A warning leaves its text in the buffer; that is not an error in flight.
        EXPECT_EQ(arrlib::message_in_buffer(), text);
        EXPECT_FALSE(arrlib::error_in_flight());
    }
    EXPECT_EQ(warning(), 0);
}

TEST_F(Errors, ThrownTextIsReportedByWhoCaughtIt)
{
    Flags const flags(nx_error_throw | nx_error_console);
    Printed printed;
    nx_frame frame("f");
    frame.line(7);
    void* caught = nullptr;
    try {
        error("broken");
    } catch (void* message) {
        caught = message;
    }
    ASSERT_NE(caught, nullptr);
    EXPECT_STREQ(static_cast<char*>(caught), "Error: broken\n\n");
    EXPECT_TRUE(arrlib::error_in_flight());
    EXPECT_EQ(printed.text(), "");
    variables_scope.begin();
    EXPECT_EQ(ive_cleanup().size(), 0);
    EXPECT_EQ(printed.take(), "Error: broken\n\ncalled from f line 7\n");
    EXPECT_EQ(variables_scope.depth, 0u);
    EXPECT_FALSE(arrlib::error_in_flight());
    error_lasterr();
    EXPECT_EQ(printed.text(), "Aborted!\ncalled from f line 7\n");
}

struct Wrapped {
    std::string text;
    std::string shown;
};

std::string words(char letter, std::initializer_list<int> lengths)
{
    std::string text;
    for (int length : lengths)
        text += std::string(static_cast<std::size_t>(length), letter) + " ";
    return text;
}

// A space that is the 64th character of its line or later becomes the end of that line.
TEST_F(Errors, LongLinesAreWrappedAtSpaces)
{
    Wrapped const cases[] = {
        {std::string(63, 'a') + " b", std::string(63, 'a') + "\nb"},
        {std::string(62, 'a') + " b c", std::string(62, 'a') + " b\nc"},
        {std::string(200, 'a') + " b c", std::string(200, 'a') + "\nb c"},
        {std::string(40, 'a') + "\n" + std::string(40, 'b') + " c", std::string(40, 'a') + "\n" + std::string(40, 'b') + " c"},
        {words('w', {30, 30, 30, 30}) + "end", std::string(30, 'w') + " " + std::string(30, 'w') + " " + std::string(30, 'w') + "\n" + std::string(30, 'w') + " end"},
    };
    Flags const flags(nx_error_console);
    for (Wrapped const& one : cases) {
        Printed const printed;
        std::strcpy(const_cast<char*>(arrlib::message_in_buffer()), one.text.c_str());
        error_lasterr();
        EXPECT_EQ(printed.text(), one.shown);
    }
    // The prefix counts.
    Printed printed;
    error((std::string(56, 'a') + " b").c_str());
    EXPECT_EQ(printed.take(), "Error: " + std::string(56, 'a') + "\nb\n\n");
    // The added lines are wrapped too.
    nx_frame frame("name");
    nx_error_stack.name[1] = "a_function_with_a_name_that_alone_takes_sixty_columns_or_more_";
    error("a");
    EXPECT_EQ(printed.text(), "Error: a\n\ncalled from " + std::string(nx_error_stack.name[1]) + "\nline 0\n");
}

TEST_F(Errors, StackHolds256Frames)
{
    {
        std::vector<std::unique_ptr<nx_frame>> frames;
        for (int k = 1; k <= 300; ++k) {
            frames.push_back(std::make_unique<nx_frame>("f"));
            frames.back()->line(k);
        }
        EXPECT_EQ(nx_error_stack.count, 256);
        EXPECT_EQ(nx_error_stack.line[256], 256);
        char text[2048] = "it";
        error_call_stack(text);
        // Whole lines only, innermost first.
        std::string const shown = text;
        EXPECT_EQ(shown.substr(0, 44), "itcalled from f line 256\ncalled from f line ");
        EXPECT_LE(shown.size(), 2047u);
        EXPECT_GT(shown.size(), 2047u - 25);
        EXPECT_EQ(shown.back(), '\n');
        while (!frames.empty())
            frames.pop_back();
    }
    EXPECT_EQ(nx_error_stack.count, 0);
    // What a translated program may have left out of bounds reads nothing outside.
    char text[2048] = "";
    nx_error_stack.count = 100000;
    error_call_stack(text);
    EXPECT_EQ(std::string(text).substr(0, 11), "called from");
    EXPECT_EQ(mfilename().isstr(), 1);
    EXPECT_EQ(mfileline().size(), 1);
    text[0] = '\0';
    nx_error_stack.count = -3;
    error_call_stack(text);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(text_of(mfilename()), "unknown");
}

TEST_F(Errors, FrameOutlivesAReset)
{
    nx_frame outer("outer");
    {
        nx_frame inner("inner");
        nx_error_stack.count = 0;
        inner.line(4);
    }
    EXPECT_EQ(nx_error_stack.count, 0);
}

TEST_F(Errors, ArgumentCountsAreChecked)
{
    struct {
        int nout, nin, maxout, maxin;
        Texts expected;
    } const cases[] = {
        {1, 1, 1, 1, {}},
        {2, 3, 2, 3, {}},
        {1, 3, 1, 2, {"Too many inputs for f%s"}},
        {0, 5, 1, 2, {"Too few outputs for f%s"}},
        {2, 0, 1, 2, {"Too many outputs for f%s"}},
        {1, 0, 1, 2, {"Too few inputs for f%s"}},
        {-1, -1, -2, -2, {"Too few outputs for f%s"}},
    };
    for (auto const& one : cases) {
        Reports const reports;
        validate_narg("f%s", one.nout, one.nin, one.maxout, one.maxin);
        EXPECT_EQ(reports.all(), one.expected);
    }
    Reports const reports;
    EXPECT_EQ(nx_wrong_narg("sum", 1).size(), 0);
    nx_wrong_narg("sum", 0);
    nx_wrong_narg("sum", 12);
    EXPECT_EQ(reports.all(), (Texts{"sum does not accept 1 input", "sum does not accept 0 inputs", "sum does not accept 12 inputs"}));
}

TEST_F(Errors, ValuesAreReportedAsText)
{
    Reports const reports;
    Warnings const warnings;
    EXPECT_EQ(error(TM("100% %s")).size(), 0);
    error(TM(""));
    EXPECT_EQ(reports.all(), Texts{"100% %s"});
    warning(TM("off"));
    warning(TM("on"));
    warning(TM("offside"));
    warning(TM("Off"));
    EXPECT_EQ(warnings.all(), (Texts{"offside", "Off"}));
}

TEST_F(Errors, ValueTextsAreCutAt255)
{
    Reports const reports;
    Warnings const warnings;
    Printed const printed;
    std::string const longest(255, 'x');
    error(TM((longest + "yz").c_str()));
    error(TM(longest.c_str()));
    EXPECT_EQ(reports.all(), (Texts{longest, longest}));
    EXPECT_EQ(warnings.all(), Texts{"Mstr: buffer too small - chopped"});
    EXPECT_EQ(printed.text(), longest + "...\n");
}

TEST_F(Errors, InnermostFrameIsAskedFor)
{
    EXPECT_EQ(text_of(mfilename()), "unknown");
    EXPECT_EQ(mfileline()[1], 0);
    nx_frame outer("outer");
    nx_frame inner("inner");
    inner.line(42);
    EXPECT_EQ(text_of(mfilename()), "inner");
    EXPECT_EQ(mfileline()[1], 42);
    EXPECT_EQ(mfileline().size(), 1);
}

TEST_F(Errors, EveryHookIsReplacedAndRestored)
{
    {
        Debugged const debugged;
        EXPECT_EQ(debug("here %d"), 0);
        EXPECT_EQ(debug(-2147483647 - 1), 0);
        EXPECT_EQ(debugged.all(), (Texts{"here %d", "-2147483648"}));
    }
    Printed printed;
    testing::internal::CaptureStdout();
    debug("plain"); // not through the print hook
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "DEBUG:plain\n");
    EXPECT_EQ(printed.text(), "");
    nx_set_print_handler(nullptr);
    testing::internal::CaptureStdout();
    nx_print("100%s\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "100%s\n");
    nx_set_kbhit_handler([] { return 65; });
    EXPECT_EQ(nx_kbhit(), 65);
    nx_set_kbhit_handler(nullptr);
    nx_set_input_handler([](char* buffer, int size) { std::snprintf(buffer, static_cast<std::size_t>(size), "typed"); });
    char line[4];
    EXPECT_EQ(nx_input(line, 4), 0);
    EXPECT_STREQ(line, "typ");
    nx_set_input_handler(nullptr);
}

TEST_F(Errors, HookMayReportAgain)
{
    static int depth;
    depth = 0;
    nx_set_error_handler([](char const*) {
        if (++depth < 3)
            error("again");
    });
    EXPECT_EQ(error("first"), 0);
    EXPECT_EQ(depth, 3);
    nx_set_error_handler(nullptr);
}

TEST_F(Errors, OperandsAreNamed)
{
    struct {
        M<double> operand;
        char const* name;
    } const cases[] = {
        {M<double>("x", 2, 2), "x"}, {M<double>(3.9), "=3"},       {M<double>(-3.9), "=-3"},
        {M<double>(), "(temporary)"}, {M<double>(0, 1, 2), "(temporary)"}, {TM("a"), "=97"},
    };
    for (auto const& one : cases)
        EXPECT_STREQ(arrlib::OperandName(one.operand), one.name);
}

// --- what ends the process ---------------------------------------------------------------------------

using ErrorsDeathTest = Errors;

TEST_F(ErrorsDeathTest, DefaultFlagsEndTheProcess)
{
    EXPECT_EQ(nx_default_error_flags, 7);
    // What the console has shown is not shown again.
    EXPECT_EXIT(
        {
            nx_set_print_handler([](char const* text) { std::fprintf(stderr, "[%s]", text); });
            nx_frame frame("main");
            error("fatal");
        },
        testing::ExitedWithCode(1), "^\\[Error: fatal\n\ncalled from main line 0\n\\]$");
}

TEST_F(ErrorsDeathTest, FatalErrorsAreShownInABoxOnly)
{
    auto const fail = [] {
        nx_set_print_handler([](char const*) { std::fputs("PRINTED", stderr); });
        nx_default_error_flags = nx_error_throw | nx_error_console | nx_error_register;
        nx_set_fatal_error();
        std::fprintf(stderr, "%d;", nx_default_error_flags);
    };
    EXPECT_EXIT((fail(), nx_set_message_box_handler([](char const* text, char const* title) { std::fprintf(stderr, "%s|%s", title, text); }), error("x")),
                testing::ExitedWithCode(1), "^14;Orrery<RT>\\|Error: x\n\n$");
#if !defined(_WIN32)
    // Without a desktop the text goes to standard error, once.
    EXPECT_EXIT((fail(), error("x")), testing::ExitedWithCode(1), "^14;Orrery<RT>\n\nError: x\n\n\n$");
#endif
}

TEST_F(ErrorsDeathTest, ExitRunsTheEndOfTheProcess)
{
    EXPECT_EXIT(
        {
            nx_default_error_flags = nx_error_exit;
            std::atexit([] { std::fputs("at exit", stderr); });
            error("x");
        },
        testing::ExitedWithCode(1), "^at exit$");
}

} // namespace
