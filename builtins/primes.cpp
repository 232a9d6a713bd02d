#include "builtins/primes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace arrlib {

namespace {

constexpr std::array<std::uint8_t, 18> small_primes{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53, 59, 61};
// Below it, what no small prime divides is prime.
constexpr std::uint64_t trial_limit = 67 * 67;

// --- arithmetic modulo an odd number -------------------------------------------------------------

// The upper 64 bits of a product.
std::uint64_t upper_product(std::uint64_t a, std::uint64_t b)
{
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    return static_cast<std::uint64_t>(static_cast<Wide>(a) * b >> 64);
#else
    std::uint64_t const half = 0xFFFFFFFF, a0 = a & half, a1 = a >> 32, b0 = b & half, b1 = b >> 32;
    std::uint64_t const middle = a1 * b0, other = a0 * b1 + (a0 * b0 >> 32) + (middle & half);
    return a1 * b1 + (middle >> 32) + (other >> 32);
#endif
}

// Residues x as x 2^64 mod n, after Montgomery: a product costs no division. n is odd and below 2^53.
class Residues {
public:
    explicit Residues(std::uint64_t n) : n_(n), one_((0 - n) % n)
    {
        // Newton's iteration: 3 correct bits, then 6, 12, 24, 48, 96.
        inverse_ = n;
        for (int k = 0; k < 5; ++k)
            inverse_ *= 2 - n * inverse_;
    }

    std::uint64_t one() const { return one_; }
    std::uint64_t minus_one() const { return n_ - one_; }
    // Of a number below 2^11.
    std::uint64_t of(std::uint64_t small) const { return small * one_ % n_; }
    std::uint64_t product(std::uint64_t a, std::uint64_t b) const
    {
        std::uint64_t const high = upper_product(a, b), taken = upper_product(a * b * inverse_, n_);
        return high >= taken ? high - taken : high + n_ - taken;
    }
    std::uint64_t power(std::uint64_t base, std::uint64_t exponent) const
    {
        std::uint64_t result = one_;
        for (; exponent; exponent >>= 1) {
            if (exponent & 1)
                result = product(result, base);
            base = product(base, base);
        }
        return result;
    }

private:
    std::uint64_t n_, one_, inverse_;
};

// --- primality -----------------------------------------------------------------------------------

// Below `limit` no composite number passes for the first `bases` primes (Jaeschke 1993; Jiang and Deng
// 2014).
struct Sufficient {
    std::uint64_t limit;
    std::size_t bases;
};
constexpr Sufficient sufficient[] = {
    {2047, 1}, {1373653, 2}, {25326001, 3}, {3215031751, 4}, {2152302898747, 5}, {3474749660383, 6}, {341550071728321, 7}, {UINT64_MAX, 9},
};

bool passes(Residues const& residues, std::uint64_t base, std::uint64_t odd, int twos)
{
    std::uint64_t x = residues.power(residues.of(base), odd);
    if (x == residues.one() || x == residues.minus_one())
        return true;
    for (int k = 1; k < twos; ++k) {
        x = residues.product(x, x);
        if (x == residues.minus_one())
            return true;
    }
    return false;
}

// --- factors -------------------------------------------------------------------------------------

// A divisor of a composite odd number; n itself when this constant finds none.
std::uint64_t divisor_found(Residues const& residues, std::uint64_t n, std::uint64_t constant)
{
    // Differences are multiplied up, and their common divisors with n looked for once in so many steps.
    constexpr int batch = 64;
    auto const step = [&](std::uint64_t x) {
        std::uint64_t const next = residues.product(x, x) + constant;
        return next >= n ? next - n : next;
    };
    auto const difference = [](std::uint64_t a, std::uint64_t b) { return a > b ? a - b : b - a; };
    std::uint64_t x = 2, fixed = x, start = x, product = residues.one(), divisor = 1;
    for (std::uint64_t length = 1; divisor == 1; length *= 2) {
        fixed = x;
        for (std::uint64_t k = 0; k < length; ++k)
            x = step(x);
        for (std::uint64_t k = 0; k < length && divisor == 1; k += batch) {
            start = x;
            for (std::uint64_t i = 0, steps = std::min<std::uint64_t>(batch, length - k); i < steps; ++i) {
                x = step(x);
                product = residues.product(product, difference(x, fixed));
            }
            divisor = std::gcd(product, n);
        }
    }
    // Several divisors in one batch: step by step once more.
    if (divisor == n)
        do {
            start = step(start);
            divisor = std::gcd(difference(start, fixed), n);
        } while (divisor == 1);
    return divisor;
}

std::uint64_t divisor_of(std::uint64_t n)
{
    Residues const residues(n);
    for (std::uint64_t constant = 1;; ++constant)
        if (std::uint64_t const divisor = divisor_found(residues, n, constant); divisor != n)
            return divisor;
}

std::uint64_t* write_factors(std::uint64_t n, std::uint64_t* to)
{
    if (is_prime(n)) {
        *to = n;
        return to + 1;
    }
    std::uint64_t const divisor = divisor_of(n);
    return write_factors(n / divisor, write_factors(divisor, to));
}

} // namespace

