#include "builtins/integers.h"

#include "builtins/args.h"
#include "builtins/primes.h"
#include "core/read.h"
#include "runtime/workers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

using namespace arrlib;

namespace {

// A thread that gets fewer elements than this costs more than it saves.
constexpr std::ptrdiff_t share_of_thread = 1 << 12;
constexpr double two_to_53 = 9007199254740992.0;

// Conversions cost less than a call of trunc; from 2^53 on every double is an integer.
bool is_integer(double v)
{
    return std::abs(v) < two_to_53 ? v == static_cast<double>(static_cast<std::int64_t>(v)) : std::isfinite(v);
}

template <class Test> bool all_real(M<double> const& x, Test test)
{
    return !x.isc() && std::all_of(x.addr(), x.addr() + x.getnnz(), test);
}

// A value that no memory holds: "Out of memory!".
M<double> too_large()
{
    constexpr int most = std::numeric_limits<int>::max();
    full_result(Dims(most, most));
    return x_M;
}

// --- common divisors -----------------------------------------------------------------------------

bool fits_63_bits(double a)
{
    return std::abs(a) < 9223372036854775808.0;
}

// The binary algorithm: differences of odd numbers, without branches that no processor foresees.
std::int64_t binary_divisor(std::int64_t a, std::int64_t b)
{
    if (a == 0 || b == 0)
        return a + b;
    int const twos = std::countr_zero(static_cast<std::uint64_t>(a | b));
    a >>= std::countr_zero(static_cast<std::uint64_t>(a));
    b >>= std::countr_zero(static_cast<std::uint64_t>(b));
    while (a != b) {
        std::int64_t const difference = a - b, sign = difference >> 63;
        b += difference & sign;
        a = ((difference ^ sign) - sign) >> std::countr_zero(static_cast<std::uint64_t>(difference));
    }
    return a << twos;
}

double common_divisor(double a, double b)
{
    if (fits_63_bits(a) && fits_63_bits(b))
        return static_cast<double>(binary_divisor(static_cast<std::int64_t>(std::abs(a)), static_cast<std::int64_t>(std::abs(b))));
    // Remainders of doubles are exact at any size.
    a = std::abs(a);
    b = std::abs(b);
    while (b != 0) {
        double const rest = std::fmod(a, b);
        a = b;
        b = rest;
    }
    return a;
}

struct Bezout {
    double g, c, d;
};

// Euclid's algorithm with c and d for every remainder; Number is wide enough for a and b.
template <class Number, class Remainder> Bezout common_divisor_with_factors(Number a, Number b, Remainder remainder)
{
    Number g = a < 0 ? -a : a, rest = b < 0 ? -b : b;
    Number c = a < 0 ? -1 : 1, next_c = 0, d = 0, next_d = b < 0 ? -1 : 1;
    while (rest != 0) {
        Number const r = remainder(g, rest), quotient = (g - r) / rest;
        g = rest;
        rest = r;
        Number const c_before = c, d_before = d;
        c = next_c;
        next_c = c_before - quotient * next_c;
        d = next_d;
        next_d = d_before - quotient * next_d;
    }
    if (g == 0)
        c = 0;
    return {static_cast<double>(g), static_cast<double>(c), static_cast<double>(d)};
}

Bezout bezout(double a, double b)
{
    if (fits_63_bits(a) && fits_63_bits(b))
        return common_divisor_with_factors(static_cast<std::int64_t>(a), static_cast<std::int64_t>(b), [](std::int64_t x, std::int64_t y) { return x % y; });
    return common_divisor_with_factors(a, b, [](double x, double y) { return std::fmod(x, y); });
}

struct Divisors {
    M<double> g, c, d;
};

// The outputs of gcd; false after a report.
bool find_divisors(M<double> const& a, M<double> const& b, bool factors, Divisors& found)
{
    Arguments const args("gcd");
    if (!args.integer(a) || !args.integer(b))
        return false;
    OperandPair const pair(args.builtin(), a, b);
    if (!pair)
        return false;
    found.g = full_result(pair.shape());
    if (factors) {
        found.c = full_result(pair.shape());
        found.d = full_result(pair.shape());
    }
    double *const g = found.g.addr(), *const c = found.c.addr(), *const d = found.d.addr();
    if (!g || !c || !d)
        return false;
    parallel_for(pair.count(), share_of_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (int k = static_cast<int>(from); k < to; ++k)
            if (factors) {
                Bezout const one = bezout(pair.a(k), pair.b(k));
                g[k] = one.g;
                c[k] = one.c;
                d[k] = one.d;
            } else
                g[k] = common_divisor(pair.a(k), pair.b(k));
    });
    return true;
}

