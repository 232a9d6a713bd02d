// Bytes to and from open files and the console: what the built-ins on fids share.
#ifndef ARRLIB_IO_FID_STREAM_H
#define ARRLIB_IO_FID_STREAM_H

#include "io/fid_table.h"
#include "io/text_stream.h"

#include <cstddef>

namespace arrlib {

// Runs `work` on the text of an open fid. The text of fid 0 comes from the input hook, line by line; a
// line that comes back empty, without its end, is the end of the input.
void read_open_fid(int fid, void* context, void (*work)(void* context, TextSource& source));
template <class Work> void read_open_fid(int fid, Work&& work)
{
    read_open_fid(fid, &work, [](void* context, TextSource& source) { (*static_cast<Work*>(context))(source); });
}

// Both return how many bytes went; a smaller number than asked for is the end of the input or a
// failure, which the slot has noted. Fid 0 gives what is left of a line of the input hook, then the
// bytes of standard input.
std::size_t read_bytes(int fid, void* to, std::size_t count);
// What fid 1 is given passes through the print hook, but for zero bytes, which only standard output
// can take.
std::size_t write_bytes(int fid, void const* from, std::size_t count);

// True once a read has met the end.
bool at_end(int fid);
// Forgets the rest of a line of the input hook, and that the input has ended.
void forget_console_input();

// Passes bytes to the print hook, zero bytes to standard output.
void print_bytes(char const* bytes, std::size_t count);

} // namespace arrlib

#endif
