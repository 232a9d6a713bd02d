#include "core/storage.h"

#include "core/access.h"
#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/report.h"

#include <cstring>
#include <limits>

namespace arrlib {

namespace {

// Gives a pool block back unless it has been passed on.
class PoolBlock {
public:
    explicit PoolBlock(std::size_t size) : size_(size), block_(pool.allocate(size)) {}
    ~PoolBlock()
    {
        if (block_)
            pool.release(block_, size_);
    }
    PoolBlock(PoolBlock const&) = delete;
    PoolBlock& operator=(PoolBlock const&) = delete;

    explicit operator bool() const { return block_ != nullptr; }
    std::size_t size() const { return size_; }
    void* pass_on()
    {
        void* const block = block_;
        block_ = nullptr;
        return block;
    }

private:
    std::size_t size_;
    void* block_;
};

bool size_fits(int capacity, bool complex)
{
    return capacity >= 0 &&
           static_cast<std::size_t>(capacity) <= (std::numeric_limits<std::size_t>::max() / 2 - 64) / (complex ? 16 : 8);
}

// The element count in front of a cell's elements; a whole alignment unit.
constexpr std::size_t count_in_front = 16;
constexpr std::size_t cell_record_size = 16;

} // namespace

StorageBlock<double> Storage<double>::take(int count, bool complex, bool sparse)
{
    if (count > largest_count) {
        error(messages::out_of_memory);
        return {};
    }
    return take_room(count + spare, complex, sparse);
}

StorageBlock<double> Storage<double>::take_room(int capacity, bool complex, bool sparse)
{
    if (!size_fits(capacity, complex)) {
        error(messages::out_of_memory);
        return {};
    }
    PoolBlock data(bytes(static_cast<std::size_t>(capacity), complex));
    if (!data)
        return {};
    int* index = nullptr;
    if (sparse) {
        index = static_cast<int*>(pool.allocate(static_cast<std::size_t>(capacity) * sizeof(int)));
        if (!index)
            return {};
    }
    std::size_t const size = data.size();
    StorageBlock<double> made = lay_out(data.pass_on(), size, capacity, complex);
    made.index = index;
    return made;
}

void Storage<double>::copy(double* to, double const* from, int count)
{
    if (count > 0)
        std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(double));
}

void Storage<double>::clear(double* to, int count)
{
    if (count > 0)
        std::memset(to, 0, static_cast<std::size_t>(count) * sizeof(double));
}

StorageBlock<M<double>> Storage<M<double>>::take(int count, bool complex, bool sparse)
{
    return take_room(count, complex, sparse);
}

StorageBlock<M<double>> Storage<M<double>>::take_room(int capacity, bool, bool)
{
    constexpr std::size_t most = (std::numeric_limits<std::size_t>::max() / 2 - count_in_front) / sizeof(M<double>);
    char* block = nullptr;
    void* record = nullptr;
    std::size_t const elements = static_cast<std::size_t>(capacity) + 1;
    if (capacity >= 0 && capacity <= largest_count && elements <= most) {
        block = static_cast<char*>(platform::heap_allocate(count_in_front + elements * sizeof(M<double>)));
        record = block ? platform::heap_allocate(cell_record_size) : nullptr;
    }
    if (!record) {
        platform::heap_release(block);
        error(messages::out_of_memory);
        end_process();
    }
    std::memcpy(block, &elements, sizeof elements);
    StorageBlock<M<double>> made;
    made.re = reinterpret_cast<M<double>*>(block + count_in_front);
    for (std::size_t k = 0; k < elements; ++k)
        new (made.re + k) M<double>(Access<double>::without_storage());
    made.record = static_cast<StorageRecord*>(record);
    made.record->refs = 1;
    made.record->set_size(count_in_front + elements * sizeof(M<double>));
    made.capacity = capacity;
    return made;
}

void Storage<M<double>>::release(M<double>* re, StorageRecord* record, int*, int) noexcept
{
    char* const block = reinterpret_cast<char*>(re) - count_in_front;
    std::size_t elements;
    std::memcpy(&elements, block, sizeof elements);
    for (std::size_t k = elements; k-- > 0;)
        re[k].~M();
    platform::heap_release(block);
    platform::heap_release(record);
}

void Storage<M<double>>::copy(M<double>* to, M<double> const* from, int count)
{
    for (int k = 0; k < count; ++k)
        to[k] = from[k];
}

void Storage<M<double>>::clear(M<double>* to, int count)
{
    for (int k = 0; k < count; ++k)
        to[k] = Access<double>::without_storage();
}

} // namespace arrlib
