// Loops over complex arrays that are worth a copy for each kind of processor.
#ifndef ARRLIB_OPS_KERNELS_LOOP_COMPLEX_H
#define ARRLIB_OPS_KERNELS_LOOP_COMPLEX_H

#include "core/api.h"
#include "ops/kernels/loops.h"

namespace arrlib {
namespace {

// The kernel again, for the lanes in `which`: infinities and overflows.
ARRLIB_COLD void times_again(unsigned which, Wide const (&part)[4], Wide& re, Wide& im)
{
    double from[4][Wide::count], to_re[Wide::count], to_im[Wide::count];
    for (int p = 0; p < 4; ++p)
        part[p].store(from[p]);
    re.store(to_re);
    im.store(to_im);
    for (int lane = 0; lane < Wide::count; ++lane)
        if (which >> lane & 1) {
            nx_complex const z = nx_times(nx_complex{from[0][lane], from[1][lane]}, nx_complex{from[2][lane], from[3][lane]});
            to_re[lane] = z.re;
            to_im[lane] = z.im;
        }
    re = Wide::load(to_re);
    im = Wide::load(to_im);
}

// Operands that both have imaginary parts.
[[gnu::flatten]] inline void complex_times_loop(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    Source<Wide> const x_re({x.re, x.step}), x_im({x.im, x.step}), y_re({y.re, y.step}), y_im({y.im, y.step});
    for (std::ptrdiff_t k = 0; k < n; k += Wide::count) {
        bool const full = n - k >= Wide::count;
        auto const part = [=](Source<Wide> const& of) { return full ? of(k) : of(k, n - k); };
        Wide const from[] = {part(x_re), part(x_im), part(y_re), part(y_im)};
        Wide to_re = from[0] * from[2] - from[1] * from[3], to_im = from[0] * from[3] + from[1] * from[2];
        auto const infinite = !((to_re - to_re) + (to_im - to_im) == Wide(0.0));
        if (__builtin_expect(infinite.any(), false))
            times_again(infinite.lanes(), from, to_re, to_im);
        if (full) {
            to_re.store(re + k);
            to_im.store(im + k);
        } else {
            to_re.store(re + k, static_cast<int>(n - k));
            to_im.store(im + k, static_cast<int>(n - k));
        }
    }
}

} // namespace
} // namespace arrlib

#endif
