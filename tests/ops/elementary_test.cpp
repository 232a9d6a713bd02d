// The elementary functions against values of high precision, on every kind of processor.
#include "ops/kernels/kernel_set.h"

#include "ops/elementary_reference.h"
#include "support/ulp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <span>

using namespace arrlib;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = std::numbers::pi;
constexpr double tiny = std::numeric_limits<double>::denorm_min();
constexpr double huge = std::numeric_limits<double>::max();

struct UnaryCase {
    char const* name;
    OpCode op;
    RealUnary kernel;
    std::span<reference::Unary const> values;
};
UnaryCase const unary_cases[] = {
    {"acos", op_acos, nx_acos, reference::of_acos},     {"acosh", op_acosh, nx_acosh, reference::of_acosh},
    {"acot", op_acot, nx_acot, reference::of_acot},     {"acoth", op_acoth, nx_acoth, reference::of_acoth},
    {"acsc", op_acsc, nx_acsc, reference::of_acsc},     {"acsch", op_acsch, nx_acsch, reference::of_acsch},
    {"asec", op_asec, nx_asec, reference::of_asec},     {"asech", op_asech, nx_asech, reference::of_asech},
    {"asin", op_asin, nx_asin, reference::of_asin},     {"asinh", op_asinh, nx_asinh, reference::of_asinh},
    {"atan", op_atan, nx_atan, reference::of_atan},     {"atanh", op_atanh, nx_atanh, reference::of_atanh},
    {"cos", op_cos, nx_cos, reference::of_cos},         {"cosh", op_cosh, nx_cosh, reference::of_cosh},
    {"cot", op_cot, nx_cot, reference::of_cot},         {"coth", op_coth, nx_coth, reference::of_coth},
    {"csc", op_csc, nx_csc, reference::of_csc},         {"csch", op_csch, nx_csch, reference::of_csch},
    {"exp", op_exp, nx_exp, reference::of_exp},         {"log", op_log, nx_log, reference::of_log},
    {"log10", op_log10, nx_log10, reference::of_log10}, {"log2", op_log2, nx_log2, reference::of_log2},
    {"pow2", op_pow2_1, nx_pow2, reference::of_pow2},   {"sec", op_sec, nx_sec, reference::of_sec},
    {"sech", op_sech, nx_sech, reference::of_sech},     {"sin", op_sin, nx_sin, reference::of_sin},
    {"sinc", op_sinc, nx_sinc, reference::of_sinc},     {"sinh", op_sinh, nx_sinh, reference::of_sinh},
    {"tan", op_tan, nx_tan, reference::of_tan},         {"tanh", op_tanh, nx_tanh, reference::of_tanh},
};
struct BinaryCase {
    char const* name;
    OpCode op;
    RealBinary kernel;
    std::span<reference::Binary const> values;
};
BinaryCase const binary_cases[] = {
    {"atan2", op_atan2, nx_atan2, reference::of_atan2},
    {"power", op_power, nx_power, reference::of_power},
};

std::span<KernelSet const* const> all_sets()
{
    static KernelSet const* sets[3];
    static int const count = kernel_sets(sets);
    return {sets, static_cast<std::size_t>(count)};
}

TEST(Elementary, WithinOneUlp)
{
    for (KernelSet const* set : all_sets()) {
        for (UnaryCase const& test : unary_cases)
            for (auto const& [x, value, lacking] : test.values)
                EXPECT_LE(ulp::distance(set->unary[test.op](x), value, lacking / 100.0), 1) << set->kind << ' ' << test.name << ' ' << std::hexfloat << x;
        for (BinaryCase const& test : binary_cases)
            for (auto const& [x, y, value, lacking] : test.values)
                EXPECT_LE(ulp::distance(set->binary[test.op](x, y), value, lacking / 100.0), 1)
                    << set->kind << ' ' << test.name << ' ' << std::hexfloat << x << ' ' << y;
    }
}

// What the exported kernels give is what the kind in use gives.
TEST(Elementary, ExportedKernelsAreThoseOfTheKind)
{
    for (UnaryCase const& test : unary_cases)
        for (auto const& row : test.values)
            EXPECT_TRUE(ulp::same(test.kernel(row.x), kernel_set().unary[test.op](row.x))) << test.name << ' ' << row.x;
    for (BinaryCase const& test : binary_cases)
        for (auto const& row : test.values)
            EXPECT_TRUE(ulp::same(test.kernel(row.x, row.y), kernel_set().binary[test.op](row.x, row.y))) << test.name << ' ' << row.x;
    EXPECT_EQ(nx_sqrt(2), std::sqrt(2.0));
}

