#include "io/fid_table.h"

#include "runtime/errors.h"
#include "runtime/locks.h"
#include "runtime/report.h"
#include "runtime/text_buffer.h"

#include <cerrno>
#include <cstring>

namespace arrlib {

namespace {

template <std::size_t size> void copy_text(char (&to)[size], char const* from)
{
    TextAppender(to, size, 0).text(from);
}

void fill(FidSlot& slot, std::FILE* stream, ByteOrder order, char const* name, char const* mode)
{
    slot.stream = stream;
    slot.order = order;
    copy_text(slot.name, name);
    copy_text(slot.mode, mode);
    slot.last = FidSlot::Last::nothing;
    slot.goes_back = !std::strchr(mode, 't') && platform::stream_size(stream) >= 0;
    slot.failure = 0;
    slot.at = slot.end = slot.ahead;
    slot.open = 1;
}

struct FidTable {
    FidSlot slot[largest_fid + 1];

    FidTable()
    {
        fill(slot[0], stdin, native_order, "\"stdin\"", "r");
        fill(slot[1], stdout, native_order, "\"stdout\"", "w");
        fill(slot[2], stderr, native_order, "\"stderr\"", "a");
    }
};

// Made by whoever comes first, whatever the number of threads.
FidTable& table()
{
    static FidTable all;
    return all;
}

// The stream of an open slot, which is free from then on; null when it was not open.
std::FILE* release_slot(FidSlot& slot)
{
    if (!slot.open)
        return nullptr;
    slot.open = 0;
    return slot.stream;
}

std::FILE* turn(FidSlot& slot, FidSlot::Last now)
{
    bool const turned = slot.last != now && slot.last != FidSlot::Last::nothing;
    if (turned)
        static_cast<void>(platform::seek_stream(slot.stream, 0, platform::SeekFrom::here));
    slot.last = now;
    errno = 0;
    return slot.stream;
}

// Goes back over what has been read ahead.
void give_back(FidSlot& slot)
{
    if (slot.at != slot.end)
        static_cast<void>(platform::seek_stream(slot.stream, slot.at - slot.end, platform::SeekFrom::here));
    slot.at = slot.end;
}

} // namespace

int checked_fid(M<double> const& fid, bool report)
{
    if (fid.size() != 1) {
        error("Size of fid %s not one.", OperandName(fid));
        return -1;
    }
    double const number = fid[1];
    char const* problem = nullptr;
    if (!(number >= 0 && number <= largest_fid))
        problem = "Illegal fid.";
    else if (!fid_slot(static_cast<int>(number)).open)
        problem = "Fid not opened.";
    if (!problem)
        return static_cast<int>(number);
    if (report)
        error(problem);
    return -1;
}

FidSlot& fid_slot(int fid)
{
    return table().slot[fid];
}

int add_fid(std::FILE* stream, ByteOrder order, char const* name, char const* mode)
{
    {
        LockGuard const lock(Lock::files);
        int fid = 0;
        while (fid < largest_fid && fid_slot(fid).open)
            ++fid;
        if (fid < largest_fid) {
            fill(fid_slot(fid), stream, order, name, mode);
            return fid;
        }
    }
    std::fclose(stream);
    error("Too many files");
    end_process();
}

bool close_fid(int fid)
{
    std::FILE* stream;
    {
        LockGuard const lock(Lock::files);
        stream = release_slot(fid_slot(fid));
    }
    return stream && std::fclose(stream) == 0;
}

bool close_all_fids()
{
    LockGuard const lock(Lock::files);
    bool closed = true;
    for (int fid = first_file_fid; fid <= largest_fid; ++fid)
        if (std::FILE* const stream = release_slot(fid_slot(fid)))
            closed &= std::fclose(stream) == 0;
    return closed;
}

std::FILE* stream_to_read(FidSlot& slot)
{
    give_back(slot);
    return turn(slot, FidSlot::Last::read);
}

std::FILE* stream_to_write(FidSlot& slot)
{
    give_back(slot);
    return turn(slot, FidSlot::Last::write);
}

std::FILE* stream_to_read_ahead(FidSlot& slot)
{
    return turn(slot, FidSlot::Last::read);
}

std::int64_t position_of(FidSlot const& slot)
{
    std::int64_t const stream = platform::stream_position(slot.stream);
    return stream < 0 ? -1 : stream - (slot.end - slot.at);
}

bool seek_slot(FidSlot& slot, std::int64_t offset, platform::SeekFrom from)
{
    give_back(slot);
    bool const sought = platform::seek_stream(slot.stream, offset, from);
    if (sought)
        slot.last = FidSlot::Last::nothing;
    return sought;
}

void note_failure(FidSlot& slot)
{
    slot.failure = errno ? errno : EIO;
}

} // namespace arrlib
