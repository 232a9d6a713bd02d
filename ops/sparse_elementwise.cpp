// Operands are merged into blocks of values that lie side by side, the loop of the operation computes
// the block, and its zeros are dropped.
#include "ops/sparse_elementwise.h"

#include "core/access.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "ops/sparse_entries.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <utility>

namespace arrlib {

namespace {

// Fewer elements are not worth another thread.
constexpr std::ptrdiff_t least_per_thread = 1 << 16;
// Values are computed so many at a time, from arrays that stay in the nearest cache.
constexpr int block_size = 512;

struct Loop {
    RealLoop real;
    ComplexLoop complex;

    Loop(RealLoop of_real, ComplexLoop of_complex, bool any_complex)
        : real(of_complex && any_complex ? nullptr : of_real), complex(of_complex)
    {
    }
    void run(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n) const
    {
        if (real)
            real({x.re, x.step}, {y.re, y.step}, re, n);
        else
            complex(x, y, re, im, n);
    }
};

bool is_finite(double value)
{
    return value - value == 0;
}
// All bits of the value, or none: 0.
double kept(double value, bool keep)
{
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & (std::uint64_t{0} - keep));
}

// Takes computed entries into the storage of a value, one block behind the other.
class BlockWriter {
public:
    explicit BlockWriter(M<double>& target) : index_(Access<double>::index(target)), re_(target.addr()), im_(target.addi()) {}

    // Where the next block goes.
    int* index() const { return index_ + count_; }
    double* re() const { return re_ + count_; }
    double* im() const { return im_ ? im_ + count_ : nullptr; }
    // Takes `n` entries that have been put there, without the zeros.
    void take(int n)
    {
        int* const at = index();
        double *const re = this->re(), *const im = this->im();
        int zeros = 0;
        for (int k = 0; k < n; ++k)
            zeros += re[k] == 0;
        if (zeros > 0) {
            int left = 0;
            for (int k = 0; k < n; ++k) {
                at[left] = at[k];
                re[left] = re[k];
                if (im)
                    im[left] = im[k];
                left += re[k] != 0 || (im && im[k] != 0);
            }
            n = left;
        }
        count_ += n;
    }
    int count() const { return count_; }

private:
    int* index_;
    double* re_;
    double* im_;
    int count_ = 0;
};

// A result with room for `room` entries; without storage after a report.
M<double> result_like(M<double> const& x, bool complex, std::int64_t room)
{
    if (room > most_elements) {
        error(messages::matrix_too_large);
        return Access<double>::without_storage();
    }
    return sparse_with_room(complex, Dims(max_dims, x.getdims()), static_cast<int>(room));
}

M<double> finished(M<double>&& made, int count)
{
    made.getnnz() = count;
    return with_little_room(std::move(made));
}

// --- merging --------------------------------------------------------------------------------------

// What a merge reads on; `at` alone for positions without values.
struct Cursor {
    int const* at;
    double const* re;
    double const* im;
    int next, count;

    explicit Cursor(SparseEntries const& entries) : at(entries.at), re(entries.re), im(entries.im), next(0), count(entries.count) {}
    explicit Cursor(HeapArray<int> const& positions) : at(positions.data()), re(nullptr), im(nullptr), next(0), count(static_cast<int>(positions.size())) {}

    bool left() const { return next < count; }
    bool finite(int k) const { return is_finite(re[k]) && (!im || is_finite(im[k])); }
};

// The values of one operand at the positions of a block.
struct Values {
    double re[block_size];
    double im[block_size];

