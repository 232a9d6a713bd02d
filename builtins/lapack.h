// The drivers of the linear algebra library, named as there without the letter of the type, for real
// matrices and for complex ones with interleaved parts (builtins/zpack.h). Each finds its workspace
// and its number of threads itself. Matrices lie column by column, `ld...` elements apart.
#ifndef ARRLIB_BUILTINS_LAPACK_H
#define ARRLIB_BUILTINS_LAPACK_H

#include "builtins/args.h"

#include <climits>
#include <complex>
#include <concepts>

namespace arrlib {

using Complex = std::complex<double>;

template <class T>
concept Scalar = std::same_as<T, double> || std::same_as<T, Complex>;

} // namespace arrlib

// What a driver returns is its `info`, or one of the two values below. Those called for both types are
// templates with their two instances in lapack.cpp; a conjugate transpose is asked for with 'C' in
// either type.
namespace arrlib::lapack {

// "Out of memory!" has been reported.
inline constexpr int no_memory = INT_MIN;
// This build does without the library; nothing has been reported.
inline constexpr int not_available = INT_MIN + 1;

// Whether a driver did its work, perhaps with a positive info. False after a report: "%s: internal
// error in argument %d of the matrix library", "%s is not available in this build".
bool succeeded(Arguments const& args, int info);

// --- factors and solutions ------------------------------------------------------------------------
template <Scalar T> int getrf(int m, int n, T* a, int lda, int* pivots);
template <Scalar T> int getrs(char trans, int n, int nrhs, T const* lu, int lda, int const* pivots, T* b, int ldb);
template <Scalar T> int getri(int n, T* lu, int lda, int const* pivots);
template <Scalar T> int gecon(char norm, int n, T const* lu, int lda, double anorm, double& rcond);
template <Scalar T> int gesv(int n, int nrhs, T* a, int lda, int* pivots, T* b, int ldb);
template <Scalar T> int potrf(char uplo, int n, T* a, int lda);
template <Scalar T> int potrs(char uplo, int n, int nrhs, T const* factor, int lda, T* b, int ldb);
template <Scalar T> int potri(char uplo, int n, T* factor, int lda);
template <Scalar T> int pocon(char uplo, int n, T const* factor, int lda, double anorm, double& rcond);
template <Scalar T> int trtrs(char uplo, char trans, char diag, int n, int nrhs, T const* a, int lda, T* b, int ldb);
template <Scalar T> int trtri(char uplo, char diag, int n, T* a, int lda);
template <Scalar T> int trcon(char norm, char uplo, char diag, int n, T const* a, int lda, double& rcond);
template <Scalar T> int gels(char trans, int m, int n, int nrhs, T* a, int lda, T* b, int ldb);
// The estimate of a 1-norm step by step: call until `kase` is 0. `isgn` counts for real matrices only.
template <Scalar T> int lacn2(int n, T* v, T* x, int* isgn, double& estimate, int& kase, int (&isave)[3]);

// --- orthogonal factors ---------------------------------------------------------------------------
template <Scalar T> int geqrf(int m, int n, T* a, int lda, T* tau);
template <Scalar T> int geqp3(int m, int n, T* a, int lda, int* columns, T* tau);
// ungqr and unmqr of complex matrices.
template <Scalar T> int orgqr(int m, int n, int k, T* a, int lda, T const* tau);
template <Scalar T> int ormqr(char side, char trans, int m, int n, int k, T const* a, int lda, T const* tau, T* c, int ldc);

// --- singular values ------------------------------------------------------------------------------
template <Scalar T> int gesvd(char jobu, char jobvt, int m, int n, T* a, int lda, double* s, T* u, int ldu, T* vt, int ldvt);
template <Scalar T> int gesdd(char jobz, int m, int n, T* a, int lda, double* s, T* u, int ldu, T* vt, int ldvt);
// `order` has n elements.
template <Scalar T>
int ggsvd3(char jobu, char jobv, char jobq, int m, int n, int p, int& k, int& l, T* a, int lda, T* b, int ldb, double* alpha, double* beta, T* u,
           int ldu, T* v, int ldv, T* q, int ldq, int* order);

// --- eigenvalues ----------------------------------------------------------------------------------
// Of symmetric matrices, ascending; heev, heevd and hegv of complex ones.
template <Scalar T> int syev(char jobz, char uplo, int n, T* a, int lda, double* w);
template <Scalar T> int syevd(char jobz, char uplo, int n, T* a, int lda, double* w);
template <Scalar T> int sygv(int itype, char jobz, char uplo, int n, T* a, int lda, T* b, int ldb, double* w);
// Real matrices have their eigenvalues in wr and wi, conjugate pairs side by side and their vectors as
// real and imaginary columns.
int geev(char jobvl, char jobvr, int n, double* a, int lda, double* wr, double* wi, double* vl, int ldvl, double* vr, int ldvr);
int geev(char jobvl, char jobvr, int n, Complex* a, int lda, Complex* w, Complex* vl, int ldvl, Complex* vr, int ldvr);
// With the balancing asked for ('N', 'P', 'S', 'B'), without condition numbers.
int geevx(char balance, char jobvl, char jobvr, int n, double* a, int lda, double* wr, double* wi, double* vl, int ldvl, double* vr, int ldvr);
int geevx(char balance, char jobvl, char jobvr, int n, Complex* a, int lda, Complex* w, Complex* vl, int ldvl, Complex* vr, int ldvr);
int ggev(char jobvl, char jobvr, int n, double* a, int lda, double* b, int ldb, double* alphar, double* alphai, double* beta, double* vl, int ldvl,
         double* vr, int ldvr);
int ggev(char jobvl, char jobvr, int n, Complex* a, int lda, Complex* b, int ldb, Complex* alpha, Complex* beta, Complex* vl, int ldvl, Complex* vr,
         int ldvr);

// --- reduced forms --------------------------------------------------------------------------------
// Rows and columns ilo..ihi count from 1.
template <Scalar T> int gehrd(int n, int ilo, int ihi, T* a, int lda, T* tau);
// unghr of complex matrices.
template <Scalar T> int orghr(int n, int ilo, int ihi, T* a, int lda, T const* tau);
template <Scalar T> int gebal(char job, int n, T* a, int lda, int& ilo, int& ihi, double* scale);
template <Scalar T> int gebak(char job, char side, int n, int ilo, int ihi, double const* scale, int m, T* v, int ldv);
// Schur forms, unsorted.
int gees(char jobvs, int n, double* a, int lda, double* wr, double* wi, double* vs, int ldvs);
int gees(char jobvs, int n, Complex* a, int lda, Complex* w, Complex* vs, int ldvs);
// Brings the selected eigenvalues to the front.
int trsen(char compq, int const* select, int n, double* t, int ldt, double* q, int ldq, double* wr, double* wi, int& selected);
int trsen(char compq, int const* select, int n, Complex* t, int ldt, Complex* q, int ldq, Complex* w, int& selected);
int gges(char jobvsl, char jobvsr, int n, double* a, int lda, double* b, int ldb, double* alphar, double* alphai, double* beta, double* vsl,
         int ldvsl, double* vsr, int ldvsr);
int gges(char jobvsl, char jobvsr, int n, Complex* a, int lda, Complex* b, int ldb, Complex* alpha, Complex* beta, Complex* vsl, int ldvsl,
         Complex* vsr, int ldvsr);
// Generalised eigenvectors of all columns: howmny 'A' or 'B'.
template <Scalar T> int tgevc(char side, char howmny, int n, T const* s, int lds, T const* p, int ldp, T* vl, int ldvl, T* vr, int ldvr);
// op(a) x + sign x op(b) = scale c; x takes the place of c.
template <Scalar T> int trsyl(char trana, char tranb, int sign, int m, int n, T const* a, int lda, T const* b, int ldb, T* c, int ldc, double& scale);

// --- products -------------------------------------------------------------------------------------
template <Scalar T> int gemm(char transa, char transb, int m, int n, int k, T alpha, T const* a, int lda, T const* b, int ldb, T beta, T* c, int ldc);
// Solves op(a) x = alpha b, or x op(a) = alpha b for side 'R', with a triangle; x takes the place of b.
template <Scalar T> int trsm(char side, char uplo, char trans, char diag, int m, int n, T alpha, T const* a, int lda, T* b, int ldb);

} // namespace arrlib::lapack

#endif
