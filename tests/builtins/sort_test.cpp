#include "builtins/sort.h"
#include "builtins/sort_keys.h"
#include "core/reshape.h"
#include "core/sparse.h"
#include "ops/operators.h"
#include "runtime/constants.h"
#include "runtime/workers.h"
#include "support/values.h"

#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

using namespace values;

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();

bool comes_before(double a, double b)
{
    return a < b || (a == a && b != b);
}

// Numbers of one kind: what makes sorting by digits go wrong differs.
Numbers random_numbers(int kind, int count, std::mt19937_64& random)
{
    std::normal_distribution<> normal;
    Numbers made(static_cast<std::size_t>(count));
    for (double& x : made) {
        switch (kind) {
        case 0:
            x = normal(random);
            break;
        case 1: // many equal ones, zeros of both signs, NaN of both signs
            x = static_cast<double>(random() % 9) - 4;
            x = x == 3 ? missing : x == 4 ? -missing : x == 0 && random() % 2 ? -0.0 : x;
            break;
        case 2: // the same leading bits but for one
            x = random() % 1000 ? 1 + static_cast<double>(random() % 100000) * 2.220446049250313e-16 : -1e300;
            break;
        default: // all magnitudes
            x = std::bit_cast<double>(random());
            break;
        }
    }
    return made;
}

// Order and places of a stable sort, by the standard library.
std::vector<int> expected_places(Numbers const& x)
{
    std::vector<int> places(x.size());
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&](int a, int b) { return comes_before(x[static_cast<std::size_t>(a)], x[static_cast<std::size_t>(b)]); });
    return places;
}

// The same number, or both NaN; zeros by their signs.
bool is_same(double a, double b)
{
    return a != a ? b != b : a == b && std::signbit(a) == std::signbit(b);
}

void expect_stable(Numbers const& x, std::string const& what)
{
    M<double> y, i;
    M<double> const column = values::column(x);
    sort(column, i_o, y, i);
    M<double> const alone = sort(column);
    std::vector<int> const places = expected_places(x);
    for (std::size_t k = 0; k < x.size(); ++k) {
        double const expected = x[static_cast<std::size_t>(places[k])];
        bool const right = i.addr()[k] == places[k] + 1 && is_same(y.addr()[k], expected) && is_same(alone.addr()[k], expected);
        ASSERT_TRUE(right) << what << ", place " << k + 1;
    }
}

template <class Value> std::string places(Value const& x)
{
    Value y;
    M<double> i;
    sort(x, i_o, y, i);
    return shown(i);
}

std::string rows_places(M<double> const& A, M<double> const& cols)
{
    M<double> B, i;
    sortrows(A, cols, i_o, B, i);
    return shown(i);
}

} // namespace

TEST(Sort, KeysHaveTheOrderOfTheNumbers)
{
    Numbers const rising{-infinity, -1e300, -1, -5e-324, 0, 5e-324, 1, 1e300, infinity, missing};
    for (std::size_t k = 1; k < rising.size(); ++k)
        EXPECT_LT(arrlib::order_key(rising[k - 1]), arrlib::order_key(rising[k]));
    EXPECT_EQ(arrlib::order_key(-0.0), arrlib::zero_key);
    EXPECT_EQ(arrlib::order_key(-missing), arrlib::nan_key);
    for (double x : {-infinity, -1e300, -2.5, 5e-324, 3.0})
        EXPECT_EQ(arrlib::number_of_key(arrlib::order_key(x)), x);
}

// Lengths on both sides of every change of method, and of sharing between threads.
TEST(Sort, AgreesWithAStableSortByComparison)
{
    std::mt19937_64 random(1);
    for (int threads : {1, 4}) {
        int const before = arrlib::set_parallel_limit(threads);
        for (int kind = 0; kind < 4; ++kind)
            for (int count : {1, 2, 16, 17, 256, 257, 8191, 9000, 300000})
                expect_stable(random_numbers(kind, count, random), "kind " + std::to_string(kind) + ", " + std::to_string(count));
        arrlib::set_parallel_limit(before);
    }
}

TEST(Sort, SortedInputStaysAsItIs)
{
    Numbers steps(200000);
    for (std::size_t k = 0; k < steps.size(); ++k)
        steps[k] = static_cast<double>(k / 3);
    expect_stable(steps, "rising");
    std::reverse(steps.begin(), steps.end());
    expect_stable(steps, "falling in steps");
    std::rotate(steps.begin(), steps.begin() + 1000, steps.end());
    expect_stable(steps, "two runs");
}

