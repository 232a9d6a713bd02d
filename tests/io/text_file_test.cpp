// Text files of numbers, read and written.
#include "arrlib.h"
#include "runtime/workers.h"
#include "support/capture.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

M<double> name_of(std::string const& path)
{
    return TM(path.c_str());
}

// The numbers row by row, "2x3: 1 2 3 4 5 6"; infinities and NaN spelt like any other number.
std::string table_of(M<double> const& value)
{
    std::string text = std::to_string(value.rows()) + "x" + std::to_string(value.cols()) + ":";
    for (int row = 1; row <= value.rows(); ++row)
        for (int col = 1; col <= value.cols(); ++col) {
            char number[64];
            std::snprintf(number, sizeof number, " %.17g", *value.addr(row, col));
            text += *value.addr(row, col) == *value.addr(row, col) ? number : " NaN";
        }
    return text;
}

class TextFile : public testing::Test {
protected:
    TemporaryFolder folder;
    M<double> m{"m", 1, 1};

    TextFile() { m.r(1) = 77; }
    std::string load(std::string const& content)
    {
        EXPECT_EQ(loadascii(name_of(folder.write("in.txt", content)), m).size(), 0);
        return table_of(m);
    }
};

TEST_F(TextFile, ManySpellingsAreRead)
{
    struct {
        char const* content;
        char const* table;
    } const cases[] = {
        {"1 2 3\n4 5 6\n", "2x3: 1 2 3 4 5 6"},
        {"1", "1x1: 1"},
        {"1 2\n3 4", "2x2: 1 2 3 4"},
        {"1\t2\r\n3\t4\r\n", "2x2: 1 2 3 4"},
        {"\n\n  1   2  \n\n \t \n3 4\n\n\n", "2x2: 1 2 3 4"},
        {"+5 -5 .5 -.5 5. +.5e1 1E2 1e+02 1e-02 007", "1x10: 5 -5 0.5 -0.5 5 5 100 100 0.01 7"},
        {"1e400 -1e400 1e-400 -1e-400 +1e400", "1x5: inf -inf 0 -0 inf"},
        {"1e99999999999 1e-99999999999 0e999999", "1x3: inf 0 0"},
        {"4.9e-324 1.7976931348623157e308 0.1 123456789012345678", "1x4: 4.9406564584124654e-324 1.7976931348623157e+308 0.10000000000000001 1.2345678901234568e+17"},
        {"NaN Inf -Inf nan inf -inf NAN INF +Inf -NaN", "1x10: NaN inf -inf NaN inf -inf NaN inf inf NaN"},
        {"1.#INF -1.#INF 1.#QNAN -1.#QNAN 1.#IND -1.#IND 1.#INF00e+000 1.#QNAN0e+000", "1x8: inf -inf NaN NaN NaN NaN inf NaN"},
    };
    for (auto const& one : cases) {
        Reports const reports;
        EXPECT_EQ(load(one.content), one.table);
        EXPECT_TRUE(reports.all().empty()) << one.content;
    }
    EXPECT_STREQ(m.getname(), "m");
    load("nan");
    std::uint64_t bits;
    std::memcpy(&bits, m.addr(), sizeof bits);
    EXPECT_EQ(bits, 0x7FFFFFFFFFFFFFFFu);
}

TEST_F(TextFile, LoadedValueIsAPlainOne)
{
    m = TM("text");
    M<double> const shared = m;
    load("65 66\n");
    EXPECT_FALSE(m.isstr() || m.isc() || m.issparse());
    EXPECT_EQ(shared.size(), 4);
    // A selection is assigned to as by any other statement.
    M<double> target(0, 2, 2);
    for (int k = 1; k <= 4; ++k)
        target.r(k) = 0;
    loadascii(name_of(folder.path("in.txt")), target(one_M, c_p));
    EXPECT_EQ(table_of(target), "2x2: 65 66 0 0");
}

