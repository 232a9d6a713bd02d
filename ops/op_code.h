// The operations of the engine, by number. The order is that of the table in ops/op_table.cpp and
// of every table derived from it.
#ifndef ARRLIB_OPS_OP_CODE_H
#define ARRLIB_OPS_OP_CODE_H

// Operations up to op_unwrap work along a dimension, the others element by element.
enum OpCode : int {
    op_diff, op_del2, op_gradient, op_all, op_any, op_cumprod, op_cumsum, op_max_1, op_median, op_min_1, op_prod, op_sum, op_unwrap,
    op_abs, op_acos, op_acosh, op_acot, op_acoth, op_acsc, op_acsch, op_and, op_angle, op_asec, op_asech, op_asin, op_asinh, op_atan,
    op_atan2, op_atanh, op_beta, op_bitand, op_bitcmp, op_bitget, op_bitor, op_bitreset, op_bitset, op_bitshift, op_bitxor, op_ceil,
    op_conj, op_cos, op_cosh, op_cot, op_coth, op_csc, op_csch, op_eq, op_erfc, op_erfcx, op_erfinv, op_erf_1, op_erf_2, op_exp, op_fix,
    op_floor, op_gamma, op_gammainc, op_gammaln, op_ge, op_gt, op_imag, op_isfinite, op_isinf, op_isnan, op_ldivide, op_le, op_log,
    op_log10, op_log2, op_lt, op_max_2, op_minus, op_min_2, op_mod, op_ne, op_not, op_or, op_plus, op_pow2_1, op_pow2_2, op_power,
    op_rdivide, op_rem, op_round, op_sec, op_sech, op_sign, op_sin, op_sinc, op_sinh, op_sqrt, op_tan, op_tanh, op_times, op_uminus,
    op_uplus, op_xor,
    op_count
};

#endif
