// The order of sparse entries.
#include "core/sparse_build.h"

#include <algorithm>
#include <bit>

namespace arrlib {

namespace {

// Below this many keys comparing is faster than counting.
constexpr std::size_t few_keys = 512;
constexpr int position_shift = 32;
// Larger digits would put more streams to write to than caches keep open.
constexpr int largest_digit = 11;

// One stable pass over a digit of the keys. False when all keys have the same digit: nothing was
// written then.
bool counting_pass(EntryKey const* from, EntryKey* to, std::size_t count, int shift, int digit_bits)
{
    std::uint32_t starts[1u << largest_digit] = {};
    EntryKey const mask = (EntryKey{1} << digit_bits) - 1;
    for (std::size_t k = 0; k < count; ++k)
        ++starts[(from[k] >> shift) & mask];
    if (starts[(from[0] >> shift) & mask] == count)
        return false;
    std::uint32_t start = 0;
    for (EntryKey digit = 0; digit <= mask; ++digit) {
        std::uint32_t const here = starts[digit];
        starts[digit] = start;
        start += here;
    }
    for (std::size_t k = 0; k < count; ++k)
        to[starts[(from[k] >> shift) & mask]++] = from[k];
    return true;
}

} // namespace

bool sort_keys(HeapArray<EntryKey>& keys)
{
    if (std::is_sorted(keys.begin(), keys.end()))
        return true;
    if (keys.size() < few_keys) {
        std::sort(keys.begin(), keys.end());
        return true;
    }
    HeapArray<EntryKey> spare(keys.size());
    if (!spare)
        return false;
    EntryKey used = 0;
    for (EntryKey const key : keys)
        used |= key;
    int const bits = static_cast<int>(std::bit_width(used >> position_shift));
    int const passes = (bits + largest_digit - 1) / largest_digit;
    int const digit_bits = (bits + passes - 1) / passes;
    for (int pass = 0; pass < passes; ++pass)
        if (counting_pass(keys.data(), spare.data(), keys.size(), position_shift + pass * digit_bits, digit_bits))
            std::swap(keys, spare);
    return true;
}

} // namespace arrlib
