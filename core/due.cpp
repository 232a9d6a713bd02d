#include "core/due.h"

namespace arrlib {

void (*elements_due)() noexcept = nullptr;

void compute_due_elements() noexcept
{
    if (elements_due)
        elements_due();
}

void* computed(void* elements) noexcept
{
    compute_due_elements();
    return elements;
}

} // namespace arrlib
