// Reading, assigning and deleting through subscripts: shapes, messages, what stays after a failure.
#include "arrlib.h"

#include "support/capture.h"

#include <algorithm>
#include <cmath>
#include <functional>

using capture::Texts;

namespace {

M<double> matrix(char const* name, int rows, int cols, std::vector<double> const& elements)
{
    M<double> x(name, rows, cols);
    std::copy(elements.begin(), elements.end(), x.addr());
    return x;
}
M<double> row(std::vector<double> const& elements, char const* name = nullptr)
{
    return matrix(name, 1, static_cast<int>(elements.size()), elements);
}
M<double> column(std::vector<double> const& elements, char const* name = nullptr)
{
    return matrix(name, static_cast<int>(elements.size()), 1, elements);
}
M<double> mask(std::vector<double> const& elements, char const* name = nullptr)
{
    M<double> x = row(elements, name);
    x.setlogical(1);
    return x;
}
M<double> counted(char const* name, int rows, int cols)
{
    M<double> x(name, rows, cols);
    for (int k = 1; k <= x.size(); ++k)
        x.r(k) = k;
    return x;
}
// Rows, columns and elements in storage order.
std::vector<double> contents(M<double> const& x)
{
    std::vector<double> list{static_cast<double>(x.rows()), static_cast<double>(x.cols())};
    M<double> whole = x;
    whole.getfull();
    list.insert(list.end(), whole.addr(), whole.addr() + whole.size());
    return list;
}
using List = std::vector<double>;

TEST(Reading, ShapesOfOneSubscript)
{
    M<double> r = counted("r", 1, 4), c = counted("c", 4, 1), a = counted("a", 2, 3), one(7), none;
    struct Case {
        M<double>* target;
        M<double> index;
        List expected;
    } cases[] = {
        {&r, row({4, 1}), {1, 2, 4, 1}},
        {&r, column({4, 1}), {1, 2, 4, 1}},
        {&c, row({1, 2, 3}), {3, 1, 1, 2, 3}},
        {&r, matrix(nullptr, 2, 2, {1, 2, 3, 4}), {2, 2, 1, 2, 3, 4}},
        {&a, row({6, 1}), {1, 2, 6, 1}},
        {&a, column({6, 1}), {2, 1, 6, 1}},
        {&one, column({1, 1}), {2, 1, 7, 7}},
        {&r, row({1.9, 0.5}), {1, 2, 1, 1}},
        {&r, M<double>(), {0, 0}},
        {&r, mask({1, 0, 1, 0}), {1, 2, 1, 3}},
        {&c, mask({1, 0, 1}), {2, 1, 1, 3}},
        {&a, mask({0, 1, 0, 1}), {1, 2, 2, 4}},
        {&a, mask({1, std::nan(""), 1}), {1, 2, 1, 3}},
        {&r, mask({0, 0, 0, 0}), {0, 0}},
        {&a, mask({1, 0, 0, 0, 0, 0, 0, 0, 0}), {1, 1, 1}},
    };
    for (Case& test : cases)
        EXPECT_EQ(contents((*test.target)(test.index)), test.expected);
    M<double> all = a(c_p);
    EXPECT_EQ(contents(all), (List{6, 1, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(all.addr(), a.addr());
    EXPECT_EQ(contents(none(c_p)), (List{0, 0}));
    EXPECT_EQ(contents(x_M(row({5}))), (List{1, 1, 1}));
}

TEST(Reading, Blocks)
{
    M<double> a = counted("a", 3, 4);
    EXPECT_EQ(contents(a(row({3, 1}), row({2}))), (List{2, 1, 6, 4}));
    EXPECT_EQ(contents(a(c_p, row({4, 4}))), (List{3, 2, 10, 11, 12, 10, 11, 12}));
    EXPECT_EQ(contents(a(row({2, 3}), c_p)), (List{2, 4, 2, 3, 5, 6, 8, 9, 11, 12}));
    EXPECT_EQ(contents(a(mask({0, 1, 1}), mask({1, 0, 0, 1}))), (List{2, 2, 2, 3, 11, 12}));
    EXPECT_EQ(contents(a(M<double>(), c_p)), (List{0, 0}));
    M<double> same = a(c_p, c_p);
    EXPECT_EQ(same.addr(), a.addr());
    a.i(2, 2) = 9;
    M<double> part = a(row({2, 1}), row({2}));
    EXPECT_EQ(part.i(1), 9);
    EXPECT_EQ(part.i(2), 0);
    M<double> text = TM("arrlib");
    M<double> piece = text(row({1, 2}));
    EXPECT_TRUE(piece.isstr());
    EXPECT_EQ(piece.getname(), nullptr);
}

TEST(Reading, PagesAndScalars)
{
    int const sizes[] = {2, 3, 2};
    M<double> x(0, 0, 0, 3, sizes);
    for (int k = 1; k <= 12; ++k)
        x.r(k) = k;
    EXPECT_EQ(contents(x(c_p, row({2}), row({1, 2})))[2], 3);
    M<double> second = x(c_p, c_p, row({2}));
    EXPECT_EQ(contents(second), (List{2, 3, 7, 8, 9, 10, 11, 12}));
    M<double> linear = x(row({12, 1}));
    EXPECT_EQ(contents(linear), (List{1, 2, 12, 1}));
    EXPECT_EQ(M<double>(x(2, 3, 2))[1], 12);
    EXPECT_EQ(M<double>(x(12))[1], 12);
    EXPECT_EQ(M<double>(x(2, 3))[1], 6);
    M<double> z(1, 1, 2);
    z.r(2) = 3;
    z.i(2) = 4;
    M<double> picked = z(2);
    EXPECT_EQ(picked.r(), 3);
    EXPECT_EQ(picked.i(), 4);
    double const brace = z.br(row({2}));
    EXPECT_EQ(brace, 3);
}

// What is reported, and that the first element stands in.
TEST(Reading, Outside)
{
    M<double> v = counted("v", 1, 3), a = counted("a", 2, 2), e("e", 0, 0), index = row({2, 9}, "k"), low = row({0}, "low"), cut = mask({1, 0, 0, 1}, "m");
    int const sizes[] = {2, 2, 2};
    M<double> n(0, 0, 0, 3, sizes);
    n.setname("n");
    for (int k = 1; k <= 8; ++k)
        n.r(k) = k;
    struct Case {
        std::function<M<double>()> read;
        List expected;
        Texts reports;
    };
    std::vector<Case> const cases = {
        {[&] { return M<double>(v(index)); }, {1, 2, 2, 1}, {"v(k) : Index out of matrix. Index value was 9 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(v(low)); }, {1, 1, 1}, {"v(low) : Index out of matrix. Index value was 0 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(v(M<double>(-2))); }, {1, 1, 1}, {"v(=-2) : Index out of matrix. Index value was -2 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(v(cut)); }, {1, 2, 1, 1}, {"v(m) : Index out of matrix. Index value was 4 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(v(NaN)); }, {1, 1, 1}, {"v(NaN) : Index out of matrix. Index value was -2147483648 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(v(Inf)); }, {1, 1, 1}, {"v(Inf) : Index out of matrix. Index value was 2147483647 however the indexed matrix has 3 elements."}},
        {[&] { return M<double>(e(M<double>(1))); }, {0, 0}, {"e(=1) : Index out of matrix. Index value was 1 however the indexed matrix has 0 elements."}},
        {[&] { return M<double>(a(index, low)); }, {2, 1, 2, 1},
         {"a(k,low): col index out of matrix. Index was 0 but indexed matrix has 2 columns.", "a(k,low): row index out of matrix. Index was 9 but indexed matrix has 2 rows."}},
        {[&] { return M<double>(a(row({0.5}, "h"), c_p)); }, {1, 2, 1, 3}, {"a(h,:): row index out of matrix. Index was 0 but indexed matrix has 2 rows."}},
        {[&] { return M<double>(n(index)); }, {1, 2, 2, 1}, {"Index k out of matrix n. Index value was 9 however the indexed matrix has only 8 elements."}},
        {[&] { return M<double>(n(low)); }, {1, 1, 1}, {"index low out of matrix n. Index value was 0 which is not positive."}},
        {[&] { return M<double>(n(M<double>(1), M<double>(3), M<double>(1))); }, {1, 1, 1},
         {"Index =3 out of matrix n. Index value was 3 however the indexed matrix has 2 elements in this dimension."}},
        {[&] { return M<double>(v(9)); }, {1, 1, 1}, {"Index =9 out of vector v. Index value was 9 however the indexed vector has only 3 elements."}},
        {[&] { return M<double>(a(1, 3)); }, {1, 1, 1}, {"Index =3 out of matrix a. Index value was 3 however the indexed matrix has 2 elements in this dimension."}},
        {[&] { return M<double>(static_cast<double>(v.br(index))); }, {1, 1, 0}, {"v{k} : indexed more than one element"}},
        {[&] { return M<double>(static_cast<double>(a.br(index, low))); }, {1, 1, 0}, {"a{k,low} : indexed more than one element"}},
    };
    for (Case const& test : cases) {
        capture::Reports const reports;
        M<double> const read = test.read();
        EXPECT_EQ(reports.all(), test.reports);
        EXPECT_EQ(contents(read), test.expected) << test.reports.front();
        EXPECT_EQ(capture::thrown_by(test.read), "Error: " + test.reports.front() + "\n\n");
    }
}

TEST(Reading, SparseParts)
{
    M<double> full(0, 4, 5), s;
    for (int k = 1; k <= 20; ++k)
        full.r(k) = k % 3 ? 0 : k;
    s = sparse(full);
    s.setname("s");
    M<double> const indices[] = {row({1, 2, 3}), row({4, 4, 1}), c_p, mask({1, 0, 0, 1}), row({3})};
    for (M<double> const& i : indices)
        for (M<double> const& j : indices) {
            M<double> const part = s(i, j);
            EXPECT_TRUE(part.issparse());
            EXPECT_EQ(contents(part), contents(full(i, j)));
        }
    EXPECT_EQ(contents(s(row({3, 3, 20, 18}))), contents(full(row({3, 3, 20, 18}))));
    EXPECT_EQ(contents(s(c_p)), contents(full(c_p)));
    EXPECT_EQ(M<double>(s(3, 1))[1], 3);
    EXPECT_EQ(M<double>(s(1, 1))[1], 0);
}

// --- assignment ----------------------------------------------------------------------------------

TEST(Assigning, GrowsAndFills)
{
    struct Case {
        M<double> target;
        std::function<void(M<double>&)> assign;
        List expected;
    };
    std::vector<Case> cases = {
        {M<double>(), [](M<double>& x) { x(row({3})) = M<double>(5); }, {1, 3, 0, 0, 5}},
        {M<double>(), [](M<double>& x) { x(3) = M<double>(5); }, {1, 3, 0, 0, 5}},
        {counted(nullptr, 3, 1), [](M<double>& x) { x(row({5})) = M<double>(1); }, {5, 1, 1, 2, 3, 0, 1}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(2, 4) = M<double>(1); }, {2, 4, 1, 2, 3, 4, 0, 0, 0, 1}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(3, 1) = M<double>(9); }, {3, 2, 1, 2, 9, 3, 4, 0}},
        {counted(nullptr, 1, 2), [](M<double>& x) { x(row({1, 1})) = row({5, 6}); }, {1, 2, 6, 2}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(c_p) = M<double>(7); }, {2, 2, 7, 7, 7, 7}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(c_p) = row({4, 3, 2, 1}); }, {2, 2, 4, 3, 2, 1}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(c_p, row({2})) = column({8, 9}); }, {2, 2, 1, 2, 8, 9}},
        {M<double>(), [](M<double>& x) { x(c_p, row({2})) = column({8, 9}); }, {2, 2, 0, 0, 8, 9}},
        {counted(nullptr, 1, 4), [](M<double>& x) { x(mask({1, 0, 1, 0})) = row({10, 30}); }, {1, 4, 10, 2, 30, 4}},
        {counted(nullptr, 1, 2), [](M<double>& x) { x(mask({0, 0, 0, 1})) = M<double>(4); }, {1, 4, 1, 2, 0, 4}},
        {counted(nullptr, 1, 3), [](M<double>& x) { x(M<double>()) = M<double>(4); }, {1, 3, 1, 2, 3}},
        {counted(nullptr, 1, 3), [](M<double>& x) { x(row({3, 2, 1})) = x; }, {1, 3, 3, 2, 1}},
        {counted(nullptr, 1, 3), [](M<double>& x) { x(x) = M<double>(0); }, {1, 3, 0, 0, 0}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(row({1, 2}), row({1})) = x(c_p, row({2})); }, {2, 2, 3, 4, 3, 4}},
        {counted(nullptr, 1, 1), [](M<double>& x) { x(1, 1, 2) = M<double>(3); }, {1, 1, 1, 3}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(row({2})) = M<double>(); }, {1, 3, 1, 3, 4}},
        {counted(nullptr, 2, 3), [](M<double>& x) { x(c_p, row({2})) = M<double>(); }, {2, 2, 1, 2, 5, 6}},
        {counted(nullptr, 3, 1), [](M<double>& x) { x(mask({1, 0, 1})) = M<double>(); }, {1, 1, 2}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(c_p, c_p) = M<double>(); }, {0, 0}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x(row({1, 2}), c_p) = M<double>(); }, {0, 0}},
        {counted(nullptr, 2, 2), [](M<double>& x) { x.br(row({6})) = 6.0; }, {6, 1, 1, 2, 3, 4, 0, 6}},
        {counted(nullptr, 1, 2), [](M<double>& x) { x.br(row({4})) = 6.0; }, {1, 4, 1, 2, 0, 6}},
        {counted(nullptr, 1, 2), [](M<double>& x) { x.br(row({2}), row({2})) = 6.0; }, {2, 2, 1, 0, 2, 6}},
    };
    for (std::size_t k = 0; k < cases.size(); ++k) {
        SCOPED_TRACE(k);
        Case& test = cases[k];
        capture::Reports const reports;
        M<double> const shared = test.target;
        List const before = contents(shared);
        test.assign(test.target);
        List got = contents(test.target);
        EXPECT_EQ(got, test.expected);
        EXPECT_EQ(contents(shared), before);
    }
}

