#include "core/pool.h"
#include "core/guarded_buffer.h"

#include "support/capture.h"

#include <cstdint>
#include <cstring>
#include <memory>

using arrlib::Pool;
using capture::Texts;

namespace {

struct OwnPool {
    std::unique_ptr<Pool::Slots> slots = std::make_unique<Pool::Slots>();
    Pool pool{*slots};
};

TEST(Pool, SmallRequestsTakeChunksAndLargeOnesTheHeap)
{
    OwnPool own;
    Pool& pool = own.pool;
    void* const small = pool.allocate(Pool::largest_small);
    EXPECT_EQ(pool.outstanding(), 1);
    void* const large = pool.allocate(Pool::largest_small + 1);
    EXPECT_EQ(pool.outstanding(), 1);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(small) % 8, 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(large) % 8, 0u);
    pool.release(large, Pool::largest_small + 1);
    pool.release(small, Pool::largest_small);
}

TEST(Pool, EmptiesItselfWithItsLastChunkAndStartsAgain)
{
    capture::FailingHeap const heap;
    OwnPool own;
    Pool& pool = own.pool;
    std::vector<void*> taken;
    for (int k = 0; k < 300; ++k)
        taken.push_back(pool.allocate(100));
    EXPECT_EQ(pool.last_block(), 2);
    for (std::size_t k = 1; k < taken.size(); ++k)
        pool.release(taken[k], 100);
    EXPECT_EQ(pool.last_block(), 2);
    pool.release(taken[0], 100);
    EXPECT_EQ(pool.last_block(), -1);
    EXPECT_EQ(heap.live(), 0);
    void* const again = pool.allocate(1);
    EXPECT_EQ(pool.last_block(), 0);
    pool.release(again, 1);
    EXPECT_EQ(heap.live(), 0);
}

// The same with locking: the locks must outlive what the pool does when it empties itself.
TEST(Pool, EmptiesItselfWithTheSwitchOn)
{
    int const before = arrlib::multi_thread_switch;
    arrlib::multi_thread_switch = 1;
    OwnPool own;
    Pool& pool = own.pool;
    for (int round = 0; round < 3; ++round)
        pool.release(pool.allocate(8), 8);
    EXPECT_EQ(pool.last_block(), -1);
    arrlib::multi_thread_switch = before;
}

// A heap whose addresses are 4 mod 8, with the four bytes in front readable as such heaps have them.
void* crooked_allocate(std::size_t size)
{
    char* const block = static_cast<char*>(std::calloc(size + 16, 1));
    return block + 12;
}
void crooked_release(void* block)
{
    if (block)
        std::free(static_cast<char*>(block) - 12);
}

TEST(Pool, MovesBlocksToWholeDoubles)
{
    OwnPool own;
    Pool& pool = own.pool;
    arrlib::platform::set_heap(crooked_allocate, crooked_release);
    for (std::size_t size : {std::size_t{1}, Pool::largest_small, Pool::largest_small + 1, std::size_t{1023}, std::size_t{1024}, std::size_t{5000}}) {
        void* const first = pool.allocate(size);
        void* const second = pool.allocate(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 8, 0u) << size;
        // Arrays begin with a line of the cache instead.
        if (size < 1024)
            EXPECT_EQ(std::memcmp(static_cast<char*>(first) - 4, "ALGN", 4), 0) << size;
        else
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 64, 0u) << size;
        std::memset(first, 'x', size);
        std::memset(second, 'y', size);
        EXPECT_EQ(static_cast<char*>(first)[size - 1], 'x') << size;
        pool.release(first, size);
        pool.release(second, size);
        EXPECT_EQ(pool.outstanding(), 0);
        EXPECT_EQ(pool.last_block(), -1);
    }
    arrlib::platform::set_heap(nullptr, nullptr);
}

TEST(Pool, ReportsWhatItCannotHaveAndGoesOn)
{
    capture::Flags const flags(nx_default_error_flags);
    OwnPool own;
    Pool& pool = own.pool;
    {
        capture::Reports const reports;
        capture::FailingHeap const heap(1);
        EXPECT_EQ(pool.allocate(5000), nullptr);
        EXPECT_EQ(reports.all(), Texts{"Out of memory!"});
    }
    {
        capture::Reports const reports;
        capture::FailingHeap const heap(1);
        EXPECT_EQ(pool.allocate(50), nullptr);
        EXPECT_EQ(reports.all(), Texts{"FS:Out of memory!"});
        // The report was marked as fatal: a box only, and the end of the process.
        EXPECT_EQ(nx_default_error_flags & (nx_error_console | nx_error_throw | nx_error_message_box | nx_error_exit), nx_error_message_box | nx_error_exit);
    }
    EXPECT_EQ(pool.outstanding(), 0);
    pool.release(pool.allocate(50), 50);
    {
        capture::Reports const reports;
        EXPECT_EQ(pool.allocate(SIZE_MAX), nullptr);
        EXPECT_EQ(reports.all(), Texts{"Out of memory!"});
    }
}

TEST(Pool, HasAThousandAndTwentyFourBlocks)
{
    capture::Flags const flags(nx_default_error_flags);
    capture::Reports const reports;
    OwnPool own;
    Pool* const pool = &own.pool;
    std::vector<void*> taken;
    for (int k = 0; k < Pool::max_blocks * 128; ++k)
        taken.push_back(pool->allocate(64));
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(pool->allocate(64), nullptr);
    EXPECT_EQ(reports.all(), Texts{"FS:Out of chunks"});
    for (void* block : taken)
        pool->release(block, 64);
    EXPECT_EQ(pool->last_block(), -1);
}

TEST(GuardedBuffer, WarnsWhenItWasOverfilled)
{
    capture::Warnings const warnings;
    {
        arrlib::GuardedBuffer within(4);
        within.fill = within.data() + 4;
    }
    EXPECT_TRUE(warnings.all().empty());
    {
        arrlib::GuardedBuffer beyond(4);
        beyond.fill = beyond.data() + 5;
    }
    EXPECT_EQ(warnings.all(), Texts{"possible memory overwrite"});
}

} // namespace
