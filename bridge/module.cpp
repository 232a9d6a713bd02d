#include "bridge/module.h"

#include "bridge/module_exit.h"
#include "platform/platform.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/text_buffer.h"

#include <algorithm>

using namespace arrlib;

namespace {

constexpr char entry_point[] = "mexFunction";
constexpr char file_suffix[] = "_korvex";
using EntryPoint = void (*)(int nlhs, M<double>** plhs, int nrhs, M<double>** prhs);

// Thrown by leave_module and caught by call_mex; modules see it as a foreign exception.
struct ModuleLeft {};

thread_local int running_modules = 0;

// A module running on this thread, for the length of a block.
class Running {
public:
    Running() { ++running_modules; }
    ~Running() { --running_modules; }
    Running(Running const&) = delete;
    Running& operator=(Running const&) = delete;
};

// How many arguments a number says: truncated, none for NaN and below 1.
int argument_count(double number)
{
    return number >= 1 ? static_cast<int>(std::min(number, 2147483647.0)) : 0;
}

// The output slots of a call. What is in them is ended with this object unless it is kept.
class Outputs {
public:
    static constexpr int slots = 64;

    Outputs(M<double>** slot, int inputs, M<double>* const* input) : slot_(slot ? slot : own_), inputs_(inputs), input_(input)
    {
        std::fill_n(slot_, slots, nullptr);
    }
    ~Outputs()
    {
        if (!kept_ || slot_ == own_)
            clear();
    }
    Outputs(Outputs const&) = delete;
    Outputs& operator=(Outputs const&) = delete;

    M<double>** slot() const { return slot_; }
    void keep() { kept_ = true; }

    // Ends what the module has made. An input that it has put here is its caller's, and two slots may
    // hold one matrix.
    void clear()
    {
        for (int k = 0; k < slots; ++k) {
            M<double>* const output = slot_[k];
            if (!output)
                continue;
            std::replace(slot_ + k, slot_ + slots, output, static_cast<M<double>*>(nullptr));
            if (std::find(input_, input_ + inputs_, output) == input_ + inputs_)
                delete output;
        }
    }
    // Puts empty matrices where the first `count` slots have none.
    void fill(int count) { std::for_each(slot_, slot_ + std::min(count, slots), [](M<double>*& slot) { fill(slot); }); }
    static void fill(M<double>*& slot)
    {
        if (!slot)
            slot = new M<double>;
    }

private:
    M<double>** slot_;
    int inputs_;
    M<double>* const* input_;
    bool kept_ = false;
    M<double>* own_[slots] = {};
};

// The module that holds a function, loaded and counted; null after a report.
platform::Module load_module_of(char const* name)
{
    char file[platform::module_endings][4096];
    char const* to_name = nullptr;
    for (int k = 0; k < platform::module_endings; ++k)
        if (!TextAppender(file[k], sizeof file[k], 0).text(name).text(file_suffix).text(platform::module_ending[k]).whole())
            file[k][0] = '\0';
    for (char const* candidate : file)
        if (platform::Module const module = platform::count_module(candidate))
            return module;
    for (char const* candidate : file) {
        bool there = false;
        if (platform::Module const module = platform::load_module(candidate, &there))
            return module;
        if (there && !to_name)
            to_name = candidate;
    }
    // A name that is too long for any file has no file's name.
    error("Could not load %s", to_name ? to_name : file[0][0] ? file[0] : name);
    return nullptr;
}

// Null after a report.
EntryPoint find_entry_point(char const* name)
{
    platform::Module const module = load_module_of(name);
    if (!module)
        return nullptr;
    void* const found = platform::find_in_module(module, entry_point);
    if (!found) {
        platform::unload_module(module);
        error("Could not find %s", entry_point);
    }
    return reinterpret_cast<EntryPoint>(found);
}

} // namespace

void arrlib::leave_module()
{
    if (running_modules > 0)
        throw ModuleLeft{};
    end_process();
}

void call_mex(char const* name, double nlhs, M<double>** plhs, double nrhs, M<double>** prhs)
{
    int const wanted = argument_count(nlhs), inputs = prhs ? argument_count(nrhs) : 0;
    Outputs outputs(plhs, inputs, prhs);
    EntryPoint const call = wanted <= Outputs::slots ? find_entry_point(name) : nullptr;
    if (wanted > Outputs::slots)
        error("call_mex: more than 64 output arguments when calling %s.", name);
    bool finished = false;
    if (call) {
        try {
            Running const running;
            call(wanted, outputs.slot(), inputs, prhs);
            finished = true;
        } catch (ModuleLeft const&) {
            outputs.clear();
        }
    }
    for (int k = 0; k < wanted && finished; ++k)
        if (!outputs.slot()[k]) {
            error("call_mex: not all output arguments were assigned when calling %s.", name);
            Outputs::fill(outputs.slot()[k]);
        }
    outputs.fill(wanted);
    outputs.keep();
}

void clear_mex(char const* filename)
{
    platform::Module const module = filename ? platform::count_module(filename) : nullptr;
    if (!module)
        return;
    platform::unload_module(module);
    platform::unload_module(module);
}