// --- primes --------------------------------------------------------------------------------------

// Which of the odd numbers up to a limit are prime, a bit each.
class PrimeTable {
public:
    explicit PrimeTable(std::uint64_t limit) : bits_(static_cast<std::size_t>(limit / 128 + 1))
    {
        PrimeSieve sieve(limit);
        if (!bits_ || !sieve) {
            bits_ = {};
            return;
        }
        std::fill(bits_.begin(), bits_.end(), std::uint64_t{0});
        while (sieve.next())
            sieve.for_each([this](std::uint64_t p) { word(p) |= std::uint64_t{1} << p / 2 % 64; });
    }

    explicit operator bool() const { return static_cast<bool>(bits_); }
    bool operator()(std::uint64_t n) const { return n % 2 == 0 ? n == 2 : (word(n) >> n / 2 % 64 & 1) != 0; }

private:
    std::uint64_t& word(std::uint64_t n) const { return bits_[static_cast<std::size_t>(n / 128)]; }

    HeapArray<std::uint64_t> bits_;
};

template <class Test> void mark(M<double> const& marks, M<double> const& numbers, Test const& is_prime_number)
{
    double* const to = marks.addr();
    double const* const from = numbers.addr();
    parallel_for(numbers.size(), share_of_thread, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        for (std::ptrdiff_t k = begin; k < end; ++k)
            // Above 2^53 every double is even.
            to[k] = from[k] < two_to_53 && is_prime_number(static_cast<std::uint64_t>(static_cast<std::int64_t>(from[k])));
    });
}

// --- factorials ----------------------------------------------------------------------------------

constexpr int largest_factorial = 170;

// n! as a whole number, and as the nearest double.
class Factorial {
public:
    constexpr void multiply(std::uint32_t n)
    {
        std::uint64_t carry = 0;
        for (std::uint32_t& limb : limbs_) {
            carry += static_cast<std::uint64_t>(limb) * n;
            limb = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    constexpr double rounded() const
    {
        std::size_t top = limbs_.size() - 1;
        while (top > 1 && limbs_[top] == 0)
            --top;
        // The 64 highest bits, the last one set when anything follows.
        std::uint64_t leading = static_cast<std::uint64_t>(limbs_[top]) << 32 | limbs_[top - 1];
        int const shift = std::countl_zero(leading);
        leading <<= shift;
        bool more = false;
        if (top >= 2) {
            leading |= static_cast<std::uint64_t>(limbs_[top - 2]) << shift >> 32;
            more = static_cast<std::uint32_t>(static_cast<std::uint64_t>(limbs_[top - 2]) << shift) != 0;
            for (std::size_t k = 0; k + 2 < top; ++k)
                more = more || limbs_[k] != 0;
        }
        double value = static_cast<double>(leading | (more ? 1 : 0));
        int exponent = 32 * (static_cast<int>(top) - 1) - shift;
        for (; exponent > 0; --exponent)
            value *= 2;
        for (; exponent < 0; ++exponent)
            value /= 2;
        return value;
    }

private:
    std::array<std::uint32_t, 33> limbs_{1};
};

constexpr std::array<double, largest_factorial + 1> factorial_table()
{
    std::array<double, largest_factorial + 1> table{1};
    Factorial product;
    for (int n = 1; n <= largest_factorial; ++n) {
        product.multiply(static_cast<std::uint32_t>(n));
        table[static_cast<std::size_t>(n)] = product.rounded();
    }
    return table;
}
constexpr std::array<double, largest_factorial + 1> factorials = factorial_table();

// --- arrangements --------------------------------------------------------------------------------

// C(n, k), exact up to 2^53. It at least doubles with every step, so that there are few.
double binomial(double n, double k)
{
    k = std::min(k, n - k);
    double count = 1;
    for (double i = 1; i <= k && std::isfinite(count); ++i) {
        // count * (n - k + i) / i, a whole number, without passing through a larger one.
        double const common = common_divisor(count, i);
        count = count < two_to_53 ? count / common * ((n - k + i) / (i / common)) : count * ((n - k + i) / i);
    }
    return k < 0 ? 0 : count;
}

// Writes rows of elements of `from`, chosen and put in order by `position`, which `advance` takes from
// one row to the next.
template <class Advance> void write_rows(M<double> const& from, M<double> const& to, HeapArray<int> const& position, Advance advance)
{
    std::ptrdiff_t const rows = to.rows(), cols = to.cols();
    for (std::ptrdiff_t row = 0; row < rows; ++row) {
        for (std::ptrdiff_t col = 0; col < cols; ++col) {
            int const at = position[static_cast<std::size_t>(col)];
            to.addr()[row + col * rows] = from.addr()[at];
            if (to.isc())
                to.addi()[row + col * rows] = from.addi()[at];
        }
        advance();
    }
}

constexpr int most_permuted = 10;

// The next subset of {0, ..., n-1} in lexicographic order.
void next_subset(HeapArray<int> const& position, int n)
{
    int const k = static_cast<int>(position.size());
    int at = k - 1;
    while (at >= 0 && position[static_cast<std::size_t>(at)] == n - k + at)
        --at;
    if (at < 0)
        return;
    int value = ++position[static_cast<std::size_t>(at)];
    for (++at; at < k; ++at)
        position[static_cast<std::size_t>(at)] = ++value;
}

M<double> subsets(M<double> const& v, double k)
{
    double const rows = binomial(v.size(), k);
    if (k < 1 || k > v.size())
        return x_M;
    if (rows > std::numeric_limits<int>::max())
        return too_large();
    M<double> const from = full_form(v);
    HeapArray<int> const position(static_cast<std::size_t>(k));
    M<double> chosen = full_result(Dims(static_cast<int>(rows), static_cast<int>(k)), v.isc());
    if (!has_storage(from) || !position || !has_storage(chosen) || chosen.size() < 1)
        return x_M;
    std::iota(position.begin(), position.end(), 0);
    write_rows(from, chosen, position, [&] { next_subset(position, from.size()); });
    Access<double>::copy_kind(chosen, v);
    return chosen;
}

} // namespace

M<double> gcd(M<double> const& a, M<double> const& b)
{
    Divisors found;
    return find_divisors(a, b, false, found) ? found.g : x_M;
}

M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g)
{
    M<double> const made = gcd(a, b);
    g = made;
    return made;
}

