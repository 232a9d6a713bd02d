// The table of open files. A fid is a number of its own for the program and a slot in here.
#ifndef ARRLIB_IO_FID_TABLE_H
#define ARRLIB_IO_FID_TABLE_H

#include "core/matrix.h"
#include "io/precision.h"
#include "platform/platform.h"

#include <cstdint>
#include <cstdio>

namespace arrlib {

// Fids 0, 1 and 2 are the standard streams, open from the start; 128 has a slot and is never handed
// out.
inline constexpr int first_file_fid = 3;
inline constexpr int largest_fid = 128;

struct FidSlot {
    enum class Last { nothing, read, write };

    int open = 0;
    std::FILE* stream = nullptr;
    ByteOrder order = ByteOrder::unknown;
    char name[512] = "";
    char mode[8] = "";
    // What was done last: between reading and writing a stream wants to be positioned.
    Last last = Last::nothing;
    // Readers may take more than they need and go back: a regular file without translated line ends.
    bool goes_back = false;
    // The system's number for the last failure, 0 for none.
    int failure = 0;
    // Text read ahead of the program, from `at` to `end`: the stream stands behind it.
    char const* at = nullptr;
    char const* end = nullptr;
    char ahead[4096];
};

// The open fid in a value, truncated; -1 when there is none: "Size of fid %s not one.", and, when
// `report` is set, "Illegal fid." for one outside 0 to 128 and "Fid not opened.".
int checked_fid(M<double> const& fid, bool report);

// The slot of a fid; all slots are made by the first call.
FidSlot& fid_slot(int fid);

// Takes the lowest free slot. A full table closes the stream, reports "Too many files" and ends the
// process.
int add_fid(std::FILE* stream, ByteOrder order, char const* name, char const* mode);
// Frees the slot and closes its stream: false when the fid is not open or closing fails, as it does
// when what was still to be written cannot be.
bool close_fid(int fid);
// The same for every open file; the standard streams stay.
bool close_all_fids();

// The stream of an open fid, ready for one direction and standing where the program does.
std::FILE* stream_to_read(FidSlot& slot);
std::FILE* stream_to_write(FidSlot& slot);
// The same, but the text that has been read ahead stays.
std::FILE* stream_to_read_ahead(FidSlot& slot);
// Where the program stands; -1 for a stream without positions.
std::int64_t position_of(FidSlot const& slot);
// False when that cannot be, and nothing has moved then.
bool seek_slot(FidSlot& slot, std::int64_t offset, platform::SeekFrom from);
// Keeps what the system says about a stream that has just failed.
void note_failure(FidSlot& slot);

} // namespace arrlib

#endif
