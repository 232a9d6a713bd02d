// The first and the last call of a translated program.
#ifndef ARRLIB_RUNTIME_STARTUP_H
#define ARRLIB_RUNTIME_STARTUP_H

#include "core/matrix.h"

// Starts a program translated against this version of the header, 4010: empties the error stack and
// masks the floating-point traps. Another version is reported: "Version mismatch - runtime version
// is %g but arrlib.h version is %g.".
ARRLIB_API void initM(int header_version);
// Ends the program's work: "Please close all figures..." while a figure is open.
ARRLIB_API void exitM();
// exitM, then the end of the process with status 0.
ARRLIB_API M<double> exit();
ARRLIB_API M<double> quit();

#endif
