// The angle times 2/pi, in whole numbers: of the bits of 2/pi only those are taken that decide the
// quarter and what is beyond it.
#include "ops/kernels/huge_angle.h"

#include "ops/kernels/loop_pair.h"
#include "ops/kernels/loop_constants.h"

#include <cmath>
#include <cstdint>
#include <limits>

using namespace arrlib;

ReducedAngle arrlib::reduce_huge_angle(double x)
{
    if (!std::isfinite(x))
        return {std::numeric_limits<double>::quiet_NaN(), 0, 0};
    auto const bits = __builtin_bit_cast(std::uint64_t, x);
    // |x| is whole 2^exponent; whole has 53 bits.
    int const exponent = static_cast<int>(bits >> 52 & 0x7ff) - 1075;
    std::uint64_t const whole = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;

    // Words of 2/pi whose products are multiples of 4 make whole turns. What is left out at the other
    // end is below 2^-160 quarters.
    constexpr int taken = 8;
    int const first = exponent < 2 ? 0 : (exponent - 2) / 32;
    std::uint32_t product[taken + 2] = {};
    std::uint64_t const halves[2] = {whole & 0xffffffff, whole >> 32};
    for (int half = 0; half < 2; ++half) {
        std::uint64_t carry = 0;
        for (int k = taken - 1; k >= 0; --k) {
            std::uint32_t& word = product[k + 2 - half];
            carry += halves[half] * two_over_pi_words[first + k] + word;
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        product[1 - half] = static_cast<std::uint32_t>(carry);
    }

    // The binary point is so many bits behind the start of the product; the quarters are before it.
    int const point = 64 + exponent - 32 * first;
    auto const from = [&](int bit) {
        // 32 bits of the product.
        int const word = bit / 32, shift = bit % 32;
        std::uint64_t const two = std::uint64_t{product[word]} << 32 | (word + 1 < taken + 2 ? product[word + 1] : 0);
        return static_cast<std::uint32_t>(two >> (32 - shift));
    };
    int quarters = static_cast<int>(from(point - 2) >> 30);
    // The part beyond the quarter, to the nearer one: its words are complemented when it is past half.
    bool const past = from(point) >> 31;
    quarters += past;
    using Double = Pair<Lane>;
    Double rest{0.0, 0.0};
    double weight = 0x1p-32;
    for (int k = 0; k < 6; ++k, weight *= 0x1p-32) {
        std::uint32_t const word = from(point + 32 * k);
        rest = rest + Lane((past ? ~word : word) * weight);
    }
    Double angle = rest * Double{half_pi[0], half_pi[1]};
    if (past != (x < 0))
        angle = -angle;
    return {angle.hi.v, angle.lo.v, (x < 0 ? -quarters : quarters) & 3};
}
