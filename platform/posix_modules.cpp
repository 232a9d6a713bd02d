// Dynamic loading through dlopen.
#include "platform/platform.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace arrlib::platform {

namespace {

constexpr std::size_t longest_path = 4096;
// Everything that a module lacks is found out when it is loaded, not when it is called.
constexpr int how = RTLD_NOW | RTLD_LOCAL;

struct Search {
    char const* file;
    char path[longest_path];
};

// Whether one of the process's libraries comes from a file of the name; its path is copied, because the
// library may go as soon as the list is no longer held.
int has_file_name(dl_phdr_info* library, std::size_t, void* data)
{
    Search& search = *static_cast<Search*>(data);
    char const* const slash = std::strrchr(library->dlpi_name, '/');
    std::size_t const length = std::strlen(library->dlpi_name);
    if (!slash || std::strcmp(slash + 1, search.file) != 0 || length >= sizeof search.path)
        return 0;
    std::memcpy(search.path, library->dlpi_name, length + 1);
    return 1;
}

// The folder of the running program.
bool program_folder(char* path, std::size_t room)
{
    ssize_t const length = readlink("/proc/self/exe", path, room - 1);
    if (length <= 0 || static_cast<std::size_t>(length) >= room - 1)
        return false;
    path[length] = '\0';
    char* const slash = std::strrchr(path, '/');
    if (slash)
        *slash = '\0';
    return slash != nullptr;
}

} // namespace

char const* const module_ending[module_endings] = {".dll", ".so"};

Module count_module(char const* file)
{
    if (!*file)
        return nullptr;
    if (std::strchr(file, '/'))
        return dlopen(file, how | RTLD_NOLOAD);
    Search search;
    search.file = file;
    return dl_iterate_phdr(has_file_name, &search) ? dlopen(search.path, how | RTLD_NOLOAD) : nullptr;
}

Module load_module(char const* file, bool* there)
{
    *there = false;
    if (!*file)
        return nullptr;
    using Folder = bool (*)(char*, std::size_t);
    constexpr Folder folders[] = {program_folder, working_folder};
    for (Folder const folder : folders) {
        char folder_path[longest_path], path[longest_path];
        if (*file == '/' || !folder(folder_path, sizeof folder_path))
            continue;
        int const length = std::snprintf(path, sizeof path, "%s/%s", folder_path, file);
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof path || access(path, F_OK) != 0)
            continue;
        *there = true;
        if (Module const module = dlopen(path, how))
            return module;
    }
    *there = *there || (*file == '/' && access(file, F_OK) == 0);
    return dlopen(file, how);
}

void* find_in_module(Module module, char const* symbol)
{
    return dlsym(module, symbol);
}

void unload_module(Module module)
{
    dlclose(module);
}

} // namespace arrlib::platform
