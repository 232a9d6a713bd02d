#include "io/print.h"

#include "core/text.h"
#include "io/format_call.h"
#include "runtime/constants.h"

namespace arrlib {

namespace {

M<double> print_to(TextSink const& sink, FormatArguments arguments, int format_position, FormatOutputs const& outputs)
{
    M<double> const* const text = argument_at(arguments, format_position);
    if (!text)
        return nx_wrong_narg("fprintf", format_position);
    ParsedFormat format(*text);
    TextOutput out(sink);
    if (print_arguments(format, arguments, format_position + 1, out))
        outputs.assign(M<double>(static_cast<double>(out.sent())), TM(""));
    else
        outputs.assign(M<double>(-1), TM("File error"));
    return x_M;
}

} // namespace

M<double> print_to_console(FormatArguments arguments, FormatOutputs const& outputs)
{
    return print_to(console_sink(), arguments, 0, outputs);
}

M<double> print_to_fid(FormatArguments arguments, FormatOutputs const& outputs)
{
    M<double> const& first = *argument_at(arguments, 0);
    TextSink sink;
    if (first.isstr() || !argument_at(arguments, 1))
        return print_to_console(arguments, outputs);
    if (!sink_of_fid(first, sink)) {
        outputs.assign(x_M, x_M);
        return x_M;
    }
    return print_to(sink, arguments, 1, outputs);
}

M<double> scan_fid(M<double> const& fid, M<double> const& format, M<double> const* size, FormatOutputs const& outputs)
{
    ScanCall call(format, size);
    bool const reported = call.valid() && !read_fid(fid, &call, [](void* context, TextSource& source) {
        static_cast<ScanCall*>(context)->run(source, ScanFrom::stream);
    });
    return call.result(outputs, reported);
}

} // namespace arrlib
