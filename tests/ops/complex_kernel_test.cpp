// The complex kernels against values computed with many digits, at infinities and signed zeros, and
// the loops against the kernels.
#include "ops/kernels.h"

#include "ops/complex_reference.h"
#include "ops/kernels/complex_loops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <vector>

static std::ostream& operator<<(std::ostream& to, nx_complex x)
{
    return to << x.re << (std::signbit(x.im) ? "" : "+") << x.im << "i";
}

namespace {

using Unary = arrlib::ComplexUnary;
using Binary = arrlib::ComplexBinary;

constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();

bool is_near(nx_complex found, nx_complex want, double relative)
{
    double const allowed = relative * std::hypot(want.re, want.im);
    return std::fabs(found.re - want.re) <= allowed && std::fabs(found.im - want.im) <= allowed;
}
// NaN as well, and the signs of zeros.
bool is_same(double found, double want)
{
    return std::isnan(want) ? std::isnan(found) : found == want && std::signbit(found) == std::signbit(want);
}
bool is_same(nx_complex found, nx_complex want)
{
    return is_same(found.re, want.re) && is_same(found.im, want.im);
}

TEST(ComplexKernels, AgreeWithTheReference)
{
    struct Case {
        char const* name;
        Unary f;
        nx_complex const* want;
    } const cases[] = {
        {"acos", nx_acos, reference::acos},    {"acosh", nx_acosh, reference::acosh}, {"acot", nx_acot, reference::acot},
        {"acoth", nx_acoth, reference::acoth}, {"acsc", nx_acsc, reference::acsc},    {"acsch", nx_acsch, reference::acsch},
        {"asec", nx_asec, reference::asec},    {"asech", nx_asech, reference::asech}, {"asin", nx_asin, reference::asin},
        {"asinh", nx_asinh, reference::asinh}, {"atan", nx_atan, reference::atan},    {"atanh", nx_atanh, reference::atanh},
        {"cos", nx_cos, reference::cos},       {"cosh", nx_cosh, reference::cosh},    {"cot", nx_cot, reference::cot},
        {"coth", nx_coth, reference::coth},    {"csc", nx_csc, reference::csc},       {"csch", nx_csch, reference::csch},
        {"exp", nx_exp, reference::exp},       {"log", nx_log, reference::log},       {"log10", nx_log10, reference::log10},
        {"log2", nx_log2, reference::log2},    {"pow2", nx_pow2, reference::pow2},    {"sec", nx_sec, reference::sec},
        {"sech", nx_sech, reference::sech},    {"sin", nx_sin, reference::sin},       {"sinc", nx_sinc, reference::sinc},
        {"sinh", nx_sinh, reference::sinh},    {"sqrt", nx_sqrt, reference::sqrt},    {"tan", nx_tan, reference::tan},
        {"tanh", nx_tanh, reference::tanh},
    };
    for (Case const& check : cases)
        for (std::size_t k = 0; k < std::size(reference::points); ++k) {
            nx_complex const at = reference::points[k], want = check.want[k], found = check.f(at);
            EXPECT_TRUE(is_near(found, want, 1.2e-15)) << check.name << "(" << at << ") = " << found << ", not " << want;
            // The two sides of the real axis; sinc has no cuts.
            bool const sided = found.im != 0 || std::signbit(found.im) == std::signbit(want.im) || check.want == reference::sinc;
            EXPECT_TRUE(sided) << check.name << "(" << at << ") = " << found << ", not " << want;
        }
    for (auto const& [base, exponent, want] : reference::powers)
        EXPECT_TRUE(is_near(nx_power(base, exponent), want, 4e-15 + 2e-16 * std::fabs(exponent.re))) << base << " to the " << exponent;
}

TEST(ComplexKernels, KeepInfinitiesAndZeros)
{
    constexpr double pi = 3.14159265358979323846;
    struct Case {
        char const* name;
        Unary f;
        nx_complex at, want;
    } const cases[] = {
        {"exp", nx_exp, {-inf, 2}, {-0.0, 0}},          {"exp", nx_exp, {inf, 0}, {inf, 0}},         {"exp", nx_exp, {inf, inf}, {inf, nan}},
        {"exp", nx_exp, {nan, -0.0}, {nan, -0.0}},      {"exp", nx_exp, {1, inf}, {nan, nan}},
        {"log", nx_log, {-0.0, 0}, {-inf, pi}},         {"log", nx_log, {0, -0.0}, {-inf, -0.0}},    {"log", nx_log, {nan, -inf}, {inf, nan}},
        {"log", nx_log, {-inf, inf}, {inf, 3 * pi / 4}}, {"sqrt", nx_sqrt, {-4, 0}, {0, 2}},          {"sqrt", nx_sqrt, {-4, -0.0}, {0, -2}},
        {"sqrt", nx_sqrt, {3, -4}, {2, -1}},            {"sqrt", nx_sqrt, {nan, -inf}, {inf, -inf}}, {"sqrt", nx_sqrt, {-inf, 3}, {0, inf}},
        {"sqrt", nx_sqrt, {0x1p1023, 0x1p1023}, {1.0416351505169179e154, 4.3145940638864758e153}},
        {"sinh", nx_sinh, {inf, inf}, {inf, nan}},      {"sinh", nx_sinh, {-0.0, nan}, {-0.0, nan}}, {"cosh", nx_cosh, {0, inf}, {nan, 0}},
        {"cosh", nx_cosh, {-inf, 0}, {inf, -0.0}},      {"tanh", nx_tanh, {-inf, inf}, {-1, 0}},     {"tanh", nx_tanh, {800, 1}, {1, 0}},
        {"tanh", nx_tanh, {800, inf}, {nan, nan}},      {"tan", nx_tan, {1, -800}, {0, -1}},         {"tan", nx_tan, {nan, inf}, {0, 1}},
        {"acos", nx_acos, {-inf, inf}, {3 * pi / 4, -inf}}, {"asin", nx_asin, {0, nan}, {0, nan}},   {"acosh", nx_acosh, {inf, -0.0}, {inf, -0.0}},
        {"atanh", nx_atanh, {1, 0}, {inf, 0}},          {"atanh", nx_atanh, {-3, inf}, {-0.0, pi / 2}}, {"atan", nx_atan, {0, 1}, {0, inf}},
        {"csc", nx_csc, {0, 0}, {inf, -0.0}},           {"sech", nx_sech, {1000, 2}, {-0.0, -0.0}},  {"sinc", nx_sinc, {0, 0}, {1, 0}},
        {"acot", nx_acot, {0, 0}, {pi / 2, -0.0}},      {"sign", nx_sign, {-inf, 3}, {-1, 0}},       {"sign", nx_sign, {0, 0}, {0, 0}},
        {"sign", nx_sign, {0x3p-1074, 0x4p-1074}, {0.6, 0.8}}, {"sign", nx_sign, {-1.5e308, 0}, {-1, 0}},  {"sign", nx_sign, {1, nan}, {nan, nan}},
        {"round", nx_round, {2.5, -0.5}, {3, -1}},      {"fix", nx_fix, {2.5, -1.5}, {2, -1}},       {"log2", nx_log2, {8, 0}, {3, 0}},
    };
    for (Case const& check : cases) {
        nx_complex const found = check.f(check.at);
        bool const plain = check.want.re * check.want.im != 0 && is_near(found, check.want, 1e-15);
        EXPECT_TRUE(plain || is_same(found, check.want)) << check.name << "(" << check.at << ") = " << found << ", not " << check.want;
    }
    // exp(1000) overflows, the imaginary part does not.
    EXPECT_NEAR(nx_exp(nx_complex{1000, 1e-300}).im, 1.970071114017047e134, 1e120);
}

TEST(ComplexKernels, DoArithmeticAtTheEdges)
{
    struct Case {
        char const* name;
        Binary f;
        nx_complex x, y, want;
    } const cases[] = {
        {"times", nx_times, {inf, inf}, {0, 1}, {-inf, inf}},
        {"times", nx_times, {inf, nan}, {2, 3}, {inf, inf}},
        {"times", nx_times, {1e200, 1e200}, {1e200, 1e200}, {nan, inf}},
        {"rdivide", nx_rdivide, {1, 0}, {0, 0}, {inf, 0}},
        {"rdivide", nx_rdivide, {-1, 2}, {-0.0, 0}, {inf, -inf}},
        {"rdivide", nx_rdivide, {0, 0}, {0, 0}, {nan, nan}},
        {"rdivide", nx_rdivide, {inf, 1}, {2, 2}, {inf, -inf}},
        {"rdivide", nx_rdivide, {1, 2}, {inf, -inf}, {-0.0, 0}},
        {"rdivide", nx_rdivide, {1e308, 1e308}, {1e308, 1e308}, {1, 0}},
        {"rdivide", nx_rdivide, {0x1p-1070, 0x1p-1070}, {0x1p-1070, 0}, {1, 1}},
        {"rdivide", nx_rdivide, {5, 10}, {1, 2}, {5, 0}},
        {"ldivide", nx_ldivide, {1, 1}, {0, 2}, {1, 1}},
        {"power", nx_power, {0, 0}, {0, 0}, {1, 0}},
        {"power", nx_power, {0, 0}, {2, 1}, {0, 0}},
        {"power", nx_power, {nan, 1}, {0, 0}, {1, 0}},
        {"power", nx_power, {-8, 0}, {2, 0}, {64, 0}},
        {"power", nx_power, {-2, 0}, {-3, 0}, {-0.125, 0}},
        {"power", nx_power, {-4, 0}, {0.5, 0}, {0, 2}},
        {"power", nx_power, {-4, -0.0}, {-1.5, 0}, {0, -0.125}},
        {"power", nx_power, {1, 2}, {3, 0}, {-11, -2}},
        {"power", nx_power, {0, 1}, {-2, 0}, {-1, -0.0}},
        {"power", nx_power, {-inf, 0}, {3, 0}, {-inf, 0}},
        {"max", nx_max, {3, 4}, {5, 0}, {3, 4}},
        {"max", nx_max, {1e200, 0}, {1e200, 1e195}, {1e200, 1e195}},
        {"max", nx_max, {1e-300, 0}, {0, 2e-300}, {0, 2e-300}},
        {"max", nx_max, {nan, 9}, {1, 1}, {1, 1}},
        {"max", nx_max, {1, 1}, {-inf, 0}, {-inf, 0}},
        {"min", nx_min, {3, 4}, {0, -5}, {3, 4}},
        {"min", nx_min, {3, 4}, {0, 4.9}, {0, 4.9}},
        {"min", nx_min, {2, 1}, {0, nan}, {2, 1}},
    };
    for (Case const& check : cases) {
        nx_complex const found = check.f(check.x, check.y);
        EXPECT_TRUE(found.re == check.want.re && found.im == check.want.im ? true : is_same(found, check.want))
            << check.name << "(" << check.x << ", " << check.y << ") = " << found << ", not " << check.want;
    }
    EXPECT_DOUBLE_EQ(nx_abs(nx_complex{3e200, -4e200}), 5e200);
    EXPECT_EQ(nx_abs(nx_complex{nan, -inf}), inf);
    EXPECT_EQ(nx_angle(nx_complex{-1, -0.0}), -3.14159265358979323846);
}

TEST(ComplexKernels, CompareAndAsk)
{
    nx_complex const a = {1, 2}, b = {1, -3}, zero = {0, -0.0}, odd = {0, nan};
    EXPECT_EQ(nx_le(a, b) + nx_ge(a, b) + nx_ne(a, b) + nx_eq(a, a) + nx_lt(zero, a) + nx_gt(a, zero), 6);
    EXPECT_EQ(nx_lt(a, b) + nx_gt(a, b) + nx_eq(a, b) + nx_ne(a, a) + nx_eq(odd, odd), 0);
    EXPECT_EQ(nx_and(a, odd) + nx_or(zero, odd) + nx_xor(zero, a) + nx_not(zero) + nx_isnan(odd) + nx_isinf({1, -inf}), 6);
    EXPECT_EQ(nx_and(a, zero) + nx_or(zero, zero) + nx_xor(a, b) + nx_not(odd) + nx_isfinite(odd) + nx_isfinite({inf, 0}), 0);
}

// --- loops ---------------------------------------------------------------------------------------

bool same_bits(double x, double y)
{
    return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y));
}

