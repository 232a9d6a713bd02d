// Arrays and memory for extension modules: thin functions over the value type.
#include "core/access.h"
#include "core/matrix.h"

#include "bridge/mx.h"
#include "core/cell.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "core/text.h"
#include "runtime/errors.h"
#include "runtime/number_text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

using namespace arrlib;

namespace {

// False after the report of a function that was given no array.
bool given(mxArray const* array, char const* function)
{
    if (!array)
        error("%s: no array given", function);
    return array != nullptr;
}

// A handle to the value; null when its storage, or room for the handle, could not be had.
mxArray* handle_to(M<double>&& value)
{
    return has_storage(value) ? new M<double>(std::move(value)) : nullptr;
}

mxArray* zeros(bool complex, Dims const& shape)
{
    M<double> made = Access<double>::full(complex, shape);
    if (has_storage(made)) {
        Storage<double>::clear(made.addr(), made.getnnz());
        if (made.isc())
            Storage<double>::clear(made.addi(), made.getnnz());
    }
    return handle_to(std::move(made));
}

// Dims in use: without the trailing ones beyond the second.
int used_dims(int ndims, int const* dims)
{
    while (ndims > 2 && dims[ndims - 1] == 1)
        --ndims;
    return ndims;
}

int columns(M<double> const& array)
{
    return array.rows() > 0 ? array.size() / array.rows() : 0;
}

// The subscript of row i and column j, columns counted through all further dimensions; 0 outside.
double subscript(M<double> const& array, int i, int j)
{
    bool const inside = i >= 1 && i <= array.rows() && j >= 1 && j <= columns(array);
    return inside ? static_cast<double>(array.rows()) * (j - 1) + i : 0;
}

// One part of an element. A place outside goes on to the accessor that reports rows and columns.
double part_of(M<double> const& array, ElementPart part, int i, int j)
{
    double const k = subscript(array, i, j);
    if (part == ElementPart::real)
        return k > 0 ? array.r(k) : array.r(i, j);
    return k > 0 ? array.i(k) : array.i(i, j);
}

// A sparse array takes a new entry and stays sparse.
void set_part(M<double>& array, ElementPart part, int i, int j, double value)
{
    if (!array.issparse()) {
        double const k = subscript(array, i, j);
        if (part == ElementPart::real)
            (k > 0 ? array.r(k) : array.r(i, j)) = value;
        else
            (k > 0 ? array.i(k) : array.i(i, j)) = value;
        return;
    }
    M<double> const& before = array;
    bool const is_real = part == ElementPart::real;
    // Reports a place outside under the part's name.
    is_real ? before.r(i, j) : before.i(i, j);
    M<double> element(array.isc() || !is_real, 1, 1);
    if (!has_storage(element))
        return;
    *element.addr() = is_real ? value : before.r(i, j);
    if (element.isc())
        *element.addi() = is_real ? before.i(i, j) : value;
    array(i, j) = element;
}

} // namespace

// --- memory -----------------------------------------------------------------------------------------

void* mxCalloc(std::size_t count, std::size_t size)
{
    return std::calloc(count, size);
}

void* mxMalloc(std::size_t size)
{
    return std::malloc(size);
}

void* mxRealloc(void* block, std::size_t size)
{
    return std::realloc(block, size);
}

void mxFree(void* block)
{
    std::free(block);
}

// --- making and ending arrays -----------------------------------------------------------------------

mxArray* mxCreateDoubleMatrix(int m, int n, mxComplexity complexity)
{
    return mxCreateFull(m, n, complexity);
}

mxArray* mxCreateFull(int m, int n, int complexity)
{
    return zeros(complexity != mxREAL, Dims(m, n));
}

mxArray* mxCreateNumericArray(int ndims, int const* dims, mxClassID element_class, mxComplexity complexity)
{
    if (ndims < 1 || !dims)
        return zeros(complexity != mxREAL, Dims());
    if (used_dims(ndims, dims) > max_dims) {
        error("mxCreateNumericArray: too many dimensions");
        return nullptr;
    }
    if (element_class != mxDOUBLE_CLASS)
        warning("mxCreateNumericArray: elements are of class double");
    int const row_of[] = {1, dims[0]};
    return zeros(complexity != mxREAL, ndims == 1 ? Dims(2, row_of) : Dims(ndims, dims));
}

mxArray* mxCreateSparse(int m, int n, int nzmax, mxComplexity complexity)
{
    Dims const shape(m, n);
    int const room = std::clamp(nzmax, 0, std::max(shape.count, 0));
    M<double> made = sparse_with_room(complexity != mxREAL, shape, room);
    if (has_storage(made)) {
        Storage<double>::clear(made.addr(), room);
        if (made.isc())
            Storage<double>::clear(made.addi(), room);
    }
    return handle_to(std::move(made));
}

mxArray* mxCreateString(char const* text)
{
    return handle_to(TM(text));
}

mxArray* mxDuplicateArray(mxArray const* array)
{
    if (!given(array, "mxDuplicateArray"))
        return nullptr;
    M<double> copy = *array;
    copy.setname(nullptr);
    copy.unshare();
    // Still shared after the report of a copy that failed.
    return copy.dirty() ? nullptr : handle_to(std::move(copy));
}

void mxDestroyArray(mxArray* array)
{
    delete array;
}

void mxFreeMatrix(mxArray* array)
{
    delete array;
}

// --- elements ---------------------------------------------------------------------------------------

double* mxGetPr(mxArray const* array)
{
    return given(array, "mxGetPr") ? array->addr() : nullptr;
}

