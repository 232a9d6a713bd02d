# The loops along dimensions are compiled once per kind as well; see cmake/kernels.cmake.
foreach(kind ${arrlib_kernel_kinds})
  set_source_files_properties(${arrlib_kernel_folder}/dimension_loops_${kind}.cpp PROPERTIES
    COMPILE_OPTIONS "${arrlib_flags_${kind}}")
endforeach()
