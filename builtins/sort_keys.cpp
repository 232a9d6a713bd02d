// Few elements are merged, many are distributed by the leading digits of their keys, from the least of
// them to the first; what those leave tied is sorted by the rest. Threads sort runs of a large array and
// share in merging them.
#include "builtins/sort_keys.h"

#include "runtime/workers.h"

#include <algorithm>

namespace arrlib {

namespace {

constexpr std::ptrdiff_t insertion_run = 16;
// Up to here merging is faster than counting.
constexpr std::ptrdiff_t most_merged = 256;
// From here on larger digits pay for their larger tables.
constexpr std::ptrdiff_t many = 8192;
constexpr int small_digit = 8, largest_digit = 11;
// Bits beyond those that number the elements, so that ties are rare: exponents take some.
constexpr int extra_bits = 13;
constexpr int most_passes = 4;
// Elements of a run that is worth a thread of its own.
constexpr std::ptrdiff_t least_run = std::ptrdiff_t{1} << 16;
constexpr std::ptrdiff_t merge_piece = std::ptrdiff_t{1} << 14;
constexpr int most_runs = 16;

inline OrderKey key_of(double number) { return order_key(number); }
inline OrderKey key_of(Keyed const& item) { return item.key; }
inline bool less(double a, double b) { return (a == a) & !(b <= a); }
inline bool less(Keyed const& a, Keyed const& b) { return a.key < b.key; }

template <class T> void insertion_sort(T* x, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 1; k < n; ++k) {
        T const moving = x[k];
        std::ptrdiff_t at = k;
        for (; at > 0 && less(moving, x[at - 1]); --at)
            x[at] = x[at - 1];
        x[at] = moving;
    }
}

// Places are chosen without branches, which would be guessed wrong every other time.
template <class T> void merge(T const* a, T const* a_end, T const* b, T const* b_end, T* to)
{
    while (a != a_end && b != b_end) {
        bool const second = less(*b, *a);
        *to++ = *(second ? b : a);
        a += !second;
        b += second;
    }
    to = std::copy(a, a_end, to);
    std::copy(b, b_end, to);
}

template <class T> void deliver(T const* from, T* result, std::ptrdiff_t n)
{
    if (from != result)
        std::copy(from, from + n, result);
}

template <class T> void merge_sort(T* data, T* spare, std::ptrdiff_t n, T* result)
{
    for (std::ptrdiff_t k = 0; k < n; k += insertion_run)
        insertion_sort(data + k, std::min(insertion_run, n - k));
    T *from = data, *to = spare;
    for (std::ptrdiff_t run = insertion_run; run < n; run *= 2, std::swap(from, to))
        for (std::ptrdiff_t k = 0; k < n; k += 2 * run) {
            T const *const middle = from + std::min(k + run, n), *const end = from + std::min(k + 2 * run, n);
            merge(from + k, middle, middle, end, to + k);
        }
    deliver(from, result, n);
}

// --- what is in order already ---------------------------------------------------------------------

template <class T> bool is_rising(T const* x, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 1; k < n; ++k)
        if (less(x[k], x[k - 1]))
            return false;
    return true;
}

template <class T> bool is_falling(T const* x, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 1; k < n; ++k)
        if (less(x[k - 1], x[k]))
            return false;
    return true;
}

// Turns falling elements round, equal ones back again.
template <class T> void turn(T* x, std::ptrdiff_t n)
{
    std::reverse(x, x + n);
    for (std::ptrdiff_t from = 0, to; from < n; from = to) {
        for (to = from + 1; to < n && !less(x[from], x[to]);)
            ++to;
        std::reverse(x + from, x + to);
    }
}

// True when nothing was left to do.
template <class T> bool was_in_order(T* x, std::ptrdiff_t n)
{
    if (is_rising(x, n))
        return true;
    if (!is_falling(x, n))
        return false;
    turn(x, n);
    return true;
}

// --- counting -------------------------------------------------------------------------------------

// The digits to distribute by: bits from `low` on, in `passes` digits of `bits` each.
struct Digits {
    int low, bits, passes;
};

// `differing` holds the bits in which keys differ: the leading ones, enough to tell most keys apart.
Digits choose_digits(OrderKey differing, std::ptrdiff_t n)
{
    int const high = static_cast<int>(std::bit_width(differing)), lowest = std::countr_zero(differing);
    int const widest = n < many ? small_digit : largest_digit;
    int const wanted = std::min(high - lowest, static_cast<int>(std::bit_width(static_cast<std::size_t>(n))) + extra_bits);
    int const passes = std::min((wanted + widest - 1) / widest, most_passes);
    int const low = std::max(lowest, high - passes * widest);
    return {low, (high - low + passes - 1) / passes, passes};
}

template <class T> void sort_run(T* data, T* spare, std::ptrdiff_t n, T* result);

// Sorts the elements that agree in all bits from `low` on and are not in order.
template <class T> void sort_ties(T* x, T* spare, std::ptrdiff_t n, int low)
{
    for (std::ptrdiff_t k = 1; k < n; ++k) {
        if (!less(x[k], x[k - 1]))
            continue;
        OrderKey const leading = key_of(x[k]) >> low;
        std::ptrdiff_t from = k - 1, to = k + 1;
        while (from > 0 && key_of(x[from - 1]) >> low == leading)
            --from;
        while (to < n && key_of(x[to]) >> low == leading)
            ++to;
        sort_run(x + from, spare + from, to - from, x + from);
        k = to;
    }
}

