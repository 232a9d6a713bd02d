// How the library's own code names operands and numbers in messages, and reports what ends the
// process.
#ifndef ARRLIB_RUNTIME_REPORT_H
#define ARRLIB_RUNTIME_REPORT_H

#include "core/api.h"

namespace arrlib {

// Text of an integer for a "%s" of a message. Doubles are truncated toward zero; what does not fit
// is clamped.
class IntegerText {
public:
    explicit IntegerText(int value);
    explicit IntegerText(double value);
    operator char const*() const { return text_; }

private:
    char text_[12];
};

// The name of an operand in messages: its own, "(temporary)", or "=3" for an unnamed 1x1 value.
class OperandName {
public:
    explicit OperandName(M<double> const& operand);
    explicit OperandName(M<M<double>> const& operand);
    operator char const*() const { return name_ ? name_ : text_; }

private:
    char const* name_;
    char text_[16];
};

// Ends the process with status 1; for reports that no program survives, after the error function
// has returned.
[[noreturn]] void end_process();

// The message in flight: true between an error and the end of its report. Warnings leave their
// text in the same buffer, so a text alone does not tell.
bool error_in_flight();
// The process-wide message buffer, for the crash reporter.
char const* message_in_buffer();
// Empties the buffer.
void forget_message();

// Shows a message box through the installed hook.
void show_message_box(char const* text, char const* title, bool shown_already);

// Passes through the hooks of runtime/errors.h.
void print_hook(char const* text);
void input_hook(char* buffer, int size);
int kbhit_hook();

// How many characters of a value given to error(M) and warning(M) count.
inline constexpr int message_value_limit = 255;

} // namespace arrlib

#endif
