// Prime numbers below 2^53, where every integer is a double of its own.
#ifndef ARRLIB_BUILTINS_PRIMES_H
#define ARRLIB_BUILTINS_PRIMES_H

#include "core/heap_array.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace arrlib {

// Above it every double is even.
inline constexpr std::uint64_t largest_odd_double = (std::uint64_t{1} << 53) - 1;

bool is_prime(std::uint64_t n);

// Most distinct and equal prime factors of a number below 2^53.
inline constexpr int most_factors = 53;
// Writes the prime factors of n, 2 <= n < 2^53, in rising order; returns how many there are.
int prime_factors(std::uint64_t n, std::uint64_t* factors);

// Never fewer than there are primes up to n.
double primes_at_most(double n);

// The odd primes from 3 up to a limit, segment by segment.
class PrimeSieve {
public:
    // Odd numbers in a segment, a byte each: as many as the first-level cache holds.
    static constexpr int segment = 1 << 15;

    // Without work memory after a report.
    explicit PrimeSieve(std::uint64_t limit);
    explicit operator bool() const { return flags_ && pattern_ && base_; }

    // Goes to the next segment, to the first one at first; false behind the last one.
    bool next();
    // Calls visit(p) for the primes of the segment, in rising order.
    template <class Visit> void for_each(Visit visit) const
    {
        for (int k = 0; k < count_; k += 8) {
            std::uint64_t eight;
            std::memcpy(&eight, flags_.data() + k, sizeof eight);
            for (; eight; eight &= eight - 1)
                visit(first_ + 2 * static_cast<std::uint64_t>(k + std::countr_zero(eight) / 8));
        }
    }

private:
    // A prime that crosses out, and the number in the segment of its next odd multiple.
    struct Crosser {
        std::uint32_t prime, next;
    };

    void find_base(HeapArray<unsigned char> const& small);
    void start_with_pattern();
    void cross_out();

    std::uint64_t limit_, root_, first_ = 0;
    int count_ = 0;
    HeapArray<unsigned char> flags_, pattern_;
    HeapArray<Crosser> base_;
    std::size_t base_count_ = 0, active_ = 0;
};

} // namespace arrlib

#endif
