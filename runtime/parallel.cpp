#include "runtime/parallel.h"

#include "core/due.h"
#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>

namespace arrlib {

int multi_thread_switch = 0;

namespace {

// Made before any code runs and never destroyed, so the pool may empty itself at any time.
constinit std::mutex locks[3];
constinit std::atomic<int> running_threads{0};

void run_on_thread(M<double> (*function)())
{
    platform::CrashStack const stack_for_crashes;
    // The program's own threads are the ones that keep the processors busy.
    SerialWork const on_this_thread;
    try {
        function();
    } catch (...) {
        // A host may throw what it likes from its hook; only errors are known here.
        if (!error_in_flight())
            throw;
        error_lasterr();
    }
    running_threads.fetch_sub(1, std::memory_order_release);
}

} // namespace

void LockGuard::take(Lock lock) noexcept
{
    locks[static_cast<int>(lock)].lock();
}

void LockGuard::release(Lock lock) noexcept
{
    locks[static_cast<int>(lock)].unlock();
}

} // namespace arrlib

using namespace arrlib;

int nx_set_MT(int on)
{
    compute_due();
    pool.set_threaded(on != 0);
    __atomic_store_n(&multi_thread_switch, on, __ATOMIC_RELEASE);
    return platform::process_id();
}

void par_run(M<double> (*function)())
{
    nx_set_MT(1);
    running_threads.fetch_add(1, std::memory_order_relaxed);
    try {
        std::thread(run_on_thread, function).detach();
    } catch (std::system_error const&) {
        running_threads.fetch_sub(1, std::memory_order_relaxed);
        error("par_run: could not start a thread");
    }
}

void par_sync()
{
    while (running_threads.load(std::memory_order_acquire) != 0)
        platform::sleep_milliseconds(50);
}
