// How values and numbers are shown, to the byte, and the console around them.
#include "arrlib.h"
#include "runtime/number_text.h"
#include "support/capture.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <random>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
double const nan_value = arrlib::quiet_nan();

// Elements column by column.
M<double> full_of(int rows, int cols, std::initializer_list<double> re, std::initializer_list<double> im = {})
{
    M<double> made(im.size() > 0, rows, cols);
    std::copy(re.begin(), re.end(), made.addr());
    std::copy(im.begin(), im.end(), made.addi());
    return made;
}

M<double> pages_of(std::initializer_list<int> dims, int elements)
{
    M<double> made(0, 0, 0, static_cast<int>(dims.size()), dims.begin());
    for (int k = 1; k <= elements; ++k)
        *made.addr(k) = k;
    return made;
}

struct Entry {
    int at;
    double re;
    double im;
};

M<double> sparse_of(int rows, int cols, std::initializer_list<Entry> entries, bool complex = false)
{
    int const count = static_cast<int>(entries.size());
    M<double> made(complex, count, rows, cols);
    int k = 0;
    for (Entry const& entry : entries) {
        made.getindex()[k] = entry.at;
        made.spaddr()[k] = entry.re;
        if (complex)
            made.spaddi()[k] = entry.im;
        ++k;
    }
    return made;
}

M<double> text_rows(int rows, char const* columns)
{
    M<double> made = TM(columns);
    made.reshape(rows, made.size() / rows);
    return made;
}

M<double> named(char const* name, M<double> value)
{
    value.setname(name);
    return value;
}

template <class Show> std::string shown(Show&& show)
{
    Printed const printed;
    show();
    return printed.text();
}

struct Shown {
    M<double> value;
    char const* text;
};

void check(std::initializer_list<Shown> cases)
{
    for (Shown const& one : cases)
        EXPECT_EQ(shown([&] { EXPECT_EQ(disp(one.value).size(), 0); }), one.text);
}

TEST(Display, RealValues)
{
    check({
        {M<double>(3), "  3\n"},
        {full_of(2, 2, {1, 100, 2.5, -3}), "    1  2.5\n  100   -3\n"},
        {full_of(1, 3, {1.0 / 3, 123456, -1e-5}), "     0.3333  1.235e+05     -1e-05\n"},
        {full_of(1, 2, {-0.0, 9999}), "    -0  9999\n"},
        {full_of(1, 4, {nan_value, inf, -inf, -nan_value}), "   NaN   Inf  -Inf   NaN\n"},
        {full_of(2, 1, {inf, 1}), "  Inf\n    1\n"},
        {full_of(1, 2, {1e300, 5e-324}), "      1e+300  4.941e-324\n"},
        {M<double>(), "[]\n"},
        {M<double>(0, 0, 3), "[]\n"},
        {x_M, "[]\n"},
    });
}

TEST(Display, ComplexValues)
{
    check({
        {full_of(1, 1, {1}, {2}), "  1 +2i\n"},
        {full_of(1, 1, {1}, {-2}), "  1 - 2i\n"},
        {full_of(1, 2, {1, 3}, {2, 0}), "  1 +2i  3    \n"},
        {full_of(1, 2, {1, 3}, {0, -0.0}), "  1       3     \n"},
        {full_of(2, 1, {1, -10.5}, {12.25, -1}), "      1 +12.25i\n  -10.5 -    1i\n"},
        {full_of(1, 1, {1}, {nan_value}), "  1 +NaNi\n"},
        {full_of(1, 1, {1}, {-nan_value}), "  1 + NaNi\n"},
        {full_of(1, 2, {nan_value, -inf}, {inf, -inf}), "   NaN + Infi  -Inf - Infi\n"},
    });
}

TEST(Display, PagesAreShownOneByOne)
{
    // Every page has columns of its own width.
    M<double> wide = pages_of({1, 1, 2}, 2);
    wide.r(2) = 1000;
    check({
        {pages_of({2, 2, 2}, 8), "(:,:,1)\n  1  3\n  2  4\n(:,:,2)\n  5  7\n  6  8\n"},
        {wide, "(:,:,1)\n  1\n(:,:,2)\n  1000\n"},
        {pages_of({1, 2, 2, 2}, 8), "(:,:,1,1)\n  1  2\n(:,:,2,1)\n  3  4\n(:,:,1,2)\n  5  6\n(:,:,2,2)\n  7  8\n"},
        {pages_of({1, 1, 1, 2}, 2), "(:,:,1,1)\n  1\n(:,:,1,2)\n  2\n"},
        {pages_of({2, 1, 1, 1}, 2), "  1\n  2\n"},
        {pages_of({2, 0, 2}, 0), "[]\n"},
    });
}

