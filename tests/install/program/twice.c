#include "bridge/mx.h"

void mexFunction(int nlhs, mxArray *plhs[], int nrhs, const mxArray *prhs[])
{
    if (nlhs != 1 || nrhs != 1)
        mexErrMsgTxt("twice: one input and one output");
    plhs[0] = mxDuplicateArray(prhs[0]);
    *mxGetPr(plhs[0]) *= 2;
}
