#include "builtins/lapack.h"

#include "builtins/lapack_drivers.h"
#include "ops/blas_threads.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/workers.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <type_traits>

namespace arrlib::lapack {

namespace {

// --- calls ----------------------------------------------------------------------------------------

template <class T> constexpr bool is_complex = std::is_same_v<T, Complex>;

template <Scalar T, class Real, class OfComplex> constexpr auto of_type(Real real, OfComplex complex)
{
    if constexpr (is_complex<T>)
        return complex;
    else
        return real;
}

template <class Formal, class Actual> Formal passed(Actual const& actual)
{
    if constexpr (std::is_convertible_v<Actual, Formal>)
        return actual;
    else
        return &actual;
}

// Matrices smaller than this are not worth a second thread.
constexpr std::int64_t least_elements = 96 * 96;

int threads_for(int m, int n)
{
    return std::int64_t{m} * n < least_elements ? 1 : parallel_width();
}

// Calls a driver with everything but the lengths of its letters. False when it is not there.
template <class... Formal, class... Actual> bool run(int threads, void (*driver)(Formal...), Actual... actual)
{
    if (!driver)
        return false;
    std::array<Length, sizeof...(Formal) - sizeof...(Actual)> lengths;
    lengths.fill(1);
    BlasThreads const guard(threads);
    std::apply([&](auto const&... each) { driver(passed<Formal>(each)...); }, std::tuple_cat(std::make_tuple(actual...), lengths));
    return true;
}

// The same of a driver whose last argument, but for lengths, is its info.
template <class Driver, class... Actual> int invoke(int threads, Driver driver, Actual... actual)
{
    int info = 0;
    return run(threads, driver, actual..., &info) ? info : not_available;
}

// Calls call(work, size) twice: to learn how much workspace is best, and to work in it.
template <class T, class Call> int with_best_workspace(Call call)
{
    T best{};
    if (int const info = call(&best, -1); info != 0)
        return info;
    double const wanted = std::real(best);
    // A number of elements that does not fit an integer comes back negative, or too large for one.
    if (!(wanted >= 0) || wanted > INT_MAX) {
        error(messages::out_of_memory);
        return no_memory;
    }
    int const size = std::max(static_cast<int>(wanted), 1);
    HeapArray<T> const work(static_cast<std::size_t>(size));
    return work ? call(work.data(), size) : no_memory;
}

// A workspace of a known size; false after "Out of memory!".
template <class T> HeapArray<T> workspace(std::int64_t count)
{
    return HeapArray<T>(static_cast<std::size_t>(std::max<std::int64_t>(count, 1)));
}

// The letter for the conjugate transpose of a real matrix.
template <class T> char transposed(char trans)
{
    return !is_complex<T> && trans == 'C' ? 'T' : trans;
}

template <class Driver, class... Letters> int estimate_condition(Driver driver, int n, auto const* a, int lda, double const* anorm, double& rcond, Letters... letters)
{
    using T = std::remove_cvref_t<decltype(*a)>;
    HeapArray<T> const work = workspace<T>(std::int64_t{n} * (is_complex<T> ? 2 : 4));
    HeapArray<Other<T>> const other = workspace<Other<T>>(std::int64_t{n} * 2);
    if (!work || !other)
        return no_memory;
    if constexpr (sizeof...(Letters) == 1)
        return invoke(threads_for(n, n), driver, letters..., n, a, lda, anorm, &rcond, work.data(), other.data());
    else
        return invoke(threads_for(n, n), driver, letters..., n, a, lda, &rcond, work.data(), other.data());
}

} // namespace

bool succeeded(Arguments const& args, int info)
{
    if (info >= 0)
        return true;
    if (info == not_available)
        error("%s is not available in this build", args.builtin());
    else if (info != no_memory)
        args.library_argument(info);
    return false;
}

// --- factors and solutions ------------------------------------------------------------------------

template <Scalar T> int getrf(int m, int n, T* a, int lda, int* pivots)
{
    return invoke(threads_for(m, n), of_type<T>(dgetrf_, zgetrf_), m, n, a, lda, pivots);
}

template <Scalar T> int getrs(char trans, int n, int nrhs, T const* lu, int lda, int const* pivots, T* b, int ldb)
{
    return invoke(threads_for(n, n), of_type<T>(dgetrs_, zgetrs_), trans, n, nrhs, lu, lda, pivots, b, ldb);
}

template <Scalar T> int getri(int n, T* lu, int lda, int const* pivots)
{
    return with_best_workspace<T>([=](T* work, int size) { return invoke(threads_for(n, n), of_type<T>(dgetri_, zgetri_), n, lu, lda, pivots, work, size); });
}

template <Scalar T> int gecon(char norm, int n, T const* lu, int lda, double anorm, double& rcond)
{
    return estimate_condition(of_type<T>(dgecon_, zgecon_), n, lu, lda, &anorm, rcond, norm);
}

template <Scalar T> int gesv(int n, int nrhs, T* a, int lda, int* pivots, T* b, int ldb)
{
    return invoke(threads_for(n, n), of_type<T>(dgesv_, zgesv_), n, nrhs, a, lda, pivots, b, ldb);
}

template <Scalar T> int potrf(char uplo, int n, T* a, int lda)
{
    return invoke(threads_for(n, n), of_type<T>(dpotrf_, zpotrf_), uplo, n, a, lda);
}

template <Scalar T> int potrs(char uplo, int n, int nrhs, T const* factor, int lda, T* b, int ldb)
{
    return invoke(threads_for(n, n), of_type<T>(dpotrs_, zpotrs_), uplo, n, nrhs, factor, lda, b, ldb);
}

template <Scalar T> int potri(char uplo, int n, T* factor, int lda)
{
    return invoke(threads_for(n, n), of_type<T>(dpotri_, zpotri_), uplo, n, factor, lda);
}

template <Scalar T> int pocon(char uplo, int n, T const* factor, int lda, double anorm, double& rcond)
{
    return estimate_condition(of_type<T>(dpocon_, zpocon_), n, factor, lda, &anorm, rcond, uplo);
}

template <Scalar T> int trtrs(char uplo, char trans, char diag, int n, int nrhs, T const* a, int lda, T* b, int ldb)
{
    return invoke(threads_for(n, n), of_type<T>(dtrtrs_, ztrtrs_), uplo, trans, diag, n, nrhs, a, lda, b, ldb);
}

template <Scalar T> int trtri(char uplo, char diag, int n, T* a, int lda)
{
    return invoke(threads_for(n, n), of_type<T>(dtrtri_, ztrtri_), uplo, diag, n, a, lda);
}

template <Scalar T> int trcon(char norm, char uplo, char diag, int n, T const* a, int lda, double& rcond)
{
    return estimate_condition(of_type<T>(dtrcon_, ztrcon_), n, a, lda, nullptr, rcond, norm, uplo, diag);
}

template <Scalar T> int gels(char trans, int m, int n, int nrhs, T* a, int lda, T* b, int ldb)
{
    return with_best_workspace<T>([=](T* work, int size) {
        return invoke(threads_for(m, n), of_type<T>(dgels_, zgels_), transposed<T>(trans), m, n, nrhs, a, lda, b, ldb, work, size);
    });
}

template <Scalar T> int lacn2(int n, T* v, T* x, int* isgn, double& estimate, int& kase, int (&isave)[3])
{
    bool ran;
    if constexpr (is_complex<T>)
        ran = run(1, zlacn2_, n, v, x, &estimate, &kase, isave + 0);
    else
        ran = run(1, dlacn2_, n, v, x, isgn, &estimate, &kase, isave + 0);
    return ran ? 0 : not_available;
}

// --- orthogonal factors ---------------------------------------------------------------------------

template <Scalar T> int geqrf(int m, int n, T* a, int lda, T* tau)
{
    return with_best_workspace<T>([=](T* work, int size) { return invoke(threads_for(m, n), of_type<T>(dgeqrf_, zgeqrf_), m, n, a, lda, tau, work, size); });
}

template <Scalar T> int geqp3(int m, int n, T* a, int lda, int* columns, T* tau)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 2);
    if (!other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(m, n), zgeqp3_, m, n, a, lda, columns, tau, work, size, other.data());
        else
            return invoke(threads_for(m, n), dgeqp3_, m, n, a, lda, columns, tau, work, size);
    });
}

