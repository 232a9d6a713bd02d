// Loops work block by block: the plain formula for all elements of a block, as the compiler or the
// real kernels vectorise it; then the kernel again for those elements that did not come out finite.
// Where a formula does not hold, NaN is put into it: choosing between numbers that are there anyway
// needs no branches. Results are copied at the end of a block, so they may take the place of an
// operand.
#include "ops/kernels/complex_loops.h"

#include "ops/kernels/complex_parts.h"
#include "ops/kernels/kernel_set.h"

#include <bit>
#include <cstdint>
#include <cstring>

using namespace arrlib;

namespace {

constexpr int block_size = 256;
// Vectors that cross cache lines cost twice.
constexpr std::size_t line = 64;

// One part of an operand, as arrays for a block: a scalar is repeated.
class Part {
public:
    Part(double const* from, int step) : from_(from), step_(step)
    {
        if (from && !step)
            std::fill_n(same_, block_size, *from);
    }
    Part(Part const&) = delete;
    Part& operator=(Part const&) = delete;

    // Null for a part that there is not.
    double const* at(std::ptrdiff_t k) const { return from_ && !step_ ? same_ : from_ ? from_ + k : nullptr; }

private:
    double const* from_;
    int step_;
    alignas(line) double same_[block_size];
};

alignas(line) constexpr double zeros[block_size] = {};

struct Numbers {
    double const *re, *im;

    nx_complex at(int k) const { return {re[k], im ? im[k] : 0}; }
};
struct Block {
    alignas(line) double re[block_size], im[block_size];

