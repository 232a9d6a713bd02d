// The codes of level-5 files, and how their elements are taken apart.
#ifndef ARRLIB_IO_LEVEL5_H
#define ARRLIB_IO_LEVEL5_H

#include "core/access.h"
#include "io/byte_source.h"

#include <cstring>

namespace arrlib::level5 {

inline constexpr std::size_t header_size = 128;
// In the header, from here on: where data of no variable lie, the version, the mark of the byte order.
inline constexpr std::size_t hidden_offset = 116, version_offset = 124, mark_offset = 126;
inline constexpr std::uint16_t version = 0x0100, mark = 0x4D49;
inline constexpr std::size_t tag_size = 8;

// Types of elements.
enum DataType : std::uint32_t {
    type_int8 = 1,
    type_uint8 = 2,
    type_int16 = 3,
    type_uint16 = 4,
    type_int32 = 5,
    type_uint32 = 6,
    type_single = 7,
    type_double = 9,
    type_int64 = 12,
    type_uint64 = 13,
    type_matrix = 14,
    type_compressed = 15,
    type_utf8 = 16,
    type_utf16 = 17,
    type_utf32 = 18
};

// Classes of matrices; those of integers and of singles lie between double and uint64.
enum MatrixClass : std::uint32_t { class_cell = 1, class_struct = 2, class_text = 4, class_sparse = 5, class_double = 6, class_uint64 = 15 };

// The word of flags: the class is in the low byte.
inline constexpr std::uint32_t class_mask = 0xFF, logical_flag = 0x0200, complex_flag = 0x0800;

inline unsigned padding(std::uint64_t bytes)
{
    return static_cast<unsigned>((0 - bytes) % 8);
}

template <class T> T in_order(T word, bool swapped)
{
    if constexpr (sizeof(T) == 2)
        return swapped ? __builtin_bswap16(word) : word;
    else if constexpr (sizeof(T) == 4)
        return swapped ? __builtin_bswap32(word) : word;
    else
        return swapped ? __builtin_bswap64(word) : word;
}

// A tag as files have it: data of up to four bytes stand in the tag itself, and their count in the
// upper half of its first word.
struct Tag {
    std::uint32_t type;
    std::uint32_t bytes;
    bool packed;

    Tag(unsigned char const* raw, bool swapped)
    {
        std::uint32_t word[2];
        std::memcpy(word, raw, sizeof word);
        type = in_order(word[0], swapped);
        bytes = in_order(word[1], swapped);
        packed = type >> 16 != 0;
        if (packed) {
            bytes = type >> 16;
            type &= 0xFFFF;
        }
    }
};

// The sub-elements of a matrix element, one after the other; itself the source of the bytes of the
// present one.
class SubElement final : public ByteSource {
public:
    // The matrix has `length` bytes, of which no more than there are will be read.
    SubElement(ByteSource& matrix, std::uint64_t length, bool swapped) : ByteSource(0), matrix_(matrix), matrix_left_(length), swapped_(swapped) {}

    // Goes to the next one; false when there is none.
    bool next();
    std::uint32_t type() const { return type_; }
    std::uint32_t bytes() const { return bytes_; }
    bool swapped() const { return swapped_; }
    template <class T> bool read_word(T& word)
    {
        bool const done = read(&word, sizeof word);
        word = in_order(word, swapped_);
        return done;
    }

private:
    bool take(void* to, std::size_t count) override;
    bool pass_over(std::uint64_t count) override;
    bool finish();

    ByteSource& matrix_;
    std::uint64_t matrix_left_;
    bool swapped_;
    bool packed_ = false;
    std::uint32_t type_ = 0;
    std::uint32_t bytes_ = 0;
    unsigned padding_ = 0;
    unsigned char data_[4] = {};
};

// What a matrix element says of itself ahead of its data.
struct Head {
    std::uint32_t flags = 0;
    std::int32_t capacity = 0;
    Dims shape;
    // Sizes as the file has them: an empty shape has none.
    int rows = 0, cols = 0;

    std::uint32_t matrix_class() const { return flags & class_mask; }
    bool complex() const { return (flags & complex_flag) != 0; }
    bool logical() const { return (flags & logical_flag) != 0; }
};

// What the data of a matrix turned out to be. Unreadable is still to be reported.
enum class Data { read, unknown_type, negative_count, unreadable, reported };

// The data of a matrix (io/level5_values.cpp).
Data read_data(SubElement& element, Head const& head, M<double>& value);

} // namespace arrlib::level5

#endif
