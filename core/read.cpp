// Reading through subscript proxies.
#include "core/read.h"

#include "core/access.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
#include <type_traits>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

using namespace arrlib;

void arrlib::proxy_misused(char const* message)
{
    error(message);
    end_process();
}

namespace {

constexpr char linear_message[] = "%s(%s) : Index out of matrix. Index value was %s however the indexed matrix has %s elements.";
constexpr char row_message[] = "%s(%s,%s): row index out of matrix. Index was %s but indexed matrix has %s rows.";
constexpr char col_message[] = "%s(%s,%s): col index out of matrix. Index was %s but indexed matrix has %s columns.";

bool is_plain(M<double> const& matrix)
{
    return !matrix.issparse() && matrix.getndims() == 2;
}
bool is_plain(M<M<double>> const& matrix)
{
    return matrix.getndims() == 2;
}

template <class T> M<T> like(M<T> const& source, Dims const& shape)
{
    M<T> made = Access<T>::full(source.isc(), shape);
    Access<T>::copy_kind(made, source);
    made.clear_scalar_variable();
    return made;
}

// --- A(I) -----------------------------------------------------------------------------------------

template <class T> M<T> read_all(M<T> const& target)
{
    M<T> whole = share(target);
    if (target.size() > 0)
        whole.reshape(target.size(), 1);
    return whole;
}

// A position that A has, 0 after the report of one that it has not.
template <class T> ARRLIB_COLD int reported_linear(M<T> const& target, M<double> const& index, double value)
{
    error(linear_message, OperandName(target), OperandName(index), IntegerText(value), IntegerText(target.size()));
    return 0;
}

#if defined(__x86_64__)
// Zero-based position of a subscript, truncated; beyond every matrix when there is none such: the
// conversion answers the smallest integer for what does not fit, NaN included.
inline std::size_t position_of(double subscript)
{
    return static_cast<std::size_t>(_mm_cvttsd_si64(_mm_set_sd(subscript - 1)));
}

// Gathers elements as long as their subscripts lie within the matrix; returns how many it has done.
// The fewer instructions stand between the loads, the more of them overlap: one conversion and one
// comparison each is faster than several at a time and taking them apart.
int gather_inside(double* to, double const* from, double const* values, int count, int elements)
{
    auto const end = static_cast<std::size_t>(elements);
    int k = 0;
    for (; k + 4 <= count; k += 4) {
        std::size_t const a = position_of(values[k]), b = position_of(values[k + 1]);
        std::size_t const c = position_of(values[k + 2]), d = position_of(values[k + 3]);
        if (ARRLIB_UNLIKELY(a >= end || b >= end || c >= end || d >= end))
            break;
        double const w = from[a], x = from[b], y = from[c], z = from[d];
        to[k] = w;
        to[k + 1] = x;
        to[k + 2] = y;
        to[k + 3] = z;
    }
    return k;
}

// Gathers on all threads; false when some subscript lies outside the matrix.
bool gather_all_inside(double* to, double const* from, double const* values, int count, int elements)
{
    std::atomic<bool> outside{false};
    parallel_for(count, least_per_thread, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        std::ptrdiff_t k = begin + gather_inside(to + begin, from, values + begin, static_cast<int>(end - begin), elements);
        for (; k < end; ++k) {
            std::size_t const at = position_of(values[k]);
            if (at >= static_cast<std::size_t>(elements))
                return outside.store(true, std::memory_order_relaxed);
            to[k] = from[at];
        }
    });
    return !outside.load();
}
#endif

// Gathers one part, reporting each subscript outside the matrix if asked.
template <class T> bool gather_values(T* to, T const* from, M<T> const& target, M<double> const& index, bool report)
{
    int const elements = target.size();
    double const* const values = index.addr();
    int const n = index.size();
#if defined(__x86_64__)
    if constexpr (std::is_same_v<T, double>)
        if (n >= 2 * least_per_thread && gather_all_inside(to, from, values, n, elements))
            return true;
#endif
    int k = 0;
    while (k < n) {
#if defined(__x86_64__)
        if constexpr (std::is_same_v<T, double>)
            k += gather_inside(to + k, from, values + k, n - k, elements);
        int const stop = std::min(k + 4, n);
#else
        int const stop = n;
#endif
        for (; k < stop; ++k) {
            int at = zero_based(values[k]);
            if (ARRLIB_UNLIKELY(at < 0 || at >= elements))
                at = report ? reported_linear(target, index, values[k]) : 0;
            if (elements > 0)
                to[k] = from[at];
        }
    }
    return elements > 0;
}

