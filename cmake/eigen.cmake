# The sparse factorisations: headers only, the host's for every target.
find_path(ARRLIB_EIGEN_DIR Eigen/SparseLU PATH_SUFFIXES eigen3 NO_CMAKE_FIND_ROOT_PATH)
if(NOT ARRLIB_EIGEN_DIR)
  message(FATAL_ERROR "Eigen is missing: run tools/install-packages build.")
endif()
# One file sees them, and their warnings are theirs.
set_property(SOURCE builtins/sparse_factor.cpp APPEND PROPERTY COMPILE_OPTIONS -isystem ${ARRLIB_EIGEN_DIR})
