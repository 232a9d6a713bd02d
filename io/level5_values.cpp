// The data of matrices in level-5 files: numbers, text and sparse values of whatever type they are
// stored in.
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "io/data_layout.h"
#include "io/level5.h"

namespace arrlib::level5 {

namespace {

struct NumberType {
    DataType code;
    ElementType type;
};

constexpr NumberType number_types[] = {
    {type_int8, ElementType::int8},     {type_uint8, ElementType::uint8},   {type_int16, ElementType::int16},    {type_uint16, ElementType::uint16},
    {type_int32, ElementType::int32},   {type_uint32, ElementType::uint32}, {type_single, ElementType::float32}, {type_double, ElementType::float64},
    {type_int64, ElementType::int64},   {type_uint64, ElementType::uint64},
};

// The same with the types of text; signed bytes are characters as well.
constexpr NumberType text_types[] = {
    {type_int8, ElementType::uint8},
    {type_int16, ElementType::uint16},
    {type_utf16, ElementType::uint16},
    {type_utf32, ElementType::uint32},
};

template <std::size_t count> bool find_type(NumberType const (&types)[count], std::uint32_t code, ElementType& type)
{
    for (NumberType const& known : types)
        if (known.code == code) {
            type = known.type;
            return true;
        }
    return false;
}

// Goes to the next sub-element, which must hold at least `count` numbers.
Data next_numbers(SubElement& element, std::uint64_t count, ElementType& type)
{
    if (!element.next())
        return Data::unreadable;
    if (!find_type(number_types, element.type(), type))
        return Data::unknown_type;
    return count <= element.left() / element_size(type) ? Data::read : Data::unreadable;
}

Data read_part(SubElement& element, ElementType type, std::size_t count, double* to)
{
    return read_numbers(element, type, element.swapped(), count, to) ? Data::read : Data::unreadable;
}

Data read_full(SubElement& element, Head const& head, M<double>& value)
{
    auto const count = static_cast<std::size_t>(head.shape.count);
    ElementType type = ElementType::float64;
    Data data = count ? next_numbers(element, count, type) : Data::read;
    if (data != Data::read)
        return data;
    value = Access<double>::full(head.complex(), head.shape);
    if (!value.addr())
        return Data::reported;
    data = count ? read_part(element, type, count, value.addr()) : Data::read;
    if (data == Data::read && count && head.complex())
        data = next_numbers(element, count, type);
    if (data == Data::read && count && head.complex())
        data = read_part(element, type, count, value.addi());
    return data;
}

// --- text -----------------------------------------------------------------------------------------

// Characters of UTF-8 as 16-bit codes. A byte that belongs to no character stands for itself, as in
// texts of one byte per character.
class Utf8Reader {
public:
    explicit Utf8Reader(ByteSource& from) : from_(from) {}

    bool next(double& code)
    {
        if (low_surrogate_) {
            code = low_surrogate_;
            low_surrogate_ = 0;
            return true;
        }
        fill();
        if (ahead_ == 0)
            return false;
        unsigned const first = byte_[0];
        unsigned const length = first < 0xC2 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 1;
        unsigned character = length == 1 ? first : first & (0x7Fu >> length);
        unsigned used = 1;
        for (; used < length && used < ahead_ && (byte_[used] & 0xC0) == 0x80; ++used)
            character = character << 6 | (byte_[used] & 0x3Fu);
        if (used < length) {
            character = first;
            used = 1;
        }
        ahead_ -= used;
        std::memmove(byte_, byte_ + used, ahead_);
        if (character > 0xFFFF) {
            low_surrogate_ = 0xDC00 | (character & 0x3FF);
            character = 0xD800 | ((character - 0x10000) >> 10 & 0x3FF);
        }
        code = character;
        return true;
    }

private:
    // The longest character lies ahead, or all there is.
    void fill()
    {
        while (ahead_ < sizeof byte_) {
            if (at_ == end_) {
                end_ = static_cast<std::size_t>(std::min<std::uint64_t>(sizeof block_, from_.left()));
                at_ = 0;
                if (end_ == 0 || !from_.read(block_, end_)) {
                    end_ = 0;
                    return;
                }
            }
            byte_[ahead_++] = block_[at_++];
        }
    }

