#include "ops/op_table.h"

#include "ops/engine.h"
#include "ops/kernels/complex_loops.h"
#include "ops/kernels/kernel_set.h"

#include <iterator>

namespace arrlib {

namespace {

// --- loops over the kernels of one element --------------------------------------------------------

nx_complex element(ComplexOperand const& x, std::ptrdiff_t k)
{
    std::ptrdiff_t const at = k * x.step;
    return {x.re[at], x.im ? x.im[at] : 0};
}

template <RealUnary f> void each(RealOperand x, RealOperand, double* z, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k)
        z[k] = f(x.at[k * x.step]);
}
template <RealBinary f> void each(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k)
        z[k] = f(x.at[k * x.step], y.at[k * y.step]);
}
template <ComplexUnary f> void each(ComplexOperand x, ComplexOperand, double* re, double* im, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        nx_complex const z = f(element(x, k));
        re[k] = z.re;
        im[k] = z.im;
    }
}
template <ComplexBinary f> void each(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        nx_complex const z = f(element(x, k), element(y, k));
        re[k] = z.re;
        im[k] = z.im;
    }
}
template <RealOfComplex f> void each(ComplexOperand x, ComplexOperand, double* re, double*, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k)
        re[k] = f(element(x, k));
}
template <RealOfComplexes f> void each(ComplexOperand x, ComplexOperand y, double* re, double*, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k)
        re[k] = f(element(x, k), element(y, k));
}

// --- the kernels of a row -------------------------------------------------------------------------

template <RealUnary f, ComplexUnary g> constexpr Kernels unary = {each<f>, each<g>, nullptr, nullptr};
template <RealBinary f, ComplexBinary g> constexpr Kernels binary = {each<f>, each<g>, nullptr, nullptr};
// Real whatever the operands are.
template <RealUnary f, RealOfComplex g> constexpr Kernels measure = {each<f>, nullptr, each<g>, nullptr};
template <RealBinary f, RealOfComplexes g> constexpr Kernels relation = {each<f>, nullptr, each<g>, nullptr};
// Of real parts.
template <RealUnary f> constexpr Kernels real_unary = {each<f>, nullptr, nullptr, nullptr};
template <RealBinary f> constexpr Kernels real_binary = {each<f>, nullptr, nullptr, nullptr};
template <DimensionKernel f> constexpr Kernels along = {nullptr, nullptr, nullptr, f};

constexpr bool logical = true, numeric = false;
using enum ComplexRule;
using enum SparseRule;