double* mxGetPi(mxArray const* array)
{
    return given(array, "mxGetPi") ? array->addi() : nullptr;
}

void* mxGetData(mxArray const* array)
{
    return given(array, "mxGetData") ? array->addr() : nullptr;
}

void* mxGetImagData(mxArray const* array)
{
    return given(array, "mxGetImagData") ? array->addi() : nullptr;
}

double mxGetScalar(mxArray const* array)
{
    return given(array, "mxGetScalar") ? (*array)[1] : 0;
}

double mxGetR(mxArray const* array, int i, int j)
{
    return given(array, "mxGetR") ? part_of(*array, ElementPart::real, i, j) : 0;
}

double mxGetI(mxArray const* array, int i, int j)
{
    return given(array, "mxGetI") ? part_of(*array, ElementPart::imaginary, i, j) : 0;
}

void mxSetR(mxArray* array, int i, int j, double value)
{
    if (given(array, "mxSetR"))
        set_part(*array, ElementPart::real, i, j, value);
}

void mxSetI(mxArray* array, int i, int j, double value)
{
    if (given(array, "mxSetI"))
        set_part(*array, ElementPart::imaginary, i, j, value);
}

int mxGetString(mxArray const* array, char* buffer, int length)
{
    char nowhere[1];
    if (!given(array, "mxGetString"))
        return 0;
    if (buffer && length > 0)
        Mstr(*array, buffer, length - 1);
    else
        Mstr(*array, nowhere, 0);
    return 0;
}

// --- sizes and name ---------------------------------------------------------------------------------

int mxGetM(mxArray const* array)
{
    return given(array, "mxGetM") ? array->rows() : 0;
}

int mxGetN(mxArray const* array)
{
    return given(array, "mxGetN") ? columns(*array) : 0;
}

int const* mxGetDimensions(mxArray const* array)
{
    return given(array, "mxGetDimensions") ? array->getdims() : nullptr;
}

int mxGetNumberOfDimensions(mxArray const* array)
{
    return given(array, "mxGetNumberOfDimensions") ? array->getndims() : 0;
}

int mxGetNumberOfElements(mxArray const* array)
{
    return given(array, "mxGetNumberOfElements") ? array->size() : 0;
}

int mxGetNzmax(mxArray const* array)
{
    return given(array, "mxGetNzmax") ? static_cast<int>(nzmax(*array)[1]) : 0;
}

char const* mxGetName(mxArray const* array)
{
    return given(array, "mxGetName") && array->getname() ? array->getname() : "";
}

int mxSetDimensions(mxArray* array, int const* dims, int ndims)
{
    if (!given(array, "mxSetDimensions"))
        return 0;
    if (ndims < 1 || !dims)
        error("reshape: size is wrong");
    else if (used_dims(ndims, dims) > (array->issparse() ? 2 : max_dims))
        error("reshape: too many dimensions");
    else if (ndims == 1)
        array->reshape(1, dims[0]);
    else
        array->reshape(ndims, dims);
    return 0;
}

// --- what an array is -------------------------------------------------------------------------------

void mxSetLogical(mxArray* array)
{
    if (given(array, "mxSetLogical"))
        array->setlogical(1);
}

void mxSetString(mxArray* array)
{
    if (given(array, "mxSetString"))
        array->setstr(1);
}

int mxIsChar(mxArray const* array)
{
    return given(array, "mxIsChar") && array->isstr();
}

int mxIsString(mxArray const* array)
{
    return given(array, "mxIsString") && array->isstr();
}

int mxIsComplex(mxArray const* array)
{
    return given(array, "mxIsComplex") && array->isc();
}

int mxIsSparse(mxArray const* array)
{
    return given(array, "mxIsSparse") && array->issparse();
}

int mxIsFull(mxArray const* array)
{
    return given(array, "mxIsFull") && !array->issparse();
}

int mxIsEmpty(mxArray const* array)
{
    return given(array, "mxIsEmpty") && array->size() == 0;
}

int mxIsLogical(mxArray const* array)
{
    return given(array, "mxIsLogical") && array->islogical();
}

int mxIsClass(mxArray const* array, char const* name)
{
    return given(array, "mxIsClass") && isa(*array, TM(name))[1] != 0;
}

mxClassID mxGetClassID(mxArray const*)
{
    return mxDOUBLE_CLASS;
}

int mxIsDouble(mxArray const*)
{
    return 1;
}

int mxIsNumeric(mxArray const*)
{
    return 1;
}

int mxIsCell(mxArray const*)
{
    return 0;
}

int mxIsStruct(mxArray const*)
{
    return 0;
}

int mxIsSingle(mxArray const*)
{
    return 0;
}

int mxIsInt8(mxArray const*)
{
    return 0;
}

int mxIsInt16(mxArray const*)
{
    return 0;
}

int mxIsInt32(mxArray const*)
{
    return 0;
}

int mxIsUint8(mxArray const*)
{
    return 0;
}

int mxIsUint16(mxArray const*)
{
    return 0;
}

int mxIsUint32(mxArray const*)
{
    return 0;
}

// --- numbers ----------------------------------------------------------------------------------------

int mxIsFinite(double value)
{
    return std::isfinite(value);
}

int mxIsInf(double value)
{
    return std::isinf(value);
}

int mxIsNaN(double value)
{
    return std::isnan(value);
}

double mxGetEps()
{
    return std::numeric_limits<double>::epsilon();
}

double mxGetInf()
{
    return std::numeric_limits<double>::infinity();
}

double mxGetNaN()
{
    return quiet_nan();
}
