// Bytes on their way into a data file.
#ifndef ARRLIB_IO_DATA_OUTPUT_H
#define ARRLIB_IO_DATA_OUTPUT_H

#include "core/matrix.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace arrlib {

// Collects small pieces. Every part of a file whose failure has a message of its own ends with flush().
class DataOutput {
public:
    explicit DataOutput(platform::FileWriter& file) : file_(file) {}

    bool put(void const* bytes, std::size_t count)
    {
        if (count == 0)
            return true;
        if (count > sizeof buffer_ - used_ && !flush())
            return false;
        if (count > sizeof buffer_)
            return file_.write(bytes, count);
        std::memcpy(buffer_ + used_, bytes, count);
        used_ += count;
        return true;
    }
    template <class T> bool put_value(T value) { return put(&value, sizeof value); }
    bool put_numbers(double const* numbers, int count) { return put(numbers, static_cast<std::size_t>(count) * sizeof(double)); }
    bool put_zeros(std::size_t count)
    {
        constexpr char zeros[8] = {};
        return put(zeros, count);
    }
    bool flush() { return file_.write(buffer_, std::exchange(used_, 0)); }

private:
    platform::FileWriter& file_;
    std::size_t used_ = 0;
    unsigned char buffer_[16384];
};

// Zero-based rows and columns of the entries of a sparse value, as numbers of the type T and raised by
// `base`.
template <class T> bool put_entry_rows(DataOutput& file, M<double> const& matrix, int base)
{
    int const* const index = matrix.getindex();
    bool done = true;
    for (int k = 0, rows = matrix.rows(); done && k < matrix.getnnz(); ++k)
        done = file.put_value(static_cast<T>(index[k] % rows + base));
    return done;
}
template <class T> bool put_entry_columns(DataOutput& file, M<double> const& matrix, int base)
{
    int const* const index = matrix.getindex();
    bool done = true;
    for (int k = 0, rows = matrix.rows(); done && k < matrix.getnnz(); ++k)
        done = file.put_value(static_cast<T>(index[k] / rows + base));
    return done;
}

} // namespace arrlib

#endif
