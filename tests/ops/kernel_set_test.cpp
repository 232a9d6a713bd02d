// Every loop of every kind gives the bits of the one-element kernel, in all its forms.
#include "ops/kernels/kernel_set.h"

#include "ops/kernels/fused.h"
#include "support/ulp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace arrlib;

namespace {

// What one element of a loop is; the engine's table says the same of all operations.
struct OneElement {
    OpCode op;
    RealUnary unary;
    RealBinary binary;
};
OneElement const arithmetic[] = {
    {op_plus, nullptr, nx_plus}, {op_minus, nullptr, nx_minus}, {op_times, nullptr, nx_times}, {op_rdivide, nullptr, nx_rdivide},
    {op_ldivide, nullptr, nx_ldivide}, {op_rem, nullptr, nx_rem}, {op_mod, nullptr, nx_mod}, {op_max_2, nullptr, nx_max},
    {op_min_2, nullptr, nx_min}, {op_lt, nullptr, nx_lt}, {op_le, nullptr, nx_le}, {op_gt, nullptr, nx_gt}, {op_ge, nullptr, nx_ge},
    {op_eq, nullptr, nx_eq}, {op_ne, nullptr, nx_ne}, {op_and, nullptr, nx_and}, {op_or, nullptr, nx_or}, {op_xor, nullptr, nx_xor},
    {op_uminus, nx_uminus, nullptr}, {op_uplus, nx_uplus, nullptr}, {op_conj, nx_conj, nullptr}, {op_imag, nx_imag, nullptr},
    {op_angle, nx_angle, nullptr}, {op_abs, nx_abs, nullptr}, {op_sign, nx_sign, nullptr}, {op_ceil, nx_ceil, nullptr},
    {op_fix, nx_fix, nullptr}, {op_floor, nx_floor, nullptr}, {op_round, nx_round, nullptr}, {op_not, nx_not, nullptr},
    {op_isfinite, nx_isfinite, nullptr}, {op_isinf, nx_isinf, nullptr}, {op_isnan, nx_isnan, nullptr},
};

OneElement one_element(OpCode op)
{
    for (OneElement const& row : arithmetic)
        if (row.op == op)
            return row;
    return {op, kernel_set().unary[op], kernel_set().binary[op]};
}

// Numbers near 1, of moderate and of any size, whole ones and special ones.
class Numbers {
public:
    double operator()()
    {
        static double const special[] = {0.0, -0.0, 1, -1, 0.5, -0.5, 0.49999999999999994, 0x1p52, 0x1p53, 5e-324, -2e-310, 1.7e308,
                                         INFINITY, -INFINITY, std::numeric_limits<double>::quiet_NaN()};
        switch (random_() % 6) {
        case 0: return between(-1.2, 1.2);
        case 1: return between(-20, 20);
        case 2: return between(-800, 800);
        case 3: return std::round(between(-50, 50));
        case 4: return std::ldexp(between(-2, 2), static_cast<int>(between(-1075, 1024)));
        default: return special[random_() % std::size(special)];
        }
    }

private:
    double between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random_); }

    std::mt19937_64 random_{7};
};

class EachKind : public testing::TestWithParam<int> {
protected:
    // Null when the processor lacks the kind.
    static KernelSet const* set()
    {
        KernelSet const* sets[3];
        return GetParam() < kernel_sets(sets) ? sets[GetParam()] : nullptr;
    }
};
INSTANTIATE_TEST_SUITE_P(Kinds, EachKind, testing::Values(0, 1, 2));

// Operands and results lie one element behind a place of full alignment, or where the result begins;
// the elements around the result stay.
void expect_bits_of_one_element(KernelSet const& set, OpCode op, int x_step, int y_step, std::ptrdiff_t n, bool in_place, Numbers& next)
{
    constexpr std::size_t room = 48;
    constexpr double untouched = 1234.5;
    alignas(64) double x[room], y[room], z[room];
    for (std::size_t k = 0; k < room; ++k) {
        x[k] = next();
        y[k] = next();
        z[k] = untouched;
    }
    double* const to = in_place ? (x_step ? x : y) + 1 : z + 1;
    std::vector<double> expected(to, to + room - 1);
    OneElement const one = one_element(op);
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        double const a = x[1 + k * x_step], b = y[1 + k * y_step];
        expected[static_cast<std::size_t>(k)] = one.unary ? one.unary(a) : one.binary(a, b);
    }
    set.real[op]({x + 1, x_step}, {y + 1, y_step}, to, n);
    for (std::size_t k = 0; k + 1 < room; ++k)
        ASSERT_TRUE(ulp::same(to[k], expected[k]))
            << set.kind << " operation " << op << ", steps " << x_step << y_step << ", element " << k << " of " << n << ": " << to[k] << ", not " << expected[k];
}

