// Work memory of the library's own code: plain elements on the general heap, freed at the end of
// the block.
#ifndef ARRLIB_CORE_HEAP_ARRAY_H
#define ARRLIB_CORE_HEAP_ARRAY_H

#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

namespace arrlib {

// Uninitialised. When the heap fails, "Out of memory!" has been reported and the array is false.
template <class T> class HeapArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    HeapArray() = default;
    explicit HeapArray(std::size_t count) : data_(take(count)), count_(data_ ? count : 0) {}
    ~HeapArray() { platform::heap_release(data_); }
    HeapArray(HeapArray&& other) noexcept : data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0)) {}
    HeapArray& operator=(HeapArray&& other) noexcept
    {
        std::swap(data_, other.data_);
        std::swap(count_, other.count_);
        return *this;
    }

    explicit operator bool() const { return data_ != nullptr; }
    T* data() const { return data_; }
    std::size_t size() const { return count_; }
    T& operator[](std::size_t k) const { return data_[k]; }
    T* begin() const { return data_; }
    T* end() const { return data_ + count_; }

    // Room for at least `count` elements, the old ones kept; at least doubles, so that growing by
    // ones is linear. False after the report.
    bool grow(std::size_t count)
    {
        if (count <= count_)
            return true;
        HeapArray larger(count > 2 * count_ ? count : 2 * count_);
        if (!larger)
            return false;
        for (std::size_t k = 0; k < count_; ++k)
            larger.data_[k] = data_[k];
        *this = std::move(larger);
        return true;
    }

private:
    static T* take(std::size_t count)
    {
        void* const block = count <= std::numeric_limits<std::size_t>::max() / 2 / sizeof(T) ? platform::heap_allocate(count ? count * sizeof(T) : 1) : nullptr;
        if (!block)
            error(messages::out_of_memory);
        return static_cast<T*>(block);
    }

    T* data_ = nullptr;
    std::size_t count_ = 0;
};

} // namespace arrlib

#endif
