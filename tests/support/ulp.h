// How far a result is from the right one.
#ifndef ARRLIB_TESTS_SUPPORT_ULP_H
#define ARRLIB_TESTS_SUPPORT_ULP_H

#include <bit>
#include <cmath>
#include <cstdint>

namespace ulp {

// The same bits, or both NaN.
inline bool same(double x, double y)
{
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y) || (std::isnan(x) && std::isnan(y));
}

// The place of a number among all doubles, in their order; both zeros have the same.
inline double place(double x)
{
    auto const bits = std::bit_cast<std::int64_t>(std::fabs(x));
    return static_cast<double>(x < 0 ? -bits : bits);
}

// From the exact value `nearest` + `lacking` last places to `got`, in last places.
inline double distance(double got, double nearest, double lacking = 0)
{
    if (std::isnan(got) || std::isnan(nearest))
        return same(got, nearest) ? 0 : INFINITY;
    // Neighbours are few places apart: their difference, not that of the places, is exact.
    double const gap = std::nextafter(std::fabs(nearest), INFINITY) - std::fabs(nearest);
    if (std::isinf(got) || std::isinf(nearest) || std::isinf(gap) || place(got) == place(nearest))
        return std::fabs(place(got) - place(nearest) - lacking);
    return std::fabs((got - nearest) / gap - lacking);
}

} // namespace ulp

#endif
