#include "core/text.h"

#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <algorithm>
#include <climits>
#include <cstring>

using namespace arrlib;

M<double> TM(char const* text)
{
    std::size_t const length = text ? std::strlen(text) : 0;
    M<double> made(0, length ? 1 : 0, length > INT_MAX ? INT_MAX : static_cast<int>(length));
    if (text == l_Mp)
        made.setname(text);
    made.setstr(1);
    std::transform(text, text + made.size(), made.addr(), [](char c) { return static_cast<double>(static_cast<signed char>(c)); });
    made.clear_scalar_variable();
    return made;
}

int Mstr(M<double> const& value, char* buffer, int limit)
{
    M<double> full_value = value;
    if (value.issparse())
        full_value.getfull();
    // Still sparse when its full form could not be had, which has been reported.
    int const length = full_value.issparse() ? 0 : full_value.size();
    int const copied = std::min(length, limit);
    std::transform(full_value.addr(), full_value.addr() + copied, buffer, character_code);
    buffer[copied] = '\0';
    if (copied < length) {
        warning(messages::buffer_too_small);
        nx_print(buffer);
        nx_print("...\n");
    }
    return copied;
}
