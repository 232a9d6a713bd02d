// median: the middle elements are selected, nothing is sorted.
#include "core/heap_array.h"
#include "ops/kernels/dimension.h"
#include "ops/kernels/dimension_split.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>

namespace arrlib {

namespace {

double mean(double a, double b)
{
    double const sum = a + b;
    return std::isfinite(sum) ? sum / 2 : a / 2 + b / 2;
}

// The NaN of the language.
double missing()
{
    return std::bit_cast<double>(std::uint64_t{0x7FFFFFFFFFFFFFFF});
}

// --- real vectors ---------------------------------------------------------------------------------

struct Real {
    using Number = double;
    DimensionWork const& work;

    double read(std::ptrdiff_t at) const { return work.x[at]; }
    void write(std::ptrdiff_t column, double a, double b) const { work.re[column] = mean(a, b); }
    void write_nan(std::ptrdiff_t column) const { work.re[column] = missing(); }
};

// --- complex vectors, in the order of the moduli, equal ones in that of the angles ----------------

struct Polar {
    double modulus, angle;
    nx_complex value;
};

struct Complex {
    using Number = Polar;
    DimensionWork const& work;

    Polar read(std::ptrdiff_t at) const
    {
        nx_complex const value{work.x[at], work.xi[at]};
        return {std::hypot(value.re, value.im), std::atan2(value.im, value.re), value};
    }
    static constexpr auto less = [](Polar const& a, Polar const& b) { return a.modulus < b.modulus || (a.modulus == b.modulus && a.angle < b.angle); };
    static constexpr auto is_nan = [](Polar const& x) { return x.value.re != x.value.re || x.value.im != x.value.im; };
    void write(std::ptrdiff_t column, Polar const& a, Polar const& b) const
    {
        work.re[column] = mean(a.value.re, b.value.re);
        work.im[column] = mean(a.value.im, b.value.im);
    }
    void write_nan(std::ptrdiff_t column) const
    {
        work.re[column] = missing();
        work.im[column] = 0;
    }
};

// --- selection ------------------------------------------------------------------------------------

// The numbers of ranks k - 1 and k of an even number of them; else the lower one does not count.
struct Middle {
    double lower, upper;
};

// Of few numbers: by their ranks, equal ones in their order. `lower` is for k = 0. Places are chosen
// without branches, which would be guessed wrong.
Middle select_by_rank(double const* x, std::ptrdiff_t n, std::ptrdiff_t k, double lower)
{
    std::ptrdiff_t at = 0, before = 0;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        std::ptrdiff_t rank = 0;
        for (std::ptrdiff_t j = 0; j < i; ++j)
            rank += x[j] <= x[i];
        for (std::ptrdiff_t j = i + 1; j < n; ++j)
            rank += x[j] < x[i];
        at += i & -static_cast<std::ptrdiff_t>(rank == k);
        before += i & -static_cast<std::ptrdiff_t>(rank == k - 1);
    }
    return {k > 0 ? x[before] : lower, x[at]};
}

// Moves the numbers below the pivot to the front and returns their number; without branches, which
// would be guessed wrong every other time.
std::ptrdiff_t partition(double* x, std::ptrdiff_t n, double pivot)
{
    std::ptrdiff_t front = 0;
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        double const value = x[k];
        x[k] = x[front];
        x[front] = value;
        front += value < pivot;
    }
    return front;
}

double median_of_three(double a, double b, double c)
{
    double const low = a < b ? a : b, high = a < b ? b : a;
    return c < low ? low : c < high ? c : high;
}

// Rearranges the numbers, none of which is NaN.
Middle select(double* x, std::ptrdiff_t n, std::ptrdiff_t k)
{
    constexpr std::ptrdiff_t few = 16;
    // The number before x, once k is 0.
    double lower = 0;
    auto const drop_front = [&](std::ptrdiff_t count) {
        if (count > 0 && k == count)
            lower = *std::max_element(x, x + count);
        x += count;
        n -= count;
        k -= count;
    };
    for (int tries = 0; n > few; ++tries) {
        if (tries == 100) {
            // Numbers in an order that defeats the choice of pivots.
            std::nth_element(x, x + k, x + n);
            return {k > 0 ? *std::max_element(x, x + k) : lower, x[k]};
        }
        double const pivot = median_of_three(x[n / 4], x[n / 2], x[n / 4 * 3]);
        std::ptrdiff_t const below = partition(x, n, pivot);
        if (k < below) {
            n = below;
            continue;
        }
        drop_front(below);
        if (below > 0)
            continue;
        // Nothing is smaller than the pivot.
        std::ptrdiff_t const equal = std::partition(x, x + n, [pivot](double value) { return value == pivot; }) - x;
        if (k < equal)
            return {k > 0 ? pivot : lower, pivot};
        drop_front(equal);
    }
    return select_by_rank(x, n, k, lower);
}

