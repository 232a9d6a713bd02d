// How one element is printed, by conversion.
#ifndef ARRLIB_IO_FORMAT_PRINT_H
#define ARRLIB_IO_FORMAT_PRINT_H

#include "io/format.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace arrlib {

// The text of one piece while it is put together; what exceeds the piece is cut.
class PieceText {
public:
    explicit PieceText(char* room) : at_(room), begin_(room), limit_(room + piece_size - 1) {}

    char* end() const { return at_; }
    // False when something was cut.
    bool whole() const { return whole_; }

    void text(char const* source, std::size_t count)
    {
        std::size_t const taken = fitting(count);
        std::memcpy(at_, source, taken);
        at_ += taken;
    }
    void fill(char c, std::size_t count)
    {
        std::size_t const taken = fitting(count);
        std::memset(at_, c, taken);
        at_ += taken;
    }
    // Drops what has been written, the piece's own text too.
    void restart() { at_ = begin_; }
    // Where to write a text that is known to fit behind any format, and its end afterwards.
    char* fits_always() const { return at_; }
    void wrote_to(char* end) { at_ = end; }

private:
    std::size_t fitting(std::size_t count)
    {
        auto const left = static_cast<std::size_t>(limit_ - at_);
        if (count <= left)
            return count;
        whole_ = false;
        return left;
    }

    char* at_;
    char* begin_;
    char* limit_;
    bool whole_ = true;
};

// True for the letters "cdDiIoOuUxXfFeEgGsnp".
bool is_conversion(char letter);
// The printer of a conversion with these marks and this modifier.
FormatPiece::Print printer_of(FormatPiece const& piece);

// For %n, and for conversions whose marks make no sense: takes the element and writes nothing.
void print_nothing(PieceText& out, FormatPiece const& piece, double const* elements, std::size_t count);

// A number as the 32-bit integer that the integer conversions print: truncated, then the low 32
// bits. Numbers beyond 64 bits and those that are not finite give 0.
inline std::uint32_t low_word(double number)
{
    if (number > -2147483649.0 && number < 2147483648.0)
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(number));
    bool const fits = number >= -9223372036854775808.0 && number < 9223372036854775808.0;
    return fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(number)) : 0;
}

} // namespace arrlib

#endif
