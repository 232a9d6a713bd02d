// The value of the language: M<double> for numbers, text and logicals, full or sparse, of two to
// four dimensions, and M<M<double>> for cell arrays.
#ifndef ARRLIB_CORE_MATRIX_H
#define ARRLIB_CORE_MATRIX_H

#include "core/api.h"
#include "core/storage.h"
#include "runtime/errors.h"

#include <cstddef>
#include <type_traits>

// The smallest and largest zero-based row and column among stored entries.
struct col_list_limits_t {
    int row_min, row_max, col_min, col_max;
};

class MObject;

namespace arrlib {
template <class T> struct Elements;
// The library's own writers, which build values field by field (core/access.h).
template <class T> struct Access;
enum class ElementPart : char { real = 'r', imaginary = 'i' };
struct in_its_storage {};
// A block of the pool, or null after a report, which never leaves as an exception.
ARRLIB_API void* allocate_header(std::size_t size) noexcept;
// Not zero while a debugger watches the variables (runtime/scope.h).
ARRLIB_API extern int variables_watched;
// Not zero once the scope has held a variable: it has to hear of new names then.
ARRLIB_API extern int variables_listed;
ARRLIB_API void follow_name(MObject* variable);

// The general forms of r() and i(), out of line.
template <class T> struct ARRLIB_API Elements {
    static T& write(M<T>& matrix, ElementPart which, double k);
    static T& write(M<T>& matrix, ElementPart which, double row, double col);
    static T& write(M<T>& matrix, ElementPart which, double row, double col, double depth);
    static T& write(M<T>& matrix, ElementPart which);
    static T const& read(M<T> const& matrix, ElementPart which, double k);
    static T const& read(M<T> const& matrix, ElementPart which, double row, double col);
    static T const& read(M<T> const& matrix, ElementPart which, double row, double col, double depth);
    static T const& read(M<T> const& matrix, ElementPart which);
    // Gives the value storage of its own, in full form: references need a place to refer to. False when
    // that cannot be had, with what was thrown kept for refuse(): around a call that may throw no number
    // stays in a register, in every loop over elements.
    ARRLIB_COLD static bool make_writable(M<T>& matrix) noexcept;
    // Throws what make_writable kept, or ends the process: there is nothing to refer to.
    [[noreturn]] ARRLIB_COLD static void refuse();
    // Reports the real part that is not there.
    [[noreturn]] ARRLIB_COLD static void outside(M<T> const& matrix, double k);
    [[noreturn]] ARRLIB_COLD static void outside(M<T> const& matrix, double row, double col);
    // By zero-based position, which must exist.
    static T const& readable(M<T> const& matrix, ElementPart which, unsigned at);

private:
    static unsigned checked(M<T> const& matrix, ElementPart which, double k);
    static unsigned checked(M<T> const& matrix, ElementPart which, double row, double col);
    static unsigned checked(M<T> const& matrix, ElementPart which, double row, double col, double depth);
    static unsigned checked(M<T> const& matrix, ElementPart which);
    static T& writable(M<T>& matrix, ElementPart which, unsigned at);
};

} // namespace arrlib

// Holds the name that messages and the variable scope use. Names are compared by address and are
// not owned: whoever names a matrix keeps the text alive.
class ARRLIB_API MObject {
public:
    char const* getname() const { return name_; }
    void setname(char const* name)
    {
        name_ = name;
        if (ARRLIB_UNLIKELY(arrlib::variables_listed))
            arrlib::follow_name(this);
    }

    virtual char const* classname() const;
    virtual ~MObject() = default;
    // Shows a copy of the value as a statement without a semicolon does.
    virtual void display(int);

protected:
    explicit constexpr MObject(char const* name) : name_(name) {}
    // For the constructor that leaves every field as it is.
    explicit MObject(global_M_t) {}
    MObject(MObject const&) = default;
    // Assigning a value leaves the target's name.
    MObject& operator=(MObject const&) { return *this; }

private:
    char const* name_;
};

