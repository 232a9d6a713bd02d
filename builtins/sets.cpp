#include "builtins/sets.h"

#include "builtins/set_operands.h"
#include "core/read.h"

#include <algorithm>
#include <utility>

using namespace arrlib;

namespace {

template <class Value> struct Found {
    Value members;
    M<double> first, second;
    bool done = false;
};

template <class Value> Value neutral();
template <> M<double> neutral() { return x_M; }
template <> M<M<double>> neutral() { return x_M_of<M<double>>(); }

template <class Value> Found<Value> nothing()
{
    return {neutral<Value>(), x_M, x_M};
}

// Positions from 0 as a list of numbers from 1; without storage after a report.
M<double> position_list(int const* positions, int count, bool as_row)
{
    M<double> list = full_result(as_row ? Dims(1, count) : Dims(count, 1));
    if (has_storage(list))
        for (int k = 0; k < count; ++k)
            list.addr()[k] = positions[k] + 1.0;
    return list;
}

// --- distinct members -----------------------------------------------------------------------------

template <class Operands> Found<typename Operands::Value> distinct(Operands const& of)
{
    using Value = typename Operands::Value;
    Ordering order;
    HeapArray<int> last(static_cast<std::size_t>(of.count()) + 1);
    if (!last || !of.sort(order))
        return nothing<Value>();
    M<double> numbers = full_result(of.as_row() ? Dims(1, of.count()) : Dims(of.count(), 1));
    if (!has_storage(numbers))
        return nothing<Value>();
    int count = 0;
    for (int k = 0; k < of.count(); ++k) {
        count += k == 0 || !order.same(k);
        last.data()[count - 1] = order.position(k);
        numbers.addr()[order.position(k)] = count;
    }
    Found<Value> found{of.take(last.data(), count), position_list(last.data(), count, of.as_row()), std::move(numbers), true};
    return found.members.addr() && has_storage(found.first) ? found : nothing<Value>();
}

// Real numbers alone, without their positions.
Found<M<double>> distinct_numbers(M<double> const& x, bool as_row)
{
    auto const count = static_cast<std::size_t>(x.size());
    HeapArray<double> sorted(count + 1), spare(count + 1);
    if (!sorted || !spare)
        return nothing<M<double>>();
    double* const numbers = sorted.data();
    std::copy_n(x.addr(), count, numbers);
    sort_stable(numbers, spare.data(), x.size());
    int distinct = 0;
    for (std::size_t k = 0; k < count; ++k) {
        double const number = numbers[k];
        numbers[distinct] = number;
        distinct += k + 1 == count || !(number == numbers[k + 1]);
    }
    M<double> made = full_result(as_row ? Dims(1, distinct) : Dims(distinct, 1));
    if (!has_storage(made))
        return nothing<M<double>>();
    std::copy_n(numbers, distinct, made.addr());
    return {made, x_M, x_M, true};
}

Found<M<double>> unique_numbers(M<double> const& A, M<double> const& option, bool with_positions)
{
    NumberOperands const of(Arguments("unique"), A, option);
    if (!of)
        return nothing<M<double>>();
    Found<M<double>> found;
    if (with_positions || of.by_rows() || of.a().isc())
        found = distinct(of);
    else
        found = distinct_numbers(of.a(), of.as_row());
    if (found.done)
        found.members.setstr(A.isstr());
    return found;
}

Found<M<M<double>>> unique_texts(M<M<double>> const& A)
{
    TextOperands const of(Arguments("unique"), A);
    return of ? distinct(of) : nothing<M<M<double>>>();
}

// --- two operands ---------------------------------------------------------------------------------

enum class Choice { of_either, of_both, of_first, of_one };

// The members chosen, and those of them taken from each operand, numbered from 0 in each.
struct Members {
    HeapArray<int> chosen, first, second;
    int count = 0, first_count = 0, second_count = 0;

