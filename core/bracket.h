// Bracket expressions: [a, b; c] and {a, b; c}.
#ifndef ARRLIB_CORE_BRACKET_H
#define ARRLIB_CORE_BRACKET_H

#include "core/matrix.h"

namespace arrlib {

// The elements of a bracket in order, the row breaks among them. They are held by address and must
// outlive the bracket, as the operands of one expression do.
class ARRLIB_API BracketElements {
public:
    static constexpr int inline_capacity = 16;

    BracketElements() : elements_(inline_), capacity_(inline_capacity), count_(0) {}
    explicit BracketElements(MObject const& first) : elements_(inline_), capacity_(inline_capacity), count_(1) { inline_[0] = &first; }
    BracketElements(BracketElements const& other);
    ~BracketElements()
    {
        if (ARRLIB_UNLIKELY(elements_ != inline_))
            release();
    }
    BracketElements& operator=(BracketElements const&) = delete;

    // When there is no room to be had "Out of memory!" is reported, and the bracket is empty from
    // then on.
    void append(MObject const& element)
    {
        if (ARRLIB_LIKELY(count_ < capacity_ || grow()))
            elements_[count_++] = &element;
    }

    int count() const { return count_; }
    int capacity() const { return capacity_; }
    MObject const& operator[](int k) const { return *elements_[k]; }

private:
    ARRLIB_COLD bool grow();
    ARRLIB_COLD void release();
    static MObject const** allocate(int capacity);
    bool move_to(MObject const** array, int capacity);

    MObject const** elements_;
    int capacity_;
    int count_;
    MObject const* inline_[inline_capacity];
};

// Reports, and ends the process.
[[noreturn]] ARRLIB_API void bracket_misused(char const* message);

// Whatever cannot stand in a bracket.
struct NoElement {
    template <class Any> NoElement(Any const&);
};

} // namespace arrlib

// A bracket of numbers and text, or, once it holds a cell array, of cell arrays: a value among
// those stands for one cell. Brackets are started by BR, appended to by the comma operator, and
// become values by conversion to M:
//
// Empty elements take no room. A row is as high as its last element and the value as wide as its
// widest row; where elements fall short there are zeros, and what stands out of its row is cut. The
// value is complex or sparse when a non-empty element is, text when any element is, logical when
// all are. Elements with pages are joined page by page; all must have the same pages: "cat:
// arguments do not have compatible dimensions". A bracket with a sparse element is joined as horzcat
// and vertcat do, and reports what they report.
//
// Assigning (BR(x), ...) to x extends x where it is when x shares its storage with nobody and the
// elements follow it in memory.
template <class T> class Mb {
public:
    Mb() { arrlib::bracket_misused("Mb called"); }
    explicit Mb(M<T> const& first) : elements_(first) {}
    // A bracket whose elements so far go on in another kind.
    explicit Mb(arrlib::BracketElements const& before) : elements_(before) {}
    Mb(Mb const&) = default;
    Mb& operator=(Mb const&) { arrlib::bracket_misused("Mb=Mb called"); }

    void append(MObject const& next) { elements_.append(next); }
    arrlib::BracketElements const& elements() const { return elements_; }

private:
    arrlib::BracketElements elements_;
};

// The bracket of a cell array. Each element becomes one cell, empty ones too; short rows end in empty
// cells. The conversion to a matrix of numbers reports "M(Mc) should not be called" and ends the
// process.
template <class T> class Mc {
public:
    Mc() { arrlib::bracket_misused("Mc called"); }
    explicit Mc(M<double> const& first) : elements_(first) {}
    Mc(Mc const&) = default;
    Mc& operator=(Mc const&) { arrlib::bracket_misused("Mc=Mc called"); }

    void append(MObject const& next) { elements_.append(next); }
    arrlib::BracketElements const& elements() const { return elements_; }

private:
    arrlib::BracketElements elements_;
};

// [first ...
inline Mb<double> BR(M<double> const& first)
{
    return Mb<double>(first);
}
inline Mb<M<double>> BR(M<M<double>> const& first)
{
    return Mb<M<double>>(first);
}
// {first ...
inline Mc<M<double>> CL(M<double> const& first)
{
    return Mc<M<double>>(first);
}
// {}
inline M<M<double>> CL()
{
    return M<M<double>>();
}

// ..., next: an element, or the row break `semi`.
inline Mb<double>&& operator,(Mb<double>&& bracket, M<double> const& next)
{
    bracket.append(next);
    return static_cast<Mb<double>&&>(bracket);
}
inline Mb<double>& operator,(Mb<double>& bracket, M<double> const& next)
{
    bracket.append(next);
    return bracket;
}
inline Mb<M<double>> operator,(Mb<double> const& bracket, M<M<double>> const& next)
{
    Mb<M<double>> cells(bracket.elements());
    cells.append(next);
    return cells;
}
inline Mb<M<double>>&& operator,(Mb<M<double>>&& bracket, M<M<double>> const& next)
{
    bracket.append(next);
    return static_cast<Mb<M<double>>&&>(bracket);
}
inline Mb<M<double>>& operator,(Mb<M<double>>& bracket, M<M<double>> const& next)
{
    bracket.append(next);
    return bracket;
}
inline Mb<M<double>>&& operator,(Mb<M<double>>&& bracket, M<double> const& next)
{
    bracket.append(next);
    return static_cast<Mb<M<double>>&&>(bracket);
}
inline Mb<M<double>>& operator,(Mb<M<double>>& bracket, M<double> const& next)
{
    bracket.append(next);
    return bracket;
}
inline Mc<M<double>>&& operator,(Mc<M<double>>&& bracket, M<double> const& next)
{
    bracket.append(next);
    return static_cast<Mc<M<double>>&&>(bracket);
}
inline Mc<M<double>>& operator,(Mc<M<double>>& bracket, M<double> const& next)
{
    bracket.append(next);
    return bracket;
}
// Without these the comma of the C++ language would silently drop the bracket, or a number become a
// cell.
void operator,(Mb<double> const& bracket, M<double> const& next) = delete;
template <class T> void operator,(Mb<T> const& bracket, arrlib::NoElement const& next) = delete;
template <class T> void operator,(Mc<T> const& bracket, arrlib::NoElement const& next) = delete;

#endif
