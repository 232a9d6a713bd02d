// Sparse values against a dense model.
#include "core/sparse.h"

#include "core/access.h"
#include "core/declare.h"
#include "core/subscript.h"
#include "ops/sparse_random.h"
#include "platform/platform.h"
#include "runtime/constants.h"
#include "runtime/errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Complex = std::complex<double>;
using Numbers = std::vector<double>;
using Index = std::unique_ptr<int, void (*)(int*)>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
std::vector<std::string> reported;

class Sparse : public testing::Test {
protected:
    void SetUp() override
    {
        reported.clear();
        nx_set_error_handler([](char const* message) { reported.emplace_back(message); });
    }
    void TearDown() override
    {
        nx_set_error_handler(nullptr);
        arrlib::platform::set_heap(nullptr, nullptr);
    }
    std::mt19937 random{20240229};
    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
};

M<double> matrix(int rows, int cols, Numbers const& re, Numbers const& im = {})
{
    M<double> made(!im.empty(), rows, cols);
    std::copy(re.begin(), re.end(), made.addr());
    if (made.isc())
        std::copy(im.begin(), im.end(), made.addi());
    return made;
}
M<double> row(Numbers const& re, Numbers const& im = {})
{
    return matrix(1, static_cast<int>(re.size()), re, im);
}

Numbers elements(M<double> const& value)
{
    M<double> const dense = full(value);
    return Numbers(dense.addr(), dense.addr() + dense.size());
}
std::vector<Complex> complex_elements(M<double> const& value)
{
    M<double> const dense = full(value);
    std::vector<Complex> made;
    for (int k = 0; k < dense.size(); ++k)
        made.emplace_back(dense.addr()[k], dense.isc() ? dense.addi()[k] : 0);
    return made;
}

Index index_of(int* array)
{
    return Index(array, nx_release_index);
}

void expect_normal(M<double> const& value)
{
    ASSERT_TRUE(value.issparse());
    for (int k = 0; k < value.getnnz(); ++k) {
        EXPECT_LT(k ? value.getindex()[k - 1] : -1, value.getindex()[k]);
        EXPECT_LT(value.getindex()[k], value.size());
    }
}

// Entries with repeated places and zeros; small whole numbers, so that sums are exact.
struct RandomEntries {
    int rows, cols;
    Numbers i, j, re, im;
    std::vector<Complex> model;

    RandomEntries(std::mt19937& random, int count, bool complex)
    {
        auto const below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        rows = 1 + below(60);
        cols = 1 + below(60);
        model.resize(static_cast<std::size_t>(rows * cols));
        for (int k = 0; k < count; ++k) {
            i.push_back(1 + below(rows));
            j.push_back(1 + below(cols));
            re.push_back(below(4));
            if (complex)
                im.push_back(below(4));
            model[at(k)] += Complex(re.back(), complex ? im.back() : 0);
        }
    }
    std::size_t at(int k) const
    {
        auto const n = static_cast<std::size_t>(k);
        return static_cast<std::size_t>(j[n] - 1) * static_cast<std::size_t>(rows) + static_cast<std::size_t>(i[n] - 1);
    }
};

TEST_F(Sparse, SumsTripletsUp)
{
    for (int const count : {1, 2, 17, 300, 511, 512, 3000})
        for (bool const complex : {false, true}) {
            RandomEntries const entries(random, count, complex);
            M<double> const built = sparse(row(entries.i), row(entries.j), row(entries.re, entries.im), entries.rows, entries.cols);
            expect_normal(built);
            EXPECT_EQ(built.isc(), complex);
            EXPECT_EQ(complex_elements(built), entries.model);
            EXPECT_EQ(nnz(built)[1], nnz(full(built))[1]);
            EXPECT_EQ(complex_elements(sparse(full(built))), entries.model);
        }
    EXPECT_TRUE(reported.empty());
}

TEST_F(Sparse, SortAndResparseLeaveSharedCopiesAlone)
{
    for (int const count : {3, 40, 2000})
        for (bool const complex : {false, true}) {
            RandomEntries const entries(random, count, complex);
            M<double> raw(complex, entries.rows * entries.cols + count, entries.rows, entries.cols);
            raw.getnnz() = 0;
            raw.extend_nnz(count);
            for (int k = 0; k < count; ++k) {
                auto const n = static_cast<std::size_t>(k);
                raw.getindex()[k] = static_cast<int>(entries.at(k));
                raw.spaddr()[k] = entries.re[n];
                if (complex)
                    raw.spaddi()[k] = entries.im[n];
            }
            M<double> const before = raw;
            raw.sort();
            M<double> const sorted = raw;
            raw.resparse();
            EXPECT_EQ(before.getnnz(), count);
            EXPECT_EQ(before.getindex()[0], static_cast<int>(entries.at(0)));
            EXPECT_EQ(sorted.getnnz(), count);
            EXPECT_TRUE(std::is_sorted(sorted.getindex(), sorted.getindex() + count));
            expect_normal(raw);
            EXPECT_EQ(complex_elements(raw), entries.model);
        }
}

