#include "core/matrix.h"

#include "core/dims.h"
#include "core/subscript.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/report.h"
#include "runtime/scope.h"

#include <algorithm>
#include <type_traits>

using namespace arrlib;

namespace {

// Where an exception cannot go on, the error that it carries is shown at least.
void show_error_in_flight()
{
    if (error_in_flight())
        error_lasterr();
}

} // namespace

void* arrlib::allocate_header(std::size_t size) noexcept
{
    try {
        return pool.allocate(size);
    } catch (...) {
        show_error_in_flight();
        return nullptr;
    }
}

char const* MObject::classname() const
{
    return "MObject";
}

void MObject::display(int) {}

template <class T> char const* M<T>::classname() const
{
    return std::is_same_v<T, double> ? "double" : "cell_double";
}

constinit Form const arrlib::form_in_header = {scalar_mark, 2, {1, 1, 1, 1}, 1, 0};
constinit Form const arrlib::form_in_chunk = {scalar_mark, 2, {1, 1, 1, 1}, Storage<double>::scalar_capacity, 0};

template <class T> M<T>::M(global_M_t tag) : MObject(tag) {}

template <> void M<double>::make_number(double const& value)
{
    StorageBlock<double> const block = Storage<double>::take_scalar(value);
    int const one = block.re ? 1 : 0;
    form_.flags = 0;
    form_.ndims = 2;
    form_.dims[0] = form_.dims[1] = form_.dims[2] = form_.dims[3] = one;
    adopt(block, one);
    mark_scalar_variable();
}

template <class T> void M<T>::make(int rows, int cols, bool complex)
{
    int const dims[] = {rows, cols};
    make(complex, 0, 0, 2, dims);
}

// Every constructor that allocates ends here; when the storage cannot be had the value stays empty.
template <class T> void M<T>::make(int complex, int sparse, int nzmax, int ndims, int const* dims)
{
    Dims const shape(ndims, dims);
    bool const is_sparse = sparse && std::is_same_v<T, double>;
    if (shape.count < 0) {
        error(is_sparse ? messages::matrix_too_large : messages::out_of_memory);
        return;
    }
    int const stored = is_sparse ? std::max(nzmax, 0) : shape.count;
    StorageBlock<T> const block = Storage<T>::take(stored, complex != 0, is_sparse);
    if (!block.record)
        return;
    adopt(block, is_sparse ? std::min(stored, shape.count) : shape.count);
    form_.ndims = shape.ndims;
    std::copy_n(shape.size, max_dims, form_.dims);
    if (is_sparse) {
        form_.flags |= sparse_flag;
        std::fill_n(place_.index, form_.capacity, 0);
        Storage<T>::clear(place_.re, form_.capacity);
        if (place_.im)
            Storage<T>::clear(place_.im, form_.capacity);
    }
}

template <class T> M<T>::M(int complex, int nzmax, int rows, int cols) : M(unmade{}, nullptr)
{
    int const dims[] = {rows, cols};
    make(complex, 1, nzmax, 2, dims);
}

template <class T> M<T>::M(int complex, int sparse, int nzmax, int ndims, int const* dims) : M(unmade{}, nullptr)
{
    make(complex, sparse, nzmax, ndims, dims);
}

template <> M<M<double>>::M(M<double> const& value) : M(unmade{}, nullptr)
{
    make(1, 1, false);
    if (place_.re)
        place_.re[0] = value;
}

template <class T> void M<T>::register_named()
{
    if (!getname())
        return;
    if (scope_declares_globals()) {
        form_.flags |= global_mark;
        if (MObject* const saved = variables_scope.take_saved(getname())) {
            // A saved value of the other kind gives way to the new variable.
            if (M* const value = dynamic_cast<M*>(saved))
                *this = *value;
            variables_scope.discard(saved);
        }
    }
    if (variables_scope.list(this))
        form_.flags |= listed_mark;
}

// The end of a variable that the scope or a debugger may know. A destructor cannot let an error
// out, so one that is thrown here is reported instead.
template <class T> void M<T>::destroy_named()
{
    if (form_.flags & listed_mark)
        variables_scope.forget(this);
    try {
        if (form_.flags & global_mark)
            variables_scope.save(new M(*this), getname());
    } catch (...) {
        show_error_in_flight();
    }
    bool const watched_scalar = is_scalar_variable() && place_.nnz == 1 && variables_watched;
    drop_storage();
    if (watched_scalar)
        debug(getname());
}

