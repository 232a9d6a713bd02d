// Elements of files, read and written in blocks.
#include "io/files.h"

#include "core/access.h"
#include "core/arguments.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "io/fid_stream.h"
#include "io/text_argument.h"
#include "runtime/report.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

using namespace arrlib;

namespace {

// Large enough to call the system seldom, small enough to stay in the cache.
constexpr std::size_t block_bytes = 131072;
constexpr std::size_t longest_element = 8;
constexpr std::size_t block_elements = block_bytes / longest_element;

// How elements lie in a file.
struct Layout {
    ElementType type = ElementType::uint8;
    std::size_t size = 1;
    bool swapped = false;
    std::int64_t skip = 0;

    bool is_plain_double() const { return size == sizeof(double) && skip == 0 && (type == ElementType::float64 || type == ElementType::extended); }
};

// What the optional inputs that reading and writing share say about an open file; false after the
// report of a skip below 0.
bool read_layout(int fid, M<double> const& precision, M<double> const& skip, M<double> const& machineformat, char const* bad_skip, Layout& layout)
{
    if (skip[1] < 0) {
        error(bad_skip, OperandName(skip));
        return false;
    }
    constexpr double farthest = 9.2e18;
    layout.skip = skip[1] > 0 ? static_cast<std::int64_t>(std::fmin(skip[1], farthest)) : 0;
    layout.type = precision.size() == 0 ? ElementType::uint8 : precision_named(TextArgument<precision_limit>(precision));
    layout.size = element_size(layout.type);
    ByteOrder const asked = byte_order_named(TextArgument<byte_order_limit>(machineformat));
    layout.swapped = is_swapped(asked == ByteOrder::unknown ? fid_slot(fid).order : asked);
    return true;
}

// --- reading ----------------------------------------------------------------------------------------

class ElementReader {
public:
    // Reads no more than `most` elements in all.
    ElementReader(int fid, Layout const& layout, std::size_t most)
        : fid_(fid), layout_(layout), skip_(static_cast<std::uint64_t>(layout.skip)),
          block_(layout.is_plain_double() ? 0 : skip_ > 0 || most > block_elements ? block_bytes : most * layout.size)
    {
    }
    // False after a report.
    bool ready() const { return static_cast<bool>(block_); }

    // Elements from here to the end of a file that knows its size, else -1.
    std::int64_t left() const
    {
        std::FILE* const stream = stream_to_read(fid_slot(fid_));
        std::int64_t const size = platform::stream_size(stream), here = size < 0 ? -1 : platform::stream_position(stream);
        if (here < 0)
            return -1;
        auto const bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(size - here, 0));
        return bytes < layout_.size ? 0 : static_cast<std::int64_t>((bytes - layout_.size) / (layout_.size + skip_)) + 1;
    }

    // Reads up to that many elements; fewer at the end.
    std::size_t read(double* to, std::size_t count)
    {
        if (layout_.is_plain_double() && !layout_.swapped)
            return read_bytes(fid_, to, count * sizeof(double)) / sizeof(double);
        std::size_t done = 0;
        for (std::size_t asked = 1, got = 1; got == asked && done < count; done += got) {
            asked = std::min(count - done, block_capacity());
            got = read_block(to + done, asked);
        }
        return done;
    }

private:
    // Elements whose bytes, with what is passed over between them, come in one block.
    std::size_t block_capacity() const
    {
        return skip_ < block_bytes ? std::max<std::size_t>(1, block_bytes / (layout_.size + static_cast<std::size_t>(skip_))) : 1;
    }

    std::size_t read_block(double* to, std::size_t count)
    {
        if (layout_.is_plain_double()) {
            std::size_t const got = read_bytes(fid_, to, count * sizeof(double)) / sizeof(double);
            swap_doubles(to, got);
            return got;
        }
        std::size_t got;
        if (layout_.size + skip_ <= block_bytes) {
            std::size_t const step = layout_.size + static_cast<std::size_t>(skip_);
            std::size_t const bytes = read_bytes(fid_, block_.data(), count * step);
            got = bytes < layout_.size ? 0 : (bytes - layout_.size) / step + 1;
            for (std::size_t k = 1; skip_ > 0 && k < got; ++k)
                std::memmove(&block_[k * layout_.size], &block_[k * step], layout_.size);
        } else {
            got = read_bytes(fid_, block_.data(), layout_.size) / layout_.size;
            if (got > 0 && !platform::seek_stream(fid_slot(fid_).stream, layout_.skip, platform::SeekFrom::here))
                pass_over();
        }
        decode_elements(layout_.type, layout_.swapped, block_.data(), got, to);
        return got;
    }

