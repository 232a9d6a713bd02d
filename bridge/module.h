// Extension modules: functions in dynamic libraries of their own, written against bridge/mx.h.
#ifndef ARRLIB_BRIDGE_MODULE_H
#define ARRLIB_BRIDGE_MODULE_H

#include "core/matrix.h"

// Calls the function `name` of a module, mexFunction in the file NAME_korvex.dll or, on other systems
// than Windows, in NAME_korvex.so where there is no such file that can be loaded. Each is looked for in
// the program's folder, in the working folder and where the system looks for libraries; a module that is
// loaded already is taken first. Every call counts one more load, and nothing unloads the module but
// clear_mex.
// plhs has 64 slots, whatever nlhs says: all are cleared, and the module stores its outputs there,
// which the caller ends with delete. Slots 0 to nlhs-1 hold a matrix afterwards: an output that the
// module has not given is reported and empty, "call_mex: not all output arguments were assigned when
// calling %s." (A slot stays null where there is no memory for that, after a report.) A null plhs takes no
// outputs. nlhs and nrhs are truncated.
// "Could not load %s", with the file's name; "Could not find %s", with mexFunction, for a library
// without it; "call_mex: more than 64 output arguments when calling %s." After these reports all
// outputs are empty. An exception, such as an error of the throwing mode, passes through, after the
// outputs that the module has made are ended and their slots cleared; one handle in several slots, and
// an input handed on as an output, are ended once and not at all.
ARRLIB_API void call_mex(char const* name, double nlhs, M<double>** plhs, double nrhs, M<double>** prhs);

// Takes one load of the module of exactly this file name back, such as "foo_korvex.so"; the last one
// unloads it. Nothing when it is not loaded.
ARRLIB_API void clear_mex(char const* filename);

#endif
