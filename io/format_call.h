// What the printing and the scanning built-ins share.
#ifndef ARRLIB_IO_FORMAT_CALL_H
#define ARRLIB_IO_FORMAT_CALL_H

#include "io/format.h"
#include "io/scan.h"
#include "io/sprintf.h"

namespace arrlib {

// The value at a position of the arguments when cell arrays among them are spread out; null behind the
// last.
M<double> const* argument_at(FormatArguments arguments, int position);

// Prints all values from that position on; with no value there, the format's own text. False when not
// everything was printed.
bool print_arguments(ParsedFormat& format, FormatArguments arguments, int position, TextOutput& out);

// A call of sscanf or fscanf: parse, then scan the source, then hand the outputs over.
class ScanCall {
public:
    ScanCall(M<double> const& format, M<double> const* size);

    // False when the size is none: there is nothing to scan then.
    bool valid() const { return size_.valid(); }
    void run(TextSource& source, ScanFrom from) { scan(format_, source, from, size_.most(), scanned_); }
    // All outputs empty when something has been reported.
    M<double> result(FormatOutputs const& outputs, bool reported) const;

private:
    ParsedFormat format_;
    ScanSize size_;
    Scanned scanned_;
};

} // namespace arrlib

#endif