M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g, Mr<double> c)
{
    Divisors found;
    if (!find_divisors(a, b, true, found))
        return no_results(g, c);
    g = found.g;
    c = found.c;
    return found.g;
}

M<double> gcd(M<double> const& a, M<double> const& b, i_o_t, Mr<double> g, Mr<double> c, Mr<double> d)
{
    Divisors found;
    if (!find_divisors(a, b, true, found))
        return no_results(g, c, d);
    g = found.g;
    c = found.c;
    d = found.d;
    return found.g;
}

M<double> lcm(M<double> const& a, M<double> const& b)
{
    Arguments const args("lcm");
    auto const is_positive = [](double v) { return is_integer(v) && v > 0; };
    // The elements that a sparse value does not store are zeros.
    if (!all_real(a, is_positive) || !all_real(b, is_positive) || a.getnnz() < a.size() || b.getnnz() < b.size()) {
        args.report("elements must be positive integers");
        return x_M;
    }
    OperandPair const pair(args.builtin(), a, b);
    if (!pair)
        return x_M;
    M<double> multiples = full_result(pair.shape());
    if (!has_storage(multiples))
        return x_M;
    double* const to = multiples.addr();
    parallel_for(pair.count(), share_of_thread, [&](std::ptrdiff_t from, std::ptrdiff_t end) {
        for (int k = static_cast<int>(from); k < end; ++k)
            to[k] = pair.a(k) / common_divisor(pair.a(k), pair.b(k)) * pair.b(k);
    });
    return multiples;
}

M<double> primes(M<double> const& n)
{
    Arguments const args("primes");
    if (n.size() < 1 || !args.scalar(n) || !args.real(n))
        return x_M;
    double const limit = std::floor(n[1]), room = primes_at_most(limit) + 1;
    if (!(limit >= 2))
        return x_M;
    if (room > Storage<double>::largest_count)
        return too_large();
    PrimeSieve sieve(static_cast<std::uint64_t>(limit));
    if (!sieve)
        return x_M;
    M<double> list = Access<double>::full_with_room(false, Dims(1, 1), static_cast<int>(room) + Storage<double>::spare);
    if (!has_storage(list))
        return x_M;
    double *const first = list.addr(), *end = first;
    *end++ = 2;
    while (sieve.next())
        sieve.for_each([&end](std::uint64_t p) { *end++ = static_cast<double>(p); });
    Access<double>::grow_in_place(list, Dims(1, static_cast<int>(end - first)));
    return list;
}

