// Assignment to one and two subscripts of full values, and the proxies' operators.
#include "core/assign.h"

#include "core/read.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/report.h"
#include "runtime/workers.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

using namespace arrlib;

namespace {

template <class T> bool is_full_2d(M<T> const& matrix)
{
    return !matrix.issparse() && matrix.getndims() == 2;
}

// Steps through a source that has one element for all places, or one for each.
template <class T> class Source {
public:
    explicit Source(M<T> const& source) : re_(source.addr()), im_(source.addi()), step_(source.size() == 1 ? 0 : 1) {}
    T const& re(int k) const { return re_[k * step_]; }
    bool isc() const { return im_ != nullptr; }
    T im(int k) const { return im_ ? im_[k * step_] : T(); }
    bool is_single() const { return step_ == 0; }
    T const* re() const { return re_; }

private:
    T const* re_;
    T const* im_;
    int step_;
};

// Makes room for `count` elements where growing by ones must stay linear.
int room_for(int count, int capacity, int largest)
{
    std::int64_t const roomy = std::max<std::int64_t>(static_cast<std::int64_t>(capacity) * 2, static_cast<std::int64_t>(count) + 6);
    return static_cast<int>(std::min<std::int64_t>(roomy, largest));
}

template <class T> void clear_range(M<T>& target, int from, int to)
{
    Storage<T>::clear(target.addr() + from, to - from);
    if (target.isc())
        Storage<T>::clear(target.addi() + from, to - from);
}

// Copies pages and columns of `source` to where they belong in the larger sizes of `to`.
template <class T> void spread(T* to, T const* from, int const* old_size, int const* new_size)
{
    for (int l = 0; l < old_size[3]; ++l)
        for (int k = 0; k < old_size[2]; ++k)
            for (int c = 0; c < old_size[1]; ++c) {
                std::size_t const column = (static_cast<std::size_t>(l) * static_cast<std::size_t>(new_size[2]) + static_cast<std::size_t>(k)) *
                                               static_cast<std::size_t>(new_size[1]) + static_cast<std::size_t>(c);
                Storage<T>::copy(to + column * static_cast<std::size_t>(new_size[0]), from, old_size[0]);
                from += old_size[0];
            }
}

// True when the elements stay where they are: only the last dimension in use grows.
bool keeps_places(int const* old_size, Dims const& shape)
{
    // A matrix that grows through one subscript becomes a vector of its elements.
    for (int d = 0; d < max_dims; ++d)
        if (old_size[d] > shape.size[d])
            return true;
    int last = max_dims - 1;
    while (last > 0 && old_size[last] == shape.size[last])
        --last;
    for (int d = 0; d < last; ++d)
        if (old_size[d] != shape.size[d])
            return std::all_of(old_size, old_size + max_dims, [](int size) { return size == 0; });
    // Beyond the dimension that grows there must be a single slice.
    return std::all_of(old_size + last + 1, old_size + max_dims, [](int size) { return size <= 1; });
}

} // namespace

template <class T> bool arrlib::enlarge(M<T>& target, Dims const& shape)
{
    if (shape.count < 0) {
        error(messages::out_of_memory);
        return false;
    }
    int const old_count = target.size();
    if (shape.count == old_count && !target.dirty()) {
        Access<T>::set_dims(target, shape);
        return true;
    }
    bool const in_place = keeps_places(target.getdims(), shape);
    if (in_place && !target.dirty() && shape.count <= target.capacity()) {
        Access<T>::grow_in_place(target, shape);
        clear_range(target, old_count, shape.count);
        return true;
    }
    bool const grows = shape.count > old_count && old_count > 0;
    int const capacity = grows && in_place ? room_for(shape.count, target.capacity(), Storage<T>::largest_count)
                         : shape.count <= Storage<T>::largest_count ? shape.count + Storage<T>::spare : INT_MAX;
    M<T> larger = Access<T>::full_with_room(target.isc(), shape, capacity);
    if (larger.dirty())
        return false;
    Access<T>::copy_kind(larger, target);
    if (in_place || old_count == 0) {
        Storage<T>::copy(larger.addr(), target.addr(), old_count);
        if (target.isc())
            Storage<T>::copy(larger.addi(), target.addi(), old_count);
        clear_range(larger, old_count, shape.count);
    } else {
        clear_range(larger, 0, shape.count);
        spread(larger.addr(), target.addr(), target.getdims(), shape.size);
        if (target.isc())
            spread(larger.addi(), target.addi(), target.getdims(), shape.size);
    }
    target = std::move(larger);
    return true;
}