// Long lists are resolved in stretches and by several threads.
TEST(Assigning, LongListsOfSubscripts)
{
    constexpr int n = 200003;
    struct Case {
        char const* what;
        std::function<double(int)> subscript;
        double bad;
        int at;
    } const cases[] = {
        {"rising", [](int k) { return 2.0 * k + 1; }, 0, 0},
        {"falling", [](int k) { return n - k + 0.5; }, 0, 0},
        {"named more than once", [](int k) { return k * 7919LL % 5000 + 1; }, 0, 0},
        {"falling once, where a thread may begin", [](int k) { return k < 98304 ? k + 50001 : k - 98303; }, 0, 0},
        {"falling once, where another may", [](int k) { return k < 131072 ? k + 1 : k - 131071; }, 0, 0},
        {"below one, late", [](int k) { return k + 1; }, 0.5, n - 2},
        {"not a number, at the start of a stretch", [](int k) { return k + 1; }, std::nan(""), 512},
    };
    for (Case const& c : cases) {
        M<double> index(0, 1, n), source(0, 1, n), a = zeros(1, 1000);
        std::vector<double> expected(1000);
        for (int k = 0; k < n; ++k) {
            index.addr()[k] = c.subscript(k);
            source.addr()[k] = k + 0.25;
            auto const at = static_cast<std::size_t>(index.addr()[k]) - 1;
            expected.resize(std::max(expected.size(), at + 1));
            expected[at] = source.addr()[k];
        }
        if (c.at) {
            index.addr()[c.at] = c.bad;
            expected.assign(1000, 0);
        }
        capture::Reports reports;
        a(index) = source;
        EXPECT_EQ(reports.all().size(), c.at ? 1u : 0u) << c.what;
        ASSERT_EQ(static_cast<std::size_t>(a.size()), expected.size()) << c.what;
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), a.addr())) << c.what;
    }
}

