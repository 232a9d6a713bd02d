// Holds objects of C++ while it fails; their ends are counted in the number that its input stands for.
// Its arrays are values of the library.
#include "arrlib.h"
#include "mex.h"

#include <memory>
#include <stdexcept>
#include <vector>

namespace {

class EndCounter {
public:
    explicit EndCounter(double* count) : count_(count) {}
    ~EndCounter() { ++*count_; }

private:
    double* count_;
};

} // namespace

void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[])
{
    if (nrhs < 1)
        mexErrMsgTxt("guarded: an input is needed");
    std::vector<double> const work(100, 1.0);
    EndCounter const counter(mxGetPr(prhs[0]));
    auto const block = std::make_unique<double>(work[99]);
    if (nrhs > 2)
        throw std::runtime_error("guarded: exception of its own");
    if (nrhs > 1)
        mexErrMsgTxt("guarded: failed");
    if (nlhs > 0)
        plhs[0] = new M<double>(horzcat(TM("done in "), TM("C++")));
}
