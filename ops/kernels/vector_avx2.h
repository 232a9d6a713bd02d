// Four doubles; see vector.h.
#ifndef ARRLIB_OPS_KERNELS_VECTOR_AVX2_H
#define ARRLIB_OPS_KERNELS_VECTOR_AVX2_H

#include <immintrin.h>

namespace arrlib {
namespace {

struct WideBits {
    __m256i v;

    WideBits(__m256i bits) : v(bits) {}
    WideBits(std::uint64_t all) : v(_mm256_set1_epi64x(static_cast<long long>(all))) {}
    WideBits operator+(WideBits o) const { return _mm256_add_epi64(v, o.v); }
    WideBits operator-(WideBits o) const { return _mm256_sub_epi64(v, o.v); }
    WideBits operator&(WideBits o) const { return _mm256_and_si256(v, o.v); }
    WideBits operator|(WideBits o) const { return _mm256_or_si256(v, o.v); }
    WideBits operator^(WideBits o) const { return _mm256_xor_si256(v, o.v); }
    template <int Count> WideBits up() const { return _mm256_slli_epi64(v, Count); }
    template <int Count> WideBits down() const { return _mm256_srli_epi64(v, Count); }
};

// All bits of a lane, or none.
struct WideMask {
    __m256d v;

    WideMask operator&(WideMask o) const { return {_mm256_and_pd(v, o.v)}; }
    WideMask operator|(WideMask o) const { return {_mm256_or_pd(v, o.v)}; }
    WideMask operator^(WideMask o) const { return {_mm256_xor_pd(v, o.v)}; }
    WideMask operator!() const { return {_mm256_xor_pd(v, _mm256_castsi256_pd(_mm256_set1_epi64x(-1)))}; }
    bool any() const { return _mm256_movemask_pd(v) != 0; }
    static bool any_of(WideMask x, WideMask y) { return (x | y).any(); }
    bool all() const { return _mm256_movemask_pd(v) == 15; }
    unsigned lanes() const { return static_cast<unsigned>(_mm256_movemask_pd(v)); }
    static WideMask of(WideBits bits, WideBits among)
    {
        __m256d const none = _mm256_castsi256_pd(_mm256_cmpeq_epi64(_mm256_and_si256(bits.v, among.v), _mm256_setzero_si256()));
        return !WideMask{none};
    }
};

struct Wide {
    static constexpr int count = 4;
    using Bits = WideBits;
    using Mask = WideMask;
    __m256d v;

    Wide(__m256d lanes) : v(lanes) {}
    Wide(double all) : v(_mm256_set1_pd(all)) {}
    static Wide load(double const* from) { return _mm256_loadu_pd(from); }
    void store(double* to) const { _mm256_storeu_pd(to, v); }
    static Wide load(double const* from, int n)
    {
        __m256i const mask = first(n);
        return _mm256_blendv_pd(_mm256_set1_pd(1), _mm256_maskload_pd(from, mask), _mm256_castsi256_pd(mask));
    }
    void store(double* to, int n) const { _mm256_maskstore_pd(to, first(n), v); }
    static Wide of(Bits bits) { return _mm256_castsi256_pd(bits.v); }
    Bits bits() const { return _mm256_castpd_si256(v); }

    Wide operator+(Wide o) const { return _mm256_add_pd(v, o.v); }
    Wide operator-(Wide o) const { return _mm256_sub_pd(v, o.v); }
    Wide operator*(Wide o) const { return _mm256_mul_pd(v, o.v); }
    Wide operator/(Wide o) const { return _mm256_div_pd(v, o.v); }
    Wide operator-() const { return -v; }
    Mask operator<(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_LT_OQ)}; }
    Mask operator<=(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_LE_OQ)}; }
    Mask operator>(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_GT_OQ)}; }
    Mask operator>=(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_GE_OQ)}; }
    Mask operator==(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_EQ_OQ)}; }
    Mask operator!=(Wide o) const { return {_mm256_cmp_pd(v, o.v, _CMP_NEQ_UQ)}; }

private:
    static __m256i first(int n)
    {
        return _mm256_cmpgt_epi64(_mm256_set1_epi64x(n), _mm256_setr_epi64x(0, 1, 2, 3));
    }
};

inline Wide fma(Wide a, Wide b, Wide c) { return _mm256_fmadd_pd(a.v, b.v, c.v); }
inline Wide select(WideMask which, Wide yes, Wide no) { return _mm256_blendv_pd(no.v, yes.v, which.v); }
inline Wide negative_where(WideMask which, Wide x) { return _mm256_xor_pd(x.v, _mm256_and_pd(which.v, _mm256_set1_pd(-0.0))); }
inline WideMask within(Wide x, Wide low, Wide high) { return (x >= low) & (x < high); }
inline WideMask not_below(Wide x, Wide limit) { return {_mm256_cmp_pd(x.v, limit.v, _CMP_NLT_UQ)}; }
inline WideMask not_positive_normal(Wide x) { return {_mm256_or_pd(not_below(x, __builtin_huge_val()).v, _mm256_cmp_pd(x.v, _mm256_set1_pd(__DBL_MIN__), _CMP_NGE_UQ))}; }
inline Wide abs(Wide x) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), x.v); }
inline Wide sqrt(Wide x) { return _mm256_sqrt_pd(x.v); }
inline Wide floor(Wide x) { return _mm256_floor_pd(x.v); }
inline Wide ceil(Wide x) { return _mm256_ceil_pd(x.v); }
inline Wide trunc(Wide x) { return _mm256_round_pd(x.v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC); }
inline Wide larger(Wide x, Wide y) { return _mm256_max_pd(x.v, y.v); }
inline Wide smaller(Wide x, Wide y) { return _mm256_min_pd(x.v, y.v); }
inline bool any_beyond(Wide x, double limit) { return not_below(abs(x), limit).any(); }
inline bool any_beyond(Wide x, Wide y, double limit) { return not_below(larger(abs(x), abs(y)), limit).any(); }
template <std::size_t Size> Wide pick(double const (&table)[Size], WideBits at)
{
    // A gather keeps what its register held in lanes that are left out. A compiler that sees that none is does not clear
    // the register, and the gather waits for whatever used it last.
    __m256d lanes = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
    __asm__("" : "+x"(lanes));
    return _mm256_mask_i64gather_pd(_mm256_setzero_pd(), table, (at & WideBits(Size - 1)).v, lanes, 8);
}
inline Wide pick(double even, double odd, WideBits at) { return select(WideMask::of(at, WideBits(1)), odd, even); }
inline Wide mantissa(Wide x) { return mantissa_by_bits(x); }
inline Wide exponent_below(Wide x) { return exponent_below_by_bits(x); }
inline Wide scale(Wide x, Wide n)
{
    // 2^e by the exponent field: e + 1023 stands at the low end of the sum.
    auto const power = [](Wide e) { return Wide::of((e + (to_integer + 1023)).bits().template up<52>()); };
    Wide const all = floor(n), half = trunc(all * 0.5);
    return x * power(half) * power(all - half);
}

} // namespace
} // namespace arrlib

#endif
