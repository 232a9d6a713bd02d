// The memory pool: 128-byte chunks for headers and small values, the heap for the rest.
#ifndef ARRLIB_CORE_POOL_H
#define ARRLIB_CORE_POOL_H

#include "core/api.h"
#include "runtime/locks.h"

#include <cstddef>
#include <cstdint>

namespace arrlib {

// The free chunks stand in a stack of pointers beside them: a chunk popped right after it was pushed
// is not read again before it is handed out, and no header is kept in front of it, so whoever
// releases a block names the size it was asked for. Every block is 8-byte aligned.
class Pool {
public:
    static constexpr std::size_t chunk_size = 128;
    static constexpr std::size_t block_size = 16384;
    static constexpr int max_blocks = 1024;
    static constexpr int chunks_per_block = static_cast<int>(block_size / chunk_size);
    // Four bytes of a chunk are kept for the mark of a block that had to be moved by four.
    static constexpr std::size_t largest_small = chunk_size - 4;

    // Room for every chunk that there may be, behind a null.
    struct Slots {
        void* chunk[1 + max_blocks * chunks_per_block];
    };

    // The slots are all null.
    explicit constexpr Pool(Slots& slots) : top_(slots.chunk + 1), first_(slots.chunk + 1) {}
    Pool(Pool const&) = delete;
    Pool& operator=(Pool const&) = delete;

    // A block of `size` bytes, or null after "Out of memory!" or "FS:Out of chunks" was reported
    // and the error function returned.
    void* allocate(std::size_t size)
    {
        if (ARRLIB_LIKELY(size <= largest_small))
            if (void* const chunk = take_chunk(); ARRLIB_LIKELY(chunk != nullptr))
                return chunk;
        return allocate_slow(size);
    }

    // The quick half of allocate for small blocks: null where the other half is needed.
    void* take_chunk()
    {
#if !defined(ARRLIB_POOL_CHECKED)
        void** const top = load_shared(top_);
        if (void* const chunk = top[-1]; ARRLIB_LIKELY(chunk != nullptr)) {
            top_ = top - 1;
            return chunk;
        }
#endif
        return nullptr;
    }

    // Gives back a block taken with the same size.
    void release(void* block, std::size_t size) noexcept
    {
#if !defined(ARRLIB_POOL_CHECKED)
        void** const top = load_shared(top_);
        if (ARRLIB_LIKELY(size <= largest_small && top < load_shared(limit_))) {
            *top = block;
            top_ = top + 1;
            return;
        }
#endif
        release_slow(block, size);
    }

    // Called when the multi-thread switch changes.
    void set_threaded(bool on);

    // Small chunks handed out and not yet released.
    std::int64_t outstanding() const { return all_chunks() - (true_top() - first_); }
    // Index of the last 16 KiB block in use, -1 when there is none.
    int last_block() const { return last_block_; }

private:
    ARRLIB_API void* allocate_slow(std::size_t size);
    ARRLIB_API void release_slow(void* block, std::size_t size) noexcept;
    char const* add_block();
    void give_back_blocks();
    std::int64_t all_chunks() const { return std::int64_t{chunks_per_block} * (last_block_ + 1); }
    void** true_top() const { return closed_ ? parked_ : top_; }
    void set_true_top(void** top);
    void open_or_close();

    // Behind the topmost free chunk; behind the null at the bottom while the quick halves are closed.
    void** top_;
    // Chunks are pushed below it without further ado: the last one outstanding is not.
    void** limit_ = nullptr;
    void** const first_;
    // The true top while the quick halves are closed.
    void** parked_ = nullptr;
    int last_block_ = -1;
    // Chunks may be popped and pushed only with the lock held, or with a look at how they lie.
    bool closed_ = false;
    bool threaded_ = false;
    // The heap has answered an address that had to be moved by four bytes at least once: only then
    // can a released block carry the mark.
    bool moved_blocks_ = false;
    void* blocks_[max_blocks] = {};
};

// The pool of the process.
ARRLIB_API extern Pool pool;

} // namespace arrlib

#endif
