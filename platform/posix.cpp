#include "platform/platform.h"

#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <time.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cfenv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace arrlib::platform {

namespace {

// --- crashes ------------------------------------------------------------------------------------

struct CrashSignal {
    int signal;
    std::uint32_t code;
};

constexpr CrashSignal crash_signals[] = {
    {SIGSEGV, 0xC0000005}, {SIGBUS, 0xC0000006}, {SIGILL, 0xC000001D}, {SIGTRAP, 0x80000003}, {SIGFPE, 0xC0000090},
};

struct SignalDetail {
    int signal;
    int detail;
    std::uint32_t code;
};

// What the system tells beyond the signal's number.
constexpr SignalDetail signal_details[] = {
    {SIGFPE, FPE_INTDIV, 0xC0000094}, {SIGFPE, FPE_INTOVF, 0xC0000095}, {SIGFPE, FPE_FLTDIV, 0xC000008E},
    {SIGFPE, FPE_FLTOVF, 0xC0000091}, {SIGFPE, FPE_FLTUND, 0xC0000093}, {SIGFPE, FPE_FLTRES, 0xC000008F},
    {SIGFPE, FPE_FLTSUB, 0xC000008C}, {SIGILL, ILL_PRVOPC, 0xC0000096}, {SIGILL, ILL_PRVREG, 0xC0000096},
    {SIGBUS, BUS_ADRALN, 0x80000002}, {SIGTRAP, TRAP_TRACE, 0x80000004},
};

constexpr std::uint32_t stack_overflow_code = 0xC00000FD;
constexpr std::size_t crash_stack_size = 65536;

CrashReporter crash_reporter = nullptr;
struct sigaction previous_actions[std::size(crash_signals)];

std::uintptr_t stack_pointer(void const* context)
{
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(static_cast<ucontext_t const*>(context)->uc_mcontext.gregs[REG_RSP]);
#elif defined(__aarch64__)
    return static_cast<std::uintptr_t>(static_cast<ucontext_t const*>(context)->uc_mcontext.sp);
#else
    static_cast<void>(context);
    return 0;
#endif
}

std::uint32_t exception_code(int signal, siginfo_t const& info, void const* context)
{
    if (signal == SIGSEGV) {
        // A fault beside the stack pointer is a stack that has run into its guard page.
        constexpr std::uintptr_t near = 1 << 20;
        auto const fault = reinterpret_cast<std::uintptr_t>(info.si_addr);
        std::uintptr_t const stack = stack_pointer(context);
        if (stack && fault + near > stack && fault < stack + near)
            return stack_overflow_code;
    }
    for (SignalDetail const& known : signal_details)
        if (known.signal == signal && known.detail == info.si_code)
            return known.code;
    for (CrashSignal const& known : crash_signals)
        if (known.signal == signal)
            return known.code;
    return 0;
}

void on_crash(int signal, siginfo_t* info, void* context)
{
    // A SIGFPE that somebody sent is not a crash.
    if (signal == SIGFPE && info->si_code <= 0)
        return;
    static std::atomic_flag reporting = ATOMIC_FLAG_INIT;
    if (!reporting.test_and_set() && crash_reporter)
        crash_reporter(exception_code(signal, *info, context));
    // The system's own handling comes next: the fault is met again, or the signal sent again.
    for (std::size_t k = 0; k < std::size(crash_signals); ++k)
        if (crash_signals[k].signal == signal)
            sigaction(signal, &previous_actions[k], nullptr);
    if (info->si_code <= 0 || signal == SIGTRAP)
        raise(signal);
}

} // namespace

std::size_t heap_block_size(void* block) noexcept
{
    return malloc_usable_size(block);
}

void install_crash_reporter(CrashReporter reporter)
{
    crash_reporter = reporter;
    struct sigaction action = {};
    action.sa_sigaction = on_crash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (std::size_t k = 0; k < std::size(crash_signals); ++k)
        sigaction(crash_signals[k].signal, &action, &previous_actions[k]);
}

