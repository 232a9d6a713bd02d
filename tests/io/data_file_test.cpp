// Data files as the library writes them, byte for byte, and what goes wrong with them.
#include "io/data_file.h"
#include "core/bracket.h"
#include "core/sparse.h"
#include "core/text.h"
#include "io/inflate.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/expected_file.h"
#include "support/shapes.h"

#include <algorithm>
#include <cctype>

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#endif

using namespace capture;

namespace {

// The bytes of numbers, one type after the other.
class Bytes {
public:
    Bytes& words(std::initializer_list<std::int64_t> list)
    {
        for (std::int64_t word : list)
            append(static_cast<std::int32_t>(word));
        return *this;
    }
    Bytes& doubles(std::initializer_list<double> list)
    {
        for (double number : list)
            append(number);
        return *this;
    }
    Bytes& text(std::string const& characters)
    {
        text_ += characters;
        return *this;
    }
    operator std::string const&() const { return text_; }

private:
    template <class T> void append(T value) { text_.append(reinterpret_cast<char const*>(&value), sizeof value); }

    std::string text_;
};

std::string zeros(std::size_t count)
{
    return std::string(count, '\0');
}

class DataFile : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string path = folder.path("file.mat");
    M<double> file = TM(path.c_str());
    M<double> x{"x", 1, 2}, z{"z", 2, 3}, text{"text", 1, 3}, s{"s", 0, 0}, cube, untitled = 5.0;

    DataFile()
    {
        x.r(1) = -1.5;
        x.r(2) = 1e300;
        for (int k = 1; k <= 6; ++k) {
            z.r(k) = k;
            z.i(k) = -k;
        }
        text = TM("a\xC3\xA9");
        M<double> entries(0, 2, 3);
        double const rows_cols_values[] = {2, 1, 1, 3, 7, 8};
        std::copy_n(rows_cols_values, 6, entries.addr());
        s = spconvert(entries);
        int const dims[] = {1, 2, 2};
        cube = M<double>(0, 0, 0, 3, dims);
        std::fill_n(cube.addr(), 4, 1.0);
    }
    std::string written() { return folder.read("file.mat"); }
    std::string elements() { return written().substr(128); }
    static std::string type4(int kind) { return Bytes().words({(arrlib::native_order == arrlib::ByteOrder::big ? 1000 : 0) + kind}); }
};

TEST_F(DataFile, HeaderOfLevel5)
{
    save(file, x);
    std::string const header = written().substr(0, 128);
    std::string const start = "KORVEX 4.0 MAT-file, Platform: PCWIN, Created on: ";
    EXPECT_EQ(header.substr(0, start.size()), start);
    std::string when = header.substr(start.size(), 124 - start.size());
    std::transform(when.begin(), when.end(), when.begin(), [](unsigned char c) { return std::isdigit(c) ? '9' : std::isalpha(c) ? 'a' : static_cast<char>(c); });
    EXPECT_EQ(when, "aaa aaa 99 99:99:99 9999" + std::string(124 - start.size() - 24, ' '));
    std::uint16_t const version_and_mark[] = {0x0100, 0x4D49};
    EXPECT_EQ(std::memcmp(header.data() + 124, version_and_mark, 4), 0);
}

