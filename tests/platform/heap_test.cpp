#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstring>

#if !defined(__SANITIZE_ADDRESS__)

using arrlib::platform::heap_allocate;
using arrlib::platform::heap_release;

namespace {

constexpr std::size_t mib = std::size_t{1} << 20;

// The pages of a large block that was freed serve the next one of about its size, and no other.
TEST(Heap, KeepsLargeBlocksForTheNextOfTheirSize)
{
    void* const first = heap_allocate(40 * mib);
    std::memset(first, 1, 40 * mib);
    heap_release(first);
    void* const small = heap_allocate(8 * mib);
    void* const half = heap_allocate(20 * mib);
    void* const larger = heap_allocate(60 * mib);
    EXPECT_NE(small, first);
    EXPECT_NE(half, first);
    EXPECT_NE(larger, first);
    void* const again = heap_allocate(36 * mib);
    EXPECT_EQ(again, first);
    for (void* block : {small, half, larger, again})
        heap_release(block);
}

// More than is kept goes back; every block stays usable all the while.
TEST(Heap, KeepsNoMoreThanItsShare)
{
    for (int round = 0; round < 3; ++round) {
        void* blocks[8];
        for (void*& block : blocks) {
            block = heap_allocate((33 + static_cast<std::size_t>(round)) * mib);
            ASSERT_NE(block, nullptr);
            static_cast<char*>(block)[33 * mib - 1] = 'x';
        }
        for (void* block : blocks)
            heap_release(block);
    }
    void* const huge = heap_allocate(300 * mib);
    heap_release(huge);
}

// Blocks of sizes that are no longer asked for make room: the pages of the last one still bear what was written.
TEST(Heap, KeepsTheLastBlocksNotTheFirst)
{
    for (std::size_t size = 1; size <= 12; ++size)
        heap_release(heap_allocate(size * mib));
    for (int round = 0; round < 12; ++round) {
        auto* const block = static_cast<char*>(heap_allocate(80 * mib));
        ASSERT_NE(block, nullptr);
        if (round > 0) {
            EXPECT_EQ(block[79 * mib], 'x') << round;
        }
        block[79 * mib] = 'x';
        heap_release(block);
    }
}

} // namespace

#endif
