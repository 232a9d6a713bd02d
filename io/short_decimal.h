// The numbers that most text files hold, faster than the general conversions, and exactly as those:
// plain decimals of up to 15 digits on the way in, 13 significant digits on the way out.
#ifndef ARRLIB_IO_SHORT_DECIMAL_H
#define ARRLIB_IO_SHORT_DECIMAL_H

#include "io/precision.h"
#include "io/text_blocks.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace arrlib {

// --- reading --------------------------------------------------------------------------------------

// Bytes from a text, the first one lowest.
inline std::uint64_t eight_bytes(char const* at)
{
    std::uint64_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return native_order == ByteOrder::little ? bytes : __builtin_bswap64(bytes);
}

inline constexpr std::uint64_t each_byte = 0x0101010101010101;

// How many of the eight, from the first one on, are digits.
inline unsigned leading_digits(std::uint64_t bytes)
{
    // The top bit of every byte that is no digit; digits are 0 to 9 without the bits of '0'.
    std::uint64_t const without = bytes ^ '0' * each_byte;
    std::uint64_t const others = (((without & 0x7F * each_byte) + (0x80 - 10) * each_byte) | without) & 0x80 * each_byte;
    return static_cast<unsigned>(std::countr_zero(others)) / 8;
}

// The number that the first `count` of eight digits make: with zeros ahead of them pairs are added up,
// then fours, then all.
inline std::uint64_t number_of_digits(std::uint64_t bytes, unsigned count)
{
    if (count == 0)
        return 0;
    bytes = (bytes - '0' * each_byte) << (8 * (8 - count));
    bytes = (bytes * 10 + (bytes >> 8)) & 0x00FF00FF00FF00FF;
    bytes = (bytes * 100 + (bytes >> 16)) & 0x0000FFFF0000FFFF;
    return (bytes * 10000 + (bytes >> 32)) & 0xFFFFFFFF;
}

// The first byte that is no space; of the last few bytes it may not look at all.
inline char const* skip_spaces(char const* at, char const* end)
{
    while (end - at >= 8) {
        unsigned const spaces = static_cast<unsigned>(std::countr_zero(eight_bytes(at) ^ ' ' * each_byte)) / 8;
        at += spaces;
        if (spaces < 8)
            break;
    }
    return at;
}

inline constexpr double exact_powers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
inline constexpr std::uint64_t first_powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

// Reads a word that is a plain decimal; returns its length, or 0 when the general way is needed.
inline std::size_t read_short_decimal(char const* text, char const* end, double* number)
{
    constexpr unsigned most_digits = 15;
    if (end - text < 32)
        return 0;
    char const* at = text + (*text == '-');
    char const* const first = at;
    std::uint64_t digits = 0;
    while (static_cast<unsigned char>(*at - '0') < 10 && at - first < 8)
        digits = digits * 10 + static_cast<unsigned>(*at++ - '0');
    unsigned const whole = static_cast<unsigned>(at - first);
    unsigned behind_point = 0;
    if (*at == '.') {
        std::uint64_t bytes = eight_bytes(++at);
        behind_point = leading_digits(bytes);
        // A branch that is guessed right is faster than waiting for the count.
        if (behind_point == 8) {
            digits = digits * first_powers[8] + number_of_digits(bytes, 8);
            bytes = eight_bytes(at + 8);
            unsigned const more = leading_digits(bytes);
            digits = digits * first_powers[more] + number_of_digits(bytes, more);
            behind_point = 8 + more;
        } else {
            digits = digits * first_powers[behind_point] + number_of_digits(bytes, behind_point);
        }
        at += behind_point;
    }
    if (whole + behind_point - 1 >= most_digits || !ends_word(at, end))
        return 0;
    // Both are exact, so one division rounds once.
    double const size = static_cast<double>(static_cast<std::int64_t>(digits)) / exact_powers[behind_point];
    *number = *text == '-' ? -size : size;
    return static_cast<std::size_t>(at - text);
}

// --- writing --------------------------------------------------------------------------------------

// Writes what "%23.13g" does; false, and nothing, when the general way is needed.
inline bool write_short_decimal(char* out, double number)
{
#if defined(__SIZEOF_INT128__)
    __extension__ using Wide = unsigned __int128;
    static constexpr auto powers = [] {
        std::array<std::uint64_t, 18> list{};
        for (std::uint64_t power = 1; std::uint64_t& one : list) {
            one = power;
            power *= 10;
        }
        return list;
    }();
    constexpr int most_digits = 13, width = 23;
    double const size = std::fabs(number);
    if (!(size >= 1.001e-4 && size < 9.99e12))
        return false;
    std::uint64_t const bits = std::bit_cast<std::uint64_t>(size);
    std::uint64_t const mantissa = (bits & 0xFFFFFFFFFFFFF) | 0x10000000000000;
    int const below_point = 1075 - static_cast<int>(bits >> 52); // of the mantissa, in bits
    // log10(2) is a little more than 1233/4096: right, or one too low.
    int exponent = ((52 - below_point) * 1233) >> 12;
    std::uint64_t digits = 0;
    for (;; ++exponent) {
        Wide const product = static_cast<Wide>(mantissa) * powers[static_cast<std::size_t>(most_digits - 1 - exponent)];
        digits = static_cast<std::uint64_t>(product >> below_point);
        if (digits >= powers[most_digits])
            continue;
        Wide const rest = product - (static_cast<Wide>(digits) << below_point), half = static_cast<Wide>(1) << (below_point - 1);
        digits += rest > half || (rest == half && digits % 2 == 1);
        break;
    }
    if (digits == powers[most_digits]) {
        digits /= 10;
        ++exponent;
    }
    if (digits < powers[most_digits - 1] || exponent >= most_digits)
        return false;
    char text[most_digits];
    for (int k = most_digits; k > 0; digits /= 10)
        text[--k] = static_cast<char>('0' + digits % 10);
    int kept = most_digits;
    while (kept > 1 && kept > exponent + 1 && text[kept - 1] == '0')
        --kept;
    // Sign, zeros ahead of the first digit, digits and point, from the right end.
    std::memset(out, ' ', width);
    int const whole = exponent < 0 ? 0 : exponent + 1, fraction = kept - whole;
    char* at = out + width - fraction;
    std::memcpy(at, text + whole, static_cast<std::size_t>(fraction));
    if (exponent < 0) {
        at -= 1 - exponent;
        std::memcpy(at, "0.0000", static_cast<std::size_t>(1 - exponent));
    } else {
        if (fraction > 0)
            *--at = '.';
        at -= whole;
        std::memcpy(at, text, static_cast<std::size_t>(whole));
    }
    if (number < 0)
        *--at = '-';
    return true;
#else
    static_cast<void>(out);
    static_cast<void>(number);
    return false;
#endif
}

} // namespace arrlib

#endif