TEST_F(Sparse, MergesInTheOrderOfEntries)
{
    // 1 is lost beside 1e16 in one order only.
    EXPECT_EQ(elements(sparse(1, 1, row({1e16, -1e16, 1}), 1, 1)), Numbers{1});
    EXPECT_EQ(elements(sparse(1, 1, row({1e16, 1, -1e16}), 1, 1)), Numbers{0});
    EXPECT_EQ(sparse(1, 1, 0, 1, 1).getnnz(), 0);
    EXPECT_TRUE(std::isnan(elements(sparse(1, 1, NaN, 1, 1))[0]));
}

TEST_F(Sparse, SpreadsScalarsAndTruncatesIndices)
{
    struct {
        M<double> built;
        int rows, cols;
        Numbers expected;
    } const cases[] = {
        {sparse(row({1, 2}), row({1, 2}), 7), 2, 2, {7, 0, 0, 7}},
        {sparse(2, row({1, 3}), row({5, 6})), 2, 3, {0, 5, 0, 0, 0, 6}},
        {sparse(row({1.9, 2.9}), 1.5, 1, 2.9, 1.9), 2, 1, {1, 1}},
        {sparse(sparse(row({1, 2})), row({1, 1}), sparse(row({0, 4})), 2, 1), 2, 1, {0, 4}},
        {sparse(row({1, 1}), row({1, 1}), row({2, 3}), 2, 2), 2, 2, {5, 0, 0, 0}},
        {sparse(M<double>(), M<double>(), 3, 2, 1), 2, 1, {0, 0}},
        {sparse(M<double>(), M<double>(), M<double>()), 0, 0, {}},
        {sparse(2, 3), 2, 3, Numbers(6)},
        {sparse(-2, NaN), 0, 0, {}},
        {speye(2, 3), 2, 3, {1, 0, 0, 1, 0, 0}},
        {speye(row({2, 1})), 2, 1, {1, 0}},
        {speye(2), 2, 2, {1, 0, 0, 1}},
        {spzeros(1, 2), 1, 2, {0, 0}},
        {spones(row({0, nan, -3})), 1, 3, {0, 1, 1}},
        {spconvert(matrix(2, 3, {1, 2, 2, 3, 4, 0})), 2, 3, {0, 0, 4, 0, 0, 0}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_TRUE(c.built.issparse());
        EXPECT_EQ(c.built.rows(), c.rows);
        EXPECT_EQ(c.built.cols(), c.cols);
        EXPECT_EQ(elements(c.built), c.expected);
    }
    EXPECT_TRUE(reported.empty());
}

TEST_F(Sparse, ReportsWhatItRefuses)
{
    M<double> dense = row({1, 2});
    dense.setname("d");
    M<M<double>> cells(0, 1, 1);
    cells.setname("c");
    M<double> const large(1e5);
    char const *const too_large = "sparse: matrix is too large", *const bad_row = "sparse: non-positive row index encountered",
                     *const bad_col = "sparse: non-positive column index encountered";
    struct {
        char const* message;
        std::function<M<double>()> call;
    } const cases[] = {
        {"sparse: i,j and v must be same size", [] { return sparse(row({1, 2}), row({1, 2, 3}), 1); }},
        {bad_row, [] { return sparse(0.9, 1, 1, 2, 2); }},
        {bad_row, [] { return sparse(NaN, -1, 1); }},
        {bad_col, [] { return sparse(1, NaN, 1, 2, 2); }},
        {bad_col, [] { return spconvert(row({1, 0, 3})); }},
        {"sparse: row index out of range", [] { return sparse(row({1, 3}), 1, 1, 2, 2); }},
        {"sparse: column index out of range", [] { return sparse(1, Inf, 1, 2, 2); }},
        {too_large, [] { return sparse(Inf, 1, 1); }},
        {too_large, [&] { return sparse(large, large, 1); }},
        {too_large, [&] { return sparse(1, 1, 1, large, large); }},
        {too_large, [&] { return speye(large); }},
        {too_large, [] { return spzeros(1, 2147483648.0); }},
        {too_large, [&] { return spalloc(large, large, 1); }},
        {too_large, [&] { return sprand(large, large, 0.1); }},
        {"speye: size must be one or two numbers", [] { return speye(row({1, 2, 3})); }},
        {"spconvert: matrix 'd' must have 3 or 4 columns", [&] { return spconvert(dense); }},
        {"sparsfun called", [] { return sparsfun(1, 2); }},
        {"d.search: not sparse", [&] { return dense.search(0) == -1 ? x_M : one_M; }},
        {"d.Jc: not sparse", [&] { return dense.Jc() ? one_M : x_M; }},
        {"d.Ir: not sparse", [&] { return dense.Ir() ? one_M : x_M; }},
        {"d.unsparse: not sparse", [&] { return dense.unsparse(2, nullptr, nullptr), x_M; }},
        {"d.extend_nnz: not sparse", [&] { return dense.extend_nnz(9), x_M; }},
        {"d.IrJc: not sparse", [&] { return dense.IrJc(nullptr, nullptr), x_M; }},
        {"d.sort: not sparse", [&] { return dense.sort(), x_M; }},
        {"d.resparse: not sparse", [&] { return dense.resparse(), x_M; }},
        {"sparse cell arrays not supported", [&] { return cells.sort(), x_M; }},
        {"no sparse cells", [&] { return cells.resparse(), x_M; }},
        {"c.search: not sparse", [&] { return cells.search(0) == -1 ? x_M : one_M; }},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.message);
        reported.clear();
        M<double> const result = c.call();
        EXPECT_EQ(reported, std::vector<std::string>{c.message});
        EXPECT_EQ(result.size(), 0);
    }
    EXPECT_EQ(elements(dense), (Numbers{1, 2}));
    EXPECT_EQ(cells.getfull() + cells.getsparse(0), 2);
}

