#include "builtins/elfun.h"

#include "builtins/args.h"
#include "core/heap_array.h"
#include "core/read.h"
#include "core/reshape.h"
#include "ops/elementwise.h"
#include "ops/engine.h"
#include "ops/operators.h"
#include "ops/reduction.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

// A thread that gets fewer elements than this costs more than it saves.
constexpr std::ptrdiff_t share_of_thread = 1 << 16;

// --- dimensions ----------------------------------------------------------------------------------

// A value as runs of `length` elements, `step` apart, along one dimension.
struct Along {
    int dim = 0, length = 0;
    std::ptrdiff_t step = 1;

    Along(M<double> const& x, int along) : dim(along), length(x.getdims()[along])
    {
        for (int d = 0; d < along; ++d)
            step *= x.getdims()[d];
    }
    // Where the run of number k begins.
    std::ptrdiff_t start(std::ptrdiff_t k) const { return k / step * step * length + k % step; }
};

// The dimension from 0 that an optional argument names; -1 after a report.
int dimension_or(char const* builtin, M<double> const& x, M<double> const& dim, int otherwise)
{
    if (!given(dim))
        return otherwise;
    int const along = check_dim_arg(builtin, x, dim);
    return along < x.getndims() ? along : -1;
}

bool same_shape(M<double> const& a, M<double> const& b)
{
    return std::equal(a.getdims(), a.getdims() + max_dims, b.getdims());
}

bool are_vectors(M<double> const& a, M<double> const& b)
{
    return a.size() == b.size() && a.vectordim() != 0 && b.vectordim() != 0;
}

// --- cplxpair ------------------------------------------------------------------------------------

struct Number {
    double re, im;
    bool paired = false;
};

bool increases(double a, double b)
{
    return a < b || (std::isnan(b) && !std::isnan(a));
}

// Orders the numbers of one run into pairs and real numbers; `ordered` is room for as many. False when
// one is left alone.
class Pairing {
public:
    Pairing(double tolerance, HeapArray<Number> const& numbers, HeapArray<Number> const& ordered) : tolerance_(tolerance), numbers_(numbers.data()), ordered_(ordered.data()) {}

    bool run(int count)
    {
        Number* const end = numbers_ + count;
        Number* const reals = std::partition(numbers_, end, [this](Number const& z) { return !is_real(z); });
        std::sort(reals, end, [](Number const& a, Number const& b) { return increases(a.re, b.re); });
        std::sort(numbers_, reals, [](Number const& a, Number const& b) { return increases(a.re, b.re) || (a.re == b.re && increases(std::abs(a.im), std::abs(b.im))); });
        int pairs = 0;
        for (Number* z = numbers_; z != reals; ++z) {
            if (z->paired)
                continue;
            Number* const partner = partner_of(z, reals);
            if (partner == reals)
                return false;
            z->paired = partner->paired = true;
            Number const lower = z->im < 0 ? *z : *partner;
            ordered_[pairs++] = lower;
            ordered_[pairs++] = {lower.re, -lower.im};
        }
        std::for_each(reals, end, [](Number& z) { z.im = 0; });
        std::copy(reals, end, ordered_ + pairs);
        return true;
    }

private:
    bool is_real(Number const& z) const { return z.im == 0 || std::abs(z.im) <= tolerance_ * std::hypot(z.re, z.im); }

    // The nearest to the conjugate among the numbers behind one whose real parts are near enough.
    Number* partner_of(Number* z, Number* end) const
    {
        double const reach = tolerance_ * std::hypot(z->re, z->im);
        Number* best = end;
        double nearest = reach;
        for (Number* other = z + 1; other != end && other->re - z->re <= reach && (best == end || nearest > 0); ++other) {
            double const distance = std::hypot(other->re - z->re, other->im + z->im);
            if (!other->paired && distance <= nearest && (best == end || distance < nearest)) {
                best = other;
                nearest = distance;
            }
        }
        return best;
    }

    double tolerance_;
    Number *numbers_, *ordered_;
};

// --- cross ---------------------------------------------------------------------------------------

// One part of x(from) y(to) - x(to) y(from); a part that is not there counts as 0.
struct Parts {
    double const *re, *im;
};

void cross_run(Parts const& a, Parts const& b, std::ptrdiff_t start, std::ptrdiff_t step, double* re, double* im)
{
    for (int k = 0; k < 3; ++k) {
        std::ptrdiff_t const p = start + (k + 1) % 3 * step, q = start + (k + 2) % 3 * step, at = start + k * step;
        re[at] = a.re[p] * b.re[q] - a.re[q] * b.re[p];
        if (!im)
            continue;
        double const ap = a.im ? a.im[p] : 0, aq = a.im ? a.im[q] : 0, bp = b.im ? b.im[p] : 0, bq = b.im ? b.im[q] : 0;
        re[at] -= ap * bq - aq * bp;
        im[at] = a.re[p] * bq + ap * b.re[q] - a.re[q] * bp - aq * b.re[p];
    }
}

int first_of_length_3(M<double> const& a)
{
    int const* const size = a.getdims();
    return static_cast<int>(std::find(size, size + a.getndims(), 3) - size);
}