template <class T> Dims arrlib::grown_vector(M<T> const& target, int count)
{
    int const at = target.vectordim();
    if (target.getndims() > 2 && at > 2) {
        int dims[max_dims] = {1, 1, 1, 1};
        dims[at - 1] = count;
        return Dims(max_dims, dims);
    }
    return target.rows() > 1 ? Dims(count, 1) : Dims(1, count);
}

// --- A(I) = B -------------------------------------------------------------------------------------

namespace {

// The target must be able to hold the parts of the source.
template <class T> bool match_complex(M<T>& target, M<T> const& source)
{
    if (source.isc() && !target.isc())
        target.getcomplex();
    return target.isc() || !source.isc();
}

template <class T> void assign_colon(M<T>& target, M<T> const& source)
{
    int const n = target.size();
    if (target.isc() && !source.isc())
        Access<T>::drop_imaginary(target);
    if (source.size() == n) {
        // Sharing the elements and keeping sizes and kind of the target.
        int const dims[] = {target.getdims()[0], target.getdims()[1]};
        int const string = target.isstr(), logical = target.islogical();
        target = source;
        target.reshape(2, dims);
        target.setstr(string);
        target.setlogical(logical);
    } else if (source.size() == 1) {
        target.unshare();
        if (!match_complex(target, source) || target.dirty())
            return;
        std::fill_n(target.addr(), n, source.addr()[0]);
        if (target.isc())
            std::fill_n(target.addi(), n, source.addi()[0]);
    } else if (source.size() == 0) {
        M<T> empty;
        Access<T>::copy_kind(empty, target);
        target = std::move(empty);
    } else {
        OperandName const a(target), b(source);
        error("%s(:)=%s: size(%s) different than size(%s)", a, b, b, a);
    }
}

// Writes from[k*step] to to[list[k]], of positions named twice the last.
void scatter(double* to, Subscript const& selected, double const* from, std::ptrdiff_t step)
{
    int const* const list = selected.list();
    std::ptrdiff_t const count = selected.count();
    if (selected.is_rising())
        return parallel_for(count, least_per_thread, [=](std::ptrdiff_t begin, std::ptrdiff_t end) {
            for (std::ptrdiff_t k = begin; k < end; ++k)
                to[list[k]] = from[k * step];
        });
    // Stores to places far apart wait for each other unless the places are fetched ahead.
    constexpr std::ptrdiff_t ahead = 16;
    std::ptrdiff_t k = 0;
    for (; k + ahead < count; ++k) {
        __builtin_prefetch(to + list[k + ahead], 1);
        to[list[k]] = from[k * step];
    }
    for (; k < count; ++k)
        to[list[k]] = from[k * step];
}

template <class T> void store(M<T>& target, Subscript const& selected, M<T> const& source)
{
    Source<T> const from(source);
    T* const re = target.addr();
    int const n = selected.count();
    if (selected.is_run() && !from.is_single())
        Storage<T>::copy(re + selected.first(), from.re(), n);
    else if (selected.is_run())
        std::fill_n(re + selected.first(), n, *from.re());
    else if constexpr (std::is_same_v<T, double>)
        scatter(re, selected, from.re(), from.is_single() ? 0 : 1);
    else
        for (int k = 0; k < n; ++k)
            re[selected[k]] = from.re(k);
    if (target.isc())
        for (int k = 0; k < n; ++k)
            target.addi()[selected[k]] = from.im(k);
}

} // namespace

template <class T> void M<T>::vwcopy(M const& source_given, M<double> const& i)
{
    // Held, so that it stays as it is, should it be the target itself; its end is not that of a
    // variable.
    M source = source_given;
    source.clear_scalar_variable();
    if (arrlib::is_colon(i))
        return assign_colon(*this, source);
    if (i.size() == 0)
        return;
    Subscript selected;
    if (!selected.resolve(i, 0))
        return;
    bool const fits = source.size() == 1 || source.size() == selected.count();
    if (i.islogical() && !fits) {
        error("%s(%s)=%s: a logical assignment ; source size != number of non zeros in index", OperandName(*this), OperandName(i), OperandName(source));
        return;
    }
    if (selected.has_value_below_one()) {
        error("%s(%s): index is non-positive", OperandName(*this), OperandName(i));
        return;
    }
    if (!match_complex(*this, source))
        return;
    int const count = std::max(selected.largest() == INT_MAX ? INT_MAX : selected.largest() + 1, size());
    int const own[] = {rows(), cols()};
    if (!enlarge(*this, count > size() ? grown_vector(*this, count) : Dims(2, own)))
        return;
    if (!fits) {
        OperandName const a(*this), b(source), index(i);
        error("%s(%s)=%s: size(%s) different than size(%s)", a, index, b, b, index);
        return;
    }
    store(*this, selected, source);
}

// --- A(I,J) = B -----------------------------------------------------------------------------------

