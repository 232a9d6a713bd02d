#include "runtime/errors.h"

#include "core/matrix.h"
#include "core/text.h"
#include "platform/platform.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/report.h"
#include "runtime/text_buffer.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int nx_default_error_flags = nx_error_console | nx_error_message_box | nx_error_exit;
nx_error_stack_t nx_error_stack = {};

namespace arrlib {

namespace {

constexpr std::size_t buffer_size = 2048;
constexpr char error_prefix[] = "Error: ";
constexpr char error_ending[] = "\n\n";
constexpr int wrap_column = 64;

// Shared by errors and warnings.
char message_buffer[buffer_size] = "";
bool in_flight = false;

// Formats one conversion of `piece` ("%5.3s", "%d" ...) with an argument that was passed as text:
// a text for "%s", a number in the slot for the integer conversions. The argument's own type is
// never trusted further than that, so a format with too many conversions or with "%n" harms nothing.
void append_conversion(TextAppender& out, char const* piece, char conversion, char const* argument)
{
    char text[buffer_size];
    auto const number = static_cast<int>(reinterpret_cast<std::intptr_t>(argument));
    switch (conversion) {
    case 's':
        std::snprintf(text, sizeof text, piece, argument ? argument : "(null)");
        break;
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
    case 'c':
        std::snprintf(text, sizeof text, piece, number);
        break;
    default:
        std::snprintf(text, sizeof text, "%s", piece);
    }
    out.text(text);
}

void format_message(TextAppender& out, char const* format, char const* const* arguments, int count)
{
    int next = 0;
    for (char const* c = format; *c; ++c) {
        if (*c != '%') {
            out.put(*c);
            continue;
        }
        if (c[1] == '%') {
            out.put('%');
            ++c;
            continue;
        }
        std::size_t const flags = std::strspn(c + 1, "0123456789+-. #");
        char const conversion = c[1 + flags];
        char piece[16];
        if (!conversion || next == count || flags + 3 > sizeof piece) {
            out.put('%');
            continue;
        }
        std::memcpy(piece, c, flags + 2);
        piece[flags + 2] = '\0';
        append_conversion(out, piece, conversion, arguments[next++]);
        c += flags + 1;
    }
}

// Puts the message, formatted when there are arguments, into the shared buffer. The arguments may
// lie in that buffer themselves, so the text is made beside it.
void fill_buffer(char const* format, char const* const* arguments, int count)
{
    if (format == message_buffer && count == 0)
        return;
    char text[buffer_size];
    TextAppender out(text, sizeof text, 0);
    if (count == 0)
        out.text(format);
    else if (format)
        format_message(out, format, arguments, count);
    std::memcpy(message_buffer, text, out.length() + 1);
}

void wrap(char* text)
{
    int column = 0;
    for (; *text; ++text) {
        ++column;
        if (*text == ' ' && column >= wrap_column)
            *text = '\n';
        if (*text == '\n')
            column = 0;
    }
}

void default_error_handler(char const* message)
{
    // The prefix goes in front and the blank line behind; both survive a message that fills the buffer.
    constexpr std::size_t prefix = sizeof error_prefix - 1;
    constexpr std::size_t longest = buffer_size - 1 - prefix - (sizeof error_ending - 1);
    std::size_t const found = std::strlen(message);
    std::size_t const length = found < longest ? found : longest;
    std::memmove(message_buffer + prefix, message, length);
    std::memcpy(message_buffer, error_prefix, prefix);
    std::memcpy(message_buffer + prefix + length, error_ending, sizeof error_ending);
    if (nx_default_error_flags & nx_error_throw)
        throw static_cast<char*>(message_buffer);
    error_lasterr();
}

void default_warning_handler(char const* message)
{
    bool const console = nx_default_error_flags & nx_error_console;
    if (console)
        nx_printf("Warning: %s\n", message);
    if (nx_default_error_flags & nx_error_message_box)
        show_message_box(message, "Orrery<RT> Warning", console);
}

void default_debug_handler(char const* message)
{
    std::printf("DEBUG:%s\n", message);
}

void default_print_handler(char const* text)
{
    std::fputs(text, stdout);
}

void default_input_handler(char* buffer, int size)
{
    std::fflush(stdout);
    if (size > 0 && !std::fgets(buffer, size, stdin))
        buffer[0] = '\0';
}

struct Hooks {
    void (*error)(char const*) = default_error_handler;
    void (*warning)(char const*) = default_warning_handler;
    void (*debug)(char const*) = default_debug_handler;
    void (*print)(char const*) = default_print_handler;
    void (*input)(char*, int) = default_input_handler;
    int (*kbhit)() = platform::waiting_key;
    void (*message_box)(char const*, char const*) = nullptr;
};
constinit Hooks hooks;

int report(char const* format, char const* const* arguments, int count)
{
    fill_buffer(format, arguments, count);
    in_flight = true;
    hooks.error(message_buffer);
    forget_message();
    return 0;
}

int warn(char const* format, char const* const* arguments, int count)
{
    fill_buffer(format, arguments, count);
    hooks.warning(message_buffer);
    return 0;
}

template <int limit> struct ValueText {
    char text[std::size_t{limit} + 1];
    explicit ValueText(M<double> const& value) { Mstr(value, text, limit); }
};

} // namespace

bool error_in_flight()
{
    return in_flight;
}

char const* message_in_buffer()
{
    return message_buffer;
}

void forget_message()
{
    message_buffer[0] = '\0';
    in_flight = false;
}

void end_process()
{
    std::exit(1);
}

void show_message_box(char const* text, char const* title, bool shown_already)
{
    if (hooks.message_box)
        hooks.message_box(text, title);
    else
        platform::message_box(text, title, shown_already, false);
}

void print_hook(char const* text)
{
    hooks.print(text);
}

void input_hook(char* buffer, int size)
{
    hooks.input(buffer, size);
}

int kbhit_hook()
{
    return hooks.kbhit();
}

// The innermost frame's number, whatever count a program has left on the stack.
static int innermost_frame()
{
    int const live = nx_error_stack.count;
    return live < nx_error_stack_t::capacity ? live : nx_error_stack_t::capacity - 1;
}

void append_call_stack(TextAppender& out)
{
    for (int frame = innermost_frame(); frame > 0; --frame) {
        std::size_t const before = out.length();
        out.text("called from ").text(nx_error_stack.name[frame]).text(" line ").decimal(nx_error_stack.line[frame]).put('\n');
        if (!out.whole()) {
            out.cut_back(before);
            return;
        }
    }
}

} // namespace arrlib

