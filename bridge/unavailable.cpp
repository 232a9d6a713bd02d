// The functions of the array API that modules can be linked with and cannot use.
#include "core/matrix.h"

#include "bridge/mx.h"
#include "runtime/errors.h"

namespace {

template <class Result> Result not_available(char const* function)
{
    error("%s is not available", function);
    return Result();
}

} // namespace

#define ARRLIB_MX_UNAVAILABLE(type, name, parameters) \
    type name parameters { return not_available<type>(#name); }
#include "bridge/mx_unavailable.h"
