// Kinds of characters, in the C locale whatever the program's is. -1, the end of a text, is of none.
#ifndef ARRLIB_IO_LETTERS_H
#define ARRLIB_IO_LETTERS_H

namespace arrlib {

inline bool is_digit(int c)
{
    return c >= '0' && c <= '9';
}
inline bool is_space(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
inline int lower(int c)
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

} // namespace arrlib

#endif
