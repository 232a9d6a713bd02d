// The printers. Digits come from std::to_chars, which gives those of the C library, with a point as
// decimal point in every locale.
#include "io/format_print.h"

#include "core/text.h"
#include "io/letters.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace arrlib {

namespace {

// More than the longest double without an exponent and its sign takes, beside its fraction.
constexpr int whole_digits = 320;
// Up to here a number and a format always fit a piece, and nothing needs to be counted.
constexpr int short_precision = 64;

// --- layout ----------------------------------------------------------------------------------------

// A number in parts, as it is laid out in its width: blanks, sign or prefix, zeros, body, blanks.
struct Parts {
    char prefix[4];
    std::size_t prefix_size = 0;
    std::size_t zeros = 0;

    void put(char c) { prefix[prefix_size++] = c; }
};

void lay_out(PieceText& out, FormatPiece const& piece, Parts const& parts, char const* body, std::size_t body_size, bool zeros_fill)
{
    std::size_t const size = parts.prefix_size + parts.zeros + body_size;
    auto const width = static_cast<std::size_t>(piece.width);
    std::size_t const padding = width > size ? width - size : 0;
    bool const zeros = zeros_fill && piece.zeros && !piece.left;
    if (!piece.left && !zeros)
        out.fill(' ', padding);
    out.text(parts.prefix, parts.prefix_size);
    out.fill('0', parts.zeros + (zeros ? padding : 0));
    out.text(body, body_size);
    if (piece.left)
        out.fill(' ', padding);
}

void put_sign(Parts& parts, FormatPiece const& piece, bool negative)
{
    if (negative || piece.sign)
        parts.put(negative ? '-' : '+');
}

// --- integers --------------------------------------------------------------------------------------

// NaN and infinities take the place of the whole piece.
bool print_nonfinite_word(PieceText& out, double number)
{
    if (std::isfinite(number))
        return false;
    out.restart();
    out.text(number != number ? "NaN" : number > 0 ? "Inf" : "-Inf", number < 0 ? 4 : 3);
    return true;
}

void print_plain_integer(PieceText& out, FormatPiece const&, double const* element, std::size_t)
{
    if (std::fabs(*element) < 2147483648.0 || !print_nonfinite_word(out, *element)) {
        char* const at = out.fits_always();
        out.wrote_to(std::to_chars(at, at + 12, static_cast<std::int32_t>(low_word(*element))).ptr);
    }
}

// A precision asks for that many digits, and leaves nothing of a zero.
template <class Whole> void print_digits(PieceText& out, FormatPiece const& piece, Parts& parts, Whole number, int base)
{
    char digits[24];
    char* const end = number == 0 && piece.precision == 0 ? digits : std::to_chars(std::begin(digits), std::end(digits), number, base).ptr;
    if (piece.letter == 'X')
        std::transform(digits, end, digits, [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    int const size = static_cast<int>(end - digits);
    int least = piece.precision;
    if (base == 8 && piece.alternative && (number != 0 || size == 0))
        least = std::max(least, size + 1);
    parts.zeros = static_cast<std::size_t>(std::max(least - size, 0));
    lay_out(out, piece, parts, digits, static_cast<std::size_t>(size), piece.precision < 0);
}

void print_integer(PieceText& out, FormatPiece const& piece, double const* element, std::size_t)
{
    if (print_nonfinite_word(out, *element))
        return;
    Parts parts;
    std::uint32_t number = low_word(*element);
    switch (lower(piece.letter)) {
    case 'd':
    case 'i': {
        bool const negative = number >> 31;
        put_sign(parts, piece, negative);
        return print_digits(out, piece, parts, negative ? 0u - number : number, 10);
    }
    case 'o':
        return print_digits(out, piece, parts, number, 8);
    case 'x':
        if (piece.alternative && number) {
            parts.put('0');
            parts.put(piece.letter);
        }
        return print_digits(out, piece, parts, number, 16);
    default:
        return print_digits(out, piece, parts, number, 10);
    }
}

void print_address(PieceText& out, FormatPiece const& piece, double const* element, std::size_t)
{
    Parts parts;
    put_sign(parts, piece, false);
    parts.put('0');
    parts.put('x');
    print_digits(out, piece, parts, reinterpret_cast<std::uintptr_t>(element), 16);
}

// The bytes of a number, the lowest one first, and of each the low digit first.
template <class Number, class Bits> void print_bytes(PieceText& out, FormatPiece const&, double const* element, std::size_t)
{
    auto const number = static_cast<Number>(*element);
    Bits bits;
    static_assert(sizeof bits == sizeof number);
    std::memcpy(&bits, &number, sizeof bits);
    out.restart();
    char* at = out.fits_always();
    for (std::size_t digit = 0; digit < 2 * sizeof bits; ++digit, bits >>= 4)
        *at++ = "0123456789ABCDEF"[bits & 15];
    out.wrote_to(at);
}

// --- floating point --------------------------------------------------------------------------------

// NaN and infinities stand in the columns that the C library's words take; only a minus is shown.
void print_nonfinite(PieceText& out, FormatPiece const& piece, double number)
{
    Parts parts;
    bool const infinite = number == number;
    if (piece.sign || std::signbit(number))
        parts.put(infinite && number < 0 ? '-' : ' ');
    lay_out(out, piece, parts, infinite ? "Inf" : "NaN", 3, false);
}

std::chars_format form_of(int letter)
{
    return lower(letter) == 'f' ? std::chars_format::fixed : lower(letter) == 'e' ? std::chars_format::scientific : std::chars_format::general;
}

void capital_exponent(char* from, char* end)
{
    std::replace(from, end, 'e', 'E');
}

// No flags and no width.
template <char letter> void print_plain_float(PieceText& out, FormatPiece const& piece, double const* element, std::size_t)
{
    double const number = *element;
    if (!std::isfinite(number))
        return print_nonfinite(out, piece, number);
    char* const at = out.fits_always();
    int const precision = piece.precision < 0 ? 6 : piece.precision;
    char* const end = std::to_chars(at, at + whole_digits + short_precision, number, form_of(letter), precision).ptr;
    if (letter == 'E' || letter == 'G')
        capital_exponent(at, end);
    out.wrote_to(end);
}

// The digits of a number that is not negative, with "#": the point is there, and %g keeps its zeros.
char* write_alternative(char* at, char* limit, double number, char letter, int precision)
{
    if (lower(letter) == 'g') {
        int const digits = std::max(precision, 1);
        char const* const end = std::to_chars(at, limit, number, std::chars_format::scientific, digits - 1).ptr;
        int exponent = 0;
        char const* const mark = std::find(static_cast<char const*>(at), end, 'e');
        std::from_chars(mark + 1 + (mark[1] == '+'), end, exponent);
        bool const fixed = exponent >= -4 && exponent < digits;
        letter = fixed ? 'f' : 'e';
        precision = digits - 1 - (fixed ? exponent : 0);
    }
    char* const end = std::to_chars(at, limit, number, form_of(letter), precision).ptr;
    if (precision > 0)
        return end;
    char* const point = std::find(at, end, 'e');
    std::copy_backward(point, end, end + 1);
    *point = '.';
    return end + 1;
}

void print_float(PieceText& out, FormatPiece const& piece, double const* element, std::size_t)
{
    double const number = *element;
    if (!std::isfinite(number))
        return print_nonfinite(out, piece, number);
    char digits[piece_size + whole_digits];
    char* const limit = std::end(digits) - 1;
    int const precision = piece.precision < 0 ? 6 : piece.precision;
    char* const end = piece.alternative ? write_alternative(digits, limit, std::fabs(number), piece.letter, precision)
                                        : std::to_chars(digits, limit, std::fabs(number), form_of(piece.letter), precision).ptr;
    if (piece.letter == 'E' || piece.letter == 'G')
        capital_exponent(digits, end);
    Parts parts;
    put_sign(parts, piece, std::signbit(number));
    lay_out(out, piece, parts, digits, static_cast<std::size_t>(end - digits), true);
}

// --- characters ------------------------------------------------------------------------------------

// A zero character ends the piece's text, and what would be right of it is not there.
void print_character(PieceText& out, FormatPiece const& piece, double const* element, std::size_t)
{
    char const c = character_code(*element);
    auto const padding = static_cast<std::size_t>(std::max(piece.width - 1, 0));
    if (!piece.left)
        out.fill(' ', padding);
    if (!c)
        return;
    out.fill(c, 1);
    if (piece.left)
        out.fill(' ', padding);
}

void print_characters(PieceText& out, FormatPiece const& piece, double const* elements, std::size_t count)
{
    char characters[piece_size];
    std::size_t const most = piece.precision < 0 ? piece_size : static_cast<std::size_t>(piece.precision);
    std::size_t size = 0;
    for (; size < count && size < most && size < piece_size; ++size)
        if (!(characters[size] = character_code(elements[size])))
            break;
    lay_out(out, piece, Parts(), characters, size, false);
}

// --- which printer ---------------------------------------------------------------------------------

struct Conversion {
    char letter;
    FormatPiece::Print plain; // without flags and width, and without a long precision
    FormatPiece::Print general;
};

constexpr Conversion conversions[] = {
    {'c', print_character, print_character},
    {'d', print_plain_integer, print_integer},
    {'D', print_plain_integer, print_integer},
    {'i', print_plain_integer, print_integer},
    {'I', print_plain_integer, print_integer},
    {'o', print_integer, print_integer},
    {'O', print_integer, print_integer},
    {'u', print_integer, print_integer},
    {'U', print_integer, print_integer},
    {'x', print_integer, print_integer},
    {'X', print_integer, print_integer},
    {'f', print_plain_float<'f'>, print_float},
    {'F', print_plain_float<'F'>, print_float},
    {'e', print_plain_float<'e'>, print_float},
    {'E', print_plain_float<'E'>, print_float},
    {'g', print_plain_float<'g'>, print_float},
    {'G', print_plain_float<'G'>, print_float},
    {'s', print_characters, print_characters},
    {'n', print_nothing, print_nothing},
    {'p', print_address, print_address},
};

Conversion const* find_conversion(char letter)
{
    auto const* const found = std::find_if(std::begin(conversions), std::end(conversions), [&](Conversion const& one) { return one.letter == letter; });
    return found == std::end(conversions) ? nullptr : found;
}

} // namespace

bool is_conversion(char letter)
{
    return find_conversion(letter) != nullptr;
}

void print_nothing(PieceText&, FormatPiece const&, double const*, std::size_t) {}

FormatPiece::Print printer_of(FormatPiece const& piece)
{
    Conversion const& conversion = *find_conversion(piece.letter);
    int const modifier = lower(piece.modifier);
    if (conversion.general == print_integer && modifier == 'b')
        return print_bytes<double, std::uint64_t>;
    if (conversion.general == print_integer && modifier == 't')
        return print_bytes<float, std::uint32_t>;
    bool const flags = piece.left || piece.sign || piece.alternative || piece.zeros;
    bool const integer = conversion.general == print_integer;
    bool const plain = !flags && piece.width == 0 && (integer ? piece.precision < 0 : piece.precision <= short_precision);
    return plain ? conversion.plain : conversion.general;
}

} // namespace arrlib
