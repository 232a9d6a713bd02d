// Files by their numbers: opening, elements, lines, positions, and what is refused.
#include "io/files.h"

#include "core/sparse.h"
#include "io/fid_stream.h"
#include "support/file_values.h"

#include <cmath>
#include <functional>
#include <limits>

using namespace arrlib;
using namespace capture;
using namespace file_values;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

using Files = FilesTest;

TEST_F(Files, Opening)
{
    std::string const path = folder.write("here", "x");
    struct {
        std::string path, mode, format;
        std::string result, message, mode_used, format_used;
    } const cases[] = {
        {path, "r", "n", "1x1: 3", "''", "'rb'", "'ieee-le'"},
        {path, "rt", "b", "1x1: 3", "''", "'rt'", "'ieee-be'"},
        {path, "r+", "ieee-le", "1x1: 3", "''", "'r+b'", "'ieee-le'"},
        {path, "a+b", "ieee-be", "1x1: 3", "''", "'a+b'", "'ieee-be'"},
        {path, "r+++++++++", "l", "1x1: 3", "''", "'r++++++'", "'ieee-le'"},
        {path, "", "", "1x1: 3", "''", "'rb'", "'ieee-le'"},
        {path, "x", "n", "1x1: -1", "'File error'", "''", "''"},
        {path, "r,ccs=UTF8", "n", "1x1: -1", "'File error'", "''", "''"},
        {path + "/missing", "r", "n", "1x1: -1", "'File error'", "''", "''"},
        {folder.path(), "r", "n", "1x1: -1", "'File error'", "''", "''"},
        {folder.path(), "w", "n", "1x1: -1", "'File error'", "''", "''"},
        {"", "r", "n", "1x1: -1", "'filename is empty'", "''", "''"},
        {"all", "r", "n", "0x0:", "''", "''", "''"},
    };
    Reports const reports;
    Warnings const warnings;
    for (auto const& one : cases) {
        M<double> message, mode, format;
        M<double> const fid = fopen(text(one.path), text(one.mode), text(one.format), i_o, message, mode, format);
        EXPECT_EQ(shown(fid), one.result) << one.path << " " << one.mode;
        EXPECT_EQ(shown(message) + shown(mode) + shown(format), one.message + one.mode_used + one.format_used) << one.mode;
        if (fid.size() == 1 && fid[1] > 0) {
            EXPECT_EQ(shown(fopen(fid, i_o, mode, format)), "'" + path + "'");
            EXPECT_EQ(shown(mode) + shown(format), one.mode_used + one.format_used);
            EXPECT_EQ(shown(fclose(fid)), "1x1: 0");
        }
    }
    EXPECT_TRUE(reports.all().empty() && warnings.all().empty());
    fopen(text(path), TM("r"), TM("vaxd"));
    EXPECT_EQ(warnings.all(), Texts{"fopen: don't know how to convert from machine format"});
}

TEST_F(Files, FidsAreGivenLowestFirst)
{
    for (int k = 3; k <= 6; ++k)
        EXPECT_EQ(shown(open("")), "1x1: " + std::to_string(k));
    fclose(M<double>(4));
    EXPECT_EQ(shown(fopen(TM("all"))), "1x3: 3 5 6");
    EXPECT_EQ(shown(open("")), "1x1: 4");
    EXPECT_EQ(shown(fclose(TM("any"))), "1x1: 0");
    EXPECT_EQ(shown(fopen(TM("all"))), "0x0:");
    for (int k = 3; k <= 127; ++k)
        EXPECT_EQ(open("")[1], k);
    EXPECT_EXIT(
        {
            nx_set_error_handler([](char const* message) { std::fputs(message, stderr); });
            open("");
        },
        testing::ExitedWithCode(1), "^Too many files$");
    EXPECT_EQ(thrown_by([&] { open(""); }), "Error: Too many files\n\n");
    EXPECT_EQ(fopen(TM("all")).size(), 125);
}

