#include "runtime/whole_file.h"

#include <cstdint>
#include <memory>

namespace arrlib {

namespace {

constexpr std::int64_t too_large = 0x7FFFFFFF;

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

// Its size in bytes; -1 for what has no end to be found, such as a pipe.
std::int64_t measured(std::FILE* stream)
{
    if (!platform::seek_stream(stream, 0, platform::SeekFrom::end))
        return -1;
    std::int64_t const size = platform::stream_position(stream);
    return platform::seek_stream(stream, 0, platform::SeekFrom::start) ? size : -1;
}

} // namespace

HeapArray<char> whole_file(char const* name, std::size_t& length)
{
    std::unique_ptr<std::FILE, CloseStream> const stream(platform::open_stream(name, "rb"));
    std::int64_t size = stream ? measured(stream.get()) : -1;
    if (size < 0) {
        error(messages::could_not_read, name);
        return {};
    }
    if (size >= too_large) {
        warning("file %s is too large", name);
        size = too_large - 1;
    }
    HeapArray<char> content(static_cast<std::size_t>(size) + 1);
    if (!content)
        return {};
    length = std::fread(content.data(), 1, static_cast<std::size_t>(size), stream.get());
    if (std::ferror(stream.get())) {
        error(messages::could_not_read, name);
        return {};
    }
    content[length] = '\0';
    return content;
}

} // namespace arrlib
