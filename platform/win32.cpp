#include "platform/platform.h"

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <direct.h>
#include <io.h>
#include <malloc.h>

#include <conio.h>
#include <float.h>
#include <xmmintrin.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace arrlib::platform {

namespace {

// Closes what CreateFile opened.
class Handle {
public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() { close(); }
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }
    bool close()
    {
        HANDLE const open = handle_;
        handle_ = INVALID_HANDLE_VALUE;
        return open == INVALID_HANDLE_VALUE || CloseHandle(open);
    }

private:
    HANDLE handle_;
};

constexpr std::size_t most_at_once = std::size_t{1} << 24;

DWORD next_piece(std::size_t length)
{
    return static_cast<DWORD>(std::min(length, most_at_once));
}

bool write_all(HANDLE file, char const* content, std::size_t length) noexcept
{
    while (length > 0) {
        DWORD written = 0;
        if (!WriteFile(file, content, next_piece(length), &written, nullptr) || written == 0)
            return false;
        content += written;
        length -= written;
    }
    return true;
}

} // namespace

// --- messages to the user -------------------------------------------------------------------------

void message_box(char const* text, char const* title, bool shown_already, bool over_foreground_window)
{
    HWND const owner = over_foreground_window ? GetForegroundWindow() : nullptr;
    bool const shown = MessageBoxA(owner, text, title, MB_OK | MB_ICONEXCLAMATION) > 0;
    if (shown || shown_already)
        return;
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n\n%s\n", title, text);
    std::fflush(stderr);
}

// --- crashes --------------------------------------------------------------------------------------

namespace {

CrashReporter crash_reporter = nullptr;

LONG WINAPI on_crash(EXCEPTION_POINTERS* crash)
{
    static std::atomic_flag reporting = ATOMIC_FLAG_INIT;
    if (!reporting.test_and_set() && crash_reporter)
        crash_reporter(crash->ExceptionRecord->ExceptionCode);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

std::size_t heap_block_size(void* block) noexcept
{
    return _msize(block);
}

void prefer_large_pages(void*, std::size_t) noexcept {}

void install_crash_reporter(CrashReporter reporter)
{
    crash_reporter = reporter;
    SetUnhandledExceptionFilter(on_crash);
}

// The filter runs on the stack that overflowed: some of it is kept back. The system frees it.
CrashStack::CrashStack() noexcept
{
    ULONG kept_back = 65536;
    SetThreadStackGuarantee(&kept_back);
}

CrashStack::~CrashStack()
{
    static_cast<void>(stack_);
}

void write_to_output(char const* text, std::size_t length) noexcept
{
    write_all(GetStdHandle(STD_OUTPUT_HANDLE), text, length);
}

// --- process and threads --------------------------------------------------------------------------

void reset_floating_point()
{
    constexpr unsigned all_masked = 0x8001F;
    constexpr unsigned sse_default = 0x1F80;
    _fpreset();
    _clearfp();
    _controlfp(all_masked, all_masked);
    // _fpreset leaves this unit as foreign code has set it.
    _mm_setcsr(sse_default);
}

void ignore_floating_point_signal()
{
    std::signal(SIGFPE, SIG_IGN);
}

void raise_thread_priority()
{
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST);
}

int process_id()
{
    return static_cast<int>(GetCurrentProcessId());
}

int processor_count()
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return static_cast<int>(system.dwNumberOfProcessors);
}

// There is no fork here.
void call_after_fork(void (*)()) {}

void sleep_milliseconds(unsigned milliseconds)
{
    Sleep(milliseconds);
}

std::tm local_time()
{
    std::tm local = {};
    std::time_t const now = std::time(nullptr);
    static_cast<void>(localtime_s(&local, &now));
    return local;
}

char const* environment(char const* name)
{
    return std::getenv(name);
}

void set_environment(char const* name, char const* value)
{
    _putenv_s(name, value ? value : "");
}

// --- console ----------------------------------------------------------------------------------------

