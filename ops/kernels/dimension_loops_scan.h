// The loops of dimension_loops.h along a vector without gaps, for the file of each kind. Nothing
// here may be shared between those files.
//
// Eight elements make a group. What its beginnings come to is found in three steps: the second of
// each pair takes its neighbour, the second pair of each four the end of the pair before it, the
// second four the end of the first four.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_SCAN_H
#define ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_SCAN_H

#include "ops/kernels/dimension_loops.h"

namespace arrlib {
namespace {

constexpr std::ptrdiff_t group = 8;

// --- registers ------------------------------------------------------------------------------------
// Vectors go from function to function by reference: how they are passed by value depends on the
// kind of processor.

// `left` gets what step `step` combines with the lanes that take part in it; `keep` restores the
// other lanes of `to`. `last` spreads the last lane.
template <int lanes> struct Register;

template <> struct Register<2> {
    using Vector [[gnu::vector_size(16)]] = double;
    using Bits [[gnu::vector_size(16)]] = long long;
    static void last(Vector& to, Vector const& v) { to = __builtin_shufflevector(v, v, 1, 1); }
    template <int step> static void left(Vector& to, Vector const& v) { to = __builtin_shufflevector(v, v, 0, 0); }
    template <int step> static void keep(Vector& to, Vector const& v) { to = __builtin_shufflevector(v, to, 0, 3); }
};

template <> struct Register<4> {
    using Vector [[gnu::vector_size(32)]] = double;
    using Bits [[gnu::vector_size(32)]] = long long;
    static void last(Vector& to, Vector const& v) { to = __builtin_shufflevector(v, v, 3, 3, 3, 3); }
    template <int step> static void left(Vector& to, Vector const& v)
    {
        if constexpr (step == 1)
            to = __builtin_shufflevector(v, v, 0, 0, 2, 2);
        else
            to = __builtin_shufflevector(v, v, 0, 1, 1, 1);
    }
    template <int step> static void keep(Vector& to, Vector const& v)
    {
        if constexpr (step == 1)
            to = __builtin_shufflevector(v, to, 0, 5, 2, 7);
        else
            to = __builtin_shufflevector(v, to, 0, 1, 6, 7);
    }
};

template <> struct Register<8> {
    using Vector [[gnu::vector_size(64)]] = double;
    using Bits [[gnu::vector_size(64)]] = long long;
    static void last(Vector& to, Vector const& v) { to = __builtin_shufflevector(v, v, 7, 7, 7, 7, 7, 7, 7, 7); }
    template <int step> static void left(Vector& to, Vector const& v)
    {
        if constexpr (step == 1)
            to = __builtin_shufflevector(v, v, 0, 0, 2, 2, 4, 4, 6, 6);
        else if constexpr (step == 2)
            to = __builtin_shufflevector(v, v, 0, 1, 1, 1, 4, 5, 5, 5);
        else
            to = __builtin_shufflevector(v, v, 3, 3, 3, 3, 3, 3, 3, 3);
    }
    template <int step> static void keep(Vector& to, Vector const& v)
    {
        if constexpr (step == 1)
            to = __builtin_shufflevector(v, to, 0, 9, 2, 11, 4, 13, 6, 15);
        else if constexpr (step == 2)
            to = __builtin_shufflevector(v, to, 0, 1, 10, 11, 4, 5, 14, 15);
        else
            to = __builtin_shufflevector(v, to, 0, 1, 2, 3, 12, 13, 14, 15);
    }
};

#if defined(__AVX512F__)
constexpr int lanes_of_register = 8;
#elif defined(__AVX__)
constexpr int lanes_of_register = 4;
#else
constexpr int lanes_of_register = 2;
#endif
using Lanes = Register<lanes_of_register>;
using Vector = Lanes::Vector;
using Bits = Lanes::Bits;
constexpr int registers = group / lanes_of_register;

// A vector anywhere in an array of numbers. Copies of bytes would go through memory.
using InArray [[gnu::vector_size(lanes_of_register * 8), gnu::aligned(alignof(double)), gnu::may_alias]] = double;

void load(Vector& to, double const* from)
{
    to = *reinterpret_cast<InArray const*>(from);
}

void store(double* to, Vector const& from)
{
    *reinterpret_cast<InArray*>(to) = from;
}

void spread(Vector& to, double value)
{
    for (int j = 0; j < lanes_of_register; ++j)
        to[j] = value;
}

// --- groups ---------------------------------------------------------------------------------------
// Numbers are combined by combine(Number& to, Number const& by).

struct Sum {
    Vector re;

    template <class Of> void each(Sum const& from, Of of) { of(re, from.re); }
    void combine(Sum const& by) { re += by.re; }
};

struct Product {
    Vector re;

    template <class Of> void each(Product const& from, Of of) { of(re, from.re); }
    void combine(Product const& by) { re *= by.re; }
    void note_outside(Bits& outside) const
    {
        Vector const size = (Vector)((Bits)re & 0x7FFFFFFFFFFFFFFF);
        outside |= ~((size >= least_normal) & (size <= largest_number));
    }
};

struct ComplexProduct {
    Vector re, im;