bool is_prime(std::uint64_t n)
{
    if (n < 2)
        return false;
    for (std::uint64_t const p : small_primes)
        if (n % p == 0)
            return n == p;
    if (n < trial_limit)
        return true;
    Residues const residues(n);
    int const twos = std::countr_zero(n - 1);
    Sufficient const* row = sufficient;
    while (n >= row->limit)
        ++row;
    return std::all_of(small_primes.begin(), small_primes.begin() + row->bases, [&](std::uint64_t base) { return passes(residues, base, (n - 1) >> twos, twos); });
}

int prime_factors(std::uint64_t n, std::uint64_t* factors)
{
    std::uint64_t* end = factors;
    for (std::uint64_t const p : small_primes)
        for (; n % p == 0; n /= p)
            *end++ = p;
    if (n > 1)
        end = write_factors(n, end);
    std::sort(factors, end);
    return static_cast<int>(end - factors);
}

double primes_at_most(double n)
{
    // P. Dusart, Autour de la fonction qui compte le nombre de nombres premiers, 1998.
    double const logarithm = std::log(n);
    return n < 2 ? 0 : n / logarithm * (1 + 1.2762 / logarithm);
}

// --- the sieve -----------------------------------------------------------------------------------

namespace {

// The multiples of these are crossed out in a pattern that repeats; the others cross out one by one.
constexpr std::array<std::uint32_t, 5> pattern_primes{3, 5, 7, 11, 13};
constexpr std::size_t pattern_length = 3 * 5 * 7 * 11 * 13;
constexpr std::uint32_t first_odd = 3;

// The place of an odd number among the odd numbers from 3 on.
constexpr std::size_t place_of(std::uint64_t odd)
{
    return static_cast<std::size_t>((odd - first_odd) / 2);
}

// Crosses out every p-th flag from `k` on; returns how far behind the end the next one is.
std::size_t cross(unsigned char* flags, std::size_t count, std::size_t k, std::size_t p)
{
    for (; k < count; k += p)
        flags[k] = 0;
    return k - count;
}

std::uint64_t square_root(std::uint64_t n)
{
    auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(n)));
    while (root * root > n)
        --root;
    while ((root + 1) * (root + 1) <= n)
        ++root;
    return root;
}

} // namespace

PrimeSieve::PrimeSieve(std::uint64_t limit)
    : limit_(limit), root_(square_root(limit)), flags_(segment), pattern_(pattern_length), base_(static_cast<std::size_t>(primes_at_most(static_cast<double>(root_))) + 1)
{
    // Of the odd numbers up to the root of the limit.
    HeapArray<unsigned char> const small(place_of(std::max<std::uint64_t>(root_ | 1, first_odd)) + 1);
    if (!small)
        base_ = {};
    if (!*this)
        return;
    find_base(small);
    std::fill(pattern_.begin(), pattern_.end(), static_cast<unsigned char>(1));
    for (std::uint32_t const p : pattern_primes)
        cross(pattern_.data(), pattern_.size(), place_of(p), p);
}

void PrimeSieve::find_base(HeapArray<unsigned char> const& small)
{
    std::fill(small.begin(), small.end(), static_cast<unsigned char>(1));
    for (std::uint32_t p = first_odd; p <= root_; p += 2) {
        if (!small[place_of(p)])
            continue;
        if (p > pattern_primes.back())
            base_[base_count_++] = {p, 0};
        if (std::uint64_t const square = std::uint64_t{p} * p; square <= root_)
            cross(small.data(), small.size(), place_of(square), p);
    }
}

bool PrimeSieve::next()
{
    first_ = first_ == 0 ? first_odd : first_ + 2 * segment;
    if (first_ > limit_)
        return false;
    count_ = static_cast<int>(std::min<std::uint64_t>(segment, (limit_ - first_) / 2 + 1));
    start_with_pattern();
    cross_out();
    std::fill(flags_.begin() + count_, flags_.end(), static_cast<unsigned char>(0));
    return true;
}

void PrimeSieve::start_with_pattern()
{
    std::size_t from = place_of(first_) % pattern_length;
    for (std::size_t to = 0; to < segment;) {
        std::size_t const piece = std::min<std::size_t>(pattern_length - from, segment - to);
        std::memcpy(flags_.data() + to, pattern_.data() + from, piece);
        to += piece;
        from = 0;
    }
    if (first_ == first_odd)
        for (std::uint32_t const p : pattern_primes)
            flags_[place_of(p)] = 1;
}

void PrimeSieve::cross_out()
{
    // A prime begins at its square: smaller multiples have smaller factors.
    for (; active_ < base_count_; ++active_) {
        Crosser& crosser = base_[active_];
        std::uint64_t const square = static_cast<std::uint64_t>(crosser.prime) * crosser.prime;
        if (square >= first_ + 2 * segment)
            break;
        crosser.next = static_cast<std::uint32_t>((square - first_) / 2);
    }
    for (std::size_t k = 0; k < active_; ++k)
        base_[k].next = static_cast<std::uint32_t>(cross(flags_.data(), segment, base_[k].next, base_[k].prime));
}

} // namespace arrlib
