#include "core/output_place.h"

#include "core/read.h"
#include "runtime/constants.h"

namespace arrlib {

bool OutputPlace::is_whole() const
{
    switch (kind_) {
    case Kind::selection:
        return place<Mr<double>>().count() == 0;
    case Kind::selected_cells:
        return place<Mr<M<double>>>().count() == 0;
    default:
        return place_ != nullptr;
    }
}

void OutputPlace::take(M<double> const& value) const
{
    switch (kind_) {
    case Kind::none:
        break;
    case Kind::matrix:
        place<M<double>>() = value;
        break;
    case Kind::selection:
        place<Mr<double>>() = value;
        break;
    case Kind::cell:
        place<Ms<M<double>>>() = value;
        break;
    case Kind::cells:
    case Kind::selected_cells:
        take(M<M<double>>(value));
        break;
    }
}

void OutputPlace::take(M<M<double>> const& value) const
{
    if (kind_ == Kind::cells)
        place<M<M<double>>>() = value;
    else if (kind_ == Kind::selected_cells)
        place<Mr<M<double>>>() = value;
}

void OutputPlace::clear() const
{
    if (takes_cells())
        take(x_M_of<M<double>>());
    else
        take(x_M);
}

} // namespace arrlib