template <class T> M<T> read_numeric(M<T> const& target, M<double> const& index)
{
    M<T> made = like(target, shape_of_linear_read(target, index, index.size()));
    if (made.size() < 1)
        return made;
    if (!gather_values(made.addr(), target.addr(), target, index, true))
        return x_M_of<T>();
    if (target.isc())
        gather_values(made.addi(), target.addi(), target, index, false);
    return made;
}

bool is_set(double value)
{
    return value != 0 && value == value;
}

// Packs the chosen elements of one part; `to` has room for one more than are chosen.
void pack(double* to, double const* from, double const* chosen, int count)
{
    for (int k = 0; k < count; ++k) {
        *to = from[k];
        to += is_set(chosen[k]);
    }
}
// Cells that are not chosen would be kept alive behind the end.
void pack(M<double>* to, M<double> const* from, double const* chosen, int count)
{
    for (int k = 0; k < count; ++k)
        if (is_set(chosen[k]))
            *to++ = from[k];
}

// A full mask no longer than the matrix, or with nothing set beyond it, needs no list of positions.
template <class T> M<T> read_mask(M<T> const& target, M<double> const& mask)
{
    double const* const chosen = mask.addr();
    int n = 0;
    for (int k = 0; k < mask.size(); ++k)
        n += is_set(chosen[k]);
    Dims const shape = shape_of_linear_read(target, mask, n);
    M<T> made = shape.count < 1 ? M<T>() : Access<T>::full_with_room(target.isc(), shape, n + 6);
    Access<T>::copy_kind(made, target);
    if (made.size() < 1)
        return made;
    int const reach = std::min(mask.size(), target.size());
    pack(made.addr(), target.addr(), chosen, reach);
    if (target.isc())
        pack(made.addi(), target.addi(), chosen, reach);
    return made;
}

template <class T> M<T> read_logical(M<T> const& target, M<double> const& index)
{
    int const elements = target.size();
    bool const beyond = !index.issparse() && index.size() > elements && std::any_of(index.addr() + elements, index.addr() + index.size(), is_set);
    if (!index.issparse() && !beyond)
        return read_mask(target, index);
    Subscript set;
    if (!set.resolve(index, 0))
        return x_M_of<T>();
    int const n = set.count();
    M<T> made = like(target, shape_of_linear_read(target, index, n));
    if (made.size() < 1)
        return made;
    for (int k = 0; k < n; ++k) {
        int at = set[k];
        if (ARRLIB_UNLIKELY(at >= elements)) {
            at = reported_linear(target, index, at + 1.0);
            if (elements == 0)
                return x_M_of<T>();
        }
        made.addr()[k] = target.addr()[at];
        if (target.isc())
            made.addi()[k] = target.addi()[at];
    }
    return made;
}

template <class T> M<T> read_linear(M<T> const& target, M<double> const& index)
{
    if (arrlib::is_colon(index))
        return read_all(target);
    if constexpr (std::is_same_v<T, double>)
        if (target.issamename(x_Mp))
            return M<double>(1);
    return index.islogical() ? read_logical(target, index) : read_numeric(target, index);
}

// --- A(I,J) ---------------------------------------------------------------------------------------

// Reports every subscript outside 1..extent and puts the first in its place.
template <class T>
HeapArray<int> mended(Mr<T> const& selection, M<double> const& index, Subscript const& subscript, int extent, char const* message)
{
    HeapArray<int> list(static_cast<std::size_t>(subscript.count()));
    if (!list)
        return list;
    double const* const values = index.issparse() || subscript.is_logical() || subscript.is_colon() ? nullptr : index.addr();
    for (int k = 0; k < subscript.count(); ++k) {
        int const at = subscript[k];
        double const value = values ? values[k] : at + 1.0;
        bool const good = at >= 0 && at < extent && value >= 1;
        list[static_cast<std::size_t>(k)] = good ? at : 0;
        if (!good)
            error(message, OperandName(selection.target()), OperandName(selection.index(0)), OperandName(selection.index(1)), IntegerText(value),
                  IntegerText(extent));
    }
    return list;
}

bool within(Subscript const& subscript, int extent)
{
    return subscript.smallest() >= 0 && subscript.largest() < extent && !subscript.has_value_below_one();
}

// Gathers the listed elements of a column. Loads stand before stores, four at a time, since the
// compiler cannot tell that the result is memory of its own.
template <class T> void gather_rows(T* to, T const* column, int const* rows, int count)
{
    int r = 0;
    if constexpr (std::is_same_v<T, double>)
        for (; r + 4 <= count; r += 4) {
            double const w = column[rows[r]], x = column[rows[r + 1]], y = column[rows[r + 2]], z = column[rows[r + 3]];
            to[r] = w;
            to[r + 1] = x;
            to[r + 2] = y;
            to[r + 3] = z;
        }
    for (; r < count; ++r)
        to[r] = column[rows[r]];
}