TEST(Sort, AlongEveryDimension)
{
    std::mt19937_64 random(2);
    for (std::vector<int> const& dims : {std::vector<int>{3, 4}, {1, 7}, {4, 3, 5, 2}, {2, 1, 40}, {12, 13, 11}, {300, 17, 20}, {11, 20000}})
        for (int dim = 1; dim <= static_cast<int>(dims.size()); ++dim) {
            int const total = std::accumulate(dims.begin(), dims.end(), 1, std::multiplies<>());
            M<double> const x = nd(dims, random_numbers(1, total, random));
            M<double> y, i;
            M<double> const alone = sort(x, dim);
            sort(x, dim, i_o, y, i);
            int stride = 1;
            for (int d = 0; d < dim - 1; ++d)
                stride *= dims[static_cast<std::size_t>(d)];
            int const length = dims[static_cast<std::size_t>(dim - 1)];
            for (int start = 0; start < total; ++start) {
                if (start / stride % length != 0)
                    continue;
                Numbers line;
                for (int k = 0; k < length; ++k)
                    line.push_back(x.addr()[start + k * stride]);
                std::vector<int> const places = expected_places(line);
                for (int k = 0; k < length; ++k) {
                    int const at = start + k * stride, place = places[static_cast<std::size_t>(k)];
                    ASSERT_TRUE(i.addr()[at] == place + 1 && is_same(y.addr()[at], line[static_cast<std::size_t>(place)]) && is_same(alone.addr()[at], y.addr()[at])) << dim;
                }
            }
        }
}

TEST(Sort, KindsOfValues)
{
    M<double> const z = row({3, -1, 1, 0, 2, missing}, {4, 0, 0, -1, 0, 0});
    expect_all({
        {shown(sort(row({3, missing, 1, 3}))), "1x4: 1 3 3 NaN"},
        {places(row({3, missing, 1, 3})), "1x4: 3 1 4 2"},
        {shown(sort(M<double>())), "0x0:"},
        {places(M<double>()), "0x0:"},
        {shown(sort(M<double>(), 7)), "0x0:"},
        {shown(sort(5, 2)), "1x1: 5"},
        {shown(sort(rows_of({{3, 1}, {2, 4}}), nop_M)), "2x2: 2 3 1 4"},
        {shown(sort(text("hello"))), "'ehllo'"},
        {shown(sort(row({2, 1}) > 1)), "1x2: 0 1"},
        // Moduli 5, 1, 1, 1, 2: those of 1 by their angles pi, 0 and -pi/2.
        {shown(sort(z), 3), "1x6: 0-1i 1+0i -1+0i 2+0i 3+4i NaN+0i"},
        {places(z), "1x6: 4 3 2 5 1 6"},
        {shown(sort(matrix(2, 2, {1, 0, 2, 0}, {0, 2, 0, 1}), 2)), "2x2: 1+0i 0+1i 2+0i 0+2i"},
        {places(row({-1, -1}, {-0.0, 0.0})), "1x2: 1 2"},
        {shown(sort(cells(2, 2, {text("b"), text("ab"), text("a"), text("")}))), "2x2 cell: text 0x0: | 'a' | 'ab' | 'b'"},
        {places(cells(1, 3, {text("b"), text("a"), text("b")})), "1x3: 2 1 3"},
        {shown(sort(M<M<double>>())), "0x0 cell:"},
    });
}

TEST(Sort, SparseColumnsStaySparse)
{
    std::mt19937_64 random(3);
    M<double> x = rows_of({{0, -2, 0}, {5, 0, 0}, {-1, missing, 0}, {0, -3, 0}});
    M<double> y, i, full_y, full_i;
    sort(sparse(x), i_o, y, i);
    EXPECT_EQ(shown(y), "sparse 4x3: (1,1)=-1 (4,1)=5 (1,2)=-3 (2,2)=-2 (4,2)=NaN");
    EXPECT_EQ(shown(i), "4x3: 3 1 4 2 4 1 2 3 1 2 3 4");
    for (int dim : {1, 2})
        for (bool complex : {false, true}) {
            // Sparse values know no negative zeros.
            M<double> const entries = sparse(matrix(20, 30, random_numbers(1, 600, random), complex ? random_numbers(1, 600, random) : Numbers()));
            sort(entries, dim, i_o, y, i);
            sort(full(entries), dim, i_o, full_y, full_i);
            EXPECT_TRUE(y.issparse());
            EXPECT_EQ(shown(full(y)), shown(full_y)) << dim << complex;
            EXPECT_EQ(shown(i), shown(full_i)) << dim << complex;
        }
}

