// One element of an elementary function: the kernels of this processor.
#include "ops/kernels.h"

#include "ops/kernels/kernel_set.h"

using arrlib::kernel_set;

double nx_acos(double x) { return kernel_set().unary[op_acos](x); }
double nx_acosh(double x) { return kernel_set().unary[op_acosh](x); }
double nx_acot(double x) { return kernel_set().unary[op_acot](x); }
double nx_acoth(double x) { return kernel_set().unary[op_acoth](x); }
double nx_acsc(double x) { return kernel_set().unary[op_acsc](x); }
double nx_acsch(double x) { return kernel_set().unary[op_acsch](x); }
double nx_asec(double x) { return kernel_set().unary[op_asec](x); }
double nx_asech(double x) { return kernel_set().unary[op_asech](x); }
double nx_asin(double x) { return kernel_set().unary[op_asin](x); }
double nx_asinh(double x) { return kernel_set().unary[op_asinh](x); }
double nx_atan(double x) { return kernel_set().unary[op_atan](x); }
double nx_atanh(double x) { return kernel_set().unary[op_atanh](x); }
double nx_cos(double x) { return kernel_set().unary[op_cos](x); }
double nx_cosh(double x) { return kernel_set().unary[op_cosh](x); }
double nx_cot(double x) { return kernel_set().unary[op_cot](x); }
double nx_coth(double x) { return kernel_set().unary[op_coth](x); }
double nx_csc(double x) { return kernel_set().unary[op_csc](x); }
double nx_csch(double x) { return kernel_set().unary[op_csch](x); }
double nx_exp(double x) { return kernel_set().unary[op_exp](x); }
double nx_log(double x) { return kernel_set().unary[op_log](x); }
double nx_log10(double x) { return kernel_set().unary[op_log10](x); }
double nx_log2(double x) { return kernel_set().unary[op_log2](x); }
double nx_sec(double x) { return kernel_set().unary[op_sec](x); }
double nx_sech(double x) { return kernel_set().unary[op_sech](x); }
double nx_sin(double x) { return kernel_set().unary[op_sin](x); }
double nx_sinc(double x) { return kernel_set().unary[op_sinc](x); }
double nx_sinh(double x) { return kernel_set().unary[op_sinh](x); }
double nx_sqrt(double x) { return kernel_set().unary[op_sqrt](x); }
double nx_tan(double x) { return kernel_set().unary[op_tan](x); }
double nx_tanh(double x) { return kernel_set().unary[op_tanh](x); }
double nx_pow2(double x) { return kernel_set().unary[op_pow2_1](x); }
double nx_atan2(double y, double x) { return kernel_set().binary[op_atan2](y, x); }
double nx_power(double x, double y) { return kernel_set().binary[op_power](x, y); }
