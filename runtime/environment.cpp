#include "runtime/environment.h"

#include "core/text.h"
#include "platform/platform.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/path.h"

#include <cstring>
#include <initializer_list>

using namespace arrlib;

namespace {

constexpr int name_limit = 2048;
constexpr char extension[] = ".m";
constexpr double most_elements_of_a_value = 268435439;

bool found(char* name, std::size_t length)
{
    if (platform::is_file(name))
        return true;
    char in_path[2 * name_limit];
    if (search_path.find_file(name, in_path, sizeof in_path))
        return true;
    std::memcpy(name + length, extension, sizeof extension);
    return platform::is_file(name);
}

} // namespace

M<double> exist(M<double> const& name)
{
    if (!name.isstr()) {
        error("exist: argument is not string");
        return x_M;
    }
    char text[name_limit + sizeof extension];
    auto const length = static_cast<std::size_t>(Mstr(name, text, name_limit));
    return length > 0 && found(text, length) ? 2.0 : 0.0;
}

M<double> computer()
{
    return TM("PC KORVEX");
}

M<double> computer(i_o_t, Mr<double> kind)
{
    kind = computer();
    return computer();
}

M<double> computer(i_o_t, Mr<double> kind, Mr<double> most_elements)
{
    most_elements = most_elements_of_a_value;
    return computer(i_o, kind);
}

M<double> version()
{
    return TM("TELOSA");
}

M<double> version(i_o_t, Mr<double> name)
{
    name = version();
    return version();
}

M<double> version(i_o_t, Mr<double> name, Mr<double> date)
{
    date = TM("Dec 18 1998");
    return version(i_o, name);
}

M<double> nargchk(M<double> const& low, M<double> const& high, M<double> const& n)
{
    for (M<double> const* argument : {&low, &high, &n})
        if (argument->size() != 1) {
            error("nargchk: argument must be scalar");
            return x_M;
        }
    char const* problem = "";
    if (n[1] < low[1])
        problem = "too few input arguments";
    if (n[1] > high[1])
        problem = "too many input arguments";
    return TM(problem);
}

M<double> clear()
{
    return x_M;
}

M<double> clear(M<double> const&)
{
    return x_M;
}
