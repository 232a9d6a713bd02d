// Factors put together again.
#include "builtins/factorizations.h"

#include "support/linear.h"

using namespace linear;
using namespace values;

namespace {

// The row 1, 2, ... n.
M<double> first(int n)
{
    return made_of(1, n, [](int, int j) { return j; });
}

bool is_triangle(M<double> const& x, bool upper)
{
    M<double> const a = full(x);
    for (int j = 1; j <= a.cols(); ++j)
        for (int i = 1; i <= a.rows(); ++i)
            if ((upper ? i > j : i < j) && (*a.addr(i, j) != 0 || (a.isc() && *a.addi(i, j) != 0)))
                return false;
    return true;
}

std::initializer_list<std::pair<int, int>> const shapes = {{1, 1}, {5, 5}, {9, 4}, {4, 9}, {1, 6}, {6, 1}, {70, 70}, {80, 30}};

TEST(Lu, PutTogetherAgain)
{
    for (auto const& [m, n] : shapes)
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(testing::Message() << m << "x" << n << " kind " << kind);
            bool const complex = kind & 1, as_sparse = kind & 2;
            M<double> const a = as_sparse ? random_sparse(m, n, 0.4, complex) : random(m, n, complex);
            M<double> l, u, p, l2, u2;
            lu(a, i_o, l, u, p);
            lu(a, i_o, l2, u2);
            for (M<double> const& x : {l, u, p, l2, u2})
                EXPECT_EQ(x.issparse() != 0, as_sparse);
            EXPECT_TRUE(is_triangle(l, false) && is_triangle(u, true));
            // Pivots of complex matrices are the largest by the sum of their parts.
            EXPECT_LE(largest(l), complex && !as_sparse ? std::sqrt(2) : 1 + unit);
            EXPECT_LT(distance(l * u, p * a, 10), 10);
            EXPECT_LT(distance(l2 * u2, a, 10), 10);
            EXPECT_EQ(shown(full(p * transpose(p))), shown(full(eye(M<double>(m)))));
            M<double> const both = full(lu(a)), ones = full(eye(M<double>(m), M<double>(n))), wide_l = full(l), wide_u = full(u);
            for (int j = 1; j <= n; ++j)
                for (int i = 1; i <= m; ++i)
                    EXPECT_EQ(*both.addr(i, j), i > j ? *wide_l.addr(i, j) : *wide_u.addr(i, j));
        }
    // The product is that of the rows in another order for any threshold; with 0 they stay.
    M<double> const a = random_sparse(30, 30, 0.1) + M<double>(0.01) * speye(M<double>(30.0));
    for (double threshold : {0.0, 0.1, 1.0}) {
        M<double> l, u, p;
        lu(a, M<double>(threshold), i_o, l, u, p);
        EXPECT_LT(distance(l * u, p * a, largest(l) * largest(u)), 10) << threshold;
        EXPECT_EQ(shown(p) == shown(speye(M<double>(30.0))), threshold == 0);
    }
}

TEST(Lu, SpecialMatrices)
{
    M<double> l, u, p;
    M<double> const zeros = matrix(2, 2, {0, 0, 0, 0}), singular = matrix(3, 3, {0, 0, 2, 0, 0, 4, 1, 5, 6});
    for (M<double> const& a : {zeros, singular, sparse(zeros), sparse(singular)}) {
        EXPECT_EQ(warned_by([&] { lu(a, i_o, l, u, p); }), "");
        EXPECT_LT(distance(l * u, p * a), 2);
    }
    lu(matrix(2, 2, {1, 2, 3, NAN}), i_o, l, u, p);
    expect_all({{shown(l) + shown(u) + shown(p), "2x2: 1 NaN 0 12x2: NaN 0 NaN NaN2x2: 1 0 0 1"},
                {shown(lu(M<double>())), "0x0:"},
                {shown(lu(matrix(2, 2, {1, 2, 3, 4}))), "2x2: 2 0.5 4 1"},
                {shown(lu(sparse(matrix(2, 2, {1, 2, 3, 4})))), "sparse 2x2: (1,1)=2 (2,1)=0.5 (1,2)=4 (2,2)=1"},
                {reported_by([&] { lu(sparse(singular), M<double>(2.0)); }), "lu: threshold must be between 0 and 1"},
                {reported_by([&] { lu(cube(2, 2, 2)); }), "lu: matrix must be two-dimensional"}});
}

