// Formatted text.
#include "arrlib.h"
#include "io/format.h"
#include "io/print.h"
#include "support/capture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

M<double> row(std::initializer_list<double> elements)
{
    M<double> made(0, 1, static_cast<int>(elements.size()));
    std::copy(elements.begin(), elements.end(), made.addr());
    return made;
}

std::string text_of(M<double> const& value)
{
    EXPECT_TRUE(value.isstr());
    std::string text;
    for (int k = 1; k <= value.size(); ++k)
        text += arrlib::character_code(value[k]);
    return text;
}

struct Case {
    char const* format;
    std::vector<M<double>> arguments;
    std::string text;
};

std::string printed(char const* format, std::vector<M<double>> const& arguments)
{
    M<M<double>> cells(0, 1, static_cast<int>(arguments.size()));
    for (std::size_t k = 0; k < arguments.size(); ++k)
        cells.r(static_cast<double>(k + 1)) = arguments[k];
    return text_of(sprintf(TM(format), cells));
}

void expect(std::initializer_list<Case> cases)
{
    for (Case const& one : cases)
        EXPECT_EQ(printed(one.format, one.arguments), one.text) << one.format;
}

TEST(Format, FormatIsRecycled)
{
    expect({
        {"%d,", {row({1, 2, 3})}, "1,2,3,"},
        {"%d %d\n", {row({1, 2, 3})}, "1 2\n3"},
        {"a%db%dc", {row({1, 2, 3})}, "a1b2ca3"},
        {"%d and %d;", {M<double>(1), row({2, 3})}, "1 and 2;3"},
        {"%s\n", {TM("abc")}, "abc"},
        {"%s\n", {TM("abc"), TM("def")}, "abc\ndef"},
        {"%s=%d;", {TM("a"), M<double>(1), TM("b"), M<double>(2)}, "a=1;b=2;"},
        {"%d,%s\n", {M<double>(1), TM("ab"), M<double>(2), TM("")}, "1,ab\n2,"},
        {"%s", {row({72, 105})}, "Hi"},
        {"%d ", {TM("AB")}, "65 66 "},
        {"%c%c-", {TM("abc")}, "ab-c"},
        {"text", {row({1, 2, 3}), M<double>(4)}, "text"},
        {"text%s", {M<double>()}, "text"},
        {"text%d", {M<double>()}, ""},
        {"text", {M<double>()}, "text"},
        {"", {M<double>(1)}, ""},
        {"%d%n.%d;", {row({1, 2, 3})}, "1.3;"},
        {"100%% of %d%%\\n", {M<double>(7)}, "100% of 7%\n"},
        {"a\\tb\\\\n\\q\\%d\\", {M<double>(7)}, "a\tb\\nq7"},
        {"%d", {TM("\xE4")}, "-28"},
    });
}

TEST(Format, IntegersHaveThirtyTwoBits)
{
    expect({
        {"%d %i %D %I", {row({1, -2, 3.9, -4.9})}, "1 -2 3 -4"},
        {"%o %O %u %U %x %X", {row({8, 9, 10, -1, 255, 255})}, "10 11 10 4294967295 ff FF"},
        {"%d %u %x ", {row({3e9, 3e9, 3e9, 4294967296.0 + 5, -3e9, 1e300})}, "-1294967296 3000000000 b2d05e00 5 1294967296 0 "},
        {"%ld %hd %Ld %lu %lld %hhd", {row({1, 70000, 3, 4, 5, 300})}, "1 70000 3 4 5 300"},
        {"x=%5d|%d|%x|%u", {row({inf, -inf, nan, inf})}, "Inf-InfNaNInf"},
        {"%bx %tx", {row({1, 1})}, "0000000000000FF3000008F3"},
        {"%5Bd|%Tu|%bo", {row({-2, 0.1, nan})}, "000000000000000CDCCCCCD30000000000008FF7"},
        {"%c%c%5c|%-3c|", {row({65.9, 322, 66, 67})}, "AB    B|C  |"},
    });
}

