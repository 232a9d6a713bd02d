# The special functions of one real argument: headers of Boost.Math. They are the same for every
# system, so a build for another one takes them from this one's folder, and nothing else from there.
find_path(ARRLIB_BOOST_DIR boost/math/special_functions/bessel.hpp NO_CMAKE_FIND_ROOT_PATH)
if(NOT ARRLIB_BOOST_DIR)
  message(FATAL_ERROR "Boost.Math is missing: run tools/install-packages build.")
endif()
set(arrlib_boost_include ${ARRLIB_BOOST_DIR})
if(CMAKE_CROSSCOMPILING)
  set(arrlib_boost_include ${PROJECT_BINARY_DIR}/boost_include)
  file(MAKE_DIRECTORY ${arrlib_boost_include})
  file(CREATE_LINK ${ARRLIB_BOOST_DIR}/boost ${arrlib_boost_include}/boost SYMBOLIC)
endif()
foreach(library arrlib arrlib_inside)
  target_include_directories(${library} SYSTEM PRIVATE ${arrlib_boost_include})
  # No notes on every file about compilers that are not these.
  target_compile_definitions(${library} PRIVATE BOOST_MATH_DISABLE_DEPRECATED_03_WARNING)
endforeach()
