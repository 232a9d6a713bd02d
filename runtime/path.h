// The directories in which files are looked for by name.
#ifndef ARRLIB_RUNTIME_PATH_H
#define ARRLIB_RUNTIME_PATH_H

#include "core/matrix.h"

#include <cstddef>

// A search path: names of directories, each ended by a zero byte, packed one after another into one
// block, which is taken from the heap when the first name comes ("Out of memory!"). Names are compared
// byte by byte. For one thread at a time.
struct ARRLIB_API mpath_t {
    // The block has one byte more.
    static constexpr std::size_t room = 0x20000;

    // True when a directory of exactly that name is there.
    bool contains(char const* name) const;
    // Puts a directory in front of the others, so that it is searched first; one that is there already
    // stays where it is. One for which there is no room is dropped: "mpath is too long" warns once.
    void add_to_front(char const* directory);
    // Adds what one line of a path list says: directories separated by ";", each in front of the one
    // before it. The line is made a full path, without "/tmp_mnt" at its start and with "/" for every
    // backslash. A line that starts with "diary" adds nothing.
    void add_line(char const* line);
    // Adds every line of a file: "could not read %s", "file %s is too large". A line of more than 512
    // characters is left out, with the warning "path list %s: line is too long".
    void load_list(char const* file);
    // The directories of a text, separated by ";", take the place of those before. A text that is too
    // long is cut, with the warning.
    void set(char const* text);
    // Writes the directories, separated by ";", into a buffer of `size` bytes, cut where it is full.
    void get(char* buffer, std::size_t size) const;
    // Bytes in use, the zero bytes among them.
    std::size_t length() const { return static_cast<std::size_t>(end_ - begin_); }
    // The same for people: a line for each directory but empty ones and those whose name contains
    // "private"; "..." is the last line when the buffer is too small for all.
    void list(char* buffer, std::size_t size) const;
    // Looks for the file `name` with ".m" behind it, directory by directory, and gives its path. False
    // when there is none whose path fits.
    bool find_file(char const* name, char* path, std::size_t size) const;

    constexpr mpath_t() = default;
    ~mpath_t();
    mpath_t(mpath_t const&) = delete;
    mpath_t& operator=(mpath_t const&) = delete;

private:
    bool has_block();
    void add_pieces(char* pieces);
    void warn_too_long();

    char* begin_ = nullptr;
    char* end_ = nullptr;
    bool warns_ = true;
};

// The mpath_t of the process.
ARRLIB_API extern void* mpath_pointer;

// "path is not available in compiled programs."
ARRLIB_API M<double> path();
ARRLIB_API M<double> path(M<double> const& directories);
ARRLIB_API M<double> path(M<double> const& first, M<double> const& second);

namespace arrlib {

extern mpath_t search_path;

} // namespace arrlib

#endif