    ByteSource& from_;
    unsigned char byte_[4] = {};
    unsigned ahead_ = 0;
    unsigned low_surrogate_ = 0;
    unsigned char block_[4096];
    std::size_t at_ = 0, end_ = 0;
};

// Imaginary parts of characters are left out.
Data read_text(SubElement& element, Head const& head, M<double>& value)
{
    auto const count = static_cast<std::size_t>(head.shape.count);
    ElementType type = ElementType::uint8;
    if (count) {
        if (!element.next())
            return Data::unreadable;
        if (element.type() != type_utf8 && !find_type(text_types, element.type(), type) && !find_type(number_types, element.type(), type))
            return Data::unknown_type;
        if (count > element.left() / element_size(type))
            return Data::unreadable;
    }
    value = Access<double>::full(false, head.shape);
    if (!value.addr())
        return Data::reported;
    value.setstr(1);
    if (count == 0 || element.type() != type_utf8)
        return read_part(element, type, count, value.addr());
    Utf8Reader text(element);
    for (std::size_t k = 0; k < count; ++k)
        if (!text.next(value.addr()[k]))
            return Data::unreadable;
    return Data::read;
}

// --- sparse values --------------------------------------------------------------------------------

// Row numbers, one per entry there is room for; those that cannot be are marked. Only what the column
// starts count matters.
Data read_rows(SubElement& element, Head const& head, M<double>& value, int& room)
{
    ElementType type = ElementType::int32;
    Data const data = next_numbers(element, 0, type);
    if (data != Data::read)
        return data;
    std::uint64_t const count = element.left() / element_size(type);
    if (count > static_cast<std::uint64_t>(most_elements))
        return Data::unreadable;
    room = static_cast<int>(count);
    value = sparse_with_room(head.complex(), head.shape, room);
    if (!value.addr())
        return Data::reported;
    int* row = Access<double>::index(value);
    bool const read = each_number(element, type, element.swapped(), count, [&row, &head](double const* block, std::size_t size) {
        for (std::size_t k = 0; k < size; ++k)
            *row++ = block[k] >= 0 && block[k] < head.rows ? static_cast<int>(block[k]) : -1;
        return true;
    });
    return read ? Data::read : Data::unreadable;
}

// Turns the rows into positions, column by column, and counts the entries.
Data read_columns(SubElement& element, Head const& head, M<double>& value, int room)
{
    ElementType type = ElementType::int32;
    Data data = next_numbers(element, static_cast<std::uint64_t>(head.cols) + 1, type);
    if (data != Data::read)
        return data;
    int* const index = Access<double>::index(value);
    int entry = 0;
    std::int64_t column_start = -std::int64_t{head.rows};
    bool const read = each_number(element, type, element.swapped(), static_cast<std::uint64_t>(head.cols) + 1, [&](double const* block, std::size_t size) {
        for (std::size_t k = 0; k < size; ++k, column_start += head.rows) {
            bool const first = column_start < 0;
            // Rising, from 0 up to what there are rows for.
            if (!(block[k] >= entry && block[k] <= room) || (first && block[k] != 0)) {
                data = block[k] < 0 ? Data::negative_count : Data::unreadable;
                return false;
            }
            for (; entry < static_cast<int>(block[k]); ++entry) {
                if (index[entry] < 0)
                    return false;
                index[entry] += static_cast<int>(column_start);
            }
        }
        return true;
    });
    value.getnnz() = entry;
    return read ? Data::read : data != Data::read ? data : Data::unreadable;
}

Data read_entries(SubElement& element, Head const& head, int count, double* to)
{
    ElementType type = ElementType::float64;
    auto const entries = static_cast<std::size_t>(count);
    Data data = next_numbers(element, 0, type);
    if (data != Data::read)
        return data;
    // Logical entries are found as one byte each under a tag that says double.
    if (head.logical() && type == ElementType::float64 && element.left() < entries * sizeof(double) && element.left() >= entries)
        type = ElementType::uint8;
    return entries <= element.left() / element_size(type) ? read_part(element, type, entries, to) : Data::unreadable;
}

Data read_sparse(SubElement& element, Head const& head, M<double>& value)
{
    if (head.capacity < 0)
        return Data::negative_count;
    if (head.shape.ndims > 2)
        return Data::unreadable;
    if (head.shape.count < 0) {
        error(messages::matrix_too_large);
        return Data::unreadable;
    }
    int room = 0;
    Data data = read_rows(element, head, value, room);
    if (data == Data::read)
        data = read_columns(element, head, value, room);
    if (data == Data::read)
        data = read_entries(element, head, value.getnnz(), value.addr());
    if (data == Data::read && head.complex())
        data = read_entries(element, head, value.getnnz(), value.addi());
    return data != Data::read || order_entries(value) ? data : Data::reported;
}

} // namespace

Data read_data(SubElement& element, Head const& head, M<double>& value)
{
    std::uint32_t const matrix_class = head.matrix_class();
    if (head.shape.count < 0 && matrix_class != class_sparse)
        return Data::unreadable;
    Data const data = matrix_class == class_sparse ? read_sparse(element, head, value)
                      : matrix_class == class_text ? read_text(element, head, value)
                                                   : read_full(element, head, value);
    if (data == Data::read)
        value.setlogical(head.logical());
    return data;
}

} // namespace arrlib::level5
