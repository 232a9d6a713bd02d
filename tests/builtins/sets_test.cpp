#include "builtins/sets.h"
#include "core/sparse.h"
#include "runtime/constants.h"
#include "support/values.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <tuple>

using namespace values;

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

// All outputs in one text.
template <class Value> std::string unique_of(Value const& A)
{
    Value b;
    M<double> i, j;
    unique(A, i_o, b, i, j);
    return shown(b) + "; " + shown(i) + "; " + shown(j);
}
std::string unique_rows(M<double> const& A)
{
    M<double> b, i, j;
    unique(A, text("rows"), i_o, b, i, j);
    return shown(b) + "; " + shown(i) + "; " + shown(j);
}

template <class T> using SetFunction = M<T> (*)(M<T> const&, M<T> const&, i_o_t, Mr<T>, Mr<double>, Mr<double>);

template <class T> std::string of_two(SetFunction<T> function, M<T> const& A, M<T> const& B)
{
    M<T> c;
    M<double> ia, ib;
    function(A, B, i_o, c, ia, ib);
    return shown(c) + "; " + shown(ia) + "; " + shown(ib);
}
template <class Value> std::string difference(Value const& A, Value const& B)
{
    Value c;
    M<double> ia;
    setdiff(A, B, i_o, c, ia);
    return shown(c) + "; " + shown(ia);
}
template <class A, class S> std::string membership(A const& a, S const& s)
{
    M<double> tf, k;
    ismember(a, s, i_o, tf, k);
    EXPECT_EQ(shown(ismember(a, s)), shown(tf));
    return shown(tf) + "; " + shown(k);
}

Numbers few_values(int count, int different, std::mt19937& random)
{
    Numbers made(static_cast<std::size_t>(count));
    for (double& x : made) {
        x = static_cast<double>(random() % static_cast<unsigned>(different)) / 4 - 1;
        x = x == 0 && random() % 2 ? -0.0 : x == 0.5 ? missing : x;
    }
    return made;
}

bool holds(Numbers const& set, double x)
{
    return std::find(set.begin(), set.end(), x) != set.end();
}

// Sorted, each number once, each NaN for itself, of those that a test lets through.
Numbers model(Numbers all, std::function<bool(double)> const& wanted)
{
    std::sort(all.begin(), all.end(), [](double a, double b) { return a < b || (a == a && b != b); });
    all.erase(std::unique(all.begin(), all.end()), all.end());
    all.erase(std::remove_if(all.begin(), all.end(), [&](double x) { return !wanted(x); }), all.end());
    return all;
}

// Whether the positions, of A and of B, lead to what was found.
bool leads_back(Numbers const& found, Numbers const& A, Numbers const& ia, Numbers const& B, Numbers const& ib)
{
    Numbers all;
    for (double k : ia)
        all.push_back(A[static_cast<std::size_t>(k) - 1]);
    for (double k : ib)
        all.push_back(B[static_cast<std::size_t>(k) - 1]);
    Numbers const again = model(all, [](double) { return true; });
    return again.size() == found.size() && all.size() == found.size() && std::equal(again.begin(), again.end(), found.begin(), [](double a, double b) { return a == b || a != a; });
}

} // namespace

