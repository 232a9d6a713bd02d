#!/usr/bin/env python3
"""Prints the number tables of the elementary functions: reference_tables.py WHAT.

    constants    ops/kernels/loop_constants.h
    reference    tests/ops/elementary_reference.h

Needs mpmath. The build and the tests do not run it: its output is committed.
"""
import math
import sys
from fractions import Fraction
from random import Random

import mpmath
from mpmath import mp, mpf

mp.dps = 60


def hexadecimal(number):
    """The nearest double, as it is written in C++; a text stays."""
    if isinstance(number, str):
        return number
    value = float(number)
    if value in (mpmath.inf, -mpmath.inf) or value != value:
        return {"inf": "infinite", "-inf": "-infinite"}.get(str(value), "not_a_number")
    mantissa, exponent = value.hex().split("p")
    if "." in mantissa:
        mantissa = mantissa.rstrip("0").rstrip(".")
    return "0" if value == 0 else mantissa + "p" + exponent


def lines(head, words, tail):
    line, indent = head, " " * len(head)
    for word in words:
        if len(line) + len(word) > 130:
            print(line.rstrip())
            line = indent
        line += word + ", "
    print(line[:-2] + tail)


def array(comment, name, numbers):
    if comment:
        print("// " + comment)
    print("constexpr double %s[] = {" % name)
    lines("    ", map(hexadecimal, numbers), ",")
    print("};")


def number(name, value):
    print("constexpr double %s = %s;" % (name, hexadecimal(value)))


def parts(number_, sizes):
    """The number as a sum of doubles; those before the last are cut off below a bit 2^size."""
    found = []
    for size in sizes:
        part = mpf(float(number_)) if size is None else mpmath.floor(number_ / mpf(2) ** size) * mpf(2) ** size
        found.append(part)
        number_ -= part
    return found


# --- constants of the kernels --------------------------------------------------------------------


def fit(f, low, high, count):
    """Coefficients of f on [low, high], lowest first: interpolation where the error is spread evenly."""
    return mpmath.chebyfit(f, [mpf(low), mpf(high)], count)[::-1]


def odd_fit(f, high, count):
    """Of (f(x)/x - 1)/x^2 by powers of x^2, for x up to `high`."""

    def quotient(square):
        x = mpmath.sqrt(square)
        return (f(x) / x - 1) / square

    return fit(quotient, mpf(10) ** -18, mpf(high) ** 2, count)


EXP_STEPS = LOG_STEPS = SINE_STEPS = 16
# The logarithm's grid, and how close to it those of the steps shall be.
LOG_GRID, LOG_RESIDUAL = 42, 76


def near_grid(center):
    """A double near `center` whose logarithm is next to a multiple of 2^-LOG_GRID; that multiple, negative.

    Multiples are tried in turn; the numbers that have them as logarithms are integers here, in units of
    2^-scale, and one is taken where its bits below a double's last are nearly 0."""
    scale = 160
    multiple = int(mpmath.nint(-mpmath.log(center) * mpf(2) ** LOG_GRID))
    number_ = int(mpmath.exp(-mpf(multiple) / mpf(2) ** LOG_GRID) * mpf(2) ** scale)
    shrink = int((1 - mpmath.exp(-mpf(2) ** -LOG_GRID)) * mpf(2) ** scale)
    below = scale - (53 if center < 1 else 52)
    mask, near = (1 << below) - 1, 1 << (scale - LOG_RESIDUAL)
    while near < (number_ & mask) < mask + 1 - near:
        number_ -= number_ * shrink >> scale
        multiple += 1
    return mpf(float(mpf(number_) / mpf(2) ** scale)), mpf(multiple) / mpf(2) ** LOG_GRID


def log_steps():
    """By the fifteenth that a number in [3/4, 3/2) is nearest to: c and -log(c)."""
    steps = [(mpf(1), mpf(0))] * LOG_STEPS
    for k in range(11, 23):
        low, high = max(k - 0.5, 11.25), min(k + 0.5, 22.5)
        if k != 15:
            # Where logarithms are smallest, beside the step of 1, x c - 1 must be below 1/32 or it is rounded too much.
            steps[k % LOG_STEPS] = near_grid({14: mpf(15) * 33 / 32 / high, 16: mpf(15) * 31 / 32 / low * 1.00001}.get(k, mpf(30) / (low + high)))
    return steps


