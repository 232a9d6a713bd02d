// Powers: exp(y log(x)), the logarithm and the product being pairs. An exponent of some 700 takes ten
// bits of the logarithm's 66.
#ifndef ARRLIB_OPS_KERNELS_LOOP_POWER_H
#define ARRLIB_OPS_KERNELS_LOOP_POWER_H

#include "ops/kernels/loop_log.h"

namespace arrlib {
namespace {

struct Power {
    template <class V> static V of(V x, V y)
    {
        Pair<V> const log = log_pair(x), product = product_of(log.hi, y);
        typename V::Mask const other = not_positive_normal(x) | not_below(abs(product.hi), V(all_normal));
        V const result = normal_exponential(product.hi, fma(log.lo, y, product.lo));
        return other.any() ? select(other, of_any(x, y), result) : result;
    }

private:
    template <class V> ARRLIB_COLD static V of_any(V x, V y)
    {
        V const size = abs(x), exponent = within(y, 0x1p1000);
        typename V::Mask const finite = (size > V(0.0)) & (size < V(infinite)), tiny = finite & (size < V(least_normal));
        V const base = select(finite, select(tiny, size * V(0x1p54), size), V(1.5));
        Pair<V> const log = log_pair(base, V(0.0), select(tiny, V(-54.0), V(0.0))), product = product_of(log.hi, exponent);
        V const low = select(abs(product.hi) < V(800.0), fma(log.lo, exponent, product.lo), V(0.0));
        V result = exponential(within(product.hi, 800), low).value();
        // 0 and infinity to the power of y.
        result = select(finite, result, select(y > V(0.0), size, V(1.0) / size));
        // Negative numbers have powers of whole exponents; the sign is that of an odd one.
        typename V::Mask const whole = trunc(y) == y, odd = whole & (trunc(y * V(0.5)) != y * V(0.5));
        result = select((x < V(0.0)) & finite & !whole, V(not_a_number), result);
        result = select(odd, copy_sign(result, x), result);
        result = select(is_nan(x) | is_nan(y), x + y, result);
        return select((y == V(0.0)) | (x == V(1.0)) | ((x == V(-1.0)) & (abs(y) == V(infinite))), V(1.0), result);
    }
};

} // namespace
} // namespace arrlib

#endif
