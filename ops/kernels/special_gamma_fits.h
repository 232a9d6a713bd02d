// Polynomials of the gamma functions, lowest power first. Made by tests/tools/special_tables.py.
#ifndef ARRLIB_OPS_KERNELS_SPECIAL_GAMMA_FITS_H
#define ARRLIB_OPS_KERNELS_SPECIAL_GAMMA_FITS_H

namespace arrlib::fits {

// gamma on eighths from 1 to 2, of the distance from their middles.
inline constexpr double gamma_pieces[8][12] = {
    {0x1.ef66a79533ee7p-1, -0x1.da72f10a8e942p-2, 0x1.adf05a9ad5b69p-1, -0x1.645f5dabed156p-1, 0x1.7373e6d815f9fp-1,
     -0x1.5bd0b9a2dfab3p-1, 0x1.4c3b4f1b6e288p-1, -0x1.399cbecb0ee03p-1, 0x1.27f449f17f3dcp-1, -0x1.16dcd9f047b0ep-1,
     0x1.09628e2318299p-1, -0x1.f3b55bac85283p-2},
    {0x1.d7d9d427cf767p-1, -0x1.1fd3e8cdfc7e7p-2, 0x1.455f6bc183607p-1, -0x1.ac87a4086d5f7p-2, 0x1.ad51be3cc33d9p-2,
     -0x1.6030bf6c79adep-2, 0x1.3068b872ae243p-2, -0x1.00d222a688761p-2, 0x1.b27856e10f5cp-3, -0x1.6e711cb98218ep-3,
     0x1.3780730123546p-3, -0x1.0674d39627586p-3},
    {0x1.ca931e2a3738ep-1, -0x1.1c828cb1680bdp-3, 0x1.06319532f90fep-1, -0x1.02e21a64ef93fp-2, 0x1.0a1aabfe75d03p-2,
     -0x1.7a11cf0d8fe67p-3, 0x1.2e28fd76ac058p-3, -0x1.cb19aedd15311p-4, 0x1.607cccbd3c53cp-4, -0x1.0eb848d27afa3p-4,
     0x1.9d385e3a2088dp-5, 0},
    {0x1.c58ebc9f050b8p-1, -0x1.56b926daaf208p-6, 0x1.c10ca7f954c7bp-2, -0x1.2ca176285bd4fp-3, 0x1.619b9856aac31p-3,
     -0x1.a5ec5e2e8b1eap-4, 0x1.415b06e962f52p-4, -0x1.b8189508cd6d5p-5, 0x1.36816276d217p-5, -0x1.b2b4340525e91p-6,
     0x1.2f3a0fcbcb008p-6, 0},
    {0x1.c799aecd47951p-1, 0x1.543f8239fe822p-4, 0x1.97758497a3fbap-2, -0x1.2eac05dfaea6fp-4, 0x1.fa1453f46467bp-4,
     -0x1.dde963320034dp-5, 0x1.6c787ce8cc3ap-5, -0x1.bdaf49fc30c21p-6, 0x1.2547e8002369p-6, -0x1.783a6504e7441p-7,
     0x1.e3d9698682291p-8, 0},
    {0x1.d00a6ad56f3adp-1, 0x1.709b25b197c7cp-3, 0x1.85edc4ade289p-2, -0x1.42c35c99ebc94p-6, 0x1.88ebccafb183ep-4,
     -0x1.081e201b530eep-5, 0x1.b9c92e38d86a1p-6, -0x1.d57319947e621p-7, 0x1.27abbe7288d63p-7, -0x1.5a6e3626f17b4p-8, 0, 0},
    {0x1.de99088fe9c26p-1, 0x1.19924a03486eap-2, 0x1.87055a0b3d57ep-2, 0x1.8c054c8fb68fp-6, 0x1.4cd08b9355055p-4,
     -0x1.041b0f40cf8f4p-6, 0x1.20f83e707b32p-6, -0x1.f7bcdd01af3c5p-8, 0x1.3ae9326095374p-8, -0x1.4fb2a4bdb9226p-9, 0, 0},
    {0x1.f348f37d8f21cp-1, 0x1.7d1ec45651d5ap-2, 0x1.97d8d8455cf8ap-2, 0x1.01d5e6ff3db27p-4, 0x1.33408f08c400bp-4,
     -0x1.34f6b9301c629p-8, 0x1.9e9aac85e0c6fp-7, -0x1.0964eb4757e05p-8, 0x1.65277ebaa7196p-9, -0x1.51c95ef633f7p-10, 0, 0},
};
// log(gamma(x)) / ((x - 1) (x - 2)) on eighths from 1/2 to 5/2, of the distance from their middles.
inline constexpr double gammaln_pieces[16][13] = {
    {0x1.75659640c7518p-1, -0x1.021417305dba6p-1, 0x1.1bd803ceb6e32p-1, -0x1.7180ec8b441fdp-1, 0x1.04922a204179dp+0,
     -0x1.80be96e61eee4p+0, 0x1.24a6b57e8a914p+1, -0x1.c6bef7f402315p+1, 0x1.67004e8ca1335p+2, -0x1.1edc07a47a133p+3,
     0x1.cf4d24ef329fp+3, -0x1.86b58c85370d9p+4, 0x1.40884af0613eep+5},
    {0x1.58f53767cb43p-1, -0x1.92432b2c840efp-2, 0x1.6cf2257efcff8p-2, -0x1.866d5df6edb59p-2, 0x1.c449477082397p-2,
     -0x1.122dd413d8166p-1, 0x1.565949845fa06p-1, -0x1.b46e836ae2a49p-1, 0x1.1a8b873bddeaep+0, -0x1.723de6a75a989p+0,
     0x1.ea0b3180ee67p+0, -0x1.4eaa3415b9e73p+1, 0x1.c1bc98b70380ap+1},
    {0x1.4255956f9953ep-1, -0x1.465b7cded72f5p-2, 0x1.f88cd9b6cd5e8p-3, -0x1.ca425a056b70cp-3, 0x1.c27654e8e3d6dp-3,
     -0x1.cf60eac12b26fp-3, 0x1.ead125afe4c41p-3, -0x1.09526d13b5188p-2, 0x1.233d672b5d7c8p-2, -0x1.438aa21471f68p-2,
     0x1.707156f7b79a4p-2, -0x1.a09b49d952a04p-2, 0},
    {0x1.2fb55f60ad541p-1, -0x1.10837103fb804p-2, 0x1.6f64c2c766af9p-3, -0x1.21f846c165dedp-3, 0x1.ef1b5afab319dp-4,
     -0x1.ba4f50f19256dp-4, 0x1.96da734efbee2p-4, -0x1.7df0462666dc2p-4, 0x1.6bfbdba9ba257p-4, -0x1.5ef90c896d941p-4,
     0x1.598b4ad1f1d0fp-4, -0x1.52ff62b7319d1p-4, 0},
    {0x1.1ffbc90ebe138p-1, -0x1.d112f2b3b57edp-3, 0x1.162eda95b8ee4p-3, -0x1.84577cc32a81fp-4, 0x1.2502bc3309ac8p-4,
     -0x1.ceacb15592137p-5, 0x1.781eacf6e5125p-5, -0x1.3806dd46ec971p-5, 0x1.06c577808a415p-5, -0x1.c3594ee50d05p-6,
     0x1.8425afe55bf38p-6, 0, 0},
    {0x1.1273305f1abb7p-1, -0x1.939c7d39be5fap-3, 0x1.b24a56b39d39bp-4, -0x1.0fc6c5ac8cd8ap-4, 0x1.6f6f1e7d4832ap-5,
     -0x1.03e2197d2a6f9p-5, 0x1.7a89e33284f53p-6, -0x1.1957424fb5b93p-6, 0x1.a8818f6bd3e2ap-7, -0x1.460f463ad26e1p-7,
     0x1.f64c3f617b5eap-8, 0, 0},
    {0x1.069fc6dbf31d1p-1, -0x1.630c70df1f667p-3, 0x1.5b5dc5be08dc2p-4, -0x1.8a17bf6098a0ep-5, 0x1.e297bf53a497p-6,
     -0x1.3521faeaf9432p-6, 0x1.97cf2a36c2428p-7, -0x1.12854e4072049p-7, 0x1.77291d5b95f46p-8, -0x1.04acd2b74669p-8,
     0x1.6baab183aa749p-9, 0, 0},
    {0x1.f85341d79e78p-2, -0x1.3bd15648e7adep-3, 0x1.1b7132981e7e6p-4, -0x1.2620eb4160894p-5, 0x1.492d5fa094ff5p-6,
     -0x1.815c1a62241p-7, 0x1.d08b78100cbep-8, -0x1.1dc588c8ca0c4p-8, 0x1.664d41866df95p-9, -0x1.c4a7e7414b88p-10, 0, 0, 0},
    {0x1.e5a06e5dfae2ap-2, -0x1.1b8a2e50cbdp-3, 0x1.d6539c27acc46p-5, -0x1.c1c7d16129d04p-6, 0x1.cf827ffd331b6p-7,
     -0x1.f38bffed584dcp-8, 0x1.153297107ab86p-8, -0x1.39fc70000d7d6p-9, 0x1.6a3c67f6b3ebdp-10, -0x1.a554415d1a6ecp-11, 0, 0, 0},
    {0x1.d4c5c0303a8f4p-2, -0x1.009230d25df4fp-3, 0x1.8bc0885a5ae59p-5, -0x1.5f029f8242546p-6, 0x1.4f3372ac517eap-7,
     -0x1.4eb2197d51cf1p-8, 0x1.581f3f8ee0d09p-9, -0x1.692223734cd0dp-10, 0x1.81d3bfb9ba07bp-11, -0x1.9fcae842d903fp-12, 0, 0, 0},
    {0x1.c5782317e9399p-2, -0x1.d37b9d371f43bp-4, 0x1.510c8665b48a4p-5, -0x1.16c7299cfc303p-6, 0x1.f01aced2dae25p-8,
     -0x1.cd6e03748113ep-9, 0x1.b9e9e3cc757bap-10, -0x1.affd406e82efep-11, 0x1.adc3732484ae3p-12, -0x1.af6ffbba3c958p-13, 0, 0, 0},
    {0x1.b77c8b7131432p-2, -0x1.ac6492c8647adp-4, 0x1.2213393256e59p-5, -0x1.c19b3bb0b11c2p-7, 0x1.76856bd0e46cdp-8,
     -0x1.460562f08dfb3p-9, 0x1.24347904c71dp-10, -0x1.0b53314e0cc21p-11, 0x1.f1a60c05641cdp-13, -0x1.d3936bcf7682cp-14, 0, 0, 0},
    {0x1.aaa3c2d8f869bp-2, -0x1.8a98bf7f2e1e2p-4, 0x1.f7e48dd36374bp-6, -0x1.6f6a42d10487ap-7, 0x1.1fb7682f1c18dp-8,
     -0x1.d6c21fb7ae488p-10, 0x1.8c7f09494a254p-11, -0x1.54df34e6d845ep-12, 0x1.2a16dd7ffc238p-13, -0x1.07353b6680918p-14, 0, 0, 0},
    {0x1.9ec77cc6c7befp-2, -0x1.6d1fc8916a583p-4, 0x1.b9369e4b7a51ep-6, -0x1.2fcbd071a3d71p-7, 0x1.c0ede740333b7p-9,
     -0x1.5a6ba0e8f5774p-10, 0x1.132f7863a129p-11, -0x1.beede195c5ad2p-13, 0x1.6fecabcff5a44p-14, 0, 0, 0, 0},
    {0x1.93c84284308e6p-2, -0x1.53399a31da003p-4, 0x1.851e76259dbc4p-6, -0x1.fba88de02ed15p-8, 0x1.6311d7499d0a3p-9,
     -0x1.0348ba43ca414p-10, 0x1.85c6ea8ca38dap-12, -0x1.2b70c6da453d1p-13, 0x1.d27e48b14d7c3p-15, 0, 0, 0, 0},
    {0x1.898bf071f80e2p-2, -0x1.3c4f72e9f190bp-4, 0x1.59643129a0365p-6, -0x1.ac2448fc63288p-8, 0x1.1c4c993812d21p-9,
     -0x1.8a118558e8236p-11, 0x1.1914dd1964552p-12, -0x1.99c3eb646465ap-14, 0x1.2ee2d7f83d3e6p-15, 0, 0, 0, 0},
};
// gamma(x) / (sqrt(2 pi) x^(x - 1/2) e^-x) of 1/x in [0, 1/8].
inline constexpr double stirling[] = {
    0x1p+0, 0x1.55555555554abp-4, 0x1.c71c71c87b216p-9, -0x1.5f72697908e4cp-9, -0x1.e13b2444ffab4p-13, 0x1.9b031ce9eada1p-11,
    0x1.2b8fcff026b8ap-14, -0x1.3ff97ec36b5bdp-11, 0x1.f5e13bf8dbf4ap-15, 0x1.11ac1b05e246fp-11,
};
// The logarithm of that, times x, of 1/x^2 in [0, 1/64].
inline constexpr double log_stirling[] = {
    0x1.5555555555555p-4, -0x1.6c16c16c149f4p-9, 0x1.a01a017dcf9e1p-11, -0x1.38134d4f8896fp-11, 0x1.b92c33f9445e5p-11,
    -0x1.ef8d748aeb0f2p-10, 0x1.4bffc9d8b455bp-8,
};
// The coefficients of a^-k eta^j in the uniform expansion of gammainc, for a >= 30 and |eta| <= 0.37.
// The rows get shorter: row k has temme_length[k] numbers.
inline constexpr double temme[10][18] = {
    {-0x1.5555555555555p-2, 0x1.5555555555555p-4, -0x1.e573ac901e574p-7, 0x1.2f684bda12f68p-10, 0x1.71de3a556c734p-12,
     -0x1.76e06fec7273bp-13, 0x1.48c5892f7cd83p-15, -0x1.255370652afc1p-19, -0x1.f1b22f594c6b5p-20, 0x1.bd6d21e4b4109p-21,
     -0x1.7b5f9a2d0465cp-23, 0x1.ccf5ceb7f0d9fp-28, 0x1.6097d55c37c1cp-27, -0x1.2d2197c7a2faap-28, 0x1.f6e66d24d5c8ap-31,
     -0x1.c0d9b6edf2b0bp-36, -0x1.0070a87340428p-34, 0x1.ac9475c463659p-36},
    {-0x1.e573ac901e574p-10, -0x1.c71c71c71c71cp-9, 0x1.5ac056b015acp-9, -0x1.0394f6f09e723p-10, 0x1.af83440e53dbcp-13,
     -0x1.af83440e53dbcp-22, -0x1.2fa4ae89e5afp-16, 0x1.00a9cabd6b83ep-17, -0x1.b0bdfcc629cbap-20, 0x1.3f59230a8357cp-28,
     0x1.280f2cde3f847p-23, -0x1.ee23d0cba8aeep-25, 0x1.9aa7a30de114cp-27, -0x1.349fbca3a377bp-36, -0x1.1564ecff73d58p-30,
     0x1.c9b434bf3c34ep-32, 0, 0},
    {0x1.0ee643b990ee6p-8, -0x1.5f7268edab4c8p-9, 0x1.948b0fcd6e9ep-11, 0x1.0db20a88f4696p-19, -0x1.c253efaa1a932p-14,
     0x1.bbf43daf4fe53p-15, -0x1.ac2d05890f2c3p-17, 0x1.26154ae39151dp-25, 0x1.7058929663937p-20, -0x1.522cb05171911p-21,
     0x1.32ac81c15d3d7p-23, -0x1.c24bd0e740a6cp-33, -0x1.e437343a46f5dp-27, 0x1.ac0d455e2536p-28, -0x1.77c5829460139p-30, 0, 0, 0},
    {0x1.547d93b34e2b6p-11, 0x1.e13ce465fa859p-13, -0x1.ebfb188b7cap-12, 0x1.18b9b5bf2d984p-12, -0x1.3d2a3a29b5d9dp-14,
     -0x1.0152a1871f27ap-22, 0x1.73df462204ef4p-17, -0x1.7cd6f27b3f02p-18, 0x1.7e0201539310ep-20, -0x1.ea23269c140a7p-36,
     -0x1.6c2dcffbefeefp-23, 0x1.5bde8ef4c4dc7p-24, -0x1.4853ced169327p-26, 0, 0, 0, 0, 0},
    {-0x1.c3e0b02da7bf9p-11, 0x1.9b0ff6874f2c4p-11, -0x1.3999a85a4237ap-12, -0x1.88f2ae1def9dp-20, 0x1.16908b48ce058p-14,
     -0x1.4ce3fd902bcadp-15, 0x1.7db4c02846e81p-17, 0x1.13b3c5b7cb45ep-32, -0x1.c71c074985d3fp-20, 0x1.de37d9f09164cp-21,
     -0x1.ec676cf33153cp-23, 0, 0, 0, 0, 0, 0, 0},
    {-0x1.6128ac5a4fa71p-12, -0x1.247604839c038p-14, 0x1.22be87360ef1fp-12, -0x1.a2042c5148e27p-13, 0x1.1d1e9cb24760bp-14,
     0x1.30bdcf208080ep-23, -0x1.c823fc1b3cc36p-17, 0x1.0d0e229150428p-17, -0x1.338eb19652fd9p-19, -0x1.659cfde0bb2ebp-32, 0, 0, 0,
     0, 0, 0, 0, 0},
    {0x1.168ef1b0931c8p-11, -0x1.36773bdb97b48p-11, 0x1.1c0950d3ecb9dp-12, 0x1.a8411da6cab49p-21, -0x1.5600945495b37p-14,
     0x1.d6bdf83130dc1p-15, -0x1.3382f4cf48618p-16, -0x1.a74243fa27729p-29, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0x1.691879c01efb4p-12, 0x1.b1d75d3346711p-15, -0x1.5f3385098cebfp-12, 0x1.26eeb5ece1d9fp-12, -0x1.cc642787368cep-14,
     -0x1.119c70312e0a2p-23, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {-0x1.5629b3187b744p-11, 0x1.b8239c670e69p-11, -0x1.cb967b4446107p-12, -0x1.762676b30cfd6p-21, 0x1.5d1157082916dp-13, 0, 0, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {-0x1.38dff1cc96982p-11, -0x1.2e31f9b7913eap-14, 0x1.63969bb825829p-11, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
};
inline constexpr int temme_length[] = {18, 16, 15, 13, 11, 10, 8, 6, 5, 3};

} // namespace arrlib::fits

#endif
