#include "ops/blas.h"

#include "ops/blas_processor.h"
#include "ops/blas_threads.h"

#if defined(ARRLIB_OPENBLAS)
#include <cblas.h>
#include <mutex>
#include <utility>
#endif

namespace arrlib {

#if defined(ARRLIB_OPENBLAS)

namespace {

constinit std::mutex counting;
constinit bool loops_chosen = false;
constinit int calls = 0;
constinit int threads_before = 1;

} // namespace

BlasThreads::BlasThreads(int threads)
{
    std::lock_guard const only(counting);
    if (calls++ == 0) {
        if (!std::exchange(loops_chosen, true))
            choose_blas_loops();
        threads_before = openblas_get_num_threads();
        if (threads_before != threads)
            openblas_set_num_threads(threads);
    }
}

BlasThreads::~BlasThreads()
{
    std::lock_guard const only(counting);
    if (--calls == 0 && openblas_get_num_threads() != threads_before)
        openblas_set_num_threads(threads_before);
}

namespace {

// The work is shared out above this file, which knows when to stay on one thread.
class OneThread : BlasThreads {
public:
    OneThread() : BlasThreads(1) {}
};

void gemm(int threads, int m, int n, int k, double alpha, ConstantPanel a, ConstantPanel b, bool onto, Panel c)
{
    BlasThreads const guard(threads);
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, m, n, k, alpha, a.at, a.stride, b.at, b.stride, onto ? 1 : 0, c.at, c.stride);
}

void gemv(int m, int n, double alpha, ConstantPanel a, double const* x, double* y)
{
    OneThread const one;
    cblas_dgemv(CblasColMajor, CblasNoTrans, m, n, alpha, a.at, a.stride, x, 1, 1, y, 1);
}

void gemv_transposed(int m, int n, double alpha, ConstantPanel a, double const* x, double* y)
{
    OneThread const one;
    cblas_dgemv(CblasColMajor, CblasTrans, m, n, alpha, a.at, a.stride, x, 1, 1, y, 1);
}

double dot(int n, double const* x, double const* y)
{
    OneThread const one;
    return cblas_ddot(n, x, 1, y, 1);
}

constexpr Blas open_blas{gemm, gemv, gemv_transposed, dot};

} // namespace

constinit Blas const& blas = open_blas;

#else

BlasThreads::BlasThreads(int) {}
BlasThreads::~BlasThreads() {}

constinit Blas const& blas = plain_blas;

#endif

} // namespace arrlib
