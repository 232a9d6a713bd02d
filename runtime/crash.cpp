#include "runtime/crash.h"

#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/text_buffer.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace arrlib {

namespace {

constexpr char title[] = "Application crash!";

struct ExceptionName {
    std::uint32_t code;
    char const* name;
};

constexpr ExceptionName names[] = {
    {0x80000001, "GUARD_PAGE"},
    {0x80000002, "DATATYPE_MISALIGNMENT"},
    {0x80000003, "BREAKPOINT"},
    {0x80000004, "SINGLE_STEP"},
    {0xC0000005, "ACCESS_VIOLATION"},
    {0xC0000006, "IN_PAGE_ERROR"},
    {0xC0000008, "INVALID_HANDLE"},
    {0xC000001D, "ILLEGAL_INSTRUCTION"},
    {0xC0000025, "NONCONTINUABLE_EXCEPTION"},
    {0xC0000026, "INVALID_DISPOSITION"},
    {0xC000008C, "ARRAY_BOUNDS_EXCEEDED"},
    {0xC000008D, "FLT_DENORMAL_OPERAND"},
    {0xC000008E, "FLT_DIVIDE_BY_ZERO"},
    {0xC000008F, "FLT_INEXACT_RESULT"},
    {0xC0000090, "FLT_INVALID_OPERATION"},
    {0xC0000091, "FLT_OVERFLOW"},
    {0xC0000092, "FLT_STACK_CHECK"},
    {0xC0000093, "FLT_UNDERFLOW"},
    {0xC0000094, "INT_DIVIDE_BY_ZERO"},
    {0xC0000095, "INT_OVERFLOW"},
    {0xC0000096, "PRIV_INSTRUCTION"},
    {0xC00000FD, "STACK_OVERFLOW"},
};

// The hooks may be what is broken, and little of the C library may be called in a crash: the text
// is put together in fixed memory and goes straight to standard output.
char report_text[8192];

void report_crash(std::uint32_t code)
{
    TextAppender out(report_text, sizeof report_text, 0);
    if (error_in_flight()) {
        out.text(message_in_buffer());
        append_call_stack(out);
        platform::write_to_output(report_text, out.length());
        return;
    }
    out.put('\n').text(title).text("\n\n");
    std::size_t const report = out.length();
    out.text("Exception code: ").hexadecimal8(code).put(' ').text(exception_name(code)).text("\n\n");
    append_call_stack(out);
    platform::message_box(report_text + report, title, true, true);
    platform::write_to_output(report_text, out.length());
    platform::sleep_milliseconds(500);
}

std::terminate_handler previous_terminate = nullptr;

// An error that was thrown and that nobody caught is reported; the flags may end the process there.
[[noreturn]] void terminate_process()
{
    if (error_in_flight()) {
        error_lasterr();
        std::fflush(stdout);
        std::_Exit(1);
    }
    if (previous_terminate)
        previous_terminate();
    std::abort();
}

} // namespace

char const* exception_name(std::uint32_t code)
{
    for (ExceptionName const& known : names)
        if (known.code == code)
            return known.name;
    return "Unknown exception code";
}

void install_crash_reports()
{
    previous_terminate = std::set_terminate(terminate_process);
    platform::install_crash_reporter(report_crash);
}

} // namespace arrlib