TEST(Assigning, KindsAndComplexParts)
{
    M<double> text = TM("abc");
    text(row({2})) = M<double>(66);
    EXPECT_TRUE(text.isstr());
    text(row({5})) = M<double>(67);
    EXPECT_TRUE(text.isstr());
    EXPECT_FALSE(text.islogical());
    M<double> x = counted("x", 1, 3), z(1, 1, 1);
    z.r() = 1;
    z.i() = 2;
    x(row({2})) = z;
    EXPECT_EQ(x.i(2), 2);
    EXPECT_EQ(x.i(1), 0);
    x(3) = z;
    EXPECT_EQ(x.i(3), 2);
    x(row({2})) = M<double>(5);
    EXPECT_EQ(x.i(2), 0);
    x(c_p) = row({1, 2, 3});
    EXPECT_FALSE(x.isc());
}

// The first report; growth before a failing comparison stays, everything else is as before.
TEST(Assigning, Failures)
{
    struct Case {
        std::function<void(M<double>&)> assign;
        char const* report;
        List after;
    };
    M<double> two = row({1, 2}, "b"), low = row({1, 0}, "low"), k = row({4, 5, 6}, "k"), huge = row({3e9}, "huge"), m = mask({1, 1, 1}, "m");
    std::vector<Case> const cases = {
        {[&](M<double>& a) { a(c_p) = k; }, "a(:)=k: size(k) different than size(a)", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(low) = two; }, "a(low): index is non-positive", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(NaN) = two; }, "a(NaN): index is non-positive", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(k) = two; }, "a(k)=b: size(b) different than size(k)", {6, 1, 1, 2, 3, 4, 0, 0}},
        {[&](M<double>& a) { a(m) = two; }, "a(m)=b: a logical assignment ; source size != number of non zeros in index", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(low, two) = M<double>(1); }, "a(low,b)==1: row index is non-positive", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(two, low) = M<double>(1); }, "a(b,low)==1: col index is non-positive", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(two, two) = two; }, "a(b,b)=b: size(row index)*size(col index) is different than size(source)", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(huge) = two; }, "Out of memory!", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(huge, huge) = M<double>(1); }, "Out of memory!", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(two, low, two) = M<double>(1); }, "index low out of matrix a. Index value was 0 which is not positive.", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(9) = M<double>(1); }, "Index =9 out of matrix a. Index value was 9 however the indexed matrix has only 4 elements.", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(0, 1) = M<double>(1); }, "index =0 out of matrix a. Index value was 0 which is not positive.", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(two, two) = M<double>(); }, "While assigning empty matrix to the matrix 'a', there was more than one non-colon index", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a(k) = M<double>(); }, "Index k out of matrix a. Index value was 5 however the indexed matrix has only 4 elements.", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a.br(two) = 3.0; }, "a{b} : indexed more than one element", {2, 2, 1, 2, 3, 4}},
        {[&](M<double>& a) { a.br(two, low) = 3.0; }, "a{b,low} : indexed more than one element", {2, 2, 1, 2, 3, 4}},
    };
    for (Case const& test : cases) {
        SCOPED_TRACE(test.report);
        M<double> a = counted("a", 2, 2);
        M<double> const other = a;
        {
            capture::Reports const reports;
            test.assign(a);
            EXPECT_EQ(contents(a), test.after);
            EXPECT_EQ(reports.all().empty() ? "" : reports.all().front(), test.report);
        }
        EXPECT_EQ(contents(other), (List{2, 2, 1, 2, 3, 4}));
        M<double> thrower = counted("a", 2, 2);
        EXPECT_EQ(capture::thrown_by([&] { test.assign(thrower); }), "Error: " + std::string(test.report) + "\n\n");
    }
}

