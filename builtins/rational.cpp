#include "builtins/rational.h"

#include "builtins/args.h"
#include "core/arguments.h"
#include "runtime/number_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

using namespace arrlib;

namespace {

// --- continued fractions -------------------------------------------------------------------------

// Denominators more than double with every second term, so that a double is met long before the last.
constexpr int most_terms = 64;

// x = term[0] + 1/(term[1] + 1/(...)), and its value as a fraction.
struct Continued {
    double term[most_terms];
    int count = 0;
    double numerator, denominator;

    Continued(double x, double tolerance)
    {
        if (!std::isfinite(x)) {
            numerator = std::isnan(x) ? 0 : x > 0 ? 1 : -1;
            denominator = 0;
            return;
        }
        // Nearer than the next number no fraction needs to come.
        double const near = std::max(tolerance, std::abs(x) * std::numeric_limits<double>::epsilon());
        double before_n = 0, before_d = 1, rest = x;
        numerator = 1;
        denominator = 0;
        do {
            double const whole = std::round(rest);
            term[count++] = whole;
            double const n = whole * numerator + before_n, d = whole * denominator + before_d;
            before_n = numerator;
            before_d = denominator;
            numerator = n;
            denominator = d;
            rest -= whole;
            if (rest == 0 || std::abs(x - n / d) <= near)
                break;
            rest = 1 / rest;
        } while (count < most_terms && std::isfinite(rest));
        if (denominator < 0) {
            numerator = -numerator;
            denominator = -denominator;
        }
        numerator += 0.0; // no -0
    }
};

double one_norm(M<double> const& x)
{
    double sum = 0;
    for (int k = 0; k < x.size(); ++k)
        sum += std::isfinite(x.addr()[k]) ? std::abs(x.addr()[k]) : 0;
    return sum;
}

// --- text ----------------------------------------------------------------------------------------

// Room for an integer in general format.
constexpr int integer_digits = 17;
constexpr int most_of_term = 24 + 8;

// Text in a buffer that holds the longest there is.
struct Text {
    char character[most_terms * most_of_term];
    int length = 0;

    void add(char const* text)
    {
        std::size_t const more = std::strlen(text);
        std::memcpy(character + length, text, more);
        length += static_cast<int>(more);
    }
    void add_number(double integer) { length += static_cast<int>(write_general(character + length, integer + 0.0, integer_digits)); }
};

Text fraction_text(Continued const& value)
{
    Text text;
    text.add_number(value.numerator);
    if (value.denominator != 1) {
        text.add("/");
        text.add_number(value.denominator);
    }
    return text;
}

Text expansion_text(Continued const& value)
{
    if (value.count == 0)
        return fraction_text(value);
    Text text;
    text.add_number(value.term[0]);
    for (int k = 1; k < value.count; ++k) {
        text.add(" + 1/(");
        text.add_number(value.term[k]);
    }
    for (int k = 1; k < value.count; ++k)
        text.add(")");
    return text;
}

// One row of characters of a text matrix, from a column on.
void write_row(M<double> const& matrix, int row, int col, Text const& text)
{
    for (int k = 0; k < text.length; ++k)
        *matrix.addr(row + 1, col + k + 1) = text.character[k];
}

// Blanks; without storage after a report.
M<double> blank_text(Dims const& shape)
{
    M<double> text = full_result(shape);
    if (has_storage(text))
        std::fill_n(text.addr(), text.size(), ' ');
    text.setstr(1);
    return text;
}

// --- rat -----------------------------------------------------------------------------------------

constexpr Arguments rat_args("rat");

// A full real operand and its tolerance; false after a report.
struct RealArgument {
    M<double> x;
    double tolerance = 0;

    RealArgument(M<double> const& argument, M<double> const& tol)
    {
        if (!rat_args.real(argument) || (given(tol) && !rat_args.real(tol)))
            return;
        x = full_form(argument);
        tolerance = given(tol) ? tol[1] : 1e-6 * one_norm(x);
        ok_ = has_storage(x);
    }
    explicit operator bool() const { return ok_; }
    Continued operator()(int k) const { return {x.addr()[k], tolerance}; }

private:
    bool ok_ = false;
};

} // namespace

M<double> rat(M<double> const& x)
{
    return rat(x, nop_M);
}

M<double> rat(M<double> const& x, M<double> const& tol)
{
    RealArgument const operand(x, tol);
    if (!operand)
        return x_M;
    int width = 0;
    for (int k = 0; k < x.size(); ++k)
        width = std::max(width, expansion_text(operand(k)).length);
    M<double> text = blank_text(Dims(x.size(), width));
    if (!has_storage(text))
        return x_M;
    for (int k = 0; k < text.rows(); ++k)
        write_row(text, k, 0, expansion_text(operand(k)));
    return text;
}

M<double> rat(M<double> const& x, i_o_t, Mr<double> text)
{
    return rat(x, nop_M, i_o, text);
}

M<double> rat(M<double> const& x, i_o_t, Mr<double> n, Mr<double> d)
{
    return rat(x, nop_M, i_o, n, d);
}

M<double> rat(M<double> const& x, M<double> const& tol, i_o_t, Mr<double> text)
{
    M<double> const made = rat(x, tol);
    text = made;
    return made;
}

M<double> rat(M<double> const& x, M<double> const& tol, i_o_t, Mr<double> n, Mr<double> d)
{
    RealArgument const operand(x, tol);
    M<double> numerators = full_result(shape_of(x)), denominators = full_result(shape_of(x));
    if (!operand || !has_storage(numerators) || !has_storage(denominators))
        return no_results(n, d);
    for (int k = 0; k < x.size(); ++k) {
        Continued const value = operand(k);
        numerators.addr()[k] = value.numerator;
        denominators.addr()[k] = value.denominator;
    }
    n = numerators;
    d = denominators;
    return numerators;
}

M<double> rats(M<double> const& x)
{
    return rats(x, nop_M);
}

M<double> rats(M<double> const& x, M<double> const& len)
{
    constexpr double usual_length = 13;
    Arguments const args("rats");
    if (!args.two_dimensional(x) || !args.real(x))
        return x_M;
    int const field = integer_argument(number_or(len, usual_length));
    if (field < 1) {
        args.report("length must be a positive integer");
        return x_M;
    }
    M<double> const full = full_form(x);
    double const tolerance = std::pow(10.0, -(field - 1) / 2.0) * one_norm(full);
    double const width = static_cast<double>(field) * x.cols();
    M<double> text = blank_text(Dims(x.rows(), static_cast<int>(std::min(width, static_cast<double>(std::numeric_limits<int>::max())))));
    if (!has_storage(full) || !has_storage(text))
        return x_M;
    for (int col = 0; col < x.cols(); ++col)
        for (int row = 0; row < x.rows(); ++row) {
            Text fraction = fraction_text(Continued(*full.addr(row + 1, col + 1), tolerance));
            if (fraction.length > field) {
                fraction.character[0] = '*';
                fraction.length = 1;
            }
            write_row(text, row, (col + 1) * field - fraction.length, fraction);
        }
    return text;
}
