// Parallel runs of translated functions.
//
// Safe from several threads while the multi-thread switch is on: the memory pool, the random
// generators, the table of open files, and copying, reading and releasing values that share
// storage. Everything else is for one thread at a time: writing to one and the same matrix object,
// the message buffer and the hooks, the error stack and the variable scope.
#ifndef ARRLIB_RUNTIME_PARALLEL_H
#define ARRLIB_RUNTIME_PARALLEL_H

#include "core/matrix.h"
#include "runtime/locks.h"

// Sets the multi-thread switch and returns the process identifier. While it is 0 no lock is taken.
ARRLIB_API int nx_set_MT(int on);
// Turns the switch on and runs `function` on a thread of its own; its result is discarded, an error
// that it lets out is reported. "par_run: could not start a thread" when there is none to be had.
ARRLIB_API void par_run(M<double> (*function)());
// Waits until every function started by par_run has returned. The switch stays on.
ARRLIB_API void par_sync();

#endif
