// Parallel runs of translated functions.
//
// Safe from several threads while the multi-thread switch is on: the memory pool, the random
// generators, the table of open files, and copying, reading and releasing values that share
// storage. A function may also use any file that no other thread uses.
//
// Everything else is for one thread at a time, and nothing looks after it:
// - one and the same matrix object that is written to, ans and TICTOC among them;
// - one file identifier, which two threads would read or write in turns, and the working folder;
// - errors and warnings: there is one message buffer, and the hooks are called on the thread that
//   reports, so two reports at once mix their texts. An error that ends the process ends all threads;
// - frames and levels of functions: nx_error_stack and variables_scope, and so named variables while a
//   debugger watches or nx_error_register is set. Functions on threads of their own leave nx_frame,
//   begin() and end() alone;
// - the argument counts (nargin_val, nargout_val), which feval and every built-in that takes a function
//   by name set during the call;
// - the search path, the display format, pausing, and the hooks and flags themselves: set them before
//   the first par_run. The print hook is called from every thread that prints.
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
