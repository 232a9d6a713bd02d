// What extension modules are written against: arrays, memory, and services of the program that calls
// them. For C and C++.
//
// A module is a dynamic library that exports mexFunction, declared at the end. A program calls it with
// call_mex("foo", ...), which finds it in foo_korvex.dll or foo_korvex.so.
//
// Every array is one of doubles: numbers, text (character codes) or logicals, full or sparse, of two to
// four dimensions, column by column. The functions that make arrays give null when memory or room in
// the sizes is short, after a report. A function that takes an array and is given a null pointer
// reports "%s: no array given" and answers 0. A handle is good until mxDestroyArray; the
// library cannot tell one that has been destroyed.
//
// Errors: after a report the program may end, or an exception of C++ may leave the module; where the
// program's error handler returns, the function that reported returns as well, but for mexErrMsgTxt,
// mxAssert and mxAssertS, which never do. Modules in C are compiled with -fexceptions (as
// arrlib_add_module does), and what a module holds at that moment is lost, but for the outputs that it
// has made: those are destroyed by the caller.
#ifndef ARRLIB_BRIDGE_MX_H
#define ARRLIB_BRIDGE_MX_H

#include <stddef.h>

#if defined(_WIN32) && defined(ARRLIB_BUILDING)
#define ARRLIB_MX_API __declspec(dllexport)
#elif defined(_WIN32)
#define ARRLIB_MX_API
#else
#define ARRLIB_MX_API __attribute__((visibility("default")))
#endif
#if defined(_WIN32)
#define ARRLIB_MX_ENTRY __declspec(dllexport)
#else
#define ARRLIB_MX_ENTRY __attribute__((visibility("default")))
#endif
#if defined(__GNUC__)
#define ARRLIB_MX_NORETURN __attribute__((noreturn))
#else
#define ARRLIB_MX_NORETURN
#endif

// An array is known by its address only. In C++ behind arrlib.h it is a value of programs, with all that
// they can do.
#if defined(__cplusplus) && defined(ARRLIB_CORE_API_H)
typedef M<double> mxArray;
#else
typedef struct mxArray_tag mxArray;
#endif

typedef enum { mxREAL = 0, mxCOMPLEX = 1 } mxComplexity;

// The kinds of arrays that modules may ask for and be asked about; those that are made are mxDOUBLE_CLASS.
typedef enum {
    mxUNKNOWN_CLASS = 0,
    mxCELL_CLASS = 1,
    mxSTRUCT_CLASS = 2,
    mxOBJECT_CLASS = 3,
    mxCHAR_CLASS = 4,
    mxSPARSE_CLASS = 5,
    mxDOUBLE_CLASS = 6,
    mxSINGLE_CLASS = 7,
    mxINT8_CLASS = 8,
    mxUINT8_CLASS = 9,
    mxINT16_CLASS = 10,
    mxUINT16_CLASS = 11,
    mxINT32_CLASS = 12,
    mxUINT32_CLASS = 13
} mxClassID;

