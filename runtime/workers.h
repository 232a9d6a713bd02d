// A small pool of threads that share the work on large arrays.
#ifndef ARRLIB_RUNTIME_WORKERS_H
#define ARRLIB_RUNTIME_WORKERS_H

#include <cstddef>
#include <type_traits>

namespace arrlib {

// Work on the half-open range [from, to) of something; refers to a callable, does not own it.
class RangeWork {
public:
    template <class F>
        requires std::is_invocable_v<F&, std::ptrdiff_t, std::ptrdiff_t>
    RangeWork(F&& body)
        : body_(const_cast<void*>(static_cast<void const*>(&body))), call_([](void* to, std::ptrdiff_t from, std::ptrdiff_t end) { (*static_cast<std::remove_reference_t<F>*>(to))(from, end); })
    {
    }
    void operator()(std::ptrdiff_t from, std::ptrdiff_t to) const { call_(body_, from, to); }

private:
    void* body_;
    void (*call_)(void*, std::ptrdiff_t, std::ptrdiff_t);
};

// Calls `work` on ranges that make up [0, count), at the same time on as many threads as there are
// processors, when each of them gets at least `least` of it; otherwise once, on all of it. Ranges
// begin at multiples of `least`. The work must not report and must not throw. Always one range inside
// a function started by par_run, inside other work, and while the environment variable
// ARRLIB_THREADS is 1 (a larger number limits the threads).
void parallel_for(std::ptrdiff_t count, std::ptrdiff_t least, RangeWork work);
// How many threads parallel_for may use here and now.
int parallel_width();
// Another limit than the environment's, 0 for the number of processors; returns the one before.
int set_parallel_limit(int threads);

// While one lives on a thread, parallel_for works on that thread alone.
class SerialWork {
public:
    SerialWork();
    ~SerialWork();
    SerialWork(SerialWork const&) = delete;
    SerialWork& operator=(SerialWork const&) = delete;

private:
    bool before_;
};

} // namespace arrlib

#endif
