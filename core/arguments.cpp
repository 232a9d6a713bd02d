#include "core/arguments.h"

#include "runtime/constants.h"
#include "runtime/errors.h"

namespace arrlib {

namespace {

SizesRead refuse(char const* message, char const* builtin)
{
    error(message, builtin);
    return SizesRead::reported;
}

bool is_omitted(M<double> const& argument)
{
    return argument.size() == 0 && argument.issamename(nop_M.getname());
}

} // namespace

SizesRead read_sizes(char const* builtin, std::initializer_list<M<double> const*> arguments, SizeList& sizes)
{
    int given = 0;
    bool scalars = true;
    for (M<double> const* const argument : arguments) {
        if (given > 0 && is_omitted(*argument))
            continue;
        if (argument->size() == 0)
            return SizesRead::empty;
        scalars = scalars && argument->size() == 1;
        if (given == 0)
            sizes = SizeList(*argument);
        else if (given < max_dims)
            sizes.size[given] = integer_argument(*argument);
        ++given;
    }
    if (given == 1 && scalars)
        sizes.size[1] = sizes.size[0];
    if (given > 1) {
        if (!scalars)
            return refuse("%s: expecting scalar argument", builtin);
        sizes.count = given;
    }
    return sizes.fits() ? SizesRead::done : refuse("%s: too many dimensions", builtin);
}

} // namespace arrlib
