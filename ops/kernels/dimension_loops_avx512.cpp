#include "ops/kernels/dimension_loops_text.h"

constinit arrlib::DimensionLoops const arrlib::dimension_loops_avx512 = loops_of_kind("avx512");
