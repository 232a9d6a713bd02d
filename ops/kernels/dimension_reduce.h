// Every vector of a dimension becomes one number: the paths through memory, for any reduction.
#ifndef ARRLIB_OPS_KERNELS_DIMENSION_REDUCE_H
#define ARRLIB_OPS_KERNELS_DIMENSION_REDUCE_H

#include "core/heap_array.h"
#include "ops/kernels/dimension_loops.h"
#include "ops/kernels/dimension_split.h"

namespace arrlib {

// A Fold is what is computed. It has
//   parts                        numbers of state per column, 1 or 2
//   in_order                     whether the elements of a column must be taken one after the other
//   in_any_order                 whether the result is the same bits in whatever order they are taken
//   start(part)                  the state before the first element
//   rows(state, at, rows, k)     takes rows in, of which the first is row k and begins at element `at`
//   merge(state, i, from, j)     takes column j of `from` into column i, where the order is free
//   merge_next(state, n)         the same for the first n columns and the n behind them, for all at once
//   renumber(state, i, n, by, add, step)  row numbers r in columns i to i + n become r * by + add, + step in
//                                each further column
//   done(state, width, columns)  whether no further row can change the result; column i of the result
//                                is made of the columns i, i + columns, ... of the state
//   one(column, at, stride, n)   reduces a short vector and writes the result
//   finish(column, at, state, i) writes the result of a column whose first element is `at`
// The order of the operations depends on the axis alone.
template <class Fold> class Reduction {
public:
    static constexpr std::size_t parts = Fold::parts;
    // One array per part.
    using State = double* const*;

    Reduction(Fold const& fold, Axis const& axis) : fold_(fold), axis_(axis) {}

    // False after a report.
    bool run() const
    {
        if (axis_.length * axis_.stride <= short_vectors)
            return run_short();
        if (Fold::in_order || axis_.stride >= most_columns)
            return run_columns();
        return run_spans();
    }

private:
    static constexpr std::ptrdiff_t short_vectors = 128;
    // From so many columns on, rows are taken as they are.
    static constexpr std::ptrdiff_t most_columns = 1024;
    // Columns whose state is in work at the same time: as far as it goes in the nearest cache.
    static constexpr std::size_t columns_at_once = 4096 / parts;
    // Rows narrower than this are taken several at a time, as one.
    static constexpr std::ptrdiff_t lanes = 64;
    // Elements that are reduced without a look at the others.
    static constexpr std::ptrdiff_t span = 1 << 16;
    // Rows after which the sum of a column goes into a sum of sums, and `done` is asked.
    static constexpr std::ptrdiff_t rows_at_once = 256;

    template <std::size_t count> struct Local {
        double room[parts][count];
        double* part[parts];
        Local()
        {
            for (std::size_t p = 0; p < parts; ++p)
                part[p] = room[p];
        }
    };

    void start(State state, std::ptrdiff_t width) const
    {
        for (std::size_t p = 0; p < parts; ++p)
            std::fill_n(state[p], width, fold_.start(p));
    }

    bool run_short() const
    {
        parallel_for(axis_.outer, units_per_thread(axis_.length * axis_.stride), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            for (std::ptrdiff_t o = from; o < to; ++o)
                for (std::ptrdiff_t i = 0; i < axis_.stride; ++i)
                    fold_.one(o * axis_.stride + i, o * axis_.length * axis_.stride + i, axis_.stride, axis_.length);
        });
        return true;
    }

    bool run_columns() const
    {
        for_columns(axis_, std::ptrdiff_t{columns_at_once}, [&](Columns const& columns) {
            std::ptrdiff_t const at = columns.outer * axis_.length * axis_.stride + columns.first;
            Local<columns_at_once> total, piece;
            start(total.part, columns.width);
            for (std::ptrdiff_t k = 0; k < axis_.length && !fold_.done(total.part, columns.width, columns.width); k += rows_at_once) {
                Rows const rows{axis_.stride, std::min(rows_at_once, axis_.length - k), columns.width};
                if (Fold::in_order || k == 0) {
                    fold_.rows(total.part, at + k * axis_.stride, rows, k);
                    continue;
                }
                start(piece.part, columns.width);
                fold_.rows(piece.part, at + k * axis_.stride, rows, k);
                for (std::ptrdiff_t i = 0; i < columns.width; ++i)
                    fold_.merge(total.part, i, piece.part, i);
            }
            for (std::ptrdiff_t i = 0; i < columns.width; ++i)
                fold_.finish(columns.outer * axis_.stride + columns.first + i, at + i, total.part, i);
        });
        return true;
    }

