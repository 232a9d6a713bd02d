#include "builtins/coordinates.h"

#include "builtins/args.h"
#include "builtins/elfun.h"
#include "builtins/types.h"
#include "ops/elementwise.h"

using namespace arrlib;

namespace {

using Value = M<double>;

// Up to three coordinates as full plain numbers; after a report all of them are the empty result.
struct Point {
    Value a, b, c;
};

Point refused()
{
    return {x_M, x_M, x_M};
}

// The operands as they are computed with; false after a report.
bool prepare(char const* builtin, Point& point, int count)
{
    Arguments const args(builtin);
    bool const real = args.real(point.a) && args.real(point.b) && (count < 3 || args.real(point.c));
    if (!real || !OperandPair(builtin, point.a, point.b) || (count > 2 && (!OperandPair(builtin, point.a, point.c) || !OperandPair(builtin, point.b, point.c))))
        return false;
    for (Value* const one : {&point.a, &point.b, &point.c}) {
        *one = full_form(doubleM(*one));
        if (!has_storage(*one))
            return false;
    }
    return true;
}

Point to_polar(Point p, int count)
{
    if (!prepare("cart2pol", p, count))
        return refused();
    return {atan2(p.b, p.a), hypot(p.a, p.b), p.c};
}

Point from_polar(Point p, int count)
{
    if (!prepare("pol2cart", p, count))
        return refused();
    return {times(p.b, cos(p.a)), times(p.b, sin(p.a)), p.c};
}

Point to_spherical(Point p)
{
    if (!prepare("cart2sph", p, 3))
        return refused();
    Value const from_axis = hypot(p.a, p.b);
    return {atan2(p.b, p.a), atan2(p.c, from_axis), hypot(from_axis, p.c)};
}

Point from_spherical(Point p)
{
    if (!prepare("sph2cart", p, 3))
        return refused();
    Value const from_axis = times(p.c, cos(p.b));
    return {times(from_axis, cos(p.a)), times(from_axis, sin(p.a)), times(p.c, sin(p.b))};
}

// The outputs asked for; returns the first one.
Value deliver(Point const& point, Mr<double> a)
{
    a = point.a;
    return point.a;
}
Value deliver(Point const& point, Mr<double> a, Mr<double> b)
{
    a = point.a;
    b = point.b;
    return point.a;
}
Value deliver(Point const& point, Mr<double> a, Mr<double> b, Mr<double> c)
{
    a = point.a;
    b = point.b;
    c = point.c;
    return point.a;
}

} // namespace

M<double> cart2pol(M<double> const& x, M<double> const& y)
{
    return to_polar({x, y, {}}, 2).a;
}
M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z)
{
    return to_polar({x, y, z}, 3).a;
}
M<double> cart2pol(M<double> const& x, M<double> const& y, i_o_t, Mr<double> th)
{
    return deliver(to_polar({x, y, {}}, 2), th);
}
M<double> cart2pol(M<double> const& x, M<double> const& y, i_o_t, Mr<double> th, Mr<double> r)
{
    return deliver(to_polar({x, y, {}}, 2), th, r);
}
M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th)
{
    return deliver(to_polar({x, y, z}, 3), th);
}
M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th, Mr<double> r)
{
    return deliver(to_polar({x, y, z}, 3), th, r);
}
M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th, Mr<double> r, Mr<double> z_out)
{
    return deliver(to_polar({x, y, z}, 3), th, r, z_out);
}

M<double> pol2cart(M<double> const& th, M<double> const& r)
{
    return from_polar({th, r, {}}, 2).a;
}
M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z)
{
    return from_polar({th, r, z}, 3).a;
}
M<double> pol2cart(M<double> const& th, M<double> const& r, i_o_t, Mr<double> x)
{
    return deliver(from_polar({th, r, {}}, 2), x);
}
M<double> pol2cart(M<double> const& th, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y)
{
    return deliver(from_polar({th, r, {}}, 2), x, y);
}
M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x)
{
    return deliver(from_polar({th, r, z}, 3), x);
}
M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x, Mr<double> y)
{
    return deliver(from_polar({th, r, z}, 3), x, y);
}
M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x, Mr<double> y, Mr<double> z_out)
{
    return deliver(from_polar({th, r, z}, 3), x, y, z_out);
}

M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z)
{
    return to_spherical({x, y, z}).a;
}
M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az)
{
    return deliver(to_spherical({x, y, z}), az);
}
M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az, Mr<double> el)
{
    return deliver(to_spherical({x, y, z}), az, el);
}
M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az, Mr<double> el, Mr<double> r)
{
    return deliver(to_spherical({x, y, z}), az, el, r);
}

M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r)
{
    return from_spherical({az, el, r}).a;
}
M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x)
{
    return deliver(from_spherical({az, el, r}), x);
}
M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y)
{
    return deliver(from_spherical({az, el, r}), x, y);
}
M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y, Mr<double> z)
{
    return deliver(from_spherical({az, el, r}), x, y, z);
}
