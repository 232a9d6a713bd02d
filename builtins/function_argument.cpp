#include "builtins/function_argument.h"

#include "builtins/args.h"
#include "runtime/dispatch.h"

#include <algorithm>

namespace arrlib {

namespace {

bool is_letter(double c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_identifier(M<double> const& text)
{
    if (!text.isstr() || text.issparse() || text.rows() != 1 || text.getndims() != 2 || !is_letter(text.addr()[0]))
        return false;
    return std::all_of(text.addr(), text.addr() + text.size(), [](double c) { return is_letter(c) || c == '_' || (c >= '0' && c <= '9'); });
}

} // namespace

FunctionArgument::FunctionArgument(char const* builtin, M<double> const& name) : name_(name), named_(is_identifier(name))
{
    if (!named_)
        Arguments(builtin).function_without_name();
}

M<double> FunctionArgument::call(std::initializer_list<M<double>> inputs) const
{
    M<double> first = x_M;
    call(inputs.begin(), static_cast<int>(inputs.size()), &first, 1);
    first.setname(nullptr);
    return first;
}

void FunctionArgument::call(std::initializer_list<M<double>> inputs, M<double>* outputs, int count) const
{
    call(inputs.begin(), static_cast<int>(inputs.size()), outputs, count);
}

void FunctionArgument::call(M<double> const* inputs, int input_count, M<double>* outputs, int count) const
{
    M<M<double>> const cells = room_for_inputs(input_count);
    std::copy_n(inputs, input_count, cells.addr());
    call_by_name(name_, cells, outputs, std::min(count, most_named_outputs));
}

} // namespace arrlib
