#include "builtins/sizes.h"

#include "builtins/args.h"

#include <algorithm>
#include <cmath>

using namespace arrlib;

namespace {

template <class T> M<double> size_row(M<T> const& A)
{
    int const n = A.getndims();
    M<double> made = Access<double>::small(1, n);
    if (!has_storage(made))
        return x_M;
    std::copy_n(A.getdims(), n, made.addr());
    return made;
}

// The size along a dimension counted from 1, which may lie beyond those in use.
template <class T> double extent(M<T> const& A, double dim)
{
    return A.size() == 0 ? 0 : dim > max_dims ? 1 : A.getdims()[static_cast<int>(dim) - 1];
}

template <class T> M<double> size_along(M<T> const& A, M<double> const& k)
{
    double const dim = k[1];
    if (dim >= 1 && dim == std::trunc(dim))
        return extent(A, dim);
    Arguments("size").report("dimension must be a positive integer");
    return x_M;
}

// A size for each output, all that are left for the last one. All are known before the first is given:
// an output may be the operand.
template <class T, class... Outputs> M<double> size_each(M<T> const& A, Outputs&... outputs)
{
    constexpr std::size_t count = sizeof...(outputs);
    double sizes[count];
    int dim = 0;
    for (double& size : sizes)
        size = extent(A, ++dim);
    while (++dim <= A.getndims())
        sizes[count - 1] *= extent(A, dim);
    double const* next = sizes;
    ((outputs = M<double>(*next++)), ...);
    return sizes[0];
}

// The same result for the one output.
M<double> with_output(M<double> const& result, Mr<double>& output)
{
    output = result;
    return result;
}

// --- equality ------------------------------------------------------------------------------------

template <class T> bool same_sizes(M<T> const& A, M<T> const& B)
{
    return std::equal(A.getdims(), A.getdims() + max_dims, B.getdims());
}

bool is_zero(double const* part, int k)
{
    return !part || part[k] == 0;
}

// Parts that are not there are zero.
bool equal_parts(double const* a, double const* b, int count)
{
    if (a && b)
        return std::equal(a, a + count, b);
    double const* const part = a ? a : b;
    return !part || std::all_of(part, part + count, [](double value) { return value == 0; });
}

// The stored entries of a sparse value, those that are zero left out.
class Entries {
public:
    explicit Entries(M<double> const& x) : x_(x) { skip_zeros(); }

    bool at_end() const { return at_ >= x_.getnnz(); }
    void next()
    {
        ++at_;
        skip_zeros();
    }
    int position() const { return Access<double>::index(x_)[at_]; }
    double re() const { return x_.addr()[at_]; }
    double im() const { return x_.isc() ? x_.addi()[at_] : 0; }

private:
    void skip_zeros()
    {
        while (!at_end() && x_.addr()[at_] == 0 && is_zero(x_.addi(), at_))
            ++at_;
    }

    M<double> const& x_;
    int at_ = 0;
};

bool equal_entries(M<double> const& A, M<double> const& B)
{
    Entries a(A), b(B);
    for (; !a.at_end() && !b.at_end(); a.next(), b.next())
        if (a.position() != b.position() || a.re() != b.re() || a.im() != b.im())
            return false;
    return a.at_end() && b.at_end();
}

// As many non-zeros in both, and those of the sparse value in the full one.
bool equal_entries_of_full(M<double> const& sparse, M<double> const& full)
{
    int count = 0;
    for (Entries a(sparse); !a.at_end(); a.next(), ++count) {
        int const at = a.position();
        if (full.addr()[at] != a.re() || (full.isc() ? full.addi()[at] : 0) != a.im())
            return false;
    }
    return count == count_nonzeros(full);
}

bool equal_values(M<double> const& A, M<double> const& B)
{
    if (!same_sizes(A, B))
        return false;
    if (A.issparse() && B.issparse())
        return equal_entries(A, B);
    if (A.issparse() || B.issparse())
        return A.issparse() ? equal_entries_of_full(A, B) : equal_entries_of_full(B, A);
    return equal_parts(A.addr(), B.addr(), A.size()) && equal_parts(A.addi(), B.addi(), A.size());
}

bool equal_values(M<M<double>> const& A, M<M<double>> const& B)
{
    if (!same_sizes(A, B))
        return false;
    for (int k = 0; k < A.size(); ++k)
        if (!equal_values(A.addr()[k], B.addr()[k]))
            return false;
    return true;
}

} // namespace