TEST(Display, Text)
{
    M<double> pages = pages_of({1, 2, 2}, 4);
    for (int k = 1; k <= 4; ++k)
        pages.r(k) = 'a' + k;
    pages.setstr(1);
    check({
        {TM("100% hello"), "100% hello\n"},
        {text_rows(2, "adbecf"), "abc\ndef\n"},
        {TM("\xC3\xA9"), "\xC3\xA9\n"},
        {TM(""), "[]\n"},
        {pages, "(:,:,1)\nbc\n(:,:,2)\nde\n"},
    });
}

TEST(Display, SparseValues)
{
    check({
        {sparse_of(1, 12, {{2, 5, 0}, {11, -7.5, 0}}), "( 3)      5\n(12)   -7.5\n"},
        {sparse_of(9, 1, {{8, 1, 0}}), "(9)   1\n"},
        {sparse_of(1, 10, {{0, 1, 0}}), "( 1)   1\n"},
        {sparse_of(1, 1000, {{9, inf, 0}}), "(  10)   Inf\n"},
        {sparse_of(1, 1, {{0, 4, 0}}), "(1)   4\n"},
        {sparse_of(2, 2, {{1, 1, 0}, {2, -nan_value, 0}}), "(2,1)      1\n(1,2)    NaN\n"},
        {sparse_of(10, 3, {{1, 1, 0}, {29, 4, 0}}), "( 2, 1)   1\n(10, 3)   4\n"},
        // Zeros that are stored are not shown and take no room.
        {sparse_of(1, 3, {{0, -0.0, 0}, {1, 2, 0}}), "(2)   2\n"},
        {sparse_of(1, 3, {{0, 0, 0}}), "All zeros sparse\n"},
        {sparse_of(3, 3, {}), "All zeros sparse\n"},
        {sparse_of(0, 3, {}), "[]\n"},
        {sparse_of(1, 2, {{0, 0, 2}, {1, 3, 0}}, true), "(1)   0 +2i\n(2)   3    \n"},
        {sparse_of(1, 2, {{0, 0, 2}, {1, 0, -15}}, true), "(1)   0 +  2i\n(2)   0 - 15i\n"},
    });
}

TEST(Display, FormatChoosesTheDigits)
{
    struct {
        char const* mode;
        char const* text;
    } const cases[] = {
        {"long", "  3.14159265359\n"}, {"short", "  3.142\n"}, {"L", "  3.14159265359\n"}, {"bank", "  3.142\n"}, {"l", "  3.14159265359\n"}, {"", "  3.142\n"},
    };
    for (auto const& one : cases) {
        EXPECT_EQ(format(TM(one.mode)).size(), 0);
        EXPECT_EQ(shown([] { disp(pi); }), one.text) << one.mode;
    }
    format(TM("long"), TM("short"));
    EXPECT_EQ(shown([] { disp(full_of(1, 2, {1e15, 123456789012.0})); }), "         1e+15  123456789012\n");
    EXPECT_EQ(shown([] { disp(full_of(1, 1, {1.0 / 3}, {-2.0 / 3})); }), "  0.333333333333 - 0.666666666667i\n");
    EXPECT_EQ(format().size(), 0);
    EXPECT_EQ(shown([] { disp(pi); }), "  3.142\n");
}

