// The two storage policies behind M: numbers in one pool block that ends with its record, cells in
// an element array of the general heap with a record beside it.
#ifndef ARRLIB_CORE_STORAGE_H
#define ARRLIB_CORE_STORAGE_H

#include "core/api.h"
#include "core/pool.h"

#include <climits>
#include <cstddef>
#include <cstdint>

namespace arrlib {

// Ends a data block: who shares it, and the size to give it back with. Twelve bytes; the high half
// of the size is 0 where addresses have 32 bits.
struct StorageRecord {
    int refs;
    std::uint32_t size_words[2];

    // Moved as one piece both ways: two halves read as one would wait for the store.
    std::size_t size() const
    {
        std::uint64_t size;
        __builtin_memcpy(&size, size_words, sizeof size);
        return static_cast<std::size_t>(size);
    }
    void set_size(std::uint64_t size) { __builtin_memcpy(size_words, &size, sizeof size); }
};
static_assert(sizeof(StorageRecord) == 12);

// Values may be copied from several threads at once while the multi-thread switch is on; the counts
// are plain otherwise.
inline void add_reference(StorageRecord* record)
{
    if (ARRLIB_UNLIKELY(multi_threaded()))
        __atomic_fetch_add(&record->refs, 1, __ATOMIC_RELAXED);
    else
        ++record->refs;
}

// True when the last reference went.
inline bool drop_reference(StorageRecord* record)
{
    if (ARRLIB_UNLIKELY(multi_threaded()))
        return __atomic_sub_fetch(&record->refs, 1, __ATOMIC_ACQ_REL) == 0;
    return --record->refs == 0;
}

// Whoever finds himself alone may write: what others read before they let go is ordered by their
// letting go and by the test itself.
inline bool is_only_reference(StorageRecord const* record)
{
    return load_shared(record->refs) == 1;
}

// What a policy hands out; a null record means that the storage could not be had.
template <class T> struct StorageBlock {
    T* re = nullptr;
    T* im = nullptr;
    int* index = nullptr;
    StorageRecord* record = nullptr;
    int capacity = 0;
};

// The storage of a constant of the library: `elements` is 0 or 1.
template <class T> struct StaticStorage {
    int elements;
    int capacity;
    StorageRecord* record;
    T* re;
    T* im;
};

template <class T> struct Storage;

template <> struct Storage<double> {
    // Elements beyond the count, so that an assignment one past the end grows in place.
    static constexpr int spare = 6;
    static constexpr int largest_count = INT_MAX - spare;

    static constexpr std::size_t bytes(std::size_t capacity, bool complex)
    {
        return capacity * (complex ? 2 : 1) * sizeof(double) + sizeof(StorageRecord);
    }

    // Lays the parts of a block of `capacity` elements out, with one reference.
    static StorageBlock<double> lay_out(void* block, std::size_t size, int capacity, bool complex)
    {
        StorageBlock<double> made;
        made.re = static_cast<double*>(block);
        made.im = complex ? made.re + capacity : nullptr;
        made.record = reinterpret_cast<StorageRecord*>(static_cast<char*>(block) + size - sizeof(StorageRecord));
        made.record->refs = 1;
        made.record->set_size(size);
        made.capacity = capacity;
        return made;
    }

    // The storage of a 1x1 real value.
    static constexpr int scalar_capacity = 1 + spare;
    static constexpr std::size_t scalar_bytes = scalar_capacity * sizeof(double) + sizeof(StorageRecord);
    static_assert(scalar_bytes <= Pool::largest_small);
    static StorageBlock<double> take_scalar(double value)
    {
        void* const block = pool.allocate(scalar_bytes);
        if (ARRLIB_UNLIKELY(!block))
            return {};
        StorageBlock<double> const made = lay_out(block, scalar_bytes, scalar_capacity, false);
        made.re[0] = value;
        return made;
    }

    // Uninitialised room for `count` elements and the spare ones. Reports "Out of memory!".
    ARRLIB_API static StorageBlock<double> take(int count, bool complex, bool sparse);
    // The same with more room behind the count than the spare six, for values that keep growing.
    ARRLIB_API static StorageBlock<double> take_room(int capacity, bool complex, bool sparse);

    static void release(double* re, StorageRecord* record, int* index, int capacity) noexcept
    {
        if (ARRLIB_UNLIKELY(index != nullptr))
            pool.release(index, static_cast<std::size_t>(capacity) * sizeof(int));
        pool.release(re, record->size());
    }

    ARRLIB_API static void copy(double* to, double const* from, int count);
    ARRLIB_API static void clear(double* to, int count);
};

template <> struct Storage<M<double>> {
    static constexpr int spare = 0;
    static constexpr int largest_count = INT_MAX - 1;

    // Room for `count` elements, all empty, and one more. Failure reports "Out of memory!" and ends
    // the process. Cells are never complex or sparse.
    ARRLIB_API static StorageBlock<M<double>> take(int count, bool complex, bool sparse);
    ARRLIB_API static StorageBlock<M<double>> take_room(int capacity, bool complex, bool sparse);
    ARRLIB_API static void release(M<double>* re, StorageRecord* record, int* index, int capacity) noexcept;
    ARRLIB_API static void copy(M<double>* to, M<double> const* from, int count);
    ARRLIB_API static void clear(M<double>* to, int count);
};

} // namespace arrlib

#endif
