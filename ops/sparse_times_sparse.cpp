// The product of two sparse matrices, column by column: a column of the result is a sum of columns of
// the left operand.
#include "core/access.h"
#include "core/heap_array.h"
#include "core/sparse_build.h"
#include "ops/sparse_entries.h"
#include "ops/sparse_product.h"
#include "runtime/workers.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace arrlib {

namespace {

// Fewer multiplications are not worth another thread.
constexpr std::int64_t least_multiplications = std::int64_t{1} << 16;
// Lists for all rows, or all columns, are made while there are not far more of them than entries.
constexpr int far_more = 4;

// --- the left operand in columns ------------------------------------------------------------------

// Where columns begin, and the row of every entry. Rows and columns that are far more than the entries
// are renumbered: only those with entries count, and their order stays.
class LeftColumns {
public:
    // False after a report.
    bool make(M<double> const& x)
    {
        SparseEntries const entries(x);
        if (!take(row_, entries.count))
            return false;
        return make_starts(x, entries) && (x.rows() / far_more <= entries.count ? keep_rows(x) : renumber_rows(entries));
    }
    // The entries of a column.
    int begin(int column) const { return starts_[static_cast<std::size_t>(column)]; }
    int end(int column) const { return starts_[static_cast<std::size_t>(column) + 1]; }
    // The number of a column; -1 when it has no entries.
    int number(int column) const
    {
        if (!columns_)
            return column;
        int const* const found = std::lower_bound(columns_.begin(), columns_.begin() + column_count_, column);
        return found < columns_.begin() + column_count_ && *found == column ? static_cast<int>(found - columns_.begin()) : -1;
    }
    int const* rows() const { return row_.data(); }
    int row_count() const { return row_count_; }
    int original_row(int row) const { return rows_ ? rows_[static_cast<std::size_t>(row)] : row; }

private:
    static bool take(HeapArray<int>& list, int count)
    {
        list = HeapArray<int>(static_cast<std::size_t>(count));
        return static_cast<bool>(list);
    }

    // Fills the rows as well.
    bool make_starts(M<double> const& x, SparseEntries const& entries)
    {
        bool const renumbered = x.cols() / far_more > entries.count;
        int const most = renumbered ? entries.count : x.cols();
        if (!take(starts_, most + 1) || (renumbered && !take(columns_, entries.count)))
            return false;
        PositionSplit split(x);
        int next = 0;
        for (int k = 0; k < entries.count; ++k) {
            split.at(entries.at[k]);
            row_[static_cast<std::size_t>(k)] = split.row();
            if (!renumbered) {
                while (next <= split.column())
                    starts_[static_cast<std::size_t>(next++)] = k;
            } else if (next == 0 || columns_[static_cast<std::size_t>(next) - 1] != split.column()) {
                columns_[static_cast<std::size_t>(next)] = split.column();
                starts_[static_cast<std::size_t>(next++)] = k;
            }
        }
        column_count_ = renumbered ? next : x.cols();
        while (next <= column_count_)
            starts_[static_cast<std::size_t>(next++)] = entries.count;
        return true;
    }

    bool keep_rows(M<double> const& x)
    {
        row_count_ = x.rows();
        return true;
    }

    bool renumber_rows(SparseEntries const& entries)
    {
        auto const count = static_cast<std::size_t>(entries.count);
        HeapArray<EntryKey> keys(count);
        if (!keys || !take(rows_, entries.count))
            return false;
        for (std::size_t k = 0; k < count; ++k)
            keys[k] = entry_key(row_[k], static_cast<int>(k));
        if (!sort_keys(keys))
            return false;
        for (EntryKey const key : keys) {
            if (row_count_ == 0 || rows_[static_cast<std::size_t>(row_count_) - 1] != key_position(key))
                rows_[static_cast<std::size_t>(row_count_++)] = key_position(key);
            row_[static_cast<std::size_t>(key_entry(key))] = row_count_ - 1;
        }
        return true;
    }

