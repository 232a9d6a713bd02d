// The random generators: two uniform ones, and a normal one on a generator of its own. Draws in bulk
// give the very numbers that single draws give, and leave the same state behind.
#ifndef ARRLIB_OPS_RANDOM_GENERATOR_H
#define ARRLIB_OPS_RANDOM_GENERATOR_H

#include <bit>
#include <cstdint>

namespace arrlib {

// A lagged difference with borrow of 32 numbers in [0,1), whose mantissas are mixed with a shift
// register. The numbers are multiples of 2^-53 and are kept as those multiples: all steps are exact.
// A seed sets the register only. The exponents are those of the one lagged sequence, so that streams
// of different seeds correlate, and products of a few dozen successive draws show the lags.
class RandState {
public:
    // Length of the exchanged vector: the numbers, then borrow, index and shift register scaled
    // down to look like small numbers.
    static constexpr int vector_size = 35;

    constexpr RandState() { seed(0); }
    // In [0,1).
    double draw();
    void draw(double* to, int count);
    constexpr void seed(double value);
    void store(double* vector) const;
    // A vector that store() did not give is made into a state: numbers outside [0,1) become 0, others
    // lose what lies below 2^-53, and the index is wrapped.
    void load(double const* vector);

private:
    static constexpr std::uint32_t numbers = 32;

    std::uint64_t u_[numbers] = {};
    std::uint32_t index_ = 0;
    std::uint32_t borrow_ = 0;
    std::uint32_t shift_ = 0;
};

// A multiplicative generator of one number, in [1,2147483646].
class RandSeed {
public:
    constexpr RandSeed() { set(0); }
    // In (0,1).
    double draw();
    void draw(double* to, int count);
    // By the polar method; the second number of each pair is dropped.
    double draw_normal();
    void draw_normal(double* to, int count);
    constexpr void set(double value);
    // What set() was given, modulo 2^32, when that was in [1,2147483646]; the default seed for 0.
    double external() const;

private:
    static constexpr std::uint32_t default_seed = 931316785;
    static constexpr std::uint32_t modulus = 2147483647;
    // A seed with bit 15 set would exceed the modulus once its halves are exchanged.
    static constexpr std::uint32_t bit_15 = 0x8000, flipped_bits = 0x80008000;

    static constexpr std::uint32_t exchange_halves(std::uint32_t word) { return word << 16 | word >> 16; }
    static constexpr std::uint32_t scrambled(std::uint32_t value) { return exchange_halves(value & bit_15 ? value ^ flipped_bits : value); }

    std::uint32_t seed_ = 1;
};

// The generators of the process. Whoever uses them holds Lock::random.
extern RandState rand_state;
extern RandSeed rand_seed;
extern RandSeed randn_seed;
// 1: uniform draws come from rand_state, 0: from rand_seed.
extern int rand_uses_state;

// `count` draws from the generator selected; `count` normal ones. Both take the lock.
void draw_uniform(double* to, int count);
void draw_normal(double* to, int count);
// One draw, a short way.
double draw_uniform();
double draw_normal();

// --- seeding ---------------------------------------------------------------------------------------

// The numbers that a state starts from, as bits whose halves are both masked with k * 0x08020101.
struct RandSeedTable {
    std::uint64_t bits[32];

    static constexpr std::uint64_t mask(std::uint32_t k)
    {
        std::uint32_t const half = k * 0x08020101u;
        return std::uint64_t{half} << 32 | half;
    }
};

// Multiples of 2^-53 from a mixed counter.
constexpr RandSeedTable make_rand_seed_table()
{
    RandSeedTable table{};
    std::uint64_t counter = 0;
    for (std::uint32_t k = 0; k < 32; ++k) {
        counter += 0x9E3779B97F4A7C15u;
        std::uint64_t mixed = counter;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        mixed ^= mixed >> 31;
        table.bits[k] = std::bit_cast<std::uint64_t>(static_cast<double>(mixed >> 11) * 0x1p-53) ^ RandSeedTable::mask(k);
    }
    return table;
}
inline constexpr RandSeedTable rand_seed_table = make_rand_seed_table();

constexpr void RandState::seed(double value)
{
    constexpr double words = 4294967296.0;
    for (std::uint32_t k = 0; k < numbers; ++k)
        u_[k] = static_cast<std::uint64_t>(std::bit_cast<double>(rand_seed_table.bits[k] ^ RandSeedTable::mask(k)) * 0x1p53);
    index_ = borrow_ = 0;
    if (value > 0 && value < words)
        shift_ = static_cast<std::uint32_t>(value);
    else if (value < 0 && value > -words)
        shift_ = static_cast<std::uint32_t>(static_cast<std::int64_t>(value + words));
    else
        shift_ = value < 0 || value > 0 ? 0xFFFFFFFFu : 0x80000000u;
}

constexpr void RandSeed::set(double value)
{
    bool const fits = value > -0x1p63 && value < 0x1p63;
    std::uint32_t const low = fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(value)) : 0;
    seed_ = scrambled(low ? low : default_seed);
    // The generator would stand still at these two.
    if (seed_ == 0 || seed_ == modulus)
        seed_ = scrambled(default_seed);
}

} // namespace arrlib

#endif
