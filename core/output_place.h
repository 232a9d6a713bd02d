// Where calls put their outputs.
#ifndef ARRLIB_CORE_OUTPUT_PLACE_H
#define ARRLIB_CORE_OUTPUT_PLACE_H

#include "core/subscript.h"

namespace arrlib {

// A variable, a part of one, or the content of a cell, that takes an output; or none, for one that nobody wants. For
// the length of a call: it refers to what it was made from.
class ARRLIB_API OutputPlace {
public:
    OutputPlace() = default;
    OutputPlace(M<double>& variable) : kind_(Kind::matrix), place_(&variable) {}
    OutputPlace(M<M<double>>& variable) : kind_(Kind::cells), place_(&variable) {}
    OutputPlace(Mr<double> const& selection) : kind_(Kind::selection), place_(const_cast<Mr<double>*>(&selection)) {}
    OutputPlace(Mr<M<double>> const& selection) : kind_(Kind::selected_cells), place_(const_cast<Mr<M<double>>*>(&selection)) {}
    OutputPlace(Ms<M<double>> const& cell) : kind_(Kind::cell), place_(const_cast<Ms<M<double>>*>(&cell)) {}

    explicit operator bool() const { return place_ != nullptr; }
    // Whether cell arrays are taken, too; a matrix is then taken as a single cell.
    bool takes_cells() const { return kind_ == Kind::cells || kind_ == Kind::selected_cells; }
    // Whether all that was there goes: not for chosen elements.
    bool is_whole() const;
    // Nothing happens where there is no place. Cell arrays are for places that take them.
    void take(M<double> const& value) const;
    void take(M<M<double>> const& value) const;
    // Takes the empty value.
    void clear() const;

private:
    enum class Kind : char { none, matrix, cells, selection, selected_cells, cell };

    template <class T> T& place() const { return *static_cast<T*>(place_); }

    Kind kind_ = Kind::none;
    void* place_ = nullptr;
};

} // namespace arrlib

#endif