TEST_P(EachKind, LoopsGiveTheBitsOfOneElement)
{
    if (!set())
        GTEST_SKIP() << "not on this processor";
    Numbers next;
    for (int op = 0; op < op_count; ++op) {
        if (!set()->real[op])
            continue;
        OneElement const one = one_element(static_cast<OpCode>(op));
        ASSERT_TRUE(one.unary || one.binary) << op;
        int const steps[][2] = {{1, 1}, {1, 0}, {0, 1}, {0, 0}};
        for (auto const& [x_step, y_step] : steps)
            for (std::ptrdiff_t n = 0; n <= 40; ++n) {
                expect_bits_of_one_element(*set(), one.op, x_step, y_step, n, false, next);
                if (x_step || y_step)
                    expect_bits_of_one_element(*set(), one.op, x_step, y_step, n, x_step || one.binary, next);
            }
    }
}

TEST_P(EachKind, ElementaryKernelsGiveTheSameBits)
{
    if (!set())
        GTEST_SKIP() << "not on this processor";
    Numbers next;
    for (int op = 0; op < op_count; ++op)
        for (int k = 0; k < 3000; ++k) {
            double const x = next(), y = next();
            KernelSet const &one = *set(), &best = kernel_set();
            ASSERT_EQ(one.unary[op] == nullptr, best.unary[op] == nullptr);
            if (one.unary[op]) {
                ASSERT_TRUE(ulp::same(one.unary[op](x), best.unary[op](x))) << one.kind << ' ' << op << ' ' << x;
            }
            if (one.binary[op]) {
                ASSERT_TRUE(ulp::same(one.binary[op](x, y), best.binary[op](x, y))) << one.kind << ' ' << op << ' ' << x << ' ' << y;
            }
        }
}

// The environment is read once, so another process asks.
TEST(KernelSetDeathTest, EnvironmentNamesTheKind)
{
#if defined(_WIN32)
    GTEST_SKIP() << "one kind only";
#else
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    KernelSet const* sets[3];
    int const count = kernel_sets(sets);
    for (int k = 0; k < count; ++k)
        EXPECT_EXIT(
            {
                setenv("ARRLIB_KERNELS", sets[k]->kind, 1);
                std::exit(std::strcmp(kernel_set().kind, sets[k]->kind));
            },
            testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("ARRLIB_KERNELS", "none such", 1);
            std::exit(std::strcmp(kernel_set().kind, sets[count - 1]->kind));
        },
        testing::ExitedWithCode(0), "");
#endif
}

// Processors and C libraries without the instruction get the same bits.
TEST(Fused, ByPartsIsRoundedOnce)
{
    std::mt19937_64 random(3);
    auto const draw = [&](int exponents) {
        double const x = std::uniform_real_distribution<double>(-2, 2)(random);
        return std::ldexp(x, static_cast<int>(random() % static_cast<unsigned>(2 * exponents + 1)) - exponents);
    };
    for (int k = 0; k < 200000; ++k) {
        double const a = draw(30), b = draw(30);
        // A sum near the product's negative, near a tie, or anything.
        double const c = k % 3 == 0 ? -a * b : k % 3 == 1 ? std::ldexp(a * b, 50 + static_cast<int>(random() % 8)) : draw(200);
        ASSERT_EQ(fused_by_parts(a, b, c), std::fma(a, b, c)) << std::hexfloat << a << ' ' << b << ' ' << c;
    }
    EXPECT_EQ(fused_by_parts(INFINITY, 1, 1), INFINITY);
    EXPECT_EQ(fused_by_parts(2, 3, -INFINITY), -INFINITY);
    EXPECT_TRUE(std::isnan(fused_by_parts(NAN, 1, 1)));
}