template <class T> void M<T>::create(char const* name)
{
    setname(name);
    form_.flags = 0;
    forget_storage();
    make(0, 0, false);
}

template <class T> void M<T>::deepcopy(int complex, int sparse, M const& source)
{
    bool const to_sparse = sparse && std::is_same_v<T, double>;
    bool const scatter = source.issparse() && !to_sparse;
    int const count = scatter ? source.size() : source.place_.nnz;
    StorageBlock<T> const block = Storage<T>::take(count, complex != 0, to_sparse);
    if (!block.record)
        return;
    M made(unmade{}, nullptr);
    made.form_.flags = source.form_.flags & (string_flag | logical_flag);
    made.adopt(block, count);
    made.form_.ndims = source.form_.ndims;
    std::copy_n(source.form_.dims, max_dims, made.form_.dims);
    made.setsparse(to_sparse);
    if constexpr (std::is_same_v<T, double>) {
        if (scatter) {
            source.unsparse(count, made.place_.re, made.place_.im);
            *this = std::move(made);
            return;
        }
        if (to_sparse && source.issparse())
            std::copy_n(source.place_.index, count, made.place_.index);
        else if (to_sparse)
            for (int k = 0; k < count; ++k)
                made.place_.index[k] = k;
    }
    Storage<T>::copy(made.place_.re, source.addr(), count);
    if (made.place_.im && source.place_.im)
        Storage<T>::copy(made.place_.im, source.place_.im, count);
    else if (made.place_.im)
        Storage<T>::clear(made.place_.im, count);
    *this = std::move(made);
}

template <class T> void M<T>::unshare()
{
    // What is due holds its operands and its result.
    arrlib::compute_due();
    if (dirty())
        deepcopy(isc(), issparse(), M(*this));
}

template <class T> int M<T>::getreal()
{
    if constexpr (std::is_same_v<T, double>)
        if (place_.im && std::all_of(place_.im, place_.im + place_.nnz, [](double part) { return part == 0; }))
            place_.im = nullptr;
    return isc();
}

template <class T> int M<T>::getcomplex()
{
    if (!isc() && std::is_same_v<T, double>)
        deepcopy(1, issparse(), M(*this));
    return 1;
}

template <class T> int M<T>::size(int dim) const
{
    if (dim >= 1 && dim <= max_dims)
        return form_.dims[dim - 1];
    error("%s.size(dim): no such dimension", OperandName(*this));
    return 0;
}

template <class T> int M<T>::length() const
{
    int const* const end = form_.dims + max_dims;
    return std::find(form_.dims, end, 0) != end ? 0 : *std::max_element(form_.dims, end);
}

template <class T> int M<T>::nsingleton() const
{
    for (int d = 0; d < max_dims; ++d)
        if (form_.dims[d] > 1)
            return d + 1;
    return 1;
}

template <class T> int M<T>::vectordim() const
{
    auto const larger = std::count_if(form_.dims, form_.dims + max_dims, [](int size) { return size > 1; });
    return larger == 0 ? 2 : larger == 1 ? nsingleton() : 0;
}

template <class T> void M<T>::collapse()
{
    while (form_.ndims > 2 && form_.dims[form_.ndims - 1] <= 1)
        --form_.ndims;
}

template <class T> void M<T>::reshape(int rows, int cols)
{
    int const dims[] = {rows, cols};
    reshape(2, dims);
}

template <class T> void M<T>::reshape(int ndims, int const* dims)
{
    Dims const shape(ndims, dims);
    if (shape.count != size()) {
        error("reshape: size is wrong");
        return;
    }
    form_.ndims = shape.ndims;
    std::copy_n(shape.size, max_dims, form_.dims);
}

template <class T> T M<T>::operator[](int k) const
{
    if (k < 1 || k > size())
        return T();
    return elements::readable(*this, ElementPart::real, static_cast<unsigned>(k) - 1);
}

template <class T> bool M<T>::verify_sparse(char const* operation) const
{
    if (!issparse())
        error("%s.%s: not sparse", OperandName(*this), operation);
    return issparse();
}

template <class T> T* M<T>::spaddr() const
{
    verify_sparse("spaddr");
    return addr();
}

template <class T> T* M<T>::spaddi() const
{
    verify_sparse("spaddi");
    return place_.im;
}

template <class T> int* M<T>::getindex() const
{
    verify_sparse("getindex");
    return place_.index;
}

template class M<double>;
template class M<M<double>>;
