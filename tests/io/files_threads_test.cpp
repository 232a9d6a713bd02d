// Files in several threads at once: every one gets fids of its own.
#include "core/text.h"
#include "io/files.h"
#include "runtime/parallel.h"
#include "support/capture.h"

#include <thread>

using namespace capture;

namespace {

TEST(FilesThreads, EachHasItsOwnFids)
{
    TemporaryFolder const folder;
    nx_set_MT(1);
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([path = folder.path(std::to_string(number)), number] {
            M<double> const name = TM(path.c_str()), mode = TM("w+"), value = number;
            for (int round = 0; round < 100; ++round) {
                M<double> const fid = fopen(name, mode), other = fopen(name);
                EXPECT_EQ(fwrite(fid, value)[1], 1);
                EXPECT_EQ(fflush(fid)[1], 0);
                EXPECT_EQ(fread(other)[1], number);
                EXPECT_EQ(fclose(fid)[1] + fclose(other)[1], 0);
            }
        });
    for (std::thread& one : threads)
        one.join();
    nx_set_MT(0);
    EXPECT_EQ(fopen(TM("all")).size(), 0);
}

} // namespace