// a + b i; empty after a report.
M<double> complex_of(OperandPair const& pair)
{
    M<double> z = full_result(pair.shape(), true);
    double *const re = z.addr(), *const im = z.addi();
    parallel_for(z.size(), share_of_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (int k = static_cast<int>(from); k < to; ++k) {
            re[k] = pair.a(k);
            im[k] = pair.b(k);
        }
    });
    return z;
}

} // namespace

M<double> real(M<double> const& A)
{
    M<double> parts = share(A);
    parts.setstr(0);
    parts.setlogical(0);
    if (A.isc()) {
        // The elements stay where they are.
        Access<double>::drop_imaginary(parts);
        if (A.issparse())
            parts.resparse();
    }
    return parts;
}

M<double> complexM(M<double> const& a)
{
    return complexM(a, zero_M);
}

M<double> complexM(M<double> const& a, M<double> const& b)
{
    Arguments const args("complex");
    if (!args.real(a) || !args.real(b))
        return x_M;
    OperandPair const pair(args.builtin(), a, b);
    return pair ? complex_of(pair) : x_M;
}

M<double> cplxpair(M<double> const& z)
{
    return cplxpair(z, nop_M, nop_M);
}

M<double> cplxpair(M<double> const& z, M<double> const& tol)
{
    return cplxpair(z, tol, nop_M);
}

M<double> cplxpair(M<double> const& z, M<double> const& tol, M<double> const& dim)
{
    Arguments const args("cplxpair");
    M<double> const full = full_form(z);
    int const along = dimension_or(args.builtin(), z, dim, z.nsingleton() - 1);
    if (z.size() < 1 || along < 0)
        return x_M;
    Along const runs(full, along);
    M<double> ordered = full_result(shape_of(z), z.isc());
    HeapArray<Number> const numbers(static_cast<std::size_t>(runs.length)), pairs(static_cast<std::size_t>(runs.length));
    if (!has_storage(full) || !has_storage(ordered) || !numbers || !pairs)
        return x_M;
    Pairing pairing(number_or(tol, 100 * std::numeric_limits<double>::epsilon()), numbers, pairs);
    for (std::ptrdiff_t run = 0; run < z.size() / runs.length; ++run) {
        std::ptrdiff_t const start = runs.start(run);
        for (int k = 0; k < runs.length; ++k) {
            std::ptrdiff_t const at = start + k * runs.step;
            numbers[static_cast<std::size_t>(k)] = {full.addr()[at], full.isc() ? full.addi()[at] : 0};
        }
        if (!pairing.run(runs.length)) {
            args.report("values can not be paired");
            return x_M;
        }
        for (int k = 0; k < runs.length; ++k) {
            std::ptrdiff_t const at = start + k * runs.step;
            ordered.addr()[at] = pairs[static_cast<std::size_t>(k)].re;
            if (ordered.isc())
                ordered.addi()[at] = pairs[static_cast<std::size_t>(k)].im;
        }
    }
    return ordered;
}

M<double> hypot(M<double> const& a, M<double> const& b)
{
    OperandPair const pair("hypot", a, b);
    if (!pair)
        return x_M;
    if (pair.complex())
        return hypot(abs(a), abs(b));
    // The engine's modulus is in vector code and safe from overflow.
    return abs(complex_of(pair));
}

M<double> dot(M<double> const& a, M<double> const& b)
{
    return dot(a, b, nop_M);
}

M<double> dot(M<double> const& a, M<double> const& b, M<double> const& dim)
{
    Arguments const args("dot");
    bool const by_dimension = given(dim);
    if (by_dimension ? dimension_or(args.builtin(), a, dim, 0) < 0 : (a.size() < 1) != (b.size() < 1))
        return x_M;
    M<double> const x = full_form(a), y = full_form(b);
    if (!has_storage(x) || !has_storage(y))
        return x_M;
    if (!by_dimension && a.size() > 1 && are_vectors(a, b)) {
        M<double> row = share(x), column = share(y);
        row.reshape(row.size(), 1);
        column.reshape(column.size(), 1);
        return ctranspose(row) * column;
    }
    if (!same_shape(a, b)) {
        args.sizes_differ(a, b);
        return x_M;
    }
    M<double> const products = times(x.isc() ? conj(x) : x, y);
    return by_dimension ? sum(products, dim) : sum(products);
}

M<double> cross(M<double> const& a, M<double> const& b)
{
    return cross(a, b, nop_M);
}

M<double> cross(M<double> const& a, M<double> const& b, M<double> const& dim)
{
    Arguments const args("cross");
    if (a.size() < 1 || b.size() < 1)
        return x_M;
    int const along = dimension_or(args.builtin(), a, dim, first_of_length_3(a));
    if (along < 0)
        return x_M;
    if (along >= a.getndims() || a.getdims()[along] != 3) {
        args.report("vectors must have 3 elements");
        return x_M;
    }
    if (!same_shape(a, b) && !(a.size() == 3 && are_vectors(a, b))) {
        args.sizes_differ(a, b);
        return x_M;
    }
    M<double> const x = full_form(a), y = full_form(b);
    M<double> products = full_result(shape_of(a), a.isc() || b.isc());
    if (!has_storage(x) || !has_storage(y) || !has_storage(products))
        return x_M;
    Along const runs(x, along);
    for (std::ptrdiff_t run = 0; run < x.size() / 3; ++run)
        cross_run({x.addr(), x.addi()}, {y.addr(), y.addi()}, runs.start(run), runs.step, products.addr(), products.addi());
    return products;
}
