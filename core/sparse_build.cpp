// Building sparse values from full ones and from triplets.
#include "core/sparse_build.h"

#include "core/declare.h"
#include "core/read.h"
#include "core/sparse.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/messages.h"

#include <algorithm>

namespace arrlib {

namespace {

constexpr double too_large_for_int = 2147483648.0;

bool is_nonzero(double const* re, double const* im, int k)
{
    return re[k] != 0 || (im && im[k] != 0);
}

// The largest of the indices; 0 when none is positive.
double largest(Spread const& indices, int count)
{
    double most = 0;
    for (int k = 0; k < (indices.step ? count : std::min(count, 1)); ++k)
        most = indices[k] > most ? indices[k] : most;
    return most;
}

ARRLIB_COLD void report_index(double row, double col, int rows)
{
    char const* const message = !(row >= 1)        ? "sparse: non-positive row index encountered"
                                : !(col >= 1)      ? "sparse: non-positive column index encountered"
                                : row >= rows + 1. ? "sparse: row index out of range"
                                                   : "sparse: column index out of range";
    error(message);
}

// False after the report of an index outside.
bool make_keys(Triplets const& triplets, Dims const& shape, HeapArray<EntryKey> const& keys)
{
    int const rows = shape.size[0];
    double const row_end = rows + 1.0, col_end = shape.size[1] + 1.0;
    for (int k = 0; k < triplets.count; ++k) {
        double const row = triplets.row[k], col = triplets.col[k];
        bool const inside = row >= 1 && row < row_end && col >= 1 && col < col_end;
        if (ARRLIB_UNLIKELY(!inside)) {
            report_index(row, col, rows);
            return false;
        }
        keys.data()[k] = entry_key((static_cast<int>(col) - 1) * rows + static_cast<int>(row) - 1, k);
    }
    return true;
}

int distinct_positions(HeapArray<EntryKey> const& keys)
{
    int count = keys.size() > 0;
    for (std::size_t k = 1; k < keys.size(); ++k)
        count += key_position(keys[k]) != key_position(keys[k - 1]);
    return count;
}

// A full form of an argument that lives as long as its numbers are read.
class Numbers {
public:
    explicit Numbers(M<double> const& argument) : full_(full_copy(argument)), count_(argument.size()) {}

