// Numbers that the special and the complex functions use.
#ifndef ARRLIB_OPS_KERNELS_SPECIAL_NUMBERS_H
#define ARRLIB_OPS_KERNELS_SPECIAL_NUMBERS_H

#include <limits>

namespace arrlib {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
inline constexpr double pi = 3.14159265358979323846;

} // namespace arrlib

#endif
