#include "ops/kernels/dimension_loops_text.h"

constinit arrlib::DimensionLoops const arrlib::dimension_loops_baseline = loops_of_kind("baseline");