TEST(Assigning, ProxiesReadBeforeTheyWrite)
{
    M<double> x = counted("x", 1, 4), y = counted("y", 1, 4);
    x(1) = y(4);
    x(row({2, 3})) = y(row({3, 2}));
    EXPECT_EQ(contents(x), (List{1, 4, 4, 3, 2, 4}));
    x(row({1, 2})) = x(row({2, 1}));
    EXPECT_EQ(contents(x), (List{1, 4, 3, 4, 2, 4}));
    Mr<double> whole(x);
    whole = y;
    EXPECT_EQ(x.addr(), y.addr());
}

// Appending one by one must not copy what is there each time.
TEST(Assigning, AppendingTakesFewReallocations)
{
    M<double> x("x", 0, 0);
    int moves = 0;
    double const* at = nullptr;
    for (int k = 1; k <= 100000; ++k) {
        x(k) = M<double>(k);
        moves += x.addr() != at;
        at = x.addr();
    }
    EXPECT_LT(moves, 20);
    EXPECT_EQ(x.cols(), 100000);
    EXPECT_EQ(x.getnnz(), 100000);
    EXPECT_EQ(x.r(100000), 100000);
}

TEST(Assigning, CellsGrowAndShare)
{
    M<M<double>> c("c", 0, 0);
    c.br(row({3})) = TM("three");
    c(1) = M<double>(1);
    EXPECT_EQ(c.cols(), 3);
    EXPECT_EQ(c.r(2).size(), 0);
    M<M<double>> d = c;
    d.br(row({1})) = M<double>(10);
    EXPECT_EQ(c.r(1)[1], 1);
    EXPECT_EQ(M<double>(d.br(row({1})))[1], 10);
    EXPECT_EQ(c.r(3).addr(), d.r(3).addr());
    d(row({1, 2})) = M<M<double>>();
    EXPECT_EQ(d.size(), 1);
    M<M<double>> part = c(row({3, 1}));
    EXPECT_EQ(part.r(1).addr(), c.r(3).addr());
    capture::Reports const reports;
    M<double> const none = c.br(row({1, 2}, "k"));
    EXPECT_EQ(none.size(), 0);
    EXPECT_EQ(reports.all(), Texts{"c{k} : indexed more than one element"});
}

TEST(SubscriptDeathTest, ProxiesExistOnlyOverAMatrix)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    nx_default_error_flags = nx_error_message_box;
    EXPECT_EXIT(Mr<double>(), testing::ExitedWithCode(1), "Mr called");
    EXPECT_EXIT(Ms<double>(), testing::ExitedWithCode(1), "Ms called");
    EXPECT_EXIT(Sr<double>(), testing::ExitedWithCode(1), "Sr called");
    nx_default_error_flags = nx_error_console | nx_error_message_box | nx_error_exit;
}

TEST(Subscripts, EveryAllocationMayFail)
{
    M<double> index = row({1, 7, 3, 12}, "k"), few = row({4, 1, 3}, "few"), three(3);
    capture::with_every_allocation_refused([&] {
        M<double> x(0, 4, 4), y;
        if (x.size() == 0)
            return;
        std::fill_n(x.addr(), 16, 1.0);
        y = x(index);
        y = x(few, few);
    });
    capture::with_every_allocation_refused([&] {
        M<double> x(0, 1, 40);
        if (x.size() == 0)
            return;
        x(index) = three;
        M<double> const shared = x;
        x(index) = M<double>();
        EXPECT_EQ(shared.size(), 40);
    });
}

} // namespace
