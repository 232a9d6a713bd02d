// Results that wait for the end of their statement: never to be told from those that do not.
#include "ops/chain.h"

#include "arrlib.h"
#include "support/capture.h"
#include "support/linear.h"
#include "support/values.h"

#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using values::column;
using values::shown;

namespace {

class LeastInChain {
public:
    explicit LeastInChain(int count) : before_(std::exchange(arrlib::least_in_chain, count)) {}
    ~LeastInChain() { arrlib::least_in_chain = before_; }
    LeastInChain(LeastInChain const&) = delete;
    LeastInChain& operator=(LeastInChain const&) = delete;

private:
    int before_;
};

bool same_bits(M<double> const& x, M<double> const& y)
{
    return x.size() == y.size() && x.isc() == y.isc() && x.islogical() == y.islogical() && x.isstr() == y.isstr() &&
           std::equal(x.getdims(), x.getdims() + 4, y.getdims()) && std::memcmp(x.addr(), y.addr(), sizeof(double) * static_cast<std::size_t>(x.size())) == 0;
}

// Elements of a value that was still waiting when it was handed over.
double first_after(M<double> const& waiting, std::function<void()> const& meanwhile)
{
    EXPECT_NE(arrlib::elements_due, nullptr);
    meanwhile();
    return waiting.r(1);
}

struct Expression {
    char const* name;
    std::function<M<double>(M<double> const& a, M<double> const& b, M<double> const& c)> of;
};

std::vector<Expression> const expressions = {
    {"one step", [](auto& a, auto& b, auto&) { return a + b; }},
    {"three steps", [](auto& a, auto& b, auto& c) { return dot_mul(a, b) + c - 2; }},
    {"a number first", [](auto& a, auto& b, auto& c) { return 3 - a * 2 + b / 4 - dot_div(1, c); }},
    {"1x1 values", [](auto& a, auto& b, auto&) { M<double> const h = 0.25; return a + h * b - h; }},
    {"the same operand twice", [](auto& a, auto&, auto&) { return dot_mul(a, a) - a + a; }},
    {"the result on the right", [](auto& a, auto& b, auto& c) { return c - (b - dot_div(a, c)); }},
    {"results on both sides", [](auto& a, auto& b, auto& c) { return dot_mul(a + b, c - a) + dot_mul(b - c, a + c); }},
    {"functions between", [](auto& a, auto& b, auto& c) { return sin(a * b[1] + c) + exp(-(a - b)); }},
    {"functions with a domain", [](auto& a, auto& b, auto& c) { return log(a - b) + msqrt(c - a); }},
    {"sums and transposes", [](auto& a, auto& b, auto& c) { return sum(a + b - c) + sum(transpose(transpose(a - c))); }},
    {"comparisons", [](auto& a, auto& b, auto& c) { return (a + b > c) + dot_mul(a < b, c); }},
    {"matrix products", [](auto& a, auto& b, auto& c) { return (a + b) * transpose(c - a) + 1; }},
    {"text and logicals", [](auto& a, auto& b, auto&) { M<double> t = a; t.setstr(1); return t + (a < b) + 1; }},
    {"complex", [](auto& a, auto& b, auto& c) { return dot_mul(a + b, complexM(b, c)) - a; }},
    {"sparse", [](auto& a, auto& b, auto& c) { return full(dot_mul(sparse(a), b - c)) + a; }},
    {"a temporary's storage", [](auto& a, auto& b, auto& c) { return sin(a) + b - std::move(M<double>(c)); }},
    {"longer than a chain", [](auto& a, auto& b, auto& c) { return a + b - c + a * 2 - b + 1 - c - a + b - 3 + c - a + 5 - b - c + a - 7 + b; }},
    {"brackets", [](auto& a, auto& b, auto& c) { M<double> x; x = (BR(a + b), a - c, semi, b - c, c + 1); return x; }},
    {"copies", [](auto& a, auto& b, auto& c) { return [](M<double> x) { M<double> const y = x; x.r(1) = 9; return x + y; }(a + b - c); }},
    {"subscripts", [](auto& a, auto& b, auto& c) { M<double> x = a; x(2) = (a + b)[3]; x(column({1, 2}), 1.0) = column({1, 2}) - 1; return x + c; }},
    {"shapes", [](auto& a, auto& b, auto& c) { return reshape(a + b, c.cols(), c.rows()) - transpose(c) + 1; }},
    {"in place", [](auto& a, auto& b, auto& c) { M<double> x = a; x = dot_mul(x, b) + x; x = c - x; return x; }},
};

// Classes of a program that are made from values, or refer to them: their operators stay clear of ours.
struct Series {
    M<double> values;
    Series(M<double> const& of) : values(of) {}
};
Series operator+(Series const& x, Series const&) { return x; }
struct Holder {
    M<double> value;
    operator M<double> const&() const { return value; }
};

} // namespace