constexpr Operation operations[] = {
    {"diff", numeric, with_x, full, along<along_diff>},
    {"del2", numeric, with_either, full, along<along_del2>},
    {"gradient", numeric, with_either, full, along<along_gradient>},
    {"all", logical, never, full, along<along_all>},
    {"any", logical, never, full, along<along_any>},
    {"cumprod", numeric, with_x, full, along<along_cumprod>},
    {"cumsum", numeric, with_x, full, along<along_cumsum>},
    {"max_1", numeric, with_nonzero_imaginary, full, along<along_max>},
    {"median", numeric, with_x, full, along<along_median>},
    {"min_1", numeric, with_nonzero_imaginary, full, along<along_min>},
    {"prod", numeric, with_x, full, along<along_prod>},
    {"sum", numeric, with_x, full, along<along_sum>},
    {"unwrap", numeric, with_x, full, along<along_unwrap>},
    {"abs", numeric, never, zero_of_zero, measure<nx_abs, nx_abs>},
    {"acos", numeric, outside_1, full, unary<nx_acos, nx_acos>},
    {"acosh", numeric, below_1, full, unary<nx_acosh, nx_acosh>},
    {"acot", numeric, with_x, full, unary<nx_acot, nx_acot>},
    {"acoth", numeric, inside_1, full, unary<nx_acoth, nx_acoth>},
    {"acsc", numeric, inside_1, full, unary<nx_acsc, nx_acsc>},
    {"acsch", numeric, with_x, full, unary<nx_acsch, nx_acsch>},
    {"&", logical, never, product, relation<nx_and, nx_and>},
    {"angle", numeric, never, zero_of_zero, measure<nx_angle, nx_angle>},
    {"asec", numeric, inside_1, full, unary<nx_asec, nx_asec>},
    {"asech", numeric, outside_0_1, full, unary<nx_asech, nx_asech>},
    {"asin", numeric, outside_1, zero_of_zero, unary<nx_asin, nx_asin>},
    {"asinh", numeric, with_x, zero_of_zero, unary<nx_asinh, nx_asinh>},
    {"atan", numeric, with_x, zero_of_zero, unary<nx_atan, nx_atan>},
    {"atan2", numeric, never, zero_of_zero, real_binary<nx_atan2>},
    {"atanh", numeric, outside_1, zero_of_zero, unary<nx_atanh, nx_atanh>},
    {"beta", numeric, never, full, real_binary<nx_beta>},
    {"bitand", numeric, with_either, zero_of_zero, binary<nx_bitand, nx_bitand>},
    {"bitcmp", numeric, with_either, zero_of_zero, binary<nx_bitcmp, nx_bitcmp>},
    {"bitget", numeric, with_either, full, binary<nx_bitget, nx_bitget>},
    {"bitor", numeric, with_either, zero_of_zero, binary<nx_bitor, nx_bitor>},
    {"bitreset", numeric, with_either, full, binary<nx_bitreset, nx_bitreset>},
    {"bitset", numeric, with_either, full, binary<nx_bitset, nx_bitset>},
    {"bitshift", numeric, with_either, zero_of_zero, binary<nx_bitshift, nx_bitshift>},
    {"bitxor", numeric, with_either, zero_of_zero, binary<nx_bitxor, nx_bitxor>},
    {"ceil", numeric, with_x, zero_of_zero, unary<nx_ceil, nx_ceil>},
    {"conj", numeric, with_x, zero_of_zero, unary<nx_conj, nx_conj>},
    {"cos", numeric, with_x, full, unary<nx_cos, nx_cos>},
    {"cosh", numeric, with_x, full, unary<nx_cosh, nx_cosh>},
    {"cot", numeric, with_x, full, unary<nx_cot, nx_cot>},
    {"coth", numeric, with_x, full, unary<nx_coth, nx_coth>},
    {"csc", numeric, with_x, full, unary<nx_csc, nx_csc>},
    {"csch", numeric, with_x, full, unary<nx_csch, nx_csch>},
    {"eq", logical, never, full, relation<nx_eq, nx_eq>},
    {"erfc", numeric, never, full, real_unary<nx_erfc>},
    {"erfcx", numeric, never, full, real_unary<nx_erfcx>},
    {"erfinv", numeric, never, zero_of_zero, real_unary<nx_erfinv>},
    {"erf_1", numeric, never, zero_of_zero, real_unary<nx_erf>},
    {"erf_2", numeric, never, zero_of_zero, real_binary<nx_erf>},
    {"exp", numeric, with_x, full, unary<nx_exp, nx_exp>},
    {"fix", numeric, with_x, zero_of_zero, unary<nx_fix, nx_fix>},
    {"floor", numeric, with_x, zero_of_zero, unary<nx_floor, nx_floor>},
    {"gamma", numeric, never, full, real_unary<nx_gamma>},
    {"gammainc", numeric, never, full, real_binary<nx_gammainc>},
    {"gammaln", numeric, never, full, real_unary<nx_gammaln>},
    {">=", logical, never, full, relation<nx_ge, nx_ge>},
    {">", logical, never, zero_of_zero, relation<nx_gt, nx_gt>},
    {"imag", numeric, never, zero_of_zero, measure<nx_imag, nx_imag>},
    {"isfinite", logical, never, full, measure<nx_isfinite, nx_isfinite>},
    {"isinf", logical, never, zero_of_zero, measure<nx_isinf, nx_isinf>},
    {"isnan", logical, never, zero_of_zero, measure<nx_isnan, nx_isnan>},
    {".\\", numeric, with_either, full, binary<nx_ldivide, nx_ldivide>},
    {"<=", logical, never, full, relation<nx_le, nx_le>},
    {"log", numeric, below_0, full, unary<nx_log, nx_log>},
    {"log10", numeric, below_0, full, unary<nx_log10, nx_log10>},
    {"log2", numeric, below_0, full, unary<nx_log2, nx_log2>},
    {"<", logical, never, zero_of_zero, relation<nx_lt, nx_lt>},
    {"max_2", numeric, with_either, zero_of_zero, binary<nx_max, nx_max>},
    {"-", numeric, with_either, zero_of_zero, binary<nx_minus, nx_minus>},
    {"min_2", numeric, with_either, zero_of_zero, binary<nx_min, nx_min>},
    {"mod", numeric, never, zero_of_zero, real_binary<nx_mod>},
    {"!=", logical, never, zero_of_zero, relation<nx_ne, nx_ne>},
    {"not", logical, never, full, measure<nx_not, nx_not>},
    {"|", logical, never, zero_of_zero, relation<nx_or, nx_or>},
    {"+", numeric, with_either, zero_of_zero, binary<nx_plus, nx_plus>},
    {"pow2_1", numeric, with_x, full, unary<nx_pow2, nx_pow2>},
    {"pow2_2", numeric, never, zero_of_zero, real_binary<nx_pow2>},
    {".^", numeric, power, full, binary<nx_power, nx_power>},
    {"./", numeric, with_either, full, binary<nx_rdivide, nx_rdivide>},
    {"rem", numeric, never, full, real_binary<nx_rem>},
    {"round", numeric, with_x, zero_of_zero, unary<nx_round, nx_round>},
    {"sec", numeric, with_x, full, unary<nx_sec, nx_sec>},
    {"sech", numeric, with_x, full, unary<nx_sech, nx_sech>},
    {"sign", numeric, with_x, zero_of_zero, unary<nx_sign, nx_sign>},
    {"sin", numeric, with_x, zero_of_zero, unary<nx_sin, nx_sin>},
    {"sinc", numeric, with_x, full, unary<nx_sinc, nx_sinc>},
    {"sinh", numeric, with_x, zero_of_zero, unary<nx_sinh, nx_sinh>},
    {"sqrt", numeric, below_0, zero_of_zero, unary<nx_sqrt, nx_sqrt>},
    {"tan", numeric, with_x, zero_of_zero, unary<nx_tan, nx_tan>},
    {"tanh", numeric, with_x, zero_of_zero, unary<nx_tanh, nx_tanh>},
    {".*", numeric, with_either, product, binary<nx_times, nx_times>},
    {"uminus", numeric, with_x, zero_of_zero, unary<nx_uminus, nx_uminus>},
    {"uplus", numeric, with_x, zero_of_zero, unary<nx_uplus, nx_uplus>},
    {"xor", logical, never, zero_of_zero, relation<nx_xor, nx_xor>},
};

static_assert(std::size(operations) == op_count);

} // namespace

Operation const* find_operation(int code)
{
    return code >= 0 && code < op_count ? &operations[code] : nullptr;
}

RealLoop real_loop(OpCode op)
{
    RealLoop const best = kernel_set().real[op];
    return best ? best : operations[op].kernels.real;
}

ComplexLoop complex_loop_of(OpCode op)
{
    ComplexLoop const special = operations[op].kernels.complex ? complex_loop(op) : nullptr;
    return special ? special : operations[op].kernels.complex;
}

ComplexLoop real_of_complex_loop(OpCode op)
{
    ComplexLoop const special = operations[op].kernels.real_of_complex ? complex_loop(op) : nullptr;
    return special ? special : operations[op].kernels.real_of_complex;
}

} // namespace arrlib

char const* op_name(OpCode op)
{
    arrlib::Operation const* const row = arrlib::find_operation(op);
    return row ? row->name : "???";
}

int op_is_logical(OpCode op)
{
    arrlib::Operation const* const row = arrlib::find_operation(op);
    return row && row->logical;
}
