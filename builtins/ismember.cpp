// Membership: of many numbers among very few by comparing, of few among many and of many among few by
// searching, of many among many by sorting all of them.
#include "builtins/set_operands.h"
#include "builtins/sets.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using namespace arrlib;

namespace {

// Up to this many distinct numbers are searched: their keys stay in the nearest caches.
constexpr int most_searched = 1 << 15;
// Up to this many numbers are compared one by one, several members at once.
constexpr int most_compared = 16;
constexpr std::ptrdiff_t least_work = std::ptrdiff_t{1} << 14;

// The distinct ones of a few numbers.
class SearchedKeys {
public:
    explicit SearchedKeys(M<double> const& x) : keys_(static_cast<std::size_t>(x.size()) + 1), first_(static_cast<std::size_t>(x.size()) + 1)
    {
        auto const size = static_cast<std::size_t>(x.size());
        HeapArray<Keyed> items(2 * size + 1);
        if (!items || !keys_ || !first_)
            return;
        for (std::size_t k = 0; k < size; ++k)
            items[k] = {order_key(x.addr()[k]), static_cast<int>(k)};
        sort_stable(items.data(), items.data() + size, x.size());
        for (std::size_t k = 0; k < size && items[k].key != nan_key; ++k) {
            if (count_ > 0 && keys_.data()[count_ - 1] == items[k].key)
                continue;
            keys_.data()[count_] = items[k].key;
            first_.data()[count_++] = items[k].position;
        }
        ok_ = true;
    }

    explicit operator bool() const { return ok_; }
    int count() const { return count_; }
    // Where the number stands among the distinct ones, or -1.
    int find(double number) const
    {
        if (count_ == 0 || number != number)
            return -1;
        OrderKey const key = order_key(number);
        // The last key that is not larger; without branches, which would be guessed wrong.
        OrderKey const* base = keys_.data();
        for (std::ptrdiff_t left = count_; left > 1;) {
            std::ptrdiff_t const half = left / 2;
            base += base[half] <= key ? half : 0;
            left -= half;
        }
        return *base == key ? static_cast<int>(base - keys_.data()) : -1;
    }
    // Position of the first number equal to distinct one `at`.
    int first_position(int at) const { return first_.data()[at]; }

private:
    HeapArray<OrderKey> keys_;
    HeapArray<int> first_;
    int count_ = 0;
    bool ok_ = false;
};

// Where the answers go: whether a member is in the set, and, unless null, its first position there.
struct Answers {
    double* is;
    double* positions;

    // Positions count from 1; 0 for what is not in the set.
    void set(std::ptrdiff_t member, int position) const
    {
        is[member] = position > 0 ? 1 : 0;
        if (positions)
            positions[member] = position;
    }
};

// Two numbers at once, in the vectors that every processor has.
using Numbers = double __attribute__((vector_size(16)));
using Bits = std::int64_t __attribute__((vector_size(16)));
constexpr std::ptrdiff_t at_once = 8;

// Whether each of `at_once` numbers equals one of `set`.
void compare_with_all(double const* numbers, double const* set, int count, double* is)
{
    constexpr std::ptrdiff_t width = 2, vectors = at_once / width;
    Numbers x[vectors];
    Bits equal[vectors] = {};
    std::memcpy(x, numbers, sizeof x);
    for (int k = 0; k < count; ++k) {
        Numbers const one{set[k], set[k]};
        for (std::ptrdiff_t v = 0; v < vectors; ++v)
            equal[v] |= x[v] == one;
    }
    Numbers const yes{1, 1};
    for (Bits& mask : equal)
        mask &= reinterpret_cast<Bits>(yes);
    std::memcpy(is, equal, sizeof equal);
}

void among_very_few(M<double> const& numbers, M<double> const& set, double* is)
{
    double const* const x = numbers.addr();
    parallel_for(numbers.size(), least_work, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        std::ptrdiff_t k = from;
        for (; k + at_once <= to; k += at_once)
            compare_with_all(x + k, set.addr(), set.size(), is + k);
        for (; k < to; ++k)
            is[k] = std::find(set.addr(), set.addr() + set.size(), x[k]) != set.addr() + set.size() ? 1 : 0;
    });
}

// Each of these is false after a report.
bool among_few(M<double> const& numbers, M<double> const& set, Answers const& answers)
{
    SearchedKeys const keys(set);
    if (!keys)
        return false;
    parallel_for(numbers.size(), least_work, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t k = from; k < to; ++k) {
            int const at = keys.find(numbers.addr()[k]);
            answers.set(k, at < 0 ? 0 : keys.first_position(at) + 1);
        }
    });
    return true;
}