// What is wrong with a file is reported, and the output stays as it was.
TEST_F(TextFile, BadFilesAreRefused)
{
    struct {
        std::string path;
        std::string message;
    } const cases[] = {
        {folder.path("missing.txt"), "loadascii: %s not found"},
        {folder.path("no/such/folder"), "loadascii: %s not found"},
        {"", "loadascii: %s not found"},
        {folder.path(), "could not read %s"},
        {folder.write("empty", ""), "could not read %s"},
        {folder.write("blank", " \n\t\r\n\n"), "could not read %s"},
        {folder.write("ragged", "1 2\n3\n"), "loadascii: matrix in %s is not rectangular"},
        {folder.write("longer", "1 2\n3 4 5"), "loadascii: matrix in %s is not rectangular"},
        {folder.write("word", "1 2\n3 four\n"), "could not read %s"},
        {folder.write("comma", "1,2\n"), "could not read %s"},
        {folder.write("trail", "1 2x\n"), "could not read %s"},
        {folder.write("hex", "0x10\n"), "could not read %s"},
        {folder.write("sign", "1 -\n"), "could not read %s"},
        {folder.write("signs", "+-5\n"), "could not read %s"},
        {folder.write("point", ".\n"), "could not read %s"},
        {folder.write("exponent", "1e\n"), "could not read %s"},
        {folder.write("nearly", "nano\n"), "could not read %s"},
        {folder.write("zero", std::string("1 2\0 3\n", 7)), "could not read %s"},
        {folder.write("%s%d", "x"), "could not read %s"},
    };
    M<double> const before = m;
    for (auto const& one : cases) {
        std::string const message = std::string(one.message).replace(one.message.find("%s"), 2, one.path);
        {
            Reports const reports;
            EXPECT_EQ(loadascii(name_of(one.path), m).size(), 0);
            EXPECT_EQ(reports.all(), Texts{message});
        }
        EXPECT_EQ(thrown_by([&] { loadascii(name_of(one.path), m); }), "Error: " + message + "\n\n");
        EXPECT_EQ(m.addr(), before.addr()) << message;
    }
    EXPECT_EQ(table_of(m), "1x1: 77");
}

using TextFileDeathTest = TextFile;

TEST_F(TextFileDeathTest, BadFileEndsAProgramThatAsksForIt)
{
    EXPECT_EXIT(
        {
            Flags const flags(nx_error_exit | nx_error_console);
            nx_set_print_handler([](char const* text) { std::fputs(text, stderr); });
            loadascii(TM("no_such_file"), m);
        },
        testing::ExitedWithCode(1), "^Error: loadascii: no_such_file not found\n\n$");
}

TEST_F(TextFile, LinesAreWrittenInColumns)
{
    M<double> value(1, 2, 3);
    double const numbers[] = {1, -2.5, 3.14159265358979312, 1e300, std::nan(""), -inf};
    std::copy(std::begin(numbers), std::end(numbers), value.addr());
    std::fill_n(value.addi(), 6, 9.0);
    EXPECT_EQ(saveascii(name_of(folder.path("out.txt")), value).size(), 0);
    EXPECT_EQ(folder.read("out.txt"), "                      1          3.14159265359                    NaN\n"
                                      "                   -2.5                 1e+300                   -Inf\n");
}

TEST_F(TextFile, EveryKindOfValueIsWritten)
{
    std::string const path = folder.path("out.txt");
    auto const saved = [&](auto const&... values) {
        saveascii(name_of(path), values...);
        std::string text = folder.read("out.txt");
        std::erase(text, ' ');
        return text;
    };
    M<double> sparse(0, 1, 2, 2);
    sparse.getindex()[0] = 1;
    sparse.spaddr()[0] = 5;
    int const dims[] = {1, 2, 2};
    M<double> pages(0, 0, 0, 3, dims);
    for (int k = 1; k <= 4; ++k)
        pages.r(k) = k;
    EXPECT_EQ(saved(sparse), "00\n50\n");
    EXPECT_EQ(sparse.issparse(), 1);
    EXPECT_EQ(saved(TM("AB")), "6566\n");
    EXPECT_EQ(saved(pages), "12\n34\n");
    EXPECT_EQ(saved(M<double>()), "");
    EXPECT_EQ(saved(M<double>(1), M<double>(), TM("A")), "1\n65\n");
    EXPECT_EQ(saved(pages(one_M, c_p, one_M)), "12\n");
}

// Thirteen digits come back as they went; whole numbers and simple fractions are the same numbers.
TEST_F(TextFile, RoundTrip)
{
    std::mt19937_64 random(3);
    M<double> value(0, 300, 7);
    for (int k = 1; k <= value.size(); ++k)
        value.r(k) = k % 50 == 0 ? inf : k % 3 == 0 ? std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 200)) : static_cast<double>(static_cast<int>(random() % 100000)) / 8;
    std::string const path = folder.path("out.txt");
    saveascii(name_of(path), value);
    Reports const reports;
    loadascii(name_of(path), m);
    EXPECT_TRUE(reports.all().empty());
    ASSERT_EQ(m.rows(), 300);
    ASSERT_EQ(m.cols(), 7);
    for (int k = 1; k <= value.size(); ++k) {
        char text[64];
        std::snprintf(text, sizeof text, "%.13g", value[k]);
        EXPECT_EQ(m[k], std::strtod(text, nullptr));
    }
    M<double> const* const list[] = {&m};
    saveascii_list(name_of(folder.path("again.txt")), list, 1);
    EXPECT_EQ(folder.read("again.txt"), folder.read("out.txt"));
}

