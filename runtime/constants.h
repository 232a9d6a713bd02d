// The constants and markers of the language, valid before any other code runs, and the counts and
// switches that translated programs write.
#ifndef ARRLIB_RUNTIME_CONSTANTS_H
#define ARRLIB_RUNTIME_CONSTANTS_H

#include "core/matrix.h"

ARRLIB_API extern i_o_t i_o;
ARRLIB_API extern global_M_t global_M;

ARRLIB_API extern M<double> ans;
ARRLIB_API extern M<double> pi;
ARRLIB_API extern M<double> eps;
ARRLIB_API extern M<double> Inf;
// Every NaN that the library makes has the bits 0x7FFFFFFFFFFFFFFF.
ARRLIB_API extern M<double> NaN;
// The imaginary unit.
ARRLIB_API extern M<double> i;
ARRLIB_API extern M<double> j;
// Start time of tic and toc.
ARRLIB_API extern M<double> TICTOC;
ARRLIB_API extern M<double> zero_M;
ARRLIB_API extern M<double> one_M;
// What built-ins without a result return.
ARRLIB_API extern M<double> x_M;
ARRLIB_API extern M<double> l_M;
// An omitted input; an omitted cell input.
ARRLIB_API extern M<double> nop_M;
ARRLIB_API extern M<M<double>> nop_MM;
// The row break of a bracket and the whole-dimension subscript, recognised by their name pointers.
ARRLIB_API extern M<double> semi;
ARRLIB_API extern M<double> c_p;
// The value under test of a translated switch statement.
ARRLIB_API extern M<M<double>> switchvar;
// Kept for the language; nothing reads them.
ARRLIB_API extern M<double> page_screen_output;
ARRLIB_API extern M<double> implicit_str_to_num_ok;
ARRLIB_API extern M<double> empty_list_elements_ok;

// The names of semi, x_M, l_M and c_p.
ARRLIB_API extern char const* semip;
ARRLIB_API extern char const* x_Mp;
ARRLIB_API extern char const* l_Mp;
ARRLIB_API extern char const* c_pp;

// Inputs and outputs of the innermost translated call, written by translated code.
ARRLIB_API extern double nargin_val;
ARRLIB_API extern double nargout_val;
ARRLIB_API extern int nargin_set;
ARRLIB_API extern int nargout_set;
ARRLIB_API extern int switchdepth;
ARRLIB_API extern int switchfalse;

// How many inputs and outputs the innermost translated call has.
ARRLIB_API double nargin();
ARRLIB_API double nargout();
// Stores the output count in the first output and the input count in the second; returns the empty
// matrix.
ARRLIB_API M<double> argn(i_o_t, Mr<double> outputs, Mr<double> inputs);

#endif
