#include "runtime/dispatch.h"

#include "core/access.h"
#include "core/sparse_build.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/graphics_link.h"
#include "runtime/settings.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

using namespace arrlib;

namespace {

M<double> feval_not_linked(M<double> const&, M<M<double>> const&, i_o_t, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>)
{
    error("feval was not linked with the program.");
    return x_M;
}

M<double> callback_not_linked(M<double> const&)
{
    error("callback was not linked with the program.");
    return x_M;
}

// A value that is the empty result itself, as functions return it that have none.
bool is_no_result(M<double> const& value)
{
    return value.size() == 0 && value.addr() == x_M.addr();
}

// The counts that translated code reads, for the length of a call.
class ArgumentCounts {
public:
    ArgumentCounts(int inputs, int outputs) : inputs_(std::exchange(nargin_val, inputs)), outputs_(std::exchange(nargout_val, outputs)) {}
    ~ArgumentCounts()
    {
        nargin_val = inputs_;
        nargout_val = outputs_;
    }
    ArgumentCounts(ArgumentCounts const&) = delete;
    ArgumentCounts& operator=(ArgumentCounts const&) = delete;

private:
    double inputs_, outputs_;
};

// A value without a name, and without storage of its own.
M<double> unnamed(M<double> const& value)
{
    M<double> copy = value;
    copy.setname(nullptr);
    return copy;
}

M<double> call(M<double> const& name, std::initializer_list<M<double> const*> inputs, std::initializer_list<OutputPlace> outputs)
{
    auto const given = std::find(inputs.begin(), inputs.end(), &absent_input) - inputs.begin();
    auto const wanted = std::count_if(outputs.begin(), outputs.end(), [](OutputPlace const& output) { return static_cast<bool>(output); });
    M<M<double>> cells = room_for_inputs(static_cast<int>(given));
    for (int k = 0; k < given; ++k)
        cells.addr()[k] = *inputs.begin()[k];
    M<double> const none = unnamed(x_M);
    M<double> made[most_named_outputs] = {none, none, none, none, none, none}, *next = made;
    call_by_name(name, cells, made, std::max(static_cast<int>(wanted), 1));
    for (OutputPlace const& output : outputs) {
        if (!is_no_result(*next))
            output.take(*next);
        else if (output.is_whole())
            output.clear();
        ++next;
    }
    return is_no_result(made[0]) ? x_M : made[0];
}

void run_callback(GraphicsValue const& value)
{
    Dims const shape(value.ndims, value.dims);
    M<double> callback = Access<double>::full(false, shape);
    if (!has_storage(callback))
        return;
    std::copy_n(value.elements, callback.size(), callback.addr());
    callback.setstr(value.is_text);
    static_cast<void>((callback_func ? callback_func : callback_not_linked)(callback));
}

void report_error(char const* message)
{
    error(message);
}

} // namespace

constinit feval_func_t feval_func = feval_not_linked;
constinit callback_func_t callback_func = callback_not_linked;
constinit GraphicsServices const arrlib::graphics_services = {runtime_version, run_callback, report_error};
constinit M<double> const arrlib::absent_input{nullptr, StaticStorage<double>{0, 0, nullptr, nullptr, nullptr}};

M<M<double>> arrlib::room_for_inputs(int count)
{
    return Access<M<double>>::full(false, Dims(count > 0, count));
}

void arrlib::call_by_name(M<double> const& name, M<M<double>> const& inputs, M<double>* outputs, int count)
{
    M<double> const none = unnamed(x_M);
    M<double> made[most_named_outputs] = {none, none, none, none, none, none}, returned = none;
    {
        ArgumentCounts const counts(inputs.size(), count);
        returned = (feval_func ? feval_func : feval_not_linked)(name, inputs, i_o, made[0], made[1], made[2], made[3], made[4], made[5]);
    }
    // Dispatchers may store the first output, return it, or both.
    if (is_no_result(made[0]))
        made[0] = returned;
    std::copy_n(made, count, outputs);
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e,
                M<double> const& f, M<double> const& g, M<double> const& h)
{
    return call(name, {&a, &b, &c, &d, &e, &f, &g, &h}, {});
}

M<double> feval(M<double> const& name, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c, &d}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c, &d, &e}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c, &d, &e, &f}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, M<double> const& g, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c, &d, &e, &f, &g}, {y1, y2, y3, y4, y5, y6});
}

M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, M<double> const& g, M<double> const& h, i_o_t, Mr<double> y1, OutputPlace y2, OutputPlace y3, OutputPlace y4,
                OutputPlace y5, OutputPlace y6)
{
    return call(name, {&a, &b, &c, &d, &e, &f, &g, &h}, {y1, y2, y3, y4, y5, y6});
}

