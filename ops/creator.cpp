#include "ops/creator.h"

#include "core/access.h"
#include "core/arguments.h"
#include "ops/random_generator.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace arrlib;

namespace {

using Arguments = std::initializer_list<M<double> const*>;

// The neutral result of arguments that ask for no shape.
M<double> without_shape(SizesRead read)
{
    return read == SizesRead::empty ? nop_M : x_M;
}

void fill(double* to, int count, double value)
{
    // A thread that gets less than this costs more than it saves.
    constexpr std::ptrdiff_t share = 1 << 17;
    parallel_for(count, share, [=](std::ptrdiff_t from, std::ptrdiff_t end) {
        // The C library writes long runs without reading first what they overwrite: a few numbers are its pattern.
        constexpr std::ptrdiff_t pattern = 1024;
        double const* const first = to + from;
        std::ptrdiff_t at = std::min(from + pattern, end);
        std::fill(to + from, to + at, value);
        for (; at < end; at += pattern)
            std::memcpy(to + at, first, static_cast<std::size_t>(std::min(pattern, end - at)) * sizeof(double));
    });
}

} // namespace

M<double> arrlib::eye01(int code, Arguments arguments)
{
    SizeList sizes;
    SizesRead const read = read_sizes("eye01", arguments, sizes);
    if (read != SizesRead::done)
        return without_shape(read);
    Dims const shape(max_dims, sizes.size);
    if (code == create_identity && shape.ndims > 2) {
        error("eye01: too many dimensions");
        return x_M;
    }
    if (code < create_zeros || code > create_normal) {
        error("eye01_op: unknown op");
        return x_M;
    }
    M<double> made = Access<double>::full(code == create_complex_zeros, shape);
    double* const re = made.addr();
    if (!re)
        return x_M;
    if (code == create_uniform)
        draw_uniform(re, shape.count);
    else if (code == create_normal)
        draw_normal(re, shape.count);
    else
        fill(re, shape.count, code == create_ones ? 1 : 0);
    if (made.isc())
        fill(made.addi(), shape.count, 0);
    if (code == create_identity)
        for (int k = 0; k < std::min(shape.size[0], shape.size[1]); ++k)
            re[static_cast<std::ptrdiff_t>(k) * (shape.size[0] + 1)] = 1;
    return made;
}

M<double> arrlib::filled(double value, Arguments arguments)
{
    SizeList sizes;
    SizesRead const read = read_sizes("eye01", arguments, sizes);
    if (read != SizesRead::done)
        return without_shape(read);
    Dims const shape(max_dims, sizes.size);
    M<double> made = Access<double>::full(false, shape);
    if (!made.addr())
        return x_M;
    fill(made.addr(), shape.count, value);
    return made;
}

M<double> zeros()
{
    return M<double>(0.0);
}

M<double> zeros(M<double> const& n)
{
    return eye01(create_zeros, {&n});
}

M<double> zeros(M<double> const& m, M<double> const& n)
{
    return eye01(create_zeros, {&m, &n});
}

M<double> zeros(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_zeros, {&m, &n, &p});
}

M<double> zeros(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_zeros, {&m, &n, &p, &q});
}

M<double> czeros()
{
    return eye01(create_complex_zeros, {});
}

M<double> czeros(M<double> const& n)
{
    return eye01(create_complex_zeros, {&n});
}

M<double> czeros(M<double> const& m, M<double> const& n)
{
    return eye01(create_complex_zeros, {&m, &n});
}

M<double> czeros(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_complex_zeros, {&m, &n, &p});
}

M<double> czeros(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_complex_zeros, {&m, &n, &p, &q});
}

M<double> ones()
{
    return M<double>(1.0);
}

M<double> ones(M<double> const& n)
{
    return eye01(create_ones, {&n});
}

M<double> ones(M<double> const& m, M<double> const& n)
{
    return eye01(create_ones, {&m, &n});
}

M<double> ones(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_ones, {&m, &n, &p});
}

M<double> ones(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_ones, {&m, &n, &p, &q});
}

M<double> eye()
{
    return M<double>(1.0);
}

M<double> eye(M<double> const& n)
{
    return eye01(create_identity, {&n});
}

M<double> eye(M<double> const& m, M<double> const& n)
{
    return eye01(create_identity, {&m, &n});
}

M<double> eye(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_identity, {&m, &n, &p});
}

M<double> eye(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_identity, {&m, &n, &p, &q});
}
