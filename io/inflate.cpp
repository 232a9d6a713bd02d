#include "io/inflate.h"

#include "platform/platform.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#if defined(ARRLIB_ZLIB)
#include <zlib.h>
#endif

namespace arrlib {

#if defined(ARRLIB_ZLIB)

// A match of two bits stands for 258 bytes: no stream grows more.
constexpr std::uint64_t most_growth = 1032;

struct InflateSource::State {
    z_stream stream;
    bool ended;
    unsigned char input[16384];

    // The next bytes; fewer than asked for at the end of the stream and when it is damaged.
    std::size_t inflate_to(unsigned char* to, std::size_t count, FileSource& file, std::uint64_t& compressed_left, bool& out_of_memory)
    {
        std::size_t done = 0;
        while (done < count && !ended) {
            if (stream.avail_in == 0 && compressed_left > 0) {
                std::size_t const piece = static_cast<std::size_t>(std::min<std::uint64_t>(sizeof input, compressed_left));
                if (!file.read(input, piece))
                    return done;
                compressed_left -= piece;
                stream.next_in = input;
                stream.avail_in = static_cast<uInt>(piece);
            }
            uInt const room = static_cast<uInt>(std::min<std::size_t>(count - done, std::numeric_limits<int>::max()));
            stream.next_out = to + done;
            stream.avail_out = room;
            int const status = ::inflate(&stream, Z_NO_FLUSH);
            done += room - stream.avail_out;
            ended = status == Z_STREAM_END;
            out_of_memory = status == Z_MEM_ERROR;
            if (!ended && status != Z_OK)
                return done;
        }
        return done;
    }
};

namespace {

voidpf allocate(voidpf, uInt items, uInt size)
{
    return platform::heap_allocate(std::size_t{items} * size);
}

void release(voidpf, voidpf block)
{
    platform::heap_release(block);
}

} // namespace

InflateSource::InflateSource(FileSource& file, std::uint64_t length)
    : ByteSource(std::min(length, std::numeric_limits<std::uint64_t>::max() / most_growth) * most_growth), file_(file), compressed_left_(length)
{
    void* const block = platform::heap_allocate(sizeof(State));
    if (!block) {
        out_of_memory_ = true;
        return;
    }
    state_ = new (block) State;
    state_->stream = {};
    state_->stream.zalloc = allocate;
    state_->stream.zfree = release;
    state_->ended = inflateInit(&state_->stream) != Z_OK;
    out_of_memory_ = state_->ended;
}

InflateSource::~InflateSource()
{
    if (state_)
        inflateEnd(&state_->stream);
    platform::heap_release(state_);
}

bool InflateSource::is_available()
{
    return true;
}

bool InflateSource::take(void* to, std::size_t count)
{
    return state_ && state_->inflate_to(static_cast<unsigned char*>(to), count, file_, compressed_left_, out_of_memory_) == count;
}

bool InflateSource::at_end()
{
    unsigned char more;
    return state_ && state_->inflate_to(&more, 1, file_, compressed_left_, out_of_memory_) == 0 && state_->ended;
}

#else

InflateSource::InflateSource(FileSource& file, std::uint64_t length) : ByteSource(0), file_(file), compressed_left_(length) {}

InflateSource::~InflateSource()
{
    static_cast<void>(file_);
    static_cast<void>(compressed_left_);
    static_cast<void>(state_);
}

bool InflateSource::is_available()
{
    return false;
}

bool InflateSource::take(void*, std::size_t)
{
    return false;
}

bool InflateSource::at_end()
{
    return false;
}

#endif

bool InflateSource::pass_over(std::uint64_t count)
{
    unsigned char block[4096];
    for (; count > 0; count -= std::min<std::uint64_t>(count, sizeof block))
        if (!take(block, static_cast<std::size_t>(std::min<std::uint64_t>(count, sizeof block))))
            return false;
    return true;
}

} // namespace arrlib