bool few_among(M<double> const& numbers, M<double> const& set, Answers const& answers)
{
    SearchedKeys const keys(numbers);
    HeapArray<int> seen(static_cast<std::size_t>(keys.count()) + 1);
    if (!keys || !seen)
        return false;
    std::fill_n(seen.data(), keys.count(), 0);
    int missing = keys.count();
    for (int k = 0; k < set.size() && missing > 0; ++k) {
        int const at = keys.find(set.addr()[k]);
        if (at >= 0 && seen.data()[at] == 0) {
            seen.data()[at] = k + 1;
            --missing;
        }
    }
    for (int k = 0; k < numbers.size(); ++k) {
        int const at = keys.find(numbers.addr()[k]);
        answers.set(k, at < 0 ? 0 : seen.data()[at]);
    }
    return true;
}

template <class Operands> bool by_order(Operands const& of, Answers const& answers)
{
    Ordering order;
    if (!of.sort(order))
        return false;
    int const first_count = of.first_count(), count = of.count();
    for (int k = 0; k < count;) {
        // Equal members stand in the order of their positions: those of the first operand come first.
        int const start = k;
        while (k < count && order.position(k) < first_count && (k == start || order.same(k)))
            ++k;
        bool const is_member = k < count && order.position(k) >= first_count && (k == start || order.same(k));
        int const position = is_member ? order.position(k) - first_count + 1 : 0;
        for (int member = start; member < k; ++member)
            answers.set(order.position(member), position);
        while (k < count && order.position(k) >= first_count && (k == start || order.same(k)))
            ++k;
    }
    return true;
}

bool find_members(NumberOperands const& of, Answers const& answers)
{
    if (of.by_rows() || of.a().isc() || of.b().isc())
        return by_order(of, answers);
    if (of.b().size() <= most_compared && !answers.positions) {
        among_very_few(of.a(), of.b(), answers.is);
        return true;
    }
    if (of.b().size() <= most_searched)
        return among_few(of.a(), of.b(), answers);
    return of.a().size() <= most_searched / 16 ? few_among(of.a(), of.b(), answers) : by_order(of, answers);
}

bool find_members(TextOperands const& of, Answers const& answers)
{
    return by_order(of, answers);
}

struct Membership {
    M<double> is, position;
};

Membership unknown()
{
    return {x_M, x_M};
}

template <class Operands> Membership membership(Operands const& of, Dims const& shape, bool with_positions)
{
    if (!of)
        return unknown();
    Membership made{full_result(shape), with_positions ? full_result(shape) : Access<double>::without_storage()};
    if (!has_storage(made.is) || (with_positions && !has_storage(made.position)))
        return unknown();
    if (shape.count > 0 && !find_members(of, {made.is.addr(), with_positions ? made.position.addr() : nullptr}))
        return unknown();
    made.is.setlogical(1);
    return made;
}

constexpr Arguments arguments("ismember");

Membership members(M<double> const& A, M<double> const& S, M<double> const& option, bool with_positions)
{
    NumberOperands const of(arguments, A, S, option);
    return membership(of, of.by_rows() ? Dims(A.rows(), 1) : shape_of(A), with_positions);
}

Membership members(M<double> const& A, M<M<double>> const& S, bool with_positions)
{
    bool const one_text = A.size() == 0 || (A.isstr() && A.getndims() == 2 && A.rows() == 1);
    if (!one_text) {
        arguments.report("argument must be a string");
        return unknown();
    }
    M<M<double>> const text(A);
    if (!text.addr())
        return unknown();
    return membership(TextOperands(arguments, text, S), Dims(1, 1), with_positions);
}

Membership members(M<M<double>> const& A, M<M<double>> const& S, bool with_positions)
{
    return membership(TextOperands(arguments, A, S), shape_of(A), with_positions);
}

M<double> give(Membership const& made, Mr<double>& tf)
{
    tf = made.is;
    return made.is;
}

M<double> give(Membership const& made, Mr<double>& tf, Mr<double>& k)
{
    k = made.position;
    return give(made, tf);
}

} // namespace

M<double> ismember(M<double> const& A, M<double> const& S) { return members(A, S, nop_M, false).is; }
M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option) { return members(A, S, option, false).is; }
M<double> ismember(M<double> const& A, M<double> const& S, i_o_t, Mr<double> tf) { return give(members(A, S, nop_M, false), tf); }
M<double> ismember(M<double> const& A, M<double> const& S, i_o_t, Mr<double> tf, Mr<double> k) { return give(members(A, S, nop_M, true), tf, k); }
M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option, i_o_t, Mr<double> tf) { return give(members(A, S, option, false), tf); }
M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option, i_o_t, Mr<double> tf, Mr<double> k)
{
    return give(members(A, S, option, true), tf, k);
}
M<double> ismember(M<double> const& A, M<M<double>> const& S) { return members(A, S, false).is; }
M<double> ismember(M<double> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf) { return give(members(A, S, false), tf); }
M<double> ismember(M<double> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf, Mr<double> k) { return give(members(A, S, true), tf, k); }
M<double> ismember(M<M<double>> const& A, M<M<double>> const& S) { return members(A, S, false).is; }
M<double> ismember(M<M<double>> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf) { return give(members(A, S, false), tf); }
M<double> ismember(M<M<double>> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf, Mr<double> k) { return give(members(A, S, true), tf, k); }
