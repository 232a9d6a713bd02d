// Matrices in plain text files: one line per row, numbers separated by blanks.
#ifndef ARRLIB_IO_TEXT_FILE_H
#define ARRLIB_IO_TEXT_FILE_H

#include "io/value_list.h"

// Reads one matrix. The lines must hold the same count of numbers; blank lines are passed over, and
// the spellings of NaN and infinities of displays and of C libraries are accepted. The output stays
// as it was after "loadascii: %s not found", "loadascii: matrix in %s is not rectangular" or "could
// not read %s" (a folder, an empty file, a word that is not a number). Returns the empty matrix.
ARRLIB_API M<double> loadascii(M<double> const& filename, Mr<double> m);

// Writes each row of each matrix as a line of numbers, every one as "%23.13g"; the imaginary parts
// are not written, pages follow one another. The file appears whole or not at all: "could not
// write %s".
ARRLIB_API M<double> saveascii_list(M<double> const& filename, M<double> const* const* matrices, int count);
template <class... Matrices> M<double> saveascii(M<double> const& filename, M<double> const& first, Matrices const&... others)
{
    return arrlib::call_with_list<M<double>, Matrices...>(saveascii_list, filename, first, others...);
}

#endif
