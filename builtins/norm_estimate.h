// The 1-norm of an inverse from a few solutions of linear systems.
#ifndef ARRLIB_BUILTINS_NORM_ESTIMATE_H
#define ARRLIB_BUILTINS_NORM_ESTIMATE_H

#include "builtins/zpack.h"

#include <cmath>

namespace arrlib {

// A lower bound of the norm, mostly sharp, by the method of Hager and Higham (ACM TOMS 14, 1988, p. 381).
// solve(x, conjugated) replaces the n elements at x by the solution for the matrix or for its conjugate
// transpose; false ends the work. False then, too, and after "Out of memory!". `v` receives the
// solution that shows the bound: the inverse times a vector of 1-norm 1.
template <Scalar T, class Solve> bool estimate_inverse_norm(int n, double& estimate, HeapArray<T>& v, Solve solve)
{
    constexpr int most_steps = 5;
    auto const count = static_cast<std::size_t>(n);
    HeapArray<T> const x(count), signs(count);
    v = HeapArray<T>(count);
    if (!x || !v || !signs)
        return false;
    auto const norm = [&] {
        double sum = 0;
        for (T const& element : x)
            sum += std::abs(element);
        return sum;
    };
    // Keeps the solution; gives false when the signs are those of the step before.
    auto const take_signs = [&] {
        bool changed = false;
        for (std::size_t k = 0; k < count; ++k) {
            double const modulus = std::abs(x[k]);
            T const sign = modulus > 0 ? x[k] / modulus : T(1);
            changed = changed || sign != signs[k];
            signs[k] = sign;
            v[k] = x[k];
        }
        return changed;
    };
    auto const largest = [&] {
        std::size_t at = 0;
        for (std::size_t k = 1; k < count; ++k)
            if (std::abs(x[k]) > std::abs(x[at]))
                at = k;
        return at;
    };

    std::fill(x.begin(), x.end(), T(1.0 / n));
    std::fill(signs.begin(), signs.end(), T());
    if (!solve(x.data(), false))
        return false;
    estimate = norm();
    take_signs();
    if (n == 1)
        return true;
    std::size_t tried = count;
    for (int step = 2; step <= most_steps; ++step) {
        std::copy(signs.begin(), signs.end(), x.begin());
        if (!solve(x.data(), true))
            return false;
        std::size_t const at = largest();
        if (tried < count && !(std::abs(x[at]) > std::abs(x[tried])))
            break;
        tried = at;
        std::fill(x.begin(), x.end(), T());
        x[at] = 1;
        if (!solve(x.data(), false))
            return false;
        double const now = norm();
        if (!(now > estimate))
            break;
        estimate = now;
        if (!take_signs())
            break;
    }
    // Against matrices made to fool the steps above: a vector of growing elements with changing signs.
    for (std::size_t k = 0; k < count; ++k)
        x[k] = (k % 2 ? -1.0 : 1.0) * (1 + static_cast<double>(k) / (n - 1));
    if (!solve(x.data(), false))
        return false;
    double const scale = 2 / (3.0 * n), alternative = scale * norm();
    if (!(alternative <= estimate)) {
        estimate = alternative;
        for (std::size_t k = 0; k < count; ++k)
            v[k] = scale * x[k];
    }
    return true;
}

} // namespace arrlib

#endif
