// The engine: shapes, the complex decision, sparse results, storage lent by temporaries and every
// message, over all operations.
#include "arrlib.h"
#include "ops/complex_rule.h"
#include "ops/engine.h"
#include "ops/op_table.h"
#include "runtime/workers.h"
#include "support/capture.h"
#include "support/shapes.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <set>
#include <string>

using namespace capture;
using arrlib::ComplexOperand;
using arrlib::Operation;

namespace {

M<double> applied(OpCode op, M<double> const& x, M<double> const& y)
{
    M<double> result;
    op_apply(result, x, y, nop_M, op, 0, l_M);
    return result;
}
M<double> along(OpCode op, M<double> const& x, M<double> const& dim, M<double>& index = l_M)
{
    M<double> result;
    op_apply(result, x, zero_M, dim, op, 1, index);
    return result;
}

M<double> row(std::initializer_list<double> elements)
{
    M<double> made(0, 1, static_cast<int>(elements.size()));
    std::copy(elements.begin(), elements.end(), made.addr());
    return made;
}

// Equal bits, but for NaN, which is one.
bool same(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a == 0 && b == 0);
}

// --- a model: element by element, through the kernels of the row ----------------------------------

struct Plain {
    int dims[4];
    std::vector<double> re, im;
    bool complex;

    explicit Plain(M<double> const& value) : complex(value.isc() != 0)
    {
        std::copy_n(value.getdims(), 4, dims);
        re.resize(static_cast<std::size_t>(value.size()));
        im.resize(re.size());
        for (int k = 0; k < value.getnnz(); ++k) {
            auto const at = static_cast<std::size_t>(value.issparse() ? value.getindex()[k] : k);
            re[at] = value.addr()[k];
            im[at] = value.isc() ? value.addi()[k] : 0;
        }
    }
};

bool any(Plain const& x, bool (*test)(double))
{
    return std::any_of(x.re.begin(), x.re.end(), test);
}

// The decision written out by name.
bool complex_expected(OpCode op, Plain const& x, Plain const& y)
{
    static std::set<std::string> const never = {"abs", "&", "|", "not", "xor", "angle", "atan2", "beta", "erf_1", "erf_2", "erfc", "erfcx", "erfinv", "gamma", "gammainc", "gammaln", "imag", "isfinite", "isinf", "isnan", "mod", "rem", "pow2_2", "<", "<=", ">", ">=", "eq", "!="};
    static std::set<std::string> const either = {"+", "-", ".*", "./", ".\\", "max_2", "min_2", "bitand", "bitor", "bitxor", "bitcmp", "bitget", "bitset", "bitreset", "bitshift", ".^"};
    std::string const name = op_name(op);
    if (never.count(name))
        return false;
    if (x.complex || (either.count(name) && y.complex))
        return true;
    if (name == "log" || name == "log10" || name == "log2" || name == "sqrt" || name == ".^")
        return any(x, [](double e) { return e < 0; });
    if (name == "acos" || name == "asin" || name == "atanh")
        return any(x, [](double e) { return e < -1 || e > 1; });
    if (name == "acoth" || name == "acsc" || name == "asec")
        return any(x, [](double e) { return e > -1 && e < 1; });
    if (name == "acosh")
        return any(x, [](double e) { return e < 1; });
    if (name == "asech")
        return any(x, [](double e) { return e < 0 || e > 1; });
    return false;
}

