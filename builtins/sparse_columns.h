// Sparse matrices column by column, as the factorisations read and make them.
#ifndef ARRLIB_BUILTINS_SPARSE_COLUMNS_H
#define ARRLIB_BUILTINS_SPARSE_COLUMNS_H

#include "builtins/zpack.h"

namespace arrlib {

// The stored elements of a two-dimensional value that are not zero; rows rise within a column.
template <Scalar T> class SparseColumns {
public:
    explicit SparseColumns(M<double> const& x)
        : rows_(x.rows()), cols_(x.cols()), start_(static_cast<std::size_t>(cols_) + 1), row_(static_cast<std::size_t>(x.getnnz())),
          value_(static_cast<std::size_t>(x.getnnz()))
    {
        if (!*this)
            return;
        PositionSplit split(x);
        int filled = 0, column = 0;
        start_[0] = 0;
        for (int k = 0; k < x.getnnz(); ++k) {
            T value;
            if constexpr (std::same_as<T, Complex>)
                value = Complex(x.addr()[k], x.isc() ? x.addi()[k] : 0);
            else
                value = x.addr()[k];
            if (value == T{})
                continue;
            split.at(x.issparse() ? Access<double>::index(x)[k] : k);
            while (column < split.column())
                start_[static_cast<std::size_t>(++column)] = filled;
            row_[static_cast<std::size_t>(filled)] = split.row();
            value_[static_cast<std::size_t>(filled++)] = value;
        }
        while (column < cols_)
            start_[static_cast<std::size_t>(++column)] = filled;
    }

    // False after "Out of memory!".
    explicit operator bool() const { return start_ && row_ && value_; }
    int rows() const { return rows_; }
    int cols() const { return cols_; }
    int count() const { return start_[static_cast<std::size_t>(cols_)]; }
    int const* starts() const { return start_.data(); }
    int const* row_numbers() const { return row_.data(); }
    T const* values() const { return value_.data(); }
    // The entries [begin(j), end(j)) make up column j.
    int begin(int j) const { return start_[static_cast<std::size_t>(j)]; }
    int end(int j) const { return start_[static_cast<std::size_t>(j) + 1]; }
    int row(int k) const { return row_[static_cast<std::size_t>(k)]; }
    T value(int k) const { return value_[static_cast<std::size_t>(k)]; }

private:
    int rows_, cols_;
    HeapArray<int> start_, row_;
    HeapArray<T> value_;
};

// Collects a sparse value whose number of entries is not known before.
template <Scalar T> class SparseCollector {
public:
    SparseCollector(int rows, int cols) : rows_(rows), cols_(cols) {}

    // Entries in the order of columns and, within one, of rows; zeros are passed over. False after
    // "Out of memory!".
    bool add(int i, int j, T value)
    {
        if (value == T{})
            return true;
        if (!at_.grow(count_ + 1) || !value_.grow(count_ + 1))
            return false;
        at_[count_] = j * rows_ + i;
        value_[count_++] = value;
        return true;
    }
    // Without storage after a report, such as "sparse: matrix is too large".
    M<double> value() const
    {
        M<double> made = sparse_with_room(std::same_as<T, Complex>, Dims(rows_, cols_), static_cast<int>(count_));
        if (!has_storage(made))
            return made;
        EntryWriter writer(made);
        for (std::size_t k = 0; k < count_; ++k)
            writer.add(at_[k], std::real(value_[k]), std::imag(value_[k]));
        made.getnnz() = writer.count();
        return made;
    }

private:
    int rows_, cols_;
    std::size_t count_ = 0;
    HeapArray<int> at_;
    HeapArray<T> value_;
};

} // namespace arrlib

#endif