template <class T> void counting_sort(T* data, T* spare, std::ptrdiff_t n, T* result)
{
    OrderKey const first = key_of(data[0]);
    OrderKey differing = 0;
    for (std::ptrdiff_t k = 0; k < n; ++k)
        differing |= key_of(data[k]) ^ first;
    Digits const digits = choose_digits(differing, n);
    OrderKey const mask = (OrderKey{1} << digits.bits) - 1;

    std::uint32_t counts[most_passes][1u << largest_digit];
    for (int pass = 0; pass < digits.passes; ++pass)
        std::fill_n(counts[pass], mask + 1, 0u);
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        OrderKey const key = key_of(data[k]) >> digits.low;
        for (int pass = 0; pass < digits.passes; ++pass)
            ++counts[pass][(key >> (pass * digits.bits)) & mask];
    }

    T *from = data, *to = spare;
    for (int pass = 0; pass < digits.passes; ++pass) {
        int const shift = digits.low + pass * digits.bits;
        std::uint32_t* const starts = counts[pass];
        if (starts[(first >> shift) & mask] == static_cast<std::uint32_t>(n))
            continue;
        std::uint32_t start = 0;
        for (OrderKey digit = 0; digit <= mask; ++digit) {
            std::uint32_t const here = starts[digit];
            starts[digit] = start;
            start += here;
        }
        for (std::ptrdiff_t k = 0; k < n; ++k) {
            T const moving = from[k];
            to[starts[(key_of(moving) >> shift) & mask]++] = moving;
        }
        std::swap(from, to);
    }
    deliver(from, result, n);
    if (digits.low > std::countr_zero(differing))
        sort_ties(result, result == data ? spare : data, n, digits.low);
}

// `result` is `data` or `spare`; the other one is left in any state.
template <class T> void sort_run(T* data, T* spare, std::ptrdiff_t n, T* result)
{
    if (n <= insertion_run) {
        insertion_sort(data, n);
        deliver(data, result, n);
    } else if (was_in_order(data, n)) {
        deliver(data, result, n);
    } else if (n <= most_merged) {
        merge_sort(data, spare, n, result);
    } else {
        counting_sort(data, spare, n, result);
    }
}

// --- runs on threads of their own -----------------------------------------------------------------

// How many elements of `a` are among the first `k` of a merged with b.
template <class T> std::ptrdiff_t taken_from_first(T const* a, std::ptrdiff_t na, T const* b, std::ptrdiff_t nb, std::ptrdiff_t k)
{
    std::ptrdiff_t low = std::max<std::ptrdiff_t>(0, k - nb), high = std::min(k, na);
    while (low < high) {
        std::ptrdiff_t const i = low + (high - low) / 2;
        if (less(b[k - i - 1], a[i]))
            high = i;
        else
            low = i + 1;
    }
    return low;
}

// Elements [from, to) of what neighbouring runs give when they are merged in pairs.
template <class T> class PairMerge {
public:
    PairMerge(T const* from, T* to, std::ptrdiff_t n, int runs) : from_(from), to_(to), n_(n), runs_(runs) {}

    void operator()(std::ptrdiff_t first, std::ptrdiff_t last) const
    {
        for (int run = 0; run < runs_; run += 2) {
            std::ptrdiff_t const start = run_start(n_, runs_, run), middle = run_start(n_, runs_, run + 1), end = run_start(n_, runs_, run + 2);
            std::ptrdiff_t const one = std::max(first, start) - start, other = std::min(last, end) - start;
            if (one >= other)
                continue;
            T const *const a = from_ + start, *const b = from_ + middle;
            std::ptrdiff_t const a_one = taken_from_first(a, middle - start, b, end - middle, one);
            std::ptrdiff_t const a_other = taken_from_first(a, middle - start, b, end - middle, other);
            merge(a + a_one, a + a_other, b + (one - a_one), b + (other - a_other), to_ + start + one);
        }
    }
    static std::ptrdiff_t run_start(std::ptrdiff_t n, int runs, int run)
    {
        return static_cast<std::ptrdiff_t>(static_cast<std::int64_t>(n) * run / runs);
    }

private:
    T const* from_;
    T* to_;
    std::ptrdiff_t n_;
    int runs_;
};

int run_count(std::ptrdiff_t n)
{
    if (n < 2 * least_run)
        return 1;
    std::ptrdiff_t const most = std::min<std::ptrdiff_t>({n / least_run, parallel_width(), most_runs});
    return static_cast<int>(std::bit_floor(static_cast<unsigned>(most)));
}

template <class T> void sort_shared(T* data, T* spare, std::ptrdiff_t n)
{
    int runs = run_count(n);
    if (runs == 1 || was_in_order(data, n)) {
        if (runs == 1)
            sort_run(data, spare, n, data);
        return;
    }
    bool const odd_rounds = std::countr_zero(static_cast<unsigned>(runs)) % 2 == 1;
    T *from = odd_rounds ? spare : data, *to = odd_rounds ? data : spare;
    parallel_for(runs, 1, [=](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t run = first; run < last; ++run) {
            std::ptrdiff_t const start = PairMerge<T>::run_start(n, runs, static_cast<int>(run));
            std::ptrdiff_t const end = PairMerge<T>::run_start(n, runs, static_cast<int>(run) + 1);
            sort_run(data + start, spare + start, end - start, from + start);
        }
    });
    for (; runs > 1; runs /= 2) {
        parallel_for(n, merge_piece, PairMerge<T>(from, to, n, runs));
        std::swap(from, to);
    }
}

} // namespace

void sort_stable(double* numbers, double* spare, std::ptrdiff_t count)
{
    sort_shared(numbers, spare, count);
}

void sort_stable(Keyed* items, Keyed* spare, std::ptrdiff_t count)
{
    sort_shared(items, spare, count);
}

} // namespace arrlib
