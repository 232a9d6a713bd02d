// Values in few words, and as text, for table-driven tests of built-ins.
#ifndef ARRLIB_TESTS_SUPPORT_VALUES_H
#define ARRLIB_TESTS_SUPPORT_VALUES_H

#include "core/access.h"
#include "core/text.h"
#include "support/capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace values {

using Numbers = std::vector<double>;

// Full, from numbers in storage order.
inline M<double> matrix(int rows, int cols, Numbers const& numbers, Numbers const& imaginary = {})
{
    M<double> made(!imaginary.empty(), rows, cols);
    std::copy(numbers.begin(), numbers.end(), made.addr());
    std::copy(imaginary.begin(), imaginary.end(), made.addi());
    made.clear_scalar_variable();
    return made;
}
inline M<double> nd(std::vector<int> const& dims, Numbers const& numbers)
{
    M<double> made(0, 0, 0, static_cast<int>(dims.size()), dims.data());
    std::copy(numbers.begin(), numbers.end(), made.addr());
    return made;
}
// From rows, as they are written: rows({{1, 2}, {3, 4}}).
inline M<double> rows_of(std::initializer_list<Numbers> const& rows)
{
    int const cols = rows.size() ? static_cast<int>(rows.begin()->size()) : 0;
    M<double> made(0, static_cast<int>(rows.size()), cols);
    int i = 0;
    for (Numbers const& row : rows) {
        ++i;
        for (int j = 1; j <= cols; ++j)
            *made.addr(i, j) = row[static_cast<std::size_t>(j - 1)];
    }
    return made;
}
inline M<double> row(Numbers const& numbers, Numbers const& imaginary = {})
{
    return matrix(numbers.empty() ? 0 : 1, static_cast<int>(numbers.size()), numbers, imaginary);
}
inline M<double> column(Numbers const& numbers, Numbers const& imaginary = {})
{
    return matrix(static_cast<int>(numbers.size()), numbers.empty() ? 0 : 1, numbers, imaginary);
}
inline M<double> text(std::string const& characters)
{
    return TM(characters.c_str());
}
// Rows of a text matrix, filled up with blanks.
inline M<double> lines(std::vector<std::string> const& all)
{
    std::size_t longest = 0;
    for (std::string const& line : all)
        longest = std::max(longest, line.size());
    M<double> made(0, static_cast<int>(all.size()), static_cast<int>(longest));
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = 0; j < longest; ++j)
            made.addr()[i + j * all.size()] = j < all[i].size() ? all[i][j] : ' ';
    made.setstr(1);
    return made;
}
inline M<M<double>> cells(int rows, int cols, std::vector<M<double>> const& contents)
{
    M<M<double>> made = arrlib::Access<M<double>>::full(false, arrlib::Dims(rows, cols));
    std::copy(contents.begin(), contents.end(), made.addr());
    return made;
}

// Shapes, flags and elements in storage order: "2x2: 1 3 2 4", "logical 1x1: 1", "'text'",
// "sparse 2x2: (1,1)=5", "1x1: 1+2i"; text of several rows as "'ab'/'cd'". `digits` are the
// significant ones shown.
inline std::string shown(M<double> const& value, int digits = 15)
{
    std::string made;
    auto const number = [&](int k) {
        char buffer[80];
        std::snprintf(buffer, sizeof buffer, "%.*g", digits, value.addr()[k] + 0.0);
        std::string one = std::isnan(value.addr()[k]) ? "NaN" : std::isinf(value.addr()[k]) ? (value.addr()[k] > 0 ? "Inf" : "-Inf") : buffer;
        if (value.isc()) {
            std::snprintf(buffer, sizeof buffer, "%+.*gi", digits, value.addi()[k]);
            one += buffer;
        }
        return one;
    };
    if (value.isstr() && !value.issparse() && value.getndims() == 2 && value.size() > 0) {
        for (int i = 1; i <= value.rows(); ++i) {
            made += i > 1 ? "/'" : "'";
            for (int j = 1; j <= value.cols(); ++j)
                made += static_cast<char>(static_cast<int>(*value.addr(i, j)));
            made += "'";
        }
        return made;
    }
    made = value.issparse() ? "sparse " : "";
    made += value.islogical() ? "logical " : value.isstr() ? "text " : "";
    for (int d = 1; d <= value.getndims(); ++d)
        made += (d > 1 ? "x" : "") + std::to_string(value.size(d));
    made += ":";
    for (int k = 0; k < value.getnnz(); ++k) {
        made += ' ';
        if (value.issparse()) {
            int const at = arrlib::Access<double>::index(value)[k];
            made += "(" + std::to_string(at % value.rows() + 1) + "," + std::to_string(at / value.rows() + 1) + ")=";
        }
        made += number(k);
    }
    return made;
}
// "2x1 cell: 'ab' | 1x1: 3".
inline std::string shown(M<M<double>> const& value, int digits = 15)
{
    std::string made;
    for (int d = 1; d <= value.getndims(); ++d)
        made += (d > 1 ? "x" : "") + std::to_string(value.size(d));
    made += " cell:";
    for (int k = 0; k < value.getnnz(); ++k)
        made += (k > 0 ? " | " : " ") + shown(value.addr()[k], digits);
    return made;
}

// Several, one after the other; outputs of a call among them count as they are behind it.
template <class... Values> std::string all_shown(Values const&... value)
{
    std::string made;
    ((made += (made.empty() ? "" : ", ") + shown(value)), ...);
    return made;
}

inline Numbers numbers(M<double> const& x)
{
    return Numbers(x.addr(), x.addr() + x.getnnz());
}

// What `code` reports when the error hook returns; "" for nothing, several reports joined by "|".
template <class Code> std::string reported_by(Code&& code)
{
    capture::Reports const reports;
    code();
    std::string joined;
    for (std::string const& one : reports.all())
        joined += (joined.empty() ? "" : "|") + one;
    return joined;
}
// The same of warnings.
template <class Code> std::string warned_by(Code&& code)
{
    capture::Warnings const warnings;
    code();
    std::string joined;
    for (std::string const& one : warnings.all())
        joined += (joined.empty() ? "" : "|") + one;
    return joined;
}

// One row of a table of calls and what they give.
struct Shown {
    std::string got, expected;
};
inline void expect_all(std::initializer_list<Shown> const& table)
{
    int at = 0;
    for (Shown const& row : table)
        EXPECT_EQ(row.got, row.expected) << "row " << ++at;
}

} // namespace values

#endif