namespace {

// The input is a pipe or a file: its next byte counts as a key.
int waiting_byte(HANDLE input)
{
    constexpr int end_of_transmission = 4;
    if (GetFileType(input) == FILE_TYPE_PIPE) {
        DWORD available = 0;
        if (!PeekNamedPipe(input, nullptr, 0, nullptr, &available, nullptr))
            return end_of_transmission;
        if (available == 0)
            return 0;
    }
    unsigned char key = 0;
    DWORD count = 0;
    return ReadFile(input, &key, 1, &count, nullptr) && count == 1 ? key : end_of_transmission;
}

void move_console_cursor(HANDLE console)
{
    SetConsoleCursorPosition(console, COORD{0, 0});
}

} // namespace

int waiting_key()
{
    HANDLE const input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    bool const redirected = input && input != INVALID_HANDLE_VALUE && !GetConsoleMode(input, &mode);
    if (redirected)
        return waiting_byte(input);
    return _kbhit() ? _getch() : 0;
}

void clear_console()
{
    HANDLE const console = GetStdHandle(STD_OUTPUT_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO screen;
    if (!GetConsoleScreenBufferInfo(console, &screen))
        return;
    DWORD const cells = static_cast<DWORD>(screen.dwSize.X) * static_cast<DWORD>(screen.dwSize.Y);
    DWORD filled = 0;
    FillConsoleOutputCharacterA(console, ' ', cells, COORD{0, 0}, &filled);
    FillConsoleOutputAttribute(console, screen.wAttributes, cells, COORD{0, 0}, &filled);
    move_console_cursor(console);
}

void home_console_cursor()
{
    move_console_cursor(GetStdHandle(STD_OUTPUT_HANDLE));
}

// --- files --------------------------------------------------------------------------------------------

namespace {

// Fills `room`; false when the file cannot be read. A pipe whose writer has gone is at its end.
bool read_piece(HANDLE file, char* to, std::size_t room, std::size_t* got)
{
    DWORD count = 0;
    bool const read = ReadFile(file, to, next_piece(room), &count, nullptr) || GetLastError() == ERROR_BROKEN_PIPE;
    *got = count;
    return read;
}

// A block twice as large with the same content; the old one is released either way.
char* grown(char* block, std::size_t capacity)
{
    char* const larger = capacity <= SIZE_MAX / 2 ? static_cast<char*>(heap_allocate(capacity * 2)) : nullptr;
    if (larger)
        std::memcpy(larger, block, capacity);
    heap_release(block);
    return larger;
}

// Room for the whole file and its zero byte; 0 when no block can be that large.
std::size_t first_capacity(HANDLE file)
{
    constexpr std::size_t unknown_size = 65536;
    LARGE_INTEGER size = {};
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileSizeEx(file, &size) || size.QuadPart <= 0)
        return unknown_size;
    // One byte more than needed, so that the end is met without a larger block.
    std::uint64_t const needed = static_cast<std::uint64_t>(size.QuadPart) + 2;
    return needed <= SIZE_MAX ? static_cast<std::size_t>(needed) : 0;
}

} // namespace

static HANDLE writer_handle(std::intptr_t file)
{
    return reinterpret_cast<HANDLE>(file);
}

