#include "io/precision.h"

#include "runtime/errors.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace arrlib {

namespace {

// The unsigned integer of that many bytes, for elements as bits.
template <std::size_t size> struct Bits;
template <> struct Bits<1> {
    using type = std::uint8_t;
    static type reversed(type bits) { return bits; }
};
template <> struct Bits<2> {
    using type = std::uint16_t;
    static type reversed(type bits) { return __builtin_bswap16(bits); }
};
template <> struct Bits<4> {
    using type = std::uint32_t;
    static type reversed(type bits) { return __builtin_bswap32(bits); }
};
template <> struct Bits<8> {
    using type = std::uint64_t;
    static type reversed(type bits) { return __builtin_bswap64(bits); }
};

template <class T, bool swapped> void decode(unsigned char const* from, std::size_t count, double* to)
{
    using bits = Bits<sizeof(T)>;
    for (std::size_t k = 0; k < count; ++k) {
        typename bits::type raw;
        std::memcpy(&raw, from + k * sizeof(T), sizeof(T));
        if (swapped)
            raw = bits::reversed(raw);
        to[k] = static_cast<double>(std::bit_cast<T>(raw));
    }
}

constexpr double two_to_63 = 9223372036854775808.0;

template <class T> T narrowed(double x)
{
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(x);
    } else {
        if (std::is_same_v<T, std::uint64_t> && x >= two_to_63 && x < 2 * two_to_63)
            return static_cast<T>(x);
        bool const fits = x >= -two_to_63 && x < two_to_63;
        return static_cast<T>(fits ? static_cast<std::int64_t>(x) : std::numeric_limits<std::int64_t>::min());
    }
}

template <class T, bool swapped> void encode(double const* from, std::size_t count, unsigned char* to)
{
    using bits = Bits<sizeof(T)>;
    for (std::size_t k = 0; k < count; ++k) {
        auto raw = std::bit_cast<typename bits::type>(narrowed<T>(from[k]));
        if (swapped)
            raw = bits::reversed(raw);
        std::memcpy(to + k * sizeof(T), &raw, sizeof(T));
    }
}

struct TypeRow {
    ElementType type;
    std::size_t size;
    // In native order and reversed.
    void (*decode[2])(unsigned char const* from, std::size_t count, double* to);
    void (*encode[2])(double const* from, std::size_t count, unsigned char* to);
};

template <class T> constexpr TypeRow row(ElementType type)
{
    return {type, sizeof(T), {decode<T, false>, decode<T, true>}, {encode<T, false>, encode<T, true>}};
}

// In the order of the codes.
constexpr TypeRow types[] = {
    row<double>(ElementType::float64),       row<float>(ElementType::float32),         row<std::int32_t>(ElementType::int32),
    row<std::int16_t>(ElementType::int16),   row<std::uint16_t>(ElementType::uint16),  row<std::uint8_t>(ElementType::uint8),
    row<double>(ElementType::extended),      row<std::uint32_t>(ElementType::uint32),  row<std::int8_t>(ElementType::int8),
    row<std::int64_t>(ElementType::int64),   row<std::uint64_t>(ElementType::uint64),
};

constexpr bool in_order_of_codes()
{
    int code = 0;
    for (TypeRow const& one : types)
        if (static_cast<int>(one.type) != code++)
            return false;
    return true;
}
static_assert(in_order_of_codes());

TypeRow const& row_of(ElementType type)
{
    return types[static_cast<std::size_t>(type)];
}

struct PrecisionName {
    char const* name;
    ElementType type;
};

constexpr PrecisionName precision_names[] = {
    {"integer*8", ElementType::int64},       {"int64", ElementType::int64},
    {"uint64", ElementType::uint64},
    {"long", ElementType::int32},            {"int", ElementType::int32},
    {"integer*4", ElementType::int32},       {"int32", ElementType::int32},
    {"unsigned long", ElementType::uint32},  {"unsigned int", ElementType::uint32},
    {"ulong", ElementType::uint32},          {"uint", ElementType::uint32},
    {"uint32", ElementType::uint32},
    {"short", ElementType::int16},           {"int16", ElementType::int16},
    {"integer*2", ElementType::int16},
    {"ushort", ElementType::uint16},         {"unsigned short", ElementType::uint16},
    {"uint16", ElementType::uint16},
    {"char", ElementType::int8},             {"char*1", ElementType::int8},
    {"int8", ElementType::int8},             {"schar", ElementType::int8},
    {"signed char", ElementType::int8},      {"integer*1", ElementType::int8},
    {"uchar", ElementType::uint8},           {"unsigned char", ElementType::uint8},
    {"uint8", ElementType::uint8},
    {"double", ElementType::float64},        {"float64", ElementType::float64},
    {"real*8", ElementType::float64},        {"adouble", ElementType::float64},
    {"long double", ElementType::extended},  {"float80", ElementType::extended},
    {"real*10", ElementType::extended},
    {"float", ElementType::float32},         {"float32", ElementType::float32},
    {"real*4", ElementType::float32},
};

struct OrderName {
    char const* name;
    ByteOrder order;
};

constexpr OrderName order_names[] = {
    {"b", ByteOrder::big},    {"ieee-be", ByteOrder::big}, {"l", ByteOrder::little},
    {"ieee-le", ByteOrder::little}, {"n", native_order},   {"native", native_order},
};

} // namespace

std::size_t element_size(ElementType type)
{
    return row_of(type).size;
}

ElementType precision_named(char const* name)
{
    for (PrecisionName const& known : precision_names)
        if (std::strcmp(known.name, name) == 0)
            return known.type;
    error("fileio: unknown precision %s", name);
    return ElementType::float64;
}

ByteOrder byte_order_named(char const* name)
{
    for (OrderName const& known : order_names)
        if (std::strcmp(known.name, name) == 0)
            return known.order;
    return ByteOrder::unknown;
}

char const* byte_order_name(ByteOrder order)
{
    return order == ByteOrder::big ? "ieee-be" : "ieee-le";
}

void decode_elements(ElementType type, bool swapped, void const* from, std::size_t count, double* to)
{
    row_of(type).decode[swapped](static_cast<unsigned char const*>(from), count, to);
}

void encode_elements(ElementType type, bool swapped, double const* from, std::size_t count, void* to)
{
    row_of(type).encode[swapped](from, count, static_cast<unsigned char*>(to));
}

void swap_doubles(double* elements, std::size_t count)
{
    for (std::size_t k = 0; k < count; ++k)
        elements[k] = std::bit_cast<double>(__builtin_bswap64(std::bit_cast<std::uint64_t>(elements[k])));
}

} // namespace arrlib
