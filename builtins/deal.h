// Handing values out to outputs.
#ifndef ARRLIB_BUILTINS_DEAL_H
#define ARRLIB_BUILTINS_DEAL_H

#include "core/output_place.h"
#include "runtime/constants.h"

#include <type_traits>

namespace arrlib {

// A value to be dealt, and the one in front of it.
struct ARRLIB_API DealInput {
    DealInput(M<double> const& value, DealInput const* front) : matrix(value), before(front) { matrix.setname(nullptr); }
    DealInput(M<M<double>> const& value, DealInput const* front) : cells(value), is_cells(true), before(front) { cells.setname(nullptr); }

    M<double> matrix;
    M<M<double>> cells;
    bool is_cells = false;
    DealInput const* before;
};

// Deals `inputs` values, a list from the last one, to `count` places. False after a report.
ARRLIB_API bool deal_out(DealInput const* last, int inputs, OutputPlace const* outputs, int count);

// A call without i_o wants one output, which is what it returns.
inline bool deal_values(DealInput const*, int inputs)
{
    return deal_out(nullptr, inputs, nullptr, 1);
}
template <class Item, class... Items> bool deal_values(DealInput const* last, int inputs, Item&& item, Items&&... items)
{
    if constexpr (!std::is_same_v<std::decay_t<Item>, i_o_t>) {
        DealInput const input(item, last);
        return deal_values(&input, inputs + 1, static_cast<Items&&>(items)...);
    } else if constexpr (sizeof...(items) > 0) {
        OutputPlace const outputs[] = {items...};
        return deal_out(last, inputs, outputs, static_cast<int>(sizeof...(items)));
    } else {
        return deal_out(last, inputs, nullptr, 0);
    }
}

} // namespace arrlib

// Every output gets the input of its place, or the only input there is: deal(x, i_o, a, b), or
// deal(x, y, i_o, a, b). Inputs and outputs are matrices or cell arrays, as many as wanted, and parts of
// them: an output that is a cell array takes a matrix as its single cell. Returns the first input.
// "deal: number of outputs must match the number of inputs"; "deal: cell matrix is not accepted" for a
// cell array in a place that takes a matrix.
ARRLIB_API M<double> deal(M<double> const& x);
ARRLIB_API M<M<double>> deal(M<M<double>> const& x);
template <class Item, class... Items> M<double> deal(M<double> const& x, Item&& item, Items&&... items)
{
    arrlib::DealInput const first(x, nullptr);
    return arrlib::deal_values(&first, 1, static_cast<Item&&>(item), static_cast<Items&&>(items)...) ? first.matrix : x_M;
}
template <class Item, class... Items> M<M<double>> deal(M<M<double>> const& x, Item&& item, Items&&... items)
{
    arrlib::DealInput const first(x, nullptr);
    return arrlib::deal_values(&first, 1, static_cast<Item&&>(item), static_cast<Items&&>(items)...) ? first.cells : M<M<double>>();
}

#endif
