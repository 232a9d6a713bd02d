#include "platform/platform.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace arrlib::platform {

bool is_file(char const* path)
{
    struct stat found = {};
    return stat(path, &found) == 0 && !S_ISDIR(found.st_mode);
}

namespace {

// Builds a path name by name, in room that its maker has measured, behind a folder that is there.
class PathBuilder {
public:
    PathBuilder(char* path, std::size_t length) : path_(path), length_(length) {}

    void follow(char const* path)
    {
        while (*path) {
            path += std::strspn(path, "/");
            std::size_t const length = std::strcspn(path, "/");
            if (length == 2 && path[0] == '.' && path[1] == '.')
                leave();
            else if (length > 0 && !(length == 1 && path[0] == '.'))
                enter(path, length);
            path += length;
        }
    }
    void finish(bool with_separator)
    {
        if (length_ == 0 || with_separator)
            path_[length_++] = '/';
        path_[length_] = '\0';
    }

private:
    void enter(char const* name, std::size_t length)
    {
        path_[length_++] = '/';
        std::memcpy(path_ + length_, name, length);
        length_ += length;
    }
    void leave()
    {
        while (length_ > 0 && path_[--length_] != '/') {
        }
    }

    char* path_;
    std::size_t length_;
};

} // namespace

bool full_path(char const* path, char* full, std::size_t room)
{
    // Beside the names there may be a separator on either side and the zero byte.
    std::size_t const length = std::strlen(path), beside_folder = length + 3;
    if (length == 0 || room < beside_folder)
        return false;
    std::size_t folder = 0;
    if (path[0] != '/') {
        if (!getcwd(full, room - beside_folder + 1) || full[0] != '/')
            return false;
        folder = full[1] ? std::strlen(full) : 0;
    }
    PathBuilder built(full, folder);
    built.follow(path);
    built.finish(folder + length > 1 && path[length - 1] == '/');
    return true;
}

} // namespace arrlib::platform