M<double> size(M<double> const& A)
{
    return size_row(A);
}
M<double> size(M<double> const& A, M<double> const& k)
{
    return size_along(A, k);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> sizes)
{
    return with_output(size_row(A), sizes);
}
M<double> size(M<double> const& A, M<double> const& k, i_o_t, Mr<double> extent)
{
    return with_output(size_along(A, k), extent);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n)
{
    return size_each(A, m, n);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p)
{
    return size_each(A, m, n, p);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q)
{
    return size_each(A, m, n, p, q);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r)
{
    return size_each(A, m, n, p, q, r);
}
M<double> size(M<double> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r, Mr<double> s)
{
    return size_each(A, m, n, p, q, r, s);
}
M<double> size(M<M<double>> const& A)
{
    return size_row(A);
}
M<double> size(M<M<double>> const& A, M<double> const& k)
{
    return size_along(A, k);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> sizes)
{
    return with_output(size_row(A), sizes);
}
M<double> size(M<M<double>> const& A, M<double> const& k, i_o_t, Mr<double> extent)
{
    return with_output(size_along(A, k), extent);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n)
{
    return size_each(A, m, n);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p)
{
    return size_each(A, m, n, p);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q)
{
    return size_each(A, m, n, p, q);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r)
{
    return size_each(A, m, n, p, q, r);
}
M<double> size(M<M<double>> const& A, i_o_t, Mr<double> m, Mr<double> n, Mr<double> p, Mr<double> q, Mr<double> r, Mr<double> s)
{
    return size_each(A, m, n, p, q, r, s);
}

M<double> length(M<double> const& A)
{
    return static_cast<double>(A.length());
}
M<double> length(M<M<double>> const& A)
{
    return static_cast<double>(A.length());
}
M<double> ndims(M<double> const& A)
{
    return static_cast<double>(A.getndims());
}
M<double> ndims(M<M<double>> const& A)
{
    return static_cast<double>(A.getndims());
}
M<double> numel(M<double> const& A)
{
    return static_cast<double>(A.size());
}
M<double> numel(M<M<double>> const& A)
{
    return static_cast<double>(A.size());
}
M<double> rows(M<double> const& A)
{
    return static_cast<double>(A.rows());
}
M<double> rows(M<M<double>> const& A)
{
    return static_cast<double>(A.rows());
}
M<double> columns(M<double> const& A)
{
    return static_cast<double>(A.cols());
}
M<double> columns(M<M<double>> const& A)
{
    return static_cast<double>(A.cols());
}
M<double> isempty(M<double> const& A)
{
    return truth(A.size() == 0);
}
M<double> isempty(M<M<double>> const& A)
{
    return truth(A.size() == 0);
}

M<double> isequal(M<double> const& A, M<double> const& B)
{
    return truth(equal_values(A, B));
}
M<double> isequal(M<M<double>> const& A, M<M<double>> const& B)
{
    return truth(equal_values(A, B));
}
M<double> isequal(M<double> const&, M<M<double>> const&)
{
    return truth(false);
}
M<double> isequal(M<M<double>> const&, M<double> const&)
{
    return truth(false);
}
M<double> isequal(M<double> const& A, M<double> const& B, M<double> const& C)
{
    return truth(equal_values(A, B) && equal_values(A, C));
}
M<double> isequal(M<M<double>> const& A, M<M<double>> const& B, M<M<double>> const& C)
{
    return truth(equal_values(A, B) && equal_values(A, C));
}
M<double> isequal(M<double> const&, M<double> const&, M<M<double>> const&)
{
    return truth(false);
}
M<double> isequal(M<double> const&, M<M<double>> const&, M<double> const&)
{
    return truth(false);
}
M<double> isequal(M<M<double>> const&, M<double> const&, M<double> const&)
{
    return truth(false);
}
M<double> isequal(M<double> const&, M<M<double>> const&, M<M<double>> const&)
{
    return truth(false);
}
M<double> isequal(M<M<double>> const&, M<double> const&, M<M<double>> const&)
{
    return truth(false);
}
M<double> isequal(M<M<double>> const&, M<M<double>> const&, M<double> const&)
{
    return truth(false);
}
M<double> isequal(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D)
{
    return truth(equal_values(A, B) && equal_values(A, C) && equal_values(A, D));
}
