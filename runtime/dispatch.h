// Calls from the library into the translated program: functions given by name, graphics callbacks.
#ifndef ARRLIB_RUNTIME_DISPATCH_H
#define ARRLIB_RUNTIME_DISPATCH_H

#include "core/output_place.h"

// The dispatchers, which the program stores here before its first call. The one for functions gets the
// function's name, its inputs as a row of cells, and the places of six outputs; what it returns is the
// first output once more. Until then, and when null is stored: "feval was not linked with the
// program.", "callback was not linked with the program.".
using feval_func_t = M<double> (*)(M<double> const& name, M<M<double>> const& inputs, i_o_t, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>,
                                   Mr<double>);
using callback_func_t = M<double> (*)(M<double> const& callback);
ARRLIB_API extern feval_func_t feval_func;
ARRLIB_API extern callback_func_t callback_func;

namespace arrlib {

// Stands for an input that was not given; recognised by its address.
ARRLIB_API extern M<double> const absent_input;

inline constexpr int most_named_outputs = 6;

// A row of as many empty cells as a call has inputs.
M<M<double>> room_for_inputs(int count);
// Calls a function of the program by name. During the call nargin_val and nargout_val say what was
// given and asked for. The first `count` outputs are in `outputs` after its return: x_M for one that it
// did not set, the first one what it returned.
void call_by_name(M<double> const& name, M<M<double>> const& inputs, M<double>* outputs, int count);

} // namespace arrlib

// Calls the function of the program that has this name, with up to eight inputs. Behind `i_o` up to
// six outputs are stored; the value is the first one. An output that the function did not set leaves a
// selection of elements alone and makes a variable empty.
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a = arrlib::absent_input, M<double> const& b = arrlib::absent_input,
                           M<double> const& c = arrlib::absent_input, M<double> const& d = arrlib::absent_input,
                           M<double> const& e = arrlib::absent_input, M<double> const& f = arrlib::absent_input,
                           M<double> const& g = arrlib::absent_input, M<double> const& h = arrlib::absent_input);
ARRLIB_API M<double> feval(M<double> const& name, i_o_t, Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {},
                           arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, M<double> const& g, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});
ARRLIB_API M<double> feval(M<double> const& name, M<double> const& a, M<double> const& b, M<double> const& c, M<double> const& d, M<double> const& e, M<double> const& f, M<double> const& g, M<double> const& h, i_o_t,
                           Mr<double> y1, arrlib::OutputPlace y2 = {}, arrlib::OutputPlace y3 = {}, arrlib::OutputPlace y4 = {}, arrlib::OutputPlace y5 = {}, arrlib::OutputPlace y6 = {});

#endif
