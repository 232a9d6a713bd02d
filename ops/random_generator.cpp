#include "ops/random_generator.h"

#include "ops/kernels/kernel_set.h"
#include "runtime/locks.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace arrlib {

constinit RandState rand_state;
constinit RandSeed rand_seed;
constinit RandSeed randn_seed;
int rand_uses_state = 1;

// --- the lagged generator --------------------------------------------------------------------------

namespace {

// Scales of the whole numbers of a state within its vector.
constexpr double number_scale = 0x1p-53, borrow_scale = 0x1p-53, index_scale = 0x1p-52, shift_scale = 0x1p-52;
// A number is the difference of those so many draws back.
constexpr std::uint32_t near_lag = 12, far_lag = 27;
constexpr std::uint64_t number_bits = (std::uint64_t{1} << 53) - 1;

// 0 for what has no place in a word.
std::uint32_t word_of(double value)
{
    return value > 0 && value < 4294967296.0 ? static_cast<std::uint32_t>(value) : 0;
}

std::uint32_t next_word(std::uint32_t word)
{
    word ^= word << 13;
    word ^= word >> 17;
    return word ^ word << 5;
}

// The draw that a number gives between two words of the shift register. The number is converted in
// halves, each set into the mantissa of a power of two, as processors without an instruction for it
// can do with several at once; nothing is rounded.
double mixed(std::uint64_t number, std::uint32_t before, std::uint32_t after)
{
    double const high = std::bit_cast<double>(number >> 32 | 0x4530000000000000u) - (0x1p84 + 0x1p52);
    double const low = std::bit_cast<double>((number & 0xFFFFFFFFu) | 0x4330000000000000u);
    std::uint64_t const mantissa = std::uint64_t{after & 0xFFFFFu} << 32 | before;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>((high + low) * number_scale) ^ mantissa);
}

// The words of the shift register follow a linear recurrence as well, of the four words these far
// back, of which many can be computed at once.
constexpr int word_lags[] = {32, 71, 152, 551};
constexpr int words_back = word_lags[3];
constexpr int batch = 1024;

// A stretch of both sequences without a ring: what came before, then the batch to be drawn.
struct Stretch {
    std::uint64_t number[32 + batch];
    // One more than is drawn from: each draw is mixed with two words.
    std::uint32_t word[words_back + batch + 1];

    std::uint64_t next_numbers(std::uint64_t borrow)
    {
        std::uint64_t* const u = number + 32;
        for (int k = 0; k < batch; ++k) {
            std::uint64_t const difference = u[k - int{near_lag}] - u[k - int{far_lag}] - borrow;
            borrow = difference >> 63;
            u[k] = difference & number_bits;
        }
        return borrow;
    }
    void next_words()
    {
        std::uint32_t* const w = word + words_back + 1;
        for (int k = 0; k < batch; ++k)
            w[k] = w[k - word_lags[0]] ^ w[k - word_lags[1]] ^ w[k - word_lags[2]] ^ w[k - word_lags[3]];
    }
    void draw(double* to) const
    {
        for (int k = 0; k < batch; ++k)
            to[k] = mixed(number[32 + k], word[k], word[k + 1]);
    }
    void move_on()
    {
        std::copy_n(number + batch, 32, number);
        std::copy_n(word + batch, words_back + 1, word);
    }
};

} // namespace

double RandState::draw()
{
    std::uint64_t const difference = u_[(index_ - near_lag) % numbers] - u_[(index_ - far_lag) % numbers] - borrow_;
    borrow_ = static_cast<std::uint32_t>(difference >> 63);
    std::uint64_t const number = difference & number_bits;
    u_[index_] = number;
    index_ = (index_ + 1) % numbers;
    std::uint32_t const before = shift_;
    shift_ = next_word(before);
    return mixed(number, before, shift_);
}

void RandState::draw(double* to, int count)
{
    // Fewer do not repay the first words, which come one by one.
    if (count >= 2 * batch) {
        Stretch stretch;
        for (std::uint32_t k = 0; k < numbers; ++k)
            stretch.number[k] = u_[(index_ + k) % numbers];
        stretch.word[0] = shift_;
        for (int k = 0; k < words_back; ++k)
            stretch.word[k + 1] = next_word(stretch.word[k]);
        std::uint64_t borrow = borrow_;
        for (; count >= batch; count -= batch, to += batch) {
            borrow = stretch.next_numbers(borrow);
            stretch.next_words();
            stretch.draw(to);
            stretch.move_on();
        }
        // A batch is a whole number of rounds of the ring: the index is where it was.
        static_assert(batch % numbers == 0);
        for (std::uint32_t k = 0; k < numbers; ++k)
            u_[(index_ + k) % numbers] = stretch.number[k];
        borrow_ = static_cast<std::uint32_t>(borrow);
        shift_ = stretch.word[0];
    }
    for (int k = 0; k < count; ++k)
        to[k] = draw();
}

