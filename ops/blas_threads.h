// How many threads the library behind full matrices works on.
#ifndef ARRLIB_OPS_BLAS_THREADS_H
#define ARRLIB_OPS_BLAS_THREADS_H

namespace arrlib {

// The library knows one number of threads for the whole process: the first guard that lives sets it,
// others join in, and after the last one it is again what it was.
class BlasThreads {
public:
    explicit BlasThreads(int threads);
    ~BlasThreads();
    BlasThreads(BlasThreads const&) = delete;
    BlasThreads& operator=(BlasThreads const&) = delete;
};

} // namespace arrlib

#endif