template <Scalar T> int orgqr(int m, int n, int k, T* a, int lda, T const* tau)
{
    return with_best_workspace<T>([=](T* work, int size) { return invoke(threads_for(m, n), of_type<T>(dorgqr_, zungqr_), m, n, k, a, lda, tau, work, size); });
}

template <Scalar T> int ormqr(char side, char trans, int m, int n, int k, T const* a, int lda, T const* tau, T* c, int ldc)
{
    return with_best_workspace<T>([=](T* work, int size) {
        return invoke(threads_for(side == 'L' ? m : n, k), of_type<T>(dormqr_, zunmqr_), side, transposed<T>(trans), m, n, k, a, lda, tau, c, ldc, work, size);
    });
}

// --- singular values ------------------------------------------------------------------------------

template <Scalar T> int gesvd(char jobu, char jobvt, int m, int n, T* a, int lda, double* s, T* u, int ldu, T* vt, int ldvt)
{
    HeapArray<double> const other = workspace<double>(is_complex<T> ? std::int64_t{5} * std::min(m, n) : 1);
    if (!other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(m, n), zgesvd_, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work, size, other.data());
        else
            return invoke(threads_for(m, n), dgesvd_, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work, size);
    });
}

template <Scalar T> int gesdd(char jobz, int m, int n, T* a, int lda, double* s, T* u, int ldu, T* vt, int ldvt)
{
    std::int64_t const less = std::min(m, n), more = std::max(m, n);
    HeapArray<int> const integers = workspace<int>(8 * less);
    HeapArray<double> const other =
        workspace<double>(!is_complex<T> ? 1 : jobz == 'N' ? 7 * less : std::max(5 * less * less + 7 * less, 2 * more * less + 2 * less * less + less));
    if (!integers || !other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(m, n), zgesdd_, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work, size, other.data(), integers.data());
        else
            return invoke(threads_for(m, n), dgesdd_, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work, size, integers.data());
    });
}

