// The way out of an extension module for errors that may not return to it.
#ifndef ARRLIB_BRIDGE_MODULE_EXIT_H
#define ARRLIB_BRIDGE_MODULE_EXIT_H

namespace arrlib {

// After a report: ends the innermost call of a module on this thread, which goes on behind it with
// empty outputs; outside a module, the process.
[[noreturn]] void leave_module();

} // namespace arrlib

#endif
