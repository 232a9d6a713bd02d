// One element of arithmetic, comparisons and logic: the formulas of the loops.
#include "ops/kernels/loop_arithmetic.h"

#include "ops/kernels.h"

#include <algorithm>
#include <cmath>

using namespace arrlib;

namespace {

template <class Formula> double one(double x) { return Formula::of(Lane(x)).v; }
template <class Formula> double one(double x, double y) { return Formula::of(Lane(x), Lane(y)).v; }

} // namespace

double nx_plus(double x, double y) { return one<Plus>(x, y); }
double nx_minus(double x, double y) { return one<Minus>(x, y); }
double nx_times(double x, double y) { return one<Times>(x, y); }
double nx_rdivide(double x, double y) { return one<RightDivide>(x, y); }
double nx_ldivide(double x, double y) { return one<LeftDivide>(x, y); }
double nx_uminus(double x) { return one<UnaryMinus>(x); }
double nx_uplus(double x) { return one<UnaryPlus>(x); }
double nx_abs(double x) { return one<Abs>(x); }
double nx_sign(double x) { return one<Sign>(x); }
double nx_ceil(double x) { return one<Ceil>(x); }
double nx_fix(double x) { return one<Fix>(x); }
double nx_floor(double x) { return one<Floor>(x); }
double nx_round(double x) { return one<Round>(x); }
double nx_rem(double x, double y) { return one<Rem>(x, y); }
double nx_mod(double x, double y) { return one<Mod>(x, y); }
double nx_max(double x, double y) { return one<Max>(x, y); }
double nx_min(double x, double y) { return one<Min>(x, y); }
double nx_conj(double x) { return one<UnaryPlus>(x); }
double nx_imag(double x) { return one<Imag>(x); }
double nx_angle(double x) { return one<Angle>(x); }

double nx_pow2(double x, double y)
{
    if (!std::isfinite(y))
        return x * std::exp2(y);
    // More than any exponent needs.
    return std::ldexp(x, static_cast<int>(std::clamp(y, -5000.0, 5000.0)));
}

double nx_lt(double x, double y) { return one<Less>(x, y); }
double nx_le(double x, double y) { return one<LessEqual>(x, y); }
double nx_gt(double x, double y) { return one<Greater>(x, y); }
double nx_ge(double x, double y) { return one<GreaterEqual>(x, y); }
double nx_eq(double x, double y) { return one<Equal>(x, y); }
double nx_ne(double x, double y) { return one<Unequal>(x, y); }
double nx_and(double x, double y) { return one<And>(x, y); }
double nx_or(double x, double y) { return one<Or>(x, y); }
double nx_xor(double x, double y) { return one<Xor>(x, y); }
double nx_not(double x) { return one<Not>(x); }
double nx_isfinite(double x) { return one<IsFinite>(x); }
double nx_isinf(double x) { return one<IsInf>(x); }
double nx_isnan(double x) { return one<IsNan>(x); }
