// Stable sorting of numbers, alone or with their positions, in the time of a few passes over them.
#ifndef ARRLIB_BUILTINS_SORT_KEYS_H
#define ARRLIB_BUILTINS_SORT_KEYS_H

#include <bit>
#include <cstddef>
#include <cstdint>

namespace arrlib {

// An integer for each number, in the order of the numbers: both zeros have the same one, every NaN the
// largest.
using OrderKey = std::uint64_t;

inline constexpr OrderKey nan_key = ~OrderKey{0};
inline constexpr OrderKey zero_key = OrderKey{1} << 63;

inline OrderKey order_key(double number)
{
    OrderKey const bits = std::bit_cast<OrderKey>(number + 0.0);
    OrderKey const key = bits ^ (static_cast<OrderKey>(static_cast<std::int64_t>(bits) >> 63) | zero_key);
    return number == number ? key : nan_key;
}
// The number of a key that is neither nan_key nor zero_key.
inline double number_of_key(OrderKey key)
{
    return std::bit_cast<double>(key & zero_key ? key ^ zero_key : ~key);
}

// A key and where it stood.
struct Keyed {
    OrderKey key;
    int position;
};

// Sort upward, equal ones staying in their order; NaN is larger than every number. `spare` has room for
// as many. Large arrays are shared between threads.
void sort_stable(double* numbers, double* spare, std::ptrdiff_t count);
void sort_stable(Keyed* items, Keyed* spare, std::ptrdiff_t count);

} // namespace arrlib

#endif