template <Scalar T>
int ggsvd3(char jobu, char jobv, char jobq, int m, int n, int p, int& k, int& l, T* a, int lda, T* b, int ldb, double* alpha, double* beta, T* u,
           int ldu, T* v, int ldv, T* q, int ldq, int* order)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 2);
    if (!other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(m, n), zggsvd3_, jobu, jobv, jobq, m, n, p, &k, &l, a, lda, b, ldb, alpha, beta, u, ldu, v, ldv, q, ldq, work, size,
                          other.data(), order);
        else
            return invoke(threads_for(m, n), dggsvd3_, jobu, jobv, jobq, m, n, p, &k, &l, a, lda, b, ldb, alpha, beta, u, ldu, v, ldv, q, ldq, work, size,
                          order);
    });
}

// --- eigenvalues ----------------------------------------------------------------------------------

template <Scalar T> int syev(char jobz, char uplo, int n, T* a, int lda, double* w)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 3);
    if (!other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(n, n), zheev_, jobz, uplo, n, a, lda, w, work, size, other.data());
        else
            return invoke(threads_for(n, n), dsyev_, jobz, uplo, n, a, lda, w, work, size);
    });
}

template <Scalar T> int syevd(char jobz, char uplo, int n, T* a, int lda, double* w)
{
    std::int64_t const order = n;
    std::int64_t const integers = jobz == 'N' ? 1 : 3 + 5 * order;
    std::int64_t const reals = !is_complex<T> ? 1 : jobz == 'N' ? order : 1 + 5 * order + 2 * order * order;
    HeapArray<int> const iwork = workspace<int>(integers);
    HeapArray<double> const rwork = workspace<double>(reals);
    if (!iwork || !rwork)
        return no_memory;
    auto const length = [](std::int64_t count, int size) { return size < 0 ? -1 : static_cast<int>(std::clamp<std::int64_t>(count, 1, INT_MAX)); };
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(n, n), zheevd_, jobz, uplo, n, a, lda, w, work, size, rwork.data(), length(reals, size), iwork.data(),
                          length(integers, size));
        else
            return invoke(threads_for(n, n), dsyevd_, jobz, uplo, n, a, lda, w, work, size, iwork.data(), length(integers, size));
    });
}

