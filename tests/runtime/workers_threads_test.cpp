// Work shared among threads: every piece once, from any number of givers, and alone where it must be.
#include "arrlib.h"
#include "runtime/workers.h"
#include "support/capture.h"

#include <atomic>
#include <thread>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

class Limit {
public:
    explicit Limit(int threads) : before_(arrlib::set_parallel_limit(threads)) {}
    ~Limit() { arrlib::set_parallel_limit(before_); }
    Limit(Limit const&) = delete;
    Limit& operator=(Limit const&) = delete;

private:
    int before_;
};

// How often each index was visited.
std::vector<int> visits(std::ptrdiff_t count, std::ptrdiff_t least)
{
    std::vector<int> seen(static_cast<std::size_t>(count));
    arrlib::parallel_for(count, least, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        EXPECT_EQ(from % least, 0);
        for (; from < to; ++from)
            ++seen[static_cast<std::size_t>(from)];
    });
    return seen;
}

TEST(Workers, EveryIndexOnce)
{
    for (int threads : {1, 2, 5}) {
        Limit const limit(threads);
        for (std::ptrdiff_t count : {0, 1, 7, 64, 1000, 4097})
            for (std::ptrdiff_t least : {1, 3, 64, 5000})
                for (int turn = 0; turn < 20; ++turn)
                    EXPECT_EQ(visits(count, least), std::vector<int>(static_cast<std::size_t>(count), 1)) << count << " by " << least;
    }
}

TEST(Workers, ManyGiversAtOnce)
{
    Limit const limit(4);
    std::vector<std::thread> givers;
    for (int k = 0; k < 4; ++k)
        givers.emplace_back([] {
            for (int turn = 0; turn < 300; ++turn)
                EXPECT_EQ(visits(500, 7), std::vector<int>(500, 1));
        });
    for (std::thread& giver : givers)
        giver.join();
}

TEST(Workers, WorkWithinWorkStaysOnItsThread)
{
    Limit const limit(4);
    std::atomic<int> inner{0};
    arrlib::parallel_for(8, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        EXPECT_EQ(arrlib::parallel_width(), 1);
        for (; from < to; ++from)
            arrlib::parallel_for(1000, 1, [&](std::ptrdiff_t a, std::ptrdiff_t b) { inner += static_cast<int>(b - a); });
    });
    EXPECT_EQ(inner, 8000);
    EXPECT_EQ(arrlib::parallel_width(), 4);
}

std::atomic<int> width_seen{0};

TEST(Workers, ParallelRunsWorkAlone)
{
    Limit const limit(4);
    par_run([] {
        width_seen = arrlib::parallel_width();
        return x_M;
    });
    par_sync();
    nx_set_MT(0);
    EXPECT_EQ(width_seen, 1);
}

#if !defined(_WIN32) && !defined(__SANITIZE_THREAD__)
TEST(Workers, AChildOfAForkGetsWorkersOfItsOwn)
{
    Limit const limit(3);
    visits(1000, 1);
    pid_t const child = fork();
    if (child == 0)
        _exit(visits(1000, 1) == std::vector<int>(1000, 1) ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
#endif

} // namespace
