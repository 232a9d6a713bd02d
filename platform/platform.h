// The only door to the operating system: one header, a POSIX and a Win32 implementation.
#ifndef ARRLIB_PLATFORM_PLATFORM_H
#define ARRLIB_PLATFORM_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace arrlib::platform {

// --- memory -----------------------------------------------------------------------------------

// The heap behind every allocation of the library. Both functions may be replaced together, by
// tests that count or refuse; null restores the C library's heap.
using HeapAllocate = void* (*)(std::size_t size);
using HeapRelease = void (*)(void* block);
void set_heap(HeapAllocate allocate, HeapRelease release);
void* heap_allocate(std::size_t size) noexcept;
void heap_release(void* block) noexcept;
// Bytes that a block of the C library's heap has room for.
std::size_t heap_block_size(void* block) noexcept;
// Asks for pages of a larger kind for memory that has not been used, where the system has them.
void prefer_large_pages(void* block, std::size_t size) noexcept;

// --- messages to the user -----------------------------------------------------------------------

// A message box with one button; without a desktop the text goes to standard error, unless it has
// been shown to the user already.
void message_box(char const* text, char const* title, bool shown_already, bool over_foreground_window);

// --- crashes ------------------------------------------------------------------------------------

// Called once for a crash, on its own stack; only async-signal-safe work is allowed in it.
using CrashReporter = void (*)(std::uint32_t exception_code);
void install_crash_reporter(CrashReporter reporter);
// Gives the calling thread what it needs to report an overflow of its stack.
class CrashStack {
public:
    CrashStack() noexcept;
    ~CrashStack();
    CrashStack(CrashStack const&) = delete;
    CrashStack& operator=(CrashStack const&) = delete;

private:
    void* stack_ = nullptr;
};
// Writes to standard output without buffers, also while the process is crashing.
void write_to_output(char const* text, std::size_t length) noexcept;

// --- process and threads ------------------------------------------------------------------------

// Masks every floating-point trap and restores the default rounding and precision.
void reset_floating_point();
// SIGFPE sent on purpose is not to end the process.
void ignore_floating_point_signal();
// A little above normal, for the calling thread; a refusal changes nothing.
void raise_thread_priority();
int process_id();
// Processors that this process may run on.
int processor_count();
// The child of a fork has none of the parent's other threads; `forget` is called in it.
void call_after_fork(void (*forget)());
void sleep_milliseconds(unsigned milliseconds);
// The time as clocks here show it, now; all zero when that is not known. For any thread.
std::tm local_time();
// The value of an environment variable, or null.
char const* environment(char const* name);
// Sets one, or removes it when `value` is null. No other thread may look at the environment meanwhile.
void set_environment(char const* name, char const* value);

// --- console ------------------------------------------------------------------------------------

// 0 when no key is waiting, else its code; 4 (end of transmission) when the input has ended.
int waiting_key();
void clear_console();
void home_console_cursor();

// --- files --------------------------------------------------------------------------------------

// Writes a file piece by piece, whole or not at all: a regular file is written beside the old one under
// a name of its own, flushed and renamed by commit(); anything else (a device, a pipe) is written
// directly, and so is a file in a folder that takes no new ones. Without a commit that succeeds the old
// file stays.
class FileWriter {
public:
    FileWriter() = default;
    ~FileWriter() { abandon(); }
    FileWriter(FileWriter const&) = delete;
    FileWriter& operator=(FileWriter const&) = delete;

    // All false on failure.
    bool create(char const* path);
    bool write(void const* content, std::size_t length);
    bool commit();
    // Closes the file and removes what has been written beside the old one: before a report, which may
    // end the process.
    void abandon();

private:
    static constexpr std::size_t longest_path = 4096;

    bool create_in_place();
    bool create_beside();

    std::intptr_t file_ = -1;
    char target_[longest_path] = "";
    // Empty when the target is written directly.
    char beside_[longest_path] = "";
};

// Reads a whole file into a block of the library's heap, with a zero byte behind it.
enum class ReadResult { done, not_found, not_read, out_of_memory };
ReadResult read_file(char const* path, char** content, std::size_t* length);

// --- streams ------------------------------------------------------------------------------------

// A C stream on a file; the mode is r, w or a with any of +, b and t behind it. Null when that cannot
// be had, as for folders. Commands that run meanwhile do not inherit it.
std::FILE* open_stream(char const* path, char const* mode);
// In bytes, also beyond 2 GiB; -1 for a stream without positions.
std::int64_t stream_position(std::FILE* stream);
enum class SeekFrom { start, here, end };
bool seek_stream(std::FILE* stream, std::int64_t offset, SeekFrom from);
// Size of the regular file behind a stream, as the system sees it; -1 for pipes, devices and the like.
std::int64_t stream_size(std::FILE* stream);

// --- folders and commands -----------------------------------------------------------------------

bool make_folder(char const* path);
bool remove_folder(char const* path);
bool change_folder(char const* path);
// False when the path is longer than the room or there is none.
bool working_folder(char* path, std::size_t room);
bool remove_file(char const* path);
// True when both names lead to one existing file.
bool is_same_file(char const* one, char const* other);
// True when something other than a folder has that name.
bool is_file(char const* path);
// The path from the root on, without "." and ".."; nothing needs to exist, and links are not followed.
// False for an empty path, and when the room is too small.
bool full_path(char const* path, char* full, std::size_t room);
// Between the names of a path; between the paths of a list.
extern char const file_separator[];
extern char const path_separator[];

// Runs a command in the system's shell and waits for it. What has been written to standard output
// so far comes before what it writes. Returns its status, 128 and the signal's number when a signal
// ended it, -1 when it could not be started.
int run_command(char const* command);
// The same with its output to be read from a stream, which finish_command closes; null when it could
// not be started.
std::FILE* start_command(char const* command);
int finish_command(std::FILE* output);

// --- modules ------------------------------------------------------------------------------------

// A dynamic library that is loaded. The system keeps one copy of each and counts its loads.
using Module = void*;
// The endings of their file names, in the order to try them in.
#if defined(_WIN32)
inline constexpr int module_endings = 1;
#else
inline constexpr int module_endings = 2;
#endif
extern char const* const module_ending[module_endings];
// Counts one more load of the module that has been loaded from a file of this name; null when there is none.
Module count_module(char const* file);
// Loads the file, looked for in the program's folder, in the working folder and where the system looks
// for libraries. Null on failure; `there` is then true where a file of that name was found.
Module load_module(char const* file, bool* there);
// The address of what the module exports under the name, or null.
void* find_in_module(Module module, char const* symbol);
// Takes one load back; the last one unloads the module.
void unload_module(Module module);

} // namespace arrlib::platform

#endif