void check(OpCode op, M<double> const& x, M<double> const& y, M<double> const& got)
{
    SCOPED_TRACE(std::string(op_name(op)));
    Plain const a(x), b(y), z(got);
    bool const a_one = a.re.size() == 1, b_one = b.re.size() == 1;
    Plain const& like = b_one ? a : b;
    ASSERT_TRUE(std::equal(like.dims, like.dims + 4, z.dims));
    EXPECT_EQ(got.islogical() != 0, op_is_logical(op) != 0);
    EXPECT_FALSE(got.isstr());
    EXPECT_EQ(got.getname(), nullptr);
    bool const complex = complex_expected(op, a, b);
    arrlib::Kernels const& kernels = arrlib::find_operation(op)->kernels;
    bool nonzero_imaginary = false;
    for (std::size_t k = 0; k < like.re.size(); ++k) {
        std::size_t const p = a_one ? 0 : k, q = b_one ? 0 : k;
        double re = 0, im = 0;
        ComplexOperand const ax{&a.re[p], a.complex ? &a.im[p] : nullptr, 0}, bx{&b.re[q], b.complex ? &b.im[q] : nullptr, 0};
        if (complex)
            arrlib::complex_loop_of(op)(ax, bx, &re, &im, 1);
        else if ((a.complex || b.complex) && kernels.real_of_complex)
            kernels.real_of_complex(ax, bx, &re, &im, 1);
        else
            kernels.real({&a.re[p], 0}, {&b.re[q], 0}, &re, 1);
        nonzero_imaginary = nonzero_imaginary || im != 0;
        ASSERT_TRUE(same(z.re[k], re) && same(z.im[k], im)) << a.re[p] << "," << a.im[p] << "  " << b.re[q] << "," << b.im[q] << " gave " << z.re[k] << "," << z.im[k] << " not " << re << "," << im;
    }
    EXPECT_EQ(z.complex, op == op_power ? nonzero_imaginary : complex);
    for (int k = 0; got.issparse() && k < got.getnnz(); ++k) {
        EXPECT_TRUE(got.addr()[k] != 0 || (got.isc() && got.addi()[k] != 0));
        EXPECT_TRUE(k == 0 || got.getindex()[k] > got.getindex()[k - 1]);
    }
}

M<double> random_operand(shapes::Source& source, shapes::Sizes const& size)
{
    static double const special[] = {0, -0.0, 1, -1, 0.5, -2.5, 3, 1e300, -1e-310, HUGE_VAL, -HUGE_VAL, std::nan("")};
    M<double> made = source.value(source.kind(), size);
    for (int k = 0; k < made.getnnz(); ++k) {
        if (source.once_in(3) && !made.islogical())
            made.addr()[k] = special[source.below(12)];
        if (made.issparse() && made.addr()[k] == 0 && !made.isc())
            made.addr()[k] = 4;
    }
    return made;
}

TEST(Engine, AgreesWithItsKernelsOnAnyOperands)
{
    shapes::Source source;
    static shapes::Sizes const sizes[] = {{1, 1, 1, 1}, {1, 5, 1, 1}, {7, 1, 1, 1}, {3, 4, 1, 1}, {2, 3, 2, 1}, {2, 1, 1, 3}};
    Reports reports;
    for (int turn = 0; turn < 200; ++turn)
        for (int code = op_unwrap + 1; code < op_count; ++code) {
            auto const op = static_cast<OpCode>(code);
            shapes::Sizes const size = sizes[source.below(6)];
            M<double> const x = random_operand(source, source.once_in(4) ? sizes[0] : size), y = random_operand(source, source.once_in(4) ? sizes[0] : size);
            Plain const x_before(x), y_before(y);
            M<double> const got = applied(op, x, y);
            check(op, x, y, got);
            // Temporaries lend their storage; the result is the same.
            M<double> lent_x, lent_y;
            lent_x.deepcopy(x.isc(), x);
            lent_y.deepcopy(y.isc(), y);
            check(op, x, y, arrlib::apply(op, lent_x, lent_y, static_cast<arrlib::Temporaries>(source.below(4))));
            EXPECT_TRUE(std::equal(x_before.re.begin(), x_before.re.end(), Plain(x).re.begin(), same));
            EXPECT_TRUE(std::equal(y_before.im.begin(), y_before.im.end(), Plain(y).im.begin(), same));
            if (HasFatalFailure())
                return;
        }
    for (std::string const& message : reports.all())
        EXPECT_EQ(message, "erf: wrong values");
}