TEST_F(Sparse, ColumnArraysRoundTrip)
{
    M<double> const second = sparse(row({3, 1}), 2, row({5, 6}), 3, 3);
    col_list_limits_t limits;
    Index const starts = index_of(second.Jc(limits));
    EXPECT_EQ(std::vector<int>(starts.get(), starts.get() + 4), (std::vector<int>{0, 0, 2, 2}));
    EXPECT_EQ((std::vector<int>{limits.row_min, limits.row_max, limits.col_min, limits.col_max}), (std::vector<int>{0, 2, 1, 1}));

    Index const none = index_of(spzeros(0).Jc(limits));
    EXPECT_EQ(*none, 0);
    EXPECT_EQ((std::vector<int>{limits.row_min, limits.row_max, limits.col_min, limits.col_max}), (std::vector<int>{INT_MAX, -1, INT_MAX, -1}));

    for (int const count : {1, 30, 3000}) {
        RandomEntries const entries(random, count, false);
        M<double> const built = sparse(row(entries.i), row(entries.j), row(entries.re), entries.rows, entries.cols);
        Index const jc = index_of(built.Jc()), ir = index_of(built.Ir());
        M<double> again = built;
        again.unshare();
        std::fill_n(again.getindex(), again.getnnz(), 0);
        M<double> const shared = again;
        again.IrJc(ir.get(), jc.get());
        EXPECT_EQ(elements(again), elements(built));
        EXPECT_TRUE(std::all_of(shared.getindex(), shared.getindex() + shared.getnnz(), [](int position) { return position == 0; }));
        for (int position = 0; position < built.size(); ++position) {
            int const entry = built.search(position);
            EXPECT_EQ(entry >= 0 ? built.spaddr()[entry] : 0, entries.model[static_cast<std::size_t>(position)].real());
        }
    }
}

TEST_F(Sparse, EntriesAreAddedToACopyOfItsOwn)
{
    M<double> const one = sparse(2, 1, 5, 3, 3);
    M<double> longer = one;
    longer.setlogical(1);
    longer.extend_nnz(40);
    EXPECT_EQ(one.getnnz(), 1);
    EXPECT_EQ(longer.getnnz(), 40);
    EXPECT_TRUE(longer.islogical());
    EXPECT_EQ(longer.spaddr()[0], 5);
    EXPECT_EQ(longer.getindex()[0], 1);
    EXPECT_TRUE(std::all_of(longer.spaddr() + 1, longer.spaddr() + 40, [](double value) { return value == 0; }));
    EXPECT_TRUE(std::all_of(longer.getindex() + 1, longer.getindex() + 40, [](int position) { return position == 0; }));
}

