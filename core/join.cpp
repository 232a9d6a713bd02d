#include "core/join.h"

#include "core/access.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "core/read.h"
#include "core/sparse_build.h"
#include "core/sparse_rearrange.h"
#include "runtime/errors.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <type_traits>

using namespace arrlib;

namespace {

constexpr int most_parts = 3;

// The values that take part in a join, empty ones left out.
template <class T> struct Parts {
    void add(M<T> const& value)
    {
        if (value.size() > 0)
            part[count++] = &value;
    }
    M<T> const& operator[](int k) const { return *part[k]; }
    template <class Test> bool any(Test test) const
    {
        return std::any_of(part, part + count, [&](M<T> const* value) { return test(*value) != 0; });
    }

    M<T> const* part[most_parts] = {};
    int count = 0;
};

template <class T> bool sizes_agree(M<T> const& a, M<T> const& b, int but)
{
    for (int d = 0; d < max_dims; ++d)
        if (d != but && a.getdims()[d] != b.getdims()[d])
            return false;
    return true;
}

template <class T> Dims joined_shape(int dim, Parts<T> const& parts)
{
    int size[max_dims];
    std::copy_n(parts[0].getdims(), max_dims, size);
    std::int64_t joined = 0;
    for (int k = 0; k < parts.count; ++k)
        joined += parts[k].getdims()[dim];
    size[dim] = static_cast<int>(std::min<std::int64_t>(joined, INT_MAX));
    return Dims(max_dims, size);
}

// What lies in front of a dimension is copied as one run, as many runs as there are behind it.
template <class T> M<T> joined_full(int dim, Parts<T> const& parts)
{
    Dims const shape = joined_shape(dim, parts);
    M<T> made = Access<T>::full(parts.any([](M<T> const& part) { return part.isc(); }), shape);
    if (!made.addr())
        return made;
    if (made.addi() && parts.any([](M<T> const& part) { return !part.isc(); }))
        Storage<T>::clear(made.addi(), made.size());
    int before = 1;
    for (int d = 0; d < dim; ++d)
        before *= shape.size[d];
    std::ptrdiff_t const stride = static_cast<std::ptrdiff_t>(before) * shape.size[dim];
    int const runs = static_cast<int>(shape.count / stride);
    std::ptrdiff_t at = 0;
    for (int k = 0; k < parts.count; ++k) {
        int const run = before * parts[k].getdims()[dim];
        copy_columns(made.addr() + at, stride, parts[k].addr(), run, run, runs);
        if (parts[k].isc())
            copy_columns(made.addi() + at, stride, parts[k].addi(), run, run, runs);
        at += run;
    }
    return made;
}

M<double> joined_sparse(int dim, Parts<double> const& parts)
{
    if (dim < 2) {
        M<double> made = parts[0].issparse() ? share(parts[0]) : sparse_copy(parts[0]);
        for (int k = 1; k < parts.count && has_storage(made); ++k)
            made = sparse_joined(dim, made, parts[k]);
        return made;
    }
    M<double> full_parts[most_parts] = {full_copy(parts[0]), full_copy(parts[1]), full_copy(parts[parts.count - 1])};
    Parts<double> converted;
    for (int k = 0; k < parts.count; ++k)
        converted.add(full_parts[k]);
    return converted.count == parts.count ? joined_full(dim, converted) : Access<double>::without_storage();
}

// The values, whose sizes agree, as one; without storage after a report.
template <class T> M<T> joined_parts(int dim, Parts<T> const& parts)
{
    bool const sparse = parts.any([](M<T> const& part) { return part.issparse(); });
    M<T> made = Access<T>::without_storage();
    if constexpr (std::is_same_v<T, double>)
        if (sparse)
            made = joined_sparse(dim, parts);
    if (!sparse)
        made = joined_full(dim, parts);
    made.setstr(parts.any([](M<T> const& part) { return part.isstr(); }));
    made.setlogical(!parts.any([](M<T> const& part) { return !part.islogical(); }));
    return made;
}

template <class T> M<T> join_two(int dim, M<T> const& a, M<T> const& b)
{
    M<T> joined = Access<T>::without_storage();
    return join(dim, a, b, joined) ? joined : x_M_of<T>();
}

template <class T> M<T> join_along(M<double> const& dim_argument, M<T> const& first, Parts<T> const& parts)
{
    int const dim = integer_argument(dim_argument) - 1;
    if (dim < 0 || dim >= max_dims) {
        error("cat: no such dimension");
        return x_M_of<T>();
    }
    if (parts.count <= 1)
        return share(parts.count == 1 ? parts[0] : first);
    auto const dims_used = [dim](M<T> const& part) { return std::max(part.getndims(), dim + 1); };
    if (parts.any([&](M<T> const& part) { return dims_used(part) != dims_used(parts[0]); })) {
        error("cat: arguments do not have the same number of dimensions");
        return x_M_of<T>();
    }
    if (parts.any([&](M<T> const& part) { return !sizes_agree(part, parts[0], dim); })) {
        error(sizes_not_compatible);
        return x_M_of<T>();
    }
    M<T> made = joined_parts(dim, parts);
    return made.addr() ? made : x_M_of<T>();
}

} // namespace

template <class T> bool arrlib::join(int dim, M<T> const& a, M<T> const& b, M<T>& joined)
{
    if (a.size() < 1 || b.size() < 1) {
        joined = share(b.size() < 1 ? a : b);
        return true;
    }
    bool const beside = dim == 1;
    if (beside ? a.rows() != b.rows() : a.cols() != b.cols()) {
        error(beside ? "horzcat: # of rows different" : "vertcat: # of cols different");
        return false;
    }
    if (!sizes_agree(a, b, dim)) {
        error(sizes_not_compatible);
        return false;
    }
    Parts<T> parts;
    parts.add(a);
    parts.add(b);
    joined = joined_parts(dim, parts);
    return joined.addr() != nullptr;
}

template bool arrlib::join(int, M<double> const&, M<double> const&, M<double>&);
template bool arrlib::join(int, M<M<double>> const&, M<M<double>> const&, M<M<double>>&);

M<double> horzcat(M<double> const& A, M<double> const& B)
{
    return join_two(1, A, B);
}

M<M<double>> horzcat(M<M<double>> const& A, M<M<double>> const& B)
{
    return join_two(1, A, B);
}

M<double> vertcat(M<double> const& A, M<double> const& B)
{
    return join_two(0, A, B);
}

M<M<double>> vertcat(M<M<double>> const& A, M<M<double>> const& B)
{
    return join_two(0, A, B);
}

M<double> cat(M<double> const& dim, M<double> const& A, M<double> const& B)
{
    Parts<double> parts;
    parts.add(A);
    parts.add(B);
    return join_along(dim, A, parts);
}

M<double> cat(M<double> const& dim, M<double> const& A, M<double> const& B, M<double> const& C)
{
    Parts<double> parts;
    parts.add(A);
    parts.add(B);
    parts.add(C);
    return join_along(dim, A, parts);
}

M<M<double>> cat(M<double> const& dim, M<M<double>> const& A, M<M<double>> const& B)
{
    Parts<M<double>> parts;
    parts.add(A);
    parts.add(B);
    return join_along(dim, A, parts);
}

M<M<double>> cat(M<double> const& dim, M<M<double>> const& A, M<M<double>> const& B, M<M<double>> const& C)
{
    Parts<M<double>> parts;
    parts.add(A);
    parts.add(B);
    parts.add(C);
    return join_along(dim, A, parts);
}
