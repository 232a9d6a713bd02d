// The value of the language: M<double> for numbers, text and logicals, full or sparse, of two to
// four dimensions, and M<M<double>> for cell arrays.
#ifndef ARRLIB_CORE_MATRIX_H
#define ARRLIB_CORE_MATRIX_H

#include "core/api.h"
#include "core/due.h"
#include "core/storage.h"
#include "runtime/errors.h"

#include <cstddef>
#include <cstdint>
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
struct in_header {};
// The flag of 1x1 variables that no proxy has been made over.
inline constexpr unsigned scalar_mark = 8;
// What a value is but for its elements, and where they are: the fields behind its name, in the order that
// debuggers know. Each copied in one piece: values are copied more often than anything else, and the
// compiler would move field by field.
struct Form {
    unsigned flags;
    int ndims;
    int dims[4];
    int capacity;
    int unused;
};
template <class T> struct Place {
    StorageRecord* shared;
    T* re;
    T* im;
    int nnz;
    union {
        // Zero-based positions of the entries of a sparse value.
        int* index;
        // The element of a number that has no storage but this; re points to it, and shared is null.
        double number;
    };
};
// Of a number in its header, and of one in a chunk of the pool.
ARRLIB_API extern Form const form_in_header, form_in_chunk;
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
        form_.flags |= scalar_variable_mark;
        if (ARRLIB_UNLIKELY(arrlib::variables_watched || (nx_default_error_flags & nx_error_register)))
            register_named();
    }
    // Touches no field.
    explicit M(global_M_t);
    // A constant of the library: empty or 1x1, in storage that is never given back.
    constexpr M(char const* name, arrlib::StaticStorage<T> const& made)
        : MObject(name), form_{0, 2, {made.elements, made.elements, made.elements, made.elements}, made.capacity, 0},
          place_{made.record, made.re, made.im, made.elements, {nullptr}}
    {
    }
    M(M const& other)
        : MObject(other), form_(other.form_), place_(other.place_)
    {
        form_.flags &= ~kept_marks;
        // Of the other, whose fields have long been written.
        if (ARRLIB_LIKELY(other.place_.shared != nullptr))
            arrlib::add_reference(other.place_.shared);
        else
            take_number(other);
    }
    M(M&& other) noexcept
        : MObject(other), form_(other.form_), place_(other.place_)
    {
        form_.flags &= ~kept_marks;
        if (ARRLIB_UNLIKELY(!place_.shared))
            take_number(other);
        other.forget_storage();
    }
    // A number that needs no storage but its header, as operators and subscripts give it.
    M(T const& value, arrlib::in_header);
    M(Mr<T> const& selection);
    M(Sr<T> const& selection);
    M(Mb<T> const& bracket);
    M(Mc<T> const& bracket);

    ~M() override
    {
        // Most temporaries are numbers without a name or storage: one test for both.
        if (ARRLIB_LIKELY(!(reinterpret_cast<std::uintptr_t>(getname()) | reinterpret_cast<std::uintptr_t>(place_.shared))))
            return;
        if (ARRLIB_UNLIKELY(getname() && ((form_.flags & kept_marks) || arrlib::variables_watched)))
            destroy_named();
        else
            drop_storage();
    }

    M& operator=(M const& other)
    {
        if (ARRLIB_LIKELY(this != &other)) {
            arrlib::compute_due();
            if (ARRLIB_LIKELY(other.place_.shared != nullptr))
                arrlib::add_reference(other.place_.shared);
            StorageRef const old(*this);
            copy_fields(other);
        }
        return *this;
    }
    M& operator=(M&& other) noexcept
    {
        // A number into a place that holds one, and has as much room: copying fields that have just been
        // written one by one would wait for each of them.
        if constexpr (std::is_same_v<T, double>) {
            if (ARRLIB_LIKELY(other.is_in_header())) {
                double const value = other.place_.number;
                if (ARRLIB_LIKELY(is_number() && !dirty())) {
                    place_.re[0] = value;
                    form_.flags = assigned_flags(other, true);
                    return *this;
                }
            }
        }
        return take_over(other);
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

    int isstr() const { return (form_.flags & string_flag) != 0; }
    int issparse() const { return (form_.flags & sparse_flag) != 0; }
    int islogical() const { return (form_.flags & logical_flag) != 0; }
    void setstr(int on) { set_flag(string_flag, on); }
    void setsparse(int on)
    {
        // What is taken for sparse has no number where the positions are.
        if (ARRLIB_UNLIKELY(on && is_in_header()))
            leave_header();
        set_flag(sparse_flag, on);
    }
    void setlogical(int on) { set_flag(logical_flag, on); }
    int isc() const { return place_.im != nullptr; }
    // True when other values share the storage (or there is none): a writer must copy first.
    bool dirty() const { return ARRLIB_LIKELY(place_.shared != nullptr) ? !arrlib::is_only_reference(place_.shared) : !is_in_header(); }
    // Drops an imaginary part of zeros; 1 if the value is still complex.
    int getreal();
    // Makes the value complex; returns 1.
    int getcomplex();
    // Makes a value of its own out of shared storage.
    void unshare();

    // --- sizes --------------------------------------------------------------------------------
    int rows() const { return form_.dims[0]; }
    // dims[1]; trailing dims do not count.
    int cols() const { return form_.dims[1]; }
    // Size of dimension 1 to 4; others report "%s.size(dim): no such dimension" and give 0.
    int size(int dim) const;
    // Number of elements.
    int size() const
    {
        switch (form_.ndims) {
        case 2:
            return form_.dims[0] * form_.dims[1];
        case 3:
            return form_.dims[0] * form_.dims[1] * form_.dims[2];
        case 4:
            return form_.dims[0] * form_.dims[1] * form_.dims[2] * form_.dims[3];
        default:
            return -1;
        }
    }
    int getndims() const { return form_.ndims; }
    // Four sizes.
    int const* getdims() const { return form_.dims; }
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
    // Addresses, 1-based, unchecked, into storage that others may share: copies, and until its end a
    // statement that has the value as an operand.
    T* addr() const
    {
        if (ARRLIB_UNLIKELY(arrlib::elements_due != nullptr))
            return static_cast<T*>(arrlib::computed(place_.re));
        return place_.re;
    }
    // Whether the value is a number that has no storage but its header.
    bool is_in_header() const
    {
        if constexpr (std::is_same_v<T, double>)
            return place_.re == &place_.number;
        else
            return false;
    }
    // The first element. One in the header is read where it was written, which processors see through.
    T const& front() const
    {
        if constexpr (std::is_same_v<T, double>)
            if (ARRLIB_LIKELY(is_in_header()))
                return place_.number;
        return *addr();
    }
    T* addr(int k) const { return addr() + k - 1; }
    T* addr(int i, int j) const { return addr() + (static_cast<std::ptrdiff_t>(form_.dims[0]) * (j - 1) + i - 1); }
    T* addi() const { return place_.im; }
    T* addi(int k) const { return place_.im + k - 1; }
    T* addi(int i, int j) const { return place_.im + (static_cast<std::ptrdiff_t>(form_.dims[0]) * (j - 1) + i - 1); }
    // Elements the block has room for.
    int capacity() const { return form_.capacity; }
    // Stored elements.
    int& getnnz() { return place_.nnz; }
    int getnnz() const { return place_.nnz; }
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
        if (ARRLIB_LIKELY(at < static_cast<unsigned>(place_.nnz) && !issparse()))
            return addr()[at];
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
    void clear_scalar_variable() { form_.flags &= ~scalar_variable_mark; }
    bool is_scalar_variable() const { return (form_.flags & scalar_variable_mark) != 0; }
    // The value outlives the object, as a declared global does.
    bool is_global() const { return (form_.flags & global_mark) != 0; }

private:
    template <class U> friend struct arrlib::Elements;
    template <class U> friend struct arrlib::Access;
    using elements = arrlib::Elements<T>;
    template <class U> friend class M;

    enum flag : unsigned {
        string_flag = 1,
        sparse_flag = 2,
        logical_flag = 4,
        scalar_variable_mark = arrlib::scalar_mark,
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
        explicit StorageRef(M const& owner) : place_(owner.place_), capacity_(owner.form_.capacity) {}
        ~StorageRef()
        {
            if (place_.shared && arrlib::drop_reference(place_.shared))
                arrlib::Storage<T>::release(place_.re, place_.shared, place_.index, capacity_);
        }
        StorageRef(StorageRef const&) = delete;
        StorageRef& operator=(StorageRef const&) = delete;

    private:
        arrlib::Place<T> place_;
        int capacity_;
    };

    // An empty value without storage.
    struct unmade {};
    M(unmade, char const* name)
        : MObject(name), form_{0, 2, {0, 0, 0, 0}, 0, 0}, place_{nullptr, nullptr, nullptr, 0, {nullptr}}
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
                form_.dims[0] = form_.dims[1] = form_.dims[2] = form_.dims[3] = one;
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
        form_.capacity = block.capacity;
        place_.shared = block.record;
        place_.re = block.re;
        place_.im = block.im;
        place_.index = block.index;
        place_.nnz = count;
    }
    ARRLIB_COLD void leave_header()
    {
        unsigned const flags = form_.flags;
        M made(front());
        take_over(made);
        form_.flags = flags;
    }
    __attribute__((noinline)) M& take_over(M& other)
    {
        // What is assigned is not due any longer.
        arrlib::compute_due();
        if (ARRLIB_LIKELY(this != &other)) {
            StorageRef const old(*this);
            copy_fields(other);
            other.forget_storage();
        }
        return *this;
    }
    void forget_storage()
    {
        form_ = {form_.flags & static_cast<unsigned>(kept_marks), 2, {0, 0, 0, 0}, 0, 0};
        place_ = {nullptr, nullptr, nullptr, 0, {nullptr}};
    }
    // The end of the value: its fields are read no more, and only where the storage goes with it.
    void drop_storage()
    {
        if (ARRLIB_LIKELY(place_.shared != nullptr) && arrlib::drop_reference(place_.shared))
            arrlib::Storage<T>::release(place_.re, place_.shared, place_.index, form_.capacity);
    }
    ARRLIB_COLD void destroy_named();
    ARRLIB_COLD void register_named();

    void set_flag(unsigned flag, int on) { form_.flags = on ? form_.flags | flag : form_.flags & ~flag; }
    void mark_scalar_variable()
    {
        if (place_.nnz == 1 && !issparse())
            form_.flags |= scalar_variable_mark;
    }
    // A real full value of one element.
    bool is_number() const { return place_.nnz == 1 && !place_.im && !issparse(); }
    unsigned assigned_flags(M const& other, bool number) const
    {
        unsigned const both = form_.flags & other.form_.flags & scalar_variable_mark;
        return (form_.flags & kept_marks) | (other.form_.flags & value_flags) | (number ? both : 0u);
    }
    void copy_fields(M const& other)
    {
        unsigned const flags = assigned_flags(other, other.is_number());
        form_ = other.form_;
        place_ = other.place_;
        form_.flags = flags;
        if (ARRLIB_UNLIKELY(!place_.shared))
            take_number(other);
    }
    // After the fields of a value without shared storage were copied.
    void take_number(M const& other)
    {
        if constexpr (std::is_same_v<T, double>)
            if (other.is_in_header())
                place_.re = &place_.number;
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
        if (ARRLIB_UNLIKELY(at >= static_cast<unsigned>(place_.nnz)))
            elements::outside(*this, k);
        return place_.re[at];
    }
    T& element(unsigned i, unsigned j, double row, double col)
    {
        if (ARRLIB_UNLIKELY(!in_place()) && !elements::make_writable(*this))
            elements::refuse();
        if (ARRLIB_UNLIKELY(i >= static_cast<unsigned>(form_.dims[0]) || j >= static_cast<unsigned>(form_.dims[1])))
            elements::outside(*this, row, col);
        return place_.re[static_cast<std::size_t>(j) * static_cast<unsigned>(form_.dims[0]) + i];
    }

    arrlib::Form form_;
    arrlib::Place<T> place_;
};

template <> ARRLIB_API void M<double>::make_number(double const& value);

template <> inline void M<double>::become_number(void* chunk, double value)
{
    using Storage = arrlib::Storage<double>;
    form_ = arrlib::form_in_chunk;
    arrlib::StorageBlock<double> const block = Storage::lay_out(chunk, Storage::scalar_bytes, Storage::scalar_capacity, false);
    place_ = {block.record, block.re, nullptr, 1, {nullptr}};
    place_.re[0] = value;
}

template <> inline M<double>::M(double const& value) : MObject(nullptr)
{
    void* const chunk = arrlib::pool.take_chunk();
    if (ARRLIB_UNLIKELY(!chunk)) {
        make_number(value);
        return;
    }
    become_number(chunk, value);
}

template <>
inline M<double>::M(double const& value, arrlib::in_header) : MObject(nullptr), form_(arrlib::form_in_header)
{
    place_.shared = nullptr;
    place_.re = &place_.number;
    place_.im = nullptr;
    place_.nnz = 1;
    place_.number = value;
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
