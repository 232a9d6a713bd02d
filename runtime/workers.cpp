#include "runtime/workers.h"

#include "core/due.h"
#include "platform/platform.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <thread>

namespace arrlib {

namespace {

// A worker that has just finished looks out for more work before it sleeps: statements follow each
// other closely, and waking a thread costs more than adding a hundred thousand numbers.
constexpr int looks_before_sleep = 4000;
// So that a thread that starts late, or is slowed down by others, leaves its share to the rest.
constexpr int pieces_per_thread = 4;
constexpr int most_threads = 64;

void pause_briefly()
{
#if defined(__i386__) || defined(__x86_64__)
    __builtin_ia32_pause();
#else
    std::this_thread::yield();
#endif
}

// The work at hand. A worker may join while it is open; whoever gave it closes it when no piece is
// left, and waits for those who joined only, not for sleepers.
struct Job {
    RangeWork const* work = nullptr;
    std::ptrdiff_t count = 0, piece = 0;
    std::atomic<std::ptrdiff_t> next{0};

    void run()
    {
        for (;;) {
            std::ptrdiff_t const from = next.fetch_add(piece, std::memory_order_relaxed);
            if (from >= count)
                return;
            (*work)(from, std::min(from + piece, count));
        }
    }
};

constexpr unsigned closed = 0x80000000u;

constinit Job job;
// The mark `closed`, and the number of workers that have joined.
constinit std::atomic<unsigned> joined{closed};
// Counts jobs; sleeping workers wait for it to change.
constinit std::atomic<unsigned> jobs{0};
// Set while somebody gives work.
constinit std::atomic<bool> giving{false};
constinit int workers = 0;
// Most threads of a job; not positive while the environment has not been read.
constinit std::atomic<int> limit{0};

constinit thread_local bool serial = false;

bool join()
{
    unsigned seen = joined.load(std::memory_order_acquire);
    while (!(seen & closed))
        if (joined.compare_exchange_weak(seen, seen + 1, std::memory_order_acquire))
            return true;
    return false;
}

void serve()
{
    platform::CrashStack const stack_for_crashes;
    SerialWork const no_further_work;
    for (unsigned seen = 0;;) {
        unsigned now = jobs.load(std::memory_order_acquire);
        for (int look = 0; now == seen && look < looks_before_sleep; ++look) {
            pause_briefly();
            now = jobs.load(std::memory_order_acquire);
        }
        if (now == seen) {
            jobs.wait(seen, std::memory_order_acquire);
            continue;
        }
        seen = now;
        if (join()) {
            job.run();
            joined.fetch_sub(1, std::memory_order_release);
        }
    }
}

// In the child of a fork nobody serves, and the parent's job is not the child's.
void forget_workers()
{
    workers = 0;
    joined.store(closed, std::memory_order_relaxed);
    giving.store(false, std::memory_order_relaxed);
}

void have_workers(int wanted)
{
    static bool const told = (platform::call_after_fork(forget_workers), true);
    static_cast<void>(told);
    while (workers < wanted) {
        try {
            std::thread(serve).detach();
        } catch (std::exception const&) {
            // Neither a thread nor memory for one: the work is done on fewer.
            return;
        }
        ++workers;
    }
}

int default_limit()
{
    char const* const wish = platform::environment("ARRLIB_THREADS");
    int const threads = wish ? std::atoi(wish) : 0;
    return std::clamp(threads > 0 ? threads : platform::processor_count(), 1, most_threads);
}

int thread_limit()
{
    int threads = limit.load(std::memory_order_relaxed);
    if (threads <= 0) {
        threads = default_limit();
        limit.store(threads, std::memory_order_relaxed);
    }
    return threads;
}

} // namespace

SerialWork::SerialWork() : before_(serial)
{
    serial = true;
}

SerialWork::~SerialWork()
{
    serial = before_;
}

int parallel_width()
{
    return serial ? 1 : thread_limit();
}

int set_parallel_limit(int threads)
{
    int const before = thread_limit();
    limit.store(std::min(threads, most_threads), std::memory_order_relaxed);
    return before;
}

void parallel_for(std::ptrdiff_t count, std::ptrdiff_t least, RangeWork work)
{
    if (count <= 0)
        return;
    // What the work reads is not to be computed by several threads at once.
    compute_due();
    int const width = count < 2 * least ? 1 : parallel_width();
    if (width == 1 || giving.exchange(true, std::memory_order_acquire)) {
        work(0, count);
        return;
    }
    have_workers(width - 1);
    std::ptrdiff_t const wanted = (count - 1) / (std::ptrdiff_t{width} * pieces_per_thread) + 1;
    job.work = &work;
    job.count = count;
    job.piece = (wanted - 1) / least * least + least;
    job.next.store(0, std::memory_order_relaxed);
    joined.store(0, std::memory_order_release);
    jobs.fetch_add(1, std::memory_order_release);
    jobs.notify_all();
    {
        SerialWork const no_further_work;
        job.run();
    }
    joined.fetch_or(closed, std::memory_order_acquire);
    while (joined.load(std::memory_order_acquire) != closed)
        pause_briefly();
    giving.store(false, std::memory_order_release);
}

} // namespace arrlib
