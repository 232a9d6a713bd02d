// Cell arrays out of matrices and back, and questions to every cell.
#ifndef ARRLIB_BUILTINS_CELLS_H
#define ARRLIB_BUILTINS_CELLS_H

#include "core/subscript.h"

// A cell for each element of A, in the same shape; the elements along the dimensions in the list dims
// stay together in one cell, and those sizes become 1. Text and logicals stay what they are. The
// messages of dimension arguments: "num2cell: dim argument must be positive", "num2cell: dim argument
// may not be more then the number of dimensions".
ARRLIB_API M<M<double>> num2cell(M<double> const& A);
ARRLIB_API M<M<double>> num2cell(M<double> const& A, M<double> const& dims);

// What a function named "isempty", "islogical", "isreal", "length", "ndims" or "prodofsize" (the number
// of elements) gives for every cell, in the shape of C; "size" takes the dimension x, "isclass" a class
// as isa does. The answers of "is..." are logical. "cellfun: unknown function %s", "cellfun does not
// accept %d inputs", "cellfun: dimension must be a positive integer".
ARRLIB_API M<double> cellfun(M<double> const& name, M<M<double>> const& C);
ARRLIB_API M<double> cellfun(M<double> const& name, M<M<double>> const& C, M<double> const& x);

// The contents of the cells joined to one matrix: the cells of a row side by side, the rows one above
// the other. "cell2mat: matrix must be two-dimensional", and the messages of horzcat and vertcat.
ARRLIB_API M<double> cell2mat(M<M<double>> const& C);
// A cut into pieces of so many rows and columns, all columns when the second list is left out. "mat2cell:
// sizes of %s and %s do not agree" unless each list adds up to the size of A, "mat2cell: matrix must be
// two-dimensional", "mat2cell: argument must be an integer", "mat2cell: sizes must not be negative".
ARRLIB_API M<M<double>> mat2cell(M<double> const& A, M<double> const& rowsizes);
ARRLIB_API M<M<double>> mat2cell(M<double> const& A, M<double> const& rowsizes, M<double> const& colsizes);

#endif
