// Results whose elements are computed one by one from those of operands, on all cores.
#ifndef ARRLIB_BUILTINS_ELEMENT_MAP_H
#define ARRLIB_BUILTINS_ELEMENT_MAP_H

#include "builtins/args.h"
#include "runtime/workers.h"

namespace arrlib {

// Calls `work(k)` for k from 0 to count - 1. It neither reports nor throws. An element takes a
// microsecond or so.
template <class Work> void for_each_element(int count, Work work)
{
    constexpr std::ptrdiff_t least_per_thread = 128;
    parallel_for(count, least_per_thread, [&work](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t k = from; k < to; ++k)
            work(static_cast<int>(k));
    });
}

// The real value of that shape with elements f(k); x_M after a report.
template <class F> M<double> map_elements(Dims const& shape, F f)
{
    M<double> made = full_result(shape);
    if (shape.count > 0 && has_storage(made))
        for_each_element(shape.count, [to = made.addr(), &f](int k) { to[k] = f(k); });
    return made;
}

} // namespace arrlib

#endif