template <Scalar T> int sygv(int itype, char jobz, char uplo, int n, T* a, int lda, T* b, int ldb, double* w)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 3);
    if (!other)
        return no_memory;
    return with_best_workspace<T>([&](T* work, int size) {
        if constexpr (is_complex<T>)
            return invoke(threads_for(n, n), zhegv_, itype, jobz, uplo, n, a, lda, b, ldb, w, work, size, other.data());
        else
            return invoke(threads_for(n, n), dsygv_, itype, jobz, uplo, n, a, lda, b, ldb, w, work, size);
    });
}

int geev(char jobvl, char jobvr, int n, double* a, int lda, double* wr, double* wi, double* vl, int ldvl, double* vr, int ldvr)
{
    return with_best_workspace<double>([=](double* work, int size) {
        return invoke(threads_for(n, n), dgeev_, jobvl, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, work, size);
    });
}

int geev(char jobvl, char jobvr, int n, Complex* a, int lda, Complex* w, Complex* vl, int ldvl, Complex* vr, int ldvr)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 2);
    if (!other)
        return no_memory;
    return with_best_workspace<Complex>([&](Complex* work, int size) {
        return invoke(threads_for(n, n), zgeev_, jobvl, jobvr, n, a, lda, w, vl, ldvl, vr, ldvr, work, size, other.data());
    });
}

int geevx(char balance, char jobvl, char jobvr, int n, double* a, int lda, double* wr, double* wi, double* vl, int ldvl, double* vr, int ldvr)
{
    HeapArray<double> const scale = workspace<double>(std::int64_t{n} * 3);
    if (!scale)
        return no_memory;
    int ilo, ihi, integers = 0;
    double norm;
    return with_best_workspace<double>([&](double* work, int size) {
        return invoke(threads_for(n, n), dgeevx_, balance, jobvl, jobvr, 'N', n, a, lda, wr, wi, vl, ldvl, vr, ldvr, &ilo, &ihi, scale.data(), &norm,
                      scale.data() + n, scale.data() + n + n, work, size, &integers);
    });
}

int geevx(char balance, char jobvl, char jobvr, int n, Complex* a, int lda, Complex* w, Complex* vl, int ldvl, Complex* vr, int ldvr)
{
    HeapArray<double> const scale = workspace<double>(std::int64_t{n} * 5);
    if (!scale)
        return no_memory;
    int ilo, ihi;
    double norm;
    return with_best_workspace<Complex>([&](Complex* work, int size) {
        return invoke(threads_for(n, n), zgeevx_, balance, jobvl, jobvr, 'N', n, a, lda, w, vl, ldvl, vr, ldvr, &ilo, &ihi, scale.data(), &norm,
                      scale.data() + n, scale.data() + n + n, work, size, scale.data() + n + n + n);
    });
}

int ggev(char jobvl, char jobvr, int n, double* a, int lda, double* b, int ldb, double* alphar, double* alphai, double* beta, double* vl, int ldvl,
         double* vr, int ldvr)
{
    return with_best_workspace<double>([=](double* work, int size) {
        return invoke(threads_for(n, n), dggev_, jobvl, jobvr, n, a, lda, b, ldb, alphar, alphai, beta, vl, ldvl, vr, ldvr, work, size);
    });
}

