# Installs the built library into a fresh folder, builds the program there in one way (find_package
# or pkg_config) and compares what it prints.
#
# Given: way, library_build, work, libdir, compiler, c_compiler, pkg_config.
cmake_minimum_required(VERSION 3.25)

set(program_dir ${CMAKE_CURRENT_LIST_DIR}/program)
set(prefix ${work}/prefix)
set(build ${work}/build)

function(run)
  execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed (${result}): ${ARGV}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(build_through_find_package)
  run(${CMAKE_COMMAND} -S ${program_dir} -B ${build} -G Ninja -D CMAKE_CXX_COMPILER=${compiler}
      -D CMAKE_C_COMPILER=${c_compiler}
      -D CMAKE_CXX_STANDARD=17 -D CMAKE_PREFIX_PATH=${prefix})
  run(${CMAKE_COMMAND} --build ${build})
endfunction()

function(build_through_pkg_config)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${libdir}/pkgconfig)
  run(${pkg_config} --cflags --libs arrlib)
  separate_arguments(flags UNIX_COMMAND "${output}")
  file(MAKE_DIRECTORY ${build})
  run(${compiler} -std=c++17 ${program_dir}/main.cpp -o ${build}/program ${flags}
      -Wl,-rpath,${prefix}/${libdir})
  run(${c_compiler} -std=c11 -shared -fPIC -fexceptions ${program_dir}/twice.c -o ${build}/twice_korvex.so ${flags})
endfunction()

file(REMOVE_RECURSE ${work})
run(${CMAKE_COMMAND} --install ${library_build} --prefix ${prefix})
cmake_language(CALL build_through_${way})
run(${build}/program)

file(READ ${CMAKE_CURRENT_LIST_DIR}/expected.txt expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "The program prints\n${output}\ninstead of\n${expected}")
endif()
