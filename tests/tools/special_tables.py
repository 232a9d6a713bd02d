#!/usr/bin/env python3
"""Prints the number tables of the special and the complex functions: special_tables.py WHAT.

    error_fits          ops/kernels/special_error_fits.h
    gamma_fits          ops/kernels/special_gamma_fits.h
    special_reference   tests/ops/special_reference.h
    complex_reference   tests/ops/complex_reference.h

Needs mpmath. The build and the tests do not run it: its output is committed.
"""
import math
import sys

import mpmath
from mpmath import mp, mpc, mpf

mp.dps = 50

# Far below the rounding of a double, so that the fit adds nothing to the error.
FIT_ERROR = mpf(2) ** -57


# --- fits --------------------------------------------------------------------------------------


def fit(f, low, high, absolute=None):
    """Coefficients of f(middle + u), lowest first; error relative to f(middle), or to `absolute`."""
    low, high = mpf(low), mpf(high)
    middle, half = (low + high) / 2, (high - low) / 2
    scale = absolute or abs(f(middle))
    for count in range(3, 30):
        found, error = mpmath.chebyfit(lambda u: f(middle + u), [-half, half], count, error=True)
        if error < FIT_ERROR * scale:
            return found[::-1]
    raise ValueError("no fit on [%s, %s]" % (low, high))


def fit_from_zero(f, high, absolute=None):
    """The same in powers of the variable itself, for functions of [0, high]."""
    high = mpf(high)
    centred = fit(f, high * mpf(10) ** -25, high, absolute)
    shifted = mpmath.taylor(lambda t: mpmath.polyval(centred[::-1], t - high / 2), 0, len(centred) - 1)
    return shifted


def hexadecimal(number):
    """The nearest double, as it is written in C++."""
    text = float(number).hex()
    digits, exponent = text.split("p")
    digits = digits.rstrip("0").rstrip(".") if "." in digits else digits
    return "0" if float(number) == 0 else digits + "p" + exponent


def lines_of(words, indent):
    line = indent
    for word in words:
        if len(line) + len(word) > 130:
            yield line.rstrip()
            line = indent
        line += word + ", "
    yield line.rstrip()


def print_row(comment, name, row):
    print("// %s" % comment)
    print("inline constexpr double %s[] = {" % name)
    print("\n".join(lines_of(map(hexadecimal, row), "    ")))
    print("};")


def print_pieces(comment, name, pieces):
    """Rows of equal length: shorter ones end in zeros."""
    width = max(map(len, pieces))
    print("// %s" % comment)
    print("inline constexpr double %s[%d][%d] = {" % (name, len(pieces), width))
    for piece in pieces:
        rows = list(lines_of(map(hexadecimal, piece + [mpf(0)] * (width - len(piece))), "     "))
        rows[0] = "    {" + rows[0].lstrip()
        rows[-1] = rows[-1].rstrip(",") + "},"
        print("\n".join(rows))
    print("};")


def print_header(guard, comment):
    print("// %s Made by tests/tools/special_tables.py." % comment)
    print("#ifndef %s\n#define %s\n" % (guard, guard))


def erfcx(x):
    return mpmath.exp(x * x) * mpmath.erfc(x)


def print_error_fits():
    print_header("ARRLIB_OPS_KERNELS_SPECIAL_ERROR_FITS_H", "Polynomials of the error functions, lowest power first.")
    print("namespace arrlib::fits {\n")
    root_pi = mpmath.sqrt(mpmath.pi)
    print_row("erf(x)/x of x^2 in [0, 1/4].", "erf_centre", fit_from_zero(lambda s: mpmath.erf(mpmath.sqrt(s)) / mpmath.sqrt(s), 0.25))
    pieces = []
    for exponent in range(-1, 4):
        for k in range(8):
            low = mpf(2) ** exponent * (1 + mpf(k) / 8)
            pieces.append(fit(erfcx, low, low + mpf(2) ** exponent / 8))
    print_pieces("erfcx on eighths of [2^e, 2^(e+1)] from 1/2 to 16, of the distance from their middles.", "erfcx_pieces", pieces)
    tail = fit_from_zero(lambda s: root_pi * erfcx(1 / mpmath.sqrt(s)) / mpmath.sqrt(s), mpf(1) / 256)
    print_row("sqrt(pi) x erfcx(x) of 1/x^2 in [0, 1/256].", "erfcx_tail", tail)
    centre = fit_from_zero(lambda s: mpmath.erfinv(mpmath.sqrt(s)) / mpmath.sqrt(s), 0.25)
    print_row("erfinv(x)/x of x^2 in [0, 1/4].", "erfinv_centre", centre)
    pieces = []
    for k in range(2, 25):
        low = mpf(k) / 4
        pieces.append(fit(lambda s: mpmath.erfinv(mpmath.sqrt(1 - mpmath.exp(-s * s))), low, low + mpf(1) / 4))
    comment = "erfinv on quarters from 1/2 to 25/4 of s = sqrt(-log(1 - x^2)), of the distance from their middles."
    print_pieces(comment, "erfinv_pieces", pieces)
    print("\n} // namespace arrlib::fits\n\n#endif")


