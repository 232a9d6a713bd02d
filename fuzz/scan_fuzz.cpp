// Any bytes as a format and a text to scan with it: a text that comes in blocks gives what it gives in
// one, sizes are kept, and single conversions of numbers agree with those of the C library.
#include "arrlib.h"
#include "io/scan.h"
#include "io/sprintf.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

struct Blocks : arrlib::TextSource {
    Blocks(std::string const& text, std::size_t size) : text_(text), size_(size) {}
    std::size_t left() const { return text_.size() - next_ + static_cast<std::size_t>(end - at); }

private:
    bool fill() override
    {
        std::size_t const count = std::min(size_, text_.size() - next_);
        block_.assign(text_, next_, count);
        block_.shrink_to_fit();
        next_ += count;
        at = block_.data();
        end = at + count;
        return count > 0;
    }

    std::string const& text_;
    std::size_t size_, next_ = 0;
    std::string block_;
};

bool same(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

void compare_blocks(std::string const& format_text, std::string const& text, std::size_t block)
{
    arrlib::ParsedFormat whole_format(format_text.c_str()), block_format(format_text.c_str());
    Blocks whole(text, text.size() + 1), blocks(text, block);
    arrlib::Scanned one, other;
    arrlib::scan(whole_format, whole, arrlib::ScanFrom::stream, 1e6, one);
    arrlib::scan(block_format, blocks, arrlib::ScanFrom::stream, 1e6, other);
    check(one.count == other.count && whole.left() == blocks.left());
    for (std::size_t k = 0; k < one.count; ++k)
        check(same(one.values[k], other.values[k]));
}

void compare_number(std::string const& text)
{
    double expected = 0;
    int end = -1;
    bool const any = std::sscanf(text.c_str(), "%lf%n", &expected, &end) == 1;
    arrlib::ParsedFormat format("%g");
    Blocks source(text, text.size() + 1);
    arrlib::Scanned scanned;
    arrlib::scan(format, source, arrlib::ScanFrom::stream, 1, scanned);
    check(any == (scanned.count == 1));
    if (any)
        check(same(expected, scanned.values[0]) && source.left() == text.size() - static_cast<std::size_t>(end));
}

} // namespace

// The first byte says how many bytes are the format, the second in which blocks the rest is read.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    nx_set_error_handler([](char const*) {});
    nx_set_warning_handler([](char const*) {});
    if (size < 2)
        return 0;
    std::size_t const format_size = std::min<std::size_t>(data[0] % 64, size - 2);
    std::string const format(reinterpret_cast<char const*>(data) + 2, format_size);
    std::string const text(reinterpret_cast<char const*>(data) + 2 + format_size, size - 2 - format_size);
    compare_blocks(format, text, data[1] % 32 + 1u);
    compare_number(text.c_str());
    M<double> count, dims(0, 1, 2);
    dims.r(1) = data[1] % 5;
    dims.r(2) = data[0] % 9;
    M<double> const x = sscanf(TM(text.c_str()), TM(format.c_str()), dims, i_o, count);
    check(count[1] <= dims[1] * dims[2] && x.size() >= count[1] && (x.size() == 0 || x.rows() == dims[1]));
    return 0;
}
