#include "builtins/diagonals.h"

#include "builtins/args.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "runtime/workers.h"

#include <algorithm>
#include <climits>
#include <cstdint>

using namespace arrlib;

namespace {

// The number of a diagonal; beyond any matrix it does not matter which.
int diagonal_number(M<double> const& k)
{
    return std::clamp(integer_argument(number_or(k, 0)), -INT_MAX, INT_MAX);
}

M<double> finished(M<double> made, M<double> const& operand)
{
    if (!has_storage(made))
        return x_M;
    made.setlogical(operand.islogical());
    return made;
}

// --- diag ----------------------------------------------------------------------------------------

// Where a diagonal runs.
struct Diagonal {
    int first_row, first_col;

    explicit Diagonal(int k) : first_row(k < 0 ? -k : 0), first_col(k > 0 ? k : 0) {}
    int length(int rows, int cols) const { return std::max(0, std::min(rows - std::min(first_row, rows), cols - std::min(first_col, cols))); }
    // Position of its element n in a matrix of so many rows.
    int at(int n, int rows) const { return (first_col + n) * rows + first_row + n; }
};

M<double> with_diagonal(M<double> const& v, int k)
{
    Diagonal const diagonal(k);
    int const order = static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(v.size()) + diagonal.first_row + diagonal.first_col, INT_MAX));
    Dims const shape(order, order);
    if (v.issparse()) {
        M<double> made = sparse_with_room(v.isc(), shape, v.getnnz());
        if (!has_storage(made))
            return made;
        EntryWriter writer(made);
        for (int n = 0; n < v.getnnz(); ++n)
            writer.add(diagonal.at(Access<double>::index(v)[n], order), v.addr()[n], v.isc() ? v.addi()[n] : 0);
        made.getnnz() = writer.count();
        return made;
    }
    M<double> made = full_result(shape, v.isc());
    if (!has_storage(made))
        return made;
    for (double* const part : {made.addr(), made.addi()})
        if (part)
            Storage<double>::clear(part, shape.count);
    for (int n = 0; n < v.size(); ++n) {
        made.addr()[diagonal.at(n, order)] = v.addr()[n];
        if (v.isc())
            made.addi()[diagonal.at(n, order)] = v.addi()[n];
    }
    return made;
}

M<double> diagonal_of(M<double> const& A, int k)
{
    Diagonal const diagonal(k);
    int const rows = A.rows(), length = diagonal.length(rows, A.cols());
    Dims const shape(length, 1);
    if (A.issparse()) {
        M<double> made = sparse_with_room(A.isc(), shape, std::min(A.getnnz(), length));
        if (!has_storage(made))
            return made;
        EntryWriter writer(made);
        PositionSplit split(A);
        for (int n = 0; n < A.getnnz(); ++n) {
            split.at(Access<double>::index(A)[n]);
            int const along = split.row() - diagonal.first_row;
            if (along >= 0 && along == split.column() - diagonal.first_col)
                writer.add(along, A.addr()[n], A.isc() ? A.addi()[n] : 0);
        }
        made.getnnz() = writer.count();
        return made;
    }
    M<double> made = full_result(shape, A.isc());
    if (!has_storage(made))
        return made;
    for (int n = 0; n < length; ++n) {
        made.addr()[n] = A.addr()[diagonal.at(n, rows)];
        if (A.isc())
            made.addi()[n] = A.addi()[diagonal.at(n, rows)];
    }
    return made;
}

// --- tril, triu ----------------------------------------------------------------------------------

enum class Triangle { lower, upper };

// The rows of a column that belong to a triangle: [first, end).
struct KeptRows {
    int first, end;

    KeptRows(Triangle triangle, int k, int column, int rows)
    {
        // The row on the diagonal.
        std::int64_t const on = static_cast<std::int64_t>(column) - k;
        auto const within = [=](std::int64_t row) { return static_cast<int>(std::clamp<std::int64_t>(row, 0, rows)); };
        first = triangle == Triangle::lower ? within(on) : 0;
        end = triangle == Triangle::lower ? rows : within(on + 1);
    }
};

M<double> entries_in(Triangle triangle, M<double> const& A, int k)
{
    M<double> made = sparse_with_room(A.isc(), shape_of(A), A.getnnz());
    if (!has_storage(made))
        return made;
    EntryWriter writer(made);
    PositionSplit split(A);
    for (int n = 0; n < A.getnnz(); ++n) {
        split.at(Access<double>::index(A)[n]);
        KeptRows const kept(triangle, k, split.column(), A.rows());
        if (split.row() >= kept.first && split.row() < kept.end)
            writer.add(Access<double>::index(A)[n], A.addr()[n], A.isc() ? A.addi()[n] : 0);
    }
    made.getnnz() = writer.count();
    return made;
}

void copy_triangle(Triangle triangle, int k, double const* from, double* to, int rows, int cols)
{
    parallel_for(cols, least_share<double>(cols, rows), [=](std::ptrdiff_t column, std::ptrdiff_t end) {
        for (; column < end; ++column) {
            KeptRows const kept(triangle, k, static_cast<int>(column), rows);
            std::ptrdiff_t const start = column * rows;
            std::fill(to + start, to + start + kept.first, 0.0);
            std::copy(from + start + kept.first, from + start + kept.end, to + start + kept.first);
            std::fill(to + start + kept.end, to + start + rows, 0.0);
        }
    });
}

M<double> triangle_of(Triangle triangle, char const* builtin, M<double> const& A, M<double> const& k)
{
    if (!Arguments(builtin).two_dimensional(A))
        return x_M;
    int const number = diagonal_number(k);
    if (A.issparse())
        return finished(entries_in(triangle, A, number), A);
    M<double> made = full_result(shape_of(A), A.isc());
    if (has_storage(made) && made.size() > 0) {
        copy_triangle(triangle, number, A.addr(), made.addr(), A.rows(), A.cols());
        if (A.isc())
            copy_triangle(triangle, number, A.addi(), made.addi(), A.rows(), A.cols());
    }
    return finished(std::move(made), A);
}

} // namespace

M<double> diag(M<double> const& A)
{
    return diag(A, nop_M);
}

M<double> diag(M<double> const& A, M<double> const& k)
{
    if (!Arguments("diag").two_dimensional(A))
        return x_M;
    if (A.size() == 0)
        return M<double>();
    bool const vector = A.rows() == 1 || A.cols() == 1;
    return finished(vector ? with_diagonal(A, diagonal_number(k)) : diagonal_of(A, diagonal_number(k)), A);
}

M<double> tril(M<double> const& A)
{
    return tril(A, nop_M);
}

M<double> tril(M<double> const& A, M<double> const& k)
{
    return triangle_of(Triangle::lower, "tril", A, k);
}

M<double> triu(M<double> const& A)
{
    return triu(A, nop_M);
}

M<double> triu(M<double> const& A, M<double> const& k)
{
    return triangle_of(Triangle::upper, "triu", A, k);
}
