// Any bytes as a text file: loadascii reads a matrix or reports, and a matrix that was read is the
// same when it is written and read again.
#include "arrlib.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

bool reported = false;

bool same(double a, double b)
{
    return a == b || (a != a && b != b) || std::fabs(a - b) <= 1e-12 * std::fabs(a);
}

void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::string const name = std::string(std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp") + "/arrlib_fuzz_" + std::to_string(nx_set_MT(0));
    nx_set_error_handler([](char const*) { reported = true; });
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    check(file && std::fwrite(data, 1, size, file) == size && std::fclose(file) == 0);
    M<double> x, again;
    reported = false;
    loadascii(TM(name.c_str()), x);
    check(reported == (x.size() == 0));
    if (!reported) {
        saveascii(TM(name.c_str()), x);
        loadascii(TM(name.c_str()), again);
        check(!reported && again.rows() == x.rows() && again.cols() == x.cols());
        for (int k = 1; k <= x.size(); ++k)
            check(same(x[k], again[k]));
    }
    std::remove(name.c_str());
    return 0;
}
