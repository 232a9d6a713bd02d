// Errors and warnings: the one reporting path of the library and of translated programs.
#ifndef ARRLIB_RUNTIME_ERRORS_H
#define ARRLIB_RUNTIME_ERRORS_H

#include "core/api.h"

// What the default handlers do with a message: the bits of nx_default_error_flags.
enum nx_error_flag : int {
    nx_error_console = 1,      // text goes to the print hook
    nx_error_message_box = 2,  // text is shown in a message box
    nx_error_exit = 4,         // an error ends the process with status 1
    nx_error_register = 8,     // every named matrix is listed in the variable scope
    nx_error_throw = 16        // an error is thrown as char* instead of being reported
};
ARRLIB_API extern int nx_default_error_flags;

// The frames of translated functions, for the "called from" lines: entries 1..count are live,
// entry `count` is the innermost one. A push beyond 256 frames is the pusher's to refuse.
struct nx_error_stack_t {
    static constexpr int capacity = 257;
    char const* name[capacity];
    int line[capacity];
    int count;
};
ARRLIB_API extern nx_error_stack_t nx_error_stack;

// A frame for the duration of a translated function. Beyond 256 frames nothing is pushed, and the
// innermost frames are missing from reports.
class nx_frame {
public:
    explicit nx_frame(char const* function_name) noexcept
    {
        nx_error_stack_t& stack = nx_error_stack;
        pushed_ = stack.count >= 0 && stack.count < nx_error_stack_t::capacity - 1;
        below_ = stack.count;
        if (pushed_) {
            ++stack.count;
            stack.name[stack.count] = function_name;
            stack.line[stack.count] = 0;
        }
    }
    // Back to the count found, whatever reset or left it in between.
    ~nx_frame()
    {
        if (nx_error_stack.count > below_)
            nx_error_stack.count = below_;
    }
    nx_frame(nx_frame const&) = delete;
    nx_frame& operator=(nx_frame const&) = delete;

    // The line about to run.
    void line(int number) noexcept
    {
        if (pushed_)
            nx_error_stack.line[below_ + 1] = number;
    }

private:
    int below_;
    bool pushed_;
};

// Reports a message. The hook may return (then 0 is returned and the caller goes on with a neutral
// result), throw, or end the process. The text is taken as it is: a "%" stays.
ARRLIB_API int error(char const* message);
// The same with up to five arguments for the conversions of the format: "%s" takes text; a number
// is passed as text, or in an argument slot for "%d" and its like. Longer texts than the 2048-byte
// message buffer are cut.
ARRLIB_API int error(char const* format, char const* a1);
ARRLIB_API int error(char const* format, char const* a1, char const* a2);
ARRLIB_API int error(char const* format, char const* a1, char const* a2, char const* a3);
ARRLIB_API int error(char const* format, char const* a1, char const* a2, char const* a3, char const* a4);
ARRLIB_API int error(char const* format, char const* a1, char const* a2, char const* a3, char const* a4,
                     char const* a5);

// Warns through the warning hook and returns 0; without a message, nothing happens.
ARRLIB_API int warning();
ARRLIB_API int warning(char const* message);
ARRLIB_API int warning(char const* format, char const* a1);
ARRLIB_API int warning(char const* format, char const* a1, char const* a2);

// Passes the text, or the number as text, to the debug hook; returns 0.
ARRLIB_API int debug(char const* message);
ARRLIB_API int debug(int number);

// Reports the message in the buffer ("Aborted!" when there is none) with the "called from" lines,
// as the flags say; for code that has caught a thrown error.
ARRLIB_API void error_lasterr();
// Appends a line "called from %s line %d" per live frame, innermost first. `buffer` holds 2048
// bytes and a text; what does not fit is left out line by line.
ARRLIB_API void error_call_stack(char* buffer);

// The hooks. Null restores the default.
ARRLIB_API void nx_set_error_handler(void (*handler)(char const* message));
ARRLIB_API void nx_set_warning_handler(void (*handler)(char const* message));
ARRLIB_API void nx_set_debug_handler(void (*handler)(char const* message));
ARRLIB_API void nx_set_print_handler(void (*handler)(char const* text));
ARRLIB_API void nx_set_input_handler(void (*handler)(char* buffer, int size));
ARRLIB_API void nx_set_kbhit_handler(int (*handler)());
// Takes the place of message boxes. Without a desktop the default writes to standard error what
// has not been shown otherwise.
ARRLIB_API void nx_set_message_box_handler(void (*handler)(char const* text, char const* title));

// Sets (`on` not zero) or clears the bits of `mask` in nx_default_error_flags.
ARRLIB_API void nx_set_default_error_flags(int mask, int on);
// From now on every error is shown in a message box only and ends the process.
ARRLIB_API void nx_set_fatal_error();

// Checks the argument counts of the translated function `name`; the first that holds is reported:
// "Too few outputs for %s", "Too many outputs for %s", "Too few inputs for %s",
// "Too many inputs for %s".
ARRLIB_API void validate_narg(char const* name, int nout, int nin, int maxout, int maxin);
// Reports "%s does not accept %d input%s" for a built-in called with a number of inputs that it
// does not take; returns the empty matrix.
ARRLIB_API M<double> nx_wrong_narg(char const* name, int nin);

// Raises the text (at most 255 characters) as an error; an empty matrix raises nothing. Returns
// the empty matrix.
ARRLIB_API M<double> error(M<double> message);
// Gives the text as a warning; the texts "on" and "off" are accepted and change nothing: warnings
// are always on.
ARRLIB_API M<double> warning(M<double> message);
// Name and line of the innermost frame; "unknown" and 0 without frames.
ARRLIB_API M<double> mfilename();
ARRLIB_API M<double> mfileline();

#endif