    template <class Of> void each(ComplexProduct const& from, Of of)
    {
        of(re, from.re);
        of(im, from.im);
    }
    void combine(ComplexProduct const& by)
    {
        Vector const real = re * by.re - im * by.im;
        im = re * by.im + im * by.re;
        re = real;
    }
    void note_outside(Bits& outside) const
    {
        Vector const size = (Vector)((Bits)re & 0x7FFFFFFFFFFFFFFF) + (Vector)((Bits)im & 0x7FFFFFFFFFFFFFFF);
        outside |= ~((size >= least_complex) & (size <= largest_complex));
    }
};

template <class Number> void last_of(Number& to, Number const& from)
{
    to.each(from, [](Vector& t, Vector const& f) { Lanes::last(t, f); });
}

// Inside a register.
template <int step, class Number> void take_left(Number& number)
{
    Number left, old = number;
    left.each(number, [](Vector& to, Vector const& v) { Lanes::left<step>(to, v); });
    number.combine(left);
    number.each(old, [](Vector& to, Vector const& v) { Lanes::keep<step>(to, v); });
}

// From the register before.
template <class Number> void take_last(Number& number, Number const& before)
{
    Number last;
    last_of(last, before);
    number.combine(last);
}

template <class Number> void combine_beginnings(Number (&of)[registers])
{
    for (Number& number : of)
        take_left<1>(number);
    if constexpr (registers == 4) {
        take_last(of[1], of[0]);
        take_last(of[3], of[2]);
        Number const middle = of[1];
        take_last(of[2], middle);
        take_last(of[3], middle);
    } else {
        for (Number& number : of)
            take_left<2>(number);
        if constexpr (registers == 2)
            take_last(of[1], of[0]);
        else
            take_left<4>(of[0]);
    }
}

// --- sums -----------------------------------------------------------------------------------------

double cumulative_sum(double const* x, double* z, std::ptrdiff_t n, double before)
{
    Vector start;
    spread(start, before);
    Sum so_far{};
    std::ptrdiff_t k = 0;
    for (; k + group <= n; k += group) {
        Sum sums[registers];
        for (int r = 0; r < registers; ++r)
            load(sums[r].re, x + k + r * lanes_of_register);
        combine_beginnings(sums);
        for (int r = 0; r < registers; ++r)
            store(z + k + r * lanes_of_register, (start + so_far.re) + sums[r].re);
        take_last(so_far, sums[registers - 1]);
    }
    double total = so_far.re[0];
    for (; k < n; ++k) {
        total += x[k];
        z[k] = before + total;
    }
    return total;
}

// --- products -------------------------------------------------------------------------------------

bool any(Bits const& bits)
{
    long long all = 0;
    for (int j = 0; j < lanes_of_register; ++j)
        all |= bits[j];
    return all != 0;
}

// Products of the beginnings of each group, then of the groups; see cumulative_product. The parts of
// a number are read and written by read(number, where, k) and write(number, k).
template <class Number, class Read, class Write> bool products_of_groups(std::ptrdiff_t n, Number& before, Read read, Write write)
{
    Bits outside{};
    for (std::ptrdiff_t k = 0; k < n; k += group) {
        Number products[registers];
        for (int r = 0; r < registers; ++r)
            read(products[r], false, k + r * lanes_of_register);
        combine_beginnings(products);
        for (int r = 0; r < registers; ++r) {
            write(products[r], k + r * lanes_of_register);
            products[r].note_outside(outside);
        }
    }
    if (any(outside))
        return false;
    for (std::ptrdiff_t k = 0; k < n; k += group) {
        Number last;
        for (int r = 0; r < registers; ++r) {
            read(last, true, k + r * lanes_of_register);
            Number product = last;
            product.combine(before);
            write(product, k + r * lanes_of_register);
        }
        take_last(before, last);
    }
    return true;
}

bool cumulative_product(double const* x, double* z, std::ptrdiff_t n, double& before)
{
    Product total;
    spread(total.re, before);
    bool const safe = products_of_groups(
        n, total, [&](Product& to, bool written, std::ptrdiff_t k) { load(to.re, (written ? z : x) + k); },
        [&](Product const& from, std::ptrdiff_t k) { store(z + k, from.re); });
    if (safe)
        before = total.re[0];
    return safe;
}

bool cumulative_complex_product(double const* x, double const* xi, double* z, double* zi, std::ptrdiff_t n, double& re, double& im)
{
    ComplexProduct total;
    spread(total.re, re);
    spread(total.im, im);
    auto const read = [&](ComplexProduct& to, bool written, std::ptrdiff_t k) {
        load(to.re, (written ? z : x) + k);
        load(to.im, (written ? zi : xi) + k);
    };
    auto const write = [&](ComplexProduct const& from, std::ptrdiff_t k) {
        store(z + k, from.re);
        store(zi + k, from.im);
    };
    if (!products_of_groups(n, total, read, write))
        return false;
    re = total.re[0];
    im = total.im[0];
    return true;
}

} // namespace
} // namespace arrlib

#endif
