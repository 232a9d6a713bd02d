#include "builtins/rotations.h"

#include "builtins/results.h"
#include "builtins/zpack.h"
#include "core/arguments.h"

#include <cmath>

using namespace arrlib;

namespace {

// [c s; -s' c] with real c.
template <Scalar T> struct Rotation {
    double c = 1;
    T s = T();

    // The one that turns [x; y] into [r; 0].
    static Rotation to_first(T x, T y)
    {
        double const first = std::abs(x), second = std::abs(y), length = std::hypot(first, second);
        if (second == 0)
            return {};
        if (first == 0)
            return {0, conjugate(y) / second};
        return {first / length, x / first * (conjugate(y) / length)};
    }
    void turn(T& x, T& y) const
    {
        T const before = x;
        x = c * x + s * y;
        y = -conjugate(s) * before + c * y;
    }
    // Rows i and i + 1 from column `from` on.
    void turn_rows(Packed<T>& matrix, int i, int from) const
    {
        for (int j = from; j < matrix.cols(); ++j)
            turn(matrix(i, j), matrix(i + 1, j));
    }
    // Columns j and j + 1, by the conjugate transpose, so that products stay what they are.
    void turn_columns(Packed<T>& matrix, int j) const
    {
        for (int i = 0; i < matrix.rows(); ++i) {
            T& left = matrix(i, j);
            T& right = matrix(i, j + 1);
            T const before = left;
            left = c * left + conjugate(s) * right;
            right = -s * before + c * right;
        }
    }
};

// --- rotations of two numbers --------------------------------------------------------------------

// G and y.
template <Scalar T> Results<2> plane_rotation(M<double> const& x)
{
    Packed<T> g(2, 2), y(2, 1);
    M<double> const full = full_form(x);
    if (!g || !y || !has_storage(full))
        return nothing<2>();
    T first, second;
    if constexpr (std::is_same_v<T, Complex>) {
        first = {full.addr()[0], full.addi()[0]};
        second = {full.addr()[1], full.addi()[1]};
    } else {
        first = full.addr()[0];
        second = full.addr()[1];
    }
    double const length = std::hypot(std::abs(first), std::abs(second));
    y(0, 0) = length;
    y(1, 0) = T();
    g(0, 0) = length == 0 ? T(1) : conjugate(first) / length;
    g(0, 1) = length == 0 ? T() : conjugate(second) / length;
    g(1, 0) = length == 0 ? T() : -second / length;
    g(1, 1) = length == 0 ? T(1) : first / length;
    return {g.value(), y.value()};
}

Results<2> plane_rotation_of(M<double> const& x)
{
    Arguments const args("planerot");
    if (x.size() != 2) {
        args.report("argument must have two elements");
        return nothing<2>();
    }
    Results<2> const made = with_scalar(x.isc(), [&](auto kind) { return plane_rotation<decltype(kind)>(x); });
    return all_have_storage(made) ? made : nothing<2>();
}

// c, s and G.
Results<3> givens_rotation(M<double> const& x, M<double> const& y)
{
    Arguments const args("givens");
    if (!args.scalar(x) || !args.scalar(y))
        return nothing<3>();
    return with_scalar(x.isc() || y.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> const first(x), second(y);
        Packed<T> g(2, 2), s(1, 1);
        if (!first || !second || !g || !s)
            return nothing<3>();
        Rotation<T> const rotation = Rotation<T>::to_first(*first.data(), *second.data());
        g(0, 0) = g(1, 1) = rotation.c;
        g(0, 1) = *s.data() = rotation.s;
        g(1, 0) = -conjugate(rotation.s);
        Results<3> made{M<double>(rotation.c), s.value(), g.value()};
        return all_have_storage(made) ? made : nothing<3>();
    });
}

// --- Cholesky factors ----------------------------------------------------------------------------

template <Scalar T> void update(Packed<T>& r, Packed<T>& x)
{
    int const n = r.rows();
    for (int k = 0; k < n; ++k)
        x.data()[k] = conjugate(x.data()[k]);
    for (int k = 0; k < n; ++k) {
        Rotation<T> const rotation = Rotation<T>::to_first(r(k, k), x.data()[k]);
        for (int j = k; j < n; ++j)
            rotation.turn(r(k, j), x.data()[j]);
    }
}

