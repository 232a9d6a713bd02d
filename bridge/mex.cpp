// Services of the calling program for extension modules: errors, warnings, functions.
#include "core/matrix.h"

#include "bridge/mx.h"
#include "bridge/module_exit.h"
#include "runtime/errors.h"

#include <cstring>

using namespace arrlib;

void mexErrMsgTxt(char const* text)
{
    nx_set_error_handler(nullptr);
    error(text ? text : "");
    leave_module();
}

void mexWarnMsgTxt(char const* text)
{
    warning(text ? text : "");
}

void mxAssert(int condition, char const* message)
{
    if (condition)
        return;
    if (message && *message)
        error("Assertion failed: %s", message);
    else
        error("Assertion failed");
    leave_module();
}

void mxAssertS(int condition, char const* message)
{
    if (condition)
        return;
    error(message && *message ? message : "Assertion failed");
    leave_module();
}

int mexCallMATLAB(int nlhs, mxArray* plhs[], int nrhs, mxArray* prhs[], char const* name)
{
    if (!name || std::strcmp(name, "double") != 0) {
        error("mexCallMATLAB:%s is not available", name ? name : "");
        return 1;
    }
    if (nlhs > 1 || nrhs != 1 || !prhs || !prhs[0] || (nlhs == 1 && !plhs)) {
        error("mexCallMATLAB: wrong number of arguments");
        return 1;
    }
    if (nlhs < 1)
        return 0;
    mxArray* const numbers = mxDuplicateArray(prhs[0]);
    if (!numbers)
        return 1;
    numbers->setstr(0);
    numbers->setlogical(0);
    plhs[0] = numbers;
    return 0;
}

int mexIsFinite(double value)
{
    return mxIsFinite(value);
}

int mexIsInf(double value)
{
    return mxIsInf(value);
}

int mexIsNaN(double value)
{
    return mxIsNaN(value);
}

double mexGetEps()
{
    return mxGetEps();
}

double mexGetInf()
{
    return mxGetInf();
}

double mexGetNaN()
{
    return mxGetNaN();
}
