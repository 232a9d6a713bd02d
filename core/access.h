// How the library's own code builds values field by field.
#ifndef ARRLIB_CORE_ACCESS_H
#define ARRLIB_CORE_ACCESS_H

#include "core/dims.h"
#include "core/matrix.h"

#include <algorithm>
#include <utility>

namespace arrlib {

template <class T> struct Access {
    // A full value of the given shape with uninitialised elements; empty after a report.
    static M<T> full(bool complex, Dims const& shape) { return M<T>(complex, 0, 0, shape.ndims, shape.size); }

    // A real full value of the shape of a full one.
    static M<T> full_like(M<T> const& shape)
    {
        M<T> made = without_storage();
        StorageBlock<T> const block = Storage<T>::take(shape.place_.nnz, false, false);
        if (block.record) {
            made.adopt(block, shape.place_.nnz);
            made.form_.ndims = shape.form_.ndims;
            std::copy_n(shape.form_.dims, max_dims, made.form_.dims);
        }
        return made;
    }

    // A full value of the given shape with room for `capacity` elements, for values that grow.
    static M<T> full_with_room(bool complex, Dims const& shape, int capacity)
    {
        M<T> made = without_storage();
        StorageBlock<T> const block = Storage<T>::take_room(capacity, complex, false);
        if (block.record) {
            made.adopt(block, shape.count);
            set_dims(made, shape);
        }
        return made;
    }

    // Most elements of a real value whose storage is a chunk of the pool.
    static constexpr int most_small = static_cast<int>((Pool::largest_small - sizeof(StorageRecord)) / sizeof(double)) - Storage<double>::spare;

    // A real full value of few numbers, at least one, built with less ado than by full(); empty after a report.
    static M<double> small(int rows, int cols)
    {
        M<double> made = Access<double>::without_storage();
        int const count = rows * cols, capacity = count + Storage<double>::spare;
        std::size_t const bytes = Storage<double>::bytes(static_cast<std::size_t>(capacity), false);
        if (void* const block = pool.allocate(bytes)) {
            made.adopt(Storage<double>::lay_out(block, bytes, capacity, false), count);
            made.form_.dims[0] = rows;
            made.form_.dims[1] = cols;
            made.form_.dims[2] = made.form_.dims[3] = 1;
        }
        return made;
    }

    // A sparse value with room for `capacity` entries of which `stored` count; nothing initialised.
    static M<T> sparse_with_room(bool complex, Dims const& shape, int stored, int capacity)
    {
        M<T> made = without_storage();
        StorageBlock<T> const block = Storage<T>::take_room(capacity, complex, true);
        if (block.record) {
            made.adopt(block, stored);
            set_dims(made, shape);
            made.setsparse(1);
        }
        return made;
    }

    // Empty and owning nothing.
    static M<T> without_storage() { return M<T>(typename M<T>::unmade{}, nullptr); }

    static void set_dims(M<T>& matrix, Dims const& shape)
    {
        matrix.form_.ndims = shape.ndims;
        std::copy_n(shape.size, max_dims, matrix.form_.dims);
    }

    // New sizes in place; the storage has room for them and belongs to this value alone.
    static void grow_in_place(M<T>& matrix, Dims const& shape)
    {
        set_dims(matrix, shape);
        matrix.place_.nnz = shape.count;
    }

    // Where the elements are, or will be when they have been computed (core/due.h).
    static T* elements(M<T> const& matrix) { return matrix.place_.re; }
    static StorageRecord* storage(M<T> const& matrix) { return matrix.place_.shared; }
    static void drop_imaginary(M<T>& matrix) { matrix.place_.im = nullptr; }
    // Null for a full value.
    static int* index(M<T> const& matrix) { return matrix.is_in_header() ? nullptr : matrix.place_.index; }

    // The string, logical and sparse flags of another value.
    static void copy_kind(M<T>& to, M<T> const& from)
    {
        to.setstr(from.isstr());
        to.setlogical(from.islogical());
    }
};

// A 1x1 logical value.
inline M<double> truth(bool is)
{
    M<double> value(is ? 1.0 : 0.0);
    value.setlogical(1);
    return value;
}

} // namespace arrlib

#endif
