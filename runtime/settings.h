// What the start-up routine has read from the environment.
#ifndef ARRLIB_RUNTIME_SETTINGS_H
#define ARRLIB_RUNTIME_SETTINGS_H

namespace arrlib {

// The version of this runtime, and of the header that programs name in initM.
inline constexpr int runtime_version = 4010;

// External programs, at most 255 characters each.
struct ExternalProgram {
    char const* variable;
    char const* lower_case_variable;
    char const* fallback;
    char name[256];
};
enum External { image_viewer, sound_player, plotting_program, external_programs };
extern ExternalProgram external_program[external_programs];

void read_external_programs();

} // namespace arrlib

#endif
