#include "io/text_file.h"

#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "io/short_decimal.h"
#include "io/text_argument.h"
#include "io/text_blocks.h"
#include "runtime/constants.h"
#include "runtime/number_text.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

using namespace arrlib;

namespace {

constexpr int file_digits = 13;
constexpr std::size_t file_column = 23;
// What reading may end with besides a message: more lines than expected, and what has been reported.
constexpr char more_lines[] = "more lines", reported[] = "reported";
constexpr char not_rectangular[] = "loadascii: matrix in %s is not rectangular";

// The word at `at` as a number; its end, or null when it is not one.
char const* read_word(char const* at, char const* end, double* number)
{
    std::size_t const length = read_number(at, end, number);
    if (length > 0 && ends_word(at + length, end))
        return at + length;
    char const* word_end = at;
    while (!ends_word(word_end, end))
        ++word_end;
    return read_nonfinite(at, static_cast<std::size_t>(word_end - at), number) ? word_end : nullptr;
}

// Counts the lines that hold words, and the words of the first of them.
class ShapeCounter {
public:
    void take(char const* at, char const* end)
    {
        while (at != end) {
            if (rows_ > 1 && in_line_) {
                // Nothing but the end of the line is of interest.
                auto const* const line_end = static_cast<char const*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
                if (!line_end)
                    return;
                at = line_end;
            }
            if (*at == '\n') {
                in_line_ = in_word_ = false;
            } else if (is_blank(*at)) {
                in_word_ = false;
            } else {
                rows_ += !in_line_;
                cols_ += !in_word_ && rows_ == 1;
                in_line_ = in_word_ = true;
            }
            ++at;
        }
    }
    std::int64_t rows() const { return rows_; }
    std::int64_t cols() const { return cols_; }

private:
    std::int64_t rows_ = 0, cols_ = 0;
    bool in_line_ = false, in_word_ = false;
};

// Reads the words of a text as numbers, into columns when there are some.
class TableReader {
public:
    TableReader(std::int64_t rows, std::int64_t cols, double* to) : rows_(rows), cols_(cols), to_(to) {}

    // The message about what is wrong, or null.
    char const* take(char const* at, char const* end)
    {
        while ((at = skip_spaces(at, end)) != end) {
            double number = 0;
            std::size_t const length = read_short_decimal(at, end, &number);
            if (length > 0) {
                at += length;
            } else if (is_blank(*at)) {
                ++at;
                continue;
            } else if (*at == '\n') {
                if (col_ > 0 && col_ != cols_)
                    return not_rectangular;
                row_ += col_ > 0;
                col_ = 0;
                ++at;
                continue;
            } else if (!(at = read_word(at, end, &number))) {
                return messages::could_not_read;
            }
            if (row_ == rows_)
                return more_lines;
            if (to_ && col_ < cols_)
                to_[col_ * rows_ + row_] = number;
            ++col_;
        }
        return nullptr;
    }
    // The same on two threads, for long texts: the whole lines in the middle are halved.
    char const* take_shared(char const* at, char const* end)
    {
        char const *const first = std::find(at, end, '\n'), *const last = last_line_end(first, end);
        char const* const middle = last - first < least_shared || parallel_width() < 2 ? end : std::find(first + (last - first) / 2, last, '\n');
        if (middle >= last)
            return take(at, end);
        if (char const* const problem = take(at, first + 1))
            return problem;
        TableReader halves[] = {*this, *this};
        halves[1].row_ += lines_with_words(first + 1, middle + 1);
        char const *const begins[] = {first + 1, middle + 1, last + 1}, *problems[2] = {};
        parallel_for(2, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            for (; from < to; ++from) {
                // On the thread's own stack: it counts every number, and neighbours share a cache line.
                TableReader half = halves[from];
                problems[from] = half.take(begins[from], begins[from + 1]);
                halves[from] = half;
            }
        });
        // Whatever is wrong is found once more, in order.
        if (problems[0] || problems[1])
            return take(first + 1, end);
        *this = halves[1];
        return take(last + 1, end);
    }
    char const* finish()
    {
        constexpr char line_end[] = "\n";
        return take(line_end, line_end + 1);
    }
    std::int64_t rows() const { return row_; }

private:
    static constexpr std::ptrdiff_t least_shared = 32768;

