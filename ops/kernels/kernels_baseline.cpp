// The kernels for every processor: one element at a time.
#include "ops/kernels/kernel_kinds.h"

#include "ops/kernels/loop_table.h"

constinit arrlib::KernelSet const arrlib::kernels_baseline = kernels_of_this_kind("baseline");

