#include "io/byte_source.h"

#include "platform/platform.h"

#include <algorithm>

namespace arrlib {

FileSource::FileSource(char const* path) : ByteSource(0), stream_(platform::open_stream(path, "rb"))
{
    std::int64_t const size = stream_ ? platform::stream_size(stream_) : -1;
    length_ = size > 0 ? static_cast<std::uint64_t>(size) : 0;
    set_left(length_);
}

FileSource::~FileSource()
{
    if (stream_)
        std::fclose(stream_);
}

bool FileSource::rewind()
{
    set_left(length_);
    return platform::seek_stream(stream_, 0, platform::SeekFrom::start);
}

bool FileSource::take(void* to, std::size_t count)
{
    return std::fread(to, 1, count, stream_) == count;
}

bool FileSource::pass_over(std::uint64_t count)
{
    return platform::seek_stream(stream_, static_cast<std::int64_t>(count), platform::SeekFrom::here);
}

bool read_numbers(ByteSource& from, ElementType type, bool swapped, std::size_t count, double* to)
{
    if (type == ElementType::float64) {
        if (!from.read(to, std::uint64_t{count} * sizeof(double)))
            return false;
        if (swapped)
            swap_doubles(to, count);
        return true;
    }
    unsigned char block[8192];
    std::size_t const size = element_size(type);
    while (count > 0) {
        std::size_t const piece = std::min(count, sizeof block / size);
        if (!from.read(block, piece * size))
            return false;
        decode_elements(type, swapped, block, piece, to);
        to += piece;
        count -= piece;
    }
    return true;
}

} // namespace arrlib