int ggev(char jobvl, char jobvr, int n, Complex* a, int lda, Complex* b, int ldb, Complex* alpha, Complex* beta, Complex* vl, int ldvl, Complex* vr,
         int ldvr)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 8);
    if (!other)
        return no_memory;
    return with_best_workspace<Complex>([&](Complex* work, int size) {
        return invoke(threads_for(n, n), zggev_, jobvl, jobvr, n, a, lda, b, ldb, alpha, beta, vl, ldvl, vr, ldvr, work, size, other.data());
    });
}

// --- reduced forms --------------------------------------------------------------------------------

template <Scalar T> int gehrd(int n, int ilo, int ihi, T* a, int lda, T* tau)
{
    return with_best_workspace<T>([=](T* work, int size) { return invoke(threads_for(n, n), of_type<T>(dgehrd_, zgehrd_), n, ilo, ihi, a, lda, tau, work, size); });
}

template <Scalar T> int orghr(int n, int ilo, int ihi, T* a, int lda, T const* tau)
{
    return with_best_workspace<T>([=](T* work, int size) { return invoke(threads_for(n, n), of_type<T>(dorghr_, zunghr_), n, ilo, ihi, a, lda, tau, work, size); });
}

template <Scalar T> int gebal(char job, int n, T* a, int lda, int& ilo, int& ihi, double* scale)
{
    return invoke(1, of_type<T>(dgebal_, zgebal_), job, n, a, lda, &ilo, &ihi, scale);
}

template <Scalar T> int gebak(char job, char side, int n, int ilo, int ihi, double const* scale, int m, T* v, int ldv)
{
    return invoke(1, of_type<T>(dgebak_, zgebak_), job, side, n, ilo, ihi, scale, m, v, ldv);
}

int gees(char jobvs, int n, double* a, int lda, double* wr, double* wi, double* vs, int ldvs)
{
    int selected = 0, chosen = 0;
    return with_best_workspace<double>([&](double* work, int size) {
        return invoke(threads_for(n, n), dgees_, jobvs, 'N', Selection(nullptr), n, a, lda, &selected, wr, wi, vs, ldvs, work, size, &chosen);
    });
}

int gees(char jobvs, int n, Complex* a, int lda, Complex* w, Complex* vs, int ldvs)
{
    HeapArray<double> const other = workspace<double>(n);
    if (!other)
        return no_memory;
    int selected = 0, chosen = 0;
    return with_best_workspace<Complex>([&](Complex* work, int size) {
        return invoke(threads_for(n, n), zgees_, jobvs, 'N', Selection(nullptr), n, a, lda, &selected, w, vs, ldvs, work, size, other.data(), &chosen);
    });
}

int trsen(char compq, int const* select, int n, double* t, int ldt, double* q, int ldq, double* wr, double* wi, int& selected)
{
    HeapArray<double> const work = workspace<double>(n);
    HeapArray<int> const integers = workspace<int>(1);
    if (!work || !integers)
        return no_memory;
    double s, sep;
    return invoke(threads_for(n, n), dtrsen_, 'N', compq, select, n, t, ldt, q, ldq, wr, wi, &selected, &s, &sep, work.data(), std::max(n, 1),
                  integers.data(), 1);
}

int trsen(char compq, int const* select, int n, Complex* t, int ldt, Complex* q, int ldq, Complex* w, int& selected)
{
    HeapArray<Complex> const work = workspace<Complex>(n);
    if (!work)
        return no_memory;
    double s, sep;
    return invoke(threads_for(n, n), ztrsen_, 'N', compq, select, n, t, ldt, q, ldq, w, &selected, &s, &sep, work.data(), std::max(n, 1));
}