TEST(Display, StatementShowsNameSizesAndValue)
{
    struct {
        M<double> value;
        char const* heading;
        char const* rest;
    } const cases[] = {
        {named("x", full_of(1, 2, {1, 2})), "x", " (1x2)=2 elements, dense real "},
        {named("z", full_of(1, 1, {1}, {2})), "z", " (1x1)=1 elements, dense complex "},
        {named("s", TM("hello")), "s", " (1x5)=5 elements, string  "},
        {named("n", pages_of({2, 1, 3}, 6)), "n", " (2x1x3)=6 elements, dense real "},
        {named("m", pages_of({1, 1, 1, 2}, 2)), "m", " (1x1x1x2)=2 elements, dense real "},
        {named("sp", sparse_of(3, 4, {{0, 1, 1}}, true)), "sp", " (3x4)=12 elements, sparse complex "},
        {nop_M, "[]", " (0x0)=0 elements, dense real "},
        {M<double>(3), nullptr, " (1x1)=1 elements, dense real "},
    };
    for (auto const& one : cases) {
        std::string const name = one.heading ? one.heading : "";
        std::string const value = shown([&] { disp(one.value); });
        EXPECT_EQ(shown([&] { disp_all(one.value); }), (one.heading ? name : "ans") + one.rest + " = \n" + value);
        EXPECT_EQ(shown([&] { whos_line(one.value); }), name + std::string(20 - name.size(), ' ') + one.rest + "\n");
    }
    EXPECT_EQ(shown([] { disp_all(x_M); }), "");
    EXPECT_EQ(shown([] { disp_all(format()); }), "");
    EXPECT_EQ(shown([] { disp_all(named("e", M<double>())); }), "e (0x0)=0 elements, dense real  = \n[]\n");
    std::string const longest(3000, 'n');
    EXPECT_EQ(shown([&] { whos_line(named(longest.c_str(), M<double>(1))); }), longest + " (1x1)=1 elements, dense real \n");
}

TEST(Display, Cells)
{
    M<M<double>> cell("c", 2, 2);
    cell.r(1, 1) = M<double>(5);
    cell.r(2, 1) = TM("hi");
    cell.r(2, 2) = full_of(1, 2, {1, 2});
    std::string const content = "c(1,1)\n  5\nc(2,1)\nhi\nc(1,2)\n[]\nc(2,2)\n  1  2\n";
    EXPECT_EQ(shown([&] { celldisp(cell); }), content);
    EXPECT_EQ(shown([&] { disp_all(cell); }), "c (2x2)=4 elements, dense real cell = \n" + content);
    EXPECT_EQ(shown([&] { whos_line(cell); }), "c                    (2x2)=4 elements, dense real cell\n");
    EXPECT_EQ(shown([&] { celldisp(nop_MM); }), "");
}

TEST(Display, DumpShowsTheInsides)
{
    auto const hex = [](void const* address) {
        char text[16];
        std::snprintf(text, sizeof text, "%x", static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(address)));
        return std::string(text);
    };
    M<double> full = named("d", pages_of({2, 1, 3}, 6));
    full.setlogical(1);
    EXPECT_EQ(shown([&] { dump(full); }), "**dump of d\npr = " + hex(full.addr()) + " pi = 0\nndims = 3  dims = 2 1 3 \nstr = 0 sparse = 0 logical = 1\n");
    M<double> const sparse = sparse_of(2, 2, {{1, 1, 2}}, true);
    EXPECT_EQ(shown([&] { dump(sparse); }), "**dump of \npr = " + hex(sparse.addr()) + " pi = " + hex(sparse.addi()) + " index = " + hex(sparse.getindex()) +
                                               " nnz = 1\nndims = 2  dims = 2 2 \nstr = 0 sparse = 1 logical = 0\n");
}

TEST(Display, OtherWaysToShow)
{
    EXPECT_EQ(shown([] { puts(M<double>(1)); }), "  1\n");
    EXPECT_EQ(shown([] { usage(TM("f(x)")); }), "Usage: f(x)\n");
    EXPECT_EQ(shown([] { smiley(); }), "8-)\n");
}

TEST(Display, MemoryThatFailsIsReported)
{
    M<double> const value = full_of(1, 2, {1, 2}), text = TM("ab");
    with_every_allocation_refused([&] { shown([&] { disp(value); }); });
    with_every_allocation_refused([&] { shown([&] { disp(text); }); });
}

// --- numbers ------------------------------------------------------------------------------------------

