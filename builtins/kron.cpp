#include "builtins/kron.h"

#include "builtins/args.h"
#include "core/blocks.h"
#include "runtime/workers.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <initializer_list>

using namespace arrlib;

namespace {

int product_of_sizes(int a, int b)
{
    return static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(a) * b, INT_MAX));
}

Dims product_shape(M<double> const& A, M<double> const& B)
{
    return Dims(product_of_sizes(A.rows(), B.rows()), product_of_sizes(A.cols(), B.cols()));
}

// --- full products -------------------------------------------------------------------------------

// Part of a product: factor * column, for every factor of a column in turn.
void multiply_column(double const* factors, int factor_count, double const* column, int count, double* to)
{
    if (count == 1)
        for (int k = 0; k < factor_count; ++k)
            to[k] = factors[k] * column[0];
    else
        for (int k = 0; k < factor_count; ++k, to += count)
            for (int n = 0; n < count; ++n)
                to[n] = factors[k] * column[n];
}

// The same of complex factors and columns. A part that is not there adds nothing, not even a zero that
// an infinity would make NaN.
void multiply_complex_column(double const* re, double const* im, int factor_count, double const* column_re, double const* column_im, int count, double* to_re, double* to_im)
{
    for (int k = 0; k < factor_count; ++k)
        for (int n = 0; n < count; ++n, ++to_re, ++to_im) {
            if (!im) {
                *to_re = re[k] * column_re[n];
                *to_im = re[k] * column_im[n];
            } else if (!column_im) {
                *to_re = re[k] * column_re[n];
                *to_im = im[k] * column_re[n];
            } else {
                *to_re = re[k] * column_re[n] - im[k] * column_im[n];
                *to_im = re[k] * column_im[n] + im[k] * column_re[n];
            }
        }
}

double const* part_at(double const* part, std::ptrdiff_t offset)
{
    return part ? part + offset : nullptr;
}

M<double> full_product(M<double> const& A, M<double> const& B)
{
    M<double> made = full_result(product_shape(A, B), A.isc() || B.isc());
    if (!has_storage(made))
        return x_M;
    std::ptrdiff_t const rows = made.rows(), a_rows = A.rows(), b_rows = B.rows(), b_cols = B.cols();
    parallel_for(made.cols(), least_share<double>(made.cols(), rows), [&](std::ptrdiff_t column, std::ptrdiff_t end) {
        for (; column < end; ++column) {
            std::ptrdiff_t const a = column / b_cols * a_rows, b = column % b_cols * b_rows;
            if (made.isc())
                multiply_complex_column(A.addr() + a, part_at(A.addi(), a), A.rows(), B.addr() + b, part_at(B.addi(), b), B.rows(), made.addr() + column * rows, made.addi() + column * rows);
            else
                multiply_column(A.addr() + a, A.rows(), B.addr() + b, B.rows(), made.addr() + column * rows);
        }
    });
    return made;
}

// --- sparse values -------------------------------------------------------------------------------

// The stored entries of a sparse value, one column after the other.
class Columns {
public:
    explicit Columns(M<double> const& x) : x_(x), starts_(static_cast<std::size_t>(x.cols()) + 1)
    {
        if (!starts_)
            return;
        int entry = 0;
        for (int column = 0; column <= x.cols(); ++column) {
            std::int64_t const begin = static_cast<std::int64_t>(column) * x.rows();
            while (entry < x.getnnz() && index()[entry] < begin)
                ++entry;
            starts_.data()[column] = entry;
        }
    }
    explicit operator bool() const { return static_cast<bool>(starts_); }
    int begin(int column) const { return starts_.data()[column]; }
    int end(int column) const { return starts_.data()[column + 1]; }
    int row(int entry, int column) const { return index()[entry] - column * x_.rows(); }
    double re(int entry) const { return x_.addr()[entry]; }
    double im(int entry) const { return x_.isc() ? x_.addi()[entry] : 0; }

private:
    int const* index() const { return Access<double>::index(x_); }

    M<double> const& x_;
    HeapArray<int> starts_;
};

// Adds one entry of A times a column of B.
void add_products(EntryWriter& writer, M<double> const& A, int a, Columns const& b, int b_column, int start)
{
    bool const a_complex = A.isc();
    double const re = A.addr()[a], im = a_complex ? A.addi()[a] : 0;
    for (int k = b.begin(b_column); k < b.end(b_column); ++k) {
        int const position = start + b.row(k, b_column);
        if (!a_complex)
            writer.add(position, re * b.re(k), b.im(k) == 0 ? 0 : re * b.im(k));
        else if (b.im(k) == 0)
            writer.add(position, re * b.re(k), im * b.re(k));
        else
            writer.add(position, re * b.re(k) - im * b.im(k), re * b.im(k) + im * b.re(k));
    }
}

