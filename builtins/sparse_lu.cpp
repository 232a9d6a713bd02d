#include "builtins/sparse_lu.h"

#include <algorithm>
#include <cmath>

namespace arrlib {

namespace {

constexpr int none = -1;

std::size_t at(int k)
{
    return static_cast<std::size_t>(k);
}

} // namespace

// Finds the rows of a column that come to be non-zero: those that lead, through the columns of L, from the ones
// that are. In `order` they stand behind all that they depend on.
template <Scalar T> struct SparseLu<T>::Search {
    explicit Search(int rows) : order(at(rows)), stack(at(rows)), next(at(rows)), seen(at(rows)), first(rows)
    {
        if (*this)
            std::fill(seen.begin(), seen.end(), none);
    }
    explicit operator bool() const { return order && stack && next && seen; }

    void begin() { first = static_cast<int>(order.size()); }
    void from(int row, int column, Columns const& l, HeapArray<int> const& pivot_of_row)
    {
        if (seen[at(row)] == column)
            return;
        int depth = 0;
        push(row, column, depth, l, pivot_of_row);
        while (depth > 0) {
            int const top = stack[at(depth - 1)], pivot = pivot_of_row[at(top)];
            int& entry = next[at(depth - 1)];
            int const end = pivot == none ? 0 : l.end(pivot);
            while (entry < end && seen[at(l.row[at(entry)])] == column)
                ++entry;
            if (entry < end)
                push(l.row[at(entry++)], column, depth, l, pivot_of_row);
            else {
                order[at(--first)] = top;
                --depth;
            }
        }
    }

    HeapArray<int> order, stack, next, seen;
    int first;

private:
    void push(int row, int column, int& depth, Columns const& l, HeapArray<int> const& pivot_of_row)
    {
        int const pivot = pivot_of_row[at(row)];
        seen[at(row)] = column;
        stack[at(depth)] = row;
        next[at(depth++)] = pivot == none ? 0 : l.begin(pivot);
    }
};

template <Scalar T> SparseLu<T>::SparseLu(SparseColumns<T> const& a, double threshold) : rows_(a.rows()), cols_(a.cols()), least_(std::min(rows_, cols_))
{
    l_.start = HeapArray<int>(at(cols_) + 1);
    u_.start = HeapArray<int>(at(cols_) + 1);
    pivot_of_row_ = HeapArray<int>(at(rows_));
    made_ = l_.start && u_.start && pivot_of_row_ && factor(a, threshold);
}

template <Scalar T> bool SparseLu<T>::factor(SparseColumns<T> const& a, double threshold)
{
    Search search(rows_);
    HeapArray<T> const x(at(std::max(rows_, cols_)));
    if (!search || !x)
        return false;
    std::fill(x.begin(), x.end(), T());
    std::fill(pivot_of_row_.begin(), pivot_of_row_.end(), none);
    l_.start[0] = u_.start[0] = 0;
    // Rows before this one have all become pivots.
    int first_free = 0;
    for (int j = 0; j < cols_; ++j) {
        search.begin();
        for (int k = a.begin(j); k < a.end(j); ++k)
            search.from(a.row(k), j, l_, pivot_of_row_);
        for (int k = a.begin(j); k < a.end(j); ++k)
            x[at(a.row(k))] = a.value(k);
        int chosen = none;
        double largest = 0;
        for (int place = search.first; place < rows_; ++place) {
            int const row = search.order[at(place)], pivot = pivot_of_row_[at(row)];
            T const value = x[at(row)];
            if (pivot == none) {
                double const modulus = std::abs(value);
                // NaN is as good as any.
                if (chosen == none || modulus > largest || (modulus == largest && row < chosen)) {
                    largest = modulus;
                    chosen = row;
                }
                continue;
            }
            if (!u_.add(pivot, value))
                return false;
            for (int k = l_.begin(pivot); k < l_.end(pivot); ++k)
                x[at(l_.row[at(k)])] -= l_.value[at(k)] * value;
        }
        if (j < least_) {
            if (j < rows_ && search.seen[at(j)] == j && pivot_of_row_[at(j)] == none && x[at(j)] != T{} && std::abs(x[at(j)]) >= threshold * largest)
                chosen = j;
            while (chosen == none && pivot_of_row_[at(first_free)] != none)
                ++first_free;
            if (chosen == none)
                chosen = first_free;
            T const pivot_value = x[at(chosen)];
            if (!u_.add(j, pivot_value))
                return false;
            pivot_of_row_[at(chosen)] = j;
            for (int place = search.first; place < rows_; ++place) {
                int const row = search.order[at(place)];
                if (pivot_of_row_[at(row)] == none && x[at(row)] != T{} && !l_.add(row, x[at(row)] / pivot_value))
                    return false;
            }
        }
        for (int place = search.first; place < rows_; ++place)
            x[at(search.order[at(place)])] = T();
        l_.start[at(j) + 1] = l_.count;
        u_.start[at(j) + 1] = u_.count;
    }
    number_the_rest();
    sort_columns(u_, x);
    return true;
}

// Rows that never became a pivot follow the others, in their order.
template <Scalar T> void SparseLu<T>::number_the_rest()
{
    int next = least_;
    for (int& pivot : pivot_of_row_)
        if (pivot == none)
            pivot = next++;
}

template <Scalar T> void SparseLu<T>::sort_columns(Columns& columns, HeapArray<T> const& scratch)
{
    for (int j = 0; j < cols_; ++j) {
        int* const from = columns.row.data() + columns.begin(j);
        int* const to = columns.row.data() + columns.end(j);
        for (int k = columns.begin(j); k < columns.end(j); ++k)
            scratch[at(columns.row[at(k)])] = columns.value[at(k)];
        std::sort(from, to);
        for (int k = columns.begin(j); k < columns.end(j); ++k)
            columns.value[at(k)] = scratch[at(columns.row[at(k)])];
    }
}

template <Scalar T> M<double> SparseLu<T>::lower(bool unordered) const
{
    HeapArray<T> const x(at(rows_));
    HeapArray<int> const touched(at(rows_)), row_of_pivot(at(rows_));
    SparseCollector<T> collected(rows_, least_);
    if (!x || !touched || !row_of_pivot)
        return Access<double>::without_storage();
    for (int row = 0; row < rows_; ++row)
        row_of_pivot[at(pivot_of_row_[at(row)])] = row;
    for (int j = 0; j < least_; ++j) {
        int count = 0;
        auto const put = [&](int row, T value) {
            int const place = unordered ? row : pivot_of_row_[at(row)];
            x[at(place)] = value;
            touched[at(count++)] = place;
        };
        put(row_of_pivot[at(j)], T(1));
        for (int k = l_.begin(j); k < l_.end(j); ++k)
            put(l_.row[at(k)], l_.value[at(k)]);
        std::sort(touched.begin(), touched.begin() + count);
        for (int k = 0; k < count; ++k)
            if (!collected.add(touched[at(k)], j, x[at(touched[at(k)])]))
                return Access<double>::without_storage();
    }
    return collected.value();
}

template <Scalar T> M<double> SparseLu<T>::upper() const
{
    SparseCollector<T> collected(least_, cols_);
    for (int j = 0; j < cols_; ++j)
        for (int k = u_.begin(j); k < u_.end(j); ++k)
            if (!collected.add(u_.row[at(k)], j, u_.value[at(k)]))
                return Access<double>::without_storage();
    return collected.value();
}

template <Scalar T> M<double> SparseLu<T>::both() const
{
    HeapArray<T> const x(at(rows_));
    HeapArray<int> const below(at(rows_));
    SparseCollector<T> collected(rows_, cols_);
    if (!x || !below)
        return Access<double>::without_storage();
    for (int j = 0; j < cols_; ++j) {
        int count = 0;
        for (int k = u_.begin(j); k < u_.end(j); ++k)
            if (!collected.add(u_.row[at(k)], j, u_.value[at(k)]))
                return Access<double>::without_storage();
        for (int k = l_.begin(j); k < l_.end(j); ++k) {
            int const place = pivot_of_row_[at(l_.row[at(k)])];
            x[at(place)] = l_.value[at(k)];
            below[at(count++)] = place;
        }
        std::sort(below.begin(), below.begin() + count);
        for (int k = 0; k < count; ++k)
            if (!collected.add(below[at(k)], j, x[at(below[at(k)])]))
                return Access<double>::without_storage();
    }
    return collected.value();
}

template <Scalar T> M<double> SparseLu<T>::permutation() const
{
    SparseCollector<double> collected(rows_, rows_);
    for (int row = 0; row < rows_; ++row)
        if (!collected.add(pivot_of_row_[at(row)], row, 1))
            return Access<double>::without_storage();
    return collected.value();
}

template class SparseLu<double>;
template class SparseLu<Complex>;

} // namespace arrlib
