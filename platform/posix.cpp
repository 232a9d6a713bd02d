// Crashes, memory, the process, the console and commands.
#include "platform/platform.h"

#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
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

void prefer_large_pages(void* block, std::size_t size) noexcept
{
#if defined(MADV_HUGEPAGE)
    auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    std::uintptr_t const begin = (reinterpret_cast<std::uintptr_t>(block) + page - 1) / page * page;
    std::uintptr_t const end = (reinterpret_cast<std::uintptr_t>(block) + size) / page * page;
    if (begin < end)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
    static_cast<void>(block);
    static_cast<void>(size);
#endif
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

// --- commands -------------------------------------------------------------------------------------------

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
