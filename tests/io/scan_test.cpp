// Scanned text.
#include "arrlib.h"
#include "io/print.h"
#include "io/files.h"
#include "io/scan.h"
#include "support/capture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>

using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

M<double> row(std::initializer_list<double> elements)
{
    M<double> made(0, 1, static_cast<int>(elements.size()));
    std::copy(elements.begin(), elements.end(), made.addr());
    return made;
}

// "2x3: 1 2 3 4 5 6" in the order of columns; text in quotation marks.
std::string shown(M<double> const& value)
{
    std::string text = std::to_string(value.rows()) + "x" + std::to_string(value.cols()) + ":";
    if (value.isstr()) {
        text += " '";
        for (int k = 1; k <= value.size(); ++k)
            text += arrlib::character_code(value[k]);
        return text + "'";
    }
    for (int k = 1; k <= value.size(); ++k) {
        char number[64];
        std::snprintf(number, sizeof number, " %.17g", value[k]);
        text += value[k] == value[k] ? number : " NaN";
    }
    return text;
}

// A text that comes in blocks.
struct Blocks : arrlib::TextSource {
    Blocks(std::string text, std::size_t size) : text_(std::move(text)), size_(size) {}
    std::string rest() const { return std::string(at, end) + text_.substr(next_); }

private:
    bool fill() override
    {
        std::size_t const count = std::min(size_, text_.size() - next_);
        block_ = std::make_unique<char[]>(count); // what was before is gone
        std::memcpy(block_.get(), text_.data() + next_, count);
        next_ += count;
        at = block_.get();
        end = at + count;
        return count > 0;
    }

    std::string text_;
    std::size_t size_, next_ = 0;
    std::unique_ptr<char[]> block_;
};

std::string scanned(std::string const& text, char const* format_text, std::size_t block, std::string* rest = nullptr)
{
    Blocks source(text, block);
    arrlib::ParsedFormat format(format_text);
    arrlib::Scanned values;
    arrlib::scan(format, source, arrlib::ScanFrom::stream, inf, values);
    if (rest)
        *rest = source.rest();
    return shown(arrlib::ScanSize().shape(values, format.only_text));
}

struct Case {
    char const* text;
    char const* format;
    char const* value;
};

constexpr Case cases[] = {
    {"3 4 5", "%d", "3x1: 3 4 5"},
    {"  1,2 ,3", "%d,", "2x1: 1 2"},
    {"1,2,3", "%d,", "3x1: 1 2 3"},
    {"1 2.5 x", "%d %f", "2x1: 1 2.5"},
    {"1 2;3 4;", "%d%d;", "4x1: 1 2 3 4"},
    {"12345", "%2d", "3x1: 12 34 5"},
    {"1 2 3 4", "%*d%d", "2x1: 2 4"},
    {"abc", "%c", "1x3: 'abc'"},
    {"one two", "%s", "1x6: 'onetwo'"},
    {"abcdef", "%3s", "1x6: 'abcdef'"},
    {"x1y2", "%c%d", "4x1: 120 1 121 2"},
    {"\xE4", "%c%*n%*d", "1x1: -28"},
    {"10 10 10 10", "%d%i%o%x", "4x1: 10 10 8 16"},
    {"0x1F 017 08", "%i", "4x1: 31 15 0 8"},
    {"ff 0xFFFFFFFF fffffffff -1", "%X", "4x1: 255 4294967295 4294967295 4294967295"},
    {"3000000000 -3000000000 99999999999999999999 +7", "%d", "4x1: 2147483647 -2147483648 2147483647 7"},
    {"4294967295 4294967296 -1 -4294967296", "%u", "4x1: 4294967295 4294967295 4294967295 4294967295"},
    {"7 8", "%D %U", "2x1: 7 8"},
    {"1e3 -.5 5. 1.5E+2", "%g", "4x1: 1000 -0.5 5 150"},
    {"nan -inf Infinity", "%E", "3x1: NaN -inf inf"},
    {"1e400 -1e-400 0x1.8p1 1e+", "%lf", "4x1: inf -0 3 1"},
    {"1 2", "%hd%Lg", "2x1: 1 2"},
    {"5%6%", "%d%%", "2x1: 5 6"},
    {"12ab", "%d%n", "2x1: 12 1"},
    {"dead beef", "%p%n", "2x1: 1 2"},
    {"1 2", "%d%n%*n %d", "3x1: 1 1 2"},
    {"", "%d", "0x0:"},
    {"", "%s", "0x0: ''"},
    {"abc", "", "0x0: ''"},
    // Rounds that read nothing end.
    {"x", "abc", "0x0: ''"},
    {"x", " ", "0x0: ''"},
    {"x", "%*d", "0x0:"},
    {"x", "%n", "1x1: 0"},
    {"x", "%n%n%*d", "2x1: 0 0"},
    {"abcabc", "abc", "0x0: ''"},
    // What the C library would not scan with.
    {"5", "%5.2f", "0x0:"},
    {"5", "%-d", "0x0:"},
    {"5", "%[0-9]%d", "0x0:"},
    {"% 5", "%y%d", "0x0:"},
    {"5", "%99999999999d", "1x1: 5"},
    {"5 6", "%1$d%d", "0x0:"},
    {"5", "%", "0x0: ''"},
};