    explicit Members(int most) : chosen(room(most)), first(room(most)), second(room(most)) {}
    explicit operator bool() const { return chosen && first && second; }

    void take_first(int position) { first.data()[first_count++] = position; }
    void take_second(int position) { second.data()[second_count++] = position; }

private:
    static std::size_t room(int most) { return static_cast<std::size_t>(most) + 1; }
};

// One class of equal members in the order of their positions: the last one of each operand, -1 for none.
void choose(Members& members, Choice choice, int first_count, int last_first, int last_second)
{
    bool const in_first = last_first >= 0, in_second = last_second >= 0;
    bool const wanted = choice == Choice::of_either || (choice == Choice::of_both && in_first && in_second) ||
                        (choice == Choice::of_first && in_first && !in_second) || (choice == Choice::of_one && in_first != in_second);
    if (!wanted)
        return;
    bool const from_second = in_second && choice != Choice::of_both;
    members.chosen.data()[members.count++] = from_second ? last_second : last_first;
    if (!from_second)
        members.take_first(last_first);
    if (in_second)
        members.take_second(last_second - first_count);
}

template <class Operands> Found<typename Operands::Value> combined(Operands const& of, Choice choice)
{
    using Value = typename Operands::Value;
    if (!of)
        return nothing<Value>();
    Ordering order;
    Members members(of.count());
    if (!members || !of.sort(order))
        return nothing<Value>();
    for (int k = 0; k < of.count();) {
        int last[2] = {-1, -1};
        do {
            last[order.position(k) >= of.first_count()] = order.position(k);
            ++k;
        } while (k < of.count() && order.same(k));
        choose(members, choice, of.first_count(), last[0], last[1]);
    }
    Found<Value> found{of.take(members.chosen.data(), members.count), position_list(members.first.data(), members.first_count, of.as_row()),
                       position_list(members.second.data(), members.second_count, of.as_row()), true};
    return found.members.addr() && has_storage(found.first) && has_storage(found.second) ? found : nothing<Value>();
}

struct SetFunction {
    char const* name;
    Choice choice;
};
constexpr SetFunction of_union{"union", Choice::of_either}, of_intersect{"intersect", Choice::of_both}, of_setdiff{"setdiff", Choice::of_first},
    of_setxor{"setxor", Choice::of_one};

Found<M<double>> combined(SetFunction const& function, M<double> const& A, M<double> const& B, M<double> const& option)
{
    Found<M<double>> found = combined(NumberOperands(Arguments(function.name), A, B, option), function.choice);
    if (found.done)
        found.members.setstr(A.isstr() || (B.isstr() && function.choice != Choice::of_first));
    return found;
}

Found<M<M<double>>> combined(SetFunction const& function, M<M<double>> const& A, M<M<double>> const& B)
{
    return combined(TextOperands(Arguments(function.name), A, B), function.choice);
}

// --- results --------------------------------------------------------------------------------------

template <class Value, class Output> Value give(Found<Value> const& found, Output& members)
{
    members = found.members;
    return found.members;
}
template <class Value, class Output> Value give(Found<Value> const& found, Output& members, Mr<double>& first)
{
    first = found.first;
    return give(found, members);
}
template <class Value, class Output> Value give(Found<Value> const& found, Output& members, Mr<double>& first, Mr<double>& second)
{
    second = found.second;
    return give(found, members, first);
}

} // namespace

