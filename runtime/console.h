// The console: the print, input and key hooks, line input and pauses.
#ifndef ARRLIB_RUNTIME_CONSOLE_H
#define ARRLIB_RUNTIME_CONSOLE_H

#include "core/matrix.h"

// Passes the text to the print hook; returns 0.
ARRLIB_API int nx_print(char const* text);
// Formats into 1024 bytes, cutting what is longer, and prints; returns the length of the uncut text.
__attribute__((format(printf, 1, 2))) ARRLIB_API int nx_printf(char const* format, ...);
// Reads a line into the buffer through the input hook; returns 0.
ARRLIB_API int nx_input(char* buffer, int size);
// 0 when no key is waiting, else its code.
ARRLIB_API int nx_kbhit();

// Shows the prompt and reads a line: the number at its start, or nop_M for an empty line.
ARRLIB_API M<double> input(M<double> prompt);
// The second argument ("s") asks for the answer as text.
ARRLIB_API M<double> input(M<double> prompt, M<double> as_text);
// Waits for a key or for a button press in a figure.
ARRLIB_API M<double> pauseM();
// Waits for x seconds, rounded, while pausing is on. The texts on and off both switch it off: it is
// on exactly when the text begins with "n".
ARRLIB_API M<double> pauseM(M<double> x);
ARRLIB_API M<double> kbhitM();
// Clears the console; puts its cursor at the top left.
ARRLIB_API M<double> clc();
ARRLIB_API M<double> home();
ARRLIB_API M<double> smiley();

#endif