// Gathers columns of one part. `rows` is null when they are a run from `first_row`.
template <class T> void gather(T* to, T const* from, int source_rows, int const* rows, int first_row, int row_count, Subscript const& cols, int const* col_list)
{
    auto const gather_columns = [=, &cols](std::ptrdiff_t begin, std::ptrdiff_t end) {
        T* column_to = to + begin * row_count;
        for (std::ptrdiff_t c = begin; c < end; ++c) {
            T const* const column = from + static_cast<std::ptrdiff_t>(col_list ? col_list[c] : cols[static_cast<int>(c)]) * source_rows;
            if (rows)
                gather_rows(column_to, column, rows, row_count);
            else
                std::copy_n(column + first_row, row_count, column_to);
            column_to += row_count;
        }
    };
    // Copies of cells count references, on one thread.
    if constexpr (std::is_same_v<T, double>)
        parallel_for(cols.count(), least_per_thread / row_count + 1, gather_columns);
    else
        gather_columns(0, cols.count());
}

template <class T> M<T> read_block(Mr<T> const& selection)
{
    M<T> const& target = selection.target();
    M<double> const &i = selection.index(0), &j = selection.index(1);
    if (arrlib::is_colon(i) && arrlib::is_colon(j))
        return share(target);
    Subscript rows, cols;
    if (!rows.resolve(i, target.rows()) || !cols.resolve(j, target.cols()))
        return x_M_of<T>();
    // Columns are looked at first, whatever the selection comes to.
    HeapArray<int> mended_rows, mended_cols;
    if (!within(cols, target.cols()) && !(mended_cols = mended(selection, j, cols, target.cols(), col_message)))
        return x_M_of<T>();
    if (!within(rows, target.rows()) && !(mended_rows = mended(selection, i, rows, target.rows(), row_message)))
        return x_M_of<T>();
    M<T> made = like(target, Dims(rows.count(), cols.count()));
    if (made.size() < 1 || target.size() < 1)
        return made.size() < 1 ? made : x_M_of<T>();
    int const* const row_list = mended_rows ? mended_rows.data() : rows.list();
    gather(made.addr(), target.addr(), target.rows(), row_list, rows.first(), rows.count(), cols, mended_cols.data());
    if (target.isc())
        gather(made.addi(), target.addi(), target.rows(), row_list, rows.first(), rows.count(), cols, mended_cols.data());
    return made;
}

// --- any selection --------------------------------------------------------------------------------

template <class T> M<T> read_general(Mr<T> const& selection)
{
    M<T> const& target = selection.target();
    Odometer odometer;
    if (!odometer.resolve(selection))
        return x_M_of<T>();
    if (odometer.count() < 0) {
        error(messages::out_of_memory);
        return x_M_of<T>();
    }
    bool const linear = odometer.positions() == 1;
    if (linear && odometer.subscript(0).is_colon() && !target.issparse())
        return read_all(target);
    // The sizes beyond the subscripts used do not take part.
    int const elements[] = {target.size(), 1, 1, 1};
    int const* const sizes = linear ? elements : target.getdims();
    Dims const shape = linear ? shape_of_linear_read(target, selection.index(0), odometer.count()) : odometer.selected();
    bool const inside = odometer.inside(target);
    if (!inside && target.size() < 1) {
        odometer.walk_reporting(selection, sizes, false, [](int, int) {});
        return x_M_of<T>();
    }
    if constexpr (std::is_same_v<T, double>) {
        if (target.issparse() && shape.ndims > 2) {
            // Sparse values have two dimensions; what selects more is full.
            M<double> full_target = target;
            full_target.getfull();
            if (full_target.issparse())
                return x_M_of<T>();
            auto const index = [&selection](int k) { return k < selection.count() ? &selection.index(k) : nullptr; };
            return read_general(Mr<double>(selection.count(), full_target, index(0), index(1), index(2), index(3)));
        }
        if (target.issparse()) {
            if (!inside)
                odometer.walk_reporting(selection, sizes, false, [](int, int) {});
            return read_sparse(target, odometer, shape);
        }
    }
    M<T> made = like(target, shape);
    if (made.size() < 1)
        return made;
    auto const take = [&made, &target](int step, int at) {
        made.addr()[step] = target.addr()[at];
        if (target.isc())
            made.addi()[step] = target.addi()[at];
    };
    if (inside)
        odometer.walk(sizes, take);
    else
        odometer.walk_reporting(selection, sizes, false, take);
    return made;
}

} // namespace

