// Dynamic loading through LoadLibrary, which looks in the program's folder, the system's, the working
// folder and those of PATH.
#include "platform/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace arrlib::platform {

char const* const module_ending[module_endings] = {".dll"};

Module count_module(char const* file)
{
    HMODULE module = nullptr;
    return *file && GetModuleHandleExA(0, file, &module) ? module : nullptr;
}

Module load_module(char const* file, bool* there)
{
    *there = false;
    return *file ? LoadLibraryA(file) : nullptr;
}

void* find_in_module(Module module, char const* symbol)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), symbol));
}

void unload_module(Module module)
{
    FreeLibrary(static_cast<HMODULE>(module));
}

} // namespace arrlib::platform
