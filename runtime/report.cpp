#include "runtime/report.h"

#include "core/matrix.h"
#include "runtime/text_buffer.h"

#include <climits>

namespace arrlib {

namespace {

int clamped_integer(double value)
{
    if (!(value == value))
        return INT_MIN;
    if (value >= INT_MAX)
        return INT_MAX;
    return value <= INT_MIN ? INT_MIN : static_cast<int>(value);
}

} // namespace

IntegerText::IntegerText(int value)
{
    TextAppender(text_, sizeof text_, 0).decimal(value);
}

IntegerText::IntegerText(double value) : IntegerText(clamped_integer(value)) {}

OperandName::OperandName(M<double> const& operand) : name_(operand.getname())
{
    TextAppender out(text_, sizeof text_, 0);
    if (operand.size() == 1 && !operand.issparse())
        out.put('=').text(IntegerText(*operand.addr()));
    else
        out.text("(temporary)");
}

OperandName::OperandName(M<M<double>> const& operand) : name_(operand.getname())
{
    TextAppender(text_, sizeof text_, 0).text("(temporary)");
}

} // namespace arrlib
