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

bool refused(char const* message, DealOutput const* outputs, int count)
{
    Arguments("deal").report(message);
    for (int k = 0; outputs && k < count; ++k)
        outputs[k].clear();
    return false;
}

} // namespace

void DealOutput::take(DealInput const& value) const
{
    switch (kind_) {
    case Kind::matrix:
        *static_cast<M<double>*>(place_) = value.matrix;
        break;
    case Kind::cells:
        *static_cast<M<M<double>>*>(place_) = value.is_cells ? value.cells : M<M<double>>(value.matrix);
        break;
    case Kind::selection:
        *static_cast<Mr<double>*>(place_) = value.matrix;
        break;
    case Kind::selected_cells:
        *static_cast<Mr<M<double>>*>(place_) = value.is_cells ? value.cells : M<M<double>>(value.matrix);
        break;
    case Kind::cell:
        *static_cast<Ms<M<double>>*>(place_) = value.matrix;
        break;
    }
}

void DealOutput::clear() const
{
    bool const of_cells = kind_ == Kind::cells || kind_ == Kind::selected_cells;
    take(of_cells ? DealInput(x_M_of<M<double>>(), nullptr) : DealInput(x_M, nullptr));
}

bool arrlib::deal_out(DealInput const* last, int inputs, DealOutput const* outputs, int count)
{
    if (inputs != 1 && inputs != count)
        return refused("number of outputs must match the number of inputs", outputs, count);
    if (!outputs)
        return true;
    // Nothing is written before everything fits: outputs may be inputs as well, which were copied.
    for (int k = 0; k < count; ++k)
        if (!outputs[k].accepts(input_for(last, inputs, k)))
            return refused("cell matrix is not accepted", outputs, count);
    for (int k = 0; k < count; ++k)
        outputs[k].take(input_for(last, inputs, k));
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
