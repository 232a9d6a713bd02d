#include "runtime/path.h"

#include "core/heap_array.h"
#include "runtime/constants.h"
#include "runtime/text_buffer.h"
#include "runtime/whole_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

using namespace arrlib;

constinit mpath_t arrlib::search_path;
constinit void* mpath_pointer = &arrlib::search_path;

namespace {

constexpr char separator = ';';
constexpr char automounted[] = "/tmp_mnt";
constexpr std::size_t automounted_length = sizeof automounted - 1;
constexpr std::size_t longest_line = 512;
// Of a working folder, in front of a relative path.
constexpr std::size_t longest_folder = 4096;
constexpr char cut_listing[] = "...\n";

bool starts_with(char const* text, char const* start)
{
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

// The names of a store, from the first to the last.
class Names {
public:
    Names(char const* begin, char const* end) : at_(begin), end_(end) {}

    explicit operator bool() const { return at_ != end_; }
    char const* operator*() const { return at_; }
    std::size_t length() const { return std::strlen(at_); }
    void operator++() { at_ += length() + 1; }

private:
    char const* at_;
    char const* end_;
};

} // namespace

mpath_t::~mpath_t()
{
    platform::heap_release(begin_);
    begin_ = end_ = nullptr;
}

// Takes the block at the first need; false after the report.
bool mpath_t::has_block()
{
    if (begin_)
        return true;
    begin_ = end_ = static_cast<char*>(platform::heap_allocate(room + 1));
    if (!begin_) {
        error(messages::out_of_memory);
        return false;
    }
    std::fill(begin_, begin_ + room + 1, '\0');
    return true;
}

void mpath_t::warn_too_long()
{
    if (std::exchange(warns_, false))
        warning("mpath is too long");
}

bool mpath_t::contains(char const* name) const
{
    // The name and the zero byte behind it, at the start of an entry.
    std::size_t const wanted = std::strlen(name) + 1;
    for (char const* at = begin_; static_cast<std::size_t>(end_ - at) >= wanted;) {
        if (std::memcmp(at, name, wanted) == 0)
            return true;
        at = static_cast<char const*>(std::memchr(at, '\0', static_cast<std::size_t>(end_ - at))) + 1;
    }
    return false;
}

void mpath_t::add_to_front(char const* directory)
{
    if (contains(directory) || !has_block())
        return;
    std::size_t const added = std::strlen(directory) + 1;
    if (length() + added + 2 >= room) {
        warn_too_long();
        return;
    }
    std::memmove(begin_ + added, begin_, length());
    std::memcpy(begin_, directory, added);
    end_ += added;
}

// Adds what stands between separators, and writes over them.
void mpath_t::add_pieces(char* pieces)
{
    for (char* next = pieces; next; pieces = next) {
        next = std::strchr(pieces, separator);
        if (next)
            *next++ = '\0';
        if (*pieces)
            add_to_front(pieces);
    }
}

void mpath_t::add_line(char const* line)
{
    if (starts_with(line, "diary"))
        return;
    if (starts_with(line, automounted))
        line += automounted_length;
    if (!*line)
        return;
    std::size_t const length = std::strlen(line);
    HeapArray<char> const full(length + longest_folder);
    if (!full)
        return;
    if (!platform::full_path(line, full.data(), full.size()))
        std::memcpy(full.data(), line, length + 1);
    std::replace(full.data(), full.data() + std::strlen(full.data()), '\\', '/');
    add_pieces(full.data());
}

void mpath_t::load_list(char const* file)
{
    std::size_t length = 0;
    HeapArray<char> const content = whole_file(file, length);
    if (!content)
        return;
    char* const end = content.data() + length;
    for (char* line = content.data(); line < end;) {
        // A name cannot hold a zero byte: it ends a line as well.
        char* const line_end = std::find_if(line, end, [](char c) { return c == '\n' || c == '\0'; });
        char* const text_end = line_end > line && line_end[-1] == '\r' ? line_end - 1 : line_end;
        *text_end = '\0';
        if (static_cast<std::size_t>(text_end - line) > longest_line)
            warning("path list %s: line is too long", file);
        else
            add_line(line);
        line = line_end + 1;
    }
}

void mpath_t::set(char const* text)
{
    if (!has_block())
        return;
    std::size_t const wanted = std::strlen(text), copied = std::min(wanted, room - 2);
    std::fill(begin_, begin_ + room + 1, '\0');
    std::replace_copy(text, text + copied, begin_, separator, '\0');
    end_ = begin_ + (copied ? copied + 1 : 0);
    if (copied < wanted)
        warn_too_long();
}

void mpath_t::get(char* buffer, std::size_t size) const
{
    if (size == 0)
        return;
    // The zero byte of the last name is the end of the text.
    std::size_t const text = length() ? length() - 1 : 0, copied = std::min(text, size - 1);
    std::replace_copy(begin_, begin_ + copied, buffer, '\0', separator);
    buffer[copied] = '\0';
}

void mpath_t::list(char* buffer, std::size_t size) const
{
    if (size == 0)
        return;
    TextAppender out(buffer, size, 0);
    for (Names names(begin_, end_); names; ++names) {
        std::size_t const needed = names.length() + 1;
        if (needed == 1 || std::strstr(*names, "private"))
            continue;
        if (size - out.length() < needed + sizeof cut_listing) {
            out.text(cut_listing);
            return;
        }
        out.text(*names).put('\n');
    }
}

bool mpath_t::find_file(char const* name, char* path, std::size_t size) const
{
    for (Names names(begin_, end_); names; ++names) {
        std::size_t const length = names.length();
        if (length == 0)
            continue;
        char const* const between = std::strchr("/\\", (*names)[length - 1]) ? "" : "/";
        TextAppender out(path, size, 0);
        out.text(*names).text(between).text(name).text(".m");
        if (out.whole() && platform::is_file(path))
            return true;
    }
    return false;
}

static M<double> path_not_available()
{
    error("path is not available in compiled programs.");
    return x_M;
}

M<double> path()
{
    return path_not_available();
}

M<double> path(M<double> const&)
{
    return path_not_available();
}

M<double> path(M<double> const&, M<double> const&)
{
    return path_not_available();
}
