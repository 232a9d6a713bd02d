#include "builtins/positions.h"

#include "builtins/args.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

using namespace arrlib;

namespace {

// The sizes as `count` of them: the last one takes the product of those that are left, those that are
// missing are 1.
struct Sizes {
    double size[max_dims] = {1, 1, 1, 1};

    Sizes(M<double> const& siz, int count)
    {
        for (int d = 0; d < siz.size(); ++d)
            size[std::min(d, count - 1)] *= std::trunc(siz[d + 1]);
    }
    double product() const { return size[0] * size[1] * size[2] * size[3]; }
};

bool same_shape(M<double> const& x, M<double> const& y)
{
    return std::equal(x.getdims(), x.getdims() + max_dims, y.getdims());
}

M<double> numbers_of(M<double> const& siz, std::initializer_list<M<double> const*> subscripts)
{
    Arguments const args("sub2ind");
    M<double> const& first = **subscripts.begin();
    for (M<double> const* const subscript : subscripts)
        if (!same_shape(first, *subscript)) {
            args.sizes_differ(first, *subscript);
            return x_M;
        }
    Sizes const sizes(siz, static_cast<int>(subscripts.size()));
    M<double> made = full_result(shape_of(first));
    if (!has_storage(made))
        return x_M;
    std::fill_n(made.addr(), made.size(), 1.0);
    double step = 1;
    double const* size = sizes.size;
    for (M<double> const* const subscript : subscripts) {
        M<double> const list = full_form(*subscript);
        if (!has_storage(list))
            return x_M;
        for (int k = 0; k < made.size(); ++k) {
            double const at = std::trunc(list.addr()[k]);
            if (!(at >= 1 && at <= *size)) {
                args.report("subscript out of range");
                return x_M;
            }
            made.addr()[k] += (at - 1) * step;
        }
        step *= *size++;
    }
    return made;
}

// One subscript of all numbers, which are in range.
M<double> subscript_of(M<double> const& numbers, double step, double size)
{
    M<double> made = full_result(shape_of(numbers));
    if (!has_storage(made))
        return x_M;
    for (int k = 0; k < made.size(); ++k) {
        double const rest = std::floor((std::trunc(numbers.addr()[k]) - 1) / step);
        made.addr()[k] = rest - std::floor(rest / size) * size + 1;
    }
    return made;
}

template <class... Outputs> M<double> subscripts_of(M<double> const& siz, M<double> const& k, Outputs&... outputs)
{
    constexpr std::size_t count = sizeof...(outputs);
    Sizes const sizes(siz, static_cast<int>(count));
    M<double> const numbers = full_form(k);
    if (!has_storage(numbers))
        return no_results(outputs...);
    double const last = sizes.product();
    if (!std::all_of(numbers.addr(), numbers.addr() + numbers.size(), [last](double at) { return at >= 1 && std::trunc(at) <= last; })) {
        Arguments("ind2sub").report("index out of range");
        return no_results(outputs...);
    }
    M<double> found[count];
    double step = 1;
    double const* size = sizes.size;
    for (M<double>& subscript : found) {
        subscript = subscript_of(numbers, step, *size);
        if (subscript.size() != numbers.size())
            return no_results(outputs...);
        step *= *size++;
    }
    M<double> const* next = found;
    ((outputs = *next++), ...);
    return found[0];
}

} // namespace

M<double> sub2ind(M<double> const& siz, M<double> const& i1)
{
    return numbers_of(siz, {&i1});
}
M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2)
{
    return numbers_of(siz, {&i1, &i2});
}
M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2, M<double> const& i3)
{
    return numbers_of(siz, {&i1, &i2, &i3});
}
M<double> sub2ind(M<double> const& siz, M<double> const& i1, M<double> const& i2, M<double> const& i3, M<double> const& i4)
{
    return numbers_of(siz, {&i1, &i2, &i3, &i4});
}

M<double> ind2sub(M<double> const& siz, M<double> const& k)
{
    M<double> number;
    return ind2sub(siz, k, i_o, number);
}
M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1)
{
    return subscripts_of(siz, k, i1);
}
M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2)
{
    return subscripts_of(siz, k, i1, i2);
}
M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2, Mr<double> i3)
{
    return subscripts_of(siz, k, i1, i2, i3);
}
M<double> ind2sub(M<double> const& siz, M<double> const& k, i_o_t, Mr<double> i1, Mr<double> i2, Mr<double> i3, Mr<double> i4)
{
    return subscripts_of(siz, k, i1, i2, i3, i4);
}
