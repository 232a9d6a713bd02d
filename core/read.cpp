// Reading through subscript proxies: the fast two-dimensional cases.
#include "core/access.h"
#include "core/subscript.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"

using namespace arrlib;

void arrlib::proxy_misused(char const* message)
{
    error(message);
    end_process();
}
