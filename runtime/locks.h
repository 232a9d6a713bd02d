// The multi-thread switch and the three locks that are taken while it is on.
#ifndef ARRLIB_RUNTIME_LOCKS_H
#define ARRLIB_RUNTIME_LOCKS_H

#include "core/api.h"

namespace arrlib {

// 0 until nx_set_MT or par_run turns it on. Read through multi_threaded().
ARRLIB_API extern int multi_thread_switch;

inline bool multi_threaded()
{
    return __atomic_load_n(&multi_thread_switch, __ATOMIC_RELAXED) != 0;
}

enum class Lock { files = 0, random = 1, pool = 2 };

// Holds one of the locks for a block, if the switch is on when the block is entered.
// Locks are taken one at a time, never nested.
class LockGuard {
public:
    explicit LockGuard(Lock lock) noexcept;
    ~LockGuard();
    LockGuard(LockGuard const&) = delete;
    LockGuard& operator=(LockGuard const&) = delete;

private:
    Lock lock_;
    bool held_;
};

} // namespace arrlib

#endif
