#include "core/pool.h"

#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <cstring>
#include <limits>

#if defined(ARRLIB_POOL_CHECKED)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif

namespace arrlib {

namespace {

constexpr char alignment_mark[4] = {'A', 'L', 'G', 'N'};

bool needs_moving(void const* block)
{
    return reinterpret_cast<std::uintptr_t>(block) % 8 == 4;
}

void* start_of_moved(void* block)
{
    char* const start = static_cast<char*>(block) - sizeof alignment_mark;
    return std::memcmp(start, alignment_mark, sizeof alignment_mark) == 0 ? start : block;
}

// Arrays from this size on begin with a line of the cache: vectors that lie across two lines cost twice.
// The byte before them tells how far into their block they begin.
constexpr std::size_t least_on_a_line = 1024;
constexpr std::size_t line = 64;

char* first_line_in(void* block)
{
    char* const start = static_cast<char*>(block);
    std::size_t const into = line - reinterpret_cast<std::uintptr_t>(start) % line;
    start[into - 1] = static_cast<char>(into);
    return start + into;
}

void* start_of_block(void* first_line)
{
    char* const first = static_cast<char*>(first_line);
    return first - first[-1];
}

} // namespace

// Pages of it are touched as blocks come.
static constinit Pool::Slots slots = {};
constinit Pool pool(slots);

// Takes one more block from the heap; its chunks will be handed out in address order. Answers null, or
// what went wrong.
char const* Pool::add_block()
{
    if (last_block_ + 1 >= max_blocks)
        return messages::out_of_chunks;
    char* const block = static_cast<char*>(platform::heap_allocate(block_size));
    if (!block)
        return messages::pool_out_of_memory;
    blocks_[++last_block_] = block;
    void** top = true_top();
    for (std::size_t offset = block_size; offset > 0; offset -= chunk_size)
        *top++ = block + offset - chunk_size;
    set_true_top(top);
    open_or_close();
    ASAN_POISON_MEMORY_REGION(block, block_size);
    return nullptr;
}

void* Pool::allocate_slow(std::size_t size)
{
    void* start = nullptr;
    char const* problem = nullptr;
    if (size > largest_small) {
        std::size_t const beyond = size < least_on_a_line ? 5 : line;
        if (size <= std::numeric_limits<std::size_t>::max() - beyond)
            start = platform::heap_allocate(size + beyond);
        if (!start) {
            error(messages::out_of_memory);
            return nullptr;
        }
        if (size >= least_on_a_line)
            return first_line_in(start);
    } else {
        // Reports run hooks, and hooks may allocate: never report with the lock held.
        LockGuard const guard(Lock::pool);
        if (true_top() == first_)
            problem = add_block();
        if (!problem) {
            start = true_top()[-1];
            set_true_top(true_top() - 1);
        }
    }
    if (problem) {
        nx_set_fatal_error();
        error(problem);
        return nullptr;
    }
    if (needs_moving(start)) {
        ASAN_UNPOISON_MEMORY_REGION(start, size + sizeof alignment_mark);
        std::memcpy(start, alignment_mark, sizeof alignment_mark);
        moved_blocks_ = true;
        open_or_close();
        return static_cast<char*>(start) + sizeof alignment_mark;
    }
    ASAN_UNPOISON_MEMORY_REGION(start, size);
    return start;
}

void Pool::release_slow(void* block, std::size_t size) noexcept
{
    if (size >= least_on_a_line) {
        platform::heap_release(start_of_block(block));
        return;
    }
    // A heap that answers addresses of 4 mod 8 keeps its own record in the four bytes before each
    // block, so they can be read.
    void* const start = moved_blocks_ ? start_of_moved(block) : block;
    if (size > largest_small) {
        platform::heap_release(start);
        return;
    }
    LockGuard const guard(Lock::pool);
    ASAN_POISON_MEMORY_REGION(start, chunk_size);
    void** const top = true_top();
    *top = start;
    set_true_top(top + 1);
    if (outstanding() == 0)
        give_back_blocks();
}

void Pool::set_true_top(void** top)
{
    if (closed_)
        parked_ = top;
    else
        top_ = top;
}

// Every par_run switches it on again, beside threads at work: only a change may touch the chunks.
void Pool::set_threaded(bool on)
{
    if (on == threaded_)
        return;
    threaded_ = on;
    open_or_close();
}

// Also moves the limit to where the blocks have it.
void Pool::open_or_close()
{
    void** const top = true_top();
    closed_ = threaded_ || moved_blocks_;
    parked_ = top;
    __atomic_store_n(&top_, closed_ ? first_ : top, __ATOMIC_RELEASE);
    __atomic_store_n(&limit_, closed_ ? first_ : first_ + all_chunks() - 1, __ATOMIC_RELEASE);
}

void Pool::give_back_blocks()
{
    for (; last_block_ >= 0; --last_block_) {
        ASAN_UNPOISON_MEMORY_REGION(blocks_[last_block_], block_size);
        platform::heap_release(blocks_[last_block_]);
        blocks_[last_block_] = nullptr;
    }
    set_true_top(first_);
    open_or_close();
}

} // namespace arrlib
