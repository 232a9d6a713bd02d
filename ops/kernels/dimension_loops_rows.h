// The loops of dimension_loops.h over rows, for the file of each kind. Nothing here may be shared
// between those files: a function that the linker merges would run on the wrong processors.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_ROWS_H
#define ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_ROWS_H

#include "ops/kernels/dimension_loops.h"

namespace arrlib {
namespace {

void sum(double* __restrict total, double const* x, Rows rows)
{
    std::ptrdiff_t const pitch = rows.pitch, width = rows.width;
    std::ptrdiff_t k = 0;
    for (; k + 8 <= rows.count; k += 8, x += 8 * pitch)
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            double const* const at = x + i;
            total[i] += ((at[0] + at[pitch]) + (at[2 * pitch] + at[3 * pitch])) +
                        ((at[4 * pitch] + at[5 * pitch]) + (at[6 * pitch] + at[7 * pitch]));
        }
    for (; k < rows.count; ++k, x += pitch)
        for (std::ptrdiff_t i = 0; i < width; ++i)
            total[i] += x[i];
}

void product(double* __restrict total, double const* x, Rows rows)
{
    std::ptrdiff_t const pitch = rows.pitch, width = rows.width;
    std::ptrdiff_t k = 0;
    for (; k + 4 <= rows.count; k += 4, x += 4 * pitch)
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            double const* const at = x + i;
            total[i] = total[i] * at[0] * at[pitch] * at[2 * pitch] * at[3 * pitch];
        }
    for (; k < rows.count; ++k, x += pitch)
        for (std::ptrdiff_t i = 0; i < width; ++i)
            total[i] *= x[i];
}

void complex_product(double* __restrict re, double* __restrict im, double const* x, double const* xi, Rows rows)
{
    for (std::ptrdiff_t k = 0; k < rows.count; ++k, x += rows.pitch, xi += rows.pitch)
        for (std::ptrdiff_t i = 0; i < rows.width; ++i) {
            double const a = re[i], b = im[i];
            re[i] = a * x[i] - b * xi[i];
            im[i] = a * xi[i] + b * x[i];
        }
}

// --- max and min ----------------------------------------------------------------------------------

template <bool complex> double rank(double const* x, double const* xi, std::ptrdiff_t at)
{
    if constexpr (complex)
        return x[at] * x[at] + xi[at] * xi[at];
    return x[at];
}

template <bool larger> void keep_better(double& best, double& row, double value, double number)
{
    bool const better = larger ? value > best : value < best;
    best = better ? value : best;
    row = better ? number : row;
}

template <bool larger, bool complex>
void best_rows(double* __restrict best, double* __restrict row, double const* x, double const* xi, Rows rows, double first)
{
    std::ptrdiff_t const pitch = rows.pitch, width = rows.width;
    std::ptrdiff_t k = 0;
    for (; k + 4 <= rows.count; k += 4) {
        std::ptrdiff_t const at = k * pitch;
        double const number = first + static_cast<double>(k);
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            double value = best[i], from = row[i];
            keep_better<larger>(value, from, rank<complex>(x, xi, at + i), number);
            keep_better<larger>(value, from, rank<complex>(x, xi, at + pitch + i), number + 1);
            keep_better<larger>(value, from, rank<complex>(x, xi, at + 2 * pitch + i), number + 2);
            keep_better<larger>(value, from, rank<complex>(x, xi, at + 3 * pitch + i), number + 3);
            best[i] = value;
            row[i] = from;
        }
    }
    for (; k < rows.count; ++k)
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            double value = best[i], from = row[i];
            keep_better<larger>(value, from, rank<complex>(x, xi, k * pitch + i), first + static_cast<double>(k));
            best[i] = value;
            row[i] = from;
        }
}

template <bool larger> void best(double* value, double* row, double const* x, double const* xi, Rows rows, double first)
{
    if (xi)
        best_rows<larger, true>(value, row, x, xi, rows, first);
    else
        best_rows<larger, false>(value, row, x, xi, rows, first);
}

template <bool larger>
void merge_best(double* __restrict best, double* __restrict row, double const* __restrict value, double const* __restrict value_row, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        double const kept = best[i], kept_row = row[i], other = value[i], other_row = value_row[i];
        bool const better = (larger ? other > kept : other < kept) | ((other == kept) & (other_row < kept_row));
        best[i] = better ? other : kept;
        row[i] = better ? other_row : kept_row;
    }
}

void renumber(double* row, int n, double by, double add, int step)
{
    for (int i = 0; i < n; ++i) {
        double const number = row[i] * by + (add + static_cast<double>(i * step));
        row[i] = row[i] >= 0 ? number : row[i];
    }
}

