// Level-5 files, written without packed elements.
#include "core/heap_array.h"
#include "io/data_layout.h"
#include "io/level5.h"

#include <cstdio>
#include <ctime>

namespace arrlib {

using namespace level5;

namespace {

constexpr char not_written[] = "savev5: could not write file '%s'.";

// How a matrix lies in a file. Sparse matrices of more than two dimensions have no form of their own.
enum class Form { full, text, sparse };

Form form_of(M<double> const& matrix)
{
    if (matrix.issparse())
        return matrix.getndims() == 2 ? Form::sparse : Form::full;
    return matrix.isstr() && !matrix.isc() ? Form::text : Form::full;
}

char const* name_of(M<double> const& matrix)
{
    return matrix.getname() ? matrix.getname() : data_no_name;
}

std::uint64_t in_file(std::uint64_t bytes)
{
    return tag_size + bytes + padding(bytes);
}

std::uint64_t data_bytes(M<double> const& matrix)
{
    auto const stored = static_cast<std::uint64_t>(matrix.getnnz()), elements = static_cast<std::uint64_t>(matrix.size());
    unsigned const parts = matrix.isc() ? 2 : 1;
    switch (form_of(matrix)) {
    case Form::text:
        return in_file(elements * 2);
    case Form::sparse:
        return in_file(stored * 4) + in_file((static_cast<std::uint64_t>(matrix.cols()) + 1) * 4) + in_file(stored * 8) * parts;
    case Form::full:
        break;
    }
    return in_file(elements * 8) * parts;
}

// Behind the tag.
std::uint64_t element_bytes(M<double> const& matrix)
{
    return in_file(8) + in_file(static_cast<std::uint64_t>(matrix.getndims()) * 4) + in_file(std::strlen(name_of(matrix))) + data_bytes(matrix);
}

bool put_tag(DataOutput& file, DataType type, std::uint64_t bytes)
{
    return file.put_value<std::uint32_t>(type) && file.put_value(static_cast<std::uint32_t>(bytes));
}

bool put_head(DataOutput& file, M<double> const& matrix)
{
    Form const form = form_of(matrix);
    std::uint32_t const matrix_class = form == Form::sparse ? class_sparse : form == Form::text ? class_text : class_double;
    std::uint32_t const flags = matrix_class | (matrix.islogical() ? logical_flag : 0) | (matrix.isc() ? complex_flag : 0);
    std::int32_t const capacity = form == Form::sparse ? std::max(matrix.getnnz(), 1) : 0;
    auto const ndims = static_cast<std::size_t>(matrix.getndims());
    return put_tag(file, type_matrix, element_bytes(matrix)) && put_tag(file, type_uint32, 8) && file.put_value(flags) && file.put_value(capacity) &&
           put_tag(file, type_int32, ndims * 4) && file.put(matrix.getdims(), ndims * 4) && file.put_zeros(padding(ndims * 4)) && file.flush();
}

// A character as a 16-bit code: bytes are signed in the library, as in literals, and unsigned in files.
std::uint16_t text_code(double element)
{
    bool const fits = element > -2147483648.0 && element < 2147483648.0;
    int const code = fits ? static_cast<int>(element) : 0;
    return static_cast<std::uint16_t>(code < 0 && code >= -128 ? code + 256 : code);
}

bool put_text(DataOutput& file, M<double> const& matrix)
{
    std::size_t const bytes = static_cast<std::size_t>(matrix.size()) * 2;
    bool done = put_tag(file, type_uint16, bytes);
    for (int k = 0; done && k < matrix.size(); ++k)
        done = file.put_value(text_code(matrix.addr()[k]));
    return done && file.put_zeros(padding(bytes));
}

bool put_column_starts(DataOutput& file, M<double> const& matrix)
{
    int const* const index = matrix.getindex();
    std::int64_t const cols = matrix.cols();
    bool done = put_tag(file, type_int32, static_cast<std::uint64_t>(cols + 1) * 4);
    std::int32_t entry = 0;
    for (std::int64_t col = 0; done && col <= cols; ++col) {
        while (entry < matrix.getnnz() && index[entry] < col * matrix.rows())
            ++entry;
        done = file.put_value(entry);
    }
    return done && file.put_zeros(padding(static_cast<std::uint64_t>(cols + 1) * 4));
}

// All elements of a sparse value.
bool put_scattered(DataOutput& file, M<double> const& matrix, double const* values)
{
    int const* const index = matrix.getindex();
    bool done = true;
    for (int k = 0, entry = 0; done && k < matrix.size(); ++k) {
        bool const here = entry < matrix.getnnz() && index[entry] == k;
        done = file.put_value(here ? values[entry++] : 0.0);
    }
    return done;
}

bool put_numbers(DataOutput& file, M<double> const& matrix, double const* values)
{
    bool const scattered = matrix.issparse() && form_of(matrix) == Form::full;
    int const count = matrix.issparse() && !scattered ? matrix.getnnz() : matrix.size();
    return put_tag(file, type_double, static_cast<std::uint64_t>(count) * 8) &&
           (scattered ? put_scattered(file, matrix, values) : file.put_numbers(values, count));
}

bool put_data(DataOutput& file, M<double> const& matrix)
{
    Form const form = form_of(matrix);
    if (form == Form::text)
        return put_text(file, matrix);
    std::uint64_t const row_bytes = static_cast<std::uint64_t>(matrix.getnnz()) * 4;
    if (form == Form::sparse && !(put_tag(file, type_int32, row_bytes) && put_entry_rows<std::int32_t>(file, matrix, 0) &&
                                  file.put_zeros(padding(row_bytes)) && put_column_starts(file, matrix)))
        return false;
    return put_numbers(file, matrix, matrix.addr()) && (!matrix.isc() || put_numbers(file, matrix, matrix.addi()));
}

} // namespace

bool fits_level5(M<double> const& matrix)
{
    return element_bytes(matrix) <= INT32_MAX;
}

char const* write_level5_header(DataOutput& file)
{
    char text[256] = "", when[128] = "";
    std::tm const now = platform::local_time();
    std::strftime(when, sizeof when, "%a %b %d %H:%M:%S %Y", &now);
    int const length = std::snprintf(text, sizeof text, "KORVEX 4.0 MAT-file, Platform: PCWIN, Created on: %s", when);
    std::memset(text + length, ' ', sizeof text - static_cast<std::size_t>(length));
    bool const done = file.put(text, version_offset) && file.put_value(version) && file.put_value(mark) && file.flush();
    return done ? nullptr : "save5: '%s' could not write header";
}

char const* write_level5(DataOutput& file, M<double> const& matrix)
{
    if (!put_head(file, matrix))
        return not_written;
    char const* const name = name_of(matrix);
    std::size_t const length = std::strlen(name);
    if (!put_tag(file, type_int8, length) || !file.put(name, length) || !file.put_zeros(padding(length)) || !file.flush())
        return "save5: could not save matrix name in file '%s'";
    return put_data(file, matrix) && file.flush() ? nullptr : not_written;
}

} // namespace arrlib
