// A file read in one piece.
#ifndef ARRLIB_RUNTIME_WHOLE_FILE_H
#define ARRLIB_RUNTIME_WHOLE_FILE_H

#include "core/heap_array.h"

namespace arrlib {

// The bytes of a file with a zero byte behind them; empty (false) after a report: "could not read %s",
// "Out of memory!". Of a file of 2 GiB and more all but the last bytes count, after the warning
// "file %s is too large". `length` is without the zero byte.
HeapArray<char> whole_file(char const* name, std::size_t& length);

} // namespace arrlib

#endif
