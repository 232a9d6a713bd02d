// The multi-thread switch and the three locks that are taken while it is on.
#ifndef ARRLIB_RUNTIME_LOCKS_H
#define ARRLIB_RUNTIME_LOCKS_H

#include "core/api.h"

namespace arrlib {

// Reads an aligned int or pointer that another thread may write, where the read orders nothing: an
// atomic operation would keep the compiler from holding anything in registers around it, in every
// subscript of every loop. The thread sanitizer is told.
template <class T> T load_shared(T const& shared)
{
#if defined(__SANITIZE_THREAD__)
    return __atomic_load_n(&shared, __ATOMIC_ACQUIRE);
#else
    return shared;
#endif
}

// 0 until nx_set_MT or par_run turns it on. Read through multi_threaded().
ARRLIB_API extern int multi_thread_switch;

inline bool multi_threaded()
{
    return load_shared(multi_thread_switch) != 0;
}

enum class Lock { files = 0, random = 1, pool = 2 };

// Holds one of the locks for a block, if the switch is on when the block is entered.
// Locks are taken one at a time, never nested.
class LockGuard {
public:
    explicit LockGuard(Lock lock) noexcept : lock_(lock), held_(multi_threaded())
    {
        if (ARRLIB_UNLIKELY(held_))
            take(lock);
    }
    ~LockGuard()
    {
        if (ARRLIB_UNLIKELY(held_))
            release(lock_);
    }
    LockGuard(LockGuard const&) = delete;
    LockGuard& operator=(LockGuard const&) = delete;

private:
    ARRLIB_COLD static void take(Lock lock) noexcept;
    ARRLIB_COLD static void release(Lock lock) noexcept;

    Lock lock_;
    bool held_;
};

} // namespace arrlib

#endif