def gammaln_quotient(x):
    limits = {1: mpmath.euler, 2: 1 - mpmath.euler}
    return limits[x] if x in limits else mpmath.loggamma(x) / ((x - 1) * (x - 2))


def stirling(z):
    """log(gamma(z)) - ((z - 1/2) log(z) - z + log(2 pi)/2)"""
    return mpmath.loggamma(z) - (z - mpf(1) / 2) * mpmath.log(z) + z - mpmath.log(2 * mpmath.pi) / 2


def temme_rows(smallest_a, largest_eta):
    """The Taylor coefficients in eta of the c_k in sum c_k(eta) a^-k, as far as they matter."""
    terms = 60
    # mu of eta^2/2 = mu - log(1 + mu), as a series: eta d(mu)/d(eta) ... = (1 + mu) eta = mu mu'.
    mu = [mpf(0), mpf(1)]
    for n in range(2, terms + 2):
        # The coefficient of eta^n in mu mu' - eta - eta mu is zero.
        known = sum(mu[j] * (n + 1 - j) * mu[n + 1 - j] for j in range(2, n))
        mu.append((mu[n - 1] - known) / (n + 1))
    # eta/mu as a series.
    ratio = [mpf(1)]
    for n in range(1, terms):
        ratio.append(-sum(mu[j + 1] * ratio[n - j] for j in range(1, n + 1)))
    # The series of 1/gamma*(a) in 1/a has the coefficients of that of gamma*(a) with the signs of odd
    # powers changed.
    bernoulli = [mpmath.bernoulli(2 * k) / (2 * k * (2 * k - 1)) for k in range(1, 20)]
    star = [mpf(1)]
    for n in range(1, 16):
        star.append(sum((2 * k - 1) * bernoulli[k - 1] * star[n - 2 * k + 1] for k in range(1, (n + 1) // 2 + 1)) / n)
    # c_0 = 1/mu - 1/eta;  eta c_k = d/d(eta) c_(k-1) + (-1)^k g_k eta/mu.
    c = ratio[1:]
    rows = []
    for k in range(0, 15):
        if k > 0:
            derivative = [(j + 1) * c[j + 1] for j in range(len(c) - 1)]
            full = [derivative[j] + (-1) ** k * star[k] * ratio[j] for j in range(len(derivative))]
            assert abs(full[0]) < mpf(10) ** -30, "c_k has no pole"
            c = full[1:]
        row = [x for j, x in enumerate(c) if abs(x) * mpf(largest_eta) ** j * mpf(smallest_a) ** -k > mpf(2) ** -58]
        if not row:
            break
        rows.append(c[: len(row) + 1])
    return rows


def print_gamma_fits():
    print_header("ARRLIB_OPS_KERNELS_SPECIAL_GAMMA_FITS_H", "Polynomials of the gamma functions, lowest power first.")
    print("namespace arrlib::fits {\n")
    eighths = [mpf(k) / 8 for k in range(8, 16)]
    print_pieces("gamma on eighths from 1 to 2, of the distance from their middles.", "gamma_pieces",
                 [fit(mpmath.gamma, x, x + mpf(1) / 8) for x in eighths])
    eighths = [mpf(k) / 8 for k in range(4, 20)]
    print_pieces("log(gamma(x)) / ((x - 1) (x - 2)) on eighths from 1/2 to 5/2, of the distance from their middles.", "gammaln_pieces",
                 [fit(gammaln_quotient, x, x + mpf(1) / 8) for x in eighths])
    print_row("gamma(x) / (sqrt(2 pi) x^(x - 1/2) e^-x) of 1/x in [0, 1/8].", "stirling",
              fit_from_zero(lambda t: mpmath.exp(stirling(1 / t)), mpf(1) / 8))
    with mpmath.workdps(80):
        row = fit_from_zero(lambda t: stirling(1 / mpmath.sqrt(t)) / mpmath.sqrt(t), mpf(1) / 64, mpf(1))
    print_row("The logarithm of that, times x, of 1/x^2 in [0, 1/64].", "log_stirling", row)
    rows = temme_rows(30, 0.37)
    print("// The coefficients of a^-k eta^j in the uniform expansion of gammainc, for a >= 30 and |eta| <= 0.37.")
    print_pieces("The rows get shorter: row k has temme_length[k] numbers.", "temme", rows)
    print("inline constexpr int temme_length[] = {%s};" % ", ".join(str(len(row)) for row in rows))
    print("\n} // namespace arrlib::fits\n\n#endif")


# --- reference values --------------------------------------------------------------------------


def spread(low, high, count):
    """Doubles from low to high in equal ratios."""
    return [float(mpf(low) * (mpf(high) / low) ** (mpf(k) / (count - 1))) for k in range(count)]


def even(low, high, count):
    return [low + (high - low) * k / (count - 1) for k in range(count)]


def print_points(name, f, points):
    """Rows of x, y, f(x, y); y is 0 for functions of one argument."""
    words = []
    for point in points:
        arguments = point if isinstance(point, tuple) else (point,)
        # Enough for 1 - erf(26) and the like, and for the differences of close arguments.
        with mpmath.workdps(700):
            want = float(f(*map(mpf, arguments)))
        words.append("{%r, %r, %r}" % (float(arguments[0]), float((arguments + (0,))[1]), want))
    print("inline constexpr Point %s[] = {" % name)
    print("\n".join(lines_of(words, "    ")).replace("inf", "infinity"))
    print("};")


def erfinv(x):
    """By Newton's method, for arguments near 1 as well."""
    y = mpmath.erfinv(x) if abs(x) < 0.9 else mpmath.sign(x) * mpmath.sqrt(-mpmath.log(1 - abs(x)))
    for _ in range(60):
        y -= (mpmath.erf(y) - x) * mpmath.sqrt(mpmath.pi) / 2 * mpmath.exp(y * y)
    return y


def gammainc(x, a):
    if a > 1000:
        # The series is too long: the uniform expansion, whose terms are known to as many digits.
        mu = x / a - 1
        eta = mpmath.sign(mu) * mpmath.sqrt(2 * (mu - mpmath.log1p(mu)))
        rows = temme_rows(30, 0.37)
        total = sum(mpmath.polyval(row[::-1], eta) * a ** -k for k, row in enumerate(rows))
        return mpmath.erfc(-eta * mpmath.sqrt(a / 2)) / 2 - mpmath.exp(-a * eta * eta / 2) / mpmath.sqrt(2 * mpmath.pi * a) * total
    return mpmath.gammainc(a, 0, x, regularized=True)


def print_special_reference():
    print("// Values of the special functions. Made by tests/tools/special_tables.py.")
    print("#ifndef ARRLIB_TESTS_OPS_SPECIAL_REFERENCE_H\n#define ARRLIB_TESTS_OPS_SPECIAL_REFERENCE_H\n")
    print("#include <limits>\n\nnamespace reference {\n")
    print("inline constexpr double infinity = std::numeric_limits<double>::infinity();\n")
    print("// The value of a function at x, or at (x, y).\nstruct Point {\n    double x, y, want;\n};\n")
    small = [5e-324, 1e-310, 1e-300, 1e-100, 1e-20, 1e-8]
    signed = lambda points: points + [-x for x in points]
    print_points("erf", mpmath.erf, small + signed(even(0.03, 6.1, 20)) + [0.5, -0.4999, 7.5, 1e300])
    print_points("erfc", mpmath.erfc, [1e-300, -1e-20] + even(-6.2, 6.1, 16) + even(0.47, 27.3, 20) + [0.5, 26.3, 26.6, 30, -1e300])
    print_points("erfcx", lambda x: mpmath.exp(x * x) * mpmath.erfc(x), [1e-300, 0.5, -0.5] + even(-26.6, 0.4, 16) + spread(0.1, 300, 20))
    print_points("erfcx_far", lambda x: 1 / (x * mpmath.sqrt(mpmath.pi)), [1e9, 1e100, 1e300])
    print_points("erfinv", erfinv, small[1:] + signed(even(0.02, 0.98, 14)) + [0.5, 1 - 1e-3, 1e-6 - 1, 1 - 1e-10, 1 - 2.0 ** -53])
    close = [(2, 2 + 1e-10), (-5, -5 + 1e-5), (0.3, 0.4), (1, 1.7), (20, 20.001), (20, 21), (0.1, 3), (-0.2, 0.1), (-6, 6)]
    close += [(1e-20, 2e-20), (-1e-9, 1e-9), (3, 3 + 2.0 ** -51), (0.499, 0.501), (12.5, 12.53), (-26, -25.9), (26, 26.5), (0, 1)]
    print_points("erf_2", lambda x, y: mpmath.erf(y) - mpmath.erf(x), close + [(x, x + 0.3) for x in even(-4, 5, 14)])
    edges = [1e-308, 1e-20, -1e-20, -1e-307, 0.5, 1.5, 171.6, 171.62, 171.7, -0.5, -1 + 1e-10, -3 - 1e-9, -170.5, -177.5, -184.5]
    print_points("gamma", mpmath.gamma, edges + even(0.3, 170.1, 16) + even(-30.3, 2.9, 16))
    edges = [1e-308, -1e-308, 1e-20, 1 - 1e-10, 1 + 1e-15, 2 - 1e-12, 2 + 1e-5, 0.9, 1.1, 1.9, 2.1, 1e3, 1e10, 1e100, 1e300]
    gammaln = lambda x: mpmath.re(mpmath.loggamma(x))
    print_points("gammaln", gammaln, edges + even(0.2, 30.1, 16))
    zeros = [float(mpmath.findroot(lambda x: mpmath.log(abs(mpmath.gamma(x))), x)) for x in (-2.457, -2.747, -3.143, -3.955, -4.039)]
    print_points("gammaln_left", gammaln, zeros + even(-14.6, -0.1, 12) + [-1e5 - 0.3])
    pairs = [(1e-300, 2e-300), (1e-300, 1e300), (1e-20, 3), (0.5, 0.5), (1, 1), (3, 4), (7.9, 8.1), (8, 8), (0.25, 1e14), (2, 1e150)]
    pairs += [(500, 500), (20, 1e6), (9, 5e12), (40, 200.5), (0.7, 12), (5.5, 2e5), (30, 31), (100, 3), (510, 520), (600, 600), (1e-5, 7)]
    print_points("beta", mpmath.beta, pairs + list(zip(spread(0.01, 90, 14), spread(300, 0.2, 14))))
    pairs = [(1e-300, 1e-3), (1e-10, 1), (3, 1e-10), (0.9, 0.9), (1, 1), (4, 2.5), (5, 0.01), (45, 29), (29, 29.9), (80, 29), (150, 12)]
    pairs += [(10, 30), (22, 30), (43, 30), (100, 30), (60, 100), (99, 100), (101, 100), (160, 100), (200, 500), (350, 500), (480, 500)]
    pairs += [(540, 500), (1e4, 1e4), (9.5e3, 1e4), (1.02e4, 1e4), (1e8 - 2e5, 1e8), (1e8 + 1e4, 1e8), (1e15 - 1e8, 1e15), (1e15, 1e15)]
    pairs += [(40, 900), (1e-5, 20), (0.5, 20), (7, 7)] + list(zip(spread(0.01, 60, 10), spread(40, 0.2, 10)))
    print_points("gammainc", gammainc, pairs)
    print("\n} // namespace reference\n\n#endif")


# Zeros with a sign stand for numbers of that sign next to them: every function is continued to its
# cuts from the side of the sign, and what comes out that small is a zero with a sign again.
NEXT_TO_ZERO = mpf(10) ** -100


def beside(x):
    return mpf(x) if x != 0 else math.copysign(1, x) * NEXT_TO_ZERO


def part(x):
    if abs(x) < mpf(10) ** -40:
        return "-0.0" if x < 0 else "0.0"
    return repr(float(x))


COMPLEX_FUNCTIONS = {
    "acos": mpmath.acos, "acosh": mpmath.acosh, "acot": lambda z: mpmath.atan(1 / z), "acoth": lambda z: mpmath.atanh(1 / z),
    "acsc": lambda z: mpmath.asin(1 / z), "acsch": lambda z: mpmath.asinh(1 / z), "asec": lambda z: mpmath.acos(1 / z),
    "asech": lambda z: mpmath.acosh(1 / z), "asin": mpmath.asin, "asinh": mpmath.asinh, "atan": mpmath.atan, "atanh": mpmath.atanh,
    "cos": mpmath.cos, "cosh": mpmath.cosh, "cot": mpmath.cot, "coth": mpmath.coth, "csc": mpmath.csc, "csch": mpmath.csch,
    "exp": mpmath.exp, "log": mpmath.log, "log10": lambda z: mpmath.log(z) / mpmath.log(10),
    "log2": lambda z: mpmath.log(z) / mpmath.log(2), "pow2": lambda z: mpmath.exp(z * mpmath.log(2)), "sec": mpmath.sec,
    "sech": mpmath.sech, "sin": mpmath.sin, "sinc": lambda z: mpmath.sin(mpmath.pi * z) / (mpmath.pi * z), "sinh": mpmath.sinh,
    "sqrt": mpmath.sqrt, "tan": mpmath.tan, "tanh": mpmath.tanh,
}


def print_numbers(name, words):
    print("inline constexpr nx_complex %s[] = {" % name)
    print("\n".join(lines_of(words, "    ")))
    print("};")


def print_complex_reference():
    print("// Values of the complex functions. Made by tests/tools/special_tables.py.")
    print("#ifndef ARRLIB_TESTS_OPS_COMPLEX_REFERENCE_H\n#define ARRLIB_TESTS_OPS_COMPLEX_REFERENCE_H\n")
    print('#include "ops/kernels.h"\n\nnamespace reference {\n')
    points = [(x, y) for x in (2.0, -2.0, 0.5, -0.5) for y in (0.0, -0.0)]
    points += [(x, y) for y in (2.0, -0.5) for x in (0.0, -0.0)]
    points += [(1.5, 0.7), (-0.3, 1.1), (-2.5, -3.0), (0.8, -0.6), (12.0, 5.0), (-5.0, 17.0), (1e-12, -2e-12), (1 + 1e-9, 1e-12)]
    points += [(-1 + 1e-7, 1e-3), (1e-8, 1 - 1e-6), (3.0, 1e-20), (40.0, -33.0), (1.57, 0.01), (-1e-3, 3.1), (0.6, 0.8 + 1e-9)]
    print("// Where: on both sides of the cuts, at branch points, near and far.")
    print_numbers("points", ["{%r, %r}" % point for point in points])
    print("// There, each function; parts below 1e-40 as zeros.")
    for name, f in sorted(COMPLEX_FUNCTIONS.items()):
        with mpmath.workdps(260):
            values = [f(mpc(beside(x), beside(y))) for x, y in points]
            print_numbers(name, ["{%s, %s}" % (part(z.real), part(z.imag)) for z in values])
    print("\n// base, exponent, power\ninline constexpr nx_complex powers[][3] = {")
    powers = [((1.5, 0.7), (2.5, -1.2)), ((-8, 0.0), (1.0 / 3, 0)), ((-8, -0.0), (1.0 / 3, 0)), ((2, 0), (0, 1)), ((0, 2), (0.5, 0))]
    powers += [((3, -4), (17, 0)), ((0.3, 0.1), (-40, 0)), ((1 + 1e-9, 1e-9), (300.5, 0)), ((1e-10, 1e-20), (2.9, 0.3)), ((-2, 0.0), (0.5, 1))]
    powers += [((1e150, -1e150), (1.99, 0)), ((7, 0), (30.5, 2)), ((-0.5, 1e-3), (2000, 0)), ((0, -1), (0, 1)), ((1e-160, 1e-170), (-1.9, 0))]
    with mpmath.workdps(260):
        for base, exponent in powers:
            w = mpc(*exponent)
            z = mpmath.exp(w * mpmath.log(mpc(beside(base[0]), beside(base[1]))))
            print("    {{%r, %r}, {%r, %r}, {%s, %s}}," % (*map(float, base), *map(float, exponent), part(z.real), part(z.imag)))
    print("};\n\n} // namespace reference\n\n#endif")


OUTPUTS = {
    "error_fits": print_error_fits,
    "gamma_fits": print_gamma_fits,
    "special_reference": print_special_reference,
    "complex_reference": print_complex_reference,
}

if __name__ == "__main__":
    if len(sys.argv) != 2 or sys.argv[1] not in OUTPUTS:
        sys.exit(__doc__)
    OUTPUTS[sys.argv[1]]()
