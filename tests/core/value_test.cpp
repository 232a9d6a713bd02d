// The header of a value: its fields after each constructor, sharing, copies and moves.
#include "arrlib.h"
#include "core/access.h"

#include "support/capture.h"

#include <climits>
#include <type_traits>
#include <utility>
#include <vector>

using capture::Texts;
using Dims = std::vector<int>;

namespace {

Dims dims(M<double> const& x)
{
    return {x.getdims(), x.getdims() + 4};
}

struct Shape {
    char const* what;
    M<double> value;
    int ndims;
    Dims dims;
    int nnz;
    bool complex;
    bool sparse;
    bool scalar_variable;
};

TEST(Value, ConstructorsSetTheHeader)
{
    int const page_dims[] = {2, 3, 4}, trailing[] = {2, 3, 1, 1}, negative[] = {2, -3, 4}, four[] = {2, 1, 3, 5}, inner_one[] = {2, 1, 1, 3};
    Shape const shapes[] = {
        {"empty", M<double>(), 2, {0, 0, 0, 0}, 0, false, false, false},
        {"number", M<double>(2.5), 2, {1, 1, 1, 1}, 1, false, false, true},
        {"matrix", M<double>(0, 2, 3), 2, {2, 3, 1, 1}, 6, false, false, false},
        {"complex number", M<double>(1, 1, 1), 2, {1, 1, 1, 1}, 1, true, false, true},
        {"no rows", M<double>(0, 0, 5), 2, {0, 0, 0, 0}, 0, false, false, false},
        {"both negative", M<double>(0, -2, -3), 2, {0, 0, 0, 0}, 0, false, false, false},
        {"sparse", M<double>(0, 4, 3, 5), 2, {3, 5, 1, 1}, 4, false, true, false},
        {"complex sparse, more room than places", M<double>(1, 1, 9, 2, page_dims), 2, {2, 3, 1, 1}, 6, true, true, false},
        {"sparse without columns", M<double>(0, 4, 3, 0), 2, {0, 0, 0, 0}, 0, false, true, false},
        {"three dims", M<double>(0, 0, 0, 3, page_dims), 3, {2, 3, 4, 1}, 24, false, false, false},
        {"trailing ones", M<double>(0, 0, 0, 4, trailing), 2, {2, 3, 1, 1}, 6, false, false, false},
        {"ones within", M<double>(0, 0, 0, 4, inner_one), 4, {2, 1, 1, 3}, 6, false, false, false},
        {"negative dim", M<double>(0, 0, 0, 3, negative), 2, {0, 0, 0, 0}, 0, false, false, false},
        {"four dims, complex", M<double>(1, 0, 0, 4, four), 4, {2, 1, 3, 5}, 30, true, false, false},
        {"named", M<double>("x", 1, 1), 2, {1, 1, 1, 1}, 1, false, false, true},
    };
    for (Shape const& shape : shapes) {
        SCOPED_TRACE(shape.what);
        EXPECT_EQ(shape.value.getndims(), shape.ndims);
        EXPECT_EQ(dims(shape.value), shape.dims);
        EXPECT_EQ(shape.value.getnnz(), shape.nnz);
        EXPECT_EQ(shape.value.isc() != 0, shape.complex);
        EXPECT_EQ(shape.value.issparse() != 0, shape.sparse);
        // The table holds copies, which keep the mark.
        EXPECT_EQ(shape.value.is_scalar_variable(), shape.scalar_variable);
        EXPECT_GE(shape.value.capacity(), shape.nnz + 6);
        EXPECT_FALSE(shape.value.isstr());
        EXPECT_FALSE(shape.value.islogical());
        if (shape.complex) {
            EXPECT_EQ(shape.value.addi(), shape.value.addr() + shape.value.capacity());
        }
    }
}

TEST(Value, AScalarCostsOneChunk)
{
    arrlib::pool.release(arrlib::pool.allocate(1), 1);
    auto const before = arrlib::pool.outstanding();
    capture::FailingHeap const heap;
    M<double> const real(1), imaginary(1, 1, 1);
    EXPECT_EQ(arrlib::pool.outstanding(), before + 2);
    EXPECT_LE(heap.allocations(), 1); // a new block of chunks at the most
    auto const* const on_pool = new M<double>(1);
    EXPECT_EQ(arrlib::pool.outstanding(), before + 4);
    delete on_pool;
}

// What operators and single reads give has no storage but its header, and is a value like any other.
TEST(Value, NumbersOfOperatorsLiveInTheirHeaders)
{
    M<double> a(1), b(2), row(0, 1, 3);
    auto const before = arrlib::pool.outstanding();
    M<double> sum = a + b, copy(sum), moved(std::move(copy));
    EXPECT_EQ(arrlib::pool.outstanding(), before);
    EXPECT_TRUE(sum.is_in_header() && moved.is_in_header());
    EXPECT_EQ(copy.size(), 0);
    EXPECT_FALSE(sum.dirty());
    moved.r(1) = 7;
    EXPECT_EQ(sum.r(1), 3);
    std::swap(sum, moved);
    EXPECT_EQ(sum.r(1), 7);
    EXPECT_EQ(moved.r(1), 3);

    M<double> named("named", 0, 0);
    named = sum;
    sum.r(1) = 1;
    EXPECT_EQ(named.r(1), 7);
    named = row;
    EXPECT_EQ(named.addr(), row.addr());
    named = a < b;
    EXPECT_TRUE(named.islogical() && named.is_in_header());
    EXPECT_STREQ(named.getname(), "named");

    std::vector<M<double>> many;
    for (int k = 0; k < 100; ++k)
        many.push_back(a + k);
    for (int k = 0; k < 100; ++k)
        EXPECT_EQ(many[static_cast<std::size_t>(k)].r(1), k + 1);
}

TEST(Value, NumbersInHeadersBecomeAnythingElse)
{
    struct Change {
        char const* what;
        void (*change)(M<double>&);
        std::vector<double> elements;
    };
    M<double> const three(3);
    Change const changes[] = {
        {"grown", [](M<double>& x) { x(4.0) = M<double>(9); }, {5, 0, 0, 9}},
        {"extended", [](M<double>& x) { x = (BR(x), M<double>(6)); }, {5, 6}},
        {"emptied", [](M<double>& x) { x(M<double>(1)) = nop_M; }, {}},
        {"complex", [](M<double>& x) { x.i(1) = 2; }, {5}},
        {"said to be sparse", [](M<double>& x) { x.setsparse(1); x.setsparse(0); }, {5}},
        {"sparse", [](M<double>& x) { x.getsparse(0); }, {5}},
        {"sparse by its function", [](M<double>& x) { x = sparse(x); }, {5}},
        {"in a cell", [](M<double>& x) { M<M<double>> cell(x); x = M<double>(0); x = cell.r(1); }, {5}},
        {"reshaped", [](M<double>& x) { x.reshape(1, 1); }, {5}},
        {"its own", [](M<double>& x) { M<double>& same = x; x = same; x = std::move(same); x.unshare(); }, {5}},
        {"lent to results", [](M<double>& x) { x = power(std::move(x), M<double>(2)) + msqrt(M<double>(2) + 2) + abs(M<double>(1) - 3); }, {29}},
        {"full of itself", [](M<double>& x) { x = repmat(x, M<double>(1), M<double>(2)) + x; }, {10, 10}},
    };
    for (Change const& one : changes) {
        SCOPED_TRACE(one.what);
        M<double> x = three + 2;
        ASSERT_TRUE(x.is_in_header());
        one.change(x);
        M<double> const y(x);
        EXPECT_EQ(y.size(), static_cast<int>(one.elements.size()));
        EXPECT_EQ(std::vector<double>(y.addr(), y.addr() + y.getnnz()), one.elements);
    }
}

TEST(Value, SizesThatDoNotFitAreReported)
{
    int const wraps_to_zero[] = {65536, 65536, 65536, 65536}, wraps_to_small[] = {INT_MAX, INT_MAX, 3}, five[] = {2, 2, 2, 2, 2};
    capture::Reports reports;
    EXPECT_EQ(M<double>(0, 65536, 65536).size(), 0);
    EXPECT_EQ(M<double>(0, 0, 0, 4, wraps_to_zero).size(), 0);
    EXPECT_EQ(M<double>(0, 0, 0, 3, wraps_to_small).size(), 0);
    EXPECT_EQ(M<double>(0, INT_MAX, 1).size(), 0);
    EXPECT_EQ(M<double>(0, 0, 0, 5, five).size(), 0);
    EXPECT_EQ(reports.all(), Texts(5, "Out of memory!"));
    reports.take();
    EXPECT_EQ(M<double>(0, 1, 65536, 65536).size(), 0);
    EXPECT_EQ(reports.all(), Texts{"sparse: matrix is too large"});
}

TEST(Value, CopiesShareUntilOneIsWritten)
{
    M<double> a("a", 2, 2);
    for (int k = 1; k <= 4; ++k)
        a.r(k) = k;
    M<double> b("b", 0, 0);
    b = a;
    M<double> c(a);
    EXPECT_EQ(b.addr(), a.addr());
    EXPECT_EQ(c.addr(), a.addr());
    EXPECT_STREQ(b.getname(), "b");
    EXPECT_STREQ(c.getname(), "a");
    EXPECT_TRUE(a.dirty());
    b.r(2, 2) = 40;
    c.r(1) = 10;
    c.i(3) = 7;
    EXPECT_EQ(a.r(1), 1);
    EXPECT_EQ(a.r(4), 4);
    EXPECT_EQ(b.r(4), 40);
    EXPECT_EQ(c.r(1), 10);
    EXPECT_EQ(c.i(3), 7);
    EXPECT_FALSE(a.isc());
    EXPECT_FALSE(a.dirty());
    a = *&a;
    EXPECT_EQ(a.r(4), 4);
}

TEST(Value, MovesLeaveAnEmptyValueThatCanBeUsed)
{
    static_assert(std::is_nothrow_move_constructible_v<M<double>> && std::is_nothrow_move_assignable_v<M<double>>);
    M<double> a(0, 3, 1);
    double const* const elements = a.addr();
    M<double> b(std::move(a));
    EXPECT_EQ(b.addr(), elements);
    EXPECT_FALSE(b.dirty());
    EXPECT_EQ(a.size(), 0); // NOLINT: what is left is specified
    a = std::move(b);
    EXPECT_EQ(a.addr(), elements);
    EXPECT_EQ(b.length(), 0); // NOLINT
    EXPECT_TRUE(b.dirty());
    b(2.0) = M<double>(5); // NOLINT
    EXPECT_EQ(b.r(2), 5);
    M<double> copy_of_moved(std::move(b));
    M<double> const again(b); // NOLINT
    EXPECT_EQ(again.getndims(), 2);
}

// The mark stays through an assignment only where both sides carry it and the value is one number.
TEST(Value, ScalarVariableMark)
{
    M<double> const number(3), number_without = [] {
        M<double> x(3);
        x.clear_scalar_variable();
        return x;
    }();
    M<double> complex_number(1, 1, 1), column(0, 2, 1);
    struct Case {
        M<double> const* source;
        bool kept;
    } const cases[] = {{&number, true}, {&number_without, false}, {&complex_number, false}, {&column, false}};
    for (Case const& test : cases) {
        M<double> target("t", 1, 1);
        target = *test.source;
        EXPECT_EQ(target.is_scalar_variable(), test.kept);
        target = number;
        EXPECT_EQ(target.is_scalar_variable(), test.kept);
    }
    M<double> subscripted("s", 1, 1);
    static_cast<void>(subscripted(1.0));
    EXPECT_FALSE(subscripted.is_scalar_variable());
}

TEST(Value, DeepCopiesTakeTheFormsAskedFor)
{
    M<double> source(1, 2, 2);
    for (int k = 1; k <= 4; ++k) {
        source.r(k) = k - 1;
        source.i(k) = -k;
    }
    source.setlogical(1);
    M<double> made;
    made.deepcopy(0, 1, source);
    EXPECT_TRUE(made.issparse());
    EXPECT_TRUE(made.islogical());
    EXPECT_FALSE(made.isc());
    EXPECT_EQ(made.getnnz(), 4);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(made.getindex()[k], k);
    M<double> back;
    back.deepcopy(1, 0, made);
    EXPECT_FALSE(back.issparse());
    EXPECT_EQ(back.r(4), 3);
    EXPECT_EQ(back.i(4), 0);
    M<double> same;
    same.deepcopy(1, source);
    EXPECT_NE(same.addr(), source.addr());
    EXPECT_EQ(same.i(2), -2);
    // A sparse source with gaps, asked for in full form.
    M<double> gaps(0, 1, 3, 3);
    gaps.spaddr()[0] = 5;
    gaps.getindex()[0] = 7;
    M<double> whole;
    whole.deepcopy(0, 0, gaps);
    EXPECT_EQ(whole.r(8), 5);
    EXPECT_EQ(whole.r(1), 0);
}

TEST(Value, ImaginaryPartsComeAndGo)
{
    M<double> x(0, 1, 3);
    x.r(1) = x.r(2) = x.r(3) = 1;
    EXPECT_EQ(x.getreal(), 0);
    EXPECT_EQ(x.getcomplex(), 1);
    EXPECT_TRUE(x.isc());
    EXPECT_EQ(x.getreal(), 0);
    EXPECT_FALSE(x.isc());
    x.i(2) = 1;
    EXPECT_EQ(x.getreal(), 1);
}

TEST(Value, Sizes)
{
    struct Case {
        Dims dims;
        int length, nsingleton, vectordim;
    } const cases[] = {
        {{1, 1}, 1, 1, 2}, {{1, 5}, 5, 2, 2}, {{5, 1}, 5, 1, 1}, {{2, 2}, 2, 1, 0}, {{0, 5}, 0, 1, 2}, {{1, 1, 4}, 4, 3, 3}, {{1, 3, 4}, 4, 2, 0}, {{1, 1, 1, 7}, 7, 4, 4},
    };
    for (Case const& test : cases) {
        M<double> const x(0, 0, 0, static_cast<int>(test.dims.size()), test.dims.data());
        EXPECT_EQ(x.length(), test.length);
        EXPECT_EQ(x.nsingleton(), test.nsingleton);
        EXPECT_EQ(x.vectordim(), test.vectordim);
    }
    capture::Reports const reports;
    M<double> const x("x", 2, 3);
    EXPECT_EQ(x.size(2), 3);
    EXPECT_EQ(x.size(4), 1);
    EXPECT_EQ(x.size(5), 0);
    EXPECT_EQ(M<double>(0, 2, 3).size(0), 0);
    EXPECT_EQ(M<double>(7).size(9), 0);
    EXPECT_EQ(reports.all(), (Texts{"x.size(dim): no such dimension", "(temporary).size(dim): no such dimension", "=7.size(dim): no such dimension"}));
}

TEST(Value, ReshapesInPlace)
{
    int const pages[] = {2, 1, 3};
    M<double> x(0, 2, 3);
    x.reshape(3, 2);
    EXPECT_EQ(dims(x), (Dims{3, 2, 1, 1}));
    x.reshape(3, pages);
    EXPECT_EQ(x.getndims(), 3);
    capture::Reports const reports;
    x.reshape(4, 2);
    EXPECT_EQ(x.getndims(), 3);
    EXPECT_EQ(reports.all(), Texts{"reshape: size is wrong"});
    M<double> empty;
    empty.reshape(0, 4);
    EXPECT_EQ(dims(empty), (Dims{0, 0, 0, 0}));
}

TEST(Value, NamesAndClasses)
{
    static char const name[] = "x";
    M<double> x(name, 1, 1);
    std::string const same_text = "x";
    EXPECT_TRUE(x.issamename(name));
    EXPECT_FALSE(x.issamename(same_text.c_str()));
    MObject const& object = x;
    EXPECT_STREQ(object.classname(), "double");
    EXPECT_STREQ(M<M<double>>().classname(), "cell_double");
    M<double> made(0, 2, 2);
    made.create(name);
    EXPECT_EQ(made.size(), 0);
    EXPECT_EQ(made.getname(), name);
}

TEST(Value, ElementByPosition)
{
    M<double> x(0, 2, 2);
    for (int k = 1; k <= 4; ++k)
        x.r(k) = k;
    EXPECT_EQ(x[4], 4);
    EXPECT_EQ(x[0], 0);
    EXPECT_EQ(x[5], 0);
    EXPECT_EQ(*x.addr(2, 2), 4);
    EXPECT_EQ(*x.addr(3), 3);
    M<M<double>> c(0, 1, 2);
    c.r(2) = x;
    EXPECT_EQ(c[2].addr(), x.addr());
    EXPECT_EQ(c[3].size(), 0);
}

// --- accessors -----------------------------------------------------------------------------------

TEST(Elements, ReadAndWrite)
{
    int const sizes[] = {2, 3, 2};
    M<double> x(0, 0, 0, 3, sizes);
    for (int k = 1; k <= 12; ++k)
        x.r(k) = k;
    EXPECT_EQ(x.r(), 1);
    EXPECT_EQ(x.r(2, 3), 6);
    EXPECT_EQ(x.r(2, 3, 2), 12);
    EXPECT_EQ(x.r(1.9), 1);
    EXPECT_EQ(x.r(2.9, 3.9), 6);
    x.i(1, 2) = 5;
    EXPECT_EQ(x.i(3), 5);
    EXPECT_EQ(x.i(2, 3, 2), 0);
    M<double> const& fixed = x;
    EXPECT_EQ(fixed.r(12), 12);
    EXPECT_EQ(fixed.i(3), 5);
    EXPECT_EQ(M<double>(4).i(1), 0);
    // A constant stays what it is.
    M<double> mine = pi;
    mine.r() = 3;
    EXPECT_NE(pi[1], 3);
}

TEST(Elements, OfSparseValues)
{
    M<double> s(0, 2, 3, 3);
    s.spaddr()[0] = 4;
    s.spaddr()[1] = 8;
    s.getindex()[0] = 1;
    s.getindex()[1] = 8;
    M<double> const& fixed = s;
    EXPECT_EQ(fixed.r(2, 1), 4);
    EXPECT_EQ(fixed.r(9), 8);
    EXPECT_EQ(fixed.r(3), 0);
    EXPECT_EQ(fixed.i(2), 0);
    EXPECT_TRUE(s.issparse());
    s.r(1, 1) = 1;
    EXPECT_FALSE(s.issparse());
    EXPECT_EQ(s.r(3, 3), 8);
}

TEST(ElementsDeathTest, OutsideEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    nx_default_error_flags = nx_error_message_box;
    struct Case {
        void (*code)(M<double>& x);
        char const* message;
    } const cases[] = {
        {[](M<double>& x) { x.r(0); }, "x.r\\(0\\): idx out of matrix"},
        {[](M<double>& x) { x.r(7); }, "x.r\\(7\\): idx out of matrix"},
        {[](M<double>& x) { x.r(NaN[1]); }, "idx out of matrix"},
        {[](M<double>& x) { x.r(1e300); }, "x.r\\(2147483647\\): idx out of matrix"},
        {[](M<double>& x) { x.r(3, 1); }, "x.r\\(row,col\\): row or col out of matrix"},
        {[](M<double>& x) { x.r(1, 4); }, "x.r\\(row,col\\): row or col out of matrix"},
        {[](M<double>& x) { x.r(1, 1, 2); }, "x.r\\(row,col,depth\\): row or col out of matrix"},
        {[](M<double>& x) { x.i(-1); }, "x.i\\(-1\\): idx out of matrix"},
        {[](M<double>& x) { x.i(1, 0); }, "x.i\\(row,col\\): row or col out of matrix"},
        {[](M<double>& x) { x.i(0, 1, 1); }, "x.i\\(row,col,depth\\): row or col out of matrix"},
        {[](M<double>&) { M<double>("e", 0, 0).r(); }, "e.r\\(\\): matrix is empty"},
        {[](M<double>&) { M<double>("e", 0, 0).i(); }, "e.i\\(\\): matrix is empty"},
        {[](M<double>& x) { static_cast<M<double> const&>(x).r(8); }, "x.r\\(8\\): idx out of matrix"},
        {[](M<double>&) { M<double>(3).r(2); }, "=3.r\\(2\\): idx out of matrix"},
    };
    for (Case const& test : cases) {
        M<double> x("x", 2, 3);
        EXPECT_EXIT(test.code(x), testing::ExitedWithCode(1), test.message);
    }
    nx_default_error_flags = nx_error_console | nx_error_message_box | nx_error_exit;
}

// new cannot let an exception out: the error is shown, and there is no header.
TEST(Value, HeadersThatCannotBeHadAreNull)
{
    capture::Flags const flags(nx_error_throw);
    capture::ScarcePool const scarce(0);
    capture::FailingHeap const heap(1);
    capture::Boxes const boxes;
    nx_set_error_handler([](char const*) {
        nx_set_default_error_flags(nx_error_exit, 0);
        throw 1;
    });
    M<double>* const none = new M<double>(1);
    nx_set_error_handler(nullptr);
    EXPECT_EQ(none, nullptr);
    ASSERT_EQ(boxes.all().size(), 1u);
    EXPECT_EQ(boxes.all().front().substr(0, 27), "Orrery<RT>|FS:Out of memory");
}

TEST(Value, EveryAllocationMayFail)
{
    M<double> const keep(1);
    capture::with_every_allocation_refused([] {
        M<double> a(0, 20, 20);
        M<double> b;
        b.deepcopy(1, 1, a);
        M<double> c(1, 100, 50, 50);
        M<double> d = a;
        d.getcomplex();
        EXPECT_TRUE(a.size() == 400 || a.size() == 0);
    });
}

} // namespace
