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

// Of operands that both have imaginary parts: their parts, and elements `from` to `end` of the product.
struct ComplexTimes {
    Source<Wide> x_re, x_im, y_re, y_im;
    double *re, *im;

    void one_by_one(std::ptrdiff_t from, std::ptrdiff_t end) const
    {
        for (std::ptrdiff_t k = from; k < end; k += Wide::count) {
            bool const full = end - k >= Wide::count;
            auto const part = [=](Source<Wide> const& of) { return full ? of(k) : of(k, end - k); };
            Wide const factors[] = {part(x_re), part(x_im), part(y_re), part(y_im)};
            Wide to_re = factors[0] * factors[2] - factors[1] * factors[3], to_im = factors[0] * factors[3] + factors[1] * factors[2];
            auto const infinite = !((to_re - to_re) + (to_im - to_im) == Wide(0.0));
            if (__builtin_expect(infinite.any(), false))
                times_again(infinite.lanes(), factors, to_re, to_im);
            if (full) {
                to_re.store(re + k);
                to_im.store(im + k);
            } else {
                to_re.store(re + k, static_cast<int>(end - k));
                to_im.store(im + k, static_cast<int>(end - k));
            }
        }
    }
    // Full vectors whose factors stay: the real parts first, then the imaginary ones from what lies near by then. Six
    // arrays side by side are too many for the processor to look ahead in. False where the kernel is wanted again.
    bool part_by_part(std::ptrdiff_t from, std::ptrdiff_t end) const
    {
        Wide lost(0.0);
        for (std::ptrdiff_t k = from; k < end; k += Wide::count) {
            Wide const made = x_re(k) * y_re(k) - x_im(k) * y_im(k);
            lost = lost + (made - made);
            made.store(re + k);
        }
        for (std::ptrdiff_t k = from; k < end; k += Wide::count) {
            Wide const made = x_re(k) * y_im(k) + x_im(k) * y_re(k);
            lost = lost + (made - made);
            made.store(im + k);
        }
        return (lost == Wide(0.0)).all();
    }
};
[[gnu::flatten]] inline void complex_times_loop(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    constexpr std::ptrdiff_t block = 512;
    ComplexTimes const work{Source<Wide>({x.re, x.step}), Source<Wide>({x.im, x.step}), Source<Wide>({y.re, y.step}), Source<Wide>({y.im, y.step}), re, im};
    bool const in_place = re == x.re || re == y.re || im == x.im || im == y.im;
    std::ptrdiff_t from = 0;
    for (; !in_place && n - from >= block; from += block)
        if (!work.part_by_part(from, from + block))
            work.one_by_one(from, from + block);
    work.one_by_one(from, n);
}

} // namespace
} // namespace arrlib

#endif
