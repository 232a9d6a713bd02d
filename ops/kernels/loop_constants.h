// Fitted coefficients and tables of the elementary functions, by tests/tools/reference_tables.py.
#ifndef ARRLIB_OPS_KERNELS_LOOP_CONSTANTS_H
#define ARRLIB_OPS_KERNELS_LOOP_CONSTANTS_H

#include <cstdint>

namespace arrlib {
namespace {

constexpr double sixteenths_per_ln2 = 0x1.71547652b82fep+4;
// log(2)/16 in two parts.
constexpr double ln2_sixteenth[] = {
    0x1.62e42fefa39efp-5, 0x1.abc9e3b39803fp-60,
};
// 2^(k/16), and what its rounding lost.
constexpr double exp_step[] = {
    0x1p+0, 0x1.0b5586cf9890fp+0, 0x1.172b83c7d517bp+0, 0x1.2387a6e756238p+0, 0x1.306fe0a31b715p+0, 0x1.3dea64c123422p+0,
    0x1.4bfdad5362a27p+0, 0x1.5ab07dd485429p+0, 0x1.6a09e667f3bcdp+0, 0x1.7a11473eb0187p+0, 0x1.8ace5422aa0dbp+0,
    0x1.9c49182a3f09p+0, 0x1.ae89f995ad3adp+0, 0x1.c199bdd85529cp+0, 0x1.d5818dcfba487p+0, 0x1.ea4afa2a490dap+0,
};
constexpr double exp_step_low[] = {
    0, 0x1.8a62e4adc610bp-54, -0x1.19041b9d78a76p-55, 0x1.9b07eb6c70573p-54, 0x1.6f46ad23182e4p-55, 0x1.ada0911f09ebcp-55,
    0x1.d4397afec42e2p-56, 0x1.6324c054647adp-54, -0x1.bdd3413b26456p-54, -0x1.41577ee04992fp-55, 0x1.6e9f156864b27p-54,
    0x1.c7c46b071f2bep-56, 0x1.7a1cd345dcc81p-54, 0x1.11065895048ddp-55, 0x1.2ed02d75b3707p-55, -0x1.e9c23179c2893p-54,
};
// (exp(x) - 1 - x)/x^2 for |x| up to log(2)/32.
constexpr double exp_terms[] = {
    0x1.0000000000001p-1, 0x1.5555555555555p-3, 0x1.55555554e935ep-5, 0x1.11111110eba86p-7, 0x1.6c17ed63c799fp-10,
    0x1.a01af61cb5c0dp-13,
};
// 1/x in the middle of a step, those of 11 to 22 fifteenths: the place is their number modulo 16.
constexpr double log_inverse[] = {
    0x1.e0011f226a165p-1, 0x1.c3c3ac140ed4ep-1, 0x1.aaaa80d4f9ad4p-1, 0x1.9435d631954bfp-1, 0x1.7fffe5e3afc8bp-1,
    0x1.6db6bf35d50c3p-1, 0x1.5d173f6af9919p-1, 0x1p+0, 0x1p+0, 0x1p+0, 0x1p+0, 0x1.5194eed90b1e8p+0, 0x1.3fffdccdb60e3p+0,
    0x1.27626b134b2dap+0, 0x1.111a5e5234888p+0, 0x1p+0,
};
// Logarithms to a base: of 2 over those inverses, and of 2, both in two parts of which the first is a multiple of
// 2^-42; and the factor that makes natural logarithms such ones. The inverses are chosen so that their natural
// logarithms have no second parts: there only that of 2 is left.
struct LogTable {
    double step[16], step_low[16], of_two[2], factor[2];
};
constexpr LogTable natural_log = {
    {0x1.83ee2f1464p-1, 0x1.a2f9acf3258p-1, 0x1.c03da26ad98p-1, 0x1.dbec35efc18p-1, 0x1.f62f6349b68p-1, 0x1.0795371cd7p+0,
     0x1.137de4676ecp+0, 0x1.62e42fefa38p-1, 0x1.62e42fefa38p-1, 0x1.62e42fefa38p-1, 0x1.62e42fefa38p-1, 0x1.aa8365943bp-2,
     0x1.e149124365p-2, 0x1.199fbf9c99p-1, 0x1.41c78df64e8p-1, 0x1.62e42fefa38p-1},
    {0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45,
     0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45,
     0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45, 0x1.ef35793c7673p-45,
     0x1.ef35793c7673p-45},
    {0x1.62e42fefa38p-1, 0x1.ef35793c7673p-45},
    {0x1p+0, 0},
};
constexpr LogTable binary_log = {
    {0x1.17d527a87dp+0, 0x1.2e3a0eeed8p+0, 0x1.43565d4146cp+0, 0x1.574e3f9c78cp+0, 0x1.6a3ffee2f84p+0, 0x1.7c450b3a9a4p+0,
     0x1.8d735add144p+0, 0x1p+0, 0x1p+0, 0x1p+0, 0x1p+0, 0x1.33aa0ed52f8p-1, 0x1.5b2c8ee02a8p-1, 0x1.964c2dc63ap-1,
     0x1.d03acdd491p-1, 0x1p+0},
    {0x1.bb1d2204e5b53p-45, 0x1.2dfa474993b5ap-44, 0x1.63b91c3d30f14p-43, 0x1.91c9fab5f2286p-44, 0x1.666868c873a4bp-44,
     0x1.6bbf329732abfp-45, 0x1.d21c996abc2a2p-43, 0, 0, 0, 0, 0x1.9d7ac4d8714b4p-43, 0x1.272bfe402da1dp-45, 0x1.a73ddfd81e6f1p-44,
     0x1.c38f1a957b4cp-48, 0},
    {0x1p+0, 0},
    {0x1.71547652b82fep+0, 0x1.777d0ffda0d24p-56},
};
constexpr LogTable decimal_log = {
    {0x1.50f3bacfcdp-2, 0x1.6bead552efp-2, 0x1.8556441daep-2, 0x1.9d619686f8p-2, 0x1.b43143f624p-2, 0x1.c9e3edd374p-2,
     0x1.de9405f469p-2, 0x1.34413509f7p-2, 0x1.34413509f7p-2, 0x1.34413509f7p-2, 0x1.34413509f7p-2, 0x1.7276f7c47p-3,
     0x1.a20a0a23b6p-3, 0x1.e93b2497b2p-3, 0x1.177e7f601fp-2, 0x1.34413509f7p-2},
    {0x1.9e2c69a2194a2p-42, 0x1.145fd810903bdp-42, 0x1.01a1150503eb3p-42, 0x1.1e80d2f91961cp-42, 0x1.a807a42a82acap-43,
     0x1.1891391b8890cp-42, 0x1.15de06f66e224p-42, 0x1.3fde623e2566bp-43, 0x1.3fde623e2566bp-43, 0x1.3fde623e2566bp-43,
     0x1.3fde623e2566bp-43, 0x1.697a7b8a34c22p-43, 0x1.0ca96c07a81bp-42, 0x1.42b4ade2bd26cp-42, 0x1.9508e931b845cp-42,
     0x1.3fde623e2566bp-43},
    {0x1.34413509f7p-2, 0x1.3fde623e2566bp-43},
    {0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57},
};
// (log(1 + x) - x)/x^2 for |x| up to 0.042.
constexpr double log_terms[] = {
    -0x1p-1, 0x1.555555555532cp-2, -0x1.000000000007ap-2, 0x1.999999a19a61fp-3, -0x1.5555555893a8p-3, 0x1.249209341a293p-3,
    -0x1.ffffacb123276p-4, 0x1.c896b0d67a16ep-4, -0x1.9ac950256aca1p-4,
};
// (log(1 + x) - x + x^2/2 - x^3/3)/x^4 for such x.
constexpr double log_fourth_terms[] = {
    -0x1p-2, 0x1.99999999995fp-3, -0x1.5555555555618p-3, 0x1.2492492b58004p-3, -0x1.00000002d341fp-3, 0x1.c71c0590b7941p-4,
    -0x1.999951d107419p-4, 0x1.759d299717b22p-4, -0x1.565a247e6f2d3p-4,
};

constexpr double two_over_pi = 0x1.45f306dc9c883p-1;
// pi/2 in three parts; pi in two, and pi/4 so that small multiples of the first part are exact.
constexpr double half_pi[] = {
    0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110,
};
constexpr double pi_parts[] = {
    0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53,
};
constexpr double eighth_turn[] = {
    0x1.921fb54442d18p-1, 0x1.1a62633145c07p-55,
};
// (sin(x)/x - 1)/x^2 and (cos(x) - 1 + x^2/2)/x^4 by powers of x^2, for |x| up to pi/4.
constexpr double sin_terms[] = {
    -0x1.5555555555555p-3, 0x1.1111111110ba5p-7, -0x1.a01a019e80693p-13, 0x1.71de379252004p-19, -0x1.ae60069e53ef1p-26,
    0x1.5e098556d302ep-33,
};
constexpr double cos_terms[] = {
    0x1.5555555555555p-5, -0x1.6c16c16c1696p-10, 0x1.a01a019f4d0edp-16, -0x1.27e4fa15bd814p-22, 0x1.1eeb66b683028p-29,
    -0x1.907c0e63adbb5p-37,
};
constexpr double steps_per_pi = 0x1.45f306dc9c883p+2;
// pi/16 in three parts; products of the second with 28 bits are exact.
constexpr double pi_step[] = {
    0x1.921fb54442d18p-3, 0x1.1a6263p-57, 0x1.8a2e03707344ap-84,
};
// The sines of its multiples and what their rounding lost, and their cosines. The sine of -0 is -0.
constexpr double sine_step[] = {
    -0.0, 0x1.8f8b83c69a60bp-3, 0x1.87de2a6aea963p-2, 0x1.1c73b39ae68c8p-1, 0x1.6a09e667f3bcdp-1, 0x1.a9b66290ea1a3p-1,
    0x1.d906bcf328d46p-1, 0x1.f6297cff75cbp-1, 0x1p+0, 0x1.f6297cff75cbp-1, 0x1.d906bcf328d46p-1, 0x1.a9b66290ea1a3p-1,
    0x1.6a09e667f3bcdp-1, 0x1.1c73b39ae68c8p-1, 0x1.87de2a6aea963p-2, 0x1.8f8b83c69a60bp-3,
};
constexpr double sine_step_low[] = {
    0, -0x1.26d19b9ff8d82p-57, -0x1.72cedd3d5a61p-57, 0x1.b25dd267f66p-55, -0x1.bdd3413b26456p-55, 0x1.9f630e8b6dac8p-60,
    0x1.457e610231ac2p-56, 0x1.562172a361fd3p-56, 0, 0x1.562172a361fd3p-56, 0x1.457e610231ac2p-56, 0x1.9f630e8b6dac8p-60,
    -0x1.bdd3413b26456p-55, 0x1.b25dd267f66p-55, -0x1.72cedd3d5a61p-57, -0x1.26d19b9ff8d82p-57,
};
constexpr double cosine_step[] = {
    0x1p+0, 0x1.f6297cff75cbp-1, 0x1.d906bcf328d46p-1, 0x1.a9b66290ea1a3p-1, 0x1.6a09e667f3bcdp-1, 0x1.1c73b39ae68c8p-1,
    0x1.87de2a6aea963p-2, 0x1.8f8b83c69a60bp-3, 0, -0x1.8f8b83c69a60bp-3, -0x1.87de2a6aea963p-2, -0x1.1c73b39ae68c8p-1,
    -0x1.6a09e667f3bcdp-1, -0x1.a9b66290ea1a3p-1, -0x1.d906bcf328d46p-1, -0x1.f6297cff75cbp-1,
};
// (sin(x)/x - 1)/x^2 and (cos(x) - 1)/x^2 by powers of x^2, for |x| up to pi/32.
constexpr double short_sin_terms[] = {
    -0x1.5555555555555p-3, 0x1.111111111045dp-7, -0x1.a01a0139596a4p-13, 0x1.71cd9a65dc975p-19,
};
constexpr double short_cos_terms[] = {
    -0x1p-1, 0x1.5555555553267p-5, -0x1.6c16c0deceacep-10, 0x1.a00325cde39c7p-16,
};
constexpr double tan_eighth_pi = 0x1.a827999fcef32p-2;
// (atan(x)/x - 1)/x^2 by powers of x^2, for |x| up to tan(pi/8).
constexpr double atan_terms[] = {
    -0x1.5555555555555p-2, 0x1.9999999999349p-3, -0x1.2492492435f94p-3, 0x1.c71c718525179p-4, -0x1.745d0b24c84b9p-4,
    0x1.3b1262ac559fcp-4, -0x1.10fa72be60a88p-4, 0x1.dfe5f37f19c8bp-5, -0x1.a097da67e4438p-5, 0x1.415dac51cd10bp-5,
    -0x1.3a254249c222p-6,
};
// (asin(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.
constexpr double asin_terms[] = {
    0x1.5555555555556p-3, 0x1.3333333332ec4p-4, 0x1.6db6db6e3292ep-5, 0x1.f1c71c1d4a9e3p-6, 0x1.6e8bb1d894fecp-6,
    0x1.1c4d343f9b3dap-6, 0x1.c9cf375b384c4p-7, 0x1.78246f26714e7p-7, 0x1.524ea90672513p-7, 0x1.653a8cb371a44p-8,
    0x1.1d66172e09a15p-6, -0x1.e7a255ac8946p-7, 0x1.d7818bacb1c56p-6,
};
// (sinh(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.
constexpr double sinh_terms[] = {
    0x1.5555555555555p-3, 0x1.111111111112p-7, 0x1.a01a01a00ef0fp-13, 0x1.71de3a84a10c3p-19, 0x1.ae63a07779c78p-26,
    0x1.6267cf434f12cp-33,
};
// (tanh(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.
constexpr double tanh_terms[] = {
    -0x1.5555555555555p-2, 0x1.11111111110ecp-3, -0x1.ba1ba1ba15daap-5, 0x1.664f487fed22ap-6, -0x1.226e34a851d2cp-7,
    0x1.d6d39b48449bfp-9, -0x1.7d9e74586c684p-10, 0x1.350ce30757046p-11, -0x1.efab6555ccc22p-13, 0x1.71eb85bee4b4ap-14,
    -0x1.8117b15cbb104p-16,
};
// The bits of 2/pi behind the binary point, 32 to a word, most significant first.
constexpr std::uint32_t two_over_pi_words[] = {
    0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041, 0xfe5163ab, 0xdebbc561, 0xb7246e3a, 0x424dd2e0,
    0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e, 0xe88235f5, 0x2ebb4484, 0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4,
    0x9c845f8b, 0xbdf9283b, 0x1ff897ff, 0xde05980f, 0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d,
    0x7527bac7, 0xebe5f17b, 0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046, 0xfc7b6bab, 0xf0cfbc20, 0x9af4361d,
    0xa9e39161, 0x5ee61b08,
};

} // namespace
} // namespace arrlib

#endif