using namespace arrlib;

int error(char const* message)
{
    return report(message, nullptr, 0);
}

int error(char const* format, char const* a1)
{
    char const* const arguments[] = {a1};
    return report(format, arguments, 1);
}

int error(char const* format, char const* a1, char const* a2)
{
    char const* const arguments[] = {a1, a2};
    return report(format, arguments, 2);
}

int error(char const* format, char const* a1, char const* a2, char const* a3)
{
    char const* const arguments[] = {a1, a2, a3};
    return report(format, arguments, 3);
}

int error(char const* format, char const* a1, char const* a2, char const* a3, char const* a4)
{
    char const* const arguments[] = {a1, a2, a3, a4};
    return report(format, arguments, 4);
}

int error(char const* format, char const* a1, char const* a2, char const* a3, char const* a4, char const* a5)
{
    char const* const arguments[] = {a1, a2, a3, a4, a5};
    return report(format, arguments, 5);
}

int warning()
{
    return 0;
}

int warning(char const* message)
{
    return warn(message, nullptr, 0);
}

int warning(char const* format, char const* a1)
{
    char const* const arguments[] = {a1};
    return warn(format, arguments, 1);
}

int warning(char const* format, char const* a1, char const* a2)
{
    char const* const arguments[] = {a1, a2};
    return warn(format, arguments, 2);
}

int debug(char const* message)
{
    hooks.debug(message);
    return 0;
}

int debug(int number)
{
    return debug(static_cast<char const*>(IntegerText(number)));
}

void error_lasterr()
{
    if (!message_buffer[0])
        std::strcpy(message_buffer, "Aborted!\n");
    TextAppender out(message_buffer, buffer_size, std::strlen(message_buffer));
    append_call_stack(out);
    wrap(message_buffer);
    bool const console = nx_default_error_flags & nx_error_console;
    if (console)
        nx_print(message_buffer);
    if (nx_default_error_flags & nx_error_message_box)
        show_message_box(message_buffer, "Orrery<RT>", console);
    if (nx_default_error_flags & nx_error_exit)
        end_process();
    forget_message();
}

void error_call_stack(char* buffer)
{
    std::size_t const length = strnlen(buffer, buffer_size - 1);
    TextAppender out(buffer, buffer_size, length);
    append_call_stack(out);
}

void nx_set_error_handler(void (*handler)(char const*))
{
    hooks.error = handler ? handler : default_error_handler;
}

void nx_set_warning_handler(void (*handler)(char const*))
{
    hooks.warning = handler ? handler : default_warning_handler;
}

void nx_set_debug_handler(void (*handler)(char const*))
{
    hooks.debug = handler ? handler : default_debug_handler;
}

void nx_set_print_handler(void (*handler)(char const*))
{
    hooks.print = handler ? handler : default_print_handler;
}

void nx_set_input_handler(void (*handler)(char*, int))
{
    hooks.input = handler ? handler : default_input_handler;
}

void nx_set_kbhit_handler(int (*handler)())
{
    hooks.kbhit = handler ? handler : platform::waiting_key;
}

void nx_set_message_box_handler(void (*handler)(char const*, char const*))
{
    hooks.message_box = handler;
}

void nx_set_default_error_flags(int mask, int on)
{
    if (on)
        nx_default_error_flags |= mask;
    else
        nx_default_error_flags &= ~mask;
}

void nx_set_fatal_error()
{
    nx_set_default_error_flags(nx_error_message_box | nx_error_exit, 1);
    nx_set_default_error_flags(nx_error_console | nx_error_throw, 0);
}

void validate_narg(char const* name, int nout, int nin, int maxout, int maxin)
{
    if (nout < 1)
        error("Too few outputs for %s", name);
    else if (nout > maxout)
        error("Too many outputs for %s", name);
    else if (nin < 1)
        error("Too few inputs for %s", name);
    else if (nin > maxin)
        error("Too many inputs for %s", name);
}

M<double> nx_wrong_narg(char const* name, int nin)
{
    error("%s does not accept %s input%s", name, IntegerText(nin), nin == 1 ? "" : "s");
    return x_M;
}

M<double> error(M<double> message)
{
    if (message.size() > 0)
        error(ValueText<message_value_limit>(message).text);
    return x_M;
}

M<double> warning(M<double> message)
{
    if (message.size() > 0) {
        ValueText<message_value_limit> const text(message);
        if (std::strcmp(text.text, "on") != 0 && std::strcmp(text.text, "off") != 0)
            warning(text.text);
    }
    return x_M;
}

M<double> mfilename()
{
    int const frame = innermost_frame();
    return TM(frame > 0 ? nx_error_stack.name[frame] : "unknown");
}

M<double> mfileline()
{
    int const frame = innermost_frame();
    return M<double>(frame > 0 ? nx_error_stack.line[frame] : 0);
}
