#include "ops/random_generator.h"

#include "runtime/locks.h"

#include <cmath>

namespace arrlib {

namespace {

// Scales of the whole numbers of a state within its vector.
constexpr double borrow_scale = 0x1p-53, index_scale = 0x1p-52, shift_scale = 0x1p-52;
constexpr std::uint32_t mantissa_top = 0xFFFFF;

// 0 for what has no place in a word.
std::uint32_t word_of(double value)
{
    return value > 0 && value < 4294967296.0 ? static_cast<std::uint32_t>(value) : 0;
}

} // namespace

constinit RandState rand_state;
constinit RandSeed rand_seed;
constinit RandSeed randn_seed;
int rand_uses_state = 1;

double RandState::draw()
{
    double z = u_[(index_ + 20) % numbers] - u_[(index_ + 5) % numbers] - borrow_ * borrow_scale;
    borrow_ = z < 0;
    if (borrow_)
        z += 1;
    u_[index_] = z;
    index_ = (index_ + 1) % numbers;
    std::uint32_t const old = shift_;
    shift_ ^= shift_ << 13;
    shift_ ^= shift_ >> 17;
    shift_ ^= shift_ << 5;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(z) ^ (std::uint64_t{shift_ & mantissa_top} << 32 | old));
}

void RandState::store(double* vector) const
{
    for (std::uint32_t k = 0; k < numbers; ++k)
        vector[k] = u_[k];
    vector[numbers] = borrow_ * borrow_scale;
    vector[numbers + 1] = index_ * index_scale;
    vector[numbers + 2] = shift_ * shift_scale;
}

void RandState::load(double const* vector)
{
    for (std::uint32_t k = 0; k < numbers; ++k)
        u_[k] = vector[k];
    borrow_ = word_of(vector[numbers] / borrow_scale) != 0;
    index_ = word_of(vector[numbers + 1] / index_scale) % numbers;
    shift_ = word_of(vector[numbers + 2] / shift_scale);
}

double RandSeed::draw()
{
    seed_ = static_cast<std::uint32_t>(std::uint64_t{seed_} * 16807 % modulus);
    return seed_ * 4.656612875245797e-10;
}

double RandSeed::draw_normal()
{
    for (;;) {
        double const v1 = 2 * draw() - 1, v2 = 2 * draw() - 1;
        double const s = v1 * v1 + v2 * v2;
        if (s > 0 && s <= 1)
            return v1 * std::sqrt(-2 * std::log(s) / s);
    }
}

double RandSeed::external() const
{
    std::uint32_t const value = exchange_halves(seed_);
    return value & 0x80000000u ? value ^ flipped_bits : value;
}

void draw_uniform(double* to, int count)
{
    LockGuard const guard(Lock::random);
    if (rand_uses_state)
        for (int k = 0; k < count; ++k)
            to[k] = rand_state.draw();
    else
        for (int k = 0; k < count; ++k)
            to[k] = rand_seed.draw();
}

void draw_normal(double* to, int count)
{
    LockGuard const guard(Lock::random);
    for (int k = 0; k < count; ++k)
        to[k] = randn_seed.draw_normal();
}

} // namespace arrlib
