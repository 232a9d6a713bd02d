// arrlib: the run-time library of translated matrix programs. This header is all that a program
// includes; the headers below are the public ones.
#ifndef ARRLIB_H
#define ARRLIB_H

#define ARRLIB_VERSION_MAJOR 0
#define ARRLIB_VERSION_MINOR 1
#define ARRLIB_VERSION_PATCH 0
// What a translated program passes to initM.
#define ARRLIB_HEADER_VERSION 4010

#include "bridge/module.h"
#include "builtins/cells.h"
#include "builtins/coordinates.h"
#include "builtins/deal.h"
#include "builtins/diagonals.h"
#include "builtins/elfun.h"
#include "builtins/gallery.h"
#include "builtins/grids.h"
#include "builtins/integers.h"
#include "builtins/kron.h"
#include "builtins/permute.h"
#include "builtins/positions.h"
#include "builtins/ranges.h"
#include "builtins/rational.h"
#include "builtins/sets.h"
#include "builtins/sizes.h"
#include "builtins/sort.h"
#include "builtins/specfun.h"
#include "builtins/special_matrices.h"
#include "builtins/stubs.h"
#include "builtins/types.h"
#include "core/api.h"
#include "core/bracket.h"
#include "core/cell.h"
#include "core/declare.h"
#include "core/join.h"
#include "core/matrix.h"
#include "core/reshape.h"
#include "core/sparse.h"
#include "core/subscript.h"
#include "core/text.h"
#include "io/data_file.h"
#include "io/files.h"
#include "io/print.h"
#include "io/shell.h"
#include "io/sprintf.h"
#include "io/text_file.h"
#include "ops/creator.h"
#include "ops/difference.h"
#include "ops/elementwise.h"
#include "ops/engine.h"
#include "ops/kernels.h"
#include "ops/operators.h"
#include "ops/random.h"
#include "ops/reduction.h"
#include "ops/sparse_random.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/dispatch.h"
#include "runtime/display.h"
#include "runtime/environment.h"
#include "runtime/errors.h"
#include "runtime/parallel.h"
#include "runtime/path.h"
#include "runtime/scope.h"
#include "runtime/startup.h"

#endif
