// Files of the program: opening and closing, bytes and lines, positions and states. Files are known by
// their numbers; 0, 1 and 2 are the standard streams.
//
// Every function that takes a fid may report "Size of fid %s not one.", "Illegal fid." and "Fid not
// opened."; it gives the empty matrix then. Fids are truncated. Empty optional inputs count as
// omitted.
#ifndef ARRLIB_IO_FILES_H
#define ARRLIB_IO_FILES_H

#include "core/subscript.h"
#include "runtime/constants.h"

// Before the functions of the same names: some C libraries' headers cannot follow them.
#include <cstdio>
#include <cwchar>

// --- opening and closing (io/files.cpp) -----------------------------------------------------------

// Opens a file and gives its fid, or -1 and one of the messages "filename is empty" and "File error";
// else the message is empty. The mode is "r", "w" or "a" with any of "+", "b" and "t" behind it, "r"
// when omitted; without "b" and "t" it is binary. The machine format is "ieee-le" or "l", "ieee-be"
// or "b", "native" or "n", the last when omitted; any other warns "fopen: don't know how to convert
// from machine format", and elements are reversed then. The 126th file reports "Too many files" and
// ends the process. fopen('all') gives the open fids from 3 on as a row.
ARRLIB_API M<double> fopen(M<double> const& name, M<double> const& mode = nop_M, M<double> const& machineformat = nop_M);
ARRLIB_API M<double> fopen(M<double> const& name, M<double> const& mode, M<double> const& machineformat, i_o_t, Mr<double> message);
inline M<double> fopen(M<double> const& name, M<double> const& mode, i_o_t, Mr<double> message)
{
    return fopen(name, mode, nop_M, i_o, message);
}
inline M<double> fopen(M<double> const& name, i_o_t, Mr<double> message)
{
    return fopen(name, nop_M, nop_M, i_o, message);
}
// Also gives the mode and machine format that the file was opened with, empty when it was not.
ARRLIB_API M<double> fopen(M<double> const& name, M<double> const& mode, M<double> const& machineformat, i_o_t, Mr<double> message,
                           Mr<double> mode_used, Mr<double> machineformat_used);
// The name, mode and machine format of an open file.
ARRLIB_API M<double> fopen(M<double> const& fid, i_o_t, Mr<double> mode, Mr<double> machineformat);

// Closes a file, or every file when given any text; 0, or -1 when what was still to be written could
// not be. "fclose: can not close stdin/stdout/stderr, fid is %s".
ARRLIB_API M<double> fclose(M<double> const& fid);

// The identifiers of standard input, output and error: 0, 1 and 2.
ARRLIB_API M<double> stdinM();
ARRLIB_API M<double> stdoutM();
ARRLIB_API M<double> stderrM();

// --- elements (io/binary_files.cpp) ---------------------------------------------------------------

// Reads elements as doubles, and how many were read. The size is a count, for a column, or rows and
// columns, of which those that are read fill as many as they need, the last one with zeros; what is
// infinite, and an omitted size, takes what there is, infinite rows as one column. The precision is
// a name of an element type, "uchar" when omitted ("fileio: unknown precision %s" takes doubles);
// given as the second input it stands before skip and machine format. Skip is how many bytes are
// passed over after each element; the machine format, when it is a known one, replaces the file's.
// "fread: can not read multi-dimensional matrices", "fread: skip<0. skip is %s".
ARRLIB_API M<double> fread(M<double> const& fid, M<double> const& size, M<double> const& precision, M<double> const& skip,
                           M<double> const& machineformat, i_o_t, Mr<double> count);
inline M<double> fread(M<double> const& fid, M<double> const& size, M<double> const& precision, M<double> const& skip, i_o_t, Mr<double> count)
{
    return fread(fid, size, precision, skip, nop_M, i_o, count);
}
inline M<double> fread(M<double> const& fid, M<double> const& size, M<double> const& precision, i_o_t, Mr<double> count)
{
    return fread(fid, size, precision, nop_M, nop_M, i_o, count);
}
inline M<double> fread(M<double> const& fid, M<double> const& size, i_o_t, Mr<double> count)
{
    return fread(fid, size, nop_M, nop_M, nop_M, i_o, count);
}
inline M<double> fread(M<double> const& fid, i_o_t, Mr<double> count)
{
    return fread(fid, nop_M, nop_M, nop_M, nop_M, i_o, count);
}
ARRLIB_API M<double> fread(M<double> const& fid, M<double> const& size = nop_M, M<double> const& precision = nop_M,
                           M<double> const& skip = nop_M, M<double> const& machineformat = nop_M);

// Writes the real parts of the elements, column by column, and gives how many were written; fewer
// when the disk is full, as far as the system has been asked: it is for the last ones when the file
// is flushed or closed. Integers are truncated to 64 bits, of which narrower types keep the low ones:
// 300 as uint8 is 44, -1 as uint16 is 65535; NaN, infinities and what does not fit 64 bits are -2^63,
// whose low bits are 0; uint64 takes 0 to 2^64. Skip is passed over after each element. "fwrite:
// precision not a string", "fwrite: skip<0. skip is %s".
ARRLIB_API M<double> fwrite(M<double> const& fid, M<double> const& a, M<double> const& precision = nop_M, M<double> const& skip = nop_M,
                            M<double> const& machineformat = nop_M);

// --- lines (io/files.cpp) -------------------------------------------------------------------------

// The next line with its end, or its next nchar characters; -1 at the end of the file. Characters are
// signed, as in literals.
ARRLIB_API M<double> fgets(M<double> const& fid);
ARRLIB_API M<double> fgets(M<double> const& fid, M<double> const& nchar);
// The same without line feeds and carriage returns.
ARRLIB_API M<double> fgetl(M<double> const& fid);

// --- positions and states (io/files.cpp) ----------------------------------------------------------

// Moves to the offset in bytes from the start (an origin below 0 or "bof"), from here (0 or "cof") or
// from the end (above 0 or "eof"); 0, or -1 when that cannot be. "fseek: origin %s not bof, cof or
// eof" goes on from here.
ARRLIB_API M<double> fseek(M<double> const& fid, M<double> const& offset, M<double> const& origin);
// The position, -1 when there is none.
ARRLIB_API M<double> ftell(M<double> const& fid);
ARRLIB_API M<double> frewind(M<double> const& fid);
// 1 once a read has met the end, else 0.
ARRLIB_API M<double> feof(M<double> const& fid);
// The system's text for the last failure, and its number; empty and 0 while there is none. The
// option "clear" forgets the failure and the end of the file afterwards.
ARRLIB_API M<double> ferror(M<double> const& fid, M<double> const& option = nop_M);
ARRLIB_API M<double> ferror(M<double> const& fid, M<double> const& option, i_o_t, Mr<double> number);
inline M<double> ferror(M<double> const& fid, i_o_t, Mr<double> number)
{
    return ferror(fid, nop_M, i_o, number);
}
// Passes on what has been written so far; 0, or -1 when it could not all be.
ARRLIB_API M<double> fflush(M<double> const& fid);

#endif
