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

// The bits of the least number that the steps of the logarithm are laid out for.
constexpr std::uint64_t log_first = 0x3fe8555555555556;
// 1/x in the middle of a step.
constexpr double log_inverse[] = {
    0x1.49e112e63a6a8p+0, 0x1.3d1c13d1c13d1p+0, 0x1.314abba098a55p+0, 0x1.2652c7480c437p+0, 0x1.1c1d986a8b192p+0,
    0x1.12979907269d5p+0, 0x1.09afbd94109afp+0, 0x1p+0, 0x1.e6a74981446f7p-1, 0x1.cb5d4ef40991ep-1, 0x1.b2f9341b2f933p-1,
    0x1.9d0ac19d0ac19p-1, 0x1.89374bc6a7ef9p-1, 0x1.7734c36b7b1d4p-1, 0x1.66c612afa64e7p-1, 0x1.57b864407292cp-1,
};
// Logarithms to a base: of those inverses, negative, and of 2, both in two parts of which the first is a multiple
// of 2^-42; and the factor that makes natural logarithms such ones.
struct LogTable {
    double step[16], step_low[16], of_two[2], factor[2];
};
constexpr LogTable natural_log = {
    {-0x1.03a25dcb06p-2, -0x1.b66a7745e8p-3, -0x1.68a266e2f8p-3, -0x1.1db2fe622ap-3, -0x1.aad19489c8p-4, -0x1.1f2b355e9p-4,
     -0x1.303f46713p-5, 0, 0x1.9fed48a0a8p-5, 0x1.bc5632de88p-4, 0x1.4de7b857bcp-3, 0x1.b7dc1d0462p-3, 0x1.0e4cfbea84p-2,
     0x1.3e4f3c1b23p-2, 0x1.6c2afccddbp-2, 0x1.980f7350bcp-2},
    {0x1.edeabb5d12dd5p-43, 0x1.87d8ab2ee149fp-43, 0x1.5fe819d3a478bp-44, 0x1.44e59f3445196p-45, 0x1.42ab8e61210a5p-44,
     0x1.105e4769ff248p-45, 0x1.eb2c813eef86cp-43, 0, 0x1.c62f941daabe5p-45, 0x1.8dc7d37d14021p-44, 0x1.8eeb6c2290a04p-44,
     0x1.6ad6a9c5163efp-44, 0x1.dd19459c2c55p-43, 0x1.a9b8b39ab2cf7p-44, 0x1.4996f53afa337p-43, 0x1.acafb62e2e4aep-43},
    {0x1.62e42fefa38p-1, 0x1.ef35793c7673p-45},
    {0x1p+0, 0},
};
constexpr LogTable binary_log = {
    {-0x1.7692b27925p-2, -0x1.3c400dbed1p-2, -0x1.0424892326p-2, -0x1.9c2d4373cap-3, -0x1.33e27492eep-3, -0x1.9e4c06d588p-4,
     -0x1.b6ef95ebb8p-5, 0, 0x1.2c071fe494p-4, 0x1.40856c7d62p-3, 0x1.e1b92b13a6p-3, 0x1.3d4ab2ad37p-2, 0x1.85f6254e85p-2,
     0x1.cb393ac237p-2, 0x1.06b10e68948p-1, 0x1.265a737218p-1},
    {0x1.56e76bbe12f6ap-46, 0x1.5a3ddc4a257fcp-43, 0x1.15c36bf4c67d5p-46, 0x1.90956a9dc961p-43, 0x1.522b226fc3afap-43,
     0x1.8fe3007d1975ap-43, 0x1.86e58e5949e4p-43, 0, 0x1.8a821a5567b22p-43, 0x1.4dbee878d3817p-49, 0x1.53ef5ae1725adp-43,
     0x1.1adce0e6f2fb7p-47, 0x1.a04947f91c717p-43, 0x1.c8dae0d67f2ebp-47, 0x1.cdeb83ce3a93fp-44, 0x1.81fbec9f05938p-44},
    {0x1p+0, 0},
    {0x1.71547652b82fep+0, 0x1.777d0ffda0d24p-56},
};
constexpr LogTable decimal_log = {
    {-0x1.c307e79408p-4, -0x1.7ccd9e52a4p-4, -0x1.393e382adp-4, -0x1.f04f720aep-5, -0x1.72bae08a4p-5, -0x1.f2dcff5c8p-6,
     -0x1.08440712bp-6, 0, 0x1.6944fe574p-6, 0x1.81f22acf78p-5, 0x1.2206bdd2d4p-4, 0x1.7e0eb0ac94p-4, 0x1.d58f792d14p-4,
     0x1.147ae9af26p-3, 0x1.3c4feeb75cp-3, 0x1.626fccd8c4p-3},
    {0x1.3340933ce4baap-43, 0x1.d20d998722c09p-45, 0x1.90b118b6dd63p-43, 0x1.cd22a6893d45bp-43, 0x1.8433e6356f2c1p-44,
     0x1.16dc5da056f64p-46, 0x1.82f241c766f85p-44, 0, 0x1.b81a0f2b72964p-44, 0x1.fcfa4ca9d9fa7p-43, 0x1.2caa9219668bp-43,
     0x1.b90c880172f3p-44, 0x1.418ad07a46938p-43, 0x1.f6c5b20110203p-43, 0x1.cb55dca980484p-43, 0x1.c0127f835385fp-44},
    {0x1.34413509f7p-2, 0x1.3fde623e2566bp-43},
    {0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57},
};
// (log(1 + x) - x)/x^2 for |x| up to 1/32.
constexpr double log_terms[] = {
    -0x1.ffffffffffffp-2, 0x1.5555555555542p-2, -0x1.00000000765f3p-2, 0x1.9999999a87f0bp-3, -0x1.555543b3e826p-3,
    0x1.24923849d1648p-3, -0x1.006b88edb0addp-3, 0x1.c7e42ae64155p-4,
};
// (log(1 + x) - x + x^2/2)/x^3 for |x| up to 1/32.
constexpr double log_cubic_terms[] = {
    0x1.5555555555555p-2, -0x1.fffffffffff8cp-3, 0x1.9999999999917p-3, -0x1.55555556c7549p-3, 0x1.2492492608572p-3,
    -0x1.ffffd852ce53bp-4, 0x1.c71c4b582f9f4p-4, -0x1.9a6341bf3692p-4, 0x1.751b2db2ae964p-4,
};

constexpr double two_over_pi = 0x1.45f306dc9c883p-1;
// pi/2 in three parts, and pi and pi/4 in two.
constexpr double half_pi[] = {
    0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110,
};
constexpr double pi_parts[] = {
    0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53,
};
constexpr double quarter_pi[] = {
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