// Every function reports a fid that is none in the same words.
TEST_F(Files, BadFidsAreRefused)
{
    M<double> const x = 1.0;
    M<double> out;
    std::function<M<double>(M<double> const&)> const functions[] = {
        [&](auto const& fid) { return fclose(fid); },
        [&](auto const& fid) { return fread(fid); },
        [&](auto const& fid) { return fread(fid, i_o, out); },
        [&](auto const& fid) { return fwrite(fid, x); },
        [&](auto const& fid) { return fseek(fid, x, x); },
        [&](auto const& fid) { return ftell(fid); },
        [&](auto const& fid) { return frewind(fid); },
        [&](auto const& fid) { return fgets(fid); },
        [&](auto const& fid) { return fgets(fid, x); },
        [&](auto const& fid) { return fgetl(fid); },
        [&](auto const& fid) { return feof(fid); },
        [&](auto const& fid) { return ferror(fid); },
        [&](auto const& fid) { return fflush(fid); },
        [&](auto const& fid) { return fopen(fid, i_o, out, out); },
    };
    M<double> const list = row({3, 4});
    struct {
        M<double> fid;
        char const* message;
    } const cases[] = {
        {-1.0, "Illegal fid."},     {-0.5, "Illegal fid."},    {129.0, "Illegal fid."}, {1e300, "Illegal fid."},
        {inf, "Illegal fid."},      {std::nan(""), "Illegal fid."}, {3.0, "Fid not opened."}, {128.0, "Fid not opened."},
        {77.9, "Fid not opened."},  {M<double>(), "Size of fid (temporary) not one."}, {list, "Size of fid (temporary) not one."},
    };
    for (auto const& function : functions)
        for (auto const& one : cases) {
            Reports const reports;
            EXPECT_EQ(function(one.fid).size(), 0);
            EXPECT_EQ(reports.all(), Texts{one.message});
            EXPECT_EQ(thrown_by([&] { function(one.fid); }), std::string("Error: ") + one.message + "\n\n");
        }
    Reports const reports;
    EXPECT_EQ(checked_fid(-1.0, false) + checked_fid(50.0, false) + checked_fid(list, false), -3);
    EXPECT_EQ(reports.all(), Texts{"Size of fid (temporary) not one."});
    M<double> const fid = open("abc");
    EXPECT_EQ(shown(fgets(M<double>(fid[1] + 0.9))), "'abc'");
}

TEST_F(Files, ReadingShapes)
{
    struct {
        M<double> size;
        char const* precision;
        std::string content;
        char const* result;
        int count, position, at_end;
    } const cases[] = {
        {nop_M, "", "abc", "3x1: 97 98 99", 3, 3, 1},
        {inf, "uchar", "abc", "3x1: 97 98 99", 3, 3, 1},
        {2.9, "uchar", "abc", "2x1: 97 98", 2, 2, 0},
        {3.0, "uchar", "abc", "3x1: 97 98 99", 3, 3, 0},
        {4.0, "uchar", "abc", "3x1: 97 98 99", 3, 3, 1},
        {0.0, "uchar", "abc", "0x0:", 0, 0, 0},
        {-1.0, "uchar", "abc", "0x0:", 0, 0, 0},
        {std::nan(""), "uchar", "abc", "0x0:", 0, 0, 0},
        {1e300, "uchar", "abc", "3x1: 97 98 99", 3, 3, 1},
        {inf, "int16", std::string("\1\0\2\0\3", 5), "2x1: 1 2", 2, 5, 1},
        {inf, "uchar", "", "0x0:", 0, 0, 1},
        {row({2, inf}), "int16", std::string("\1\0\2\0\3\0\4\0\5\0", 10), "2x3: 1 2 3 4 5 0", 5, 10, 1},
        {row({2, 2}), "schar", "\1\2\377\4\5", "2x2: 1 2 -1 4", 4, 4, 0},
        {row({2, 3}), "uchar", "\1\2\3", "2x2: 1 2 3 0", 3, 3, 1},
        {row({5, 1e300}), "uchar", "\1\2", "5x1: 1 2 0 0 0", 2, 2, 1},
        {row({inf, inf}), "uchar", "\1\2\3", "3x1: 1 2 3", 3, 3, 1},
        {row({inf, 2}), "uchar", "\1\2\3", "3x1: 1 2 3", 3, 3, 1},
        {row({0, inf}), "uchar", "\1\2\3", "0x0:", 0, 0, 0},
        {row({-1, 2}), "uchar", "\1\2\3", "0x0:", 0, 0, 0},
        {row({1e9, inf}), "uchar", "", "0x0:", 0, 0, 1},
    };
    for (auto const& one : cases) {
        M<double> count;
        M<double> const fid = open(one.content);
        M<double> const read = one.precision[0] ? fread(fid, one.size, TM(one.precision), i_o, count) : fread(fid, one.size, i_o, count);
        EXPECT_EQ(shown(read), one.result);
        EXPECT_EQ(count[1], one.count) << one.result;
        EXPECT_EQ(ftell(fid)[1], one.position) << one.result;
        EXPECT_EQ(feof(fid)[1], one.at_end) << one.result;
    }
    EXPECT_EQ(shown(fread(open(std::string("\1\0\2\0", 4)), TM("int16"))), "2x1: 1 2");
    EXPECT_EQ(shown(fread(open(std::string("\1\0\7\0\2", 5)), TM("int8"), one_M, TM("b"))), "3x1: 1 7 2");
}