TEST(Scan, Table)
{
    for (Case const& one : cases) {
        EXPECT_EQ(shown(sscanf(TM(one.text), TM(one.format))), one.value) << one.text << " with " << one.format;
        EXPECT_EQ(scanned(one.text, one.format, 1), one.value) << one.text << " with " << one.format;
    }
}

// Behind %c a text goes on at its second character, a stream where it is.
TEST(Scan, TextBehindACharacter)
{
    EXPECT_EQ(shown(sscanf(TM("abcd"), TM("%2c"))), "1x4: 'abcd'");
    EXPECT_EQ(scanned("abcd", "%2c", 9), "1x2: 'ac'");
    EXPECT_EQ(shown(sscanf(TM("a b"), TM(" %c"))), "1x3: 'abb'");
    EXPECT_EQ(scanned("a b", " %c", 9), "1x2: 'ab'");
    EXPECT_EQ(scanned(std::string("a\0b", 3), "%c", 9), "1x1: 'a'");
    EXPECT_EQ(scanned(std::string("a\0b c", 5), "%s", 9), "1x2: 'ac'");
    EXPECT_EQ(shown(sscanf(row({'1', 0, '2'}), TM("%d"))), "1x1: 1");
}

// What is left is where the next reader begins.
TEST(Scan, StreamsAreLeftBehindWhatWasRead)
{
    struct {
        char const* text;
        char const* format;
        char const* rest;
    } const rests[] = {
        {"12 x", "%d", "x"}, {"1.5e+x", "%f", "x"}, {"+x", "%d", "x"}, {"0xg", "%x", "g"},
        {"abx", "abc%d", "x"}, {"  12", "%1d%c%d", ""}, {"infinite", "%g", "e"}, {"-.", "%g", ""},
    };
    for (auto const& one : rests)
        for (std::size_t block : {1u, 3u, 100u}) {
            std::string rest;
            scanned(one.text, one.format, block, &rest);
            EXPECT_EQ(rest, one.rest) << one.text;
        }
}

