// The scanning half of the format engine: text to numbers.
#ifndef ARRLIB_IO_SCAN_H
#define ARRLIB_IO_SCAN_H

#include "core/dims.h"
#include "core/heap_array.h"
#include "io/format.h"

#include <cstddef>
#include <limits>

namespace arrlib {

// The values scanned, in order.
struct Scanned {
    HeapArray<double> values;
    std::size_t count = 0;
    std::size_t room = 0;
    // False when there was no memory for more values, which has been reported.
    bool complete = true;

    void store(double value)
    {
        if (count < room || grow())
            values[count++] = value;
    }

private:
    // "scanf: Matrix too large" ends the process when no value could hold them.
    bool grow();
};

enum class ScanFrom { stream, text };

// Scans with the pieces of the format in turn until the input ends, a conversion fails, or `most`
// values are stored: the character of %c, the number of the numeric conversions, one value for each
// character of %s and the count of conversions for %n, which reads nothing. %o, %u and %x store
// numbers from 0 to 2^32-1, %d and %i such from -2^31 on; what exceeds them becomes the nearest one.
// In a text the next piece goes on one character behind the start of a piece with %c; in a stream,
// behind what was read. A round through the format that reads nothing is the last one. "sscanf:
// unknown type character".
void scan(ParsedFormat& format, TextSource& source, ScanFrom from, double most, Scanned& scanned);

// The size argument of the scanning functions.
class ScanSize {
public:
    // All input.
    ScanSize() = default;
    // n or [m n]; "scanf: size %s is not one or two elements".
    explicit ScanSize(M<double> const& size);

    bool valid() const { return valid_; }
    // How many values are to be read.
    double most() const { return most_; }
    // The values as a column, or as a row when they are text; with two sizes as m rows, filled up
    // with zeros, or as one column when m is infinite.
    M<double> shape(Scanned const& scanned, bool text) const;

private:
    double most_ = std::numeric_limits<double>::infinity();
    double rows_ = 0; // of two sizes
    bool valid_ = true;
};

} // namespace arrlib

#endif
