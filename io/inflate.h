// Compressed elements of data files.
#ifndef ARRLIB_IO_INFLATE_H
#define ARRLIB_IO_INFLATE_H

#include "io/byte_source.h"

namespace arrlib {

// The bytes that the next `length` bytes of a file inflate to. Needs little memory, whatever they
// claim: left() is what compression of that length can reach at most.
class InflateSource final : public ByteSource {
public:
    InflateSource(FileSource& file, std::uint64_t length);
    ~InflateSource();

    // False where the library is built without zlib.
    static bool is_available();
    // True when everything has been read and its check sum is right.
    bool at_end();
    // Whether reading failed for lack of memory; that has not been reported.
    bool out_of_memory() const { return out_of_memory_; }

private:
    struct State;

    bool take(void* to, std::size_t count) override;
    bool pass_over(std::uint64_t count) override;

    FileSource& file_;
    std::uint64_t compressed_left_;
    State* state_ = nullptr;
    bool out_of_memory_ = false;
};

} // namespace arrlib

#endif