TEST(Scan, SizesShapeTheResult)
{
    M<double> const text = TM("1 2 3 4 5"), format = TM("%d");
    struct {
        M<double> size;
        char const* value;
    } const sizes[] = {
        {M<double>(2), "2x1: 1 2"},
        {M<double>(9), "5x1: 1 2 3 4 5"},
        {M<double>(inf), "5x1: 1 2 3 4 5"},
        {M<double>(2.9), "2x1: 1 2"},
        {M<double>(0), "0x0:"},
        {M<double>(-1), "0x0:"},
        {M<double>(NAN), "0x0:"},
        {row({2, inf}), "2x3: 1 2 3 4 5 0"},
        {row({2, 3}), "2x3: 1 2 3 4 5 0"},
        {row({2, 2}), "2x2: 1 2 3 4"},
        {row({2, 9}), "2x3: 1 2 3 4 5 0"},
        {row({7, 1}), "7x1: 1 2 3 4 5 0 0"},
        {row({0, inf}), "0x0:"},
        {row({-2, -2}), "0x0:"},
        {row({inf, inf}), "5x1: 1 2 3 4 5"},
        {row({inf, 1}), "5x1: 1 2 3 4 5"},
    };
    for (auto const& one : sizes) {
        M<double> count(77), message(77);
        M<double> const value = sscanf(text, format, one.size, i_o, count, message);
        EXPECT_EQ(shown(value), one.value);
        EXPECT_LE(count[1], 5);
        EXPECT_TRUE(message.isstr() && message.size() == 0);
    }
    EXPECT_EQ(shown(sscanf(TM("hello world"), TM("%s"), 3)), "1x3: 'hel'");
    EXPECT_EQ(shown(sscanf(TM("abcde"), TM("%c"), row({2, inf}))), std::string("2x3: 'abcde\0'", 13));
    M<double> bad = row({2, 3, 4}), count(5), message(5);
    bad.setname("bad");
    Reports reports;
    EXPECT_EQ(sscanf(text, format, bad, i_o, count, message).size() + count.size() + message.size(), 0);
    sscanf(text, format, M<double>(), i_o, count);
    EXPECT_EQ(reports.all(), (Texts{"scanf: size bad is not one or two elements", "scanf: size (temporary) is not one or two elements"}));
    EXPECT_EQ(thrown_by([&] { sscanf(text, format, bad); }), "Error: scanf: size bad is not one or two elements\n\n");
}

TEST(Scan, LongWordsAndNumbers)
{
    std::string const word(70000, 'w'), zeros(70000, '0');
    EXPECT_EQ(sscanf(TM(word.c_str()), TM("%s")).size(), 70000);
    EXPECT_EQ(sscanf(TM(word.c_str()), TM("%40000s%1s")).size(), 70000);
    EXPECT_EQ(shown(sscanf(TM((zeros + "." + zeros + "5e70001").c_str()), TM("%g"))), "1x1: 5");
    EXPECT_EQ(shown(sscanf(TM(("1" + zeros + "e-70000 0." + zeros + "1e-5 1" + zeros).c_str()), TM("%g"))), "3x1: 1 0 inf");
    EXPECT_EQ(shown(sscanf(TM((zeros + "12 1" + zeros).c_str()), TM("%d"))), "2x1: 12 2147483647");
    EXPECT_EQ(shown(sscanf(TM(("0x1" + zeros + "p-280000").c_str()), TM("%g"))), "1x1: 1");
}

#if defined(__GLIBC__)

