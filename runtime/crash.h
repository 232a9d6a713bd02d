// Reports of crashes and of errors that nobody caught.
#ifndef ARRLIB_RUNTIME_CRASH_H
#define ARRLIB_RUNTIME_CRASH_H

#include <cstdint>

namespace arrlib {

void install_crash_reports();
// The name of a system exception code, or "Unknown exception code".
char const* exception_name(std::uint32_t code);

} // namespace arrlib

#endif
