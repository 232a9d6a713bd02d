// Bits of the integers up to 2^53 that doubles hold.
#include "ops/kernels.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr int bit_count = 53;
constexpr double largest = 0x1p53;
constexpr std::uint64_t all_bits = (std::uint64_t{1} << bit_count) - 1;

// The integer that an argument stands for; false for one that stands for none.
bool to_integer(double x, std::uint64_t& integer)
{
    double const whole = std::trunc(x);
    if (!(whole >= 0 && whole <= largest))
        return false;
    integer = static_cast<std::uint64_t>(whole);
    return true;
}

template <class Operation> double of_two(double x, double y, Operation operation)
{
    std::uint64_t a, b;
    return to_integer(x, a) && to_integer(y, b) ? static_cast<double>(operation(a, b)) : not_a_number;
}

// The operation takes x and the mask of the bit.
template <class Operation> double of_bit(double x, double bit, Operation operation)
{
    std::uint64_t a, number;
    if (!to_integer(x, a) || !to_integer(bit, number) || number < 1 || number > bit_count)
        return not_a_number;
    return static_cast<double>(operation(a, std::uint64_t{1} << (number - 1)));
}

template <double (*f)(double, double)> nx_complex by_parts(nx_complex x, nx_complex y)
{
    return {f(x.re, y.re), f(x.im, y.im)};
}

} // namespace

double nx_bitand(double x, double y)
{
    return of_two(x, y, [](auto a, auto b) { return a & b; });
}

double nx_bitor(double x, double y)
{
    return of_two(x, y, [](auto a, auto b) { return a | b; });
}

double nx_bitxor(double x, double y)
{
    return of_two(x, y, [](auto a, auto b) { return a ^ b; });
}

double nx_bitcmp(double x, double n)
{
    std::uint64_t a, count;
    if (!to_integer(x, a) || !to_integer(n, count) || count > bit_count)
        return not_a_number;
    return static_cast<double>(~a & ((std::uint64_t{1} << count) - 1));
}

double nx_bitget(double x, double bit)
{
    return of_bit(x, bit, [](auto a, auto mask) { return (a & mask) != 0 ? 1 : 0; });
}

double nx_bitset(double x, double bit)
{
    return of_bit(x, bit, [](auto a, auto mask) { return a | mask; });
}

double nx_bitreset(double x, double bit)
{
    return of_bit(x, bit, [](auto a, auto mask) { return a & ~mask; });
}

double nx_bitshift(double x, double count)
{
    std::uint64_t a;
    if (!to_integer(x, a) || !(std::fabs(count) <= largest))
        return not_a_number;
    if (std::fabs(count) >= bit_count + 1)
        return 0;
    int const places = static_cast<int>(count);
    return static_cast<double>(places > 0 ? (a << places) & all_bits : a >> -places);
}

nx_complex nx_bitand(nx_complex x, nx_complex y)
{
    return by_parts<nx_bitand>(x, y);
}

nx_complex nx_bitor(nx_complex x, nx_complex y)
{
    return by_parts<nx_bitor>(x, y);
}

nx_complex nx_bitxor(nx_complex x, nx_complex y)
{
    return by_parts<nx_bitxor>(x, y);
}

nx_complex nx_bitcmp(nx_complex x, nx_complex n)
{
    return by_parts<nx_bitcmp>(x, n);
}

nx_complex nx_bitget(nx_complex x, nx_complex bit)
{
    return by_parts<nx_bitget>(x, bit);
}

nx_complex nx_bitset(nx_complex x, nx_complex bit)
{
    return by_parts<nx_bitset>(x, bit);
}

nx_complex nx_bitreset(nx_complex x, nx_complex bit)
{
    return by_parts<nx_bitreset>(x, bit);
}

nx_complex nx_bitshift(nx_complex x, nx_complex count)
{
    return by_parts<nx_bitshift>(x, count);
}
