// The search path: its order, its fixed room, path lists of any bytes, and what finds files through it.
#include "arrlib.h"
#include "runtime/whole_file.h"
#include "support/values.h"

using namespace capture;
using namespace values;

namespace {

std::string got(mpath_t const& path, std::size_t size = mpath_t::room)
{
    std::string buffer(size + 1, '#');
    path.get(buffer.data(), size);
    EXPECT_EQ(buffer[size], '#');
    return buffer.c_str();
}

std::string listed(mpath_t const& path, std::size_t size = mpath_t::room)
{
    std::string buffer(size + 1, '#');
    path.list(buffer.data(), size);
    EXPECT_EQ(buffer[size], '#');
    return buffer.c_str();
}

// What add_line makes of a line.
[[maybe_unused]] std::string line(std::string const& text)
{
    mpath_t path;
    path.add_line(text.c_str());
    return got(path);
}

TEST(Path, TheNewestComesFirst)
{
    mpath_t path;
    EXPECT_EQ(got(path), "");
    for (char const* directory : {"/a", "/b c", "/a", "/\xC3\xA9\x01", "/a", "/A", "/a/"})
        path.add_to_front(directory);
    EXPECT_EQ(got(path), "/a/;/A;/\xC3\xA9\x01;/b c;/a");
    EXPECT_EQ(path.length(), 20u);
    for (char const* directory : {"a", "/", "/b", "c", "", "/a/;"})
        EXPECT_FALSE(path.contains(directory)) << directory;
    for (char const* directory : {"/a", "/b c", "/a/"})
        EXPECT_TRUE(path.contains(directory)) << directory;
}

TEST(Path, SetAndGet)
{
    mpath_t path;
    path.add_to_front("/before");
    for (char const* text : {"a;b;c", "", "a", ";", ";;b;", "a b;\t;c"}) {
        path.set(text);
        EXPECT_EQ(got(path), text);
        EXPECT_EQ(path.length(), *text ? std::string(text).size() + 1 : 0);
    }
    path.set("abc;def");
    EXPECT_EQ(got(path, 6), "abc;d");
    EXPECT_EQ(got(path, 1), "");
    path.get(nullptr, 0);
}

#if !defined(_WIN32) // full paths have another form there
TEST(Path, OneLineOfAList)
{
    std::string const here = shown(cd()).substr(1, shown(cd()).size() - 2);
    expect_all({
        {line("/usr/lib"), "/usr/lib"},
        {line("/usr/./lib//x/../y/"), "/usr/lib/y/"},
        {line("/../.."), "/"},
        {line("/tmp_mnt/home/me"), "/home/me"},
        {line("/tmp_mnt"), ""},
        {line("/a;/b;;/c;/a"), "/c;/b;/a"},
        {line("x y"), here + "/x y"},
        {line("."), here},
        {line("diary of a line"), ""},
        {line(" diary"), here + "/ diary"},
        {line(""), ""},
        {line("/a\\b\\"), "/a/b/"},
        {line(";"), here + "/"},
        {line("/\x01\x7F\xFF"), "/\x01\x7F\xFF"},
    });
}
#endif

TEST(Path, RoomIsFixed)
{
    // As many bytes as there may be: entry and zero byte leave three.
    mpath_t path;
    std::string const longest(mpath_t::room - 4, 'x');
    Warnings const warnings;
    path.add_to_front((longest + "y").c_str());
    EXPECT_EQ(path.length(), 0u);
    path.add_to_front(longest.c_str());
    EXPECT_EQ(path.length(), mpath_t::room - 3);
    path.add_to_front("z");
    EXPECT_TRUE(got(path) == longest);
    path.set((longest + longest).c_str());
    EXPECT_EQ(path.length(), mpath_t::room - 1);
    EXPECT_EQ(got(path).size(), mpath_t::room - 2);
    EXPECT_EQ(warnings.all(), (Texts{"mpath is too long"}));
    // A list of 200000 characters fills the room with its first directories.
    mpath_t other;
    std::string list;
    for (int k = 0; list.size() < 200000; ++k)
        list += "/directory number " + std::to_string(k) + ";";
    other.add_line(list.c_str());
    EXPECT_EQ(warnings.all().size(), 2u);
    EXPECT_GT(other.length(), mpath_t::room - 50);
    EXPECT_TRUE(other.contains("/directory number 4000"));
    other.set(list.c_str());
    EXPECT_TRUE(got(other) == list.substr(0, mpath_t::room - 2));
}

TEST(Path, ListingForPeople)
{
    mpath_t path;
    EXPECT_EQ(listed(path), "");
    path.set("/one;/my/private;;/two;private;/three");
    EXPECT_EQ(listed(path), "/one\n/two\n/three\n");
    expect_all({
        {listed(path, 22), "/one\n/two\n/three\n"},
        {listed(path, 21), "/one\n/two\n...\n"},
        {listed(path, 14), "/one\n...\n"},
        {listed(path, 5), "...\n"},
        {listed(path, 3), ".."},
    });
}

TEST(Path, FilesOfDirectories)
{
    TemporaryFolder const folder;
    folder.write("list.txt", folder.path("first") + "\r\n\ndiary\n" + folder.path("se cond") + '\0' + std::string(513, 'x') + "\n/last;/line");
    std::filesystem::create_directories(folder.path("first/both.m"));
    std::filesystem::create_directories(folder.path("se cond"));
    folder.write("se cond/both.m", "");
    folder.write("first/one.m", "");
    mpath_t path;
    EXPECT_EQ(warned_by([&] { path.load_list(folder.path("list.txt").c_str()); }), "path list " + folder.path("list.txt") + ": line is too long");
    EXPECT_EQ(got(path), "/line;/last;" + folder.path("se cond") + ";" + folder.path("first"));
    path.set((got(path) + ";").c_str());
    char found[4096];
    // Folders are no files, and what is in an earlier directory hides the rest.
    EXPECT_TRUE(path.find_file("both", found, sizeof found));
    EXPECT_EQ(found, folder.path("se cond") + "/both.m");
    EXPECT_TRUE(path.find_file("one", found, sizeof found));
    EXPECT_FALSE(path.find_file("one", found, 5));
    EXPECT_FALSE(path.find_file("two", found, sizeof found));
    std::string const missing = folder.path("missing");
    EXPECT_EQ(reported_by([&] { path.load_list(missing.c_str()); }), "could not read " + missing);
    EXPECT_EQ(reported_by([&] { path.load_list(folder.path().c_str()); }), "could not read " + folder.path());
    arrlib::search_path.set(got(path).c_str());
    expect_all({
        {shown(exist(text("one"))), "1x1: 2"},
        {shown(exist(text("both"))), "1x1: 2"},
        {shown(exist(text("one.m"))), "1x1: 0"},
        {shown(exist(text(folder.path("first/one")))), "1x1: 2"},
        {shown(exist(text(folder.path("list.txt")))), "1x1: 2"},
        {shown(exist(text(folder.path("list")))), "1x1: 0"},
        {shown(exist(text(folder.path("first")))), "1x1: 0"},
        {shown(exist(text(""))), "1x1: 0"},
        {reported_by([] { exist(M<double>(3)); }), "exist: argument is not string"},
        {reported_by([] { ::path(); }) + reported_by([] { ::path(x_M, x_M); }), "path is not available in compiled programs.path is not available in compiled programs."},
        {mpath_pointer == &arrlib::search_path ? "the process's" : "another", "the process's"},
    });
    Printed const cut;
    EXPECT_EQ(warned_by([] { EXPECT_EQ(exist(text(std::string(3000, 'x')))[1], 0); }), "Mstr: buffer too small - chopped");
    arrlib::search_path.set("");
}

TEST(Path, MemoryIsRefused)
{
    TemporaryFolder const folder;
    std::string const list = folder.write("list", "/a;/b\n/c\n");
    with_every_allocation_refused([&] {
        mpath_t path;
        path.load_list(list.c_str());
    });
    // The store is one block of a fixed size.
    static std::size_t asked;
    mpath_t path;
    arrlib::platform::set_heap([](std::size_t size) { return std::malloc(asked = size); }, std::free);
    path.set("/a");
    arrlib::platform::set_heap(nullptr, nullptr);
    EXPECT_EQ(asked, 131073u);
}

// A file with a hole takes no room.
TEST(Path, FilesOfTwoGigabytes)
{
    TemporaryFolder const folder;
    std::string const file = folder.write("large", "");
    std::error_code failed;
    std::filesystem::resize_file(file, 0x7FFFFFFF, failed);
    if (failed)
        GTEST_SKIP() << "no file of that size here";
    static std::size_t asked;
    arrlib::platform::set_heap([](std::size_t size) -> void* { return size > 1000000 ? (asked = size, nullptr) : std::malloc(size); }, std::free);
    std::size_t length = 0;
    EXPECT_EQ(warned_by([&] { EXPECT_EQ(reported_by([&] { arrlib::whole_file(file.c_str(), length); }), "Out of memory!"); }), "file " + file + " is too large");
    arrlib::platform::set_heap(nullptr, nullptr);
    EXPECT_EQ(asked, 0x7FFFFFFFu);
}

TEST(Environment, Answers)
{
    M<double> first, second;
    auto const checked = [](double low, double high, double n) { return shown(nargchk(low, high, n)); };
    expect_all({
        {shown(computer()) + shown(version()), "'PC KORVEX''TELOSA'"},
        {shown(computer(i_o, first, second)), "'PC KORVEX'"},
        {shown(first) + shown(second), "'PC KORVEX'1x1: 268435439"},
        {shown(version(i_o, first, second)), "'TELOSA'"},
        {shown(first) + shown(second), "'TELOSA''Dec 18 1998'"},
        {checked(1, 3, 1) + checked(1, 3, 3), "text 0x0:text 0x0:"},
        {checked(1, 3, 0), "'too few input arguments'"},
        {checked(1, 3, 4), "'too many input arguments'"},
        {checked(5, 1, 3), "'too many input arguments'"},
        {reported_by([] { nargchk(1, row({1, 2}), 3); }), "nargchk: argument must be scalar"},
        {shown(clear()) + shown(clear(text("x"))), "0x0:0x0:"},
    });
}

} // namespace