M<double> isprime(M<double> const& A)
{
    Arguments const args("isprime");
    if (!all_real(A, [](double v) { return is_integer(v) && v >= 0; })) {
        args.report("elements must be non-negative integers");
        return x_M;
    }
    M<double> const numbers = full_form(A);
    M<double> marks = full_result(shape_of(A));
    if (!has_storage(numbers) || !has_storage(marks))
        return x_M;
    // Sieving so many numbers costs less than testing one.
    constexpr double sieved_for_one = 64, worth_a_sieve = 1000;
    double const largest = A.size() < worth_a_sieve ? 0 : *std::max_element(numbers.addr(), numbers.addr() + A.size());
    if (largest > 0 && largest < sieved_for_one * A.size()) {
        PrimeTable const table(static_cast<std::uint64_t>(largest));
        if (!table)
            return x_M;
        mark(marks, numbers, table);
    } else
        mark(marks, numbers, is_prime);
    marks.setlogical(1);
    return marks;
}

M<double> factor(M<double> const& n)
{
    Arguments const args("factor");
    if (n.size() < 1 || !args.scalar(n) || !args.integer(n))
        return x_M;
    double number = n[1];
    // As many as the largest double has, which is a power of two times less than 2^53.
    std::uint64_t factors[std::numeric_limits<double>::max_exponent + most_factors];
    int count = 0;
    if (number < 4)
        return number;
    for (; number >= two_to_53; number /= 2)
        factors[count++] = 2;
    count += prime_factors(static_cast<std::uint64_t>(number), factors + count);
    M<double> list = full_result(Dims(1, count));
    if (!has_storage(list))
        return x_M;
    std::transform(factors, factors + count, list.addr(), [](std::uint64_t p) { return static_cast<double>(p); });
    return list;
}

M<double> factorial(M<double> const& n)
{
    Arguments const args("factorial");
    if (!all_real(n, [](double v) { return v >= 0 && (is_integer(v) || std::isinf(v)); })) {
        args.report("elements must be non-negative integers");
        return x_M;
    }
    M<double> const numbers = full_form(n);
    M<double> products = full_result(shape_of(n));
    if (!has_storage(numbers) || !has_storage(products))
        return x_M;
    std::transform(numbers.addr(), numbers.addr() + numbers.size(), products.addr(), [](double v) {
        return v > largest_factorial ? std::numeric_limits<double>::infinity() : factorials[static_cast<std::size_t>(v)];
    });
    return products;
}

M<double> perms(M<double> const& v)
{
    Arguments const args("perms");
    if (v.size() > most_permuted) {
        args.report("too many elements");
        return x_M;
    }
    if (v.size() < 1)
        return x_M;
    M<double> const from = full_form(v);
    HeapArray<int> const position(static_cast<std::size_t>(v.size()));
    M<double> rows = full_result(Dims(static_cast<int>(factorials[static_cast<std::size_t>(v.size())]), v.size()), v.isc());
    if (!has_storage(from) || !position || !has_storage(rows))
        return x_M;
    std::iota(position.begin(), position.end(), 0);
    std::reverse(position.begin(), position.end());
    write_rows(from, rows, position, [&] { std::prev_permutation(position.begin(), position.end()); });
    Access<double>::copy_kind(rows, v);
    return rows;
}

M<double> nchoosek(M<double> const& n, M<double> const& k)
{
    Arguments const args("nchoosek");
    if (n.size() < 1 || k.size() < 1 || !args.vector(n) || !args.scalar(k) || !args.integer(k) || (n.size() == 1 && !args.integer(n)))
        return x_M;
    if (k[1] < 0 || (n.size() == 1 && n[1] < 0)) {
        args.report("arguments must not be negative");
        return x_M;
    }
    if (n.size() > 1)
        return subsets(n, k[1]);
    double const count = binomial(n[1], k[1]);
    if (count > two_to_53)
        args.warn("result may be inexact");
    return count;
}
