// Polynomials as the library's own code works on them: a row of coefficients in descending powers.
#ifndef ARRLIB_BUILTINS_POLYNOMIAL_H
#define ARRLIB_BUILTINS_POLYNOMIAL_H

#include "builtins/zpack.h"
#include "runtime/workers.h"

#include <cmath>

// Every polynomial made here is false after "Out of memory!".
namespace arrlib::polynomial {

template <Scalar T> using Coefficients = Packed<T>;

template <Scalar T> int length(Coefficients<T> const& p)
{
    return static_cast<int>(p.size());
}

// The coefficients of `p` from number `first` on.
template <Scalar T> Coefficients<T> tail(Coefficients<T> const& p, int first)
{
    Coefficients<T> made(1, length(p) - first);
    if (made)
        std::copy_n(p.data() + first, length(made), made.data());
    return made;
}

// Number of zeros at the beginning; a zero at the end is left out.
template <Scalar T> int leading_zeros(Coefficients<T> const& p)
{
    int zeros = 0;
    while (zeros < length(p) - 1 && p.data()[zeros] == T())
        ++zeros;
    return zeros;
}

// The derivative, a constant 0 where there is none.
template <Scalar T> Coefficients<T> derivative(Coefficients<T> const& p)
{
    int const degree = length(p) - 1;
    Coefficients<T> made(1, std::max(degree, 1));
    if (made) {
        made.data()[0] = T();
        for (int k = 0; k < degree; ++k)
            made.data()[k] = p.data()[k] * static_cast<double>(degree - k);
    }
    return made;
}

// z += a b for lists of na >= nb elements. In blocks that stay near the processor, each element's terms
// in the order of b.
template <Scalar T> void add_product(T const* a, int na, T const* b, int nb, T* z)
{
    constexpr std::ptrdiff_t block = 2048, least_products = 1 << 19;
    std::ptrdiff_t const least = (least_products / nb / block + 1) * block;
    parallel_for(std::ptrdiff_t{na} + nb - 1, least, [=](std::ptrdiff_t begin, std::ptrdiff_t end) {
        for (std::ptrdiff_t from = begin; from < end; from += block) {
            std::ptrdiff_t const to = std::min(end, from + block);
            for (std::ptrdiff_t j = std::max<std::ptrdiff_t>(0, from - na + 1); j < std::min<std::ptrdiff_t>(nb, to); ++j) {
                T const factor = b[j];
                for (std::ptrdiff_t k = std::max(from, j), last = std::min(to, na + j); k < last; ++k)
                    z[k] += a[k - j] * factor;
            }
        }
    });
}

// The product; of as many coefficients as both have, but one.
template <Scalar T> Coefficients<T> product(Coefficients<T> const& a, Coefficients<T> const& b)
{
    if (length(a) > most_elements - length(b)) {
        error(messages::out_of_memory);
        return {};
    }
    Coefficients<T> made(1, length(a) + length(b) - 1);
    if (!made)
        return made;
    std::fill_n(made.data(), length(made), T());
    if (length(a) >= length(b))
        add_product(a.data(), length(a), b.data(), length(b), made.data());
    else
        add_product(b.data(), length(b), a.data(), length(a), made.data());
    return made;
}

// Adds `factor` times b to a, which is not the shorter one.
template <Scalar T> void add(Coefficients<T>& a, double factor, Coefficients<T> const& b)
{
    T* const at = a.data() + (length(a) - length(b));
    for (int k = 0; k < length(b); ++k)
        at[k] += factor * b.data()[k];
}

// The polynomial with those roots whose first coefficient is 1.
template <Scalar T> Coefficients<T> from_roots(T const* roots, int count)
{
    Coefficients<T> made(1, count + 1);
    if (!made)
        return made;
    std::fill_n(made.data(), count + 1, T());
    made.data()[0] = 1;
    for (int r = 0; r < count; ++r)
        for (int k = r + 1; k > 0; --k)
            made.data()[k] -= roots[r] * made.data()[k - 1];
    return made;
}

// Whether every root has its conjugate among them, or is real. Orders the roots.
inline bool come_in_pairs(Complex* roots, int count)
{
    // Real ones first, then those above the axis, then those below it, each by real part and distance.
    auto const side = [](Complex z) { return z.imag() > 0 ? 1 : z.imag() < 0 ? 2 : 0; };
    auto const before = [side](Complex x, Complex y) {
        if (side(x) != side(y))
            return side(x) < side(y);
        return x.real() != y.real() ? x.real() < y.real() : std::abs(x.imag()) < std::abs(y.imag());
    };
    if (!std::all_of(roots, roots + count, [](Complex z) { return std::isfinite(z.real()) && std::isfinite(z.imag()); }))
        return std::all_of(roots, roots + count, [](Complex z) { return z.imag() == 0; });
    std::sort(roots, roots + count, before);
    Complex* const above = std::find_if(roots, roots + count, [side](Complex z) { return side(z) != 0; });
    Complex* const below = std::find_if(above, roots + count, [side](Complex z) { return side(z) == 2; });
    return below - above == roots + count - below && std::equal(above, below, below, [](Complex x, Complex y) { return x == std::conj(y); });
}

// A vector, or an empty value for no coefficients: "%s: argument must be a vector".
bool is_list(Arguments const& args, M<double> const& p);
// The same of finite numbers: "%s: coefficients must be finite".
bool is_finite_list(Arguments const& args, M<double> const& p);

// The roots of a list of finite numbers, as the built-in roots gives them; reports in the name of `args`.
M<double> roots_of(Arguments const& args, M<double> const& p);

} // namespace arrlib::polynomial

#endif
