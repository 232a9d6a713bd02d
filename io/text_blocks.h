// The text of a file in blocks, so that a large one need not be in memory.
#ifndef ARRLIB_IO_TEXT_BLOCKS_H
#define ARRLIB_IO_TEXT_BLOCKS_H

#include "platform/platform.h"
#include "runtime/messages.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace arrlib {

inline bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

inline bool ends_word(char const* at, char const* end)
{
    return at == end || is_blank(*at) || *at == '\n';
}

// A regular file is read anew for every pass; anything else is read once and kept.
class TextBlocks {
public:
    explicit TextBlocks(char const* path) : stream_(platform::open_stream(path, "rb"))
    {
        length_ = stream_ ? platform::stream_size(stream_) : -1;
        if (length_ >= 0)
            return;
        std::size_t length = 0;
        result_ = platform::read_file(path, &kept_, &length);
        length_ = static_cast<std::int64_t>(length);
    }
    ~TextBlocks()
    {
        if (stream_)
            std::fclose(stream_);
        platform::heap_release(kept_);
        platform::heap_release(block_);
    }
    TextBlocks(TextBlocks const&) = delete;
    TextBlocks& operator=(TextBlocks const&) = delete;

    bool found() const { return result_ != platform::ReadResult::not_found; }
    // The message about what went wrong so far, or null.
    char const* problem() const
    {
        return result_ == platform::ReadResult::out_of_memory ? messages::out_of_memory
               : result_ == platform::ReadResult::done        ? nullptr
                                                              : messages::could_not_read;
    }
    std::int64_t length() const { return length_; }

    // Calls `take` with the beginning and end of every block, until it answers false. Blocks end
    // between words.
    template <class Take> void each(Take&& take)
    {
        if (kept_)
            take(kept_, kept_ + length_);
        else if (stream_ && result_ == platform::ReadResult::done)
            each_of_stream(take);
    }

private:
    // A small part of what the numbers take, and enough at a time for several threads.
    std::size_t first_room() const
    {
        constexpr std::int64_t least = std::int64_t{1} << 18, most = std::int64_t{1} << 21;
        return static_cast<std::size_t>(std::min(std::clamp(length_ / 32, least, most), length_ + 1));
    }

    template <class Take> void each_of_stream(Take& take)
    {
        result_ = platform::ReadResult::not_read;
        if (!platform::seek_stream(stream_, 0, platform::SeekFrom::start))
            return;
        for (std::size_t kept = 0;;) {
            // A word may fill the block.
            if (kept == room_ && !make_room(kept))
                return;
            std::size_t const filled = kept + std::fread(block_ + kept, 1, room_ - kept, stream_);
            bool const last = filled < room_;
            if (last && std::ferror(stream_))
                return;
            std::size_t whole = filled;
            while (!last && whole > 0 && !ends_word(block_ + whole - 1, block_ + filled))
                --whole;
            if ((whole > 0 && !take(block_, block_ + whole)) || last)
                break;
            kept = filled - whole;
            std::memmove(block_, block_ + whole, kept);
        }
        result_ = platform::ReadResult::done;
    }

    // False when there is no memory; nothing has been reported then.
    bool make_room(std::size_t kept)
    {
        std::size_t const room = room_ ? 2 * room_ : first_room();
        auto* const larger = static_cast<char*>(platform::heap_allocate(room));
        if (!larger) {
            result_ = platform::ReadResult::out_of_memory;
            return false;
        }
        std::copy_n(block_, kept, larger);
        platform::heap_release(block_);
        block_ = larger;
        room_ = room;
        return true;
    }

    std::FILE* stream_;
    std::int64_t length_ = -1;
    char* kept_ = nullptr;
    char* block_ = nullptr;
    std::size_t room_ = 0;
    platform::ReadResult result_ = platform::ReadResult::done;
};

} // namespace arrlib

#endif