    static char const* last_line_end(char const* first, char const* end)
    {
        while (end > first && end[-1] != '\n')
            --end;
        return end > first ? end - 1 : first;
    }
    static std::int64_t lines_with_words(char const* at, char const* end)
    {
        std::int64_t lines = 0;
        for (; at != end; ++at) {
            while (is_blank(*at))
                ++at;
            lines += *at != '\n';
            at = static_cast<char const*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        }
        return lines;
    }

    std::int64_t rows_, cols_, row_ = 0, col_ = 0;
    double* to_;
};

// Most numbers that a text may hold: each takes two bytes at least.
std::int64_t most_numbers(std::int64_t length)
{
    return length / 2 + 1;
}

// Lines of equal length make up a whole; otherwise a few are added to what the beginning promises.
std::int64_t expected_lines(std::int64_t length, ShapeCounter const& beginning, std::int64_t looked_at, std::int64_t first_line)
{
    if (beginning.rows() == 0)
        return 0;
    double const share = static_cast<double>(length) / static_cast<double>(looked_at);
    std::int64_t const guess = static_cast<std::int64_t>(static_cast<double>(beginning.rows()) * share * 1.02) + 16;
    return std::min(length % first_line == 0 ? length / first_line : guess, most_numbers(length) / beginning.cols());
}

// Reads all numbers into a value with room for so many rows. The message about what is wrong, or null.
char const* read_table(TextBlocks& blocks, std::int64_t room, std::int64_t cols, M<double>& value)
{
    // Lines that would need more numbers than there are cannot be of one length: where they differ, or
    // what is no number, is found without storing any.
    bool const fits = room <= most_numbers(blocks.length()) / cols;
    if (fits && room * cols > most_elements)
        return messages::out_of_memory;
    value = fits ? M<double>(0, static_cast<int>(room), static_cast<int>(cols)) : Access<double>::without_storage();
    if (fits && value.size() < 1)
        return reported;
    TableReader table(room, cols, value.addr());
    char const* problem = nullptr;
    blocks.each([&](char const* at, char const* end) {
        problem = table.take_shared(at, end);
        return !problem;
    });
    problem = problem ? problem : blocks.problem() ? blocks.problem() : table.finish();
    if (problem || table.rows() == room)
        return problem;
    if (table.rows() == 0 || !fits)
        return messages::could_not_read;
    auto const rows = static_cast<int>(table.rows());
    for (int col = 1; col < cols; ++col)
        std::memmove(value.addr() + std::int64_t{col} * rows, value.addr() + col * room, static_cast<std::size_t>(rows) * sizeof(double));
    Access<double>::grow_in_place(value, Dims(rows, static_cast<int>(cols)));
    return nullptr;
}

// Numbers as lines of text on their way to a file.
class LineWriter {
public:
    LineWriter(platform::FileWriter& file, HeapArray<char>& buffer) : file_(file), buffer_(buffer) {}

    bool number(double x)
    {
        if (buffer_.size() - used_ < number_text_size && !flush())
            return false;
        char* const out = buffer_.data() + used_;
        used_ += write_short_decimal(out, x) ? file_column : write_aligned(out, x, file_digits, file_column);
        return true;
    }
    bool end_line()
    {
        if (used_ == buffer_.size() && !flush())
            return false;
        buffer_[used_++] = '\n';
        return true;
    }
    bool flush() { return file_.write(buffer_.data(), std::exchange(used_, 0)); }

private:
    platform::FileWriter& file_;
    HeapArray<char>& buffer_;
    std::size_t used_ = 0;
};

// Numbers of a page by rows, each in a column of the file and lines ended: all of one length, so that
// several threads know where theirs begin.
class PageText {
public:
    PageText(double const* page, std::int64_t rows, std::int64_t cols) : page_(page), rows_(rows), cols_(cols) {}

    std::int64_t length(std::int64_t from, std::int64_t to) const { return (to - from) * std::int64_t{file_column} + to / cols_ - from / cols_; }
    void write(char* out, std::int64_t from, std::int64_t to) const
    {
        for (std::int64_t row = from / cols_, col = from % cols_; from < to; ++from) {
            double const x = page_[col * rows_ + row];
            if (!write_short_decimal(out, x))
                write_aligned(out, x, file_digits, file_column);
            out += file_column;
            if (++col == cols_) {
                *out++ = '\n';
                col = 0;
                ++row;
            }
        }
    }

private:
    double const* page_;
    std::int64_t rows_, cols_;
};

