# The library behind compressed elements of data files. Without it they are reported and passed over.
set(ARRLIB_ZLIB "ON" CACHE BOOL "Read compressed elements of data files, through zlib")

if(ARRLIB_ZLIB AND NOT WIN32)
  find_package(ZLIB)
  if(NOT ZLIB_FOUND)
    message(FATAL_ERROR "zlib is missing: run tools/install-packages build, or set ARRLIB_ZLIB to OFF.")
  endif()
  foreach(library arrlib arrlib_inside)
    target_compile_definitions(${library} PRIVATE ARRLIB_ZLIB)
    target_link_libraries(${library} PRIVATE ZLIB::ZLIB)
  endforeach()
endif()
