// Where the non-zeros of a value are, how many there are, and which.
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "core/subscript.h"
#include "runtime/constants.h"

#include <algorithm>

using namespace arrlib;

int arrlib::count_nonzeros(M<double> const& x)
{
    double const *const re = x.addr(), *const im = x.addi();
    int const n = x.getnnz();
    int count = 0;
    if (im)
        for (int k = 0; k < n; ++k)
            count += (re[k] != 0) | (im[k] != 0);
    else
        for (int k = 0; k < n; ++k)
            count += re[k] != 0;
    return count;
}

namespace {

// The stored elements of a value that are not zero.
class NonZeros {
public:
    explicit NonZeros(M<double> const& x) : x_(x), count_(count_nonzeros(x)), stored_(static_cast<std::size_t>(count_) + 1)
    {
        if (!stored_)
            return;
        double const *const re = x.addr(), *const im = x.addi();
        int* const to = stored_.data();
        int at = 0;
        // Written first and kept when it counts.
        if (im)
            for (int k = 0; k < x.getnnz(); ++k) {
                to[at] = k;
                at += (re[k] != 0) | (im[k] != 0);
            }
        else
            for (int k = 0; k < x.getnnz(); ++k) {
                to[at] = k;
                at += re[k] != 0;
            }
    }

    explicit operator bool() const { return static_cast<bool>(stored_); }
    int count() const { return count_; }
    int position(int k) const { return index() ? index()[stored_.data()[k]] : stored_.data()[k]; }

    // A full list of them, uninitialised: a row for a row, else a column.
    M<double> list(bool complex) const
    {
        bool const row = x_.getndims() == 2 && x_.rows() == 1;
        return Access<double>::full(complex, row ? Dims(1, count_) : Dims(count_, 1));
    }
    void gather(double* to, double const* from) const
    {
        for (int k = 0; k < count_; ++k)
            to[k] = from[stored_.data()[k]];
    }

private:
    int const* index() const { return Access<double>::index(x_); }

    M<double> const& x_;
    int count_;
    HeapArray<int> stored_;
};

// The values in the given shape; without storage after a report.
M<double> values_of(M<double> const& x, NonZeros const& found, M<double> made)
{
    if (!has_storage(made))
        return made;
    Access<double>::copy_kind(made, x);
    found.gather(made.addr(), x.addr());
    if (made.isc())
        found.gather(made.addi(), x.addi());
    return made;
}

// False after a report.
bool rows_and_cols(M<double> const& x, NonZeros const& found, M<double>& rows, M<double>& cols)
{
    rows = found.list(false);
    cols = found.list(false);
    if (!has_storage(rows) || !has_storage(cols))
        return false;
    PositionSplit split(x);
    for (int k = 0; k < found.count(); ++k) {
        split.at(found.position(k));
        rows.addr()[k] = split.row() + 1.0;
        cols.addr()[k] = split.column() + 1.0;
    }
    return true;
}

} // namespace

M<double> find(M<double> const& x)
{
    NonZeros const found(x);
    if (!found)
        return x_M;
    M<double> made = found.list(false);
    if (!has_storage(made))
        return x_M;
    for (int k = 0; k < found.count(); ++k)
        made.addr()[k] = found.position(k) + 1.0;
    return made;
}

M<double> find(M<double> const& x, i_o_t, Mr<double> cols)
{
    NonZeros const found(x);
    M<double> row_list, col_list;
    if (!found || !rows_and_cols(x, found, row_list, col_list))
        return x_M;
    cols = col_list;
    return row_list;
}

M<double> find(M<double> const& x, i_o_t, Mr<double> cols, Mr<double> values)
{
    NonZeros const found(x);
    M<double> row_list, col_list;
    if (!found || !rows_and_cols(x, found, row_list, col_list))
        return x_M;
    M<double> const value_list = values_of(x, found, found.list(x.isc()));
    if (!has_storage(value_list))
        return x_M;
    cols = col_list;
    values = value_list;
    return row_list;
}

M<double> nnz(M<double> const& a)
{
    return static_cast<double>(a.issparse() ? a.getnnz() : count_nonzeros(a));
}

M<double> nzmax(M<double> const& a)
{
    int const room = a.issparse() ? std::max(a.getnnz(), a.capacity() - Storage<double>::spare) : a.size();
    return static_cast<double>(room);
}

M<double> nonzeros(M<double> const& a)
{
    NonZeros const found(a);
    if (!found)
        return x_M;
    M<double> made = values_of(a, found, Access<double>::full(a.isc(), Dims(found.count(), 1)));
    return has_storage(made) ? made : x_M;
}