TEST_F(DataFile, ElementsOfLevel5)
{
    // Tag, flags, dimensions and name of an element, ahead of its data.
    auto const element = [](std::size_t data_bytes, std::int64_t flags, std::int64_t capacity, std::initializer_list<std::int64_t> dims, std::string const& name) {
        std::size_t const odd = dims.size() % 2 * 4, name_padding = (8 - name.size() % 8) % 8;
        std::size_t const bytes = 16 + 8 + dims.size() * 4 + odd + 8 + name.size() + name_padding + data_bytes;
        Bytes made;
        made.words({14, static_cast<std::int64_t>(bytes), 6, 8, flags, capacity, 5, static_cast<std::int64_t>(dims.size()) * 4}).words(dims).text(zeros(odd));
        return made.words({1, static_cast<std::int64_t>(name.size())}).text(name + zeros(name_padding));
    };
    save(file, x);
    EXPECT_EQ(elements(), std::string(element(24, 6, 0, {1, 2}, "x").words({9, 16}).doubles({-1.5, 1e300})));
    save(file, z);
    EXPECT_EQ(elements(), std::string(element(112, 0x806, 0, {2, 3}, "z").words({9, 48}).doubles({1, 2, 3, 4, 5, 6}).words({9, 48}).doubles({-1, -2, -3, -4, -5, -6})));
    // Bytes above 127 are signed in the library only.
    save(file, text);
    EXPECT_EQ(elements(), std::string(element(16, 4, 0, {1, 3}, "text").words({4, 6, 'a' | 0xC3 << 16, 0xA9})));
    s.setlogical(1);
    save(file, s);
    EXPECT_EQ(elements(), std::string(element(16 + 24 + 24, 0x205, 2, {2, 3}, "s").words({5, 8, 1, 0, 5, 16, 0, 1, 1, 2, 9, 16}).doubles({7, 8})));
    save(file, untitled, speye(0.0), cube(one_M, c_p, M<double>(2.0)), cube);
    EXPECT_EQ(elements(), std::string(element(16, 6, 0, {1, 1}, "noname").words({9, 8}).doubles({5})) +
                              std::string(element(8 + 16 + 8, 5, 1, {0, 0}, "noname").words({5, 0, 5, 4, 0, 0, 9, 0})) +
                              std::string(element(24, 6, 0, {1, 2}, "noname").words({9, 16}).doubles({1, 1})) +
                              std::string(element(40, 6, 0, {1, 2, 2}, "noname").words({9, 32}).doubles({1, 1, 1, 1})));
}

TEST_F(DataFile, RecordsOfLevel4)
{
    saveV4(file, x, z, text);
    EXPECT_EQ(written(), std::string(Bytes().text(type4(0)).words({1, 2, 0, 2}).text("x" + zeros(1)).doubles({-1.5, 1e300})) +
                             std::string(Bytes().text(type4(0)).words({2, 3, 1, 2}).text("z" + zeros(1)).doubles({1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6})) +
                             std::string(Bytes().text(type4(1)).words({1, 3, 0, 5}).text("text" + zeros(1)).doubles({97, -61, -87})));
    saveV4(file, s, untitled);
    EXPECT_EQ(written(), std::string(Bytes().text(type4(2)).words({3, 3, 0, 2}).text("s" + zeros(1)).doubles({2, 1, 2, 1, 3, 3, 7, 8, 0})) +
                             std::string(Bytes().text(type4(0)).words({1, 1, 0, 7}).text("noname" + zeros(1)).doubles({5})));
    s.getcomplex();
    saveV4(file, s);
    EXPECT_EQ(written(), std::string(Bytes().text(type4(2)).words({3, 4, 0, 2}).text("s" + zeros(1)).doubles({2, 1, 2, 1, 3, 3, 7, 8, 0, 0, 0, 0})));
}

// Tables of other writers: without a line for the size, in any order, with entries to add up.
TEST_F(DataFile, SparseTablesOfLevel4)
{
    struct {
        std::initializer_list<double> rows, cols, values;
        char const* shown;
    } const cases[] = {
        {{2, 1, 2}, {1, 3, 3}, {7, 8, 0}, "2x3: (1)7 (4)8"},
        {{2, 1}, {1, 3}, {7, 8}, "2x3: (1)7 (4)8"},
        {{1, 2, 1}, {3, 1, 3}, {8, 7, 0.5}, "2x3: (1)7 (4)8.5"},
        {{4, 1}, {1, 1}, {1, 0}, "4x1: (3)1"},
        {{3}, {5}, {0}, "3x5:"},
        {{0}, {0}, {0}, "0x0:"},
        {{1, 0}, {1, 1}, {5, 0}, "1x1: (0)5"},
    };
    for (auto const& one : cases) {
        auto const lines = static_cast<std::int64_t>(one.rows.size());
        folder.write("file.mat", Bytes().text(type4(2)).words({lines, 3, 0, 2}).text("t" + zeros(1)).doubles(one.rows).doubles(one.cols).doubles(one.values));
        Reports const reports;
        M<double> t;
        load(file, t);
        std::string shown = std::to_string(t.rows()) + "x" + std::to_string(t.cols()) + ":";
        for (int k = 0; k < t.getnnz(); ++k) {
            char entry[64];
            std::snprintf(entry, sizeof entry, " (%d)%g", t.getindex()[k], t.addr()[k]);
            shown += entry;
        }
        EXPECT_TRUE(t.issparse());
        EXPECT_EQ(shown + reports.text(), one.shown);
    }
}