// Against the C library, for random bits, for random integers and for what is hard at the edges.
TEST(NumberText, IsThatOfTheCLibrary)
{
    std::mt19937_64 random(1);
    std::vector<double> numbers = {0, -0.0, 5e-324, -5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 9999.5, 99995, 0.00009999999, 999999999999.5, 1e-5, 0.0001, 12345, 2147483648.0, -2147483649.0, inf, -inf};
    for (int k = 0; k < 100000; ++k) {
        std::uint64_t const bits = random();
        numbers.push_back(k % 4 == 0   ? static_cast<double>(static_cast<std::int32_t>(bits)) / (bits % 7 == 0 ? 8 : 1)
                          : k % 4 == 1 ? std::bit_cast<double>(bits & 0x800FFFFFFFFFFFFF)
                                       : std::bit_cast<double>(bits));
    }
    for (double const number : numbers) {
        if (number != number)
            continue;
        for (int const precision : {4, 12, 13, 17}) {
            char ours[arrlib::number_text_size + 1], theirs[64];
            ours[arrlib::write_general(ours, number, precision)] = '\0';
            std::snprintf(theirs, sizeof theirs, "%.*g", precision, number);
            ASSERT_STREQ(ours, theirs);
            if (!std::isfinite(number))
                continue;
            char aligned[64];
            aligned[arrlib::write_aligned(aligned, number, precision, 23)] = '\0';
            std::snprintf(theirs, sizeof theirs, "%23.*g", precision, number);
            ASSERT_STREQ(aligned, theirs);
        }
    }
}

TEST(NumberText, NonfiniteSpellingsAreRewritten)
{
    struct {
        double number;
        char const* found;
        char const* text;
    } const table[] = {
        {nan_value, "-1.#QNAN0e+000", "           NaN"},
        {nan_value, "1.#QNAN0e+000", "          NaN"},
        {nan_value, "-1.#QO0e+000", "         NaN"},
        {nan_value, "1.#QO0e+000", "        NaN"},
        {nan_value, "-1.#QNAN", "     NaN"},
        {nan_value, "1.#QNAN", "    NaN"},
        {nan_value, "-1.#QO", "   NaN"},
        {nan_value, "1.#QO", "  NaN"},
        {nan_value, "  ?", "NaN"},
        {-nan_value, "-1.#IND", "    NaN"},
        {nan_value, "1.#IND", "   NaN"},
        {nan_value, "+NAN", " NaN"},
        {nan_value, "-NAN", " NaN"},
        {-nan_value, "-nan", " NaN"},
        {nan_value, "nan", "NaN"},
        {inf, "1.#INF00e+000", "           Inf"},
        {inf, "1.#IO00e+000", "          Inf"},
        {inf, "1.#INF", "   Inf"},
        {inf, "1.#IO", "   Inf"},
        {inf, "+INF", " Inf"},
        {inf, " ++", "Inf"},
        {inf, "inf", "Inf"},
        {-inf, "-1.#INF00e+000", "          -Inf"},
        {-inf, "-1.#IO00e+000", "          -Inf"},
        {-inf, "-1.#INF", "   -Inf"},
        {-inf, "-1.#IO", "   -Inf"},
        {-inf, "-INF", "-Inf"},
        {-inf, " ---", "-Inf"},
        {-inf, "-inf", "-Inf"},
        // Only the spellings of the number's own kind count.
        {inf, "nan", "nan"},
        {nan_value, "-inf", "-inf"},
        {-inf, "inf", "inf"},
        {1, "nan inf", "nan inf"},
        // What stands around it stays; what is rewritten already stays too.
        {inf, "a inf b", "a Inf b"},
        {inf, "<1.#IO>", "<   Inf>"},
        {inf, "Inf", "Inf"},
        {nan_value, "   -nan;", "    NaN;"},
    };
    for (auto const& row : table) {
        char text[32];
        std::strcpy(text, row.found);
        arrlib::spell_nonfinite(text, sizeof text, row.number);
        EXPECT_STREQ(text, row.text) << row.found;
    }
    // No room to grow: nothing is written beyond the buffer.
    char exact[] = "1.#IO";
    arrlib::spell_nonfinite(exact, sizeof exact, inf);
    EXPECT_LT(std::strlen(exact), sizeof exact);
}

// --- console --------------------------------------------------------------------------------------------

char const* typed = "";
int keys_asked = 0;