    void set(int k, nx_complex x)
    {
        re[k] = x.re;
        im[k] = x.im;
    }
};

bool all_finite(double const* x, int n)
{
    // Exponents of ones carry into the sign.
    constexpr std::uint64_t exponent = 0x7ff0000000000000, lowest = 0x0010000000000000;
    std::uint64_t carried = 0;
    for (int k = 0; k < n; ++k)
        carried |= (std::bit_cast<std::uint64_t>(x[k]) & exponent) + lowest;
    return carried >> 63 == 0;
}

// Applies a real operation to a block, as fast as there is a loop for it.
template <RealUnary f> void apply(OpCode op, double const* x, double* z, int n)
{
    if (RealLoop const loop = kernel_set().real[op])
        loop({x, 1}, {}, z, n);
    else
        for (int k = 0; k < n; ++k)
            z[k] = f(x[k]);
}
void apply_atan2(double const* y, double const* x, double* z, int n)
{
    if (RealLoop const loop = kernel_set().real[op_atan2])
        loop({y, 1}, {x, 1}, z, n);
    else
        for (int k = 0; k < n; ++k)
            z[k] = nx_atan2(y[k], x[k]);
}

// is_safe_square without a branch.
int is_safe(double square)
{
    return (square >= least_safe_square) & (square <= largest_safe_square);
}
double if_safe(double square)
{
    return is_safe(square) != 0 ? square : not_a_number;
}

void copy_out(Block const& from, double* re, double* im, std::ptrdiff_t at, int n)
{
    std::memcpy(re + at, from.re, static_cast<std::size_t>(n) * sizeof(double));
    if (im)
        std::memcpy(im + at, from.im, static_cast<std::size_t>(n) * sizeof(double));
}

// Operations of one operand: Formula::fill makes a block, Formula::one an element.
template <class Formula> void unary(ComplexOperand x, ComplexOperand, double* re, double* im, std::ptrdiff_t n)
{
    Part const x_re(x.re, x.step), x_im(x.im ? x.im : zeros, x.im ? x.step : 0);
    Block z;
    for (std::ptrdiff_t at = 0; at < n; at += block_size) {
        int const count = static_cast<int>(std::min<std::ptrdiff_t>(block_size, n - at));
        Numbers const from = {x_re.at(at), x_im.at(at)};
        Formula::fill(from, z, count);
        if (!all_finite(z.re, count) || (im && !all_finite(z.im, count)))
            for (int k = 0; k < count; ++k)
                if (!std::isfinite(z.re[k]) || (im && !std::isfinite(z.im[k])))
                    z.set(k, Formula::one(from.at(k)));
        copy_out(z, re, im, at, count);
    }
}

// Operations of two operands, which may lack their imaginary parts.
template <class Formula> void binary(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    Part const x_re(x.re, x.step), x_im(x.im, x.step), y_re(y.re, y.step), y_im(y.im, y.step);
    Block z;
    for (std::ptrdiff_t at = 0; at < n; at += block_size) {
        int const count = static_cast<int>(std::min<std::ptrdiff_t>(block_size, n - at));
        Formula::fill({x_re.at(at), x_im.at(at)}, {y_re.at(at), y_im.at(at)}, z, count);
        copy_out(z, re, im, at, count);
    }
}

// Element by element again where a part is not finite.
template <ComplexBinary f> void mend(Numbers x, Numbers y, Block& z, int n)
{
    if (all_finite(z.re, n) && all_finite(z.im, n))
        return;
    for (int k = 0; k < n; ++k)
        if (!std::isfinite(z.re[k]) || !std::isfinite(z.im[k]))
            z.set(k, f(x.at(k), y.at(k)));
}

// --- arithmetic ----------------------------------------------------------------------------------

// Sums and differences are those of the parts.
template <OpCode op> void by_parts(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    static constexpr double zero = 0;
    RealLoop const loop = kernel_set().real[op];
    auto const imaginary = [](ComplexOperand of) { return of.im ? RealOperand{of.im, of.step} : RealOperand{&zero, 0}; };
    loop({x.re, x.step}, {y.re, y.step}, re, n);
    loop(imaginary(x), imaginary(y), im, n);
}

struct Times {
    static void fill(Numbers x, Numbers y, Block& z, int n)
    {
        if (!x.im)
            return fill_real(x.re, y, z, n);
        if (!y.im)
            return fill_real(y.re, x, z, n);
        for (int k = 0; k < n; ++k) {
            z.re[k] = x.re[k] * y.re[k] - x.im[k] * y.im[k];
            z.im[k] = x.re[k] * y.im[k] + x.im[k] * y.re[k];
        }
        mend<nx_times>(x, y, z, n);
    }
    static void fill_real(double const* factor, Numbers x, Block& z, int n)
    {
        double const* const im = x.im ? x.im : zeros;
        for (int k = 0; k < n; ++k) {
            z.re[k] = factor[k] * x.re[k];
            z.im[k] = factor[k] * im[k];
        }
    }
};

struct RightDivide {
    static void fill(Numbers x, Numbers y, Block& z, int n)
    {
        double const* const x_im = x.im ? x.im : zeros;
        if (!y.im)
            return fill_real({x.re, x_im}, y.re, z, n);
        for (int k = 0; k < n; ++k) {
            double const square = y.re[k] * y.re[k] + y.im[k] * y.im[k], size = std::fabs(x.re[k]) + std::fabs(x_im[k]);
            // Of x, zeros are safe as well.
            double const of_x = x.re[k] * x.re[k] + x_im[k] * x_im[k] + (size == 0 ? least_safe_square : 0);
            double const divisor = square + ((is_safe(square) & is_safe(of_x)) != 0 ? 0 : not_a_number);
            z.re[k] = (x.re[k] * y.re[k] + x_im[k] * y.im[k]) / divisor;
            z.im[k] = (x_im[k] * y.re[k] - x.re[k] * y.im[k]) / divisor;
        }
        mend<nx_rdivide>(x, y, z, n);
    }
    static void fill_real(Numbers x, double const* divisor, Block& z, int n)
    {
        for (int k = 0; k < n; ++k) {
            z.re[k] = x.re[k] / divisor[k];
            z.im[k] = x.im[k] / divisor[k];
        }
        if (!all_finite(z.re, n) || !all_finite(z.im, n))
            for (int k = 0; k < n; ++k)
                if (divisor[k] == 0)
                    z.set(k, nx_rdivide(x.at(k), {divisor[k], 0}));
    }
};

struct LeftDivide {
    static void fill(Numbers x, Numbers y, Block& z, int n) { RightDivide::fill(y, x, z, n); }
};

void negate(ComplexOperand x, ComplexOperand, double* re, double* im, std::ptrdiff_t n)
{
    by_parts<op_uminus>(x, {nullptr, nullptr, 0}, re, im, n);
}

void conjugate(ComplexOperand x, ComplexOperand, double* re, double* im, std::ptrdiff_t n)
{
    static constexpr double zero = 0;
    kernel_set().real[op_uplus]({x.re, x.step}, {}, re, n);
    kernel_set().real[op_uminus](x.im ? RealOperand{x.im, x.step} : RealOperand{&zero, 0}, {}, im, n);
}

struct Modulus {
    static nx_complex one(nx_complex x) { return {nx_abs(x), 0}; }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double square[block_size];
        for (int k = 0; k < n; ++k)
            square[k] = if_safe(x.re[k] * x.re[k] + x.im[k] * x.im[k]);
        apply<nx_sqrt>(op_sqrt, square, z.re, n);
    }
};

struct AngleOf {
    static nx_complex one(nx_complex x) { return {nx_angle(x), 0}; }
    static void fill(Numbers x, Block& z, int n) { apply_atan2(x.im, x.re, z.re, n); }
};

// --- functions -----------------------------------------------------------------------------------

struct Exponential {
    static nx_complex one(nx_complex x) { return nx_exp(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double size[block_size];
        apply<nx_exp>(op_exp, x.re, size, n);
        apply<nx_cos>(op_cos, x.im, z.re, n);
        apply<nx_sin>(op_sin, x.im, z.im, n);
        for (int k = 0; k < n; ++k) {
            double const factor = x.re[k] <= exp_end ? size[k] : not_a_number;
            z.re[k] = factor * z.re[k];
            z.im[k] = factor * z.im[k];
        }
    }
};

// sinh and cosh of `along` beside cos and sin of `across`.
struct Waves {
    alignas(line) double sinh[block_size], cosh[block_size], cos[block_size], sin[block_size];

