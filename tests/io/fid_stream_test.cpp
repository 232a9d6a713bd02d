// The standard streams, text that is read ahead, and files without positions.
#include "io/fid_stream.h"
#include "support/file_values.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>

#include <thread>
#endif

using namespace arrlib;
using namespace capture;
using namespace file_values;

namespace {

using FidStream = FilesTest;

TEST_F(FidStream, StandardStreams)
{
    std::string streams;
    for (M<double> const& fid : {stdinM(), stdoutM(), stderrM()}) {
        M<double> mode, format;
        streams += shown(fopen(fid, i_o, mode, format));
        streams += shown(mode);
    }
    EXPECT_EQ(streams, "'\"stdin\"''r''\"stdout\"''w''\"stderr\"''a'");
    M<double> out("out", 1, 1);
    out.r(1) = 1;
    Reports const reports;
    EXPECT_EQ(fclose(out).size(), 0);
    EXPECT_EQ(reports.all(), Texts{"fclose: can not close stdin/stdout/stderr, fid is out"});
    EXPECT_EQ(shown(fclose(TM(""))), "1x1: 0");
    Printed const printed;
    EXPECT_EQ(shown(fwrite(out, TM("to the hook\n"))), "1x1: 12");
    EXPECT_EQ(shown(fwrite(out, text(std::string(3000, 'x')))), "1x1: 3000");
    EXPECT_EQ(shown(fflush(out)), "1x1: 0");
    EXPECT_EQ(printed.text(), "to the hook\n" + std::string(3000, 'x'));
}

// A reader of text takes blocks; what it leaves is there for the next one.
TEST_F(FidStream, TextThatIsLeftIsReadNext)
{
    std::string const characters(70000, 'x');
    for (char const* mode : {"r", "rt"})
        for (std::size_t const taken : {0u, 1u, 127u, 128u, 1000u, 69999u, 70000u}) {
            M<double> const fid = open(characters + "y", mode);
            std::size_t left = taken;
            EXPECT_TRUE(read_fid(fid, &left, [](void* context, TextSource& source) {
                for (std::size_t& still = *static_cast<std::size_t*>(context); still > 0 && source.more(); --still)
                    EXPECT_EQ(*source.at++, 'x');
            }));
            EXPECT_EQ(ftell(fid)[1], static_cast<double>(taken));
            EXPECT_EQ(feof(fid)[1], 0);
            EXPECT_EQ(fgets(fid).size(), static_cast<int>(characters.size() + 1 - taken));
            fclose(fid);
        }
    TextSink sink;
    M<double> const fid = open("", "w");
    EXPECT_TRUE(sink_of_fid(fid, sink));
    EXPECT_TRUE(sink.write(sink.to, "abc", 3));
    fclose(fid);
    EXPECT_EQ(content(), "abc");
    Reports const reports;
    EXPECT_FALSE(sink_of_fid(fid, sink));
    EXPECT_FALSE(read_fid(fid, nullptr, [](void*, TextSource&) { FAIL(); }));
    EXPECT_EQ(reports.all(), (Texts{"Fid not opened.", "Fid not opened."}));
}

TEST_F(FidStream, ConsoleLinesComeFromTheInputHook)
{
    static int asked;
    asked = 0;
    nx_set_input_handler([](char* line, int) {
        char const* const lines[] = {"first\n", "no end", "34\n"};
        if (asked < 3)
            std::snprintf(line, 64, "%s", lines[asked]);
        ++asked;
    });
    M<double> const in = stdinM();
    EXPECT_EQ(shown(fgets(in, 3.0)), "'fir'");
    EXPECT_EQ(shown(fgets(in)), "'st\n'");
    EXPECT_EQ(shown(fgetl(in)), "'no end'");
    EXPECT_EQ(shown(fgets(in, 1.0)), "'3'");
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(shown(fread(in, 2.0)), "2x1: 52 10");
    EXPECT_EQ(feof(in)[1], 0);
    EXPECT_EQ(shown(fgetl(in)), "1x1: -1");
    EXPECT_EQ(feof(in)[1], 1);
    ferror(in, TM("clear"));
    EXPECT_EQ(feof(in)[1], 0);
    nx_set_input_handler(nullptr);
}

#if !defined(_WIN32)

// Pipes and devices have neither sizes nor positions.
TEST_F(FidStream, StreamsWithoutPositions)
{
    std::string const path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string sent = "line\n";
    for (int k = 0; k < 5000; ++k)
        sent += std::string("\1\0x", 3);
    std::thread writer([&] { std::ofstream(path, std::ios::binary) << sent << sent << "tail"; });
    M<double> const fid = fopen(text(path));
    EXPECT_EQ(shown(fgetl(fid)), "'line'");
    EXPECT_EQ(ftell(fid)[1], -1);
    EXPECT_EQ(fseek(fid, 0.0, TM("bof"))[1], -1);
    EXPECT_EQ(fread(fid, 5000.0, TM("int16"), one_M).size(), 5000);
    EXPECT_EQ(shown(fgets(fid, 3.0)), "'lin'");
    EXPECT_EQ(shown(fread(fid, one_M, TM("uchar"), 66000.0)), "1x1: 101");
    EXPECT_EQ(fread(fid, Inf, TM("char")).size(), 0);
    writer.join();
    M<double> const zero = fopen(TM("/dev/zero"));
    EXPECT_EQ(shown(fread(zero, row({2, 2}), TM("double"))), "2x2: 0 0 0 0");
    EXPECT_EQ(fread(fopen(TM("/dev/null"))).size(), 0);
    EXPECT_GT(fread(fopen(TM("/proc/self/maps"))).size(), 0);
    if (geteuid() != 0) {
        chmod(folder.write("locked", "x").c_str(), 0);
        EXPECT_EQ(fopen(text(folder.path("locked")))[1], -1);
    }
}

#endif

} // namespace
