#include "runtime/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>

namespace arrlib {

namespace {

enum class Kind { nan, plus_infinity, minus_infinity };

struct Spelling {
    Kind kind;
    std::string_view found;
    std::string_view replaced_by;
};

// Tried in this order. A replacement ends where the text that it replaces ended, so that columns
// stay aligned.
constexpr Spelling spellings[] = {
    {Kind::nan, "-1.#QNAN0e+000", "           NaN"},
    {Kind::nan, "1.#QNAN0e+000", "          NaN"},
    {Kind::nan, "-1.#QO0e+000", "         NaN"},
    {Kind::nan, "1.#QO0e+000", "        NaN"},
    {Kind::nan, "-1.#QNAN", "     NaN"},
    {Kind::nan, "1.#QNAN", "    NaN"},
    {Kind::nan, "-1.#QO", "   NaN"},
    {Kind::nan, "1.#QO", "  NaN"},
    {Kind::nan, "  ?", "NaN"},
    {Kind::nan, "-1.#IND", "    NaN"},
    {Kind::nan, "1.#IND", "   NaN"},
    {Kind::nan, "+NAN", " NaN"},
    {Kind::nan, "-NAN", " NaN"},
    {Kind::nan, "-nan", " NaN"},
    {Kind::nan, "nan", "NaN"},
    {Kind::plus_infinity, "1.#INF00e+000", "           Inf"},
    {Kind::plus_infinity, "1.#IO00e+000", "          Inf"},
    {Kind::plus_infinity, "1.#INF", "   Inf"},
    {Kind::plus_infinity, "1.#IO", "   Inf"},
    {Kind::plus_infinity, "+INF", " Inf"},
    {Kind::plus_infinity, " ++", "Inf"},
    {Kind::plus_infinity, "inf", "Inf"},
    {Kind::minus_infinity, "-1.#INF00e+000", "          -Inf"},
    {Kind::minus_infinity, "-1.#IO00e+000", "          -Inf"},
    {Kind::minus_infinity, "-1.#INF", "   -Inf"},
    {Kind::minus_infinity, "-1.#IO", "   -Inf"},
    {Kind::minus_infinity, "-INF", "-Inf"},
    {Kind::minus_infinity, " ---", "-Inf"},
    {Kind::minus_infinity, "-inf", "-Inf"},
};

constexpr double infinity = std::numeric_limits<double>::infinity();

Kind kind_of(double number)
{
    return number != number ? Kind::nan : number > 0 ? Kind::plus_infinity : Kind::minus_infinity;
}

double value_of(Kind kind)
{
    return kind == Kind::nan ? quiet_nan() : kind == Kind::plus_infinity ? infinity : -infinity;
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool same_word(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string_view trimmed(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// A decimal number that is too large or too small for a double, from its first character behind the
// sign: what is left is to tell which.
double beyond_range(char const* text, char const* end)
{
    char const* const exponent = std::find_if(text, end, [](char c) { return c == 'e' || c == 'E'; });
    if (exponent != end)
        return exponent[1] == '-' ? 0 : infinity;
    char const* const first = std::find_if(text, end, [](char c) { return c != '0'; });
    return first != end && *first == '.' ? 0 : infinity;
}

} // namespace

double quiet_nan()
{
    return std::bit_cast<double>(std::uint64_t{0x7FFFFFFFFFFFFFFF});
}

std::size_t write_general(char* out, double number, int precision)
{
    // Integers with no more digits than the precision, the bulk of what is shown, print as they are.
    constexpr double powers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    double const limit = powers[std::min<std::size_t>(static_cast<std::size_t>(precision), std::size(powers) - 1)];
    if (std::fabs(number) < limit) {
        int const whole = static_cast<int>(number);
        if (whole == number && (whole != 0 || !std::signbit(number)))
            return static_cast<std::size_t>(std::to_chars(out, out + number_text_size, whole).ptr - out);
    }
    if (number != number) {
        std::memcpy(out, "-nan", 4);
        bool const negative = std::signbit(number);
        if (!negative)
            std::memcpy(out, "nan", 3);
        return negative ? 4 : 3;
    }
    return static_cast<std::size_t>(std::to_chars(out, out + number_text_size, number, std::chars_format::general, precision).ptr - out);
}

std::size_t write_aligned(char* out, double number, int precision, std::size_t width)
{
    char digits[number_text_size];
    std::size_t const length = write_general(digits, number, precision);
    std::size_t const blanks = width > length ? width - length : 0;
    std::memset(out, ' ', blanks);
    std::memcpy(out + blanks, digits, length);
    if (!std::isfinite(number)) {
        out[blanks + length] = '\0';
        spell_nonfinite(out, blanks + length + 1, number);
    }
    return blanks + length;
}

void spell_nonfinite(char* text, std::size_t capacity, double number)
{
    if (std::isfinite(number))
        return;
    Kind const kind = kind_of(number);
    for (Spelling const& spelling : spellings) {
        std::string_view const whole(text);
        if (spelling.kind != kind || whole.find(spelling.replaced_by) != whole.npos)
            continue;
        std::size_t const at = whole.find(spelling.found);
        if (at == whole.npos)
            continue;
        std::size_t const tail = at + spelling.found.size();
        if (whole.size() - spelling.found.size() + spelling.replaced_by.size() >= capacity)
            continue;
        std::memmove(text + at + spelling.replaced_by.size(), text + tail, whole.size() - tail + 1);
        std::memcpy(text + at, spelling.replaced_by.data(), spelling.replaced_by.size());
    }
}

bool read_nonfinite(char const* word, std::size_t length, double* number)
{
    std::string_view const text(word, length);
    for (Spelling const& spelling : spellings)
        if (same_word(text, trimmed(spelling.found)) || same_word(text, trimmed(spelling.replaced_by))) {
            *number = value_of(spelling.kind);
            return true;
        }
    return false;
}

std::size_t read_number(char const* text, char const* end, double* number)
{
    char const* const first = text + (text != end && *text == '+');
    char const* const digits = first + (first == text && text != end && *text == '-');
    if (digits == end || !(is_digit(*digits) || (*digits == '.' && digits + 1 != end && is_digit(digits[1]))))
        return 0;
    auto const [behind, problem] = std::from_chars(first, end, *number, std::chars_format::general);
    if (problem == std::errc::result_out_of_range) {
        double const size = beyond_range(digits, behind);
        *number = *text == '-' ? -size : size;
    } else if (problem != std::errc()) {
        return 0;
    }
    return static_cast<std::size_t>(behind - text);
}

} // namespace arrlib