// Files that are read in blocks: what the first one promises may be wrong.
TEST_F(TextFile, LongFilesNeedNotGoOnAsTheyBegin)
{
    auto const lines = [](int count, std::string const& line) {
        std::string text;
        for (int k = 0; k < count; ++k)
            text += line;
        return text;
    };
    std::string const wide = lines(50000, "                    1                    2\n"), narrow = lines(400000, "3 4\n"), word(3000000, '0');
    struct {
        std::string content;
        int rows, cols;
        char const* message;
    } const cases[] = {
        {wide, 50000, 2, ""},
        {wide + narrow, 450000, 2, ""},
        {narrow + wide, 450000, 2, ""},
        {narrow.substr(0, narrow.size() - 1), 400000, 2, ""},
        {lines(700000, "1 2 "), 1, 1400000, ""},
        {lines(100, "\n") + wide + lines(2000000, "\n"), 50000, 2, ""},
        {lines(1200000, "\n") + narrow, 400000, 2, ""},
        {wide + narrow + "1\n", 0, 0, "loadascii: matrix in %s is not rectangular"},
        {lines(300000, "1 2 3 ") + "\n" + lines(900000, "1\n"), 0, 0, "loadascii: matrix in %s is not rectangular"},
        {wide + narrow + "1 x\n1 2 3", 0, 0, "could not read %s"},
        {word + "1 2\n" + word + "3 4", 2, 2, ""},
    };
    for (auto const& one : cases) {
        std::string const path = folder.write("long.txt", one.content);
        Reports const reports;
        m = M<double>();
        loadascii(name_of(path), m);
        std::string message = one.message;
        EXPECT_EQ(reports.text(), message.empty() ? message : message.replace(message.find("%s"), 2, path));
        ASSERT_EQ(m.rows(), one.rows);
        ASSERT_EQ(m.cols(), one.cols);
        double sum = 0;
        for (int k = 1; k <= m.size(); ++k)
            sum += m[k];
        double wanted = 0;
        for (char const c : one.rows ? one.content : std::string())
            wanted += c > '0' && c <= '9' ? c - '0' : 0;
        EXPECT_EQ(sum, wanted);
    }
}

// Every digit as the C library has it, also where a number lies between two of 13 digits.
TEST_F(TextFile, NumbersAreThoseOfTheCLibrary)
{
    std::mt19937_64 random(4);
    M<double> value(0, 20000, 1);
    std::string wanted, digits;
    for (int k = 1; k <= value.size(); ++k) {
        double const whole = static_cast<double>(random() % 10000000000000), power = std::pow(10.0, static_cast<double>(random() % 20));
        double const number = k % 4 == 0 ? whole + 0.5 : k % 4 == 1 ? whole / power : k % 4 == 2 ? std::ldexp(whole, -static_cast<int>(random() % 64)) : std::round(whole / 1e9) / 1e4;
        value.r(k) = k % 7 == 0 ? -number : k % 97 == 0 ? std::nextafter(1e-4, k % 2) : number;
        char text[64];
        std::snprintf(text, sizeof text, "%23.13g\n", value[k]);
        wanted += text;
        std::snprintf(text, sizeof text, "%.*f\n", static_cast<int>(random() % 16), value[k]);
        digits += text;
    }
    saveascii(name_of(folder.path("out.txt")), value);
    EXPECT_TRUE(folder.read("out.txt") == wanted);
    load(digits);
    ASSERT_EQ(m.size(), value.size());
    char* at = digits.data();
    for (int k = 1; k <= m.size(); ++k)
        ASSERT_EQ(m[k], std::strtod(at, &at)) << k;
}

TEST_F(TextFile, FailedSaveIsReported)
{
    folder.write("old.txt", "precious");
    std::filesystem::create_directory(folder.path("folder"));
    for (std::string const& path : {folder.path("no/such/file"), folder.path("folder"), std::string()}) {
        Reports const reports;
        EXPECT_EQ(saveascii(name_of(path), pi).size(), 0);
        EXPECT_EQ(reports.all(), Texts{"could not write " + path});
        EXPECT_EQ(thrown_by([&] { saveascii(name_of(path), pi); }), "Error: could not write " + path + "\n\n");
    }
    EXPECT_EQ(folder.files(), 2);
    EXPECT_EQ(folder.read("old.txt"), "precious");
}

#if !defined(_WIN32)