TEST_F(DataFile, ValuesOfEveryKindComeBack)
{
    shapes::Source source;
    for (int round = 0; round < 120; ++round) {
        shapes::Kind kind = source.kind();
        shapes::Sizes size = {1 + source.below(5), source.below(5), 1, 1};
        if (!kind.sparse)
            size[2] = 1 + source.below(3), size[3] = 1 + source.below(2);
        M<double> const value = source.value(kind, size);
        shapes::Model const model = shapes::model_of(value);
        bool const old_layout = value.getndims() == 2 && source.once_in(2);
        old_layout ? saveV4(file, value) : save(file, value);
        M<double> again;
        load(file, again);
        kind.logical = kind.logical && !old_layout;
        kind.string = kind.string && !kind.sparse && (old_layout || !kind.complex);
        shapes::expect_equal(again, model, kind);
    }
}

TEST_F(DataFile, OutputsAreGivenInOrderWithNotices)
{
    save(file, x, z, text);
    M<double> y("y", 1, 1), unnamed;
    Reports const reports;
    Warnings warnings;
    EXPECT_EQ(load(file, y, unnamed).size(), 0);
    EXPECT_EQ(warnings.take(), "load5: '" + path + "': variable named 'x' loaded into 'y'");
    EXPECT_EQ(shapes::model_of(y).element, shapes::model_of(x).element);
    EXPECT_EQ(shapes::model_of(unnamed).element, shapes::model_of(z).element);
    EXPECT_STREQ(y.getname(), "y");
    saveV4(file, untitled);
    M<double> parts(0, 1, 3);
    std::fill_n(parts.addr(), 3, 0.0);
    EXPECT_EQ(loadif(path.c_str(), y), 1);
    EXPECT_EQ(warnings.take(), "load4 '" + path + "': variable named 'noname' loaded into 'y'");
    load(file, parts(M<double>(2.0)));
    EXPECT_EQ(parts[2], 5);
    EXPECT_EQ(parts.size(), 3);
    EXPECT_TRUE(reports.all().empty());
}

TEST_F(DataFile, WhatCannotBeLoadedIsReported)
{
    std::string const name300(300, 'n'), cut = path + "' could not read data set";
    M<double> long_name = 5.0, last("last", 1, 1), y = 77.0, n;
    last.r(1) = 6;
    long_name.setname(name300.c_str());
    auto const load_fails = [&](std::string const& message, auto&&... outputs) {
        Reports const reports;
        Warnings const warnings;
        load(file, outputs...);
        EXPECT_EQ(reports.text(), message);
    };
    load_fails("load: " + path + " not found", y);
    folder.write("file.mat", "");
    load_fails("load: '" + cut, y);
    save(file, x);
    load_fails("load: '" + cut, n, y);
    EXPECT_EQ(shapes::model_of(n).element, shapes::model_of(x).element);
    for (bool const old_layout : {false, true}) {
        old_layout ? saveV4(file, long_name, last) : save(file, long_name, last);
        load_fails(std::string(old_layout ? "load4" : "load5") + ": name field is too long in file '" + path + "'", n);
        EXPECT_EQ(n[1], 6);
    }
    long_name.setname(name300.c_str() + 45);
    save(file, long_name);
    load_fails("", n);
    folder.write("file.mat", Bytes().text(type4(2)).words({1, 3, 0, 2}).text("s" + zeros(1)).doubles({1e6, 1e6, 0}));
    load_fails("sparse: matrix is too largeload: '" + cut, y);
    {
        Reports const reports;
        EXPECT_EQ(loadif(folder.path("missing").c_str(), y), 0);
        EXPECT_EQ(reports.text(), "load: " + folder.path("missing") + " not found");
    }
    EXPECT_EQ(y[1], 77);
    EXPECT_EQ(thrown_by([&] { load(file, y); }), "Error: sparse: matrix is too large\n\n");
}

