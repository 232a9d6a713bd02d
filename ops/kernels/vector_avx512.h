// Eight doubles; see vector.h.
#ifndef ARRLIB_OPS_KERNELS_VECTOR_AVX512_H
#define ARRLIB_OPS_KERNELS_VECTOR_AVX512_H

#include <immintrin.h>

namespace arrlib {
namespace {

struct WideBits {
    __m512i v;

    WideBits(__m512i bits) : v(bits) {}
    WideBits(std::uint64_t all) : v(_mm512_set1_epi64(static_cast<long long>(all))) {}
    WideBits operator+(WideBits o) const { return _mm512_add_epi64(v, o.v); }
    WideBits operator-(WideBits o) const { return _mm512_sub_epi64(v, o.v); }
    WideBits operator&(WideBits o) const { return _mm512_and_si512(v, o.v); }
    WideBits operator|(WideBits o) const { return _mm512_or_si512(v, o.v); }
    WideBits operator^(WideBits o) const { return _mm512_xor_si512(v, o.v); }
    template <int Count> WideBits up() const { return _mm512_maskz_slli_epi64(255, v, Count); }
    template <int Count> WideBits down() const { return _mm512_maskz_srli_epi64(255, v, Count); }
};

struct WideMask {
    __mmask8 v;

    WideMask operator&(WideMask o) const { return {_kand_mask8(v, o.v)}; }
    WideMask operator|(WideMask o) const { return {_kor_mask8(v, o.v)}; }
    WideMask operator^(WideMask o) const { return {_kxor_mask8(v, o.v)}; }
    WideMask operator!() const { return {_knot_mask8(v)}; }
    bool any() const { return any_of(*this, *this); }
    static bool any_of(WideMask x, WideMask y) { return !_kortestz_mask8_u8(x.v, y.v); }
    bool all() const { return _kortestc_mask8_u8(v, v) != 0; }
    unsigned lanes() const { return v; }
    static WideMask of(WideBits bits, WideBits among) { return {_mm512_test_epi64_mask(bits.v, among.v)}; }
};

struct Wide {
    static constexpr int count = 8;
    using Bits = WideBits;
    using Mask = WideMask;
    __m512d v;

    Wide(__m512d lanes) : v(lanes) {}
    Wide(double all) : v(_mm512_set1_pd(all)) {}
    static Wide load(double const* from) { return _mm512_loadu_pd(from); }
    void store(double* to) const { _mm512_storeu_pd(to, v); }
    static Wide load(double const* from, int n) { return _mm512_mask_loadu_pd(_mm512_set1_pd(1), first(n), from); }
    void store(double* to, int n) const { _mm512_mask_storeu_pd(to, first(n), v); }
    static Wide of(Bits bits) { return _mm512_castsi512_pd(bits.v); }
    Bits bits() const { return _mm512_castpd_si512(v); }

    Wide operator+(Wide o) const { return _mm512_add_pd(v, o.v); }
    Wide operator-(Wide o) const { return _mm512_sub_pd(v, o.v); }
    Wide operator*(Wide o) const { return _mm512_mul_pd(v, o.v); }
    Wide operator/(Wide o) const { return _mm512_div_pd(v, o.v); }
    // The compiler knows this form, and makes one of it and a product.
    Wide operator-() const { return -v; }
    Mask operator<(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_LT_OQ)}; }
    Mask operator<=(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_LE_OQ)}; }
    Mask operator>(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_GT_OQ)}; }
    Mask operator>=(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_GE_OQ)}; }
    Mask operator==(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_EQ_OQ)}; }
    Mask operator!=(Wide o) const { return {_mm512_cmp_pd_mask(v, o.v, _CMP_NEQ_UQ)}; }

private:
    static __mmask8 first(int n) { return static_cast<__mmask8>((1u << n) - 1); }
};

// The forms without a mask read a register that g++ 12 takes for a variable never set.
constexpr __mmask8 all = 255;

inline Wide fma(Wide a, Wide b, Wide c) { return _mm512_fmadd_pd(a.v, b.v, c.v); }
inline Wide select(WideMask which, Wide yes, Wide no) { return _mm512_mask_blend_pd(which.v, no.v, yes.v); }
inline Wide negative_where(WideMask which, Wide x) { return _mm512_mask_xor_pd(x.v, which.v, x.v, _mm512_set1_pd(-0.0)); }
inline WideMask within(Wide x, Wide low, Wide high)
{
    return {_mm512_mask_cmp_pd_mask(_mm512_cmp_pd_mask(x.v, low.v, _CMP_GE_OQ), x.v, high.v, _CMP_LT_OQ)};
}
inline WideMask not_below(Wide x, Wide limit) { return {_mm512_cmp_pd_mask(x.v, limit.v, _CMP_NLT_UQ)}; }
// Every class that the processor tells apart: the positive normal numbers are in none.
inline WideMask not_positive_normal(Wide x) { return {_mm512_fpclass_pd_mask(x.v, 255)}; }
inline Wide abs(Wide x) { return _mm512_abs_pd(x.v); }
inline Wide sqrt(Wide x) { return _mm512_maskz_sqrt_pd(all, x.v); }
// Without optimisation g++ has a macro for this, which converts the mask.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion"
inline Wide floor(Wide x) { return _mm512_maskz_roundscale_pd(all, x.v, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC); }
inline Wide ceil(Wide x) { return _mm512_maskz_roundscale_pd(all, x.v, _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC); }
inline Wide trunc(Wide x) { return _mm512_maskz_roundscale_pd(all, x.v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC); }
#pragma GCC diagnostic pop
inline Wide larger(Wide x, Wide y) { return _mm512_maskz_max_pd(all, x.v, y.v); }
inline Wide smaller(Wide x, Wide y) { return _mm512_maskz_min_pd(all, x.v, y.v); }
inline bool any_beyond(Wide x, double limit) { return not_below(abs(x), limit).any(); }
inline bool any_beyond(Wide x, Wide y, double limit)
{
    // The larger one in magnitude, its sign cleared.
    constexpr int largest_magnitude = 3 | 2 << 2;
    return not_below(_mm512_maskz_range_pd(all, x.v, y.v, largest_magnitude), limit).any();
}
inline Wide pick(double const (&table)[16], WideBits at)
{
    return _mm512_permutex2var_pd(_mm512_loadu_pd(table), at.v, _mm512_loadu_pd(table + 8));
}
inline Wide pick(double even, double odd, WideBits at)
{
    return _mm512_maskz_permutexvar_pd(all, at.v, _mm512_setr_pd(even, odd, even, odd, even, odd, even, odd));
}
inline Wide mantissa(Wide x) { return _mm512_maskz_getmant_pd(all, x.v, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_src); }
// As mantissa_by_bits has it. Of the least numbers the bits are those of a denormal one, which has its exponent, too.
inline Wide exponent_below(Wide x) { return _mm512_maskz_getexp_pd(all, _mm512_castsi512_pd((x.bits() - WideBits(half_step)).v)); }
inline Wide scale(Wide x, Wide n) { return _mm512_maskz_scalef_pd(all, x.v, n.v); }

} // namespace
} // namespace arrlib

#endif