// Random texts with one conversion each: the same values, read to the same place.
TEST(Scan, BesideTheCLibrary)
{
    constexpr char const* formats[] = {"%lf", "%3lf", "%2lf", "%7lf", "%ld", "%li", "%lx", "%lo", "%2li", "%3lx", "%1ld"};
    std::mt19937_64 random(5);
    for (int round = 0; round < 200000; ++round) {
        std::string text;
        bool const decimal = random() % 2;
        for (auto length = random() % 12; length > 0; --length)
            text += decimal ? "0123456789.e+-"[random() % 14] : "012xXpPeE.+-aAfFnNiItTyY "[random() % 25];
        std::string const format = formats[random() % std::size(formats)];
        bool const real = format.back() == 'f';
        double number = 0;
        long whole = 0;
        int end = -1;
        int const result = real ? std::sscanf(text.c_str(), (format + "%n").c_str(), &number, &end) : std::sscanf(text.c_str(), (format + "%n").c_str(), &whole, &end);
        Blocks source(text, 1 + random() % 6);
        arrlib::ParsedFormat parsed(format.c_str());
        arrlib::Scanned values;
        arrlib::scan(parsed, source, arrlib::ScanFrom::stream, 1, values);
        ASSERT_EQ(values.count, result == 1 ? 1u : 0u) << text << " with " << format;
        if (result != 1)
            continue;
        if (!real && std::strchr("xo", format.back()))
            number = std::abs(whole) > 4294967295 ? 4294967295.0 : static_cast<std::uint32_t>(whole);
        else if (!real)
            number = static_cast<double>(std::clamp<long>(whole, -2147483648, 2147483647));
        double const value = values.values[0];
        EXPECT_TRUE((std::isnan(number) && std::isnan(value)) || (value == number && std::signbit(value) == std::signbit(number)))
            << text << " with " << format << ": " << value << " for " << number;
        EXPECT_EQ(source.rest(), text.substr(static_cast<std::size_t>(end))) << text << " with " << format;
    }
}

#endif

TEST(Scan, Files)
{
    TemporaryFolder const folder;
    M<double> const fid = fopen(TM(folder.path("x.txt").c_str()), TM("w+"));
    M<double> x(0, 3, 4), count, message;
    for (int k = 1; k <= 12; ++k)
        x.r(k) = k / 4.0;
    fprintf(fid, TM("head %d\n"), CL(x(one_M)), i_o, count, message);
    EXPECT_EQ(count[1], 7);
    fprintf(fid, TM("%g %g %g\n"), x);
    fprintf(fid, TM("%s\n"), TM("tail"), TM(""));
    frewind(fid);
    EXPECT_EQ(shown(fscanf(fid, TM("head%d"), 1)), "1x1: 0");
    EXPECT_EQ(shown(fscanf(fid, TM("%g"), row({3, inf}), i_o, count)), shown(x));
    EXPECT_EQ(count[1], 12);
    EXPECT_EQ(shown(fscanf(fid, TM("%s"))), "1x4: 'tail'");
    EXPECT_EQ(fscanf(fid, TM("%s")).size(), 0);
    fclose(fid);
    Reports const reports;
    EXPECT_EQ(fscanf(fid, TM("%s"), 3, i_o, count, message).size() + count.size() + message.size(), 0);
    EXPECT_EQ(reports.all(), Texts{"Fid not opened."});
}

TEST(Scan, ReportsAndMemoryThatFails)
{
    arrlib::ParsedFormat corrupt("%d%d");
    corrupt.pieces[1].letter = 'q';
    Blocks source("1 2", 9);
    arrlib::Scanned values;
    {
        Reports const reports;
        arrlib::scan(corrupt, source, arrlib::ScanFrom::stream, inf, values);
        EXPECT_EQ(values.count, 1u);
        EXPECT_EQ(reports.all(), Texts{"sscanf: unknown type character"});
    }
    std::string text;
    for (int k = 0; k < 5000; ++k)
        text += "1 ";
    M<double> const numbers = TM((text + std::string(200, '7')).c_str()), format = TM("%g"), size = row({2, inf});
    M<double> const sparse(0, 0, 40, 40);
    with_every_allocation_refused([&] {
        M<double> const x = sscanf(numbers, format, size);
        EXPECT_TRUE(x.size() == 0 || x.size() == 5002);
        EXPECT_EQ(sscanf(sparse, format).size(), 0);
    });
}

using ScanDeathTest = testing::Test;

TEST(ScanDeathTest, MoreValuesThanAMatrixHolds)
{
    EXPECT_EXIT(
        {
            nx_set_error_handler([](char const* message) { std::fputs(message, stderr); });
            arrlib::Scanned values;
            values.count = static_cast<std::size_t>(arrlib::most_elements);
            values.store(1);
        },
        testing::ExitedWithCode(1), "^scanf: Matrix too large$");
}

} // namespace