TEST(Format, NumbersThatAreNotFinite)
{
    expect({
        {"%5.1f", {M<double>(nan)}, "  NaN"},
        {"%f|%e|%g|%F|%E|%G", {row({inf, -inf, nan, nan, -inf, inf})}, "Inf|-Inf|NaN|NaN|-Inf|Inf"},
        {"%+f|%+g|%+e|%g", {row({inf, -inf, nan, -nan})}, " Inf|-Inf| NaN| NaN"},
        {"%06.2f|%-6f|%+6E|", {row({inf, -inf, nan})}, "   Inf|-Inf  |   NaN|"},
        {"inf nan %f", {M<double>(inf)}, "inf nan Inf"},
    });
}

// What is no conversion is text; what a conversion has no argument for is left out.
TEST(Format, MeaninglessConversions)
{
    Warnings const warnings;
    expect({
        {"%", {M<double>(1)}, "%"},
        {"%d%", {row({1, 2})}, "1%2%"},
        {"%5%|%d", {M<double>(1)}, "%|1"},
        {"%y% d%d|%-5", {M<double>(1)}, "%y% d1|%-5"},
        {"%*d|%.*f|%*.*g", {row({5, 6, 7})}, "5|6.000000|7"},
        {"%5-3d|%..2f|%d", {row({5, 6, 7})}, "%5-3d|%..2f|7"},
        {"%1$d", {M<double>(1)}, "%1$d"},
        {"%[a]%l", {M<double>(1)}, "%[a]%"},
        {"%a %m", {M<double>(1)}, "%a %m"},
        {"%99999999999999999999d%n", {row({1, 2})}, std::string(31999, ' ')},
    });
}

TEST(Format, ZeroCharactersEndTheirPiece)
{
    M<double> const zeros = row({65, 0, 66});
    M<double> const format = row({'%', 'd', 0, '%', 'd'});
    EXPECT_EQ(text_of(sprintf(TM("%s"), zeros)), "A");
    EXPECT_EQ(text_of(sprintf(TM("<%c>"), zeros)), "<A><><B>");
    EXPECT_EQ(text_of(sprintf(TM("%3c|%-3c|"), row({0, 0}))), "  ||");
    EXPECT_EQ(text_of(sprintf(format, row({1, 2}))), "12");
    EXPECT_EQ(text_of(sprintf(format)), "%d");
}

TEST(Format, LongTextsAreCutWithAWarning)
{
    M<double> const x = row({1, 2}), one(1);
    struct {
        std::string format;
        M<double> argument;
        std::string text;
        Texts warnings;
    } const cases[] = {
        {std::string(31 * 3, ' ') + "%d", x, std::string(31 * 3, ' ') + "1" + std::string(31 * 3, ' ') + "2", {}},
        {std::string(2046, 'a') + "%d", one, std::string(2046, 'a') + "1", {}},
        {std::string(2047, 'a') + "%d", x, std::string(2047, 'a') + "%", {"Mstr: buffer too small - chopped"}},
        {"%31999d", one, std::string(31998, ' ') + "1", {}},
        {".%31999d", one, "." + std::string(31998, ' '), {"format: piece too long - chopped"}},
        {"%40000d", x, std::string(2 * 31999, ' '), {"format: piece too long - chopped"}},
        {"%.99999f", one, "1." + std::string(31997, '0'), {"format: piece too long - chopped"}},
        {"%-#99999.99999G|", one, "1." + std::string(31997, '0') + "|", {"format: piece too long - chopped"}},
        {"%s", M<double>(TM(std::string(31999, 'b').c_str())), std::string(31999, 'b'), {}},
        {"%s", M<double>(TM(std::string(32001, 'b').c_str())), std::string(31999, 'b'), {"format: piece too long - chopped"}},
    };
    for (auto const& each : cases) {
        Warnings const warnings;
        Printed const shown;
        EXPECT_EQ(text_of(sprintf(TM(each.format.c_str()), each.argument)), each.text) << each.format.substr(0, 40);
        EXPECT_EQ(warnings.all(), each.warnings) << each.format.substr(0, 40);
    }
    Warnings const warnings;
    std::string format, text;
    for (int k = 1; k <= 33; ++k) {
        format += "%d,";
        EXPECT_EQ(text_of(sprintf(TM((format + "%%").c_str()), one_M)).front(), '1');
        EXPECT_EQ(warnings.all().size(), k < 32 ? 0u : static_cast<unsigned>(k - 31)) << k;
    }
    EXPECT_EQ(warnings.all().front(), "format: more than 32 pieces - chopped");
}

