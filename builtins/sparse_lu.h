// Triangular factors of sparse matrices with their columns in order.
#ifndef ARRLIB_BUILTINS_SPARSE_LU_H
#define ARRLIB_BUILTINS_SPARSE_LU_H

#include "builtins/sparse_columns.h"

#include <utility>

namespace arrlib {

// P*A = L*U for a matrix of any shape, column by column (Gilbert and Peierls, SIAM J. Sci. Stat.
// Comput. 9, 1988): a column costs as much as the multiplications that it takes part in.
template <Scalar T> class SparseLu {
public:
    // The diagonal is taken for pivot where it is at least `threshold` (0 to 1) times the largest element.
    SparseLu(SparseColumns<T> const& a, double threshold);

    // False after "Out of memory!".
    explicit operator bool() const { return made_; }
    // The factors as sparse values; without storage after a report. The rows of L are in the order of
    // pivots, or with `unordered` in that of the matrix.
    M<double> lower(bool unordered) const;
    M<double> upper() const;
    // L + U without the diagonal of L.
    M<double> both() const;
    M<double> permutation() const;

private:
    struct Columns {
        HeapArray<int> start, row;
        HeapArray<T> value;
        int count = 0;

        bool add(int i, T x)
        {
            auto const at = static_cast<std::size_t>(count);
            if (count == most_elements || !row.grow(at + 1) || !value.grow(at + 1))
                return false;
            row[at] = i;
            value[at] = x;
            ++count;
            return true;
        }
        int begin(int j) const { return start[static_cast<std::size_t>(j)]; }
        int end(int j) const { return start[static_cast<std::size_t>(j) + 1]; }
    };
    struct Search;

    bool factor(SparseColumns<T> const& a, double threshold);
    void number_the_rest();
    void sort_columns(Columns& columns, HeapArray<T> const& scratch);

    int rows_, cols_, least_;
    // L without its diagonal, and U, columns rising; the pivot that a row became.
    Columns l_, u_;
    HeapArray<int> pivot_of_row_;
    bool made_ = false;
};

} // namespace arrlib

#endif
