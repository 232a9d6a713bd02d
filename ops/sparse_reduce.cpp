// Every vector along the dimension has a state, into which its stored entries are folded in rising
// order; zeros that are not stored are folded in where they stand between them.
#include "ops/sparse_reduce.h"

#include "core/access.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "ops/kernels/kernel.h"
#include "ops/sparse_entries.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace arrlib {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// --- what is folded -------------------------------------------------------------------------------

// A state starts as `start`; add() folds an element in. `sees_zeros` when zeros make a difference.
struct Sum {
    static constexpr bool sees_zeros = false;
    static constexpr double start = 0;
    static void add(double& state, double x) { state += x; }
    static void add(nx_complex& state, nx_complex x) { state = {state.re + x.re, state.im + x.im}; }
};

struct Prod {
    static constexpr bool sees_zeros = true;
    static constexpr double start = 1;
    static void add(double& state, double x) { state *= x; }
    static void add(nx_complex& state, nx_complex x) { state = {state.re * x.re - state.im * x.im, state.re * x.im + state.im * x.re}; }
};

struct All {
    static constexpr bool sees_zeros = true;
    static constexpr double start = 1;
    static void add(double& state, double x) { state *= x != 0; }
};

struct Any {
    static constexpr bool sees_zeros = false;
    static constexpr double start = 0;
    static void add(double& state, double x)
    {
        if (x != 0)
            state = 1;
    }
};

double square_of_modulus(nx_complex x)
{
    return x.re * x.re + x.im * x.im;
}

// NaN is never larger or smaller. Complex elements are compared by modulus.
struct Max {
    static constexpr bool sees_zeros = true;
    static constexpr double start = -infinity;
    static constexpr double complex_start = 0;
    static void add(double& state, double x) { state = x > state ? x : state; }
    static void add(nx_complex& state, nx_complex x)
    {
        if (square_of_modulus(x) > square_of_modulus(state))
            state = x;
    }
};

struct Min {
    static constexpr bool sees_zeros = true;
    static constexpr double start = infinity;
    static constexpr double complex_start = infinity;
    static void add(double& state, double x) { state = x < state ? x : state; }
    static void add(nx_complex& state, nx_complex x)
    {
        if (square_of_modulus(x) < square_of_modulus(state))
            state = x;
    }
};

// --- where entries belong -------------------------------------------------------------------------

// The number of the vector that a position lies in, and which of its elements it is.
class VectorOf {
public:
    explicit VectorOf(Axis const& axis)
        : stride_(static_cast<int>(axis.stride)), block_(static_cast<int>(axis.stride * axis.length)), outer_(block_), inner_(stride_)
    {
    }
    void at(int position)
    {
        outer_.at(position);
        inner_.at(outer_.row());
    }
    int vector() const { return outer_.column() * stride_ + inner_.row(); }
    int element() const { return inner_.column(); }

private:
    int stride_, block_;
    PositionSplit outer_, inner_;
};

// --- values ---------------------------------------------------------------------------------------

// The values of entries: one part, both parts, or whether they are zero.
struct RealValues {
    using Value = double;
    double const* re;
    double operator[](int k) const { return re[k]; }
};
struct ComplexValues {
    using Value = nx_complex;
    double const *re, *im;
    nx_complex operator[](int k) const { return {re[k], im[k]}; }
};
struct NonzeroValues {
    using Value = double;
    double const *re, *im;
    double operator[](int k) const { return re[k] != 0 || im[k] != 0; }
};

template <class Value> constexpr bool is_complex = std::is_same_v<Value, nx_complex>;

template <class Value> constexpr Value make_value(double re)
{
    if constexpr (is_complex<Value>)
        return {re, 0};
    else
        return re;
}

template <class Value> void add_result(EntryWriter& writer, int vector, Value x)
{
    if constexpr (is_complex<Value>)
        writer.add(vector, x.re, x.im);
    else
        writer.add(vector, x, 0);
}

// A vector on its way: what has been folded, and the element that comes next.
template <class Fold, class Value> class State {
public:
    State() = default;
    void start() { *this = State(make_value<Value>(start_value())); }
    void add(int element, Value x)
    {
        skip_to(element);
        Fold::add(value_, x);
        if constexpr (Fold::sees_zeros)
            next_ = element + 1;
    }
    Value finish(std::ptrdiff_t length)
    {
        skip_to(length);
        return value_;
    }

private:
    static constexpr double start_value()
    {
        if constexpr (is_complex<Value> && requires { Fold::complex_start; })
            return Fold::complex_start;
        else
            return Fold::start;
    }
    // One zero is as good as many.
    void skip_to(std::ptrdiff_t element)
    {
        if (Fold::sees_zeros && element > next_)
            Fold::add(value_, make_value<Value>(0));
    }

    explicit State(Value value) : value_(value) {}

    Value value_ = {};
    int next_ = 0;
};

// --- the ways through the entries -----------------------------------------------------------------

