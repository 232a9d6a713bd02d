// What par_run guards, all at once: several functions allocate, draw numbers, and open, write and read
// files of their own.
#include "arrlib.h"
#include "support/capture.h"

#include <atomic>
#include <mutex>
#include <set>

using namespace capture;

namespace {

constexpr int threads = 4;
constexpr int rounds = 40;

std::atomic<int> started{0}, right{0};
std::string folder_name;

// The numbers that all threads drew; a generator without its lock gives some of them twice.
std::mutex drawn_lock;
std::multiset<double> drawn;

M<double> work()
{
    std::string const name = folder_name + "/" + std::to_string(++started);
    M<double> const file = TM(name.c_str()), write = TM("w"), numbers = TM("%.17g ");
    std::multiset<double> mine;
    for (int round = 0; round < rounds; ++round) {
        // Small values, values of the heap, cells, text, sparse storage.
        M<double> x = randM(M<double>(20), M<double>(5)), normal = randn(M<double>(3)), large = ones(M<double>(300), M<double>(10));
        M<M<double>> cells = cell(M<double>(2));
        cells.addr()[1] = large;
        large.r(7) = round;
        M<double> const sparse_form = sparse(large), text = sprintf(numbers, x);
        mine.insert(x.addr(), x.addr() + x.size());
        M<double> fid = fopen(file, write);
        fprintf(fid, numbers, x);
        bool held = scalar(fclose(fid)) == 0;
        fid = fopen(file);
        M<double> const back = fscanf(fid, TM("%g"));
        held = held && scalar(fclose(fid)) == 0 && back.size() == x.size() && back[100] == x[100];
        save(TM((name + ".mat").c_str()), x, large);
        M<double> loaded, other;
        load(TM((name + ".mat").c_str()), loaded, other);
        right += held && loaded[50] == x[50] && other[7] == round && cells.addr()[1].r(7) == 1 && normal.size() == 9 && sparse_form.size() == 3000 && text.isstr();
    }
    std::lock_guard<std::mutex> const hold(drawn_lock);
    drawn.merge(mine);
    return x_M;
}

TEST(ParRunThreads, AllocateDrawAndOpenFilesAtOnce)
{
    TemporaryFolder const folder;
    folder_name = folder.path();
    std::int64_t const outstanding = arrlib::pool.outstanding();
    Reports const reports;
    for (int k = 0; k < threads; ++k)
        par_run(work);
    par_sync();
    EXPECT_EQ(reports.all(), Texts{});
    EXPECT_EQ(right, threads * rounds);
    EXPECT_EQ(arrlib::pool.outstanding(), outstanding);
    EXPECT_EQ(fopen(TM("all")).size(), 0);
    EXPECT_EQ(drawn.size(), 100u * threads * rounds);
    EXPECT_EQ(std::set<double>(drawn.begin(), drawn.end()).size(), drawn.size());
    nx_set_MT(0);
}

} // namespace
