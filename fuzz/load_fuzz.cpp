// Any bytes as a data file: load gives sound values or reports, asks for no more memory than the file
// justifies, and what it gave is the same when it is saved and loaded again.
#include "io/data_file.h"
#include "core/access.h"
#include "core/text.h"
#include "platform/platform.h"
#include "runtime/errors.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool reported = false;
std::size_t most_memory = 0;

void check(bool holds)
{
    if (!holds)
        std::abort();
}

void* checked_allocate(std::size_t size)
{
    check(size <= most_memory);
    return std::malloc(size);
}

// Whether a character came back; those that are no 16-bit codes need not.
bool same_character(double saved, double loaded)
{
    bool const is_code = saved >= 0 && saved < 65536;
    return !is_code || loaded == static_cast<double>(static_cast<int>(saved));
}

bool same(double const* a, double const* b, int count, bool text)
{
    if (!a || count == 0)
        return true;
    return text ? std::equal(a, a + count, b, same_character) : std::memcmp(a, b, static_cast<std::size_t>(count) * sizeof(double)) == 0;
}

void check_sound(M<double> const& value)
{
    int const* const d = value.getdims();
    arrlib::Dims const shape(value.getndims(), d);
    check(shape.count == value.size() && value.getnnz() >= 0 && (value.issparse() || value.getnnz() == value.size()));
    for (int k = 0; value.issparse() && k < value.getnnz(); ++k)
        check(value.getindex()[k] > (k ? value.getindex()[k - 1] : -1) && value.getindex()[k] < value.size());
}

void check_saved(M<double> const& value, M<double> const& file)
{
    save(file, value);
    M<double> again;
    load(file, again);
    int const stored = value.getnnz();
    bool const text = value.isstr() && !value.isc() && !value.issparse();
    check(!reported && again.size() == value.size() && std::equal(value.getdims(), value.getdims() + 4, again.getdims()));
    check(again.getnnz() == stored && again.issparse() == value.issparse() && again.isc() == value.isc() && again.isstr() == text && again.islogical() == value.islogical());
    check(same(value.addr(), again.addr(), stored, text) && same(value.addi(), again.addi(), stored, false));
    check(!value.issparse() || std::equal(value.getindex(), value.getindex() + stored, again.getindex()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::string const folder = std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp";
    static std::string const name = folder + "/arrlib_load_fuzz_" + std::to_string(arrlib::platform::process_id());
    static M<double> const file = TM(name.c_str());
    nx_set_error_handler([](char const*) { reported = true; });
    nx_set_warning_handler([](char const*) {});
    std::FILE* const stream = std::fopen(name.c_str(), "wb");
    check(stream && std::fwrite(data, 1, size, stream) == size && std::fclose(stream) == 0);
    M<double> values[4] = {7.0, 7.0, 7.0, 7.0};
    // Bytes become doubles, compressed ones up to 1032 of them; work memory comes on top.
    most_memory = (std::size_t{1} << 19) + size * 8 * 1032;
    arrlib::platform::set_heap(checked_allocate, std::free);
    reported = false;
    load(file, values[0], values[1], values[2], values[3]);
    arrlib::platform::set_heap(nullptr, nullptr);
    for (M<double> const& value : values)
        check_sound(value);
    reported = false;
    for (M<double> const& value : values)
        if (value.size() < 100000)
            check_saved(value, file);
    std::remove(name.c_str());
    return 0;
}