    // Takes rows k to k + count of all columns of one o, which lie at `at`, into the state.
    void reduce_rows(State state, std::ptrdiff_t at, std::ptrdiff_t k, std::ptrdiff_t count) const
    {
        std::ptrdiff_t const stride = axis_.stride;
        std::ptrdiff_t together = 1;
        while (together * stride < lanes)
            together *= 2;
        std::ptrdiff_t const width = together * stride;
        if (together == 1) {
            start(state, stride);
            fold_.rows(state, at, {stride, count, stride}, k);
            return;
        }
        Local<2 * lanes> wide;
        start(wide.part, width);
        std::ptrdiff_t const wide_rows = count / together;
        for (std::ptrdiff_t w = 0; w < wide_rows && !fold_.done(wide.part, width, stride); w += rows_at_once)
            fold_.rows(wide.part, at + w * width, {width, std::min(rows_at_once, wide_rows - w), width}, w);
        std::ptrdiff_t const taken = wide_rows * together;
        // The last, shorter row.
        if (Fold::in_any_order && taken < count)
            fold_.rows(wide.part, at + taken * stride, {width, 1, (count - taken) * stride}, wide_rows);
        if (stride == 1)
            fold_.renumber(wide.part, 0, together, together, k, 1);
        else
            for (std::ptrdiff_t row = 0; row < together; ++row)
                fold_.renumber(wide.part, row * stride, stride, together, k + row, 0);
        for (std::ptrdiff_t half = together / 2; half > 0; half /= 2)
            fold_.merge_next(wide.part, half * stride);
        for (std::size_t p = 0; p < parts; ++p)
            std::copy_n(wide.part[p], stride, state[p]);
        if (!Fold::in_any_order)
            fold_.rows(state, at + taken * stride, {stride, count - taken, stride}, k + taken);
    }

    bool run_spans() const
    {
        std::ptrdiff_t const stride = axis_.stride, size = axis_.length * stride;
        // Where the order is free, no more often than the threads ask for it.
        std::ptrdiff_t const least_rows = span / stride, share = Fold::in_any_order ? axis_.length / (parallel_width() * 4) : 0;
        std::ptrdiff_t const rows = std::max(least_rows, share), spans = (axis_.length - 1) / rows + 1;
        std::ptrdiff_t const tasks = axis_.outer * spans;
        HeapArray<double> states;
        if (spans > 1 && !(states = HeapArray<double>(static_cast<std::size_t>(tasks * stride) * parts)))
            return false;
        auto const pointers = [&](std::ptrdiff_t task, std::size_t p) { return states.data() + (task * std::ptrdiff_t{parts} + static_cast<std::ptrdiff_t>(p)) * stride; };
        parallel_for(tasks, units_per_thread(std::min(rows * stride, size)), [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            Local<most_columns> local;
            for (std::ptrdiff_t task = from; task < to; ++task) {
                std::ptrdiff_t const o = task / spans, k = task % spans * rows;
                if (spans > 1)
                    for (std::size_t p = 0; p < parts; ++p)
                        local.part[p] = pointers(task, p);
                reduce_rows(local.part, o * size + k * stride, k, std::min(rows, axis_.length - k));
                if (spans == 1)
                    finish_all(o, local.part);
            }
        });
        if (spans > 1)
            for (std::ptrdiff_t o = 0; o < axis_.outer; ++o)
                merge_spans(o, spans, pointers);
        return true;
    }

    // Pairs of neighbours, then pairs of pairs, and so on.
    template <class Pointers> void merge_spans(std::ptrdiff_t o, std::ptrdiff_t spans, Pointers const& pointers) const
    {
        double *to[parts], *from[parts];
        auto const select = [&](double* (&state)[parts], std::ptrdiff_t number) {
            for (std::size_t p = 0; p < parts; ++p)
                state[p] = pointers(o * spans + number, p);
        };
        for (std::ptrdiff_t step = 1; step < spans; step *= 2)
            for (std::ptrdiff_t s = 0; s + step < spans; s += 2 * step) {
                select(to, s);
                select(from, s + step);
                for (std::ptrdiff_t i = 0; i < axis_.stride; ++i)
                    fold_.merge(to, i, from, i);
            }
        select(to, 0);
        finish_all(o, to);
    }

    void finish_all(std::ptrdiff_t o, State state) const
    {
        for (std::ptrdiff_t i = 0; i < axis_.stride; ++i)
            fold_.finish(o * axis_.stride + i, o * axis_.length * axis_.stride + i, state, i);
    }

    Fold const& fold_;
    Axis const& axis_;
};

template <class Fold> bool reduce(Fold const& fold, Axis const& axis)
{
    return Reduction<Fold>(fold, axis).run();
}

} // namespace arrlib

#endif
