#include "builtins/set_operands.h"

#include "runtime/errors.h"
#include "runtime/messages.h"

#include <string>

namespace arrlib {

namespace {

template <class Value> bool is_row(Value const& x)
{
    return x.size() == 0 || (x.getndims() == 2 && x.rows() == 1);
}

// The elements listed, of two sequences numbered as one.
void take_elements(double* to, double const* a, int a_count, double const* b, int const* chosen, int count)
{
    for (int k = 0; k < count; ++k) {
        int const in_second = chosen[k] - a_count;
        double const* const from = in_second < 0 ? a : b;
        to[k] = from ? from[in_second < 0 ? chosen[k] : in_second] : 0;
    }
}

} // namespace

NumberOperands::NumberOperands(Arguments const& args, M<double> const& a, M<double> const& option)
    : a_(full_form(a)), b_(Access<double>::without_storage())
{
    check(args, a, b_, option);
    ok_ = ok_ && has_storage(a_);
}

NumberOperands::NumberOperands(Arguments const& args, M<double> const& a, M<double> const& b, M<double> const& option) : a_(full_form(a)), b_(full_form(b))
{
    check(args, a, b, option);
    ok_ = ok_ && has_storage(a_) && has_storage(b_);
    // Members of both are numbered as one sequence.
    if (ok_ && members(a_) > most_elements - members(b_)) {
        error(messages::out_of_memory);
        ok_ = false;
    }
}

void NumberOperands::check(Arguments const& args, M<double> const& a, M<double> const& b, M<double> const& option)
{
    if (given(option)) {
        if (!args.string(option))
            return;
        std::string const word = text_of(option);
        if (!same_word(word.c_str(), "rows")) {
            args.unknown_option(word.c_str());
            return;
        }
        rows_ = true;
        if (!args.two_dimensional(a) || !args.two_dimensional(b))
            return;
        if (a.size() > 0 && b.size() > 0 && a.cols() != b.cols()) {
            args.sizes_differ(a, b);
            return;
        }
    }
    ok_ = true;
}

bool NumberOperands::as_row() const
{
    return !rows_ && is_row(a_) && is_row(b_);
}

bool NumberOperands::sort(Ordering& order) const
{
    return rows_ ? order.sort(RowKeys(a_, b_), count()) : order.sort(ElementKeys(a_, b_), count());
}

M<double> NumberOperands::take(int const* chosen, int count) const
{
    int const cols = !rows_ ? 1 : a_.size() > 0 ? a_.cols() : b_.cols();
    M<double> made = full_result(as_row() ? Dims(1, count) : Dims(count, cols), a_.isc() || b_.isc());
    if (!has_storage(made) || count == 0)
        return made;
    for (int part = 0; part < (made.isc() ? 2 : 1); ++part) {
        double const *a = part ? a_.addi() : a_.addr(), *b = part ? b_.addi() : b_.addr();
        double* to = part ? made.addi() : made.addr();
        if (!rows_) {
            take_elements(to, a, a_.size(), b, chosen, count);
            continue;
        }
        for (int column = 0; column < cols; ++column, to += count) {
            take_elements(to, a, a_.rows(), b, chosen, count);
            a += a ? a_.rows() : 0;
            b += b ? b_.rows() : 0;
        }
    }
    return made;
}

bool TextOperands::as_row() const
{
    return b_ && is_row(a_) && is_row(*b_);
}

M<M<double>> TextOperands::take(int const* chosen, int count) const
{
    M<M<double>> made = Access<M<double>>::full(false, as_row() ? Dims(1, count) : Dims(count, 1));
    if (made.addr())
        for (int k = 0; k < made.size(); ++k)
            made.addr()[k] = chosen[k] < a_.size() ? a_.addr()[chosen[k]] : b_->addr()[chosen[k] - a_.size()];
    return made;
}

} // namespace arrlib
