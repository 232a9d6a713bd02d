// The heap door, the same on every system.
#include "platform/platform.h"

#include <cstdlib>

namespace arrlib::platform {

namespace {

constinit HeapAllocate allocate_hook = nullptr;
constinit HeapRelease release_hook = nullptr;

// Blocks from this size on are asked for in large pages: the first write to every small page of a
// large result would cost more than computing it.
constexpr std::size_t large_block = std::size_t{4} << 20;

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
    void* const block = std::malloc(size);
    if (block && size >= large_block)
        advise_large_pages(block, size);
    return block;
}

void heap_release(void* block) noexcept
{
    if (release_hook)
        release_hook(block);
    else
        std::free(block);
}

} // namespace arrlib::platform