TEST(Unique, LastOfEqualOnes)
{
    expect_all({
        {unique_of(row({3, 1, 3})), "1x2: 1 3; 1x2: 2 3; 1x3: 2 1 2"},
        {unique_of(column({missing, 2, missing, -0.0, 0})), "4x1: 0 2 NaN NaN; 4x1: 5 2 1 3; 5x1: 3 2 4 1 1"},
        {unique_of(rows_of({{2, 1}, {1, 2}})), "2x1: 1 2; 2x1: 3 4; 4x1: 2 1 1 2"},
        {unique_of(M<double>(7)), "1x1: 7; 1x1: 1; 1x1: 1"},
        {unique_of(M<double>()), "0x0:; 0x0:; 0x0:"},
        {unique_of(text("banana")), "'abn'; 1x3: 6 1 5; 1x6: 2 1 3 1 3 1"},
        {unique_of(nd({1, 2, 2}, {4, 3, 4, 3})), "2x1: 3 4; 2x1: 4 3; 4x1: 2 1 2 1"},
        {unique_of(row({2, 0, 2, 0, 0}, {0, 1, 0, -1, 1})), "1x3: 0-1i 0+1i 2+0i; 1x3: 4 5 3; 1x5: 3 2 3 1 2"},
        {unique_of(row({-1, -1}, {-0.0, 0.0})), "1x1: -1+0i; 1x1: 2; 1x2: 1 1"},
        {shown(unique(row({2, 1, missing, 2, missing}))), "1x4: 1 2 NaN NaN"},
        {shown(unique(sparse(rows_of({{0, 5}, {5, 0}})))), "2x1: 0 5"},
        {unique_of(cells(1, 4, {text("b"), text(""), text("ab"), text("b")})), "3x1 cell: text 0x0: | 'ab' | 'b'; 3x1: 2 3 4; 4x1: 3 1 2 3"},
        {unique_rows(rows_of({{2, 1}, {1, 9}, {2, 1}})), "2x2: 1 2 9 1; 2x1: 2 3; 3x1: 2 1 2"},
        {unique_rows(rows_of({{missing, 2}, {missing, 1}, {missing, 2}})), "3x2: NaN NaN NaN 1 2 2; 3x1: 2 1 3; 3x1: 2 1 3"},
        {unique_rows(lines({"ab", "aa", "ab"})), "'aa'/'ab'; 2x1: 2 3; 3x1: 2 1 2"},
        {unique_rows(matrix(2, 2, {1, 1, 2, 2}, {0, 0, 1, 1})), "1x2: 1+0i 2+1i; 1x1: 2; 2x1: 1 1"},
        {shown(unique(M<double>(), text("ROWS"))), "0x0:"},
        {shown(unique(row({2, 2}), nop_M)), "1x1: 2"},
    });
}

TEST(Sets, ShapesAndKinds)
{
    M<double> const a = row({5, 1, 1, 3}), b = row({3, 4, 1});
    M<M<double>> const words = cells(1, 3, {text("x"), text("y"), text("x")}), word = cells(1, 1, {text("y")});
    expect_all({
        {of_two<double>(unionM, a, b), "1x4: 1 3 4 5; 1x1: 1; 1x3: 3 1 2"},
        {of_two<double>(intersect, a, b), "1x2: 1 3; 1x2: 3 4; 1x2: 3 1"},
        {of_two<double>(setxor, a, b), "1x2: 4 5; 1x1: 1; 1x1: 2"},
        {difference(a, b), "1x1: 5; 1x1: 1"},
        {difference(b, a), "1x1: 4; 1x1: 2"},
        {shown(unionM(a, column({9}))), "1x4: 1 3 5 9"},
        {shown(unionM(a, column({9, 8}))), "5x1: 1 3 5 8 9"},
        {shown(unionM(column({2, 1}), M<double>())), "2x1: 1 2"},
        {shown(unionM(M<double>(), row({2, 1}))), "1x2: 1 2"},
        {shown(unionM(M<double>(), M<double>())), "0x0:"},
        {shown(intersect(a, M<double>())), "0x0:"},
        {shown(setdiff(row({1, missing, missing}), row({missing}))), "1x3: 1 NaN NaN"},
        {shown(unionM(missing, missing)), "1x2: NaN NaN"},
        {shown(intersect(missing, missing)), "0x0:"},
        {shown(unionM(text("ab"), row({98, 99}))), "'abc'"},
        {shown(setdiff(row({97, 98}), text("a"))), "1x1: 98"},
        {shown(intersect(text("ab"), text("cd"))), "text 0x0:"},
        {shown(setxor(row({1, 2}, {1, 0}), row({2, 3}))), "1x2: 1+1i 3+0i"},
        {shown(intersect(sparse(row({0, 7})), row({7, 0}))), "1x2: 0 7"},
        {of_two<M<double>>(unionM, words, word), "1x2 cell: 'x' | 'y'; 1x1: 3; 1x1: 1"},
        {of_two<M<double>>(intersect, words, word), "1x1 cell: 'y'; 1x1: 2; 1x1: 1"},
        {of_two<M<double>>(setxor, words, word), "1x1 cell: 'x'; 1x1: 3; 0x0:"},
        {difference(words, word), "1x1 cell: 'x'; 1x1: 3"},
        {shown(setdiff(words, cells(2, 1, {text("y"), text("z")}))), "1x1 cell: 'x'"},
        {shown(unionM(words, text("w"))), "1x3 cell: 'w' | 'x' | 'y'"},
    });
}

