// The heap door, the same on every system.
#include "platform/platform.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>

namespace arrlib::platform {

namespace {

constinit HeapAllocate allocate_hook = nullptr;
constinit HeapRelease release_hook = nullptr;

// From this size on C libraries take every block from the system and give it back when it is freed:
// writing to the fresh pages of a large result then costs more than computing it. The last few
// freed ones are kept for the next results of about their size. The address sanitizer must see
// every block go.
constexpr std::size_t smallest_kept = std::size_t{1} << 17;
constexpr std::size_t most_kept = std::size_t{256} << 20;
// From this size on the pages are worth being large: reading through them is 5 to 8 % faster, and the first
// writing several times where the system has them at hand.
constexpr std::size_t smallest_with_large_pages = std::size_t{4} << 20;
// OpenBLAS's loops for complex matrices read half a kilobyte past the last column, which they do not use. Large blocks
// have pages of their own, behind which the next page may be a thread's guard.
constexpr std::size_t read_past_end = 4096;
#if defined(__SANITIZE_ADDRESS__)
constexpr bool keeping = false;
#else
constexpr bool keeping = true;
#endif

class KeptBlocks {
public:
    // A block of at least `size` bytes, and not much more, or null.
    void* take(std::size_t size)
    {
        for (std::atomic<void*>& slot : slots_) {
            void* const block = slot.exchange(nullptr, std::memory_order_acquire);
            if (!block)
                continue;
            std::size_t const found = heap_block_size(block);
            total_.fetch_sub(found, std::memory_order_relaxed);
            if (size <= found && found - size <= size / 4)
                return block;
            if (!keep(block, found))
                std::free(block);
        }
        return nullptr;
    }
    // False for one that is larger than all that is kept. Others go where there is no room.
    bool keep(void* block, std::size_t size)
    {
        if (size > most_kept)
            return false;
        total_.fetch_add(size, std::memory_order_relaxed);
        for (std::size_t tried = 0; tried < slots_count && total_.load(std::memory_order_relaxed) > most_kept; ++tried)
            give_back(next_slot(), nullptr);
        for (std::atomic<void*>& slot : slots_) {
            void* free_slot = nullptr;
            if (slot.compare_exchange_strong(free_slot, block, std::memory_order_release, std::memory_order_relaxed))
                return true;
        }
        give_back(next_slot(), block);
        return true;
    }
    void give_back()
    {
        for (std::atomic<void*>& slot : slots_)
            give_back(slot, nullptr);
    }

private:
    static constexpr std::size_t slots_count = 8;

    std::atomic<void*>& next_slot() { return slots_[next_.fetch_add(1, std::memory_order_relaxed) % slots_count]; }
    // Puts another block in the place of the one that is there.
    void give_back(std::atomic<void*>& slot, void* other)
    {
        if (void* const block = slot.exchange(other, std::memory_order_acq_rel)) {
            total_.fetch_sub(heap_block_size(block), std::memory_order_relaxed);
            std::free(block);
        }
    }

    std::atomic<void*> slots_[slots_count] = {};
    std::atomic<std::size_t> total_ = 0, next_ = 0;
};

constinit KeptBlocks kept_blocks;

} // namespace

void set_heap(HeapAllocate allocate, HeapRelease release)
{
    allocate_hook = allocate;
    release_hook = release;
}

void* heap_allocate(std::size_t size) noexcept
{
    if (allocate_hook)
        return allocate_hook(size);
    bool const large = keeping && size >= smallest_kept;
    if (large)
        if (void* const kept = kept_blocks.take(size))
            return kept;
    std::size_t const padded = large && size <= SIZE_MAX - read_past_end ? size + read_past_end : size;
    void* block = std::malloc(padded);
    if (!block && keeping) {
        // What is kept is given up before a program goes without memory.
        kept_blocks.give_back();
        block = std::malloc(padded);
    }
    if (block && size >= smallest_with_large_pages)
        prefer_large_pages(block, size);
    return block;
}

void heap_release(void* block) noexcept
{
    if (release_hook)
        return release_hook(block);
    if (keeping && block) {
        std::size_t const size = heap_block_size(block);
        if (size >= smallest_kept && kept_blocks.keep(block, size))
            return;
    }
    std::free(block);
}

} // namespace arrlib::platform
