// What the set functions work on: the members of one or two operands, numbered in one sequence.
#ifndef ARRLIB_BUILTINS_SET_OPERANDS_H
#define ARRLIB_BUILTINS_SET_OPERANDS_H

#include "builtins/args.h"
#include "builtins/ordering.h"

namespace arrlib {

// Elements or rows of matrices, in full form. False after a report.
class NumberOperands {
public:
    using Value = M<double>;

    NumberOperands(Arguments const& args, M<double> const& a, M<double> const& option);
    NumberOperands(Arguments const& args, M<double> const& a, M<double> const& b, M<double> const& option);

    explicit operator bool() const { return ok_; }
    bool by_rows() const { return rows_; }
    M<double> const& a() const { return a_; }
    M<double> const& b() const { return b_; }
    // Members of the first one, and of both.
    int first_count() const { return members(a_); }
    int count() const { return first_count() + members(b_); }
    // Elements in a row: both operands are rows or empty.
    bool as_row() const;
    // False after a report.
    bool sort(Ordering& order) const;
    // The members listed; without storage after a report.
    M<double> take(int const* chosen, int count) const;

private:
    int members(M<double> const& x) const { return rows_ ? x.rows() : x.size(); }
    void check(Arguments const& args, M<double> const& a, M<double> const& b, M<double> const& option);

    M<double> a_, b_;
    bool rows_ = false, ok_ = false;
};

// The texts of cell arrays. False after a report. The cells outlive it.
class TextOperands {
public:
    using Value = M<M<double>>;

    TextOperands(Arguments const& args, M<M<double>> const& a) : a_(a), b_(nullptr), ok_(holds_texts(args, a)) {}
    TextOperands(Arguments const& args, M<M<double>> const& a, M<M<double>> const& b) : a_(a), b_(&b), ok_(holds_texts(args, a) && holds_texts(args, b)) {}

    explicit operator bool() const { return ok_; }
    int first_count() const { return a_.size(); }
    int count() const { return a_.size() + (b_ ? b_->size() : 0); }
    // One operand gives a column.
    bool as_row() const;
    bool sort(Ordering& order) const { return order.sort(b_ ? TextKeys(a_, *b_) : TextKeys(a_), count()); }
    M<M<double>> take(int const* chosen, int count) const;

private:
    M<M<double>> const& a_;
    M<M<double>> const* b_;
    bool ok_;
};

} // namespace arrlib

#endif
