# The library behind the products of full matrices: OpenBLAS, or plain loops of our own where it is
# not to be had.
set(ARRLIB_BLAS "openblas" CACHE STRING "What multiplies full matrices: openblas or plain")

if(ARRLIB_BLAS STREQUAL "openblas" AND NOT WIN32)
  find_path(ARRLIB_CBLAS_DIR cblas.h)
  find_library(ARRLIB_OPENBLAS openblas)
  if(NOT ARRLIB_CBLAS_DIR OR NOT ARRLIB_OPENBLAS)
    message(FATAL_ERROR "OpenBLAS is missing: run tools/install-packages build, or set ARRLIB_BLAS to plain.")
  endif()
  foreach(library arrlib arrlib_inside)
    target_include_directories(${library} SYSTEM PRIVATE ${ARRLIB_CBLAS_DIR})
    target_compile_definitions(${library} PRIVATE ARRLIB_OPENBLAS)
    target_link_libraries(${library} PRIVATE ${ARRLIB_OPENBLAS})
  endforeach()
endif()
