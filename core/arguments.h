// Sizes, counts and dimensions out of argument values.
#ifndef ARRLIB_CORE_ARGUMENTS_H
#define ARRLIB_CORE_ARGUMENTS_H

#include "core/dims.h"
#include "core/matrix.h"

#include <climits>
#include <initializer_list>

namespace arrlib {

// Truncated; what does not fit an int becomes the nearest one, NaN becomes 0.
inline int integer_argument(double value)
{
    if (value != value)
        return 0;
    return value >= INT_MAX ? INT_MAX : value <= INT_MIN ? INT_MIN : static_cast<int>(value);
}
// The first element; 0 for an empty argument.
inline int integer_argument(M<double> const& value)
{
    return integer_argument(value[1]);
}

// A list of sizes or counts, one per dimension; dimensions without an entry have 1.
struct SizeList {
    int count = 0;
    int size[max_dims] = {1, 1, 1, 1};

    SizeList() = default;
    explicit SizeList(M<double> const& list) : count(list.size())
    {
        for (int d = 0; d < count && d < max_dims; ++d)
            size[d] = integer_argument(list[d + 1]);
    }
    bool fits() const { return count <= max_dims; }
};

enum class SizesRead { done, empty, reported };
// The sizes that the arguments of `builtin` ask for, as zeros takes them: one argument is n, for n x n,
// or a list of sizes; several are a size each, nop_M among them being left out. Empty when one of them
// is. "%s: expecting scalar argument", "%s: too many dimensions".
SizesRead read_sizes(char const* builtin, std::initializer_list<M<double> const*> arguments, SizeList& sizes);

} // namespace arrlib

#endif
