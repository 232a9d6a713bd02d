// Types of file elements: their names, and what becomes of numbers on the way to bytes and back.
#include "io/precision.h"
#include "support/capture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

using namespace arrlib;
using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

std::string hex(unsigned char const* bytes, std::size_t count)
{
    std::string text;
    for (std::size_t k = 0; k < count; ++k) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", bytes[k]);
        text += digits;
    }
    return text;
}

// The bytes of a number, most significant first.
std::string encoded(ElementType type, double number)
{
    unsigned char bytes[8];
    encode_elements(type, native_order != ByteOrder::big, &number, 1, bytes);
    return hex(bytes, element_size(type));
}

TEST(Precision, NamesGiveTypes)
{
    struct {
        int code;
        std::size_t size;
        char const* names; // blanks within a name are written "_"
    } const cases[] = {
        {9, 8, "integer*8 int64"},
        {10, 8, "uint64"},
        {2, 4, "long int integer*4 int32"},
        {7, 4, "unsigned_long unsigned_int ulong uint uint32"},
        {3, 2, "short int16 integer*2"},
        {4, 2, "ushort unsigned_short uint16"},
        {8, 1, "char char*1 int8 schar signed_char integer*1"},
        {5, 1, "uchar unsigned_char uint8"},
        {0, 8, "double float64 real*8 adouble"},
        {6, 8, "long_double float80 real*10"},
        {1, 4, "float float32 real*4"},
    };
    Reports const reports;
    for (auto const& one : cases) {
        std::istringstream names(one.names);
        for (std::string name; names >> name;) {
            for (char& c : name)
                c = c == '_' ? ' ' : c;
            ElementType const type = precision_named(name.c_str());
            EXPECT_EQ(static_cast<int>(type), one.code) << name;
            EXPECT_EQ(element_size(type), one.size) << name;
        }
    }
    EXPECT_TRUE(reports.all().empty());
    for (char const* name : {"", "Int8", "int8 ", "float16"}) {
        EXPECT_EQ(precision_named(name), ElementType::float64);
        EXPECT_EQ(thrown_by([&] { precision_named(name); }), std::string("Error: fileio: unknown precision ") + name + "\n\n");
    }
    EXPECT_EQ(reports.all().size(), 4u);
    EXPECT_EQ(reports.all().back(), "fileio: unknown precision float16");
}

TEST(Precision, NumbersBecomeBytes)
{
    double const two63 = std::ldexp(1, 63), two64 = std::ldexp(1, 64), nan = std::nan("");
    struct {
        ElementType type;
        double number;
        char const* bytes;
    } const cases[] = {
        {ElementType::float64, 1, "3ff0000000000000"},
        {ElementType::extended, -2, "c000000000000000"},
        {ElementType::float32, 0.1, "3dcccccd"},
        {ElementType::float32, 1e300, "7f800000"},
        {ElementType::float32, -inf, "ff800000"},
        {ElementType::int8, -1.9, "ff"},
        {ElementType::int8, 200, "c8"},
        {ElementType::uint8, 300, "2c"},
        {ElementType::uint8, -1, "ff"},
        {ElementType::uint8, 255.99, "ff"},
        {ElementType::uint8, nan, "00"},
        {ElementType::int16, 40000, "9c40"},
        {ElementType::uint16, -1, "ffff"},
        {ElementType::int32, 3e9, "b2d05e00"},
        {ElementType::int32, -inf, "00000000"},
        {ElementType::uint32, 3e9, "b2d05e00"},
        {ElementType::uint32, 1e30, "00000000"},
        {ElementType::int64, -two63, "8000000000000000"},
        {ElementType::int64, two63, "8000000000000000"},
        {ElementType::int64, two63 - 1024, "7ffffffffffffc00"},
        {ElementType::int64, nan, "8000000000000000"},
        {ElementType::uint64, two64 - 2048, "fffffffffffff800"},
        {ElementType::uint64, two63, "8000000000000000"},
        {ElementType::uint64, two64, "8000000000000000"},
        {ElementType::uint64, -1, "ffffffffffffffff"},
    };
    for (auto const& one : cases)
        EXPECT_EQ(encoded(one.type, one.number), one.bytes) << static_cast<int>(one.type) << " " << one.number;
}

TEST(Precision, LargeIntegersAreRounded)
{
    std::uint64_t const numbers[] = {(std::uint64_t{1} << 53) + 1, ~std::uint64_t{0}, std::uint64_t{1} << 63, (std::uint64_t{1} << 62) + 3};
    double read[4];
    decode_elements(ElementType::uint64, false, numbers, 4, read);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(read[k], static_cast<double>(numbers[k]));
    decode_elements(ElementType::int64, false, numbers, 4, read);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(read[k], static_cast<double>(static_cast<std::int64_t>(numbers[k])));
}

// Whatever bytes are read come back as they were when written, wherever they lie, but for integers
// that no double holds and singles that are no numbers.
TEST(Precision, BytesComeBack)
{
    std::mt19937_64 random(7);
    unsigned char from[8 * 100 + 1], to[8 * 100 + 1];
    double numbers[100];
    for (int code = 0; code <= 10; ++code)
        for (bool const swapped : {false, true}) {
            auto const type = static_cast<ElementType>(code);
            for (unsigned char& byte : from)
                byte = static_cast<unsigned char>(random() >> 32);
            // The two most significant bytes, from the byte before the element.
            std::size_t const size = element_size(type), top = swapped ? 1 : size, below_top = swapped ? 2 : size - 1;
            for (std::size_t k = 0; k < 100; ++k)
                if (type == ElementType::int64 || type == ElementType::uint64)
                    from[k * size + top] = from[k * size + below_top] = 0;
                else if (type == ElementType::float32)
                    from[k * size + top] = 0x40;
            decode_elements(type, swapped, from + 1, 100, numbers);
            encode_elements(type, swapped, numbers, 100, to + 1);
            EXPECT_EQ(hex(to + 1, 100 * size), hex(from + 1, 100 * size)) << code << swapped;
            if (type == ElementType::float64) {
                swap_doubles(numbers, 100);
                EXPECT_NE(std::memcmp(numbers, from + 1, 800) == 0, !swapped);
            }
        }
}

} // namespace
