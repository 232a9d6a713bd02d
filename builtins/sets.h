// Sets: the distinct elements of values, and what two of them have in common.
//
// Results are sorted as by sort() and hold nothing twice. The elements of a matrix are meant, or, with
// the option "rows", its rows, then in lexicographic order; or the texts of a cell array ("%s: argument
// must be a cell array of strings"). -0 and 0 are equal; NaN, and a row with one, equals nothing and
// stands alone. Text gives text. Messages, with the name of the function: "%s: unknown option %s", and
// with "rows" "%s: matrix must be two-dimensional".
#ifndef ARRLIB_BUILTINS_SETS_H
#define ARRLIB_BUILTINS_SETS_H

#include "core/matrix.h"
#include "core/subscript.h"

// The distinct elements: a row for a row, else a column; with "rows" the distinct rows. b = A(i) with
// the last of equal elements, and A = b(j); i and j are rows or columns as b is. The texts of a cell
// array give a column of cells.
ARRLIB_API M<double> unique(M<double> const& A);
ARRLIB_API M<double> unique(M<double> const& A, M<double> const& option);
ARRLIB_API M<double> unique(M<double> const& A, i_o_t, Mr<double> b);
ARRLIB_API M<double> unique(M<double> const& A, i_o_t, Mr<double> b, Mr<double> i);
ARRLIB_API M<double> unique(M<double> const& A, i_o_t, Mr<double> b, Mr<double> i, Mr<double> j);
ARRLIB_API M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b);
ARRLIB_API M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b, Mr<double> i);
ARRLIB_API M<double> unique(M<double> const& A, M<double> const& option, i_o_t, Mr<double> b, Mr<double> i, Mr<double> j);
ARRLIB_API M<M<double>> unique(M<M<double>> const& A);
ARRLIB_API M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b);
ARRLIB_API M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b, Mr<double> i);
ARRLIB_API M<M<double>> unique(M<M<double>> const& A, i_o_t, Mr<M<double>> b, Mr<double> i, Mr<double> j);

// The elements of A or B: a row when both are rows or empty, else a column. c holds A(ia) and B(ib); an
// element of both is taken from B, the last of equal ones. The positions are rows or columns as c is.
// "union: sizes of %s and %s do not agree" for different numbers of columns with "rows".
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> unionM(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c);
ARRLIB_API M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia);
ARRLIB_API M<M<double>> unionM(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib);

// The elements of both A and B, shaped as by unionM: c = A(ia) = B(ib), the last of equal ones.
// "intersect: sizes of %s and %s do not agree".
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> intersect(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c);
ARRLIB_API M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia);
ARRLIB_API M<M<double>> intersect(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib);

// The elements of A that B does not have, shaped as by unionM: c = A(ia), the last of equal ones. Text
// when A is text. "setdiff: sizes of %s and %s do not agree".
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option);
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c);
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c);
ARRLIB_API M<double> setdiff(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c);
ARRLIB_API M<M<double>> setdiff(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia);

// The elements of A or B that the other one does not have, shaped as by unionM: A(ia) and B(ib), the
// last of equal ones. "setxor: sizes of %s and %s do not agree".
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia);
ARRLIB_API M<double> setxor(M<double> const& A, M<double> const& B, M<double> const& option, i_o_t, Mr<double> c, Mr<double> ia, Mr<double> ib);
ARRLIB_API M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B);
ARRLIB_API M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c);
ARRLIB_API M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia);
ARRLIB_API M<M<double>> setxor(M<M<double>> const& A, M<M<double>> const& B, i_o_t, Mr<M<double>> c, Mr<double> ia, Mr<double> ib);

// Whether the elements of A are in S: logical, in the shape of A, or with "rows" a column for the rows
// of A. k takes the first position in S, or 0. Text and a cell array give one answer: whether one of
// the cells holds the text; a cell array and a cell array give one for each text of A. "ismember: sizes
// of %s and %s do not agree" for different numbers of columns, "ismember: argument must be a string".
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S);
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option);
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S, i_o_t, Mr<double> tf);
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S, i_o_t, Mr<double> tf, Mr<double> k);
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option, i_o_t, Mr<double> tf);
ARRLIB_API M<double> ismember(M<double> const& A, M<double> const& S, M<double> const& option, i_o_t, Mr<double> tf, Mr<double> k);
ARRLIB_API M<double> ismember(M<double> const& A, M<M<double>> const& S);
ARRLIB_API M<double> ismember(M<double> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf);
ARRLIB_API M<double> ismember(M<double> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf, Mr<double> k);
ARRLIB_API M<double> ismember(M<M<double>> const& A, M<M<double>> const& S);
ARRLIB_API M<double> ismember(M<M<double>> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf);
ARRLIB_API M<double> ismember(M<M<double>> const& A, M<M<double>> const& S, i_o_t, Mr<double> tf, Mr<double> k);

#endif
