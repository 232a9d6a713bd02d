// Formatted text from and to values.
#ifndef ARRLIB_IO_SPRINTF_H
#define ARRLIB_IO_SPRINTF_H

#include "core/subscript.h"

#include <initializer_list>

namespace arrlib {

// An argument behind a format: a value, or a cell array that stands for its elements.
class FormatArgument {
public:
    FormatArgument(M<double> const& value) : value_(&value), cells_(nullptr) {}
    FormatArgument(M<M<double>> const& cells) : value_(nullptr), cells_(&cells) {}

    int count() const { return cells_ ? cells_->size() : 1; }
    M<double> const& operator[](int k) const { return cells_ ? cells_->addr()[k] : *value_; }

private:
    M<double> const* value_;
    M<M<double>> const* cells_;
};
using FormatArguments = std::initializer_list<FormatArgument>;

// Where a count and a message go, of those that the caller asks for.
class FormatOutputs {
public:
    FormatOutputs() = default;
    explicit FormatOutputs(Mr<double> const& count) : count_(&count) {}
    FormatOutputs(Mr<double> const& count, Mr<double> const& message) : count_(&count), message_(&message) {}

    ARRLIB_API void assign(M<double> const& count, M<double> const& message) const;

private:
    Mr<double> const* count_ = nullptr;
    Mr<double> const* message_ = nullptr;
};

ARRLIB_API M<double> print_text(FormatArguments format_and_arguments, FormatOutputs const& outputs = {});
// A null size is none.
ARRLIB_API M<double> scan_text(M<double> const& text, M<double> const& format, M<double> const* size, FormatOutputs const& outputs = {});

} // namespace arrlib

// The elements of the arguments as text. The format - at most 2048 characters and 32 conversions, one
// of them less when text stands behind the last - is begun anew until the elements are used up; %s
// takes all that an argument has left. Text before a conversion is printed with it, so that of one
// that finds no element is not. Without arguments, and with an empty cell array, the format with its
// escapes translated is the result.
//
// Conversions are those of C with the letters d i o u x f e g c s n p, d to g also in upper case; %d to
// %x print 32-bit integers, the low 32 bits of what is larger. Modifiers of size (l h L H) mean
// nothing; b and t before d i o u x ask for the bytes of the number in double and single precision,
// backwards. NaN and infinities are NaN, Inf and -Inf, for %d to %x without the text before them. %n
// prints nothing for its element. A zero character ends the text that its piece prints.
//
// "Mstr: buffer too small - chopped", "format: more than 32 pieces - chopped" and "format: piece too
// long - chopped" (31999 characters for one conversion) warn of what was cut.
template <class... Arguments>
auto sprintf(M<double> const& format, Arguments const&... arguments) -> decltype(arrlib::print_text({format, arrlib::FormatArgument(arguments)...}))
{
    return arrlib::print_text({format, arrlib::FormatArgument(arguments)...});
}
// Further outputs, Mr<double> each: how many characters the text has, and an empty message.
template <class... Outputs>
auto sprintf(M<double> const& format, i_o_t, Outputs&&... outputs) -> decltype(arrlib::print_text({format}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_text({format}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto sprintf(M<double> const& format, M<M<double>> const& arguments, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::print_text({format, arguments}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_text({format, arguments}, arrlib::FormatOutputs(outputs...));
}

// The numbers that a text holds, up to its first zero character. The format is begun anew until the
// text ends or does not match, or the size is reached: n numbers as a column, or [m n] as m rows with
// zeros behind the last number; all there are, as a column, when no size or an infinite one is given.
// With an infinite m they are one column. When all conversions are %c and %s the result is text, a row
// where n is given or nothing.
//
// Conversions are those of C with the letters of sprintf: %d and %i give numbers from -2^31 to 2^31-1,
// %o %u %x from 0 to 2^32-1, those beyond become the nearest; "%*d" and its like skip. %n gives the
// count of conversions so far, and the text before it is not looked at. Behind a conversion with %c
// reading goes on at the second character from where the conversion began.
//
// Further outputs, Mr<double> each: how many numbers were read, and an empty message. "scanf: size %s is
// not one or two elements" leaves all outputs empty; "scanf: Matrix too large" ends the process.
inline M<double> sscanf(M<double> const& text, M<double> const& format)
{
    return arrlib::scan_text(text, format, nullptr);
}
inline M<double> sscanf(M<double> const& text, M<double> const& format, M<double> const& size)
{
    return arrlib::scan_text(text, format, &size);
}
template <class... Outputs>
auto sscanf(M<double> const& text, M<double> const& format, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::scan_text(text, format, nullptr, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::scan_text(text, format, nullptr, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto sscanf(M<double> const& text, M<double> const& format, M<double> const& size, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::scan_text(text, format, &size, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::scan_text(text, format, &size, arrlib::FormatOutputs(outputs...));
}

#endif
