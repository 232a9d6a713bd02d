#include "io/text_file.h"

#include "core/heap_array.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "runtime/number_text.h"

#include <algorithm>
#include <climits>

using namespace arrlib;

namespace {

constexpr int file_name_limit = 512;
constexpr int file_digits = 13;
constexpr std::size_t file_column = 23;

struct FileName {
    char text[file_name_limit + 1];
    explicit FileName(M<double> const& value) { Mstr(value, text, file_name_limit); }
};

// The whole content of a file, freed at the end of the block.
struct FileContent {
    char* text = nullptr;
    std::size_t length = 0;

    FileContent() = default;
    ~FileContent() { platform::heap_release(text); }
    FileContent(FileContent const&) = delete;
    FileContent& operator=(FileContent const&) = delete;
};

bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

bool ends_word(char const* at, char const* end)
{
    return at == end || is_blank(*at) || *at == '\n';
}

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

// The numbers of a text in reading order, and the shape of its lines.
struct Table {
    HeapArray<double> numbers;
    std::size_t count = 0;
    std::size_t rows = 0;
    std::size_t cols = 0;
};

enum class Reading { done, not_rectangular, not_numbers, out_of_memory };

Reading read_table(char const* text, std::size_t length, Table& table)
{
    char const* const end = text + length;
    // Two characters are the least that a number takes, so this bounds the first guess.
    table.numbers = HeapArray<double>(std::min<std::size_t>(length / 2 + 1, length / 6 + 1024));
    if (!table.numbers)
        return Reading::out_of_memory;
    std::size_t in_row = 0;
    for (char const* at = text;;) {
        while (at != end && is_blank(*at))
            ++at;
        if (at == end || *at == '\n') {
            if (in_row > 0) {
                if (table.rows > 0 && in_row != table.cols)
                    return Reading::not_rectangular;
                table.cols = in_row;
                ++table.rows;
                in_row = 0;
            }
            if (at == end)
                return table.rows > 0 ? Reading::done : Reading::not_numbers;
            ++at;
            continue;
        }
        if (table.count == table.numbers.size() && !table.numbers.grow(table.count + 1))
            return Reading::out_of_memory;
        at = read_word(at, end, &table.numbers[table.count]);
        if (!at)
            return Reading::not_numbers;
        ++table.count;
        ++in_row;
    }
}

// Lines are read along rows and stored along columns; blocks of rows keep both in the cache.
void store_columns(Table const& table, double* to)
{
    constexpr std::size_t block = 64;
    for (std::size_t row0 = 0; row0 < table.rows; row0 += block)
        for (std::size_t col = 0; col < table.cols; ++col)
            for (std::size_t row = row0; row < std::min(row0 + block, table.rows); ++row)
                to[col * table.rows + row] = table.numbers[row * table.cols + col];
}

M<double> full_form(M<double> const& matrix)
{
    M<double> full_matrix = matrix;
    if (full_matrix.issparse())
        full_matrix.getfull();
    return full_matrix;
}

// Appends the text of one matrix; false when the memory for it could not be had.
bool append_rows(M<double> const& matrix, HeapArray<char>& text, std::size_t& length)
{
    M<double> const x = full_form(matrix);
    if (x.issparse()) // the full form could not be had
        return false;
    if (x.size() < 1)
        return true;
    auto const rows = static_cast<std::size_t>(x.rows()), cols = static_cast<std::size_t>(x.cols());
    auto const pages = static_cast<std::size_t>(x.size()) / (rows * cols);
    std::size_t const line = cols * (file_column + 1) + 1;
    if (line > (static_cast<std::size_t>(-1) / 2 - length) / (rows * pages) || !text.grow(length + rows * pages * line + number_text_size))
        return false;
    char* out = text.data() + length;
    for (std::size_t page = 0; page < pages; ++page)
        for (std::size_t row = 0; row < rows; ++row) {
            double const* element = x.addr() + page * rows * cols + row;
            for (std::size_t col = 0; col < cols; ++col, element += rows)
                out += write_aligned(out, *element, file_digits, file_column);
            *out++ = '\n';
        }
    length = static_cast<std::size_t>(out - text.data());
    return true;
}

} // namespace

M<double> loadascii(M<double> const& filename, Mr<double> m)
{
    FileName const name(filename);
    FileContent content;
    Table table;
    char const* problem = nullptr;
    switch (platform::read_file(name.text, &content.text, &content.length)) {
    case platform::ReadResult::not_found:
        problem = "loadascii: %s not found";
        break;
    case platform::ReadResult::not_read:
        problem = messages::could_not_read;
        break;
    case platform::ReadResult::out_of_memory:
        problem = messages::out_of_memory;
        break;
    case platform::ReadResult::done:
        switch (read_table(content.text, content.length, table)) {
        case Reading::not_rectangular:
            problem = "loadascii: matrix in %s is not rectangular";
            break;
        case Reading::not_numbers:
            problem = messages::could_not_read;
            break;
        case Reading::out_of_memory: // reported where it happened
            return x_M;
        case Reading::done:
            break;
        }
    }
    if (problem) {
        error(problem, name.text);
        return x_M;
    }
    if (table.rows > INT_MAX || table.cols > INT_MAX) {
        error(messages::out_of_memory);
        return x_M;
    }
    M<double> read(0, static_cast<int>(table.rows), static_cast<int>(table.cols));
    if (read.size() < 1) // reported where it happened
        return x_M;
    store_columns(table, read.addr());
    m = read;
    return x_M;
}

M<double> saveascii_list(M<double> const& filename, M<double> const* const* matrices, int count)
{
    FileName const name(filename);
    HeapArray<char> text(4096);
    std::size_t length = 0;
    if (!text)
        return x_M;
    for (int k = 0; k < count; ++k)
        if (!append_rows(*matrices[k], text, length))
            return x_M;
    if (platform::write_file(name.text, text.data(), length) != platform::WriteResult::done)
        error(messages::could_not_write, name.text);
    return x_M;
}