    // What cannot be sought is read.
    void pass_over()
    {
        for (std::uint64_t left = skip_; left > 0;) {
            auto const bytes = static_cast<std::size_t>(std::min<std::uint64_t>(left, block_bytes - longest_element));
            if (read_bytes(fid_, block_.data() + longest_element, bytes) < bytes)
                return;
            left -= bytes;
        }
    }

    int fid_;
    Layout layout_;
    std::uint64_t skip_;
    HeapArray<unsigned char> block_;
};

// What a size asks for.
struct Request {
    bool column = true;
    int rows = 0;
    std::size_t most = static_cast<std::size_t>(most_elements);
    // More than a value can hold: as much as there is.
    bool everything = true;

    void limit(double count)
    {
        everything = count > most_elements;
        most = everything ? static_cast<std::size_t>(most_elements) : count > 0 ? static_cast<std::size_t>(count) : 0;
    }
};

double whole_count(double size)
{
    return size > 0 ? std::trunc(size) : 0;
}

Request request_of(M<double> const& size)
{
    Request request;
    if (size.size() == 1)
        request.limit(whole_count(size[1]));
    if (size.size() == 2) {
        double const rows = whole_count(size[1]), cols = whole_count(size[2]);
        request.column = std::isinf(rows);
        request.rows = integer_argument(rows);
        request.limit(rows > 0 && cols > 0 ? rows * cols : 0);
    }
    return request;
}

// The result while it is read: more room, and another shape once its count is known.
class Result {
public:
    explicit Result(Request const& request) : request_(request) {}

    M<double> const& value() const { return value_; }
    std::size_t count() const { return count_; }

    // False after a report.
    bool read_all(ElementReader& reader)
    {
        constexpr std::size_t first_guess = 1024;
        std::int64_t const left = reader.left();
        if (request_.everything && left > most_elements) {
            error(messages::out_of_memory);
            return false;
        }
        // One more than there should be, so that the end is met.
        std::size_t const guess = left < 0 ? first_guess : static_cast<std::size_t>(std::min<std::int64_t>(left, most_elements)) + 1;
        for (std::size_t room = std::min(guess, request_.most);; room = std::min(2 * room, request_.most)) {
            if (!make_room(room))
                return false;
            std::size_t const asked = room - count_, got = asked ? reader.read(value_.addr() + count_, asked) : 0;
            count_ += got;
            if (got < asked || count_ == request_.most)
                break;
        }
        if (request_.everything && count_ == request_.most) {
            error(messages::out_of_memory);
            return false;
        }
        return finish();
    }

private:
    Dims shape(std::size_t count) const
    {
        if (request_.column || count == 0)
            return Dims(static_cast<int>(count), 1);
        std::size_t const cols = (count - 1) / static_cast<std::size_t>(request_.rows) + 1;
        return Dims(request_.rows, static_cast<int>(cols));
    }

    // Room for that many elements, and for what fills their last column unless columns are longer.
    bool make_room(std::size_t room)
    {
        auto const rows = static_cast<std::size_t>(request_.rows);
        std::size_t const whole = request_.column || rows == 0 || rows > room ? room : (room + rows - 1) / rows * rows;
        if (whole > most_elements) {
            error(messages::out_of_memory);
            return false;
        }
        M<double> larger = Access<double>::full_with_room(false, Dims(1, 1), std::max(static_cast<int>(whole), 1) + Storage<double>::spare);
        if (!has_storage(larger))
            return false;
        std::copy_n(value_.addr(), count_, larger.addr());
        value_ = larger;
        return true;
    }

    bool finish()
    {
        Dims const final = shape(count_);
        if (final.count < 0) {
            error(messages::out_of_memory);
            return false;
        }
        if (final.count > value_.capacity() - Storage<double>::spare && !make_room(static_cast<std::size_t>(final.count)))
            return false;
        Access<double>::grow_in_place(value_, final);
        std::fill(value_.addr() + count_, value_.addr() + final.count, 0.0);
        return true;
    }

    Request request_;
    M<double> value_ = Access<double>::without_storage();
    std::size_t count_ = 0;
};

// --- writing ----------------------------------------------------------------------------------------

// Gives the elements of a value in blocks, those of a sparse one with its zeros.
class ElementBlocks {
public:
    explicit ElementBlocks(M<double> const& value) : value_(value), block_(value.issparse() ? block_elements : 0) {}
    bool ready() const { return static_cast<bool>(block_); }

