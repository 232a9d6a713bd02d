#include "platform/platform.h"

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>

namespace arrlib::platform {

bool is_file(char const* path)
{
    DWORD const attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool full_path(char const* path, char* full, std::size_t room)
{
    DWORD const longest = static_cast<DWORD>(std::min<std::size_t>(room, MAXDWORD));
    DWORD const length = *path ? GetFullPathNameA(path, longest, full, nullptr) : 0;
    return length > 0 && length < longest;
}

} // namespace arrlib::platform