// --- any and all ----------------------------------------------------------------------------------

template <bool complex> bool is_true(double const* x, double const* xi, std::ptrdiff_t at)
{
    if constexpr (complex)
        return (x[at] != 0) | (xi[at] != 0);
    return x[at] != 0;
}

template <bool every, bool complex> void truth_rows(double* __restrict flag, double const* x, double const* xi, Rows rows)
{
    std::ptrdiff_t const pitch = rows.pitch, width = rows.width;
    std::ptrdiff_t k = 0;
    for (; k + 4 <= rows.count; k += 4) {
        std::ptrdiff_t const at = k * pitch;
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            double f = flag[i];
            for (std::ptrdiff_t r = 0; r < 4; ++r)
                f = is_true<complex>(x, xi, at + r * pitch + i) == every ? f : every ? 0 : 1;
            flag[i] = f;
        }
    }
    for (; k < rows.count; ++k)
        for (std::ptrdiff_t i = 0; i < width; ++i)
            flag[i] = is_true<complex>(x, xi, k * pitch + i) == every ? flag[i] : every ? 0 : 1;
}

template <bool every> void truth(double* flag, double const* x, double const* xi, Rows rows)
{
    if (xi)
        truth_rows<every, true>(flag, x, xi, rows);
    else
        truth_rows<every, false>(flag, x, xi, rows);
}

// --- products of one vector -----------------------------------------------------------------------

constexpr std::ptrdiff_t lanes = 32;

double magnitude(double x)
{
    return __builtin_fabs(x);
}

// A product that overflows stays infinite or becomes NaN: its end tells.
bool in_bounds(double x)
{
    return magnitude(x) >= least_normal && magnitude(x) <= largest_number;
}

bool safe_product(double const* x, std::ptrdiff_t n, double& result)
{
    double lane[lanes], low[lanes];
    for (std::ptrdiff_t j = 0; j < lanes; ++j)
        lane[j] = low[j] = 1;
    auto const step = [&](std::ptrdiff_t j, double factor) {
        lane[j] *= factor;
        double const size = magnitude(lane[j]);
        low[j] = size < low[j] ? size : low[j];
    };
    std::ptrdiff_t k = 0;
    for (; k + lanes <= n; k += lanes)
        for (std::ptrdiff_t j = 0; j < lanes; ++j)
            step(j, x[k + j]);
    for (std::ptrdiff_t j = 0; k + j < n; ++j)
        step(j, x[k + j]);
    bool safe = true;
    for (std::ptrdiff_t j = 0; j < lanes; ++j)
        safe &= low[j] >= least_normal && in_bounds(lane[j]);
    for (std::ptrdiff_t half = lanes / 2; half > 0; half /= 2)
        for (std::ptrdiff_t j = 0; j < half; ++j) {
            lane[j] *= lane[j + half];
            safe &= in_bounds(lane[j]);
        }
    result = lane[0];
    return safe;
}

bool safe_complex_product(double const* x, double const* xi, std::ptrdiff_t n, double& re, double& im)
{
    double a[lanes], b[lanes], low[lanes], high[lanes];
    for (std::ptrdiff_t j = 0; j < lanes; ++j) {
        a[j] = low[j] = high[j] = 1;
        b[j] = 0;
    }
    auto const step = [&](std::ptrdiff_t j, double c, double d) {
        double const real = a[j] * c - b[j] * d, imaginary = a[j] * d + b[j] * c;
        double const size = magnitude(real) + magnitude(imaginary);
        a[j] = real;
        b[j] = imaginary;
        low[j] = size < low[j] ? size : low[j];
        high[j] = size > high[j] ? size : high[j];
    };
    std::ptrdiff_t k = 0;
    for (; k + lanes <= n; k += lanes)
        for (std::ptrdiff_t j = 0; j < lanes; ++j)
            step(j, x[k + j], xi[k + j]);
    for (std::ptrdiff_t j = 0; k + j < n; ++j)
        step(j, x[k + j], xi[k + j]);
    for (std::ptrdiff_t half = lanes / 2; half > 0; half /= 2)
        for (std::ptrdiff_t j = 0; j < half; ++j) {
            low[j] = low[j + half] < low[j] ? low[j + half] : low[j];
            high[j] = high[j + half] > high[j] ? high[j + half] : high[j];
            step(j, a[j + half], b[j + half]);
        }
    re = a[0];
    im = b[0];
    return low[0] >= least_complex && high[0] <= largest_complex && re == re && im == im;
}

} // namespace
} // namespace arrlib

#endif