    // In storage order; `count` is at most block_elements.
    double const* next(std::size_t count)
    {
        double const* const elements = value_.addr() + at_;
        at_ += static_cast<int>(count);
        if (!value_.issparse())
            return elements;
        std::fill_n(block_.data(), count, 0.0);
        int const* const index = Access<double>::index(value_);
        int const start = at_ - static_cast<int>(count);
        for (; entry_ < value_.getnnz() && index[entry_] < at_; ++entry_)
            block_[static_cast<std::size_t>(index[entry_] - start)] = value_.addr()[entry_];
        return block_.data();
    }

private:
    M<double> const& value_;
    HeapArray<double> block_;
    int at_ = 0;
    int entry_ = 0;
};

// Moves on behind what has been written; a stream without positions gets zeros. False when that fails,
// as it does when what was written cannot be passed on.
bool pass_over_written(int fid, std::int64_t skip)
{
    FidSlot& slot = fid_slot(fid);
    if (fid != 1 && position_of(slot) >= 0) {
        bool const moved = seek_slot(slot, skip, platform::SeekFrom::here);
        if (!moved)
            note_failure(slot);
        return moved;
    }
    constexpr char zeros[512] = {};
    for (std::int64_t left = skip; left > 0;) {
        auto const bytes = static_cast<std::size_t>(std::min<std::int64_t>(left, sizeof zeros));
        if (write_bytes(fid, zeros, bytes) < bytes)
            return false;
        left -= static_cast<std::int64_t>(bytes);
    }
    return true;
}

std::size_t write_elements(int fid, M<double> const& a, Layout const& layout)
{
    auto const count = static_cast<std::size_t>(std::max(a.size(), 0));
    if (layout.is_plain_double() && !layout.swapped && !a.issparse())
        return count > 0 ? write_bytes(fid, a.addr(), count * sizeof(double)) / sizeof(double) : 0;
    ElementBlocks blocks(a);
    std::size_t const at_once = layout.skip > 0 ? 1 : std::min(count, block_elements);
    HeapArray<unsigned char> const bytes(at_once * layout.size);
    if (!blocks.ready() || !bytes)
        return 0;
    std::size_t done = 0;
    for (std::size_t asked = 1, got = 1; got == asked && done < count; done += got) {
        asked = std::min(count - done, at_once);
        encode_elements(layout.type, layout.swapped, blocks.next(asked), asked, bytes.data());
        got = write_bytes(fid, bytes.data(), asked * layout.size) / layout.size;
        if (got == asked && layout.skip > 0 && !pass_over_written(fid, layout.skip))
            return std::ferror(fid_slot(fid).stream) ? done : done + got;
    }
    return done;
}

} // namespace

M<double> fread(M<double> const& fid, M<double> const& size, M<double> const& precision, M<double> const& skip,
                M<double> const& machineformat, i_o_t, Mr<double> count)
{
    if (size.isstr())
        return fread(fid, nop_M, size, precision, skip, i_o, count);
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    if (size.size() > 2) {
        error("fread: can not read multi-dimensional matrices");
        return x_M;
    }
    Layout layout;
    if (!read_layout(open, precision, skip, machineformat, "fread: skip<0. skip is %s", layout))
        return x_M;
    Request const request = request_of(size);
    ElementReader reader(open, layout, request.most);
    Result elements(request);
    if (!reader.ready() || !elements.read_all(reader))
        return x_M;
    M<double> const read = static_cast<double>(elements.count());
    if (!has_storage(read))
        return x_M;
    count = read;
    return elements.value();
}

M<double> fread(M<double> const& fid, M<double> const& size, M<double> const& precision, M<double> const& skip,
                M<double> const& machineformat)
{
    M<double> count;
    return fread(fid, size, precision, skip, machineformat, i_o, count);
}

M<double> fwrite(M<double> const& fid, M<double> const& a, M<double> const& precision, M<double> const& skip,
                 M<double> const& machineformat)
{
    int const open = checked_fid(fid, true);
    if (open < 0)
        return x_M;
    if (!precision.isstr() && precision.size() > 0) {
        error("fwrite: precision not a string");
        return x_M;
    }
    Layout layout;
    if (!read_layout(open, precision, skip, machineformat, "fwrite: skip<0. skip is %s", layout))
        return x_M;
    return static_cast<double>(write_elements(open, a, layout));
}