#if defined(__GLIBC__)

std::string c_library(std::string const& format, double x)
{
    char text[2000];
    char const letter = format.back();
    std::string const marks = format.substr(0, format.size() - 1);
    auto const whole = static_cast<std::int32_t>(static_cast<std::int64_t>(x));
    if (std::strchr("feg", std::tolower(letter)))
        std::snprintf(text, sizeof text, format.c_str(), x);
    else
        std::snprintf(text, sizeof text, (marks + static_cast<char>(letter == 'X' ? 'X' : std::tolower(letter))).c_str(), whole);
    return text;
}

// Any marks, any letter, numbers of every size: the bytes are those of the C library.
TEST(Format, BesideTheCLibrary)
{
    std::mt19937_64 random(7);
    auto const below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    for (int round = 0; round < 100000; ++round) {
        std::string format = "%";
        for (unsigned flags = below(4); flags > 0; --flags)
            format += "-+#0"[below(4)];
        if (below(2))
            format += std::to_string(below(below(8) ? 30 : 400));
        if (below(2))
            format += "." + (below(8) ? std::to_string(below(below(8) ? 20 : 400)) : "");
        bool const integer = below(2);
        format += integer ? "diouxXDIOU"[below(10)] : "feEgGF"[below(6)];
        double x = 0;
        switch (below(5)) {
        case 0:
            x = std::ldexp(static_cast<double>(random()), static_cast<int>(below(2000)) - 1060);
            break;
        case 1:
            x = static_cast<double>(below(2000000)) / 1000;
            break;
        case 2:
            x = static_cast<double>(below(100)) / 2;
            break;
        case 3:
            x = static_cast<double>(random() >> below(64));
            break;
        default:
            x = std::pow(10, static_cast<double>(below(25)) - 8);
        }
        x = below(2) ? x : -x;
        if (integer && !(std::fabs(x) < 0x1p63))
            continue;
        ASSERT_EQ(printed(format.c_str(), {M<double>(x)}), c_library(format, x)) << format << " of " << x;
    }
}

#endif

TEST(Format, EveryKindOfArgument)
{
    M<double> const x = row({1, 2, 3}), a = TM("abc");
    M<double> y = x;
    M<M<double>> const cells = (CL(x), a);
    M<double> complex(1, 1, 1), sparse(0, 1, 2, 2), count, message;
    complex.r(1) = complex.i(1) = 5;
    sparse.getindex()[0] = 1;
    sparse.spaddr()[0] = 7;
    EXPECT_EQ(text_of(sprintf(TM("%d %s\n"), 1, a)), "1 abc");
    EXPECT_EQ(text_of(sprintf(TM("%g,"), 2.5, x, y(2), y(one_M), (BR(x), y))), "2.5,1,2,3,2,1,1,2,3,1,2,3,");
    EXPECT_EQ(text_of(sprintf(TM("%d"), cells, 7)), "123979899" "7");
    EXPECT_EQ(text_of(sprintf(TM("%d"), (CL(x), 4.0))), "1234");
    EXPECT_EQ(text_of(sprintf(TM("%d"), complex, sparse)), "50700");
    EXPECT_EQ(text_of(sprintf(TM("%n%d"), x)), "2");
    EXPECT_EQ(text_of(sprintf(TM("%d\\n%%"))), "%d\n%%");
    EXPECT_EQ(text_of(sprintf(TM("%%"), CL())), "%%");
    EXPECT_EQ(text_of(sprintf(TM("%+8.3f"), (CL(one_M)), i_o, count, message)), "  +1.000");
    EXPECT_EQ(count[1], 8);
    EXPECT_TRUE(message.isstr() && message.size() == 0);
    EXPECT_EQ(sprintf(TM(""), i_o, count).size(), 0);
    EXPECT_EQ(count[1], 0);
    EXPECT_EQ(text_of(sprintf(TM("%p"), x)).substr(0, 2), "0x");
    EXPECT_EQ(x[1], 1);
    EXPECT_TRUE(sparse.issparse() && y.dirty());
}

