// Any bytes as directories, path lists and files of them: the search path keeps its bound, and gives back
// what was put in. A zero byte ends each step; its first two bytes say what it does, and how often its
// text is repeated.
#include "runtime/path.h"
#include "platform/platform.h"
#include "runtime/errors.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

// A text that a member writes into a buffer of that size.
std::string written(mpath_t const& path, void (mpath_t::*write)(char*, std::size_t) const, std::size_t size)
{
    std::vector<char> buffer(size);
    (path.*write)(buffer.data(), size);
    check(size == 0 || std::memchr(buffer.data(), '\0', size));
    return size ? buffer.data() : "";
}

void check_sound(mpath_t const& path)
{
    std::string const all = written(path, &mpath_t::get, mpath_t::room);
    check(path.length() < mpath_t::room && (path.length() == 0 ? all.empty() : all.size() == path.length() - 1));
    for (std::size_t const size : {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{40}})
        check(written(path, &mpath_t::get, size) == all.substr(0, size ? size - 1 : 0));
    for (std::size_t const size : {std::size_t{0}, std::size_t{3}, std::size_t{60}, mpath_t::room})
        check(written(path, &mpath_t::list, size).find("private") == std::string::npos);
    mpath_t again;
    again.set(all.c_str());
    check(written(again, &mpath_t::get, mpath_t::room) == all);
    char found[100];
    check(!path.find_file("no such file", found, sizeof found) || std::strlen(found) < sizeof found);
}

void add_and_check(mpath_t& path, std::string const& directory)
{
    std::string const before = written(path, &mpath_t::get, mpath_t::room);
    std::size_t const length = path.length();
    bool const known = path.contains(directory.c_str()), fits = length + directory.size() + 3 < mpath_t::room;
    path.add_to_front(directory.c_str());
    bool const added = !known && fits;
    check(path.length() == length + (added ? directory.size() + 1 : 0) && path.contains(directory.c_str()) == (known || added));
    check(written(path, &mpath_t::get, mpath_t::room) == (added ? directory + (length ? ";" + before : "") : before));
}

void step(mpath_t& path, std::string const& bytes, std::string const& file)
{
    if (bytes.size() < 2)
        return;
    std::string text;
    for (unsigned times = 1u << static_cast<unsigned char>(bytes[1]) % 10; times > 0 && text.size() < 200000; --times)
        text.append(bytes, 2, std::string::npos);
    switch (static_cast<unsigned char>(bytes[0]) % 4) {
    case 0:
        return add_and_check(path, text);
    case 1:
        return path.add_line(text.c_str());
    case 2:
        path.set(text.c_str());
        return check(written(path, &mpath_t::get, mpath_t::room) == text.substr(0, mpath_t::room - 2));
    default:
        std::FILE* const stream = std::fopen(file.c_str(), "wb");
        check(stream && std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fclose(stream) == 0);
        path.load_list(file.c_str());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::string const folder = std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp";
    static std::string const file = folder + "/arrlib_path_fuzz_" + std::to_string(arrlib::platform::process_id());
    nx_set_error_handler([](char const*) { std::abort(); });
    nx_set_warning_handler([](char const*) {});
    mpath_t path;
    for (auto at = data, end = data + size; at < end;) {
        auto const next = std::find(at, end, std::uint8_t{0});
        step(path, std::string(at, next), file);
        check_sound(path);
        at = next == end ? end : next + 1;
    }
    std::remove(file.c_str());
    return 0;
}
