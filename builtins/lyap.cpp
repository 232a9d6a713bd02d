#include "builtins/matrix_functions.h"
#include "builtins/schur_form.h"
#include "core/reshape.h"
#include "ops/operators.h"

using namespace arrlib;

namespace {

bool fits(Arguments const& args, M<double> const& A, M<double> const& B, M<double> const& C)
{
    if (!square_and_finite(args, A) || !square_and_finite(args, B) || !args.two_dimensional(C) || !args.finite(C))
        return false;
    if (A.rows() != C.rows())
        return args.sizes_differ(A, C);
    return B.rows() == C.cols() || args.sizes_differ(B, C);
}

// X with A X + X op(B) = -C, where op conjugates and transposes; the form of B is that of A when B is A.
template <Scalar T> M<double> solution(Arguments const& args, M<double> const& A, M<double> const& B, char op, M<double> const& C)
{
    SchurForm<T> left, right;
    if (!schur_form(args, A, true, left) || (&A != &B && !schur_form(args, B, true, right)))
        return x_M;
    SchurForm<T>& other = &A == &B ? left : right;
    M<double> const u = left.u.value(), v = &A == &B ? u : right.u.value();
    if (!has_storage(u) || !has_storage(v))
        return x_M;
    M<double> const turned = ctranspose(u) * C * v;
    if (!given(turned))
        return x_M;
    Packed<T> x(turned);
    double scale = 1;
    if (!x)
        return x_M;
    int const m = x.rows(), n = x.cols();
    int const info = lapack::trsyl('N', op, 1, m, n, left.t.data(), m, other.t.data(), n, x.data(), m, scale);
    if (!lapack::succeeded(args, info))
        return x_M;
    if (info > 0 || scale == 0)
        args.warn_singular();
    M<double> const y = x.value();
    if (!has_storage(y))
        return x_M;
    M<double> const made = u * y * ctranspose(v) * (-1 / scale);
    return given(made) ? made : x_M;
}

M<double> solved(M<double> const& A, M<double> const& B, char op, M<double> const& C)
{
    Arguments const args("lyap");
    if (!fits(args, A, B, C))
        return x_M;
    if (!given(C))
        return M<double>();
    M<double> const constant = full_form(C);
    if (!has_storage(constant))
        return x_M;
    return with_scalar(A.isc() || B.isc() || C.isc(), [&](auto kind) { return solution<decltype(kind)>(args, A, B, op, constant); });
}

} // namespace

M<double> lyap(M<double> const& A, M<double> const& C)
{
    return solved(A, A, 'C', C);
}

M<double> lyap(M<double> const& A, M<double> const& B, M<double> const& C)
{
    return solved(A, B, 'N', C);
}
