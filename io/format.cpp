#include "io/format.h"

#include "io/format_print.h"
#include "runtime/errors.h"

namespace arrlib {

bool TextOutput::flush()
{
    if (used_ > 0 && !failed_) {
        block_[used_] = '\0';
        failed_ = !sink_.write(sink_.to, block_, used_);
        sent_ += failed_ ? 0 : used_;
    }
    used_ = 0;
    return !failed_;
}

// Once for a format: it may be recycled a million times.
static void report_cut(ParsedFormat& format)
{
    if (!format.cut_reported)
        warning("format: piece too long - chopped");
    format.cut_reported = true;
}

bool print_elements(ParsedFormat& format, double const* elements, std::size_t count, TextOutput& out)
{
    // A %s that comes when the elements are used up waits for the next argument, unless this one had
    // none to begin with: it is an empty text then.
    bool const none = count == 0;
    while (format.last >= 0) {
        FormatPiece const& piece = format.pieces[format.current];
        bool const trailing = piece.letter == trailing_text, all = piece.letter == 's';
        if (count == 0 && !trailing && !(all && none))
            break;
        if (trailing && format.trailing_text_printed_last)
            break;
        format.trailing_text_printed_last = trailing;
        if (!trailing && !piece.print) {
            error("sprintf: unknown type character");
            return false;
        }
        char* const room = out.room();
        if (!room)
            return false;
        PieceText text(room);
        text.text(format.printed_text(piece), piece.printed_size);
        if (!trailing) {
            std::size_t const taken = all ? count : 1;
            piece.print(text, piece, elements, taken);
            elements += taken;
            count -= taken;
        }
        out.keep(text.end());
        if (!text.whole())
            report_cut(format);
        format.advance();
        if (all)
            break;
    }
    return true;
}

bool print_value(ParsedFormat& format, M<double> const& value, TextOutput& out)
{
    M<double> full_value = value;
    if (full_value.issparse())
        full_value.getfull();
    if (full_value.issparse()) // its full form could not be had, which has been reported
        return false;
    return print_elements(format, full_value.addr(), static_cast<std::size_t>(full_value.size()), out);
}

} // namespace arrlib