CrashStack::CrashStack() noexcept
{
    void* const memory = mmap(nullptr, crash_stack_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return;
    stack_t stack = {};
    stack.ss_sp = memory;
    stack.ss_size = crash_stack_size;
    if (sigaltstack(&stack, nullptr) == 0)
        stack_ = memory;
    else
        munmap(memory, crash_stack_size);
}

CrashStack::~CrashStack()
{
    if (!stack_)
        return;
    // Somebody may have put a stack of his own in its place since.
    stack_t current = {};
    if (sigaltstack(nullptr, &current) == 0 && current.ss_sp == stack_) {
        stack_t off = {};
        off.ss_flags = SS_DISABLE;
        sigaltstack(&off, nullptr);
    }
    munmap(stack_, crash_stack_size);
}

void write_to_output(char const* text, std::size_t length) noexcept
{
    while (length > 0) {
        ssize_t const written = write(STDOUT_FILENO, text, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        text += written;
        length -= static_cast<std::size_t>(written);
    }
}

// --- messages to the user -------------------------------------------------------------------------

void message_box(char const* text, char const* title, bool shown_already, bool)
{
    if (shown_already)
        return;
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n\n%s\n", title, text);
    std::fflush(stderr);
}

// --- process and threads --------------------------------------------------------------------------

void reset_floating_point()
{
    std::fesetenv(FE_DFL_ENV);
}

void ignore_floating_point_signal()
{
    // Installed with the crash reporter: a fault is reported, a signal that was sent is ignored.
}

void raise_thread_priority()
{
    constexpr int a_little_above_normal = -2;
    int const before = errno;
    static_cast<void>(setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), a_little_above_normal));
    errno = before;
}

int process_id()
{
    return static_cast<int>(getpid());
}

int processor_count()
{
    cpu_set_t usable;
    CPU_ZERO(&usable);
    return sched_getaffinity(0, sizeof usable, &usable) == 0 ? CPU_COUNT(&usable) : 1;
}

void call_after_fork(void (*forget)())
{
    static_cast<void>(pthread_atfork(nullptr, nullptr, forget));
}

void sleep_milliseconds(unsigned milliseconds)
{
    timespec left = {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

std::tm local_time()
{
    std::tm local = {};
    std::time_t const now = std::time(nullptr);
    static_cast<void>(localtime_r(&now, &local));
    return local;
}

char const* environment(char const* name)
{
    return std::getenv(name);
}

void set_environment(char const* name, char const* value)
{
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

// --- console ----------------------------------------------------------------------------------------

namespace {

// Keys one at a time and unseen, for as long as it lives.
class KeyMode {
public:
    KeyMode() : changed_(isatty(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &before_) == 0)
    {
        if (!changed_)
            return;
        termios keys = before_;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keys.c_cc[VMIN] = 0;
        keys.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    }
    ~KeyMode()
    {
        if (changed_)
            tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    }
    KeyMode(KeyMode const&) = delete;
    KeyMode& operator=(KeyMode const&) = delete;

private:
    termios before_ = {};
    bool changed_;
};

void write_to_terminal(char const* sequence)
{
    if (isatty(STDOUT_FILENO))
        write_to_output(sequence, std::strlen(sequence));
}

} // namespace

int waiting_key()
{
    constexpr int end_of_transmission = 4;
    KeyMode const keys;
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, 0) <= 0)
        return 0;
    unsigned char key = 0;
    ssize_t const count = read(STDIN_FILENO, &key, 1);
    if (count == 1)
        return key;
    return count == 0 && !isatty(STDIN_FILENO) ? end_of_transmission : 0;
}

void clear_console()
{
    write_to_terminal("\033[2J\033[H");
}

void home_console_cursor()
{
    write_to_terminal("\033[H");
}

// --- files --------------------------------------------------------------------------------------------

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

// --- folders and commands -----------------------------------------------------------------------------

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

namespace {

int exit_status(int wait_status)
{
    if (wait_status == -1)
        return -1;
    return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

} // namespace

int run_command(char const* command)
{
    std::fflush(stdout);
    return exit_status(std::system(command));
}

std::FILE* start_command(char const* command)
{
    std::fflush(stdout);
    return popen(command, "re");
}

int finish_command(std::FILE* output)
{
    return exit_status(pclose(output));
}

} // namespace arrlib::platform
