// The engine behind every element-wise operation and every operation along a dimension.
#ifndef ARRLIB_OPS_ENGINE_H
#define ARRLIB_OPS_ENGINE_H

#include "core/matrix.h"
#include "ops/op_code.h"

// Computes operation `op` of x and y into `result`. `do_dim` 0 works element by element: y or x may
// have one element, else the sizes must agree ("%s: wrong dimensions of: %s, %s"); unary operations
// pass zero_M for y, and nop_M for `dim`. `do_dim` 1 works along dimension `dim`, 1 to 4; 0 stands for
// the first one larger than 1 ("%s: dim argument may not be empty", "%s: dimension=%s does not exist
// for matrix %s", "op_dims: wrong do_dim"). `index_out` takes the 1-based positions of max and min,
// unless it is l_M. A code that does not exist: "op_dims: unknown op", "op_core: unknown op".
// After a report the result is x_M.
ARRLIB_API void op_apply(M<double>& result, M<double> x, M<double> y, M<double> const& dim, OpCode op, int do_dim, M<double>& index_out);
// What messages call the operation; "???" for codes that do not exist.
ARRLIB_API char const* op_name(OpCode op);
// 1 for operations whose result is logical.
ARRLIB_API int op_is_logical(OpCode op);
// The zero-based dimension that `dim` names for a function called `name`; 0 in `dim` stands for the
// first dimension larger than 1. "%s: dim argument may not be empty" (gives 0), "%s: dim argument
// must be positive", "%s: dim argument may not be more then the number of dimensions".
ARRLIB_API int check_dim_arg(char const* name, M<double> const& x, M<double> const& dim);

#endif