// False when the difference is not positive definite. As in LINPACK's xCHDD: rotations that take the
// solution s of R's = x into the last row of a factor with one row more.
template <Scalar T> bool downdate(Packed<T>& r, Packed<T>& x, Packed<double>& cosines)
{
    int const n = r.rows();
    T* const s = x.data();
    double sum = 0;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i)
            s[j] -= conjugate(r(i, j)) * s[i];
        s[j] /= conjugate(r(j, j));
        sum += std::norm(s[j]);
    }
    if (!(sum < 1))
        return false;
    double alpha = std::sqrt(1 - sum);
    for (int i = n; i-- > 0;) {
        double const length = std::hypot(alpha, std::abs(s[i]));
        cosines.data()[i] = alpha / length;
        s[i] = conjugate(s[i]) / length;
        alpha = length;
    }
    for (int j = 0; j < n; ++j) {
        T carried = T();
        for (int i = j + 1; i-- > 0;) {
            T const next = cosines.data()[i] * carried + s[i] * r(i, j);
            r(i, j) = cosines.data()[i] * r(i, j) - conjugate(s[i]) * carried;
            carried = next;
        }
    }
    return true;
}

M<double> updated_factor(M<double> const& R, M<double> const& x, bool down)
{
    Arguments const args("cholupdate");
    if (!args.square(R) || !args.two_dimensional(x))
        return x_M;
    if (x.size() != R.rows()) {
        args.sizes_differ(R, x);
        return x_M;
    }
    return with_scalar(R.isc() || x.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> r(R), column(x);
        Packed<double> cosines(R.rows(), 1);
        if (!r || !column || !cosines)
            return x_M;
        for (int j = 0; j < r.cols(); ++j)
            std::fill(r.column(j) + j + 1, r.column(j) + r.rows(), T());
        if (!down)
            update(r, column);
        else if (!downdate(r, column, cosines)) {
            args.report("downdated matrix is not positive definite");
            return x_M;
        }
        M<double> made = r.value();
        return has_storage(made) ? made : x_M;
    });
}

// --- QR factors ----------------------------------------------------------------------------------

template <Scalar T> struct QrFactors {
    Packed<T> q, r;

    // Takes the element below (i, j) to zero.
    void clear_below(int i, int j)
    {
        Rotation<T> const rotation = Rotation<T>::to_first(r(i, j), r(i + 1, j));
        rotation.turn_rows(r, i, j);
        rotation.turn_columns(q, i);
        r(i + 1, j) = T();
    }
    Results<2> values()
    {
        Results<2> made{q.value(), r.value()};
        return all_have_storage(made) ? made : nothing<2>();
    }
};

// q' x.
template <Scalar T> void into_basis(Packed<T> const& q, T const* x, T* to)
{
    for (int j = 0; j < q.cols(); ++j) {
        T sum = T();
        for (int i = 0; i < q.rows(); ++i)
            sum += conjugate(q(i, j)) * x[i];
        to[j] = sum;
    }
}

// Two-dimensional, a square Q, and as many rows in R.
bool are_factors(Arguments const& args, M<double> const& Q, M<double> const& R)
{
    if (!args.square(Q) || !args.two_dimensional(R))
        return false;
    return Q.rows() == R.rows() || args.sizes_differ(Q, R);
}

// The zero-based column that an argument names, -1 after "%s: index out of range".
int column_number(Arguments const& args, M<double> const& j, int last)
{
    double const number = j.size() == 1 ? j[1] : 0;
    if (number >= 1 && number <= last && number == std::trunc(number))
        return static_cast<int>(number) - 1;
    args.report("index out of range");
    return -1;
}

Results<2> inserted(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x)
{
    Arguments const args("qrinsert");
    if (!are_factors(args, Q, R) || !args.two_dimensional(x))
        return nothing<2>();
    // Factors of nothing become those of the column.
    int const m = given(Q) ? Q.rows() : x.size(), n = R.cols();
    if (x.size() != m) {
        args.sizes_differ(Q, x);
        return nothing<2>();
    }
    int const at = column_number(args, j, n + 1);
    if (at < 0)
        return nothing<2>();
    return with_scalar(Q.isc() || R.isc() || x.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> const old(R), column(x);
        QrFactors<T> made{given(Q) ? Packed<T>(Q) : Packed<T>(m, m), Packed<T>(m, n + 1)};
        if (!old || !column || !made.q || !made.r)
            return nothing<2>();
        if (!given(Q)) {
            std::fill_n(made.q.data(), made.q.size(), T());
            for (int k = 0; k < m; ++k)
                made.q(k, k) = 1;
        }
        std::copy_n(old.data(), std::ptrdiff_t{m} * at, made.r.data());
        std::copy(old.data() + std::ptrdiff_t{m} * at, old.data() + old.size(), made.r.data() + std::ptrdiff_t{m} * (at + 1));
        into_basis(made.q, column.data(), made.r.column(at));
        for (int k = m - 2; k >= at; --k)
            made.clear_below(k, at);
        return made.values();
    });
}