TEST_F(Files, BadReadsAndWritesAreRefused)
{
    M<double> const fid = open(std::string("\0\0\0\0\0\0\x08\x40", 8), "r+"), sizes = row({2, 3, 4});
    M<double> skip("skip", 1, 1), count = 77.0;
    skip.r(1) = -1;
    struct {
        std::function<M<double>()> call;
        char const* message;
        char const* result;
    } const cases[] = {
        {[&] { return fread(fid, sizes, i_o, count); }, "fread: can not read multi-dimensional matrices", "0x0:"},
        {[&] { return fread(fid, Inf, TM("uchar"), skip, i_o, count); }, "fread: skip<0. skip is skip", "0x0:"},
        {[&] { return fwrite(fid, pi, TM("uchar"), skip); }, "fwrite: skip<0. skip is skip", "0x0:"},
        {[&] { return fwrite(fid, pi, pi); }, "fwrite: precision not a string", "0x0:"},
        {[&] { return fread(fid, one_M, TM("byte")); }, "fileio: unknown precision byte", "1x1: 3"},
        {[&] { return fwrite(fid, M<double>(3), TM("Double")); }, "fileio: unknown precision Double", "1x1: 1"},
        {[&] { return fseek(fid, zero_M, TM("middle")); }, "fseek: origin (temporary) not bof, cof or eof", "1x1: 0"},
    };
    for (auto const& one : cases) {
        frewind(fid);
        EXPECT_EQ(thrown_by([&] { one.call(); }), std::string("Error: ") + one.message + "\n\n");
        Reports const reports;
        frewind(fid);
        EXPECT_EQ(shown(one.call()), one.result);
        EXPECT_EQ(reports.all(), Texts{one.message});
        EXPECT_EQ(count[1], 77);
    }
}

// What is written is read back, in any order of bytes, with and without gaps, from any kind of value.
TEST_F(Files, ElementsComeBack)
{
    M<double> const x = row({0, 1, 2.5, -3, 100, 127});
    M<double> many(0, 20001, 1);
    for (int k = 1; k <= 20001; ++k)
        many.r(k) = k % 100;
    for (char const* precision : {"double", "long double", "float", "int64", "int32", "int16", "int8"})
        for (char const* format : {"l", "b"})
            for (double const skip : {0.0, 3.0, 70000.0})
                for (M<double> const& value : {x, many}) {
                    if (skip > 3 && value.size() > 6)
                        continue;
                    M<double> const fid = open("", "w+");
                    EXPECT_EQ(fwrite(fid, value, TM(precision), skip, TM(format))[1], value.size());
                    frewind(fid);
                    M<double> count;
                    M<double> const read = fread(fid, Inf, TM(precision), skip, TM(format), i_o, count);
                    ASSERT_EQ(read.size(), value.size()) << precision << skip;
                    EXPECT_EQ(count[1], value.size());
                    for (int k = 1; k <= value.size(); ++k)
                        ASSERT_EQ(read[k], value[k] == 2.5 && precision[0] == 'i' ? 2 : value[k]) << precision << k;
                    fclose(fid);
                }
    EXPECT_EQ(shown(fwrite(open("", "w"), M<double>())), "1x1: 0");
}