    HeapArray<int> starts_, row_, columns_, rows_;
    int column_count_ = 0, row_count_ = 0;
};

// --- the rows that a column of the result has -----------------------------------------------------

// A set of rows, listed in rising order: a bit for each, and a bit for each word of these.
class RowSet {
public:
    bool make(int rows)
    {
        std::size_t const words = (static_cast<std::size_t>(rows) + 63) / 64;
        words_ = HeapArray<std::uint64_t>(words);
        summary_ = HeapArray<std::uint64_t>((words + 63) / 64);
        if (!words_ || !summary_)
            return false;
        std::fill(words_.begin(), words_.end(), 0);
        std::fill(summary_.begin(), summary_.end(), 0);
        return true;
    }
    void add(int row)
    {
        auto const bit = static_cast<unsigned>(row), word = bit / 64;
        words_[word] |= std::uint64_t{1} << (bit % 64);
        summary_[word / 64] |= std::uint64_t{1} << (word % 64);
    }
    // Lists the rows, gives their number, and empties the set; the list has room for one more.
    int take(int* const begin)
    {
        int* list = begin;
        each_word([&list](int first, std::uint64_t bits) {
            // Mostly one or two: they are listed without asking.
            *list++ = first + std::countr_zero(bits);
            bits &= bits - 1;
            *list = first + std::countr_zero(bits);
            list += bits != 0;
            for (bits &= bits - 1; bits; bits &= bits - 1)
                *list++ = first + std::countr_zero(bits);
        });
        return static_cast<int>(list - begin);
    }

private:
    // Calls visit(first row, bits) for the words with bits, and empties them.
    template <class Visit> void each_word(Visit visit)
    {
        for (std::size_t s = 0; s < summary_.size(); ++s)
            for (std::uint64_t left = std::exchange(summary_[s], 0); left; left &= left - 1) {
                std::size_t const word = s * 64 + static_cast<std::size_t>(std::countr_zero(left));
                visit(static_cast<int>(word * 64), std::exchange(words_[word], 0));
            }
    }

    HeapArray<std::uint64_t> words_, summary_;
};

// What a thread works with: the rows of a column, and sums by rows, all zero between columns.
struct Workspace {
    RowSet rows;
    HeapArray<int> list;
    HeapArray<double> re, im;

    // False after a report.
    bool make(int row_count, bool complex)
    {
        auto const count = static_cast<std::size_t>(row_count);
        list = HeapArray<int>(count + 1);
        re = HeapArray<double>(count);
        im = HeapArray<double>(complex ? count : 0);
        if (!list || !re || !im || !rows.make(row_count))
            return false;
        std::fill(re.begin(), re.end(), 0.0);
        std::fill(im.begin(), im.end(), 0.0);
        return true;
    }
};

// --- the product ----------------------------------------------------------------------------------

// A column of the result that may have entries: those of the right operand that it is made from.
struct ResultColumn {
    int number, begin, end;
    std::int64_t multiplications;
};

// What an entry of the right operand is multiplied with: entries of the left one.
struct Factor {
    int begin, end;
};

// The columns that a thread computes; their entries stand from `first` on, where there is room for them.
struct Share {
    int begin = 0, end = 0;
    std::int64_t first = 0, room = 0;
    int count = 0;
    Workspace workspace;
};

class Product {
public:
    Product(M<double> const& x, M<double> const& y)
        : x_(x), y_(y), shape_(x.rows(), y.cols()), inner_(y.rows()), x_complex_(x.isc()), y_complex_(y.isc())
    {
    }

