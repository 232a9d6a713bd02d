#include "builtins/permute.h"

#include "builtins/ranges.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "support/shapes.h"
#include "support/values.h"

#include <functional>

namespace {

using namespace values;
using shapes::Kind;
using shapes::Model;
using shapes::Sizes;

using Order = std::array<std::size_t, 4>;

Model permuted(Model const& a, Order const& p)
{
    Model to({a.size[p[0]], a.size[p[1]], a.size[p[2]], a.size[p[3]]});
    to.each([&](Sizes const& s) {
        Sizes from{};
        for (std::size_t d = 0; d < 4; ++d)
            from[p[d]] = s[d];
        to.at(s) = a.at(from);
    });
    return to;
}

Model rotated(Model const& a, Sizes const& n)
{
    Model to(a.size);
    to.each([&](Sizes const& s) {
        Sizes target{};
        for (std::size_t d = 0; d < 4; ++d)
            target[d] = ((s[d] + n[d]) % a.size[d] + a.size[d]) % a.size[d];
        to.at(target) = a.at(s);
    });
    return to;
}

TEST(Permute, MovesEveryKindAsTheModelDoes)
{
    shapes::Source source;
    for (int round = 0; round < 500; ++round) {
        Kind kind = source.kind();
        bool const flat = kind.sparse || source.once_in(3);
        int const most = source.once_in(4) ? 70 : 7;
        Sizes const size{1 + source.below(most), 1 + source.below(most), flat ? 1 : 1 + source.below(7), flat ? 1 : 1 + source.below(3)};
        M<double> const a = source.value(kind, size);
        Model const model = shapes::model_of(a);
        Order p{0, 1, 2, 3};
        for (std::size_t d = 3; d > 0; --d)
            std::swap(p[d], p[static_cast<std::size_t>(source.below(static_cast<int>(d) + 1))]);
        Numbers list;
        for (std::size_t const d : p)
            list.push_back(static_cast<double>(d) + 1);
        SCOPED_TRACE(testing::Message() << "round " << round << " sparse " << kind.sparse << " order " << list[0] << list[1] << list[2] << list[3]);
        M<double> const moved = permute(a, row(list));
        Kind const after{kind.complex, moved.issparse() != 0, kind.string, kind.logical};
        expect_equal(moved, permuted(model, p), after);
        expect_equal(ipermute(moved, row(list)), model, {kind.complex, ipermute(moved, row(list)).issparse() != 0, kind.string, kind.logical});

        Sizes const n{source.below(200) - 100, source.below(20) - 10, flat ? 0 : source.below(5), 0};
        expect_equal(circshift(a, row({1.0 * n[0], 1.0 * n[1], 1.0 * n[2]})), rotated(model, n), kind);
        expect_equal(circshift(a, n[1], 2), rotated(model, {0, n[1], 0, 0}), kind);
    }
    M<double> const thin = sparse(row({0, 1}));
    EXPECT_EQ(shown(permute(thin, row({2, 1}))), "sparse 2x1: (2,1)=1");
    EXPECT_EQ(shown(permute(thin, row({3, 2, 1}))), "1x2: 0 1") << "two-dimensional, but a full matrix between";
    EXPECT_EQ(shown(permute(thin, row({3, 1, 2}))), "1x1x2: 0 1");
}

TEST(Permute, LargeArraysOnSeveralThreads)
{
    int const dims[] = {61, 70, 83};
    M<double> a(0, 0, 0, 3, dims);
    for (int k = 0; k < a.size(); ++k)
        a.addr()[k] = k;
    for (Numbers const& p : {Numbers{3, 1, 2}, Numbers{2, 1, 3}, Numbers{3, 2, 1}, Numbers{1, 3, 2}, Numbers{2, 3, 1}}) {
        M<double> const moved = permute(a, row(p));
        int const step[] = {1, 61, 61 * 70};
        int at = 0;
        auto const dim = [&](int k) { return static_cast<int>(p[static_cast<std::size_t>(k)]) - 1; };
        for (int k = 0; k < moved.size(3); ++k)
            for (int j = 0; j < moved.size(2); ++j)
                for (int i = 0; i < moved.size(1); ++i)
                    ASSERT_EQ(moved.addr()[at++], i * step[dim(0)] + j * step[dim(1)] + k * step[dim(2)]) << p[0] << p[1] << p[2];
    }
    M<double> const turned = circshift(a, 7, 3);
    EXPECT_EQ(turned[61 * 70 * 7 + 1], 0);
    EXPECT_EQ(turned[1], 61 * 70 * 76);
}

TEST(Permute, ShiftdimAndSqueeze)
{
    M<double> const deep = nd({1, 1, 2, 2}, {1, 2, 3, 4}), line = nd({1, 1, 3}, {1, 2, 3}), flat = row({1, 2, 3});
    M<double> B, n;
    expect_all({
        {shown(squeeze(deep)), "2x2: 1 2 3 4"},
        {shown(squeeze(line)), "3x1: 1 2 3"},
        {shown(squeeze(flat)), "1x3: 1 2 3"},
        {shown(squeeze(nd({2, 1, 1, 2}, {1, 2, 3, 4}))), "2x2: 1 2 3 4"},
        {all_shown(shiftdim(deep), shiftdim(deep, i_o, B, n), B, n), "2x2: 1 2 3 4, 2x2: 1 2 3 4, 2x2: 1 2 3 4, 1x1: 2"},
        {all_shown(shiftdim(flat, i_o, B, n), n), "3x1: 1 2 3, 1x1: 1"},
        {all_shown(shiftdim(5, i_o, B, n), n), "1x1: 5, 1x1: 0"},
        {all_shown(shiftdim(flat, 1, i_o, B), B), "3x1: 1 2 3, 3x1: 1 2 3"},
        {shown(shiftdim(line, 2)), "3x1: 1 2 3"},
        {shown(shiftdim(nd({2, 1, 2}, {1, 2, 3, 4}), 4)), "1x2x2: 1 3 2 4"},
        {all_shown(shiftdim(flat, -1, i_o, B, n), n), "1x1x3: 1 2 3, 1x1: -1"},
        {all_shown(shiftdim(sparse(column({0, 4})), -1), shiftdim(sparse(column({0, 4})), -2)), "sparse 1x2: (1,2)=4, 1x1x2: 0 4"},
        {shown(shiftdim(column({1, 2}), -3)), "1x1x1x2: 1 2"},
        {shown(shiftdim(M<double>(), 3)) + shown(squeeze(M<double>())), "0x0:0x0:"},
    });
    EXPECT_EQ(reported_by([&] { EXPECT_EQ(shiftdim(line, -2, i_o, B, n).size() + B.size() + n.size(), 0); }), "shiftdim: too many dimensions");
}

TEST(Permute, MovesCells)
{
    M<M<double>> const c = cells(1, 2, {row({1}), text("b")});
    M<M<double>> B;
    M<double> n;
    expect_all({
        {shown(permute(c, row({2, 1}))), "2x1 cell: 1x1: 1 | 'b'"},
        {shown(ipermute(c, row({3, 1, 2}))), "2x1 cell: 1x1: 1 | 'b'"},
        {shown(circshift(c, row({0, 1}))), "1x2 cell: 'b' | 1x1: 1"},
        {shown(squeeze(permute(c, row({1, 3, 2})))), "2x1 cell: 1x1: 1 | 'b'"},
        {all_shown(shiftdim(c, i_o, B, n), B, n), "2x1 cell: 1x1: 1 | 'b', 2x1 cell: 1x1: 1 | 'b', 1x1: 1"},
    });
    M<M<double>> const square = cells(2, 3, {row({1}), row({2}), row({3}), row({4}), row({5}), row({6})});
    EXPECT_EQ(shown(permute(square, row({2, 1}))), "3x2 cell: 1x1: 1 | 1x1: 3 | 1x1: 5 | 1x1: 2 | 1x1: 4 | 1x1: 6");
}

TEST(Permute, Reports)
{
    M<double> const cube = nd({2, 2, 2}, Numbers(8, 1));
    std::string const message = "permute: order must be a permutation of the dimensions";
    for (M<double> const& p : {row({1, 2}), row({1, 2, 2}), row({1, 2, 4}), row({0, 1, 2}), row({1, 2, 3, 4, 5}), row({1, 2.5, 3}), row({1, 2, NaN.r()}), M<double>()}) {
        EXPECT_EQ(reported_by([&] { EXPECT_EQ(permute(cube, p).size(), 0); }), message);
        EXPECT_EQ(reported_by([&] { ipermute(cube, p); }), "i" + message);
    }
    EXPECT_EQ(reported_by([&] { circshift(cube, row({1, 2, 3, 4, 5})); }), "circshift: too many dimensions");
    EXPECT_EQ(reported_by([&] { circshift(cube, 1, -1); }), "circshift: dim argument must be positive");
    EXPECT_EQ(reported_by([&] { circshift(cube, 1, 4); }), "circshift: dim argument may not be more then the number of dimensions");
    M<double> const thin = sparse(matrix(9, 9, Numbers(81, 2))), order = row({3, 1, 2}), shifts = row({3, 1});
    capture::with_every_allocation_refused([&] { permute(cube, order); });
    capture::with_every_allocation_refused([&] { circshift(thin, shifts); });
    capture::with_every_allocation_refused([&] { permute(thin, order); });
}

} // namespace