TEST_F(Files, BytesAreLaidOut)
{
    M<double> value(1, 1, 2);
    value.addr()[0] = 1;
    value.addr()[1] = 258;
    value.addi()[0] = value.addi()[1] = 9;
    struct {
        char const *precision, *format;
        double skip;
        std::string bytes;
    } const cases[] = {
        {"uint16", "ieee-be", 0, std::string("\0\1\1\2", 4)},
        {"uint16", "ieee-le", 0, std::string("\1\0\2\1", 4)},
        {"uint16", "cray", 0, std::string("\0\1\1\2", 4)},
        {"uint8", "n", 2, std::string("\1yz\2yz", 6)},
        {"float", "b", 0, std::string("\x3f\x80\0\0\x43\x81\0\0", 8)},
    };
    for (auto const& one : cases) {
        // The file is big-endian, which an unknown format leaves as it is.
        M<double> const fid = open("xyzxyz", "r+", "b");
        EXPECT_EQ(fwrite(fid, value, TM(one.precision), one.skip, TM(one.format))[1], 2);
        fflush(fid);
        EXPECT_EQ(content().substr(0, one.bytes.size()), one.bytes) << one.precision << one.format;
    }
    M<double> sparse(0, 2, 3, 20000);
    sparse.getindex()[0] = 1;
    sparse.getindex()[1] = 59999;
    sparse.spaddr()[0] = 65;
    sparse.spaddr()[1] = 66;
    M<double> const fid = open("", "w+");
    EXPECT_EQ(fwrite(fid, sparse)[1], 60000);
    EXPECT_EQ(sparse.issparse(), 1);
    fclose(fid);
    EXPECT_EQ(content(), std::string("\0A", 2) + std::string(59997, '\0') + "B");
}

TEST_F(Files, Lines)
{
    std::string const long_line(100000, 'x');
    M<double> const fid = open("one\r\n\n" + long_line + "\n" + std::string("a\0b\n", 4) + "\377last");
    EXPECT_EQ(shown(fgets(fid, 2.9)), "'on'");
    EXPECT_EQ(ftell(fid)[1], 2);
    EXPECT_EQ(shown(fgets(fid, zero_M)), "''");
    EXPECT_EQ(shown(fgets(fid)), "'e\r\n'");
    M<double> const empty = fgetl(fid);
    EXPECT_EQ(shown(empty), "''");
    EXPECT_EQ(shown(fgetl(fid)), "'" + long_line + "'");
    EXPECT_EQ(shown(fgetl(fid)), std::string("'a\0b'", 5));
    EXPECT_EQ(feof(fid)[1], 0);
    M<double> const last = fgets(fid, 1e10);
    EXPECT_EQ(shown(last), "'\377last'");
    EXPECT_EQ(last[1], -1);
    EXPECT_EQ(feof(fid)[1], 1);
    EXPECT_EQ(shown(fgets(fid)) + shown(fgetl(fid)) + shown(fgets(fid, 3.0)), "1x1: -11x1: -11x1: -1");
    frewind(fid);
    EXPECT_EQ(shown(fgetl(fid)), "'one'");
}

TEST_F(Files, Positions)
{
    M<double> const fid = open("0123456789", "r+");
    struct {
        double offset;
        M<double> origin;
        int result, position;
    } const cases[] = {
        {0, TM("eof"), 0, 10},  {-3, TM("cof"), 0, 7}, {2, TM("bof"), 0, 2},  {3, -7.0, 0, 3},       {1.9, 0.0, 0, 4},
        {-4, 0.5, 0, 6},        {-7, 0.0, -1, 6},      {inf, -1.0, -1, 6},    {std::nan(""), -1.0, -1, 6}, {20, TM("bof"), 0, 20},
        {1e300, TM("bof"), -1, 20},
    };
    for (auto const& one : cases) {
        EXPECT_EQ(fseek(fid, one.offset, one.origin)[1], one.result) << one.offset;
        EXPECT_EQ(ftell(fid)[1], one.position);
    }
    // Reading and writing take turns without a word from the program.
    frewind(fid);
    EXPECT_EQ(shown(fgets(fid, 3.0)), "'012'");
    EXPECT_EQ(fwrite(fid, TM("ab"))[1], 2);
    EXPECT_EQ(shown(fread(fid, 2.0, TM("char"))), "2x1: 53 54");
    EXPECT_EQ(fwrite(fid, TM("c"))[1], 1);
    EXPECT_EQ(shown(fgets(fid)), "'89'");
    fclose(fid);
    EXPECT_EQ(content(), "012ab56c89");
}

