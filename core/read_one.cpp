// Reading one element: A{...}, and what else takes one element only.
#include "core/read.h"

#include "core/odometer.h"
#include "core/subscript.h"
#include "runtime/errors.h"
#include "runtime/report.h"

using namespace arrlib;

// True when every index selects at most one element; reported otherwise.
template <class T> bool arrlib::selects_one(Mr<T> const& selection)
{
    for (int k = 0; k < selection.count(); ++k) {
        M<double> const& index = selection.index(k);
        Subscript subscript;
        int const extent = selection.count() == 1 ? selection.target().size() : selection.target().getdims()[k];
        if (!subscript.resolve(index, extent))
            return false;
        if (subscript.count() > 1) {
            if (selection.count() == 1)
                error("%s{%s} : indexed more than one element", OperandName(selection.target()), OperandName(index));
            else
                error("%s{%s,%s} : indexed more than one element", OperandName(selection.target()), OperandName(selection.index(0)),
                      OperandName(selection.index(1)));
            return false;
        }
    }
    return true;
}

template <class T> int arrlib::single_position(Mr<T> const& selection)
{
    M<T> const& target = selection.target();
    int const count = selection.count();
    if (count < 1 || count > 2 || target.issparse())
        return -1;
    int position = 0;
    for (int k = count - 1; k >= 0; --k) {
        M<double> const& index = selection.index(k);
        if (index.getnnz() != 1 || index.islogical() || index.issparse())
            return -1;
        int const extent = count == 1 ? target.size() : target.getdims()[k];
        int const subscript = zero_based(*index.addr());
        if (static_cast<unsigned>(subscript) >= static_cast<unsigned>(extent))
            return -1;
        position = position * extent + subscript;
    }
    return position;
}

template <class T> Ms<T>::operator T() const
{
    if (int const position = single_position(selection_); ARRLIB_LIKELY(position >= 0))
        return selection_.target().addr()[position];
    if (!selects_one(selection_))
        return T();
    M<T> const one = arrlib::read(selection_);
    return one.size() > 0 ? one[1] : T();
}

template Ms<double>::operator double() const;
template Ms<M<double>>::operator M<double>() const;
template int arrlib::single_position(Mr<double> const&);
template int arrlib::single_position(Mr<M<double>> const&);
template bool arrlib::selects_one(Mr<double> const&);
template bool arrlib::selects_one(Mr<M<double>> const&);
