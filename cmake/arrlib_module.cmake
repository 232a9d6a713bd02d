# arrlib_add_module(NAME SOURCE...): builds the extension module that programs call as
# call_mex("NAME", ...), from sources in C, C++ or both that define mexFunction (bridge/mx.h). It makes a
# target NAME and the file NAME_korvex.so (.dll on Windows), in the folder that the target's programs
# go to. For the build tree of the library and for projects that have found its package.
function(arrlib_add_module name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME ${name}_korvex)
  if(CMAKE_RUNTIME_OUTPUT_DIRECTORY)
    set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  endif()
  # Errors pass through C as exceptions; a module in C++ that clear_mex unloads must be able to go.
  target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:C>:-fexceptions>
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
  target_include_directories(${name} PRIVATE ${arrlib_module_include_dir})
  target_link_libraries(${name} PRIVATE arrlib::arrlib)
endfunction()
