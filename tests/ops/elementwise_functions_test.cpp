// Each function stands for its own operation, whatever its name; what operations compute is tested with
// their kernels.
#include "ops/elementwise.h"
#include "support/values.h"

using namespace values;

TEST(ElementwiseFunctions, AreTheirOperations)
{
    M<double> const x = row({-1.5, 2.5}), z = row({1, -2}, {2, 0}), a = row({6, 3}), b = row({3, 5});
    expect_all({
        {shown(abs(x)), "1x2: 1.5 2.5"},
        {shown(sign(x)), "1x2: -1 1"},
        {shown(ceil(x)), "1x2: -1 3"},
        {shown(floor(x)), "1x2: -2 2"},
        {shown(fix(x)), "1x2: -1 2"},
        {shown(round(x)), "1x2: -2 3"},
        {shown(conj(z)), "1x2: 1-2i -2-0i"},
        {shown(imag(z)), "1x2: 2 0"},
        {shown(arg(x), 4), "1x2: 3.142 0"},
        {shown(angle(x), 4), "1x2: 3.142 0"},
        {shown(uminus(x)), "1x2: 1.5 -2.5"},
        {shown(uplus(x)), "1x2: -1.5 2.5"},
        {shown(mnot(row({0, 2}))), "logical 1x2: 1 0"},
        {shown(reallog(row({1, 2.718281828459045}))), "1x2: 0 1"},
        {shown(realsqrt(row({4, 9}))), "1x2: 2 3"},
        {shown(realpow(a, 2)), "1x2: 36 9"},
        {shown(plus(a, b)) + shown(dot_add(a, b)), "1x2: 9 81x2: 9 8"},
        {shown(minus(a, b)) + shown(dot_sub(a, b)), "1x2: 3 -21x2: 3 -2"},
        {shown(dot_div(a, b)) + shown(rdivide(a, b)), "1x2: 2 0.61x2: 2 0.6"},
        {shown(dot_invdiv(b, a)) + shown(ldivide(b, a)), "1x2: 2 0.61x2: 2 0.6"},
        {shown(lt(a, b)) + shown(gt(a, b)), "logical 1x2: 0 1logical 1x2: 1 0"},
        {shown(le(a, a)) + shown(ge(a, b)), "logical 1x2: 1 1logical 1x2: 1 0"},
        {shown(eq(a, 6)) + shown(ne(a, 6)), "logical 1x2: 1 0logical 1x2: 0 1"},
        {shown(mand(row({0, 2}), 1)) + shown(mor(row({0, 2}), 0)) + shown(mxor(row({0, 2}), 1)), "logical 1x2: 0 1logical 1x2: 0 1logical 1x2: 1 0"},
        {shown(mbitand(a, b)) + shown(mbitor(a, b)) + shown(bitxor(a, b)), "1x2: 2 11x2: 7 71x2: 5 6"},
        {shown(min(a, b)) + shown(min0(a, b)) + shown(max(a, b)), "1x2: 3 31x2: 3 31x2: 6 5"},
    });
}
