#include "io/scan.h"

#include "io/scan_number.h"
#include "runtime/report.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace arrlib {

namespace {

double code_of(int c)
{
    return static_cast<signed char>(c);
}

// Text of a format: a space stands for any number of them, "%%" for "%", and no other "%" can match.
ScanResult match_text(Reader& reader, char const* at, std::size_t size)
{
    for (char const* const end = at + size; at != end; ++at) {
        if (is_space(*at)) {
            reader.skip_space();
            continue;
        }
        if (*at == '%') {
            at = std::find_if_not(at + 1, end, is_digit);
            if (at == end || *at != '%')
                return ScanResult::failed;
            reader.skip_space();
        }
        int const c = reader.peek();
        if (c < 0)
            return ScanResult::end_of_input;
        if (c != static_cast<unsigned char>(*at))
            return ScanResult::failed;
        reader.take();
    }
    return ScanResult::done;
}

// The first of as many characters as the width says. A zero character is none.
ScanResult scan_character(Reader& reader, int width, double* code)
{
    int const c = reader.peek();
    if (c < 0)
        return ScanResult::end_of_input;
    for (int k = 0; k < std::max(width, 1) && reader.peek() >= 0; ++k)
        reader.take();
    *code = code_of(c);
    return c ? ScanResult::done : ScanResult::failed;
}

// Stores the characters of a word, as a C string has them: those behind a zero are read only.
void scan_word(Reader& reader, int width, bool stored, double most, Scanned& scanned)
{
    constexpr int most_characters = static_cast<int>(piece_size) - 1;
    int left = width ? std::min(width, most_characters) : most_characters;
    for (int c; left > 0 && (c = reader.peek()) >= 0 && !is_space(c) && scanned.complete; --left) {
        reader.take();
        stored = stored && c;
        if (stored && static_cast<double>(scanned.count) < most)
            scanned.store(code_of(c));
    }
}

// One call of the C library's scanf would do this: the piece's text and its conversion.
class PieceScan {
public:
    PieceScan(ParsedFormat const& format, double most, Scanned& scanned) : format_(format), most_(most), scanned_(scanned) {}

    ScanResult run(Reader& reader)
    {
        FormatPiece const& piece = format_.pieces[format_.current];
        ScanResult const matched = match_text(reader, format_.written_text(piece), piece.written_size);
        if (matched != ScanResult::done || piece.letter == trailing_text)
            return matched;
        if (piece.scan_width < 0)
            return ScanResult::failed;
        if (piece.letter != 'c' && !reader.skip_space())
            return ScanResult::end_of_input;
        return convert(reader, piece);
    }

private:
    ScanResult convert(Reader& reader, FormatPiece const& piece)
    {
        int const width = piece.scan_width;
        double value = 0;
        ScanResult result;
        bool stored = !piece.suppressed;
        switch (piece.letter) {
        case 'd':
        case 'D':
            result = scan_integer(reader, width, 10, true, &value);
            break;
        case 'i':
        case 'I':
            result = scan_integer(reader, width, 0, true, &value);
            break;
        case 'o':
        case 'O':
            result = scan_integer(reader, width, 8, false, &value);
            break;
        case 'u':
        case 'U':
            result = scan_integer(reader, width, 10, false, &value);
            break;
        case 'x':
        case 'X':
            result = scan_integer(reader, width, 16, false, &value);
            break;
        case 'p':
            result = scan_integer(reader, width, 16, false, &value);
            stored = false;
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
            result = scan_float(reader, width, &value);
            break;
        case 'c':
            result = scan_character(reader, width, &value);
            break;
        case 's':
            scan_word(reader, width, stored, most_, scanned_);
            return ScanResult::done;
        default:
            error("sscanf: unknown type character");
            return ScanResult::end_of_input;
        }
        if (stored && result == ScanResult::done)
            scanned_.store(value);
        return result;
    }

    ParsedFormat const& format_;
    double most_;
    Scanned& scanned_;
};

} // namespace

bool Scanned::grow()
{
    if (count >= static_cast<std::size_t>(most_elements)) {
        error("scanf: Matrix too large");
        end_process();
    }
    complete = complete && values.grow(std::max<std::size_t>(count + 1, 4000));
    room = std::min<std::size_t>(values.size(), most_elements);
    return complete;
}

void scan(ParsedFormat& format, TextSource& source, ScanFrom from, double most, Scanned& scanned)
{
    if (format.last < 0)
        return;
    Reader reader(source);
    PieceScan pieces(format, most, scanned);
    double conversions = 0;
    bool read = false;
    while (scanned.complete && static_cast<double>(scanned.count) < most) {
        FormatPiece const& piece = format.pieces[format.current];
        if (piece.letter == 'n') {
            if (!piece.suppressed)
                scanned.store(conversions);
        } else {
            char const* const start = reader.at();
            ScanResult const result = pieces.run(reader);
            scanned.complete = scanned.complete && result != ScanResult::out_of_memory;
            bool const may_fail = piece.letter == trailing_text || piece.suppressed;
            if (result == ScanResult::end_of_input || (result == ScanResult::failed && !may_fail))
                break;
            if (piece.letter == 'c' && result == ScanResult::done && from == ScanFrom::text)
                reader.take_to(start + 1);
            conversions += !may_fail;
        }
        format.advance();
        read = reader.has_read() || read;
        if (format.current == 0 && !std::exchange(read, false))
            break;
    }
}

ScanSize::ScanSize(M<double> const& size)
{
    int const count = size.size();
    if (count != 1 && count != 2) {
        error("scanf: size %s is not one or two elements", OperandName(size));
        valid_ = false;
        return;
    }
    auto const whole = [](double number) { return number > 0 ? std::trunc(number) : 0; }; // NaN is 0
    most_ = whole(size[1]);
    if (count == 2) {
        rows_ = most_;
        most_ = rows_ > 0 && whole(size[2]) > 0 ? rows_ * whole(size[2]) : 0;
    }
}

M<double> ScanSize::shape(Scanned const& scanned, bool text) const
{
    double rows = text ? 1 : static_cast<double>(scanned.count), cols = text ? static_cast<double>(scanned.count) : 1;
    if (rows_ > 0) {
        rows = std::isinf(rows_) ? static_cast<double>(scanned.count) : rows_;
        cols = std::ceil(static_cast<double>(scanned.count) / rows);
    }
    if (scanned.count == 0)
        rows = cols = 0;
    M<double> shaped(0, static_cast<int>(std::min<double>(rows, most_elements + 1)), static_cast<int>(cols));
    if (shaped.size() > 0) {
        double* const behind = std::copy_n(scanned.values.data(), scanned.count, shaped.addr());
        std::fill(behind, shaped.addr() + shaped.size(), 0.0);
    }
    if (text) {
        shaped.setstr(1);
        shaped.clear_scalar_variable();
    }
    return shaped;
}

} // namespace arrlib
