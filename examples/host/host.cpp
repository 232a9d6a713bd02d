// A host of translated programs: it runs one, lists and shows its variables, and takes over its
// console and its errors. An error stops the program where it is, with its variables alive.
#include "savings.h"

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace {

// Leaves the program after an error.
struct Stopped {};

constexpr char commands_at_rest[] = "run, vars, print NAME, quit";
constexpr char commands_when_stopped[] = "vars, print NAME, continue, stop";

bool at_line_start = true;

// What the program prints stands behind a bar.
void show_output(char const* text)
{
    for (; *text; ++text) {
        if (at_line_start)
            std::cout << "| ";
        std::cout << *text;
        at_line_start = *text == '\n';
    }
    std::cout.flush();
}

void start_line()
{
    if (!at_line_start)
        std::cout << '\n';
    at_line_start = true;
}

// A line typed behind a prompt; false at the end of the input.
bool read_line(char const* prompt, std::string& line)
{
    start_line();
    std::cout << prompt << std::flush;
    if (std::getline(std::cin, line))
        return true;
    std::cout << '\n';
    return false;
}

void list_variables()
{
    for (int k = 0; k < ive_count_vars(); ++k)
        std::cout << (k ? " " : "") << ive_var_name(k);
    std::cout << (ive_count_vars() ? "\n" : "No variables.\n");
}

// The commands of both prompts; false for others.
bool look_at_variables(std::string const& command)
{
    if (command == "vars")
        list_variables();
    else if (command.rfind("print ", 0) == 0)
        ive_print(command.c_str() + 6);
    else
        return command.empty();
    start_line();
    return true;
}

// --- the hooks --------------------------------------------------------------------------------------

void stop_at_error(char const* message)
{
    char callers[2048] = "";
    error_call_stack(callers);
    start_line();
    std::cout << "Error: " << message << '\n' << callers;
    std::string command;
    while (read_line("stopped> ", command) && command != "stop") {
        if (command == "continue")
            return;
        if (!look_at_variables(command))
            std::cout << "Commands: " << commands_when_stopped << '\n';
    }
    throw Stopped();
}

void show_warning(char const* message)
{
    start_line();
    std::cout << "Warning: " << message << '\n';
}

void ended_scalar(char const* name)
{
    start_line();
    std::cout << "(" << name << " has ended)\n";
}

void show_box(char const* text, char const* title)
{
    start_line();
    std::cout << "[" << title << "] " << text << '\n';
}

void read_input(char* buffer, int size)
{
    std::string line;
    read_line("? ", line);
    std::snprintf(buffer, static_cast<std::size_t>(size), "%s\n", line.c_str());
}

// A program that waits for a key waits for a line here.
int read_key()
{
    std::string line;
    read_line("(Enter) ", line);
    return line.empty() ? '\n' : static_cast<unsigned char>(line[0]);
}

void install_hooks()
{
    nx_set_error_handler(stop_at_error);
    nx_set_warning_handler(show_warning);
    nx_set_debug_handler(ended_scalar);
    nx_set_print_handler(show_output);
    nx_set_input_handler(read_input);
    nx_set_kbhit_handler(read_key);
    nx_set_message_box_handler(show_box);
    // What has been shown at the stop is not reported again.
    nx_set_default_error_flags(nx_error_console | nx_error_message_box | nx_error_exit, 0);
    ive_set_mode();
}

void run_program()
{
    try {
        savings();
        start_line();
        std::cout << "Done.\n";
    } catch (Stopped const&) {
        ive_cleanup();
        nx_error_stack.count = 0;
        std::cout << "Stopped.\n";
    }
}

} // namespace

int main()
{
    initM(ARRLIB_HEADER_VERSION);
    install_hooks();
    start_savings();
    std::string command;
    while (read_line("host> ", command) && command != "quit") {
        if (command == "run")
            run_program();
        else if (!look_at_variables(command))
            std::cout << "Commands: " << commands_at_rest << '\n';
    }
    exitM();
    return 0;
}