// Copies share their storage and count references; whoever writes copies first when the storage is
// shared. A value whose storage could not be had, and one that was moved from, is empty.
// Subscripts are 1-based; elements lie column by column.
template <class T> class ARRLIB_API M : public MObject {
public:
    using element_type = T;

    // --- construction -------------------------------------------------------------------------
    // "Out of memory!" is reported when a size does not fit or memory cannot be had; the value is
    // then empty.

    // 0x0, with room for the spare elements.
    M() : M(unmade{}, nullptr)
    {
        if (ARRLIB_UNLIKELY(!make_at_once(0, 0)))
            make(0, 0, false);
    }
    // 1x1.
    M(T const& value);
    // rows x cols, full; complex when `complex` is not zero. Elements are not initialised.
    M(int complex, int rows, int cols) : M(unmade{}, nullptr)
    {
        make(rows, cols, complex != 0);
        mark_scalar_variable();
    }
    // rows x cols, sparse, with room for nzmax entries and that many zero entries at position 0.
    M(int complex, int nzmax, int rows, int cols);
    // N-dimensional; trailing dims of 1 are dropped, negative ones become 0.
    M(int complex, int sparse, int nzmax, int ndims, int const* dims);
    // A named variable. The scope may list it, and give it the value of a global of that name.
    M(char const* name, int rows, int cols) : M(unmade{}, name)
    {
        if (ARRLIB_UNLIKELY(!make_at_once(rows, cols)))
            make(rows, cols, false);
        flags_ |= scalar_variable_mark;
        if (ARRLIB_UNLIKELY(arrlib::variables_watched || (nx_default_error_flags & nx_error_register)))
            register_named();
    }
    // Touches no field.
    explicit M(global_M_t);
    // A constant of the library: empty or 1x1, in storage that is never given back.
    constexpr M(char const* name, arrlib::StaticStorage<T> const& made)
        : MObject(name), flags_(0), ndims_(2), dims_{made.elements, made.elements, made.elements, made.elements}, capacity_(made.capacity), shared_(made.record),
          re_(made.re), im_(made.im), nnz_(made.elements), index_(nullptr)
    {
    }
    M(M const& other)
        : MObject(other), flags_(other.flags_ & ~kept_marks), ndims_(other.ndims_), dims_{other.dims_[0], other.dims_[1], other.dims_[2], other.dims_[3]},
          capacity_(other.capacity_), shared_(other.shared_), re_(other.re_), im_(other.im_), nnz_(other.nnz_), index_(other.index_)
    {
        if (ARRLIB_LIKELY(shared_ != nullptr))
            arrlib::add_reference(shared_);
    }
    M(M&& other) noexcept
        : MObject(other), flags_(other.flags_ & ~kept_marks), ndims_(other.ndims_), dims_{other.dims_[0], other.dims_[1], other.dims_[2], other.dims_[3]},
          capacity_(other.capacity_), shared_(other.shared_), re_(other.re_), im_(other.im_), nnz_(other.nnz_), index_(other.index_)
    {
        other.forget_storage();
    }
    // A number in the storage of another one, which nobody else holds and which is empty afterwards.
    M(M& number, T const& value, arrlib::in_its_storage);
    M(Mr<T> const& selection);
    M(Sr<T> const& selection);
    M(Mb<T> const& bracket);
    M(Mc<T> const& bracket);

    ~M() override
    {
        if (ARRLIB_UNLIKELY(getname() && ((flags_ & kept_marks) || arrlib::variables_watched)))
            destroy_named();
        else
            drop_storage();
    }

    M& operator=(M const& other)
    {
        if (ARRLIB_LIKELY(this != &other)) {
            if (ARRLIB_LIKELY(other.shared_ != nullptr))
                arrlib::add_reference(other.shared_);
            StorageRef const old(*this);
            copy_fields(other);
        }
        return *this;
    }
    M& operator=(M&& other) noexcept
    {
        // A number into a place that holds one, and has as much room: copying fields that have just been
        // written one by one would wait for each of them.
        if (std::is_same_v<T, double> && is_number() && other.is_number() && other.capacity_ <= capacity_ && !dirty()) {
            re_[0] = other.re_[0];
            flags_ = assigned_flags(other);
        } else if (ARRLIB_LIKELY(this != &other)) {
            StorageRef const old(*this);
            copy_fields(other);
            other.forget_storage();
        }
        return *this;
    }

    // x = (BR(x), ...): extends x in place where it can. A template, so that x = {} stays clear.
    template <class U> M& operator=(Mb<U> const& bracket) { return assign_bracket(bracket); }

    // Makes the matrix empty and named without looking at what it was: for memory that holds no
    // value yet.
    void create(char const* name);
    // A private copy of `source` in the complex and sparse forms asked for. A full source in sparse
    // form stores every element, zeros included.
    void deepcopy(int complex, int sparse, M const& source);
    void deepcopy(int complex, M const& source) { deepcopy(complex, source.issparse(), source); }

    // Headers come from the pool; null after its report. A report that is thrown is shown instead: a
    // header that is not there has to come back as null.
    static void* operator new(std::size_t size) noexcept { return arrlib::allocate_header(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept
    {
        if (block)
            arrlib::pool.release(block, size);
    }
    static void operator delete(void*, void*) noexcept {}

    // --- what the value is --------------------------------------------------------------------
    char const* classname() const override;
    void display(int) override;
    // True when the given pointer is the name pointer.
    bool issamename(char const* name) const { return getname() == name; }

    int isstr() const { return (flags_ & string_flag) != 0; }
    int issparse() const { return (flags_ & sparse_flag) != 0; }
    int islogical() const { return (flags_ & logical_flag) != 0; }
    void setstr(int on) { set_flag(string_flag, on); }
    void setsparse(int on) { set_flag(sparse_flag, on); }
    void setlogical(int on) { set_flag(logical_flag, on); }
    int isc() const { return im_ != nullptr; }
    // True when other values share the storage (or there is none): a writer must copy first.
    bool dirty() const { return !shared_ || !arrlib::is_only_reference(shared_); }
    // Drops an imaginary part of zeros; 1 if the value is still complex.
    int getreal();
    // Makes the value complex; returns 1.
    int getcomplex();
    // Makes a value of its own out of shared storage.
    void unshare();

    // --- sizes --------------------------------------------------------------------------------
    int rows() const { return dims_[0]; }
    // dims[1]; trailing dims do not count.
    int cols() const { return dims_[1]; }
    // Size of dimension 1 to 4; others report "%s.size(dim): no such dimension" and give 0.
    int size(int dim) const;
    // Number of elements.
    int size() const
    {
        switch (ndims_) {
        case 2:
            return dims_[0] * dims_[1];
        case 3:
            return dims_[0] * dims_[1] * dims_[2];
        case 4:
            return dims_[0] * dims_[1] * dims_[2] * dims_[3];
        default:
            return -1;
        }
    }
    int getndims() const { return ndims_; }
    // Four sizes.
    int const* getdims() const { return dims_; }
    // Largest size; 0 when any is 0.
    int length() const;
    // 1-based number of the first dimension larger than 1; 1 when there is none.
    int nsingleton() const;
    // 1-based number of the only dimension larger than 1; 2 when there is none, 0 when there are more.
    int vectordim() const;
    // Drops trailing dims of 1 or less while more than two are in use.
    void collapse();
    // New sizes for the same elements, in the same order: "reshape: size is wrong".
    void reshape(int rows, int cols);
    void reshape(int ndims, int const* dims);

    // --- elements -----------------------------------------------------------------------------
    // Addresses, 1-based, unchecked, into storage that others may share.
    T* addr() const { return re_; }
    T* addr(int k) const { return re_ + k - 1; }
    T* addr(int i, int j) const { return re_ + (static_cast<std::ptrdiff_t>(dims_[0]) * (j - 1) + i - 1); }
    T* addi() const { return im_; }
    T* addi(int k) const { return im_ + k - 1; }
    T* addi(int i, int j) const { return im_ + (static_cast<std::ptrdiff_t>(dims_[0]) * (j - 1) + i - 1); }
    // Elements the block has room for.
    int capacity() const { return capacity_; }
    // Stored elements.
    int& getnnz() { return nnz_; }
    int getnnz() const { return nnz_; }
    // Element k, or 0 (an empty matrix for cells) when there is none.
    T operator[](int k) const;

    // References to real and imaginary parts, 1-based, bounds checked. An index outside is reported
    // and ends the process: "%s.r(row,col): row or col out of matrix", "%s.r(row,col,depth): row or
    // col out of matrix", "%s.r(%s): idx out of matrix", "%s.r(): matrix is empty"; the same with
    // "i". The forms that can write give a shared value its own storage first, a real one its
    // imaginary part, and a sparse one its full form (S(i,j) reads and writes sparse elements).
    T& r(double k) { return element(position(k), k); }
    T& r(double row, double col) { return element(position(row), position(col), row, col); }
    T& r(double row, double col, double depth) { return elements::write(*this, arrlib::ElementPart::real, row, col, depth); }
    T& r() { return elements::write(*this, arrlib::ElementPart::real); }
    T const& r(double k) const
    {
        unsigned const at = position(k);
        if (ARRLIB_LIKELY(at < static_cast<unsigned>(nnz_) && !issparse()))
            return re_[at];
        return elements::read(*this, arrlib::ElementPart::real, k);
    }
    T const& r(double row, double col) const { return elements::read(*this, arrlib::ElementPart::real, row, col); }
    T const& r(double row, double col, double depth) const { return elements::read(*this, arrlib::ElementPart::real, row, col, depth); }
    T const& r() const { return elements::read(*this, arrlib::ElementPart::real); }
    T& i(double k) { return elements::write(*this, arrlib::ElementPart::imaginary, k); }
    T& i(double row, double col) { return elements::write(*this, arrlib::ElementPart::imaginary, row, col); }
    T& i(double row, double col, double depth) { return elements::write(*this, arrlib::ElementPart::imaginary, row, col, depth); }
    T& i() { return elements::write(*this, arrlib::ElementPart::imaginary); }
    T const& i(double k) const { return elements::read(*this, arrlib::ElementPart::imaginary, k); }
    T const& i(double row, double col) const { return elements::read(*this, arrlib::ElementPart::imaginary, row, col); }
    T const& i(double row, double col, double depth) const { return elements::read(*this, arrlib::ElementPart::imaginary, row, col, depth); }
    T const& i() const { return elements::read(*this, arrlib::ElementPart::imaginary); }

    // --- subscripts (core/subscript.h) --------------------------------------------------------
    Sr<T> operator()(double k);
    Sr<T> operator()(double i, double j);
    Sr<T> operator()(double i, double j, double k);
    Sr<T> operator()(double i, double j, double k, double l);
    Mr<T> operator()(M<double> const& i);
    Mr<T> operator()(M<double> const& i, M<double> const& j);
    Mr<T> operator()(M<double> const& i, M<double> const& j, M<double> const& k);
    Mr<T> operator()(M<double> const& i, M<double> const& j, M<double> const& k, M<double> const& l);
    Ms<T> br(M<double> const& i);
    Ms<T> br(M<double> const& i, M<double> const& j);
    Ms<T> br(M<double> const& i, M<double> const& j, M<double> const& k);
    Ms<T> br(M<double> const& i, M<double> const& j, M<double> const& k, M<double> const& l);

    // --- assignment and deletion (core/assign.cpp) --------------------------------------------
    // What assigning to a proxy does: one index, two indices, any selection, A(...) = [].
    void vwcopy(M const& source, M<double> const& i);
    void vwcopy(M const& source, M<double> const& i, M<double> const& j);
    void vwcopyn(Mr<T> const& selection, M const& source);
    void vwcopy0(Mr<T> const& selection);

    // --- sparse storage (core/sparse.cpp) -----------------------------------------------------
    // Each first reports "%s.%s: not sparse" for a full matrix.
    bool verify_sparse(char const* operation) const;
    T* spaddr() const;
    T* spaddi() const;
    // Zero-based linear positions of the stored entries, rising.
    int* getindex() const;
    // Number of the entry at a zero-based linear position, or -1.
    int search(int position) const;
    // Scatters the stored values over n zeroed elements.
    void unsparse(int n, T* re, T* im) const;
    // Makes room: entries up to n are added as value 0 at position 0, for the caller to fill.
    void extend_nnz(int n);
    // Column starts and row numbers of the stored entries, in arrays that the caller gives back
    // with nx_release_index; null after "Out of memory!". Entry c of the starts is the number of
    // the first entry in column c, the last one the number of entries.
    int* Jc() const;
    int* Jc(col_list_limits_t& limits) const;
    int* Ir() const;
    // Sets the positions from row numbers and column starts.
    void IrJc(int const* ir, int const* jc);
    // Orders the entries by position.
    void sort();
    // Adds entries of the same position up and drops zeros, in the order of the entries.
    void resparse();
    // Change the form of the value; return 1. getsparse(1) stores zeros too.
    int getfull();
    int getsparse(int with_zeros);

    // A subscript proxy over the matrix may write, so it takes this mark away.
    void clear_scalar_variable() { flags_ &= ~scalar_variable_mark; }
    bool is_scalar_variable() const { return (flags_ & scalar_variable_mark) != 0; }
    // The value outlives the object, as a declared global does.
    bool is_global() const { return (flags_ & global_mark) != 0; }

private:
    template <class U> friend struct arrlib::Elements;
    template <class U> friend struct arrlib::Access;
    using elements = arrlib::Elements<T>;
    template <class U> friend class M;

    enum flag : unsigned {
        string_flag = 1,
        sparse_flag = 2,
        logical_flag = 4,
        scalar_variable_mark = 8,
        global_mark = 16,
        // The variable scope holds the address of this object.
        listed_mark = 32,
        // These belong to the object, not to its value.
        kept_marks = global_mark | listed_mark,
        value_flags = string_flag | sparse_flag | logical_flag
    };

    // Drops a reference at the end of its block, after the fields have been overwritten.
    class StorageRef {
    public:
        explicit StorageRef(M const& owner) : re_(owner.re_), shared_(owner.shared_), index_(owner.index_), capacity_(owner.capacity_) {}
        ~StorageRef()
        {
            if (shared_ && arrlib::drop_reference(shared_))
                arrlib::Storage<T>::release(re_, shared_, index_, capacity_);
        }
        StorageRef(StorageRef const&) = delete;
        StorageRef& operator=(StorageRef const&) = delete;

    private:
        T* re_;
        arrlib::StorageRecord* shared_;
        int* index_;
        int capacity_;
    };

    // A real full value of one element, or an empty one when its storage could not be had.
    M(arrlib::StorageBlock<T> const& block, int one)
        : MObject(nullptr), flags_(0), ndims_(2), dims_{block.re ? one : 0, block.re ? one : 0, block.re ? one : 0, block.re ? one : 0},
          capacity_(block.capacity), shared_(block.record), re_(block.re), im_(nullptr), nnz_(block.re ? one : 0), index_(nullptr)
    {
    }
    // An empty value without storage.
    struct unmade {};
    M(unmade, char const* name)
        : MObject(name), flags_(0), ndims_(2), dims_{0, 0, 0, 0}, capacity_(0), shared_(nullptr), re_(nullptr), im_(nullptr), nnz_(0), index_(nullptr)
    {
    }

    M& assign_bracket(Mb<T> const& bracket);
    void make(int rows, int cols, bool complex);
    // A number or an empty value in a chunk of the pool, onto an empty one without storage; false where
    // that is not at hand.
    bool make_at_once(int rows, int cols)
    {
        if constexpr (std::is_same_v<T, double>) {
            using Storage = arrlib::Storage<double>;
            int const one = rows == 1 && cols == 1;
            void* const chunk = one || rows < 1 || cols < 1 ? arrlib::pool.take_chunk() : nullptr;
            if (ARRLIB_LIKELY(chunk != nullptr)) {
                int const capacity = one + Storage::spare;
                dims_[0] = dims_[1] = dims_[2] = dims_[3] = one;
                adopt(Storage::lay_out(chunk, Storage::bytes(static_cast<std::size_t>(capacity), false), capacity, false), one);
                return true;
            }
        }
        return false;
    }
    // The fields of a real value of one element in a chunk of the pool, but for its flags and the two
    // pointers that are null.
    void become_number(void* chunk, T value);
    // A real value of one element, through the slower half of the pool.
    ARRLIB_COLD void make_number(T const& value);
    void make(int complex, int sparse, int nzmax, int ndims, int const* dims);
    void adopt(arrlib::StorageBlock<T> const& block, int count)
    {
        capacity_ = block.capacity;
        shared_ = block.record;
        re_ = block.re;
        im_ = block.im;
        index_ = block.index;
        nnz_ = count;
    }
    void forget_storage()
    {
        ndims_ = 2;
        dims_[0] = dims_[1] = dims_[2] = dims_[3] = 0;
        capacity_ = nnz_ = 0;
        shared_ = nullptr;
        re_ = im_ = nullptr;
        index_ = nullptr;
        flags_ &= static_cast<unsigned>(kept_marks);
    }
    // The end of the value: its fields are read no more, and only where the storage goes with it.
    void drop_storage()
    {
        if (ARRLIB_LIKELY(shared_ != nullptr) && arrlib::drop_reference(shared_))
            arrlib::Storage<T>::release(re_, shared_, index_, capacity_);
    }
    ARRLIB_COLD void destroy_named();
    ARRLIB_COLD void register_named();

    void set_flag(unsigned flag, int on) { flags_ = on ? flags_ | flag : flags_ & ~flag; }
    void mark_scalar_variable()
    {
        if (nnz_ == 1 && !issparse())
            flags_ |= scalar_variable_mark;
    }
    // A real full value of one element.
    bool is_number() const { return nnz_ == 1 && !im_ && !issparse(); }
    unsigned assigned_flags(M const& other) const
    {
        unsigned const both = flags_ & other.flags_ & scalar_variable_mark;
        return (flags_ & kept_marks) | (other.flags_ & value_flags) | (other.is_number() ? both : 0u);
    }
    void copy_fields(M const& other)
    {
        flags_ = assigned_flags(other);
        ndims_ = other.ndims_;
        for (int d = 0; d < 4; ++d)
            dims_[d] = other.dims_[d];
        capacity_ = other.capacity_;
        shared_ = other.shared_;
        re_ = other.re_;
        im_ = other.im_;
        nnz_ = other.nnz_;
        index_ = other.index_;
    }

    // Zero-based position of a 1-based subscript, truncated; the largest unsigned for any that
    // cannot exist.
    static unsigned position(double subscript)
    {
        return subscript >= 1.0 && subscript < 2147483648.0 ? static_cast<unsigned>(static_cast<int>(subscript)) - 1u : ~0u;
    }
    bool in_place() const { return !issparse() && !dirty(); }
    T& element(unsigned at, double k)
    {
        if (ARRLIB_UNLIKELY(!in_place()) && !elements::make_writable(*this))
            elements::refuse();
        if (ARRLIB_UNLIKELY(at >= static_cast<unsigned>(nnz_)))
            elements::outside(*this, k);
        return re_[at];
    }
    T& element(unsigned i, unsigned j, double row, double col)
    {
        if (ARRLIB_UNLIKELY(!in_place()) && !elements::make_writable(*this))
            elements::refuse();
        if (ARRLIB_UNLIKELY(i >= static_cast<unsigned>(dims_[0]) || j >= static_cast<unsigned>(dims_[1])))
            elements::outside(*this, row, col);
        return re_[static_cast<std::size_t>(j) * static_cast<unsigned>(dims_[0]) + i];
    }

    unsigned flags_;
    int ndims_;
    int dims_[4];
    int capacity_;
    arrlib::StorageRecord* shared_;
    T* re_;
    T* im_;
    int nnz_;
    int* index_;
};

template <> ARRLIB_API void M<double>::make_number(double const& value);

template <> inline void M<double>::become_number(void* chunk, double value)
{
    using Storage = arrlib::Storage<double>;
    // All constants: the compiler writes the fields in a few pieces.
    ndims_ = 2;
    dims_[0] = dims_[1] = dims_[2] = dims_[3] = 1;
    capacity_ = Storage::scalar_capacity;
    nnz_ = 1;
    arrlib::StorageBlock<double> const block = Storage::lay_out(chunk, Storage::scalar_bytes, Storage::scalar_capacity, false);
    shared_ = block.record;
    re_ = block.re;
    re_[0] = value;
}

template <> inline M<double>::M(double const& value) : MObject(nullptr), im_(nullptr), index_(nullptr)
{
    void* const chunk = arrlib::pool.take_chunk();
    if (ARRLIB_UNLIKELY(!chunk)) {
        make_number(value);
        return;
    }
    flags_ = scalar_variable_mark;
    become_number(chunk, value);
}

template <> inline M<double>::M(M& number, double const& value, arrlib::in_its_storage)
    : MObject(nullptr), flags_(scalar_variable_mark), ndims_(2), dims_{1, 1, 1, 1}, capacity_(number.capacity_), shared_(number.shared_), re_(number.re_),
      im_(nullptr), nnz_(1), index_(nullptr)
{
    re_[0] = value;
    number.forget_storage();
}

template <> ARRLIB_API M<M<double>>::M(M<double> const& value);
template <> ARRLIB_API M<double>::M(Mr<double> const& selection);
template <> ARRLIB_API M<M<double>>::M(Mr<M<double>> const& selection);
template <> ARRLIB_API M<double>::M(Sr<double> const& selection);
template <> ARRLIB_API M<M<double>>::M(Sr<M<double>> const& selection);
template <> ARRLIB_API void M<double>::display(int);
template <> ARRLIB_API void M<M<double>>::display(int);

#if !defined(ARRLIB_IMPORTING)
extern template struct arrlib::Elements<double>;
extern template struct arrlib::Elements<M<double>>;
extern template class M<double>;
extern template class M<M<double>>;
#endif

#endif
