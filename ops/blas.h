// The loops behind products of full real matrices, and the library that they come from. Columns lie
// `stride` elements apart; a result must not overlap an operand.
#ifndef ARRLIB_OPS_BLAS_H
#define ARRLIB_OPS_BLAS_H

namespace arrlib {

// Matrices as they lie in memory.
struct ConstantPanel {
    double const* at;
    int stride;
};
struct Panel {
    double* at;
    int stride;
};

// Every function but gemm works on the thread that calls it; all may be called from many at once. NaN
// and infinities come through: no factor of zero is skipped.
struct Blas {
    // c += alpha a b; a is m x k, b is k x n. With `onto` false c counts as zero. On up to so many threads
    // of the library's own, whose number the last bits depend on.
    void (*gemm)(int threads, int m, int n, int k, double alpha, ConstantPanel a, ConstantPanel b, bool onto, Panel c);
    // y += alpha a x and y += alpha a' x; a is m x n.
    void (*gemv)(int m, int n, double alpha, ConstantPanel a, double const* x, double* y);
    void (*gemv_transposed)(int m, int n, double alpha, ConstantPanel a, double const* x, double* y);
    double (*dot)(int n, double const* x, double const* y);
};

// The best that this build has.
extern Blas const& blas;
// Loops of our own.
extern Blas const plain_blas;

} // namespace arrlib

#endif