M<double> unique(M<double> const& A) { return unique_numbers(A, nop_M, false).members; }
M<double> unique(M<double> const& A, M<double> const& option) { return unique_numbers(A, option, false).members; }
M<double> unique(M<double> const& A, i_o_t, Mr<double> b) { return give(unique_numbers(A, nop_M, false), b); }
M<double> unique(M<double> const& A, i_o_t, Mr<double> b, Mr<double> i) { return give(unique_numbers(A, nop_M, true), b, i); }
M<double> unique(M<double> const& A, i_o_t, Mr<double> b, Mr<double> i, Mr<double> j) { return give(unique_numbers(A, nop_M, true), b, i, j); }
M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b) { return give(unique_numbers(A, option, false), b); }
M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b, Mr<double> i) { return give(unique_numbers(A, option, true), b, i); }
M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b, Mr<double> i, Mr<double> j)
{
    return give(unique_numbers(A, option, true), b, i, j);
}
M<M<double>> unique(M<M<double>> const& A) { return unique_texts(A).members; }
M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b) { return give(unique_texts(A), b); }
M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b, Mr<double> i) { return give(unique_texts(A), b, i); }
M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b, Mr<double> i, Mr<double> j) { return give(unique_texts(A), b, i, j); }

M<double> unionM(M<double> const& A, M<double> const& B) { return combined(of_union, A, B, nop_M).members; }
M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c) { return give(combined(of_union, A, B, nop_M), c); }
M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia) { return give(combined(of_union, A, B, nop_M), c, ia); }
M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_union, A, B, nop_M), c, ia, ib);
}
M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option) { return combined(of_union, A, B, option).members; }
M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c)
{
    return give(combined(of_union, A, B, option), c);
}
M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_union, A, B, option), c, ia);
}
M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_union, A, B, option), c, ia, ib);
}
M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B) { return combined(of_union, A, B).members; }
M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c) { return give(combined(of_union, A, B), c); }
M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia)
{
    return give(combined(of_union, A, B), c, ia);
}
M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_union, A, B), c, ia, ib);
}

M<double> intersect(M<double> const& A, M<double> const& B) { return combined(of_intersect, A, B, nop_M).members; }
M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c) { return give(combined(of_intersect, A, B, nop_M), c); }
M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_intersect, A, B, nop_M), c, ia);
}
M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_intersect, A, B, nop_M), c, ia, ib);
}
M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option) { return combined(of_intersect, A, B, option).members; }
M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c)
{
    return give(combined(of_intersect, A, B, option), c);
}
M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_intersect, A, B, option), c, ia);
}
M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_intersect, A, B, option), c, ia, ib);
}
M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B) { return combined(of_intersect, A, B).members; }
M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c) { return give(combined(of_intersect, A, B), c); }
M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia)
{
    return give(combined(of_intersect, A, B), c, ia);
}
M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_intersect, A, B), c, ia, ib);
}

M<double> setdiff(M<double> const& A, M<double> const& B) { return combined(of_setdiff, A, B, nop_M).members; }
M<double> setdiff(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c) { return give(combined(of_setdiff, A, B, nop_M), c); }
M<double> setdiff(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_setdiff, A, B, nop_M), c, ia);
}
M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option) { return combined(of_setdiff, A, B, option).members; }
M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c)
{
    return give(combined(of_setdiff, A, B, option), c);
}
M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_setdiff, A, B, option), c, ia);
}
M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B) { return combined(of_setdiff, A, B).members; }
M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c) { return give(combined(of_setdiff, A, B), c); }
M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia)
{
    return give(combined(of_setdiff, A, B), c, ia);
}

M<double> setxor(M<double> const& A, M<double> const& B) { return combined(of_setxor, A, B, nop_M).members; }
M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c) { return give(combined(of_setxor, A, B, nop_M), c); }
M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia) { return give(combined(of_setxor, A, B, nop_M), c, ia); }
M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_setxor, A, B, nop_M), c, ia, ib);
}
M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option) { return combined(of_setxor, A, B, option).members; }
M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c)
{
    return give(combined(of_setxor, A, B, option), c);
}
M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia)
{
    return give(combined(of_setxor, A, B, option), c, ia);
}
M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_setxor, A, B, option), c, ia, ib);
}
M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B) { return combined(of_setxor, A, B).members; }
M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c) { return give(combined(of_setxor, A, B), c); }
M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia)
{
    return give(combined(of_setxor, A, B), c, ia);
}
M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib)
{
    return give(combined(of_setxor, A, B), c, ia, ib);
}