void RandState::store(double* vector) const
{
    for (std::uint32_t k = 0; k < numbers; ++k)
        vector[k] = static_cast<double>(u_[k]) * number_scale;
    vector[numbers] = borrow_ * borrow_scale;
    vector[numbers + 1] = index_ * index_scale;
    vector[numbers + 2] = shift_ * shift_scale;
}

void RandState::load(double const* vector)
{
    for (std::uint32_t k = 0; k < numbers; ++k)
        u_[k] = vector[k] > 0 && vector[k] < 1 ? static_cast<std::uint64_t>(vector[k] / number_scale) : 0;
    borrow_ = word_of(vector[numbers] / borrow_scale) != 0;
    index_ = word_of(vector[numbers + 1] / index_scale) % numbers;
    shift_ = word_of(vector[numbers + 2] / shift_scale);
}

// --- the multiplicative generator ------------------------------------------------------------------

namespace {

constexpr std::uint32_t multiplier = 16807;
constexpr std::uint32_t modulus_bits = 0x7FFFFFFF;

// Modulo 2^31 - 1, where the high bits of a product count as much as the low ones.
constexpr std::uint32_t product(std::uint32_t a, std::uint32_t b)
{
    std::uint64_t const exact = std::uint64_t{a} * b;
    std::uint32_t const sum = static_cast<std::uint32_t>(exact & modulus_bits) + static_cast<std::uint32_t>(exact >> 31);
    return (sum & modulus_bits) + (sum >> 31);
}

// The number so many steps behind `seed`.
constexpr std::uint32_t ahead(std::uint32_t seed, std::uint64_t steps)
{
    for (std::uint32_t factor = multiplier; steps; steps >>= 1, factor = product(factor, factor))
        if (steps & 1)
            seed = product(seed, factor);
    return seed;
}

double uniform(std::uint32_t seed)
{
    return static_cast<std::int32_t>(seed) * 4.656612875245797e-10;
}

// What the polar method makes of two numbers: a coordinate, and the square of the distance from 0.
struct PolarPoint {
    double v, s;

    PolarPoint(std::uint32_t first, std::uint32_t second) : v(2 * uniform(first) - 1)
    {
        double const other = 2 * uniform(second) - 1;
        s = v * v + other * other;
    }
    static bool accepted(double s) { return (s > 0) & (s <= 1); }
};

// v * sqrt(-2 * log(s) / s); for many points one step for all of them after another, as processors
// have instructions for several numbers at once. The kernels give both the same bits.
double normal(double v, double s)
{
    return v * std::sqrt(-2 * nx_log(s) / s);
}

void normals(double const* v, double const* s, double* to, int count)
{
    KernelSet const& kernels = kernel_set();
    kernels.real[op_log]({s, 1}, {s, 1}, to, count);
    for (int k = 0; k < count; ++k)
        to[k] = -2 * to[k] / s[k];
    kernels.real[op_sqrt]({to, 1}, {to, 1}, to, count);
    for (int k = 0; k < count; ++k)
        to[k] *= v[k];
}

// Neighbours of the sequence that are computed side by side.
constexpr int lanes = 32;

// `count` draws behind `seed`.
void draw_uniforms(std::uint32_t seed, double* to, std::ptrdiff_t count)
{
    constexpr std::uint32_t step = ahead(1, lanes);
    std::uint32_t lane[lanes];
    for (std::uint32_t& number : lane)
        number = seed = product(seed, multiplier);
    for (; count >= lanes; count -= lanes, to += lanes) {
        for (int l = 0; l < lanes; ++l)
            to[l] = uniform(lane[l]);
        for (std::uint32_t& number : lane)
            number = product(number, step);
    }
    for (int l = 0; l < count; ++l)
        to[l] = uniform(lane[l]);
}

// The pairs of numbers behind a seed, a block at a time.
class PolarPairs {
public:
    static constexpr int block = 512;

