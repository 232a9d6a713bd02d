// Results whose elements are computed at the end of the statement they are part of.
#ifndef ARRLIB_CORE_DUE_H
#define ARRLIB_CORE_DUE_H

#include "core/api.h"

namespace arrlib {

// Computes the elements that are due, on the thread that made them so, and is null again after that. Null while
// there are none: set by the engine (ops/chain.h).
ARRLIB_API extern void (*elements_due)() noexcept;

ARRLIB_API ARRLIB_COLD void compute_due_elements() noexcept;

// For whoever is about to look at elements, or to let others do so.
inline void compute_due()
{
    if (ARRLIB_UNLIKELY(elements_due != nullptr))
        compute_due_elements();
}

// The same, and gives back where the elements are. Told to be pure: all that it changes are elements that nobody
// can have read without it, so that loops over x.addr()[k] need not ask each time.
ARRLIB_API ARRLIB_COLD __attribute__((pure)) void* computed(void* elements) noexcept;

} // namespace arrlib

#endif
