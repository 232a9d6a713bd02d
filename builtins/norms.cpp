#include "builtins/norms.h"

#include "builtins/dense.h"
#include "builtins/norm_kind.h"
#include "core/reshape.h"
#include "ops/operators.h"

#include <cmath>
#include <limits>

using namespace arrlib;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// The moduli of the stored elements of a value, and how many more elements are zero.
class Moduli {
public:
    explicit Moduli(M<double> const& x) : re_(x.addr()), im_(x.addi()), count_(x.getnnz()), zeros_(x.size() - x.getnnz()) {}

    int count() const { return count_; }
    int zeros() const { return zeros_; }
    double operator[](int k) const { return im_ ? std::hypot(re_[k], im_[k]) : std::abs(re_[k]); }
    double square(int k) const { return im_ ? re_[k] * re_[k] + im_[k] * im_[k] : re_[k] * re_[k]; }
    bool has_nan() const
    {
        for (int k = 0; k < count_; ++k)
            if (std::isnan(re_[k]) || (im_ && std::isnan(im_[k])))
                return true;
        return false;
    }
    // NaN has been excluded.
    double largest() const
    {
        double found = 0;
        for (int k = 0; k < count_; ++k)
            found = std::max(found, (*this)[k]);
        return found;
    }
    double smallest() const
    {
        double found = zeros_ > 0 ? 0 : infinity;
        for (int k = 0; k < count_; ++k)
            found = std::min(found, (*this)[k]);
        return found;
    }
    double sum_of_squares() const
    {
        double sums[4] = {};
        int k = 0;
        for (; k + 4 <= count_; k += 4)
            for (int lane = 0; lane < 4; ++lane)
                sums[lane] += square(k + lane);
        for (; k < count_; ++k)
            sums[0] += square(k);
        return (sums[0] + sums[1]) + (sums[2] + sums[3]);
    }

private:
    double const* re_;
    double const* im_;
    int count_, zeros_;
};

// The root of the sum of squares, without overflow and underflow on the way.
double euclidean(Moduli const& x)
{
    constexpr double smallest_safe = 1e-280, largest_safe = 1e300;
    double const sum = x.sum_of_squares();
    if (sum > smallest_safe && sum < largest_safe)
        return std::sqrt(sum);
    if (x.has_nan())
        return NaN.addr()[0];
    double const largest = x.largest();
    if (largest == 0 || std::isinf(largest))
        return largest;
    double scaled = 0;
    for (int k = 0; k < x.count(); ++k) {
        double const part = x[k] / largest;
        scaled += part * part;
    }
    return largest * std::sqrt(scaled);
}

double vector_norm(M<double> const& A, double p)
{
    Moduli const x(A);
    if (p == 2)
        return euclidean(x);
    if (x.has_nan() || std::isnan(p))
        return NaN.addr()[0];
    if (p == infinity)
        return x.largest();
    if (p == -infinity)
        return x.smallest();
    double sum = 0;
    if (p == 1) {
        for (int k = 0; k < x.count(); ++k)
            sum += x[k];
        return sum;
    }
    double const unit = p > 0 ? x.largest() : x.smallest();
    if (unit == 0 || std::isinf(unit))
        return p == 0 ? infinity : unit;
    sum = p == 0 ? x.zeros() : 0;
    for (int k = 0; k < x.count(); ++k)
        sum += std::pow(x[k] / unit, p);
    return unit * std::pow(sum, 1 / p);
}

double larger_or_nan(double a, double b)
{
    return a > b || std::isnan(a) ? a : b;
}

// The sums of the moduli in every column, or in every row.
void add_moduli(M<double> const& A, bool of_rows, double* sums)
{
    std::fill_n(sums, of_rows ? A.rows() : A.cols(), 0.0);
    Moduli const x(A);
    PositionSplit split(A);
    int const* const index = A.issparse() ? Access<double>::index(A) : nullptr;
    for (int k = 0; k < x.count(); ++k) {
        split.at(index ? index[k] : k);
        sums[of_rows ? split.row() : split.column()] += x[k];
    }
}

// The largest of them. False after "Out of memory!".
bool largest_sum(M<double> const& A, bool of_rows, double& largest)
{
    HeapArray<double> const sums(static_cast<std::size_t>(of_rows ? A.rows() : A.cols()));
    if (!sums)
        return false;
    add_moduli(A, of_rows, sums.data());
    largest = 0;
    for (double sum : sums)
        largest = larger_or_nan(largest, sum);
    return true;
}

bool is_vector(M<double> const& A)
{
    return A.getndims() == 2 && (A.rows() == 1 || A.cols() == 1);
}

bool is_word(M<double> const& p, char const* word)
{
    return p.isstr() && same_word(text_of(p, 16).c_str(), word);
}

// The p of a vector's norm. False after "norm: unknown option %s".
bool vector_power(Arguments const& args, M<double> const& p, double& power)
{
    power = is_word(p, "fro") ? 2 : is_word(p, "inf") ? infinity : number_or(p, 2);
    return !p.isstr() || p.size() == 0 || is_word(p, "fro") || is_word(p, "inf") || args.unknown_option(text_of(p).c_str());
}

// --- power iteration ------------------------------------------------------------------------------

struct Estimate {
    M<double> norm = x_M, steps = x_M;
};

void scale(M<double>& x, double factor)
{
    x.unshare();
    for (int k = 0; k < x.getnnz(); ++k) {
        x.addr()[k] *= factor;
        if (x.isc())
            x.addi()[k] *= factor;
    }
}

// x becomes one of the unit vectors.
void point_along(M<double>& x, int axis)
{
    scale(x, 0);
    x.addr()[axis] = 1;
}

