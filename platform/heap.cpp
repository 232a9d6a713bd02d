// The heap door, the same on every system.
#include "platform/platform.h"

#include <cstdlib>

namespace arrlib::platform {

namespace {

constinit HeapAllocate allocate_hook = nullptr;
constinit HeapRelease release_hook = nullptr;

} // namespace

void set_heap(HeapAllocate allocate, HeapRelease release)
{
    allocate_hook = allocate;
    release_hook = release;
}

void* heap_allocate(std::size_t size) noexcept
{
    return allocate_hook ? allocate_hook(size) : std::malloc(size);
}

void heap_release(void* block) noexcept
{
    if (release_hook)
        release_hook(block);
    else
        std::free(block);
}

} // namespace arrlib::platform
