// diff, gradient, del2, unwrap.
#include "ops/kernels/dimension.h"
#include "ops/kernels/dimension_split.h"
#include "runtime/errors.h"

#include <cmath>
#include <limits>

namespace arrlib {

namespace {

std::ptrdiff_t element_count(Axis const& axis)
{
    return axis.stride * axis.length * axis.outer;
}

// Both parts on their own; a result that is complex where x is real has an imaginary part of zeros.
template <class Part> void each_part(DimensionWork const& work, std::ptrdiff_t result_elements, Part part)
{
    part(work.x, work.re);
    if (work.im && work.xi)
        part(work.xi, work.im);
    else if (work.im)
        std::fill_n(work.im, result_elements, 0.0);
}

// --- diff -----------------------------------------------------------------------------------------

void differences(Axis const& axis, double const* x, double* z)
{
    std::ptrdiff_t const stride = axis.stride, count = (axis.length - 1) * stride;
    for_runs(axis.outer, count, [&](std::ptrdiff_t o, std::ptrdiff_t from, std::ptrdiff_t to) {
        double const* const at = x + o * axis.length * stride;
        double* const result = z + o * count;
        for (std::ptrdiff_t j = from; j < to; ++j)
            result[j] = at[j + stride] - at[j];
    });
}

// --- spacings -------------------------------------------------------------------------------------

struct UnitSteps {
    static constexpr bool equal = true;
    // From point j to point k.
    static double between(std::ptrdiff_t j, std::ptrdiff_t k) { return static_cast<double>(k - j); }
};

struct EqualSteps {
    static constexpr bool equal = true;
    double step;
    double between(std::ptrdiff_t j, std::ptrdiff_t k) const { return static_cast<double>(k - j) * step; }
};

struct Coordinates {
    static constexpr bool equal = false;
    double const* at;
    double between(std::ptrdiff_t j, std::ptrdiff_t k) const { return at[k] - at[j]; }
};

// Calls body with the points that the second operand stands for. False after the report.
template <class Body> bool with_points(DimensionWork const& work, char const* name, Body body)
{
    if (!work.y || (work.y_count == 1 && *work.y == 1))
        body(UnitSteps{});
    else if (work.y_count == 1)
        body(EqualSteps{*work.y});
    else if (work.y_count == work.axis.length)
        body(Coordinates{work.y});
    else {
        error("%s: increment vector must be scalar or same length as the corresponding dimension", name);
        return false;
    }
    return true;
}

// --- derivatives ----------------------------------------------------------------------------------
// Of the element at p in row k; the rows before and after it are `stride` elements away. `inner` is
// for rows that have both neighbours, and looks at differences of row numbers only where all steps
// are equal.

struct Gradient {
    template <class Points> static double inner(double const* p, std::ptrdiff_t stride, std::ptrdiff_t k, Points points)
    {
        return (p[stride] - p[-stride]) / points.between(k - 1, k + 1);
    }
    template <class Points> static double edge(double const* p, Axis const& axis, std::ptrdiff_t k, Points points)
    {
        if (axis.length < 2)
            return 0;
        return k == 0 ? (p[axis.stride] - p[0]) / points.between(0, 1) : (p[0] - p[-axis.stride]) / points.between(k - 1, k);
    }
};

// A quarter of the second derivative; at the edges on the line through the two next to it.
struct Laplacian {
    template <class Points> static double inner(double const* p, std::ptrdiff_t stride, std::ptrdiff_t k, Points points)
    {
        double const before = (p[0] - p[-stride]) / points.between(k - 1, k), after = (p[stride] - p[0]) / points.between(k, k + 1);
        return (after - before) / points.between(k - 1, k + 1) * 0.5;
    }
    template <class Points> static double edge(double const* p, Axis const& axis, std::ptrdiff_t k, Points points)
    {
        if (axis.length < 3)
            return 0;
        std::ptrdiff_t const inward = k == 0 ? 1 : -1, stride = axis.stride;
        double const near = inner(p + inward * stride, stride, k + inward, points);
        if (axis.length == 3)
            return near;
        double const far = inner(p + 2 * inward * stride, stride, k + 2 * inward, points);
        return near - (far - near) * (points.between(k, k + inward) / points.between(k + inward, k + 2 * inward));
    }
};

// Elements `from` to `to` of the vectors of one o, which begin at x and z.
template <class Derivative, class Points>
void derive(Axis const& axis, Points points, double const* x, double* z, std::ptrdiff_t from, std::ptrdiff_t to)
{
    std::ptrdiff_t const stride = axis.stride, inner_end = (axis.length - 1) * stride;
    std::ptrdiff_t at = from;
    auto const edge_until = [&](std::ptrdiff_t end, std::ptrdiff_t k) {
        for (; at < end; ++at)
            z[at] = Derivative::edge(x + at, axis, k, points);
    };
    edge_until(std::min(to, stride), 0);
    std::ptrdiff_t const end = std::min(to, inner_end);
    if constexpr (Points::equal) {
        for (; at < end; ++at)
            z[at] = Derivative::inner(x + at, stride, 1, points);
    } else if (stride == 1) {
        for (; at < end; ++at)
            z[at] = Derivative::inner(x + at, 1, at, points);
    } else {
        while (at < end) {
            std::ptrdiff_t const k = at / stride;
            for (std::ptrdiff_t const row_end = std::min(end, (k + 1) * stride); at < row_end; ++at)
                z[at] = Derivative::inner(x + at, stride, k, points);
        }
    }
    edge_until(to, axis.length - 1);
}

template <class Derivative> bool derivatives(DimensionWork const& work, char const* name)
{
    Axis const& axis = work.axis;
    return with_points(work, name, [&](auto points) {
        each_part(work, element_count(axis), [&](double const* x, double* z) {
            std::ptrdiff_t const size = axis.stride * axis.length;
            for_runs(axis.outer, size, [&](std::ptrdiff_t o, std::ptrdiff_t from, std::ptrdiff_t to) {
                derive<Derivative>(axis, points, x + o * size, z + o * size, from, to);
            });
        });
    });
}

// --- unwrap ---------------------------------------------------------------------------------------

constexpr double pi_value = 3.14159265358979323846;

// One column on the way along its dimension.
struct Unwrapping {
    double last, turns;

