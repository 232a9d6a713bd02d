# What a build for Windows adds.
if(NOT WIN32)
  return()
endif()

# Windows looks for libraries beside the program: everything goes into one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_SHARED_LIBRARY_PREFIX "")

foreach(library libgcc_s_dw2-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${path}")
    message(FATAL_ERROR "The compiler does not know where its ${library} is.")
  endif()
  file(COPY ${path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  install(FILES ${path} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()