TEST(Sets, Rows)
{
    M<double> const A = rows_of({{1, 2}, {3, 4}, {1, 2}}), B = rows_of({{3, 4}, {0, 9}}), rows = text("rows");
    M<double> c, ia, ib;
    intersect(A, B, rows, i_o, c, ia, ib);
    EXPECT_EQ(shown(c) + shown(ia) + shown(ib), "1x2: 3 41x1: 21x1: 1");
    unionM(A, B, rows, i_o, c, ia, ib);
    EXPECT_EQ(shown(c) + shown(ia) + shown(ib), "3x2: 0 1 3 9 2 41x1: 32x1: 2 1");
    expect_all({
        {shown(setdiff(A, B, rows)), "1x2: 1 2"},
        {shown(setxor(A, B, rows)), "2x2: 0 1 9 2"},
        {shown(setdiff(A, M<double>(), rows)), "2x2: 1 3 2 4"},
        {shown(ismember(A, B, rows)), "logical 3x1: 0 1 0"},
        {shown(ismember(A, M<double>(), rows)), "logical 3x1: 0 0 0"},
        {shown(ismember(rows_of({{missing, 1}}), rows_of({{missing, 1}}), rows)), "logical 1x1: 0"},
    });
}

// Sizes on both sides of what decides how members are looked for.
TEST(Sets, AgreeWithANaiveModel)
{
    std::mt19937 random(1);
    for (auto const& [na, nb, different] : {std::tuple(0, 5, 9), {7, 5, 9}, {60, 90, 200}, {1003, 9, 40}, {3, 40000, 30}, {1000, 40000, 90000}, {5000, 40000, 90000}, {40000, 200, 500}}) {
        Numbers const a = few_values(na, different, random), b = few_values(nb, different, random);
        M<double> const A = row(a), B = row(b);
        Numbers both = a;
        both.insert(both.end(), b.begin(), b.end());
        bool const small = na + nb < 1000;
        if (small) {
            M<double> c, ia, ib;
            struct {
                SetFunction<double> function;
                std::function<bool(double)> wanted;
            } const table[] = {{unionM, [](double) { return true; }}, {setxor, [&](double x) { return holds(a, x) != holds(b, x) || x != x; }}};
            for (auto const& [function, wanted] : table) {
                function(A, B, i_o, c, ia, ib);
                Numbers const expected = model(both, wanted);
                EXPECT_EQ(shown(c), shown(row(expected)));
                EXPECT_TRUE(leads_back(expected, a, numbers(ia), b, numbers(ib)));
            }
            setdiff(A, B, i_o, c, ia);
            EXPECT_EQ(shown(c), shown(row(model(a, [&](double x) { return !holds(b, x); }))));
            EXPECT_TRUE(leads_back(numbers(c), a, numbers(ia), {}, {}));
            intersect(A, B, i_o, c, ia, ib);
            EXPECT_EQ(shown(c), shown(row(model(a, [&](double x) { return holds(b, x); }))));
            EXPECT_TRUE(leads_back(numbers(c), a, numbers(ia), {}, {}) && leads_back(numbers(c), {}, {}, b, numbers(ib)));
        }
        M<double> tf, k, b1, i1, j1;
        ismember(A, B, i_o, tf, k);
        EXPECT_EQ(shown(ismember(A, B)), shown(tf));
        std::map<double, double> first;
        for (std::size_t p = b.size(); p > 0; --p)
            if (b[p - 1] == b[p - 1])
                first[b[p - 1]] = static_cast<double>(p);
        unique(A, i_o, b1, i1, j1);
        EXPECT_EQ(shown(unique(A)), shown(b1));
        for (int p = 0; p < na; ++p) {
            double const x = A.addr()[p], found = x == x && first.count(x) ? first[x] : 0;
            ASSERT_TRUE(k.addr()[p] == found && tf.addr()[p] == (found > 0)) << p << " of " << na << " in " << nb;
            int const class_of = static_cast<int>(j1.addr()[p]) - 1, last = static_cast<int>(i1.addr()[class_of]) - 1;
            ASSERT_TRUE(x != x ? last == p : b1.addr()[class_of] == x && A.addr()[last] == x && last >= p) << p;
        }
    }
}