TEST_F(Sparse, ChangesForm)
{
    M<double> value = row({0, 2, 0});
    value.setlogical(1);
    value.setname("v");
    M<double> with_zeros = value;
    EXPECT_EQ(value.getsparse(0) + with_zeros.getsparse(1), 2);
    EXPECT_EQ(nnz(value)[1], 1);
    EXPECT_EQ(nnz(with_zeros)[1], 3);
    EXPECT_EQ(nnz(sparse(with_zeros))[1], 1);
    EXPECT_EQ(find(with_zeros)[1], 2);
    EXPECT_TRUE(value.islogical());
    EXPECT_EQ(value.getfull(), 1);
    EXPECT_FALSE(value.issparse());
    EXPECT_TRUE(value.islogical());
    EXPECT_STREQ(value.getname(), "v");
    EXPECT_EQ(elements(value), (Numbers{0, 2, 0}));
    EXPECT_EQ(nzmax(value)[1], 3);
    EXPECT_EQ(nzmax(spalloc(9, 9, 40))[1], 40);
    EXPECT_EQ(nzmax(sparse(1, 1, 1, 9, 9, 7))[1], 7);
    EXPECT_EQ(nzmax(sparse(row({1, 1}), 1, 1))[1], 1);
}

TEST_F(Sparse, FindsNonZeros)
{
    struct {
        M<double> x;
        int rows, cols;
        Numbers found;
    } const cases[] = {
        {row({0, 3, nan}), 1, 2, {2, 3}},
        {matrix(3, 1, {1, 0, 2}), 2, 1, {1, 3}},
        {matrix(2, 2, {0, 1, 1, 0}), 2, 1, {2, 3}},
        {row({0, 0}, {0, 1}), 1, 1, {2}},
        {row({0, 0}), 0, 0, {}},
        {M<double>(), 0, 0, {}},
    };
    for (auto const& c : cases)
        for (M<double> const& x : {c.x, sparse(c.x)}) {
            SCOPED_TRACE(&c - cases);
            M<double> const found = find(x);
            EXPECT_EQ(found.rows(), c.rows);
            EXPECT_EQ(found.cols(), c.cols);
            EXPECT_EQ(elements(found), c.found);
        }

    for (bool const complex : {false, true}) {
        RandomEntries const entries(random, 200, complex);
        M<double> const built = sparse(row(entries.i), row(entries.j), row(entries.re, entries.im), entries.rows, entries.cols);
        for (M<double> const& x : {built, full(built)}) {
            M<double> rows, cols, values;
            find(x, i_o, rows, cols, values);
            EXPECT_EQ(complex_elements(sparse(rows, cols, values, entries.rows, entries.cols)), entries.model);
            EXPECT_EQ(complex_elements(nonzeros(x)), complex_elements(values));
            M<double> rows_alone, cols_alone, positions;
            find(x, i_o, rows_alone, cols_alone);
            EXPECT_EQ(elements(rows_alone), elements(rows));
            EXPECT_EQ(elements(cols_alone), elements(cols));
            find(x, i_o, positions);
            EXPECT_EQ(elements(find(x)), elements(positions));
        }
        M<double> const list = sp2coo(built), again = spconvert(list);
        EXPECT_EQ(list.cols(), complex ? 4 : 3);
        M<double> again_rows, again_cols, again_values;
        find(again, i_o, again_rows, again_cols, again_values);
        EXPECT_EQ(complex_elements(sparse(again_rows, again_cols, again_values, entries.rows, entries.cols)), entries.model);
    }
}

TEST_F(Sparse, FindCountsColumnsThroughFurtherDimensions)
{
    int const dims[] = {2, 2, 2};
    M<double> cube(0, 0, 0, 3, dims);
    std::fill_n(cube.addr(), 8, 0.0);
    cube.addr()[5] = 7;
    M<double> rows, cols, values;
    EXPECT_EQ(find(cube, i_o, rows, cols, values)[1], 2);
    EXPECT_EQ((Numbers{rows[1], cols[1], values[1]}), (Numbers{2, 3, 7}));
    EXPECT_EQ(find(cube)[1], 6);
}

