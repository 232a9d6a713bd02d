// How built-ins with several results hand them out.
#ifndef ARRLIB_BUILTINS_RESULTS_H
#define ARRLIB_BUILTINS_RESULTS_H

#include "builtins/args.h"

#include <array>
#include <cstddef>
#include <utility>

namespace arrlib {

// The results of one call, in the order of its outputs. A call without i_o, and one with a single
// output, may ask for more than it hands out.
template <std::size_t count> using Results = std::array<M<double>, count>;

template <std::size_t... k> Results<sizeof...(k)> make_nothing(std::index_sequence<k...>)
{
    return {((void)k, x_M)...};
}
// What there is after a report.
template <std::size_t count> Results<count> nothing()
{
    return make_nothing(std::make_index_sequence<count>());
}

// False when the storage of a result could not be had, which has been reported.
template <std::size_t count> bool all_have_storage(Results<count> const& results)
{
    for (M<double> const& one : results)
        if (!has_storage(one))
            return false;
    return true;
}

// A result, or what there is after a report when its storage could not be had.
inline M<double> stored_or_nothing(M<double> made)
{
    return has_storage(made) ? made : x_M;
}

// Stores the first results in the outputs; returns the first one.
template <std::size_t count, class... Outputs> M<double> hand_out(Results<count> const& results, Outputs... outputs)
{
    static_assert(sizeof...(Outputs) <= count);
    std::size_t k = 0;
    ((outputs = results[k++]), ...);
    return results[0];
}

} // namespace arrlib

#endif
