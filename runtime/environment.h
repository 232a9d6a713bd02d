// What a program can ask about the system that it runs on, and built-ins that sit beside it.
#ifndef ARRLIB_RUNTIME_ENVIRONMENT_H
#define ARRLIB_RUNTIME_ENVIRONMENT_H

#include "core/subscript.h"

// 2 when there is a file of that name, or of that name with ".m" behind it, in the working folder, or
// with ".m" in a directory of the search path; otherwise 0. Variables and built-ins are not looked up.
// Names count up to 2048 characters. "exist: argument is not string".
ARRLIB_API M<double> exist(M<double> const& name);

// The kind of computer, "PC KORVEX", and the largest number of elements, 268435439.
ARRLIB_API M<double> computer();
ARRLIB_API M<double> computer(i_o_t, Mr<double> kind);
ARRLIB_API M<double> computer(i_o_t, Mr<double> kind, Mr<double> most_elements);

// The version of the language, "TELOSA", and the date of its release, "Dec 18 1998".
ARRLIB_API M<double> version();
ARRLIB_API M<double> version(i_o_t, Mr<double> name);
ARRLIB_API M<double> version(i_o_t, Mr<double> name, Mr<double> date);

// What is wrong with a number n of inputs that may lie from `low` to `high`: empty text, "too few input
// arguments" or "too many input arguments".
ARRLIB_API M<double> nargchk(M<double> const& low, M<double> const& high, M<double> const& n);

// Does nothing in a translated program, whose variables end with their functions.
ARRLIB_API M<double> clear();
ARRLIB_API M<double> clear(M<double> const& name);

#endif
