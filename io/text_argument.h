// Texts among the arguments of the file built-ins, and how many of their characters count.
#ifndef ARRLIB_IO_TEXT_ARGUMENT_H
#define ARRLIB_IO_TEXT_ARGUMENT_H

#include "core/text.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace arrlib {

inline constexpr int file_name_limit = 512;
inline constexpr int file_mode_limit = 10;
inline constexpr int precision_limit = 30;
inline constexpr int byte_order_limit = 15;

// A value as a C string; longer texts are cut with a warning.
template <int limit> struct TextArgument {
    char text[static_cast<std::size_t>(limit) + 1];

    explicit TextArgument(M<double> const& value) { Mstr(value, text, limit); }
    operator char const*() const { return text; }
};

using FileName = TextArgument<file_name_limit>;

// Characters as a text, signed as in literals; those of an empty one are 0x0.
inline M<double> text_value(char const* characters, std::size_t length)
{
    M<double> text(0, length ? 1 : 0, length > INT_MAX ? INT_MAX : static_cast<int>(length));
    std::transform(characters, characters + text.size(), text.addr(), [](char c) { return static_cast<double>(static_cast<signed char>(c)); });
    text.setstr(1);
    text.clear_scalar_variable();
    return text;
}

} // namespace arrlib

#endif
