// Points in Cartesian, polar, cylindrical and spherical coordinates; angles in radians. The operands
// are real and have the same sizes, or one element: "%s: wrong dimensions of: %s, %s", "%s: argument
// must be real".
#ifndef ARRLIB_BUILTINS_COORDINATES_H
#define ARRLIB_BUILTINS_COORDINATES_H

#include "core/subscript.h"

// Angles th from the x axis in (-pi, pi] and distances r from the origin, or from the z axis, of points
// in the plane or in space; z stays as it is. "cart2pol: wrong dimensions of: %s, %s".
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, i_o_t, Mr<double> th);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, i_o_t, Mr<double> th, Mr<double> r);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th, Mr<double> r);
ARRLIB_API M<double> cart2pol(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> th, Mr<double> r, Mr<double> z_out);

// The points x, y at angles th and distances r; z stays as it is. "pol2cart: wrong dimensions of: %s,
// %s".
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, i_o_t, Mr<double> x);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x, Mr<double> y);
ARRLIB_API M<double> pol2cart(M<double> const& th, M<double> const& r, M<double> const& z, i_o_t, Mr<double> x, Mr<double> y, Mr<double> z_out);

// Azimuths az from the x axis, elevations el from the x-y plane and distances r from the origin.
// "cart2sph: wrong dimensions of: %s, %s".
ARRLIB_API M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z);
ARRLIB_API M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az);
ARRLIB_API M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az, Mr<double> el);
ARRLIB_API M<double> cart2sph(M<double> const& x, M<double> const& y, M<double> const& z, i_o_t, Mr<double> az, Mr<double> el, Mr<double> r);

// The points at azimuths az, elevations el and distances r. "sph2cart: wrong dimensions of: %s, %s".
ARRLIB_API M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r);
ARRLIB_API M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x);
ARRLIB_API M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y);
ARRLIB_API M<double> sph2cart(M<double> const& az, M<double> const& el, M<double> const& r, i_o_t, Mr<double> x, Mr<double> y, Mr<double> z);

#endif
