// Formatted text to the console and to files, and from files.
#ifndef ARRLIB_IO_PRINT_H
#define ARRLIB_IO_PRINT_H

#include "io/sprintf.h"

namespace arrlib {

// A text first is the format; anything else is a fid, and the format follows.
ARRLIB_API M<double> print_to_fid(FormatArguments fid_format_and_arguments, FormatOutputs const& outputs = {});
ARRLIB_API M<double> print_to_console(FormatArguments format_and_arguments, FormatOutputs const& outputs = {});
// A null size is none.
ARRLIB_API M<double> scan_fid(M<double> const& fid, M<double> const& format, M<double> const* size, FormatOutputs const& outputs = {});

} // namespace arrlib

// fprintf(fid, format, ...), fprintf(format, ...) and printf(format, ...) print the elements of the
// arguments as sprintf does, to a file or through the print hook. Without arguments too "%%" is printed
// as "%", and printing stops at the first conversion but %s. They return the empty matrix, so that a
// statement without a semicolon shows nothing but its text.
template <class... Arguments>
auto fprintf(M<double> const& first, Arguments const&... arguments) -> decltype(arrlib::print_to_fid({first, arrlib::FormatArgument(arguments)...}))
{
    return arrlib::print_to_fid({first, arrlib::FormatArgument(arguments)...});
}
template <class... Arguments>
auto printf(M<double> const& format, Arguments const&... arguments) -> decltype(arrlib::print_to_console({format, arrlib::FormatArgument(arguments)...}))
{
    return arrlib::print_to_console({format, arrlib::FormatArgument(arguments)...});
}
// Further outputs, Mr<double> each: how many characters were printed and an empty message, or -1 and
// "File error" when the file did not take them all.
template <class... Outputs>
auto fprintf(M<double> const& first, i_o_t, Outputs&&... outputs) -> decltype(arrlib::print_to_fid({first}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_fid({first}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto fprintf(M<double> const& first, M<double> const& second, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::print_to_fid({first, second}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_fid({first, second}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto fprintf(M<double> const& format, M<M<double>> const& arguments, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::print_to_fid({format, arguments}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_fid({format, arguments}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto fprintf(M<double> const& fid, M<double> const& format, M<M<double>> const& arguments, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::print_to_fid({fid, format, arguments}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_fid({fid, format, arguments}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto printf(M<double> const& format, i_o_t, Outputs&&... outputs) -> decltype(arrlib::print_to_console({format}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_console({format}, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto printf(M<double> const& format, M<M<double>> const& arguments, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::print_to_console({format, arguments}, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::print_to_console({format, arguments}, arrlib::FormatOutputs(outputs...));
}

// Scans the text of a file from its present position on as sscanf does a text, except that behind %c
// too reading goes on where the conversion ended.
inline M<double> fscanf(M<double> const& fid, M<double> const& format)
{
    return arrlib::scan_fid(fid, format, nullptr);
}
inline M<double> fscanf(M<double> const& fid, M<double> const& format, M<double> const& size)
{
    return arrlib::scan_fid(fid, format, &size);
}
template <class... Outputs>
auto fscanf(M<double> const& fid, M<double> const& format, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::scan_fid(fid, format, nullptr, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::scan_fid(fid, format, nullptr, arrlib::FormatOutputs(outputs...));
}
template <class... Outputs>
auto fscanf(M<double> const& fid, M<double> const& format, M<double> const& size, i_o_t, Outputs&&... outputs)
    -> decltype(arrlib::scan_fid(fid, format, &size, arrlib::FormatOutputs(outputs...)))
{
    return arrlib::scan_fid(fid, format, &size, arrlib::FormatOutputs(outputs...));
}

#endif