int gges(char jobvsl, char jobvsr, int n, double* a, int lda, double* b, int ldb, double* alphar, double* alphai, double* beta, double* vsl,
         int ldvsl, double* vsr, int ldvsr)
{
    int selected = 0, chosen = 0;
    return with_best_workspace<double>([&](double* work, int size) {
        return invoke(threads_for(n, n), dgges_, jobvsl, jobvsr, 'N', Selection(nullptr), n, a, lda, b, ldb, &selected, alphar, alphai, beta, vsl, ldvsl, vsr,
                      ldvsr, work, size, &chosen);
    });
}

int gges(char jobvsl, char jobvsr, int n, Complex* a, int lda, Complex* b, int ldb, Complex* alpha, Complex* beta, Complex* vsl, int ldvsl,
         Complex* vsr, int ldvsr)
{
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 8);
    if (!other)
        return no_memory;
    int selected = 0, chosen = 0;
    return with_best_workspace<Complex>([&](Complex* work, int size) {
        return invoke(threads_for(n, n), zgges_, jobvsl, jobvsr, 'N', Selection(nullptr), n, a, lda, b, ldb, &selected, alpha, beta, vsl, ldvsl, vsr, ldvsr,
                      work, size, other.data(), &chosen);
    });
}

template <Scalar T> int tgevc(char side, char howmny, int n, T const* s, int lds, T const* p, int ldp, T* vl, int ldvl, T* vr, int ldvr)
{
    HeapArray<T> const work = workspace<T>(std::int64_t{n} * (is_complex<T> ? 2 : 6));
    HeapArray<double> const other = workspace<double>(std::int64_t{n} * 2);
    if (!work || !other)
        return no_memory;
    int all = 1, made = 0;
    if constexpr (is_complex<T>)
        return invoke(threads_for(n, n), ztgevc_, side, howmny, &all, n, s, lds, p, ldp, vl, ldvl, vr, ldvr, n, &made, work.data(), other.data());
    else
        return invoke(threads_for(n, n), dtgevc_, side, howmny, &all, n, s, lds, p, ldp, vl, ldvl, vr, ldvr, n, &made, work.data());
}

template <Scalar T> int trsyl(char trana, char tranb, int sign, int m, int n, T const* a, int lda, T const* b, int ldb, T* c, int ldc, double& scale)
{
    return invoke(threads_for(m, n), of_type<T>(dtrsyl_, ztrsyl_), transposed<T>(trana), transposed<T>(tranb), sign, m, n, a, lda, b, ldb, c, ldc, &scale);
}

// --- products -------------------------------------------------------------------------------------

template <Scalar T> int gemm(char transa, char transb, int m, int n, int k, T alpha, T const* a, int lda, T const* b, int ldb, T beta, T* c, int ldc)
{
    int const threads = std::max({threads_for(m, n), threads_for(m, k), threads_for(k, n)});
    return run(threads, of_type<T>(dgemm_, zgemm_), transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc) ? 0 : not_available;
}

template <Scalar T> int trsm(char side, char uplo, char trans, char diag, int m, int n, T alpha, T const* a, int lda, T* b, int ldb)
{
    return run(threads_for(m, n), of_type<T>(dtrsm_, ztrsm_), side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb) ? 0 : not_available;
}

// --- instances ------------------------------------------------------------------------------------

template <Scalar T> struct Instances {
    static constexpr std::tuple all{&getrf<T>, &getrs<T>, &getri<T>, &gecon<T>, &gesv<T>,  &potrf<T>, &potrs<T>, &potri<T>, &pocon<T>,
                                    &trtrs<T>, &trtri<T>, &trcon<T>, &gels<T>,  &lacn2<T>, &geqrf<T>, &geqp3<T>, &orgqr<T>,
                                    &ormqr<T>, &gesvd<T>, &gesdd<T>, &ggsvd3<T>, &syev<T>, &syevd<T>, &sygv<T>,  &gehrd<T>, &orghr<T>,
                                    &gebal<T>, &gebak<T>, &tgevc<T>, &trsyl<T>, &gemm<T>,  &trsm<T>};
};

template struct Instances<double>;
template struct Instances<Complex>;

} // namespace arrlib::lapack
