// Level-4 files: records without a file header, of two dimensions.
#include "core/heap_array.h"
#include "io/data_layout.h"

#include <cmath>

namespace arrlib {

namespace {

enum class Kind { full, text, sparse };

// Words of a record's header.
enum { type_word, rows_word, cols_word, imaginary_word, name_word, header_words };

constexpr int type_end = 10000;

std::uint32_t reversed(std::uint32_t word)
{
    return __builtin_bswap32(word);
}

// One record whose header and name have been read.
struct Record {
    ElementType type;
    bool swapped;
    bool complex;
    std::int32_t rows, cols;

    std::uint64_t elements() const { return static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols); }
    // Whether so many parts of that many elements are there.
    bool fits(ByteSource const& file, unsigned parts) const { return elements() <= file.left() / element_size(type) / parts; }
};

Found stop(char const* message, char const* filename)
{
    error(message, filename);
    return Found::stopped;
}

Found read_full(FileSource& file, char const* filename, Record const& record, M<double>& value)
{
    constexpr char no_real_part[] = "load4: '%s' could not read real part", no_imaginary_part[] = "load4: '%s' could not read imag part";
    Dims const shape(record.rows, record.cols);
    if (shape.count < 0 || !record.fits(file, 1))
        return stop(no_real_part, filename);
    if (record.complex && !record.fits(file, 2))
        return stop(no_imaginary_part, filename);
    value = Access<double>::full(record.complex, shape);
    if (!value.addr())
        return Found::stopped;
    auto const count = static_cast<std::size_t>(shape.count);
    if (!read_numbers(file, record.type, record.swapped, count, value.addr()))
        return stop(no_real_part, filename);
    if (record.complex && !read_numbers(file, record.type, record.swapped, count, value.addi()))
        return stop(no_imaginary_part, filename);
    return Found::matrix;
}

// A whole number that an int can be.
bool is_index(double number)
{
    return number >= 0 && number <= INT_MAX && number == std::trunc(number);
}

// A table with one row per entry: row, column, real part and, in a fourth column, imaginary part. The
// largest row and column are the size; a last row with the value 0 only tells the size, and may hold
// zeros there.
Found read_sparse(FileSource& file, char const* filename, Record const& record, M<double>& value)
{
    constexpr char no_table[] = "load4: '%s' could not read real part";
    bool const complex = record.cols == 4;
    if (record.rows == 0) {
        value = Access<double>::sparse_with_room(false, Dims(), 0, Storage<double>::spare);
        return value.addr() ? Found::matrix : Found::stopped;
    }
    if (record.cols != 3 && !complex)
        return Found::damaged;
    if (record.rows > most_elements || !record.fits(file, 1))
        return stop(no_table, filename);
    int const lines = record.rows, last = lines - 1;
    value = Access<double>::sparse_with_room(complex, Dims(), 0, lines + Storage<double>::spare);
    if (!value.addr())
        return Found::stopped;
    int* const index = Access<double>::index(value);
    int rows = 0, cols = 0, line = 0;
    bool valid = true, fits = true;
    auto const column = [&](auto&& take) {
        line = 0;
        return each_number(file, record.type, record.swapped, static_cast<std::uint64_t>(lines), [&](double const* block, std::size_t count) {
            for (std::size_t k = 0; k < count; ++k, ++line) {
                valid = is_index(block[k]) && (block[k] >= 1 || line == last);
                if (!valid || !take(static_cast<int>(block[k])))
                    return false;
            }
            return true;
        });
    };
    bool read = column([&](int row) {
        index[line] = row - 1;
        rows = std::max(rows, row);
        return true;
    });
    read = read && column([&](int col) {
        std::int64_t const position = std::int64_t{index[line]} + (std::int64_t{col} - 1) * rows;
        fits = position <= most_elements;
        index[line] = col < 1 || index[line] < 0 || !fits ? -1 : static_cast<int>(position);
        cols = std::max(cols, col);
        return fits;
    });
    Dims const shape(rows, cols);
    if (!fits || (read && shape.count < 0))
        error(messages::matrix_too_large);
    if (!fits || !valid || (read && shape.count < 0))
        return Found::damaged;
    auto const count = static_cast<std::size_t>(lines);
    if (!read || !read_numbers(file, record.type, record.swapped, count, value.addr()) ||
        (complex && !read_numbers(file, record.type, record.swapped, count, value.addi())))
        return stop(no_table, filename);
    bool const size_only = value.addr()[last] == 0 && (!complex || value.addi()[last] == 0);
    if (!size_only && index[last] < 0)
        return Found::damaged;
    Access<double>::set_dims(value, shape);
    value.getnnz() = size_only ? last : lines;
    return order_entries(value) ? Found::matrix : Found::stopped;
}

} // namespace