TEST(SortRows, ByTheColumnsListed)
{
    M<double> const A = rows_of({{2, 1, 5}, {1, missing, 4}, {2, 1, 3}, {1, 7, 4}});
    M<double> const z = matrix(3, 1, {2, 0, 1}, {0, 1, 0});
    expect_all({
        {shown(sortrows(A)), "4x3: 1 1 2 2 7 NaN 1 1 4 4 3 5"},
        {rows_places(A, nop_M), "4x1: 4 2 3 1"},
        {rows_places(A, 1), "4x1: 2 4 1 3"},
        {rows_places(A, -1), "4x1: 1 3 2 4"},
        {rows_places(A, row({-2, 3})), "4x1: 2 4 3 1"},
        {rows_places(A, row({1, -3})), "4x1: 2 4 1 3"},
        {rows_places(z, nop_M), "3x1: 3 2 1"},
        {rows_places(z, -1), "3x1: 1 2 3"},
        {rows_places(row({3, 1}), nop_M), "1x1: 1"},
        {shown(sortrows(lines({"bc", "ab", "aa"}))), "'aa'/'ab'/'bc'"},
        {shown(sortrows(sparse(A), 3)), shown(sortrows(A, 3))},
        {shown(sortrows(M<double>())), "0x0:"},
        {shown(sortrows(cells(3, 1, {text("b"), text("ba"), text("a")}))), "3x1 cell: 'a' | 'b' | 'ba'"},
        {shown(sortrows(cells(3, 1, {text("b"), text("ba"), text("a")}), -1)), "3x1 cell: 'ba' | 'b' | 'a'"},
    });
}

TEST(Lookup, LastEntryThatIsNotLarger)
{
    M<double> const table = row({1, 2, 2, 4});
    expect_all({
        {shown(lookup(table, rows_of({{0, 1, 2}, {3, 4, missing}}))), "2x3: 0 3 1 4 3 0"},
        {shown(lookup(table, infinity)), "1x1: 4"},
        {shown(lookup(row({1, missing}), 5)), "1x1: 1"},
        {shown(lookup(M<double>(), row({1, 2}))), "1x2: 0 0"},
        {shown(lookup(table, M<double>())), "0x0:"},
    });
}

TEST(Sort, SaysWhatIsWrong)
{
    M<double> const A = rows_of({{1, 2}, {3, 4}}), page = nd({2, 2, 2}, Numbers(8)), z = row({1}, {1});
    M<M<double>> const numbers = cells(1, 2, {1, text("a")});
    M<double> y, i;
    M<M<double>> c;
    expect_all({
        {reported_by([&] { sort(A, -1); }), "sort: dim argument must be positive"},
        {reported_by([&] { sort(A, 3, i_o, y, i); }), "sort: dim argument may not be more then the number of dimensions"},
        {reported_by([&] { sort(numbers, i_o, c, i); }), "sort: argument must be a cell array of strings"},
        {reported_by([&] { sortrows(page); }), "sortrows: matrix must be two-dimensional"},
        {reported_by([&] { sortrows(A, 3); }), "sortrows: column out of range"},
        {reported_by([&] { sortrows(A, row({1, 0})); }), "sortrows: column out of range"},
        {reported_by([&] { sortrows(A, row({-3, missing}), i_o, y, i); }), "sortrows: column out of range"},
        {reported_by([&] { sortrows(cells(2, 2, {text("a"), text("b"), text("a"), text("b")})); }), "sortrows: cell array must have one column"},
        {reported_by([&] { sortrows(cells(1, 1, {5}), i_o, c, i); }), "sortrows: argument must be a cell array of strings"},
        {reported_by([&] { lookup(A, 1); }), "lookup: argument must be a vector"},
        {reported_by([&] { lookup(row({1, 2}), z); }), "lookup: argument must be real"},
    });
    // Every output is without a value then.
    y = i = A;
    EXPECT_EQ(reported_by([&] { EXPECT_EQ(sort(A, 3, i_o, y, i).size(), 0); }).empty(), false);
    EXPECT_EQ(y.size() + i.size(), 0);
}

TEST(Sort, InputsMayBeOutputs)
{
    M<double> A = row({3, 1, 2}), i;
    sort(A, i_o, A, i);
    EXPECT_EQ(shown(A) + shown(i), "1x3: 1 2 31x3: 2 3 1");
    M<double> const shared = row({2, 1});
    M<double> const copy = shared;
    sort(shared);
    EXPECT_EQ(shown(copy), "1x2: 2 1");
}

// Cell arrays are left out: without memory for one the process ends.
TEST(Sort, EveryAllocationMayFail)
{
    M<double> const A = rows_of({{2, 1}, {1, 1}, {2, 0}}), z = matrix(2, 2, {1, 2, 3, 4}, {1, 0, 1, 0}), s = sparse(A), two = 2;
    std::mt19937_64 random(4);
    M<double> const large = column(random_numbers(0, 300, random));
    capture::with_every_allocation_refused([&] {
        M<double> y, i;
        sort(large, i_o, y, i);
    });
    capture::with_every_allocation_refused([&] { sort(A, two); });
    capture::with_every_allocation_refused([&] { sort(z); });
    capture::with_every_allocation_refused([&] {
        M<double> y, i;
        sort(s, two, i_o, y, i);
    });
    capture::with_every_allocation_refused([&] {
        M<double> B, i;
        sortrows(A, two, i_o, B, i);
    });
    capture::with_every_allocation_refused([&] { lookup(large, s); });
}
