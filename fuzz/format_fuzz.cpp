// Any bytes as a format, and any numbers and texts printed with it: nothing is written or read that is
// not there, no character is a zero, and no piece is longer than it may be. The format's own text is
// printed too, and the format taken as one to scan the result with.
#include "arrlib.h"
#include "io/format.h"
#include "io/print.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

M<double> bytes_as_text(std::uint8_t const* data, int size)
{
    M<double> text(0, 1, size);
    for (int k = 1; k <= size; ++k)
        text.r(k) = static_cast<signed char>(data[k - 1]);
    text.setstr(1);
    return text;
}

M<double> bytes_as_numbers(std::uint8_t const* data, int count)
{
    M<double> numbers(0, 1, count);
    std::memcpy(static_cast<void*>(numbers.addr()), data, sizeof(double) * static_cast<std::size_t>(count));
    return numbers;
}

} // namespace

// The first byte says how many bytes are the format, the second how the rest is cut into arguments.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    nx_set_error_handler([](char const*) {});
    nx_set_warning_handler([](char const*) {});
    nx_set_print_handler([](char const* text) { check(std::strlen(text) < 2 * arrlib::piece_size); });
    if (size < 2)
        return 0;
    std::size_t const format_size = std::min<std::size_t>(data[0] == 255 ? 2100 : data[0], size - 2);
    std::uint8_t const* const rest = data + 2 + format_size;
    std::size_t const left = size - 2 - format_size;
    // Not many of them: one may become a piece of its full length.
    auto const text_size = std::min<std::size_t>(data[1] % 32, left);
    auto const number_count = std::min<std::size_t>((left - text_size) / sizeof(double), 6);
    M<double> const format = bytes_as_text(data + 2, static_cast<int>(format_size));
    M<double> const text = bytes_as_text(rest, static_cast<int>(text_size));
    M<double> const numbers = bytes_as_numbers(rest + text_size, static_cast<int>(number_count));
    M<double> count;
    M<M<double>> arguments = (CL(numbers), text, numbers);
    M<double> const made = sprintf(format, arguments, i_o, count);
    check(made.isstr() && count[1] == made.size());
    for (int k = 1; k <= made.size(); ++k)
        check(made[k] != 0);
    printf(format, arguments, i_o, count);
    check(count[1] == made.size());
    printf(format);
    sprintf(format);
    sscanf(made, format, M<double>(1000));
    return 0;
}