Found Level4Reader::next(Variable& variable)
{
    std::uint32_t word[header_words];
    if (!file_.read(word, sizeof word))
        return Found::damaged;
    bool const swapped = word[type_word] >= type_end && reversed(word[type_word]) < type_end;
    if (swapped)
        std::transform(word, word + header_words, word, reversed);
    std::uint32_t const type = word[type_word];
    if (type >= type_end)
        return stop("load4: '%s' unknown matrix type", filename_);
    if (type / 100 % 10 != 0)
        return stop("load4: '%s' O not zero", filename_);
    bool const big = swapped != (native_order == ByteOrder::big);
    if (type / 1000 != static_cast<std::uint32_t>(big))
        return stop("load4: '%s' no conversion from this", filename_);
    if (type % 10 > static_cast<std::uint32_t>(Kind::sparse))
        return stop("load4: '%s' unknown matrix type", filename_);
    auto const kind = static_cast<Kind>(type % 10);
    Record const record = {static_cast<ElementType>(type / 10 % 10), swapped, word[imaginary_word] != 0, static_cast<std::int32_t>(word[rows_word]),
                           static_cast<std::int32_t>(word[cols_word])};

    // The count of characters includes the zero that ends the name.
    std::uint32_t const name_length = word[name_word];
    if (name_length > data_name_limit + 1) {
        error("load4: name field is too long in file '%s'", filename_);
        unsigned const parts = record.complex && kind != Kind::sparse ? 2 : 1;
        bool const behind = record.rows >= 0 && record.cols >= 0 && file_.skip(name_length) && record.fits(file_, parts) &&
                            file_.skip(record.elements() * element_size(record.type) * parts);
        return behind ? Found::passed_over : Found::stopped;
    }
    if (name_length == 0 || !file_.read(variable.name, name_length))
        return stop("load4: '%s' could not read matrix name", filename_);
    variable.name[std::min<std::size_t>(name_length, data_name_limit)] = '\0';
    if (record.rows < 0 || record.cols < 0)
        return Found::damaged;
    if (kind == Kind::sparse)
        return read_sparse(file_, filename_, record, variable.value);
    Found const found = read_full(file_, filename_, record, variable.value);
    variable.value.setstr(kind == Kind::text);
    return found;
}

namespace {

bool put_header(DataOutput& file, Kind kind, int rows, int cols, bool imaginary, char const* name)
{
    constexpr std::int32_t machine = static_cast<std::int32_t>(native_order) * 1000;
    std::int32_t const word[header_words] = {machine + static_cast<std::int32_t>(kind), rows, cols, imaginary, static_cast<std::int32_t>(std::strlen(name)) + 1};
    return file.put(word, sizeof word) && file.flush();
}

// The parts of an entry, and of the line behind the last one, which tells the size.
bool put_table(DataOutput& file, M<double> const& matrix)
{
    int const stored = matrix.getnnz();
    return put_entry_rows<double>(file, matrix, 1) && file.put_value<double>(matrix.rows()) && put_entry_columns<double>(file, matrix, 1) &&
           file.put_value<double>(matrix.cols()) && file.put_numbers(matrix.addr(), stored) && file.put_value(0.0);
}

} // namespace

char const* write_level4(DataOutput& file, M<double> const& matrix)
{
    char const* const name = matrix.getname() ? matrix.getname() : data_no_name;
    bool const sparse = matrix.issparse(), complex = matrix.isc();
    Kind const kind = sparse ? Kind::sparse : matrix.isstr() ? Kind::text : Kind::full;
    // The imaginary part of a table is one of its columns.
    if (!put_header(file, kind, sparse ? matrix.getnnz() + 1 : matrix.rows(), sparse ? 3 + complex : matrix.cols(), complex && !sparse, name))
        return "save: could not write header";
    if (!file.put(name, std::strlen(name) + 1) || !file.flush())
        return "save: could not write matrix name";
    if (!(sparse ? put_table(file, matrix) : file.put_numbers(matrix.addr(), matrix.size())) || !file.flush())
        return "save: could not write real part";
    if (complex && !(file.put_numbers(matrix.addi(), matrix.getnnz()) && (!sparse || file.put_value(0.0)) && file.flush()))
        return "save: could not write imag part";
    return nullptr;
}

} // namespace arrlib