TEST(Chain, LeavesOtherOperatorsAlone)
{
    M<double> a = column({1, 2}), b = column({3, 5});
    Holder const held{a};
    EXPECT_EQ(shown(a + b), "2x1: 4 7");
    EXPECT_EQ(shown(held + b), "2x1: 4 7");
    EXPECT_EQ(shown(b - held), "2x1: 2 3");
    EXPECT_EQ(shown(dot_mul(held, b)), "2x1: 3 10");
    EXPECT_EQ(shown(std::ref(a) + b), "2x1: 4 7");
    EXPECT_EQ(shown(a + std::ref(b)), "2x1: 4 7");
    EXPECT_EQ(shown(plus(a, {1.0})), "2x1: 2 3");
    EXPECT_EQ(shown((Series(a) + Series(b)).values), "2x1: 1 2");
}

TEST(Chain, GivesTheBitsOfOperationsOneByOne)
{
    for (auto const& [rows, cols] : {std::pair(2, 3), std::pair(2, 40007)}) {
        M<double> const a = linear::random(rows, cols), b = linear::random(rows, cols), c = linear::random(rows, cols);
        for (Expression const& one : expressions) {
            M<double> expected, found;
            {
                LeastInChain const none(INT_MAX);
                expected = one.of(a, b, c);
            }
            {
                LeastInChain const all(2);
                found = one.of(a, b, c);
            }
            EXPECT_TRUE(same_bits(expected, found)) << one.name << " of " << rows << "x" << cols;
            EXPECT_EQ(arrlib::elements_due, nullptr) << one.name;
        }
    }
}

TEST(Chain, IsComputedFromOperandsAsTheyWere)
{
    LeastInChain const all(2);
    M<double> a = column({1, 2, 3}), b = column({10, 20, 30}), x;
    EXPECT_EQ(first_after(a + b, [&] { a.r(1) = 100; }), 11);
    EXPECT_EQ(first_after(a + b, [&] { a(1) = 7; }), 110);
    EXPECT_EQ(first_after(a + b, [&] { a = b; }), 17);
    EXPECT_EQ(first_after(a - b, [&] { b = M<double>(); }), 0);
    b = column({1, 2, 3});
    // A second result in the statement, a copy, and a thread that may come.
    EXPECT_EQ(first_after(a - b, [&] { x = b + b; }), 9);
    EXPECT_EQ(shown(x), "3x1: 2 4 6");
    EXPECT_EQ(first_after(a - b, [] { nx_set_MT(1); }), 9);
    M<double> const while_threaded = a + b;
    nx_set_MT(0);
    EXPECT_EQ(shown(while_threaded), "3x1: 11 22 33");
    // A thread that looks at a value of its own.
    M<double> const other = column({1, 2});
    EXPECT_EQ(first_after(a - b, [&] { std::thread([&] { EXPECT_EQ(other.r(2), 2); }).join(); }), 9);
    // Seen through every way to an element.
    EXPECT_EQ((a + b)[2], 22);
    EXPECT_EQ((a + b).r(2), 22);
    EXPECT_EQ((a + b).r(2, 1), 22);
    EXPECT_EQ(*(a + b).addr(2), 22);
    EXPECT_EQ(*(a + b).addr(3, 1), 33);
    EXPECT_EQ((a + b).addr()[0], 11);
}

TEST(Chain, LeavesNothingBehind)
{
    LeastInChain const all(2);
    M<double> const a = column({1, 2, 3}), b = column({10, 20, 30});
    std::int64_t const before = arrlib::pool.outstanding();
    auto const is_clean = [&] { return !arrlib::elements_due && !a.dirty() && !b.dirty() && arrlib::pool.outstanding() == before; };
    // Full, but with room for positions.
    for (int k = 0; k < 2; ++k) {
        M<double> was_sparse = column({1, 2, 3});
        was_sparse.getsparse(1);
        was_sparse.setsparse(0);
        static_cast<void>(k == 0 ? b + std::move(was_sparse) : was_sparse + b);
    }
    EXPECT_TRUE(is_clean());
    // Nobody asks for the elements.
    static_cast<void>(dot_mul(a, b) - 1);
    EXPECT_TRUE(is_clean());
    // The statement is left on the way.
    EXPECT_EQ(capture::thrown_by([&] { static_cast<void>((a + b) + column({1, 2})); }), "Error: +: wrong dimensions of: (temporary), (temporary)\n\n");
    EXPECT_TRUE(is_clean());
    for (int refused = 1; refused < 4; ++refused) {
        capture::Reports const reports;
        {
            capture::FailingHeap const heap(refused);
            static_cast<void>(dot_mul(a, b) + a - b * 2);
        }
        EXPECT_TRUE(is_clean()) << refused;
    }
}
