// The format engine: a format is cut into pieces of one conversion each, and recycled over the
// elements that are printed or scanned with it.
#ifndef ARRLIB_IO_FORMAT_H
#define ARRLIB_IO_FORMAT_H

#include "core/matrix.h"
#include "io/text_stream.h"

#include <cstddef>

namespace arrlib {

// Characters of a format; what is longer is cut with the warning of Mstr.
inline constexpr int format_limit = 2048;
// Pieces of a format, the text behind the last conversion included; what follows is cut with the
// warning "format: more than 32 pieces - chopped".
inline constexpr int most_pieces = 32;
// Room for the text of one piece and its zero byte, in print and in scan; print cuts what is longer
// with the warning "format: piece too long - chopped", once for each format.
inline constexpr std::size_t piece_size = 32000;
// Stands for the letter of the text behind the last conversion.
inline constexpr char trailing_text = '=';

class PieceText;

struct FormatPiece {
    // Prints one element, or for %s all of them, behind the piece's own text.
    using Print = void (*)(PieceText& out, FormatPiece const& piece, double const* elements, std::size_t count);

    char letter;     // as written, or `trailing_text`
    char modifier;   // one of lhLHbtBT, or 0
    bool suppressed; // by a "*": scanned, but not stored
    bool left;       // the flags of print
    bool sign;
    bool alternative;
    bool zeros;
    int width;     // 0: none
    int precision; // -1: none
    int scan_width; // 0: none; -1: more than a "*" and a width stand before the letter
    Print print;
    // The text before the conversion, as written and as it is printed.
    unsigned short written, written_size;
    unsigned short printed, printed_size;
};

// A format after parsing. It remembers where printing stopped: several arguments share one.
class ParsedFormat {
public:
    // The text of a value, cut at its limit and with its escapes translated.
    explicit ParsedFormat(M<double> const& format);
    // At most format_limit characters.
    explicit ParsedFormat(char const* format) { parse(format); }
    ParsedFormat(ParsedFormat const&) = delete;
    ParsedFormat& operator=(ParsedFormat const&) = delete;

    void advance() { current = current < last ? current + 1 : 0; }
    char const* written_text(FormatPiece const& piece) const { return written_ + piece.written; }
    char const* printed_text(FormatPiece const& piece) const { return printed_ + piece.printed; }

    FormatPiece pieces[most_pieces];
    int last = -1;
    int current = 0;
    // All conversions are %c and %s.
    bool only_text = true;
    bool trailing_text_printed_last = false;
    bool cut_reported = false;

private:
    void parse(char const* format);

    char written_[format_limit];
    char printed_[format_limit];
};

// Text with backslash and n, r or t translated to the characters that they stand for; any other
// backslash is dropped, and the character behind it kept.
void translate_escapes(char* text);

// Collects text in a block and sends it on when the block is full, and when told to.
class TextOutput {
public:
    explicit TextOutput(TextSink const& sink) : sink_(sink) {}
    TextOutput(TextOutput const&) = delete;
    TextOutput& operator=(TextOutput const&) = delete;

    // Room for one piece; null when the sink takes no more.
    char* room() { return used_ + piece_size <= sizeof block_ || flush() ? block_ + used_ : nullptr; }
    // Keeps what was written there.
    void keep(char const* end) { used_ = static_cast<std::size_t>(end - block_); }
    // Sends what has been collected; false when the sink did not take all.
    bool flush();
    // Characters that the sink took.
    std::size_t sent() const { return sent_; }

private:
    TextSink sink_;
    std::size_t used_ = 0;
    std::size_t sent_ = 0;
    bool failed_ = false;
    char block_[2 * piece_size];
};

// Prints the elements in order, from the piece on where the format stands. False when the sink takes
// no more, and after the report "sprintf: unknown type character".
bool print_elements(ParsedFormat& format, double const* elements, std::size_t count, TextOutput& out);
// The same for the real parts of all elements of a value.
bool print_value(ParsedFormat& format, M<double> const& value, TextOutput& out);

} // namespace arrlib

#endif
