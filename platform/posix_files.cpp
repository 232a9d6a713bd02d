// Files, streams and folders.
#include "platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace arrlib::platform {

namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int get() const { return descriptor_; }
    bool close()
    {
        int const open = descriptor_;
        descriptor_ = -1;
        return open < 0 || ::close(open) == 0;
    }

private:
    int descriptor_;
};

bool write_all(int descriptor, char const* content, std::size_t length)
{
    constexpr std::size_t most_at_once = std::size_t{1} << 30;
    while (length > 0) {
        ssize_t const written = write(descriptor, content, length < most_at_once ? length : most_at_once);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        content += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

bool FileWriter::create_in_place()
{
    file_ = open(target_, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return file_ >= 0;
}

bool FileWriter::create_beside()
{
    int const size = std::snprintf(beside_, sizeof beside_, "%s.XXXXXX", target_);
    file_ = size > 0 && static_cast<std::size_t>(size) < sizeof beside_ ? mkostemp(beside_, O_CLOEXEC) : -1;
    if (file_ < 0)
        beside_[0] = '\0';
    return file_ >= 0;
}

bool FileWriter::create(char const* path)
{
    abandon();
    struct stat found = {};
    bool const exists = stat(path, &found) == 0, regular = exists && S_ISREG(found.st_mode);
    if (regular) {
        // A link keeps pointing at its file: the file is what is replaced.
        if (access(path, W_OK) != 0 || !realpath(path, target_))
            return false;
    } else {
        int const size = std::snprintf(target_, sizeof target_, "%s", path);
        if (size <= 0 || static_cast<std::size_t>(size) >= sizeof target_)
            return false;
    }
    // No room for a second file in that folder: the only one left is the file itself.
    if ((exists && !regular) || !create_beside())
        return create_in_place();
    mode_t const mask = umask(0);
    umask(mask);
    fchmod(static_cast<int>(file_), exists ? found.st_mode & 07777 : 0666 & ~mask);
    return true;
}

bool FileWriter::write(void const* content, std::size_t length)
{
    return file_ >= 0 && write_all(static_cast<int>(file_), static_cast<char const*>(content), length);
}

bool FileWriter::commit()
{
    if (file_ < 0)
        return false;
    int const file = static_cast<int>(file_);
    bool done = !beside_[0] || fsync(file) == 0;
    file_ = -1;
    done = close(file) == 0 && done;
    done = done && (!beside_[0] || std::rename(beside_, target_) == 0);
    if (done)
        beside_[0] = '\0';
    else
        abandon();
    return done;
}

void FileWriter::abandon()
{
    if (file_ >= 0)
        close(static_cast<int>(file_));
    file_ = -1;
    if (beside_[0])
        unlink(beside_);
    beside_[0] = '\0';
}

ReadResult read_file(char const* path, char** content, std::size_t* length)
{
    Descriptor const file(open(path, O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        return ReadResult::not_found;
    struct stat found = {};
    if (fstat(file.get(), &found) != 0 || S_ISDIR(found.st_mode))
        return ReadResult::not_read;
    // A pipe or a file that grows while it is read tells no size: the block doubles.
    std::size_t capacity = found.st_size > 0 ? static_cast<std::size_t>(found.st_size) + 1 : 65536;
    std::size_t used = 0;
    char* block = static_cast<char*>(heap_allocate(capacity));
    while (block) {
        ssize_t const got = used + 1 < capacity ? read(file.get(), block + used, capacity - 1 - used) : 0;
        if (got > 0) {
            used += static_cast<std::size_t>(got);
            continue;
        }
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            heap_release(block);
            return ReadResult::not_read;
        }
        char one_more = 0;
        ssize_t const more = used + 1 < capacity ? 0 : read(file.get(), &one_more, 1);
        if (more <= 0) {
            block[used] = '\0';
            *content = block;
            *length = used;
            return more < 0 ? (heap_release(block), ReadResult::not_read) : ReadResult::done;
        }
        char* const larger = capacity < SIZE_MAX / 2 ? static_cast<char*>(heap_allocate(capacity * 2)) : nullptr;
        if (larger) {
            std::memcpy(larger, block, used);
            larger[used++] = one_more;
        }
        heap_release(block);
        block = larger;
        capacity *= 2;
    }
    return ReadResult::out_of_memory;
}

// --- streams ------------------------------------------------------------------------------------------

std::FILE* open_stream(char const* path, char const* mode)
{
    // Text and binary streams are the same here.
    bool const update = std::strchr(mode, '+') != nullptr;
    char const how[] = {mode[0], 'e', update ? '+' : '\0', '\0'};
    std::FILE* const stream = std::fopen(path, how);
    struct stat found = {};
    if (stream && fstat(fileno(stream), &found) == 0 && S_ISDIR(found.st_mode)) {
        std::fclose(stream);
        errno = EISDIR;
        return nullptr;
    }
    return stream;
}

std::int64_t stream_position(std::FILE* stream)
{
    return ftello(stream);
}

bool seek_stream(std::FILE* stream, std::int64_t offset, SeekFrom from)
{
    return fseeko(stream, offset, from == SeekFrom::start ? SEEK_SET : from == SeekFrom::here ? SEEK_CUR : SEEK_END) == 0;
}

std::int64_t stream_size(std::FILE* stream)
{
    struct stat found = {};
    return fstat(fileno(stream), &found) == 0 && S_ISREG(found.st_mode) ? found.st_size : -1;
}

// --- folders ------------------------------------------------------------------------------------------

char const file_separator[] = "/";
char const path_separator[] = ":";

bool make_folder(char const* path)
{
    return mkdir(path, 0777) == 0;
}

bool remove_folder(char const* path)
{
    return rmdir(path) == 0;
}

bool change_folder(char const* path)
{
    return chdir(path) == 0;
}

bool working_folder(char* path, std::size_t room)
{
    return getcwd(path, room) != nullptr;
}

bool remove_file(char const* path)
{
    return unlink(path) == 0;
}

bool is_same_file(char const* one, char const* other)
{
    struct stat first = {}, second = {};
    return stat(one, &first) == 0 && stat(other, &second) == 0 && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

} // namespace arrlib::platform
