#include "io/files.h"

#include "core/dims.h"
#include "core/heap_array.h"
#include "io/fid_stream.h"
#include "io/text_argument.h"
#include "runtime/report.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace arrlib;

namespace {

bool is_omitted(M<double> const& argument)
{
    return argument.size() == 0;
}

M<double> status(bool fine)
{
    return fine ? 0.0 : -1.0;
}

// --- opening ----------------------------------------------------------------------------------------

// The mode as the C library is given it; false when it would not know it.
bool complete_mode(M<double> const& argument, char* mode)
{
    TextArgument<file_mode_limit> const asked(argument);
    std::strcpy(mode, is_omitted(argument) ? "r" : asked.text);
    if (!std::strpbrk(mode, "bt"))
        std::strcat(mode, "b");
    return std::strchr("rwa", mode[0]) && mode[1 + std::strspn(mode + 1, "+bt")] == '\0';
}

M<double> open_fids()
{
    M<double> fids(0, 1, largest_fid + 1);
    int count = 0;
    for (int fid = first_file_fid; fid <= largest_fid && count < fids.size(); ++fid)
        if (fid_slot(fid).open)
            fids.addr()[count++] = fid;
    M<double> row(0, 1, count);
    std::copy_n(fids.addr(), row.size(), row.addr());
    return row;
}

// The fid, or the open fids, and what is wrong. Everything that may fail comes before the opening.
M<double> open_file(M<double> const& name, M<double> const& mode, M<double> const& machineformat, char const*& message)
{
    char complete[file_mode_limit + 2];
    bool const known_mode = complete_mode(mode, complete);
    FileName const path(name);
    message = "";
    M<double> fid(-1.0);
    if (path.text[0] == '\0') {
        message = "filename is empty";
        return fid;
    }
    TextArgument<byte_order_limit> const format(machineformat);
    ByteOrder const order = is_omitted(machineformat) ? native_order : byte_order_named(format);
    if (order == ByteOrder::unknown)
        warning("fopen: don't know how to convert from machine format");
    if (std::strcmp(path, "all") == 0)
        return open_fids();
    if (fid.size() < 1) // reported where it happened
        return x_M;
    std::FILE* stream = known_mode ? platform::open_stream(path, complete) : nullptr;
    if (stream && std::ferror(stream)) {
        std::fclose(stream);
        stream = nullptr;
    }
    if (stream)
        fid.r(1) = add_fid(stream, order, path, complete);
    else
        message = "File error";
    return fid;
}

// --- lines ------------------------------------------------------------------------------------------

struct Line {
    HeapArray<char> text;
    std::size_t length = 0;
    bool out_of_memory = false;

    // The next line, at most `most` characters of it.
    void take(TextSource& source, std::size_t most)
    {
        while (length < most && source.more()) {
            std::size_t const there = std::min(static_cast<std::size_t>(source.end - source.at), most - length);
            auto const* const line_end = static_cast<char const*>(std::memchr(source.at, '\n', there));
            std::size_t const count = line_end ? static_cast<std::size_t>(line_end + 1 - source.at) : there;
            if (!text.grow(length + count)) {
                out_of_memory = true;
                return;
            }
            std::memcpy(text.data() + length, source.at, count);
            length += count;
            source.at += count;
            if (line_end)
                return;
        }
    }
};

M<double> next_line(M<double> const& fid_argument, double nchar, bool with_end)
{
    int const fid = checked_fid(fid_argument, true);
    if (fid < 0)
        return x_M;
    constexpr double longest = most_elements;
    auto const most = static_cast<std::size_t>(nchar >= longest ? longest : nchar > 0 ? nchar : 0);
    Line line;
    read_open_fid(fid, [&](TextSource& source) { line.take(source, most); });
    if (line.out_of_memory)
        return x_M;
    if (line.length == 0 && most > 0)
        return -1.0;
    char* const text = line.text.data();
    char* const end = with_end ? text + line.length : std::remove_if(text, text + line.length, [](char c) { return c == '\n' || c == '\r'; });
    return text_value(text, static_cast<std::size_t>(end - text));
}

// --- positions --------------------------------------------------------------------------------------

struct Origin {
    char const* name;
    platform::SeekFrom from;
};

constexpr Origin origins[] = {
    {"bof", platform::SeekFrom::start},
    {"cof", platform::SeekFrom::here},
    {"eof", platform::SeekFrom::end},
};

platform::SeekFrom origin_of(M<double> const& argument)
{
    if (!argument.isstr())
        return argument[1] < 0 ? platform::SeekFrom::start : argument[1] > 0 ? platform::SeekFrom::end : platform::SeekFrom::here;
    FileName const text(argument);
    for (Origin const& known : origins)
        if (std::strcmp(known.name, text) == 0)
            return known.from;
    error("fseek: origin %s not bof, cof or eof", OperandName(argument));
    return platform::SeekFrom::here;
}

bool seek(int fid, double offset, platform::SeekFrom from)
{
    constexpr double farthest = 9223372036854775808.0;
    if (!(std::fabs(offset) < farthest) || !seek_slot(fid_slot(fid), static_cast<std::int64_t>(offset), from))
        return false;
    if (fid == 0)
        forget_console_input();
    return true;
}

void forget_failure(int fid)
{
    std::clearerr(fid_slot(fid).stream);
    fid_slot(fid).failure = 0;
    if (fid == 0)
        forget_console_input();
}

} // namespace

