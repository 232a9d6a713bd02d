#!/usr/bin/env python3
"""Prints tests/builtins/specfun_reference.h: values of the special functions outside the engine.

Needs mpmath. The build and the tests do not run it: its output is committed.
"""
import math

import mpmath
from mpmath import mp, mpc, mpf

from special_tables import lines_of

mp.dps = 40

BESSEL = [mpmath.besselj, mpmath.bessely, mpmath.besseli, mpmath.besselk, mpmath.hankel1, mpmath.hankel2]
AIRY = [(mpmath.airyai, 0), (mpmath.airyai, 1), (mpmath.airybi, 0), (mpmath.airybi, 1)]


def number(x):
    return repr(float(x)).replace("inf", "infinity")


def print_rows(declaration, rows):
    words = []
    for row in rows:
        texts = [number(x).removesuffix(".0") for x in row]
        words += ["{" + texts[0]] + texts[1:-1] + [texts[-1] + "}"]
    print("inline constexpr %s = {" % declaration)
    print("\n".join(lines_of(words, "    ")))
    print("};\n")


def print_table(comment, declaration, rows):
    print("// %s" % comment)
    print_rows(declaration, rows)


# Beside an integer order, where formulas for other orders serve.
NEXT_ORDER = mpf(10) ** -35


def bessel(kind, scaled, nu, x, y):
    z = mpc(x, y)
    # The sums that mpmath takes cancel by so many digits.
    with mp.workdps(110 + int(abs(nu) + min(abs(z), 500))):
        order = mpf(nu) + (NEXT_ORDER if nu == int(nu) and kind != 0 else 0)
        value = BESSEL[kind](order, z)
        factors = [-abs(z.imag), -abs(z.imag), -abs(z.real), z, mpc(y, -x), mpc(-y, x)]
        return mpc(value * mpmath.exp(factors[kind]) if scaled else value)


