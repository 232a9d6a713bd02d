// Sorting many short lists side by side.
#ifndef ARRLIB_BUILTINS_SORT_SHORT_H
#define ARRLIB_BUILTINS_SORT_SHORT_H

#include <cstddef>

namespace arrlib {

// Lists sorted together, and the longest that this is good for: the work grows with the square.
inline constexpr std::ptrdiff_t lists_together = 8;
inline constexpr std::ptrdiff_t longest_short = 12;

// Sorts `lists_together` lists of `length` numbers: element k of list l is numbers[8 k + l]. Stable, NaN
// last. `places`, when not null, is rearranged in the same way.
void sort_lists(double* numbers, double* places, std::ptrdiff_t length);

} // namespace arrlib

#endif
