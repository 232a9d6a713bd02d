// The kernels along a dimension against models that take one element after the other.
#include "ops/kernels/dimension.h"

#include "ops/kernels/dimension_loops.h"
#include "ops/kernels/kernel_set.h"
#include "runtime/workers.h"
#include "support/capture.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace {

using namespace arrlib;
using Complex = std::complex<double>;
using Numbers = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();

std::size_t size(std::ptrdiff_t n)
{
    return static_cast<std::size_t>(n);
}

std::mt19937_64 source(7);

std::ptrdiff_t below(std::ptrdiff_t n)
{
    return static_cast<std::ptrdiff_t>(source() % static_cast<std::uint64_t>(n));
}
double uniform(double low, double high)
{
    return std::uniform_real_distribution(low, high)(source);
}

Numbers filled(std::ptrdiff_t n, std::function<double()> const& value)
{
    Numbers made(size(n));
    std::generate(made.begin(), made.end(), value);
    return made;
}

struct Result {
    Numbers re, im, index;
    bool done = false;
};

// Runs a kernel; the result has `extent` elements along the dimension, and the parts that x has.
Result run(DimensionKernel kernel, Axis axis, std::ptrdiff_t extent, Numbers const& x, Numbers const& xi = {}, Numbers const& y = {}, bool complex_result = true)
{
    std::size_t const count = size(axis.stride * extent * axis.outer);
    bool const complex = !xi.empty() && complex_result;
    Result result{Numbers(count, -77), Numbers(complex ? count : 0, -77), Numbers(count, -77)};
    result.done = kernel({x.data(), xi.empty() ? nullptr : xi.data(), axis, y.empty() ? nullptr : y.data(), static_cast<int>(y.size()), result.re.data(),
                          complex ? result.im.data() : nullptr, result.index.data()});
    return result;
}

bool same(double a, double b)
{
    return a == b || (a != a && b != b);
}

std::vector<std::uint64_t> bits(Numbers const& numbers)
{
    std::vector<std::uint64_t> made;
    for (double const x : numbers)
        made.push_back(std::bit_cast<std::uint64_t>(x));
    return made;
}

// --- models: from one vector, real or complex, to its result --------------------------------------

using Vector = std::vector<Complex>;

