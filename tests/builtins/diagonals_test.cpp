#include "builtins/diagonals.h"

#include "builtins/kron.h"
#include "builtins/positions.h"
#include "builtins/sizes.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "support/shapes.h"
#include "support/values.h"

namespace {

using namespace values;
using shapes::Kind;
using shapes::Model;
using shapes::Sizes;

// A matrix model whose element (i, j), from 0, is the one given.
template <class Element> Model model_by(int rows, int cols, Element element)
{
    Model made({rows, cols, 1, 1});
    made.each([&](Sizes const& s) { made.at(s) = element(s[0], s[1]); });
    return made;
}

TEST(Diagonals, OfEveryKindAsTheModelSays)
{
    shapes::Source source;
    for (int round = 0; round < 300; ++round) {
        Kind const kind = source.kind(), result{kind.complex, kind.sparse, false, kind.logical};
        int const rows = 2 + source.below(9), cols = 2 + source.below(9), k = source.below(30) - 15;
        M<double> const a = source.value(kind, {rows, cols, 1, 1}), v = source.value(kind, {source.once_in(2) ? 1 : rows, source.once_in(2) ? 1 : cols, 1, 1});
        Model const model = shapes::model_of(a);
        SCOPED_TRACE(testing::Message() << "round " << round << " diagonal " << k << " sparse " << kind.sparse);
        expect_equal(tril(a, k), model_by(rows, cols, [&](int i, int j) { return j - i <= k ? model.at({i, j, 0, 0}) : 0; }), result);
        expect_equal(triu(a, k), model_by(rows, cols, [&](int i, int j) { return j - i >= k ? model.at({i, j, 0, 0}) : 0; }), result);
        int const row = std::max(0, -k), col = std::max(0, k), length = std::max(0, std::min(rows - row, cols - col));
        expect_equal(diag(a, k), model_by(length, length ? 1 : 0, [&](int n, int) { return model.at({row + n, col + n, 0, 0}); }), result);
        if (v.rows() != 1 && v.cols() != 1)
            continue;
        Model const list = shapes::model_of(v);
        int const order = v.size() + std::abs(k);
        expect_equal(diag(v, k), model_by(order, order, [&](int i, int j) { return i - row == j - col && i >= row && j >= col && i - row < v.size() ? list.element[static_cast<std::size_t>(i - row)] : 0; }), result);
    }
    expect_all({
        {all_shown(diag(7), diag(row({1, 2}), nop_M), diag(M<double>()), tril(M<double>())), "1x1: 7, 2x2: 1 0 0 2, 0x0:, 0x0:"},
        {all_shown(tril(matrix(2, 2, {1, 2, 3, 4})), triu(matrix(2, 2, {1, 2, 3, 4}))), "2x2: 1 2 0 4, 2x2: 1 0 3 4"},
        {all_shown(tril(matrix(1, 2, {1, 2}), 1e10), triu(matrix(1, 2, {1, 2}), 1e10), triu(matrix(1, 2, {1, 2}), -1e10)), "1x2: 1 2, 1x2: 0 0, 1x2: 1 2"},
    });
    EXPECT_EQ(diag(matrix(2, 2, {1, 2, 3, 4}), 1e10).size() + diag(matrix(2, 2, {1, 2, 3, 4}), -1e10).size(), 0);
    M<double> const cube = nd({2, 2, 2}, Numbers(8, 1));
    EXPECT_EQ(reported_by([&] { diag(cube); }), "diag: matrix must be two-dimensional");
    EXPECT_EQ(reported_by([&] { tril(cube); }), "tril: matrix must be two-dimensional");
    EXPECT_EQ(reported_by([&] { triu(cube, 1); }), "triu: matrix must be two-dimensional");
    EXPECT_EQ(reported_by([] { diag(row({1, 2}), 1e9); }), "Out of memory!");
    EXPECT_EQ(reported_by([] { diag(sparse(row({1, 2})), 1e9); }), "sparse: matrix is too large");
}

TEST(Kron, OfEveryKindAsTheModelSays)
{
    shapes::Source source;
    for (int round = 0; round < 200; ++round) {
        Kind const a_kind = source.kind(), b_kind = source.kind(), result{a_kind.complex || b_kind.complex, a_kind.sparse || b_kind.sparse, false, false};
        M<double> const a = source.value(a_kind, {1 + source.below(6), 1 + source.below(6), 1, 1}), b = source.value(b_kind, {1 + source.below(6), 1 + source.below(6), 1, 1});
        Model const x = shapes::model_of(a), y = shapes::model_of(b);
        SCOPED_TRACE(round);
        expect_equal(kron(a, b), model_by(a.rows() * b.rows(), a.cols() * b.cols(), [&](int i, int j) { return x.at({i / b.rows(), j / b.cols(), 0, 0}) * y.at({i % b.rows(), j % b.cols(), 0, 0}); }), result);
        expect_equal(blkdiag(a, M<double>(), b), model_by(a.rows() + b.rows(), a.cols() + b.cols(), [&](int i, int j) -> std::complex<double> {
                         if (i < a.rows() && j < a.cols())
                             return x.at({i, j, 0, 0});
                         return i >= a.rows() && j >= a.cols() ? y.at({i - a.rows(), j - a.cols(), 0, 0}) : 0;
                     }),
                     result);
    }
    M<double> const a = row({1, 2}), cube = nd({2, 2, 2}, Numbers(8, 1));
    expect_all({
        {all_shown(kron(a, column({1, 10})), kron(a, M<double>()), kron(3, sparse(a))), "2x2: 1 10 2 20, 0x0:, sparse 1x2: (1,1)=3 (1,2)=6"},
        {all_shown(kron(a, a, a), kron(a, 2, 3, a)), "1x8: 1 2 2 4 2 4 4 8, 1x4: 6 12 12 24"},
        {all_shown(blkdiag(a), blkdiag(M<double>()), blkdiag(1, 2, 3)), "1x2: 1 2, 0x0:, 3x3: 1 0 0 0 2 0 0 0 3"},
        {all_shown(numel(blkdiag(1, 2, 3, 4)), numel(blkdiag(1, 2, 3, 4, 5)), blkdiag(1, 2, 3, 4, 5, 6)[36]), "1x1: 16, 1x1: 25, 1x1: 6"},
        // An infinite factor of a real part does not make the imaginary one NaN.
        {shown(kron(Inf, matrix(1, 1, {2}, {3}))), "1x1: Inf+infi"},
    });
    M<double> const large = kron(matrix(150, 1, Numbers(150, 2)), matrix(3, 400, Numbers(1200, 3)));
    EXPECT_TRUE(std::all_of(large.addr(), large.addr() + large.size(), [](double v) { return v == 6; }));
    EXPECT_EQ(reported_by([&] { kron(cube, a); }) + reported_by([&] { kron(a, cube); }), "kron: matrix must be two-dimensionalkron: matrix must be two-dimensional");
    EXPECT_EQ(reported_by([&] { blkdiag(a, cube); }), "blkdiag: matrix must be two-dimensional");
    M<double> const thin = sparse(matrix(9, 9, Numbers(81, 2))), tall = sparse(1, 1, 1, 100000, 1);
    EXPECT_EQ(reported_by([&] { kron(tall, tall); }), "sparse: matrix is too large");
    EXPECT_EQ(reported_by([&] { kron(full(tall), full(tall)); }), "Out of memory!");
    capture::with_every_allocation_refused([&] { kron(thin, a); });
    capture::with_every_allocation_refused([&] { blkdiag(full(thin), diag(a)); });
    capture::with_every_allocation_refused([&] { diag(thin, 1); });
}

TEST(Positions, Sub2indAndInd2sub)
{
    M<double> const sizes = row({3, 4, 2});
    M<double> i1, i2, i3, i4;
    expect_all({
        {all_shown(sub2ind(sizes, row({1, 3}), row({1, 4}), row({1, 2})), sub2ind(sizes, 2, 8), sub2ind(sizes, 24)), "1x2: 1 24, 1x1: 23, 1x1: 24"},
        {all_shown(sub2ind(sizes, 2.9, 1.1, 1, 1), sub2ind(row({2, 2}), sparse(row({1, 2})), text("\1\2"))), "1x1: 2, 1x2: 1 4"},
        {all_shown(ind2sub(sizes, row({1, 23})), ind2sub(sizes, 23.5)), "1x2: 1 23, 1x1: 23"},
        {all_shown(ind2sub(sizes, 23, i_o, i3), i3, ind2sub(sizes, column({1, 23}), i_o, i1, i2), i2), "1x1: 23, 1x1: 23, 2x1: 1 2, 2x1: 1 8"},
        {all_shown(ind2sub(sizes, 23, i_o, i1, i2, i3), i2, i3), "1x1: 2, 1x1: 4, 1x1: 2"},
        {all_shown(ind2sub(sizes, 23, i_o, i1, i2, i3, i4), i1, i2, i3, i4), "1x1: 2, 1x1: 2, 1x1: 4, 1x1: 2, 1x1: 1"},
        {all_shown(ind2sub(sizes, M<double>(), i_o, i1, i2), sub2ind(sizes, M<double>(), M<double>())), "0x0:, 0x0:"},
    });
    for (int k = 1; k <= 24; ++k) {
        ind2sub(sizes, k, i_o, i1, i2, i3);
        EXPECT_EQ(sub2ind(sizes, i1, i2, i3)[1], k);
    }
    for (M<double> const& bad : {M<double>(0.0), M<double>(5.0), M<double>(NaN)})
        EXPECT_EQ(reported_by([&] { sub2ind(sizes, 1, bad, 1); }), "sub2ind: subscript out of range");
    EXPECT_EQ(reported_by([&] { sub2ind(sizes, 1, row({1, 2})); }), "sub2ind: sizes of =1 and (temporary) do not agree");
    for (M<double> const& bad : {M<double>(0.0), M<double>(25.0), M<double>(NaN)})
        EXPECT_EQ(reported_by([&] { EXPECT_EQ(ind2sub(sizes, bad, i_o, i1, i2).size() + i1.size() + i2.size(), 0); }), "ind2sub: index out of range");
    capture::with_every_allocation_refused([&] {
        M<double> row, column;
        ind2sub(sizes, sizes, i_o, row, column);
    });
}

} // namespace
