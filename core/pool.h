// The memory pool: 128-byte chunks for headers and small values, the heap for the rest.
#ifndef ARRLIB_CORE_POOL_H
#define ARRLIB_CORE_POOL_H

#include "core/api.h"
#include "runtime/locks.h"

#include <cstddef>
#include <cstdint>

namespace arrlib {

// Chunks are popped from and pushed on one free list; no header is kept in front of a chunk, so
// whoever releases a block names the size it was asked for. Every block is 8-byte aligned.
class Pool {
public:
    static constexpr std::size_t chunk_size = 128;
    static constexpr std::size_t block_size = 16384;
    static constexpr int max_blocks = 1024;
    // Four bytes of a chunk are kept for the mark of a block that had to be moved by four.
    static constexpr std::size_t largest_small = chunk_size - 4;

    constexpr Pool() = default;
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
        if (ARRLIB_LIKELY(is_plain() && free_)) {
            Chunk* const chunk = free_;
            free_ = chunk->next;
            ++outstanding_;
            return chunk;
        }
#endif
        return nullptr;
    }

    // Gives back a block taken with the same size.
    void release(void* block, std::size_t size) noexcept
    {
#if !defined(ARRLIB_POOL_CHECKED)
        if (ARRLIB_LIKELY(size <= largest_small && is_plain() && outstanding_ > 1)) {
            Chunk* const chunk = static_cast<Chunk*>(block);
            chunk->next = free_;
            free_ = chunk;
            --outstanding_;
            return;
        }
#endif
        release_slow(block, size);
    }

    // Called when the multi-thread switch changes.
    void set_threaded(bool on);

    // Small chunks handed out and not yet released.
    std::int64_t outstanding() const { return outstanding_; }
    // Index of the last 16 KiB block in use, -1 when there is none.
    int last_block() const { return last_block_; }

private:
    // Blocks of the heap may lie at 4 mod 8, and their chunks with them.
    struct __attribute__((packed, aligned(4))) Chunk {
        Chunk* next;
    };

    // Chunks may be popped and pushed without a lock and without a look at how they lie.
    bool is_plain() const { return load_shared(plain_) != 0; }
    ARRLIB_API void* allocate_slow(std::size_t size);
    ARRLIB_API void release_slow(void* block, std::size_t size) noexcept;
    char const* add_block();
    void give_back_blocks();

    Chunk* free_ = nullptr;
    std::int64_t outstanding_ = 0;
    int last_block_ = -1;
    int plain_ = 1;
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