M<double> sparse_product(M<double> const& full_or_sparse_a, M<double> const& full_or_sparse_b)
{
    M<double> const A = sparse_copy(full_or_sparse_a), B = sparse_copy(full_or_sparse_b);
    if (!has_storage(A) || !has_storage(B))
        return x_M;
    Columns const a(A), b(B);
    if (!a || !b)
        return x_M;
    std::int64_t const room = static_cast<std::int64_t>(A.getnnz()) * B.getnnz();
    M<double> made = sparse_with_room(A.isc() || B.isc(), product_shape(A, B), static_cast<int>(std::min<std::int64_t>(room, INT_MAX)));
    if (!has_storage(made))
        return x_M;
    EntryWriter writer(made);
    for (int a_column = 0; a_column < A.cols(); ++a_column)
        for (int b_column = 0; b_column < B.cols(); ++b_column) {
            int const start = (a_column * B.cols() + b_column) * made.rows();
            for (int k = a.begin(a_column); k < a.end(a_column); ++k)
                add_products(writer, A, k, b, b_column, start + a.row(k, a_column) * B.rows());
        }
    made.getnnz() = writer.count();
    return made;
}

M<double> product(M<double> const& A, M<double> const& B)
{
    Arguments const args("kron");
    if (!args.two_dimensional(A) || !args.two_dimensional(B))
        return x_M;
    if (A.size() == 0 || B.size() == 0)
        return M<double>();
    return A.issparse() || B.issparse() ? sparse_product(A, B) : full_product(A, B);
}

// --- block diagonals -----------------------------------------------------------------------------

using Blocks = std::initializer_list<M<double> const*>;

struct BlockTotals {
    std::int64_t rows = 0, cols = 0, entries = 0;
    bool complex = false, sparse = false;

    explicit BlockTotals(Blocks blocks)
    {
        for (M<double> const* const block : blocks) {
            rows += block->rows();
            cols += block->cols();
            entries += block->getnnz();
            complex |= block->isc() != 0;
            sparse |= block->issparse() != 0;
        }
    }
    Dims shape() const
    {
        auto const fitting = [](std::int64_t size) { return static_cast<int>(std::min<std::int64_t>(size, INT_MAX)); };
        return Dims(fitting(rows), fitting(cols));
    }
};

M<double> full_blocks(BlockTotals const& totals, Blocks blocks)
{
    M<double> made = full_result(totals.shape(), totals.complex);
    if (!has_storage(made))
        return x_M;
    std::ptrdiff_t at = 0;
    for (double* const part : {made.addr(), made.addi()})
        if (part)
            Storage<double>::clear(part, made.size());
    for (M<double> const* const block : blocks) {
        copy_columns(made.addr() + at, made.rows(), block->addr(), block->rows(), block->rows(), block->cols());
        if (block->isc())
            copy_columns(made.addi() + at, made.rows(), block->addi(), block->rows(), block->rows(), block->cols());
        at += static_cast<std::ptrdiff_t>(block->cols()) * made.rows() + block->rows();
    }
    return made;
}

M<double> sparse_blocks(BlockTotals const& totals, Blocks blocks)
{
    M<double> made = sparse_with_room(totals.complex, totals.shape(), static_cast<int>(std::min<std::int64_t>(totals.entries, INT_MAX)));
    if (!has_storage(made))
        return x_M;
    EntryWriter writer(made);
    int row = 0, column = 0;
    for (M<double> const* const block : blocks) {
        PositionSplit split(*block);
        for (int k = 0; k < block->getnnz(); ++k) {
            split.at(block->issparse() ? Access<double>::index(*block)[k] : k);
            writer.add((column + split.column()) * made.rows() + row + split.row(), block->addr()[k], block->isc() ? block->addi()[k] : 0);
        }
        row += block->rows();
        column += block->cols();
    }
    made.getnnz() = writer.count();
    return made;
}

M<double> block_diagonal(Blocks blocks)
{
    Arguments const args("blkdiag");
    for (M<double> const* const block : blocks)
        if (!args.two_dimensional(*block))
            return x_M;
    BlockTotals const totals(blocks);
    return totals.sparse ? sparse_blocks(totals, blocks) : full_blocks(totals, blocks);
}

} // namespace

M<double> kron(M<double> const& A, M<double> const& B)
{
    return product(A, B);
}
M<double> kron(M<double> const& A, M<double> const& B, M<double> const& C)
{
    return product(product(A, B), C);
}
M<double> kron(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D)
{
    return product(product(product(A, B), C), D);
}

M<double> blkdiag(M<double> const& A)
{
    return block_diagonal({&A});
}
M<double> blkdiag(M<double> const& A, M<double> const& B)
{
    return block_diagonal({&A, &B});
}
M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C)
{
    return block_diagonal({&A, &B, &C});
}
M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D)
{
    return block_diagonal({&A, &B, &C, &D});
}
M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D, M<double> const& E)
{
    return block_diagonal({&A, &B, &C, &D, &E});
}
M<double> blkdiag(M<double> const& A, M<double> const& B, M<double> const& C, M<double> const& D, M<double> const& E, M<double> const& F)
{
    return block_diagonal({&A, &B, &C, &D, &E, &F});
}