TEST_F(Files, PositionsBeyondTwoGigabytes)
{
    M<double> const fid = open("", "w+");
    double const far = 5e9;
    EXPECT_EQ(fseek(fid, far, TM("bof"))[1], 0);
    EXPECT_EQ(fwrite(fid, TM("end"))[1], 3);
    EXPECT_EQ(ftell(fid)[1], far + 3);
    EXPECT_EQ(fseek(fid, -2.0, TM("eof"))[1], 0);
    EXPECT_EQ(shown(fgets(fid)), "'nd'");
    EXPECT_EQ(fseek(fid, -far, TM("cof"))[1], 0);
    EXPECT_EQ(shown(fread(fid, row({3, 2}), TM("uint8"), far / 2)), "3x1: 0 0 0");
    frewind(fid);
    EXPECT_EQ(thrown_by([&] { fread(fid); }), "Error: Out of memory!\n\n");
}

TEST_F(Files, MemoryThatFailsLeavesEverythingAsItWas)
{
    std::string const path = folder.write("numbers", std::string(80000, '\1'));
    M<double> const name = text(path), mode = TM("r"), precision = TM("int16");
    M<double> const sparse(0, 0, 300, 100), fid = fopen(name, TM("r+"));
    M<double> count = 77.0;
    with_every_allocation_refused([&] {
        frewind(fid);
        M<double> const read = fread(fid, Inf, precision, i_o, count);
        EXPECT_TRUE(read.size() == 0 || read.size() == 40000);
    });
    with_every_allocation_refused([&] {
        frewind(fid);
        M<double> const line = fgetl(fid);
        EXPECT_TRUE(line.size() == 0 || line.size() == 80000);
    });
    with_every_allocation_refused([&] {
        M<double> const made = fopen(name, mode);
        if (made.size() == 1)
            close_fid(static_cast<int>(made[1]));
        else
            EXPECT_EQ(fid_slot(4).open, 0);
    });
    with_every_allocation_refused([&] { fwrite(fid, sparse); });
}

#if !defined(_WIN32)

TEST_F(Files, FullDisksAreToldByResults)
{
    Reports const reports;
    M<double> const full = TM("/dev/full"), mode = TM("w"), large(0, 1, 100000);
    M<double> number, fid = fopen(full, mode);
    EXPECT_EQ(shown(ferror(fid, i_o, number)), "''");
    EXPECT_EQ(number[1], 0);
    EXPECT_LT(fwrite(fid, large, TM("double"))[1], 100000);
    EXPECT_EQ(shown(ferror(fid, TM("clear"), i_o, number)), "'No space left on device'");
    EXPECT_EQ(number[1], 28);
    EXPECT_EQ(shown(ferror(fid)), "''");
    fclose(fid);
    fid = fopen(full, mode);
    EXPECT_LT(fwrite(fid, large, TM("int16"), one_M)[1], 100000);
    fclose(fid);
    // A few bytes wait in memory; what passes them on tells.
    for (auto const pass_on : {+[](M<double> const& few) { return fflush(few); }, +[](M<double> const& few) { return fclose(few); },
                               +[](M<double> const&) { return fclose(TM("all")); }}) {
        fid = fopen(full, mode);
        fwrite(fid, TM("few"));
        EXPECT_EQ(pass_on(fid)[1], -1);
        fclose(TM("all"));
    }
    EXPECT_TRUE(reports.all().empty());
}

TEST_F(Files, WrongDirectionsFail)
{
    M<double> const reader = open("abc", "r"), writer = open("", "w");
    EXPECT_EQ(fwrite(reader, TM("x"))[1], 0);
    EXPECT_EQ(shown(ferror(reader)), "'Bad file descriptor'");
    EXPECT_EQ(fread(writer).size(), 0);
    EXPECT_EQ(shown(fgets(writer)), "1x1: -1");
    EXPECT_EQ(shown(ferror(writer)), "'Bad file descriptor'");
}

#endif

} // namespace
