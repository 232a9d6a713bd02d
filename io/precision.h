// Elements of files: the types and their names, sizes and byte orders, and how blocks of them become
// doubles and come from doubles.
#ifndef ARRLIB_IO_PRECISION_H
#define ARRLIB_IO_PRECISION_H

#include <bit>
#include <cstddef>

namespace arrlib {

// The codes are fixed: data files hold some of them.
enum class ElementType : int {
    float64 = 0,
    float32 = 1,
    int32 = 2,
    int16 = 3,
    uint16 = 4,
    uint8 = 5,
    extended = 6, // a name of its own for doubles
    uint32 = 7,
    int8 = 8,
    int64 = 9,
    uint64 = 10
};

std::size_t element_size(ElementType type);
// The type of exactly this name; any other reports "fileio: unknown precision %s" and is float64.
ElementType precision_named(char const* name);

enum class ByteOrder : int { unknown = -1, little = 0, big = 1 };
inline constexpr ByteOrder native_order = std::endian::native == std::endian::big ? ByteOrder::big : ByteOrder::little;

// "b", "ieee-be", "l", "ieee-le", "n", "native"; any other name is unknown.
ByteOrder byte_order_named(char const* name);
// "ieee-be" or, for everything else, "ieee-le".
char const* byte_order_name(ByteOrder order);
// Whether elements in that order have their bytes reversed here. An unknown order is not the native
// one, and counts as the other.
inline bool is_swapped(ByteOrder order)
{
    return order != native_order;
}

// Elements of files, at any address, as doubles. 64-bit integers beyond 2^53 are rounded to the
// nearest double.
void decode_elements(ElementType type, bool swapped, void const* from, std::size_t count, double* to);

// Doubles as elements of files. Integers are what the C conversion gave on 32-bit systems: truncated
// to 64 bits, of which narrower types keep the low ones, so 300 as uint8 is 44, -1 as uint16 is
// 65535 and 3e9 as int32 is -1294967296. NaN, infinities and what does not fit 64 bits are -2^63,
// whose low bits are 0; uint64 takes 0 to 2^64. Singles are rounded, to infinity when too large.
void encode_elements(ElementType type, bool swapped, double const* from, std::size_t count, void* to);

// Reverses the bytes of every double.
void swap_doubles(double* elements, std::size_t count);

} // namespace arrlib

#endif