TEST(Chol, PutTogetherAgain)
{
    for (int n : {1, 2, 5, 60, 150})
        for (int kind = 0; kind < 4; ++kind) {
            bool const complex = kind & 1, as_sparse = kind & 2;
            M<double> const any = as_sparse ? random_sparse(n, n, 0.1, complex) : random(n, n, complex), square = any * ctranspose(any);
            M<double> const a = M<double>(0.5) * (square + ctranspose(square)) + speye(M<double>(n)), given = as_sparse ? sparse(a) : full(a), r = chol(given);
            EXPECT_EQ(r.issparse() != 0, as_sparse);
            EXPECT_TRUE(is_triangle(r, true));
            EXPECT_LT(distance(ctranspose(r) * r, a, largest(a)), 10) << n << " kind " << kind;
            if (n < 3)
                continue;
            // Less on the diagonal at one place: the leading part stays positive definite.
            int const order = n / 2 + 1;
            M<double> broken = full(given), part, p;
            broken.r(order, order) = -1;
            chol(as_sparse ? sparse(broken) : broken, i_o, part, p);
            EXPECT_EQ(shown(p), shown(M<double>(order))) << n << " kind " << kind;
            EXPECT_EQ(part.rows(), order - 1);
            M<double> const leading = M<double>(full(a))(first(order - 1), first(order - 1));
            EXPECT_LT(distance(ctranspose(part) * part, leading, largest(a)), 10);
        }
}

TEST(Chol, OnlyTheUpperTriangleCounts)
{
    M<double> const a = matrix(2, 2, {4, 77, 2, 5}), flat = matrix(2, 2, {1, 1, 1, 1}), turned = matrix(2, 2, {4, 0, 0, 5}, {0, 0, 0, 1}),
                    broken = matrix(2, 2, {4, 0, NAN, 5});
    for (bool as_sparse : {false, true}) {
        auto const given = [=](M<double> const& x) { return as_sparse ? sparse(x) : x; };
        EXPECT_EQ(shown(full(chol(given(a)))), "2x2: 2 0 1 2");
        for (M<double> const& bad : {flat, turned, broken}) {
            EXPECT_EQ(reported_by([&] { EXPECT_EQ(chol(given(bad)).size(), 0); }), "chol: matrix must be positive definite");
            M<double> r, p;
            EXPECT_EQ(reported_by([&] { chol(given(bad), i_o, r, p); }), "");
            EXPECT_EQ(shown(p), "1x1: 2");
            EXPECT_EQ(r.size(), 1);
        }
        M<double> r, p;
        chol(given(matrix(2, 2, {-1, 0, 0, 1})), i_o, r, p);
        EXPECT_EQ(shown(r) + shown(p), "0x0:1x1: 1");
    }
    M<double> r, p;
    chol(M<double>(), i_o, r, p);
    EXPECT_EQ(shown(r) + shown(p), "0x0:1x1: 0");
    EXPECT_EQ(reported_by([&] { chol(random(2, 3)); }), "chol: matrix must be square");
}

