# Builds for 32-bit Windows with the mingw-w64 compilers.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(mingw_target i686-w64-mingw32)
set(CMAKE_C_COMPILER ${mingw_target}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw_target}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw_target}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${mingw_target})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Doubles are rounded as on the other systems, and callers that keep their stack aligned to four
# bytes only may call in.
set(mingw_compile_flags "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_C_FLAGS_INIT "${mingw_compile_flags}")
set(CMAKE_CXX_FLAGS_INIT "${mingw_compile_flags}")

# One libgcc for all modules of a process: an error thrown in the library is caught in the program.
set(mingw_link_flags "-shared-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${mingw_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${mingw_link_flags}")
