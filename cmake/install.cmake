# cmake --install: the library, its public headers, a CMake package and a pkg-config file.

# Appends `header` and the headers of ours that it includes, those before it, to `list`.
function(arrlib_follow_includes header list)
  set(found ${${list}})
  if(header IN_LIST found)
    return()
  endif()
  list(APPEND found ${header})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
  file(STRINGS ${PROJECT_SOURCE_DIR}/${header} lines REGEX "^#include \"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" included "${line}")
    arrlib_follow_includes(${included} found)
  endforeach()
  set(${list} ${found} PARENT_SCOPE)
endfunction()

set(arrlib_public_headers)
arrlib_follow_includes(arrlib.h arrlib_public_headers)
# What modules include, and the names under which they do.
foreach(header bridge/mx.h bridge/mex/mex.h bridge/mex/matrix.h)
  arrlib_follow_includes(${header} arrlib_public_headers)
endforeach()

set(arrlib_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/arrlib)
set(arrlib_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/arrlib)

install(TARGETS arrlib EXPORT arrlibTargets)
foreach(header IN LISTS arrlib_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${arrlib_include_dir}/${folder})
endforeach()

install(EXPORT arrlibTargets NAMESPACE arrlib:: DESTINATION ${arrlib_package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/arrlibConfig.cmake.in
  ${PROJECT_BINARY_DIR}/arrlibConfig.cmake INSTALL_DESTINATION ${arrlib_package_dir}
  PATH_VARS arrlib_include_dir)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/arrlibConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/arrlibConfig.cmake ${PROJECT_BINARY_DIR}/arrlibConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/arrlib_module.cmake DESTINATION ${arrlib_package_dir})

# The installed tree may be moved, so the file finds its prefix from where it lies itself.
set(arrlib_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${arrlib_pc_dir}
  OUTPUT_VARIABLE arrlib_pc_to_prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/arrlib.pc.in ${PROJECT_BINARY_DIR}/arrlib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/arrlib.pc DESTINATION ${arrlib_pc_dir})
