#include "io/shell.h"

#include "core/heap_array.h"
#include "io/fid_stream.h"
#include "io/text_argument.h"

#include <memory>

using namespace arrlib;

namespace {

constexpr std::size_t block_bytes = 65536;
constexpr char not_a_string_dos[] = "dos: argument not a string";
constexpr char not_a_string_system[] = "system: argument not a string";

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
// Closed at the end of the block.
using Stream = std::unique_ptr<std::FILE, CloseStream>;

struct FinishCommand {
    void operator()(std::FILE* output) const { platform::finish_command(output); }
};
using CommandOutput = std::unique_ptr<std::FILE, FinishCommand>;

M<double> folder_work(M<double> const& name, bool (*work)(char const* path), char const* problem)
{
    FileName const path(name);
    if (!work(path))
        error(problem, path);
    return x_M;
}

// The whole of a text as a C string, of any length; false when its memory could not be had.
HeapArray<char> command_text(M<double> const& command)
{
    HeapArray<char> text(static_cast<std::size_t>(command.size()) + 1);
    if (text)
        Mstr(command, text.data(), command.size());
    return text;
}

M<double> run(M<double> const& command, char const* not_a_string)
{
    if (!command.isstr()) {
        error(not_a_string);
        return x_M;
    }
    HeapArray<char> const text = command_text(command);
    if (!text)
        return x_M;
    return static_cast<double>(platform::run_command(text.data()));
}

M<double> run(M<double> const& command, char const* not_a_string, Mr<double> output)
{
    if (!command.isstr()) {
        error(not_a_string);
        return x_M;
    }
    HeapArray<char> const text = command_text(command);
    HeapArray<char> written(block_bytes);
    if (!text || !written)
        return x_M;
    CommandOutput stream(platform::start_command(text.data()));
    if (!stream)
        return -1.0;
    std::size_t length = 0;
    while (std::size_t const got = std::fread(written.data() + length, 1, written.size() - length, stream.get())) {
        length += got;
        if (!written.grow(length + 1))
            return x_M;
    }
    int const status = platform::finish_command(stream.release());
    output = text_value(written.data(), length);
    return static_cast<double>(status);
}

// False when either file fails on the way.
bool copy_stream(std::FILE* from, std::FILE* to, HeapArray<char> const& block)
{
    while (std::size_t const got = std::fread(block.data(), 1, block.size(), from))
        if (std::fwrite(block.data(), 1, got, to) != got)
            return false;
    return !std::ferror(from);
}

} // namespace

M<double> mkdir(M<double> const& name)
{
    return folder_work(name, platform::make_folder, "Could not make directory %s");
}

M<double> rmdir(M<double> const& name)
{
    return folder_work(name, platform::remove_folder, "Could not remove directory %s");
}

M<double> cd(M<double> const& name)
{
    return folder_work(name, platform::change_folder, "Could not change directory to %s");
}

M<double> cd()
{
    HeapArray<char> const path(block_bytes);
    if (!path)
        return x_M;
    return TM(platform::working_folder(path.data(), path.size()) ? path.data() : "");
}

M<double> chdir(M<double> const& name)
{
    return cd(name);
}

M<double> chdir()
{
    return cd();
}

M<double> deleteM(M<double> const& name)
{
    static_cast<void>(platform::remove_file(FileName(name)));
    return x_M;
}

M<double> copyfile(M<double> const& from, M<double> const& to)
{
    FileName const source(from), target(to);
    HeapArray<char> const block(block_bytes);
    if (!block)
        return x_M;
    Stream const reading(platform::open_stream(source, "rb"));
    if (!reading) {
        error("copyfile:Could not read %s", source);
        return x_M;
    }
    Stream writing(platform::is_same_file(source, target) ? nullptr : platform::open_stream(target, "wb"));
    if (!writing) {
        error("copyfile:Could not write %s", target);
        return x_M;
    }
    bool const copied = copy_stream(reading.get(), writing.get(), block);
    bool const closed = std::fclose(writing.release()) == 0;
    if (!copied || !closed)
        error("copyfile:Failed on copy");
    return x_M;
}

M<double> type(M<double> const& name)
{
    if (!name.isstr()) {
        error("type: argument not a string");
        return x_M;
    }
    FileName const path(name);
    HeapArray<char> const block(block_bytes);
    if (!block)
        return x_M;
    Stream const file(platform::open_stream(path, "rt"));
    if (!file) {
        warning(messages::could_not_read, path);
        return 1.0;
    }
    while (std::size_t const got = std::fread(block.data(), 1, block.size(), file.get()))
        print_bytes(block.data(), got);
    return 0.0;
}

M<double> dos(M<double> const& command)
{
    return run(command, not_a_string_dos);
}

M<double> dos(M<double> const& command, i_o_t, Mr<double> output)
{
    return run(command, not_a_string_dos, output);
}

M<double> unixM(M<double> const& command)
{
    return run(command, not_a_string_dos);
}

M<double> unixM(M<double> const& command, i_o_t, Mr<double> output)
{
    return run(command, not_a_string_dos, output);
}

M<double> system(M<double> const& command)
{
    return run(command, not_a_string_system);
}

M<double> system(M<double> const& command, i_o_t, Mr<double> output)
{
    return run(command, not_a_string_system, output);
}

M<double> filesep()
{
    return TM(platform::file_separator);
}

M<double> pathsep()
{
    return TM(platform::path_separator);
}
