// The inner loops of the work along dimensions. They are compiled once per kind of processor, and
// do the same operations in the same order on each.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_H
#define ARRLIB_OPS_KERNELS_DIMENSION_LOOPS_H

#include <cstddef>

namespace arrlib {

// A product in pieces is right when no piece leaves these bounds: below the least normal number
// digits are lost. Of a complex number the sum of both magnitudes counts: what is lost in the smaller
// part is less than the last digit of the larger one.
inline constexpr double least_normal = 0x1p-1022, largest_number = 0x1.fffffffffffffp1023;
inline constexpr double least_complex = 0x1p-900, largest_complex = 0x1p900;

// `count` rows of `width` neighbouring elements; row k begins at k * pitch.
struct Rows {
    std::ptrdiff_t pitch, count, width;
};

struct DimensionLoops {
    char const* kind;

    // --- rows; the arrays of state have one number per column --------------------------------------
    // total += the sum of the rows, eight at a time.
    void (*sum)(double* total, double const* x, Rows rows);
    // total *= row, row by row.
    void (*product)(double* total, double const* x, Rows rows);
    void (*complex_product)(double* re, double* im, double const* x, double const* xi, Rows rows);
    // best and its row become the largest or smallest; of squared moduli when there is xi. Rows are
    // counted from `first`.
    void (*largest)(double* best, double* row, double const* x, double const* xi, Rows rows, double first);
    void (*smallest)(double* best, double* row, double const* x, double const* xi, Rows rows, double first);
    // best and its row become value and its row where that is better, or as good and in an earlier row.
    void (*merge_largest)(double* best, double* row, double const* value, double const* value_row, std::ptrdiff_t n);
    void (*merge_smallest)(double* best, double* row, double const* value, double const* value_row, std::ptrdiff_t n);
    // Row numbers r that are not negative become r * by + add, + step in each further column.
    void (*renumber)(double* row, int n, double by, double add, int step);
    // Flags become 1 where an element is not zero, 0 where one is; xi may be null.
    void (*any)(double* flag, double const* x, double const* xi, Rows rows);
    void (*all)(double* flag, double const* x, double const* xi, Rows rows);

    // --- n neighbouring elements -------------------------------------------------------------------
    // Their product. False when a part of it leaves the bounds, and the order of the factors matters.
    bool (*safe_product)(double const* x, std::ptrdiff_t n, double& product);
    bool (*safe_complex_product)(double const* x, double const* xi, std::ptrdiff_t n, double& re, double& im);
    // Writes `before` and the sums of all beginnings; returns the sum of the elements.
    double (*cumulative_sum)(double const* x, double* z, std::ptrdiff_t n, double before);
    // Writes `before` times the products of all beginnings, the last of which becomes `before`. n is a
    // multiple of 8. False, with z spoilt, when a part leaves the bounds.
    bool (*cumulative_product)(double const* x, double* z, std::ptrdiff_t n, double& before);
    bool (*cumulative_complex_product)(double const* x, double const* xi, double* z, double* zi, std::ptrdiff_t n, double& re, double& im);
};

// Those of the kind that kernel_set() has.
DimensionLoops const& dimension_loops();
// Those of a kind that the processor has.
DimensionLoops const& dimension_loops(char const* kind);

extern DimensionLoops const dimension_loops_baseline, dimension_loops_avx2, dimension_loops_avx512;

} // namespace arrlib

#endif
