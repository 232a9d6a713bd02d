// Bytes of data files, from front to back and never more than there are.
#ifndef ARRLIB_IO_BYTE_SOURCE_H
#define ARRLIB_IO_BYTE_SOURCE_H

#include "io/precision.h"

#include <cstdint>
#include <cstdio>

namespace arrlib {

class ByteSource {
public:
    ByteSource(ByteSource const&) = delete;
    ByteSource& operator=(ByteSource const&) = delete;

    // No more bytes than these can come. Memory is taken only for what fits in here.
    std::uint64_t left() const { return left_; }
    // All of them or false; a source that has failed once gives nothing more of use.
    bool read(void* to, std::uint64_t count)
    {
        if (count > left_)
            return false;
        left_ -= count;
        return take(to, static_cast<std::size_t>(count));
    }
    bool skip(std::uint64_t count)
    {
        if (count > left_)
            return false;
        left_ -= count;
        return pass_over(count);
    }

protected:
    explicit ByteSource(std::uint64_t left) : left_(left) {}
    ~ByteSource() = default;
    void set_left(std::uint64_t left) { left_ = left; }

private:
    virtual bool take(void* to, std::size_t count) = 0;
    virtual bool pass_over(std::uint64_t count) = 0;

    std::uint64_t left_;
};

// An open regular file, closed at the end of the block.
class FileSource final : public ByteSource {
public:
    explicit FileSource(char const* path);
    ~FileSource();

    // False when there is no such file.
    bool is_open() const { return stream_ != nullptr; }
    std::uint64_t position() const { return length_ - left(); }
    // Back to the start.
    bool rewind();

private:
    bool take(void* to, std::size_t count) override;
    bool pass_over(std::uint64_t count) override;

    std::FILE* stream_;
    std::uint64_t length_ = 0;
};

// Reads elements of files as doubles. False when they are not all there.
bool read_numbers(ByteSource& from, ElementType type, bool swapped, std::size_t count, double* to);

// Calls `take` with pointers to blocks of the next `count` elements, as doubles, and their number,
// until it answers false. False then, and when they are not all there.
template <class Take> bool each_number(ByteSource& from, ElementType type, bool swapped, std::uint64_t count, Take&& take)
{
    double block[512];
    while (count > 0) {
        std::size_t const piece = count < 512 ? static_cast<std::size_t>(count) : 512;
        if (!read_numbers(from, type, swapped, piece, block) || !take(static_cast<double const*>(block), piece))
            return false;
        count -= piece;
    }
    return true;
}

} // namespace arrlib

#endif