    double next(double angle, double tolerance)
    {
        if (std::isfinite(angle)) {
            double const jump = angle - last;
            if (std::fabs(jump) > tolerance)
                turns += std::copysign(std::ceil(std::fabs(jump) / (2 * pi_value) - 0.5), jump);
            last = angle;
        }
        return angle - turns * (2 * pi_value);
    }
};

void unwrap_columns(DimensionWork const& work)
{
    constexpr std::ptrdiff_t most_columns = 256;
    Axis const& axis = work.axis;
    double const tolerance = work.y ? *work.y : pi_value;
    double const* const x = work.x;
    double* const z = work.re;
    for_columns(axis, most_columns, [&](Columns const& columns) {
        std::ptrdiff_t const first = columns.outer * axis.length * axis.stride + columns.first;
        // A jump from NaN is none.
        constexpr Unwrapping start{std::numeric_limits<double>::quiet_NaN(), 0};
        if (columns.width == 1) {
            Unwrapping one = start;
            for (std::ptrdiff_t k = 0; k < axis.length; ++k)
                z[first + k * axis.stride] = one.next(x[first + k * axis.stride], tolerance);
            return;
        }
        Unwrapping column[most_columns];
        std::fill_n(column, columns.width, start);
        for (std::ptrdiff_t k = 0; k < axis.length; ++k)
            for (std::ptrdiff_t i = 0, at = first + k * axis.stride; i < columns.width; ++i, ++at)
                z[at] = column[i].next(x[at], tolerance);
    });
}

} // namespace

bool along_diff(DimensionWork const& work)
{
    Axis const& axis = work.axis;
    if (axis.length > 1)
        each_part(work, (axis.length - 1) * axis.stride * axis.outer, [&](double const* x, double* z) { differences(axis, x, z); });
    return true;
}

bool along_gradient(DimensionWork const& work)
{
    return derivatives<Gradient>(work, "gradient");
}

bool along_del2(DimensionWork const& work)
{
    return derivatives<Laplacian>(work, "del2");
}

bool along_unwrap(DimensionWork const& work)
{
    unwrap_columns(work);
    if (work.im && work.xi)
        std::copy_n(work.xi, element_count(work.axis), work.im);
    else if (work.im)
        std::fill_n(work.im, element_count(work.axis), 0.0);
    return true;
}

} // namespace arrlib
