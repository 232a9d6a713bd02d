// Work memory that numeric routines fill through a pointer, watched for running past its end.
#ifndef ARRLIB_CORE_GUARDED_BUFFER_H
#define ARRLIB_CORE_GUARDED_BUFFER_H

#include "core/heap_array.h"

namespace arrlib {

class GuardedBuffer {
public:
    // "Out of memory!" when the heap fails; data() is null then.
    explicit GuardedBuffer(std::size_t capacity) : fill(nullptr), array_(capacity), capacity_(capacity) { fill = array_.data(); }
    ~GuardedBuffer()
    {
        if (!fill || static_cast<std::size_t>(fill - array_.data()) <= capacity_)
            return;
        try {
            warning("possible memory overwrite");
        } catch (...) {
            // The hook has been told; an exception of its own cannot leave from here.
        }
    }
    GuardedBuffer(GuardedBuffer const&) = delete;
    GuardedBuffer& operator=(GuardedBuffer const&) = delete;

    double* data() const { return array_.data(); }

    // Where the next number goes.
    double* fill;

private:
    HeapArray<double> array_;
    std::size_t capacity_;
};

} // namespace arrlib

#endif
