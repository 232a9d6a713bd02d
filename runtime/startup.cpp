#include "runtime/startup.h"

#include "platform/platform.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/crash.h"
#include "runtime/errors.h"
#include "runtime/graphics_link.h"
#include "runtime/report.h"
#include "runtime/settings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace arrlib {

constinit ExternalProgram external_program[external_programs] = {
    {"KORVEXVIEWER", "korvexviewer", "pbrush", ""},
    {"KORVEXPLAYER", "korvexplayer", "aplay", ""},
    {"KORVEXGNUPLOT", "korvexgnuplot", "wgnuplot", ""},
};

void read_external_programs()
{
    for (ExternalProgram& program : external_program) {
        char const* name = platform::environment(program.variable);
        if (!name)
            name = platform::environment(program.lower_case_variable);
        std::snprintf(program.name, sizeof program.name, "%s", name ? name : program.fallback);
    }
}

namespace {

constexpr GraphicsLink no_graphics{[] {}, [] { return -1; }, [] { return false; }, [] {}};
constinit GraphicsLink const* installed_graphics = &no_graphics;

// Turned on in a debugger.
bool trace_start_up = false;

struct Step {
    char const* trace;
    void (*run)();
};

constexpr Step steps[] = {
    {nullptr, platform::raise_thread_priority},
    {"InitCS\n", install_crash_reports},
    {"assert\n", [] { static platform::CrashStack const loading_thread; }},
    {"resetfpu\n", platform::reset_floating_point},
    {"signal\n", platform::ignore_floating_point_signal},
    {nullptr, forget_message},
    {"getenv\n", read_external_programs},
    {"init const\n", [] {}}, // The constants need no code: they are part of the library's image.
};

// While the library is loaded a chunk of the pool stays in use, so that a program with a single
// short-lived value does not take and return the pool's first block at every turn.
class KeepPool {
public:
    KeepPool() : chunk_(pool.allocate(1)) {}
    ~KeepPool()
    {
        if (chunk_)
            pool.release(chunk_, 1);
    }
    KeepPool(KeepPool const&) = delete;
    KeepPool& operator=(KeepPool const&) = delete;

private:
    void* chunk_;
};

struct StartUp {
    KeepPool keep_pool;
    StartUp()
    {
        for (Step const& step : steps) {
            if (step.trace && trace_start_up)
                std::printf("%s", step.trace);
            step.run();
        }
    }
};
StartUp const start_up;

} // namespace

GraphicsLink const& graphics()
{
    return *installed_graphics;
}

void install_graphics(GraphicsLink const* link)
{
    installed_graphics = link ? link : &no_graphics;
    if (installed_graphics->introduce)
        installed_graphics->introduce(graphics_services);
}

} // namespace arrlib

using namespace arrlib;

void initM(int header_version)
{
    nx_error_stack.count = 0;
    if (header_version != runtime_version) {
        char runtime[32], header[32];
        std::snprintf(runtime, sizeof runtime, "%g", runtime_version * 0.001);
        std::snprintf(header, sizeof header, "%g", header_version * 0.001);
        error("Version mismatch - runtime version is %s but arrlib.h version is %s.", runtime, header);
    }
    platform::reset_floating_point();
}

void exitM()
{
    platform::reset_floating_point();
    graphics().show_figures();
    if (graphics().current_figure() > 0)
        nx_print("Please close all figures...\n");
    graphics().shut_down();
    platform::reset_floating_point();
}

M<double> exit()
{
    exitM();
    std::exit(0);
}

M<double> quit()
{
    return exit();
}
