// Numbers out of a stream of characters, as the C library's scanf reads them, in the C locale.
#ifndef ARRLIB_IO_SCAN_NUMBER_H
#define ARRLIB_IO_SCAN_NUMBER_H

#include "io/letters.h"
#include "io/text_stream.h"

namespace arrlib {

// What is out of memory has been reported.
enum class ScanResult { end_of_input, failed, done, out_of_memory };

// Reads character by character and remembers whether anything was read.
class Reader {
public:
    explicit Reader(TextSource& source) : source_(source) {}

    // The next character, or -1 at the end of the input.
    int peek() { return source_.more() ? static_cast<unsigned char>(*source_.at) : -1; }
    void take() { take_to(source_.at + 1); }
    // The rest of the block at hand; may be empty.
    char const* at() const { return source_.at; }
    char const* block_end() const { return source_.end; }
    // Goes on there, within the block at hand; back as well.
    void take_to(char const* at)
    {
        source_.at = at;
        read_ = true;
    }

    // False at the end of the input.
    bool skip_space()
    {
        while (source_.more()) {
            if (!is_space(*source_.at))
                return true;
            take();
        }
        return false;
    }
    // Whether anything was read since the last call.
    bool has_read()
    {
        bool const read = read_;
        read_ = false;
        return read;
    }

private:
    TextSource& source_;
    bool read_ = false;
};

// Both start at a character that is no space; a width of 0 is none. A number that was not read is left
// at the first character that cannot belong to it.
ScanResult scan_float(Reader& reader, int width, double* number);
// A base of 0 looks for "0x" and "0".
ScanResult scan_integer(Reader& reader, int width, unsigned base, bool with_sign, double* number);

} // namespace arrlib

#endif
