// The array API as modules see it, called directly.
#include "core/matrix.h"

#include "bridge/mx.h"
#include "core/sparse.h"
#include "runtime/constants.h"
#include "support/capture.h"
#include "support/values.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>

using namespace capture;
using namespace values;

namespace {

struct Destroy {
    void operator()(mxArray* array) const { mxDestroyArray(array); }
};
using Array = std::unique_ptr<mxArray, Destroy>;

std::string shown(mxArray* array)
{
    Array const owner(array);
    return array ? values::shown(*array) : "null";
}

TEST(ArrayApi, MakesArrays)
{
    int const deep[] = {2, 1, 3, 1, 1}, five[] = {1, 1, 1, 1, 2}, negative[] = {2, -1, 3}, one[] = {3};
    expect_all({{shown(mxCreateDoubleMatrix(2, 2, mxREAL)), "2x2: 0 0 0 0"},
                {shown(mxCreateDoubleMatrix(1, 2, mxCOMPLEX)), values::shown(row({0, 0}, {0, 0}))},
                {shown(mxCreateFull(0, 5, 1)), "0x0:"},
                {shown(mxCreateDoubleMatrix(-1, INT_MIN, mxREAL)), "0x0:"},
                {shown(mxCreateNumericArray(5, deep, mxDOUBLE_CLASS, mxREAL)), "2x1x3: 0 0 0 0 0 0"},
                {shown(mxCreateNumericArray(3, negative, mxDOUBLE_CLASS, mxREAL)), "0x0:"},
                {shown(mxCreateNumericArray(1, one, mxDOUBLE_CLASS, mxREAL)), "1x3: 0 0 0"},
                {shown(mxCreateNumericArray(0, nullptr, mxDOUBLE_CLASS, mxREAL)), "0x0:"},
                {shown(mxCreateSparse(3, 2, 4, mxREAL)), values::shown(sparse(M<double>(3), M<double>(2)))},
                {shown(mxCreateSparse(3, 2, -1, mxREAL)), values::shown(sparse(M<double>(3), M<double>(2)))},
                {shown(mxCreateString("ab")), values::shown(text("ab"))},
                {shown(mxCreateString("")), values::shown(text(""))},
                {shown(mxCreateString(nullptr)), values::shown(text(""))},
                {reported_by([&] { EXPECT_EQ(mxCreateNumericArray(5, five, mxDOUBLE_CLASS, mxREAL), nullptr); }),
                 "mxCreateNumericArray: too many dimensions"},
                {reported_by([] { EXPECT_EQ(mxCreateDoubleMatrix(INT_MAX, INT_MAX, mxREAL), nullptr); }), "Out of memory!"},
                {reported_by([] { EXPECT_EQ(mxCreateSparse(INT_MAX, INT_MAX, INT_MAX, mxREAL), nullptr); }), "sparse: matrix is too large"},
                {warned_by([&] { shown(mxCreateNumericArray(1, one, mxINT16_CLASS, mxREAL)); }),
                 "mxCreateNumericArray: elements are of class double"}});
    EXPECT_EQ(mxGetNzmax(Array(mxCreateSparse(3, 4, 5, mxCOMPLEX)).get()), 5);
    EXPECT_EQ(mxGetNzmax(Array(mxCreateSparse(3, 4, 100, mxREAL)).get()), 12);
    mxDestroyArray(nullptr);
    mxFreeMatrix(nullptr);
}

TEST(ArrayApi, DuplicatesDeeply)
{
    M<double> x("x", 2, 2);
    x = rows_of({{1, 2}, {3, 4}});
    for (M<double> const& source : {x, row({1, 2}, {3, 4}), text("abc"), sparse(x), M<double>(), nd({1, 2, 2}, {1, 2, 3, 4})}) {
        Array const copy(mxDuplicateArray(&source));
        EXPECT_EQ(values::shown(*copy), values::shown(source));
        EXPECT_NE(mxGetPr(copy.get()), mxGetPr(&source));
        EXPECT_STREQ(mxGetName(copy.get()), "");
    }
    EXPECT_STREQ(mxGetName(&x), "x");
}

TEST(ArrayApi, ReadsAndWritesElements)
{
    M<double> x = rows_of({{1, 2, 3}, {4, 5, 6}});
    M<double> const shared = x;
    mxSetR(&x, 2, 3, -6);
    mxSetI(&x, 1, 2, 7);
    expect_all({{values::shown(x), values::shown(matrix(2, 3, {1, 4, 2, 5, 3, -6}, {0, 0, 7, 0, 0, 0}))},
                {values::shown(shared), "2x3: 1 4 2 5 3 6"}});
    EXPECT_EQ(mxGetR(&x, 2, 3), -6);
    EXPECT_EQ(mxGetI(&x, 1, 2), 7);
    EXPECT_EQ(mxGetI(&shared, 1, 2), 0);
    EXPECT_EQ(mxGetScalar(&x), 1);
    EXPECT_EQ(mxGetPr(&x), mxGetData(&x));
    EXPECT_EQ(mxGetPi(&x), mxGetImagData(&x));
    EXPECT_EQ(mxGetPi(&shared), nullptr);
    // A sparse array takes new entries, of either part.
    Array const s(mxCreateSparse(2, 2, 1, mxREAL));
    EXPECT_EQ(mxGetScalar(s.get()), 0);
    for (int k = 1; k <= 2; ++k)
        mxSetR(s.get(), k, k, k);
    mxSetI(s.get(), 2, 2, 3);
    EXPECT_TRUE(mxIsSparse(s.get()) && mxIsComplex(s.get()));
    EXPECT_EQ(mxGetI(s.get(), 2, 2), 3);
    mxSetR(s.get(), 2, 2, 5);
    EXPECT_EQ(mxGetI(s.get(), 2, 2), 3);
    EXPECT_EQ(mxGetScalar(s.get()), 1);
    M<double> const nothing;
    EXPECT_EQ(mxGetScalar(&nothing), 0);
    M<double> deep = nd({2, 1, 3}, {1, 2, 3, 4, 5, 6});
    mxSetR(&deep, 2, 3, 7);
    mxSetI(&deep, 1, 2, 8);
    EXPECT_EQ(mxGetR(&deep, 2, 3), 7);
    EXPECT_EQ(deep.addi()[2], 8);
    EXPECT_EQ(thrown_by([&] { mxSetI(&deep, 1, 4, 1); }), "Error: (temporary).i(row,col): row or col out of matrix\n\n");
    // Outside: the report is thrown here, and ends the process where it returns.
    for (int const j : {0, 3, INT_MAX, INT_MIN}) {
        EXPECT_EQ(thrown_by([&] { mxSetR(s.get(), 1, j, 1); }), "Error: (temporary).r(row,col): row or col out of matrix\n\n");
        EXPECT_EQ(thrown_by([&] { mxGetI(s.get(), j, 1); }), "Error: (temporary).i(row,col): row or col out of matrix\n\n");
    }
}

TEST(ArrayApi, CopiesText)
{
    struct Row {
        int length;
        char const* expected;
        bool cut;
    };
    for (Row const& r : {Row{5, "abcd", false}, {6, "abcd", false}, {4, "abc", true}, {1, "", true}, {0, "#", true}, {-5, "#", true}}) {
        char buffer[8] = "#######";
        Printed const printed;
        EXPECT_EQ(warned_by([&] { EXPECT_EQ(mxGetString(Array(mxCreateString("abcd")).get(), buffer, r.length), 0); }),
                  r.cut ? "Mstr: buffer too small - chopped" : "");
        EXPECT_EQ(std::string(buffer, std::strlen(r.expected)), r.expected);
        // Not a byte behind the length.
        EXPECT_EQ(buffer[std::max(r.length, 0)], '#') << r.length;
    }
    char one = '#';
    EXPECT_EQ(warned_by([&] { mxGetString(Array(mxCreateString("")).get(), &one, 1); }), "");
    EXPECT_EQ(one, '\0');
    char bytes[4];
    mxGetString(Array(mxCreateString("\xff\x80z")).get(), bytes, 4);
    EXPECT_STREQ(bytes, "\xff\x80z");
}

TEST(ArrayApi, TellsAndSetsSizes)
{
    M<double> x = nd({2, 3, 4}, Numbers(24, 1.5)), s = sparse(rows_of({{0, 1}, {0, 2}}));
    EXPECT_EQ(mxGetM(&x), 2);
    EXPECT_EQ(mxGetN(&x), 12);
    EXPECT_EQ(mxGetNumberOfDimensions(&x), 3);
    EXPECT_EQ(mxGetDimensions(&x)[2], 4);
    EXPECT_EQ(mxGetNumberOfElements(&x), 24);
    EXPECT_EQ(mxGetNzmax(&x), 24);
    EXPECT_EQ(mxGetNumberOfElements(&s), 4);
    M<double> const nothing;
    EXPECT_EQ(mxGetN(&nothing), 0);
    int const flat[] = {24, 1, 1, 1, 1}, wrong[] = {5, 5}, five[] = {1, 1, 1, 1, 24}, huge[] = {INT_MAX, INT_MAX};
    int const column[] = {4, 1}, deep[] = {2, 1, 2};
    auto const set = [](M<double>& array, int const* dims, int ndims) {
        return reported_by([&] { EXPECT_EQ(mxSetDimensions(&array, dims, ndims), 0); });
    };
    expect_all({{set(x, flat, 5), ""},
                {std::to_string(mxGetM(&x)) + " " + std::to_string(mxGetNumberOfDimensions(&x)), "24 2"},
                {set(x, flat, 1), ""},
                {std::to_string(mxGetM(&x)), "1"},
                {set(x, wrong, 2), "reshape: size is wrong"},
                {set(x, huge, 2), "reshape: size is wrong"},
                {set(x, nullptr, 2), "reshape: size is wrong"},
                {set(x, wrong, 0), "reshape: size is wrong"},
                {set(x, five, 5), "reshape: too many dimensions"},
                {set(s, deep, 3), "reshape: too many dimensions"},
                {set(s, column, 2), ""},
                {values::shown(s), values::shown(sparse(values::column({0, 0, 1, 2})))}});
}

TEST(ArrayApi, TellsKinds)
{
    M<double> number(3.0), word = text("ab"), spread = sparse(row({0, 1})), complex = row({1}, {1}), nothing, truth = row({1, 0});
    truth.setlogical(1);
    struct Row {
        M<double>* array;
        char const* kinds;
    };
    // Text twice, complex, sparse, full, empty, logical, then classes by name.
    for (Row const& r : {Row{&number, "0000100 100"}, {&word, "1100100 010"}, {&spread, "0001000 101"}, {&complex, "0010100 100"},
                         {&nothing, "0000110 100"}, {&truth, "0000101 100"}}) {
        mxArray const* const a = r.array;
        std::string kinds;
        for (int const is : {mxIsChar(a), mxIsString(a), mxIsComplex(a), mxIsSparse(a), mxIsFull(a), mxIsEmpty(a), mxIsLogical(a)})
            kinds += std::to_string(is);
        kinds += ' ';
        for (char const* name : {"double", "char", "sparse"})
            kinds += std::to_string(mxIsClass(a, name));
        EXPECT_EQ(kinds, r.kinds);
        EXPECT_EQ(mxGetClassID(a), 6);
        EXPECT_TRUE(mxIsDouble(a) && mxIsNumeric(a));
        for (auto const is : {mxIsCell, mxIsStruct, mxIsSingle, mxIsInt8, mxIsInt16, mxIsInt32, mxIsUint8, mxIsUint16, mxIsUint32})
            EXPECT_EQ(is(a), 0);
    }
    mxSetString(&number);
    mxSetLogical(&number);
    EXPECT_TRUE(number.isstr() && number.islogical());
}

TEST(ArrayApi, KnowsNumbers)
{
    double const infinity = mxGetInf(), nan = mxGetNaN();
    EXPECT_EQ(infinity, HUGE_VAL);
    EXPECT_EQ(std::memcmp(&nan, NaN.addr(), sizeof nan), 0);
    EXPECT_EQ(mxGetEps(), std::ldexp(1.0, -52));
    EXPECT_TRUE(mexGetEps() == mxGetEps() && mexGetInf() == infinity && std::isnan(mexGetNaN()));
    for (double const value : {0.0, 1e308, infinity, -infinity, nan}) {
        EXPECT_EQ(mxIsFinite(value), std::isfinite(value));
        EXPECT_EQ(mxIsInf(value), std::isinf(value));
        EXPECT_EQ(mxIsNaN(value), std::isnan(value));
        EXPECT_TRUE(mexIsFinite(value) == mxIsFinite(value) && mexIsInf(value) == mxIsInf(value) && mexIsNaN(value) == mxIsNaN(value));
    }
}

TEST(ArrayApi, HandsOutMemory)
{
    auto* const zeroed = static_cast<char*>(mxCalloc(5, 3));
    EXPECT_EQ(std::string(zeroed, 15), std::string(15, '\0'));
    std::strcpy(zeroed, "kept");
    auto* const larger = static_cast<char*>(mxRealloc(zeroed, 5000));
    EXPECT_STREQ(larger, "kept");
    mxFree(larger);
    void* const fresh = mxRealloc(nullptr, 10);
    EXPECT_NE(fresh, nullptr);
    mxFree(fresh);
    mxFree(mxMalloc(1));
    mxFree(nullptr);
}

TEST(ArrayApi, ServesDoubleAlone)
{
    M<double> word = text("AB");
    word.setlogical(1);
    mxArray *in[] = {&word, &word}, *out[] = {nullptr};
    EXPECT_EQ(mexCallMATLAB(1, out, 1, in, "double"), 0);
    EXPECT_FALSE(out[0]->isstr() || out[0]->islogical());
    EXPECT_EQ(shown(out[0]), "1x2: 65 66");
    EXPECT_EQ(mexCallMATLAB(0, nullptr, 1, in, "double"), 0);
    auto const call = [&](int nlhs, int nrhs, char const* name) {
        return reported_by([&] { EXPECT_EQ(mexCallMATLAB(nlhs, out, nrhs, in, name), 1); });
    };
    expect_all({{call(1, 1, "sin"), "mexCallMATLAB:sin is not available"},
                {call(1, 1, nullptr), "mexCallMATLAB: is not available"},
                {call(1, 2, "double"), "mexCallMATLAB: wrong number of arguments"},
                {call(2, 1, "double"), "mexCallMATLAB: wrong number of arguments"},
                {call(1, 0, "double"), "mexCallMATLAB: wrong number of arguments"}});
}

TEST(ArrayApi, ReportsWhatIsMissing)
{
    M<double> x(1.0);
    int* const index = nullptr;
    char const* const names[] = {
#define ARRLIB_MX_UNAVAILABLE(type, name, parameters) #name,
#include "bridge/mx_unavailable.h"
#undef ARRLIB_MX_UNAVAILABLE
    };
    EXPECT_EQ(std::size(names), 53u);
    expect_all({{reported_by([] { EXPECT_EQ(mexPrintf("%d", 5), 0); }), "mexPrintf is not available"},
                {reported_by([] { EXPECT_EQ(mexEvalString("x=1"), 0); }), "mexEvalString is not available"},
                {reported_by([&] { EXPECT_EQ(mxGetJc(&x), index); }), "mxGetJc is not available"},
                {reported_by([&] { mxSetPr(&x, nullptr); }), "mxSetPr is not available"},
                // No array.
                {reported_by([&] { EXPECT_EQ(mxGetPr(nullptr), nullptr); }), "mxGetPr: no array given"},
                {reported_by([&] { EXPECT_STREQ(mxGetName(nullptr), ""); }), "mxGetName: no array given"},
                {reported_by([&] { EXPECT_EQ(mxIsEmpty(nullptr), 0); }), "mxIsEmpty: no array given"},
                {reported_by([&] { mxSetR(nullptr, 1, 1, 1); }), "mxSetR: no array given"},
                {reported_by([&] { EXPECT_EQ(mxDuplicateArray(nullptr), nullptr); }), "mxDuplicateArray: no array given"},
                {warned_by([] { mexWarnMsgTxt("100%"); }), "100%"},
                {reported_by([] { mxAssert(1, "holds"); }), ""}});
}

TEST(ArrayApi, ThrowsAssertionsAndErrors)
{
    expect_all({{thrown_by([] { mxAssert(0, "why"); }), "Error: Assertion failed: why\n\n"},
                {thrown_by([] { mxAssert(0, nullptr); }), "Error: Assertion failed\n\n"},
                {thrown_by([] { mxAssertS(0, "why %s"); }), "Error: why %s\n\n"},
                {thrown_by([] { mxAssertS(0, ""); }), "Error: Assertion failed\n\n"},
                {thrown_by([] { mexErrMsgTxt("why %d"); }), "Error: why %d\n\n"},
                {thrown_by([] { mexErrMsgTxt(nullptr); }), "Error: \n\n"}});
}

TEST(ArrayApiDeathTest, EndsTheProcessOutsideModules)
{
    nx_default_error_flags = 0;
    EXPECT_EXIT(mexErrMsgTxt("x"), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(mxAssertS(0, "x"), testing::ExitedWithCode(1), "");
}

TEST(ArrayApi, SurvivesRefusedMemory)
{
    M<double> const large = matrix(20, 20, Numbers(400, 1), Numbers(400, 2)), spread = sparse(large);
    int const dims[] = {3, 3, 3};
    with_every_allocation_refused([] { mxDestroyArray(mxCreateDoubleMatrix(10, 20, mxCOMPLEX)); });
    with_every_allocation_refused([&] { mxDestroyArray(mxCreateNumericArray(3, dims, mxDOUBLE_CLASS, mxREAL)); });
    with_every_allocation_refused([] { mxDestroyArray(mxCreateSparse(20, 20, 100, mxREAL)); });
    with_every_allocation_refused([] { mxDestroyArray(mxCreateString("text of some length")); });
    with_every_allocation_refused([&] { mxDestroyArray(mxDuplicateArray(&large)); });
    with_every_allocation_refused([&] { mxDestroyArray(mxDuplicateArray(&spread)); });
}

} // namespace
