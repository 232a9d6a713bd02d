// Message texts that more than one place reports.
#ifndef ARRLIB_RUNTIME_MESSAGES_H
#define ARRLIB_RUNTIME_MESSAGES_H

namespace arrlib::messages {

inline constexpr char out_of_memory[] = "Out of memory!";
inline constexpr char out_of_chunks[] = "FS:Out of chunks";
inline constexpr char pool_out_of_memory[] = "FS:Out of memory!";
inline constexpr char matrix_too_large[] = "sparse: matrix is too large";
inline constexpr char could_not_read[] = "could not read %s";
inline constexpr char could_not_write[] = "could not write %s";
inline constexpr char buffer_too_small[] = "Mstr: buffer too small - chopped";

} // namespace arrlib::messages

#endif
