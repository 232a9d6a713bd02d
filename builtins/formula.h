// Matrices whose elements are a function of row and column.
#ifndef ARRLIB_BUILTINS_FORMULA_H
#define ARRLIB_BUILTINS_FORMULA_H

#include "builtins/args.h"

#include <cstddef>

namespace arrlib {

// element(i, j) in row i and column j, both counted from 1. Empty after a report.
template <class Element> M<double> by_formula(int rows, int cols, Element element)
{
    M<double> made = full_result(Dims(rows, cols));
    if (!has_storage(made))
        return x_M;
    double* to = made.addr();
    for (int j = 1; j <= made.cols(); ++j)
        for (int i = 1; i <= made.rows(); ++i)
            *to++ = element(i, j);
    return made;
}

// A complex number out of a list, or what stands for it.
struct Number {
    double re = 0, im = 0;
};

// The elements of a value in storage order, as complex numbers; full.
class NumberList {
public:
    explicit NumberList(M<double> const& x) : full_(full_form(x)) {}

    explicit operator bool() const { return has_storage(full_); }
    int count() const { return full_.size(); }
    bool complex() const { return full_.isc(); }
    // Counted from 0.
    Number operator[](int k) const { return {full_.addr()[k], full_.isc() ? full_.addi()[k] : 0}; }

private:
    M<double> full_;
};

// The same with complex elements where `complex` says so.
template <class Element> M<double> by_complex_formula(bool complex, int rows, int cols, Element element)
{
    M<double> made = full_result(Dims(rows, cols), complex);
    if (!has_storage(made))
        return x_M;
    std::ptrdiff_t at = 0;
    for (int j = 1; j <= made.cols(); ++j)
        for (int i = 1; i <= made.rows(); ++i, ++at) {
            Number const number = element(i, j);
            made.addr()[at] = number.re;
            if (complex)
                made.addi()[at] = number.im;
        }
    return made;
}

} // namespace arrlib

#endif
