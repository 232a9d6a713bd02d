// Complex numbers with the digits that recurrences and cancelling sums lose: `long double` has eleven
// bits more than double on the systems of the x86 family, and at least as many elsewhere.
#ifndef ARRLIB_BUILTINS_WIDE_COMPLEX_H
#define ARRLIB_BUILTINS_WIDE_COMPLEX_H

#include <cmath>
#include <complex>
#include <limits>

namespace arrlib {

using Wide = long double;

inline constexpr Wide wide_pi = 3.14159265358979323846264338327950288L;
inline constexpr Wide wide_euler = 0.577215664901532860606512090082402431L;

// Plain formulas: the operands are far from the borders of the range, and infinite parts are the
// callers' to look at.
struct WideComplex {
    Wide re = 0, im = 0;

    constexpr WideComplex() = default;
    constexpr WideComplex(Wide real, Wide imaginary = 0) : re(real), im(imaginary) {}

    constexpr WideComplex& operator+=(WideComplex b) { return *this = {re + b.re, im + b.im}; }
    constexpr WideComplex& operator*=(WideComplex b) { return *this = {re * b.re - im * b.im, re * b.im + im * b.re}; }
    constexpr WideComplex& operator*=(Wide b) { return *this = {re * b, im * b}; }
};

constexpr WideComplex operator+(WideComplex a, WideComplex b) { return {a.re + b.re, a.im + b.im}; }
constexpr WideComplex operator-(WideComplex a, WideComplex b) { return {a.re - b.re, a.im - b.im}; }
constexpr WideComplex operator-(WideComplex a) { return {-a.re, -a.im}; }
constexpr WideComplex operator*(WideComplex a, WideComplex b) { return a *= b; }
constexpr WideComplex operator*(WideComplex a, Wide b) { return a *= b; }
constexpr WideComplex operator*(Wide a, WideComplex b) { return b *= a; }
constexpr WideComplex operator/(WideComplex a, Wide b) { return {a.re / b, a.im / b}; }
constexpr WideComplex conj(WideComplex a) { return {a.re, -a.im}; }
// i a
constexpr WideComplex turned(WideComplex a) { return {-a.im, a.re}; }

// The exponents of `long double` leave room for the square.
inline WideComplex reciprocal(WideComplex a)
{
    Wide const scale = 1 / (a.re * a.re + a.im * a.im);
    return {a.re * scale, -a.im * scale};
}
inline WideComplex operator/(WideComplex a, WideComplex b) { return a * reciprocal(b); }

// The size of a number but for a factor below 2.
inline Wide rough_size(WideComplex a) { return std::fabs(a.re) + std::fabs(a.im); }
inline Wide abs(WideComplex a) { return std::hypot(a.re, a.im); }
inline WideComplex sqrt(WideComplex a)
{
    std::complex<Wide> const root = std::sqrt(std::complex<Wide>(a.re, a.im));
    return {root.real(), root.imag()};
}
inline WideComplex log(WideComplex a)
{
    return {std::log(std::hypot(a.re, a.im)), std::atan2(a.im, a.re)};
}
inline WideComplex exp(WideComplex a)
{
    Wide const size = std::exp(a.re);
    // An exponential that underflows is 0 whatever its angle.
    return a.im == 0 ? WideComplex(size) : WideComplex(size * std::cos(a.im), size * std::sin(a.im));
}

// a exp(exponent), where the exponential alone may leave the range; a part of 0 stays 0.
inline WideComplex grown(WideComplex a, WideComplex exponent)
{
    WideComplex const turned_a = exponent.im == 0 ? a : a * WideComplex(std::cos(exponent.im), std::sin(exponent.im));
    Wide const size = std::exp(exponent.re);
    return {turned_a.re == 0 ? 0 : turned_a.re * size, turned_a.im == 0 ? 0 : turned_a.im * size};
}

// What is left of a value after overflow: infinite parts, beside parts that nobody knows, which count
// as 0.
inline WideComplex after_overflow(WideComplex value)
{
    if (std::isnan(value.re) && std::isnan(value.im))
        return std::numeric_limits<Wide>::infinity();
    return {std::isnan(value.re) ? 0 : value.re, std::isnan(value.im) ? 0 : value.im};
}

// exp(i pi x), exact at multiples of 1/2.
inline WideComplex cis_pi(Wide x)
{
    Wide const reduced = x - 2 * std::rint(x / 2), quarter = std::rint(2 * reduced);
    Wide const angle = wide_pi * (reduced - quarter / 2), c = std::cos(angle), s = std::sin(angle);
    switch (static_cast<int>(quarter) & 3) {
    case 0:
        return {c, s};
    case 1:
        return {-s, c};
    case 2:
        return {-c, -s};
    default:
        return {s, -c};
    }
}

} // namespace arrlib

#endif
