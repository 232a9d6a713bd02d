// Level-5 files: a header of text, then one element per variable.
#include "core/heap_array.h"
#include "io/data_layout.h"
#include "io/inflate.h"
#include "io/level5.h"
#include "runtime/report.h"

namespace arrlib {

using namespace level5;

bool SubElement::next()
{
    bytes_ = 0;
    if (!finish() || matrix_left_ < tag_size)
        return false;
    unsigned char raw[tag_size];
    matrix_left_ -= tag_size;
    if (!matrix_.read(raw, sizeof raw))
        return false;
    Tag const tag(raw, swapped_);
    type_ = tag.type;
    bytes_ = tag.bytes;
    packed_ = tag.packed;
    if (packed_)
        std::memcpy(data_, raw + tag_size - sizeof data_, sizeof data_);
    padding_ = packed_ ? 0 : padding(bytes_);
    bool const fits = packed_ ? bytes_ <= sizeof data_ : bytes_ <= matrix_left_ && bytes_ <= matrix_.left();
    set_left(fits ? bytes_ : 0);
    return fits;
}

bool SubElement::take(void* to, std::size_t count)
{
    if (packed_) {
        std::memcpy(to, data_ + (bytes_ - left() - count), count);
        return true;
    }
    matrix_left_ -= count;
    return matrix_.read(to, count);
}

bool SubElement::pass_over(std::uint64_t count)
{
    if (packed_)
        return true;
    matrix_left_ -= count;
    return matrix_.skip(count);
}

bool SubElement::finish()
{
    if (!skip(left()))
        return false;
    // The last one may lack its padding.
    std::uint64_t const rest = std::min({std::uint64_t{padding_}, matrix_left_, matrix_.left()});
    padding_ = 0;
    matrix_left_ -= rest;
    return matrix_.skip(rest);
}

namespace {

Found stop(char const* message, char const* filename)
{
    error(message, filename);
    return Found::stopped;
}

Found pass_over(char const* message, char const* filename)
{
    error(message, filename);
    return Found::passed_over;
}

bool read_flags(SubElement& element, Head& head)
{
    std::uint32_t second = 0;
    bool const read = element.next() && (element.type() == type_uint32 || element.type() == type_int32) && element.bytes() == 8 &&
                      element.read_word(head.flags) && element.read_word(second);
    head.capacity = static_cast<std::int32_t>(second);
    return read;
}

enum class Shape { read, too_many_dims, unreadable };

// Trailing sizes of 1 do not count.
Shape read_shape(SubElement& element, Head& head)
{
    if (!element.next() || (element.type() != type_int32 && element.type() != type_uint32) || element.bytes() % 4 != 0 || element.bytes() < 8)
        return Shape::unreadable;
    int sizes[max_dims] = {1, 1, 1, 1};
    bool too_many = false;
    for (std::uint32_t d = 0; d < element.bytes() / 4; ++d) {
        std::uint32_t word = 0;
        if (!element.read_word(word) || word > INT_MAX)
            return Shape::unreadable;
        if (d < max_dims)
            sizes[d] = static_cast<int>(word);
        else
            too_many = too_many || word != 1;
    }
    if (too_many)
        return Shape::too_many_dims;
    head.shape = Dims(max_dims, sizes);
    head.rows = sizes[0];
    head.cols = sizes[1];
    return Shape::read;
}

// A matrix element whose tag has been read.
Found read_matrix(ByteSource& source, std::uint64_t length, bool swapped, char const* filename, Variable& variable)
{
    if (length == 0) // a place that was never set
        return Found::passed_over;
    SubElement element(source, length, swapped);
    Head head;
    if (!read_flags(element, head))
        return Found::damaged;
    std::uint32_t const matrix_class = head.matrix_class();
    if (matrix_class == class_cell || matrix_class == class_struct) {
        warning(matrix_class == class_cell ? "load5: '%s' skipped cell array." : "load5: '%s' skipped structure.", filename);
        return Found::passed_over;
    }
    if (matrix_class < class_text || matrix_class > class_uint64)
        return pass_over("load5: '%s' unrecognized matrix type", filename);
    Shape const shape = read_shape(element, head);
    if (shape == Shape::too_many_dims) {
        error("load5: Can not read matrix from file '%s' which has more then %s dimensions.", filename, IntegerText(max_dims));
        return Found::passed_over;
    }
    if (shape == Shape::unreadable)
        return Found::damaged;
    bool const has_name = element.next();
    if (element.bytes() > data_name_limit)
        return pass_over("load5: name field is too long in file '%s'", filename);
    if (!has_name || (element.type() != type_int8 && element.type() != type_uint8 && element.type() != type_utf8) ||
        !element.read(variable.name, element.bytes()))
        return stop("load5: could not read matrix name in file '%s'", filename);
    variable.name[element.bytes()] = '\0';
    switch (read_data(element, head, variable.value)) {
    case Data::read:
        return Found::matrix;
    case Data::unknown_type:
        error("loadsave5: unknown data format");
        return Found::damaged;
    case Data::negative_count:
        return stop("load5: '%s' contained sparse matrix with negative nnz", filename);
    case Data::unreadable:
        return Found::damaged;
    case Data::reported:
        break;
    }
    return Found::stopped;
}

} // namespace

bool Level5Reader::read_header()
{
    unsigned char header[header_size];
    if (!file_.read(header, sizeof header))
        return false;
    std::uint16_t found_version, found_mark;
    std::memcpy(&found_version, header + version_offset, sizeof found_version);
    std::memcpy(&found_mark, header + mark_offset, sizeof found_mark);
    swapped_ = found_mark != mark;
    std::memcpy(&hidden_, header + hidden_offset, sizeof hidden_);
    hidden_ = in_order(hidden_, swapped_);
    return in_order(found_mark, swapped_) == mark && in_order(found_version, swapped_) == version;
}

Found Level5Reader::next_compressed(std::uint64_t length, Variable& variable)
{
    if (!InflateSource::is_available())
        return pass_over("load5: '%s' has compressed data, which is not available in this build", filename_);
    InflateSource inflated(file_, length);
    unsigned char raw[tag_size];
    Found found = Found::damaged;
    if (inflated.read(raw, sizeof raw)) {
        Tag const tag(raw, swapped_);
        if (tag.type != type_matrix || tag.packed)
            return Found::passed_over;
        std::uint64_t const start = inflated.left();
        if (tag.bytes <= start)
            found = read_matrix(inflated, tag.bytes, swapped_, filename_, variable);
        // Data whose check sum is wrong are not to be had.
        if (found == Found::matrix && !(inflated.skip(tag.bytes - (start - inflated.left())) && inflated.at_end()))
            found = Found::damaged;
    }
    if (found == Found::damaged && inflated.out_of_memory()) {
        error(messages::out_of_memory);
        return Found::stopped;
    }
    return found;
}

Found Level5Reader::next(Variable& variable)
{
    std::uint64_t const position = file_.position();
    unsigned char raw[tag_size];
    if (!file_.read(raw, sizeof raw))
        return Found::damaged;
    Tag const tag(raw, swapped_);
    if (tag.packed)
        return Found::passed_over;
    if (tag.bytes > file_.left())
        return Found::damaged;
    std::uint64_t const left_behind = file_.left() - tag.bytes;
    Found found = Found::passed_over;
    if (tag.type == type_compressed)
        found = next_compressed(tag.bytes, variable);
    else if (tag.type == type_matrix && position != hidden_)
        found = read_matrix(file_, tag.bytes, swapped_, filename_, variable);
    if (found == Found::damaged || found == Found::stopped)
        return found;
    return file_.skip(file_.left() - left_behind) ? found : Found::damaged;
}

} // namespace arrlib
