// Folders, whole files and commands of the system's shell.
//
// Names count up to 512 characters. Functions without a result named here give the empty matrix.
#ifndef ARRLIB_IO_SHELL_H
#define ARRLIB_IO_SHELL_H

#include "core/subscript.h"
#include "runtime/constants.h"

// Before the functions of the same names: some C libraries' headers cannot follow them.
#include <cstdlib>

// "Could not make directory %s", "Could not remove directory %s".
ARRLIB_API M<double> mkdir(M<double> const& name);
ARRLIB_API M<double> rmdir(M<double> const& name);
// Changes the working folder: "Could not change directory to %s". Without a name they give it.
ARRLIB_API M<double> cd(M<double> const& name);
ARRLIB_API M<double> cd();
ARRLIB_API M<double> chdir(M<double> const& name);
ARRLIB_API M<double> chdir();

// Deletes a file; one that is not there, or may not be deleted, stays without a word.
ARRLIB_API M<double> deleteM(M<double> const& name);
// Copies a file: "copyfile:Could not read %s", "copyfile:Could not write %s" (also for a file onto
// itself), "copyfile:Failed on copy".
ARRLIB_API M<double> copyfile(M<double> const& from, M<double> const& to);
// Shows a file through the print hook and gives 0; one that cannot be read warns "could not read %s"
// and gives 1. "type: argument not a string".
ARRLIB_API M<double> type(M<double> const& name);

// Run a command in the system's shell, wait for it, and give its status: what the command ended with,
// 128 and the number of the signal that ended it, or -1 when it could not be started. Its output
// appears where the program's does, or is the further output, as text, when that is asked for. "dos:
// argument not a string" for the first two, "system: argument not a string".
ARRLIB_API M<double> dos(M<double> const& command);
ARRLIB_API M<double> dos(M<double> const& command, i_o_t, Mr<double> output);
ARRLIB_API M<double> unixM(M<double> const& command);
ARRLIB_API M<double> unixM(M<double> const& command, i_o_t, Mr<double> output);
ARRLIB_API M<double> system(M<double> const& command);
ARRLIB_API M<double> system(M<double> const& command, i_o_t, Mr<double> output);

// What stands between the names of a path, and between the paths of a list.
ARRLIB_API M<double> filesep();
ARRLIB_API M<double> pathsep();

#endif