Complex times(Complex a, Complex b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

template <bool running> Vector model_sum(Vector const& v, bool, double&)
{
    Vector all{0};
    for (Complex const x : v)
        all.push_back(all.back() + x);
    return running ? Vector(all.begin() + 1, all.end()) : Vector{all.back()};
}

// Real products are not computed as complex ones: infinities would become NaN.
template <bool running> Vector model_product(Vector const& v, bool complex, double&)
{
    Vector all{1};
    for (Complex const x : v)
        all.push_back(complex ? times(all.back(), x) : all.back().real() * x.real());
    return running ? Vector(all.begin() + 1, all.end()) : Vector{all.back()};
}

template <bool larger> Vector model_best(Vector const& v, bool complex, double& index)
{
    auto const rank = [&](Complex x) { return complex ? x.real() * x.real() + x.imag() * x.imag() : x.real(); };
    Complex best = larger ? (complex ? 0 : -infinity) : infinity;
    index = 1;
    for (std::size_t k = 0; k < v.size(); ++k)
        if (larger ? rank(v[k]) > rank(best) : rank(v[k]) < rank(best)) {
            best = v[k];
            index = static_cast<double>(k) + 1;
        }
    return {best};
}

template <bool every> Vector model_truth(Vector const& v, bool, double&)
{
    auto const is_true = [](Complex x) { return x.real() != 0 || x.imag() != 0; };
    return {every ? std::all_of(v.begin(), v.end(), is_true) : std::any_of(v.begin(), v.end(), is_true) ? 1.0 : 0.0};
}

Vector model_median(Vector const& from, bool complex, double&)
{
    Vector v = from;
    if (v.empty() || std::any_of(v.begin(), v.end(), [](Complex x) { return x != x; }))
        return {nan};
    std::sort(v.begin(), v.end(), [&](Complex a, Complex b) {
        return !complex ? a.real() < b.real() : std::pair(std::abs(a), std::arg(a)) < std::pair(std::abs(b), std::arg(b));
    });
    Complex const a = v[(v.size() - 1) / 2], b = v[v.size() / 2];
    return {a == b ? a : (a + b) / 2.0};
}

Vector model_diff(Vector const& v, bool, double&)
{
    Vector made;
    for (std::size_t k = 1; k < v.size(); ++k)
        made.push_back(v[k] - v[k - 1]);
    return made;
}

Vector model_gradient(Vector const& v, bool, double&)
{
    Vector made(v.size());
    for (std::size_t k = 0; v.size() > 1 && k < v.size(); ++k) {
        std::size_t const from = k == 0 ? 0 : k - 1, to = std::min(k + 1, v.size() - 1);
        made[k] = (v[to] - v[from]) / static_cast<double>(to - from);
    }
    return made;
}

Vector model_del2(Vector const& v, bool, double&)
{
    std::size_t const n = v.size();
    Vector made(n);
    for (std::size_t k = 1; k + 1 < n; ++k)
        made[k] = (v[k + 1] - v[k] - (v[k] - v[k - 1])) / 4.0;
    if (n > 3) {
        made[0] = 2.0 * made[1] - made[2];
        made[n - 1] = 2.0 * made[n - 2] - made[n - 3];
    } else if (n == 3)
        made[0] = made[2] = made[1];
    return made;
}

enum class Extent { one, less, same };

struct Operation {
    char const* name;
    DimensionKernel kernel;
    Vector (*model)(Vector const&, bool complex, double& index);
    Extent extent;
    // Whether numbers that are not finite give the same in any order.
    bool takes_specials, has_index = false, real_result = false;
};

Operation const operations[] = {
    {"sum", along_sum, model_sum<false>, Extent::one, true},
    {"cumsum", along_cumsum, model_sum<true>, Extent::same, true},
    {"prod", along_prod, model_product<false>, Extent::one, true},
    {"cumprod", along_cumprod, model_product<true>, Extent::same, true},
    {"max", along_max, model_best<true>, Extent::one, true, true},
    {"min", along_min, model_best<false>, Extent::one, true, true},
    {"all", along_all, model_truth<true>, Extent::one, true, false, true},
    {"any", along_any, model_truth<false>, Extent::one, true, false, true},
    {"median", along_median, model_median, Extent::one, true},
    {"diff", along_diff, model_diff, Extent::less, true},
    {"gradient", along_gradient, model_gradient, Extent::same, true},
    {"del2", along_del2, model_del2, Extent::same, false},
};

void expect_as_model(Operation const& op, Axis axis, Numbers const& x, Numbers const& xi)
{
    std::ptrdiff_t const extent = op.extent == Extent::one ? 1 : op.extent == Extent::less ? std::max<std::ptrdiff_t>(axis.length - 1, 0) : axis.length;
    Result const result = run(op.kernel, axis, extent, x, xi, {}, !op.real_result);
    ASSERT_TRUE(result.done);
    Vector vector(size(axis.length));
    for (std::ptrdiff_t o = 0; o < axis.outer; ++o)
        for (std::ptrdiff_t i = 0; i < axis.stride; ++i) {
            for (std::ptrdiff_t k = 0; k < axis.length; ++k) {
                std::size_t const at = size((o * axis.length + k) * axis.stride + i);
                vector[size(k)] = {x[at], xi.empty() ? 0 : xi[at]};
            }
            double index = 0;
            Vector const expected = op.model(vector, !xi.empty(), index);
            for (std::ptrdiff_t k = 0; k < extent; ++k) {
                std::size_t const at = size((o * extent + k) * axis.stride + i);
                ASSERT_TRUE(same(result.re[at], expected[size(k)].real())) << "element " << k << " of " << i << "," << o << ": " << result.re[at] << " not " << expected[size(k)];
                if (!result.im.empty()) {
                    ASSERT_TRUE(same(result.im[at], expected[size(k)].imag())) << "element " << k << " of " << i << "," << o << ": " << result.im[at] << " not " << expected[size(k)];
                }
                if (op.has_index) {
                    ASSERT_EQ(result.index[at], index);
                }
            }
        }
}

Axis random_axis()
{
    constexpr std::ptrdiff_t strides[] = {1, 1, 1, 2, 3, 31, 64, 65, 130, 1023, 1024, 2100}, lengths[] = {0, 1, 2, 3, 4, 7, 9, 16, 63, 127, 129, 255, 513, 4097, 9001, 70001};
    for (;;) {
        Axis const axis{strides[below(12)], lengths[below(16)] + below(2), 1 + below(4)};
        if (axis.stride * axis.length * axis.outer < 150000)
            return axis;
    }
}

// Numbers for which every order of additions and multiplications gives the same.
TEST(AlongDimension, AgreesWithTheModels)
{
    for (int round = 0; round < 150; ++round) {
        Axis const axis = random_axis();
        std::ptrdiff_t const count = axis.stride * axis.length * axis.outer;
        for (Operation const& op : operations) {
            bool const product = op.kernel == along_prod || op.kernel == along_cumprod;
            bool const complex = below(3) == 0, special = op.takes_specials && !complex && below(3) == 0;
            constexpr double powers[] = {1, 1, 1, -1, 2, 0.5}, specials[] = {nan, infinity, -infinity, 0};
            auto const number = [&] {
                if (special && below(200) == 0)
                    return specials[below(4)];
                return product ? powers[below(6)] : static_cast<double>(below(7) - 3);
            };
            Numbers x = filled(count, number), xi;
            if (complex) {
                // Units for products: nothing overflows.
                xi = product ? filled(count, [] { return static_cast<double>(below(3) - 1); }) : filled(count, number);
                for (std::size_t k = 0; product && k < x.size(); ++k)
                    x[k] = xi[k] == 0 ? std::copysign(1.0, x[k]) : 0;
            }
            SCOPED_TRACE(testing::Message() << op.name << " round " << round << " axis " << axis.stride << " " << axis.length << " " << axis.outer << (complex ? " complex" : "") << (special ? " special" : ""));
            expect_as_model(op, axis, x, xi);
            if (HasFatalFailure())
                return;
        }
    }
}

TEST(AlongDimension, SumsAreAccurate)
{
    constexpr std::ptrdiff_t n = 1000000;
    Numbers const x = filled(n, [] { return uniform(0, 1); });
    long double exact = 0;
    for (double const value : x)
        exact += value;
    for (Axis const axis : {Axis{1, n, 1}, Axis{2, n / 2, 1}}) {
        Result const sum = run(along_sum, axis, 1, x);
        long double total = 0;
        for (double const value : sum.re)
            total += value;
        EXPECT_LT(std::fabs(static_cast<double>(total - exact)), 2e-10);
        Numbers const running = run(along_cumsum, axis, axis.length, x).re;
        EXPECT_LT(std::fabs(static_cast<double>(running.back() - sum.re.back())), axis.stride == 1 ? 2e-9 : 2e-8);
    }
}

// Parts of the product would overflow, vanish, or both.
TEST(AlongDimension, ProductsInPiecesAreThoseInOrder)
{
    auto const product = [](Numbers const& x) { return run(along_prod, {1, static_cast<std::ptrdiff_t>(x.size()), 1}, 1, x).re[0]; };
    for (std::ptrdiff_t const n : {200, 3000, 300000}) {
        Numbers alternating(size(n)), steps(size(n)), vanishing(size(n), 0.5), growing(size(n), -1e100);
        for (std::size_t k = 0; k < alternating.size(); ++k) {
            alternating[k] = k % 2 ? 0x1p-600 : 0x1p600;
            steps[k] = k < 32 ? 0x1p-34 : k < 64 ? 0x1p34 : 1;
        }
        EXPECT_EQ(product(alternating), 1);
        EXPECT_EQ(product(steps), 1);
        Numbers const running = run(along_cumprod, {1, n, 1}, n, alternating).re;
        for (std::size_t k = 0; k < running.size(); ++k)
            ASSERT_EQ(running[k], k % 2 ? 1 : 0x1p600);
        Numbers const parts = filled(n, [] { return 0; });
        EXPECT_EQ(run(along_prod, {1, n, 1}, 1, alternating, parts).re[0], 1);
        EXPECT_EQ(run(along_cumprod, {1, n, 1}, n, alternating, parts).re.back(), 1);
        growing.back() = 1;
        EXPECT_EQ(product(growing), -infinity);
        if (n < 2000)
            continue;
        vanishing[size(n - 1)] = -1;
        EXPECT_TRUE(product(vanishing) == 0 && std::signbit(product(vanishing)));
        vanishing[size(n - 1)] = infinity;
        EXPECT_TRUE(std::isnan(product(vanishing)));
        growing[size(n - 2)] = 0;
        EXPECT_TRUE(std::isnan(product(growing)));
    }
}

TEST(AlongDimension, ZerosAreTheFirstOfTheirEquals)
{
    Numbers x(1000, -1);
    x[200] = -0.0;
    x[300] = 0;
    Result const largest = run(along_max, {1, 1000, 1}, 1, x);
    EXPECT_TRUE(std::signbit(largest.re[0]));
    EXPECT_EQ(largest.index[0], 201);
}

TEST(AlongDimension, MediansOfAnyOrder)
{
    auto const median = [](Numbers const& x) { return run(along_median, {1, static_cast<std::ptrdiff_t>(x.size()), 1}, 1, x).re[0]; };
    for (std::ptrdiff_t const n : {15, 16, 17, 18, 500, 501, 4096, 40001, 150000, 1100000}) {
        std::function<double(std::ptrdiff_t)> const orders[] = {
            [](std::ptrdiff_t) { return uniform(-1, 1); }, [](std::ptrdiff_t k) { return static_cast<double>(k); }, [](std::ptrdiff_t k) { return static_cast<double>(-k); },
            [n](std::ptrdiff_t k) { return static_cast<double>(std::min(k, n - k)); }, [](std::ptrdiff_t) { return 3.0; }, [](std::ptrdiff_t k) { return static_cast<double>(k % 7); },
            [](std::ptrdiff_t k) { return k % 2 ? infinity : -infinity; }, [](std::ptrdiff_t) { return below(9) ? uniform(0, 1) : 0.5; }};
        for (auto const& order : orders) {
            Numbers x;
            for (std::ptrdiff_t k = 0; k < n; ++k)
                x.push_back(order(k));
            Numbers sorted = x;
            std::sort(sorted.begin(), sorted.end());
            double const a = sorted[size((n - 1) / 2)], b = sorted[size(n / 2)];
            EXPECT_TRUE(same(median(x), a == b ? a : (a + b) / 2)) << n << " order " << &order - orders;
        }
        Numbers x(size(n), 1);
        x[size(below(n))] = nan;
        EXPECT_TRUE(std::isnan(median(x)));
    }
    EXPECT_EQ(median({1.5e308, 1.1e308}), 1.3e308);
    EXPECT_EQ(median({infinity, 1, infinity}), infinity);
    EXPECT_EQ(median({infinity, infinity}), infinity);
    EXPECT_TRUE(std::isnan(median({infinity, -infinity})));
}

// A parabola has the same second derivative everywhere, on any points.
TEST(AlongDimension, DerivativesTakeSpacings)
{
    for (std::ptrdiff_t const stride : {1, 5}) {
        Axis const axis{stride, 40, 2};
        Numbers points{0};
        for (std::size_t k = 1; k < 40; ++k)
            points.push_back(points.back() + 1.0 + static_cast<double>(k % 3));
        Numbers x(size(stride * 80)), line = x;
        for (std::size_t at = 0; at < x.size(); ++at) {
            double const p = points[at / size(stride) % 40];
            x[at] = 3 * p * p;
            line[at] = 5 * p;
        }
        for (double const value : run(along_del2, axis, 40, x, {}, points).re)
            EXPECT_NEAR(value, 1.5, 1e-12);
        for (double const value : run(along_gradient, axis, 40, line, {}, points).re)
            EXPECT_EQ(value, 5);
        // A step of 2 halves the first derivative and quarters the second.
        Numbers const g = run(along_gradient, axis, 40, x).re, d = run(along_del2, axis, 40, x).re;
        Numbers const g2 = run(along_gradient, axis, 40, x, {}, {2}).re, d2 = run(along_del2, axis, 40, x, {}, {2}).re;
        for (std::size_t at = 0; at < x.size(); ++at) {
            ASSERT_EQ(g2[at], g[at] / 2);
            ASSERT_EQ(d2[at], d[at] / 4);
        }
    }
    capture::Reports reports;
    EXPECT_FALSE(run(along_gradient, {1, 3, 1}, 3, {1, 2, 3}, {}, {1, 2}).done);
    EXPECT_FALSE(run(along_del2, {1, 3, 1}, 3, {1, 2, 3}, {}, {1, 2}).done);
    EXPECT_EQ(reports.all(), (capture::Texts{"gradient: increment vector must be scalar or same length as the corresponding dimension",
                                             "del2: increment vector must be scalar or same length as the corresponding dimension"}));
}

TEST(AlongDimension, UnwrapsJumps)
{
    double const pi = std::acos(-1.0);
    for (std::ptrdiff_t const stride : {1, 3, 300}) {
        Axis const axis{stride, 500, 2};
        Numbers smooth(size(stride * 1000)), wrapped = smooth;
        for (std::size_t at = 0; at < smooth.size(); ++at) {
            double const k = static_cast<double>(at / size(stride) % 500);
            smooth[at] = 30 * std::sin(k / 40);
            wrapped[at] = std::remainder(smooth[at], 2 * pi);
        }
        Numbers const result = run(along_unwrap, axis, 500, wrapped).re;
        for (std::size_t at = 0; at < smooth.size(); ++at)
            ASSERT_NEAR(result[at], smooth[at], 1e-12);
    }
    Result const gaps = run(along_unwrap, {1, 6, 1}, 6, {0, nan, 4, infinity, 4, 20}, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(std::isnan(gaps.re[1]) && gaps.re[3] == infinity);
    EXPECT_NEAR(gaps.re[4], 4 - 2 * pi, 1e-15);
    EXPECT_NEAR(gaps.re[5], 20 - 8 * pi, 1e-14);
    EXPECT_EQ(gaps.im, (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(run(along_unwrap, {1, 2, 1}, 2, {0, 4}, {}, {5}).re, (Numbers{0, 4}));
}

// --- the same bits everywhere ---------------------------------------------------------------------

TEST(AlongDimension, ThreadsDoNotMatter)
{
    Axis const axes[] = {{1, 300001, 1}, {1, 400, 700}, {5, 40001, 1}, {900, 250, 1}, {2100, 100, 1}};
    for (Axis const& axis : axes) {
        std::ptrdiff_t const count = axis.stride * axis.length * axis.outer;
        Numbers const x = filled(count, [] { return uniform(-1, 1); }), xi = filled(count, [] { return uniform(-1, 1); });
        for (Operation const& op : operations)
            for (bool const complex : {false, true}) {
                std::ptrdiff_t const extent = op.extent == Extent::one ? 1 : axis.length - (op.extent == Extent::less);
                Result results[3];
                for (int threads = 1; threads <= 3; ++threads) {
                    int const before = set_parallel_limit(threads);
                    results[threads - 1] = run(op.kernel, axis, extent, x, complex ? xi : Numbers{}, {}, !op.real_result);
                    set_parallel_limit(before);
                }
                for (int other : {1, 2}) {
                    ASSERT_EQ(bits(results[0].re), bits(results[other].re)) << op.name << " " << axis.stride << " " << axis.length;
                    ASSERT_EQ(bits(results[0].im), bits(results[other].im)) << op.name << " " << axis.stride << " " << axis.length;
                    ASSERT_EQ(bits(results[0].index), bits(results[other].index)) << op.name << " " << axis.stride << " " << axis.length;
                }
            }
    }
}

// What all loops of a kind leave behind.
Numbers all_loops(DimensionLoops const& loops, Rows rows, Numbers const& x, Numbers const& xi)
{
    std::ptrdiff_t const width = rows.width, n = rows.count * rows.pitch;
    Numbers all;
    auto const keep = [&](auto const& loop) {
        Numbers state(size(2 * width), 0.5);
        loop(state.data(), state.data() + width);
        all.insert(all.end(), state.begin(), state.end());
    };
    keep([&](double* a, double*) { loops.sum(a, x.data(), rows); });
    keep([&](double* a, double*) { loops.product(a, x.data(), rows); });
    keep([&](double* a, double* b) { loops.complex_product(a, b, x.data(), xi.data(), rows); });
    for (double const* const part : {static_cast<double const*>(nullptr), xi.data()}) {
        keep([&](double* a, double* b) { loops.largest(a, b, x.data(), part, rows, 3); });
        keep([&](double* a, double* b) { loops.smallest(a, b, x.data(), part, rows, 3); });
        keep([&](double* a, double*) { loops.any(a, x.data(), part, rows); });
        keep([&](double* a, double*) { loops.all(a, x.data(), part, rows); });
    }
    double re = 0.25, im = 0.5;
    all.push_back(loops.safe_product(x.data(), n, re));
    all.push_back(re);
    all.push_back(loops.safe_complex_product(x.data(), xi.data(), n, re, im));
    all.insert(all.end(), {re, im});
    Numbers z(size(n)), zi(size(n));
    all.push_back(loops.cumulative_sum(x.data(), z.data(), n, 0.1));
    all.insert(all.end(), z.begin(), z.end());
    all.push_back(loops.cumulative_product(x.data(), z.data(), n / 8 * 8, re));
    all.push_back(re);
    all.insert(all.end(), z.begin(), z.end());
    all.push_back(loops.cumulative_complex_product(x.data(), xi.data(), z.data(), zi.data(), n / 8 * 8, re, im));
    all.insert(all.end(), {re, im});
    all.insert(all.end(), z.begin(), z.end());
    all.insert(all.end(), zi.begin(), zi.end());
    return all;
}

TEST(AlongDimension, ProcessorsDoNotMatter)
{
    KernelSet const* sets[3];
    int const kinds = kernel_sets(sets);
    for (int round = 0; round < 100; ++round) {
        std::ptrdiff_t const width = 1 + below(70);
        Rows const rows{width + below(5), 1 + below(40), width};
        std::ptrdiff_t const n = rows.pitch * rows.count;
        auto const near_one = [] { return below(50) == 0 ? -0.0 : std::copysign(uniform(0.7, 1.4), uniform(-1, 1)); };
        bool const zeros = round % 2 == 0;
        auto const number = [&] {
            double const value = near_one();
            return zeros || value != 0 ? value : 1;
        };
        Numbers const x = filled(n, number), xi = filled(n, number);
        Numbers const expected = all_loops(dimension_loops("baseline"), rows, x, xi);
        for (int k = 0; k < kinds; ++k) {
            EXPECT_STREQ(dimension_loops(sets[k]->kind).kind, sets[k]->kind);
            ASSERT_EQ(bits(all_loops(dimension_loops(sets[k]->kind), rows, x, xi)), bits(expected)) << sets[k]->kind << " width " << width << " rows " << rows.count;
        }
    }
}

TEST(AlongDimension, SurvivesWithoutMemory)
{
    Axis const axis{1, 300000, 1};
    Numbers const x(300000, 1);
    Numbers room(300000);
    capture::with_every_allocation_refused([&] {
        for (DimensionKernel const kernel : {along_sum, along_prod, along_max, along_median, along_cumsum})
            if (!kernel({x.data(), nullptr, axis, nullptr, 0, room.data(), nullptr, nullptr}))
                break;
    });
}

} // namespace