TEST(Arithmetic, SpecialValues)
{
    double const inf = INFINITY, nan = NAN, below_half = 0.49999999999999994;
    struct Row {
        double got, expected;
    };
    Row const rows[] = {
        {nx_round(below_half), 0}, {nx_round(-below_half), -0.0}, {nx_round(0.5), 1}, {nx_round(-2.5), -3}, {nx_round(0x1p52 + 1), 0x1p52 + 1},
        {nx_round(-inf), -inf}, {nx_fix(-1.7), -1}, {nx_ceil(-0.5), -0.0}, {nx_floor(-0.5), -1}, {nx_sign(-3), -1}, {nx_sign(nan), nan}, {nx_sign(inf), 1},
        {nx_mod(5, 3), 2}, {nx_mod(-5, 3), 1}, {nx_mod(5, -3), -1}, {nx_mod(-5, -3), -2}, {nx_mod(6, -3), -0.0}, {nx_mod(-6, 3), 0}, {nx_mod(7, 0), 7},
        {nx_mod(nan, 0), nan}, {nx_mod(inf, 3), nan}, {nx_mod(3, inf), 3}, {nx_mod(-3, inf), inf}, {nx_mod(-1e-20, 1), 1 - 0x1p-53}, {nx_mod(1, nan), nan},
        {nx_mod(0x1p60, 3), 1}, {nx_rem(5, 3), 2}, {nx_rem(-5, 3), -2}, {nx_rem(5, -3), 2}, {nx_rem(-6, 3), -0.0}, {nx_rem(5, 0), nan}, {nx_rem(5, inf), 5},
        {nx_rem(inf, 2), nan}, {nx_max(nan, 1), 1}, {nx_max(1, nan), 1}, {nx_max(nan, nan), nan}, {nx_max(2, 1), 2}, {nx_min(nan, 1), 1}, {nx_min(1, nan), 1},
        {nx_min(-inf, nan), -inf}, {nx_pow2(3, 2.9), 12}, {nx_pow2(-3, -1.5), -1.5}, {nx_pow2(1, -1074), 5e-324}, {nx_pow2(0x1p-1074, 2097), 0x1p1023},
        {nx_pow2(1, inf), inf}, {nx_pow2(0, inf), nan}, {nx_pow2(1, nan), nan}, {nx_angle(-2), 0x1.921fb54442d18p1}, {nx_angle(0), 0}, {nx_angle(nan), nan},
        {nx_imag(5), 0}, {nx_and(nan, 1), 1}, {nx_or(0, -0.0), 0}, {nx_xor(nan, 1), 0}, {nx_xor(0, 2), 1}, {nx_not(nan), 0}, {nx_not(-0.0), 1},
        {nx_eq(nan, nan), 0}, {nx_ne(nan, nan), 1}, {nx_ge(nan, 1), 0}, {nx_isfinite(nan), 0}, {nx_isfinite(-inf), 0}, {nx_isinf(-inf), 1}, {nx_isnan(inf), 0},
        {nx_ldivide(2, 6), 3}, {nx_rdivide(1, 0), inf},
    };
    for (Row const& row : rows)
        EXPECT_TRUE(ulp::same(row.got, row.expected)) << "row " << &row - rows << ": " << row.got;
}

TEST(Arithmetic, RemaindersAreExact)
{
    Numbers next;
    for (int k = 0; k < 100000; ++k) {
        double const x = next(), y = next(), rest = std::fmod(x, y);
        ASSERT_TRUE(ulp::same(nx_rem(x, y), rest)) << std::hexfloat << x << ' ' << y;
        double const mod = nx_mod(x, y);
        if (std::isnan(rest) || std::isinf(y))
            continue;
        ASSERT_TRUE(std::signbit(mod) == std::signbit(y) && std::fabs(mod) < std::fabs(y)) << x << ' ' << y << ' ' << mod;
        // Rounded once; just below y where that would be y.
        double const sum = rest != 0 && (rest < 0) != (y < 0) ? rest + y : rest;
        ASSERT_EQ(mod, sum == y ? std::nextafter(y, 0) : sum) << std::hexfloat << x << ' ' << y;
    }
}

} // namespace