Estimate estimated_norm(M<double> const& A, M<double> const& tol)
{
    constexpr int most_steps = 1000;
    Arguments const args("normest");
    if (A.size() == 0)
        return {M<double>(0.0), M<double>(0.0)};
    if (!args.two_dimensional(A))
        return {};
    double const tolerance = number_or(tol, 1e-6);
    double norm = euclidean(Moduli(A));
    // Zero, or not finite: the norm as well.
    if (!(norm > 0) || std::isinf(norm))
        return {M<double>(norm), M<double>(0.0)};
    M<double> x = full_result(Dims(A.cols(), 1));
    if (!has_storage(x))
        return {};
    add_moduli(A, false, x.addr());
    int steps = 0;
    norm = euclidean(Moduli(x));
    for (double before = 0; std::abs(norm - before) > tolerance * norm; ++steps) {
        if (steps == most_steps) {
            args.warn("iteration did not converge");
            break;
        }
        double const length = euclidean(Moduli(x));
        if (length > 0)
            scale(x, 1 / length);
        else // Everything has cancelled: another vector is as good as the one before.
            point_along(x, steps % A.cols());
        M<double> const image = full_form(A * x);
        if (image.size() == 0)
            return {};
        before = norm;
        norm = euclidean(Moduli(image));
        M<double> const turned = ctranspose(image);
        M<double> const back = turned.size() > 0 ? full_form(turned * A) : x_M;
        x = back.size() > 0 ? ctranspose(back) : x_M;
        if (x.size() == 0)
            return {};
    }
    return {M<double>(norm), M<double>(steps)};
}

} // namespace

bool arrlib::matrix_norm_kind(Arguments const& args, M<double> const& p, NormKind& kind)
{
    if (!given(p) || (!p.isstr() && p.size() == 1 && p[1] == 2))
        kind = NormKind::two;
    else if (!p.isstr() && p.size() == 1 && p[1] == 1)
        kind = NormKind::one;
    else if ((!p.isstr() && p.size() == 1 && p[1] == infinity) || is_word(p, "inf"))
        kind = NormKind::infinite;
    else if (is_word(p, "fro"))
        kind = NormKind::frobenius;
    else
        return args.report("only 1, 2, Inf and 'fro' for matrices");
    return true;
}

bool arrlib::matrix_norm(Arguments const& args, M<double> const& A, NormKind kind, double& norm)
{
    Moduli const x(A);
    switch (kind) {
    case NormKind::one:
    case NormKind::infinite:
        return largest_sum(A, kind == NormKind::infinite, norm);
    case NormKind::frobenius:
        norm = euclidean(x);
        return true;
    case NormKind::two:
        break;
    }
    if (A.issparse())
        return args.report("use normest for a sparse matrix");
    if (x.has_nan() || std::isinf(x.largest())) {
        norm = x.has_nan() ? NaN.addr()[0] : infinity;
        return true;
    }
    HeapArray<double> s;
    if (!singular_values(args, A, s))
        return false;
    norm = s[0];
    return true;
}

M<double> norm(M<double> const& A)
{
    return norm(A, nop_M);
}

M<double> norm(M<double> const& A, M<double> const& p)
{
    Arguments const args("norm");
    if (!args.two_dimensional(A))
        return x_M;
    if (is_vector(A)) {
        double power;
        return vector_power(args, p, power) ? M<double>(vector_norm(A, power)) : x_M;
    }
    NormKind kind;
    if (!matrix_norm_kind(args, p, kind))
        return x_M;
    double made = 0;
    return A.size() == 0 || matrix_norm(args, A, kind, made) ? M<double>(made) : x_M;
}

M<double> normest(M<double> const& A)
{
    return estimated_norm(A, nop_M).norm;
}

M<double> normest(M<double> const& A, M<double> const& tol)
{
    return estimated_norm(A, tol).norm;
}

M<double> normest(M<double> const& A, i_o_t, Mr<double> e)
{
    return normest(A, nop_M, i_o, e);
}

M<double> normest(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> e)
{
    M<double> const made = normest(A, tol);
    e = made;
    return made;
}

M<double> normest(M<double> const& A, i_o_t, Mr<double> e, Mr<double> count)
{
    return normest(A, nop_M, i_o, e, count);
}

M<double> normest(M<double> const& A, M<double> const& tol, i_o_t, Mr<double> e, Mr<double> count)
{
    Estimate const made = estimated_norm(A, tol);
    e = made.norm;
    count = made.steps;
    return made.norm;
}

M<double> rank(M<double> const& A)
{
    return rank(A, nop_M);
}

M<double> rank(M<double> const& A, M<double> const& tol)
{
    Arguments const args("rank");
    HeapArray<double> s;
    if (!args.two_dimensional(A))
        return x_M;
    if (A.size() == 0)
        return zero_M;
    if (!singular_values(args, A, s))
        return x_M;
    double const tolerance = number_or(tol, std::max(A.rows(), A.cols()) * machine_eps * s[0]);
    return M<double>(static_cast<double>(std::count_if(s.begin(), s.end(), [=](double value) { return value > tolerance; })));
}

M<double> trace(M<double> const& A)
{
    Arguments const args("trace");
    if (!args.square(A))
        return x_M;
    double re = 0, im = 0;
    PositionSplit split(A);
    int const* const index = A.issparse() ? Access<double>::index(A) : nullptr;
    int const step = index || A.rows() == 0 ? 1 : A.rows() + 1;
    for (int k = 0; k < A.getnnz(); k += step) {
        split.at(index ? index[k] : k);
        if (split.row() != split.column())
            continue;
        re += A.addr()[k];
        im += A.isc() ? A.addi()[k] : 0;
    }
    M<double> made(re);
    if (A.isc()) {
        made.getcomplex();
        made.addi()[0] = im;
    }
    return made;
}
