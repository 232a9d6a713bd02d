// Named matrices in binary data files, of the older level-4 layout and the level-5 layout with a text
// header, for exchange with other programs.
#ifndef ARRLIB_IO_DATA_FILE_H
#define ARRLIB_IO_DATA_FILE_H

#include "io/value_list.h"

// --- writing (io/save.cpp) ------------------------------------------------------------------------
// One element or record per matrix, under the name of the matrix, "noname" when it has none. The file
// appears whole or not at all: the old one stays until the new one is on the disk. Numbers keep their
// bits; they are written in the byte order of this machine. Both return the empty matrix.

// Saves matrices in a level-5 file. Characters are written as 16-bit codes, those of bytes above 127 as 128 to 255; a complex
// text is written as numbers, a sparse matrix of more than two dimensions in full. "save: %s could
// not be created", "save: matrix '%s' has more than 2 GiB and can not be saved", "save5: '%s' could
// not write header", "save5: could not save matrix name in file '%s'", "savev5: could not write file
// '%s'.".
ARRLIB_API M<double> save_list(M<double> const& filename, M<double> const* const* matrices, int count);
template <class... Matrices> M<double> save(M<double> const& filename, M<double> const& first, Matrices const&... others)
{
    return arrlib::call_with_list<M<double>, Matrices...>(save_list, filename, first, others...);
}

// Saves matrices of two dimensions in a level-4 file; there is no logical kind. "save: matrix '%s' has more than
// two dimensions and can not be saved in 4.0 format", "save: %s could not be created", "save: could
// not write header", "save: could not write matrix name", "save: could not write real part", "save:
// could not write imag part", "could not write %s".
ARRLIB_API M<double> saveV4_list(M<double> const& filename, M<double> const* const* matrices, int count);
template <class... Matrices> M<double> saveV4(M<double> const& filename, M<double> const& first, Matrices const&... others)
{
    return arrlib::call_with_list<M<double>, Matrices...>(saveV4_list, filename, first, others...);
}

// --- reading (io/load.cpp) ------------------------------------------------------------------------
// Gives the matrices of a file of either layout and either byte order to the outputs, in the order of
// the file; what is behind the last one wanted is not looked at. Numbers of every type become doubles.
// An output of another name than the matrix in the file gets it with a warning: "load5: '%s':
// variable named '%s' loaded into '%s'", "load4 '%s': ..."; outputs without a name get it silently.
//
// Passed over: cell arrays and structures, with the warnings "load5: '%s' skipped cell array." and
// "load5: '%s' skipped structure."; after a report objects and other kinds ("load5: '%s' unrecognized
// matrix type"), more than four dimensions ("load5: Can not read matrix from file '%s' which has more
// then %s dimensions."), names of more than 255 characters ("load5: name field is too long in file
// '%s'", "load4: ..."), and compressed elements where zlib is not part of the library ("load5: '%s'
// has compressed data, which is not available in this build").
//
// Everything else that is wrong with a file ends the loading with a report, and so does a file with
// fewer matrices than outputs ("load: '%s' could not read data set"). The outputs that were not
// reached stay as they were. Nothing is allocated that the length of the file does not justify.
ARRLIB_API M<double> load_list(M<double> const& filename, Mr<double>* outputs, int count);
template <class... Outputs> M<double> load(M<double> const& filename, Mr<double> first, Outputs&&... others)
{
    Mr<double> outputs[] = {first, Mr<double>(others)...};
    return load_list(filename, outputs, static_cast<int>(sizeof...(others)) + 1);
}

// Loads the first matrix; 1 when there was one, 0 after a report.
ARRLIB_API int loadif(char const* filename, Mr<double> m);

#endif
