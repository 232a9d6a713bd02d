#include "builtins/stubs.h"

#include "builtins/args.h"
#include "runtime/errors.h"

#include <initializer_list>

using namespace arrlib;

namespace {

M<double> without_outputs(std::initializer_list<Any> arguments)
{
    bool outputs = false;
    for (Any const& argument : arguments) {
        if (outputs)
            argument.output().clear();
        outputs = outputs || argument.separates();
    }
    return x_M;
}

M<double> stub(std::initializer_list<Any> arguments)
{
    error("Stub called.");
    return without_outputs(arguments);
}

M<double> no_structures(char const* name, std::initializer_list<Any> arguments)
{
    Arguments(name).report("structures are not supported");
    return without_outputs(arguments);
}

} // namespace

M<double> assignin(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> doc(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> find_system(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> get_param(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> getfield(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> getline(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> getpts(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> getrect(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> helpfun(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> helpwin(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> hthelp(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> htpp(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> light(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> lightangle(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> lighting(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> loadhtml(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> material(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> setfield(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> simset(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> system_dependent(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> uirestore(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> uisuspend(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }
M<double> web(Any a, Any b, Any c, Any d, Any e, Any f) { return stub({a, b, c, d, e, f}); }

M<double> structM(Any a, Any b, Any c, Any d, Any e, Any f) { return no_structures("struct", {a, b, c, d, e, f}); }
M<double> fieldnames(Any a, Any b, Any c, Any d, Any e, Any f) { return no_structures("fieldnames", {a, b, c, d, e, f}); }
M<double> rmfield(Any a, Any b, Any c, Any d, Any e, Any f) { return no_structures("rmfield", {a, b, c, d, e, f}); }
M<double> cell2struct(Any a, Any b, Any c, Any d, Any e, Any f) { return no_structures("cell2struct", {a, b, c, d, e, f}); }
M<double> struct2cell(Any a, Any b, Any c, Any d, Any e, Any f) { return no_structures("struct2cell", {a, b, c, d, e, f}); }