    explicit PolarPairs(std::uint32_t seed)
    {
        for (std::uint32_t& number : first_) {
            number = product(seed, multiplier);
            seed = product(number, multiplier);
        }
    }
    void next()
    {
        constexpr std::uint32_t step = ahead(1, 2 * lanes);
        for (int k = 0; k < block; k += lanes)
            for (int l = 0; l < lanes; ++l) {
                PolarPoint const point(first_[l], product(first_[l], multiplier));
                v_[k + l] = point.v;
                s_[k + l] = point.s;
                first_[l] = product(first_[l], step);
            }
    }
    int count_accepted() const
    {
        int accepted = 0;
        for (double const s : s_)
            accepted += PolarPoint::accepted(s);
        return accepted;
    }
    // Writes the normals of the block; returns their number.
    int write_normals(double* to)
    {
        int accepted = 0;
        for (int k = 0; k < block; ++k) {
            double const v = v_[k], s = s_[k];
            v_[accepted] = v;
            s_[accepted] = s;
            accepted += PolarPoint::accepted(s);
        }
        normals(v_, s_, to, accepted);
        return accepted;
    }

private:
    std::uint32_t first_[lanes];
    double v_[block], s_[block];
};

// Both take whole blocks of pairs and return the number of normals.
int count_normals(std::uint32_t seed, int pairs)
{
    PolarPairs drawn(seed);
    int count = 0;
    for (int k = 0; k < pairs; k += PolarPairs::block) {
        drawn.next();
        count += drawn.count_accepted();
    }
    return count;
}

int draw_normals(std::uint32_t seed, int pairs, double* to)
{
    PolarPairs drawn(seed);
    int count = 0;
    for (int k = 0; k < pairs; k += PolarPairs::block) {
        drawn.next();
        count += drawn.write_normals(to + count);
    }
    return count;
}

// Segments of the sequence that the threads share: their normals are counted first, so that each
// finds its place.
constexpr int segments = 32, fewest_pairs = 1024, most_pairs = 8192;

int draw_normals_in_segments(std::uint32_t seed, int pairs, double* to)
{
    std::uint32_t from[segments];
    int place[segments + 1] = {};
    parallel_for(segments, 1, [&](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (; k < end; ++k) {
            from[k] = ahead(seed, 2 * static_cast<std::uint64_t>(pairs) * static_cast<std::uint64_t>(k));
            place[k + 1] = count_normals(from[k], pairs);
        }
    });
    for (int k = 0; k < segments; ++k)
        place[k + 1] += place[k];
    parallel_for(segments, 1, [&](std::ptrdiff_t k, std::ptrdiff_t end) {
        for (; k < end; ++k)
            draw_normals(from[k], pairs, to + place[k]);
    });
    return place[segments];
}

} // namespace

double RandSeed::draw()
{
    seed_ = product(seed_, multiplier);
    return uniform(seed_);
}

void RandSeed::draw(double* to, int count)
{
    if (count < lanes) {
        for (int k = 0; k < count; ++k)
            to[k] = draw();
        return;
    }
    constexpr std::ptrdiff_t share = 1 << 16;
    parallel_for(count, share, [&](std::ptrdiff_t from, std::ptrdiff_t end) {
        draw_uniforms(ahead(seed_, static_cast<std::uint64_t>(from)), to + from, end - from);
    });
    seed_ = ahead(seed_, static_cast<std::uint64_t>(count));
}

double RandSeed::draw_normal()
{
    for (;;) {
        std::uint32_t const first = product(seed_, multiplier);
        seed_ = product(first, multiplier);
        PolarPoint const point(first, seed_);
        if (PolarPoint::accepted(point.s))
            return normal(point.v, point.s);
    }
}

void RandSeed::draw_normal(double* to, int count)
{
    // So many pairs that none of their normals is one too many; what they lack comes in further rounds.
    constexpr int block = PolarPairs::block;
    while (count >= block) {
        int const each = std::min(count / segments / block * block, most_pairs);
        bool const shared = each >= fewest_pairs && parallel_width() > 1;
        int const pairs = shared ? each : count / block * block;
        int const drawn = shared ? draw_normals_in_segments(seed_, pairs, to) : draw_normals(seed_, pairs, to);
        seed_ = ahead(seed_, 2 * static_cast<std::uint64_t>(pairs) * (shared ? segments : 1));
        to += drawn;
        count -= drawn;
    }
    for (int k = 0; k < count; ++k)
        to[k] = draw_normal();
}

double RandSeed::external() const
{
    std::uint32_t const value = exchange_halves(seed_);
    return value & 0x80000000u ? value ^ flipped_bits : value;
}

// --- the generators of the process -----------------------------------------------------------------

double draw_uniform()
{
    LockGuard const guard(Lock::random);
    return rand_uses_state ? rand_state.draw() : rand_seed.draw();
}

double draw_normal()
{
    LockGuard const guard(Lock::random);
    return randn_seed.draw_normal();
}

void draw_uniform(double* to, int count)
{
    LockGuard const guard(Lock::random);
    if (rand_uses_state)
        rand_state.draw(to, count);
    else
        rand_seed.draw(to, count);
}

void draw_normal(double* to, int count)
{
    LockGuard const guard(Lock::random);
    randn_seed.draw_normal(to, count);
}

} // namespace arrlib