namespace {

// A colon over an empty target reaches as far as the source asks.
template <class T> bool resolve_block(M<T> const& target, M<T> const& source, M<double> const& i, M<double> const& j, Subscript& rows, Subscript& cols)
{
    if (!rows.resolve(i, target.rows()) || !cols.resolve(j, target.cols()))
        return false;
    if (target.size() > 0 || source.size() == 0)
        return true;
    bool const i_colon = rows.is_colon(), j_colon = cols.is_colon();
    if (i_colon)
        rows.resolve(i, j_colon ? source.rows() : std::max(source.size() / std::max(cols.count(), 1), 1));
    if (j_colon)
        cols.resolve(j, i_colon ? source.cols() : std::max(source.size() / std::max(rows.count(), 1), 1));
    return true;
}

template <class T> void store_block(M<T>& target, Subscript const& rows, Subscript const& cols, M<T> const& source)
{
    Source<T> const from(source);
    auto const store_columns = [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        // One element may be asked for at more places than an int counts.
        int k = from.is_single() ? 0 : static_cast<int>(begin) * rows.count();
        for (int c = static_cast<int>(begin); c < end; ++c) {
            std::size_t const column = static_cast<std::size_t>(cols[c]) * static_cast<std::size_t>(target.rows());
            T* const re = target.addr() + column;
            if (rows.is_run() && !from.is_single())
                Storage<T>::copy(re + rows.first(), from.re() + k, rows.count());
            else if (rows.is_run())
                std::fill_n(re + rows.first(), rows.count(), *from.re());
            else
                for (int r = 0; r < rows.count(); ++r)
                    re[rows.list()[r]] = from.re(k + r);
            if (target.isc())
                for (int r = 0; r < rows.count(); ++r)
                    target.addi()[column + static_cast<std::size_t>(rows[r])] = from.im(k + r);
            k += from.is_single() ? 0 : rows.count();
        }
    };
    // Columns that may be named twice are written in order; so are cells, which count references.
    if (std::is_same_v<T, double> && cols.is_run())
        parallel_for(cols.count(), least_per_thread / rows.count() + 1, store_columns);
    else
        store_columns(0, cols.count());
}

int grown_extent(int extent, Subscript const& subscript)
{
    int const largest = subscript.largest();
    return std::max(extent, largest == INT_MAX ? INT_MAX : largest + 1);
}

} // namespace

template <class T> void M<T>::vwcopy(M const& source_given, M<double> const& i, M<double> const& j)
{
    M source = source_given;
    source.clear_scalar_variable();
    Subscript selected_rows, selected_cols;
    if (!resolve_block(*this, source, i, j, selected_rows, selected_cols))
        return;
    auto const refuse = [&](char const* message) { error(message, OperandName(*this), OperandName(i), OperandName(j), OperandName(source)); };
    if (selected_rows.has_value_below_one())
        return refuse("%s(%s,%s)=%s: row index is non-positive");
    if (selected_cols.has_value_below_one())
        return refuse("%s(%s,%s)=%s: col index is non-positive");
    auto const selected = static_cast<std::int64_t>(selected_rows.count()) * selected_cols.count();
    if (source.size() != 1 && selected != source.size())
        return refuse("%s(%s,%s)=%s: size(row index)*size(col index) is different than size(source)");
    if (selected == 0)
        return;
    if (!match_complex(*this, source))
        return;
    if (enlarge(*this, Dims(grown_extent(rows(), selected_rows), grown_extent(cols(), selected_cols))))
        store_block(*this, selected_rows, selected_cols, source);
}

// --- the proxies ----------------------------------------------------------------------------------

template <class T> Mr<T>& Mr<T>::operator=(M<T> const& source)
{
    M<T>& target = *target_;
    bool plain = is_full_2d(target) && is_full_2d(source) && count_ <= 2;
    for (int k = 0; k < count_; ++k)
        plain = plain && is_full_2d(*index_[k]);
    if (count_ == 0)
        target = source;
    else if (source.size() == 0)
        target.vwcopy0(*this);
    else if (!plain)
        target.vwcopyn(*this, source);
    else if (count_ == 1)
        target.vwcopy(source, *index_[0]);
    else
        target.vwcopy(source, *index_[0], *index_[1]);
    return *this;
}

namespace {

// True when a read yields nothing because nothing is selected, not because it failed.
template <class T> bool selects_nothing(Mr<T> const& selection)
{
    M<T> const& target = selection.target();
    for (int k = 0; k < selection.count(); ++k) {
        Subscript subscript;
        if (!subscript.resolve(selection.index(k), selection.count() == 1 ? target.size() : target.getdims()[k]))
            return false;
        if (subscript.count() == 0)
            return true;
    }
    return selection.count() == 0;
}

} // namespace

