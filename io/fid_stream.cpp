#include "io/fid_stream.h"

#include <algorithm>
#include <cstring>

namespace arrlib {

namespace {

// The text of the input hook; what one reader leaves of a line waits for the next.
struct ConsoleText final : TextSource {
    // The end was met by the last read.
    bool ended = false;

    void forget()
    {
        at = end = line_;
        ended = false;
    }

private:
    bool fill() override
    {
        // One place is kept for a line end that a host leaves out.
        constexpr int room = static_cast<int>(sizeof line_) - 1;
        at = end = line_;
        line_[0] = '\0';
        input_hook(line_, room);
        line_[room - 1] = '\0';
        std::size_t length = std::strlen(line_);
        ended = length == 0;
        bool const whole = !ended && static_cast<int>(length) < room - 1;
        if (whole && line_[length - 1] != '\n' && !std::feof(stdin))
            line_[length++] = '\n';
        end = line_ + length;
        return !ended;
    }

    char line_[2048];
};

ConsoleText& console_text()
{
    static ConsoleText text;
    return text;
}

// The text of a file in blocks; what one reader leaves of a block waits for the next.
struct BlockText final : TextSource {
    explicit BlockText(FidSlot& slot) : slot_(slot), stream_(stream_to_read_ahead(slot))
    {
        at = slot.at;
        end = slot.end;
    }
    ~BlockText()
    {
        slot_.at = at;
        slot_.end = end;
    }

private:
    bool fill() override
    {
        std::size_t const got = std::fread(slot_.ahead, 1, sizeof slot_.ahead, stream_);
        if (got < sizeof slot_.ahead && std::ferror(stream_))
            note_failure(slot_);
        else if (got > 0 && std::feof(stream_))
            std::clearerr(stream_); // The program does not meet the end before the next block.
        at = slot_.ahead;
        end = at + got;
        return got > 0;
    }

    FidSlot& slot_;
    std::FILE* stream_;
};

// The text of a stream that cannot go back, byte by byte.
struct ByteText final : TextSource {
    explicit ByteText(FidSlot& slot) : slot_(slot), stream_(stream_to_read(slot)) { at = end = &byte_; }
    ~ByteText()
    {
        if (at != end)
            std::ungetc(static_cast<unsigned char>(byte_), stream_);
    }

private:
    bool fill() override
    {
        int const byte = std::getc(stream_);
        if (byte == EOF && std::ferror(stream_))
            note_failure(slot_);
        byte_ = static_cast<char>(byte);
        at = &byte_;
        end = at + (byte != EOF);
        return byte != EOF;
    }

    FidSlot& slot_;
    std::FILE* stream_;
    char byte_ = 0;
};

} // namespace

void read_open_fid(int fid, void* context, void (*work)(void* context, TextSource& source))
{
    if (fid == 0) {
        work(context, console_text());
    } else if (fid_slot(fid).goes_back) {
        BlockText text(fid_slot(fid));
        work(context, text);
    } else {
        ByteText text(fid_slot(fid));
        work(context, text);
    }
}

std::size_t read_bytes(int fid, void* to, std::size_t count)
{
    std::size_t got = 0;
    if (fid == 0) {
        ConsoleText& text = console_text();
        got = std::min(count, static_cast<std::size_t>(text.end - text.at));
        std::memcpy(to, text.at, got);
        text.at += got;
    }
    FidSlot& slot = fid_slot(fid);
    std::FILE* const stream = stream_to_read(slot);
    got += std::fread(static_cast<char*>(to) + got, 1, count - got, stream);
    if (got < count && std::ferror(stream))
        note_failure(slot);
    return got;
}

std::size_t write_bytes(int fid, void const* from, std::size_t count)
{
    if (fid == 1) {
        print_bytes(static_cast<char const*>(from), count);
        return count;
    }
    FidSlot& slot = fid_slot(fid);
    std::FILE* const stream = stream_to_write(slot);
    std::size_t const written = std::fwrite(from, 1, count, stream);
    if (written < count)
        note_failure(slot);
    return written;
}

bool at_end(int fid)
{
    return (fid == 0 && console_text().ended) || std::feof(fid_slot(fid).stream);
}

void forget_console_input()
{
    console_text().forget();
}

void print_bytes(char const* bytes, std::size_t count)
{
    char text[1024];
    for (char const* const end = bytes + count; bytes != end;) {
        if (*bytes == '\0') {
            std::putc(*bytes++, stdout);
            continue;
        }
        char const* const stop = std::find(bytes, bytes + std::min<std::ptrdiff_t>(end - bytes, sizeof text - 1), '\0');
        *std::copy(bytes, stop, text) = '\0';
        print_hook(text);
        bytes = stop;
    }
}

bool sink_of_fid(M<double> const& fid, TextSink& sink)
{
    int const open = checked_fid(fid, true);
    if (open == 1)
        sink = console_sink();
    else if (open >= 0)
        sink = {&fid_slot(open), [](void* to, char const* text, std::size_t size) {
                    FidSlot& slot = *static_cast<FidSlot*>(to);
                    bool const taken = std::fwrite(text, 1, size, stream_to_write(slot)) == size;
                    if (!taken)
                        note_failure(slot);
                    return taken;
                }};
    return open >= 0;
}

bool read_fid(M<double> const& fid, void* context, void (*work)(void* context, TextSource& source))
{
    int const open = checked_fid(fid, true);
    if (open >= 0)
        read_open_fid(open, context, work);
    return open >= 0;
}

} // namespace arrlib