TEST(Qr, PutTogetherAgain)
{
    for (auto const& [m, n] : shapes)
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(testing::Message() << m << "x" << n << " kind " << kind);
            bool const economy = kind & 2;
            int const least = std::min(m, n);
            M<double> const a = random(m, n, kind & 1), option = economy ? M<double>(0.0) : nop_M;
            M<double> q, r, e, q2, r2;
            qr(a, option, i_o, q, r);
            EXPECT_EQ(q.cols(), economy ? least : m);
            EXPECT_EQ(r.rows(), economy ? least : m);
            EXPECT_TRUE(is_triangle(r, true));
            EXPECT_LT(off_orthogonal(q), 10);
            EXPECT_LT(distance(q * r, a, 4), 10);
            EXPECT_EQ(shown(qr(a, option)), shown(r));
            qr(a, option, i_o, q2, r2, e);
            EXPECT_LT(off_orthogonal(q2), 10);
            EXPECT_LT(distance(q2 * r2, economy ? M<double>(M<double>(a)(c_p, e)) : a * e, 4), 10);
            for (int k = 2; k <= least; ++k)
                EXPECT_GE(std::abs(*r2.addr(k - 1, k - 1)) + std::abs(r2.isc() ? *r2.addi(k - 1, k - 1) : 0),
                          (1 - 1e-9) * (std::abs(*r2.addr(k, k)) + std::abs(r2.isc() ? *r2.addi(k, k) : 0)));
        }
    M<double> q, r, e;
    qr(matrix(2, 2, {1, 2, 3, NAN}), i_o, q, r, e);
    expect_all({{shown(q) + shown(r) + shown(e), "2x2: NaN NaN NaN NaN2x2: NaN 0 NaN NaN2x2: 1 0 0 1"},
                {shown(qr(M<double>())), "0x0:"},
                {reported_by([&] { qr(random(3, 3), random(3, 3)); }), "qr: second argument must be 0 for a full matrix"},
                {reported_by([&] { qr(cube(2, 2, 2)); }), "qr: matrix must be two-dimensional"}});
}

// R'*R = A'*A and R'*C = A'*B show factors without Q.
TEST(Qr, OfSparseMatrices)
{
    M<double> empty_column = full(random_sparse(12, 6, 0.4));
    for (int i = 1; i <= 12; ++i)
        empty_column.r(i, 3) = 0;
    for (bool complex : {false, true})
        for (M<double> const& a : {random_sparse(20, 8, 0.3, complex), random_sparse(7, 7, 0.3, complex), random_sparse(5, 12, 0.5, complex),
                                   sparse(empty_column), sparse(random(6, 2, complex) * random(2, 4, complex)), sparse(matrix(1, 3, {0, 2, 1}))}) {
            SCOPED_TRACE(testing::Message() << a.rows() << "x" << a.cols() << " complex " << complex);
            int const least = std::min(a.rows(), a.cols());
            M<double> const b = random(a.rows(), 2, complex), r = qr(a), small = qr(a, M<double>(0.0));
            M<double> c, r2;
            qr(a, b, i_o, c, r2);
            EXPECT_TRUE(r.issparse() && is_triangle(r, true));
            EXPECT_EQ(r.rows(), a.rows());
            EXPECT_EQ(small.rows(), least);
            EXPECT_EQ(c.rows(), least);
            EXPECT_LT(distance(ctranspose(r) * r, ctranspose(a) * a, 10), 10);
            EXPECT_LT(distance(ctranspose(small) * small, ctranspose(a) * a, 10), 10);
            EXPECT_LT(distance(ctranspose(r2) * c, ctranspose(a) * b, 10), 10);
        }
    M<double> s = random_sparse(3, 3, 0.5), b = random(2, 1), q, r;
    s.setname("S");
    b.setname("B");
    expect_all({{reported_by([&] { qr(s, i_o, q, r); }), "qr: only R and [C,R] = qr(S,B) are available for a sparse matrix"},
                {reported_by([&] { qr(s, b, i_o, q, r); }), "qr: sizes of S and B do not agree"}});
}

TEST(Factors, MemoryThatRunsOut)
{
    M<double> const a = random(12, 12), definite = a * transpose(a), s = random_sparse(12, 12, 0.3);
    M<double> const sparse_definite = sparse(definite);
    // Their outputs end with each call.
    auto const outputs = [](auto code) {
        capture::with_every_allocation_refused([&] {
            M<double> x, y, z;
            code(x, y, z);
        });
    };
    outputs([&](M<double>& l, M<double>& u, M<double>& p) { lu(a, i_o, l, u, p); });
    outputs([&](M<double>& l, M<double>& u, M<double>& p) { lu(s, i_o, l, u, p); });
    outputs([&](M<double>& r, M<double>& p, M<double>&) { chol(definite, i_o, r, p); });
    outputs([&](M<double>& r, M<double>& p, M<double>&) { chol(sparse_definite, i_o, r, p); });
    outputs([&](M<double>& q, M<double>& r, M<double>& e) { qr(a, i_o, q, r, e); });
    outputs([&](M<double>&, M<double>&, M<double>&) { qr(s); });
}

} // namespace
