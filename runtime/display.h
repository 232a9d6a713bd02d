// How values are shown.
#ifndef ARRLIB_RUNTIME_DISPLAY_H
#define ARRLIB_RUNTIME_DISPLAY_H

#include "core/matrix.h"

// Numbers are shown with four significant digits (short, the initial mode) or twelve (long): a mode
// that begins with "l" or "L" is long, every other word is short.
ARRLIB_API M<double> format();
ARRLIB_API M<double> format(M<double> mode);
ARRLIB_API M<double> format(M<double> mode, M<double> ignored);

// Shows a value without its name: "[]" when it is empty, "All zeros sparse" when nothing is stored.
ARRLIB_API M<double> disp(M<double> const& x);
ARRLIB_API M<double> disp(M<M<double>> const& x);
ARRLIB_API M<double> puts(M<double> const& x);
// The same behind "Usage: ".
ARRLIB_API M<double> usage(M<double> const& x);
// Shows name (or "ans"), description and value; nothing for the "no result" value.
ARRLIB_API M<double> disp_all(M<double> x);
ARRLIB_API M<double> disp_all(M<M<double>> x);
// One line of the variable listing: name, sizes and kind.
ARRLIB_API void whos_line(M<double> const& x);
ARRLIB_API void whos_line(M<M<double>> const& x);
// Shows every cell under its name and subscripts.
ARRLIB_API M<double> celldisp(M<M<double>> const& c);
// Shows addresses, sizes and flags, for diagnosis.
ARRLIB_API M<double> dump(M<double> const& x);

#endif
