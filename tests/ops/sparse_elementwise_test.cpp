// Operations on sparse values against the same on all elements.
#include "ops/sparse_elementwise.h"

#include "core/access.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "ops/sparse_reduce.h"
#include "runtime/constants.h"
#include "support/capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <vector>

namespace {

using namespace arrlib;
using Complex = std::complex<double>;

// --- values ---------------------------------------------------------------------------------------

constexpr double specials[] = {NAN, HUGE_VAL, -HUGE_VAL, 0.0, 1e308};

class Source {
public:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    double number(bool special) { return special && below(6) == 0 ? specials[below(5)] : below(9) - 4; }

    // Sparse, with an entry at one of `spread` positions; some are zeros.
    M<double> sparse(std::vector<int> const& dims, int spread, bool complex, bool special)
    {
        Dims const shape(static_cast<int>(dims.size()), dims.data());
        M<double> made = Access<double>::sparse_with_room(complex, shape, 0, shape.count / spread * 2 + 1000);
        int stored = 0;
        for (int k = below(spread); k < shape.count && stored < made.capacity(); k += 1 + below(2 * spread - 1)) {
            Access<double>::index(made)[stored] = k;
            made.addr()[stored] = number(special);
            if (complex)
                made.addi()[stored] = number(special);
            ++stored;
        }
        made.getnnz() = stored;
        return made;
    }

private:
    std::mt19937 random_{424242};
};

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

void expect_same(M<double> const& got, M<double> const& expected)
{
    ASSERT_TRUE(got.issparse());
    EXPECT_EQ(got.isc(), expected.isc());
    for (int d = 0; d < max_dims; ++d)
        ASSERT_EQ(got.getdims()[d], expected.getdims()[d]);
    EXPECT_EQ(count_nonzeros(got), got.getnnz());
    int const* const index = Access<double>::index(got);
    EXPECT_TRUE(std::adjacent_find(index, index + got.getnnz(), std::greater_equal<>()) == index + got.getnnz());
    M<double> const all = full(got);
    for (int k = 0; k < expected.size(); ++k)
        if (!same(all.addr()[k], expected.addr()[k]) || (all.isc() && !same(all.addi()[k], expected.addi()[k])))
            return void(ADD_FAILURE() << "element " << k << ": " << all.addr()[k] << ", expected " << expected.addr()[k]);
}

// --- loops ----------------------------------------------------------------------------------------

template <auto f> void each(RealOperand x, RealOperand y, double* z, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k)
        z[k] = f(x.at[k * x.step], y.at[k * y.step]);
}
template <auto f> void each(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n)
{
    auto const element = [](ComplexOperand const& from, std::ptrdiff_t k) { return Complex(from.re[k * from.step], from.im ? from.im[k * from.step] : 0); };
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        Complex const z = f(element(x, k), element(y, k));
        re[k] = z.real();
        if (im)
            im[k] = z.imag();
    }
}

constexpr auto add = [](auto x, auto y) { return x + y; };
constexpr auto subtract = [](auto x, auto y) { return x - y; };
constexpr auto is_more = [](auto x, auto y) { return decltype(x)(std::real(x) > std::real(y)); };
constexpr auto real_times = [](double x, double y) { return x * y; };
constexpr auto complex_times = [](Complex x, Complex y) {
    return Complex(x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real());
};

struct Operation {
    char const* name;
    RealLoop real;
    ComplexLoop complex;
    bool complex_result;
};

Operation const sums[] = {
    {"+", each<add>, each<add>, true},
    {"-", each<subtract>, each<subtract>, true},
    {">", each<is_more>, each<is_more>, false},
};
Operation const product{".*", each<real_times>, each<complex_times>, true};

// The operation on all elements.
M<double> on_all(Operation const& op, M<double> const& x, M<double> const& y, bool complex_result)
{
    M<double> const a = full(x), b = full(y);
    M<double> made = Access<double>::full(complex_result, Dims(max_dims, a.getdims()));
    int const step = b.size() == a.size();
    if (op.complex && (a.isc() || b.isc() || complex_result))
        op.complex({a.addr(), a.addi(), 1}, {b.addr(), b.addi(), step}, made.addr(), made.addi(), made.size());
    else
        op.real({a.addr(), 1}, {b.addr(), step}, made.addr(), made.size());
    return made;
}

std::vector<int> const shapes[] = {{1, 1}, {7, 1}, {40, 30}, {3, 5, 7}, {4, 3, 2, 5}, {100, 90}, {700, 200}};

// Calls for pairs of sparse values of the same shape, few and many entries, real and complex.
template <class Test> void with_pairs(Test test)
{
    Source source;
    for (auto const& dims : shapes)
        for (int kind = 0; kind < 8; ++kind)
            for (int const spread : {1, 3, 200}) {
                M<double> const x = source.sparse(dims, spread, kind & 1, kind & 4), y = source.sparse(dims, 1 + source.below(4), kind & 2, kind & 4);
                test(x, y);
                test(y, x);
            }
}

TEST(SparseElementwise, UnionsHaveThePositionsOfBoth)
{
    with_pairs([](M<double> const& x, M<double> const& y) {
        for (Operation const& op : sums) {
            SCOPED_TRACE(op.name);
            bool const complex = op.complex_result && (x.isc() || y.isc());
            expect_same(sparse_union(x, y, op.real, op.complex, complex), on_all(op, x, y, complex));
        }
    });
}