TEST(Engine, LargeArraysAreTheSameOnAnyNumberOfThreads)
{
    shapes::Source source;
    M<double> x(0, 300, 401), y(1, 300, 401);
    for (int k = 0; k < x.size(); ++k) {
        x.addr()[k] = source.below(2001) / 1000.0 - 1;
        y.addr()[k] = source.below(1000);
        y.addi()[k] = source.below(1000);
    }
    int const before = arrlib::set_parallel_limit(1);
    for (OpCode const op : {op_plus, op_sin, op_sqrt, op_power, op_exp, op_lt}) {
        arrlib::set_parallel_limit(1);
        M<double> const serial = applied(op, x, op == op_plus ? y : x);
        for (int threads : {2, 3, 7}) {
            arrlib::set_parallel_limit(threads);
            M<double> const parallel = applied(op, x, op == op_plus ? y : x);
            ASSERT_EQ(std::memcmp(serial.addr(), parallel.addr(), sizeof(double) * 120300), 0) << op_name(op);
            ASSERT_EQ(serial.isc(), parallel.isc());
        }
    }
    arrlib::set_parallel_limit(before);
}

TEST(Engine, ExpressionsTakeStorageOnce)
{
    M<double> const a(ones(1000, 100)), b(ones(1000, 100)), c(ones(1000, 100));
    std::int64_t const before = arrlib::pool.outstanding();
    M<double> const kept = dot_mul(a, b);
    std::int64_t const one = arrlib::pool.outstanding() - before;
    M<double> const z = dot_mul(a, b) + c - 2 + a;
    EXPECT_EQ(arrlib::pool.outstanding() - before, 2 * one);
    double const* const place = kept.addr();
    M<double> moved = -(M<double>(kept));
    EXPECT_NE(moved.addr(), place);
    double const* const own = moved.addr();
    M<double> const again = exp(std::move(moved));
    EXPECT_EQ(again.addr(), own);
    EXPECT_EQ(z.r(5), 1 + 1 - 2 + 1);
}

// Few elements do not go through the engine; what they give is the engine's.
TEST(Engine, FewElementsGiveTheSame)
{
    M<double> x = row({6, -0.0, 0}), text = TM("abc"), flags = x > zero_M;
    x.setname("x");
    for (OpCode op : {op_plus, op_minus, op_times, op_rdivide})
        for (M<double> const& y : {x, text, flags}) {
            M<double> const expected = applied(op, x, y);
            M<double> first = y, second = y;
            second.unshare();
            for (M<double> const& made : {arrlib::apply(op, x, y), arrlib::apply(op, x, std::move(first), arrlib::temporary_y),
                                          arrlib::apply(op, x, std::move(second), arrlib::temporary_y)}) {
                EXPECT_EQ(std::memcmp(made.addr(), expected.addr(), 3 * sizeof(double)), 0);
                EXPECT_EQ(made.rows() * 10 + made.cols(), 13);
                EXPECT_TRUE(!made.isstr() && !made.islogical() && !made.getname());
            }
        }
    EXPECT_EQ(text[1], 'a');
    EXPECT_EQ(x[1], 6);
}

TEST(Engine, EmptyOperands)
{
    M<double> const none, one(1.0), zero_rows(0, 0, 3);
    struct {
        M<double> got;
        int size;
        double value;
    } const cases[] = {
        {sum(none), 1, 0}, {prod(none), 1, 1}, {all(none), 1, 1}, {any(zero_rows), 1, 0},
        {sum(zero_rows, one), 0, 0}, {prod(none, one), 0, 0}, {sum(none, M<double>(0.0)), 1, 0},
        {none == none, 1, 1}, {none == one, 1, 0}, {one != none, 1, 1}, {none != zero_rows, 1, 0},
        {none + one, 0, 0}, {none < one, 0, 0}, {none * one, 0, 0}, {sin(none), 0, 0}, {cumsum(none), 0, 0}, {max(none), 0, 0},
        {diff(one), 0, 0}, {diff(row({1, 4})), 1, 3},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.got.size(), c.size);
        if (c.size) {
            EXPECT_EQ(c.got.r(1), c.value);
        }
    }
}

