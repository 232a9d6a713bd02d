#include "builtins/sort_short.h"

#include <cstdint>
#include <cstring>

namespace arrlib {

namespace {

// Two lists at once, in the vectors that every processor has.
using Numbers = double __attribute__((vector_size(16)));
using Bits = std::int64_t __attribute__((vector_size(16)));
constexpr std::ptrdiff_t width = 2;

Numbers load(double const* from)
{
    Numbers loaded;
    std::memcpy(&loaded, from, sizeof loaded);
    return loaded;
}

void exchange(double* upper, double* lower, Bits wrong)
{
    Bits const a = reinterpret_cast<Bits>(load(upper)), b = reinterpret_cast<Bits>(load(lower));
    Bits const difference = (a ^ b) & wrong, new_a = a ^ difference, new_b = b ^ difference;
    std::memcpy(upper, &new_a, sizeof new_a);
    std::memcpy(lower, &new_b, sizeof new_b);
}

// Puts neighbours in order, list by list.
void order(double* upper, double* lower, double* upper_places, double* lower_places)
{
    for (std::ptrdiff_t l = 0; l < lists_together; l += width) {
        Numbers const a = load(upper + l), b = load(lower + l);
        Bits const wrong = ~(a <= b) & (b == b);
        exchange(upper + l, lower + l, wrong);
        if (upper_places)
            exchange(upper_places + l, lower_places + l, wrong);
    }
}

} // namespace

// Insertion without branches: only neighbours that are in the wrong order change places, so equal ones
// never pass each other.
void sort_lists(double* numbers, double* places, std::ptrdiff_t length)
{
    for (std::ptrdiff_t k = 1; k < length; ++k)
        for (std::ptrdiff_t j = k; j > 0; --j) {
            std::ptrdiff_t const upper = (j - 1) * lists_together, lower = j * lists_together;
            order(numbers + upper, numbers + lower, places ? places + upper : nullptr, places ? places + lower : nullptr);
        }
}

} // namespace arrlib
