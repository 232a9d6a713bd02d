// The drivers as the linear algebra library itself has them. Everything is passed by address; the lengths of the letters
// follow at the end, by value. For lapack.cpp alone.
#ifndef ARRLIB_BUILTINS_LAPACK_DRIVERS_H
#define ARRLIB_BUILTINS_LAPACK_DRIVERS_H

#include "builtins/lapack.h"

#include <cstddef>
#include <type_traits>

namespace arrlib::lapack {

using Letter = char const*;
using In = int const*;
using Length = std::size_t;

template <class T> using Getrf = void(In m, In n, T* a, In lda, int* pivots, int* info);
template <class T> using Getrs = void(Letter trans, In n, In nrhs, T const* a, In lda, In pivots, T* b, In ldb, int* info, Length);
template <class T> using Getri = void(In n, T* a, In lda, In pivots, T* work, In lwork, int* info);
// The last workspace is of integers for real matrices, of reals for complex ones.
template <class T> using Other = std::conditional_t<std::is_same_v<T, double>, int, double>;
template <class T>
using Gecon = void(Letter norm, In n, T const* a, In lda, double const* anorm, double* rcond, T* work, Other<T>* other, int* info, Length);
template <class T> using Gesv = void(In n, In nrhs, T* a, In lda, int* pivots, T* b, In ldb, int* info);
template <class T> using Potrf = void(Letter uplo, In n, T* a, In lda, int* info, Length);
template <class T> using Potrs = void(Letter uplo, In n, In nrhs, T const* a, In lda, T* b, In ldb, int* info, Length);
template <class T>
using Trtrs = void(Letter uplo, Letter trans, Letter diag, In n, In nrhs, T const* a, In lda, T* b, In ldb, int* info, Length, Length, Length);
template <class T> using Trtri = void(Letter uplo, Letter diag, In n, T* a, In lda, int* info, Length, Length);
template <class T> using Trcon = void(Letter norm, Letter uplo, Letter diag, In n, T const* a, In lda, double* rcond, T* work, Other<T>* other,
                                      int* info, Length, Length, Length);
template <class T> using Gels = void(Letter trans, In m, In n, In nrhs, T* a, In lda, T* b, In ldb, T* work, In lwork, int* info, Length);
using Lacn2Real = void(In n, double* v, double* x, int* isgn, double* estimate, int* kase, int* isave);
using Lacn2Complex = void(In n, Complex* v, Complex* x, double* estimate, int* kase, int* isave);

template <class T> using Geqrf = void(In m, In n, T* a, In lda, T* tau, T* work, In lwork, int* info);
using Geqp3Real = void(In m, In n, double* a, In lda, int* columns, double* tau, double* work, In lwork, int* info);
using Geqp3Complex = void(In m, In n, Complex* a, In lda, int* columns, Complex* tau, Complex* work, In lwork, double* rwork, int* info);
template <class T> using Orgqr = void(In m, In n, In k, T* a, In lda, T const* tau, T* work, In lwork, int* info);
template <class T> using Ormqr = void(Letter side, Letter trans, In m, In n, In k, T const* a, In lda, T const* tau, T* c, In ldc, T* work, In lwork,
                                      int* info, Length, Length);

using GesvdReal = void(Letter jobu, Letter jobvt, In m, In n, double* a, In lda, double* s, double* u, In ldu, double* vt, In ldvt, double* work,
                       In lwork, int* info, Length, Length);
using GesvdComplex = void(Letter jobu, Letter jobvt, In m, In n, Complex* a, In lda, double* s, Complex* u, In ldu, Complex* vt, In ldvt,
                          Complex* work, In lwork, double* rwork, int* info, Length, Length);
using GesddReal = void(Letter jobz, In m, In n, double* a, In lda, double* s, double* u, In ldu, double* vt, In ldvt, double* work, In lwork,
                       int* iwork, int* info, Length);
using GesddComplex = void(Letter jobz, In m, In n, Complex* a, In lda, double* s, Complex* u, In ldu, Complex* vt, In ldvt, Complex* work, In lwork,
                          double* rwork, int* iwork, int* info, Length);
using Ggsvd3Real = void(Letter jobu, Letter jobv, Letter jobq, In m, In n, In p, int* k, int* l, double* a, In lda, double* b, In ldb, double* alpha,
                        double* beta, double* u, In ldu, double* v, In ldv, double* q, In ldq, double* work, In lwork, int* order, int* info, Length,
                        Length, Length);
using Ggsvd3Complex = void(Letter jobu, Letter jobv, Letter jobq, In m, In n, In p, int* k, int* l, Complex* a, In lda, Complex* b, In ldb,
                           double* alpha, double* beta, Complex* u, In ldu, Complex* v, In ldv, Complex* q, In ldq, Complex* work, In lwork,
                           double* rwork, int* order, int* info, Length, Length, Length);

using Syev = void(Letter jobz, Letter uplo, In n, double* a, In lda, double* w, double* work, In lwork, int* info, Length, Length);
using Heev = void(Letter jobz, Letter uplo, In n, Complex* a, In lda, double* w, Complex* work, In lwork, double* rwork, int* info, Length, Length);
using Syevd = void(Letter jobz, Letter uplo, In n, double* a, In lda, double* w, double* work, In lwork, int* iwork, In liwork, int* info, Length,
                   Length);
using Heevd = void(Letter jobz, Letter uplo, In n, Complex* a, In lda, double* w, Complex* work, In lwork, double* rwork, In lrwork, int* iwork,
                   In liwork, int* info, Length, Length);
using Sygv = void(In itype, Letter jobz, Letter uplo, In n, double* a, In lda, double* b, In ldb, double* w, double* work, In lwork, int* info,
                  Length, Length);
using Hegv = void(In itype, Letter jobz, Letter uplo, In n, Complex* a, In lda, Complex* b, In ldb, double* w, Complex* work, In lwork, double* rwork,
                  int* info, Length, Length);
using GeevReal = void(Letter jobvl, Letter jobvr, In n, double* a, In lda, double* wr, double* wi, double* vl, In ldvl, double* vr, In ldvr,
                      double* work, In lwork, int* info, Length, Length);
using GeevComplex = void(Letter jobvl, Letter jobvr, In n, Complex* a, In lda, Complex* w, Complex* vl, In ldvl, Complex* vr, In ldvr, Complex* work,
                         In lwork, double* rwork, int* info, Length, Length);
using GeevxReal = void(Letter balance, Letter jobvl, Letter jobvr, Letter sense, In n, double* a, In lda, double* wr, double* wi, double* vl, In ldvl,
                       double* vr, In ldvr, int* ilo, int* ihi, double* scale, double* abnrm, double* rconde, double* rcondv, double* work, In lwork,
                       int* iwork, int* info, Length, Length, Length, Length);
using GeevxComplex = void(Letter balance, Letter jobvl, Letter jobvr, Letter sense, In n, Complex* a, In lda, Complex* w, Complex* vl, In ldvl,
                          Complex* vr, In ldvr, int* ilo, int* ihi, double* scale, double* abnrm, double* rconde, double* rcondv, Complex* work,
                          In lwork, double* rwork, int* info, Length, Length, Length, Length);
using GgevReal = void(Letter jobvl, Letter jobvr, In n, double* a, In lda, double* b, In ldb, double* alphar, double* alphai, double* beta,
                      double* vl, In ldvl, double* vr, In ldvr, double* work, In lwork, int* info, Length, Length);
using GgevComplex = void(Letter jobvl, Letter jobvr, In n, Complex* a, In lda, Complex* b, In ldb, Complex* alpha, Complex* beta, Complex* vl,
                         In ldvl, Complex* vr, In ldvr, Complex* work, In lwork, double* rwork, int* info, Length, Length);

template <class T> using Gehrd = void(In n, In ilo, In ihi, T* a, In lda, T* tau, T* work, In lwork, int* info);
template <class T> using Orghr = void(In n, In ilo, In ihi, T* a, In lda, T const* tau, T* work, In lwork, int* info);
template <class T> using Gebal = void(Letter job, In n, T* a, In lda, int* ilo, int* ihi, double* scale, int* info, Length);
template <class T>
using Gebak = void(Letter job, Letter side, In n, In ilo, In ihi, double const* scale, In m, T* v, In ldv, int* info, Length, Length);
// What a driver would select by asking back.
using Selection = int (*)();
using GeesReal = void(Letter jobvs, Letter sort, Selection select, In n, double* a, In lda, int* sdim, double* wr, double* wi, double* vs, In ldvs,
                      double* work, In lwork, int* bwork, int* info, Length, Length);
using GeesComplex = void(Letter jobvs, Letter sort, Selection select, In n, Complex* a, In lda, int* sdim, Complex* w, Complex* vs, In ldvs,
                         Complex* work, In lwork, double* rwork, int* bwork, int* info, Length, Length);
using TrsenReal = void(Letter job, Letter compq, In select, In n, double* t, In ldt, double* q, In ldq, double* wr, double* wi, int* m, double* s,
                       double* sep, double* work, In lwork, int* iwork, In liwork, int* info, Length, Length);
using TrsenComplex = void(Letter job, Letter compq, In select, In n, Complex* t, In ldt, Complex* q, In ldq, Complex* w, int* m, double* s,
                          double* sep, Complex* work, In lwork, int* info, Length, Length);
using GgesReal = void(Letter jobvsl, Letter jobvsr, Letter sort, Selection select, In n, double* a, In lda, double* b, In ldb, int* sdim,
                      double* alphar, double* alphai, double* beta, double* vsl, In ldvsl, double* vsr, In ldvsr, double* work, In lwork, int* bwork,
                      int* info, Length, Length, Length);
using GgesComplex = void(Letter jobvsl, Letter jobvsr, Letter sort, Selection select, In n, Complex* a, In lda, Complex* b, In ldb, int* sdim,
                         Complex* alpha, Complex* beta, Complex* vsl, In ldvsl, Complex* vsr, In ldvsr, Complex* work, In lwork, double* rwork,
                         int* bwork, int* info, Length, Length, Length);
using TgevcReal = void(Letter side, Letter howmny, In select, In n, double const* s, In lds, double const* p, In ldp, double* vl, In ldvl, double* vr,
                       In ldvr, In mm, int* m, double* work, int* info, Length, Length);
using TgevcComplex = void(Letter side, Letter howmny, In select, In n, Complex const* s, In lds, Complex const* p, In ldp, Complex* vl, In ldvl,
                          Complex* vr, In ldvr, In mm, int* m, Complex* work, double* rwork, int* info, Length, Length);
template <class T> using Trsyl = void(Letter trana, Letter tranb, In sign, In m, In n, T const* a, In lda, T const* b, In ldb, T* c, In ldc,
                                      double* scale, int* info, Length, Length);

template <class T> using Gemm = void(Letter transa, Letter transb, In m, In n, In k, T const* alpha, T const* a, In lda, T const* b, In ldb,
                                     T const* beta, T* c, In ldc, Length, Length);
template <class T> using Trsm = void(Letter side, Letter uplo, Letter trans, Letter diag, In m, In n, T const* alpha, T const* a, In lda, T* b,
                                     In ldb, Length, Length, Length, Length);

// Where the library is not to be had its drivers are null pointers, which invoke() meets.
#if defined(ARRLIB_OPENBLAS)
#define ARRLIB_DRIVERS(real_type, real, complex_type, complex) \
    extern "C" real_type real;                                 \
    extern "C" complex_type complex
#else
#define ARRLIB_DRIVERS(real_type, real, complex_type, complex) \
    constexpr real_type* real = nullptr;                       \
    constexpr complex_type* complex = nullptr
#endif

ARRLIB_DRIVERS(Getrf<double>, dgetrf_, Getrf<Complex>, zgetrf_);
ARRLIB_DRIVERS(Getrs<double>, dgetrs_, Getrs<Complex>, zgetrs_);
ARRLIB_DRIVERS(Getri<double>, dgetri_, Getri<Complex>, zgetri_);
ARRLIB_DRIVERS(Gecon<double>, dgecon_, Gecon<Complex>, zgecon_);
ARRLIB_DRIVERS(Gesv<double>, dgesv_, Gesv<Complex>, zgesv_);
ARRLIB_DRIVERS(Potrf<double>, dpotrf_, Potrf<Complex>, zpotrf_);
ARRLIB_DRIVERS(Potrs<double>, dpotrs_, Potrs<Complex>, zpotrs_);
ARRLIB_DRIVERS(Potrf<double>, dpotri_, Potrf<Complex>, zpotri_);
ARRLIB_DRIVERS(Gecon<double>, dpocon_, Gecon<Complex>, zpocon_);
ARRLIB_DRIVERS(Trtrs<double>, dtrtrs_, Trtrs<Complex>, ztrtrs_);
ARRLIB_DRIVERS(Trtri<double>, dtrtri_, Trtri<Complex>, ztrtri_);
ARRLIB_DRIVERS(Trcon<double>, dtrcon_, Trcon<Complex>, ztrcon_);
ARRLIB_DRIVERS(Gels<double>, dgels_, Gels<Complex>, zgels_);
ARRLIB_DRIVERS(Lacn2Real, dlacn2_, Lacn2Complex, zlacn2_);
ARRLIB_DRIVERS(Geqrf<double>, dgeqrf_, Geqrf<Complex>, zgeqrf_);
ARRLIB_DRIVERS(Geqp3Real, dgeqp3_, Geqp3Complex, zgeqp3_);
ARRLIB_DRIVERS(Orgqr<double>, dorgqr_, Orgqr<Complex>, zungqr_);
ARRLIB_DRIVERS(Ormqr<double>, dormqr_, Ormqr<Complex>, zunmqr_);
ARRLIB_DRIVERS(GesvdReal, dgesvd_, GesvdComplex, zgesvd_);
ARRLIB_DRIVERS(GesddReal, dgesdd_, GesddComplex, zgesdd_);
ARRLIB_DRIVERS(Ggsvd3Real, dggsvd3_, Ggsvd3Complex, zggsvd3_);
ARRLIB_DRIVERS(Syev, dsyev_, Heev, zheev_);
ARRLIB_DRIVERS(Syevd, dsyevd_, Heevd, zheevd_);
ARRLIB_DRIVERS(Sygv, dsygv_, Hegv, zhegv_);
ARRLIB_DRIVERS(GeevReal, dgeev_, GeevComplex, zgeev_);
ARRLIB_DRIVERS(GeevxReal, dgeevx_, GeevxComplex, zgeevx_);
ARRLIB_DRIVERS(GgevReal, dggev_, GgevComplex, zggev_);
ARRLIB_DRIVERS(Gehrd<double>, dgehrd_, Gehrd<Complex>, zgehrd_);
ARRLIB_DRIVERS(Orghr<double>, dorghr_, Orghr<Complex>, zunghr_);
ARRLIB_DRIVERS(Gebal<double>, dgebal_, Gebal<Complex>, zgebal_);
ARRLIB_DRIVERS(Gebak<double>, dgebak_, Gebak<Complex>, zgebak_);
ARRLIB_DRIVERS(GeesReal, dgees_, GeesComplex, zgees_);
ARRLIB_DRIVERS(TrsenReal, dtrsen_, TrsenComplex, ztrsen_);
ARRLIB_DRIVERS(GgesReal, dgges_, GgesComplex, zgges_);
ARRLIB_DRIVERS(TgevcReal, dtgevc_, TgevcComplex, ztgevc_);
ARRLIB_DRIVERS(Trsyl<double>, dtrsyl_, Trsyl<Complex>, ztrsyl_);
ARRLIB_DRIVERS(Gemm<double>, dgemm_, Gemm<Complex>, zgemm_);
ARRLIB_DRIVERS(Trsm<double>, dtrsm_, Trsm<Complex>, ztrsm_);
#undef ARRLIB_DRIVERS

} // namespace arrlib::lapack

#endif
