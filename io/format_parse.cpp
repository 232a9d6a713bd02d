// Cuts formats into pieces.
#include "core/text.h"
#include "io/format.h"
#include "io/format_print.h"
#include "io/letters.h"
#include "runtime/errors.h"

#include <algorithm>
#include <cstring>

namespace arrlib {

namespace {

// What may stand between "%" and the letter, and behind that the sizes of C types.
constexpr char marks[] = "*#0123456789+-.";
constexpr char modifiers[] = "lhLHbtBT";
// A width or precision above this one fills any piece.
constexpr int largest_number = static_cast<int>(piece_size);

// What stands at a "%".
struct Percent {
    char const* marks;
    char const* marks_end;
    char modifier;
    char const* letter; // may be the end of the format

    explicit Percent(char const* at) : marks(at + 1), marks_end(marks + std::strspn(marks, arrlib::marks)), letter(marks_end + std::strspn(marks_end, modifiers))
    {
        modifier = letter > marks_end ? *marks_end : '\0';
    }
};

char const* read_number(char const* at, int& number)
{
    for (number = 0; is_digit(*at); ++at)
        number = std::min(10 * number + (*at - '0'), largest_number);
    return at;
}

// Flags, width and precision in the order of the C library. There is no argument that a "*" could
// stand for, so it stands for nothing.
bool read_print_marks(Percent const& percent, FormatPiece& piece)
{
    char const* at = percent.marks;
    for (; *at == '-' || *at == '+' || *at == '#' || *at == '0'; ++at)
        (*at == '-' ? piece.left : *at == '+' ? piece.sign : *at == '#' ? piece.alternative : piece.zeros) = true;
    at = *at == '*' ? at + 1 : read_number(at, piece.width);
    if (*at == '.')
        at = at[1] == '*' ? at + 2 : read_number(at + 1, piece.precision);
    return at == percent.marks_end;
}

int scan_width(Percent const& percent)
{
    int width;
    return read_number(percent.marks + (*percent.marks == '*'), width) == percent.marks_end ? width : -1;
}

} // namespace

void translate_escapes(char* text)
{
    char* to = text;
    for (char const* from = text; *from; ++from) {
        char c = *from;
        if (c == '\\') {
            if (!*++from)
                break;
            c = *from == 'n' ? '\n' : *from == 'r' ? '\r' : *from == 't' ? '\t' : *from;
        }
        *to++ = c;
    }
    *to = '\0';
}

ParsedFormat::ParsedFormat(M<double> const& format)
{
    char text[format_limit + 1];
    Mstr(format, text, format_limit);
    translate_escapes(text);
    parse(text);
}

// A "%" without a conversion is text. It is printed as it stands, except that "%%", marks between
// them or not, is one "%"; so is a conversion whose marks make no sense, which still takes its
// element. Modifiers are never text.
void ParsedFormat::parse(char const* at)
{
    std::size_t written = 0, printed = 0;
    auto const add = [](char* to, std::size_t& size, char const* from, char const* end) {
        std::copy(from, end, to + size);
        size += static_cast<std::size_t>(end - from);
    };
    while (*at) {
        if (last + 1 == most_pieces) {
            warning("format: more than 32 pieces - chopped");
            return;
        }
        FormatPiece piece = {};
        piece.letter = trailing_text;
        piece.precision = -1;
        std::size_t const written_before = written, printed_before = printed;
        while (*at && piece.letter == trailing_text) {
            if (*at != '%') {
                add(written_, written, at, at + 1);
                add(printed_, printed, at, at + 1);
                ++at;
                continue;
            }
            Percent const percent(at);
            char const* const behind = percent.letter + (*percent.letter != '\0');
            if (is_conversion(*percent.letter)) {
                piece.letter = *percent.letter;
                piece.modifier = percent.modifier;
                piece.suppressed = std::find(percent.marks, percent.marks_end, '*') != percent.marks_end;
                piece.scan_width = scan_width(percent);
                if (read_print_marks(percent, piece)) {
                    piece.print = printer_of(piece);
                } else {
                    piece.print = print_nothing;
                    add(printed_, printed, at, percent.marks_end);
                    add(printed_, printed, percent.letter, behind);
                }
            } else {
                add(written_, written, at, percent.marks_end);
                add(written_, written, percent.letter, behind);
                if (*percent.letter != '%')
                    add(printed_, printed, at, percent.marks_end);
                add(printed_, printed, percent.letter, behind);
            }
            at = behind;
        }
        piece.written = static_cast<unsigned short>(written_before);
        piece.written_size = static_cast<unsigned short>(written - written_before);
        piece.printed = static_cast<unsigned short>(printed_before);
        piece.printed_size = static_cast<unsigned short>(printed - printed_before);
        if (piece.letter != trailing_text && piece.letter != 'c' && piece.letter != 's')
            only_text = false;
        pieces[++last] = piece;
    }
}

} // namespace arrlib