M<double> fopen(M<double> const& name, M<double> const& mode, M<double> const& machineformat)
{
    char const* problem;
    return open_file(name, mode, machineformat, problem);
}

M<double> fopen(M<double> const& name, M<double> const& mode, M<double> const& machineformat, i_o_t, Mr<double> message)
{
    char const* problem;
    M<double> const fid = open_file(name, mode, machineformat, problem);
    message = TM(problem);
    return fid;
}

M<double> fopen(M<double> const& name, M<double> const& mode, M<double> const& machineformat, i_o_t, Mr<double> message,
                Mr<double> mode_used, Mr<double> machineformat_used)
{
    char const* problem;
    M<double> const fid = open_file(name, mode, machineformat, problem);
    message = TM(problem);
    FidSlot const* const slot = fid.size() == 1 && fid[1] >= first_file_fid ? &fid_slot(static_cast<int>(fid[1])) : nullptr;
    mode_used = TM(slot ? slot->mode : "");
    machineformat_used = TM(slot ? byte_order_name(slot->order) : "");
    return fid;
}

M<double> fopen(M<double> const& fid, i_o_t, Mr<double> mode, Mr<double> machineformat)
{
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    FidSlot const& slot = fid_slot(open);
    mode = TM(slot.mode);
    machineformat = TM(byte_order_name(slot.order));
    return TM(slot.name);
}

M<double> fclose(M<double> const& fid)
{
    if (fid.isstr())
        return status(close_all_fids());
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    if (open < first_file_fid) {
        error("fclose: can not close stdin/stdout/stderr, fid is %s", OperandName(fid));
        return x_M;
    }
    return status(close_fid(open));
}

M<double> stdinM()
{
    return 0.0;
}

M<double> stdoutM()
{
    return 1.0;
}

M<double> stderrM()
{
    return 2.0;
}

M<double> fgets(M<double> const& fid)
{
    return next_line(fid, HUGE_VAL, true);
}

M<double> fgets(M<double> const& fid, M<double> const& nchar)
{
    return next_line(fid, is_omitted(nchar) ? HUGE_VAL : nchar[1], true);
}

M<double> fgetl(M<double> const& fid)
{
    return next_line(fid, HUGE_VAL, false);
}

M<double> fseek(M<double> const& fid, M<double> const& offset, M<double> const& origin)
{
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    platform::SeekFrom const from = origin_of(origin);
    return status(seek(open, offset[1], from));
}

M<double> ftell(M<double> const& fid)
{
    int const open = checked_fid(fid, true);
    return open < 0 ? x_M : M<double>(static_cast<double>(position_of(fid_slot(open))));
}

M<double> frewind(M<double> const& fid)
{
    int const open = checked_fid(fid, true);
    if (open >= 0) {
        seek(open, 0, platform::SeekFrom::start);
        forget_failure(open);
    }
    return x_M;
}

M<double> feof(M<double> const& fid)
{
    int const open = checked_fid(fid, true);
    return open < 0 ? x_M : M<double>(at_end(open) ? 1.0 : 0.0);
}

M<double> ferror(M<double> const& fid, M<double> const& option)
{
    M<double> number;
    return ferror(fid, option, i_o, number);
}

M<double> ferror(M<double> const& fid, M<double> const& option, i_o_t, Mr<double> number)
{
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    int const failure = fid_slot(open).failure;
    M<double> const text = TM(failure ? std::strerror(failure) : "");
    number = static_cast<double>(failure);
    if (std::strcmp(TextArgument<precision_limit>(option), "clear") == 0)
        forget_failure(open);
    return text;
}

M<double> fflush(M<double> const& fid)
{
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    FidSlot& slot = fid_slot(open);
    // What goes to fid 1 through the print hook does not pass through the slot.
    bool const written = open == 1 || slot.last == FidSlot::Last::write;
    bool const fine = !written || std::fflush(slot.stream) == 0;
    if (!fine)
        note_failure(slot);
    return status(fine);
}
