// Assignment to any selection: more than two subscripts, more than two dimensions, sparse values.
#include "core/assign.h"

#include "core/read.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>
#include <type_traits>

using namespace arrlib;

namespace {

// A colon over a dimension that the target does not have yet reaches as far as the source asks.
template <class T> void stretch_colons(Odometer& odometer, Mr<T> const& selection, M<T> const& source)
{
    if (selection.target().size() > 0 || source.size() < 1)
        return;
    // Saturates: what is larger than any source leaves nothing for a colon.
    std::int64_t others = 1;
    int colons = 0, first_colon = 0;
    for (int k = 0; k < odometer.positions(); ++k) {
        if (odometer.subscript(k).is_colon()) {
            first_colon = colons++ ? first_colon : k;
        } else {
            others = std::min<std::int64_t>(others * std::max(odometer.subscript(k).count(), 1), INT_MAX);
        }
    }
    if (colons == 0)
        return;
    for (int k = first_colon; k < odometer.positions(); ++k)
        if (odometer.subscript(k).is_colon())
            odometer.subscript(k).resolve(selection.index(k), colons == 1 ? std::max(static_cast<int>(source.size() / others), 1) : source.getdims()[k]);
    odometer.recount();
}

int extent_of(Subscript const& subscript)
{
    return subscript.largest() == INT_MAX ? INT_MAX : subscript.largest() + 1;
}

// The sizes that hold every selected position.
template <class T> Dims grown(M<T> const& target, Odometer const& odometer)
{
    if (odometer.positions() == 1) {
        int const count = extent_of(odometer.subscript(0));
        return count > target.size() ? grown_vector(target, count) : Dims(target.getndims(), target.getdims());
    }
    int dims[max_dims];
    bool const empty = target.size() == 0;
    for (int k = 0; k < max_dims; ++k) {
        int const own = empty ? 1 : target.getdims()[k];
        dims[k] = k < odometer.positions() ? std::max(own, extent_of(odometer.subscript(k))) : own;
    }
    return Dims(max_dims, dims);
}

// True when no subscript needs a report, whatever grows.
template <class T> bool can_grow(Odometer const& odometer, M<T> const& target)
{
    for (int k = 0; k < odometer.positions(); ++k)
        if (odometer.subscript(k).smallest() < 0)
            return false;
    return odometer.positions() != 1 || target.vectordim() != 0 || odometer.subscript(0).largest() < target.size();
}

template <class T> void store_selected(M<T>& target, Odometer const& odometer, int const* sizes, M<T> const& source)
{
    int const step = source.size() == 1 ? 0 : 1;
    T* const re = target.addr();
    T* const im = target.addi();
    T const* const from_re = source.addr();
    T const* const from_im = source.addi();
    odometer.walk(sizes, [=](int n, int at) { re[at] = from_re[n * step]; });
    if (im)
        odometer.walk(sizes, [=](int n, int at) { im[at] = from_im ? from_im[n * step] : T(); });
}

void store_sparse(M<double>& target, Odometer const& odometer, int const* sizes, M<double> const& source)
{
    if (source.issparse() && odometer.positions() == 2 && odometer.subscript(0).is_rising() && odometer.subscript(1).is_rising() && source.size() != 1) {
        assign_sparse_block(target, odometer.subscript(0), odometer.subscript(1), source);
        return;
    }
    HeapArray<int> positions(static_cast<std::size_t>(odometer.count()));
    if (!positions)
        return;
    odometer.walk(sizes, [&positions](int n, int at) { positions[static_cast<std::size_t>(n)] = at; });
    assign_sparse(target, positions.data(), odometer.count(), source);
}

template <class T> void vwcopyn_full(M<T>& target, Mr<T> const& selection, M<T> const& source_given)
{
    M<T> source = source_given;
    source.clear_scalar_variable();
    if constexpr (std::is_same_v<T, double>)
        if (source.issparse() && !target.issparse()) {
            source.getfull();
            if (source.issparse())
                return;
        }
    Odometer odometer;
    if (!odometer.resolve(selection))
        return;
    stretch_colons(odometer, selection, source);
    if (odometer.count() < 0) {
        error(messages::out_of_memory);
        return;
    }
    if (!can_grow(odometer, target)) {
        odometer.walk_reporting(selection, target.getdims(), true, [](int, int) {});
        return;
    }
    bool const empty_index = odometer.positions() == 1 && selection.index(0).size() == 0 && !odometer.subscript(0).is_colon();
    if (empty_index)
        return;
    if (source.size() != 1 && source.size() != odometer.count()) {
        OperandName const a(target), b(source), index(selection.index(0));
        error("%s(%s)=%s: size(%s) different than size(%s)", a, index, b, b, index);
        return;
    }
    if (odometer.count() == 0)
        return;
    if (source.isc() && !target.isc()) {
        target.getcomplex();
        if (!target.isc())
            return;
    }
    Dims const shape = grown(target, odometer);
    int const linear[] = {shape.count, 1, 1, 1};
    if constexpr (std::is_same_v<T, double>)
        if (target.issparse()) {
            if (enlarge_sparse(target, shape))
                store_sparse(target, odometer, odometer.positions() == 1 ? linear : shape.size, source);
            return;
        }
    if (enlarge(target, shape))
        store_selected(target, odometer, odometer.positions() == 1 ? linear : shape.size, source);
}

} // namespace

template <class T> void M<T>::vwcopyn(Mr<T> const& selection, M const& source)
{
    vwcopyn_full(*this, selection, source);
}

template void M<double>::vwcopyn(Mr<double> const&, M<double> const&);
template void M<M<double>>::vwcopyn(Mr<M<double>> const&, M<M<double>> const&);