TEST_F(DataFile, WhatCannotBeSavedIsReported)
{
    folder.write("file.mat", "precious");
    // 600000000 column starts.
    M<double> wide = sparse(1.0, 600000000.0);
    cube.setname("cube");
    auto const reported = [](auto&& code) {
        Reports const reports;
        code();
        return reports.text();
    };
    EXPECT_EQ(reported([&] { saveV4(file, x, cube); }), "save: matrix 'cube' has more than two dimensions and can not be saved in 4.0 format");
    EXPECT_EQ(reported([&] { save(file, x, wide); }), "save: matrix '(temporary)' has more than 2 GiB and can not be saved");
    EXPECT_EQ(written(), "precious");
    for (std::string const& nowhere : {folder.path(), folder.path("no/such/file"), std::string()})
        for (auto const& one : {save<>, saveV4<>}) {
            EXPECT_EQ(reported([&] { one(TM(nowhere.c_str()), x); }), "save: " + nowhere + " could not be created");
            EXPECT_EQ(thrown_by([&] { one(TM(nowhere.c_str()), x); }), "Error: save: " + nowhere + " could not be created\n\n");
        }
    EXPECT_EQ(folder.files(), 1);
}

#if !defined(_WIN32)

// A disk that is full after so many bytes: the message tells the part, and the old file survives.
TEST_F(DataFile, OldFileSurvivesAFullDisk)
{
    folder.write("file.mat", "precious");
    struct {
        rlim_t room;
        bool old_layout;
        char const* message;
    } const cases[] = {
        {100, false, "save5: '%s' could not write header"},
        {128, false, "savev5: could not write file '%s'."},
        {128 + 40, false, "save5: could not save matrix name in file '%s'"},
        {128 + 56 + 8, false, "savev5: could not write file '%s'."},
        {300000, false, "savev5: could not write file '%s'."},
        {0, true, "save: could not write header"},
        {21, true, "save: could not write matrix name"},
        {22 + 47, true, "save: could not write real part"},
        {22 + 48 + 47, true, "save: could not write imag part"},
    };
    M<double> const large(0, 300, 300);
    std::fill_n(large.addr(), large.size(), 1.0);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    auto const outer = signal(SIGXFSZ, SIG_IGN);
    for (auto const& one : cases) {
        rlimit full = before;
        full.rlim_cur = one.room;
        Reports const reports;
        setrlimit(RLIMIT_FSIZE, &full);
        one.old_layout ? saveV4(file, z, large) : save(file, z, large);
        setrlimit(RLIMIT_FSIZE, &before);
        std::string message = one.message;
        if (message.find("%s") != message.npos)
            message.replace(message.find("%s"), 2, path);
        EXPECT_EQ(reports.text(), message);
        EXPECT_EQ(written(), "precious");
        EXPECT_EQ(folder.files(), 1);
    }
    signal(SIGXFSZ, outer);
    Reports const reports;
    save(TM("/dev/full"), x);
    EXPECT_EQ(reports.text(), "save5: '/dev/full' could not write header");
}

using DataFileDeathTest = DataFile;

// A report may end the process: what was begun is gone by then.
TEST_F(DataFileDeathTest, NothingIsLeftByAProcessThatEnds)
{
    folder.write("file.mat", "precious");
    EXPECT_EXIT(
        {
            signal(SIGXFSZ, SIG_IGN);
            rlimit most = {};
            most.rlim_cur = most.rlim_max = 150;
            setrlimit(RLIMIT_FSIZE, &most);
            Flags const flags(nx_error_exit);
            save(file, z);
        },
        testing::ExitedWithCode(1), "");
    EXPECT_EQ(written(), "precious");
    EXPECT_EQ(folder.files(), 1);
}

#endif

TEST_F(DataFile, MemoryThatFailsIsReportedOnce)
{
    Warnings const warnings;
    // Numbers, text, entries in no order, and all of it compressed.
    for (char const* name : {"l5s_mixed_b", "l5c_sparseperm_a", "l4c_coo_b", "l5z_mixed_a"}) {
        if (name[2] == 'z' && !arrlib::InflateSource::is_available())
            continue;
        M<double> const in = TM((expected::folder() / "open" / (std::string(name) + ".mat")).string().c_str());
        M<double> values[2] = {x, x};
        with_every_allocation_refused([&] {
            load(in, values[0], values[1]);
            values[0] = values[1] = x;
        });
    }
    with_every_allocation_refused([&] {
        save(file, z, s, text);
        saveV4(file, z, s, text);
    });
    EXPECT_EQ(folder.files(), 1);
}

} // namespace
