/* [at, rising] = crossings(x, y, level): where the line through the points (x, y) crosses a level, and
   whether it rises there. A point on the level belongs to what lies above. */
#include "mex.h"

void mexFunction(int nlhs, mxArray *plhs[], int nrhs, const mxArray *prhs[])
{
    const double *x, *y;
    double level, *at, *rising;
    int k, n, count = 0;

    if (nrhs != 3)
        mexErrMsgTxt("crossings: three inputs are needed");
    n = mxGetNumberOfElements(prhs[0]);
    if (n != mxGetNumberOfElements(prhs[1]) || mxIsSparse(prhs[0]) || mxIsSparse(prhs[1]) || mxIsComplex(prhs[1]))
        mexErrMsgTxt("crossings: x and y must be real, full and of the same size");
    x = mxGetPr(prhs[0]);
    y = mxGetPr(prhs[1]);
    level = mxGetScalar(prhs[2]);

    for (k = 1; k < n; ++k)
        count += (y[k - 1] < level) != (y[k] < level);
    plhs[0] = mxCreateDoubleMatrix(count, 1, mxREAL);
    if (!plhs[0])
        return;
    at = mxGetPr(plhs[0]);
    rising = NULL;
    if (nlhs > 1) {
        plhs[1] = mxCreateDoubleMatrix(count, 1, mxREAL);
        if (!plhs[1])
            return;
        mxSetLogical(plhs[1]);
        rising = mxGetPr(plhs[1]);
    }
    for (k = 1; k < n; ++k)
        if ((y[k - 1] < level) != (y[k] < level)) {
            *at++ = x[k - 1] + (level - y[k - 1]) / (y[k] - y[k - 1]) * (x[k] - x[k - 1]);
            if (rising)
                *rising++ = y[k - 1] < level;
        }
}
