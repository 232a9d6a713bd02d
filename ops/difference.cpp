#include "ops/difference.h"

#include "core/arguments.h"
#include "core/subscript.h"
#include "ops/engine.h"
#include "ops/reduction.h"
#include "runtime/constants.h"

#include <cstddef>
#include <utility>

using namespace arrlib;

// --- diff and unwrap ------------------------------------------------------------------------------

M<double> diff(M<double> const& x)
{
    return apply_along(op_diff, x, zero_M);
}

M<double> diff(M<double> const& x, M<double> const& n)
{
    return diff(x, n, zero_M);
}

M<double> diff(M<double> const& x, M<double> const& n, M<double> const& dim)
{
    int const times = n.size() == 0 ? 1 : integer_argument(n);
    M<double> result = x;
    for (int k = 0; k < times && (k == 0 || result.size() > 0); ++k)
        result = apply_along(op_diff, result, dim);
    return result;
}

M<double> unwrap(M<double> const& x)
{
    return apply_along(op_unwrap, x, zero_M);
}

M<double> unwrap(M<double> const& x, M<double> const& dim)
{
    return apply_along(op_unwrap, x, dim);
}

M<double> unwrap(M<double> const& x, M<double> const& tolerance, M<double> const& dim)
{
    return apply_along(op_unwrap, x, dim, tolerance.size() == 0 ? pi : tolerance);
}

// --- derivatives ----------------------------------------------------------------------------------

namespace {

// What is the first of a list for dimension 2, the second for dimension 1; the others in order.
int dimension_of_place(int place)
{
    return place == 0 ? 2 : place == 1 ? 1 : place + 1;
}

class Spacings {
public:
    Spacings() = default;
    Spacings(M<double> const& all) : count_(1), list_{&all} {}
    Spacings(M<double> const& h2, M<double> const& h1) : count_(2), list_{&h2, &h1} {}
    Spacings(M<double> const& h2, M<double> const& h1, M<double> const& h3) : count_(3), list_{&h2, &h1, &h3} {}

    M<double> const& at(int place) const
    {
        if (count_ == 1)
            place = 0;
        return place >= count_ || list_[place]->size() == 0 ? one_M : *list_[place];
    }

private:
    int count_ = 0;
    M<double> const* list_[3] = {};
};

M<double> derivative(OpCode op, M<double> const& x, int dim, M<double> const& spacing)
{
    M<double> const dimension = static_cast<double>(dim);
    return dimension.size() > 0 ? apply_along(op, x, dimension, spacing) : x_M;
}

// The dimension of output `place`: of a vector its own comes first.
int gradient_dimension(M<double> const& x, int place)
{
    int const own = x.vectordim();
    int const dim = dimension_of_place(place);
    if (own == 0)
        return dim;
    return place == 0 ? own : dim == own ? 2 : dim;
}

// False after a report.
template <std::size_t outputs> bool gradients(M<double> const& x, Spacings const& spacings, M<double> (&made)[outputs])
{
    for (int place = 0; M<double>& output : made) {
        output = derivative(op_gradient, x, gradient_dimension(x, place), spacings.at(place));
        if (output.size() == 0 && x.size() > 0)
            return false;
        ++place;
    }
    return true;
}

M<double> gradient_of(M<double> const& x, Spacings const& spacings)
{
    M<double> made[1];
    return gradients(x, spacings, made) ? made[0] : x_M;
}

M<double> gradient_of(M<double> const& x, Spacings const& spacings, Mr<double>& along1)
{
    M<double> made[2];
    if (!gradients(x, spacings, made))
        return x_M;
    along1 = made[1];
    return made[0];
}

M<double> gradient_of(M<double> const& x, Spacings const& spacings, Mr<double>& along1, Mr<double>& along3)
{
    M<double> made[3];
    if (!gradients(x, spacings, made))
        return x_M;
    along1 = made[1];
    along3 = made[2];
    return made[0];
}

void by_elements(M<double>& result, M<double> const& y, OpCode op)
{
    M<double> x = std::move(result);
    op_apply(result, std::move(x), y, nop_M, op, 0, l_M);
}

M<double> laplacian(M<double> const& x, Spacings const& spacings)
{
    M<double> total;
    bool first = true;
    for (int place = 0; place < max_dims; ++place) {
        int const dim = dimension_of_place(place);
        // A value of one element has a dimension too.
        if (x.size() != 0 && x.size(dim) == 1 && dim != x.nsingleton())
            continue;
        M<double> part = derivative(op_del2, x, dim, spacings.at(place));
        if (part.size() == 0)
            return part;
        if (first)
            total = std::move(part);
        else
            by_elements(total, part, op_plus);
        first = false;
    }
    // The parts are quarters of second derivatives.
    if (int const dims = x.getndims(); dims > 2) {
        by_elements(total, 2.0, op_times);
        by_elements(total, static_cast<double>(dims), op_rdivide);
    }
    return total;
}

} // namespace

M<double> gradient(M<double> const& x) { return gradient_of(x, {}); }
M<double> gradient(M<double> const& x, M<double> const& h) { return gradient_of(x, h); }
M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1) { return gradient_of(x, {h2, h1}); }
M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3) { return gradient_of(x, {h2, h1, h3}); }
M<double> gradient(M<double> const& x, i_o_t, Mr<double> along1) { return gradient_of(x, {}, along1); }
M<double> gradient(M<double> const& x, M<double> const& h, i_o_t, Mr<double> along1) { return gradient_of(x, h, along1); }
M<double> gradient(M<double> const& x, i_o_t, Mr<double> along1, Mr<double> along3) { return gradient_of(x, {}, along1, along3); }

M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, i_o_t, Mr<double> along1)
{
    return gradient_of(x, {h2, h1}, along1);
}

M<double> gradient(M<double> const& x, M<double> const& h, i_o_t, Mr<double> along1, Mr<double> along3)
{
    return gradient_of(x, h, along1, along3);
}

M<double> gradient(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3, i_o_t, Mr<double> along1, Mr<double> along3)
{
    return gradient_of(x, {h2, h1, h3}, along1, along3);
}

M<double> del2(M<double> const& x) { return laplacian(x, {}); }
M<double> del2(M<double> const& x, M<double> const& h) { return laplacian(x, h); }
M<double> del2(M<double> const& x, M<double> const& h2, M<double> const& h1) { return laplacian(x, {h2, h1}); }
M<double> del2(M<double> const& x, M<double> const& h2, M<double> const& h1, M<double> const& h3) { return laplacian(x, {h2, h1, h3}); }
