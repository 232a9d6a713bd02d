#include "builtins/pivoted_qr.h"

#include <cmath>
#include <limits>

namespace arrlib {

template <Scalar T> bool PivotedQr<T>::factor(Arguments const& args, Packed<T> matrix)
{
    packed = std::move(matrix);
    int const m = packed.rows(), n = packed.cols(), least = std::min(m, n);
    tau = Packed<T>(least, 1);
    column = HeapArray<int>(static_cast<std::size_t>(n));
    if (!packed || !tau || !column)
        return false;
    std::fill(column.begin(), column.end(), 0);
    if (!lapack::succeeded(args, lapack::geqp3(m, n, packed.data(), packed.stride(), column.data(), tau.data())))
        return false;
    for (int& number : column)
        --number;
    tolerance = least > 0 ? std::max(m, n) * std::numeric_limits<double>::epsilon() * std::abs(packed(0, 0)) : 0;
    rank = 0;
    while (rank < least && std::abs(packed(rank, rank)) > tolerance)
        ++rank;
    return true;
}

template <Scalar T> bool PivotedQr<T>::turn(Arguments const& args, Packed<T>& b) const
{
    int const reflections = static_cast<int>(tau.size());
    return lapack::succeeded(args, lapack::ormqr('L', 'C', b.rows(), b.cols(), reflections, packed.data(), packed.stride(), tau.data(), b.data(), b.stride()));
}

template <Scalar T> void PivotedQr<T>::solve(Packed<T> const& turned, Packed<T>& x) const
{
    std::fill_n(x.data(), x.size(), T());
    for (int c = 0; c < turned.cols(); ++c)
        for (int i = rank; i-- > 0;) {
            T value = turned(i, c);
            for (int j = i + 1; j < rank; ++j)
                value -= packed(i, j) * x(column[static_cast<std::size_t>(j)], c);
            x(column[static_cast<std::size_t>(i)], c) = value / packed(i, i);
        }
}

template <Scalar T> bool PivotedQr<T>::unitary(Arguments const& args, Packed<T>& q) const
{
    int const m = packed.rows(), reflections = static_cast<int>(tau.size());
    q = Packed<T>(m, m);
    if (!q)
        return false;
    std::copy_n(packed.data(), std::ptrdiff_t{m} * reflections, q.data());
    return lapack::succeeded(args, lapack::orgqr(m, m, reflections, q.data(), q.stride(), tau.data()));
}

template struct PivotedQr<double>;
template struct PivotedQr<Complex>;

} // namespace arrlib