template <class Fold, class Values> class Reduction {
public:
    Reduction(SparseEntries const& x, Values values, Axis const& axis) : x_(x), values_(values), axis_(axis) {}

    M<double> compute(Dims const& shape)
    {
        int const room = std::min(x_.count, shape.count);
        M<double> made = sparse_with_room(is_complex<Value>, shape, room);
        if (!has_storage(made))
            return made;
        EntryWriter writer(made);
        bool done = true;
        if (axis_.stride == 1)
            fold_runs(writer, [](int k) { return k; });
        else if (shape.count / far_more <= x_.count)
            done = fold_into_list(writer, shape.count);
        else
            done = fold_sorted(writer);
        if (!done)
            return Access<double>::without_storage();
        made.getnnz() = writer.count();
        return made;
    }

private:
    using Value = typename Values::Value;
    // States for all vectors are kept while there are not far more of them than entries.
    static constexpr int far_more = 4;

    // Entries of one vector follow each other when taken in the order entry(0), entry(1), ...
    template <class Entry> void fold_runs(EntryWriter& writer, Entry entry)
    {
        VectorOf place(axis_);
        State<Fold, Value> state;
        int vector = -1;
        for (int k = 0; k < x_.count; ++k) {
            place.at(x_.at[entry(k)]);
            if (place.vector() != vector) {
                if (vector >= 0)
                    add_result(writer, vector, state.finish(axis_.length));
                vector = place.vector();
                state.start();
            }
            state.add(place.element(), values_[entry(k)]);
        }
        if (vector >= 0)
            add_result(writer, vector, state.finish(axis_.length));
    }

    // False after a report.
    bool fold_into_list(EntryWriter& writer, int vectors)
    {
        HeapArray<State<Fold, Value>> states(static_cast<std::size_t>(vectors));
        if (!states)
            return false;
        for (State<Fold, Value>& state : states)
            state.start();
        VectorOf place(axis_);
        for (int k = 0; k < x_.count; ++k) {
            place.at(x_.at[k]);
            states[static_cast<std::size_t>(place.vector())].add(place.element(), values_[k]);
        }
        for (int v = 0; v < vectors; ++v)
            add_result(writer, v, states[static_cast<std::size_t>(v)].finish(axis_.length));
        return true;
    }

    // False after a report.
    bool fold_sorted(EntryWriter& writer)
    {
        HeapArray<EntryKey> keys(static_cast<std::size_t>(x_.count));
        if (!keys)
            return false;
        VectorOf place(axis_);
        for (int k = 0; k < x_.count; ++k) {
            place.at(x_.at[k]);
            keys[static_cast<std::size_t>(k)] = entry_key(place.vector(), k);
        }
        if (!sort_keys(keys))
            return false;
        fold_runs(writer, [&keys](int k) { return key_entry(keys[static_cast<std::size_t>(k)]); });
        return true;
    }

    SparseEntries x_;
    Values values_;
    Axis axis_;
};

// --- the operations -------------------------------------------------------------------------------

template <class Fold> M<double> number(SparseEntries const& x, Axis const& axis, Dims const& shape, bool complex)
{
    if (complex)
        return Reduction<Fold, ComplexValues>(x, {x.re, x.im}, axis).compute(shape);
    return Reduction<Fold, RealValues>(x, {x.re}, axis).compute(shape);
}

template <class Fold> M<double> truth(SparseEntries const& x, Axis const& axis, Dims const& shape)
{
    if (x.im)
        return Reduction<Fold, NonzeroValues>(x, {x.re, x.im}, axis).compute(shape);
    return Reduction<Fold, RealValues>(x, {x.re}, axis).compute(shape);
}

bool has_imaginary_part(SparseEntries const& x)
{
    return x.im && std::any_of(x.im, x.im + x.count, [](double im) { return im != 0; });
}

} // namespace

bool sparse_reduce(M<double>& result, M<double> const& x, int dim, OpCode op)
{
    Axis axis{1, x.getdims()[dim], 1};
    int extents[max_dims];
    for (int d = 0; d < max_dims; ++d) {
        extents[d] = d == dim ? 1 : x.getdims()[d];
        (d < dim ? axis.stride : axis.outer) *= extents[d];
    }
    Dims const shape(max_dims, extents);
    SparseEntries const entries(x);
    switch (op) {
    case op_sum:
        result = number<Sum>(entries, axis, shape, x.isc());
        return true;
    case op_prod:
        result = number<Prod>(entries, axis, shape, x.isc());
        return true;
    case op_all:
        result = truth<All>(entries, axis, shape);
        return true;
    case op_any:
        result = truth<Any>(entries, axis, shape);
        return true;
    case op_max_1:
        result = number<Max>(entries, axis, shape, has_imaginary_part(entries));
        return true;
    case op_min_1:
        result = number<Min>(entries, axis, shape, has_imaginary_part(entries));
        return true;
    default:
        return false;
    }
}

} // namespace arrlib