    Waves(double const* along, double const* across, int n)
    {
        apply<nx_sinh>(op_sinh, along, sinh, n);
        apply<nx_cosh>(op_cosh, along, cosh, n);
        apply<nx_cos>(op_cos, across, cos, n);
        apply<nx_sin>(op_sin, across, sin, n);
        // No products where cosh is near its end.
        for (int k = 0; k < n; ++k)
            cosh[k] = std::fabs(along[k]) <= exp_end ? cosh[k] : not_a_number;
    }
};

struct HyperbolicSine {
    static nx_complex one(nx_complex x) { return nx_sinh(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        Waves const w(x.re, x.im, n);
        for (int k = 0; k < n; ++k) {
            z.re[k] = w.sinh[k] * w.cos[k];
            z.im[k] = w.cosh[k] * w.sin[k];
        }
    }
};

struct HyperbolicCosine {
    static nx_complex one(nx_complex x) { return nx_cosh(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        Waves const w(x.re, x.im, n);
        for (int k = 0; k < n; ++k) {
            z.re[k] = w.cosh[k] * w.cos[k];
            z.im[k] = w.sinh[k] * w.sin[k];
        }
    }
};

struct Sine {
    static nx_complex one(nx_complex x) { return nx_sin(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double turned_im[block_size];
        for (int k = 0; k < n; ++k)
            turned_im[k] = -x.im[k];
        Waves const w(turned_im, x.re, n);
        for (int k = 0; k < n; ++k) {
            z.re[k] = w.cosh[k] * w.sin[k];
            z.im[k] = -(w.sinh[k] * w.cos[k]);
        }
    }
};

struct Cosine {
    static nx_complex one(nx_complex x) { return nx_cos(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double turned_im[block_size];
        for (int k = 0; k < n; ++k)
            turned_im[k] = -x.im[k];
        Waves const w(turned_im, x.re, n);
        for (int k = 0; k < n; ++k) {
            z.re[k] = w.cosh[k] * w.cos[k];
            z.im[k] = w.sinh[k] * w.sin[k];
        }
    }
};

struct Logarithm {
    static nx_complex one(nx_complex x) { return nx_log(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double square[block_size], rest[block_size];
        for (int k = 0; k < n; ++k) {
            LogArgument const argument = log_argument({x.re[k], x.im[k]});
            square[k] = if_safe(argument.square);
            rest[k] = argument.correction;
        }
        apply<nx_log>(op_log, square, z.re, n);
        apply_atan2(x.im, x.re, z.im, n);
        for (int k = 0; k < n; ++k)
            z.re[k] = (z.re[k] + rest[k]) / 2;
    }
};

struct SquareRoot {
    static nx_complex one(nx_complex x) { return nx_sqrt(x); }
    static void fill(Numbers x, Block& z, int n)
    {
        alignas(line) double size[block_size], root[block_size];
        for (int k = 0; k < n; ++k)
            size[k] = if_safe(x.re[k] * x.re[k] + x.im[k] * x.im[k]);
        apply<nx_sqrt>(op_sqrt, size, size, n);
        for (int k = 0; k < n; ++k)
            size[k] = (std::fabs(x.re[k]) + (x.im[k] == 0 ? not_a_number : size[k])) / 2;
        apply<nx_sqrt>(op_sqrt, size, root, n);
        for (int k = 0; k < n; ++k) {
            double const other = std::fabs(x.im[k]) / (2 * root[k]);
            z.re[k] = x.re[k] >= 0 ? root[k] : other;
            z.im[k] = std::copysign(x.re[k] >= 0 ? other : root[k], x.im[k]);
        }
    }
};

void times(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    ComplexLoop const best = kernel_set().complex[op_times];
    (best && x.im && y.im ? best : binary<Times>)(x, y, re, im, n);
}

struct Row {
    OpCode op;
    ComplexLoop loop;
};
constexpr Row rows[] = {
    {op_plus, by_parts<op_plus>},
    {op_minus, by_parts<op_minus>},
    {op_times, times},
    {op_rdivide, binary<RightDivide>},
    {op_ldivide, binary<LeftDivide>},
    {op_uminus, negate},
    {op_conj, conjugate},
    {op_abs, unary<Modulus>},
    {op_angle, unary<AngleOf>},
    {op_exp, unary<Exponential>},
    {op_sinh, unary<HyperbolicSine>},
    {op_cosh, unary<HyperbolicCosine>},
    {op_sin, unary<Sine>},
    {op_cos, unary<Cosine>},
    {op_log, unary<Logarithm>},
    {op_sqrt, unary<SquareRoot>},
};

} // namespace

ComplexLoop arrlib::complex_loop(OpCode op)
{
    for (Row const& row : rows)
        if (row.op == op)
            return row.loop;
    return nullptr;
}
