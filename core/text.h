// Text as values: literals of translated programs, and values as C strings.
#ifndef ARRLIB_CORE_TEXT_H
#define ARRLIB_CORE_TEXT_H

#include "core/matrix.h"

// A text literal: 1 x length, the character codes as signed 8-bit values (bytes above 127 become
// negative); a null pointer and an empty text give 0x0.
ARRLIB_API M<double> TM(char const* text);

// Copies the elements of a value, each truncated to a character code, into `buffer`, at most
// `limit` characters and a zero byte. A longer text is cut with the warning "Mstr: buffer too
// small - chopped" and shown, cut, with "..." behind it. Returns the number of characters.
ARRLIB_API int Mstr(M<double> const& value, char* buffer, int limit);

namespace arrlib {

// The character that an element stands for: truncated, then its low byte. Numbers beyond 32 bits
// and NaN are the zero character.
inline char character_code(double element)
{
    bool const fits = element > -2147483648.0 && element < 2147483648.0;
    return fits ? static_cast<char>(static_cast<int>(element)) : '\0';
}

} // namespace arrlib

#endif