TEST_F(Sparse, FindOnSeveralThreads)
{
    for (bool const complex : {false, true})
        for (int const every : {1, 3, 1000, 400001}) {
            M<double> x(complex, 400, 1000);
            Numbers expected;
            for (int k = 0; k < x.size(); ++k) {
                bool const set = k % every == every - 1;
                x.addr()[k] = set && !complex ? k : 0;
                if (complex)
                    x.addi()[k] = set;
                if (set && (complex || k > 0))
                    expected.push_back(k + 1);
            }
            EXPECT_EQ(elements(find(x)), expected) << every;
            M<double> found, cols;
            find(x, i_o, found, cols);
            for (std::size_t k = 0; k < expected.size(); ++k)
                ASSERT_EQ(found.addr()[k] + 400 * (cols.addr()[k] - 1), expected[k]);
        }
}

TEST_F(Sparse, DrawsTheEntriesAskedFor)
{
    for (double const density : {-1.0, 0.0, 0.03, 0.5, 0.97, 1.0, 2.0}) {
        M<double> const uniform = sprand(30, 40, density), normal = sprandn(30, 40, density);
        expect_normal(uniform);
        EXPECT_EQ(uniform.getnnz(), std::lround(1200 * std::clamp(density, 0.0, 1.0)));
        EXPECT_EQ(normal.getnnz(), uniform.getnnz());
        EXPECT_TRUE(std::all_of(uniform.spaddr(), uniform.spaddr() + uniform.getnnz(), [](double value) { return value >= 0 && value < 1; }));
    }
    M<double> const pattern = sprand(row({0, 5, 0, 6}));
    EXPECT_EQ(elements(find(pattern)), (Numbers{2, 4}));
}

int allocations_left;

TEST_F(Sparse, SurvivesAHeapThatFails)
{
    RandomEntries const entries(random, 3000, true);
    M<double> const i = row(entries.i), j = row(entries.j), s = row(entries.re, entries.im), built = sparse(i, j, s, 60, 60), dense = full(built);
    M<double> unsorted(1, 3000, 60, 60), repeated = unsorted;
    unsorted.getindex()[0] = 1;
    std::function<bool()> const calls[] = {
        [&] { return sparse(i, j, s).size() > 0; },
        [&] { return full(built).size() > 0; },
        [&] { return sparse(dense).size() > 0; },
        [&] { return find(built).size() > 0; },
        [&] {
            M<double> rows, cols, values;
            return find(built, i_o, rows, cols, values).size() > 0;
        },
        [&] { return nonzeros(dense).size() > 0; },
        [&] { return sp2coo(built).size() > 0; },
        [&] { return spones(built).size() > 0; },
        [&] { return sprand(60, 60, 0.7).size() > 0; },
        [&] { return index_of(built.Jc()) && index_of(built.Ir()); },
        [&] {
            M<double> value = unsorted;
            value.sort();
            return value.getindex()[0] == 0;
        },
        [&] {
            M<double> value = repeated;
            value.resparse();
            return value.getnnz() == 0;
        },
    };
    for (auto const& call : calls) {
        SCOPED_TRACE(&call - calls);
        bool done = false;
        for (int allowed = 0; !done && allowed < 40; ++allowed) {
            reported.clear();
            allocations_left = allowed;
            arrlib::platform::set_heap([](std::size_t size) { return allocations_left-- > 0 ? std::malloc(size) : nullptr; }, std::free);
            done = call();
            arrlib::platform::set_heap(nullptr, nullptr);
            EXPECT_EQ(done, reported.empty());
        }
        EXPECT_TRUE(done);
    }
}

// Positions that spread unevenly lead the guesses of a search astray; what it finds must not change.
TEST_F(Sparse, SearchFindsEveryEntryHoweverTheySpread)
{
    struct Spread {
        char const* what;
        int (*position)(int k);
    } const spreads[] = {
        {"even", [](int k) { return 3 * k; }},
        {"squares", [](int k) { return k * k; }},
        {"two clusters", [](int k) { return k < 1000 ? k : 30000000 + k; }},
        {"one far away", [](int k) { return k < 1999 ? 2 * k : 39000000; }},
    };
    int const entries = 2000;
    for (Spread const& spread : spreads) {
        SCOPED_TRACE(spread.what);
        M<double> s(0, entries, 40000000, 1);
        for (int k = 0; k < entries; ++k) {
            s.spaddr()[k] = k + 1;
            s.getindex()[k] = spread.position(k);
        }
        for (int k = 0; k < entries; ++k) {
            int const at = spread.position(k);
            ASSERT_EQ(s.search(at), k);
            if (k + 1 < entries && spread.position(k + 1) > at + 1) {
                ASSERT_EQ(s.search(at + 1), -1);
            }
        }
        EXPECT_EQ(s.search(39999999), -1);
    }
}

} // namespace
