#include "builtins/deal.h"

#include "builtins/args.h"
#include "core/read.h"

using namespace arrlib;

namespace {

// The input for the output of number k from 0.
DealInput const& input_for(DealInput const* last, int inputs, int k)
{
    for (int back = inputs == 1 ? 0 : inputs - 1 - k; back > 0; --back)
        last = last->before;
    return *last;
}

bool refused(char const* message, OutputPlace const* outputs, int count)
{
    Arguments("deal").report(message);
    for (int k = 0; outputs && k < count; ++k)
        outputs[k].clear();
    return false;
}

} // namespace

bool arrlib::deal_out(DealInput const* last, int inputs, OutputPlace const* outputs, int count)
{
    if (inputs != 1 && inputs != count)
        return refused("number of outputs must match the number of inputs", outputs, count);
    if (!outputs)
        return true;
    // Nothing is written before everything fits: outputs may be inputs as well, which were copied.
    for (int k = 0; k < count; ++k)
        if (input_for(last, inputs, k).is_cells && !outputs[k].takes_cells())
            return refused("cell matrix is not accepted", outputs, count);
    for (int k = 0; k < count; ++k) {
        DealInput const& input = input_for(last, inputs, k);
        if (input.is_cells)
            outputs[k].take(input.cells);
        else
            outputs[k].take(input.matrix);
    }
    return true;
}

M<double> deal(M<double> const& x)
{
    return share(x);
}

M<M<double>> deal(M<M<double>> const& x)
{
    return share(x);
}
