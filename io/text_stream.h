// Where formatted text goes and where scanned text comes from: the border between the format engine
// and the files.
#ifndef ARRLIB_IO_TEXT_STREAM_H
#define ARRLIB_IO_TEXT_STREAM_H

#include "core/api.h"
#include "runtime/report.h"

#include <cstddef>

namespace arrlib {

// Takes text in blocks. `text` holds no zero byte but the one behind it, at text[size], so a sink may
// pass it on as a C string. False when it could not all be taken: nothing more is sent then.
struct TextSink {
    void* to;
    bool (*write)(void* to, char const* text, std::size_t size);
};

// The console, through the print hook.
inline TextSink console_sink()
{
    return {nullptr, [](void*, char const* text, std::size_t) {
                print_hook(text);
                return true;
            }};
}

// Gives text in blocks. A reader takes the bytes from `at` on by moving it, up to `end`, and asks for
// more when they meet. What it leaves there has not been read: the owner gives it back to the file
// behind it. At no time does a reader need more than the one byte at `at`.
struct TextSource {
    char const* at = nullptr;
    char const* end = nullptr;

    // True when there is a byte at `at`.
    bool more() { return at != end || fill(); }

    TextSource() = default;
    TextSource(TextSource const&) = delete;
    TextSource& operator=(TextSource const&) = delete;

protected:
    ~TextSource() = default;
    // Called with at == end: points both at the next block and answers true, or leaves them equal and
    // answers false at the end of the input and when it cannot be read.
    virtual bool fill() = 0;
};

// --- what the table of files gives --------------------------------------------------------------

// The sink of an open file. False after the report of a fid that is none ("Size of fid %s not one.",
// "Illegal fid.", "Fid not opened.").
bool sink_of_fid(M<double> const& fid, TextSink& sink);

// Runs `work` on the text of an open file from its present position on; afterwards the position is
// behind what was taken. False after the report of a fid that is none; `work` has not run then.
bool read_fid(M<double> const& fid, void* context, void (*work)(void* context, TextSource& source));

} // namespace arrlib

#endif