bool FileWriter::create_in_place()
{
    file_ = reinterpret_cast<std::intptr_t>(CreateFileA(target_, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file_ != -1;
}

// A file that nobody else has.
bool FileWriter::create_beside()
{
    constexpr int attempts = 100;
    for (int k = 0; k < attempts && file_ == -1; ++k) {
        int const size = std::snprintf(beside_, sizeof beside_, "%s.%lu-%d", target_, GetCurrentProcessId(), k);
        if (size < 0 || static_cast<std::size_t>(size) >= sizeof beside_)
            break;
        file_ = reinterpret_cast<std::intptr_t>(CreateFileA(beside_, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file_ == -1 && GetLastError() != ERROR_FILE_EXISTS)
            break;
    }
    if (file_ == -1)
        beside_[0] = '\0';
    return file_ != -1;
}

bool FileWriter::create(char const* path)
{
    abandon();
    int const size = std::snprintf(target_, sizeof target_, "%s", path);
    if (size <= 0 || static_cast<std::size_t>(size) >= sizeof target_)
        return false;
    Handle existing(CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!existing && GetLastError() != ERROR_FILE_NOT_FOUND)
        return false;
    bool const device = existing && GetFileType(existing.get()) != FILE_TYPE_DISK;
    existing.close();
    // No room for a second file in that folder: the only one left is the file itself.
    return (!device && create_beside()) || create_in_place();
}

bool FileWriter::write(void const* content, std::size_t length)
{
    return file_ != -1 && write_all(writer_handle(file_), static_cast<char const*>(content), length);
}

bool FileWriter::commit()
{
    if (file_ == -1)
        return false;
    bool done = !beside_[0] || FlushFileBuffers(writer_handle(file_));
    done = CloseHandle(writer_handle(file_)) && done;
    file_ = -1;
    done = done && (!beside_[0] || MoveFileExA(beside_, target_, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    if (done)
        beside_[0] = '\0';
    else
        abandon();
    return done;
}

void FileWriter::abandon()
{
    if (file_ != -1)
        CloseHandle(writer_handle(file_));
    file_ = -1;
    if (beside_[0])
        DeleteFileA(beside_);
    beside_[0] = '\0';
}

ReadResult read_file(char const* path, char** content, std::size_t* length)
{
    DWORD const attributes = GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return ReadResult::not_read;
    Handle const file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file)
        return ReadResult::not_found;
    std::size_t capacity = first_capacity(file.get());
    std::size_t used = 0;
    char* block = capacity ? static_cast<char*>(heap_allocate(capacity)) : nullptr;
    while (block) {
        std::size_t got = 0;
        if (!read_piece(file.get(), block + used, capacity - 1 - used, &got)) {
            heap_release(block);
            return ReadResult::not_read;
        }
        if (got == 0) {
            block[used] = '\0';
            *content = block;
            *length = used;
            return ReadResult::done;
        }
        used += got;
        if (used == capacity - 1) {
            block = grown(block, capacity);
            capacity *= 2;
        }
    }
    return ReadResult::out_of_memory;
}

// --- streams ------------------------------------------------------------------------------------------

namespace {

HANDLE system_handle(std::FILE* stream)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

} // namespace

std::FILE* open_stream(char const* path, char const* mode)
{
    std::FILE* const stream = std::fopen(path, mode);
    if (stream)
        SetHandleInformation(system_handle(stream), HANDLE_FLAG_INHERIT, 0);
    return stream;
}

std::int64_t stream_position(std::FILE* stream)
{
    return _ftelli64(stream);
}

bool seek_stream(std::FILE* stream, std::int64_t offset, SeekFrom from)
{
    return _fseeki64(stream, offset, from == SeekFrom::start ? SEEK_SET : from == SeekFrom::here ? SEEK_CUR : SEEK_END) == 0;
}

std::int64_t stream_size(std::FILE* stream)
{
    HANDLE const file = system_handle(stream);
    LARGE_INTEGER size = {};
    return GetFileType(file) == FILE_TYPE_DISK && GetFileSizeEx(file, &size) ? size.QuadPart : -1;
}

// --- folders and commands -----------------------------------------------------------------------------

char const file_separator[] = "\\";
char const path_separator[] = ";";

bool make_folder(char const* path)
{
    return CreateDirectoryA(path, nullptr);
}

bool remove_folder(char const* path)
{
    return RemoveDirectoryA(path);
}

bool change_folder(char const* path)
{
    return _chdir(path) == 0;
}

bool working_folder(char* path, std::size_t room)
{
    DWORD const length = GetCurrentDirectoryA(static_cast<DWORD>(std::min<std::size_t>(room, MAXDWORD)), path);
    return length > 0 && length < room;
}

bool remove_file(char const* path)
{
    return DeleteFileA(path);
}

bool is_same_file(char const* one, char const* other)
{
    constexpr DWORD share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    Handle const first(CreateFileA(one, 0, share_all, nullptr, OPEN_EXISTING, 0, nullptr));
    Handle const second(CreateFileA(other, 0, share_all, nullptr, OPEN_EXISTING, 0, nullptr));
    BY_HANDLE_FILE_INFORMATION a = {}, b = {};
    return first && second && GetFileInformationByHandle(first.get(), &a) && GetFileInformationByHandle(second.get(), &b) &&
           a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

int run_command(char const* command)
{
    std::fflush(stdout);
    return std::system(command);
}

std::FILE* start_command(char const* command)
{
    std::fflush(stdout);
    return _popen(command, "rb");
}

int finish_command(std::FILE* output)
{
    return _pclose(output);
}

} // namespace arrlib::platform