    // Without storage after a report.
    M<double> compute(M<double> const& x)
    {
        columns_ = HeapArray<ResultColumn>(static_cast<std::size_t>(y_.count));
        factors_ = HeapArray<Factor>(static_cast<std::size_t>(y_.count));
        if (!columns_ || !factors_ || !left_.make(x))
            return Access<double>::without_storage();
        list_columns();
        if (!share_out())
            return Access<double>::without_storage();
        M<double> made = sparse_with_room(x_complex_ || y_complex_, shape_, find_room());
        if (!has_storage(made))
            return made;
        if (x_complex_ && y_complex_)
            fill<true, true>(made);
        else if (x_complex_)
            fill<true, false>(made);
        else if (y_complex_)
            fill<false, true>(made);
        else
            fill<false, false>(made);
        made.getnnz() = close_ranks(made);
        return with_little_room(std::move(made));
    }

private:
    static constexpr int most_shares = 64;
    // As many entries as multiplications are made room for without counting, when that is not more.
    static constexpr std::int64_t most_uncounted = std::int64_t{1} << 22;

    void list_columns()
    {
        PositionSplit split(inner_);
        ResultColumn* last = nullptr;
        for (int k = 0; k < y_.count; ++k) {
            split.at(y_.at[k]);
            if (!last || last->number != split.column()) {
                last = &columns_[static_cast<std::size_t>(column_count_++)];
                *last = {split.column(), k, k, 0};
            }
            last->end = k + 1;
            int const c = left_.number(split.row());
            Factor& factor = factors_[static_cast<std::size_t>(k)];
            factor = c < 0 ? Factor{0, 0} : Factor{left_.begin(c), left_.end(c)};
            last->multiplications += factor.end - factor.begin;
        }
    }

    // Gives every thread about as much to multiply. False after a report.
    bool share_out()
    {
        std::int64_t all = 0;
        for (int c = 0; c < column_count_; ++c)
            all += columns_[static_cast<std::size_t>(c)].multiplications;
        share_count_ = static_cast<int>(std::clamp<std::int64_t>(all / least_multiplications, 1, std::min(parallel_width(), most_shares)));
        std::int64_t done = 0;
        int c = 0;
        for (int s = 0; s < share_count_; ++s) {
            Share& share = shares_[s];
            share.begin = c;
            for (; c < column_count_ && (s == share_count_ - 1 || done * share_count_ < all * (s + 1)); ++c) {
                std::int64_t const multiplications = columns_[static_cast<std::size_t>(c)].multiplications;
                done += multiplications;
                share.room += std::min<std::int64_t>(multiplications, left_.row_count());
            }
            share.end = c;
            if (!share.workspace.make(left_.row_count(), x_complex_ || y_complex_))
                return false;
        }
        return true;
    }

    // Places the shares behind each other; gives the room that all of them need.
    int find_room()
    {
        std::int64_t room = 0;
        for (int s = 0; s < share_count_; ++s)
            room += shares_[s].room;
        if (room > most_uncounted)
            each_column_of_shares([this](ResultColumn const& column, Share& share) { count_rows(column, share); });
        room = 0;
        for (int s = 0; s < share_count_; ++s) {
            shares_[s].first = room;
            room += shares_[s].room;
        }
        return static_cast<int>(room);
    }

    template <class Work> void each_column_of_shares(Work work)
    {
        parallel_for(share_count_, 1, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            for (; from < to; ++from)
                for (int c = shares_[from].begin; c < shares_[from].end; ++c)
                    work(columns_[static_cast<std::size_t>(c)], shares_[from]);
        });
    }

    // Calls visit(begin, end, entry of the right operand) for the entries of the left one that it is
    // multiplied with.
    template <class Visit> void each_factor(ResultColumn const& column, Visit visit) const
    {
        for (int k = column.begin; k < column.end; ++k) {
            // Its place is as good as random: the next but some is fetched before it is needed.
            int const ahead = factors_[static_cast<std::size_t>(std::min(k + 4, y_.count - 1))].begin;
            __builtin_prefetch(left_.rows() + ahead);
            __builtin_prefetch(x_.re + ahead);
            visit(factors_[static_cast<std::size_t>(k)].begin, factors_[static_cast<std::size_t>(k)].end, k);
        }
    }