TEST(Engine, ComplexResults)
{
    EXPECT_TRUE(msqrt(row({4, -4})).isc());
    EXPECT_FALSE(msqrt(row({4, NaN.r(), -0.0})).isc());
    EXPECT_TRUE(acosh(sparse(row({0, 2}))).isc());
    EXPECT_FALSE(acosh(sparse(row({3, 2}))).isc());
    M<double> const power = dot_pow(row({-8, 2}), M<double>(2.0));
    EXPECT_FALSE(power.isc());
    EXPECT_EQ(power.r(1), 64);
    EXPECT_TRUE(dot_pow(row({-8, 2}), M<double>(0.5)).isc());
    M<double> const root = msqrt(M<double>(-4.0));
    EXPECT_TRUE((root - root).isc());
    M<double> const greater = root > M<double>(-1.0);
    EXPECT_FALSE(greater.isc());
    EXPECT_TRUE(greater.islogical());
}

// Long arrays are computed before all of their elements have been looked at.
TEST(Engine, OneElementMakesALongResultComplex)
{
    constexpr int count = 70000;
    struct {
        OpCode op;
        double usual, unusual, exponent;
        bool complex;
    } const cases[] = {
        {op_sqrt, 2, -4, 0, true},           {op_sqrt, 2, -0.0, 0, false},          {op_log, 2, -1, 0, true},
        {op_log, 2, -NaN.r(), 0, false},     {op_acos, 0.5, 1.5, 0, true},          {op_power, 2, -3, 1.5, true},
        {op_power, 2, -3, 3, false},         {op_power, 2, -Inf.r(), 0.5, true},    {op_power, 2, -0.0, 0.5, false},
    };
    for (auto const& c : cases)
        for (int const place : {0, 511, 40000, count - 1})
            for (bool const one_exponent : {true, false}) {
                M<double> x(0, 1, count), y(0, 1, one_exponent ? 1 : count);
                std::fill_n(x.addr(), count, c.usual);
                std::fill_n(y.addr(), y.size(), c.exponent);
                x.addr()[place] = c.unusual;
                bool const power = c.op == op_power;
                M<double> const got = power ? dot_pow(x, y) : applied(c.op, x, zero_M);
                ASSERT_EQ(got.isc(), c.complex) << op_name(c.op) << c.unusual;
                for (int const k : {0, place, count - 1}) {
                    M<double> const base(x.addr()[k]), one = power ? dot_pow(base, M<double>(c.exponent)) : applied(c.op, base, zero_M);
                    EXPECT_EQ(std::memcmp(&got.addr()[k], one.addr(), sizeof(double)), 0) << op_name(c.op) << place;
                }
            }
}

TEST(Engine, Messages)
{
    M<double> a = row({1, 2, 3}), b(0, 3, 1), none;
    a.setname("a");
    b.setname("b");
    std::fill_n(b.addr(), 3, 1.0);
    auto const bad = static_cast<OpCode>(200);
    M<double> local;
    struct {
        M<double> (*run)(M<double>&, M<double>&);
        std::vector<std::string> messages;
        bool neutral;
    } const cases[] = {
        {[](M<double>& x, M<double>& y) { return x + y; }, {"+: wrong dimensions of: a, b"}, true},
        {[](M<double>& x, M<double>&) { return x < row({1, 2}); }, {"<: wrong dimensions of: a, (temporary)"}, true},
        {[](M<double>& x, M<double>&) { return sum(x, M<double>(5.0)); }, {"sum: dimension=5 does not exist for matrix a"}, true},
        {[](M<double>& x, M<double>&) { return cumsum(x, M<double>(-1.0)); }, {"cumsum: dimension=-1 does not exist for matrix a"}, true},
        {[](M<double>& x, M<double>&) { return max(x, x, M<double>()); }, {"max_1: dim argument may not be empty"}, true},
        {[](M<double>& x, M<double>& y) { return x * x + y; }, {"*: inner dimensions of a and a do not agree"}, false},
    };
    for (auto const& c : cases) {
        Reports reports;
        M<double> const got = c.run(a, b);
        EXPECT_EQ(reports.all()[0], c.messages[0]);
        if (c.neutral) {
            EXPECT_EQ(got.size(), 0);
        }
    }
    Reports reports;
    applied(bad, a, zero_M);
    along(op_sin, a, zero_M);
    EXPECT_EQ(check_dim_arg("f", a, none), 0);
    EXPECT_EQ(check_dim_arg("f", a, M<double>(0.0)), 1);
    EXPECT_EQ(check_dim_arg("f", a, M<double>(1e12)), 2147483646);
    check_dim_arg("f", a, M<double>(-3.0));
    EXPECT_EQ(reports.all(), (std::vector<std::string>{"op_dims: unknown op", "op_core: unknown op", "op_dims: wrong do_dim", "f: dim argument may not be empty", "f: dim argument may not be more then the number of dimensions", "f: dim argument must be positive"}));
    EXPECT_STREQ(op_name(bad), "???");
    EXPECT_EQ(op_is_logical(bad), 0);
}