TEST(IsMember, ShapesAndKinds)
{
    M<M<double>> const words = cells(2, 2, {text("ab"), text(""), text("c"), text("ab")});
    expect_all({
        {membership(rows_of({{1, 2}, {3, missing}}), row({3, 1, 3, missing})), "logical 2x2: 1 1 0 0; 2x2: 2 1 0 0"},
        {membership(M<double>(-0.0), row({5, 0})), "logical 1x1: 1; 1x1: 2"},
        {membership(M<double>(), row({1})), "logical 0x0:; 0x0:"},
        {membership(row({1, 2}), M<double>()), "logical 1x2: 0 0; 1x2: 0 0"},
        {membership(text("hat"), text("th")), "logical 1x3: 1 0 1; 1x3: 2 0 1"},
        {membership(row({1, 1}, {1, 0}), row({1, 1}, {0, 1})), "logical 1x2: 1 1; 1x2: 2 1"},
        {membership(row({1, 1}, {1, 0}), M<double>(1)), "logical 1x2: 0 1; 1x2: 0 1"},
        {membership(sparse(row({0, 4})), row({4, 4})), "logical 1x2: 0 1; 1x2: 0 1"},
        {membership(text("ab"), words), "logical 1x1: 1; 1x1: 1"},
        {membership(text("a"), words), "logical 1x1: 0; 1x1: 0"},
        {membership(M<double>(), words), "logical 1x1: 1; 1x1: 2"},
        {membership(words, cells(1, 2, {text("c"), text("ab")})), "logical 2x2: 1 0 1 1; 2x2: 2 0 1 2"},
        {membership(words, M<M<double>>()), "logical 2x2: 0 0 0 0; 2x2: 0 0 0 0"},
    });
}

TEST(Sets, SayWhatIsWrong)
{
    M<double> A = rows_of({{1, 2}}), B = row({1, 2, 3}), page = nd({1, 2, 2}, Numbers(4)), rows = text("rows");
    A.setname("A");
    B.setname("B");
    M<M<double>> const numbers = cells(1, 1, {5}), two_lines = cells(1, 1, {lines({"a", "b"})});
    M<double> c, ia, ib;
    M<M<double>> d;
    expect_all({
        {reported_by([&] { unique(A, text("cols"), i_o, c, ia, ib); }), "unique: unknown option cols"},
        {reported_by([&] { unique(A, 1); }), "unique: argument must be a string"},
        {reported_by([&] { unique(page, rows); }), "unique: matrix must be two-dimensional"},
        {reported_by([&] { unique(two_lines, i_o, d, ia); }), "unique: argument must be a cell array of strings"},
        {reported_by([&] { unionM(A, B, rows, i_o, c, ia, ib); }), "union: sizes of A and B do not agree"},
        {reported_by([&] { intersect(A, B, rows); }), "intersect: sizes of A and B do not agree"},
        {reported_by([&] { setdiff(A, page, rows); }), "setdiff: matrix must be two-dimensional"},
        {reported_by([&] { setxor(numbers, numbers, i_o, d, ia, ib); }), "setxor: argument must be a cell array of strings"},
        {reported_by([&] { ismember(A, B, rows, i_o, c, ia); }), "ismember: sizes of A and B do not agree"},
        {reported_by([&] { ismember(A, d); }), "ismember: argument must be a string"},
        {reported_by([&] { ismember(lines({"a", "b"}), d); }), "ismember: argument must be a string"},
    });
    c = ia = ib = A;
    EXPECT_FALSE(reported_by([&] { unionM(A, B, rows, i_o, c, ia, ib); }).empty());
    EXPECT_EQ(c.size() + ia.size() + ib.size(), 0);
}

TEST(Sets, EveryAllocationMayFail)
{
    M<double> const a = row({3, 1, 3}), b = column({1, 2}), z = row({1}, {1});
    capture::with_every_allocation_refused([&] {
        M<double> u, i, j;
        unique(a, i_o, u, i, j);
    });
    capture::with_every_allocation_refused([&] { unique(a); });
    capture::with_every_allocation_refused([&] {
        M<double> c, ia, ib;
        unionM(a, b, i_o, c, ia, ib);
    });
    capture::with_every_allocation_refused([&] {
        M<double> tf, k;
        ismember(a, b, i_o, tf, k);
    });
    capture::with_every_allocation_refused([&] { ismember(a, z); });
}
