// What built-ins ask of their arguments, and the messages that say what is wrong with them.
#ifndef ARRLIB_BUILTINS_ARGS_H
#define ARRLIB_BUILTINS_ARGS_H

#include "core/access.h"
#include "core/matrix.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "core/text.h"
#include "runtime/constants.h"

#include <string>

namespace arrlib {

// The checks of one built-in, named in every message. A check reports and gives false when the
// argument is not as asked; the built-in then returns no_results(). `Value` is a matrix or a cell
// array.
class Arguments {
public:
    explicit constexpr Arguments(char const* builtin) : builtin_(builtin) {}

    char const* builtin() const { return builtin_; }

    // --- shapes -----------------------------------------------------------------------------------
    // "%s: matrix must be two-dimensional"
    bool two_dimensional(M<double> const& x) const;
    bool two_dimensional(M<M<double>> const& x) const;
    // Two-dimensional as well: "%s: matrix must be square"
    bool square(M<double> const& x) const;
    // One row or one column: "%s: argument must be a vector"
    bool vector(M<double> const& x) const;
    bool vector(M<M<double>> const& x) const;
    // One element: "%s: argument must be scalar"
    bool scalar(M<double> const& x) const;

    // --- elements ---------------------------------------------------------------------------------
    // "%s: argument must be real"
    bool real(M<double> const& x) const;
    // "%s: argument must be a string"
    bool string(M<double> const& x) const;
    // Real elements without fractions, and no NaN or Inf: "%s: argument must be an integer"
    bool integer(M<double> const& x) const;
    // Neither NaN nor Inf in either part: "%s: matrix contains NaN or Inf"
    bool finite(M<double> const& x) const;

    // --- reports; each gives false ----------------------------------------------------------------
    // "%s: sizes of %s and %s do not agree"
    bool sizes_differ(M<double> const& x, M<double> const& y) const;
    bool sizes_differ(M<double> const& x, M<M<double>> const& y) const;
    bool sizes_differ(M<M<double>> const& x, M<M<double>> const& y) const;
    // "%s: unknown option %s"
    bool unknown_option(char const* option) const;
    // "%s: iteration did not converge"
    bool not_converged() const;
    // "%s: invalid handle"
    bool invalid_handle() const;
    // "%s: could not read %s", "%s: could not write %s"
    bool could_not_read(char const* file) const;
    bool could_not_write(char const* file) const;
    // "%s: function must be given by name"
    bool function_without_name() const;
    // "%s: internal error in argument %d of the matrix library", for its negative `info`.
    bool library_argument(int info) const;
    // The message of this built-in alone: `text` follows the name and ": ".
    bool report(char const* text) const;

    // --- warnings ---------------------------------------------------------------------------------
    // "%s: matrix is singular to working precision"
    void warn_singular() const;
    // "%s: matrix is close to singular or badly scaled, rcond = %g"
    void warn_badly_scaled(double rcond) const;
    // "%s: rank deficient, rank = %d, tol = %g"
    void warn_rank(int rank, double tolerance) const;
    // `text` follows the name and ": ".
    void warn(char const* text) const;

private:
    char const* builtin_;
};

// The result of a built-in after a report: every output is the empty matrix.
template <class... Outputs> M<double> no_results(Outputs&... outputs)
{
    ((outputs = x_M), ...);
    return x_M;
}

// Whether an optional argument was given: nop_M and other empty values stand for the default.
inline bool given(M<double> const& x)
{
    return x.size() > 0;
}
// The first element of an optional argument.
inline double number_or(M<double> const& x, double otherwise)
{
    return given(x) ? x[1] : otherwise;
}


// The full form of a value that may be sparse; shares the storage of one that is full. Without
// storage after a report (has_storage).
M<double> full_form(M<double> const& x);
// The characters of a value as Mstr reads them, at most `limit` of them.
std::string text_of(M<double> const& x, int limit = 2048);
// Whether the words are the same, without regard to case.
bool same_word(char const* a, char const* b);

// Two operands taken element by element: of the same shape, or one of them with a single element that
// stands for all. Text and sparse values count as full numbers. False after "%s: wrong dimensions of:
// %s, %s" or "Out of memory!". Empty when one of them is.
class OperandPair {
public:
    OperandPair(char const* builtin, M<double> const& a, M<double> const& b);

    explicit operator bool() const { return ok_; }
    Dims const& shape() const { return shape_; }
    int count() const { return shape_.count; }
    bool complex() const { return a_.isc() || b_.isc(); }
    // Element k from 0, and its imaginary part, 0 for real operands.
    double a(int k) const { return a_.addr()[spread_a_ ? 0 : k]; }
    double b(int k) const { return b_.addr()[spread_b_ ? 0 : k]; }
    double imaginary_a(int k) const { return a_.isc() ? a_.addi()[spread_a_ ? 0 : k] : 0; }
    double imaginary_b(int k) const { return b_.isc() ? b_.addi()[spread_b_ ? 0 : k] : 0; }

private:
    M<double> a_, b_;
    Dims shape_;
    bool spread_a_, spread_b_, ok_ = false;
};

// A full value of that shape with uninitialised elements; check has_storage() when it is not empty.
M<double> full_result(Dims const& shape, bool complex = false);
// The shape of a value.
Dims shape_of(M<double> const& x);
Dims shape_of(M<M<double>> const& x);

} // namespace arrlib

#endif
