// What tests share: hooks that collect what the library reports and prints, a heap that refuses, and
// temporary files.
#ifndef ARRLIB_TESTS_SUPPORT_CAPTURE_H
#define ARRLIB_TESTS_SUPPORT_CAPTURE_H

#include "core/pool.h"
#include "platform/platform.h"
#include "runtime/console.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace capture {

using Texts = std::vector<std::string>;

// The texts that one hook was called with while it lives; an inner one hides the outer one.
template <void (*install)(void (*)(char const*))> class Collector {
public:
    Collector() : outer_(std::exchange(innermost, this)) { install(collect); }
    ~Collector()
    {
        innermost = outer_;
        install(outer_ ? collect : nullptr);
    }
    Collector(Collector const&) = delete;
    Collector& operator=(Collector const&) = delete;

    Texts const& all() const { return texts_; }
    // All texts in one.
    std::string text() const
    {
        std::string joined;
        for (std::string const& piece : texts_)
            joined += piece;
        return joined;
    }
    // The same, and forgets them.
    std::string take()
    {
        std::string const joined = text();
        texts_.clear();
        return joined;
    }
    // Puts the innermost collector back after the hook was set by hand.
    static void reinstall() { install(innermost ? collect : nullptr); }

private:
    static void collect(char const* text) { innermost->texts_.emplace_back(text); }

    static inline Collector* innermost = nullptr;
    Collector* outer_;
    Texts texts_;
};

using Reports = Collector<nx_set_error_handler>;
using Warnings = Collector<nx_set_warning_handler>;
using Printed = Collector<nx_set_print_handler>;
using Debugged = Collector<nx_set_debug_handler>;

// The message boxes shown while it lives, each as "title|text".
class Boxes {
public:
    Boxes()
    {
        shown().clear();
        nx_set_message_box_handler([](char const* text, char const* title) { shown().push_back(std::string(title) + "|" + text); });
    }
    ~Boxes() { nx_set_message_box_handler(nullptr); }
    Boxes(Boxes const&) = delete;
    Boxes& operator=(Boxes const&) = delete;

    Texts const& all() const { return shown(); }

private:
    static Texts& shown()
    {
        static Texts texts;
        return texts;
    }
};

// The error flags for the length of a block.
class Flags {
public:
    explicit Flags(int flags) : before_(std::exchange(nx_default_error_flags, flags)) {}
    ~Flags() { nx_default_error_flags = before_; }
    Flags(Flags const&) = delete;
    Flags& operator=(Flags const&) = delete;

private:
    int before_;
};

// The text that `code` lets out under the throwing default handler; empty when it throws nothing.
template <class Code> std::string thrown_by(Code&& code)
{
    Flags const flags(nx_error_throw);
    nx_set_error_handler(nullptr);
    std::string text;
    try {
        code();
    } catch (char* message) {
        text = message;
    }
    arrlib::forget_message();
    Reports::reinstall();
    return text;
}

// The C library's heap, counted, with one allocation refused.
class FailingHeap {
public:
    // Refuses the n-th allocation from now on, counted from 1; 0 refuses none.
    explicit FailingHeap(int refuse = 0)
    {
        state() = {};
        to_refuse() = refuse;
        first_outstanding_ = arrlib::pool.outstanding();
        first_block_ = arrlib::pool.last_block();
        arrlib::platform::set_heap(allocate, release);
    }
    ~FailingHeap() { arrlib::platform::set_heap(nullptr, nullptr); }
    FailingHeap(FailingHeap const&) = delete;
    FailingHeap& operator=(FailingHeap const&) = delete;

    int allocations() const { return state().allocations; }
    // Blocks taken and not yet released.
    int live() const { return state().live; }
    bool refused() const { return state().refused; }
    // Nothing taken since is still held, but for the pool's own blocks, which stay for later use.
    bool balanced() const
    {
        return arrlib::pool.outstanding() == first_outstanding_ && live() == arrlib::pool.last_block() - first_block_;
    }

private:
    struct State {
        int allocations = 0;
        int live = 0;
        bool refused = false;
    };

    static void* allocate(std::size_t size)
    {
        State& now = state();
        if (++now.allocations == to_refuse()) {
            now.refused = true;
            return nullptr;
        }
        // What no machine can serve is refused here, where no sanitizer complains about it.
        constexpr std::size_t largest = SIZE_MAX >> (sizeof(void*) == 4 ? 2 : 24);
        void* const block = size < largest ? std::malloc(size) : nullptr;
        now.live += block != nullptr;
        return block;
    }
    static void release(void* block)
    {
        state().live -= block != nullptr;
        std::free(block);
    }
    static State& state()
    {
        static State now;
        return now;
    }
    static int& to_refuse()
    {
        static int number = 0;
        return number;
    }

    std::int64_t first_outstanding_;
    int first_block_;
};

// Leaves exactly `chunks` free in the pool's blocks for as long as it lives, so that small values
// meet the heap as well.
class ScarcePool {
public:
    explicit ScarcePool(int chunks)
    {
        while (free_chunks() != chunks)
            taken_.push_back(arrlib::pool.allocate(arrlib::Pool::largest_small));
    }
    ~ScarcePool()
    {
        for (void* chunk : taken_)
            arrlib::pool.release(chunk, arrlib::Pool::largest_small);
    }
    ScarcePool(ScarcePool const&) = delete;
    ScarcePool& operator=(ScarcePool const&) = delete;

private:
    static std::int64_t free_chunks()
    {
        constexpr int in_block = static_cast<int>(arrlib::Pool::block_size / arrlib::Pool::chunk_size);
        return (std::int64_t{arrlib::pool.last_block()} + 1) * in_block - arrlib::pool.outstanding();
    }

    std::vector<void*> taken_;
};

// Runs `code` again and again, each time with the next allocation of the heap refused until none is,
// and that with 0, 1, 2 ... chunks left in the pool until the code has enough of them. Whatever is
// refused must be reported once, and nothing may be left taken.
template <class Code> void with_every_allocation_refused(Code&& code)
{
    Flags const flags(nx_default_error_flags);
    bool pool_refused = true;
    for (int chunks = 0; pool_refused && chunks < 128; ++chunks) {
        bool refused = true;
        pool_refused = false;
        for (int n = 1; refused && n < 1000; ++n) {
            ScarcePool const pool(chunks);
            Reports const reports;
            FailingHeap const heap(n);
            code();
            refused = heap.refused();
            if (refused && !reports.all().empty() && reports.all().front() == "FS:Out of memory!")
                pool_refused = true;
            else
                EXPECT_EQ(reports.all(), refused ? Texts{"Out of memory!"} : Texts{}) << "allocation " << n << ", chunks " << chunks;
            EXPECT_LE(reports.all().size(), 1u) << "allocation " << n << ", chunks " << chunks;
            EXPECT_TRUE(heap.balanced()) << "allocation " << n << ", chunks " << chunks;
        }
    }
}

// A folder of its own, gone at the end of the block.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        static int made = 0;
        std::string const name = "arrlib-test-" + std::to_string(arrlib::platform::process_id()) + "-" + std::to_string(++made);
        folder_ = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string path(std::string const& name = "") const { return name.empty() ? folder_.string() : (folder_ / name).string(); }
    // Writes the bytes as they are; returns the path.
    std::string write(std::string const& name, std::string const& content) const
    {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }
    std::string read(std::string const& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    // How many files there are.
    std::ptrdiff_t files() const { return std::distance(std::filesystem::directory_iterator(folder_), {}); }

private:
    std::filesystem::path folder_;
};

} // namespace capture

#endif
