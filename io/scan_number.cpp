#include "io/scan_number.h"

#include "core/heap_array.h"
#include "runtime/number_text.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <limits>

namespace arrlib {

namespace {

// 36 when it is no digit in any base.
unsigned digit_value(int c)
{
    return is_digit(c) ? static_cast<unsigned>(c - '0') : lower(c) >= 'a' && lower(c) <= 'f' ? static_cast<unsigned>(lower(c) - 'a' + 10) : 36;
}

// The characters that a width leaves of the input.
class Field {
public:
    Field(Reader& reader, int width) : reader_(reader), left_(width ? width : INT_MAX) {}

    // -1 at the end.
    int peek() { return left_ > 0 ? reader_.peek() : -1; }
    bool has_room(int count) const { return left_ >= count; }
    void take()
    {
        reader_.take();
        left_ -= left_ != INT_MAX;
    }
    // Takes the letters of a lower-case word, in either case, as far as they are there.
    bool take_word(char const* word)
    {
        for (; *word; ++word) {
            if (lower(peek()) != *word)
                return false;
            take();
        }
        return true;
    }

private:
    Reader& reader_;
    int left_;
};

// The characters of a number, however many.
class NumberText {
public:
    bool put(int c)
    {
        if (size_ == room_ && !grow())
            return false;
        text_[size_++] = static_cast<char>(c);
        return true;
    }
    char const* begin() const { return text_; }
    char const* end() const { return text_ + size_; }
    // False when there was no memory for a character, which has been reported.
    bool complete() const { return complete_; }

private:
    bool grow()
    {
        complete_ = long_text_.grow(2 * room_);
        if (!complete_)
            return false;
        if (text_ == short_text_)
            std::copy_n(short_text_, size_, long_text_.data());
        text_ = long_text_.data();
        room_ = long_text_.size();
        return true;
    }

    char short_text_[128];
    HeapArray<char> long_text_;
    char* text_ = short_text_;
    std::size_t size_ = 0;
    std::size_t room_ = sizeof short_text_;
    bool complete_ = true;
};

// A number beyond the range of doubles, from its first digit or point on: infinite, or zero when its
// first digit that counts stands behind the point, its exponent reckoned in.
double beyond_range(char const* at, char const* end, char exponent_mark, int bits_of_digit)
{
    std::int64_t places = 0; // digits between the first that counts and the point
    bool counts = false, behind_point = false;
    for (; at != end && lower(*at) != exponent_mark; ++at) {
        if (*at == '.') {
            behind_point = true;
            continue;
        }
        counts = counts || *at != '0';
        if (counts && !behind_point)
            ++places;
        if (!counts && behind_point)
            --places;
    }
    std::int64_t exponent = 0;
    if (at != end) {
        bool const negative = ++at != end && *at == '-';
        for (at += at != end && !is_digit(*at); at != end; ++at)
            exponent = std::min<std::int64_t>(10 * exponent + (*at - '0'), INT64_MAX / 16);
        exponent = negative ? -exponent : exponent;
    }
    return places * bits_of_digit + exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
}

// The number that a text of digits begins with; 0 for a "0x" without any.
double number_of(char const* at, char const* end, bool hexadecimal)
{
    double number = 0;
    auto const form = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    if (std::from_chars(at, end, number, form).ec == std::errc::result_out_of_range)
        number = hexadecimal ? beyond_range(at, end, 'p', 4) : beyond_range(at, end, 'e', 1);
    return number;
}

// A plain decimal number that ends within the block at hand, the bulk of what is read; false when
// the careful way must be gone.
bool scan_in_block(Reader& reader, double* number)
{
    char const* const at = reader.at();
    char const* const end = reader.block_end();
    char const* const digits = at + (at != end && *at == '-');
    if (end - digits < 2 || !is_digit(*digits) || (*digits == '0' && lower(digits[1]) == 'x'))
        return false;
    auto const [behind, problem] = std::from_chars(at, end, *number, std::chars_format::general);
    if (problem != std::errc() || behind == end || lower(*behind) == 'e')
        return false;
    reader.take_to(behind);
    return true;
}

// Takes digits, point and exponent as far as they go together; "1e+" counts as 1. False when there is
// no number, and when there is no memory for its text.
bool take_digits(Field& field, NumberText& text, bool& hexadecimal)
{
    bool digit = false, point = false, exponent = false;
    if (field.peek() == '0') {
        field.take();
        if (lower(field.peek()) == 'x' && field.has_room(2)) {
            field.take();
            hexadecimal = true;
        } else {
            digit = true;
            if (!text.put('0'))
                return false;
        }
    }
    int const mark = hexadecimal ? 'p' : 'e';
    for (int before = 0;; field.take()) {
        int const c = field.peek();
        if (is_digit(c) || (hexadecimal && !exponent && digit_value(c) < 16))
            digit = true;
        else if (c == '.' && !point && !exponent)
            point = true;
        else if (lower(c) == mark && digit && !exponent)
            exponent = true;
        else if (!((c == '-' || c == '+') && before == mark))
            return digit || (hexadecimal && point);
        before = lower(c);
        if (!text.put(c))
            return false;
    }
}

} // namespace

ScanResult scan_float(Reader& reader, int width, double* number)
{
    if (!width && scan_in_block(reader, number))
        return ScanResult::done;
    Field field(reader, width);
    bool const negative = field.peek() == '-';
    if (negative || field.peek() == '+')
        field.take();
    double size;
    if (lower(field.peek()) == 'n') {
        if (!field.take_word("nan"))
            return ScanResult::failed;
        size = quiet_nan();
    } else if (lower(field.peek()) == 'i') {
        if (!field.take_word("inf") || (lower(field.peek()) == 'i' && !field.take_word("inity")))
            return ScanResult::failed;
        size = std::numeric_limits<double>::infinity();
    } else {
        NumberText text;
        bool hexadecimal = false;
        if (!take_digits(field, text, hexadecimal))
            return text.complete() ? ScanResult::failed : ScanResult::out_of_memory;
        size = number_of(text.begin(), text.end(), hexadecimal);
    }
    *number = negative ? -size : size;
    return ScanResult::done;
}

ScanResult scan_integer(Reader& reader, int width, unsigned base, bool with_sign, double* number)
{
    Field field(reader, width);
    bool const negative = field.peek() == '-';
    if (negative || field.peek() == '+')
        field.take();
    bool digit = false;
    if (field.peek() == '0') {
        field.take();
        digit = true;
        if (lower(field.peek()) == 'x' && (base == 0 || base == 16)) {
            field.take();
            base = 16;
        } else if (base == 0) {
            base = 8;
        }
    }
    base = base ? base : 10;
    constexpr std::uint64_t beyond = std::uint64_t{1} << 32;
    std::uint64_t size = 0;
    for (unsigned value; (value = digit_value(field.peek())) < base; field.take()) {
        size = std::min(size * base + value, beyond);
        digit = true;
    }
    if (!digit)
        return ScanResult::failed;
    constexpr double limit = 2147483648.0;
    double const number_read = static_cast<double>(size);
    if (with_sign)
        *number = negative && size ? std::max(-number_read, -limit) : std::min(number_read, limit - 1);
    else
        *number = size == beyond ? number_read - 1 : static_cast<double>(negative ? (beyond - size) % beyond : size);
    return ScanResult::done;
}

} // namespace arrlib