    // Replaces the room that the column may need by what it does need.
    void count_rows(ResultColumn const& column, Share& share) const
    {
        RowSet& rows = share.workspace.rows;
        each_factor(column, [&rows, row = left_.rows()](int e, int end, int) {
            for (; e < end; ++e)
                rows.add(row[e]);
        });
        int const count = rows.take(share.workspace.list.data());
        share.room += count - std::min<std::int64_t>(column.multiplications, left_.row_count());
    }

    template <bool x_complex, bool y_complex> void fill(M<double>& to)
    {
        each_column_of_shares([&](ResultColumn const& column, Share& share) {
            add_up<x_complex, y_complex>(column, share.workspace);
            share.count += write<x_complex || y_complex>(column, share.workspace, to, share.first + share.count);
        });
    }

    template <bool x_complex, bool y_complex> void add_up(ResultColumn const& column, Workspace& sums) const
    {
        double *const re = sums.re.data(), *const im = sums.im.data();
        each_factor(column, [&, row = left_.rows()](int e, int end, int k) {
            double const y_re = y_.re[k], y_im = y_complex ? y_.im[k] : 0;
            for (; e < end; ++e) {
                int const r = row[e];
                sums.rows.add(r);
                re[r] += x_.re[e] * y_re;
                if constexpr (x_complex && y_complex)
                    re[r] -= x_.im[e] * y_im;
                if constexpr (x_complex)
                    im[r] += x_.im[e] * y_re;
                if constexpr (y_complex)
                    im[r] += x_.re[e] * y_im;
            }
        });
    }

    // Moves the sums to where the entries of the share go; gives their number without zeros.
    template <bool complex> int write(ResultColumn const& column, Workspace& sums, M<double>& to, std::int64_t first) const
    {
        int const start = column.number * shape_.size[0], count = sums.rows.take(sums.list.data());
        int* const index = Access<double>::index(to) + first;
        double *const re = to.addr() + first, *const im = complex ? to.addi() + first : nullptr;
        int written = 0;
        for (int k = 0; k < count; ++k) {
            int const r = sums.list.data()[k];
            index[written] = start + left_.original_row(r);
            double const value = std::exchange(sums.re.data()[r], 0);
            re[written] = value;
            bool keep = value != 0;
            if constexpr (complex) {
                im[written] = std::exchange(sums.im.data()[r], 0);
                keep |= im[written] != 0;
            }
            written += keep;
        }
        return written;
    }

    // Closes the gaps behind the shares; gives the number of entries.
    int close_ranks(M<double>& made) const
    {
        std::int64_t count = 0;
        for (int s = 0; s < share_count_; count += shares_[s++].count) {
            Share const& share = shares_[s];
            if (share.first == count)
                continue;
            move_down(Access<double>::index(made), share, count);
            move_down(made.addr(), share, count);
            if (made.isc())
                move_down(made.addi(), share, count);
        }
        return static_cast<int>(count);
    }
    template <class T> static void move_down(T* list, Share const& share, std::int64_t to)
    {
        std::memmove(list + to, list + share.first, static_cast<std::size_t>(share.count) * sizeof(T));
    }

    SparseEntries x_, y_;
    Dims shape_;
    int inner_;
    bool x_complex_, y_complex_;
    LeftColumns left_;
    HeapArray<ResultColumn> columns_;
    HeapArray<Factor> factors_;
    int column_count_ = 0;
    Share shares_[most_shares];
    int share_count_ = 0;
};

} // namespace

M<double> sparse_times_sparse(M<double> const& x, M<double> const& y)
{
    Dims const shape(x.rows(), y.cols());
    if (shape.count < 1 || x.getnnz() == 0 || y.getnnz() == 0)
        return sparse_with_room(x.isc() || y.isc(), shape, 0);
    return Product(x, y).compute(x);
}

} // namespace arrlib
