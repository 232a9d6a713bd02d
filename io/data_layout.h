// What the two layouts of data files share: their readers and writers.
#ifndef ARRLIB_IO_DATA_LAYOUT_H
#define ARRLIB_IO_DATA_LAYOUT_H

#include "core/access.h"
#include "io/byte_source.h"
#include "io/data_output.h"

#include <algorithm>
#include <functional>

namespace arrlib {

inline constexpr std::size_t data_name_limit = 255;
// The name in files of a matrix without one.
inline constexpr char data_no_name[] = "noname";

// A matrix of a file under its name there.
struct Variable {
    M<double> value = Access<double>::without_storage();
    char name[data_name_limit + 1] = "";
};

// What came next in a file. Damaged: nothing behind it can be read, which is still to be reported;
// stopped: the same, reported.
enum class Found { matrix, passed_over, damaged, stopped };

// Brings entries as files have them into the order of sparse values, those of one place added up.
// False after a report.
inline bool order_entries(M<double>& sparse)
{
    int const *const first = Access<double>::index(sparse), *const last = first + sparse.getnnz();
    if (std::adjacent_find(first, last, std::greater_equal<>()) == last)
        return true;
    sparse.sort();
    int const* const sorted = Access<double>::index(sparse);
    if (!std::is_sorted(sorted, sorted + sparse.getnnz()))
        return false;
    sparse.resparse();
    return true;
}

// --- level 4 (io/level4.cpp) ----------------------------------------------------------------------

class Level4Reader {
public:
    Level4Reader(FileSource& file, char const* filename) : file_(file), filename_(filename) {}
    Found next(Variable& variable);

private:
    FileSource& file_;
    char const* filename_;
};

// Both write_ functions give the message about what could not be written, or null.
char const* write_level4(DataOutput& file, M<double> const& matrix);

// --- level 5 (io/level5_read.cpp, io/level5_write.cpp) --------------------------------------------

class Level5Reader {
public:
    Level5Reader(FileSource& file, char const* filename) : file_(file), filename_(filename) {}
    // Must come first; false when there is none.
    bool read_header();
    Found next(Variable& variable);

private:
    Found next_compressed(std::uint64_t length, Variable& variable);

    FileSource& file_;
    char const* filename_;
    bool swapped_ = false;
    // Where the header says that data of no variable lie.
    std::uint64_t hidden_ = 0;
};

// Whether the element of a matrix is short enough for its byte count.
bool fits_level5(M<double> const& matrix);
char const* write_level5_header(DataOutput& file);
char const* write_level5(DataOutput& file, M<double> const& matrix);

} // namespace arrlib

#endif