#ifdef __cplusplus
extern "C" {
#endif

// --- memory -----------------------------------------------------------------------------------------
// The C library's heap. Nothing is freed when the module returns.

// `count` zeroed items of `size` bytes; null when there is no room, or no such size.
ARRLIB_MX_API void *mxCalloc(size_t count, size_t size);
// `size` bytes, not initialised; null when there is no room.
ARRLIB_MX_API void *mxMalloc(size_t size);
// The block in a new size, perhaps elsewhere; a new block for a null one. Null when there is no room,
// and the old block is as it was; null for size 0 of a block, which is given back.
ARRLIB_MX_API void *mxRealloc(void *block, size_t size);
// Gives a block of these three back; null is nothing.
ARRLIB_MX_API void mxFree(void *block);

// --- making and ending arrays -----------------------------------------------------------------------
// Sizes below 1 make an empty array, 0x0.

// Zeros, m x n; complex unless `complexity` is mxREAL.
ARRLIB_MX_API mxArray *mxCreateDoubleMatrix(int m, int n, mxComplexity complexity);
// The same, complex when `complexity` is not 0.
ARRLIB_MX_API mxArray *mxCreateFull(int m, int n, int complexity);
// Zeros in one to four dimensions: "mxCreateNumericArray: too many dimensions". The elements are doubles
// whatever class is asked for; another one than mxDOUBLE_CLASS is warned about:
// "mxCreateNumericArray: elements are of class double".
ARRLIB_MX_API mxArray *mxCreateNumericArray(int ndims, const int *dims, mxClassID element_class, mxComplexity complexity);
// A sparse array, m x n, without entries and with room for nzmax of them, which mxSetR and mxSetI add:
// fastest column by column, downwards. "sparse: matrix is too large".
ARRLIB_MX_API mxArray *mxCreateSparse(int m, int n, int nzmax, mxComplexity complexity);
// Text, 1 x its length; 0x0 for null and an empty text. Bytes above 127 become negative codes.
ARRLIB_MX_API mxArray *mxCreateString(const char *text);
// A copy with storage of its own, without a name.
ARRLIB_MX_API mxArray *mxDuplicateArray(const mxArray *array);
// Ends an array that one of these functions made, and its storage; null is nothing. Inputs of a module
// and outputs that it gives are the caller's to end.
ARRLIB_MX_API void mxDestroyArray(mxArray *array);
ARRLIB_MX_API void mxFreeMatrix(mxArray *array);

// --- elements ---------------------------------------------------------------------------------------

// The real and the imaginary parts, mxGetNumberOfElements of them in a full array, the stored entries in a sparse
// one; null for the imaginary parts of a real array. To be written to only in arrays that the module
// has made: those of inputs may be shared with other values. Good until the array is ended or changed by
// mxSetR or mxSetI.
ARRLIB_MX_API double *mxGetPr(const mxArray *array);
ARRLIB_MX_API double *mxGetPi(const mxArray *array);
ARRLIB_MX_API void *mxGetData(const mxArray *array);
ARRLIB_MX_API void *mxGetImagData(const mxArray *array);
// The first element's real part; 0.0 for an empty array.
ARRLIB_MX_API double mxGetScalar(const mxArray *array);
// The real and the imaginary part in row i and column j, counted from 1, columns through all further
// dimensions; the imaginary part of a real array is 0. A place outside ends the program after its report: "%s.r(row,col): row or col out of
// matrix", the same with "i".
ARRLIB_MX_API double mxGetR(const mxArray *array, int i, int j);
ARRLIB_MX_API double mxGetI(const mxArray *array, int i, int j);
// Set them, with the same reports. Other values that share the storage keep theirs; mxSetI makes a real
// array complex.
ARRLIB_MX_API void mxSetR(mxArray *array, int i, int j, double value);
ARRLIB_MX_API void mxSetI(mxArray *array, int i, int j, double value);
// The characters, in storage order, and a zero byte, `length` bytes at most; returns 0. Longer text is
// cut with the warning "Mstr: buffer too small - chopped", and shown as cut. Nothing is written where `length` is below 1.
ARRLIB_MX_API int mxGetString(const mxArray *array, char *buffer, int length);

// --- sizes and name ---------------------------------------------------------------------------------

// Rows; columns, counted through all further dimensions.
ARRLIB_MX_API int mxGetM(const mxArray *array);
ARRLIB_MX_API int mxGetN(const mxArray *array);
// Two to four sizes, and how many.
ARRLIB_MX_API const int *mxGetDimensions(const mxArray *array);
ARRLIB_MX_API int mxGetNumberOfDimensions(const mxArray *array);
// Zeros of a sparse array count too.
ARRLIB_MX_API int mxGetNumberOfElements(const mxArray *array);
// Entries that a sparse array has room for; all elements of a full one.
ARRLIB_MX_API int mxGetNzmax(const mxArray *array);
// The variable's name, "" where it has none.
ARRLIB_MX_API const char *mxGetName(const mxArray *array);
// The same elements in new sizes, one to four: "reshape: size is wrong", "reshape: too many dimensions"
// for more, or more than two of a sparse array; after a report the array is as it was. Returns 0.
ARRLIB_MX_API int mxSetDimensions(mxArray *array, const int *dims, int ndims);

// --- what an array is -------------------------------------------------------------------------------
// 1 or 0.

// Mark the array as logical, as text.
ARRLIB_MX_API void mxSetLogical(mxArray *array);
ARRLIB_MX_API void mxSetString(mxArray *array);
// Whether it is text.
ARRLIB_MX_API int mxIsChar(const mxArray *array);
ARRLIB_MX_API int mxIsString(const mxArray *array);
// Whether it has an imaginary part.
ARRLIB_MX_API int mxIsComplex(const mxArray *array);
ARRLIB_MX_API int mxIsSparse(const mxArray *array);
ARRLIB_MX_API int mxIsFull(const mxArray *array);
// Whether it has no elements.
ARRLIB_MX_API int mxIsEmpty(const mxArray *array);
ARRLIB_MX_API int mxIsLogical(const mxArray *array);
// What isa(array, name) says: text is "char" alone, a sparse array "sparse" and "double".
ARRLIB_MX_API int mxIsClass(const mxArray *array, const char *name);
// mxDOUBLE_CLASS for every array, also for text.
ARRLIB_MX_API mxClassID mxGetClassID(const mxArray *array);
// Always 1.
ARRLIB_MX_API int mxIsDouble(const mxArray *array);
ARRLIB_MX_API int mxIsNumeric(const mxArray *array);
// Always 0.
ARRLIB_MX_API int mxIsCell(const mxArray *array);
ARRLIB_MX_API int mxIsStruct(const mxArray *array);
ARRLIB_MX_API int mxIsSingle(const mxArray *array);
ARRLIB_MX_API int mxIsInt8(const mxArray *array);
ARRLIB_MX_API int mxIsInt16(const mxArray *array);
ARRLIB_MX_API int mxIsInt32(const mxArray *array);
ARRLIB_MX_API int mxIsUint8(const mxArray *array);
ARRLIB_MX_API int mxIsUint16(const mxArray *array);
ARRLIB_MX_API int mxIsUint32(const mxArray *array);

// --- numbers ----------------------------------------------------------------------------------------

// Whether a number is neither infinite nor NaN; is infinite, of either sign; is NaN. 1 or 0.
ARRLIB_MX_API int mxIsFinite(double value);
ARRLIB_MX_API int mxIsInf(double value);
ARRLIB_MX_API int mxIsNaN(double value);
// The distance from 1 to the next larger number, plus infinity, and the NaN that the language makes.
ARRLIB_MX_API double mxGetEps(void);
ARRLIB_MX_API double mxGetInf(void);
ARRLIB_MX_API double mxGetNaN(void);
// The same under their other names.
ARRLIB_MX_API int mexIsFinite(double value);
ARRLIB_MX_API int mexIsInf(double value);
ARRLIB_MX_API int mexIsNaN(double value);
ARRLIB_MX_API double mexGetEps(void);
ARRLIB_MX_API double mexGetInf(void);
ARRLIB_MX_API double mexGetNaN(void);

// --- errors and services ----------------------------------------------------------------------------

// Takes the program's error handler away, so that the default one is in force from now on, and raises
// the text as an error. Does not return: the program ends, or the error is thrown, as its flags say.
// Where they say neither, the call of the module is over, and its outputs are empty; outside a module
// the program ends with status 1.
ARRLIB_MX_API void mexErrMsgTxt(const char *text) ARRLIB_MX_NORETURN;
// Gives the text as a warning.
ARRLIB_MX_API void mexWarnMsgTxt(const char *text);
// Nothing where the condition holds. Otherwise an error, through the program's handler:
// "Assertion failed: %s"; the message alone from mxAssertS ("Assertion failed" without one). Does not
// return then, as mexErrMsgTxt.
ARRLIB_MX_API void mxAssert(int condition, const char *message);
ARRLIB_MX_API void mxAssertS(int condition, const char *message);
// Calls a function of the language. Only "double" is there: plhs[0] becomes prhs[0] as numbers, neither text nor
// logical, in a new array. Returns 0, or 1 after a report: "mexCallMATLAB:%s is not available",
// "mexCallMATLAB: wrong number of arguments" unless one input and at most one output is asked for.
ARRLIB_MX_API int mexCallMATLAB(int nlhs, mxArray *plhs[], int nrhs, mxArray *prhs[], const char *name);

// --- what is not available --------------------------------------------------------------------------
// Each is here so that modules that name it can be built and loaded. Calling it raises the error
// "NAME is not available"; where the program's error handler returns, the answer is 0, or null.
#define ARRLIB_MX_UNAVAILABLE(type, name, parameters) ARRLIB_MX_API type name parameters;
#include "bridge/mx_unavailable.h"
#undef ARRLIB_MX_UNAVAILABLE

// --- the module's own -------------------------------------------------------------------------------

// The entry point, which the module defines. `nrhs` inputs are in prhs, to be read only. `nlhs` outputs
// are wanted in plhs, whose slots are null; each is given by storing a new array there, which is the
// caller's from then on. One output may be given where none is wanted.
#if !defined(ARRLIB_BUILDING) && !defined(ARRLIB_STATIC)
ARRLIB_MX_ENTRY void mexFunction(int nlhs, mxArray *plhs[], int nrhs, const mxArray *prhs[]);
#endif

#ifdef __cplusplus
}
#endif

#endif
