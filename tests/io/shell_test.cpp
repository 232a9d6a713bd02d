// Folders, whole files and commands.
#include "io/shell.h"

#include "io/fid_stream.h"
#include "support/file_values.h"

#include <functional>

using namespace arrlib;
using namespace capture;
using namespace file_values;

namespace {

class Shell : public testing::Test {
protected:
    ~Shell() override { std::filesystem::current_path(before_); }

    TemporaryFolder folder;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(Shell, Folders)
{
    Reports const reports;
    std::string const made = folder.path("a folder; with $HOME 'quotes'");
    EXPECT_EQ(mkdir(text(made)).size(), 0);
    EXPECT_TRUE(std::filesystem::is_directory(made));
    EXPECT_EQ(cd(text(made)).size(), 0);
    EXPECT_EQ(std::filesystem::path(string_of(cd())), std::filesystem::canonical(made));
    EXPECT_EQ(chdir(TM("..")).size(), 0);
    EXPECT_EQ(std::filesystem::path(string_of(chdir())), std::filesystem::canonical(folder.path()));
    EXPECT_EQ(cd().isstr(), 1);
    EXPECT_EQ(rmdir(text(made)).size(), 0);
    EXPECT_FALSE(std::filesystem::exists(made));
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(string_of(filesep()) + string_of(pathsep()), std::filesystem::path::preferred_separator == '/' ? "/:" : "\\;");
}

// Whatever fails leaves what was there.
TEST_F(Shell, FailuresAreReported)
{
    std::string const file = folder.write("file", "precious"), missing = folder.path("no/such");
    std::string const inside = folder.path("folder");
    std::filesystem::create_directory(inside);
    std::ofstream(inside + "/kept") << "x";
    M<double> const number = 5.0;
    M<double> output;
    struct {
        std::function<void()> call;
        std::string message;
    } const cases[] = {
        {[&] { mkdir(text(file)); }, "Could not make directory " + file},
        {[&] { mkdir(text(missing)); }, "Could not make directory " + missing},
        {[&] { mkdir(TM("")); }, "Could not make directory "},
        {[&] { rmdir(text(file)); }, "Could not remove directory " + file},
        {[&] { rmdir(text(inside)); }, "Could not remove directory " + inside},
        {[&] { cd(text(file)); }, "Could not change directory to " + file},
        {[&] { chdir(text(missing)); }, "Could not change directory to " + missing},
        {[&] { dos(number); }, "dos: argument not a string"},
        {[&] { dos(number, i_o, output); }, "dos: argument not a string"},
        {[&] { unixM(number); }, "dos: argument not a string"},
        {[&] { unixM(number, i_o, output); }, "dos: argument not a string"},
        {[&] { system(number); }, "system: argument not a string"},
        {[&] { system(number, i_o, output); }, "system: argument not a string"},
        {[&] { type(number); }, "type: argument not a string"},
        {[&] { copyfile(text(missing), text(file)); }, "copyfile:Could not read " + missing},
        {[&] { copyfile(text(inside), text(file)); }, "copyfile:Could not read " + inside},
        {[&] { copyfile(text(file), text(missing)); }, "copyfile:Could not write " + missing},
        {[&] { copyfile(text(file), text(inside)); }, "copyfile:Could not write " + inside},
        {[&] { copyfile(text(file), text(folder.path() + "/./file")); }, "copyfile:Could not write " + folder.path() + "/./file"},
#if !defined(_WIN32)
        {[&] { copyfile(text(file), TM("/dev/full")); }, "copyfile:Failed on copy"},
#endif
    };
    for (auto const& one : cases) {
        {
            Reports const reports;
            one.call();
            EXPECT_EQ(reports.all(), Texts{one.message});
        }
        EXPECT_EQ(thrown_by(one.call), "Error: " + one.message + "\n\n");
        EXPECT_EQ(folder.read("file"), "precious");
        EXPECT_EQ(folder.files(), 2);
    }
}

TEST_F(Shell, WholeFiles)
{
    std::string const content = std::string("lines\n\377\0zero\n", 13) + std::string(200000, 'x');
    std::string const from = folder.write("from", content), to = folder.write("to", "old and longer");
    EXPECT_EQ(copyfile(text(from), text(to)).size(), 0);
    EXPECT_EQ(folder.read("to"), content);
    Reports const reports;
    Warnings const warnings;
    {
        Printed const printed;
        EXPECT_EQ(type(text(to))[1], 0);
        // The zero byte is not for the hook.
        EXPECT_EQ(printed.text(), std::string(content).erase(7, 1));
    }
    EXPECT_EQ(deleteM(text(from)).size() + deleteM(text(from)).size() + deleteM(text(folder.path())).size(), 0);
    EXPECT_EQ(folder.files(), 1);
    EXPECT_TRUE(warnings.all().empty());
    // No shell reads the name.
    EXPECT_EQ(type(text(from + "; rm " + to))[1], 1);
    EXPECT_EQ(warnings.all(), Texts{"could not read " + from + "; rm " + to});
    EXPECT_EQ(folder.files(), 1);
    EXPECT_TRUE(reports.all().empty());
}

#if !defined(_WIN32)

TEST_F(Shell, Commands)
{
    EXPECT_EQ(system(TM("exit 7"))[1], 7);
    EXPECT_EQ(dos(TM("true"))[1], 0);
    EXPECT_EQ(unixM(TM("kill -9 $$"))[1], 128 + 9);
    EXPECT_EQ(system(TM("no_such_command 2>/dev/null"))[1], 127);
    M<double> output;
    EXPECT_EQ(system(TM("echo out; echo error >&2; exit 3"), i_o, output)[1], 3);
    EXPECT_EQ(string_of(output), "out\n");
    EXPECT_EQ(output.isstr(), 1);
    EXPECT_EQ(unixM(TM("head -c 200000 /dev/zero"), i_o, output)[1], 0);
    EXPECT_EQ(output.size(), 200000);
    EXPECT_EQ(dos(TM("true"), i_o, output)[1], 0);
    EXPECT_EQ(output.size(), 0);
    // A command of any length, in a folder that the program has changed to.
    cd(text(folder.path()));
    system(text("echo " + std::string(5000, 'x') + " > made"));
    EXPECT_EQ(folder.read("made").size(), 5001u);
    M<double> const quiet = TM("true"), loud = TM("echo words");
    with_every_allocation_refused([&] { system(quiet); });
    with_every_allocation_refused([&] {
        M<double> words;
        system(loud, i_o, words);
    });
}

TEST_F(Shell, OutputComesInOrder)
{
    testing::internal::CaptureStdout();
    std::fputs("before\n", stdout);
    system(TM("echo meanwhile"));
    print_bytes("after\0\n", 7);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string("before\nmeanwhile\nafter\0\n", 24));
}

TEST_F(Shell, CommandsInheritNoFiles)
{
    std::FILE* const file = platform::open_stream(folder.write("secret", "x").c_str(), "rb");
    M<double> output;
    system(TM("ls -l /proc/self/fd"), i_o, output);
    EXPECT_EQ(string_of(output).find("secret"), std::string::npos);
    std::fclose(file);
}

#endif

} // namespace