TEST(Format, PrintsThroughTheHook)
{
    Printed shown;
    M<double> const x = row({1, 2, 3});
    M<double> count, message;
    EXPECT_EQ(printf(TM("%d;"), x).size(), 0);
    EXPECT_EQ(shown.all(), Texts{"1;2;3;"});
    shown.take();
    fprintf(TM("100%%\\n"));
    fprintf(one_M, TM("%d\n"), x);
    fprintf(1, TM("x=%d%s"));
    fprintf(TM("%s%%"), (CL(TM("a")), TM("b")), i_o, count, message);
    printf(TM("%d"), M<double>());
    EXPECT_EQ(shown.take(), "100%\n1\n2\n3\na%b");
    EXPECT_EQ(count[1], 3);
    EXPECT_TRUE(message.isstr() && message.size() == 0);
    // Nothing is lost between the blocks of a long text.
    M<double> many(0, 30000, 1);
    std::string text;
    for (int k = 1; k <= many.size(); ++k)
        text += std::to_string(static_cast<int>(many.r(k) = k)) + "\n";
    fprintf(TM("%g\n"), many);
    EXPECT_EQ(shown.take(), text);
    EXPECT_EQ(text_of(sprintf(TM("%g\n"), many)), text);
}

TEST(Format, ReportsAndFullFiles)
{
    struct Sink {
        std::size_t room;
        static bool write(void* to, char const*, std::size_t size) { return std::exchange(static_cast<Sink*>(to)->room, 0) >= size; }
    } full = {70000};
    arrlib::ParsedFormat format("%30000d");
    arrlib::TextOutput out({&full, Sink::write});
    EXPECT_FALSE(arrlib::print_value(format, row({1, 2, 3, 4}), out) && out.flush());
    EXPECT_EQ(out.sent(), 60000u);

    arrlib::ParsedFormat corrupt("a%db");
    corrupt.pieces[0].print = nullptr;
    {
        Reports const reports;
        EXPECT_FALSE(arrlib::print_value(corrupt, one_M, out));
        EXPECT_EQ(reports.all(), Texts{"sprintf: unknown type character"});
    }
    EXPECT_EQ(thrown_by([&] { arrlib::print_value(corrupt, one_M, out); }), "Error: sprintf: unknown type character\n\n");
    Reports const reports;
    fprintf(row({1, 2}), TM("x"));
    fprintf(77, TM("x"));
    EXPECT_EQ(reports.all(), (Texts{"Size of fid (temporary) not one.", "Fid not opened."}));
}

TEST(Format, MemoryThatFails)
{
    M<double> const format = TM("%d %5.3f\n"), x = row({1, 2, 3});
    M<double> const sparse(0, 0, 40, 40);
    with_every_allocation_refused([&] {
        M<double> const text = sprintf(format, x, sparse, x);
        EXPECT_TRUE(text.size() == 0 || text.size() > 6000);
    });
}

} // namespace