// A row keeps its direction, so does a column; the index decides otherwise.
template <class T> Dims arrlib::shape_of_linear_read(M<T> const& target, M<double> const& index, int n)
{
    bool const target_is_row = target.getndims() == 2 && target.rows() == 1 && target.cols() != 1;
    bool const target_is_column = target.getndims() == 2 && target.cols() == 1 && target.rows() != 1;
    if (arrlib::is_colon(index))
        return Dims(n, 1);
    if (index.islogical()) {
        bool const index_is_row = index.getndims() == 2 && index.rows() == 1;
        bool const as_row = target_is_row || (!target_is_column && index_is_row);
        return as_row ? Dims(1, n) : Dims(n, 1);
    }
    bool const index_is_vector = index.vectordim() != 0;
    if (target.size() > 1 && index_is_vector && target_is_column)
        return Dims(n, 1);
    if (target.size() > 1 && index_is_vector && target_is_row)
        return Dims(1, n);
    return Dims(index.getndims(), index.getdims());
}

template <class T> M<T> arrlib::read(Mr<T> const& selection)
{
    bool plain = is_plain(selection.target());
    for (int k = 0; k < selection.count(); ++k)
        plain = plain && is_plain(selection.index(k));
    switch (selection.count()) {
    case 0:
        return share(selection.target());
    case 1:
        // A sparse logical index selects like a full one.
        if (is_plain(selection.target()) && (plain || (selection.index(0).islogical() && selection.index(0).getndims() == 2)))
            return read_linear(selection.target(), selection.index(0));
        return read_general(selection);
    case 2:
        return plain ? read_block(selection) : read_general(selection);
    default:
        return read_general(selection);
    }
}

namespace {

// Zero-based position of what the numeric subscripts select, or -1.
template <class T> int position_of(Sr<T> const& selection)
{
    M<T> const& target = selection.target();
    int const count = selection.count();
    if (count == 1)
        return static_cast<unsigned>(selection.subscript(0)) < static_cast<unsigned>(target.size()) ? selection.subscript(0) : -1;
    int position = 0;
    for (int k = count - 1; k >= 0; --k) {
        int const extent = target.getdims()[k];
        if (static_cast<unsigned>(selection.subscript(k)) >= static_cast<unsigned>(extent))
            return -1;
        position = position * extent + selection.subscript(k);
    }
    return position;
}

} // namespace

template <class T> M<T> arrlib::read(Sr<T> const& selection)
{
    M<T>& target = selection.target();
    if (selection.count() == 0)
        return share(target);
    int const position = position_of(selection);
    if (position < 0) {
        M<double> const i(selection.subscript(0) + 1.0), j(selection.subscript(1) + 1.0), k(selection.subscript(2) + 1.0), l(selection.subscript(3) + 1.0);
        return read_general(Mr<T>(selection.count(), target, &i, &j, &k, &l));
    }
    auto const at = static_cast<unsigned>(position);
    M<T> made = Access<T>::full(target.isc(), Dims(1, 1));
    if (made.size() != 1)
        return made;
    made.addr()[0] = Elements<T>::readable(target, ElementPart::real, at);
    if (target.isc())
        made.addi()[0] = Elements<T>::readable(target, ElementPart::imaginary, at);
    Access<T>::copy_kind(made, target);
    return made;
}

template <> M<double>::M(Mr<double> const& selection) : M(arrlib::read(selection)) {}
template <> M<M<double>>::M(Mr<M<double>> const& selection) : M(arrlib::read(selection)) {}
// The commonest read of all makes its number at once.
template <> M<double>::M(Sr<double> const& selection) : M(0.0, in_header())
{
    M const& target = selection.target();
    int const position = selection.count() > 0 ? position_of(selection) : -1;
    if (ARRLIB_UNLIKELY(position < 0 || target.place_.im)) {
        *this = arrlib::read(selection);
        return;
    }
    auto const at = static_cast<unsigned>(position);
    place_.number = ARRLIB_UNLIKELY(target.issparse()) ? Elements<double>::readable(target, ElementPart::real, at) : target.addr()[at];
    form_.flags = target.form_.flags & (string_flag | logical_flag);
}
template <> M<M<double>>::M(Sr<M<double>> const& selection) : M(arrlib::read(selection)) {}

template M<double> arrlib::read(Mr<double> const&);
template M<M<double>> arrlib::read(Mr<M<double>> const&);
template Dims arrlib::shape_of_linear_read(M<double> const&, M<double> const&, int);
template Dims arrlib::shape_of_linear_read(M<M<double>> const&, M<double> const&, int);