TEST(SparseElementwise, ProductsSeeNaNAndInfinitiesBesideZeros)
{
    with_pairs([](M<double> const& x, M<double> const& y) {
        bool const complex = x.isc() || y.isc();
        M<double> const expected = on_all(product, x, y, complex);
        expect_same(sparse_masked(x, y, product.real, product.complex, complex), expected);
        expect_same(sparse_masked(x, full(y), product.real, product.complex, complex), expected);
        expect_same(sparse_masked(full(x), y, product.real, product.complex, complex), expected);
    });
}

TEST(SparseElementwise, RoomThatIsNotNeededIsGivenBack)
{
    Source source;
    M<double> const x = source.sparse({300, 300}, 2, false, false);
    EXPECT_LT(sparse_union(x, x, each<subtract>, nullptr, false).capacity(), 600);
    EXPECT_LT(sparse_union(x, x, each<add>, nullptr, false).capacity(), x.getnnz() + 600);
}

// --- reductions -----------------------------------------------------------------------------------

Complex times(Complex x, Complex y)
{
    return complex_times(x, y);
}

// One vector, element by element.
Complex reduced(OpCode op, std::vector<Complex> const& vector, bool complex)
{
    double const inf = HUGE_VAL;
    Complex total = op == op_prod || op == op_all ? 1 : op == op_max_1 ? (complex ? 0 : -inf) : op == op_min_1 ? inf : 0;
    auto const size = [complex](Complex x) { return complex ? x.real() * x.real() + x.imag() * x.imag() : x.real(); };
    for (Complex const x : vector)
        switch (op) {
        case op_sum:
            total += x;
            break;
        case op_prod:
            total = complex ? times(total, x) : total.real() * x.real();
            break;
        case op_all:
            total = total.real() != 0 && x != 0.0;
            break;
        case op_any:
            total = total.real() != 0 || x != 0.0;
            break;
        default:
            if (op == op_max_1 ? size(x) > size(total) : size(x) < size(total))
                total = x;
        }
    return total;
}

M<double> reduced(OpCode op, M<double> const& x, int dim)
{
    M<double> const all = full(x);
    int extents[max_dims], stride = 1;
    for (int d = 0; d < max_dims; ++d) {
        extents[d] = d == dim ? 1 : x.getdims()[d];
        stride *= d < dim ? extents[d] : 1;
    }
    bool const extreme = op == op_max_1 || op == op_min_1, imaginary = x.isc() && std::any_of(all.addi(), all.addi() + all.size(), [](double im) { return im != 0; });
    bool const complex = extreme ? imaginary : (op == op_sum || op == op_prod) && x.isc();
    M<double> made = Access<double>::full(complex, Dims(max_dims, extents));
    int const length = x.getdims()[dim];
    for (int v = 0; v < made.size(); ++v) {
        std::vector<Complex> vector;
        for (int k = 0; k < length; ++k) {
            int const at = (v / stride * length + k) * stride + v % stride;
            vector.emplace_back(all.addr()[at], x.isc() && (complex || !extreme) ? all.addi()[at] : 0);
        }
        Complex const total = reduced(op, vector, complex);
        made.addr()[v] = total.real();
        if (complex)
            made.addi()[v] = total.imag();
    }
    return made;
}

constexpr OpCode reductions[] = {op_sum, op_prod, op_all, op_any, op_max_1, op_min_1};

TEST(SparseReduce, AgreesWithAllElements)
{
    with_pairs([](M<double> const& x, M<double> const&) {
        if (x.size() > 10000)
            return;
        for (OpCode const op : reductions)
            for (int dim = 0; dim < max_dims; ++dim) {
                SCOPED_TRACE(testing::Message() << "operation " << op << " along " << dim << " of " << x.rows() << "x" << x.cols());
                M<double> got;
                EXPECT_TRUE(sparse_reduce(got, x, dim, op));
                expect_same(got, reduced(op, x, dim));
            }
    });
}

TEST(SparseReduce, ShapesWithFarMoreElementsThanEntries)
{
    M<double> const x = sparse(3, 1, 5, 40000, 40000);
    for (int const dim : {0, 1}) {
        M<double> got;
        EXPECT_TRUE(sparse_reduce(got, x, dim, op_sum));
        EXPECT_EQ(got.getnnz(), 1);
        EXPECT_EQ(got.size(), 40000);
        EXPECT_EQ(got.spaddr()[0], 5);
    }
}

TEST(SparseReduce, LeavesWhatNeedsAllElements)
{
    M<double> const x = sparse(2, 3, 4);
    M<double> got(7);
    for (OpCode const op : {op_median, op_cumsum, op_diff})
        EXPECT_FALSE(sparse_reduce(got, x, 0, op));
    EXPECT_EQ(got.r(1), 7);
}

TEST(SparseElementwise, LeavesNothingBehindWithoutMemory)
{
    Source source;
    M<double> const x = source.sparse({60, 50}, 2, true, true), y = source.sparse({60, 50}, 3, false, true), dense = full(y);
    capture::with_every_allocation_refused([&] { sparse_union(x, y, nullptr, each<add>, true); });
    capture::with_every_allocation_refused([&] { sparse_masked(x, y, nullptr, product.complex, true); });
    capture::with_every_allocation_refused([&] { sparse_masked(x, dense, nullptr, product.complex, true); });
    for (int const dim : {0, 1})
        capture::with_every_allocation_refused([&] {
            M<double> got = Access<double>::without_storage();
            sparse_reduce(got, y, dim, op_max_1);
        });
}

} // namespace