Results<2> deleted(M<double> const& Q, M<double> const& R, M<double> const& j)
{
    Arguments const args("qrdelete");
    if (!are_factors(args, Q, R))
        return nothing<2>();
    int const at = column_number(args, j, R.cols());
    if (at < 0)
        return nothing<2>();
    return with_scalar(Q.isc() || R.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> const old(R);
        int const m = R.rows(), n = R.cols() - 1;
        QrFactors<T> made{Packed<T>(Q), Packed<T>(m, n)};
        if (!old || !made.q || !made.r)
            return nothing<2>();
        std::copy_n(old.data(), std::ptrdiff_t{m} * at, made.r.data());
        std::copy(old.data() + std::ptrdiff_t{m} * (at + 1), old.data() + old.size(), made.r.data() + std::ptrdiff_t{m} * at);
        for (int k = at; k < std::min(m - 1, n); ++k)
            made.clear_below(k, k);
        return made.values();
    });
}

Results<2> with_product(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v)
{
    Arguments const args("qrupdate");
    if (!are_factors(args, Q, R) || !args.two_dimensional(u) || !args.two_dimensional(v))
        return nothing<2>();
    if (u.size() != R.rows() || v.size() != R.cols()) {
        args.sizes_differ(R, u.size() != R.rows() ? u : v);
        return nothing<2>();
    }
    return with_scalar(Q.isc() || R.isc() || u.isc() || v.isc(), [&](auto kind) {
        using T = decltype(kind);
        Packed<T> const left(u), right(v);
        QrFactors<T> made{Packed<T>(Q), Packed<T>(R)};
        int const m = R.rows(), n = R.cols();
        Packed<T> turned(m, m > 0);
        if (!left || !right || !turned || !made.q || !made.r)
            return nothing<2>();
        into_basis(made.q, left.data(), turned.data());
        for (int k = m - 2; k >= 0; --k) {
            Rotation<T> const rotation = Rotation<T>::to_first(turned.data()[k], turned.data()[k + 1]);
            rotation.turn(turned.data()[k], turned.data()[k + 1]);
            rotation.turn_rows(made.r, k, std::min(k, n));
            rotation.turn_columns(made.q, k);
        }
        for (int c = 0; c < n; ++c)
            made.r(0, c) += *turned.data() * conjugate(right.data()[c]);
        for (int k = 0; k < std::min(m - 1, n); ++k)
            made.clear_below(k, k);
        return made.values();
    });
}

bool is_downdate(M<double> const& option, bool& known)
{
    std::string const text = given(option) ? text_of(option) : "+";
    known = text == "+" || text == "-";
    if (!known)
        Arguments("cholupdate").unknown_option(text.c_str());
    return text == "-";
}

} // namespace

M<double> planerot(M<double> const& x)
{
    return plane_rotation_of(x)[0];
}

M<double> planerot(M<double> const& x, i_o_t, Mr<double> G)
{
    return hand_out(plane_rotation_of(x), G);
}

M<double> planerot(M<double> const& x, i_o_t, Mr<double> G, Mr<double> y)
{
    return hand_out(plane_rotation_of(x), G, y);
}

M<double> givens(M<double> const& x, M<double> const& y)
{
    return givens_rotation(x, y)[2];
}

M<double> givens(M<double> const& x, M<double> const& y, i_o_t, Mr<double> G)
{
    return hand_out(Results<1>{givens(x, y)}, G);
}

M<double> givens(M<double> const& x, M<double> const& y, i_o_t, Mr<double> c, Mr<double> s)
{
    return hand_out(givens_rotation(x, y), c, s);
}

M<double> cholupdate(M<double> const& R, M<double> const& x)
{
    return updated_factor(R, x, false);
}

M<double> cholupdate(M<double> const& R, M<double> const& x, M<double> const& option)
{
    bool known = false;
    bool const down = is_downdate(option, known);
    return known ? updated_factor(R, x, down) : x_M;
}

M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x)
{
    return inserted(Q, R, j, x)[0];
}

M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x, i_o_t, Mr<double> Q1)
{
    return hand_out(inserted(Q, R, j, x), Q1);
}

M<double> qrinsert(M<double> const& Q, M<double> const& R, M<double> const& j, M<double> const& x, i_o_t, Mr<double> Q1, Mr<double> R1)
{
    return hand_out(inserted(Q, R, j, x), Q1, R1);
}

M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j)
{
    return deleted(Q, R, j)[0];
}

M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j, i_o_t, Mr<double> Q1)
{
    return hand_out(deleted(Q, R, j), Q1);
}

M<double> qrdelete(M<double> const& Q, M<double> const& R, M<double> const& j, i_o_t, Mr<double> Q1, Mr<double> R1)
{
    return hand_out(deleted(Q, R, j), Q1, R1);
}

M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v)
{
    return with_product(Q, R, u, v)[0];
}

M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v, i_o_t, Mr<double> Q1)
{
    return hand_out(with_product(Q, R, u, v), Q1);
}

M<double> qrupdate(M<double> const& Q, M<double> const& R, M<double> const& u, M<double> const& v, i_o_t, Mr<double> Q1, Mr<double> R1)
{
    return hand_out(with_product(Q, R, u, v), Q1, R1);
}