// Exact, with the sign of zeros; arguments outside the range of a function.
TEST(Elementary, SpecialValues)
{
    struct Row {
        OpCode op;
        double x, value;
    };
    Row const rows[] = {
        {op_acos, 1, 0}, {op_acos, 1.5, nan}, {op_acos, -1.5, nan}, {op_acos, inf, nan},
        {op_acosh, 1, 0}, {op_acosh, 0.5, nan}, {op_acosh, -inf, nan}, {op_acosh, inf, inf},
        {op_acot, 0.0, pi / 2}, {op_acot, -1, -pi / 4}, {op_acot, inf, 0.0}, {op_acot, -inf, -0.0},
        {op_acoth, 1, inf}, {op_acoth, -1, -inf}, {op_acoth, 0.5, nan}, {op_acoth, inf, 0.0}, {op_acoth, -inf, -0.0},
        {op_acsc, 1, pi / 2}, {op_acsc, 0.5, nan}, {op_acsc, 0.0, nan}, {op_acsc, -inf, -0.0},
        {op_acsch, 0.0, inf}, {op_acsch, -0.0, -inf}, {op_acsch, inf, 0.0},
        {op_asec, 1, 0.0}, {op_asec, -1, pi}, {op_asec, 0.5, nan}, {op_asec, -0.5, nan}, {op_asec, inf, pi / 2},
        {op_asech, 0.0, inf}, {op_asech, 1, 0.0}, {op_asech, 1.5, nan}, {op_asech, -0.5, nan}, {op_asech, inf, nan},
        {op_asin, -0.0, -0.0}, {op_asin, 1, pi / 2}, {op_asin, -1.5, nan}, {op_asin, tiny, tiny}, {op_asin, inf, nan},
        {op_asinh, -0.0, -0.0}, {op_asinh, -inf, -inf}, {op_asinh, tiny, tiny},
        {op_atan, -0.0, -0.0}, {op_atan, inf, pi / 2}, {op_atan, -inf, -pi / 2}, {op_atan, tiny, tiny}, {op_atan, huge, pi / 2},
        {op_atanh, -0.0, -0.0}, {op_atanh, 1, inf}, {op_atanh, -1, -inf}, {op_atanh, 1.5, nan}, {op_atanh, inf, nan}, {op_atanh, tiny, tiny},
        {op_cos, 0.0, 1}, {op_cos, inf, nan}, {op_cosh, 0.0, 1}, {op_cosh, -inf, inf}, {op_cosh, 711, inf},
        {op_cot, 0.0, inf}, {op_cot, -0.0, -inf}, {op_cot, inf, nan}, {op_coth, 0.0, inf}, {op_coth, -0.0, -inf}, {op_coth, inf, 1},
        {op_csc, 0.0, inf}, {op_csc, -0.0, -inf}, {op_csc, inf, nan}, {op_csch, -0.0, -inf}, {op_csch, inf, 0.0}, {op_csch, -inf, -0.0},
        {op_exp, -inf, 0.0}, {op_exp, inf, inf}, {op_exp, 0.0, 1}, {op_exp, 709.79, inf}, {op_exp, -746, 0.0}, {op_exp, huge, inf},
        {op_log, 0.0, -inf}, {op_log, -0.0, -inf}, {op_log, 1, 0.0}, {op_log, -1, nan}, {op_log, inf, inf}, {op_log, -inf, nan},
        {op_log10, 0.0, -inf}, {op_log10, 1, 0.0}, {op_log10, 1e15, 15}, {op_log10, -tiny, nan}, {op_log10, inf, inf},
        {op_log2, 0.0, -inf}, {op_log2, 1, 0.0}, {op_log2, 0x1p-1074, -1074}, {op_log2, 0x1p1023, 1023}, {op_log2, -1, nan}, {op_log2, inf, inf},
        {op_pow2_1, -1075, 0.0}, {op_pow2_1, 1024, inf}, {op_pow2_1, -inf, 0.0}, {op_pow2_1, inf, inf}, {op_pow2_1, -1074, tiny},
        {op_sec, 0.0, 1}, {op_sec, inf, nan}, {op_sech, 0.0, 1}, {op_sech, inf, 0.0},
        {op_sin, -0.0, -0.0}, {op_sin, inf, nan}, {op_sin, tiny, tiny},
        {op_sinc, 0.0, 1}, {op_sinc, -0.0, 1}, {op_sinc, 1, 0}, {op_sinc, huge, 0}, {op_sinc, tiny, 1}, {op_sinc, inf, nan},
        {op_sinh, -0.0, -0.0}, {op_sinh, -711, -inf}, {op_sinh, tiny, tiny},
        {op_sqrt, -0.0, -0.0}, {op_sqrt, -1, nan}, {op_sqrt, inf, inf},
        {op_tan, -0.0, -0.0}, {op_tan, -inf, nan}, {op_tan, tiny, tiny},
        {op_tanh, -0.0, -0.0}, {op_tanh, inf, 1}, {op_tanh, -40, -1}, {op_tanh, tiny, tiny},
    };
    for (KernelSet const* set : all_sets()) {
        for (auto const& [op, x, value] : rows) {
            double const got = set->unary[op](x);
            EXPECT_TRUE(ulp::same(got, value) || (value == 0 && x != 0 && got == 0)) << set->kind << ' ' << op << '(' << x << ") = " << got;
        }
        for (UnaryCase const& test : unary_cases)
            EXPECT_TRUE(std::isnan(set->unary[test.op](nan))) << set->kind << ' ' << test.name;
    }
}

// The C library has the special values of these two.
TEST(Elementary, SpecialPairsAreThoseOfTheCLibrary)
{
    double const numbers[] = {0.0, tiny, 0x1p-1000, 0.5, 1, 1.5, 2, 3, 0x1p53, 0x1p53 + 2, 1e300, huge, inf, nan};
    for (KernelSet const* set : all_sets())
        for (double const x : numbers)
            for (double const y : numbers)
                for (int signs = 0; signs < 4; ++signs) {
                    double const a = signs & 1 ? -x : x, b = signs & 2 ? -y : y;
                    EXPECT_LE(ulp::distance(set->binary[op_power](a, b), std::pow(a, b)), 1) << set->kind << ' ' << a << " ^ " << b;
                    EXPECT_LE(ulp::distance(set->binary[op_atan2](a, b), std::atan2(a, b)), 1) << set->kind << ' ' << a << ", " << b;
                    EXPECT_EQ(std::signbit(set->binary[op_atan2](a, b)) || std::isnan(a + b), std::signbit(std::atan2(a, b)) || std::isnan(a + b));
                    double const power = set->binary[op_power](a, b);
                    EXPECT_TRUE(std::isnan(power) || std::signbit(power) == std::signbit(std::pow(a, b))) << a << " ^ " << b;
                }
}

} // namespace