// Long texts are halved; where the halves meet, and what is wrong in either, makes no difference.
TEST_F(TextFile, ThreadsReadTheSame)
{
    std::mt19937 random(7);
    std::string good;
    for (int row = 0; row < 60000; ++row) {
        good += random() % 50 == 0 ? "  \t\n\n" : "";
        good += " " + std::to_string(row) + (random() % 3 ? "   " : "\t") + std::to_string(random() % 100000) + ".25 -1e3\r\n";
    }
    std::string const faults[] = {"", "1 2\n", "1 2 x\n", "1 2 3 4\n", "\n \n", "7 8 9"};
    int const before = arrlib::set_parallel_limit(1);
    for (std::string const& fault : faults)
        for (double const share : {0.1, 0.45, 0.5, 0.9, 1.0}) {
            std::string text = good;
            text.insert(text.find('\n', static_cast<std::size_t>(static_cast<double>(text.size() - 3) * share)) + 1, fault);
            std::string results[2];
            for (int threads : {1, 2}) {
                arrlib::set_parallel_limit(threads);
                Reports const reports;
                m = M<double>(5.0);
                loadascii(name_of(folder.write("long.txt", text)), m);
                results[threads - 1] = table_of(m) + reports.text();
            }
            EXPECT_TRUE(results[0] == results[1]) << fault << " at " << share;
            if (fault.find_first_not_of(" \n") == std::string::npos) {
                EXPECT_EQ(results[0].substr(0, 8), "60000x3:");
            }
        }
    arrlib::set_parallel_limit(before);
}

TEST_F(TextFile, PermissionsAreKept)
{
    std::string const path = folder.write("old.txt", "7\n");
    chmod(path.c_str(), 0640);
    symlink("old.txt", folder.path("link").c_str());
    saveascii(name_of(folder.path("link")), pi);
    struct stat found = {};
    ASSERT_EQ(lstat(folder.path("link").c_str(), &found), 0);
    EXPECT_TRUE(S_ISLNK(found.st_mode));
    ASSERT_EQ(stat(path.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0640u);
    EXPECT_EQ(folder.read("old.txt"), "          3.14159265359\n");
    EXPECT_EQ(folder.files(), 2);
    if (geteuid() == 0)
        return; // root may read and write everything
    Reports const reports;
    chmod(path.c_str(), 0200);
    loadascii(name_of(path), m);
    chmod(path.c_str(), 0400);
    saveascii(name_of(path), M<double>(1));
    EXPECT_EQ(reports.all().size(), 2u);
    EXPECT_EQ(table_of(m), "1x1: 77");
    EXPECT_EQ(folder.read("old.txt"), "          3.14159265359\n");
}

// A disk that is full in the middle of the file: the old one survives, nothing is left beside it.
TEST_F(TextFileDeathTest, OldFileSurvivesAFullDisk)
{
    std::string const path = folder.write("old.txt", "precious\n");
    EXPECT_EXIT(
        {
            signal(SIGXFSZ, SIG_IGN);
            rlimit most = {};
            most.rlim_cur = most.rlim_max = 1000;
            setrlimit(RLIMIT_FSIZE, &most);
            Flags const flags(nx_error_exit | nx_error_message_box);
            saveascii(name_of(path), M<double>(0, 1, 1), pi, M<double>(0, 100, 1));
        },
        testing::ExitedWithCode(1), "could not write");
    EXPECT_EQ(folder.read("old.txt"), "precious\n");
    EXPECT_EQ(folder.files(), 1);
}

TEST_F(TextFile, DevicesAreReadAndWritten)
{
    Reports const reports;
    saveascii(TM("/dev/null"), pi);
    EXPECT_TRUE(reports.all().empty());
    loadascii(TM("/dev/null"), m);
    saveascii(TM("/dev/full"), pi);
    EXPECT_EQ(reports.all(), (Texts{"could not read /dev/null", "could not write /dev/full"}));
}

#endif

TEST_F(TextFile, MemoryThatFailsLeavesEverythingAsItWas)
{
    std::string content;
    for (int k = 0; k < 3000; ++k)
        content += "1 2\n";
    M<double> const in = name_of(folder.write("in.txt", content)), out = name_of(folder.write("out.txt", "old"));
    M<double> const sparse(0, 0, 300, 100);
    M<double> const before = m;
    with_every_allocation_refused([&] {
        loadascii(in, m);
        EXPECT_TRUE(m.addr() == before.addr() || m.rows() == 3000);
        m = before;
    });
    with_every_allocation_refused([&] {
        folder.write("out.txt", "old");
        saveascii(out, m, sparse, m);
        std::string const now = folder.read("out.txt");
        EXPECT_TRUE(now == "old" || now.size() == 24 + 300 * (100 * 23 + 1) + 24);
    });
    EXPECT_EQ(folder.files(), 2);
}

TEST_F(TextFile, LongNamesAreCut)
{
    Reports const reports;
    Warnings const warnings;
    Printed const printed;
    loadascii(TM(std::string(600, 'n').c_str()), m);
    EXPECT_EQ(warnings.all(), Texts{"Mstr: buffer too small - chopped"});
    EXPECT_EQ(printed.text(), std::string(512, 'n') + "...\n");
    EXPECT_EQ(reports.all(), Texts{"loadascii: " + std::string(512, 'n') + " not found"});
}

} // namespace
