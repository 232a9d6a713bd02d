// Brackets and joins against a model that places one element at a time.
#include "core/bracket.h"

#include "core/join.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/shapes.h"

#include <deque>
#include <functional>

namespace {

using capture::Reports;
using capture::Texts;
using shapes::expect_equal;
using shapes::Kind;
using shapes::Model;
using shapes::model_of;
using shapes::Sizes;
using Row = std::deque<M<double>>;

std::vector<double> numbers(M<double> const& value)
{
    return {value.addr(), value.addr() + value.size()};
}

// Copies the first `taken` rows of a block to a place of a larger array.
void put(Model& to, Model const& from, Sizes const& offset, int taken)
{
    from.each([&](Sizes s) {
        if (s[0] >= taken)
            return;
        std::complex<double> const element = from.at(s);
        for (std::size_t d = 0; d < 4; ++d)
            s[d] += offset[d];
        to.at(s) = element;
    });
}

Mb<double> bracket_of(std::deque<Row> const& rows)
{
    Mb<double> bracket = BR(rows[0][0]);
    for (std::size_t r = 0; r < rows.size(); ++r) {
        if (r > 0)
            (bracket, semi);
        for (std::size_t k = r > 0 ? 0 : 1; k < rows[r].size(); ++k)
            (bracket, rows[r][k]);
    }
    return bracket;
}

Model model_of(std::deque<Row> const& rows)
{
    Sizes size{0, 0, 1, 1};
    std::vector<int> heights;
    for (Row const& row : rows) {
        int width = 0, height = 0;
        for (M<double> const& block : row)
            if (block.size() > 0) {
                width += block.cols();
                height = block.rows();
                size[2] = block.getdims()[2];
            }
        size[1] = std::max(size[1], width);
        size[0] += height;
        heights.push_back(height);
    }
    Model model(size);
    Sizes at{0, 0, 0, 0};
    for (std::size_t r = 0; r < rows.size(); ++r, at = {at[0] + heights[r - 1], 0, 0, 0})
        for (M<double> const& block : rows[r]) {
            put(model, model_of(block), at, heights[r]);
            at[1] += block.cols();
        }
    return model;
}

Kind kind_of(std::deque<Row> const& rows)
{
    Kind kind;
    kind.logical = true;
    for (Row const& row : rows)
        for (M<double> const& block : row) {
            kind.complex |= block.isc() != 0;
            kind.sparse |= block.issparse() != 0;
            kind.string |= block.isstr() != 0;
            kind.logical &= block.islogical() != 0;
        }
    return kind;
}

TEST(Bracket, PlacesElementsAsTheModelDoes)
{
    shapes::Source source;
    for (int round = 0; round < 2000; ++round) {
        bool const sparse = source.once_in(3), exact = sparse || source.once_in(2), logical = source.once_in(3);
        int const pages = sparse || !source.once_in(4) ? 1 : 2, width = 1 + source.below(9);
        std::deque<Row> rows(static_cast<std::size_t>(1 + source.below(4)));
        for (Row& row : rows) {
            int const height = 1 + source.below(3);
            for (int left = width; left > 0;) {
                int const cols = std::min(left, 1 + source.below(3));
                Kind const kind{source.once_in(4), sparse && source.once_in(2), source.once_in(6), logical || source.once_in(3)};
                row.push_back(source.value(kind, {exact ? height : 1 + source.below(3), cols, pages, 1}));
                left -= exact || !source.once_in(3) ? cols : left;
                if (source.once_in(8))
                    row.push_back(source.value({false, false, source.once_in(2), logical}, {0, 0, 0, 0}));
            }
        }
        SCOPED_TRACE(testing::Message() << "round " << round);
        expect_equal(M<double>(bracket_of(rows)), model_of(rows), kind_of(rows));
    }
}

TEST(Bracket, ReadsAsItIsWritten)
{
    M<double> x(0, 1, 2);
    x.addr()[0] = 7;
    x.addr()[1] = 8;
    using Numbers = std::vector<double>;
    EXPECT_EQ(numbers((BR(1), 2.0, semi, 3.0, 4)), (Numbers{1, 3, 2, 4}));
    EXPECT_EQ(numbers((BR(x(2)), x(1), x)), (Numbers{8, 7, 7, 8}));
    EXPECT_EQ(numbers((BR((BR(1), semi, 2)), (BR(3), semi, 4))), (Numbers{1, 2, 3, 4}));
    EXPECT_TRUE(M<double>((BR(TM("a")), 98)).isstr());
    EXPECT_EQ(M<double>((BR(nop_M), semi, nop_M)).size(), 0);
    EXPECT_EQ(M<double>(BR(x)).addr(), x.addr());

    Mb<double> many = BR(x);
    for (int k = 1; k < 17; ++k)
        (many, x);
    EXPECT_EQ(many.elements().capacity(), 32);
    Mb<double> const copy(many);
    EXPECT_EQ(M<double>(copy).size(), 34);
}

TEST(Bracket, JoinsCells)
{
    M<double> const x(0, 2, 2), text = TM("ab");
    M<M<double>> const c = (CL(1), text, semi, nop_M);
    EXPECT_EQ(c.rows(), 2);
    EXPECT_EQ(c.cols(), 2);
    EXPECT_EQ(c.addr()[2].addr(), text.addr());
    EXPECT_EQ(c.addr()[1].size() + c.addr()[3].size() + CL().size(), 0);
    M<M<double>> const joined = (BR(nop_M), c, semi, c, semi, x, text);
    EXPECT_EQ(joined.rows(), 5);
    EXPECT_EQ(joined.addr(5, 2)->addr(), text.addr());
    EXPECT_EQ(joined.addr(3, 2)->addr(), text.addr());
    EXPECT_EQ(horzcat(c, c).addr(1, 4)->addr(), text.addr());
    EXPECT_EQ(cat(3, c, c, c).getdims()[2], 3);
}

TEST(Bracket, ExtendsItsFirstElementInPlace)
{
    M<double> s = TM("ab"), column = 1.0, wide(1, 2, 1);
    std::fill_n(wide.addr(), 2, 1);
    std::fill_n(wide.addi(), 2, 2);
    double const* const before = s.addr();
    s = (BR(s), TM("cde"));
    EXPECT_EQ(s.addr(), before);
    M<double> const kept = s;
    s = (BR(s), s, TM("f"));
    EXPECT_EQ(kept.size(), 5);
    std::vector<double> expected{1};
    for (int k = 0; k < 100; ++k) {
        s = (BR(s), TM("xy"), nop_M, TM("z"));
        column = (BR(column), semi, k, semi, -k);
        wide = (BR(wide), M<double>((BR(k), semi, k)));
        expected.insert(expected.end(), {1.0 * k, -1.0 * k});
    }
    char shown[400];
    Mstr(s, shown, 399);
    EXPECT_EQ(std::string(shown).substr(0, 17), "abcdeabcdefxyzxyz");
    EXPECT_EQ(s.cols(), 311);
    EXPECT_TRUE(s.isstr());
    EXPECT_EQ(numbers(column), expected);
    EXPECT_EQ(column.cols(), 1);
    EXPECT_EQ(wide.cols(), 101);
    EXPECT_EQ(*wide.addr(2, 100), 98);
    EXPECT_EQ(*wide.addi(2, 100), 0);
    EXPECT_EQ(*wide.addi(2, 1), 2);

    M<M<double>> cells = CL(TM("first"));
    for (int k = 0; k < 50; ++k)
        cells = (BR(cells), cells.r(1));
    EXPECT_EQ(cells.cols(), 51);
    EXPECT_EQ(cells.addr()[50].addr(), cells.addr()[0].addr());
}

TEST(Join, AgreesWithTheModelAlongEveryDimension)
{
    shapes::Source source;
    for (int round = 0; round < 1000; ++round) {
        std::size_t const dim = static_cast<std::size_t>(source.below(4));
        bool const flat = source.once_in(2);
        Sizes size{1 + source.below(4), 1 + source.below(4), flat ? 1 : 1 + source.below(2), flat ? 1 : 1 + source.below(2)};
        Row parts;
        Model model;
        for (int k = 0; k < 3; ++k) {
            Kind kind = source.kind();
            if (size[2] * size[3] > 1)
                kind.sparse = false;
            parts.push_back(source.value(kind, size));
            if (dim < 2 || !flat)
                size[dim] = dim >= 2 ? size[dim] : 1 + source.below(4);
        }
        auto const join_model = [&](int count) {
            Sizes whole = size, at{0, 0, 0, 0};
            whole[dim] = 0;
            for (int k = 0; k < count; ++k)
                whole[dim] += parts[static_cast<std::size_t>(k)].getdims()[dim];
            Model joined(whole);
            for (int k = 0; k < count; ++k) {
                put(joined, model_of(parts[static_cast<std::size_t>(k)]), at, whole[0]);
                at[dim] += parts[static_cast<std::size_t>(k)].getdims()[dim];
            }
            return joined;
        };
        auto const kind = [&](std::size_t count) {
            Kind made = kind_of({Row(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(count))});
            made.sparse &= dim < 2;
            return made;
        };
        SCOPED_TRACE(testing::Message() << "round " << round << " dim " << dim);
        double const number = static_cast<double>(dim) + 1;
        expect_equal(cat(number, parts[0], parts[1], parts[2]), join_model(3), kind(3));
        expect_equal(cat(number, parts[0], parts[1]), join_model(2), kind(2));
        if (dim < 2)
            expect_equal(dim == 1 ? horzcat(parts[0], parts[1]) : vertcat(parts[0], parts[1]), join_model(2), kind(2));
    }
}

TEST(Join, GrowsByPagesAndLeavesEmptyValuesOut)
{
    M<double> const page(0, 2, 2), two = cat(3, page, page);
    EXPECT_EQ(cat(3, two, page).getdims()[2], 3);
    EXPECT_EQ(cat(4, two, two).getndims(), 4);
    EXPECT_EQ(horzcat(page, nop_M).addr(), page.addr());
    EXPECT_EQ(vertcat(nop_M, page).addr(), page.addr());
    EXPECT_EQ(cat(1, nop_M, page, nop_M).addr(), page.addr());
    EXPECT_EQ(cat(1, nop_M, nop_M).size(), 0);
}

TEST(Join, ReportsWhatDoesNotFit)
{
    M<double> const a(0, 2, 1), b(0, 3, 2), page(0, 2, 2), two = cat(3, page, page), s = sparse(M<double>(1.0));
    M<double> const huge = spzeros(30000, 60000);
    struct Case {
        std::function<M<double>()> call;
        char const* message;
    } const cases[] = {
        {[&] { return horzcat(a, b); }, "horzcat: # of rows different"},
        {[&] { return vertcat(a, b); }, "vertcat: # of cols different"},
        {[&] { return M<double>((BR(s), a)); }, "horzcat: # of rows different"},
        {[&] { return M<double>((BR(b), semi, b, semi, s)); }, "vertcat: # of cols different"},
        {[&] { return M<double>((BR(two), page)); }, "cat: arguments do not have compatible dimensions"},
        {[&] { return horzcat(two, page); }, "cat: arguments do not have compatible dimensions"},
        {[&] { return cat(0, a, a); }, "cat: no such dimension"},
        {[&] { return cat(5, a, a); }, "cat: no such dimension"},
        {[&] { return cat(nop_M, a, a); }, "cat: no such dimension"},
        {[&] { return cat(2, two, page); }, "cat: arguments do not have the same number of dimensions"},
        {[&] { return cat(3, a, b); }, "cat: arguments do not have compatible dimensions"},
        {[&] { return horzcat(huge, huge); }, "sparse: matrix is too large"},
    };
    for (Case const& check : cases) {
        Reports const reports;
        EXPECT_EQ(check.call().size(), 0);
        EXPECT_EQ(reports.all(), Texts{check.message});
    }
    M<M<double>> const cells(0, 1, 2), column(0, 2, 1);
    Reports const reports;
    EXPECT_EQ(vertcat(cells, column).size() + horzcat(cells, column).size(), 0);
    EXPECT_EQ(reports.all(), (Texts{"vertcat: # of cols different", "horzcat: # of rows different"}));
}

TEST(BracketDeathTest, IsMadeByItsFunctionsOnly)
{
    Mb<double> bracket = BR(1);
    Mc<M<double>> cells = CL(M<double>(1.0));
    testing::GTEST_FLAG(death_test_style) = "fast";
    nx_default_error_flags = nx_error_console;
    nx_set_print_handler([](char const* text) { std::fputs(text, stderr); });
    EXPECT_EXIT(Mb<double>(), testing::ExitedWithCode(1), "Mb called");
    EXPECT_EXIT(Mc<M<double>>(), testing::ExitedWithCode(1), "Mc called");
    EXPECT_EXIT(bracket = bracket, testing::ExitedWithCode(1), "Mb=Mb called");
    EXPECT_EXIT(cells = cells, testing::ExitedWithCode(1), "Mc=Mc called");
    EXPECT_EXIT(M<double>(Mc<double>(M<double>(1.0))), testing::ExitedWithCode(1), "M.Mc. should not be called");
    nx_set_print_handler(nullptr);
}

TEST(Bracket, LosesNothingWithoutMemory)
{
    M<double> const big(0, 1, 40), s = sparse(big);
    M<double> const zero = 0.0;
    capture::with_every_allocation_refused([&] {
        Mb<double> bracket = BR(zero);
        for (int k = 0; k < 40; ++k)
            (bracket, big);
        M<double> const joined = bracket;
        M<double> grown = (BR(joined), zero);
        grown = (BR(grown), big);
    });
    capture::with_every_allocation_refused([&] { M<double>((BR(s), big, semi, big, s, semi, s, s)); });
    EXPECT_NE(capture::thrown_by([&] {
                  capture::FailingHeap const heap(1);
                  Mb<double> bracket = BR(zero);
                  for (int k = 0; k < 40; ++k)
                      (bracket, big);
              }),
              "");
}

} // namespace