TEST(ComplexLoops, GiveTheBitsOfTheKernels)
{
    struct Case {
        OpCode op;
        Unary one;
        Binary two;
        double (*real)(nx_complex);
    } const cases[] = {
        {op_plus, nullptr, nx_plus, nullptr},       {op_minus, nullptr, nx_minus, nullptr},     {op_times, nullptr, nx_times, nullptr},
        {op_rdivide, nullptr, nx_rdivide, nullptr}, {op_ldivide, nullptr, nx_ldivide, nullptr}, {op_uminus, nx_uminus, nullptr, nullptr},
        {op_conj, nx_conj, nullptr, nullptr},       {op_abs, nullptr, nullptr, nx_abs},         {op_angle, nullptr, nullptr, nx_angle},
        {op_exp, nx_exp, nullptr, nullptr},         {op_sinh, nx_sinh, nullptr, nullptr},       {op_cosh, nx_cosh, nullptr, nullptr},
        {op_sin, nx_sin, nullptr, nullptr},         {op_cos, nx_cos, nullptr, nullptr},         {op_log, nx_log, nullptr, nullptr},
        {op_sqrt, nx_sqrt, nullptr, nullptr},
    };
    constexpr double odd[] = {0.0, -0.0, 1, -1, inf, -inf, nan, 1e300, -1e-300, 5e-324, 709.5, -800, 1e160};
    constexpr std::size_t n = 3000;
    std::uint64_t state = 7;
    auto const next = [&state] { return (state = state * 6364136223846793005u + 1442695040888963407u) >> 11; };
    // Plain numbers for some blocks, odd ones among them, all magnitudes.
    auto const number = [&](std::size_t k) {
        double const plain = 8 * (static_cast<double>(next()) * 0x1p-53 - 0.5);
        if (k < 1000)
            return plain;
        return k < 2000 ? (next() % 3 == 0 ? odd[next() % std::size(odd)] : plain) : std::ldexp(plain, static_cast<int>(next() % 2000) - 1000);
    };
    std::vector<double> part[4];
    for (auto& values : part)
        for (std::size_t k = 0; k < n; ++k)
            values.push_back(number(k));
    for (Case const& check : cases) {
        arrlib::ComplexLoop const loop = arrlib::complex_loop(check.op);
        ASSERT_TRUE(loop);
        // Arrays, in place of the first; a scalar before an array, and after it.
        for (int form = 0; form < (check.two ? 3 : 1); ++form) {
            std::vector<double> re = part[0], im = part[1];
            arrlib::ComplexOperand const x = {re.data(), im.data(), form == 1 ? 0 : 1}, y = {part[2].data(), part[3].data(), form == 2 ? 0 : 1};
            std::vector<double> apart_re(n), apart_im(n);
            double* const to_re = form == 1 ? apart_re.data() : re.data();
            double* const to_im = form == 1 ? apart_im.data() : im.data();
            loop(x, y, to_re, check.real ? nullptr : to_im, n);
            for (std::size_t k = 0; k < n; ++k) {
                std::size_t const i = form == 1 ? 0 : k, j = form == 2 ? 0 : k;
                nx_complex const a = {part[0][i], part[1][i]}, b = {part[2][j], part[3][j]};
                nx_complex const want = check.one ? check.one(a) : check.two ? check.two(a, b) : nx_complex{check.real(a), 0};
                ASSERT_TRUE(same_bits(to_re[k], want.re) && (check.real || same_bits(to_im[k], want.im)))
                    << "operation " << check.op << " of " << a << " and " << b << ", form " << form;
            }
        }
    }
    EXPECT_FALSE(arrlib::complex_loop(op_tan));
}

TEST(ComplexLoops, TakeRealOperandsAsReal)
{
    double const two = 2, zero = 0, re = inf, im = 1;
    arrlib::ComplexOperand const real = {&two, nullptr, 1}, nought = {&zero, nullptr, 1}, x = {&re, &im, 1}, i = {&zero, &im, 1};
    struct Case {
        OpCode op;
        arrlib::ComplexOperand x, y;
        nx_complex want;
    } const cases[] = {
        {op_times, real, x, {inf, 2}},   {op_times, x, real, {inf, 2}},     {op_rdivide, x, real, {inf, 0.5}}, {op_ldivide, real, x, {inf, 0.5}},
        {op_rdivide, real, i, {0, -2}},  {op_rdivide, i, nought, {0, inf}}, {op_plus, real, x, {inf, 1}},      {op_minus, real, i, {2, -1}},
        {op_minus, i, real, {-2, 1}},    {op_rdivide, real, nought, {inf, 0}},
    };
    for (Case const& check : cases) {
        nx_complex found;
        arrlib::complex_loop(check.op)(check.x, check.y, &found.re, &found.im, 1);
        EXPECT_TRUE(found.re == check.want.re && found.im == check.want.im) << "case " << &check - cases << ": " << found;
    }
}

} // namespace
