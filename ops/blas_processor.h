// Which of its loops the library behind full matrices uses.
#ifndef ARRLIB_OPS_BLAS_PROCESSOR_H
#define ARRLIB_OPS_BLAS_PROCESSOR_H

namespace arrlib {

// OpenBLAS knows processors by their model, and gives those that are younger than itself loops without
// AVX, several times slower. Where it has done so on a processor that can do better, it is told which loops
// to use instead. OPENBLAS_CORETYPE in the environment stands above this. While no call is running.
void choose_blas_loops();

} // namespace arrlib

#endif