def constants():
    mp.prec = 1500
    ln2, pi = +mpmath.log(2), +mpmath.pi
    print("// Fitted coefficients and tables of the elementary functions, by tests/tools/reference_tables.py.")
    print("#ifndef ARRLIB_OPS_KERNELS_LOOP_CONSTANTS_H")
    print("#define ARRLIB_OPS_KERNELS_LOOP_CONSTANTS_H\n")
    print("#include <cstdint>\n\nnamespace arrlib {\nnamespace {\n")

    number("sixteenths_per_ln2", EXP_STEPS / ln2)
    array("log(2)/16 in two parts.", "ln2_sixteenth", parts(ln2 / EXP_STEPS, [None, None]))
    powers = [parts(mpf(2) ** (mpf(k) / EXP_STEPS), [None, None]) for k in range(EXP_STEPS)]
    array("2^(k/16), and what its rounding lost.", "exp_step", [p[0] for p in powers])
    array("", "exp_step_low", [p[1] for p in powers])
    step = ln2 / EXP_STEPS / 2
    array("(exp(x) - 1 - x)/x^2 for |x| up to log(2)/32.", "exp_terms",
          fit(lambda x: (mpmath.exp(x) - 1 - x) / x ** 2, -step * 1.0002, step * 1.0001, 6))

    steps = log_steps()
    inverses = [c for c, _ in steps]
    array("1/x in the middle of a step, those of 11 to 22 fifteenths: the place is their number modulo 16.", "log_inverse", inverses)
    print("// Logarithms to a base: of 2 over those inverses, and of 2, both in two parts of which the first is a multiple of")
    print("// 2^-42; and the factor that makes natural logarithms such ones. The inverses are chosen so that their natural")
    print("// logarithms have no second parts: there only that of 2 is left.")
    print("struct LogTable {\n    double step[%d], step_low[%d], of_two[2], factor[2];\n};" % (LOG_STEPS, LOG_STEPS))
    for name, base in (("natural_log", mpmath.e), ("binary_log", mpf(2)), ("decimal_log", mpf(10))):
        of_two = parts(ln2 / mpmath.log(base), [-LOG_GRID, None])
        if base == mpmath.e:
            logs = [(step, mpf(0)) for _, step in steps]
        else:
            logs = [parts(-mpmath.log(c) / mpmath.log(base), [-LOG_GRID, None]) for c in inverses]
        print("constexpr LogTable %s = {" % name)
        for column in ([p[0] + of_two[0] for p in logs], [p[1] + of_two[1] for p in logs], of_two, parts(1 / mpmath.log(base), [None, None])):
            lines("    {", map(hexadecimal, column), "},")
        print("};")
    array("(log(1 + x) - x)/x^2 for |x| up to 0.042.", "log_terms",
          fit(lambda x: (mpmath.log1p(x) - x) / x ** 2, -0.0419, 0.042, 9))
    array("(log(1 + x) - x + x^2/2 - x^3/3)/x^4 for such x.", "log_fourth_terms",
          fit(lambda x: (mpmath.log1p(x) - x + x * x / 2 - x ** 3 / 3) / x ** 4, -0.0419, 0.042, 9))
    print()
    number("two_over_pi", 2 / pi)
    array("pi/2 in three parts; pi in two, and pi/4 so that small multiples of the first part are exact.", "half_pi", parts(pi / 2, [None, None, None]))
    array("", "pi_parts", parts(pi, [None, None]))
    array("", "eighth_turn", parts(pi / 4, [-50, None]))
    array("(sin(x)/x - 1)/x^2 and (cos(x) - 1 + x^2/2)/x^4 by powers of x^2, for |x| up to pi/4.", "sin_terms",
          odd_fit(mpmath.sin, pi / 4 * 1.001, 6))
    array("", "cos_terms", fit(lambda s: (mpmath.cos(mpmath.sqrt(s)) - 1 + s / 2) / s ** 2, mpf(10) ** -14, (pi / 4 * 1.001) ** 2, 6))
    number("steps_per_pi", SINE_STEPS / pi)
    array("pi/16 in three parts; products of the second with 28 bits are exact.", "pi_step", parts(pi / SINE_STEPS, [None, -81, None]))
    sines = [parts(mpmath.sin(k * pi / SINE_STEPS), [None, None]) for k in range(SINE_STEPS)]
    print("// The sines of its multiples and what their rounding lost, and their cosines. The sine of -0 is -0.")
    array("", "sine_step", ["-0.0"] + [p[0] for p in sines[1:]])
    array("", "sine_step_low", [p[1] for p in sines])
    array("", "cosine_step", [mpmath.cos(k * pi / SINE_STEPS) if k != SINE_STEPS // 2 else mpf(0) for k in range(SINE_STEPS)])
    step = pi / SINE_STEPS / 2 * mpf(1.001)
    array("(sin(x)/x - 1)/x^2 and (cos(x) - 1)/x^2 by powers of x^2, for |x| up to pi/32.", "short_sin_terms", odd_fit(mpmath.sin, step, 4))
    array("", "short_cos_terms", fit(lambda s: (mpmath.cos(mpmath.sqrt(s)) - 1) / s, mpf(10) ** -14, step ** 2, 4))
    number("tan_eighth_pi", mpmath.tan(pi / 8))
    array("(atan(x)/x - 1)/x^2 by powers of x^2, for |x| up to tan(pi/8).", "atan_terms", odd_fit(mpmath.atan, mpmath.tan(pi / 8) * 1.0001, 11))
    array("(asin(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.", "asin_terms", odd_fit(mpmath.asin, 0.5001, 13))
    array("(sinh(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.", "sinh_terms", odd_fit(mpmath.sinh, 0.5, 6))
    array("(tanh(x)/x - 1)/x^2 by powers of x^2, for |x| up to 1/2.", "tanh_terms", odd_fit(mpmath.tanh, 0.5, 11))

    print("// The bits of 2/pi behind the binary point, 32 to a word, most significant first.")
    print("constexpr std::uint32_t two_over_pi_words[] = {")
    digits = int(mpmath.floor(2 / pi * mpf(2) ** (32 * 42)))
    words = ["0x%08x" % (digits >> 32 * (41 - k) & 0xFFFFFFFF) for k in range(42)]
    for k in range(0, 42, 10):
        print("    " + ", ".join(words[k:k + 10]) + ",")
    print("};")
    print("\n} // namespace\n} // namespace arrlib\n\n#endif")


# --- reference values of the tests ---------------------------------------------------------------


def reciprocal(f):
    return lambda x: 1 / f(x)


def of_reciprocal(f):
    return lambda x: f(1 / x)


def arc_cotangent(x):
    return mpmath.acot(x) if x else mp.pi / 2


def cardinal_sine(x):
    return mpmath.sinpi(x) / (mp.pi * x)


# Random arguments are drawn from these ranges, as many from each: uniformly, or where a range is a
# pair of powers of two, from all magnitudes in between.
POWERS = "powers"
ALL = (-1074, 1024, POWERS)
TURNS = [(-4, 4), (-3e3, 3e3), (20, 1024, POWERS), (-30, 2, POWERS)]
ARCS = [(-1, 1), (0.4, 0.6), (-0.6, -0.4), (0.99, 1), (-30, 0, POWERS)]
FAR_ARCS = [(1, 2.5), (-2.5, -1), (1, 1.001), (0, 1024, POWERS)]
LOGS = [(0, 2), (0.9, 1.1), (-1074, -1000, POWERS), (-1022, 1024, POWERS)]
HYPERBOLIC = [(-3, 3), (0.4, 0.6), (-30, 30), (-700, 700), (-1074, 0, POWERS)]

UNARY = {
    "acos": (mpmath.acos, ARCS, [0, 0.5, -0.5, 1, -1]),
    "acosh": (mpmath.acosh, [(1, 3), (1, 1.001), (0, 1024, POWERS)], [1]),
    "acot": (arc_cotangent, [(-1, 1), (-10, 10), ALL], [0, 1, -1]),
    "acoth": (mpmath.acoth, FAR_ARCS, []),
    "acsc": (mpmath.acsc, FAR_ARCS, [1, -1, 2]),
    "acsch": (of_reciprocal(mpmath.asinh), [(-3, 3), (0.01, 10), ALL], []),
    "asec": (mpmath.asec, FAR_ARCS, [1, -1, 2]),
    "asech": (of_reciprocal(mpmath.acosh), [(0.2, 1), (0.99, 1), (-1074, 0, POWERS)], [1]),
    "asin": (mpmath.asin, ARCS + [(-1074, -500, POWERS)], [0.5, 1, -1]),
    "asinh": (mpmath.asinh, [(-3, 3), (-0.1, 0.1), ALL], []),
    "atan": (mpmath.atan, [(-1, 1), (-10, 10), (0.41, 0.42), ALL], [1, -1]),
    "atanh": (mpmath.atanh, ARCS + [(-1074, -500, POWERS)], []),
    "cos": (mpmath.cos, TURNS, [0]),
    "cosh": (mpmath.cosh, HYPERBOLIC, [710.4]),
    "cot": (mpmath.cot, TURNS, []),
    "coth": (mpmath.coth, HYPERBOLIC, []),
    "csc": (mpmath.csc, TURNS, []),
    "csch": (mpmath.csch, HYPERBOLIC + [(700, 745)], []),
    "exp": (mpmath.exp, [(-1, 1), (-700, 709), (-745, -708), (-1074, 0, POWERS)], [0, 1, 709.782712893384, -745.1332191019412]),
    "log": (mpmath.log, LOGS, [1]),
    "log10": (mpmath.log10, LOGS, [1, 10, 1000, 1e22]),
    "log2": (lambda x: mpmath.log(x, 2), LOGS, [1, 8, 0.125, 5e-324]),
    "pow2": (lambda x: mpf(2) ** x, [(-1, 1), (-1000, 1023), (-1074, -1022), (-1074, 0, POWERS)], [0, 3, -1074, 1023]),
    "sec": (mpmath.sec, TURNS, [0]),
    "sech": (mpmath.sech, HYPERBOLIC + [(700, 745)], [0]),
    "sin": (mpmath.sin, TURNS + [(-1074, -500, POWERS)], []),
    "sinc": (cardinal_sine, [(-4, 4), (-3e3, 3e3), (2.999, 3.001), (-30, 2, POWERS), (30, 51, POWERS)], [0.5, 1e-300]),
    "sinh": (mpmath.sinh, HYPERBOLIC, [710.4]),
    "tan": (mpmath.tan, TURNS + [(-1074, -500, POWERS)], []),
    "tanh": (mpmath.tanh, HYPERBOLIC, []),
}
BINARY = {
    "atan2": (mpmath.atan2, [((-1, 1), (-1, 1)), ((-10, 10), (-1, 1)), (ALL, ALL), ((-1074, -950, POWERS), (-1074, -950, POWERS)),
                             ((900, 1024, POWERS), (900, 1024, POWERS)), ((-1074, -900, POWERS), (-10, 160, POWERS))],
              [(1, -1), (0, -2)]),
    "power": (lambda x, y: mpf(x) ** mpf(y), [((0, 10), (-300, 300)), ((0.9, 1.1), (-7e3, 7e3)), ((-1, 1, POWERS), (-1000, 1000)),
                                              ((0.999, 1.001), (-7e5, 7e5)), ((-1022, 1024, POWERS), (-1, 1)), ((-1074, -1022, POWERS), (-1, 1))],
              [(3, 40), (10, 22), (10, -22), (2, -1074), (0.5, 1074), (-8, 3), (-8, 2), (-10, -323), (10, 308)]),
}
# The angles whose sine or cosine is smallest, and where reduction, poles and steps are at their worst.
HARD_ANGLES = [float.fromhex(x) for x in (
    "0x1.921fb54442d18p+0", "0x1.921fb54442d18p+1", "0x1.2d97c7f3321d2p+2", "0x1.921fb54442d18p+30", "0x1.6ac5b262ca1ffp+849",
    "0x1.bd8faddfe0357p+27", "0x1.fffffffffffffp+27", "0x1p+28", "0x1.fffffffffffffp+1023")]
HARD_EVERYWHERE = {"log": ["0x1.fffffffffffffp-1", "0x1.0000000000001p+0"], "acos": ["0x1.fffffffffffffp-1", "-0x1.fffffffffffffp-1"],
                   "acosh": ["0x1.0000000000001p+0"], "asec": ["0x1.0000000000001p+0"], "asech": ["0x1.fffffffffffffp-1"],
                   "atanh": ["0x1.fffffffffffffp-1"], "acoth": ["0x1.0000000000001p+0"]}


def rounded(value):
    """The nearest double, denormal ones too, and what it lacks in hundredths of its last place."""
    value = mpf(value)
    exact = Fraction(int(value.man) * (-1) ** value._mpf_[0]) * Fraction(2) ** value.exp if value else Fraction(0)
    try:
        nearest = float(exact)
    except OverflowError:
        return None
    place = math.ulp(nearest)
    return nearest, round((exact - Fraction(nearest)) / Fraction(place) * 100)


def draw(random, bounds):
    if len(bounds) == 2:
        return random.uniform(*bounds)
    low, high, _ = bounds
    return random.choice((1, -1)) * math.ldexp(random.uniform(0.5, 1), random.randint(low, high))


def rows(f, arguments):
    for arguments_ in arguments:
        try:
            value = f(*map(mpf, arguments_))
        except (ValueError, ZeroDivisionError):
            continue
        found = rounded(value) if isinstance(value, mpf) and mpmath.isfinite(value) else None
        if found:
            yield "{%s, %d}" % (", ".join(map(hexadecimal, (*arguments_, found[0]))), found[1])


def block(head, texts):
    print(head)
    line = "   "
    for text in texts:
        if len(line) + len(text) > 148:
            print(line)
            line = "   "
        line += " " + text + ","
    print(line + "\n};")


def reference():
    mp.prec = 2300
    random = Random(1)
    print("// Values of the elementary functions: arguments, the nearest double to the result, and what that lacks in")
    print("// hundredths of its last place. Made by tests/tools/reference_tables.py.")
    print("#ifndef ARRLIB_TESTS_OPS_ELEMENTARY_REFERENCE_H\n#define ARRLIB_TESTS_OPS_ELEMENTARY_REFERENCE_H\n")
    print("namespace reference {\n\nstruct Unary {\n    double x, value;\n    int lacking;\n};\nstruct Binary {\n    double x, y, value;\n    int lacking;\n};\n")
    for name, (f, ranges, chosen) in UNARY.items():
        arguments = list(chosen) + [float.fromhex(x) for x in HARD_EVERYWHERE.get(name, [])] + (HARD_ANGLES if ranges[:3] == TURNS[:3] else [])
        for bounds in ranges:
            arguments += [draw(random, bounds) for _ in range(32 // len(ranges))]
        positive = name.startswith("log") or name == "asech"
        block("inline constexpr Unary of_%s[] = {" % name, rows(f, [(abs(x) if positive else x,) for x in arguments]))
    for name, (f, ranges, chosen) in BINARY.items():
        pairs = list(chosen)
        for first, second in ranges:
            pairs += [(draw(random, first), draw(random, second)) for _ in range(9)]
        pairs = [(x if name == "atan2" or k < len(chosen) else abs(x), y) for k, (x, y) in enumerate(pairs)]
        block("inline constexpr Binary of_%s[] = {" % name, rows(f, pairs))
    print("\n} // namespace reference\n\n#endif")


if __name__ == "__main__":
    {"constants": constants, "reference": reference}[sys.argv[1]]()
