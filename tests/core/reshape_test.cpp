// Shapes and rearrangements against a model that moves one element at a time.
#include "core/reshape.h"

#include "core/sparse.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/shapes.h"

#include <functional>

namespace {

using capture::Reports;
using capture::Texts;
using shapes::Kind;
using shapes::Model;
using shapes::model_of;
using shapes::Sizes;

// The model whose element at s is the one of `from` at source(s).
Model moved(Model const& from, Sizes const& size, std::function<Sizes(Sizes)> const& source)
{
    Model to(size);
    to.each([&](Sizes const& s) { to.at(s) = from.at(source(s)); });
    return to;
}

Model model_flip(Model const& a, std::size_t dim)
{
    return moved(a, a.size, [&](Sizes s) {
        s[dim] = a.size[dim] - 1 - s[dim];
        return s;
    });
}

Model model_turn(Model const& a)
{
    return moved(a, {a.size[1], a.size[0], a.size[2], a.size[3]}, [&](Sizes s) { return Sizes{s[1], a.size[1] - 1 - s[0], s[2], s[3]}; });
}

Model model_tile(Model const& a, Sizes const& times)
{
    Sizes size = a.size;
    for (std::size_t d = 0; d < 4; ++d)
        size[d] *= times[d];
    return moved(a, size, [&](Sizes s) {
        for (std::size_t d = 0; d < 4; ++d)
            s[d] %= a.size[d];
        return s;
    });
}

M<double> list(std::initializer_list<double> numbers)
{
    M<double> made(0, 1, static_cast<int>(numbers.size()));
    std::copy(numbers.begin(), numbers.end(), made.addr());
    return made;
}

TEST(Reshape, TilesLargeValuesOnSeveralThreads)
{
    struct Case {
        int rows, cols, down, across;
    } const cases[] = {{7, 300, 31, 9}, {1, 1, 300, 500}, {1, 500, 400, 1}, {3000, 1, 1, 70}, {300, 300, 1, 3}};
    for (Case const& c : cases) {
        M<double> a(1, c.rows, c.cols);
        for (int k = 0; k < a.size(); ++k)
            a.addi()[k] = -(a.addr()[k] = k);
        M<double> const tiled = repmat(a, c.down, c.across);
        ASSERT_EQ(tiled.size(), a.size() * c.down * c.across);
        for (int k = 0; k < tiled.size(); ++k) {
            double const expected = k / tiled.rows() % c.cols * c.rows + k % tiled.rows() % c.rows;
            ASSERT_TRUE(tiled.addr()[k] == expected && tiled.addi()[k] == -expected) << k << " of " << c.rows;
        }
    }
}

TEST(Reshape, RearrangesEveryKindAsTheModelDoes)
{
    shapes::Source source;
    for (int round = 0; round < 400; ++round) {
        Kind const kind = source.kind();
        bool const flat = kind.sparse || source.once_in(2);
        Sizes const size{1 + source.below(20), 1 + source.below(20), flat ? 1 : 1 + source.below(3), flat ? 1 : 1 + source.below(3)};
        M<double> const a = source.value(kind, size);
        Model const model = model_of(a);
        SCOPED_TRACE(testing::Message() << "round " << round << " sparse " << kind.sparse << " size " << size[0] << " " << size[1]);

        expect_equal(fliplr(a), model_flip(model, 1), kind);
        expect_equal(flipud(a), model_flip(model, 0), kind);
        int const dim = source.below(4);
        expect_equal(flipdim(a, dim + 1), model_flip(model, static_cast<std::size_t>(dim)), kind);
        Model turned = model;
        for (int k = 0; k < 5; ++k, turned = model_turn(turned)) {
            expect_equal(rot90(a, k), turned, kind);
            expect_equal(rot90(a, k - 8), turned, kind);
        }
        Sizes const times{1 + source.below(3), 1 + source.below(3), 1 + source.below(2), 1 + source.below(2)};
        expect_equal(repmat(a, times[0], times[1]), model_tile(model, {times[0], times[1], 1, 1}), kind);
        expect_equal(repmat(a, times[0]), model_tile(model, {times[0], times[0], 1, 1}), kind);
        Kind tiled = kind;
        tiled.sparse = kind.sparse && times[2] * times[3] == 1;
        expect_equal(repmat(a, list({1.0 * times[0], 1.0 * times[1], 1.0 * times[2], 1.0 * times[3]})), model_tile(model, times), tiled);

        if (a.getndims() == 2) {
            Model across = moved(model, {size[1], size[0], 1, 1}, [](Sizes s) { return Sizes{s[1], s[0], 0, 0}; });
            expect_equal(transpose(a), across, kind);
            expect_equal(dot_transpose(a), across, kind);
            for (auto& element : across.element)
                element = kind.complex ? std::conj(element) : element;
            expect_equal(ctranspose(a), across, kind);
            expect_equal(a, model, kind);
        }
        Model flattened = model;
        flattened.size = {size[0] * size[2] * size[3], size[1], 1, 1};
        expect_equal(reshape(a, flattened.size[0], size[1]), flattened, kind);
    }
}

TEST(Reshape, TransposesThroughTilesAndEdges)
{
    for (int rows : {7, 8, 16, 33})
        for (int cols : {15, 16, 17, 40}) {
            M<double> a(0, rows, cols);
            for (int k = 0; k < a.size(); ++k)
                a.addr()[k] = k;
            M<double> const t = transpose(a);
            for (int i = 1; i <= rows; ++i)
                for (int j = 1; j <= cols; ++j)
                    ASSERT_EQ(*t.addr(j, i), *a.addr(i, j)) << rows << "x" << cols;
        }
}

TEST(Reshape, SharesWhereTheOrderStays)
{
    M<double> const row = list({1, 2, 3, 4});
    EXPECT_EQ(transpose(row).addr(), row.addr());
    EXPECT_EQ(reshape(row, 2, 2).addr(), row.addr());
    EXPECT_EQ(flipud(row).addr(), row.addr());
    M<M<double>> cells(0, 2, 2);
    cells.addr()[2] = row;
    EXPECT_EQ(transpose(cells).addr()[1].addr(), row.addr());
    EXPECT_EQ(rot90(cells).addr()[0].addr(), row.addr());
    EXPECT_EQ(repmat(cells, 1, 2).addr()[6].addr(), row.addr());
    EXPECT_TRUE(TM("ab").isstr() && repmat(TM("ab"), 0).isstr());
    EXPECT_EQ(repmat(row, 0, 3).size() + repmat(row, -1).size(), 0);
}

TEST(Reshape, TakesSizesInEveryForm)
{
    M<double> const a(0, 4, 6);
    EXPECT_EQ(model_of(reshape(a, list({2, 3, 2, 2}))).size, (Sizes{2, 3, 2, 2}));
    EXPECT_EQ(model_of(reshape(a, M<double>(24.0))).size, (Sizes{24, 1, 1, 1}));
    EXPECT_EQ(model_of(reshape(a, 2, 6, 2)).size, (Sizes{2, 6, 2, 1}));
    EXPECT_EQ(model_of(reshape(a, 3, 2, 2, 2)).size, (Sizes{3, 2, 2, 2}));
    EXPECT_EQ(reshape(M<M<double>>(0, 4, 6), 8, 3).rows(), 8);
}

TEST(Reshape, ReportsWhatDoesNotFit)
{
    M<double> const a(0, 2, 3);
    int const deep[] = {2, 2, 2};
    M<double> const pages(0, 0, 0, 3, deep);
    struct Case {
        std::function<M<double>()> call;
        char const* message;
    } const cases[] = {
        {[&] { return reshape(a, 2, 2); }, "reshape: size is wrong"},
        {[&] { return reshape(a, 1e9, 1e9); }, "reshape: size is wrong"},
        {[&] { return reshape(a, list({1, 2, 3, 1, 1})); }, "reshape: too many dimensions"},
        {[&] { return reshape(sparse(a), 1, 2, 3); }, "reshape: too many dimensions"},
        {[&] { return transpose(pages); }, "transpose: matrix (temporary) has more than two dimensions"},
        {[&] { return flipdim(a, 5); }, "flipdim: no such dimension"},
        {[&] { return flipdim(a, 0); }, "flipdim: no such dimension"},
        {[&] { return repmat(a, list({1, 1, 1, 1, 2})); }, "repmat: too many dimensions"},
        {[&] { return repmat(a, 60000, 60000); }, "Out of memory!"},
        {[&] { return repmat(a, 1e300, 1); }, "Out of memory!"},
        {[&] { return repmat(sparse(a), 60000, 60000); }, "sparse: matrix is too large"},
    };
    for (Case const& check : cases) {
        Reports const reports;
        EXPECT_EQ(check.call().size(), 0);
        EXPECT_EQ(reports.all(), Texts{check.message});
    }
    EXPECT_EQ(a.size(), 6);
}

TEST(Reshape, LosesNothingWithoutMemory)
{
    M<double> a(1, 20, 20);
    std::fill_n(a.addr(), 400, 1);
    std::fill_n(a.addi(), 400, 1);
    M<double> const s = sparse(a);
    capture::with_every_allocation_refused([&] { repmat(ctranspose(a), 2, 2); });
    capture::with_every_allocation_refused([&] { rot90(s); });
}

} // namespace