def bessel_rows():
    """Every method and the borders between them, all quadrants, and the turning points |z| = nu."""
    orders = [0, 1 / 3, 1, 2.5, 7, 20.25, 39.9, 40, 99.5, 150]
    radii = [1e-3, 0.5, 2, 3.99, 4.01, 6.1, 9.5, 15, 19.9, 24, 29.9, 30.1, 60, 200]
    angles = [0.3, 1.2, math.pi / 2, 1.57, 2, 3, 3.14159, -0.1, -1.5, -math.pi / 2, -2.5, -3.1]
    cases = []
    for k in range(96):
        nu, r, angle = orders[(k * 7 + k // 10) % 10], radii[(k * 5 + k // 14) % 14], angles[(k * 11 + k // 12) % 12]
        cases.append((-nu if k % 5 == 4 else nu, r * math.cos(angle), r * math.sin(angle) if angle < 3.1415 else 1e-9))
    for nu, x, y in [(200.5, 200.5, 0.25), (200.5, 210, -3), (170, 1, 170), (170, 0.0, 180), (200, 193, 1e-3), (90, 88, 8), (30, 28, 2), (-30.5, 31, 1)]:
        cases.append((nu, x, y))
    rows = []
    for k, (nu, x, y) in enumerate(cases):
        kind, scaled = k % 6, k // 6 % 2
        rows.append((kind, scaled, nu, x, y))
    # Real arguments; the last ones where Boost does not serve.
    for k, (nu, x) in enumerate([(0, 1), (0, 30), (1, 0.1), (2.5, -3), (7, 12), (-3, 2), (-1.25, 4), (20, 0.5), (0.5, -40), (60, 61), (100, 90), (2, 1500)]):
        rows += [(kind, k % 2, nu, x, 0) for kind in range(4)]
    for nu, x in [(0, 20000.5), (150, 149), (180.5, 184), (3, 123456.75), (-120.5, 130)]:
        rows += [(0, 0, nu, x, 0), (1, 0, nu, x, 0)]
    rows += [(2, 0, 300.5, 200, 0), (3, 0, 300.5, 200, 0), (2, 1, 10, 5000, 0), (3, 1, 10, 5000, 0)]
    for row in rows:
        value = bessel(*row)
        if 1e-290 < abs(value) < 1e290:
            # What is real or imaginary but for rounding.
            parts = [0 if abs(part) < abs(value) * mpf(10) ** -25 else part for part in (value.real, value.imag)]
            yield row + tuple(parts)


def airy_rows():
    for r in (0.25, 2, 3.9, 4.1, 6, 10, 40):
        for angle in (0, 0.9, 1.0471975511965976, 1.2, 2, 2.0943951023931953, 2.7, math.pi):
            x, y = (-r, 0) if angle == math.pi else (r * math.cos(angle), r * math.sin(angle) * (-1 if r == 6 else 1))
            if r not in (2, 10) or angle in (0, math.pi, 1.2, 2):
                yield (x, y) + tuple(part for f, n in AIRY for part in (mpc(f(mpc(x, y), derivative=n)).real, mpc(f(mpc(x, y), derivative=n)).imag))


def expint_rows():
    for r in (1e-3, 0.7, 1.9, 2.1, 5, 12, 39, 41, 200):
        for angle in (0, 0.8, 1.5, 2.2, 2.8, 3.1, -3.14):
            x, y = r * math.cos(angle), r * math.sin(angle)
            if angle in (2.8, -3.14) or r in (1.9, 2.1, 12) or angle == 0 and r < 100:
                value = mpmath.e1(mpc(x, y))
                yield x, y, value.real, value.imag


def jacobian_rows():
    for u, m in [(0.3, 0.5), (0.5, 0.3), (-2, 0.9), (10, 0.99), (3, 1 - 1e-9), (1e-9, 0.7), (1.5, 1e-10), (25.5, 0.25), (2, 0)]:
        m = mpf(m)
        yield (u, m) + tuple(mpmath.ellipfun(kind, mpf(u), m=m) for kind in ("sn", "cn", "dn"))


def legendre_rows():
    """Degree, order, x, P without and with normalisation."""
    for n, m, x in [(0, 0, 0.3), (1, 1, 0.5), (2, 1, -0.7), (5, 3, 0.2), (12, 0, 0.9), (20, 17, 0.4), (40, 1, -0.99), (40, 40, 0.1), (100, 60, 0.85), (150, 3, 0.001),
                    (300, 0, 0.5), (300, 100, 0.95), (500, 20, 0.9999), (80, 79, 0.999), (2000, 1900, 0.3)]:
        x = mpf(x)
        with mp.workdps(60):
            # The functions on the cut, from the series about x = 1.
            factor = mpmath.fac(n + m) / mpmath.fac(n - m) / (mpf(2) ** m * mpmath.fac(m))
            with mp.workdps(60 + n):
                series = mpmath.hyp2f1(m - n, n + m + 1, m + 1, (1 - x) / 2)
            value = (-1) ** m * factor * (1 - x * x) ** (mpf(m) / 2) * series
            norm = (-1) ** m * mpmath.sqrt((n + mpf(1) / 2) * mpmath.fac(n - m) / mpmath.fac(n + m)) * value
        yield n, m, x, value, norm


def one_value(f, points):
    for point in points:
        point = point if isinstance(point, tuple) else (point,)
        with mp.workdps(100):
            yield point + (f(*map(mpf, point)),)


def erfcinv(y):
    x = mpmath.sqrt(-mpmath.log(y)) if y < 0.1 else mpmath.erfinv(1 - y)
    for _ in range(80):
        x += (mpmath.erfc(x) - y) * mpmath.sqrt(mpmath.pi) / 2 * mpmath.exp(x * x)
    return x


def main():
    print("// Values of the special functions outside the engine. Made by tests/tools/specfun_tables.py.")
    print("#ifndef ARRLIB_TESTS_BUILTINS_SPECFUN_REFERENCE_H\n#define ARRLIB_TESTS_BUILTINS_SPECFUN_REFERENCE_H\n")
    print("#include <limits>\n\nnamespace reference {\n")
    print("inline constexpr double infinity = std::numeric_limits<double>::infinity();\n")
    print("// The kinds are j, y, i, k, h1, h2; scaled is 1 or 0.\nstruct BesselPoint {\n    int kind, scaled;\n    double nu, x, y, re, im;\n};")
    print_rows("BesselPoint bessel[]", bessel_rows())
    print_table("x, y, then real and imaginary parts of Ai, Ai', Bi, Bi'.", "double airy[][10]", airy_rows())
    print_table("x, y, E1.", "double expint[][4]", expint_rows())
    print_table("u, m, sn, cn, dn.", "double ellipj[][5]", jacobian_rows())
    print_table("m, K, E.", "double ellipke[][3]",
               [(m, mpmath.ellipk(mpf(m)), mpmath.ellipe(mpf(m))) for m in (0, 1e-12, 0.1, 0.5, 0.9, 0.999, 1 - 1e-8, 1 - 2.0 ** -53)])
    print_table("n, m, x, P, the normalised one.", "double legendre[][5]", legendre_rows())
    triples = [(0.5, 2, 3), (0.1, 0.5, 0.5), (0.999, 20, 0.3), (1e-5, 3, 4), (0.3, 100, 220), (0.51, 300, 280), (0.02, 1e-3, 5), (0.9, 30, 1.5), (0.5, 1e-10, 2)]
    print_table("x, a, b, the regularised incomplete beta function.", "double betainc[][4]",
               one_value(lambda x, a, b: mpmath.betainc(a, b, 0, x, regularized=True), triples))
    pairs = [(0.5, 0.5), (3, 4), (1e-310, 2), (1e-10, 1e-12), (1e5, 3), (1e300, 2), (1e10, 1e10), (500, 600), (12, 1e7), (5, 1e100), (9.9, 9e40), (-0.5, 3.25), (1e18, 1e-3)]
    # Only the digits that the operands have: the sum of 1e300 and 2 has 300.
    with mp.workdps(700):
        log_beta = lambda a, b: mpmath.re(mpmath.loggamma(a) + mpmath.loggamma(b) - mpmath.loggamma(a + b))
        print_table("a, b, the logarithm of the beta function.", "double betaln[][3]", [(a, b, log_beta(mpf(a), mpf(b))) for a, b in pairs])
    print_table("y, the inverse of erfc.", "double erfcinv[][2]", one_value(erfcinv, [1e-300, 1e-100, 1e-20, 1e-3, 0.3, 0.9, 1.2, 1.9, 1.999]))
    orders = [(0, 1), (0, 0.001), (0, 1.4616321449683622), (0, -0.5), (0, -7.3), (0, 1e10), (1, 1), (1, -0.25), (1, 50), (2, 0.5), (2, 3.3), (3, -1.5), (5, 20), (10, 0.1), (40, 2)]
    print_table("k, x, the derivative k of the digamma function.", "double psi[][3]", one_value(lambda k, x: mpmath.psi(int(k), x), orders))
    print("} // namespace reference\n\n#endif")


if __name__ == "__main__":
    main()
