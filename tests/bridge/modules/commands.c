/* Does what the text in its first input says, with the inputs behind it. */
#include "mex.h"

#include <string.h>

static int calls = 0;

static void give_all(int nlhs, mxArray *plhs[])
{
    int k;
    for (k = 0; k < nlhs; ++k) {
        plhs[k] = mxCreateDoubleMatrix(1, 1, mxREAL);
        *mxGetPr(plhs[k]) = k + 1;
    }
}

/* A text turned round; a sparse array taken apart and put together again by columns from the right; the
   conjugate of a complex array, its last two dims exchanged. */
static mxArray *turned_text(const mxArray *text)
{
    int k, n = mxGetNumberOfElements(text);
    char *buffer = (char *)mxCalloc((size_t)n + 1, 1);
    mxArray *made;
    mxGetString(text, buffer, n + 1);
    for (k = 0; k < n / 2; ++k) {
        char const c = buffer[k];
        buffer[k] = buffer[n - 1 - k];
        buffer[n - 1 - k] = c;
    }
    made = mxCreateString(buffer);
    mxFree(buffer);
    return made;
}

static mxArray *turned_sparse(const mxArray *array)
{
    int i, j, m = mxGetM(array), n = mxGetN(array);
    mxArray *made = mxCreateSparse(m, n, mxGetNzmax(array), mxREAL);
    for (j = 1; j <= n; ++j)
        for (i = 1; i <= m; ++i)
            if (mxGetR(array, i, n + 1 - j) != 0)
                mxSetR(made, i, j, mxGetR(array, i, n + 1 - j));
    return made;
}

static mxArray *conjugate(const mxArray *array)
{
    int k, dims[4] = {1, 1, 1, 1}, last = mxGetNumberOfDimensions(array) - 1;
    mxArray *made = mxDuplicateArray(array);
    for (k = 0; k < mxGetNumberOfElements(made); ++k)
        mxGetPi(made)[k] = -mxGetPi(made)[k];
    memcpy(dims, mxGetDimensions(made), (size_t)(last + 1) * sizeof(int));
    k = dims[last];
    dims[last] = dims[last - 1];
    dims[last - 1] = k;
    mxSetDimensions(made, dims, last + 1);
    return made;
}

void mexFunction(int nlhs, mxArray *plhs[], int nrhs, const mxArray *prhs[])
{
    char command[16] = "all";
    ++calls;
    if (nrhs > 0)
        mxGetString(prhs[0], command, sizeof command);
    if (!strcmp(command, "all"))
        give_all(nlhs, plhs);
    else if (!strcmp(command, "first"))
        give_all(1, plhs);
    else if (!strcmp(command, "calls"))
        *mxGetPr(plhs[0] = mxCreateDoubleMatrix(1, 1, mxREAL)) = calls;
    else if (!strcmp(command, "inputs"))
        *mxGetPr(plhs[0] = mxCreateDoubleMatrix(1, 1, mxREAL)) = nrhs;
    else if (!strcmp(command, "text"))
        plhs[0] = turned_text(prhs[1]);
    else if (!strcmp(command, "sparse"))
        plhs[0] = turned_sparse(prhs[1]);
    else if (!strcmp(command, "complex"))
        plhs[0] = conjugate(prhs[1]);
    else if (!strcmp(command, "fail")) {
        /* One output twice, and an input as an output. */
        give_all(2, plhs);
        plhs[2] = plhs[0];
        plhs[3] = (mxArray *)prhs[0];
        mexErrMsgTxt("module: 100% wrong");
        calls = -1000;
    } else if (!strcmp(command, "assert")) {
        give_all(1, plhs);
        mxAssert(1, "never seen");
        mxAssert(nrhs == 0, "no inputs");
        calls = -1000;
    } else if (!strcmp(command, "stub")) {
        if (mexPrintf("%d\n", 7) == 0 && mxGetIr(prhs[0]) == NULL)
            give_all(nlhs, plhs);
    }
}
