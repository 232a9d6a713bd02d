#include "builtins/args.h"

#include "runtime/errors.h"
#include "runtime/number_text.h"
#include "runtime/report.h"

#include <algorithm>
#include <cctype>
#include <cmath>

using namespace arrlib;

namespace {

template <class Value> bool is_flat(Value const& x)
{
    return x.getndims() == 2;
}

template <class Value> bool is_vector(Value const& x)
{
    return is_flat(x) && (x.rows() == 1 || x.cols() == 1);
}

template <class Test> bool holds_for_all(double const* values, int count, Test test)
{
    return !values || std::all_of(values, values + count, test);
}

bool differ(char const* builtin, char const* x, char const* y)
{
    error("%s: sizes of %s and %s do not agree", builtin, x, y);
    return false;
}

// "%g", with NaN and infinities spelt the library's way.
std::string general_text(double number)
{
    char text[number_text_size];
    return {text, write_aligned(text, number, 6, 0)};
}

} // namespace

bool Arguments::report(char const* text) const
{
    error("%s: %s", builtin_, text);
    return false;
}

void Arguments::warn(char const* text) const
{
    warning("%s: %s", builtin_, text);
}

bool Arguments::two_dimensional(M<double> const& x) const
{
    return is_flat(x) || report("matrix must be two-dimensional");
}

bool Arguments::two_dimensional(M<M<double>> const& x) const
{
    return is_flat(x) || report("matrix must be two-dimensional");
}

bool Arguments::square(M<double> const& x) const
{
    return two_dimensional(x) && (x.rows() == x.cols() || report("matrix must be square"));
}

bool Arguments::vector(M<double> const& x) const
{
    return is_vector(x) || report("argument must be a vector");
}

bool Arguments::vector(M<M<double>> const& x) const
{
    return is_vector(x) || report("argument must be a vector");
}

bool Arguments::scalar(M<double> const& x) const
{
    return x.size() == 1 || report("argument must be scalar");
}

bool Arguments::real(M<double> const& x) const
{
    return !x.isc() || report("argument must be real");
}

bool Arguments::string(M<double> const& x) const
{
    return x.isstr() || report("argument must be a string");
}

bool Arguments::integer(M<double> const& x) const
{
    bool const whole = !x.isc() && holds_for_all(x.addr(), x.getnnz(), [](double v) { return std::isfinite(v) && v == std::trunc(v); });
    return whole || report("argument must be an integer");
}

bool Arguments::finite(M<double> const& x) const
{
    auto const is_finite = [](double v) { return std::isfinite(v); };
    return (holds_for_all(x.addr(), x.getnnz(), is_finite) && holds_for_all(x.addi(), x.getnnz(), is_finite)) || report("matrix contains NaN or Inf");
}

bool Arguments::sizes_differ(M<double> const& x, M<double> const& y) const
{
    return differ(builtin_, OperandName(x), OperandName(y));
}

bool Arguments::sizes_differ(M<double> const& x, M<M<double>> const& y) const
{
    return differ(builtin_, OperandName(x), OperandName(y));
}

bool Arguments::sizes_differ(M<M<double>> const& x, M<M<double>> const& y) const
{
    return differ(builtin_, OperandName(x), OperandName(y));
}

bool Arguments::unknown_option(char const* option) const
{
    error("%s: unknown option %s", builtin_, option);
    return false;
}

bool Arguments::not_converged() const
{
    return report("iteration did not converge");
}

bool Arguments::invalid_handle() const
{
    return report("invalid handle");
}

bool Arguments::could_not_read(char const* file) const
{
    error("%s: could not read %s", builtin_, file);
    return false;
}

bool Arguments::could_not_write(char const* file) const
{
    error("%s: could not write %s", builtin_, file);
    return false;
}

bool Arguments::function_without_name() const
{
    return report("function must be given by name");
}

bool Arguments::library_argument(int info) const
{
    error("%s: internal error in argument %s of the matrix library", builtin_, IntegerText(-info));
    return false;
}

void Arguments::warn_singular() const
{
    warn("matrix is singular to working precision");
}

void Arguments::warn_badly_scaled(double rcond) const
{
    warn(("matrix is close to singular or badly scaled, rcond = " + general_text(rcond)).c_str());
}

void Arguments::warn_rank(int rank, double tolerance) const
{
    warn(("rank deficient, rank = " + std::to_string(rank) + ", tol = " + general_text(tolerance)).c_str());
}

M<double> arrlib::full_form(M<double> const& x)
{
    return x.issparse() ? full_copy(x) : x;
}

std::string arrlib::text_of(M<double> const& x, int limit)
{
    std::string text(static_cast<std::size_t>(limit) + 1, '\0');
    text.resize(static_cast<std::size_t>(Mstr(x, text.data(), limit)));
    return text;
}

bool arrlib::same_word(char const* a, char const* b)
{
    auto const lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    while (*a && lower(*a) == lower(*b))
        ++a, ++b;
    return *a == *b;
}

M<double> arrlib::full_result(Dims const& shape, bool complex)
{
    return Access<double>::full(complex, shape);
}

Dims arrlib::shape_of(M<double> const& x)
{
    return Dims(x.getndims(), x.getdims());
}

Dims arrlib::shape_of(M<M<double>> const& x)
{
    return Dims(x.getndims(), x.getdims());
}

OperandPair::OperandPair(char const* builtin, M<double> const& a, M<double> const& b)
    : a_(full_form(a)), b_(full_form(b)), spread_a_(a.size() == 1 && b.size() != 1), spread_b_(b.size() == 1 && a.size() != 1)
{
    if (!has_storage(a_) || !has_storage(b_))
        return;
    ok_ = a.size() < 1 || b.size() < 1;
    if (ok_)
        return;
    Dims const of_a = shape_of(a), of_b = shape_of(b);
    if (!spread_a_ && !spread_b_ && !std::equal(of_a.size, of_a.size + max_dims, of_b.size)) {
        error("%s: wrong dimensions of: %s, %s", builtin, OperandName(a), OperandName(b));
        return;
    }
    shape_ = spread_a_ ? of_b : of_a;
    ok_ = true;
}