class Console : public testing::Test {
protected:
    Console()
    {
        nx_set_input_handler([](char* buffer, int size) { std::snprintf(buffer, static_cast<std::size_t>(size), "%s", typed); });
        keys_asked = 0;
    }
    ~Console() override
    {
        nx_set_input_handler(nullptr);
        nx_set_kbhit_handler(nullptr);
    }
    static double seconds_of(double pause)
    {
        auto const start = std::chrono::steady_clock::now();
        pauseM(M<double>(pause));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
};

TEST_F(Console, PrintfIsCut)
{
    std::string const longest(1500, 'x');
    Printed printed;
    EXPECT_EQ(nx_printf("%s%d", longest.c_str(), 42), 1502);
    EXPECT_EQ(printed.take(), std::string(1023, 'x'));
    EXPECT_EQ(nx_printf("%s", ""), 0);
    EXPECT_EQ(nx_print("%d"), 0);
    EXPECT_EQ(printed.text(), "%d");
}

TEST_F(Console, InputReadsANumber)
{
    struct {
        char const* line;
        double value;
    } const cases[] = {{"3.5abc\n", 3.5}, {"  -12\r\n", -12}, {"1e3", 1000}, {"word\n", 0}, {"2+3\n", 2}};
    for (auto const& one : cases) {
        typed = one.line;
        M<double> answer;
        EXPECT_EQ(shown([&] { answer = input(TM("100% sure?")); }), "100% sure?\n\n");
        EXPECT_EQ(answer.size(), 1);
        EXPECT_EQ(answer[1], one.value) << one.line;
    }
    for (char const* empty : {"", "\n", "\r\n"}) {
        typed = empty;
        shown([] {
            EXPECT_EQ(input(TM("?")).addr(), nop_M.addr());
            EXPECT_EQ(input(TM("?"), TM("s")).addr(), nop_M.addr());
        });
    }
    typed = "some text\n";
    shown([] {
        M<double> const answer = input(TM("?"), TM("s"));
        EXPECT_EQ(answer.isstr(), 1);
        EXPECT_EQ(answer.size(), 9);
    });
}

TEST_F(Console, KeysAreAskedFor)
{
    nx_set_kbhit_handler([] { return ++keys_asked == 2 ? 27 : 0; });
    EXPECT_EQ(kbhitM()[1], 0);
    EXPECT_EQ(kbhitM()[1], 27);
    keys_asked = 0;
    EXPECT_EQ(shown([] { pauseM(); }), "\n");
    EXPECT_EQ(keys_asked, 2);
}

TEST_F(Console, PausesAreRoundedAndSwitched)
{
    Printed const printed;
    for (double const none : {0.4, 0.0, -3.0, nan_value, -inf})
        EXPECT_LT(seconds_of(none), 0.4) << none;
    double const one = seconds_of(0.5);
    EXPECT_GE(one, 0.99);
    EXPECT_LT(one, 1.9);
    for (char const* off : {"on", "off", ""}) {
        pauseM(TM("n"));
        M<double> word = TM(off);
        word.setstr(1);
        pauseM(word);
        EXPECT_LT(seconds_of(30), 5) << off;
    }
    pauseM(TM("never"));
    EXPECT_GE(seconds_of(0.6), 0.99);
    EXPECT_EQ(printed.text(), "");
}

TEST_F(Console, ControlsAreNotPrinted)
{
    EXPECT_EQ(shown([] {
        clc();
        home();
    }),
              "");
}

#if !defined(_WIN32)

// In a process of its own, whose standard input is replaced: a pipe, then a terminal on which a key
// is pressed without the end of a line.
TEST(ConsoleDeathTest, KeysAndLinesOfStandardInput)
{
    EXPECT_EXIT(
        {
            int ends[2];
            bool good = pipe(ends) == 0 && dup2(ends[0], STDIN_FILENO) == 0;
            good = good && nx_kbhit() == 0 && write(ends[1], "\xE4k", 2) == 2;
            good = good && nx_kbhit() == 0xE4 && nx_kbhit() == 'k' && nx_kbhit() == 0;
            int const terminal = posix_openpt(O_RDWR | O_NOCTTY);
            good = good && grantpt(terminal) == 0 && unlockpt(terminal) == 0;
            good = good && dup2(open(ptsname(terminal), O_RDWR | O_NOCTTY), STDIN_FILENO) == 0;
            good = good && nx_kbhit() == 0 && write(terminal, "q", 1) == 1 && nx_kbhit() == 'q' && nx_kbhit() == 0;
            std::_Exit(good ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_EXIT(
        {
            int ends[2];
            bool good = pipe(ends) == 0 && dup2(ends[0], STDIN_FILENO) == 0 && write(ends[1], "12 apples\nlast", 14) == 14;
            close(ends[1]);
            nx_set_print_handler([](char const*) {});
            good = good && input(TM("?"))[1] == 12 && input(TM("?"), TM("s")).size() == 4 && input(TM("?")).size() == 0;
            pauseM(); // the end of the input is a key
            std::_Exit(good ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

#endif

} // namespace