// Two numbers of a sample between which the number of rank k lies, as a rule.
struct Bracket {
    double low, high;

    Bracket(double const* x, std::ptrdiff_t n, std::ptrdiff_t k)
    {
        constexpr std::ptrdiff_t most = 4096;
        std::ptrdiff_t const count = n < (1 << 15) ? 256 : n < (1 << 20) ? 1024 : most;
        // About three standard deviations of the rank in the sample.
        std::ptrdiff_t const margin = count == most ? 112 : count == 1024 ? 56 : 26;
        double sample[most];
        std::uint64_t state = 1;
        for (std::ptrdiff_t s = 0; s < count; ++s) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            double const value = x[((state >> 33) * static_cast<std::uint64_t>(n)) >> 31];
            // The search will come upon the NaN itself.
            sample[s] = value == value ? value : 0;
        }
        std::ptrdiff_t const middle = static_cast<std::ptrdiff_t>(static_cast<double>(k) / static_cast<double>(n) * static_cast<double>(count));
        double* const first = sample + std::clamp<std::ptrdiff_t>(middle - margin, 0, count - 1);
        double* const last = sample + std::clamp<std::ptrdiff_t>(middle + margin, 0, count - 1);
        std::nth_element(sample, first, sample + count);
        low = *first;
        std::nth_element(first, last, sample + count);
        high = *last;
    }
};

// How many numbers lie where; those inside the bracket have been copied.
struct Found {
    std::ptrdiff_t below = 0, inside = 0, above = 0;
};

Found find_inside(double const* x, std::ptrdiff_t n, Bracket const& bracket, double* inside)
{
    Found found;
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        double const value = x[k];
        bool const low = value < bracket.low, high = value > bracket.high;
        inside[found.inside] = value;
        found.below += low;
        found.above += high;
        found.inside += (value >= bracket.low) & !high;
    }
    return found;
}

// The same by several threads, for long vectors.
Found find_inside_by_pieces(double const* x, std::ptrdiff_t n, Bracket const& bracket, double* inside)
{
    constexpr std::ptrdiff_t pieces = 16;
    auto const start = [n](std::ptrdiff_t p) { return n / pieces * p + std::min(p, n % pieces); };
    Found found[pieces];
    parallel_for(pieces, units_per_thread(n / pieces * 2), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t p = from; p < to; ++p)
            found[p] = find_inside(x + start(p), start(p + 1) - start(p), bracket, inside + start(p));
    });
    Found all = found[0];
    for (std::ptrdiff_t p = 1; p < pieces; ++p) {
        std::copy_n(inside + start(p), found[p].inside, inside + all.inside);
        all.below += found[p].below;
        all.above += found[p].above;
        all.inside += found[p].inside;
    }
    return all;
}

// From how many numbers on all threads work at one vector.
constexpr std::ptrdiff_t many = 1 << 17;

// The middle of n numbers; false when one of them is NaN. `room` is for n numbers, and may not
// overlap with x.
bool select_middle(double const* x, std::ptrdiff_t n, double* room, Middle& middle)
{
    constexpr std::ptrdiff_t few = 4096;
    bool const even = n % 2 == 0;
    std::ptrdiff_t k = n / 2, left = n;
    if (n < few) {
        int missing_numbers = 0;
        for (std::ptrdiff_t e = 0; e < n; ++e) {
            room[e] = x[e];
            missing_numbers |= x[e] != x[e];
        }
        if (missing_numbers)
            return false;
    }
    double* target = room;
    while (left >= few && target + left <= room + n) {
        Bracket const bracket(x, left, k);
        Found const found = left >= many ? find_inside_by_pieces(x, left, bracket, target) : find_inside(x, left, bracket, target);
        if (found.below + found.inside + found.above < left)
            return false;
        if (k - even < found.below || k >= found.below + found.inside)
            break;
        k -= found.below;
        left = found.inside;
        x = target;
        target += left;
    }
    if (n >= few && x != room)
        std::copy_n(x, left, room);
    middle = select(room, left, k);
    return true;
}