bool write_full(M<double> const& matrix, HeapArray<char> const& buffer, platform::FileWriter& file)
{
    constexpr std::ptrdiff_t least_shared = 2048;
    auto const in_buffer = static_cast<std::int64_t>(buffer.size() / (file_column + 1));
    std::int64_t const in_page = std::int64_t{matrix.rows()} * matrix.cols();
    for (std::int64_t page = 0; page < matrix.size(); page += in_page) {
        PageText const text(matrix.addr() + page, matrix.rows(), matrix.cols());
        for (std::int64_t at = 0; at < in_page; at += in_buffer) {
            std::int64_t const end = std::min(in_page, at + in_buffer);
            parallel_for(static_cast<std::ptrdiff_t>(end - at), least_shared, [&](std::ptrdiff_t from, std::ptrdiff_t to) { text.write(buffer.data() + text.length(at, at + from), at + from, at + to); });
            if (!file.write(buffer.data(), static_cast<std::size_t>(text.length(at, end))))
                return false;
        }
    }
    return true;
}

// `next` has room for the entry that is next in every column.
bool write_sparse(M<double> const& matrix, HeapArray<int>& next, LineWriter& to)
{
    int const rows = matrix.rows(), cols = matrix.cols(), stored = matrix.getnnz();
    int const* const index = Access<double>::index(matrix);
    for (int page = 0; page < matrix.size(); page += rows * cols) {
        for (int col = 0; col < cols; ++col)
            next[static_cast<std::size_t>(col)] = first_entry_from(index, stored, page + col * rows);
        for (int row = 0; row < rows; ++row) {
            for (int col = 0; col < cols; ++col) {
                int& entry = next[static_cast<std::size_t>(col)];
                bool const here = entry < stored && index[entry] == page + col * rows + row;
                if (!to.number(here ? matrix.addr()[entry++] : 0))
                    return false;
            }
            if (!to.end_line())
                return false;
        }
    }
    return true;
}

} // namespace

M<double> loadascii(M<double> const& filename, Mr<double> m)
{
    FileName const name(filename);
    TextBlocks blocks(name);
    ShapeCounter shape;
    // The beginning tells how many lines to expect. Where there are more, all are counted.
    std::int64_t looked_at = 0, first_line = 0;
    blocks.each([&](char const* at, char const* end) {
        shape.take(at, end);
        first_line = looked_at ? first_line : std::find(at, end, '\n') - at + 1;
        looked_at += end - at;
        return shape.rows() < 2;
    });
    std::int64_t const room = looked_at < blocks.length() ? expected_lines(blocks.length(), shape, looked_at, first_line) : shape.rows();
    M<double> read = Access<double>::without_storage();
    char const* problem = blocks.found() ? blocks.problem() : "loadascii: %s not found";
    if (!problem)
        problem = shape.rows() > 0 ? read_table(blocks, room, shape.cols(), read) : messages::could_not_read;
    if (problem == more_lines) {
        ShapeCounter whole;
        blocks.each([&whole](char const* at, char const* end) {
            whole.take(at, end);
            return true;
        });
        problem = read_table(blocks, whole.rows(), whole.cols(), read);
    }
    if (problem) {
        if (problem != reported)
            error(problem == more_lines ? messages::could_not_read : problem, name);
        return x_M;
    }
    m = read;
    return x_M;
}

M<double> saveascii_list(M<double> const& filename, M<double> const* const* matrices, int count)
{
    constexpr std::size_t buffer_size = std::size_t{1} << 19;
    FileName const name(filename);
    // All memory is taken before there is a file: running out of it leaves nothing behind.
    std::size_t widest = 0;
    for (int k = 0; k < count; ++k)
        if (matrices[k]->issparse())
            widest = std::max(widest, static_cast<std::size_t>(matrices[k]->cols()));
    HeapArray<char> buffer(buffer_size);
    if (!buffer)
        return x_M;
    HeapArray<int> next(widest);
    if (!next)
        return x_M;
    platform::FileWriter file;
    bool written = file.create(name);
    LineWriter lines(file, buffer);
    for (int k = 0; written && k < count; ++k)
        if (matrices[k]->size() > 0)
            written = matrices[k]->issparse() ? write_sparse(*matrices[k], next, lines) : lines.flush() && write_full(*matrices[k], buffer, file);
    written = written && lines.flush() && file.commit();
    if (!written) {
        file.abandon();
        error(messages::could_not_write, name);
    }
    return x_M;
}
