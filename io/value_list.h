// Built-ins that take any number of values.
#ifndef ARRLIB_IO_VALUE_LIST_H
#define ARRLIB_IO_VALUE_LIST_H

#include "core/subscript.h"

namespace arrlib {

using ListBuiltin = M<double> (*)(M<double> const& filename, M<double> const* const* values, int count);

// Whatever the argument was: what it converts to lives as long as the call.
template <class> using AnyValue = M<double> const&;

template <class... Values> M<double> call_with_list(ListBuiltin builtin, M<double> const& filename, AnyValue<Values>... values)
{
    M<double> const* const list[] = {&values...};
    return builtin(filename, list, static_cast<int>(sizeof...(values)));
}

} // namespace arrlib

#endif