    explicit operator bool() const { return has_storage(full_); }
    int count() const { return count_; }
    bool complex() const { return full_.isc(); }
    Spread re() const { return {full_.addr(), count_ == 1 ? 0 : 1}; }
    Spread im() const { return {full_.addi(), count_ == 1 ? 0 : 1}; }

private:
    M<double> full_;
    int count_;
};

// The common number of elements, -1 when there is none.
int common_count(Numbers const& i, Numbers const& j, Numbers const& s)
{
    int count = 1;
    for (Numbers const* const numbers : {&i, &j, &s}) {
        if (numbers->count() == 1 || numbers->count() == count)
            continue;
        if (count != 1)
            return -1;
        count = numbers->count();
    }
    return count;
}

// The triplets of three arguments, handed to `build`.
template <class Build> M<double> with_triplets(M<double> const& i, M<double> const& j, M<double> const& s, Build build)
{
    Numbers const rows(i), cols(j), values(s);
    if (!rows || !cols || !values)
        return x_M;
    int const count = common_count(rows, cols, values);
    if (count < 0) {
        error("sparse: i,j and v must be same size");
        return x_M;
    }
    return build(Triplets{count, rows.re(), cols.re(), values.re(), values.im()});
}

} // namespace

M<double> sparse_with_room(bool complex, Dims const& shape, int room)
{
    if (shape.count < 0) {
        error(messages::matrix_too_large);
        return Access<double>::without_storage();
    }
    return Access<double>::sparse_with_room(complex, shape, 0, std::min(room, Storage<double>::largest_count) + Storage<double>::spare);
}

M<double> sparse_copy(M<double> const& matrix)
{
    int const n = matrix.getnnz(), count = count_nonzeros(matrix);
    if (matrix.issparse() && count == n)
        return share(matrix);
    M<double> made = sparse_with_room(matrix.isc(), Dims(matrix.getndims(), matrix.getdims()), count);
    if (!has_storage(made))
        return made;
    made.setlogical(matrix.islogical());
    double const *const re = matrix.addr(), *const im = matrix.addi();
    int const* const from = Access<double>::index(matrix);
    int* const index = Access<double>::index(made);
    int at = 0;
    for (int k = 0; k < n; ++k) {
        // Written first and kept when it counts: there is spare room behind the last one.
        index[at] = from ? from[k] : k;
        made.addr()[at] = re[k];
        if (im)
            made.addi()[at] = im[k];
        at += is_nonzero(re, im, k);
    }
    made.getnnz() = count;
    return made;
}

M<double> pattern_of(M<double> const& matrix)
{
    M<double> const source = sparse_copy(matrix);
    if (!has_storage(source))
        return source;
    M<double> made = sparse_with_room(false, Dims(matrix.getndims(), matrix.getdims()), source.getnnz());
    if (!has_storage(made))
        return made;
    made.getnnz() = source.getnnz();
    std::copy_n(Access<double>::index(source), source.getnnz(), Access<double>::index(made));
    return made;
}

M<double> full_copy(M<double> const& matrix)
{
    if (!matrix.issparse())
        return share(matrix);
    M<double> made = Access<double>::full(matrix.isc(), Dims(matrix.getndims(), matrix.getdims()));
    if (!has_storage(made))
        return made;
    Access<double>::copy_kind(made, matrix);
    matrix.unsparse(made.size(), made.addr(), made.addi());
    return made;
}

M<double> sparse_from_triplets(Triplets const& triplets, Dims const& shape, int nzmax)
{
    if (shape.count < 0) {
        error(messages::matrix_too_large);
        return x_M;
    }
    HeapArray<EntryKey> keys(static_cast<std::size_t>(triplets.count));
    if (!keys || !make_keys(triplets, shape, keys) || !sort_keys(keys))
        return x_M;
    int const room = std::max(distinct_positions(keys), std::min(nzmax, shape.count));
    M<double> made = sparse_with_room(triplets.im.values != nullptr, shape, room);
    if (!has_storage(made))
        return x_M;
    EntryWriter writer(made);
    for (EntryKey const key : keys) {
        int const entry = key_entry(key);
        writer.add(key_position(key), triplets.re[entry], triplets.im.values ? triplets.im[entry] : 0);
    }
    made.getnnz() = writer.count();
    return made;
}

M<double> sparse_from_triplets(Triplets const& triplets)
{
    int rows, cols;
    if (!sparse_size(largest(triplets.row, triplets.count), rows) || !sparse_size(largest(triplets.col, triplets.count), cols))
        return x_M;
    return sparse_from_triplets(triplets, Dims(rows, cols), 0);
}

bool sparse_size(double value, int& size)
{
    if (value >= too_large_for_int) {
        error(messages::matrix_too_large);
        return false;
    }
    size = value >= 1 ? static_cast<int>(value) : 0;
    return true;
}

bool sparse_shape(M<double> const& rows, M<double> const& cols, Dims& shape)
{
    int m, n;
    if (!sparse_size(scalar(rows), m) || !sparse_size(scalar(cols), n))
        return false;
    shape = Dims(m, n);
    return true;
}

} // namespace arrlib

using namespace arrlib;

M<double> sparse(M<double> const& a)
{
    M<double> made = sparse_copy(a);
    return has_storage(made) ? made : x_M;
}

M<double> sparse(M<double> const& m, M<double> const& n)
{
    return spzeros(m, n);
}

M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s)
{
    return with_triplets(i, j, s, [](Triplets const& triplets) { return sparse_from_triplets(triplets); });
}

M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s, M<double> const& m, M<double> const& n)
{
    return sparse(i, j, s, m, n, zero_M);
}

M<double> sparse(M<double> const& i, M<double> const& j, M<double> const& s, M<double> const& m, M<double> const& n, M<double> const& nzmax)
{
    return with_triplets(i, j, s, [&](Triplets const& triplets) {
        Dims shape;
        int room;
        bool const sizes_fit = sparse_shape(m, n, shape) && sparse_size(scalar(nzmax), room);
        return sizes_fit ? sparse_from_triplets(triplets, shape, room) : x_M;
    });
}

M<double> full(M<double> const& a)
{
    M<double> made = full_copy(a);
    return has_storage(made) ? made : x_M;
}