// --- the vectors ----------------------------------------------------------------------------------

void median(Real const& element, std::ptrdiff_t column, double const* x, std::ptrdiff_t n, double* room)
{
    Middle middle{};
    if (select_middle(x, n, room, middle))
        element.write(column, n % 2 == 0 ? middle.lower : middle.upper, middle.upper);
    else
        element.write_nan(column);
}

void median(Complex const& element, std::ptrdiff_t column, Polar const* x, std::ptrdiff_t n, Polar* room)
{
    if (std::any_of(x, x + n, Complex::is_nan))
        return element.write_nan(column);
    std::copy_n(x, n, room);
    Polar* const middle = room + n / 2;
    std::nth_element(room, middle, room + n, Complex::less);
    element.write(column, n % 2 == 0 ? *std::max_element(room, middle, Complex::less) : *middle, *middle);
}

template <class Element> class Medians {
public:
    explicit Medians(DimensionWork const& work) : element_{work}, axis_(work.axis), vectors_(axis_.stride * axis_.outer) {}

    // False after a report.
    bool run() const
    {
        std::ptrdiff_t const n = axis_.length;
        if (n == 0) {
            for (std::ptrdiff_t v = 0; v < vectors_; ++v)
                element_.write_nan(v);
            return true;
        }
        bool const one_by_one = n >= many;
        std::ptrdiff_t const wanted = one_by_one ? 1 : 4 * parallel_width() * units_per_thread(n);
        std::ptrdiff_t const at_once = std::min(vectors_, (wanted + together() - 1) / together() * together());
        HeapArray<Number> slots(static_cast<std::size_t>(at_once * slot_size()));
        if (!slots)
            return false;
        for (std::ptrdiff_t first = 0; first < vectors_; first += at_once) {
            auto const work = [&](std::ptrdiff_t from, std::ptrdiff_t to) { medians(first + from, first + to, slots.data() + from * slot_size()); };
            std::ptrdiff_t const count = std::min(at_once, vectors_ - first);
            if (one_by_one)
                work(0, count);
            else
                parallel_for(count, together(), work);
        }
        return true;
    }

private:
    using Number = typename Element::Number;

    // Vectors that share cache lines are read together.
    std::ptrdiff_t together() const { return std::min<std::ptrdiff_t>(axis_.stride, 8); }
    // A real vector without gaps is read where it is.
    bool copies() const { return !std::is_same_v<Number, double> || axis_.stride > 1; }
    // The copy of a vector, and the room for the selection.
    std::ptrdiff_t slot_size() const { return copies() ? 2 * axis_.length : axis_.length; }

    std::ptrdiff_t start_of(std::ptrdiff_t vector) const
    {
        return vector / axis_.stride * axis_.length * axis_.stride + vector % axis_.stride;
    }

    void medians(std::ptrdiff_t from, std::ptrdiff_t to, Number* slots) const
    {
        std::ptrdiff_t const n = axis_.length;
        while (from < to) {
            std::ptrdiff_t const count = std::min({together(), to - from, axis_.stride - from % axis_.stride});
            if (copies())
                for (std::ptrdiff_t k = 0; k < n; ++k)
                    for (std::ptrdiff_t j = 0; j < count; ++j)
                        slots[j * 2 * n + k] = element_.read(start_of(from) + k * axis_.stride + j);
            for (std::ptrdiff_t j = 0; j < count; ++j, slots += slot_size())
                if constexpr (std::is_same_v<Number, double>)
                    median(element_, from + j, copies() ? slots : element_.work.x + start_of(from + j), n, copies() ? slots + n : slots);
                else
                    median(element_, from + j, slots, n, slots + n);
            from += count;
        }
    }

    Element element_;
    Axis const& axis_;
    std::ptrdiff_t vectors_;
};

} // namespace

bool along_median(DimensionWork const& work)
{
    if (work.im && work.xi)
        return Medians<Complex>(work).run();
    if (work.im)
        std::fill_n(work.im, work.axis.stride * work.axis.outer, 0.0);
    return Medians<Real>(work).run();
}

} // namespace arrlib
