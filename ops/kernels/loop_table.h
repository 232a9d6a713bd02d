// The table of a kind: which formula serves which operation.
#ifndef ARRLIB_OPS_KERNELS_LOOP_TABLE_H
#define ARRLIB_OPS_KERNELS_LOOP_TABLE_H

#include "ops/kernels/kernel_set.h"
#include "ops/kernels/loop_arithmetic.h"
#include "ops/kernels/loop_atan.h"
#include "ops/kernels/loop_complex.h"
#include "ops/kernels/loop_power.h"
#include "ops/kernels/loop_trig.h"
#include "ops/kernels/loops.h"

namespace arrlib {
namespace {

template <class Formula> constexpr void set_elementary(KernelSet& set, OpCode op)
{
    set.unary[op] = unary_one<Formula>;
    set.real[op] = long_unary_loop<Formula>;
}
template <class Formula> constexpr void set_paired(KernelSet& set, OpCode op)
{
    set.unary[op] = unary_one<Formula>;
    set.real[op] = paired_unary_loop<Formula>;
}
template <class Formula> constexpr void set_elementary_binary(KernelSet& set, OpCode op)
{
    set.binary[op] = binary_one<Formula>;
    set.real[op] = paired_binary_loop<Formula>;
}

constexpr KernelSet kernels_of_this_kind(char const* kind)
{
    KernelSet set{};
    set.kind = kind;
    set.any_outside = any_element<Outside>;
    set.any_inside = any_element<Inside>;
    set.any_negative = any_below_zero;

    set_elementary<Acos>(set, op_acos);
    set_elementary<Acosh>(set, op_acosh);
    set_elementary<Acot>(set, op_acot);
    set_elementary<Acoth>(set, op_acoth);
    set_elementary<Acsc>(set, op_acsc);
    set_elementary<Acsch>(set, op_acsch);
    set_elementary<Asec>(set, op_asec);
    set_elementary<Asech>(set, op_asech);
    set_elementary<Asin>(set, op_asin);
    set_elementary<Asinh>(set, op_asinh);
    set_elementary<Atan>(set, op_atan);
    set_elementary<Atanh>(set, op_atanh);
    set_paired<Cos>(set, op_cos);
    set_elementary<Cosh>(set, op_cosh);
    set_elementary<Cot>(set, op_cot);
    set_elementary<Coth>(set, op_coth);
    set_elementary<Csc>(set, op_csc);
    set_elementary<Csch>(set, op_csch);
    set_paired<Exp>(set, op_exp);
    set_paired<Log>(set, op_log);
    set_elementary<Log10>(set, op_log10);
    set_elementary<Log2>(set, op_log2);
    set_elementary<Sec>(set, op_sec);
    set_elementary<Sech>(set, op_sech);
    set_paired<Sin>(set, op_sin);
    set_elementary<Sinc>(set, op_sinc);
    set_elementary<Sinh>(set, op_sinh);
    set_elementary<Sqrt>(set, op_sqrt);
    set_elementary<Tan>(set, op_tan);
    set_elementary<Tanh>(set, op_tanh);
    set_elementary<Pow2>(set, op_pow2_1);
    set_elementary_binary<Atan2>(set, op_atan2);
    set_elementary_binary<Power>(set, op_power);

    set.real[op_plus] = binary_loop<Plus>;
    set.real[op_minus] = binary_loop<Minus>;
    set.real[op_times] = binary_loop<Times>;
    set.real[op_rdivide] = binary_loop<RightDivide>;
    set.real[op_ldivide] = binary_loop<LeftDivide>;
    set.real[op_rem] = long_binary_loop<Rem>;
    set.real[op_mod] = long_binary_loop<Mod>;
    set.real[op_max_2] = binary_loop<Max>;
    set.real[op_min_2] = binary_loop<Min>;
    set.real[op_lt] = binary_loop<Less>;
    set.real[op_le] = binary_loop<LessEqual>;
    set.real[op_gt] = binary_loop<Greater>;
    set.real[op_ge] = binary_loop<GreaterEqual>;
    set.real[op_eq] = binary_loop<Equal>;
    set.real[op_ne] = binary_loop<Unequal>;
    set.real[op_and] = binary_loop<And>;
    set.real[op_or] = binary_loop<Or>;
    set.real[op_xor] = binary_loop<Xor>;

    set.complex[op_times] = complex_times_loop;

    set.real[op_uminus] = unary_loop<UnaryMinus>;
    set.real[op_uplus] = unary_loop<UnaryPlus>;
    set.real[op_conj] = unary_loop<UnaryPlus>;
    set.real[op_imag] = unary_loop<Imag>;
    set.real[op_angle] = unary_loop<Angle>;
    set.real[op_abs] = unary_loop<Abs>;
    set.real[op_sign] = unary_loop<Sign>;
    set.real[op_ceil] = unary_loop<Ceil>;
    set.real[op_fix] = unary_loop<Fix>;
    set.real[op_floor] = unary_loop<Floor>;
    set.real[op_round] = unary_loop<Round>;
    set.real[op_not] = unary_loop<Not>;
    set.real[op_isfinite] = unary_loop<IsFinite>;
    set.real[op_isinf] = unary_loop<IsInf>;
    set.real[op_isnan] = unary_loop<IsNan>;
    return set;
}

} // namespace
} // namespace arrlib

#endif