    void put(int n, Cursor const& from, int k, bool there)
    {
        if (from.re)
            re[n] = kept(from.re[k], there);
        if (from.im)
            im[n] = kept(from.im[k], there);
    }
    void put_zero(int n) { re[n] = im[n] = 0; }
    void gather(M<double> const& full, int const* at, int n)
    {
        for (int k = 0; k < n; ++k)
            re[k] = full.addr()[at[k]];
        if (full.isc())
            for (int k = 0; k < n; ++k)
                im[k] = full.addi()[at[k]];
    }
    ComplexOperand operand(bool complex) const { return {re, complex ? im : nullptr, 1}; }
};

// Which positions a merge keeps: all, or those that both operands have or where one has a value that
// makes more than zero of a zero.
enum class Keep { all, product };

// The next positions of both, in order, and their values; gives their number. Nothing is left to do
// when both cursors have come to their ends.
template <Keep keep> int merge_block(Cursor& from_x, Cursor& from_y, int* at, Values& of_x, Values& of_y)
{
    Cursor const x = from_x, y = from_y;
    int i = x.next, j = y.next, n = 0;
    // Which one comes next is as good as random: no jumps depend on it.
    while (n < block_size && i < x.count && j < y.count) {
        int const at_x = x.at[i], at_y = y.at[j];
        bool const x_there = at_x <= at_y, y_there = at_y <= at_x;
        at[n] = x_there ? at_x : at_y;
        of_x.put(n, x, i, x_there);
        of_y.put(n, y, j, y_there);
        if constexpr (keep == Keep::all)
            ++n;
        else
            n += (int{x_there} & int{y_there}) | (int{x_there} & int{!x.finite(i)}) | (int{y_there} & int{!y.finite(j)});
        i += x_there;
        j += y_there;
    }
    if (j == y.count)
        for (; n < block_size && i < x.count; ++i) {
            at[n] = x.at[i];
            of_x.put(n, x, i, true);
            of_y.put_zero(n);
            n += keep == Keep::all || !x.finite(i);
        }
    if (i == x.count)
        for (; n < block_size && j < y.count; ++j) {
            at[n] = y.at[j];
            of_x.put_zero(n);
            of_y.put(n, y, j, true);
            n += keep == Keep::all || !y.finite(j);
        }
    from_x.next = i;
    from_y.next = j;
    return n;
}

// Merges the entries of both into `to`, which has room for them; gives the number of those kept.
template <Keep keep> int merge(Cursor x, Cursor y, Loop const& loop, M<double>& to)
{
    BlockWriter writer(to);
    Values of_x, of_y;
    bool const x_complex = x.im != nullptr, y_complex = y.im != nullptr;
    while (x.left() || y.left()) {
        int const n = merge_block<keep>(x, y, writer.index(), of_x, of_y);
        loop.run(of_x.operand(x_complex), of_y.operand(y_complex), writer.re(), writer.im(), n);
        writer.take(n);
    }
    return writer.count();
}

// --- the zeros of one operand beside the other one ------------------------------------------------

bool is_finite(M<double> const& x, std::ptrdiff_t k)
{
    return is_finite(x.addr()[k]) && (!x.isc() || is_finite(x.addi()[k]));
}

// How many of the elements, or of the stored ones, are NaN or infinite.
int count_infinite(M<double> const& x)
{
    std::atomic<int> count{0};
    parallel_for(x.getnnz(), least_per_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        int found = 0;
        double const *const re = x.addr(), *const im = x.addi();
        if (im)
            for (std::ptrdiff_t k = from; k < to; ++k)
                found += !is_finite(re[k]) || !is_finite(im[k]);
        else
            for (std::ptrdiff_t k = from; k < to; ++k)
                found += !is_finite(re[k]);
        count.fetch_add(found, std::memory_order_relaxed);
    });
    return count;
}

M<double> masked_by_each_other(M<double> const& x, M<double> const& y, Loop const& loop, bool complex_result)
{
    std::int64_t const room = std::int64_t{std::min(x.getnnz(), y.getnnz())} + count_infinite(x) + count_infinite(y);
    M<double> made = result_like(x, complex_result, room);
    if (!has_storage(made))
        return made;
    int const count = merge<Keep::product>(Cursor(SparseEntries(x)), Cursor(SparseEntries(y)), loop, made);
    return finished(std::move(made), count);
}

// Where a full value is NaN or infinite. False after a report.
bool list_infinite(HeapArray<int>& positions, M<double> const& x)
{
    int const count = count_infinite(x);
    positions = HeapArray<int>(static_cast<std::size_t>(count));
    if (!positions)
        return false;
    std::size_t found = 0;
    for (int k = 0; found < positions.size(); ++k)
        if (!is_finite(x, k))
            positions[found++] = k;
    return true;
}

M<double> masked_by_entries(M<double> const& x, M<double> const& y, Loop const& loop, bool complex_result)
{
    M<double> const& sparse = x.issparse() ? x : y;
    M<double> const& full = x.issparse() ? y : x;
    HeapArray<int> infinite;
    if (!list_infinite(infinite, full))
        return Access<double>::without_storage();
    M<double> made = result_like(x, complex_result, static_cast<std::int64_t>(sparse.getnnz()) + static_cast<std::int64_t>(infinite.size()));
    if (!has_storage(made))
        return made;
    BlockWriter writer(made);
    Values of_sparse, of_full;
    ComplexOperand const from_sparse = of_sparse.operand(sparse.isc()), from_full = of_full.operand(full.isc());
    for (Cursor entries{SparseEntries(sparse)}, others{infinite}; entries.left() || others.left();) {
        int const n = merge_block<Keep::all>(entries, others, writer.index(), of_sparse, of_full);
        of_full.gather(full, writer.index(), n);
        loop.run(x.issparse() ? from_sparse : from_full, x.issparse() ? from_full : from_sparse, writer.re(), writer.im(), n);
        writer.take(n);
    }
    return finished(std::move(made), writer.count());
}

} // namespace

M<double> sparse_union(M<double> const& x, M<double> const& y, RealLoop real, ComplexLoop complex, bool complex_result)
{
    M<double> made = result_like(x, complex_result, static_cast<std::int64_t>(x.getnnz()) + y.getnnz());
    if (!has_storage(made))
        return made;
    Loop const loop(real, complex, x.isc() || y.isc() || complex_result);
    int const count = merge<Keep::all>(Cursor(SparseEntries(x)), Cursor(SparseEntries(y)), loop, made);
    return finished(std::move(made), count);
}

M<double> sparse_masked(M<double> const& x, M<double> const& y, RealLoop real, ComplexLoop complex, bool complex_result)
{
    Loop const loop(real, complex, x.isc() || y.isc() || complex_result);
    return x.issparse() && y.issparse() ? masked_by_each_other(x, y, loop, complex_result) : masked_by_entries(x, y, loop, complex_result);
}

} // namespace arrlib
