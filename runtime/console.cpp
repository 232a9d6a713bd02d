#include "runtime/console.h"

#include "core/text.h"
#include "platform/platform.h"
#include "runtime/constants.h"
#include "runtime/graphics_link.h"
#include "runtime/report.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace arrlib;

namespace {

constexpr int printf_buffer = 1024;
constexpr int line_limit = 2048;
constexpr unsigned key_poll_milliseconds = 200;

bool pausing = true;

// The prompt, then a line without its end; the caller's buffer holds line_limit + 1 bytes.
void ask(M<double> const& prompt, char* line)
{
    graphics().show_figures();
    Mstr(prompt, line, line_limit);
    nx_print(line);
    nx_print("\n");
    line[0] = '\0';
    nx_input(line, line_limit);
    line[line_limit] = '\0';
    line[std::strcspn(line, "\r\n")] = '\0';
    nx_print("\n");
}

} // namespace

int nx_print(char const* text)
{
    print_hook(text);
    return 0;
}

int nx_printf(char const* format, ...)
{
    char text[printf_buffer];
    std::va_list arguments;
    va_start(arguments, format);
    int const length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    nx_print(text);
    return length;
}

int nx_input(char* buffer, int size)
{
    input_hook(buffer, size);
    return 0;
}

int nx_kbhit()
{
    return kbhit_hook();
}

M<double> input(M<double> prompt)
{
    char line[line_limit + 1];
    ask(prompt, line);
    return line[0] ? M<double>(std::atof(line)) : nop_M;
}

M<double> input(M<double> prompt, M<double>)
{
    char line[line_limit + 1];
    ask(prompt, line);
    return line[0] ? TM(line) : nop_M;
}

M<double> pauseM()
{
    graphics().show_figures();
    while (!nx_kbhit() && !graphics().button_pressed())
        platform::sleep_milliseconds(key_poll_milliseconds);
    nx_print("\n");
    return x_M;
}

M<double> pauseM(M<double> x)
{
    graphics().show_figures();
    if (x.isstr()) {
        pausing = x[1] == 'n';
    } else if (pausing) {
        constexpr double longest = 4294967; // seconds, as milliseconds in 32 bits
        double const seconds = std::round(x[1]);
        if (seconds > 0)
            platform::sleep_milliseconds(static_cast<unsigned>(std::fmin(seconds, longest)) * 1000u);
    }
    return x_M;
}

M<double> kbhitM()
{
    return M<double>(nx_kbhit());
}

M<double> clc()
{
    std::fflush(stdout);
    platform::clear_console();
    return x_M;
}

M<double> home()
{
    std::fflush(stdout);
    platform::home_console_cursor();
    return x_M;
}

M<double> smiley()
{
    nx_print("8-)\n");
    return x_M;
}
