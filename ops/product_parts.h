// A product of complex matrices as products of their parts.
#ifndef ARRLIB_OPS_PRODUCT_PARTS_H
#define ARRLIB_OPS_PRODUCT_PARTS_H

#include "core/matrix.h"

namespace arrlib {

// Calls add(z, x, y, sign, onto) for the parts of x and y whose product, with that sign, makes a part
// of z or, when `onto`, is added to it.
template <class Add> void add_products_of_parts(M<double> const& x, M<double> const& y, M<double> const& z, Add add)
{
    add(z.addr(), x.addr(), y.addr(), 1, false);
    if (x.isc() && y.isc())
        add(z.addr(), x.addi(), y.addi(), -1, true);
    if (x.isc())
        add(z.addi(), x.addi(), y.addr(), 1, false);
    if (y.isc())
        add(z.addi(), x.addr(), y.addi(), 1, x.isc() != 0);
}

} // namespace arrlib

#endif
