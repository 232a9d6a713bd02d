// Parallel runs: values, constants and the pool used from several threads at once.
#include "arrlib.h"
#include "support/capture.h"

#include <atomic>
#include <chrono>

using namespace capture;

namespace {

constexpr int threads = 4;
constexpr int turns = 2000;

std::atomic<int> finished{0};
std::atomic<double> total{0};

void add(double value)
{
    double before = total.load();
    while (!total.compare_exchange_weak(before, before + value)) {
    }
}

class Parallel : public testing::Test {
protected:
    Parallel() : outstanding_(arrlib::pool.outstanding())
    {
        finished = 0;
        total = 0;
    }
    ~Parallel() override
    {
        par_sync();
        EXPECT_EQ(arrlib::pool.outstanding(), outstanding_);
        nx_set_MT(0);
    }
    static void run(M<double> (*function)(), int count = threads)
    {
        for (int k = 0; k < count; ++k)
            par_run(function);
        par_sync();
    }

private:
    std::int64_t outstanding_;
};

TEST_F(Parallel, SwitchIsSetAndStays)
{
    EXPECT_EQ(arrlib::multi_threaded(), false);
    EXPECT_EQ(nx_set_MT(5), arrlib::platform::process_id());
    EXPECT_EQ(arrlib::multi_thread_switch, 5);
    EXPECT_EQ(nx_set_MT(0), arrlib::platform::process_id());
    run([] { return x_M; }, 1);
    EXPECT_EQ(arrlib::multi_thread_switch, 1);
}

TEST_F(Parallel, WaitingForNothingReturnsAtOnce)
{
    auto const start = std::chrono::steady_clock::now();
    par_sync();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
}

// Small and large values, so that chunks, whole blocks of chunks and the heap are all used.
TEST_F(Parallel, EveryThreadMakesAndEndsValues)
{
    run([] {
        double sum = 0;
        for (int turn = 0; turn < turns; ++turn) {
            M<double> kept[16];
            for (int k = 0; k < 16; ++k)
                kept[k] = M<double>(static_cast<double>(k));
            M<double> large(turn % 2, 10, 1 + turn % 7);
            large.r(10, 1) = turn;
            for (M<double> const& one : kept)
                sum += one[1];
            sum += large[10] - turn;
        }
        add(sum);
        ++finished;
        return M<double>(sum);
    });
    EXPECT_EQ(finished, threads);
    EXPECT_EQ(total, threads * turns * 120.0);
}

M<double>* shared = nullptr;

// One value and the constants, copied, written to and released by all.
TEST_F(Parallel, SharedValuesAreCopiedAndWritten)
{
    M<double> value(0, 20, 20);
    for (int k = 1; k <= 400; ++k)
        value.r(k) = k;
    shared = &value;
    run([] {
        for (int turn = 0; turn < turns; ++turn) {
            M<double> mine = *shared, unit = ::i, none = x_M, three = pi;
            M<M<double>> cells = nop_MM;
            mine.r(7) = turn;
            unit.i(1) += 1;
            three = mine;
            if (mine[7] == turn && mine[8] == 8 && *unit.addi() == 2 && none.size() == 0 && cells.size() == 0 && three[7] == turn)
                add(1);
        }
        ++finished;
        return *shared;
    });
    EXPECT_EQ(total, threads * turns);
    EXPECT_EQ(value[7], 7);
    EXPECT_EQ(*::i.addi(), 1);
    EXPECT_FALSE(value.dirty());
}

// Values made on one thread are ended on another.
TEST_F(Parallel, ResultsAreHandedOver)
{
    static M<double> made[threads];
    static std::atomic<int> next;
    next = 0;
    run([] {
        int const mine = next++;
        made[mine] = M<double>(0, 5, 5);
        for (int k = 1; k <= 25; ++k)
            made[mine].r(k) = mine;
        return made[mine];
    });
    for (int k = 0; k < threads; ++k) {
        EXPECT_EQ(made[k][25], k);
        made[k] = x_M;
    }
    run([] {
        M<double> const copy = made[0];
        ++finished;
        return copy;
    });
    EXPECT_EQ(finished, threads);
}

// The count of running threads goes down whatever the function lets out.
TEST_F(Parallel, ErrorLetOutIsReported)
{
    Flags const flags(nx_error_throw | nx_error_console);
    Printed const printed;
    run([]() -> M<double> {
        M<double> const held(3);
        error("in %s", "a thread");
        return held;
    },
        1);
    EXPECT_EQ(printed.text(), "Error: in a thread\n\n");
    EXPECT_FALSE(arrlib::error_in_flight());
}

TEST_F(Parallel, SyncWaitsForALateThread)
{
    run([] {
        arrlib::platform::sleep_milliseconds(120);
        ++finished;
        return x_M;
    },
        2);
    EXPECT_EQ(finished, 2);
}

} // namespace