// What a failed read leaves must not delete elements.
template <class T> Mr<T>& Mr<T>::operator=(Mr const& source)
{
    M<T> const value(source);
    if (value.size() > 0 || selects_nothing(source))
        *this = value;
    return *this;
}

namespace {

// True when a 1x1 source could be stored at once: the target is its own, and the place exists or is
// beyond the end of a vector.
template <class T> bool store_single(Sr<T> const& place, M<T> const& source)
{
    M<T>& target = place.target();
    if (target.issparse() || target.dirty() || source.size() != 1 || source.issparse() || (source.isc() && !target.isc()))
        return false;
    int const count = place.count();
    // A vector that grows by its next element is what loops do.
    if (count == 1 && place.subscript(0) >= target.size() && target.getndims() == 2 && target.vectordim() != 0)
        if (!enlarge(target, grown_vector(target, place.subscript(0) == INT_MAX ? INT_MAX : place.subscript(0) + 1)))
            return true; // reported
    std::size_t position = 0;
    for (int k = count - 1; k >= 0; --k) {
        int const extent = count == 1 ? target.size() : target.getdims()[k];
        if (static_cast<unsigned>(place.subscript(k)) >= static_cast<unsigned>(extent))
            return false;
        position = count == 1 ? static_cast<std::size_t>(place.subscript(k)) : position * static_cast<std::size_t>(extent) + static_cast<std::size_t>(place.subscript(k));
    }
    target.addr()[position] = source.addr()[0];
    if (target.isc())
        target.addi()[position] = source.isc() ? source.addi()[0] : T();
    return true;
}

} // namespace

template <class T> Sr<T>& Sr<T>::operator=(M<T> const& source)
{
    if (count_ == 0) {
        *target_ = source;
        return *this;
    }
    if (ARRLIB_LIKELY(store_single(*this, source)))
        return *this;
    M<double> const i(subscript_[0] + 1.0), j(subscript_[1] + 1.0), k(subscript_[2] + 1.0), l(subscript_[3] + 1.0);
    Mr<T> const place(count_, *target_, &i, &j, &k, &l);
    if (source.size() == 0)
        target_->vwcopy0(place);
    else
        target_->vwcopyn(place, source);
    return *this;
}

template <class T> Sr<T>& Sr<T>::operator=(Sr const& source)
{
    M<T> const value(source);
    if (value.size() > 0 || source.count() == 0)
        *this = value;
    return *this;
}

template <class T> Ms<T>& Ms<T>::operator=(T const& element)
{
    M<T>& target = selection_.target();
    if (int const position = target.dirty() ? -1 : single_position(selection_); ARRLIB_LIKELY(position >= 0)) {
        target.addr()[position] = element;
        if (target.isc())
            target.addi()[position] = T();
        return *this;
    }
    if (selection_.count() == 0) {
        target = M<T>(element);
    } else if (selects_one(selection_)) {
        M<T> const one(element);
        Mr<T> place(selection_);
        // A value whose memory was not to be had would delete the element.
        if (one.size() == 1)
            place = one;
    }
    return *this;
}

template <class T> Ms<T>& Ms<T>::operator=(Ms const& source)
{
    return *this = static_cast<T>(source);
}

template bool arrlib::enlarge(M<double>&, Dims const&);
template bool arrlib::enlarge(M<M<double>>&, Dims const&);
template Dims arrlib::grown_vector(M<double> const&, int);
template Dims arrlib::grown_vector(M<M<double>> const&, int);
template void M<double>::vwcopy(M<double> const&, M<double> const&);
template void M<M<double>>::vwcopy(M<M<double>> const&, M<double> const&);
template void M<double>::vwcopy(M<double> const&, M<double> const&, M<double> const&);
template void M<M<double>>::vwcopy(M<M<double>> const&, M<double> const&, M<double> const&);
template Mr<double>& Mr<double>::operator=(M<double> const&);
template Mr<M<double>>& Mr<M<double>>::operator=(M<M<double>> const&);
template Mr<double>& Mr<double>::operator=(Mr<double> const&);
template Mr<M<double>>& Mr<M<double>>::operator=(Mr<M<double>> const&);
template Sr<double>& Sr<double>::operator=(M<double> const&);
template Sr<M<double>>& Sr<M<double>>::operator=(M<M<double>> const&);
template Sr<double>& Sr<double>::operator=(Sr<double> const&);
template Sr<M<double>>& Sr<M<double>>::operator=(Sr<M<double>> const&);
template Ms<double>& Ms<double>::operator=(double const&);
template Ms<M<double>>& Ms<M<double>>::operator=(M<double> const&);
template Ms<double>& Ms<double>::operator=(Ms<double> const&);
template Ms<M<double>>& Ms<M<double>>::operator=(Ms<M<double>> const&);