TEST(Engine, NamesAndCodes)
{
    struct {
        int code;
        char const* name;
    } const some[] = {{0, "diff"}, {12, "unwrap"}, {13, "abs"}, {46, "eq"}, {50, "erf_1"}, {64, ".\\"}, {76, "|"}, {77, "+"}, {80, ".^"}, {93, ".*"}, {96, "xor"}};
    for (auto const& c : some)
        EXPECT_STREQ(op_name(static_cast<OpCode>(c.code)), c.name);
    std::set<std::string> names;
    for (int op = 0; op < op_count; ++op)
        names.insert(op_name(static_cast<OpCode>(op)));
    EXPECT_EQ(names.size(), 97u);
}

// Dimension operations come first, and a complex result needs a complex kernel.
TEST(Engine, RowsAreSound)
{
    for (int op = 0; op < op_count; ++op) {
        Operation const& row = *arrlib::find_operation(op);
        bool const elementwise = op > op_unwrap;
        EXPECT_EQ(row.kernels.along == nullptr, elementwise) << row.name;
        EXPECT_EQ(row.kernels.real != nullptr, elementwise) << row.name;
        EXPECT_EQ(row.kernels.complex != nullptr, elementwise && row.complex != arrlib::ComplexRule::never) << row.name;
        EXPECT_FALSE(row.logical && row.complex != arrlib::ComplexRule::never) << row.name;
    }
    EXPECT_EQ(arrlib::find_operation(op_count), nullptr);
    EXPECT_EQ(arrlib::find_operation(-1), nullptr);
}

// The rule of a row is what the kernels do to zero.
TEST(Engine, SparseRulesHold)
{
    for (int code = op_unwrap + 1; code < op_count; ++code) {
        Operation const& row = *arrlib::find_operation(code);
        double const zero = 0, some = 3;
        double both = 1, left = 1, right = 1;
        Reports reports;
        row.kernels.real({&zero, 0}, {&zero, 0}, &both, 1);
        row.kernels.real({&zero, 0}, {&some, 0}, &left, 1);
        row.kernels.real({&some, 0}, {&zero, 0}, &right, 1);
        EXPECT_EQ(row.sparse != arrlib::SparseRule::full, both == 0) << row.name;
        if (row.sparse == arrlib::SparseRule::product) {
            EXPECT_TRUE(left == 0 && right == 0) << row.name;
        }
    }
}

TEST(Engine, FailedAllocationsLeaveNothingBehind)
{
    M<double> const x = ones(200, 200), s = sparse(x);
    with_every_allocation_refused([&] {
        M<double> const a = sin(x) + x, b = s + s, c = x * x, d = sum(x), e = s * s, f = dot_mul(s, x);
        M<double> index;
        along(op_max_1, x, zero_M, index);
    });
}

} // namespace
