// Numbers as text: the general format of displays and text files, and how NaN and infinities are
// spelt, whatever the C library prints.
#ifndef ARRLIB_RUNTIME_NUMBER_TEXT_H
#define ARRLIB_RUNTIME_NUMBER_TEXT_H

#include <cstddef>

namespace arrlib {

// The bits of every NaN that the library makes.
double quiet_nan();

// Room for the text of any number in the formats below.
inline constexpr std::size_t number_text_size = 40;

// Writes "%.{precision}g" of a number, in the C locale and with exponents of at least two digits,
// without a zero byte; returns its length. At most 17 digits.
std::size_t write_general(char* out, double number, int precision);

// The same, right-aligned with blanks in `width` columns, NaN and infinities spelt the library's
// way. Returns the length, which exceeds the width when the text does.
std::size_t write_aligned(char* out, double number, int precision, std::size_t width);

// Rewrites what a C library printed for a NaN or an infinity, in a zero-terminated text; a finite
// number's text is left alone. The text may grow by one; `capacity` bounds it.
void spell_nonfinite(char* text, std::size_t capacity, double number);

// True for a word that spells a NaN or an infinity in any of the forms that are rewritten, or in
// the rewritten form, in either case of letters.
bool read_nonfinite(char const* word, std::size_t length, double* number);

// Reads a number at the start of a text, as strtod does in the C locale (decimal forms only);
// returns the number of characters read, 0 when there is none.
std::size_t read_number(char const* text, char const* end, double* number);

} // namespace arrlib

#endif
